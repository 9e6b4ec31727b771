#pragma once
// The DXF text of a database, as the DWG writer reads it: the tags of each record, grouped by
// section (header variables, tables, blocks, entities, objects). The DXF writer gives every
// object its handle and adds what a drawing needs, so the DWG writer starts from its records.
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/dwg/bit_reader.hpp"
#include "platform/dxf/drawing_tag.hpp"

namespace dwg {

// A group code and its value's text, or for a real of an entity's record the number.
using SourceTag = dxf::DrawingTag;

// A tag's real: its number, or its text parsed (false when the text is not a number; the value
// may then be changed all the same, as dxf::ParseDouble does).
bool TagReal(const SourceTag& tag, double& value);

// One record: its type (the 0 tag) and the tags after it, a range of the drawing's tags.
struct SourceRecord {
    std::string_view type;
    std::span<const SourceTag> tags;

    // The first tag of a code; empty when there is none.
    bool has(int code) const;
    std::string_view text(int code) const;
    double real(int code, double fallback = 0) const;
    // An angle: the degrees of the record in radians (fallback in radians).
    double angle(int code, double fallback = 0) const;
    long long integer(int code, long long fallback = 0) const;
    std::uint64_t handle(int code) const;
    // A point from code, code+10 and code+20 (z 0 when absent).
    Point3 point(int code, Point3 fallback = {}) const;
    Point2 point2(int code) const;
    // The handles in an application group ("{ACAD_REACTORS") by their code.
    std::vector<std::uint64_t> group(std::string_view name, int code) const;
    // The owner: the 330 tag of the head (before the first subclass), outside the application
    // groups.
    std::uint64_t owner() const;
    // The tags of one subclass, from its marker to the next (a record of one subclass only,
    // for codes that several subclasses use); none when the record lacks the marker.
    SourceRecord subclass(std::string_view marker) const;
};

struct SourceTable {
    std::string_view name;
    std::uint64_t handle = 0;
    std::vector<SourceRecord> records;
    SourceRecord head;  // the TABLE record: the control object's own groups
};

// A block: its BLOCK record, its entities, its ENDBLK.
struct SourceBlock {
    SourceRecord begin, end;
    std::vector<SourceRecord> entities;
};

struct SourceDrawing {
    std::vector<std::pair<std::string_view, SourceRecord>> header;  // "$ACADVER", its tags
    std::vector<SourceRecord> classes;
    std::vector<SourceTable> tables;
    std::vector<SourceBlock> blocks;
    std::vector<SourceRecord> entities;
    std::vector<SourceRecord> objects;

    const SourceRecord* variable(std::string_view name) const;
};

// Groups the tags of a drawing's DXF records (whose values must outlive the result). False with
// the reason when they are not the records of a drawing.
bool ReadSource(std::span<const SourceTag> tags, SourceDrawing& out, std::string& error);
// The same from the tags in parts, in their order, each part whole records.
bool ReadSource(std::span<const std::span<const SourceTag>> parts, SourceDrawing& out,
                std::string& error);

// A handle's hexadecimal text; 0 for none.
std::uint64_t ParseHandle(std::string_view text);

}  // namespace dwg
