#include "platform/dwg/listed_order.hpp"

#include <algorithm>
#include <utility>

namespace dwg {
namespace {

using Place = std::pair<std::uint64_t, std::size_t>;  // a listed handle and its place
using PlaceIt = std::vector<Place>::const_iterator;

// The first place of `handle` at or after `from`, all before which are of lower handles: found
// by steps that double from `from`, so that handles sought in rising order are found in a few.
PlaceIt FirstPlaceFrom(PlaceIt from, PlaceIt end, std::uint64_t handle) {
    std::ptrdiff_t step = 1;
    while (end - from > step && (from + step)->first < handle) {
        from += step;
        step *= 2;
    }
    return std::lower_bound(from, from + std::min(step, end - from), Place{handle, 0});
}

}  // namespace

// The listed handles with their places, in the order of handle and place, so that a search
// finds a handle's first place; then the entities counted out by place (a stable counting sort).
// Lists and entities come in the order of their handles in most files: the list is sorted only
// when it is not, and a search starts from where the one before ended when the handle rises.
void SortByListedPlace(std::vector<std::uint32_t>& entities, std::span<const std::uint64_t> listed,
                       const std::function<std::uint64_t(std::uint32_t)>& handleOf) {
    std::vector<Place> places(listed.size());
    for (std::size_t k = 0; k < listed.size(); ++k) places[k] = {listed[k], k};
    if (!std::is_sorted(places.begin(), places.end())) std::sort(places.begin(), places.end());
    const std::size_t unlisted = listed.size();
    std::vector<std::size_t> place(entities.size());
    std::vector<std::uint32_t> start(unlisted + 2, 0);  // first of each place, once summed
    PlaceIt found = places.begin();
    std::uint64_t previous = 0;
    for (std::size_t j = 0; j < entities.size(); ++j) {
        const std::uint64_t handle = handleOf(entities[j]);
        const PlaceIt from = handle >= previous ? found : places.begin();
        const PlaceIt it = FirstPlaceFrom(from, places.end(), handle);
        place[j] = it != places.end() && it->first == handle ? it->second : unlisted;
        found = it;
        previous = handle;
        ++start[place[j] + 1];
    }
    for (std::size_t r = 1; r < start.size(); ++r) start[r] += start[r - 1];
    std::vector<std::uint32_t> sorted(entities.size());
    for (std::size_t j = 0; j < entities.size(); ++j) sorted[start[place[j]]++] = entities[j];
    entities = std::move(sorted);
}

}  // namespace dwg
