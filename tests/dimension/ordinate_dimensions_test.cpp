// The dimensions of a view: ordinates with their tolerance classes and origin, the outline
// branches, and the spreading of texts along an edge.
#include "dimension_fixture.hpp"

namespace {

class OrdinateDimensions : public DimensionTest {
protected:
    // The view box of the frame (100,100)-(410,310) with OFFSET 5: (105,105)-(405,305).
    void AddFrontView() { AddViewFrame(L"FRONT", 100, 100, 410, 310); }
    static const OrdinateSeen* Find(const std::vector<OrdinateSeen>& all, bool xAxis,
                                    const AcGePoint3d& at) {
        for (const OrdinateSeen& o : all)
            if (o.xAxis == xAxis && o.definingPoint.distanceTo(at) < 1e-9) return &o;
        return nullptr;
    }
    static std::vector<double> Positions(const std::vector<circle>& list, int axis) {
        std::vector<double> values;
        for (const circle& c : list) values.push_back(axis == 0 ? c.textPos.x : c.textPos.y);
        return values;
    }
};

TEST_F(OrdinateDimensions, without_datum_the_origin_seed_measures_zero_in_base_class_and_the_opposite_corner_is_coner) {
    AddFrontView();
    AddCircle(150, 150);
    DimensionView(L"FRONT");
    std::vector<OrdinateSeen> all = Ordinates();
    ASSERT_EQ(all.size(), 6u);  // x: LL, hole, UR; y: LL, hole, UR
    const OrdinateSeen* origin = Find(all, true, AcGePoint3d(105, 105, 0));
    ASSERT_NE(origin, nullptr);
    EXPECT_EQ(origin->measured, 0.0);
    EXPECT_EQ(origin->dimdec, 0);  // Basedec
    EXPECT_FALSE(origin->tolerance);
    const OrdinateSeen* corner = Find(all, true, AcGePoint3d(405, 305, 0));
    ASSERT_NE(corner, nullptr);
    EXPECT_EQ(corner->measured, 300.0);
    EXPECT_EQ(corner->dimdec, 2);  // Conerdec
    EXPECT_TRUE(corner->tolerance);
    EXPECT_EQ(corner->tm, 0.1);
    EXPECT_EQ(corner->tp, 0.2);
    const OrdinateSeen* hole = Find(all, false, AcGePoint3d(150, 150, 0));
    ASSERT_NE(hole, nullptr);
    EXPECT_EQ(hole->measured, 45.0);
    EXPECT_EQ(hole->dimdec, 1);  // Otherdec
    for (const OrdinateSeen& o : all) EXPECT_EQ(o.origin, AcGePoint3d(105, 105, 0));
}

TEST_F(OrdinateDimensions, leaders_end_beyond_the_view_box_by_the_ordinate_offset_at_z_zero) {
    AddFrontView();
    AddCircle(150, 150);
    DimensionView(L"FRONT");
    std::vector<OrdinateSeen> all = Ordinates();
    EXPECT_EQ(Find(all, true, AcGePoint3d(150, 150, 0))->leaderEnd, AcGePoint3d(150, 95, 0));
    EXPECT_EQ(Find(all, true, AcGePoint3d(405, 305, 0))->leaderEnd, AcGePoint3d(405, 315, 0));
    EXPECT_EQ(Find(all, false, AcGePoint3d(150, 150, 0))->leaderEnd, AcGePoint3d(95, 150, 0));
    EXPECT_EQ(Find(all, false, AcGePoint3d(405, 305, 0))->leaderEnd, AcGePoint3d(415, 305, 0));
}

TEST_F(OrdinateDimensions, with_datum_every_ordinate_measures_from_it_and_the_corner_seed_is_other) {
    AddFrontView();
    AddCircle(150, 150);
    AddCircle(255, 205, 256, L"FRONT");
    DimensionView(L"FRONT");
    std::vector<OrdinateSeen> all = Ordinates();
    for (const OrdinateSeen& o : all) EXPECT_EQ(o.origin, AcGePoint3d(255, 205, 0));
    const OrdinateSeen* seed = Find(all, true, AcGePoint3d(105, 105, 0));
    ASSERT_NE(seed, nullptr);
    EXPECT_EQ(seed->dimdec, 1);  // Otherdec
    EXPECT_EQ(seed->measured, 150.0);
    const OrdinateSeen* datum = Find(all, false, AcGePoint3d(255, 205, 0));
    ASSERT_NE(datum, nullptr);
    EXPECT_EQ(datum->dimdec, 0);  // Basedec
}

TEST_F(OrdinateDimensions, red_circle_on_the_opposite_corner_is_coner_and_shadows_the_seed) {
    AddFrontView();
    AddCircle(405, 305, 1);
    AddCircle(150, 150, 1);
    DimensionView(L"FRONT");
    std::vector<OrdinateSeen> all = Ordinates();
    int onCorner = 0;
    for (const OrdinateSeen& o : all)
        if (o.xAxis && o.definingPoint == AcGePoint3d(405, 305, 0)) ++onCorner;
    EXPECT_EQ(onCorner, 1);
    EXPECT_EQ(Find(all, true, AcGePoint3d(405, 305, 0))->dimdec, 2);  // Coner, not Reddec
    const OrdinateSeen* red = Find(all, true, AcGePoint3d(150, 150, 0));
    ASSERT_NE(red, nullptr);
    EXPECT_EQ(red->dimdec, 3);  // Reddec
    EXPECT_TRUE(red->tolerance);
    EXPECT_EQ(red->tp, 0.015);
}

TEST_F(OrdinateDimensions, tolerance_off_leaves_the_tolerance_variables_untouched_yet_sets_dimdec) {
    AcDbObjectId id;
    MakeOrdinate(id, 0, AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0), AcGePoint3d(10, -10, 0), 2.0,
                 1.9, {0.5, 0.6, 1});
    AcDbOrdinateDimension* dim = nullptr;
    ASSERT_EQ(acdbOpenObject(dim, id, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(dim->dimVarOverrides().count(71), 0u);
    EXPECT_EQ(dim->dimVarOverrides().count(47), 0u);
    EXPECT_EQ(dim->dimVarOverrides().count(48), 0u);
    EXPECT_EQ(dim->dimdec(), 1);  // 1.9 truncated
    EXPECT_EQ(dim->dimscale(), 2.0);
    EXPECT_TRUE(dim->isUsingXAxis());
    dim->close();
}

TEST_F(OrdinateDimensions, ordinate_keeps_the_variables_it_is_born_with_and_the_outline_sets_them) {
    DimStyleKeys& keys = Module().cadStandardIni.dimStyle;
    keys.DIMASZ = 4.0;
    keys.DIMCLRD = 3;
    keys.DIMCLRT = 7;
    keys.DIMTFAC = 0.7;
    AcDbObjectId id;
    MakeOrdinate(id, 1, AcGePoint3d(0, 0, 0), AcGePoint3d(0, 10, 0), AcGePoint3d(-10, 10, 0), 1.0,
                 1, {0.0, 0.0, 1});
    AcDbOrdinateDimension* dim = nullptr;
    ASSERT_EQ(acdbOpenObject(dim, id, AcDb::kForRead), Acad::eOk);
    for (int code : {41, 78, 44, 42, 147, 77, 371, 372}) EXPECT_EQ(dim->dimVarOverrides().count(code), 0u) << code;
    EXPECT_EQ(dim->dimclrd().colorIndex(), 3);
    EXPECT_EQ(dim->dimclrt().colorIndex(), 7);
    EXPECT_EQ(dim->dimtfac(), 0.7);
    EXPECT_FALSE(dim->isUsingXAxis());
    dim->close();
    MakeOutlineDimension(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0), AcGePoint3d(5, -10, 0), 0.0, 1.0);
    AcDbRotatedDimension* outline = nullptr;
    ASSERT_EQ(acdbOpenObject(outline, RotatedDimensions().at(0), AcDb::kForRead), Acad::eOk);
    for (int code : {41, 78, 44, 42, 147, 77, 371, 372, 280, 73, 74}) EXPECT_EQ(outline->dimVarOverrides().count(code), 1u) << code;
    EXPECT_EQ(outline->dimasz(), 4.0);
    EXPECT_EQ(outline->dimdec(), 1);  // Eveldec
    outline->close();
}

TEST_F(OrdinateDimensions, texts_exactly_a_pitch_apart_stay_and_a_gap_just_below_moves_both) {
    std::vector<circle> apart = {Record(0, 0), Record(7, 0)};
    SpreadTextPositions(apart, 0);
    EXPECT_EQ(Positions(apart, 0), (std::vector<double>{0.0, 7.0}));
    std::vector<circle> close = {Record(0, 0), Record(0, 6.999)};
    SpreadTextPositions(close, 1);
    EXPECT_EQ(Positions(close, 1), (std::vector<double>{-3.5, 6.999 + 3.5}));
    EXPECT_EQ(close[1].center.y, 6.999);  // the ordinate still measures the centre
}

TEST_F(OrdinateDimensions, three_stacked_texts_end_strictly_rising_and_a_list_of_one_stays) {
    std::vector<circle> stacked = {Record(10, 0), Record(10, 1), Record(10, 2)};
    SpreadTextPositions(stacked, 0);
    std::vector<double> x = Positions(stacked, 0);
    EXPECT_LT(x[0], x[1]);
    EXPECT_LT(x[1], x[2]);
    EXPECT_GE(x[1] - x[0], 7.0);
    EXPECT_GE(x[2] - x[1], 7.0);
    std::vector<circle> one = {Record(10, 0)};
    SpreadTextPositions(one, 0);
    EXPECT_EQ(Positions(one, 0), std::vector<double>{10.0});
}

TEST_F(OrdinateDimensions, left_views_outline_dimension_runs_from_the_right_hand_corner) {
    State().viewKind = 1;
    AddViewFrame(L"LEFT", 100, 100, 410, 310);
    DimensionView(L"LEFT");
    std::vector<AcDbObjectId> dims = RotatedDimensions();
    ASSERT_EQ(dims.size(), 1u);
    AcDbRotatedDimension* dim = nullptr;
    acdbOpenObject(dim, dims[0], AcDb::kForRead);
    EXPECT_EQ(dim->xLine1Point(), AcGePoint3d(405, 105, 0));
    EXPECT_EQ(dim->xLine2Point(), AcGePoint3d(105, 105, 0));
    EXPECT_EQ(dim->rotation(), 0.0);
    EXPECT_EQ(dim->dimLinePoint().y, 95.0);
    EXPECT_EQ(dim->dimscale(), 2.0);
    dim->close();
    EXPECT_NE(CgLog().find(L"无圆 左视图\n"), std::wstring::npos);
}

TEST_F(OrdinateDimensions, top_views_outline_dimension_is_the_height_on_the_right) {
    State().viewKind = 2;
    AddViewFrame(L"TOP", 100, 100, 410, 310);
    DimensionView(L"TOP");
    std::vector<AcDbObjectId> dims = RotatedDimensions();
    ASSERT_EQ(dims.size(), 1u);
    AcDbRotatedDimension* dim = nullptr;
    acdbOpenObject(dim, dims[0], AcDb::kForRead);
    EXPECT_EQ(dim->xLine1Point(), AcGePoint3d(405, 105, 0));
    EXPECT_EQ(dim->xLine2Point(), AcGePoint3d(405, 305, 0));
    EXPECT_EQ(dim->rotation(), 1.5707963267948966);
    EXPECT_EQ(dim->dimLinePoint().x, 415.0);
    dim->close();
}

struct DatumCase {
    int viewKind;
    double x, y;        // the datum marker
    size_t ordinates;   // made in the outline branch with circles
    bool datumKept;
};

class OutlineWithCircles : public OrdinateDimensions, public testing::WithParamInterface<DatumCase> {};

TEST_P(OutlineWithCircles, datum_on_a_corner_decides_the_origin_and_the_datums_own_ordinates) {
    const DatumCase& c = GetParam();
    Module().cadStandardIni.sundry.CIRCOUNT = 1;
    State().viewKind = c.viewKind;
    const std::wstring layer = c.viewKind == 1 ? L"LEFT" : L"FRONT";
    AddViewFrame(layer, 100, 100, 410, 310);
    AddCircle(150, 150);
    AddCircle(c.x, c.y, 256, layer);
    DimensionView(layer);
    std::vector<OrdinateSeen> all = Ordinates();
    EXPECT_EQ(all.size(), c.ordinates);
    EXPECT_EQ(State().haveDatum, c.datumKept);
    const AcGePoint3d origin = c.viewKind == 1 ? AcGePoint3d(405, 105, 0) : AcGePoint3d(105, 105, 0);
    for (const OrdinateSeen& o : all) {
        EXPECT_EQ(o.origin, c.datumKept ? AcGePoint3d(c.x, c.y, 0) : origin);
        if (o.definingPoint.distanceTo(o.origin) > 1e-5) {
            EXPECT_EQ(o.dimdec, 2);  // Coner
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Corners, OutlineWithCircles,
    testing::Values(DatumCase{0, 405, 305, 4, true},    // on the opposite corner: no 5 and 6
                    DatumCase{1, 105, 305, 4, true},
                    DatumCase{0, 105, 105, 4, false},   // on the origin corner: no datum
                    DatumCase{1, 405, 105, 4, false},
                    DatumCase{0, 255, 205, 6, true},    // inside: the datum's own two
                    DatumCase{1, 255, 205, 6, true}));

TEST_F(OrdinateDimensions, outline_branch_with_circles_logs_the_left_views_line_after_the_datum_test) {
    Module().cadStandardIni.sundry.CIRCOUNT = 1;
    State().viewKind = 1;
    AddViewFrame(L"LEFT", 100, 100, 410, 310);
    AddCircle(150, 150);
    DimensionView(L"LEFT");
    EXPECT_NE(CgLog().find(L"有圆,外形标注\n有圆 主视图\n"), std::wstring::npos);
    const OrdinateSeen* first = &Ordinates().at(0);
    EXPECT_FALSE(first->xAxis);
    EXPECT_EQ(first->definingPoint, AcGePoint3d(105, 305, 0));
    EXPECT_EQ(first->leaderEnd, AcGePoint3d(95, 305, 0));
}

TEST_F(OrdinateDimensions, left_view_measures_from_its_lower_right_corner) {
    State().viewKind = 1;
    AddViewFrame(L"LEFT", 100, 100, 410, 310);
    AddCircle(150, 150);
    DimensionView(L"LEFT");
    std::vector<OrdinateSeen> all = Ordinates();
    ASSERT_FALSE(all.empty());
    for (const OrdinateSeen& o : all) EXPECT_EQ(o.origin, AcGePoint3d(405, 105, 0));
    EXPECT_EQ(Find(all, true, AcGePoint3d(105, 305, 0))->dimdec, 2);  // UL is the opposite corner
}

}  // namespace

namespace {

class OrdinateVariables : public OrdinateDimensions {};

TEST_F(OrdinateVariables, ordinate_takes_text_and_tolerance_format_variables_from_the_standard) {
    DimStyleKeys& keys = Module().cadStandardIni.dimStyle;
    keys.DIMTXT = 3.5;  // not the 2.5 a new dimension is born with
    keys.DIMTZIN = 4;
    keys.DIMTDEC = 3;
    keys.DIMTFAC = 0.6;
    keys.DIMTOLJ = 2;
    keys.DIMCLRE = 5;
    AcDbObjectId id;
    MakeOrdinate(id, 0, AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0), AcGePoint3d(10, -10, 0), 1.0, 2,
                 {0.01, 0.02, 0});
    AcDbOrdinateDimension* dim = nullptr;
    ASSERT_EQ(acdbOpenObject(dim, id, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(dim->dimtxt(), 3.5);
    EXPECT_EQ(dim->dimtzin(), 4);
    EXPECT_EQ(dim->dimtdec(), 3);
    EXPECT_EQ(dim->dimtfac(), 0.6);
    EXPECT_EQ(dim->dimtolj(), 2);
    EXPECT_EQ(dim->dimclre().colorIndex(), 5);
    EXPECT_EQ(dim->dimtm(), 0.01);
    EXPECT_EQ(dim->dimtp(), 0.02);
    EXPECT_EQ(dim->leaderEndPoint(), AcGePoint3d(10, -10, 0));
    dim->close();
}

struct ThresholdCase {
    double gap;    // distance of the defining point from the origin or the opposite corner
    int dimdec;    // the class's decimals that result
};

class BaseThreshold : public OrdinateDimensions, public testing::WithParamInterface<ThresholdCase> {};

TEST_P(BaseThreshold, point_within_1e05_of_the_origin_takes_the_base_class) {
    AcDbObjectId id;
    MakeOrdinate(id, 1, AcGePoint3d(0, 0, 0), AcGePoint3d(0, GetParam().gap, 0), AcGePoint3d(-5, 0, 0),
                 1.0, 1, {0.0, 0.0, 1});  // Basedec is 0
    AcDbOrdinateDimension* dim = nullptr;
    ASSERT_EQ(acdbOpenObject(dim, id, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(dim->dimdec(), GetParam().dimdec);
    dim->close();
}

INSTANTIATE_TEST_SUITE_P(Boundary, BaseThreshold,
                         testing::Values(ThresholdCase{0.9e-05, 0}, ThresholdCase{1e-05, 0},
                                         ThresholdCase{1.1e-05, 1}));

class ConerThreshold : public OrdinateDimensions, public testing::WithParamInterface<ThresholdCase> {};

TEST_P(ConerThreshold, record_within_1e05_of_the_opposite_corner_takes_the_coner_class) {
    AddFrontView();
    DimensionView(L"FRONT");  // sets the view box: opposite corner (405, 305)
    for (const AcDbObjectId& id : ModelSpaceIds(Drawing())) {
        AcDbEntity* e = nullptr;
        acdbOpenAcDbEntity(e, id, AcDb::kForWrite);
        if (AcDbDimension::cast(e)) e->erase();
        e->close();
    }
    std::vector<circle> top = {Record(405, 305 - GetParam().gap)}, bottom;
    WriteXOrdinates(top, bottom, AcDbExtents());
    std::vector<OrdinateSeen> all = Ordinates();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].dimdec, GetParam().dimdec);
}

INSTANTIATE_TEST_SUITE_P(Boundary, ConerThreshold,
                         testing::Values(ThresholdCase{0.9e-05, 2}, ThresholdCase{1.1e-05, 1}));

TEST_F(OrdinateVariables, outline_dimension_takes_the_tolerance_format_variables) {
    DimStyleKeys& keys = Module().cadStandardIni.dimStyle;
    keys.DIMTZIN = 4;
    keys.DIMTDEC = 3;
    keys.DIMTFAC = 0.6;
    keys.DIMTOLJ = 2;
    keys.DIMTXT = 2.5;
    MakeOutlineDimension(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0), AcGePoint3d(5, -10, 0), 0.0, 1.0);
    AcDbRotatedDimension* dim = nullptr;
    ASSERT_EQ(acdbOpenObject(dim, RotatedDimensions().at(0), AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(dim->dimtzin(), 4);
    EXPECT_EQ(dim->dimtdec(), 3);
    EXPECT_EQ(dim->dimtfac(), 0.6);
    EXPECT_EQ(dim->dimtolj(), 2);
    EXPECT_EQ(dim->dimtxt(), 2.5);
    dim->close();
}

TEST_F(OrdinateVariables, datum_a_little_off_the_origin_corner_stays_the_datum) {
    Module().cadStandardIni.sundry.CIRCOUNT = 1;
    AddFrontView();
    AddCircle(150, 150);
    AddCircle(105.0015, 105, 256, L"FRONT");
    DimensionView(L"FRONT");
    EXPECT_TRUE(State().haveDatum);
    for (const OrdinateSeen& o : Ordinates()) EXPECT_EQ(o.origin, AcGePoint3d(105.0015, 105, 0));
}

TEST_F(OrdinateVariables, ordinates_are_made_in_the_order_of_their_sorted_lists) {
    State().viewKind = 0;
    std::vector<circle> top = {Record(300, 200), Record(100, 200), Record(200, 200)}, bottom;
    WriteXOrdinates(top, bottom, AcDbExtents());
    std::vector<circle> left, right = {Record(300, 250), Record(300, 50), Record(300, 150)};
    WriteYOrdinates(left, right, AcDbExtents());
    std::vector<OrdinateSeen> all = Ordinates();
    ASSERT_EQ(all.size(), 6u);
    EXPECT_EQ(all[0].definingPoint.x, 100.0);
    EXPECT_EQ(all[1].definingPoint.x, 200.0);
    EXPECT_EQ(all[2].definingPoint.x, 300.0);
    EXPECT_EQ(all[3].definingPoint.y, 50.0);
    EXPECT_EQ(all[4].definingPoint.y, 150.0);
    EXPECT_EQ(all[5].definingPoint.y, 250.0);
}

}  // namespace
