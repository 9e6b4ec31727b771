#include "platform/dwg/chunked_pass.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <ostream>
#include <set>
#include <stdexcept>
#include <thread>
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

// Parts made on the helper and used here: what each make and use saw, in their order.
struct AheadRun {
    std::mutex m;
    std::vector<std::size_t> made, used;
    std::size_t slots[2] = {};
    int held = 0, mostHeld = 0;  // parts whose make has begun and whose use has not ended
    // A make(k) began before use(k - 2) had ended (it may begin while use(k - 1) runs, even
    // before that use is seen here, but not earlier).
    bool madeTooEarly = false;

    std::function<void(std::size_t)> make() {
        return [this](std::size_t k) {
            {
                std::lock_guard lock(m);
                madeTooEarly = madeTooEarly || (k >= 2 && used.size() < k - 1);
                mostHeld = std::max(mostHeld, ++held);
            }
            slots[k % 2] = k + 100;
            std::lock_guard lock(m);
            made.push_back(k);
        };
    }
    std::function<void(std::size_t)> use() {
        return [this](std::size_t k) {
            {
                std::lock_guard lock(m);
                used.push_back(slots[k % 2] == k + 100 ? k : k + 1000);
            }
            // A slow use: a helper that did not wait its turn would make more meanwhile.
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            std::lock_guard lock(m);
            --held;
        };
    }
};

class DwgMadeAhead : public testing::TestWithParam<std::size_t> {};

TEST_P(DwgMadeAhead, every_part_is_made_and_used_once_in_order_with_at_most_two_held) {
    const std::size_t count = GetParam();
    AheadRun run;
    dwg::MadeAheadOfUse(count, run.make(), run.use());
    std::vector<std::size_t> expected(count);
    for (std::size_t k = 0; k < count; ++k) expected[k] = k;
    EXPECT_EQ(run.made, expected);
    EXPECT_EQ(run.used, expected);  // each use found its own part in its slot
    EXPECT_LE(run.mostHeld, 2);
    EXPECT_FALSE(run.madeTooEarly);
}

INSTANTIATE_TEST_SUITE_P(Counts, DwgMadeAhead, testing::Values(0u, 1u, 2u, 3u, 9u));

TEST(DwgMadeAheadFailures, what_make_throws_is_thrown_here_once_the_parts_before_are_used) {
    AheadRun run;
    const auto make = run.make();
    EXPECT_THROW(dwg::MadeAheadOfUse(
                     6,
                     [&](std::size_t k) {
                         if (k == 3) throw std::runtime_error("part 3");
                         make(k);
                     },
                     run.use()),
                 std::runtime_error);
    EXPECT_EQ(run.used, (std::vector<std::size_t>{0, 1, 2}));
}

TEST(DwgMadeAheadFailures, what_use_throws_stops_the_helper_before_it_leaves) {
    AheadRun run;
    const auto use = run.use();
    EXPECT_THROW(dwg::MadeAheadOfUse(
                     50, run.make(),
                     [&](std::size_t k) {
                         if (k == 1) throw std::logic_error("use 1");
                         use(k);
                     }),
                 std::logic_error);
    // Part 2 may have been made while use(1) ran; none after it, and none after the call.
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    std::lock_guard lock(run.m);
    EXPECT_LE(run.made.size(), 3u);
}

}  // namespace
