#pragma once
// The header variables section: the drawing's settings ($INSBASE, $EXTMIN, the dimension
// variables...) and the handles of the control objects, dictionaries and special records that
// tie the object data together. Its layout changes with every version of the format.
#include <cstdint>
#include <span>
#include <string>

#include "platform/dwg/bit_reader.hpp"
#include "platform/dwg/object_map.hpp"

namespace dwg {

// The dimension variables as the header stores them ($DIMSCALE ...); the same set makes a
// dimension style record.
struct DimensionVariables {
    std::string post, apost;  // DIMPOST, DIMAPOST
    bool tol = false, lim = false, tih = false, toh = false, se1 = false, se2 = false;
    bool alt = false, tofl = false, sah = false, tix = false, soxd = false;
    bool sd1 = false, sd2 = false, upt = false, fxlon = false, txtdirection = false;
    std::int16_t altd = 0, zin = 0, tolj = 0, just = 0, fit = 0, tzin = 0, altz = 0, alttz = 0;
    std::int16_t tad = 0, unit = 0, aunit = 0, dec = 0, tdec = 0, altu = 0, alttd = 0;
    std::int16_t azin = 0, adec = 0, frac = 0, lunit = 0, dsep = 0, tmove = 0, atfit = 0;
    std::int16_t tfill = 0, arcsym = 0, lwd = 0, lwe = 0;
    double scale = 1, asz = 0, exo = 0, dli = 0, exe = 0, rnd = 0, dle = 0, tp = 0, tm = 0;
    double fxl = 0, jogang = 0, txt = 0, cen = 0, tsz = 0, altf = 0, lfac = 1, tvp = 0;
    double tfac = 1, gap = 0, altrnd = 0, altmzf = 0, mzf = 0;
    std::string altmzs, mzs;
    std::string blk, blk1, blk2;  // R13/R14: the arrow blocks by name
    Color tfillclr, clrd, clre, clrt;
    std::uint64_t txsty = 0, ldrblk = 0, blkHandle = 0, blk1Handle = 0, blk2Handle = 0;
    std::uint64_t ltype = 0, ltex1 = 0, ltex2 = 0;
};

// The coordinate settings kept once for the paper space and once for the model space.
struct SpaceVariables {
    Point3 insbase, extmin, extmax;
    Point2 limmin, limmax;
    double elevation = 0;
    Point3 ucsorg, ucsxdir, ucsydir;
    std::uint64_t ucsname = 0, ucsorthoref = 0, ucsbase = 0;
    std::int16_t ucsorthoview = 0;
    Point3 ucsorgTop, ucsorgBottom, ucsorgLeft, ucsorgRight, ucsorgFront, ucsorgBack;
};

// The handles of the objects every drawing has.
struct HeaderHandles {
    std::uint64_t blockControl = 0, layerControl = 0, styleControl = 0, linetypeControl = 0;
    std::uint64_t viewControl = 0, ucsControl = 0, vportControl = 0, appidControl = 0;
    std::uint64_t dimstyleControl = 0, vxControl = 0;
    std::uint64_t groupDictionary = 0, mlinestyleDictionary = 0, namedObjects = 0;
    std::uint64_t layoutDictionary = 0, plotSettingsDictionary = 0, plotStyleDictionary = 0;
    std::uint64_t materialDictionary = 0, colorDictionary = 0, visualStyleDictionary = 0;
    std::uint64_t paperSpace = 0, modelSpace = 0;
    std::uint64_t byLayer = 0, byBlock = 0, continuous = 0;
};

struct HeaderVariables {
    // The current settings for new objects.
    std::uint64_t handseed = 0;
    std::uint64_t clayer = 0, textstyle = 0, celtype = 0, cmaterial = 0, dimstyle = 0;
    std::uint64_t cmlstyle = 0, cpsnid = 0;
    Color cecolor;
    double ltscale = 1, textsize = 0, celtscale = 1, psvpscale = 0;
    int celweight = -1;  // hundredths of a millimetre or -1/-2/-3
    std::int16_t insunits = 0, cepsntype = 0, lunits = 2, luprec = 4, aunits = 0, auprec = 0;
    std::int16_t attmode = 1, pdmode = 0;
    double pdsize = 0, angbase = 0, filletrad = 0, thickness = 0, tracewid = 1;
    bool angdir = false, tilemode = true, extnames = true;
    double tdcreate = 0, tdupdate = 0, tdindwg = 0, tdusrtimer = 0;  // days (Julian for dates)
    std::string menu, hyperlinkbase, stylesheet, fingerprintguid, versionguid, projectname;
    SpaceVariables paper, model;
    DimensionVariables dim;
    HeaderHandles handles;
};

// The dimension variables as the header and the dimension style records store them: values,
// strings and handles from their streams (one and the same before 2007).
// The colour index (1 to 255) whose palette colour is nearest the true colour 0xRRGGBB, by the
// distance of their red, green and blue; the lowest of those as near.
std::int16_t NearestColorIndex(std::uint32_t rgb);

void ReadDimensionVariables(BitReader& values, BitReader& strings, BitReader& handles,
                            DimensionVariables& out);

// Reads the section as stored: start sentinel, size, the variables, CRC, end sentinel.
// maintenance is the file header's maintenance release (2010 on it decides a size field).
// False with the offset in the section and the reason when it does not hold its variables.
bool ParseHeader(std::span<const std::uint8_t> section, Version version, int maintenance,
                 int codePage, HeaderVariables& out, MapError& error);

}  // namespace dwg
