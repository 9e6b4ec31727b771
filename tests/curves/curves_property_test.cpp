// Properties of the curve clean-ups on random drawings from fixed seeds: what an operation puts
// in the place of a curve stays within the operation's tolerance of it, measured both ways (the
// original sampled against the replacement, the replacement sampled against the original).
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "curves/geometry.hpp"
#include "curves_fixture.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/polyline.hpp"
#include "random_drawings.hpp"
#include "spline_builders.hpp"

namespace {

using P = AcGePoint3d;
using random_drawings::Pick;
using random_drawings::Uniform;

// Points along a curve at evenly spaced parameters.
std::vector<P> Samples(const AcDbCurve* curve, int count = 200) {
    double sp = 0, ep = 0;
    curve->getStartParam(sp);
    curve->getEndParam(ep);
    std::vector<P> points;
    for (int i = 0; i <= count; ++i) {
        P p;
        if (curve->getPointAtParam(sp + (ep - sp) * i / count, p) == Acad::eOk) points.push_back(p);
    }
    return points;
}

// The largest distance of a point of `from` to the nearest of the curves `to`, in the plane.
double Deviation(const std::vector<P>& from, const std::vector<const AcDbCurve*>& to) {
    double worst = 0.0;
    for (P p : from) {
        p.z = 0.0;
        double best = INFINITY;
        for (const AcDbCurve* curve : to) {
            P closest;
            if (curve->getClosestPointTo(p, closest) != Acad::eOk) continue;
            closest.z = 0.0;
            best = std::fmin(best, p.distanceTo(closest));
        }
        worst = std::fmax(worst, best);
    }
    return worst;
}

class CurveProperties : public CurvesTest {
protected:
    // Clones of the model space's curves, owned by the test.
    std::vector<std::unique_ptr<AcDbCurve>> CurvesNow() {
        std::vector<std::unique_ptr<AcDbCurve>> curves;
        for (const AcDbObjectId& id : ModelSpaceIds(Drawing()))
            Inspect(id, [&](AcDbEntity* e) {
                if (auto* curve = AcDbCurve::cast(e)) curves.emplace_back(AcDbCurve::cast(curve->clone()));
            });
        return curves;
    }
    static std::vector<const AcDbCurve*> View(const std::vector<std::unique_ptr<AcDbCurve>>& curves) {
        std::vector<const AcDbCurve*> view;
        for (const auto& c : curves) view.push_back(c.get());
        return view;
    }
    static double BothWays(const std::vector<std::unique_ptr<AcDbCurve>>& before,
                           const std::vector<std::unique_ptr<AcDbCurve>>& after) {
        double worst = 0.0;
        for (const auto& c : before) worst = std::fmax(worst, Deviation(Samples(c.get()), View(after)));
        for (const auto& c : after) worst = std::fmax(worst, Deviation(Samples(c.get()), View(before)));
        return worst;
    }
};

TEST_F(CurveProperties, merged_broken_lines_stay_on_their_pieces) {
    WriteSections(L"[LineAndArcMerged]\nTolerance=0.05\n");
    std::mt19937 rng(2024);
    for (int run = 0; run < 40; ++run) {
        // Runs far apart, each of pieces along one direction with gaps below 0.02 and overlaps.
        double a = Uniform(rng, 0, random_drawings::kPi);
        P origin(300.0 * (run % 8), 300.0 * (run / 8), 0);
        double along = 0.0;
        int pieces = 2 + Pick(rng, 6);
        for (int k = 0; k < pieces; ++k) {
            double length = Uniform(rng, 1.0, 30.0);
            P s = origin + AcGeVector3d(std::cos(a), std::sin(a), 0) * along;
            along += length;
            P e = origin + AcGeVector3d(std::cos(a), std::sin(a), 0) * along;
            AddToDrawing(Pick(rng, 2) ? new AcDbLine(s, e) : new AcDbLine(e, s));
            along += Uniform(rng, -2.0, 0.019);
        }
    }
    auto before = CurvesNow();
    Cleanup().FunLineAndArcMerged();
    auto after = CurvesNow();
    EXPECT_EQ(after.size(), 40u);
    EXPECT_LT(BothWays(before, after), 0.02);
}

TEST_F(CurveProperties, merged_arc_pieces_stay_on_their_circle) {
    WriteSections(L"[LineAndArcMerged]\nTolerance=0.05\n");
    std::mt19937 rng(77);
    int groups = 0;
    while (groups < 30) {
        P center(200.0 * (groups % 6), 200.0 * (groups / 6), 0);
        double radius = Uniform(rng, 2.0, 50.0);
        double sweep = Pick(rng, 2) ? 2 * random_drawings::kPi : Uniform(rng, 1.0, 5.0);
        double start = Uniform(rng, 0, 2 * random_drawings::kPi);
        int pieces = 2 + Pick(rng, 5);
        // Pieces on which the coarse circle of three points stands (the merge tests arcs
        // through it); others are outside what the merge promises.
        std::vector<AcDbArc*> arcs;
        bool usable = true;
        for (int k = 0; k < pieces; ++k) {
            double a0 = start + sweep * k / pieces, a1 = start + sweep * (k + 1) / pieces + 0.0005;
            auto* arc = new AcDbArc(center, radius, a0, a1);
            P s, m, e, c;
            double r = 0;
            arc->getStartPoint(s);
            arc->getEndPoint(e);
            arc->getPointAtParam((a0 + a1) / 2, m);
            usable = usable && CircleFromThreePoints(s, m, e, c, r);
            arcs.push_back(arc);
        }
        if (!usable) {
            for (AcDbArc* arc : arcs) delete arc;
            continue;
        }
        for (AcDbArc* arc : arcs) AddToDrawing(arc);
        ++groups;
    }
    auto before = CurvesNow();
    Cleanup().FunLineAndArcMerged();
    auto after = CurvesNow();
    EXPECT_EQ(after.size(), 30u);
    EXPECT_LT(BothWays(before, after), 0.05);
}

TEST_F(CurveProperties, lines_and_arcs_fitted_to_splines_stay_within_their_tolerances) {
    WriteSections(L"[SplineToLineAndArc]\nBolOpen=1\nToleranceLine=0.05\nToleranceArc=0.05\n");
    std::mt19937 rng(5);
    for (int i = 0; i < 30; ++i) {
        P at(100.0 * (i % 6), 100.0 * (i / 6), 0);
        if (i % 2 == 0) {
            // Nearly straight: control points within 0.01 of a line.
            double a = Uniform(rng, 0, random_drawings::kPi), length = Uniform(rng, 5, 60);
            std::vector<P> points;
            for (int k = 0; k < 5; ++k)
                points.push_back(at + AcGeVector3d(std::cos(a), std::sin(a), 0) * (length * k / 4) +
                                 AcGeVector3d(Uniform(rng, -0.01, 0.01), Uniform(rng, -0.01, 0.01), 0));
            AddToDrawing(ClampedSpline(points));
        } else {
            AddToDrawing(ArcSpline(at, Uniform(rng, 3, 40), Uniform(rng, 0, 360), Uniform(rng, 20, 300)));
        }
    }
    auto before = CurvesNow();
    Cleanup().FunSplineToLineAndArc();
    auto after = CurvesNow();
    EXPECT_EQ(CountOfType(2005), 0);
    ASSERT_EQ(after.size(), before.size());
    // Each replacement against its own source, both ways: the tolerance with the single
    // precision of the radius as margin.
    for (size_t k = 0; k < before.size(); ++k) {
        double worst = 0.0;
        for (const auto& replacement : after) {
            double there = Deviation(Samples(replacement.get(), 20), {before[k].get()});
            if (there > 0.1) continue;  // another source's replacement
            worst = std::fmax(worst, std::fmax(there, Deviation(Samples(before[k].get()), {replacement.get()})));
            worst = std::fmax(worst, Deviation(Samples(replacement.get()), {before[k].get()}));
        }
        EXPECT_LT(worst, 0.05 + 1e-4) << "spline " << k;
    }
}

TEST_F(CurveProperties, polylines_replacing_random_splines_follow_them) {
    WriteSections(L"[SplineToPline]\nTolerance=0.02\n");
    std::mt19937 rng(11);
    std::vector<std::unique_ptr<AcDbCurve>> sources;
    for (int i = 0; i < 20; ++i) {
        AcDbSpline* spline = random_drawings::RandomSpline(rng, 100.0 * (i % 5), 100.0 * (i / 5), Uniform(rng, 5, 60));
        sources.emplace_back(AcDbCurve::cast(spline->clone()));
        AddToDrawing(spline);
    }
    Cleanup().FunSplineToPline();
    auto after = CurvesNow();
    ASSERT_EQ(after.size(), sources.size());
    double worst = 0.0;
    for (size_t k = 0; k < sources.size(); ++k) {
        worst = std::fmax(worst, Deviation(Samples(sources[k].get()), {after[k].get()}));
        worst = std::fmax(worst, Deviation(Samples(after[k].get(), 400), {sources[k].get()}));
    }
    EXPECT_LT(worst, 0.02);
}

}  // namespace
