#pragma once
// The decoded objects of a DWG written as the records of an ASCII DXF file, so that the DXF
// reader builds the database from them: a drawing read from DWG then holds exactly what the
// same drawing read from DXF holds (units the DXF way: degrees, names instead of handles).
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "platform/dwg/decode.hpp"

namespace dwg {

// ASCII DXF text being written: one group code and value a pair of lines.
class DxfText {
public:
    void tag(int code, std::string_view value);
    void tag(int code, double value);
    void integer(int code, long long value);
    void handle(int code, std::uint64_t value);
    void point(int code, const Point3& p);
    void point(int code, const Point2& p);
    void angle(int code, double radians);  // DXF gives angles in degrees
    const std::string& text() const { return out_; }
    std::string take() { return std::move(out_); }  // the text, without a copy

private:
    std::string out_;
};

// What the records need to turn handles into the names DXF uses.
struct NameIndex {
    std::unordered_map<std::uint64_t, std::string> layers, linetypes, styles, blocks;
    std::unordered_map<std::uint64_t, std::string> dimensionStyles;
    std::uint64_t modelSpace = 0, paperSpace = 0;
    std::string name(const std::unordered_map<std::uint64_t, std::string>& table,
                     std::uint64_t handle) const;
};

// The head every record starts with: type, handle, reactors, extension dictionary, owner.
void WriteHead(DxfText& out, const std::string& type, const ObjectCommon& c, std::uint64_t owner,
               int handleCode = 5);

// The entity's record: its type name, head, common properties and values. owner is the block
// record (or the entity) that holds it. Kept kinds give their head and common part only.
void WriteEntity(DxfText& out, const DecodedObject& decoded, const std::string& typeName,
                 std::uint64_t owner, const NameIndex& names);

// A non-graphical object of the OBJECTS section.
void WriteObject(DxfText& out, const DecodedObject& decoded, const std::string& typeName,
                 std::uint64_t handle);

}  // namespace dwg
