#include "platform/dwg/encode_header.hpp"

#include <cmath>

#include "platform/dwg/encode_bits.hpp"
#include "platform/dwg/encode_tables.hpp"
#include "platform/dwg/object_map.hpp"

namespace dwg {
namespace {

constexpr std::uint8_t kStartSentinel[16] = {0xCF, 0x7B, 0x1F, 0x23, 0xFD, 0xDE, 0x38, 0xA9,
                                             0x5F, 0x7C, 0x68, 0xB8, 0x4E, 0x6D, 0x33, 0x5F};
constexpr std::uint8_t kEndSentinel[16] = {0x30, 0x84, 0xE0, 0xDC, 0x02, 0x21, 0xC7, 0x56,
                                           0xA0, 0x83, 0x97, 0x47, 0xB1, 0x92, 0xCC, 0xA0};

void Handle(BitWriter& d, std::uint64_t value) { d.H(5, value); }

// A date as days and milliseconds of the day.
void Date(BitWriter& d, double days) {
    const double whole = std::floor(days);
    d.BL(static_cast<std::int32_t>(whole));
    d.BL(static_cast<std::int32_t>(std::lround((days - whole) * 86400000.0)));
}

void WriteModes(BitWriter& d, const HeaderVariables& h) {
    for (double unknown : {412148564080.0, 1.0, 1.0, 1.0}) d.BD(unknown);
    for (const char* unknown : {"m", "", "", ""}) d.TV(unknown);
    d.BL(24);
    d.BL(0);
    for (bool b : {true, true}) d.B(b);  // DIMASO, DIMSHO
    // PLINEGEN, ORTHOMODE, REGENMODE, FILLMODE, QTEXTMODE, PSLTSCALE, LIMCHECK
    for (bool b : {false, false, true, true, false, true, false}) d.B(b);
    if (d.version() >= Version::kR2004) d.B(false);
    d.B(true);   // USRTIMER
    d.B(false);  // SKPOLY
    d.B(h.angdir);
    d.B(false);  // SPLFRAME
    d.B(false);  // MIRRTEXT
    d.B(true);   // WORLDVIEW
    d.B(h.tilemode);
    d.B(false);  // PLIMCHECK
    d.B(true);   // VISRETAIN
    d.B(false);  // DISPSILH
    d.B(false);  // PELLIPSE
    d.BS(1);     // PROXYGRAPHICS
    d.BS(3020);  // TREEDEPTH
    d.BS(h.lunits);
    d.BS(h.luprec);
    d.BS(h.aunits);
    d.BS(h.auprec);
    d.BS(h.attmode);
    d.BS(h.pdmode);
    if (d.version() >= Version::kR2004) {
        d.BL(0);
        d.BL(0);
        d.BL(0);
    }
    // USERI1-5, SPLINESEGS, SURFU, SURFV, SURFTYPE, SURFTAB1, SURFTAB2, SPLINETYPE, SHADEDGE,
    // SHADEDIF, UNITMODE, MAXACTVP, ISOLINES, CMLJUST, TEXTQLTY
    for (int s : {0, 0, 0, 0, 0, 8, 6, 6, 6, 6, 6, 6, 3, 70, 0, 64, 4, 0, 50}) d.BS(s);
}

void WriteCurrent(BitWriter& d, const HeaderVariables& h) {
    d.BD(h.ltscale);
    d.BD(h.textsize);
    d.BD(h.tracewid);
    d.BD(0);  // SKETCHINC
    d.BD(h.filletrad);
    d.BD(h.thickness);
    d.BD(h.angbase);
    d.BD(h.pdsize);
    d.BD(0);  // PLINEWID
    for (int i = 0; i < 5 + 4; ++i) d.BD(0);  // USERR1-5, CHAMFERA-D
    d.BD(0.5);  // FACETRES
    d.BD(1);    // CMLSCALE
    d.BD(h.celtscale);
    d.TV(h.menu);
    Date(d, h.tdcreate);
    Date(d, h.tdupdate);
    if (d.version() >= Version::kR2004) {
        d.BL(0);
        d.BL(0);
        d.BL(0);
    }
    Date(d, h.tdindwg);
    Date(d, h.tdusrtimer);
    d.CMC(h.cecolor);
    d.H(0, h.handseed);
    Handle(d, h.clayer);
    Handle(d, h.textstyle);
    Handle(d, h.celtype);
    Handle(d, h.dimstyle);
    Handle(d, h.cmlstyle);
    d.BD(h.psvpscale);
}

void WriteSpace(BitWriter& d, const SpaceVariables& s) {
    d.BD3(s.insbase);
    d.BD3(s.extmin);
    d.BD3(s.extmax);
    d.RD2(s.limmin);
    d.RD2(s.limmax);
    d.BD(s.elevation);
    d.BD3(s.ucsorg);
    d.BD3(s.ucsxdir);
    d.BD3(s.ucsydir);
    Handle(d, s.ucsname);
    Handle(d, s.ucsorthoref);
    d.BS(s.ucsorthoview);
    Handle(d, s.ucsbase);
    for (const Point3* p : {&s.ucsorgTop, &s.ucsorgBottom, &s.ucsorgLeft, &s.ucsorgRight,
                            &s.ucsorgFront, &s.ucsorgBack}) {
        d.BD3(*p);
    }
}

void WriteControls(BitWriter& d, const HeaderVariables& h) {
    const HeaderHandles& c = h.handles;
    for (std::uint64_t handle : {c.blockControl, c.layerControl, c.styleControl, c.linetypeControl,
                                 c.viewControl, c.ucsControl, c.vportControl, c.appidControl,
                                 c.dimstyleControl}) {
        Handle(d, handle);
    }
    if (d.version() <= Version::kR2000) Handle(d, c.vxControl);
    Handle(d, c.groupDictionary);
    Handle(d, c.mlinestyleDictionary);
    Handle(d, c.namedObjects);
    d.BS(1);   // TSTACKALIGN
    d.BS(70);  // TSTACKSIZE
    d.TV(h.hyperlinkbase);
    d.TV(h.stylesheet);
    Handle(d, c.layoutDictionary);
    Handle(d, c.plotSettingsDictionary);
    Handle(d, c.plotStyleDictionary);
    if (d.version() >= Version::kR2004) {
        Handle(d, c.materialDictionary);
        Handle(d, c.colorDictionary);
    }
}

// Lineweight, end caps, joins, lineweight display, in-place editing, long names and plot
// style mode packed in one long.
void WriteSettings(BitWriter& d, const HeaderVariables& h) {
    std::uint32_t flags = 0x1Fu & LineweightIndex(h.celweight);
    flags |= 0x400;  // XEDIT
    if (h.extnames) flags |= 0x800;
    flags |= 0x1000;  // PSTYLEMODE: colour-dependent plot styles
    d.BL(static_cast<std::int32_t>(flags));
    d.BS(h.insunits);
    d.BS(h.cepsntype);
    if (h.cepsntype == 3) Handle(d, h.cpsnid);
    d.TV(h.fingerprintguid);
    d.TV(h.versionguid);
    if (d.version() < Version::kR2004) return;
    for (int c : {127, 1, 1, 1, 1, 0}) d.RC(c);  // SORTENTS to HALOGAP
    d.BS(257);  // OBSCUREDCOLOR
    d.BS(257);  // INTERSECTIONCOLOR
    d.RC(0);    // OBSCUREDLTYPE
    d.RC(0);    // INTERSECTIONDISPLAY
    d.TV(h.projectname);
}

}  // namespace

void WriteDimensionVariables(BitWriter& d, BitWriter& h, const DimensionVariables& m) {
    d.TV(m.post);
    d.TV(m.apost);
    for (double x : {m.scale, m.asz, m.exo, m.dli, m.exe, m.rnd, m.dle, m.tp, m.tm}) d.BD(x);
    for (bool b : {m.tol, m.lim, m.tih, m.toh, m.se1, m.se2}) d.B(b);
    d.BS(m.tad);
    d.BS(m.zin);
    d.BS(m.azin);
    for (double x : {m.txt, m.cen, m.tsz, m.altf, m.lfac, m.tvp, m.tfac, m.gap}) d.BD(x);
    d.BD(m.altrnd);
    d.B(m.alt);
    d.BS(m.altd);
    for (bool b : {m.tofl, m.sah, m.tix, m.soxd}) d.B(b);
    d.CMC(m.clrd);
    d.CMC(m.clre);
    d.CMC(m.clrt);
    for (std::int16_t s : {m.adec, m.dec, m.tdec, m.altu, m.alttd, m.aunit, m.frac, m.lunit,
                           m.dsep, m.tmove, m.just}) {
        d.BS(s);
    }
    d.B(m.sd1);
    d.B(m.sd2);
    for (std::int16_t s : {m.tolj, m.tzin, m.altz, m.alttz}) d.BS(s);
    d.B(m.upt);
    d.BS(m.atfit);
    for (std::uint64_t handle : {m.txsty, m.ldrblk, m.blkHandle, m.blk1Handle, m.blk2Handle}) {
        Handle(h, handle);
    }
    d.BS(m.lwd);
    d.BS(m.lwe);
}

std::vector<std::uint8_t> FrameSection(const std::uint8_t (&start)[16],
                                       const std::uint8_t (&end)[16],
                                       const std::vector<std::uint8_t>& data) {
    std::vector<std::uint8_t> out(start, start + 16);
    const auto size = static_cast<std::uint32_t>(data.size());
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<std::uint8_t>(size >> (8 * i)));
    out.insert(out.end(), data.begin(), data.end());
    const std::uint16_t crc =
        Crc16(0xC0C1, std::span<const std::uint8_t>(out.data() + 16, out.size() - 16));
    out.push_back(static_cast<std::uint8_t>(crc & 0xFF));
    out.push_back(static_cast<std::uint8_t>(crc >> 8));
    out.insert(out.end(), end, end + 16);
    return out;
}

std::vector<std::uint8_t> EncodeHeaderSection(const HeaderVariables& h, Version version,
                                              int codePage) {
    BitWriter d(version, codePage);
    WriteModes(d, h);
    WriteCurrent(d, h);
    WriteSpace(d, h.paper);
    WriteSpace(d, h.model);
    WriteDimensionVariables(d, d, h.dim);
    WriteControls(d, h);
    WriteSettings(d, h);
    const HeaderHandles& c = h.handles;
    for (std::uint64_t handle : {c.paperSpace, c.modelSpace, c.byLayer, c.byBlock, c.continuous}) {
        Handle(d, handle);
    }
    d.alignToByte();
    return FrameSection(kStartSentinel, kEndSentinel, d.take());
}

}  // namespace dwg
