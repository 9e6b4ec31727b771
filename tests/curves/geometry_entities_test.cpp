// The geometry kit's functions on entities: bulges, lengths and points of curves, and the new
// lines, arcs and circles.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "batch_fixture.hpp"
#include "curves/curve_record.hpp"
#include "curves/geometry.hpp"
#include "geometry_matchers.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/text.hpp"

namespace {

using P = AcGePoint3d;

TEST(ArcBulge, half_circle_is_1) {
    AcDbArc arc(P(0, 0, 0), 5.0, 0.0, M_PI);
    EXPECT_NEAR(ArcBulge(&arc), 1.0, 1e-12);
}

TEST(ArcBulge, end_below_start_adds_a_full_turn) {
    AcDbArc arc(P(0, 0, 0), 5.0, 1.5 * M_PI, 0.5 * M_PI);
    EXPECT_NEAR(ArcBulge(&arc), 1.0, 1e-12);
    AcDbArc quarter(P(0, 0, 0), 5.0, 1.75 * M_PI, 0.25 * M_PI);
    EXPECT_NEAR(ArcBulge(&quarter), std::tan(M_PI / 8), 1e-12);
}

TEST(ArcBulge, full_turn_is_added_only_when_the_end_lies_strictly_below_the_start) {
    struct Case {
        const char* name;
        double end;
        double bulge;
    };
    const double start = 1.0;
    const Case cases[] = {
        {"end just above the start", start + 1e-9, std::tan(1e-9 * 0.25)},
        {"end on the start", start, 0.0},
        {"end just below the start", start - 1e-9, std::tan((2 * M_PI - 1e-9) * 0.25)},
    };
    for (const auto& c : cases) {
        AcDbArc arc(P(0, 0, 0), 5.0, start, c.end);
        EXPECT_NEAR(ArcBulge(&arc), c.bulge, std::fabs(c.bulge) * 1e-6 + 1e-15) << c.name;
    }
}

TEST(ArcBulge, anything_but_an_arc_is_0) {
    AcDbLine line(P(0, 0, 0), P(1, 0, 0));
    AcDbCircle circle(P(0, 0, 0), AcGeVector3d(0, 0, 1), 5.0);
    EXPECT_EQ(ArcBulge(&line), 0.0);
    EXPECT_EQ(ArcBulge(&circle), 0.0);
}

TEST(CurveLength, length_at_the_end_parameter) {
    AcDbLine line(P(1, 1, 0), P(4, 5, 0));
    AcDbArc arc(P(0, 0, 0), 2.0, 0.5 * M_PI, 1.5 * M_PI);
    AcDbCircle circle(P(0, 0, 0), AcGeVector3d(0, 0, 1), 1.0);
    EXPECT_DOUBLE_EQ(CurveLength(&line), 5.0);
    EXPECT_DOUBLE_EQ(CurveLength(&arc), 2.0 * M_PI);
    EXPECT_DOUBLE_EQ(CurveLength(&circle), 2.0 * M_PI);
}

class GeometryOfIds : public BatchTest {
protected:
    AcDbObjectId AddToDrawing(AcDbEntity* entity) { return Add(*hostDrawing_, entity); }
};

TEST_F(GeometryOfIds, curve_length_of_an_id_that_does_not_open_is_minus_1) {
    EXPECT_EQ(CurveLengthOfId(AcDbObjectId()), -1.0);
    AcDbObjectId line = AddToDrawing(new AcDbLine(P(0, 0, 0), P(0, 7, 0)));
    EXPECT_DOUBLE_EQ(CurveLengthOfId(line), 7.0);
    EXPECT_EQ(CurveLengthOfId(AddToDrawing(new AcDbText)), 0.0);
}

TEST_F(GeometryOfIds, curve_length_of_an_erased_entity_is_minus_1) {
    AcDbObjectId line = AddToDrawing(new AcDbLine(P(0, 0, 0), P(0, 7, 0)));
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(entity, line, AcDb::kForWrite), Acad::eOk);
    entity->erase();
    entity->close();
    EXPECT_EQ(CurveLengthOfId(line), -1.0);
}

