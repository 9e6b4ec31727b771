// The frame lines through a marker: an end within 1e-05 of the marker, bounds included, counts.
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "standard/sheet_frame.hpp"

namespace {

class FrameTolerance : public BatchTest {};

// sqrt(d * d) is d exactly, so these ends lie at exactly the distance given from the origin.
TEST_F(FrameTolerance, end_just_inside_on_and_just_outside_the_tolerance) {
    struct Case {
        double distance;
        bool counts;
    };
    for (Case c : {Case{0.99e-05, true}, Case{1e-05, true}, Case{1.01e-05, false}}) {
        AcDbDatabase fresh(true, false);
        Add(fresh, new AcDbLine(AcGePoint3d(c.distance, 0, 0), AcGePoint3d(200, 100, 0)), L"BIGFRAM");
        ASSERT_EQ(AcGePoint3d(c.distance, 0, 0).distanceTo(AcGePoint3d(0, 0, 0)), c.distance);
        AcDbExtents box;
        EXPECT_EQ(MeasureSheetFrame(AcGePoint3d(0, 0, 0), box, &fresh), 0);
        EXPECT_EQ(!box.isEmpty(), c.counts) << c.distance;
        if (c.counts) {
            EXPECT_EQ(box.maxPoint(), AcGePoint3d(200, 100, 0));
        }
    }
}

}  // namespace
