#include <gtest/gtest.h>

#include <vector>

#include "platform/win/host_state.hpp"
#include "platform/win/messages.hpp"

namespace {

// A virtual clock: sleeping advances it at once.
class Messages : public ::testing::Test {
protected:
    void SetUp() override {
        ResetHostState();
        now_ = 0;
        Host().clock = {[] { return now_; }, [](std::uint64_t ms) { now_ += ms; }};
        ticks_.clear();
    }
    void TearDown() override { ResetHostState(); }

    static void Record(HWND, UINT message, UINT_PTR id, DWORD time) {
        ticks_.push_back({id, time});
        EXPECT_EQ(message, WM_TIMER);
    }
    static void CloseHost(HWND, UINT, UINT_PTR id, DWORD time) {
        Record(nullptr, WM_TIMER, id, time);
        SendMessageW(HostMainWindow(), WM_CLOSE, 0, 0);
    }

    struct Tick {
        UINT_PTR id;
        DWORD time;
    };
    static inline std::uint64_t now_ = 0;
    static inline std::vector<Tick> ticks_;
};

TEST_F(Messages, TimerProcRunsFromTheLoopAfterItsDelayAndClosesTheHost) {
    UINT_PTR id = SetTimer(nullptr, 1, 2000, CloseHost);
    EXPECT_EQ(RunDueTimers(), 0);
    EXPECT_TRUE(RunMessageLoop());
    ASSERT_EQ(ticks_.size(), 1u);
    EXPECT_EQ(ticks_[0].id, id);
    EXPECT_EQ(ticks_[0].time, 2000u);
    EXPECT_TRUE(HostCloseRequested());
}

TEST_F(Messages, TimersRepeatUntilKilled) {
    UINT_PTR id = SetTimer(nullptr, 0, 100, Record);
    Sleep(350);
    EXPECT_EQ(RunDueTimers(), 1);  // one run per due timer, however late
    EXPECT_EQ(MillisecondsToNextTimer(), 100);
    Sleep(100);
    EXPECT_EQ(RunDueTimers(), 1);
    EXPECT_TRUE(KillTimer(nullptr, id));
    EXPECT_FALSE(KillTimer(nullptr, id));
    EXPECT_EQ(MillisecondsToNextTimer(), -1);
    EXPECT_FALSE(RunMessageLoop());  // nothing armed: the loop returns, the host stays open
}

TEST_F(Messages, NullWindowTimersGetFreshIds) {
    UINT_PTR a = SetTimer(nullptr, 1, 10, Record);
    UINT_PTR b = SetTimer(nullptr, 1, 10, Record);
    EXPECT_NE(a, b);
}

TEST_F(Messages, SleepAdvancesTheHostClock) {
    DWORD before = GetTickCount();
    Sleep(1000);
    EXPECT_EQ(GetTickCount() - before, 1000u);
}

TEST_F(Messages, MainWindowIsEnabledAndOtherMessagesDoNotCloseIt) {
    EXPECT_TRUE(IsWindowEnabled(HostMainWindow()));
    EXPECT_FALSE(IsWindowEnabled(nullptr));
    SendMessageW(HostMainWindow(), WM_TIMER, 0, 0);
    SendMessageW(nullptr, WM_CLOSE, 0, 0);
    EXPECT_FALSE(HostCloseRequested());
}

TEST_F(Messages, MessageBoxInABatchReturnsOkWithoutWaiting) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageBoxA(nullptr, "\xCC\xE1\xCA\xBE", "caption", MB_ICONERROR), IDOK);  // "提示"
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption: 提示\n");
}

}  // namespace