TEST_F(GeometryOfIds, point_at_a_fraction_takes_ends_and_a_parameter_without_the_start) {
    AcDbObjectId line = AddToDrawing(new AcDbLine(P(0, 0, 0), P(10, 0, 0)));
    EXPECT_EQ(CurvePointAt(line, 0.0), P(0, 0, 0));
    EXPECT_EQ(CurvePointAt(line, 1.0), P(10, 0, 0));
    EXPECT_THAT(CurvePointAt(line, 0.25), IsNearPoint(P(2.5, 0, 0), 1e-12));
    // An arc over 45 to 225 degrees: the half of the range, pi/2, is taken as it is, so the
    // point lies at 90 degrees and not at 135.
    AcDbObjectId arc = AddToDrawing(new AcDbArc(P(0, 0, 0), 2.0, 0.25 * M_PI, 1.25 * M_PI));
    EXPECT_THAT(CurvePointAt(arc, 0.5), IsNearPoint(P(0, 2, 0), 1e-12));
    EXPECT_THAT(CurvePointAt(arc, 0.0), IsNearPoint(P(std::sqrt(2.0), std::sqrt(2.0), 0), 1e-12));
    EXPECT_THAT(CurvePointAt(arc, 1.0), IsNearPoint(P(-std::sqrt(2.0), -std::sqrt(2.0), 0), 1e-12));
}

TEST_F(GeometryOfIds, only_fractions_of_exactly_0_and_1_give_the_end_points) {
    // An arc over 45 to 225 degrees of radius 2: a fraction is taken of the range pi without the
    // start parameter, so just before 1 lies near 180 degrees, and near 0 the parameter lies off
    // the arc, which gives no point: the origin.
    AcDbObjectId arc = AddToDrawing(new AcDbArc(P(0, 0, 0), 2.0, 0.25 * M_PI, 1.25 * M_PI));
    const double r = std::sqrt(2.0);
    struct Case {
        const char* name;
        double fraction;
        P point;
    };
    const Case cases[] = {
        {"just below 0", -1e-12, P(0, 0, 0)},
        {"on 0", 0.0, P(r, r, 0)},
        {"just above 0", 1e-12, P(0, 0, 0)},
        {"just below 1", 1.0 - 1e-12, P(-2, 0, 0)},
        {"on 1", 1.0, P(-r, -r, 0)},
        {"just above 1", 1.0 + 1e-12, P(-2, 0, 0)},
    };
    for (const auto& c : cases) EXPECT_THAT(CurvePointAt(arc, c.fraction), IsNearPoint(c.point, 1e-9)) << c.name;
}

TEST_F(GeometryOfIds, point_at_a_fraction_of_what_does_not_open_is_the_origin) {
    EXPECT_EQ(CurvePointAt(AcDbObjectId(), 0.0), P(0, 0, 0));
    EXPECT_EQ(CurvePointAt(AddToDrawing(new AcDbText), 1.0), P(0, 0, 0));
}

TEST(MakeLine, line_between_the_points) {
    AcDbLine* line = nullptr;
    MakeLine(P(1, 2, 3), P(4, 5, 6), line);
    std::unique_ptr<AcDbLine> owned(line);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->startPoint(), P(1, 2, 3));
    EXPECT_EQ(line->endPoint(), P(4, 5, 6));
    EXPECT_TRUE(line->objectId().isNull());
}

