#include "config/layer_ug_ini.hpp"

#include <gtest/gtest.h>

#include <string>

#include "module_fixture.hpp"
#include "platform/win/crt.hpp"

namespace {

constexpr const wchar_t* kPath = L"D:\\Tool\\config\\CAD\\CAD_layerug.ini";

using LayerUg = ModuleTest;

TEST_F(LayerUg, AConvertRowInLowerCaseArrivesInUpperCase) {
    WriteText(kPath, L"[convert]\r\n ug_layer_1 , cad-outline \r\n");
    LayerUgIni ini(kPath);
    ASSERT_EQ(ini.conversions.size(), 1u);
    EXPECT_EQ(ini.conversions[0].from, L"UG_LAYER_1");
    EXPECT_EQ(ini.conversions[0].to, L"CAD-OUTLINE");
    EXPECT_EQ(ini.missing, 0);
    EXPECT_EQ(ini.path, kPath);
}

TEST_F(LayerUg, AFillayNumberStaysText) {
    WriteText(kPath, L"[FILLAY]\r\n3,轮廓线\r\n03,hidden\r\n");
    LayerUgIni ini(kPath);
    ASSERT_EQ(ini.fillLayers.size(), 2u);
    EXPECT_EQ(ini.fillLayers[0].number, L"3");
    EXPECT_EQ(ini.fillLayers[0].layer, L"轮廓线");
    EXPECT_EQ(ini.fillLayers[1].number, L"03");
    EXPECT_EQ(_wtoi(ini.fillLayers[1].number.c_str()), 3);
}

TEST_F(LayerUg, OfTwoSpecialRowsTheLastIsKeptWhole) {
    WriteText(kPath, L"[SPECIAL]\r\nfirst,1\r\n second , 2 \r\n");
    LayerUgIni ini(kPath);
    EXPECT_EQ(ini.special, L"SECOND , 2");
}

TEST_F(LayerUg, ASpecialLineWithoutACommaDoesNotReachSpecial) {
    WriteText(kPath, L"[SPECIAL]\r\nkept,1\r\nno comma here\r\n");
    LayerUgIni ini(kPath);
    EXPECT_EQ(ini.special, L"KEPT,1");
}

TEST_F(LayerUg, RowsAreKeptInFileOrderAcrossSections) {
    WriteText(kPath, L"[CONVERT]\r\nA,1\r\n[FILLAY]\r\n1,X\r\n[CONVERT]\r\nB,2\r\n// C,3\r\n;D,4\r\n");
    LayerUgIni ini(kPath);
    ASSERT_EQ(ini.conversions.size(), 2u);
    EXPECT_EQ(ini.conversions[0].from, L"A");
    EXPECT_EQ(ini.conversions[1].from, L"B");
    EXPECT_EQ(ini.fillLayers.size(), 1u);
}

TEST_F(LayerUg, LinesAheadOfTheFirstSectionAreIgnoredOnEveryRead) {
    WriteText(kPath, L"A,1\r\n[CONVERT]\r\nB,2\r\n");
    LayerUgIni ini(kPath);
    ini.Read();
    ASSERT_EQ(ini.conversions.size(), 2u);
    EXPECT_EQ(ini.conversions[0].from, L"B");
    EXPECT_EQ(ini.conversions[1].from, L"B");
}

TEST_F(LayerUg, EachReadAppendsAllRowsAgain) {
    WriteText(kPath, L"[CONVERT]\r\nA,1\r\nB,2\r\n[FILLAY]\r\n1,X\r\n");
    LayerUgIni ini(kPath);
    ini.Read();
    ini.Read();
    EXPECT_EQ(ini.conversions.size(), 6u);
    EXPECT_EQ(ini.fillLayers.size(), 3u);
    EXPECT_EQ(ini.conversions[4].from, L"A");
}

TEST_F(LayerUg, AMissingFileSetsMissingAndKeepsTheRows) {
    WriteText(kPath, L"[CONVERT]\r\nA,1\r\n");
    LayerUgIni ini(kPath);
    std::filesystem::remove(ResolvePath(kPath));
    ini.Read();
    EXPECT_EQ(ini.missing, 1);
    EXPECT_EQ(ini.conversions.size(), 1u);
}

TEST_F(LayerUg, AUtf8FileWithMarkIsRead) {
    WriteAt(kPath, "\xEF\xBB\xBF" + Encoded(L"[CONVERT]\nug,轮廓\n", 65001));
    LayerUgIni ini(kPath);
    ASSERT_EQ(ini.conversions.size(), 1u);
    EXPECT_EQ(ini.conversions[0].to, L"轮廓");
}

}  // namespace
