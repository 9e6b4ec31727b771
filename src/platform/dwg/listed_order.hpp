#pragma once
// A block's entities put in the order its record lists them (2004 on), which is the drawing's
// order of them.
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace dwg {

// Sorts `entities` (item numbers) stably by the place of their handles in `listed`; those not
// listed keep their order after the listed ones. Of a handle listed twice, the first place
// counts.
void SortByListedPlace(std::vector<std::uint32_t>& entities, std::span<const std::uint64_t> listed,
                       const std::function<std::uint64_t(std::uint32_t)>& handleOf);

}  // namespace dwg
