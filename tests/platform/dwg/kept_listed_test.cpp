// Objects kept whole from a DWG read that a modelled object lists (an ACAD_TABLE among the
// references of the block it draws, a viewport among its layout's): the read notes the lister
// with the kept object, and a DWG written again lists the kept object there while the
// database still holds it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "object_bits.hpp"
#include "platform/db/database.hpp"
#include "platform/dwg/blocks.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/layout.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dwg/write.hpp"

namespace {

// In example_2004.dwg: an ACAD_TABLE and the block record of the block it draws; the paper
// space layout and its viewport.
constexpr std::uint64_t kTable = 0x4F2, kTableBlock = 0x4F3;
constexpr std::uint64_t kViewport = 0x88, kLayout = 0x56;

class KeptListed : public ::testing::Test {
protected:
    void SetUp() override {
        file_ = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2004.dwg"));
        ASSERT_EQ(dwg::ReadDwgBytes(db_, file_, "example_2004.dwg"), Acad::eOk);
        db_.dwgFiledObjects() = {};  // the writer's own encoding, not the bytes kept from the read
    }
    std::vector<std::uint8_t> written() {
        std::vector<std::uint8_t> out;
        dwg::DwgWriteReport report;
        EXPECT_EQ(dwg::WriteDwgBytes(db_, 1252, out, report), Acad::eOk);
        return out;
    }
    std::vector<std::uint8_t> file_;
    AcDbDatabase db_{false, true};
};

std::vector<std::uint64_t> References(const std::vector<std::uint8_t>& file, std::uint64_t block) {
    const dwg::DecodedObject decoded = dwg_test::DecodedAt(file, block);
    const auto* record = std::get_if<dwg::BlockHeaderRecord>(&decoded);
    return record != nullptr ? record->inserts : std::vector<std::uint64_t>{99};
}

std::vector<std::uint64_t> Viewports(const std::vector<std::uint8_t>& file, std::uint64_t layout) {
    const dwg::DecodedObject decoded = dwg_test::DecodedAt(file, layout);
    const auto* record = std::get_if<dwg::LayoutRecord>(&decoded);
    return record != nullptr ? record->viewports : std::vector<std::uint64_t>{99};
}

TEST_F(KeptListed, read_notes_the_object_that_lists_each_kept_object) {
    const auto& kept = db_.dwgKeptObjects();
    ASSERT_EQ(kept.count(kTable), 1u);
    ASSERT_EQ(kept.count(kViewport), 1u);
    EXPECT_EQ(kept.at(kTable).typeName, "ACAD_TABLE");
    EXPECT_EQ(kept.at(kTable).listedBy, kTableBlock);
    EXPECT_EQ(kept.at(kViewport).typeName, "VIEWPORT");
    EXPECT_EQ(kept.at(kViewport).listedBy, kLayout);
    const auto unlisted = std::count_if(kept.begin(), kept.end(), [](const auto& entry) {
        return entry.second.listedBy == 0;
    });
    EXPECT_GT(unlisted, 0);  // a dictionary's entries, say, are listed by no modelled object
}

TEST_F(KeptListed, block_record_lists_the_kept_table_that_draws_it) {
    EXPECT_EQ(References(file_, kTableBlock), std::vector<std::uint64_t>({kTable}));
    EXPECT_EQ(References(written(), kTableBlock), std::vector<std::uint64_t>({kTable}));
}

TEST_F(KeptListed, layout_lists_its_kept_viewport) {
    EXPECT_EQ(Viewports(file_, kLayout), std::vector<std::uint64_t>({kViewport}));
    EXPECT_EQ(Viewports(written(), kLayout), std::vector<std::uint64_t>({kViewport}));
}

TEST_F(KeptListed, kept_object_the_database_no_longer_holds_is_listed_nowhere) {
    for (const std::uint64_t handle : {kTable, kViewport}) ASSERT_EQ(dwg_test::EraseObject(db_, handle), Acad::eOk);
    const auto file = written();
    EXPECT_EQ(dwg_test::StoredObjects(file).count(kTable), 0u);
    EXPECT_EQ(References(file, kTableBlock), std::vector<std::uint64_t>());
    EXPECT_EQ(Viewports(file, kLayout), std::vector<std::uint64_t>());
}

}  // namespace
