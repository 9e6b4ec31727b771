// A dimension's picture in its *D block, checked against its definition: the text as the
// variables format it, the tolerance stacked, the lines where DIMEXO, DIMEXE and DIMASZ put them,
// the colours, and a new picture when the dimension changes.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "drawing_queries.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/dimension_graphics.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/polyline.hpp"

namespace {

using tavrik::dimension_graphics::FormatValue;
using tavrik::dimension_graphics::MeasurementText;

struct FormatCase {
    double value;
    int decimals, zin;
    const wchar_t* shown;
};

class DimensionNumber : public testing::TestWithParam<FormatCase> {};

TEST_P(DimensionNumber, value_is_rounded_by_dimdec_and_its_zeros_suppressed_by_dimzin) {
    const FormatCase& c = GetParam();
    EXPECT_EQ(FormatValue(c.value, c.decimals, c.zin, L'.'), c.shown);
}

INSTANTIATE_TEST_SUITE_P(
    Definition, DimensionNumber,
    testing::Values(FormatCase{25.5, 2, 8, L"25.5"}, FormatCase{25.5, 2, 0, L"25.50"},
                    FormatCase{25.0, 2, 8, L"25"}, FormatCase{0.5, 2, 4, L".50"},
                    FormatCase{0.5, 2, 12, L".5"}, FormatCase{0.5, 2, 8, L"0.5"},
                    FormatCase{25.456, 1, 0, L"25.5"}, FormatCase{25.444, 0, 0, L"25"},
                    FormatCase{-0.0001, 2, 0, L"0.00"}, FormatCase{-1.25, 3, 8, L"-1.25"},
                    FormatCase{0.0, 3, 8, L"0"}));

TEST(DimensionNumber, separator_comes_from_the_caller) {
    EXPECT_EQ(FormatValue(25.5, 2, 8, L','), L"25,5");
}

class DimensionGraphics : public testing::Test {
protected:
    AcDbDatabase db_{true, true};

