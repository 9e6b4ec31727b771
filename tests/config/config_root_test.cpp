#include "config/config_root.hpp"

#include <gtest/gtest.h>

#include <string>

#include "module_fixture.hpp"

namespace {

constexpr const wchar_t* kEnvironmentKey =
    L"[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment]\r\n";
constexpr const wchar_t* kTable = L"D:\\Tool\\config\\standard.csv";

class ConfigRoot : public ModuleTest {
protected:
    // The machine names D:\Tool as the tool's folder.
    void SetUp() override {
        ModuleTest::SetUp();
        SetRegistry(std::wstring(kEnvironmentKey) + L"\"CZConfig\"=\"D:\\\\Tool\"\r\n");
    }
};

TEST_F(ConfigRoot, WithoutTheRegistryValueTheRootIsEmpty) {
    SetRegistry(kEnvironmentKey);
    EXPECT_EQ(GetConfigRoot(), L"");
}

TEST_F(ConfigRoot, AValueOfAnotherTypeGivesAnEmptyRoot) {
    SetRegistry(std::wstring(kEnvironmentKey) + L"\"CZConfig\"=dword:00000001\r\n");
    EXPECT_EQ(GetConfigRoot(), L"");
}

TEST_F(ConfigRoot, AProcessEnvironmentVariableIsNotLookedAt) {
    SetRegistry(kEnvironmentKey);
    Host().environment[L"CZCONFIG"] = L"D:\\Tool";
    EXPECT_EQ(GetConfigRoot(), L"");
}

TEST_F(ConfigRoot, WithoutStandardCsvTheRootIsTheConfigFolder) {
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config");
}

TEST_F(ConfigRoot, ARowMarkedValidAddsItsFolder) {
    WriteText(kTable, L"文件夹名称,有效配置\r\nA,Y\r\nB,N\r\n");
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config\\A");
}

TEST_F(ConfigRoot, TwoRowsMarkedValidGiveANestedPath) {
    WriteText(kTable, L"文件夹名称,有效配置\r\nA,Y\r\nB,Y\r\n");
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config\\A\\B");
}

TEST_F(ConfigRoot, LowerCaseYCountsButABlankBeforeItDoesNot) {
    WriteText(kTable, L"文件夹名称,有效配置\r\nA,y\r\nB, Y\r\nC,Y \r\n");
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config\\A");
}

TEST_F(ConfigRoot, ColumnsAreFoundByNameInAnyOrder) {
    WriteText(kTable, L"说明,有效配置,文件夹名称\r\n旧,N,Old\r\n新,Y,New\r\n");
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config\\New");
}

TEST_F(ConfigRoot, AFolderNameInAMissingThirdFieldCountsAsAbsent) {
    WriteText(kTable, L"说明,有效配置,文件夹名称\r\nx,Y\r\n");
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config");
}

TEST_F(ConfigRoot, AnEmptyLineInTheTableIsNoRow) {
    WriteText(kTable, L"文件夹名称,有效配置\r\n\r\nA,Y\r\n");
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config\\A");
}

TEST_F(ConfigRoot, AMissingColumnGivesTheConfigFolder) {
    WriteText(kTable, L"文件夹名称,有效\r\nA,Y\r\n");
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config");
}

TEST_F(ConfigRoot, AHeaderOnlyGivesTheConfigFolder) {
    WriteText(kTable, L"文件夹名称,有效配置\r\n");
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config");
}

TEST_F(ConfigRoot, NoRowMarkedValidGivesTheConfigFolder) {
    WriteText(kTable, L"文件夹名称,有效配置\r\nA,N\r\nB,\r\n");
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config");
}

TEST_F(ConfigRoot, AValidRowWithoutFolderNameIsSkipped) {
    WriteText(kTable, L"文件夹名称,有效配置\r\n,Y\r\nB,Y\r\n");
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config\\B");
}

TEST_F(ConfigRoot, AChineseFolderNameComesBackWide) {
    WriteText(kTable, L"文件夹名称,有效配置\r\n标准配置,Y\r\n");
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config\\标准配置");
}

TEST_F(ConfigRoot, AUtf8TableIsReadUnderAUtf8HostCodePage) {
    Host().codePage = 65001;
    WriteAt(kTable, Encoded(L"文件夹名称,有效配置\nA,Y\n", 65001));
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config\\A");
}

TEST_F(ConfigRoot, AUtf8TableDoesNotMatchTheGbkHeaders) {
    WriteAt(kTable, Encoded(L"文件夹名称,有效配置\nA,Y\n", 65001));
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config");
}

TEST_F(ConfigRoot, EachCallReadsTheTableAfresh) {
    WriteText(kTable, L"文件夹名称,有效配置\r\nA,Y\r\n");
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config\\A");
    WriteText(kTable, L"文件夹名称,有效配置\r\nB,Y\r\n");
    EXPECT_EQ(GetConfigRoot(), L"D:\\Tool\\config\\B");
}

TEST_F(ConfigRoot, ChineseToolFolderInTheRegistryComesBackWide) {
    SetRegistry(std::wstring(kEnvironmentKey) + L"\"CZConfig\"=\"D:\\\\工具\"\r\n");
    EXPECT_EQ(GetConfigRoot(), L"D:\\工具\\config");
}

TEST_F(ConfigRoot, FindingTheRootLeavesTheProcessInTheUserLocale) {
    ASSERT_FALSE(Host().crtUserLocale);
    GetConfigRoot();
    EXPECT_TRUE(Host().crtUserLocale);
}

TEST_F(ConfigRoot, RegistryRootsAreNumberedFromClassesRoot) {
    SetRegistry(L"[HKEY_CURRENT_USER\\Software\\T]\r\n\"V\"=\"user\"\r\n"
                L"[HKEY_LOCAL_MACHINE\\Software\\T]\r\n\"V\"=\"machine\"\r\n");
    EXPECT_EQ(ReadRegistryString(1, "Software\\T", "V"), "user");
    EXPECT_EQ(ReadRegistryString(2, "Software\\T", "V"), "machine");
    EXPECT_EQ(ReadRegistryString(3, "Software\\T", "V"), "");
    EXPECT_EQ(ReadRegistryString(10, "Software\\T", "V"), "");
    EXPECT_EQ(ReadRegistryString(-1, "Software\\T", "V"), "");
}

TEST_F(ConfigRoot, RegistryStringsComeInTheHostCodePage) {
    SetRegistry(L"[HKEY_LOCAL_MACHINE\\Software\\T]\r\n\"V\"=\"工具\"\r\n");
    EXPECT_EQ(ReadRegistryString(2, "Software\\T", "V"), Encoded(L"工具"));
    EXPECT_EQ(ReadRegistryString(2, "Software\\T", "W"), "");
    EXPECT_EQ(ReadRegistryString(2, "Software\\U", "V"), "");
}

}  // namespace
