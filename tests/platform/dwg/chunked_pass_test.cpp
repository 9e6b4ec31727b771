#include "platform/dwg/chunked_pass.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <ostream>
#include <set>
#include <vector>

namespace {

struct PassCase {
    std::size_t count;
    std::size_t chunk;
    std::set<std::size_t> failing;  // the steps that return false
};

void PrintTo(const PassCase& c, std::ostream* os) {
    *os << c.count << " steps by " << c.chunk << ", failing:";
    for (const std::size_t k : c.failing) *os << " " << k;
}

class DwgChunkedPass : public testing::TestWithParam<PassCase> {};

// On one thread or two, the pass stops at the first failing step, having run every step
// before it once; without a failing step it runs every step once.
TEST_P(DwgChunkedPass, runs_every_step_before_the_first_failing_one_once) {
    const PassCase& c = GetParam();
    const std::size_t first = c.failing.empty() ? c.count : *c.failing.begin();
    for (const bool alongside : {false, true}) {
        SCOPED_TRACE(alongside ? "alongside" : "alone");
        const auto runs = std::make_unique<std::atomic<int>[]>(c.count + 1);
        const std::size_t failed = dwg::FirstFailingStep(c.count, c.chunk, alongside, [&](std::size_t k) {
            runs[k].fetch_add(1);
            return !c.failing.contains(k);
        });
        EXPECT_EQ(failed, first);
        for (std::size_t k = 0; k < first; ++k) ASSERT_EQ(runs[k].load(), 1) << k;
        if (first < c.count) {
            EXPECT_EQ(runs[first].load(), 1);
        }
        if (!alongside) {
            for (std::size_t k = first + 1; k < c.count; ++k) ASSERT_EQ(runs[k].load(), 0) << k;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DwgChunkedPass,
    testing::Values(PassCase{0, 4, {}}, PassCase{1, 4, {}}, PassCase{1000, 1, {}},
                    PassCase{1000, 7, {}}, PassCase{1000, 2048, {}}, PassCase{1000, 7, {0}},
                    PassCase{1000, 7, {6}}, PassCase{1000, 7, {7, 8}}, PassCase{1000, 7, {999}},
                    PassCase{1000, 7, {500, 20}}, PassCase{1000, 1, {3, 900}},
                    PassCase{1000, 64, {640, 64, 700}}));

// Alongside, a second thread takes chunks: the first step waits for a step of the second chunk,
// which only another thread can run meanwhile.
TEST(DwgChunkedPassAlongside, a_helper_takes_chunks_while_this_thread_runs_one) {
    std::mutex m;
    std::condition_variable cv;
    bool secondChunkRan = false;
    bool seenWhileWaiting = false;
    const std::size_t failed = dwg::FirstFailingStep(100, 10, true, [&](std::size_t k) {
        std::unique_lock lock(m);
        if (k == 10) {
            secondChunkRan = true;
            cv.notify_all();
        }
        if (k == 0) {
            seenWhileWaiting = cv.wait_for(lock, std::chrono::seconds(60), [&] { return secondChunkRan; });
        }
        return true;
    });
    EXPECT_EQ(failed, 100u);
    EXPECT_TRUE(seenWhileWaiting);
}

// The pass ends only once the helper's steps have: a failure the helper meets after this
// thread has run out of chunks is the result. The helper's step waits a while for the pass to
// have ended, which it must not have.
TEST(DwgChunkedPassAlongside, a_failure_the_helper_meets_last_is_the_result) {
    std::mutex m;
    std::condition_variable cv;
    bool firstChunkDone = false;
    bool passEnded = false;
    std::atomic<bool> endedBeforeFailure{false};
    const std::size_t failed = dwg::FirstFailingStep(20, 10, true, [&](std::size_t k) {
        std::unique_lock lock(m);
        if (k == 0) {
            // This thread's chunk waits for the helper's, so that the helper has chunk 10.
            cv.wait_for(lock, std::chrono::seconds(60), [&] { return firstChunkDone; });
        }
        if (k == 10) {
            firstChunkDone = true;
            cv.notify_all();
            endedBeforeFailure = cv.wait_for(lock, std::chrono::milliseconds(300), [&] { return passEnded; });
            return false;
        }
        return true;
    });
    {
        std::lock_guard lock(m);
        passEnded = true;
        cv.notify_all();
    }
    EXPECT_EQ(failed, 10u);
    EXPECT_FALSE(endedBeforeFailure.load());
}

}  // namespace
