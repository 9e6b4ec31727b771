#include "platform/dwg/header.hpp"

#include "platform/dwg/common.hpp"
#include "platform/dwg/framed_section.hpp"
#include "platform/dwg/object_stream.hpp"
#include "platform/ed/utilities.hpp"

namespace dwg {
namespace {

constexpr std::uint8_t kStartSentinel[16] = {0xCF, 0x7B, 0x1F, 0x23, 0xFD, 0xDE, 0x38, 0xA9,
                                             0x5F, 0x7C, 0x68, 0xB8, 0x4E, 0x6D, 0x33, 0x5F};

// The three streams of the section. Before 2007 they are one: strings and handles sit among
// the values; from 2007 the strings and then the handles have streams of their own.
struct Streams {
    BitReader& d;
    BitReader& s;
    BitReader& h;
    Version v;

    std::uint64_t handle() { return h.H().value; }
    double date() {
        const double day = d.BL();
        return day + d.BL() / 86400000.0;
    }
    void skipBits(int count) {
        for (int i = 0; i < count; ++i) d.B();
    }
    void skipShorts(int count) {
        for (int i = 0; i < count; ++i) d.BS();
    }
    void skipDoubles(int count) {
        for (int i = 0; i < count; ++i) d.BD();
    }
};

// From the unknown leading values to the drawing modes and units.
void ReadModes(Streams& r, HeaderVariables& out) {
    const bool r14 = r.v <= Version::kR14;
    if (r.v >= Version::kR2013) r.d.BLL();  // the versions the drawing needs
    r.skipDoubles(4);
    for (int i = 0; i < 4; ++i) r.s.T();
    r.d.BL();
    r.d.BL();
    if (r14) r.d.BS();
    if (r.v < Version::kR2004) r.handle();  // the current viewport entity header
    r.skipBits(r14 ? 3 : 2);                // DIMASO, DIMSHO (and DIMSAV)
    r.skipBits(7);                          // PLINEGEN to LIMCHECK
    if (r14) r.d.B();                       // BLIPMODE
    if (r.v >= Version::kR2004) r.d.B();
    r.d.B();  // USRTIMER
    r.d.B();  // SKPOLY
    out.angdir = r.d.B();
    r.d.B();                  // SPLFRAME
    if (r14) r.skipBits(2);   // ATTREQ, ATTDIA
    r.skipBits(2);            // MIRRTEXT, WORLDVIEW
    if (r14) r.d.B();         // WIREFRAME
    out.tilemode = r.d.B();
    r.skipBits(2);            // PLIMCHECK, VISRETAIN
    if (r14) r.d.B();         // DELOBJ
    r.skipBits(2);            // DISPSILH, PELLIPSE
    r.d.BS();                 // PROXYGRAPHICS
    if (r14) r.d.BS();        // DRAGMODE
    r.d.BS();                 // TREEDEPTH
    out.lunits = r.d.BS();
    out.luprec = r.d.BS();
    out.aunits = r.d.BS();
    out.auprec = r.d.BS();
    if (r14) r.d.BS();  // OSMODE
    out.attmode = r.d.BS();
    if (r14) r.d.BS();  // COORDS
    out.pdmode = r.d.BS();
    if (r14) r.d.BS();  // PICKSTYLE
    if (r.v >= Version::kR2004) {
        r.d.BL();
        r.d.BL();
        r.d.BL();
    }
    r.skipShorts(5 + 14);  // USERI1-5, SPLINESEGS to TEXTQLTY
}

// The real-valued settings, the dates and the current settings for new objects.
void ReadCurrent(Streams& r, HeaderVariables& out) {
    out.ltscale = r.d.BD();
    out.textsize = r.d.BD();
    out.tracewid = r.d.BD();
    r.d.BD();  // SKETCHINC
    out.filletrad = r.d.BD();
    out.thickness = r.d.BD();
    out.angbase = r.d.BD();
    out.pdsize = r.d.BD();
    r.d.BD();             // PLINEWID
    r.skipDoubles(5 + 4);  // USERR1-5, CHAMFERA-D
    r.d.BD();             // FACETRES
    r.d.BD();             // CMLSCALE
    out.celtscale = r.d.BD();
    if (r.v < Version::kR2007) out.menu = r.s.T();
    out.tdcreate = r.date();
    out.tdupdate = r.date();
    if (r.v >= Version::kR2004) {
        r.d.BL();
        r.d.BL();
        r.d.BL();
    }
    out.tdindwg = r.date();
    out.tdusrtimer = r.date();
    out.cecolor = r.d.CMC(r.s);
    out.handseed = r.d.H().value;  // in the values, not among the handles
    out.clayer = r.handle();
    out.textstyle = r.handle();
    out.celtype = r.handle();
    if (r.v >= Version::kR2007) out.cmaterial = r.handle();
    out.dimstyle = r.handle();
    out.cmlstyle = r.handle();
    if (r.v >= Version::kR2000) out.psvpscale = r.d.BD();
}

void ReadSpace(Streams& r, SpaceVariables& out) {
    out.insbase = r.d.BD3();
    out.extmin = r.d.BD3();
    out.extmax = r.d.BD3();
    out.limmin = r.d.RD2();
    out.limmax = r.d.RD2();
    out.elevation = r.d.BD();
    out.ucsorg = r.d.BD3();
    out.ucsxdir = r.d.BD3();
    out.ucsydir = r.d.BD3();
    out.ucsname = r.handle();
    if (r.v < Version::kR2000) return;
    out.ucsorthoref = r.handle();
    out.ucsorthoview = r.d.BS();
    out.ucsbase = r.handle();
    for (Point3* p : {&out.ucsorgTop, &out.ucsorgBottom, &out.ucsorgLeft, &out.ucsorgRight,
                      &out.ucsorgFront, &out.ucsorgBack}) {
        *p = r.d.BD3();
    }
}

// R13 and R14 keep the switches and counts of the dimension variables apart, as bits and
// chars, ahead of the sizes.
void ReadR14DimensionSwitches(Streams& r, DimensionVariables& m) {
    for (bool* b : {&m.tol, &m.lim, &m.tih, &m.toh, &m.se1, &m.se2, &m.alt, &m.tofl, &m.sah,
                    &m.tix, &m.soxd}) {
        *b = r.d.B();
    }
    m.altd = r.d.RC();
    m.zin = r.d.RC();
    m.sd1 = r.d.B();
    m.sd2 = r.d.B();
    m.tolj = r.d.RC();
    m.just = r.d.RC();
    m.fit = r.d.RC();
    m.upt = r.d.B();
    m.tzin = r.d.RC();
    m.altz = r.d.RC();
    m.alttz = r.d.RC();
    m.tad = r.d.RC();
    m.unit = r.d.BS();
    m.aunit = r.d.BS();
    m.dec = r.d.BS();
    m.tdec = r.d.BS();
    m.altu = r.d.BS();
    m.alttd = r.d.BS();
    m.txsty = r.handle();
}

void ReadDimensionSizes(Streams& r, DimensionVariables& m) {
    const bool r2000 = r.v >= Version::kR2000;
    for (double* x : {&m.scale, &m.asz, &m.exo, &m.dli, &m.exe, &m.rnd, &m.dle, &m.tp, &m.tm}) {
        *x = r.d.BD();
    }
    if (r.v >= Version::kR2007) {
        m.fxl = r.d.BD();
        m.jogang = r.d.BD();
        m.tfill = r.d.BS();
        m.tfillclr = r.d.CMC(r.s);
    }
    if (r2000) {
        for (bool* b : {&m.tol, &m.lim, &m.tih, &m.toh, &m.se1, &m.se2}) *b = r.d.B();
        m.tad = r.d.BS();
        m.zin = r.d.BS();
        m.azin = r.d.BS();
    }
    if (r.v >= Version::kR2007) m.arcsym = r.d.BS();
    for (double* x : {&m.txt, &m.cen, &m.tsz, &m.altf, &m.lfac, &m.tvp, &m.tfac, &m.gap}) {
        *x = r.d.BD();
    }
    if (!r2000) {
        m.post = r.s.T();
        m.apost = r.s.T();
        m.blk = r.s.T();
        m.blk1 = r.s.T();
        m.blk2 = r.s.T();
        return;
    }
    m.altrnd = r.d.BD();
    m.alt = r.d.B();
    m.altd = r.d.BS();
    for (bool* b : {&m.tofl, &m.sah, &m.tix, &m.soxd}) *b = r.d.B();
}

// 2000 on: the formats, fits and arrow blocks after the colours.
void ReadDimensionFormats(Streams& r, DimensionVariables& m) {
    for (std::int16_t* s : {&m.adec, &m.dec, &m.tdec, &m.altu, &m.alttd, &m.aunit, &m.frac,
                            &m.lunit, &m.dsep, &m.tmove, &m.just}) {
        *s = r.d.BS();
    }
    m.sd1 = r.d.B();
    m.sd2 = r.d.B();
    for (std::int16_t* s : {&m.tolj, &m.tzin, &m.altz, &m.alttz}) *s = r.d.BS();
    m.upt = r.d.B();
    m.atfit = r.d.BS();
    if (r.v >= Version::kR2007) m.fxlon = r.d.B();
    if (r.v >= Version::kR2010) {
        m.txtdirection = r.d.B();
        m.altmzf = r.d.BD();
        m.altmzs = r.s.T();
        m.mzf = r.d.BD();
        m.mzs = r.s.T();
    }
    for (std::uint64_t* h : {&m.txsty, &m.ldrblk, &m.blkHandle, &m.blk1Handle, &m.blk2Handle}) {
        *h = r.handle();
    }
    if (r.v >= Version::kR2007) {
        m.ltype = r.handle();
        m.ltex1 = r.handle();
        m.ltex2 = r.handle();
    }
    m.lwd = r.d.BS();
    m.lwe = r.d.BS();
}

}  // namespace

std::int16_t NearestColorIndex(std::uint32_t rgb) {
    // acedGetRGB gives red + green * 256 + blue * 65536: the channels in the other order.
    auto distance = [&](DWORD palette) {
        int sum = 0;
        for (int channel = 0; channel < 3; ++channel) {
            const int d = static_cast<int>((rgb >> (16 - 8 * channel)) & 0xFF) - static_cast<int>((palette >> (8 * channel)) & 0xFF);
            sum += d * d;
        }
        return sum;
    };
    std::int16_t nearest = 1;
    int least = distance(acedGetRGB(1));
    for (std::int16_t index = 2; index <= 255; ++index) {
        const int d = distance(acedGetRGB(index));
        if (d < least) {
            nearest = index;
            least = d;
        }
    }
    return nearest;
}

namespace {

void ReadDimensionVariablesOf(Streams& r, DimensionVariables& m) {
    if (r.v >= Version::kR2000) {
        m.post = r.s.T();
        m.apost = r.s.T();
    } else {
        ReadR14DimensionSwitches(r, m);
    }
    ReadDimensionSizes(r, m);
    for (Color* color : {&m.clrd, &m.clre, &m.clrt}) {
        *color = r.d.CMC(r.s);
        // A true colour's record gives the index nearest it, as AutoCAD's DXF does.
        if ((color->rgb >> 24) == 0xC2) color->index = NearestColorIndex(color->rgb & 0xFFFFFF);
    }
    if (r.v >= Version::kR2000) ReadDimensionFormats(r, m);
}

void ReadControls(Streams& r, HeaderVariables& out) {
    HeaderHandles& c = out.handles;
    for (std::uint64_t* h : {&c.blockControl, &c.layerControl, &c.styleControl,
                             &c.linetypeControl, &c.viewControl, &c.ucsControl, &c.vportControl,
                             &c.appidControl, &c.dimstyleControl}) {
        *h = r.handle();
    }
    if (r.v <= Version::kR2000) c.vxControl = r.handle();
    c.groupDictionary = r.handle();
    c.mlinestyleDictionary = r.handle();
    c.namedObjects = r.handle();
    if (r.v < Version::kR2000) return;
    r.d.BS();  // TSTACKALIGN
    r.d.BS();  // TSTACKSIZE
    out.hyperlinkbase = r.s.T();
    out.stylesheet = r.s.T();
    c.layoutDictionary = r.handle();
    c.plotSettingsDictionary = r.handle();
    c.plotStyleDictionary = r.handle();
    if (r.v >= Version::kR2004) {
        c.materialDictionary = r.handle();
        c.colorDictionary = r.handle();
    }
    if (r.v >= Version::kR2007) c.visualStyleDictionary = r.handle();
    if (r.v >= Version::kR2013) r.handle();
}

// 2000 on: lineweights, units and plot styles packed after the dictionaries.
void ReadSettings(Streams& r, HeaderVariables& out) {
    const auto flags = static_cast<std::uint32_t>(r.d.BL());
    out.celweight = LineweightFromIndex(static_cast<std::uint8_t>(flags & 0x1F));
    out.extnames = (flags & 0x800) != 0;
    out.insunits = r.d.BS();
    out.cepsntype = r.d.BS();
    if (out.cepsntype == 3) out.cpsnid = r.handle();
    out.fingerprintguid = r.s.T();
    out.versionguid = r.s.T();
    if (r.v < Version::kR2004) return;
    for (int i = 0; i < 6; ++i) r.d.RC();  // SORTENTS to HALOGAP
    r.d.BS();  // OBSCUREDCOLOR
    r.d.BS();  // INTERSECTIONCOLOR
    r.d.RC();  // OBSCUREDLTYPE
    r.d.RC();  // INTERSECTIONDISPLAY
    out.projectname = r.s.T();
}

void ReadSpecialRecords(Streams& r, HeaderVariables& out) {
    HeaderHandles& c = out.handles;
    c.paperSpace = r.handle();
    c.modelSpace = r.handle();
    c.byLayer = r.handle();
    c.byBlock = r.handle();
    c.continuous = r.handle();
}

// 2007 on: camera, lofting, geography and interference settings at the end.
void ReadTail2007(Streams& r) {
    r.d.B();  // CAMERADISPLAY
    r.d.BL();
    r.d.BL();
    r.skipDoubles(6);  // STEPSPERSEC to CAMERAHEIGHT and one more
    r.d.RC();          // SOLIDHIST
    r.d.RC();          // SHOWHIST
    r.skipDoubles(6);  // PSOLWIDTH to LOFTMAG2
    r.d.BS();          // LOFTPARAM
    r.d.RC();          // LOFTNORMALS
    r.skipDoubles(3);  // LATITUDE, LONGITUDE, NORTHDIRECTION
    r.d.BL();          // TIMEZONE
    for (int i = 0; i < 4; ++i) r.d.RC();  // LIGHTGLYPHDISPLAY to DGNFRAME
    r.d.B();
    r.d.CMC(r.s);  // INTERFERECOLOR
    r.handle();  // INTERFEREOBJVS
    r.handle();  // INTERFEREVPVS
    r.handle();  // DRAGVS
    r.d.RC();    // CSHADOW
    r.d.BD();
}

void ReadVariables(Streams& r, HeaderVariables& out) {
    ReadModes(r, out);
    ReadCurrent(r, out);
    ReadSpace(r, out.paper);
    ReadSpace(r, out.model);
    ReadDimensionVariablesOf(r, out.dim);
    ReadControls(r, out);
    if (r.v >= Version::kR2000) ReadSettings(r, out);
    ReadSpecialRecords(r, out);
    if (r.v >= Version::kR2007) ReadTail2007(r);
}

}  // namespace

void ReadDimensionVariables(BitReader& values, BitReader& strings, BitReader& handles,
                            DimensionVariables& out) {
    Streams r{values, strings, handles, values.version()};
    ReadDimensionVariablesOf(r, out);
}

bool ParseHeader(std::span<const std::uint8_t> section, Version version, int maintenance,
                 int codePage, HeaderVariables& out, MapError& error) {
    FramedData framed;
    if (!ReadFramedSection(section, kStartSentinel, version, maintenance, "header section", framed,
                           error)) {
        return false;
    }
    const std::size_t start = framed.start;
    BitReader d(framed.data, version, codePage);
    BitReader strings = d;
    BitReader handles = d;
    const bool split = version >= Version::kR2007;
    if (split) {
        // The size in bits of the values and strings leads; the handles follow them.
        const std::size_t bits = d.RL();
        std::size_t stringsStart = 0;
        if (!FindStringStream(d, bits, strings, stringsStart)) {
            error = {start, "header string stream does not fit"};
            return false;
        }
        d.setBitEnd(stringsStart);
        handles.seekBit(bits);
    }
    Streams r{d, split ? strings : d, split ? handles : d, version};
    ReadVariables(r, out);
    if (d.failed() || strings.failed() || handles.failed()) {
        error = {start + d.bytePosition(), "header variables run past the section"};
        return false;
    }
    return true;
}

}  // namespace dwg
