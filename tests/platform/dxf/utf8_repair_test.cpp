#include <gtest/gtest.h>

#include "platform/dxf/codepage.hpp"

namespace {

struct Case {
    const char* bytes;
    const char* decoded;
};

TEST(Utf8Repair, each_bad_sequence_becomes_one_replacement_and_keeps_what_follows) {
    const Case cases[] = {
        {"A\xff" "BCDEF", "A\xEF\xBF\xBD" "BCDEF"},
        {"\xE4\xB8" "X", "\xEF\xBF\xBD" "X"},               // a cut three-byte sequence
        {"\xC0\xAF" "Y", "\xEF\xBF\xBD\xEF\xBF\xBD" "Y"},   // overlong: two bad bytes
        {"\xED\xA0\x80" "Z", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD" "Z"},  // a surrogate
        {"\xE4\xB8\xAD", "\xE4\xB8\xAD"},                   // well formed stays
    };
    for (const Case& c : cases) {
        std::string out;
        dxf::DecodeText(c.bytes, 65001, out);
        EXPECT_EQ(out, c.decoded) << c.bytes;
        EXPECT_EQ(dxf::DecodesUnchanged(c.bytes, 65001), out == c.bytes);
    }
}

}  // namespace
