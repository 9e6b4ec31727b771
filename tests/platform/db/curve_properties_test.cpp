#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

#include "geometry_matchers.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/spline.hpp"

// Invariants checked on random curves drawn with a fixed seed.

namespace {
constexpr int kCurves = 40;

std::unique_ptr<AcDbCurve> randomCurve(std::mt19937& rng, int kind) {
    std::uniform_real_distribution<double> coord(-50, 50), small(0.5, 10), angle(0, 6.28),
        bulge(-2, 2), ratio(0.1, 1);
    switch (kind % 4) {
    case 0: {
        auto pl = std::make_unique<AcDbPolyline>();
        for (int i = 0; i < 5; ++i)
            pl->addVertexAt(pl->numVerts(), {coord(rng), coord(rng)}, i % 2 ? bulge(rng) : 0.0);
        pl->setClosed(kind % 8 == 0);
        return pl;
    }
    case 1:
        return std::make_unique<AcDbArc>(AcGePoint3d(coord(rng), coord(rng), 0), small(rng),
                                         angle(rng), angle(rng));
    case 2: {
        double a = angle(rng);
        return std::make_unique<AcDbEllipse>(
            AcGePoint3d(coord(rng), coord(rng), 0), AcGeVector3d::kZAxis,
            AcGeVector3d(std::cos(a), std::sin(a), 0) * small(rng), ratio(rng), a, a + angle(rng) + 0.1);
    }
    default: {
        auto s = std::make_unique<AcDbSpline>();
        std::vector<AcGePoint3d> points;
        std::vector<double> weights;
        for (int i = 0; i < 6; ++i) {
            points.push_back({coord(rng), coord(rng), coord(rng) * 0.1});
            weights.push_back(small(rng));
        }
        s->setNurbsData(3, true, false, false, points, {0, 0, 0, 0, 1, 2.5, 3, 3, 3, 3}, weights);
        return s;
    }
    }
}

double paramBetween(const AcDbCurve& c, double f) {
    double sp = 0, ep = 0;
    c.getStartParam(sp);
    c.getEndParam(ep);
    return sp + (ep - sp) * f;
}
}  // namespace

TEST(CurveProperties, points_at_parameters_lie_on_the_curve) {
    std::mt19937 rng(20240611);
    std::uniform_real_distribution<double> unit(0, 1);
    for (int k = 0; k < kCurves; ++k) {
        std::unique_ptr<AcDbCurve> c = randomCurve(rng, k);
        double t = paramBetween(*c, unit(rng));
        AcGePoint3d p, closest;
        ASSERT_EQ(c->getPointAtParam(t, p), Acad::eOk) << k;
        ASSERT_EQ(c->getClosestPointTo(p, closest), Acad::eOk) << k;
        EXPECT_THAT(closest, IsNearPoint(p, 1e-8)) << k;
        double back = 0;
        ASSERT_EQ(c->getParamAtPoint(p, back), Acad::eOk) << k;
        AcGePoint3d again;
        c->getPointAtParam(back, again);
        EXPECT_THAT(again, IsNearPoint(p, 1e-8)) << k;
    }
}

TEST(CurveProperties, length_is_additive_over_a_split) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> unit(0, 1);
    for (int k = 0; k < kCurves; ++k) {
        std::unique_ptr<AcDbCurve> c = randomCurve(rng, k);
        double sp = 0, ep = 0, whole = 0, toSplit = 0;
        c->getStartParam(sp);
        c->getEndParam(ep);
        double split = paramBetween(*c, unit(rng));
        ASSERT_EQ(c->getDistAtParam(ep, whole), Acad::eOk);
        ASSERT_EQ(c->getDistAtParam(split, toSplit), Acad::eOk);
        // The rest, summed from short chords that also stop at every vertex of a polyline.
        std::vector<double> params;
        const int steps = 4000;
        for (int i = 0; i <= steps; ++i) params.push_back(split + (ep - split) * i / steps);
        if (AcDbPolyline::cast(c.get()))
            for (double v = std::ceil(split); v < ep; v += 1.0) params.push_back(v);
        std::sort(params.begin(), params.end());
        double rest = 0;
        for (std::size_t i = 1; i < params.size(); ++i) {
            AcGePoint3d a, b;
            c->getPointAtParam(params[i - 1], a);
            c->getPointAtParam(params[i], b);
            rest += a.distanceTo(b);
        }
        EXPECT_NEAR(toSplit + rest, whole, 1e-5 * std::max(1.0, whole)) << k;
        EXPECT_LE(toSplit, whole + 1e-12) << k;
    }
}

TEST(CurveProperties, offset_there_and_back_restores_convex_shapes) {
    std::mt19937 rng(99);
    std::uniform_real_distribution<double> size(1, 20), dist(0.1, 0.45);
    for (int k = 0; k < kCurves; ++k) {
        const double w = size(rng), h = size(rng), r = 0.5 * std::min(w, h);
        const double d = dist(rng) * std::min(w, h);
        // A rectangle, counter-clockwise, with one corner rounded by a radius above d.
        AcDbPolyline pl;
        pl.addVertexAt(0, {0, 0});
        pl.addVertexAt(1, {w, 0}, std::tan(M_PI / 8));
        pl.addVertexAt(2, {w + r, r});
        pl.addVertexAt(3, {w + r, h});
        pl.addVertexAt(4, {0, h});
        pl.setClosed(true);
        const double sign = k % 2 ? 1.0 : -1.0;
        AcDbVoidPtrArray out, back;
        ASSERT_EQ(pl.getOffsetCurves(sign * d, out), Acad::eOk) << k;
        auto moved = takeEntities(out);
        ASSERT_EQ(AcDbCurve::cast(moved[0].get())->getOffsetCurves(-sign * d, back), Acad::eOk) << k;
        auto restored = takeEntities(back);
        auto* result = AcDbPolyline::cast(restored[0].get());
        ASSERT_EQ(result->numVerts(), pl.numVerts()) << k;
        for (unsigned int i = 0; i < pl.numVerts(); ++i) {
            AcGePoint2d a, b;
            double ba = 0, bb = 0;
            pl.getPointAt(i, a);
            result->getPointAt(i, b);
            pl.getBulgeAt(i, ba);
            result->getBulgeAt(i, bb);
            EXPECT_THAT(b, IsNearPoint(a, 1e-9)) << k << " vertex " << i;
            EXPECT_NEAR(bb, ba, 1e-9) << k << " vertex " << i;
        }
    }
}
