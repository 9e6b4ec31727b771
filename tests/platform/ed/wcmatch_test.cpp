#include <gtest/gtest.h>

#include "platform/ed/ads.hpp"
#include "platform/ed/utilities.hpp"

namespace {

struct WcCase {
    const wchar_t* text;
    const wchar_t* pattern;
    bool matches;
};

class WildCardMatch : public ::testing::TestWithParam<WcCase> {};

TEST_P(WildCardMatch, GivesRtnormExactlyOnAMatch) {
    const WcCase& c = GetParam();
    EXPECT_EQ(acutWcMatch(c.text, c.pattern), c.matches ? RTNORM : RTNONE);
}

INSTANTIATE_TEST_SUITE_P(
    SpecialCharacters, WildCardMatch,
    ::testing::Values(
        // '*' any run, also empty; a prefix test as the batch uses it
        WcCase{L"P-1", L"P-*", true}, WcCase{L"P-", L"P-*", true}, WcCase{L"PX-1", L"P*", true},
        WcCase{L"Q-1", L"P*", false},
        // '?' exactly one character
        WcCase{L"AB", L"A?", true}, WcCase{L"A", L"A?", false}, WcCase{L"ABC", L"A?", false},
        // '#' a digit, '@' a letter, '.' neither
        WcCase{L"A7", L"A#", true}, WcCase{L"AX", L"A#", false}, WcCase{L"7X", L"#@", true},
        WcCase{L"77", L"#@", false}, WcCase{L"A-", L"A.", true}, WcCase{L"A1", L"A.", false},
        WcCase{L"Ab", L"A.", false},
        // brackets, ranges and their negation
        WcCase{L"TYPE3", L"TYPE[1-9]", true}, WcCase{L"TYPE0", L"TYPE[1-9]", false},
        WcCase{L"b", L"[abc]", true}, WcCase{L"d", L"[abc]", false}, WcCase{L"d", L"[~abc]", true},
        WcCase{L"a", L"[~abc]", false},
        // a range written high to low is the same range: "[a-A-z-Z]" takes every letter
        WcCase{L"H7:20", L"[a-A-z-Z]*", true}, WcCase{L"q", L"[a-A-z-Z]", true},
        WcCase{L"7H", L"[a-A-z-Z]*", false}, WcCase{L"c", L"[c-a]", true}, WcCase{L"d", L"[c-a]", false},
        // '~' negates the whole pattern
        WcCase{L"ABC", L"~A*", false}, WcCase{L"XBC", L"~A*", true},
        // ',' separates alternatives, each may be negated
        WcCase{L"DIM1", L"TXT*,DIM*", true}, WcCase{L"HAT", L"TXT*,DIM*", false},
        WcCase{L"HAT", L"TXT*,~DIM*", true},
        // '`' escapes: `* is a literal asterisk, `, a literal comma
        WcCase{L"*KEY*", L"`**`*", true}, WcCase{L"KEY*", L"`**`*", false}, WcCase{L"*KEY", L"`**`*", false},
        WcCase{L"A*", L"A`*", true}, WcCase{L"AB", L"A`*", false}, WcCase{L"a,b", L"a`,b", true},
        WcCase{L"#1", L"`#1", true}, WcCase{L"21", L"`#1", false},
        // the hole table's pattern: literal brackets around TYPE and one or two digits
        WcCase{L"[TYPE3] x", L"`[TYPE[1-9]`]*,`[TYPE[1-9][0-9]`]*", true},
        WcCase{L"[TYPE12]", L"`[TYPE[1-9]`]*,`[TYPE[1-9][0-9]`]*", true},
        WcCase{L"[TYPE0]", L"`[TYPE[1-9]`]*,`[TYPE[1-9][0-9]`]*", false},
        // the host matches with regard to case
        WcCase{L"name", L"N*", false}, WcCase{L"Name", L"N*", true},
        // Chinese text is letters
        WcCase{L"图框A3", L"@@A#", true}));

TEST(WildCardMatchErrors, NullArgumentsGiveAnError) {
    EXPECT_EQ(acutWcMatch(nullptr, L"*"), RTERROR);
    EXPECT_EQ(acutWcMatch(L"x", nullptr), RTERROR);
}

}  // namespace
