// A buffer's chunks of pages given back to the system once every extent counted over them has
// been read for the last time: a chunk given back reads as zeros, the others keep their bytes,
// and the partial chunks at the buffer's ends are never given back.
#include <gtest/gtest.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/dwg/released_pages.hpp"

namespace {

constexpr std::size_t kChunk = dwg::kReleasedChunk;
// The buffer's bytes before its first whole chunk and after its last.
constexpr std::size_t kHead = 300, kTail = 500, kWholeChunks = 4;

// A buffer of kWholeChunks whole chunks between a head and a tail of partial chunks, of bytes
// that are never zero.
struct Buffer {
    std::vector<std::uint8_t> storage = std::vector<std::uint8_t>((kWholeChunks + 3) * kChunk);
    std::span<std::uint8_t> bytes;

    Buffer() {
        const auto address = reinterpret_cast<std::uintptr_t>(storage.data());
        const std::size_t start = (2 * kChunk - kHead - address % kChunk) % kChunk;
        bytes = std::span<std::uint8_t>(storage).subspan(start, kHead + kWholeChunks * kChunk + kTail);
        for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(1 + i % 251);
    }
    // Where the whole chunk `c` starts, plus `byte`.
    static std::size_t at(std::size_t c, std::size_t byte = 0) { return kHead + c * kChunk + byte; }
    bool zeros(std::size_t begin, std::size_t end) const {
        for (std::size_t i = begin; i < end; ++i)
            if (bytes[i] != 0) return false;
        return true;
    }
    bool keeps(std::size_t begin, std::size_t end) const {
        for (std::size_t i = begin; i < end; ++i)
            if (bytes[i] != static_cast<std::uint8_t>(1 + i % 251)) return false;
        return true;
    }
    // The whole chunks given back (all zeros) as a string of their numbers; fails the test for
    // a chunk that is neither given back nor kept whole, or a partial end chunk not kept.
    std::string givenBack() const {
        EXPECT_TRUE(keeps(0, kHead));
        EXPECT_TRUE(keeps(at(kWholeChunks), bytes.size()));
        std::string out;
        for (std::size_t c = 0; c < kWholeChunks; ++c) {
            if (zeros(at(c), at(c + 1))) out += std::to_string(c);
            else EXPECT_TRUE(keeps(at(c), at(c + 1))) << c;
        }
        return out;
    }
};

struct Extent {
    std::size_t offset, size;
};

TEST(DwgReleasedPages, the_whole_chunks_are_those_between_the_partial_ends) {
    Buffer buffer;
    const dwg::ReleasedPages pages = dwg::PagesOf(buffer.bytes);
    EXPECT_EQ(pages.head, kHead);
    EXPECT_EQ(pages.stillRead, std::vector<std::uint32_t>(kWholeChunks, 0));
    EXPECT_TRUE(dwg::PagesOf(buffer.bytes.subspan(1, kChunk)).stillRead.empty());
    EXPECT_EQ(dwg::PagesOf(buffer.bytes.subspan(kHead, kChunk)).stillRead.size(), 1u);
    EXPECT_EQ(dwg::PagesOf(buffer.bytes.subspan(kHead, kChunk - 1)).stillRead.size(), 0u);
}

TEST(DwgReleasedPages, a_chunk_is_given_back_once_every_extent_over_it_is_read_last) {
#if !defined(__linux__)
    GTEST_SKIP() << "memory is given back on Linux only";
#endif
    const struct {
        const char* what;
        std::vector<Extent> counted;
        std::vector<Extent> readLast;  // of those counted
        const char* unread;            // the chunks given back before any is read last
        const char* givenBack;         // and after
    } cases[] = {
        {"none counted", {}, {}, "0123", "0123"},
        {"one extent not read last", {{Buffer::at(1, 10), 100}}, {}, "023", "023"},
        {"one extent read last", {{Buffer::at(1, 10), 100}}, {{Buffer::at(1, 10), 100}}, "023", "0123"},
        {"two extents in a chunk, one read last",
         {{Buffer::at(2, 10), 100}, {Buffer::at(2, 5000), 200}}, {{Buffer::at(2, 5000), 200}}, "013", "013"},
        {"two extents in a chunk, both read last",
         {{Buffer::at(2, 10), 100}, {Buffer::at(2, 5000), 200}},
         {{Buffer::at(2, 5000), 200}, {Buffer::at(2, 10), 100}}, "013", "0123"},
        {"one extent counted twice, read last once",
         {{Buffer::at(3, 10), 100}, {Buffer::at(3, 10), 100}}, {{Buffer::at(3, 10), 100}}, "012", "012"},
        {"an extent across a border", {{Buffer::at(1, kChunk - 50), 100}}, {{Buffer::at(1, kChunk - 50), 100}}, "03", "0123"},
        {"an extent across a border, not read last", {{Buffer::at(1, kChunk - 50), 100}}, {}, "03", "03"},
        {"an extent over a whole chunk and two halves", {{Buffer::at(0, 70), 2 * kChunk}}, {}, "3", "3"},
        {"an extent ending at a chunk's last byte", {{Buffer::at(1, 0), kChunk}}, {}, "023", "023"},
        {"an extent within the head", {{0, kHead}}, {}, "0123", "0123"},
        {"an extent from the head into the first chunk", {{kHead - 50, 51}}, {{kHead - 50, 51}}, "123", "0123"},
        {"an extent within the tail", {{Buffer::at(4, 10), 100}}, {}, "0123", "0123"},
        {"an extent from the last chunk into the tail", {{Buffer::at(4) - 1, 2}}, {}, "012", "012"},
        {"an empty extent", {{Buffer::at(1, 10), 0}}, {}, "0123", "0123"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Buffer buffer;
        dwg::ReleasedPages pages = dwg::PagesOf(buffer.bytes);
        for (const Extent& e : c.counted) dwg::CountRead(pages, e.offset, e.size);
        dwg::GiveBackUnread(pages);
        EXPECT_EQ(buffer.givenBack(), c.unread);
        for (const Extent& e : c.readLast) dwg::ReadLast(pages, e.offset, e.size);
        EXPECT_EQ(buffer.givenBack(), c.givenBack);
    }
}

TEST(DwgReleasedPages, a_chunk_given_back_while_others_are_read_leaves_them_their_bytes) {
#if !defined(__linux__)
    GTEST_SKIP() << "memory is given back on Linux only";
#endif
    Buffer buffer;
    dwg::ReleasedPages pages = dwg::PagesOf(buffer.bytes);
    for (std::size_t c = 0; c < kWholeChunks; ++c) dwg::CountRead(pages, Buffer::at(c, 1), kChunk - 2);
    std::string expected;
    for (std::size_t c = 0; c < kWholeChunks; ++c) {
        dwg::ReadLast(pages, Buffer::at(c, 1), kChunk - 2);
        expected += std::to_string(c);
        EXPECT_EQ(buffer.givenBack(), expected);
    }
    EXPECT_EQ(pages.stillRead, std::vector<std::uint32_t>(kWholeChunks, 0));
}

}  // namespace
