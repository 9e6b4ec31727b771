#pragma once
// A whole drawing from its sections: the header variables, the classes, the object map and the
// object data decoded, and written out as the sections of an ASCII DXF file in the order the
// DXF reader builds a database from (header, tables, blocks, entities, objects).
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/dwg/bit_reader.hpp"
#include "platform/dwg/object_map.hpp"
#include "platform/dxf/record_feed.hpp"

namespace dwg {

struct DwgSections {
    Version version = Version::kR2000;
    int maintenance = 0;  // the file header's maintenance release
    int codePage = 1252;  // the Windows code page of the drawing's texts (before 2007)
    std::span<const std::uint8_t> header, classes, objectMap;
    std::span<const std::uint8_t> objects;  // the data the map's offsets count in
};

// An object of a kind the database does not model: its DXF record is its head only, and its
// bytes (after its size, before its CRC) are what a DWG writer puts back.
struct KeptData {
    std::uint64_t handle = 0;
    std::string typeName;
    std::vector<std::uint8_t> bytes;
    std::uint64_t listedBy = 0;  // a block record listing it as a reference, a layout as a viewport
};

// A table's control object that lists null entries (records erased before the file was
// saved): the places of those entries in its list of records.
struct ErasedEntries {
    std::uint64_t control = 0;
    std::vector<int> places;
};

// A dimension style's colours that are true colours (DIMCLRD, DIMCLRE, DIMCLRT by group code),
// of which its record gives the indexes alone.
struct DimensionStyleColors {
    std::uint64_t style = 0;
    std::vector<std::pair<int, Color>> colors;
};

// False with the offset (in the section named by the reason) and the reason when a section
// does not decode. The objects whose records are their head only are appended to `kept`
// (symbol table records and control objects are written whole and are not among them). All
// on this thread: the plain way that the records handed to a feed are tested against.
bool DwgToDxfText(const DwgSections& sections, std::string& dxf, std::vector<KeptData>& kept,
                  MapError& error);
// The same records handed to the feed one at a time, as they are made; the tables' erased
// entries and the dimension styles' true colours, which no record holds, go to `erased` and
// `colors`. A large drawing's objects are decoded, and its entities written, partly on a helper
// thread. Plain entities (see dxf::PlainEntity) go by their values, unless plainEntities is
// false: the path they are tested against. With givesBackObjects, the memory of sections.objects
// (a buffer the caller gives up to this, whole pages of which read as zeros afterwards) is given
// back to the system as the entities are decoded for the last time.
bool DwgToRecords(const DwgSections& sections, dxf::RecordFeed& feed, std::vector<KeptData>& kept,
                  std::vector<ErasedEntries>& erased, std::vector<DimensionStyleColors>& colors,
                  MapError& error, bool plainEntities = true, bool givesBackObjects = false);

}  // namespace dwg
