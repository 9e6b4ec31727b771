#include "config/cad_standard_ini.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "module_fixture.hpp"

namespace {

constexpr const wchar_t* kPath = L"D:\\Tool\\config\\CAD\\CAD_standard.ini";

// A file of the standard with every key, in mixed case, with comments.
constexpr const wchar_t* kFullFile =
    L"// 图层\r\n"
    L"[LAYER]\r\n"
    L"USTAND,ustand\r\nURECT,urect\r\nRECT,rect\r\nSTAND,stand\r\nBIGFRAM,bigfram\r\n"
    L"FRONT,front\r\nLEFT,left\r\nTOP,top\r\nDIM,dim\r\nSTRINGS,strings\r\n"
    L"[DIMSTYLE]\r\n"
    L"DIMSTYLE,iso-25\r\nDIMSCALE,2\r\nDIMDEC,3\r\nDIMTXT,3.5\r\nDIMCLRT,1\r\nDIMCLRE,2\r\n"
    L"DIMCLRD,3\r\nDIMASZ,2.5\r\nDIMLWD,13\r\nDIMLWE,18\r\nDIMEXE,1.25\r\nDIMEXO,0.625\r\n"
    L"DIMGAP,0.5\r\nDIMTAD,1\r\nDIMJUST,2\r\nDIMTIH,1\r\nDIMTOH,1\r\nDIMZIN,8\r\nDIMTZIN,4\r\n"
    L"DIMTDEC,2\r\nDIMTFAC,0.7\r\nDIMTOLJ,1\r\n"
    L"; 杂项\r\n"
    L"[SUNDRY]\r\n"
    L"HOLECA,0\r\nOFFSET,5\r\nReddec,3\r\nRedToler,0.02^0.01\r\nEveldec,1\r\nEvelToler,0.1^0.1\r\n"
    L"Otherdec,2\r\nOtherToler,0^0\r\nBasedec,0\r\nBaseToler,0.2^-0.1\r\nConerdec,4\r\n"
    L"ConerToler,0.05^0.03\r\nDIMOFF,7\r\nORDOFFSCL,1.5\r\nXMAX,300\r\nYMAX,200\r\nCIRCOUNT,12\r\n"
    L"LOGFILE,d:\\log.txt\r\nTAVRIK,1\r\nDIM,1\r\nSUBCIR,1\r\nSTRSCV,1\r\nSAVEQ,1\r\nTIMELI,30\r\n"
    L"COMPANY,某某模具公司\r\nACWINDOWSTATE,3\r\n"
    L"[SCRSET]\r\n"
    L"1,_red\r\n3,_green\r\n5,_blue\r\n";

using CadStandard = ModuleTest;

TEST_F(CadStandard, EveryKeyOfLayerIsAnUpperCaseName) {
    WriteText(kPath, kFullFile);
    CadStandardIni ini(kPath);
    const LayerKeys& k = ini.layer;
    EXPECT_EQ(k.USTAND, L"USTAND");
    EXPECT_EQ(k.URECT, L"URECT");
    EXPECT_EQ(k.RECT, L"RECT");
    EXPECT_EQ(k.STAND, L"STAND");
    EXPECT_EQ(k.BIGFRAM, L"BIGFRAM");
    EXPECT_EQ(k.FRONT, L"FRONT");
    EXPECT_EQ(k.LEFT, L"LEFT");
    EXPECT_EQ(k.TOP, L"TOP");
    EXPECT_EQ(k.DIM, L"DIM");
    EXPECT_EQ(k.STRINGS, L"STRINGS");
    EXPECT_FALSE(ini.missing);
    EXPECT_EQ(ini.path, kPath);
}

TEST_F(CadStandard, EveryKeyOfDimstyleHasItsType) {
    WriteText(kPath, kFullFile);
    CadStandardIni ini(kPath);
    const DimStyleKeys& k = ini.dimStyle;
    EXPECT_EQ(k.DIMSTYLE, L"ISO-25");
    EXPECT_DOUBLE_EQ(k.DIMSCALE, 2.0);
    EXPECT_EQ(k.DIMDEC, 3);
    EXPECT_DOUBLE_EQ(k.DIMTXT, 3.5);
    EXPECT_EQ(k.DIMCLRT, 1);
    EXPECT_EQ(k.DIMCLRE, 2);
    EXPECT_EQ(k.DIMCLRD, 3);
    EXPECT_DOUBLE_EQ(k.DIMASZ, 2.5);
    EXPECT_EQ(k.DIMLWD, 13);
    EXPECT_EQ(k.DIMLWE, 18);
    EXPECT_DOUBLE_EQ(k.DIMEXE, 1.25);
    EXPECT_DOUBLE_EQ(k.DIMEXO, 0.625);
    EXPECT_DOUBLE_EQ(k.DIMGAP, 0.5);
    EXPECT_EQ(k.DIMTAD, 1);
    EXPECT_EQ(k.DIMJUST, 2);
    EXPECT_TRUE(k.DIMTIH);
    EXPECT_TRUE(k.DIMTOH);
    EXPECT_EQ(k.DIMZIN, 8);
    EXPECT_EQ(k.DIMTZIN, 4);
    EXPECT_EQ(k.DIMTDEC, 2);
    EXPECT_DOUBLE_EQ(k.DIMTFAC, 0.7);
    EXPECT_EQ(k.DIMTOLJ, 1);
}

TEST_F(CadStandard, EveryKeyOfSundryHasItsType) {
    WriteText(kPath, kFullFile);
    CadStandardIni ini(kPath);
    const SundryKeys& k = ini.sundry;
    EXPECT_EQ(k.HOLECA, 0);
    EXPECT_DOUBLE_EQ(k.OFFSET, 5.0);
    EXPECT_EQ(k.Reddec, 3);
    EXPECT_EQ(k.Eveldec, 1);
    EXPECT_DOUBLE_EQ(k.EvelToler.second, 0.1);
    EXPECT_EQ(k.Otherdec, 2);
    EXPECT_EQ(k.OtherToler.off, 1);
    EXPECT_EQ(k.Basedec, 0);
    EXPECT_DOUBLE_EQ(k.BaseToler.first, 0.1);
    EXPECT_DOUBLE_EQ(k.BaseToler.second, 0.2);
    EXPECT_EQ(k.Conerdec, 4);
    EXPECT_DOUBLE_EQ(k.ConerToler.first, -0.03);
    EXPECT_DOUBLE_EQ(k.ConerToler.second, 0.05);
    EXPECT_EQ(k.ConerToler.off, 0);
    EXPECT_DOUBLE_EQ(k.DIMOFF, 7.0);
    EXPECT_DOUBLE_EQ(k.ORDOFFSCL, 1.5);
    EXPECT_DOUBLE_EQ(k.XMAX, 300.0);
    EXPECT_DOUBLE_EQ(k.YMAX, 200.0);
    EXPECT_EQ(k.CIRCOUNT, 12);
    EXPECT_EQ(k.LOGFILE, L"D:\\LOG.TXT");
    EXPECT_TRUE(k.TAVRIK);
    EXPECT_TRUE(k.DIM);
    EXPECT_TRUE(k.SUBCIR);
    EXPECT_TRUE(k.STRSCV);
    EXPECT_TRUE(k.SAVEQ);
    EXPECT_EQ(k.TIMELI, 30);
    EXPECT_EQ(k.COMPANY, L"某某模具公司");
    EXPECT_EQ(k.ACWINDOWSTATE, 3);
}

TEST_F(CadStandard, ScrsetRowsAreColourNumbersAndSuffixes) {
    WriteText(kPath, kFullFile);
    CadStandardIni ini(kPath);
    ASSERT_EQ(ini.colorLayers.size(), 3u);
    EXPECT_EQ(ini.colorLayers[0].color, 1);
    EXPECT_EQ(ini.colorLayers[0].suffix, L"_RED");
    EXPECT_EQ(ini.colorLayers[2].color, 5);
    EXPECT_EQ(ini.colorLayers[2].suffix, L"_BLUE");
}

TEST_F(CadStandard, AfterTwoReadsThreeScrsetRowsStandSixTimesAndTheFirstMatchIsUnchanged) {
    WriteText(kPath, L"[SCRSET]\r\n1,_A\r\n2,_B\r\n1,_C\r\n");
    CadStandardIni ini(kPath);
    ini.Read();
    ASSERT_EQ(ini.colorLayers.size(), 6u);
    EXPECT_EQ(ini.colorLayers[3].suffix, L"_A");
    auto first = std::find_if(ini.colorLayers.begin(), ini.colorLayers.end(),
                              [](const collay& row) { return row.color == 1; });
    EXPECT_EQ(first->suffix, L"_A");
}

TEST_F(CadStandard, ALineAheadOfTheFirstSectionGoesToLayerOnTheFirstRead) {
    WriteText(kPath, L"DIM,dimlayer\r\n[SUNDRY]\r\nSAVEQ,1\r\n");
    CadStandardIni ini(kPath);
    EXPECT_EQ(ini.layer.DIM, L"DIMLAYER");
    EXPECT_FALSE(ini.sundry.DIM);
    EXPECT_EQ(ini.section, 2);
}

TEST_F(CadStandard, OnALaterReadItGoesToTheSectionTheFileEndedWith) {
    WriteText(kPath, L"DIM,1\r\n[SUNDRY]\r\nSAVEQ,1\r\n");
    CadStandardIni ini(kPath);
    EXPECT_EQ(ini.layer.DIM, L"1");
    EXPECT_FALSE(ini.sundry.DIM);
    ini.Read();
    EXPECT_TRUE(ini.sundry.DIM);
}

TEST_F(CadStandard, DimtihZeroIsFalseAndTwoIsTrue) {
    WriteText(kPath, L"[DIMSTYLE]\r\nDIMTIH,0\r\nDIMTOH,2\r\n");
    CadStandardIni ini(kPath);
    EXPECT_FALSE(ini.dimStyle.DIMTIH);
    EXPECT_TRUE(ini.dimStyle.DIMTOH);
    WriteText(kPath, L"[DIMSTYLE]\r\nDIMTIH,2\r\n");
    ini.Read();
    EXPECT_TRUE(ini.dimStyle.DIMTIH);
}

TEST_F(CadStandard, RedTolerReadsFirstAsMinusTheLowerAndSecondAsTheUpper) {
    WriteText(kPath, L"[SUNDRY]\r\nRedToler,0.02^0.01\r\n");
    CadStandardIni ini(kPath);
    EXPECT_DOUBLE_EQ(ini.sundry.RedToler.first, -0.01);
    EXPECT_DOUBLE_EQ(ini.sundry.RedToler.second, 0.02);
    EXPECT_EQ(ini.sundry.RedToler.off, 0);
}

TEST_F(CadStandard, AZeroToleranceIsOff) {
    ToleranceSpec tolerance = ParseToleranceSpec(L"0^0");
    EXPECT_EQ(tolerance.off, 1);
    EXPECT_EQ(ParseToleranceSpec(L"0.000001^-0.000009").off, 1);
    EXPECT_EQ(ParseToleranceSpec(L"0^0.00001").off, 0);
}

TEST_F(CadStandard, AToleranceWithoutCaretIsOffAndNotReadAsANumber) {
    ToleranceSpec tolerance = ParseToleranceSpec(L"0.02");
    EXPECT_EQ(tolerance.first, 0.0);
    EXPECT_EQ(tolerance.second, 0.0);
    EXPECT_EQ(tolerance.off, 1);
    EXPECT_EQ(ParseToleranceSpec(L"0.02^").off, 1);
}

TEST_F(CadStandard, ToleranceValuesAreNotSnappedToZero) {
    ToleranceSpec tolerance = ParseToleranceSpec(L"0.000005^0.5");
    EXPECT_DOUBLE_EQ(tolerance.second, 0.000005);
    EXPECT_DOUBLE_EQ(tolerance.first, -0.5);
}

TEST_F(CadStandard, NumbersNearZeroBecomeZeroAndUnreadableTextZero) {
    EXPECT_EQ(ParseNumber(L"0.00001"), 0.0);
    EXPECT_EQ(ParseNumber(L"-0.000001"), 0.0);
    EXPECT_DOUBLE_EQ(ParseNumber(L"0.00002"), 0.00002);
    EXPECT_DOUBLE_EQ(ParseNumber(L"-2.5"), -2.5);
    EXPECT_EQ(ParseNumber(L"ABC"), 0.0);
    EXPECT_EQ(ParseNumber(L""), 0.0);
}

TEST_F(CadStandard, DimdecIsTheNumberTruncatedAndNotTheIntegerReading) {
    WriteText(kPath, L"[DIMSTYLE]\r\nDIMDEC,1E1\r\nDIMTDEC,1E1\r\n");
    CadStandardIni ini(kPath);
    EXPECT_EQ(ini.dimStyle.DIMDEC, 10);
    EXPECT_EQ(ini.dimStyle.DIMTDEC, 1);
    WriteText(kPath, L"[DIMSTYLE]\r\nDIMDEC,-2.9\r\n");
    ini.Read();
    EXPECT_EQ(ini.dimStyle.DIMDEC, -2);
}

TEST_F(CadStandard, LowerCaseLayerNamesArriveInUpperCase) {
    WriteText(kPath, L"[layer]\r\nbigfram,frame-lines\r\n");
    CadStandardIni ini(kPath);
    EXPECT_EQ(ini.layer.BIGFRAM, L"FRAME-LINES");
}

TEST_F(CadStandard, KeysAreMatchedWithoutRegardToCase) {
    WriteText(kPath, L"[SUNDRY]\r\nREDDEC,3\r\nreddec2,4\r\n  conertoler , 0.1^0.2 \r\n");
    CadStandardIni ini(kPath);
    EXPECT_EQ(ini.sundry.Reddec, 3);
    EXPECT_DOUBLE_EQ(ini.sundry.ConerToler.second, 0.1);
}

TEST_F(CadStandard, AValueWithACommaLosesAllBehindTheComma) {
    WriteText(kPath, L"[SUNDRY]\r\nCOMPANY,Acme,Moulds\r\nXMAX,1,5\r\n");
    CadStandardIni ini(kPath);
    EXPECT_EQ(ini.sundry.COMPANY, L"ACME");
    EXPECT_DOUBLE_EQ(ini.sundry.XMAX, 1.0);
}

TEST_F(CadStandard, ACommentBehindAValueBecomesPartOfIt) {
    WriteText(kPath, L"[LAYER]\r\nFRONT,VIEW1 // main view\r\n// TOP,X\r\n;LEFT,Y\r\n");
    CadStandardIni ini(kPath);
    EXPECT_EQ(ini.layer.FRONT, L"VIEW1 // MAIN VIEW");
    EXPECT_EQ(ini.layer.TOP, L"");
    EXPECT_EQ(ini.layer.LEFT, L"");
}

TEST_F(CadStandard, TheSameKeyDimIsANameInLayerAndASwitchInSundry) {
    WriteText(kPath, L"[LAYER]\r\nDIM,dims\r\n[SUNDRY]\r\nDIM,1\r\n");
    CadStandardIni ini(kPath);
    EXPECT_EQ(ini.layer.DIM, L"DIMS");
    EXPECT_TRUE(ini.sundry.DIM);
}

TEST_F(CadStandard, AKeyOfAnotherSectionIsDropped) {
    WriteText(kPath, L"[LAYER]\r\nSAVEQ,1\r\nDIMTXT,3\r\n[DIMSTYLE]\r\nFRONT,X\r\n");
    CadStandardIni ini(kPath);
    EXPECT_FALSE(ini.sundry.SAVEQ);
    EXPECT_EQ(ini.dimStyle.DIMTXT, 0.0);
    EXPECT_EQ(ini.layer.FRONT, L"");
}

TEST_F(CadStandard, AnUnknownSectionLeavesTheFormerInForce) {
    WriteText(kPath, L"[SUNDRY]\r\n[OTHER]\r\nSAVEQ,1\r\n");
    CadStandardIni ini(kPath);
    EXPECT_TRUE(ini.sundry.SAVEQ);
    EXPECT_EQ(ini.section, 2);
}

TEST_F(CadStandard, TextBehindASectionNameIsIgnored) {
    WriteText(kPath, L"[SUNDRY] 杂项设置\r\nSAVEQ,1\r\n");
    CadStandardIni ini(kPath);
    EXPECT_TRUE(ini.sundry.SAVEQ);
}

TEST_F(CadStandard, ALineWithoutACommaIsSkipped) {
    WriteText(kPath, L"[SUNDRY]\r\nSAVEQ 1\r\nSAVEQ,\r\n");
    CadStandardIni ini(kPath);
    EXPECT_FALSE(ini.sundry.SAVEQ);
}

TEST_F(CadStandard, AMissingFileSetsMissingAndKeepsEveryValue) {
    WriteText(kPath, L"[SUNDRY]\r\nSAVEQ,1\r\n");
    CadStandardIni ini(kPath);
    EXPECT_FALSE(ini.missing);
    std::filesystem::remove(ResolvePath(kPath));
    ini.Read();
    EXPECT_TRUE(ini.missing);
    EXPECT_TRUE(ini.sundry.SAVEQ);
}

TEST_F(CadStandard, AKeyAbsentFromTheFileKeepsWhatAnEarlierReadGaveIt) {
    WriteText(kPath, L"[SUNDRY]\r\nXMAX,300\r\nYMAX,200\r\n");
    CadStandardIni ini(kPath);
    WriteText(kPath, L"[SUNDRY]\r\nYMAX,100\r\n");
    ini.Read();
    EXPECT_DOUBLE_EQ(ini.sundry.XMAX, 300.0);
    EXPECT_DOUBLE_EQ(ini.sundry.YMAX, 100.0);
}

TEST_F(CadStandard, WithoutTheFileEverythingIsZeroEmptyOrFalse) {
    CadStandardIni ini(kPath);
    EXPECT_TRUE(ini.missing);
    EXPECT_EQ(ini.layer.BIGFRAM, L"");
    EXPECT_EQ(ini.dimStyle.DIMSCALE, 0.0);
    EXPECT_FALSE(ini.sundry.SAVEQ);
    EXPECT_EQ(ini.sundry.RedToler.off, 0);
    EXPECT_TRUE(ini.colorLayers.empty());
}

TEST_F(CadStandard, AUtf8FileWithMarkIsReadFromItsFirstLine) {
    WriteAt(kPath, "\xEF\xBB\xBF" + Encoded(L"[SUNDRY]\nCOMPANY,模具\n", 65001));
    CadStandardIni ini(kPath);
    EXPECT_EQ(ini.section, 2);
    EXPECT_EQ(ini.sundry.COMPANY, L"模具");
}

TEST_F(CadStandard, LinesEndingInLineFeedAloneReadAlike) {
    WriteAt(kPath, "[DIMSTYLE]\nDIMSCALE,10\nDIMTXT,2.5\n");
    CadStandardIni ini(kPath);
    EXPECT_DOUBLE_EQ(ini.dimStyle.DIMSCALE, 10.0);
    EXPECT_DOUBLE_EQ(ini.dimStyle.DIMTXT, 2.5);
}

}  // namespace
