// An object of 32 KB or more stores its size in four bytes instead of two. Read from an AC1018
// file, such an object is kept with its size, data and CRC whole, and a save puts it back as
// the file stored it, as any other object.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "object_bits.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dwg/write.hpp"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Written(AcDbDatabase& db) {
    Bytes bytes;
    dwg::DwgWriteReport report;
    EXPECT_EQ(dwg::WriteDwgBytes(db, 936, bytes, report), Acad::eOk);
    return bytes;
}

// A drawing of one MTEXT of `length` characters; its handle.
std::uint64_t DrawLongText(AcDbDatabase& db, std::size_t length) {
    AcDbBlockTable* blocks = nullptr;
    db.getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
    blocks->close();
    auto* text = new AcDbMText();
    text->setDatabaseDefaults(&db);
    text->setLocation(AcGePoint3d(10, 20, 0));
    text->setContents(std::wstring(length, L'x'));
    AcDbObjectId id;
    model->appendAcDbEntity(id, text);
    text->close();
    model->close();
    return id.handle().value();
}

// The file of a drawing whose MTEXT takes `size` bytes (after its size, before its CRC): the
// text's length is corrected by the difference until it does.
Bytes FileWithObjectOf(std::size_t size, std::uint64_t& handle) {
    std::size_t length = size;
    for (int attempt = 0; attempt < 4; ++attempt) {
        AcDbDatabase db(true, false);
        handle = DrawLongText(db, length);
        Bytes file = Written(db);
        const std::size_t got = dwg_test::StoredObjects(file)[handle].bytes.size();
        if (got == size) return file;
        length = length + size - got;
    }
    ADD_FAILURE() << "no MTEXT of " << size << " bytes";
    return {};
}

struct LargeCase {
    std::size_t size;
    std::size_t sizeBytes;  // of the size before the object
};

class DwgLargeObject : public ::testing::TestWithParam<LargeCase> {};

TEST_P(DwgLargeObject, read_keeps_the_whole_object_and_a_save_puts_it_back) {
    std::uint64_t handle = 0;
    const Bytes file = FileWithObjectOf(GetParam().size, handle);
    ASSERT_FALSE(file.empty());
    AcDbDatabase db(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(db, file, "long_text.dwg"), Acad::eOk);
    // The kept sections hold the object as the file stored it, its size before it.
    const std::vector<std::uint8_t> stored = dwg_test::StoredObjects(file)[handle].bytes;
    ASSERT_EQ(stored.size(), GetParam().size);
    const std::vector<std::uint8_t>& kept = db.dwgFiledObjects().objects;
    const auto at = std::search(kept.begin(), kept.end(), stored.begin(), stored.end());
    ASSERT_NE(at, kept.end());
    EXPECT_GE(at - kept.begin(), static_cast<std::ptrdiff_t>(GetParam().sizeBytes));
    const auto written = dwg_test::StoredObjects(Written(db));
    ASSERT_EQ(written.count(handle), 1u);
    EXPECT_TRUE(written.at(handle).bytes == dwg_test::StoredObjects(file)[handle].bytes);
}

INSTANTIATE_TEST_SUITE_P(Sizes, DwgLargeObject,
                         ::testing::Values(LargeCase{0x7FFF, 2}, LargeCase{0x8000, 4}, LargeCase{0x9000, 4}),
                         [](const auto& info) { return "size_" + std::to_string(info.param.size); });

}  // namespace
