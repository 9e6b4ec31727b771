#include <gtest/gtest.h>

#include "platform/win/codepage.hpp"
#include "platform/win/crt.hpp"
#include "prefix_fixture.hpp"

namespace {

using CodePages = PrefixTest;

TEST_F(CodePages, WideCharToMultiByteWithCodePageZeroUsesTheHostCodePage) {
    char bytes[16] = {};
    int needed = WideCharToMultiByte(CP_ACP, 0, L"合并", -1, nullptr, 0, nullptr, nullptr);
    EXPECT_EQ(needed, 5);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"合并", -1, bytes, sizeof bytes, nullptr, nullptr), 5);
    EXPECT_STREQ(bytes, "\xBA\xCF\xB2\xA2");
    SetHostCodePage(65001);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"合并", -1, bytes, sizeof bytes, nullptr, nullptr), 7);
    EXPECT_STREQ(bytes, "合并");
}

TEST_F(CodePages, WideCharToMultiByteFailsOnATooSmallBuffer) {
    char bytes[2];
    EXPECT_EQ(WideCharToMultiByte(936, 0, L"合并", -1, bytes, sizeof bytes, nullptr, nullptr), 0);
}

TEST_F(CodePages, MultiByteToWideCharDecodesGbk) {
    wchar_t wide[8] = {};
    EXPECT_EQ(MultiByteToWideChar(936, 0, "\xBA\xCF\xB2\xA2", -1, wide, 8), 3);
    EXPECT_STREQ(wide, L"合并");
}

TEST_F(CodePages, UndecodableBytesBecomeReplacementCharacters) {
    EXPECT_EQ(DecodeCodePage("a\xFF" "b", 65001), L"a\uFFFDb");
}

TEST_F(CodePages, MbstowcsFollowsTheLocaleThatSetlocaleChose) {
    const char* gbk = "\xBA\xCF\xB2\xA2";
    wchar_t wide[8] = {};
    EXPECT_STREQ(crt::setlocale(LC_ALL, nullptr), "C");
    EXPECT_EQ(crt::mbstowcs(wide, gbk, 8), 4u);  // the C locale: one character per byte
    EXPECT_EQ(wide[0], L'\xBA');
    std::string userLocale = crt::setlocale(LC_ALL, "");
    EXPECT_NE(userLocale.find(".936"), std::string::npos);
    EXPECT_EQ(crt::mbstowcs(wide, gbk, 8), 2u);
    EXPECT_STREQ(wide, L"合并");
    EXPECT_EQ(crt::mbstowcs(nullptr, gbk, 0), 2u);
    // Setting the returned name again keeps the user's locale.
    EXPECT_NE(crt::setlocale(LC_ALL, userLocale.c_str()), nullptr);
    EXPECT_EQ(crt::mbstowcs(wide, gbk, 8), 2u);
}

TEST_F(CodePages, WcstombsEncodesInTheUserLocaleAndFailsOnUnencodableText) {
    char bytes[16] = {};
    crt::setlocale(LC_ALL, "");
    EXPECT_EQ(crt::wcstombs(bytes, L"D:\\合并", sizeof bytes), 7u);
    EXPECT_STREQ(bytes, "D:\\\xBA\xCF\xB2\xA2");
    EXPECT_EQ(crt::wcstombs(bytes, L"\u0E01", sizeof bytes), static_cast<size_t>(-1));
    EXPECT_EQ(crt::wcstombs(bytes, L"合并", 3), 2u);  // no half character
}

TEST_F(CodePages, WtoiReadsAsWindowsDoes) {
    EXPECT_EQ(_wtoi(L"  42abc"), 42);
    EXPECT_EQ(_wtoi(L"-7"), -7);
    EXPECT_EQ(_wtoi(L"abc"), 0);
    EXPECT_EQ(_wtoi(L"99999999999"), 2147483647);
    EXPECT_EQ(_wtoi(L""), 0);
}

TEST_F(CodePages, CLibraryNumberReadersGiveZeroOnText) {
    EXPECT_EQ(std::wcstod(L"abc", nullptr), 0.0);
    EXPECT_EQ(std::wcstod(L"0.05", nullptr), 0.05);
    EXPECT_EQ(std::atoi("255 0"), 255);
}

}  // namespace
