// CAD_hole.ini as the hole substitution reads it: sections by their opening text, the LAYER value
// in force across sections, the one-step ordering of the rows, and the short row that throws.
#include <gtest/gtest.h>

#include <stdexcept>

#include "batch_fixture.hpp"
#include "standard/hole_substitution.hpp"

namespace {

constexpr const wchar_t* kIni = L"D:\\MYTOOL\\CAD\\CAD_hole.ini";

class HoleConfig : public BatchTest {
protected:
    HoleSubstitution Read(const std::wstring& text) {
        WriteText(kIni, text);
        HoleSubstitution holes(AcArray<tPt>(), kIni);
        holes.ReadHoleConfig(kIni);
        return holes;
    }
    static std::vector<double> Diameters(const HoleSubstitution& holes) {
        std::vector<double> diameters;
        for (const tHole& hole : holes.holes) diameters.push_back(hole.diameter);
        return diameters;
    }
};

TEST_F(HoleConfig, rows_5_10_3_read_5_3_10) {
    HoleSubstitution holes = Read(L"[TYPE1]\r\nLAYER,H1\r\n5,a,b,c,d,e,f\r\n10,a,b,c,d,e,f\r\n3,a,b,c,d,e,f\r\n");
    EXPECT_EQ(Diameters(holes), (std::vector<double>{5, 3, 10}));
}

TEST_F(HoleConfig, row_fields_are_upper_case_with_layer_and_type_number) {
    HoleSubstitution holes = Read(L"[BLKPATH]\r\nblkpath, d:\\lib\\ \r\n[TYPE12]\r\nlayer,h12\r\n"
                                  L"6.5, dOne,sOne,bDash,bSolid,dSolid,sDash\r\n");
    EXPECT_EQ(holes.blockPath, L"D:\\LIB\\");
    ASSERT_EQ(holes.holes.size(), 1u);
    const tHole& hole = holes.holes[0];
    EXPECT_DOUBLE_EQ(hole.diameter, 6.5);
    EXPECT_EQ(hole.blockDashOne, L"DONE");
    EXPECT_EQ(hole.blockSolidOne, L"SONE");
    EXPECT_EQ(hole.blockBothDash, L"BDASH");
    EXPECT_EQ(hole.blockBothSolid, L"BSOLID");
    EXPECT_EQ(hole.blockDashSolid, L"DSOLID");
    EXPECT_EQ(hole.blockSolidDash, L"SDASH");
    EXPECT_EQ(hole.layer, L"H12");
    EXPECT_EQ(hole.typeNumber, 12);
}

TEST_F(HoleConfig, section_state_is_that_of_the_last_section_line) {
    struct Case {
        const wchar_t* text;
        int section;
    };
    const Case cases[] = {
        {L"// no section yet\r\n", -1},
        {L"[BLKPATH]\r\n", 0},
        {L"[SCRSET]\r\n", 1},
        {L"[DASHL]\r\n", 2},
        {L"[TYPE7]\r\n", 17},
        {L"[TYPE42]\r\n[DASHL]\r\nHIDDEN,DASHED\r\n", 2},
    };
    for (const Case& c : cases) EXPECT_EQ(Read(c.text).section, c.section) << c.text;
}

TEST_F(HoleConfig, type100_line_is_an_ordinary_line_of_the_preceding_section) {
    HoleSubstitution holes = Read(L"[TYPE7]\r\nLAYER,H7\r\n[TYPE100]\r\n4,a,b,c,d,e,f\r\n");
    ASSERT_EQ(holes.holes.size(), 1u);
    EXPECT_EQ(holes.holes[0].typeNumber, 7);
    EXPECT_EQ(holes.holes[0].layer, L"H7");
}

TEST_F(HoleConfig, type99_opens_a_section) {
    HoleSubstitution holes = Read(L"[TYPE7]\r\n[TYPE99]\r\n4,a,b,c,d,e,f\r\n");
    ASSERT_EQ(holes.holes.size(), 1u);
    EXPECT_EQ(holes.holes[0].typeNumber, 99);
}

TEST_F(HoleConfig, layer_value_stays_in_force_in_later_sections) {
    HoleSubstitution holes = Read(L"[TYPE1]\r\nLAYER,H1\r\n[TYPE2]\r\n4,a,b,c,d,e,f\r\n");
    ASSERT_EQ(holes.holes.size(), 1u);
    EXPECT_EQ(holes.holes[0].layer, L"H1");
    EXPECT_EQ(holes.holes[0].typeNumber, 2);
}

TEST_F(HoleConfig, short_symbol_row_throws_invalid_argument) {
    WriteText(kIni, L"[TYPE1]\r\nLAYER,H1\r\n4,a,b,c,d,e\r\n");
    HoleSubstitution holes(AcArray<tPt>(), kIni);
    EXPECT_THROW(holes.ReadHoleConfig(kIni), std::invalid_argument);
}

TEST_F(HoleConfig, lines_before_the_first_section_and_comments_are_ignored) {
    HoleSubstitution holes = Read(L"4,a,b,c,d,e\r\n[TYPE1]\r\n//4,a\r\n;4,a\r\nLAYER,H1\r\n");
    EXPECT_TRUE(holes.holes.empty());
    EXPECT_EQ(holes.currentLayer, L"H1");
}

TEST_F(HoleConfig, dash_list_second_line_replaces_first_and_one_name_is_skipped) {
    HoleSubstitution holes = Read(L"[DASHL]\r\nhidden,dashed\r\ndot,center,x\r\nsingle\r\n");
    EXPECT_EQ(holes.dashList, (std::vector<std::wstring>{L"DOT", L"CENTER", L"X"}));
}

TEST_F(HoleConfig, layer_table_rows_and_default_kept) {
    HoleSubstitution holes = Read(L"[SCRSET]\r\n3,green\r\n*,other\r\n");
    ASSERT_EQ(holes.layerColors.size(), 1u);
    EXPECT_EQ(holes.layerColors[0].name, L"3");
    EXPECT_EQ(holes.layerColors[0].value, L"GREEN");
    EXPECT_EQ(holes.layerColors[0].color, 3);
    EXPECT_EQ(holes.defaultLayer, L"OTHER");
}

TEST_F(HoleConfig, block_path_needs_its_key) {
    HoleSubstitution holes = Read(L"[BLKPATH]\r\nPATH,D:\\X\\\r\n");
    EXPECT_TRUE(holes.blockPath.empty());
}

TEST_F(HoleConfig, missing_file_leaves_tables_empty_and_logs_the_start) {
    HoleSubstitution holes(AcArray<tPt>(), kIni);
    holes.ReadHoleConfig(kIni);
    EXPECT_TRUE(holes.holes.empty());
    std::wstring log = CgLog();
    EXPECT_NE(log.find(L"StartreRead开始处理 "), std::wstring::npos);
    EXPECT_EQ(log.find(L"打开文件"), std::wstring::npos);
}

TEST_F(HoleConfig, present_file_is_logged_as_opened) {
    Read(L"[TYPE1]\r\n");
    EXPECT_NE(CgLog().find(L"\n打开文件 "), std::wstring::npos);
}

TEST_F(HoleConfig, read_logs_its_start_and_the_path_before_opening_the_file) {
    Read(L"[TYPE1]\r\n");
    std::wstring path = kIni;
    EXPECT_NE(CgLog().find(L"StartreRead开始处理 " + path + L"\n" + path + L"\n打开文件 " + path + L"\n"),
              std::wstring::npos);
}

}  // namespace
