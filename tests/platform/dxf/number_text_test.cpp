// Numbers read from their texts: the short decimals read without the general conversion give
// exactly what it gives, and every other text is left to it.
#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

#include "platform/dxf/tagger.hpp"

namespace {

// The general conversion's reading, a leading plus sign allowed as DXF files have it.
bool GeneralParse(std::string_view text, double& value) {
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    return !text.empty() && ec == std::errc() && ptr == text.data() + text.size();
}

void ExpectAsGeneral(std::string_view text) {
    double ours = 0.0, general = 0.0;
    const bool read = dxf::ParseDouble(text, ours);
    ASSERT_EQ(read, GeneralParse(text, general)) << text;
    if (read) {
        ASSERT_EQ(std::bit_cast<std::uint64_t>(ours), std::bit_cast<std::uint64_t>(general)) << text;
    }
}

TEST(NumberText, texts_of_every_form_read_as_the_general_conversion_reads_them) {
    for (const char* text :
         {"0", "0.0", "-0.0", "-0", "+1.5", "1.", ".5", "-.5", ".", "-", "+", "", "--1", "+-1", "1..2",
          "1.2.3", "12a", "1:5", "/5", " 1", "1e5", "1E-3", "inf", "-nan", "0.000000000000000000000123",
          "123456789012345", "1234567890123456", "0.1234567890123456789012", "99999999999999.9",
          "999999999999999.9", "100000000000000000000", "3.0000000000000004", "-1234.5678"}) {
        ExpectAsGeneral(text);
    }
}

TEST(NumberText, random_short_decimals_read_as_the_general_conversion_reads_them) {
    std::mt19937_64 random(20261124);
    for (int i = 0; i < 200000; ++i) {
        const auto digits = random() % 10'000'000'000'000'000ULL;
        std::string text = std::to_string(digits);
        const auto point = random() % (text.size() + 1);
        text.insert(point, ".");
        if (random() % 2 == 0) text.insert(0, "-");
        ExpectAsGeneral(text);
    }
}

TEST(NumberText, shortest_texts_of_random_doubles_read_back_to_them) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 200000; ++i) {
        const double value = std::bit_cast<double>(random());
        std::string text;
        dxf::FormatDouble(value, text);
        ExpectAsGeneral(text);
        const double scaled = static_cast<double>(random() % 2'000'000) / 1000.0 - 1000.0;
        text.clear();
        dxf::FormatDouble(scaled, text);
        ExpectAsGeneral(text);
    }
}

}  // namespace
