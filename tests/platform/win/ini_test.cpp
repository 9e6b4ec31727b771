#include <gtest/gtest.h>

#include "platform/win/ini.hpp"
#include "prefix_fixture.hpp"

namespace {

class ProfileString : public PrefixTest {
protected:
    void SetUp() override {
        PrefixTest::SetUp();
        WriteBytes("drives/d/MYTOOL/CAD/CAD_line.ini",
                   "[public]\r\n"
                   "StrDottedLineType = DASHED \r\n"
                   "StrSolidLineType=\"CONTINUOUS\"\r\n"
                   "[ DeleteRepeatingLine ]\r\n"
                   "BolOpen=1\r\n"
                   "Tolerance=0.02\r\n"
                   "bolopen=0\r\n"
                   "[ModifyColor]\r\n"
                   "StrJson=[{\"layer\":\"A\",\"color\":\"255 0 0\"}]\r\n"
                   "[deleterepeatingline]\r\n"
                   "Tolerance=9\r\n");
    }
    std::wstring Read(const wchar_t* section, const wchar_t* key, const wchar_t* fallback = L"",
                      DWORD capacity = 1024, DWORD* count = nullptr) {
        std::wstring buffer(capacity, L'#');
        DWORD n = GetPrivateProfileStringW(section, key, fallback, buffer.data(), capacity,
                                           L"D:\\MYTOOL\\CAD\\CAD_line.ini");
        if (count) *count = n;
        return buffer.substr(0, n);
    }
};

TEST_F(ProfileString, SectionAndKeyMatchWithoutRegardToCaseAndBlanks) {
    EXPECT_EQ(Read(L"PUBLIC", L"strdottedlinetype"), L"DASHED");
    EXPECT_EQ(Read(L"deleteRepeatingLine", L"BolOpen"), L"1");
}

TEST_F(ProfileString, FirstSectionAndFirstKeyOfANameWin) {
    EXPECT_EQ(Read(L"DeleteRepeatingLine", L"Tolerance"), L"0.02");
    EXPECT_EQ(Read(L"DeleteRepeatingLine", L"BOLOPEN"), L"1");
}

TEST_F(ProfileString, EnclosingQuotesAreRemovedAndInnerOnesKept) {
    EXPECT_EQ(Read(L"public", L"StrSolidLineType"), L"CONTINUOUS");
    EXPECT_EQ(Read(L"ModifyColor", L"StrJson"), L"[{\"layer\":\"A\",\"color\":\"255 0 0\"}]");
}

TEST_F(ProfileString, MissingKeySectionOrFileGivesTheDefaultWithoutTrailingBlanks) {
    EXPECT_EQ(Read(L"public", L"Nothing"), L"");
    EXPECT_EQ(Read(L"public", L"Nothing", L"dflt  "), L"dflt");
    EXPECT_EQ(Read(L"NoSection", L"BolOpen", L"x"), L"x");
    wchar_t buffer[8];
    EXPECT_EQ(GetPrivateProfileStringW(L"a", L"b", L"zz", buffer, 8, L"D:\\none.ini"), 2u);
    EXPECT_STREQ(buffer, L"zz");
}

TEST_F(ProfileString, LongValueIsCutAtTheCapacityLessTheTerminator) {
    DWORD count = 0;
    std::wstring buffer(69, L'#');
    WriteBytes("drives/d/long.ini", "[S]\nK=" + std::string(100, '7') + "\n");
    count = GetPrivateProfileStringW(L"S", L"K", L"", buffer.data(), 69, L"D:\\long.ini");
    EXPECT_EQ(count, 68u);
    EXPECT_EQ(buffer[68], L'\0');
    EXPECT_EQ(buffer.substr(0, 68), std::wstring(68, L'7'));
    EXPECT_EQ(Read(L"public", L"StrDottedLineType", L"", 4, &count), L"DAS");
    EXPECT_EQ(count, 3u);
}

TEST_F(ProfileString, NullKeyListsTheKeysOfTheSection) {
    wchar_t buffer[64];
    DWORD count = GetPrivateProfileStringW(L"public", nullptr, L"", buffer, 64, L"D:\\MYTOOL\\CAD\\CAD_line.ini");
    EXPECT_EQ(std::wstring(buffer, count), std::wstring(L"StrDottedLineType\0StrSolidLineType\0", 35));
    EXPECT_EQ(buffer[count], L'\0');
}

TEST_F(ProfileString, GbkValueDecodesUnderTheHostCodePage) {
    WriteBytes("drives/d/c.ini", "[S]\nK=\xBA\xCF\xB2\xA2\n");
    wchar_t buffer[16];
    GetPrivateProfileStringW(L"S", L"K", L"", buffer, 16, L"D:\\c.ini");
    EXPECT_STREQ(buffer, L"合并");
}

}  // namespace
