// Reading CAD_line.ini: every read stores, missing keys give 0, false or empty, texts are cut to
// the reader's capacity, string values pass through the formatter, colour lists.
#include <gtest/gtest.h>

#include "cleanup_fixture.hpp"

namespace {

class IniReaders : public CleanupTest {};

TEST_F(IniReaders, missing_section_switch_reads_false_over_true) {
    WriteIni(L"[public]\r\nStrSolidLineType=CONTINUOUS\r\n");
    bool open = true;
    double tolerance = 0.02;
    IniReadBool(IniPath(), L"DeleteRepeatingLine", L"BolOpen", open);
    IniReadDouble(IniPath(), L"DeleteRepeatingLine", L"Tolerance", tolerance);
    EXPECT_FALSE(open);
    EXPECT_EQ(tolerance, 0.0);
}

TEST_F(IniReaders, missing_file_stores_zero_and_empty) {
    int count = 7;
    std::wstring text = L"held";
    IniReadInt(L"D:\\nowhere\\CAD_line.ini", L"SplineToPline", L"EqualDivision", count);
    IniReadString(L"D:\\nowhere\\CAD_line.ini", L"public", L"StrDottedLineType", text);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(text, L"");
}

TEST_F(IniReaders, text_that_is_no_number_reads_as_zero_and_2_reads_as_true) {
    WriteIni(L"[UpLineScale]\r\nBolOpen=2\r\nVarScale=abc\r\n");
    bool open = false;
    double scale = 5.0;
    IniReadBool(IniPath(), L"UpLineScale", L"BolOpen", open);
    IniReadDouble(IniPath(), L"UpLineScale", L"VarScale", scale);
    EXPECT_TRUE(open);
    EXPECT_EQ(scale, 0.0);
}

TEST_F(IniReaders, numbers_read_as_written) {
    WriteIni(L"[SplineToPline]\r\nEqualDivision=12\r\nTolerance=0.25\r\nBolOpen=0\r\n");
    int division = 0;
    double tolerance = 0.0;
    bool open = true;
    IniReadInt(IniPath(), L"SplineToPline", L"EqualDivision", division);
    IniReadDouble(IniPath(), L"SplineToPline", L"Tolerance", tolerance);
    IniReadBool(IniPath(), L"SplineToPline", L"BolOpen", open);
    EXPECT_EQ(division, 12);
    EXPECT_EQ(tolerance, 0.25);
    EXPECT_FALSE(open);
}

// "0." and 66 zeros fill 68 characters; the digits after them survive only a long capacity.
TEST_F(IniReaders, short_sections_cut_values_at_68_characters) {
    std::wstring value = L"0." + std::wstring(66, L'0') + L"25";
    WriteIni(L"[UpLineScale]\r\nVarScale=" + value + L"\r\n[DeleteLineDownCurve]\r\nTolerance=" + value +
             L"\r\n[DeleteSmallLineAndPoint]\r\nTolerance=" + value + L"\r\n[ConnectPline]\r\nTolerance=" +
             value + L"\r\n[SplineToLineAndArc]\r\nToleranceArc=" + value + L"\r\n");
    struct Case {
        const wchar_t* section;
        const wchar_t* key;
        bool cut;
    };
    for (Case c : {Case{L"UpLineScale", L"VarScale", true}, Case{L"DeleteLineDownCurve", L"Tolerance", true},
                   Case{L"DeleteSmallLineAndPoint", L"Tolerance", true},
                   Case{L"SplineToLineAndArc", L"ToleranceArc", true},
                   Case{L"ConnectPline", L"Tolerance", false}}) {
        double read = 1.0;
        IniReadDouble(IniPath(), c.section, c.key, read);
        if (c.cut) EXPECT_EQ(read, 0.0) << std::string(c.section, c.section + wcslen(c.section));
        else EXPECT_GT(read, 0.0);
    }
}

TEST_F(IniReaders, short_section_switch_cut_at_68_characters) {
    std::wstring value = std::wstring(68, L'0') + L"1";
    WriteIni(L"[DeleteRepeatingLine]\r\nBolOpen=" + value + L"\r\n[LineDeviation]\r\nBolOpen=" + value +
             L"\r\n[DeleteArcDownCurve]\r\nBolOpen=" + value + L"\r\n");
    bool repeating = true, deviation = false, arcDown = true;
    IniReadBool(IniPath(), L"DeleteRepeatingLine", L"BolOpen", repeating);
    IniReadBool(IniPath(), L"LineDeviation", L"BolOpen", deviation);
    IniReadBool(IniPath(), L"DeleteArcDownCurve", L"BolOpen", arcDown);
    EXPECT_FALSE(repeating);
    EXPECT_TRUE(deviation);
    EXPECT_FALSE(arcDown);
}

TEST_F(IniReaders, strings_cut_at_1023_characters) {
    WriteIni(L"[LineDeviation]\r\nStrJson=" + std::wstring(1100, L'x') + L"\r\n");
    std::wstring text;
    IniReadString(IniPath(), L"LineDeviation", L"StrJson", text);
    EXPECT_EQ(text, std::wstring(1023, L'x'));
}

TEST_F(IniReaders, percent_value_goes_through_the_formatter) {
    WriteIni(L"[public]\r\nStrDottedLineType=50%\r\nStrSolidLineType=a%%b\r\n");
    std::wstring dotted, solid;
    IniReadString(IniPath(), L"public", L"StrDottedLineType", dotted);
    IniReadString(IniPath(), L"public", L"StrSolidLineType", solid);
    EXPECT_NE(dotted, L"50%");
    EXPECT_EQ(solid, L"a%b");
}

TEST(ColorLists, colour_without_semicolon_gives_empty_list) {
    AcArray<int> colors{9, 9};
    ColorListFromText(L"255 0 0", colors);
    EXPECT_TRUE(colors.isEmpty());
    AcArray<int> ansiColors{9};
    ColorListFromAnsiText(L"255 0 0", ansiColors);
    EXPECT_TRUE(ansiColors.isEmpty());
}

TEST(ColorLists, closed_colours_map_in_order_and_last_open_one_is_ignored) {
    AcArray<int> colors;
    ColorListFromText(L"0 0 255;255 255 0;0 255 0", colors);
    EXPECT_EQ(colors, (AcArray<int>{5, 2}));
    AcArray<int> ansiColors;
    ColorListFromAnsiText(L"0 0 255;255 255 0;0 255 0", ansiColors);
    EXPECT_EQ(ansiColors, (AcArray<int>{5, 2}));
}

// "0 0 255;" takes 8 bytes and "0...01 0 0;" the next 1,016: its semicolon is byte 1,024, one
// past what the buffer holds, so the second colour stays open and is ignored.
TEST(ColorLists, ansi_list_reads_only_1023_bytes) {
    std::wstring text = L"0 0 255;" + std::wstring(1010, L'0') + L"1 0 0;";
    AcArray<int> colors;
    ColorListFromAnsiText(text, colors);
    EXPECT_EQ(colors, (AcArray<int>{5}));
    AcArray<int> shorter;
    ColorListFromAnsiText(text.substr(1), shorter);  // the semicolon is now byte 1,023
    EXPECT_EQ(shorter.length(), 2);
    AcArray<int> wide;
    ColorListFromText(text, wide);
    EXPECT_EQ(wide.length(), 2);
}

}  // namespace