    AcDbObjectId Append(AcDbDimension* dim) {
        AcDbBlockTableRecord* model = OpenModelSpace(db_, AcDb::kForWrite);
        AcDbObjectId id;
        model->appendAcDbEntity(id, dim);
        model->close();
        dim->close();
        return id;
    }
    static void Style(AcDbDimension* dim) {
        dim->setIntVar(278, '.');
        dim->setDimscale(2.0);
        dim->setDimtxt(3.5);
        dim->setDimasz(2.5);
        dim->setDimexo(0.8);
        dim->setDimexe(1.25);
        dim->setDimgap(0.8);
        dim->setDimdec(2);
        dim->setDimzin(8);
        AcCmColor color;
        color.setColorIndex(3);
        dim->setDimclrd(color);
        color.setColorIndex(4);
        dim->setDimclre(color);
        color.setColorIndex(7);
        dim->setDimclrt(color);
    }
    // The live entities of the block that the dimension names.
    std::vector<AcDbEntity*> Picture(AcDbObjectId dimId) {
        AcDbDimension* dim = nullptr;
        acdbOpenObject(dim, dimId, AcDb::kForRead);
        AcDbObjectId blockId = dim->dimBlockId();
        dim->close();
        std::vector<AcDbEntity*> parts;
        AcDbBlockTableRecord* block = nullptr;
        if (acdbOpenObject(block, blockId, AcDb::kForRead) != Acad::eOk) return parts;
        EXPECT_EQ(block->name().substr(0, 2), L"*D");
        for (const AcDbObjectId& id : block->entityIds())
            if (!id.isErased()) parts.push_back(AcDbEntity::cast(id.stub()->object.get()));
        block->close();
        return parts;
    }
    template <typename T>
    static std::vector<T*> Of(const std::vector<AcDbEntity*>& parts) {
        std::vector<T*> found;
        for (AcDbEntity* e : parts)
            if (auto* t = T::cast(e)) found.push_back(t);
        return found;
    }
};

TEST_F(DimensionGraphics, tolerance_stacks_the_upper_and_lower_deviation) {
    AcDbRotatedDimension dim(0.0, AcGePoint3d(0, 0, 0), AcGePoint3d(25.5, 0, 0), AcGePoint3d(0, -10, 0));
    Style(&dim);
    dim.setDimtol(true);
    dim.setDimtp(0.02);
    dim.setDimtm(0.01);
    dim.setDimtdec(2);
    dim.setDimtzin(8);
    dim.setDimtfac(0.7);
    dim.setDimtolj(1);
    EXPECT_EQ(MeasurementText(dim), L"\\A1;25.5{\\H0.7x;\\S+0.02^-0.01;}");
    dim.setDimtm(-0.005);
    dim.setDimtdec(3);
    dim.setDimtp(0.0);
    EXPECT_EQ(MeasurementText(dim), L"\\A1;25.5{\\H0.7x;\\S0^+0.005;}");
}

TEST_F(DimensionGraphics, symmetric_tolerance_shows_plus_minus_once) {
    AcDbRotatedDimension dim(0.0, AcGePoint3d(0, 0, 0), AcGePoint3d(40, 0, 0), AcGePoint3d(0, -10, 0));
    Style(&dim);
    dim.setDimtol(true);
    dim.setDimtp(0.05);
    dim.setDimtm(0.05);
    dim.setDimtdec(3);
    dim.setDimtzin(8);
    EXPECT_EQ(MeasurementText(dim), L"\\A0;40%%p0.05");
}

TEST_F(DimensionGraphics, user_text_keeps_the_measurement_in_place_of_the_brackets) {
    AcDbRotatedDimension dim(0.0, AcGePoint3d(0, 0, 0), AcGePoint3d(12, 0, 0), AcGePoint3d(0, -10, 0));
    Style(&dim);
    dim.setDimensionText(L"4x<> EQS");
    EXPECT_EQ(MeasurementText(dim), L"4x12 EQS");
    dim.setIntVar(278, ',');
    dim.setDimensionText(L"");
    dim.setDimdec(1);
    dim.setDimzin(0);
    EXPECT_EQ(MeasurementText(dim), L"12,0");
}

TEST_F(DimensionGraphics, rotated_dimension_draws_extension_lines_dimension_line_arrows_and_text) {
    auto* dim = new AcDbRotatedDimension(0.0, AcGePoint3d(0, 0, 0), AcGePoint3d(100, 0, 0),
                                         AcGePoint3d(50, -20, 0));
    Style(dim);
    AcDbObjectId id = Append(dim);
    std::vector<AcDbEntity*> parts = Picture(id);
    std::vector<AcDbLine*> lines = Of<AcDbLine>(parts);
    ASSERT_GE(lines.size(), 3u);
    // Extension lines: DIMEXO x DIMSCALE off the points, DIMEXE x DIMSCALE beyond the line.
    EXPECT_EQ(lines[0]->startPoint(), AcGePoint3d(0, -1.6, 0));
    EXPECT_EQ(lines[0]->endPoint(), AcGePoint3d(0, -22.5, 0));
    EXPECT_EQ(lines[1]->startPoint(), AcGePoint3d(100, -1.6, 0));
    EXPECT_EQ(lines[0]->colorIndex(), 4);
    // The dimension line from one extension line to the other, in DIMCLRD.
    EXPECT_EQ(lines.back()->colorIndex(), 3);
    EXPECT_EQ(lines.back()->startPoint(), AcGePoint3d(0, -20, 0));
    EXPECT_EQ(lines.back()->endPoint(), AcGePoint3d(100, -20, 0));
    // Arrowheads DIMASZ x DIMSCALE long, tips on the extension lines.
    std::vector<AcDbPolyline*> arrows = Of<AcDbPolyline>(parts);
    ASSERT_EQ(arrows.size(), 2u);
    AcGePoint2d base, tip;
    arrows[0]->getPointAt(0, base);
    arrows[0]->getPointAt(1, tip);
    EXPECT_EQ(tip, AcGePoint2d(0, -20));
    EXPECT_DOUBLE_EQ(base.x, 5.0);
    EXPECT_EQ(arrows[0]->colorIndex(), 3);
    // The text above the line (DIMTAD 1 by default), DIMTXT x DIMSCALE high, in DIMCLRT.
    std::vector<AcDbMText*> texts = Of<AcDbMText>(parts);
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_EQ(texts[0]->contents(), L"100");
    EXPECT_DOUBLE_EQ(texts[0]->textHeight(), 7.0);
    EXPECT_DOUBLE_EQ(texts[0]->location().x, 50.0);
    EXPECT_DOUBLE_EQ(texts[0]->location().y, -20.0 + 1.6 + 3.5);
    EXPECT_EQ(texts[0]->colorIndex(), 7);
}

TEST_F(DimensionGraphics, centred_text_breaks_the_dimension_line) {
    auto* dim = new AcDbRotatedDimension(0.0, AcGePoint3d(0, 0, 0), AcGePoint3d(100, 0, 0),
                                         AcGePoint3d(50, -20, 0));
    Style(dim);
    dim->setDimtad(0);
    AcDbObjectId id = Append(dim);
    std::vector<AcDbLine*> lines = Of<AcDbLine>(Picture(id));
    ASSERT_EQ(lines.size(), 4u);  // two extension lines, the dimension line in two
    EXPECT_EQ(lines[2]->startPoint(), AcGePoint3d(0, -20, 0));
    EXPECT_LT(lines[2]->endPoint().x, 50.0);
    EXPECT_GT(lines[3]->startPoint().x, 50.0);
    EXPECT_EQ(lines[3]->endPoint(), AcGePoint3d(100, -20, 0));
}

TEST_F(DimensionGraphics, ordinate_leader_bends_to_its_end_without_an_arrow) {
    auto* dim = new AcDbOrdinateDimension(true, AcGePoint3d(30, 40, 0), AcGePoint3d(36, 80, 0));
    dim->setOrigin(AcGePoint3d(10, 10, 0));
    Style(dim);
    AcDbObjectId id = Append(dim);
    std::vector<AcDbEntity*> parts = Picture(id);
    EXPECT_TRUE(Of<AcDbPolyline>(parts).empty());
    std::vector<AcDbLine*> lines = Of<AcDbLine>(parts);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0]->startPoint(), AcGePoint3d(30, 41.6, 0));  // DIMEXO x DIMSCALE off
    EXPECT_EQ(lines[0]->endPoint(), AcGePoint3d(30, 70, 0));       // 2 arrow sizes before the end
    EXPECT_EQ(lines[1]->endPoint(), AcGePoint3d(36, 75, 0));
    EXPECT_EQ(lines[2]->endPoint(), AcGePoint3d(36, 80, 0));
    EXPECT_EQ(lines[0]->colorIndex(), 4);
    std::vector<AcDbMText*> texts = Of<AcDbMText>(parts);
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_EQ(texts[0]->contents(), L"20");
    // Along its leader, starting DIMGAP x DIMSCALE beyond the end.
    EXPECT_EQ(texts[0]->location(), AcGePoint3d(36, 81.6, 0));
    EXPECT_EQ(texts[0]->attachment(), AcDbMText::kMiddleLeft);
    EXPECT_DOUBLE_EQ(texts[0]->rotation(), M_PI / 2.0);
}

