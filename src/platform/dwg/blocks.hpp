#pragma once
// Decoders of the block structure: block records (BLOCK_HEADER), their BLOCK and ENDBLK
// entities, block references (INSERT, MINSERT) and the SEQEND that closes a run of owned
// entities.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/dwg/tables.hpp"

namespace dwg {

struct BlockHeaderRecord {
    TableEntry entry;
    bool anonymous = false, hasAttributes = false, isXref = false, isOverlaid = false;
    bool loaded = false;
    Point3 base;
    std::string xrefPath, description;  // UTF-8
    std::string preview;
    std::int16_t units = 0;
    bool explodable = true;
    std::uint8_t scaling = 0;
    std::uint64_t blockEntity = 0, endBlock = 0, layout = 0;
    std::uint64_t firstEntity = 0, lastEntity = 0;  // before 2004
    std::vector<std::uint64_t> entities;            // 2004 on
    std::vector<std::uint64_t> inserts;
};

// BLOCK: the block's name; ENDBLK and SEQEND have only the common data.
struct BlockBeginRecord {
    EntityCommon common;
    std::string name;
};

struct InsertRecord {
    EntityCommon common;
    Point3 position;
    Point3 scale{1, 1, 1};
    double rotation = 0;
    Point3 normal{0, 0, 1};
    bool hasAttributes = false;
    std::int16_t columns = 1, rows = 1;       // MINSERT
    double columnSpacing = 0, rowSpacing = 0;  // MINSERT
    std::uint64_t block = 0, seqend = 0;
    std::uint64_t firstAttribute = 0, lastAttribute = 0;  // before 2004
    std::vector<std::uint64_t> attributes;                 // 2004 on
};

bool ReadBlockHeader(ObjectStreams& o, BlockHeaderRecord& out);
bool ReadBlockBegin(ObjectStreams& o, BlockBeginRecord& out);
bool ReadCommonOnly(ObjectStreams& o, EntityCommon& out);  // ENDBLK, SEQEND
bool ReadInsert(ObjectStreams& o, InsertRecord& out, bool multiple);

// Owned entities (attributes, vertices): a first and last handle before 2004, a counted list
// of handles from then on, then the SEQEND.
struct OwnedList {
    std::uint64_t first = 0, last = 0;
    std::vector<std::uint64_t> handles;
    std::uint64_t seqend = 0;
};
void ReadOwnedHandles(ObjectStreams& o, std::int32_t count, OwnedList& out);

}  // namespace dwg
