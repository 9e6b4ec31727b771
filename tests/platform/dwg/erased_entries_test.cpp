// A table's control object lists null entries where records erased before the file was saved
// stood: the read keeps their places with the table, a DWG written again lists them there, and
// a DXF, which has no place for them, does not change.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "object_bits.hpp"
#include "platform/db/database.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dxf/dxf.hpp"
#include "sample_drawing.hpp"

namespace {

std::vector<int> ErasedPlaces(const AcDbDatabase& db, AcDbDatabase::TableKind kind) {
    const AcDbObjectId id = db.tableId(kind);
    const auto* table = AcDbSymbolTable::cast(id.stub()->object.get());
    return table != nullptr ? table->erasedEntryPlaces() : std::vector<int>{99};
}

// The records a control object lists (soft owner), 0 for a null entry.
std::vector<std::uint64_t> ListedRecords(const std::vector<std::uint8_t>& file, std::uint64_t control) {
    const auto objects = dwg_test::StoredObjects(file);
    const auto it = objects.find(control);
    if (it == objects.end()) return {99};
    std::vector<std::uint64_t> out;
    for (const auto& [code, handle] : dwg_test::HandleReferences(it->second.bytes)) {
        if (code == 2) out.push_back(handle);
    }
    return out;
}

std::vector<std::uint8_t> Written(AcDbDatabase& db) {
    std::vector<std::uint8_t> out;
    dwg::DwgWriteReport report;
    EXPECT_EQ(dwg::WriteDwgBytes(db, 1252, out, report), Acad::eOk);
    return out;
}

TEST(ErasedEntries, read_keeps_the_places_of_the_null_entries_with_each_table) {
    AcDbDatabase db(false, true);
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2004.dwg"));
    ASSERT_EQ(dwg::ReadDwgBytes(db, file, "example_2004.dwg"), Acad::eOk);
    EXPECT_EQ(ErasedPlaces(db, AcDbDatabase::kBlockTable), std::vector<int>({3}));
    EXPECT_EQ(ErasedPlaces(db, AcDbDatabase::kLinetypeTable), std::vector<int>({1, 2}));
    EXPECT_EQ(ErasedPlaces(db, AcDbDatabase::kViewTable), std::vector<int>({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(ErasedPlaces(db, AcDbDatabase::kLayerTable), std::vector<int>());
}

TEST(ErasedEntries, dwg_written_again_lists_them_at_their_places) {
    AcDbDatabase db(false, true);
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2004.dwg"));
    ASSERT_EQ(dwg::ReadDwgBytes(db, file, "example_2004.dwg"), Acad::eOk);
    db.dwgFiledObjects() = {};  // the writer's own encoding, not the bytes kept from the read
    const auto written = Written(db);
    for (const AcDbDatabase::TableKind kind :
         {AcDbDatabase::kBlockTable, AcDbDatabase::kLinetypeTable, AcDbDatabase::kViewTable}) {
        const std::uint64_t control = db.tableId(kind).handle().value();
        EXPECT_EQ(ListedRecords(written, control), ListedRecords(file, control)) << kind;
    }
}

TEST(ErasedEntries, place_beyond_the_list_goes_to_its_end_and_others_stay_in_order) {
    AcDbDatabase db;
    const AcDbObjectId first = dwg_test::AddLayer(db, L"A", 1);
    const AcDbObjectId second = dwg_test::AddLayer(db, L"B", 2);
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(db.getSymbolTable(layers, AcDb::kForWrite), Acad::eOk);
    layers->setErasedEntryPlaces({0, 2, 40});
    layers->close();
    const auto listed = ListedRecords(Written(db), db.layerTableId().handle().value());
    ASSERT_EQ(listed.size(), 6u);
    EXPECT_EQ(listed[0], 0u);
    EXPECT_NE(listed[1], 0u);  // layer 0, which a new drawing has first
    EXPECT_EQ(listed[2], 0u);
    EXPECT_EQ(listed[3], first.handle().value());
    EXPECT_EQ(listed[4], second.handle().value());
    EXPECT_EQ(listed[5], 0u);
}

TEST(ErasedEntries, dxf_written_does_not_change_with_them) {
    AcDbDatabase db;
    dwg_test::AddLayer(db, L"A", 1);
    dxf::WriteOptions options;
    std::string before, after;
    ASSERT_EQ(dxf::WriteDxfText(db, options, before), Acad::eOk);
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(db.getSymbolTable(layers, AcDb::kForWrite), Acad::eOk);
    layers->setErasedEntryPlaces({0, 1});
    layers->close();
    ASSERT_EQ(dxf::WriteDxfText(db, options, after), Acad::eOk);
    EXPECT_EQ(after, before);
}

}  // namespace
