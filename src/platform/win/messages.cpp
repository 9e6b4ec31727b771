#include "platform/win/messages.hpp"

#include <algorithm>
#include <iostream>
#include <string>

#include "platform/win/codepage.hpp"
#include "platform/win/host_state.hpp"

namespace {

HWND__* const kMainWindow = reinterpret_cast<HWND__*>(std::uintptr_t{0x10001});

std::vector<HostTimer>::iterator FindTimer(HWND window, UINT_PTR id) {
    auto& timers = Host().timers;
    return std::find_if(timers.begin(), timers.end(),
                        [&](const HostTimer& t) { return t.window == window && t.id == id; });
}

}  // namespace

HWND HostMainWindow() { return kMainWindow; }

UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT elapseMs, TIMERPROC proc) {
    HostState& state = Host();
    if (!window) id = state.nextTimerId++;
    std::uint64_t due = state.clock.nowMs() + elapseMs;
    auto found = FindTimer(window, id);
    if (found != state.timers.end()) {
        *found = {window, id, elapseMs, proc, due};
    } else {
        state.timers.push_back({window, id, elapseMs, proc, due});
    }
    return id;
}

BOOL KillTimer(HWND window, UINT_PTR id) {
    auto found = FindTimer(window, id);
    if (found == Host().timers.end()) return FALSE;
    Host().timers.erase(found);
    return TRUE;
}

LRESULT SendMessageW(HWND window, UINT message, WPARAM, LPARAM) {
    if (window == kMainWindow && message == WM_CLOSE) Host().closeRequested = true;
    return 0;
}

BOOL IsWindowEnabled(HWND window) {
    return window == kMainWindow && Host().mainWindowEnabled ? TRUE : FALSE;
}

void Sleep(DWORD milliseconds) { Host().clock.sleepMs(milliseconds); }

DWORD GetTickCount() { return static_cast<DWORD>(Host().clock.nowMs()); }

int RunDueTimers() {
    HostState& state = Host();
    std::uint64_t now = state.clock.nowMs();
    std::vector<HostTimer> due;
    for (const HostTimer& timer : state.timers)
        if (timer.dueMs <= now) due.push_back(timer);
    std::sort(due.begin(), due.end(), [](const HostTimer& a, const HostTimer& b) { return a.dueMs < b.dueMs; });
    int ran = 0;
    for (const HostTimer& timer : due) {
        auto live = FindTimer(timer.window, timer.id);
        if (live == state.timers.end() || state.closeRequested) continue;  // killed or closed meanwhile
        live->dueMs = now + live->elapseMs;
        if (timer.proc) timer.proc(timer.window, WM_TIMER, timer.id, static_cast<DWORD>(now));
        ++ran;
    }
    return ran;
}

long long MillisecondsToNextTimer() {
    const HostState& state = Host();
    if (state.timers.empty()) return -1;
    std::uint64_t next = std::min_element(state.timers.begin(), state.timers.end(),
                                          [](const HostTimer& a, const HostTimer& b) { return a.dueMs < b.dueMs; })
                             ->dueMs;
    std::uint64_t now = state.clock.nowMs();
    return next <= now ? 0 : static_cast<long long>(next - now);
}

bool RunMessageLoop() {
    while (!Host().closeRequested) {
        long long wait = MillisecondsToNextTimer();
        if (wait < 0) break;
        if (wait > 0) Host().clock.sleepMs(static_cast<std::uint64_t>(wait));
        RunDueTimers();
    }
    return Host().closeRequested;
}

bool HostCloseRequested() { return Host().closeRequested; }

void WriteConsoleText(std::FILE* stream, std::wstring_view text) {
    std::string bytes = Utf8FromWide(text);
    std::fwrite(bytes.data(), 1, bytes.size(), stream);
    std::fflush(stream);
}

void ShowUserMessage(std::wstring_view text) {
    WriteConsoleText(stderr, std::wstring(text) + L"\n");
    if (Host().interactive) {
        std::string ignored;
        std::getline(std::cin, ignored);
    }
}

int MessageBoxA(HWND, LPCSTR text, LPCSTR caption, UINT) {
    ShowUserMessage(WideFromAnsi(caption ? caption : "") + L": " + WideFromAnsi(text ? text : ""));
    return IDOK;
}
