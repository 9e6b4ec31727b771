#include "platform/dwg/r2004_pages.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "platform/dwg/corpus_files.hpp"

using namespace dwg;

namespace {

std::uint32_t Long(const std::uint8_t* p) {
    std::uint32_t v;
    std::memcpy(&v, p, 4);
    return v;
}
std::uint64_t LongLong(const std::uint8_t* p) {
    std::uint64_t v;
    std::memcpy(&v, p, 8);
    return v;
}

// A drawing saved by the format's own writer: what ours writes must match it byte for byte.
class DwgR2004Pages : public testing::Test {
protected:
    void SetUp() override {
        file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2004.dwg"));
        if (file.size() < 0x200) GTEST_SKIP() << "corpus drawing example_2004.dwg not found";
        const auto magic = MagicSequence(0x6C);
        for (std::size_t i = 0; i < 0x6C; ++i) plain.push_back(file[0x80 + i] ^ magic[i]);
    }
    std::vector<std::uint8_t> file;
    std::vector<std::uint8_t> plain;  // the decrypted header block
};

TEST_F(DwgR2004Pages, magic_sequence_decrypts_the_stored_header_block) {
    EXPECT_EQ(std::string(plain.begin(), plain.begin() + 11), "AcFssFcAJMB");
    EXPECT_EQ(Long(&plain[0x10]), 0x6Cu);
    // The CRC-32 of the block with its CRC field zeroed is the stored one.
    std::vector<std::uint8_t> zeroed = plain;
    std::fill(zeroed.begin() + 0x68, zeroed.end(), 0);
    EXPECT_EQ(Crc32(zeroed), Long(&plain[0x68]));
}

TEST_F(DwgR2004Pages, header_block_is_encrypted_as_the_format_writer_does) {
    FileHeaderBlock b;
    const std::uint8_t* p = plain.data();
    b.rootGap = Long(p + 0x18);
    b.leftGap = Long(p + 0x1C);
    b.rightGap = Long(p + 0x20);
    b.unknown = Long(p + 0x24);
    b.lastPageId = Long(p + 0x28);
    b.lastPageEnd = LongLong(p + 0x2C);
    b.secondHeaderAddress = LongLong(p + 0x34);
    b.gapAmount = Long(p + 0x3C);
    b.pageAmount = Long(p + 0x40);
    b.pageMapId = Long(p + 0x50);
    b.pageMapAddress = LongLong(p + 0x54);
    b.sectionMapId = Long(p + 0x5C);
    b.pageArraySize = Long(p + 0x60);
    b.gapArraySize = Long(p + 0x64);
    const auto encrypted = EncryptFileHeader(b);
    EXPECT_EQ(std::vector<std::uint8_t>(encrypted.begin(), encrypted.end()),
              std::vector<std::uint8_t>(file.begin() + 0x80, file.begin() + 0x80 + 0x6C));
}

TEST_F(DwgR2004Pages, system_page_header_checksum_matches_the_page_map) {
    const std::uint64_t at = LongLong(&plain[0x54]) + 0x100;
    ASSERT_LT(at + 20, file.size());
    const std::uint32_t type = Long(&file[at]);
    const std::uint32_t dataSize = Long(&file[at + 4]);
    const std::uint32_t compressedSize = Long(&file[at + 8]);
    EXPECT_EQ(type, 0x41630E3Bu);
    const std::span<const std::uint8_t> compressed(&file[at + 20], compressedSize);
    const auto header = SystemPageHeader(type, dataSize, compressed);
    EXPECT_TRUE(std::equal(header.begin(), header.end(), file.begin() + at));
}

TEST_F(DwgR2004Pages, data_page_header_is_encrypted_with_its_offset) {
    const std::uint64_t at = 0x100;  // the first page
    std::uint32_t values[8];
    for (int i = 0; i < 8; ++i) values[i] = Long(&file[at + 4 * i]) ^ (0x4164536B ^ 0x100);
    EXPECT_EQ(values[0], 0x4163043Bu);
    const std::span<const std::uint8_t> compressed(&file[at + 32], values[2]);
    const auto header = EncryptDataPageHeader(values[1], values[2], values[3],
                                              values[4] | (std::uint64_t{values[5]} << 32),
                                              compressed, at);
    EXPECT_TRUE(std::equal(header.begin(), header.end(), file.begin() + at));
}

TEST(DwgPageChecksum, sums_wrap_at_0xfff1_per_chunk_of_0x15b0_bytes) {
    EXPECT_EQ(PageChecksum(0, {}), 0u);
    EXPECT_EQ(PageChecksum(0x00020001, {}), 0x00020001u);
    const std::vector<std::uint8_t> one{5};
    EXPECT_EQ(PageChecksum(0, one), 0x00050005u);
    EXPECT_EQ(PageChecksum(0x00010002, one), 0x00080007u);
    // 0x15B0 bytes of 0xFF: sum1 = 0x15B0 * 0xFF, sum2 = 0xFF * (1 + ... + 0x15B0), each mod 0xFFF1.
    const std::vector<std::uint8_t> chunk(0x15B0, 0xFF);
    const std::uint64_t n = 0x15B0;
    const std::uint64_t sum1 = (n * 0xFF) % 0xFFF1;
    const std::uint64_t sum2 = (0xFF * n * (n + 1) / 2) % 0xFFF1;
    EXPECT_EQ(PageChecksum(0, chunk), static_cast<std::uint32_t>((sum2 << 16) | sum1));
    // A second chunk starts from the reduced sums.
    std::vector<std::uint8_t> two = chunk;
    two.push_back(1);
    const std::uint64_t next1 = (sum1 + 1) % 0xFFF1;
    const std::uint64_t next2 = (sum2 + next1) % 0xFFF1;
    EXPECT_EQ(PageChecksum(0, two), static_cast<std::uint32_t>((next2 << 16) | next1));
}

// Data of every length around the sixteen-byte steps and the chunk's end sums as one byte at a
// time does, from any seed.
TEST(DwgPageChecksum, long_data_sums_as_byte_by_byte) {
    const auto byteByByte = [](std::uint32_t seed, std::span<const std::uint8_t> bytes) {
        std::uint64_t sum1 = seed & 0xFFFF, sum2 = seed >> 16;
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            sum1 += bytes[at];
            sum2 += sum1;
            if ((at + 1) % 0x15B0 == 0 || at + 1 == bytes.size()) {
                sum1 %= 0xFFF1;
                sum2 %= 0xFFF1;
            }
        }
        return static_cast<std::uint32_t>((sum2 << 16) | (sum1 & 0xFFFF));
    };
    std::vector<std::uint8_t> data(3 * 0x15B0 + 40);
    std::uint32_t state = 12345;
    for (std::uint8_t& b : data) {
        state = state * 1103515245u + 12345u;
        b = static_cast<std::uint8_t>(state >> 16);
    }
    std::vector<std::size_t> lengths{0x15AF, 0x15B0, 0x15B1, 0x15B8, 0x15C0, 2 * 0x15B0 + 7, data.size()};
    for (std::size_t length = 0; length <= 40; ++length) lengths.push_back(length);
    for (const std::size_t length : lengths) {
        const std::span<const std::uint8_t> part(data.data(), length);
        for (const std::uint32_t seed : {0u, 0xFFF0FFF0u, 0x12345678u}) {
            EXPECT_EQ(PageChecksum(seed, part), byteByByte(seed, part)) << length << " " << seed;
        }
    }
    const std::vector<std::uint8_t> full(0x15B0 + 100, 0xFF);
    EXPECT_EQ(PageChecksum(0xFFF0FFF0u, full), byteByByte(0xFFF0FFF0u, full));
}

