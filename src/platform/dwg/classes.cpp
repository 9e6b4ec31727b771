#include "platform/dwg/classes.hpp"

#include <array>
#include <cstring>

#include "platform/dwg/framed_section.hpp"
#include "platform/dwg/object_stream.hpp"

namespace dwg {
namespace {

constexpr std::uint8_t kStartSentinel[16] = {0x8D, 0xA1, 0xC4, 0xB8, 0xC4, 0xA9, 0xF8, 0xC5,
                                             0xC0, 0xDC, 0xF4, 0x5F, 0xE7, 0xCF, 0xB6, 0x8A};

void ReadClass(BitReader& d, BitReader& text, Version version, ClassRecord& c) {
    c.number = d.BS();
    c.proxyFlags = d.BS();
    c.application = text.T();
    c.cppName = text.T();
    c.dxfName = text.T();
    c.wasZombie = d.B();
    c.isEntity = static_cast<std::uint16_t>(d.BS()) == 0x1F2;
    if (version >= Version::kR2004) {
        c.instanceCount = d.BL();
        d.BL();  // the version of the drawing that made the class
        d.BL();  // and its maintenance release
        d.BL();
        d.BL();
    }
}

}  // namespace

bool ParseClasses(std::span<const std::uint8_t> section, Version version, int maintenance,
                  int codePage, std::vector<ClassRecord>& out, MapError& error) {
    FramedData framed;
    if (!ReadFramedSection(section, kStartSentinel, version, maintenance, "classes section",
                           framed, error)) {
        return false;
    }
    BitReader d(framed.data, version, codePage);
    BitReader text = d;
    std::size_t end = framed.data.size() * 8;
    if (version >= Version::kR2007) {
        // The data's size in bits leads; the strings sit in their own stream at its end.
        const std::size_t bits = d.RL();
        std::size_t stringsStart = 0;
        if (!FindStringStream(d, bits, text, stringsStart)) {
            error = {framed.start, "classes string stream does not fit"};
            return false;
        }
        end = stringsStart;
        d.setBitEnd(end);
    }
    if (version >= Version::kR2004) {
        d.BS();  // the highest class number
        d.RC();
        d.RC();
        d.B();
    }
    while (d.bitPosition() + 8 < end && !d.failed()) {
        ClassRecord c;
        ReadClass(d, version >= Version::kR2007 ? text : d, version, c);
        if (d.failed() || text.failed()) break;
        out.push_back(std::move(c));
    }
    if (d.failed()) {
        error = {framed.start + d.bytePosition(), "class record runs past the classes data"};
        return false;
    }
    return true;
}

namespace {

struct FixedName {
    std::int32_t type;
    const char* name;
};

// The names of the fixed types (below 500), the drawing's classes naming the others.
constexpr FixedName kFixedNames[] = {
    {1, "TEXT"}, {2, "ATTRIB"}, {3, "ATTDEF"}, {4, "BLOCK"}, {5, "ENDBLK"}, {6, "SEQEND"},
    {7, "INSERT"}, {8, "INSERT"}, {10, "VERTEX"}, {11, "VERTEX"}, {12, "VERTEX"},
    {13, "VERTEX"}, {14, "VERTEX"}, {15, "POLYLINE"}, {16, "POLYLINE"}, {17, "ARC"},
    {18, "CIRCLE"}, {19, "LINE"}, {20, "DIMENSION"}, {21, "DIMENSION"}, {22, "DIMENSION"},
    {23, "DIMENSION"}, {24, "DIMENSION"}, {25, "DIMENSION"}, {26, "DIMENSION"},
    {27, "POINT"}, {28, "3DFACE"}, {29, "POLYLINE"}, {30, "POLYLINE"}, {31, "SOLID"},
    {32, "TRACE"}, {33, "SHAPE"}, {34, "VIEWPORT"}, {35, "ELLIPSE"}, {36, "SPLINE"},
    {37, "REGION"}, {38, "3DSOLID"}, {39, "BODY"}, {40, "RAY"}, {41, "XLINE"},
    {42, "DICTIONARY"}, {43, "OLEFRAME"}, {44, "MTEXT"}, {45, "LEADER"}, {46, "TOLERANCE"},
    {47, "MLINE"}, {48, "BLOCK_CONTROL"}, {49, "BLOCK_RECORD"}, {50, "LAYER_CONTROL"},
    {51, "LAYER"}, {52, "STYLE_CONTROL"}, {53, "STYLE"}, {56, "LTYPE_CONTROL"},
    {57, "LTYPE"}, {60, "VIEW_CONTROL"}, {61, "VIEW"}, {62, "UCS_CONTROL"}, {63, "UCS"},
    {64, "VPORT_CONTROL"}, {65, "VPORT"}, {66, "APPID_CONTROL"}, {67, "APPID"},
    {68, "DIMSTYLE_CONTROL"}, {69, "DIMSTYLE"}, {70, "VX_CONTROL"}, {71, "VX_TABLE_RECORD"},
    {72, "GROUP"}, {73, "MLINESTYLE"}, {74, "OLE2FRAME"}, {76, "LONG_TRANSACTION"},
    {77, "LWPOLYLINE"}, {78, "HATCH"}, {79, "XRECORD"}, {80, "ACDBPLACEHOLDER"},
    {81, "VBA_PROJECT"}, {82, "LAYOUT"}, {498, "ACAD_PROXY_ENTITY"},
    {499, "ACAD_PROXY_OBJECT"}};
constexpr std::int32_t kLastFixed = 499;

// The fixed names by type number (null for none): a look-up an object, for every object read.
const std::array<const char*, kLastFixed + 1>& FixedNamesByType() {
    static const std::array<const char*, kLastFixed + 1> names = [] {
        std::array<const char*, kLastFixed + 1> out{};
        for (const FixedName& f : kFixedNames) out[static_cast<std::size_t>(f.type)] = f.name;
        return out;
    }();
    return names;
}

}  // namespace

std::string TypeName(std::int32_t type, const std::vector<ClassRecord>& classes) {
    if (type >= 0 && type <= kLastFixed) {
        if (const char* name = FixedNamesByType()[static_cast<std::size_t>(type)]) return name;
    }
    for (const auto& c : classes) {
        if (c.number == type) return c.dxfName;
    }
    return {};
}

}  // namespace dwg
