#include "platform/dwg/chunked_pass.hpp"

#include <algorithm>
#include <atomic>
#include <future>

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

}  // namespace dwg
