#pragma once
// What the DWG writer keeps while it turns the DXF records of a drawing into objects: the
// handles behind the names that records use, the encoded objects by handle, and what it had
// to leave out.
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/db/database.hpp"
#include "platform/dwg/classes.hpp"
#include "platform/dwg/dxf_source.hpp"
#include "platform/dwg/encode_object.hpp"
#include "platform/dwg/encoded_objects.hpp"
#include "platform/dwg/hatch.hpp"
#include "platform/dwg/header.hpp"
#include "platform/dwg/write.hpp"

namespace dwg {

// Symbol names compare without regard to case, as the format's readers compare them, and as
// the characters they spell (a name the file spelled with escapes is the same name).
std::string NameKey(std::string_view name);

struct WriteContext {
    EncodeOptions options;
    std::unordered_map<std::string, std::uint64_t> layers, linetypes, styles, blocks;
    std::unordered_map<std::string, std::uint64_t> dimensionStyles, applications;
    // The colour objects of colour books by the names the dictionaries give them ("book$colour").
    std::unordered_map<std::string, std::uint64_t> bookColors;
    std::uint64_t modelSpace = 0, paperSpace = 0;
    std::uint64_t nextHandle = 1;  // for records that come without one
    EncodedObjects objects;
    std::unordered_map<std::uint64_t, std::vector<std::uint64_t>> owned;  // block record: entities
    std::map<std::string, int> leftOut;  // record type: how many
    std::map<std::string, std::int32_t, std::less<>> classNumbers;  // DXF name: object type
    int dwgCodePage = 30;  // the file header's number of the texts' code page
    std::size_t threads = 1;  // that encode a long list of entities, a batch each
    // Set in the copy that encodes one batch of a long list: its objects are kept in their
    // order in batchObjects, to be placed after those of the batches before it.
    bool batch = false;
    std::vector<std::pair<std::uint64_t, std::vector<std::uint8_t>>> batchObjects;
    // The objects of kinds the database does not model that it keeps whole from a DWG read and
    // still holds, by handle: their records are left out of the DXF the writer reads.
    std::vector<std::pair<std::uint64_t, const AcDbDatabase::DwgKeptObject*>> kept;
    // Those of them the written file holds that another object lists (AcDbDatabase::
    // DwgKeptObject::listedBy), by that object, in the order of their handles.
    std::unordered_map<std::uint64_t, std::vector<std::uint64_t>> keptListed;
    // Those of them that are entities, by the block that lists them: handle and bytes.
    std::unordered_map<std::uint64_t, std::vector<std::pair<std::uint64_t, std::vector<std::uint8_t>>>> keptEntities;
    // The places of the null entries of each table's control object, by its handle: records
    // erased before the file the database was read from was saved.
    std::unordered_map<std::uint64_t, std::vector<int>> erasedEntries;
    // The dimension styles' colours that are true colours, by the style's handle, with their
    // variables' group codes (176-178): their records give the indexes alone.
    std::unordered_map<std::uint64_t, std::vector<std::pair<int, Color>>> dimensionStyleColors;
    // The layer name the last entity gave and its layer: entities in a row mostly share one.
    std::string_view lastLayerName;
    std::uint64_t lastLayer = 0;

    std::uint64_t handleOf(const SourceRecord& r, int code = 5);
    static std::uint64_t find(const std::unordered_map<std::string, std::uint64_t>& table,
                              std::string_view name);
    void add(std::uint64_t handle, std::vector<std::uint8_t> bytes) {
        if (batch) {
            batchObjects.emplace_back(handle, std::move(bytes));
            return;
        }
        objects.add(handle, std::move(bytes));
    }
    bool written(std::uint64_t handle) const { return objects.contains(handle); }
    // The object type the drawing's classes give a DXF name; 0 when it has no class.
    std::int32_t classNumber(std::string_view dxfName) const {
        const auto it = classNumbers.find(dxfName);
        return it == classNumbers.end() ? 0 : it->second;
    }
};

// The common data of an object record: handle, owner, reactors, extension dictionary.
ObjectCommon ObjectCommonOf(const SourceRecord& r, WriteContext& c, int handleCode = 5);

// Encodes the entities of one owner (a block record, or the entity that owns attributes and
// vertices) in their order; attributes and vertices follow their owner up to its SEQEND.
// Returns the handles of the entities written directly under the owner.
std::vector<std::uint64_t> WriteEntities(const std::vector<SourceRecord>& records,
                                         std::uint64_t owner, WriteContext& c);

// Dimensions, splines, hatches, 3D faces, rays and xlines; false for other kinds.
bool WriteAnnotation(const SourceRecord& r, EntityCommon common, WriteContext& c);
// A hatch from its record: paths, pattern, seeds and gradient in the record's order. What the
// record holds and the hatch cannot (a gradient colour's index) is counted in leftOut.
HatchRecord HatchOf(const SourceRecord& r, EntityCommon common, std::map<std::string, int>& leftOut);

// The extended data of a record: its groups from the first 1001 on.
std::vector<ExtendedData> ExtendedDataOf(const SourceRecord& r, const WriteContext& c);

// An entity's common data from its record.
EntityCommon EntityCommonOf(const SourceRecord& r, std::uint64_t owner, WriteContext& c);

// The common data of an entity the database holds as a part of its owner (BLOCK, ENDBLK,
// SEQEND): its record carries its owner's reactors, extension dictionary and extended data,
// which are not the part's. BLOCK and ENDBLK are stored by space as entities are.
EntityCommon PartCommonOf(const SourceRecord& r, std::uint64_t owner, WriteContext& c);
// The same for a VERTEX, whose record gives the vertex's own reactors.
EntityCommon VertexCommonOf(const SourceRecord& r, std::uint64_t owner, WriteContext& c);

// The dimension variables of a new drawing, for those a record or the header does not give.
DimensionVariables NewDrawingDimensionVariables();

// A database turned into the objects, header variables and classes of an AC1018 file.
struct EncodedDrawing {
    WriteContext context;
    HeaderVariables header;
    std::vector<ClassRecord> classes;
    std::int16_t measurement = 0;  // $MEASUREMENT, for the template section
};

// Encodes every object the database's DXF records give, in the code page given (936, else
// 1252), with the objects of the file it was read from as they were not put back yet.
Acad::ErrorStatus EncodeDrawing(AcDbDatabase& db, int codePage, EncodedDrawing& out);
// The same from the records already grouped (the records give up their tag lists), on as many
// threads as out.context says.
void EncodeSource(SourceDrawing& source, int codePage, EncodedDrawing& out);
// What the database keeps from a DWG read beside its records, for EncodeSource to write back:
// the objects kept whole that it still holds, the places of the tables' erased entries, the
// dimension styles' true colours.
void NoteKeptObjects(AcDbDatabase& db, EncodedDrawing& out);
// The file's bytes: the encoded objects (those unchanged since the read put back as the file
// stored them), the object map, classes and header in their pages. What the file does not hold
// of the database goes to report.
std::vector<std::uint8_t> AssembleDwg(const AcDbDatabase& db, EncodedDrawing& encoded, DwgWriteReport& report);

inline constexpr double kRadians = 0.017453292519943295;

}  // namespace dwg
