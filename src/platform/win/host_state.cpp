#include "platform/win/host_state.hpp"

#include <chrono>
#include <thread>

HostClock RealClock() {
    return HostClock{
        [] {
            auto now = std::chrono::steady_clock::now().time_since_epoch();
            return static_cast<std::uint64_t>(
                std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
        },
        [](std::uint64_t ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }};
}

HostState& Host() {
    static HostState state;
    return state;
}

void ResetHostState() { Host() = HostState{}; }
