// Objects of kinds the database does not model, kept whole from a DWG read, written back to a
// DWG as the file stored them, kept entities in the blocks that list them.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "object_bits.hpp"
#include "platform/db/database.hpp"
#include "platform/db/object.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dwg/write.hpp"

namespace {

class WriteKept : public ::testing::Test {
protected:
    void SetUp() override {
        file_ = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2004.dwg"));
        ASSERT_EQ(dwg::ReadDwgBytes(db_, file_, "example_2004.dwg"), Acad::eOk);
        original_ = dwg_test::StoredObjects(file_);
        db_.dwgFiledObjects() = {};  // no object gets its bits from the kept file
    }
    std::map<std::uint64_t, dwg_test::StoredObject> written() {
        std::vector<std::uint8_t> out;
        dwg::DwgWriteReport report;
        EXPECT_EQ(dwg::WriteDwgBytes(db_, 1252, out, report), Acad::eOk);
        return dwg_test::StoredObjects(out);
    }
    std::vector<std::uint64_t> keptOf(const std::string& kind) const {
        std::vector<std::uint64_t> out;
        for (const auto& [handle, kept] : db_.dwgKeptObjects()) {
            if (kept.typeName == kind) out.push_back(handle);
        }
        return out;
    }
    std::vector<std::uint8_t> file_;
    AcDbDatabase db_{false, true};
    std::map<std::uint64_t, dwg_test::StoredObject> original_;
};

TEST_F(WriteKept, kept_objects_are_written_with_the_files_bits) {
    const auto out = written();
    for (const char* kind : {"VISUALSTYLE", "MATERIAL", "WIPEOUTVARIABLES"}) {
        const std::vector<std::uint64_t> handles = keptOf(kind);
        ASSERT_FALSE(handles.empty()) << kind;
        for (std::uint64_t handle : handles) {
            ASSERT_EQ(out.count(handle), 1u) << kind << " " << std::hex << handle;
            EXPECT_EQ(out.at(handle).type, original_.at(handle).type);
            EXPECT_EQ(out.at(handle).bytes, original_.at(handle).bytes) << kind << " " << std::hex << handle;
        }
    }
}

// Kept entities go back into the blocks that list them, with the file's bits, and each block
// lists its entities as the file did.
TEST_F(WriteKept, kept_entities_are_written_into_their_blocks) {
    const auto out = written();
    for (const char* kind : {"REGION", "MLINE", "VIEWPORT", "3DSOLID"}) {
        const std::vector<std::uint64_t> handles = keptOf(kind);
        ASSERT_FALSE(handles.empty()) << kind;
        for (std::uint64_t handle : handles) {
            ASSERT_EQ(out.count(handle), 1u) << kind;
            EXPECT_EQ(out.at(handle).bytes, original_.at(handle).bytes) << kind;
        }
    }
    std::vector<std::uint8_t> again;
    dwg::DwgWriteReport report;
    ASSERT_EQ(dwg::WriteDwgBytes(db_, 1252, again, report), Acad::eOk);
    for (const auto& [handle, object] : original_) {
        if (object.type != 49) continue;  // block records
        const dwg::DecodedObject before = dwg_test::DecodedAt(file_, handle);
        const dwg::DecodedObject after = dwg_test::DecodedAt(again, handle);
        const auto* original = std::get_if<dwg::BlockHeaderRecord>(&before);
        const auto* block = std::get_if<dwg::BlockHeaderRecord>(&after);
        ASSERT_NE(original, nullptr);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(block->entities, original->entities) << std::hex << handle;
    }
}

TEST_F(WriteKept, erased_kept_object_is_not_written) {
    const std::uint64_t handle = keptOf("VISUALSTYLE").front();
    ASSERT_EQ(dwg_test::EraseObject(db_, handle), Acad::eOk);
    EXPECT_EQ(written().count(handle), 0u);
}

// Kept under another handle than its bytes say (a copy made by a merge), an object is left
// out rather than written with a handle that is not its own.
TEST_F(WriteKept, kept_object_under_another_handle_is_not_written) {
    const std::uint64_t handle = keptOf("VISUALSTYLE").front();
    const std::uint64_t other = keptOf("VISUALSTYLE").back();
    ASSERT_NE(handle, other);
    db_.dwgKeptObjects()[other] = db_.dwgKeptObjects()[handle];
    EXPECT_EQ(written().count(other), 0u);
}

// Texts of another code page than the one written, or data of another version, are not the
// written file's: such kept objects are left out.
TEST_F(WriteKept, kept_objects_are_left_out_in_another_code_page) {
    std::vector<std::uint8_t> out;
    dwg::DwgWriteReport report;
    ASSERT_EQ(dwg::WriteDwgBytes(db_, 936, out, report), Acad::eOk);
    const auto written936 = dwg_test::StoredObjects(out);
    for (std::uint64_t handle : keptOf("VISUALSTYLE")) EXPECT_EQ(written936.count(handle), 0u);
    for (std::uint64_t handle : keptOf("REGION")) EXPECT_EQ(written936.count(handle), 0u);
    EXPECT_GT(report.leftOut["VISUALSTYLE"], 0);
}

TEST(WriteKeptOfOtherVersions, kept_objects_of_a_2000_drawing_are_left_out) {
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2000.dwg"));
    AcDbDatabase db(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(db, file, "example_2000.dwg"), Acad::eOk);
    ASSERT_FALSE(db.dwgKeptObjects().empty());
    std::vector<std::uint8_t> out;
    dwg::DwgWriteReport report;
    ASSERT_EQ(dwg::WriteDwgBytes(db, 1252, out, report), Acad::eOk);
    const auto written = dwg_test::StoredObjects(out);
    for (const auto& [handle, kept] : db.dwgKeptObjects()) EXPECT_EQ(written.count(handle), 0u) << kept.typeName;
}

}  // namespace
