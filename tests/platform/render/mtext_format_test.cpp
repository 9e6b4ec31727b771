// The format codes of multi-line texts as runs and paragraphs.
#include <gtest/gtest.h>

#include "platform/render/mtext_format.hpp"

namespace {

using tavrik::render::ParseMText;
using tavrik::render::StackKind;

TEST(MTextFormat, paragraph_codes_start_new_lines_and_plain_text_is_one_run) {
    auto paragraphs = ParseMText(L"ab\\Pcd\\Nef\\Xgh", 2.5);
    ASSERT_EQ(paragraphs.size(), 4u);
    EXPECT_EQ(paragraphs[0].size(), 1u);
    EXPECT_EQ(paragraphs[0][0].text, L"ab");
    EXPECT_EQ(paragraphs[3][0].text, L"gh");
    EXPECT_EQ(ParseMText(L"", 2.5).size(), 1u);
}

TEST(MTextFormat, group_keeps_its_look_to_itself) {
    auto runs = ParseMText(L"a{\\H2x;\\C1;b}c", 2.5)[0];
    ASSERT_EQ(runs.size(), 3u);
    EXPECT_EQ(runs[1].text, L"b");
    EXPECT_DOUBLE_EQ(runs[1].look.height, 2.0);
    EXPECT_EQ(runs[1].look.colorIndex, 1);
    EXPECT_EQ(runs[2].text, L"c");
    EXPECT_DOUBLE_EQ(runs[2].look.height, 1.0);
    EXPECT_EQ(runs[2].look.colorIndex, -1);
}

struct HeightCase {
    const wchar_t* contents;
    double height;
};

TEST(MTextFormat, height_is_relative_with_x_and_absolute_in_drawing_units_without) {
    const HeightCase cases[] = {
        {L"\\H0.7x;a", 0.7}, {L"\\H0.5X;\\H0.5x;a", 0.25}, {L"\\H5;a", 2.0}, {L"\\H0;a", 1.0}, {L"\\H-2x;a", 1.0},
    };
    for (const HeightCase& c : cases) {
        auto runs = ParseMText(c.contents, 2.5)[0];
        ASSERT_EQ(runs.size(), 1u) << c.contents;
        EXPECT_DOUBLE_EQ(runs[0].look.height, c.height) << c.contents;
    }
}

TEST(MTextFormat, width_oblique_tracking_and_true_colour_are_read) {
    auto look = ParseMText(L"\\W0.8;\\W0.5x;\\Q15;\\T1.5;\\c255;a", 2.5)[0][0].look;
    EXPECT_DOUBLE_EQ(look.widthFactor, 0.4);
    EXPECT_DOUBLE_EQ(look.obliqueDegrees, 15.0);
    EXPECT_DOUBLE_EQ(look.tracking, 1.5);
    EXPECT_TRUE(look.hasTrueColor);
    EXPECT_EQ(look.trueColor, 255u);
    auto unreadable = ParseMText(L"\\cred;a", 2.5)[0][0].look;
    EXPECT_TRUE(unreadable.hasTrueColor);
    EXPECT_EQ(unreadable.trueColor, 0u);  // a value that is no number is black
    auto back = ParseMText(L"\\c255;\\C3;a", 2.5)[0][0].look;
    EXPECT_FALSE(back.hasTrueColor);
    EXPECT_EQ(back.colorIndex, 3);
}

TEST(MTextFormat, font_code_gives_bold_and_italic_and_the_shx_code_nothing) {
    auto look = ParseMText(L"{\\fSimSun|b1|i1|c134;a}{\\fArial|b0|i0;b}{\\Fgbcbig.shx;c}", 2.5)[0];
    // The last two groups look alike: one run.
    ASSERT_EQ(look.size(), 2u);
    EXPECT_TRUE(look[0].look.bold);
    EXPECT_TRUE(look[0].look.italic);
    EXPECT_FALSE(look[1].look.bold);
    EXPECT_FALSE(look[1].look.italic);
    EXPECT_EQ(look[1].text, L"bc");
}

struct FontFlagsCase {
    const wchar_t* contents;
    bool bold, italic;
};

TEST(MTextFormat, font_flags_are_read_from_every_field_after_any_family_name) {
    const FontFlagsCase cases[] = {
        {L"\\f|b1;a", true, false},           // no family name: the first field starts the value
        {L"\\fX|i1|b1;a", true, true},         // a one-letter family; the flag in the last field
        {L"\\fArial||b1|i1;a", true, true},    // an empty field before the flags
        {L"\\fArial|b;a", false, false},       // a flag without its digit is off
        {L"\\fArial|b1|i;a", true, false},
        {L"\\fArial|i1|i;a", false, false},   // a bare flag in the last field is off too
        {L"\\fArial|b|i1;a", false, true},    // and so is one before another field
        {L"\\fArial|b0|i1|c134;a", false, true},
        {L"\\fb1|i1;a", false, true},          // a family name that reads as a flag is a name
    };
    for (const FontFlagsCase& c : cases) {
        auto runs = ParseMText(c.contents, 2.5)[0];
        ASSERT_EQ(runs.size(), 1u) << c.contents;
        EXPECT_EQ(runs[0].look.bold, c.bold) << c.contents;
        EXPECT_EQ(runs[0].look.italic, c.italic) << c.contents;
    }
}

TEST(MTextFormat, line_switches_turn_on_and_off) {
    auto runs = ParseMText(L"\\L\\O\\Ka\\l\\o\\kb", 2.5)[0];
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_TRUE(runs[0].look.underline && runs[0].look.overline && runs[0].look.strike);
    EXPECT_FALSE(runs[1].look.underline || runs[1].look.overline || runs[1].look.strike);
}

struct StackCase {
    const wchar_t* contents;
    StackKind kind;
    const wchar_t* upper;
    const wchar_t* lower;
};

TEST(MTextFormat, backslash_that_ends_the_contents_inside_a_stack_is_kept_as_itself) {
    auto runs = ParseMText(L"\\S1^2\\", 2.5)[0];
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].stack, StackKind::kTolerance);
    EXPECT_EQ(runs[0].upper, L"1");
    EXPECT_EQ(runs[0].lower, L"2\\");
}

