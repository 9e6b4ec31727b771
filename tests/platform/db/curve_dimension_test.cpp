#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "platform/db/dimension.hpp"

TEST(DimensionVars, overrides_read_back_over_the_standard_defaults) {
    AcDbOrdinateDimension dim;
    EXPECT_DOUBLE_EQ(dim.dimtxt(), 2.5);
    EXPECT_DOUBLE_EQ(dim.dimscale(), 1.0);
    dim.setDimtxt(3.5);
    AcCmColor red;
    red.setColorIndex(1);
    dim.setDimclrd(red);
    dim.setDimclre(red);
    dim.setDimclrt(red);
    dim.setDimtzin(8);
    dim.setDimtdec(3);
    dim.setDimtfac(0.7);
    dim.setDimtolj(1);
    dim.setDimtol(true);
    dim.setDimtm(0.01);
    dim.setDimtp(0.02);
    dim.setDimdec(1);
    dim.setDimscale(20);
    dim.setDimasz(3);
    dim.setDimzin(4);
    dim.setDimlwd(AcDb::kLnWt025);
    dim.setDimlwe(AcDb::kLnWt018);
    dim.setDimexe(1.5);
    dim.setDimexo(0.8);
    dim.setDimgap(0.9);
    dim.setDimtad(1);
    dim.setDimjust(2);
    dim.setDimtih(true);
    dim.setDimtoh(true);
    EXPECT_DOUBLE_EQ(dim.dimtxt(), 3.5);
    EXPECT_EQ(dim.dimclrd().colorIndex(), 1);
    EXPECT_EQ(dim.dimclre().colorIndex(), 1);
    EXPECT_EQ(dim.dimclrt().colorIndex(), 1);
    EXPECT_EQ(dim.dimtzin(), 8);
    EXPECT_EQ(dim.dimtdec(), 3);
    EXPECT_DOUBLE_EQ(dim.dimtfac(), 0.7);
    EXPECT_EQ(dim.dimtolj(), 1);
    EXPECT_TRUE(dim.dimtol());
    EXPECT_DOUBLE_EQ(dim.dimtm(), 0.01);
    EXPECT_DOUBLE_EQ(dim.dimtp(), 0.02);
    EXPECT_EQ(dim.dimdec(), 1);
    EXPECT_DOUBLE_EQ(dim.dimscale(), 20);
    EXPECT_DOUBLE_EQ(dim.dimasz(), 3);
    EXPECT_EQ(dim.dimzin(), 4);
    EXPECT_EQ(dim.dimlwd(), AcDb::kLnWt025);
    EXPECT_EQ(dim.dimlwe(), AcDb::kLnWt018);
    EXPECT_DOUBLE_EQ(dim.dimexe(), 1.5);
    EXPECT_DOUBLE_EQ(dim.dimexo(), 0.8);
    EXPECT_DOUBLE_EQ(dim.dimgap(), 0.9);
    EXPECT_EQ(dim.dimtad(), 1);
    EXPECT_EQ(dim.dimjust(), 2);
    EXPECT_TRUE(dim.dimtih());
    EXPECT_TRUE(dim.dimtoh());
    // Each one is stored as an override under its group code.
    EXPECT_EQ(dim.dimVarOverrides().size(), 24u);
    EXPECT_DOUBLE_EQ(dim.dimVarOverrides().at(140).real, 3.5);
}

TEST(DimensionVars, table_finds_variables_by_code_and_name) {
    const AcDbDimVarInfo* byName = acdbDimVarByName("DIMTXT");
    ASSERT_NE(byName, nullptr);
    EXPECT_EQ(byName->code, 140);
    EXPECT_EQ(acdbDimVarByCode(271), acdbDimVarByName("DIMDEC"));
    EXPECT_EQ(acdbDimVarByName("NOSUCH"), nullptr);
}

TEST(DimensionMeasure, rotated_measures_along_its_rotation) {
    AcDbRotatedDimension flat(0.0, {0, 0, 0}, {30, 40, 0}, {0, -10, 0});
    AcDbRotatedDimension upright(std::numbers::pi / 2, {0, 0, 0}, {30, 40, 0}, {-10, 0, 0});
    double v = -1;
    ASSERT_EQ(flat.measurement(v), Acad::eOk);
    EXPECT_NEAR(v, 30, 1e-12);
    ASSERT_EQ(upright.measurement(v), Acad::eOk);
    EXPECT_NEAR(v, 40, 1e-12);
}

TEST(DimensionMeasure, aligned_measures_the_distance) {
    AcDbAlignedDimension dim({0, 0, 0}, {30, 40, 0}, {0, 0, 0});
    double v = -1;
    ASSERT_EQ(dim.measurement(v), Acad::eOk);
    EXPECT_NEAR(v, 50, 1e-12);
}

TEST(DimensionMeasure, ordinate_measures_from_its_origin_along_its_axis) {
    AcDbOrdinateDimension dim(true, {12, 7, 0}, {12, 20, 0});
    dim.setOrigin({2, 3, 0});
    double v = -1;
    ASSERT_EQ(dim.measurement(v), Acad::eOk);
    EXPECT_NEAR(v, 10, 1e-12);
    dim.useYAxis();
    ASSERT_EQ(dim.measurement(v), Acad::eOk);
    EXPECT_NEAR(v, 4, 1e-12);
    dim.setDefiningPoint({2, 3, 0});
    ASSERT_EQ(dim.measurement(v), Acad::eOk);
    EXPECT_EQ(v, 0.0);
}

TEST(DimensionMeasure, diametric_radial_and_angular) {
    AcDbDiametricDimension dia;
    dia.setChordPoint({5, 0, 0});
    dia.setFarChordPoint({-5, 0, 0});
    AcDbRadialDimension rad;
    rad.setCenter({1, 1, 0});
    rad.setChordPoint({1, 4, 0});
    AcDb2LineAngularDimension ang;
    ang.setXLine1Start({0, 0, 0});
    ang.setXLine1End({10, 0, 0});
    ang.setXLine2Start({0, 0, 0});
    ang.setXLine2End({5, 5, 0});
    ang.setArcPoint({3, 1, 0});
    double v = -1;
    ASSERT_EQ(dia.measurement(v), Acad::eOk);
    EXPECT_NEAR(v, 10, 1e-12);
    ASSERT_EQ(rad.measurement(v), Acad::eOk);
    EXPECT_NEAR(v, 3, 1e-12);
    ASSERT_EQ(ang.measurement(v), Acad::eOk);
    EXPECT_NEAR(v, std::numbers::pi / 4, 1e-12);
    // The arc point on the other side picks the supplementary sector.
    ang.setArcPoint({-3, 1, 0});
    ASSERT_EQ(ang.measurement(v), Acad::eOk);
    EXPECT_NEAR(v, 3 * std::numbers::pi / 4, 1e-12);
}