TEST(DwgCrc32, standard_check_value) {
    const std::string text = "123456789";
    EXPECT_EQ(Crc32(std::span<const std::uint8_t>(
                  reinterpret_cast<const std::uint8_t*>(text.data()), text.size())),
              0xCBF43926u);
}

struct LiteralCase {
    std::size_t length;
    std::vector<std::uint8_t> lengthCode;  // the bytes before the data
};
class DwgCompressLiteral : public testing::TestWithParam<LiteralCase> {};

TEST_P(DwgCompressLiteral, run_length_code_then_data_then_end_code) {
    std::vector<std::uint8_t> data(GetParam().length);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::uint8_t>(i * 7 + 1);
    const auto out = CompressLiteral(data);
    std::vector<std::uint8_t> want = GetParam().lengthCode;
    want.insert(want.end(), data.begin(), data.end());
    want.insert(want.end(), {0x11, 0, 0});
    EXPECT_EQ(out, want);
}
INSTANTIATE_TEST_SUITE_P(
    Lengths, DwgCompressLiteral,
    testing::Values(LiteralCase{0, {}}, LiteralCase{4, {0x01}}, LiteralCase{18, {0x0F}},
                    LiteralCase{19, {0x00, 0x01}}, LiteralCase{0x12 + 0xFF, {0x00, 0xFF}},
                    LiteralCase{0x12 + 0x100, {0x00, 0x00, 0x01}},
                    LiteralCase{0x12 + 0x1FE, {0x00, 0x00, 0xFF}},
                    LiteralCase{0x12 + 0x1FF, {0x00, 0x00, 0x00, 0x01}}));

