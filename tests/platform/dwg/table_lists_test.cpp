// Values that the database does not model but keeps in the records it carries, through a DXF
// on their way from one DWG to another: a layer's colour book name, an entity's colour book
// colour and the dimension style table's own order of its styles.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "object_bits.hpp"
#include "platform/db/database.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dxf/dxf.hpp"

namespace {

constexpr std::uint64_t kBookColouredLayer = 0x293;
constexpr std::uint64_t kDimensionStyleTable = 0xA;
constexpr std::uint64_t kBookColouredCircle = 0x289;

class TableLists : public ::testing::Test {
protected:
    void SetUp() override {
        file_ = dwg_test::ReadFileBytes(dwg_test::CorpusPath("color_sample_AC1018.dwg"));
        AcDbDatabase db(false, true);
        ASSERT_EQ(dwg::ReadDwgBytes(db, file_, "color_sample_AC1018.dwg"), Acad::eOk);
        dxf::WriteOptions options;
        options.version = AcDb::kDHL_1032;
        ASSERT_EQ(dxf::WriteDxfText(db, options, dxfText_), Acad::eOk);
        AcDbDatabase again(false, true);
        ASSERT_EQ(dxf::ReadDxfBytes(again, dxfText_, "color_sample.dxf"), Acad::eOk);
        dwg::DwgWriteReport report;
        ASSERT_EQ(dwg::WriteDwgBytes(again, 1252, written_, report), Acad::eOk);
    }
    std::vector<std::uint8_t> file_, written_;
    std::string dxfText_;
};

std::vector<std::uint64_t> HardPointers(const dwg::DecodedObject& decoded) {
    std::vector<std::uint64_t> out;
    const auto* kept = std::get_if<dwg::KeptObject>(&decoded);
    if (kept == nullptr) return out;
    for (const dwg::HandleRef& ref : kept->references) {
        if (ref.code == 5) out.push_back(ref.value);
    }
    return out;
}

TEST_F(TableLists, layer_colour_book_name_goes_through_dxf_into_the_dwg) {
    const dwg::DecodedObject before = dwg_test::DecodedAt(file_, kBookColouredLayer);
    const dwg::DecodedObject after = dwg_test::DecodedAt(written_, kBookColouredLayer);
    const auto* original = std::get_if<dwg::LayerRecord>(&before);
    ASSERT_NE(original, nullptr);
    ASSERT_EQ(original->color.flags & 2, 2) << "the layer's colour is of a colour book";
    // The DXF gives the book's name and the colour's, joined as the format joins them.
    const std::string named = "430\n" + original->color.bookName + "$" + original->color.name + "\n";
    EXPECT_NE(dxfText_.find(named), std::string::npos) << named;
    const auto* layer = std::get_if<dwg::LayerRecord>(&after);
    ASSERT_NE(layer, nullptr);
    EXPECT_EQ(layer->color.flags, original->color.flags);
    EXPECT_EQ(layer->color.name, original->color.name);
    EXPECT_EQ(layer->color.bookName, original->color.bookName);
    EXPECT_EQ(layer->color.rgb, original->color.rgb);
}

// Written from the database read, the colour object is written back (kept whole) and the
// entity refers to it; the DXF names the colour as the colour dictionary does.
TEST_F(TableLists, entity_colour_of_a_colour_book_refers_to_its_colour_object) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(db, file_, "color_sample_AC1018.dwg"), Acad::eOk);
    db.dwgFiledObjects() = {};
    std::vector<std::uint8_t> again;
    dwg::DwgWriteReport report;
    ASSERT_EQ(dwg::WriteDwgBytes(db, 1252, again, report), Acad::eOk);
    const dwg::DecodedObject before = dwg_test::DecodedAt(file_, kBookColouredCircle);
    const dwg::DecodedObject after = dwg_test::DecodedAt(again, kBookColouredCircle);
    const auto* original = std::get_if<dwg::CircleRecord>(&before);
    const auto* circle = std::get_if<dwg::CircleRecord>(&after);
    ASSERT_NE(original, nullptr);
    ASSERT_NE(circle, nullptr);
    ASSERT_TRUE(original->common.color.hasBookHandle);
    EXPECT_TRUE(circle->common.color.hasBookHandle);
    EXPECT_EQ(circle->common.colorBook, original->common.colorBook);
    EXPECT_EQ(circle->common.color.index, original->common.color.index);
    EXPECT_EQ(dwg_test::StoredObjects(again).count(original->common.colorBook), 1u);
    EXPECT_NE(dxfText_.find("\n430\nRAL CLASSIC$RAL 1006\n"), std::string::npos);
}

// Through a DXF the colour object is not carried (it is kept whole only from a DWG): the
// entity keeps its colour's index and name, and refers to no colour object that the file lacks.
TEST_F(TableLists, entity_colour_of_a_book_without_its_colour_object_refers_to_none) {
    const dwg::DecodedObject after = dwg_test::DecodedAt(written_, kBookColouredCircle);
    const auto* circle = std::get_if<dwg::CircleRecord>(&after);
    ASSERT_NE(circle, nullptr);
    EXPECT_FALSE(circle->common.color.hasBookHandle);
}

TEST_F(TableLists, dimension_style_table_keeps_its_second_list_in_its_order) {
    const std::vector<std::uint64_t> original = HardPointers(dwg_test::DecodedAt(file_, kDimensionStyleTable));
    ASSERT_GE(original.size(), 2u);
    // The file lists them in another order than their handles.
    ASSERT_FALSE(std::is_sorted(original.begin(), original.end()));
    EXPECT_EQ(HardPointers(dwg_test::DecodedAt(written_, kDimensionStyleTable)), original);
}

}  // namespace
