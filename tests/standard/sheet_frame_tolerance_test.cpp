// The frame lines through a marker: an end within 1e-05 of the marker, bounds included, counts.
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "standard/sheet_frame.hpp"

namespace {

class FrameTolerance : public BatchTest {};

// sqrt(d * d) is d exactly, so these ends lie at exactly the distance given from the origin.
// Either end of a line may be the one at the marker; both are held to the same bound.
TEST_F(FrameTolerance, end_just_inside_on_and_just_outside_the_tolerance) {
    struct Case {
        double distance;
        bool counts;
    };
    for (bool nearEndIsStart : {true, false}) {
        for (Case c : {Case{0.99e-05, true}, Case{1e-05, true}, Case{1.01e-05, false}}) {
            AcGePoint3d nearEnd(c.distance, 0, 0), farEnd(200, 100, 0);
            AcDbDatabase fresh(true, false);
            Add(fresh, nearEndIsStart ? new AcDbLine(nearEnd, farEnd) : new AcDbLine(farEnd, nearEnd), L"BIGFRAM");
            ASSERT_EQ(nearEnd.distanceTo(AcGePoint3d(0, 0, 0)), c.distance);
            AcDbExtents box;
            EXPECT_EQ(MeasureSheetFrame(AcGePoint3d(0, 0, 0), box, &fresh), 0);
            EXPECT_EQ(!box.isEmpty(), c.counts) << c.distance << (nearEndIsStart ? " at the start" : " at the end");
            if (c.counts) {
                EXPECT_EQ(box.maxPoint(), farEnd);
            }
        }
    }
}

}  // namespace
