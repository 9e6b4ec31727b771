#pragma once
// A pass over many objects that do not depend on each other, shared with a helper thread: the
// objects are taken a chunk at a time, in their order, by this thread and the helper, so that
// on two cores the pass takes about half as long.
#include <cstddef>
#include <functional>

namespace dwg {

// Runs step(k) for k = 0, 1 ... count - 1 until one returns false, `chunk` steps at a time,
// on this thread and, when `alongside`, on a helper thread as well. Returns the first k whose
// step returned false (count when none did): every step before it has run once, the steps
// after it have run or not. The steps must not touch what another step touches.
std::size_t FirstFailingStep(std::size_t count, std::size_t chunk, bool alongside,
                             const std::function<bool(std::size_t)>& step);

}  // namespace dwg
