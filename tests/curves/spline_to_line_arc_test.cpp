// FunSplineToLineAndArc: splines and ellipses that are whole lines, arcs or circles.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "curves/geometry.hpp"
#include "curves/spline_to_line_arc.hpp"
#include "curves_fixture.hpp"
#include "geometry_matchers.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/ellipse.hpp"
#include "spline_builders.hpp"

namespace {

using P = AcGePoint3d;

class SplineToLineAndArc : public CurvesTest {
protected:
    void SetUp() override {
        CurvesTest::SetUp();
        Settings(0.05, 0.05);
    }
    void Settings(double toleranceLine, double toleranceArc, int open = 1) {
        WriteSections(L"[SplineToLineAndArc]\nBolOpen=" + std::to_wstring(open) +
                      L"\nToleranceLine=" + std::to_wstring(toleranceLine) +
                      L"\nToleranceArc=" + std::to_wstring(toleranceArc) + L"\n");
    }
    void Run() { Cleanup().FunSplineToLineAndArc(); }
    static AcDbSpline* StraightSpline(double z = 0.0) {
        return ClampedSpline({P(0, 0, z), P(3, 1.5, z), P(6, 3, z), P(10, 5, z)});
    }
    // Points of the samples' worst distance from the chord and from the samples' circle.
    static double WorstChordDistance(const AcGePoint3dArray& s) {
        const P& f = s.first();
        const P& l = s.last();
        double worst = 0.0;
        for (const P& p : s) worst = std::fmax(worst, PointOnChordDistance(p, f, l));
        return worst;
    }
    static double PointOnChordDistance(const P& p, const P& f, const P& l) {
        double A = l.y - f.y, B = f.x - l.x, C = l.x * f.y - f.x * l.y;
        return std::fabs(p.x * A + p.y * B + C) / std::sqrt(A * A + B * B);
    }
};

TEST_F(SplineToLineAndArc, straight_spline_becomes_a_line_between_its_first_and_last_sample_with_their_z) {
    AcDbObjectId spline = AddToDrawing(ClampedSpline({P(0, 0, 2), P(3, 1.5, 2), P(6, 3, 2), P(10, 5, 3)}));
    Run();
    EXPECT_TRUE(IsGone(spline));
    auto lines = ModelSpaceLines(Drawing());
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_THAT(lines[0].first, IsNearPoint(P(0, 0, 2), 1e-12));
    EXPECT_THAT(lines[0].second, IsNearPoint(P(10, 5, 3), 1e-12));
}

TEST_F(SplineToLineAndArc, sample_on_the_line_tolerance_refuses_the_line) {
    std::unique_ptr<AcDbSpline> bent(ClampedSpline({P(0, 0, 0), P(3, 0.05, 0), P(6, 0.05, 0), P(10, 0, 0)}));
    double worst = WorstChordDistance(SampleCurve(bent.get()));
    ASSERT_GT(worst, 0.01);
    std::unique_ptr<AcDbEntity> onBoundary(FitLine(bent.get(), worst));
    std::unique_ptr<AcDbEntity> inside(FitLine(bent.get(), std::nextafter(worst, 1.0)));
    EXPECT_EQ(onBoundary, nullptr);
    EXPECT_NE(inside, nullptr);
}

TEST_F(SplineToLineAndArc, sample_on_the_arc_tolerance_still_allows_the_arc) {
    // A cubic spline near the arc of radius 10 from 20 to 140 degrees.
    std::vector<P> controls;
    for (int k = 0; k < 5; ++k) {
        double a = (20.0 + 30.0 * k) * M_PI / 180, r = (k == 0 || k == 4) ? 10.0 : 10.3;
        controls.push_back(P(r * std::cos(a), r * std::sin(a), 0));
    }
    std::unique_ptr<AcDbSpline> near(ClampedSpline(controls));
    AcGePoint3dArray samples = SampleCurve(near.get());
    int m = samples.length();
    P center;
    double radius = 0.0;
    ASSERT_TRUE(CircleFromThreePoints(samples[0], samples[m / 3], samples[2 * m / 3], center, radius));
    double worst = 0.0;
    for (const P& p : samples) worst = std::fmax(worst, std::fabs(radius - PointDistance(p, center)));
    ASSERT_GT(worst, 1e-4);
    std::unique_ptr<AcDbEntity> loose(FitArc(near.get(), 1.0));
    ASSERT_NE(loose, nullptr);
    std::unique_ptr<AcDbEntity> onBoundary(FitArc(near.get(), worst));
    std::unique_ptr<AcDbEntity> outside(FitArc(near.get(), std::nextafter(worst, 0.0)));
    EXPECT_NE(onBoundary, nullptr);
    EXPECT_EQ(outside, nullptr);
}

TEST_F(SplineToLineAndArc, samples_follow_the_stretch_point_count_between_10_and_30) {
    std::unique_ptr<AcDbSpline> few(StraightSpline());
    AcGePoint3dArray samples = SampleCurve(few.get());
    ASSERT_EQ(samples.length(), 11);
    EXPECT_EQ(samples[9], samples[10]);
    double sp = 0, ep = 0;
    few->getStartParam(sp);
    few->getEndParam(ep);
    P ninth;
    few->getPointAtParam((ep - sp) / 9 + sp, ninth);
    EXPECT_EQ(samples[1], ninth);
    std::vector<P> twenty, forty;
    for (int i = 0; i < 20; ++i) twenty.push_back(P(i, 0, 0));
    for (int i = 0; i < 40; ++i) forty.push_back(P(i, 0, 0));
    std::unique_ptr<AcDbSpline> mid(ClampedSpline(twenty));
    std::unique_ptr<AcDbSpline> many(ClampedSpline(forty));
    EXPECT_EQ(SampleCurve(mid.get()).length(), 21);
    EXPECT_EQ(SampleCurve(many.get()).length(), 31);
}

TEST_F(SplineToLineAndArc, thirty_one_stretch_points_give_thirty_samples_and_the_end_point) {
    std::vector<P> points;
    for (int i = 0; i < 31; ++i) points.push_back(P(i, 0, 0));
    std::unique_ptr<AcDbSpline> spline(ClampedSpline(points));
    EXPECT_EQ(SampleCurve(spline.get()).length(), 31);
}

TEST_F(SplineToLineAndArc, periodic_spline_is_sampled_up_to_its_end_parameter_only) {
    // A periodic spline takes parameters beyond its end round again: one step more would give
    // one sample more.
    auto* spline = new AcDbSpline;
    spline->setNurbsData(3, false, true, true, {P(0, 0, 0), P(6, 0, 0), P(9, 4, 0), P(6, 8, 0), P(0, 8, 0), P(-3, 4, 0)},
                         {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, {});
    std::unique_ptr<AcDbSpline> owned(spline);
    P beyond;
    ASSERT_EQ(spline->getPointAtParam(7.5, beyond), Acad::eOk);
    EXPECT_EQ(SampleCurve(spline).length(), 11);
}

TEST_F(SplineToLineAndArc, samples_run_from_the_start_parameter) {
    // Knots from 5 to 6: the parameters of the samples are counted from 5.
    auto* spline = new AcDbSpline;
    spline->setNurbsData(3, false, false, false, {P(0, 0, 0), P(1, 3, 0), P(2, -3, 0), P(3, 0, 0)},
                         {5, 5, 5, 5, 6, 6, 6, 6}, {});
    std::unique_ptr<AcDbSpline> owned(spline);
    AcGePoint3dArray samples = SampleCurve(spline);
    ASSERT_EQ(samples.length(), 11);
    P expected;
    spline->getPointAtParam(5.0 + 1.0 / 9, expected);
    EXPECT_EQ(samples[1], expected);
}

TEST_F(SplineToLineAndArc, spline_shorter_than_the_line_tolerance_is_no_line_but_may_be_an_arc) {
    Settings(0.05, 0.001);
    AcDbObjectId shortStraight = AddToDrawing(ClampedSpline({P(0, 0, 0), P(0.01, 0.01, 0), P(0.02, 0.02, 0), P(0.03, 0.03, 0)}));
    AcDbObjectId shortArc = AddToDrawing(ArcSpline(P(50, 50, 0), 0.01, -90.0, 180.0));
    Run();
    EXPECT_FALSE(IsGone(shortStraight));
    EXPECT_TRUE(IsGone(shortArc));
    EXPECT_EQ(CountOfType(2001), 0);
    EXPECT_EQ(CountOfType(2003), 1);
}

TEST_F(SplineToLineAndArc, arc_shaped_spline_becomes_an_arc_with_a_single_precision_radius) {
    AcDbObjectId spline = AddToDrawing(ArcSpline(P(3, 4, 0), 1000.00002, 10.0, 60.0));
    Run();
    EXPECT_TRUE(IsGone(spline));
    AcDbObjectIdArray arcs = IdsOfType(2003);
    ASSERT_EQ(arcs.length(), 1);
    InspectAs<AcDbArc>(arcs[0], [](AcDbArc* arc) {
        EXPECT_EQ(arc->radius(), static_cast<double>(static_cast<float>(arc->radius())));
        EXPECT_NEAR(arc->radius(), 1000.00002, 1e-3);
        AcGePoint3d s, e;
        arc->getStartPoint(s);
        arc->getEndPoint(e);
        EXPECT_THAT(s, IsNearPoint(P(3 + 1000 * std::cos(10 * M_PI / 180), 4 + 1000 * std::sin(10 * M_PI / 180), 0), 0.01));
        EXPECT_THAT(e, IsNearPoint(P(3 + 1000 * std::cos(70 * M_PI / 180), 4 + 1000 * std::sin(70 * M_PI / 180), 0), 0.01));
    });
}

TEST_F(SplineToLineAndArc, clockwise_arc_spline_becomes_the_same_arc_counter_clockwise) {
    AddToDrawing(ArcSpline(P(0, 0, 0), 5.0, 120.0, -100.0));
    Run();
    AcDbObjectIdArray arcs = IdsOfType(2003);
    ASSERT_EQ(arcs.length(), 1);
    InspectAs<AcDbArc>(arcs[0], [](AcDbArc* arc) {
        AcGePoint3d s, e;
        arc->getStartPoint(s);
        arc->getEndPoint(e);
        EXPECT_THAT(s, IsNearPoint(P(5 * std::cos(20 * M_PI / 180), 5 * std::sin(20 * M_PI / 180), 0), 1e-4));
        EXPECT_THAT(e, IsNearPoint(P(5 * std::cos(120 * M_PI / 180), 5 * std::sin(120 * M_PI / 180), 0), 1e-4));
    });
}

TEST_F(SplineToLineAndArc, closed_circle_spline_becomes_a_circle_through_samples_0_m_3_and_2m_3) {
    AcDbSpline* closed = ArcSpline(P(1, 2, 0), 5.0, 30.0, 360.0);
    AcGePoint3dArray samples = SampleCurve(closed);
    int m = samples.length();
    P center;
    double radius = 0.0;
    ASSERT_TRUE(CircleFromThreePoints(samples[0], samples[m / 3], samples[2 * m / 3], center, radius));
    AcDbObjectId spline = AddToDrawing(closed);
    Run();
    EXPECT_TRUE(IsGone(spline));
    AcDbObjectIdArray circles = IdsOfType(2002);
    ASSERT_EQ(circles.length(), 1);
    InspectAs<AcDbCircle>(circles[0], [&](AcDbCircle* circle) {
        EXPECT_EQ(circle->radius(), radius);
        EXPECT_EQ(circle->center(), center);
        EXPECT_EQ(circle->normal(), AcGeVector3d(0, 0, 1));
    });
}

TEST_F(SplineToLineAndArc, ellipse_with_equal_axes_becomes_a_circle_or_an_arc_and_a_true_ellipse_stays) {
    AcDbObjectId full = AddToDrawing(new AcDbEllipse(P(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(4, 0, 0), 1.0));
    AcDbObjectId part = AddToDrawing(new AcDbEllipse(P(20, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(0, 4, 0), 1.0, 0.3, 2.0));
    AcDbObjectId oval = AddToDrawing(new AcDbEllipse(P(40, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(4, 0, 0), 0.5));
    Run();
    EXPECT_TRUE(IsGone(full));
    EXPECT_TRUE(IsGone(part));
    EXPECT_FALSE(IsGone(oval));
    EXPECT_EQ(CountOfType(2002), 1);
    EXPECT_EQ(CountOfType(2003), 1);
}

TEST_F(SplineToLineAndArc, elliptical_arc_past_half_a_turn_becomes_the_arc_over_its_own_middle) {
    // From 3.5 to 4.5 radians: the middle is taken at 4.0, half the range counted from the start.
    AcDbObjectId part = AddToDrawing(
        new AcDbEllipse(P(20, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(4, 0, 0), 1.0, 3.5, 4.5));
    Run();
    EXPECT_TRUE(IsGone(part));
    AcDbObjectIdArray arcs = IdsOfType(2003);
    ASSERT_EQ(arcs.length(), 1);
    InspectAs<AcDbArc>(arcs[0], [&](AcDbArc* arc) {
        EXPECT_THAT(arc->center(), IsNearPoint(P(20, 0, 0), 1e-3));
        EXPECT_NEAR(arc->startAngle(), 3.5, 1e-3);
        EXPECT_NEAR(arc->endAngle(), 4.5, 1e-3);
    });
}

TEST_F(SplineToLineAndArc, spline_at_z_5_is_never_an_arc_but_can_be_a_line_at_z_5) {
    AcDbObjectId arcLike = AddToDrawing(ArcSpline(P(0, 0, 5), 10.0, 10.0, 80.0));
    AcDbObjectId straight = AddToDrawing(StraightSpline(5.0));
    Run();
    EXPECT_FALSE(IsGone(arcLike));
    EXPECT_TRUE(IsGone(straight));
    auto lines = ModelSpaceLines(Drawing());
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].first.z, 5.0);
    EXPECT_EQ(CountOfType(2003), 0);
}

TEST_F(SplineToLineAndArc, circle_whose_length_is_off_by_more_than_10_percent_is_discarded) {
    // A closed spline that runs twice round the circle: the circle found has half its length.
    AcDbObjectId twice = AddToDrawing(ArcSpline(P(0, 0, 0), 5.0, 0.0, 720.0));
    Run();
    EXPECT_FALSE(IsGone(twice));
    EXPECT_EQ(CountOfType(2002), 0);
}

TEST_F(SplineToLineAndArc, nearly_straight_curve_that_fits_both_comes_out_as_a_line) {
    AcDbObjectId flat = AddToDrawing(ArcSpline(P(0, -1000, 0), 1000.0, 89.75, 0.5));
    Run();
    EXPECT_TRUE(IsGone(flat));
    EXPECT_EQ(CountOfType(2001), 1);
    EXPECT_EQ(CountOfType(2003), 0);
}

TEST_F(SplineToLineAndArc, replacement_takes_layer_scale_linetype_and_the_layer_colour_for_bylayer) {
    AcDbObjectId spline = AddToDrawing(StraightSpline(), L"EDGE");
    SetLook(spline, L"DASHED", 256, 2.5);
    Run();
    AcDbObjectIdArray lines = IdsOfType(2001);
    ASSERT_EQ(lines.length(), 1);
    Look look = LookOfId(lines[0]);
    EXPECT_EQ(look.layer, L"EDGE");
    EXPECT_EQ(look.linetype, L"DASHED");
    EXPECT_EQ(look.scale, 2.5);
    EXPECT_EQ(look.color, 7);  // the colour of a new layer
}

TEST_F(SplineToLineAndArc, free_form_spline_stays_untouched) {
    AcDbObjectId wave = AddToDrawing(ClampedSpline({P(0, 0, 0), P(3, 4, 0), P(6, -4, 0), P(9, 4, 0), P(12, 0, 0)}));
    Run();
    EXPECT_FALSE(IsGone(wave));
    EXPECT_EQ(EntityCount(), 1);
}

TEST_F(SplineToLineAndArc, switch_off_logs_the_start_line_only_and_changes_nothing) {
    Settings(0.05, 0.05, 0);
    AcDbObjectId spline = AddToDrawing(StraightSpline());
    Run();
    EXPECT_FALSE(IsGone(spline));
    EXPECT_EQ(LogText(), L"样条曲线转直线和圆弧开始\n");
}

TEST_F(SplineToLineAndArc, drawing_without_splines_or_ellipses_logs_both_lines_and_changes_nothing) {
    AcDbObjectId line = AddToDrawing(new AcDbLine(P(0, 0, 0), P(1, 0, 0)));
    Run();
    EXPECT_FALSE(IsGone(line));
    EXPECT_EQ(EntityCount(), 1);
    EXPECT_EQ(LogText(), L"样条曲线转直线和圆弧开始\n样条曲线转直线和圆弧结束\n");
}

TEST_F(SplineToLineAndArc, missing_keys_read_as_0_so_nothing_is_replaced) {
    WriteSections(L"[SplineToLineAndArc]\nBolOpen=1\n");
    AcDbObjectId spline = AddToDrawing(StraightSpline());
    Run();
    EXPECT_FALSE(IsGone(spline));
}

}  // namespace
