#pragma once
// Passes over many objects shared with a helper thread, so that on two cores they take about
// half as long: independent objects taken a chunk at a time by both threads, or parts made on
// the helper one ahead of their use here.
#include <cstddef>
#include <functional>

namespace dwg {

// Runs step(k) for k = 0, 1 ... count - 1 until one returns false, `chunk` steps at a time,
// on this thread and, when `alongside`, on a helper thread as well. Returns the first k whose
// step returned false (count when none did): every step before it has run once, the steps
// after it have run or not. The steps must not touch what another step touches.
std::size_t FirstFailingStep(std::size_t count, std::size_t chunk, bool alongside,
                             const std::function<bool(std::size_t)>& step);

// Runs make(k) for k = 0, 1 ... count - 1 in order on one helper thread and use(k) in order on
// this thread, each use(k) after make(k) has returned. make(k + 1) starts once use(k) has
// started and not before, so the caller holds at most two parts at once (parts k and k + 1, for
// instance in slots k % 2). An exception thrown by make is thrown here once the parts before
// have been used; one thrown by use stops the helper before it leaves.
void MadeAheadOfUse(std::size_t count, const std::function<void(std::size_t)>& make,
                    const std::function<void(std::size_t)>& use);

}  // namespace dwg
