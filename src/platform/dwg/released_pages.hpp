#pragma once
// The memory of a large buffer given back to the system while the buffer is still in use, a
// chunk of pages at a time, once nothing reads the chunk again: each chunk counts the extents
// (byte ranges of the buffer) still to be read that overlap it, and is given back when its
// count falls to zero. The buffer stays allocated and is freed as before; a page given back
// reads as zeros from then on, so the counts must cover every read to come. Only chunks wholly
// inside the buffer are given back: the pages at its ends may hold other allocations.
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace dwg {

// Bytes of a chunk: a multiple of the page size. Chunks are aligned on their size.
inline constexpr std::size_t kReleasedChunk = 64 * 1024;

struct ReleasedPages {
    const std::uint8_t* buffer = nullptr;
    std::size_t head = 0;  // where in the buffer the first chunk wholly inside it starts
    std::size_t chunk = kReleasedChunk;
    std::vector<std::uint32_t> stillRead;  // by chunk: the counted extents that overlap it
};

// The whole chunks of the buffer, none of them counted read yet.
ReleasedPages PagesOf(std::span<const std::uint8_t> buffer, std::size_t chunk = kReleasedChunk);

// An extent of the buffer (from its offset there, `size` bytes) that is still to be read.
void CountRead(ReleasedPages& pages, std::size_t offset, std::size_t size);

// A counted extent read for the last time: the chunks it leaves without any are given back.
void ReadLast(ReleasedPages& pages, std::size_t offset, std::size_t size);

// Gives back the chunks that no counted extent overlaps.
void GiveBackUnread(const ReleasedPages& pages);

}  // namespace dwg
