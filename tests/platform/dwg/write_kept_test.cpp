// Objects of kinds the database does not model, kept whole from a DWG read, written back to a
// DWG as the file stored them; kept entities stay out (their blocks do not list them).
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
    for (const char* kind : {"VISUALSTYLE", "MLINESTYLE", "WIPEOUTVARIABLES"}) {
        const std::vector<std::uint64_t> handles = keptOf(kind);
        ASSERT_FALSE(handles.empty()) << kind;
        for (std::uint64_t handle : handles) {
            ASSERT_EQ(out.count(handle), 1u) << kind << " " << std::hex << handle;
            EXPECT_EQ(out.at(handle).type, original_.at(handle).type);
            EXPECT_EQ(out.at(handle).bytes, original_.at(handle).bytes) << kind << " " << std::hex << handle;
        }
    }
}

TEST_F(WriteKept, kept_entities_stay_out_of_the_file) {
    const auto out = written();
    for (const char* kind : {"REGION", "MLINE", "VIEWPORT"}) {
        const std::vector<std::uint64_t> handles = keptOf(kind);
        ASSERT_FALSE(handles.empty()) << kind;
        for (std::uint64_t handle : handles) EXPECT_EQ(out.count(handle), 0u) << kind;
    }
}

TEST_F(WriteKept, erased_kept_object_is_not_written) {
    const std::uint64_t handle = keptOf("VISUALSTYLE").front();
    AcDbObjectId id;
    ASSERT_EQ(db_.getAcDbObjectId(id, false, AcDbHandle(handle)), Acad::eOk);
    AcDbObject* object = nullptr;
    ASSERT_EQ(acdbOpenAcDbObject(object, id, AcDb::kForWrite), Acad::eOk);
    ASSERT_EQ(object->erase(), Acad::eOk);
    object->close();
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

}  // namespace
