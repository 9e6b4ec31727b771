#include "platform/dwg/released_pages.hpp"

#include <algorithm>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace dwg {
namespace {

// The memory of the chunk to the system; its pages read as zeros from then on.
void GiveBack(const ReleasedPages& pages, std::size_t chunk) {
#if defined(__linux__)
    // The memory is the buffer's own, writable: only its view here is const.
    void* start = const_cast<std::uint8_t*>(pages.buffer + pages.head + chunk * pages.chunk);
    madvise(start, pages.chunk, MADV_DONTNEED);
#else
    (void)pages;
    (void)chunk;
#endif
}

// The chunks an extent overlaps: [begin, end) of pages.stillRead.
struct ChunkRange {
    std::size_t begin = 0, end = 0;
};

ChunkRange ChunksOf(const ReleasedPages& pages, std::size_t offset, std::size_t size) {
    const std::size_t last = offset + size - 1;  // the extent's last byte
    if (size == 0 || last < pages.head) return {};  // within the part before the first chunk
    const std::size_t begin = offset < pages.head ? 0 : (offset - pages.head) / pages.chunk;
    return {begin, std::min((last - pages.head) / pages.chunk + 1, pages.stillRead.size())};
}

}  // namespace

ReleasedPages PagesOf(std::span<const std::uint8_t> buffer, std::size_t chunk) {
    ReleasedPages pages;
    pages.buffer = buffer.data();
    pages.chunk = chunk;
    const auto address = reinterpret_cast<std::uintptr_t>(buffer.data());
    pages.head = static_cast<std::size_t>((chunk - address % chunk) % chunk);
    if (buffer.size() > pages.head) pages.stillRead.assign((buffer.size() - pages.head) / chunk, 0);
    return pages;
}

void CountRead(ReleasedPages& pages, std::size_t offset, std::size_t size) {
    const ChunkRange range = ChunksOf(pages, offset, size);
    for (std::size_t c = range.begin; c < range.end; ++c) ++pages.stillRead[c];
}

void ReadLast(ReleasedPages& pages, std::size_t offset, std::size_t size) {
    const ChunkRange range = ChunksOf(pages, offset, size);
    for (std::size_t c = range.begin; c < range.end; ++c) {
        if (--pages.stillRead[c] == 0) GiveBack(pages, c);
    }
}

void GiveBackUnread(const ReleasedPages& pages) {
    for (std::size_t c = 0; c < pages.stillRead.size(); ++c) {
        if (pages.stillRead[c] == 0) GiveBack(pages, c);
    }
}

}  // namespace dwg
