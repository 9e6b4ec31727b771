// The header and classes sections' frame: where the data starts by version and maintenance
// release, and the CRC over the size and the data.
#include "platform/dwg/framed_section.hpp"

#include <gtest/gtest.h>

#include <array>

using dwg::Version;

namespace {

constexpr std::array<std::uint8_t, 16> kSentinel = {1, 2, 3, 4, 5, 6, 7, 8,
                                                    9, 10, 11, 12, 13, 14, 15, 16};

std::vector<std::uint8_t> Framed(const std::vector<std::uint8_t>& data, bool highWord) {
    std::vector<std::uint8_t> out(kSentinel.begin(), kSentinel.end());
    const auto size = static_cast<std::uint32_t>(data.size());
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<std::uint8_t>(size >> (8 * i)));
    if (highWord) out.insert(out.end(), 4, 0);
    out.insert(out.end(), data.begin(), data.end());
    const auto crc = dwg::Crc16(0xC0C1, std::span(out).subspan(16));
    out.push_back(static_cast<std::uint8_t>(crc));
    out.push_back(static_cast<std::uint8_t>(crc >> 8));
    out.insert(out.end(), 16, 0x55);  // the end sentinel, not read
    return out;
}

struct FrameCase {
    Version version;
    int maintenance;
    bool highWord;
};

class DwgFramedSection : public ::testing::TestWithParam<FrameCase> {};

TEST_P(DwgFramedSection, high_word_of_the_size_by_version_and_release) {
    const auto [version, maintenance, highWord] = GetParam();
    EXPECT_EQ(dwg::SizeHasHighWord(version, maintenance), highWord);
    const std::vector<std::uint8_t> data = {0xAA, 0xBB, 0xCC};
    dwg::FramedData framed;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ReadFramedSection(Framed(data, highWord), kSentinel, version, maintenance,
                                       "test section", framed, error))
        << error.reason;
    EXPECT_EQ(framed.start, highWord ? 24u : 20u);
    EXPECT_EQ(std::vector<std::uint8_t>(framed.data.begin(), framed.data.end()), data);
    // The other layout does not pass its CRC.
    EXPECT_FALSE(dwg::ReadFramedSection(Framed(data, !highWord), kSentinel, version, maintenance,
                                        "test section", framed, error));
}

INSTANTIATE_TEST_SUITE_P(
    Releases, DwgFramedSection,
    ::testing::Values(FrameCase{Version::kR2000, 9, false}, FrameCase{Version::kR2007, 9, false},
                      FrameCase{Version::kR2010, 3, false}, FrameCase{Version::kR2010, 4, true},
                      FrameCase{Version::kR2013, 3, false}, FrameCase{Version::kR2013, 4, true},
                      FrameCase{Version::kR2018, 0, true}));

TEST(DwgFramedSection, wrong_sentinel_is_named) {
    auto section = Framed({1, 2}, false);
    section[3] ^= 1;
    dwg::FramedData framed;
    dwg::MapError error;
    EXPECT_FALSE(dwg::ReadFramedSection(section, kSentinel, Version::kR2000, 0, "header section",
                                        framed, error));
    EXPECT_EQ(error.reason, "header section does not start with its sentinel");
}

TEST(DwgFramedSection, crc_mismatch_gives_its_offset) {
    auto section = Framed({1, 2}, false);
    section[21] ^= 1;
    dwg::FramedData framed;
    dwg::MapError error;
    EXPECT_FALSE(dwg::ReadFramedSection(section, kSentinel, Version::kR2000, 0, "classes section",
                                        framed, error));
    EXPECT_EQ(error.reason, "classes section CRC mismatch");
    EXPECT_EQ(error.offset, 22u);
}

TEST(DwgFramedSection, size_past_the_section_is_refused) {
    auto section = Framed({1, 2}, false);
    section[16] = 0xFF;
    dwg::FramedData framed;
    dwg::MapError error;
    EXPECT_FALSE(dwg::ReadFramedSection(section, kSentinel, Version::kR2000, 0, "classes section",
                                        framed, error));
    EXPECT_EQ(error.offset, 16u);
}

}  // namespace
