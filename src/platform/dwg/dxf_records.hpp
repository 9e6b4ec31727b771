#pragma once
// The decoded objects of a DWG written as the records of an ASCII DXF file, so that the DXF
// reader builds the database from them: a drawing read from DWG then holds exactly what the
// same drawing read from DXF holds (units the DXF way: degrees, names instead of handles).
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/dwg/decode.hpp"
#include "platform/dxf/plain_entity.hpp"
#include "platform/dxf/record_feed.hpp"

namespace dwg {

// DXF records being written: as the text of an ASCII DXF file, one group code and value a pair
// of lines, or, given a feed, handed to the feed a record at a time without being made text.
class DxfText {
public:
    DxfText() = default;
    explicit DxfText(dxf::RecordFeed* feed) : feed_(feed) {}
    // Records kept as they are written, to be handed on later by handTo (by another thread
    // than the one that wrote them).
    static DxfText Kept() {
        DxfText kept;
        kept.keep_ = true;
        return kept;
    }
    // Writes the records kept here to `to`, as if they had been written there, and clears them.
    // A plain entity kept that `to` does not take has its record written there by writeRecord.
    using RecordWriter = std::function<void(DxfText& to, std::uint32_t item)>;
    void handTo(DxfText& to, const RecordWriter& writeRecord);
    bool feeds() const { return feed_ != nullptr; }
    // Whether plain entities (see dxf::PlainEntity) go through here: to a feed, or kept for one.
    bool takesPlain() const { return feed_ != nullptr || keep_; }
    // A plain entity built from its values (see dxf::BuildPlainEntity), the drawing's item
    // given: kept in its place, or handed to the feed. False when it needs its record, which is
    // then to be written here. The values are moved here when kept (a polyline's vertices are
    // not copied).
    bool plain(dxf::PlainEntity&& entity, std::unique_ptr<AcDbEntity> built, std::uint32_t item);
    void tag(int code, std::string_view value);
    void tag(int code, double value);
    void integer(int code, long long value);
    void handle(int code, std::uint64_t value);
    void point(int code, const Point3& p);
    void point(int code, const Point2& p);
    void angle(int code, double radians);  // DXF gives angles in degrees
    // About how many objects the records will make (the feed's database grows once).
    void expectObjects(std::size_t count) {
        if (feed_ != nullptr) feed_->reserve(count);
    }
    // Hands the record being written to the feed (each 0 tag does it for the one before).
    void flush();
    const std::string& text() const { return out_; }
    std::string take() { return std::move(out_); }  // the text, without a copy

private:
    // How a value was made, and from which real, for the feed.
    struct Number {
        dxf::Made made = dxf::Made::kText;
        double real = 0.0;
    };
    // The value, and how it was made. A plain one (a number or handle made here) has no control
    // characters to write out: it goes in as it is.
    void put(int code, std::string_view text, const Number& number, bool plain);
    void value(std::string_view value);
    struct Span {
        int code;
        std::size_t begin, end;  // of the value in out_
        Number number;
    };
    // Hands one whole record, its values in `values`, to the feed.
    void feed(std::string_view values, std::span<const Span> record);
    // A plain entity kept, in the place of a span whose code is kPlain and begin its index.
    struct Plain {
        dxf::PlainEntity entity;
        std::unique_ptr<AcDbEntity> built;
        std::uint32_t item;
    };
    static constexpr int kPlain = -1;
    std::vector<Plain> plains_;
    std::string out_;  // the text, or the values of the record being written
    dxf::RecordFeed* feed_ = nullptr;
    bool keep_ = false;
    std::vector<Span> spans_;
    std::vector<dxf::Tag> tags_;
    std::string numberText_;  // a real or an angle being written
};

// What the records need to turn handles into the names DXF uses.
struct NameIndex {
    std::unordered_map<std::uint64_t, std::string> layers, linetypes, styles, blocks;
    std::unordered_map<std::uint64_t, std::string> dimensionStyles, applications;
    // The names dictionaries give their entries, by handle: a colour book's colour object is
    // named "book$colour" by the drawing's colour dictionary.
    std::unordered_map<std::uint64_t, std::string> entries;
    std::uint64_t modelSpace = 0, paperSpace = 0;
    // The name of the handle's record, empty when the table has none.
    const std::string& name(const std::unordered_map<std::uint64_t, std::string>& table,
                            std::uint64_t handle) const;
};

// The head every record starts with: type, handle, reactors, extension dictionary, owner.
void WriteHead(DxfText& out, const std::string& type, const ObjectCommon& c, std::uint64_t owner,
               int handleCode = 5);

// The entity's record: its type name, head, common properties and values. owner is the block
// record (or the entity) that holds it. Kept kinds give their head and common part only.
void WriteEntity(DxfText& out, const DecodedObject& decoded, const std::string& typeName,
                 std::uint64_t owner, const NameIndex& names);

// A non-graphical object of the OBJECTS section; the names are those of the linetypes it uses.
void WriteObject(DxfText& out, const DecodedObject& decoded, const std::string& typeName,
                 std::uint64_t handle, const NameIndex& names);

}  // namespace dwg