TEST(DwgCompressLiteral, one_to_three_bytes_cannot_start_a_stream) {
    for (std::size_t n = 1; n <= 3; ++n) {
        const std::vector<std::uint8_t> data(n, 0x20);
        EXPECT_TRUE(CompressLiteral(data).empty()) << n;
    }
}

TEST(DwgCompressLiteral, long_run_length_adds_255_per_zero_byte) {
    std::vector<std::uint8_t> data(1000, 0xAB);
    const auto out = CompressLiteral(data);
    std::size_t length = 0x0F;
    std::size_t i = 1;
    while (out[i] == 0) {
        length += 0xFF;
        ++i;
    }
    length += out[i] + 3;
    EXPECT_EQ(length, 1000u);
    EXPECT_EQ(out.size(), i + 1 + 1000 + 3);
}

}  // namespace

namespace {

// The literal run length of the format's compression (the mirror of CompressLiteral's code).
std::size_t LiteralLength(const std::vector<std::uint8_t>& in, std::size_t& i) {
    const std::uint8_t first = in[i];
    if (first >= 0x10) return 0;  // an opcode: no literal run
    ++i;
    if (first != 0) return first + 3u;
    std::size_t length = 0x0F;
    while (in[i] == 0) {
        length += 0xFF;
        ++i;
    }
    return length + in[i++] + 3;
}

// Decompresses the opcodes the corpus maps use (0x20 and up, and the end code); empty for any
// other opcode, so that a test fails rather than reads wrongly.
std::vector<std::uint8_t> Decompress(const std::vector<std::uint8_t>& in) {
    std::vector<std::uint8_t> out;
    std::size_t i = 0;
    auto literal = [&](std::size_t n) {
        out.insert(out.end(), in.begin() + static_cast<std::ptrdiff_t>(i),
                   in.begin() + static_cast<std::ptrdiff_t>(i + n));
        i += n;
    };
    literal(LiteralLength(in, i));
    while (i < in.size()) {
        const std::uint8_t op = in[i++];
        if (op == 0x11) return out;
        std::size_t count = 0, offset = 0, run = 0;
        if (op >= 0x40) {
            count = (op >> 4) - 1u;
            offset = (std::size_t{in[i++]} << 2) | ((op & 0x0C) >> 2);
            run = op & 3;
        } else if (op >= 0x20) {
            count = op - 0x1Eu;
            if (op == 0x20) {
                count = 0x21;
                while (in[i] == 0) {
                    count += 0xFF;
                    ++i;
                }
                count += in[i++];
            }
            offset = (in[i] >> 2) | (std::size_t{in[i + 1]} << 6);
            run = in[i] & 3;
            i += 2;
        } else {
            return {};
        }
        const std::size_t from = out.size() - offset - 1;
        for (std::size_t k = 0; k < count; ++k) out.push_back(out[from + k]);
        literal(run != 0 ? run : LiteralLength(in, i));
    }
    return out;
}

std::vector<std::uint8_t> SystemPage(const std::vector<std::uint8_t>& file, std::uint64_t at) {
    const std::uint32_t compressedSize = Long(&file[at + 8]);
    return Decompress(std::vector<std::uint8_t>(file.begin() + static_cast<std::ptrdiff_t>(at + 20),
                                                file.begin() + static_cast<std::ptrdiff_t>(at + 20 + compressedSize)));
}

TEST_F(DwgR2004Pages, literal_stream_decompresses_to_its_data) {
    std::vector<std::uint8_t> data(5000);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::uint8_t>(i % 251);
    EXPECT_EQ(Decompress(CompressLiteral(data)), data);
}

TEST_F(DwgR2004Pages, page_and_section_maps_are_laid_out_as_the_format_writer_does) {
    const std::uint64_t pageMapAt = LongLong(&plain[0x54]) + 0x100;
    const auto pageMap = SystemPage(file, pageMapAt);
    ASSERT_EQ(pageMap.size(), Long(&file[pageMapAt + 4]));
    std::vector<std::pair<std::int32_t, std::int32_t>> pages;
    std::uint64_t sectionMapAt = 0, address = 0x100;
    for (std::size_t i = 0; i + 8 <= pageMap.size(); i += 8) {
        const auto number = static_cast<std::int32_t>(Long(&pageMap[i]));
        const auto size = static_cast<std::int32_t>(Long(&pageMap[i + 4]));
        pages.emplace_back(number, size);
        if (static_cast<std::uint32_t>(number) == Long(&plain[0x5C])) sectionMapAt = address;
        address += static_cast<std::uint32_t>(size);
    }
    EXPECT_EQ(PageMapBytes(pages), pageMap);

    ASSERT_NE(sectionMapAt, 0u);
    const auto sectionMap = SystemPage(file, sectionMapAt);
    ASSERT_EQ(sectionMap.size(), Long(&file[sectionMapAt + 4]));
    std::vector<SectionDescription> sections(Long(&sectionMap[0]));
    std::size_t at = 20;
    for (SectionDescription& s : sections) {
        s.size = LongLong(&sectionMap[at]);
        const std::uint32_t pageCount = Long(&sectionMap[at + 8]);
        s.maxPageSize = Long(&sectionMap[at + 12]);
        s.compressed = Long(&sectionMap[at + 20]);
        s.id = Long(&sectionMap[at + 24]);
        s.encrypted = Long(&sectionMap[at + 28]);
        s.name = reinterpret_cast<const char*>(&sectionMap[at + 32]);
        at += 96;
        for (std::uint32_t p = 0; p < pageCount; ++p, at += 16) {
            s.pages.push_back({Long(&sectionMap[at]), Long(&sectionMap[at + 4]),
                               LongLong(&sectionMap[at + 8])});
        }
    }
    EXPECT_EQ(at, sectionMap.size());
    EXPECT_EQ(sections.back().name, "AcDb:Header");
    EXPECT_EQ(SectionMapBytes(sections), sectionMap);
}

}  // namespace