TEST(MTextFormat, stack_is_split_at_its_first_unescaped_separator) {
    const StackCase cases[] = {
        {L"\\S+0.1^-0.05;", StackKind::kTolerance, L"+0.1", L"-0.05"},
        {L"\\S1/2;", StackKind::kFraction, L"1", L"2"},
        {L"\\S3#4;", StackKind::kDiagonal, L"3", L"4"},
        {L"\\S1\\/2/3;", StackKind::kFraction, L"1/2", L"3"},
        {L"\\S^-0.02;", StackKind::kTolerance, L"", L"-0.02"},
        {L"\\S1/2", StackKind::kFraction, L"1", L"2"},
    };
    for (const StackCase& c : cases) {
        auto runs = ParseMText(std::wstring(L"50") + c.contents + L"x", 2.5)[0];
        ASSERT_EQ(runs.size(), c.contents[std::wcslen(c.contents) - 1] == L';' ? 3u : 2u) << c.contents;
        EXPECT_EQ(runs[0].text, L"50");
        EXPECT_EQ(runs[1].stack, c.kind) << c.contents;
        EXPECT_EQ(runs[1].upper, c.upper) << c.contents;
        EXPECT_EQ(runs[1].lower, std::wstring(c.lower) + (c.contents[std::wcslen(c.contents) - 1] == L';' ? L"" : L"x"))
            << c.contents;
    }
}

TEST(MTextFormat, stack_without_separator_is_plain_text) {
    auto runs = ParseMText(L"a\\S12;b", 2.5)[0];
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].text, L"a12b");
}

TEST(MTextFormat, escapes_and_unknown_codes) {
    auto runs = ParseMText(L"\\\\\\{\\}\\~\\A1;\\pxi1;\\Za\\", 2.5)[0];
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].text, L"\\{}\u00A0a\\");
}

TEST(MTextFormat, closing_brace_without_group_is_ignored) {
    auto runs = ParseMText(L"a}b", 2.5)[0];
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].text, L"ab");
}

}  // namespace
