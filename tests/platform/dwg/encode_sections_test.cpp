// The small sections of an AC1018 file as the DWG writer lays them out: summary info, template
// and auxiliary header, walked field by field as a reader takes them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "platform/dwg/encode_sections.hpp"

namespace {

using Bytes = std::vector<std::uint8_t>;

std::uint32_t Little(const Bytes& b, std::size_t at, unsigned width) {
    std::uint32_t value = 0;
    for (unsigned i = 0; i < width; ++i) value |= std::uint32_t{b.at(at + i)} << (8 * i);
    return value;
}

TEST(DwgEncodeSections, summary_info_holds_eight_empty_texts_six_zero_dates_and_no_properties) {
    const Bytes info = dwg::EncodeSummaryInfo();
    std::size_t at = 0;
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(Little(info, at, 2), 1u) << "text " << i;  // the length counts the closing zero
        EXPECT_EQ(info.at(at + 2), 0) << "text " << i;
        at += 3;
    }
    for (int i = 0; i < 6; ++i, at += 4) EXPECT_EQ(Little(info, at, 4), 0u) << "date part " << i;
    EXPECT_EQ(Little(info, at, 2), 0u);  // custom properties
    at += 2 + 4 + 4;
    EXPECT_EQ(at, info.size());
}

TEST(DwgEncodeSections, template_is_an_empty_description_and_the_measurement) {
    EXPECT_EQ(dwg::EncodeTemplate(1), (Bytes{0, 0, 1, 0}));
    EXPECT_EQ(dwg::EncodeTemplate(0), (Bytes{0, 0, 0, 0}));
}

// A date is its whole days and the milliseconds of the rest of the day.
TEST(DwgEncodeSections, aux_header_dates_are_days_and_milliseconds) {
    const Bytes aux = dwg::EncodeAuxHeader(2460000.5, 2460001.25, 0x1234);
    const Bytes created = {0x60, 0x89, 0x25, 0x00, 0x00, 0x2E, 0x93, 0x02};  // 2460000, 43200000
    const Bytes updated = {0x61, 0x89, 0x25, 0x00, 0x00, 0x97, 0x49, 0x01};  // 2460001, 21600000
    EXPECT_NE(std::search(aux.begin(), aux.end(), created.begin(), created.end()), aux.end());
    EXPECT_NE(std::search(aux.begin(), aux.end(), updated.begin(), updated.end()), aux.end());
}

// The fields a reader finds at fixed places: the marker, the version (25, AC1018) where the
// header starts and twice more (written and writing version), the handle seed after the dates.
TEST(DwgEncodeSections, aux_header_fields_stand_at_their_places) {
    const Bytes aux = dwg::EncodeAuxHeader(2460000.5, 2460001.25, 0x1234);
    EXPECT_EQ(Bytes(aux.begin(), aux.begin() + 3), (Bytes{0xFF, 0x77, 0x01}));
    EXPECT_EQ(Little(aux, 3, 2), 25u);
    EXPECT_EQ(Little(aux, 23, 2), 25u);
    EXPECT_EQ(Little(aux, 27, 2), 25u);
    EXPECT_EQ(Little(aux, 79, 4), 0x1234u);
    EXPECT_EQ(aux.size(), 123u);
}

// The preview: its start sentinel, the size of what follows (the image count, one byte), no
// image, its end sentinel; the revision history: three zero longs.
TEST(DwgEncodeSections, preview_holds_no_image_between_its_sentinels_and_history_three_zeros) {
    const Bytes preview = dwg::EncodePreview();
    ASSERT_EQ(preview.size(), 16u + 4u + 1u + 16u);
    EXPECT_EQ(Little(preview, 16, 4), 1u);
    EXPECT_EQ(preview[20], 0);
    EXPECT_NE(Bytes(preview.begin(), preview.begin() + 16), Bytes(preview.end() - 16, preview.end()));
    EXPECT_EQ(dwg::EncodeRevisionHistory(), Bytes(12, 0));
    // A drawing saved once: the save counts of the auxiliary header say so.
    const Bytes aux = dwg::EncodeAuxHeader(0, 0, 1);
    EXPECT_EQ(Little(aux, 7, 4), 1u);
    EXPECT_EQ(Little(aux, 15, 2), 1u);
}

}  // namespace