namespace {

TEST(DwgR2004PageHeaders, data_page_header_decrypts_to_its_values) {
    const std::vector<std::uint8_t> compressed{1, 2, 3, 4, 5};
    const std::uint64_t fileOffset = 0x7560;
    const std::uint64_t start = 0x100007400;  // past 4 GB: both halves stored
    const auto header = EncryptDataPageHeader(7, 5, 0x7400, start, compressed, fileOffset);
    std::uint32_t v[8];
    for (int i = 0; i < 8; ++i) v[i] = Long(&header[4 * i]) ^ (0x4164536B ^ 0x7560);
    EXPECT_EQ(v[0], 0x4163043Bu);
    EXPECT_EQ(v[1], 7u);
    EXPECT_EQ(v[2], 5u);
    EXPECT_EQ(v[3], 0x7400u);
    EXPECT_EQ(v[4], 0x7400u);
    EXPECT_EQ(v[5], 1u);
    EXPECT_EQ(v[7], PageChecksum(0, compressed));
}

TEST(DwgR2004PageHeaders, section_sizes_and_offsets_keep_their_high_halves) {
    SectionDescription s;
    s.size = 0x123456789;
    s.name = std::string(70, 'x');  // cut to 63 bytes and a zero
    s.pages.push_back({3, 100, 0x200000000});
    const auto bytes = SectionMapBytes({s});
    ASSERT_EQ(bytes.size(), 20u + 96 + 16);
    EXPECT_EQ(LongLong(&bytes[20]), 0x123456789u);
    EXPECT_EQ(bytes[20 + 32 + 62], 'x');
    EXPECT_EQ(bytes[20 + 32 + 63], 0);
    EXPECT_EQ(LongLong(&bytes[20 + 96 + 8]), 0x200000000u);
}

}  // namespace