TEST(MakeArcOrCircle, start_0_and_end_360_exactly_make_a_circle) {
    struct Case {
        const char* name;
        double start;
        double end;
        int type;
    };
    const Case cases[] = {
        {"0 to 360", 0.0, 360.0, 2002},
        {"0 to just above 360", 0.0, 360.0000001, 2003},
        {"0 to just below 360", 0.0, 359.9999999, 2003},
        {"just above 0 to 360", 1e-9, 360.0, 2003},
    };
    for (const auto& c : cases) {
        AcDbEntity* entity = nullptr;
        MakeArcOrCircle(P(1, 1, 0), 3.0, c.start, c.end, entity);
        std::unique_ptr<AcDbEntity> owned(entity);
        EXPECT_EQ(EntityTypeOf(entity), c.type) << c.name;
    }
}

TEST(MakeArcOrCircle, angles_turn_into_radians_and_the_circle_faces_up) {
    AcDbEntity* entity = nullptr;
    MakeArcOrCircle(P(1, 1, 0), 3.0, 90.0, 180.0, entity);
    std::unique_ptr<AcDbEntity> owned(entity);
    auto* arc = AcDbArc::cast(entity);
    ASSERT_NE(arc, nullptr);
    EXPECT_EQ(arc->startAngle(), 90.0 * 3.141592653589793 / 180);
    EXPECT_EQ(arc->endAngle(), 180.0 * 3.141592653589793 / 180);
    EXPECT_EQ(arc->radius(), 3.0);
    EXPECT_EQ(arc->center(), P(1, 1, 0));
    AcDbEntity* full = nullptr;
    MakeArcOrCircle(P(1, 1, 0), 3.0, 0.0, 360.0, full);
    std::unique_ptr<AcDbEntity> ownedFull(full);
    auto* circle = AcDbCircle::cast(full);
    ASSERT_NE(circle, nullptr);
    EXPECT_EQ(circle->normal(), AcGeVector3d(0, 0, 1));
    EXPECT_EQ(circle->radius(), 3.0);
}

TEST(MakeArcThroughPoints, arc_runs_counter_clockwise_over_the_mid_point_either_way) {
    for (bool reversed : {false, true}) {
        P start(4, -3, 0), end(4, 3, 0);
        if (reversed) std::swap(start, end);
        AcDbEntity* entity = nullptr;
        MakeArcThroughPoints(start, P(5, 0, 0), end, entity);
        std::unique_ptr<AcDbEntity> owned(entity);
        auto* arc = AcDbArc::cast(entity);
        ASSERT_NE(arc, nullptr) << reversed;
        AcGePoint3d s, e, m;
        arc->getStartPoint(s);
        arc->getEndPoint(e);
        double sp = 0, ep = 0;
        arc->getStartParam(sp);
        arc->getEndParam(ep);
        arc->getPointAtParam((sp + ep) / 2, m);
        EXPECT_THAT(s, IsNearPoint(P(4, -3, 0), 1e-9)) << reversed;
        EXPECT_THAT(e, IsNearPoint(P(4, 3, 0), 1e-9)) << reversed;
        EXPECT_THAT(m, IsNearPoint(P(5, 0, 0), 1e-9)) << reversed;
    }
}

TEST(MakeArcThroughPoints, lies_at_z_0) {
    AcDbEntity* entity = nullptr;
    MakeArcThroughPoints(P(4, -3, 2), P(5, 0, 2), P(4, 3, 2), entity);
    std::unique_ptr<AcDbEntity> owned(entity);
    auto* arc = AcDbArc::cast(entity);
    ASSERT_NE(arc, nullptr);
    EXPECT_EQ(arc->center().z, 0.0);
}

TEST(MakeArcThroughPoints, refused_circle_makes_nothing_and_leaves_the_out_entity) {
    AcDbLine sentinel;
    AcDbEntity* entity = &sentinel;
    MakeArcThroughPoints(P(0, 0, 0), P(1, 1, 0), P(2, 2, 0), entity);
    EXPECT_EQ(entity, &sentinel);
    MakeArcThroughPoints(P(0, 0, 0), P(10, 0.0005, 0), P(5, 5, 0), entity);
    EXPECT_EQ(entity, &sentinel);
}

}  // namespace
