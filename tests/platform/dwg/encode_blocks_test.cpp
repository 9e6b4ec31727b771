#include "platform/dwg/encode_blocks.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "platform/dwg/entities.hpp"
#include "platform/dwg/object_stream.hpp"

using namespace dwg;

namespace {

// The streams refer to the bytes: the caller keeps them.
ObjectStreams Open(const std::vector<std::uint8_t>& bytes, const EncodeOptions& options) {
    ObjectStreams o;
    MapError error;
    EXPECT_TRUE(OpenObject(bytes, 0, options.version, options.codePage, o, error)) << error.reason;
    return o;
}

EntityCommon Common(std::uint64_t handle) {
    EntityCommon c;
    c.handle = handle;
    c.owner = 0x1F;
    c.layer = 0x10;
    c.color.index = 256;
    return c;
}

BlockHeaderRecord SampleBlock() {
    BlockHeaderRecord b;
    b.entry.common.handle = 0x1F;
    b.entry.common.owner = 0x01;
    b.entry.name = "*Model_Space";
    b.hasAttributes = true;
    b.base = {1, 2, 0};
    b.description = "板";
    b.preview = std::string("\x01\x02", 2);
    b.blockEntity = 0x20;
    b.endBlock = 0x21;
    b.firstEntity = 0x30;
    b.lastEntity = 0x33;
    b.entities = {0x30, 0x31, 0x33};
    b.inserts = {0x90, 0x91};
    b.layout = 0x22;
    return b;
}

class DwgEncodeBlocks : public testing::TestWithParam<Version> {};

TEST_P(DwgEncodeBlocks, block_header_round_trips_its_owned_entities_and_references) {
    const EncodeOptions options{GetParam(), 936};
    const BlockHeaderRecord b = SampleBlock();
    const auto bytes = EncodeBlockHeader(b, options);
    ObjectStreams o = Open(bytes, options);
    EXPECT_EQ(o.type, kBlockHeader);
    BlockHeaderRecord back;
    ASSERT_TRUE(ReadBlockHeader(o, back));
    EXPECT_EQ(back.entry.name, "*Model_Space");
    EXPECT_TRUE(back.hasAttributes);
    EXPECT_FALSE(back.anonymous);
    EXPECT_EQ(back.base.x, 1);
    EXPECT_EQ(back.base.y, 2);
    EXPECT_EQ(back.description, "板");
    EXPECT_EQ(back.preview, b.preview);
    EXPECT_EQ(back.blockEntity, 0x20u);
    EXPECT_EQ(back.endBlock, 0x21u);
    EXPECT_EQ(back.inserts, b.inserts);
    EXPECT_EQ(back.layout, 0x22u);
    if (GetParam() >= Version::kR2004) {
        EXPECT_EQ(back.entities, b.entities);
    } else {
        EXPECT_EQ(back.firstEntity, 0x30u);
        EXPECT_EQ(back.lastEntity, 0x33u);
    }
}

TEST_P(DwgEncodeBlocks, insert_with_attributes_round_trips) {
    const EncodeOptions options{GetParam(), 1252};
    InsertRecord insert;
    insert.common = Common(0x40);
    insert.position = {5, 6, 7};
    insert.scale = {2, 3, 4};
    insert.rotation = 0.5;
    insert.hasAttributes = true;
    insert.block = 0x1F;
    insert.firstAttribute = 0x41;
    insert.lastAttribute = 0x42;
    insert.attributes = {0x41, 0x42};
    insert.seqend = 0x43;
    const auto bytes = EncodeInsert(insert, false, options);
    ObjectStreams o = Open(bytes, options);
    EXPECT_EQ(o.type, kInsert);
    InsertRecord back;
    ASSERT_TRUE(ReadInsert(o, back, false));
    EXPECT_EQ(back.position.z, 7);
    EXPECT_EQ(back.scale.x, 2);
    EXPECT_EQ(back.scale.y, 3);
    EXPECT_EQ(back.scale.z, 4);
    EXPECT_EQ(back.rotation, 0.5);
    EXPECT_EQ(back.block, 0x1Fu);
    EXPECT_EQ(back.seqend, 0x43u);
    if (GetParam() >= Version::kR2004) {
        EXPECT_EQ(back.attributes, insert.attributes);
    } else {
        EXPECT_EQ(back.firstAttribute, 0x41u);
        EXPECT_EQ(back.lastAttribute, 0x42u);
    }
}

INSTANTIATE_TEST_SUITE_P(Versions, DwgEncodeBlocks,
                         testing::Values(Version::kR2000, Version::kR2004));

struct ScaleCase {
    Point3 scale;
    std::size_t bits;  // the coding's width after its two bits
};
class DwgEncodeInsertScale : public testing::TestWithParam<ScaleCase> {};

// Two bits say which factors are 1 or equal to x; the others are stored.
TEST_P(DwgEncodeInsertScale, scale_takes_its_shortest_coding) {
    InsertRecord insert;
    insert.common = Common(0x50);
    insert.scale = GetParam().scale;
    InsertRecord unit = insert;
    unit.scale = {1, 1, 1};
    const auto bytes = EncodeInsert(insert, false, {});
    ObjectStreams o = Open(bytes, {});
    InsertRecord back;
    ASSERT_TRUE(ReadInsert(o, back, false));
    EXPECT_EQ(back.scale.x, insert.scale.x);
    EXPECT_EQ(back.scale.y, insert.scale.y);
    EXPECT_EQ(back.scale.z, insert.scale.z);
    const auto unitBytes = EncodeInsert(unit, false, {});
    ObjectStreams u = Open(unitBytes, {});
    EXPECT_EQ(o.dataEnd - u.dataEnd, GetParam().bits);
}
INSTANTIATE_TEST_SUITE_P(
    Scales, DwgEncodeInsertScale,
    testing::Values(ScaleCase{{1, 1, 1}, 0}, ScaleCase{{1, 2, 1}, 66 + 2},
                    ScaleCase{{3, 3, 3}, 64}, ScaleCase{{3, 3, 2}, 64 + 2 + 66},
                    ScaleCase{{-1, -1, -1}, 64}));

TEST(DwgEncodeBlocks2004, minsert_keeps_its_grid) {
    InsertRecord insert;
    insert.common = Common(0x51);
    insert.columns = 3;
    insert.rows = 2;
    insert.columnSpacing = 10;
    insert.rowSpacing = 5;
    insert.block = 0x1F;
    const auto bytes = EncodeInsert(insert, true, {});
    ObjectStreams o = Open(bytes, {});
    EXPECT_EQ(o.type, kMinsert);
    InsertRecord back;
    ASSERT_TRUE(ReadInsert(o, back, true));
    EXPECT_EQ(back.columns, 3);
    EXPECT_EQ(back.rows, 2);
    EXPECT_EQ(back.columnSpacing, 10);
    EXPECT_EQ(back.rowSpacing, 5);
    EXPECT_FALSE(back.hasAttributes);
    EXPECT_EQ(back.block, 0x1Fu);
}

TEST(DwgEncodeBlocks2004, block_begin_end_and_seqend) {
    BlockBeginRecord begin;
    begin.common = Common(0x20);
    begin.name = "A$C1";
    const auto bytes = EncodeBlockBegin(begin, {});
    ObjectStreams o = Open(bytes, {});
    EXPECT_EQ(o.type, kBlock);
    BlockBeginRecord back;
    ASSERT_TRUE(ReadBlockBegin(o, back));
    EXPECT_EQ(back.name, "A$C1");
    EXPECT_EQ(back.common.owner, 0x1Fu);
    for (std::int32_t type : {std::int32_t{kEndblk}, std::int32_t{kSeqend}}) {
        const auto end = EncodeCommonOnly(Common(0x21), type, {});
        ObjectStreams e = Open(end, {});
        EXPECT_EQ(e.type, type);
        EntityCommon common;
        ASSERT_TRUE(ReadCommonOnly(e, common));
        EXPECT_EQ(common.layer, 0x10u);
        EXPECT_EQ(e.data.bitPosition(), e.dataEnd);
    }
}

}  // namespace