TEST_F(DimensionGraphics, ordinate_straight_above_its_point_has_no_bend) {
    auto* dim = new AcDbOrdinateDimension(false, AcGePoint3d(30, 40, 0), AcGePoint3d(0, 40, 0));
    Style(dim);
    AcDbObjectId id = Append(dim);
    std::vector<AcDbEntity*> parts = Picture(id);
    std::vector<AcDbLine*> lines = Of<AcDbLine>(parts);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0]->startPoint(), AcGePoint3d(28.4, 40, 0));
    EXPECT_EQ(lines[0]->endPoint(), AcGePoint3d(0, 40, 0));
    std::vector<AcDbMText*> texts = Of<AcDbMText>(parts);
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_EQ(texts[0]->contents(), L"40");
    // Ending DIMGAP x DIMSCALE beyond the leader's end, which points left.
    EXPECT_EQ(texts[0]->location(), AcGePoint3d(-1.6, 40, 0));
    EXPECT_EQ(texts[0]->attachment(), AcDbMText::kMiddleRight);
    EXPECT_DOUBLE_EQ(texts[0]->rotation(), 0.0);
}

TEST_F(DimensionGraphics, changed_dimension_gets_a_new_picture_and_an_unchanged_one_keeps_it) {
    auto* dim = new AcDbOrdinateDimension(true, AcGePoint3d(30, 40, 0), AcGePoint3d(30, 80, 0));
    Style(dim);
    AcDbObjectId id = Append(dim);
    AcDbMText* before = Of<AcDbMText>(Picture(id)).at(0);
    AcDbOrdinateDimension* open = nullptr;
    ASSERT_EQ(acdbOpenObject(open, id, AcDb::kForWrite), Acad::eOk);
    open->setLayerName(L"0");
    open->close();
    EXPECT_EQ(Of<AcDbMText>(Picture(id)).at(0), before);  // the same entity: not redrawn
    ASSERT_EQ(acdbOpenObject(open, id, AcDb::kForWrite), Acad::eOk);
    open->setDefiningPoint(AcGePoint3d(42.25, 40, 0));
    open->close();
    std::vector<AcDbMText*> after = Of<AcDbMText>(Picture(id));
    ASSERT_EQ(after.size(), 1u);
    EXPECT_EQ(after[0]->contents(), L"42.25");
    EXPECT_NE(after[0], before);
}

}  // namespace
