#include "platform/dwg/chunked_pass.hpp"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <future>
#include <mutex>
#include <thread>

namespace dwg {

std::size_t FirstFailingStep(std::size_t count, std::size_t chunk, bool alongside,
                             const std::function<bool(std::size_t)>& step) {
    std::atomic<std::size_t> nextChunk{0};
    std::atomic<std::size_t> failed{count};  // the first failing step found so far
    const auto work = [&] {
        // Chunks are handed out in order, so every chunk before a failing step is taken, and
        // run whole, by one thread or the other.
        for (;;) {
            const std::size_t first = nextChunk.fetch_add(1) * chunk;
            if (first >= count || first > failed.load()) return;
            const std::size_t last = std::min(count, first + chunk);
            for (std::size_t k = first; k < last; ++k) {
                if (step(k)) continue;
                std::size_t seen = failed.load();
                while (k < seen && !failed.compare_exchange_weak(seen, k)) {
                }
                return;
            }
        }
    };
    if (!alongside) {
        work();
        return failed.load();
    }
    std::future<void> helper = std::async(std::launch::async, work);
    work();
    helper.get();
    return failed.load();
}

namespace {

// What the helper of MadeAheadOfUse and this thread tell each other.
struct AheadState {
    std::mutex lock;
    std::condition_variable changed;
    std::size_t made = 0;     // parts made
    std::size_t started = 0;  // uses started
    bool stopped = false;     // this thread leaves: the helper makes no more
    std::exception_ptr failure;  // what make threw

    void makeAll(std::size_t count, const std::function<void(std::size_t)>& make) {
        for (std::size_t k = 0; k < count; ++k) {
            {
                std::unique_lock<std::mutex> hold(lock);
                changed.wait(hold, [&] { return stopped || started >= k; });
                if (stopped) return;
            }
            try {
                make(k);
            } catch (...) {
                const std::lock_guard<std::mutex> hold(lock);
                failure = std::current_exception();
                changed.notify_all();
                return;
            }
            const std::lock_guard<std::mutex> hold(lock);
            made = k + 1;
            changed.notify_all();
        }
    }
    // Waits for part k; false when make failed before making it.
    bool startUse(std::size_t k) {
        std::unique_lock<std::mutex> hold(lock);
        changed.wait(hold, [&] { return made > k || failure; });
        if (made <= k) return false;
        started = k + 1;
        changed.notify_all();
        return true;
    }
    void stop() {
        const std::lock_guard<std::mutex> hold(lock);
        stopped = true;
        changed.notify_all();
    }
};

}  // namespace

void MadeAheadOfUse(std::size_t count, const std::function<void(std::size_t)>& make,
                    const std::function<void(std::size_t)>& use) {
    AheadState state;
    std::thread helper([&] { state.makeAll(count, make); });
    // However this thread leaves, the helper is stopped and joined first.
    struct Joined {
        AheadState& state;
        std::thread& helper;
        ~Joined() {
            state.stop();
            helper.join();
        }
    } joined{state, helper};
    for (std::size_t k = 0; k < count; ++k) {
        if (!state.startUse(k)) std::rethrow_exception(state.failure);
        use(k);
    }
}

}  // namespace dwg
