#include <gtest/gtest.h>

#include "editor_fixture.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/text.hpp"
#include "platform/ed/prompts.hpp"
#include "platform/ed/selection.hpp"
#include "platform/ed/ssfilter.hpp"
#include "platform/ed/sysvars.hpp"
#include "platform/ed/views.hpp"
#include "platform/db/symbol_tables.hpp"

namespace {

class SelectionTest : public EditorTest {
protected:
    void SetUp() override {
        EditorTest::SetUp();
        db_ = std::make_unique<AcDbDatabase>(true, false);
        acdbHostApplicationServices()->setWorkingDatabase(db_.get());
        AcDbViewTableRecord view;  // 750 units high: the pick box is PICKBOX (3) units
        view.setHeight(750.0);
        view.setWidth(1000.0);
        acedSetCurrentView(&view, nullptr);
    }
    void TearDown() override {
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
        db_.reset();
        EditorTest::TearDown();
    }
    AcDbObjectId Add(AcDbEntity* entity) {
        AcDbBlockTableRecord* model = nullptr;
        EXPECT_EQ(acdbOpenObject(model, db_->modelSpaceId(), AcDb::kForWrite), Acad::eOk);
        AcDbObjectId id;
        EXPECT_EQ(model->appendAcDbEntity(id, entity), Acad::eOk);
        entity->close();
        model->close();
        return id;
    }
    AcDbObjectId Text(const wchar_t* value, double x, double y) {
        return Add(new AcDbText(AcGePoint3d(x, y, 0), value, AcDbObjectId::kNull, 2.5));
    }
    bool Passes(AcDbObjectId id, resbuf* filter, std::wstring* error = nullptr) {
        AcDbEntity* entity = nullptr;
        EXPECT_EQ(acdbOpenAcDbEntity(entity, id, AcDb::kForRead), Acad::eOk);
        bool passes = EntityPassesFilter(entity, filter, error);
        entity->close();
        acutRelRb(filter);
        return passes;
    }
    std::unique_ptr<AcDbDatabase> db_;
};

TEST_F(SelectionTest, type_filter_matches_wild_cards_without_regard_to_case) {
    AcDbObjectId text = Text(L"H7", 0, 0);
    EXPECT_TRUE(Passes(text, acutBuildList(RTDXF0, L"*text", 0)));
    EXPECT_TRUE(Passes(text, acutBuildList(RTDXF0, L"mtext,text", 0)));
    EXPECT_FALSE(Passes(text, acutBuildList(RTDXF0, L"insert", 0)));
}

TEST_F(SelectionTest, text_value_or_group_takes_any_pattern) {
    AcDbObjectId text = Text(L"H7:20", 0, 0);
    auto filter = [] {
        return acutBuildList(RTDXF0, L"*text", -4, L"<OR", 1, L"*[a-A-z-Z]#*;*", 1, L"*[a-A-z-Z]*;*", 1,
                             L"[a-A-z-Z]*", 1, L"*;[a-A-z-Z]*", -4, L"OR>", 0);
    };
    EXPECT_TRUE(Passes(text, filter()));
    EXPECT_FALSE(Passes(Text(L"20", 0, 0), filter()));
    EXPECT_TRUE(Passes(Text(L"20;x", 0, 0), filter()));
}

TEST_F(SelectionTest, relational_point_tests_include_their_bounds) {
    ads_point low = {0, 0, 0}, high = {10, 10, 0};
    auto window = [&] {
        return acutBuildList(-4, L"<AND", -4, L">=,>=,*", 10, low, -4, L"<=,<=,*", 10, high, -4, L"AND>", 0);
    };
    EXPECT_TRUE(Passes(Text(L"a", 10, 10), window()));
    EXPECT_TRUE(Passes(Text(L"a", 0, 5), window()));
    EXPECT_FALSE(Passes(Text(L"a", 10.001, 5), window()));
    EXPECT_FALSE(Passes(Text(L"a", 5, -0.001), window()));
}

TEST_F(SelectionTest, not_and_xor_groups) {
    AcDbObjectId text = Text(L"AB", 0, 0);
    EXPECT_FALSE(Passes(text, acutBuildList(-4, L"<NOT", 1, L"AB", -4, L"NOT>", 0)));
    EXPECT_TRUE(Passes(text, acutBuildList(-4, L"<XOR", 1, L"AB", 1, L"X", -4, L"XOR>", 0)));
    EXPECT_FALSE(Passes(text, acutBuildList(-4, L"<XOR", 1, L"AB", 1, L"A*", -4, L"XOR>", 0)));
}

TEST_F(SelectionTest, unclosed_group_or_unknown_relation_passes_nothing_and_says_why) {
    AcDbObjectId text = Text(L"AB", 0, 0);
    std::wstring error;
    EXPECT_FALSE(Passes(text, acutBuildList(-4, L"<OR", 1, L"AB", 0), &error));
    EXPECT_NE(error.find(L"not closed"), std::wstring::npos);
    EXPECT_FALSE(Passes(text, acutBuildList(-4, L"~~", 62, 256, 0), &error));
    EXPECT_NE(error.find(L"unknown relation"), std::wstring::npos);
}

TEST_F(SelectionTest, colour_relations_compare_numbers) {
    AcDbObjectId text = Text(L"AB", 0, 0);  // ByLayer, 256
    EXPECT_TRUE(Passes(text, acutBuildList(62, 256, 0)));
    EXPECT_TRUE(Passes(text, acutBuildList(-4, L">", 62, 255, 0)));
    EXPECT_FALSE(Passes(text, acutBuildList(-4, L"<", 62, 256, 0)));
    EXPECT_TRUE(Passes(text, acutBuildList(-4, L"&", 62, 256, 0)));
}

TEST_F(SelectionTest, pick_at_point_takes_the_topmost_entity_that_passes) {
    AcDbObjectId line = Add(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(100, 0, 0)));
    AcDbObjectId text = Text(L"AB", 10, 0);
    ads_point at = {11, 1, 0};
    ads_name set;
    ASSERT_EQ(acedSSGet(nullptr, at, nullptr, nullptr, set), RTNORM);
    ads_name first;
    AcDbObjectId id;
    acedSSName(set, 0, first);
    acdbGetObjectId(id, first);
    EXPECT_EQ(id, text);
    std::int32_t length = 0;
    acedSSLength(set, &length);
    EXPECT_EQ(length, 1);
    resbuf* lines = acutBuildList(RTDXF0, L"LINE", 0);
    ASSERT_EQ(acedSSGet(nullptr, at, nullptr, lines, set), RTNORM);
    acedSSName(set, 0, first);
    acdbGetObjectId(id, first);
    EXPECT_EQ(id, line);
    acutRelRb(lines);
}

TEST_F(SelectionTest, pick_box_is_pickbox_pixels_of_the_view) {
    Add(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(100, 0, 0)));
    ads_name set;
    ads_point inside = {50, 2.9, 0}, outside = {50, 3.1, 0};
    EXPECT_EQ(acedSSGet(nullptr, inside, nullptr, nullptr, set), RTNORM);
    EXPECT_EQ(acedSSGet(nullptr, outside, nullptr, nullptr, set), RTERROR);
}

TEST_F(SelectionTest, mode_x_takes_every_entity_that_passes_and_nothing_gives_an_error) {
    Text(L"A", 0, 0);
    Text(L"B", 50, 0);
    Add(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
    ads_name set;
    resbuf* texts = acutBuildList(RTDXF0, L"TEXT", 0);
    ASSERT_EQ(acedSSGet(L"X", nullptr, nullptr, texts, set), RTNORM);
    std::int32_t length = 0;
    acedSSLength(set, &length);
    EXPECT_EQ(length, 2);
    acutRelRb(texts);
    resbuf* none = acutBuildList(RTDXF0, L"CIRCLE", 0);
    EXPECT_EQ(acedSSGet(L"_X", nullptr, nullptr, none, set), RTERROR);
    acutRelRb(none);
    EXPECT_EQ(acedSSGet(L"Q", nullptr, nullptr, nullptr, set), RTERROR);
}

TEST_F(SelectionTest, add_free_and_pick_first) {
    AcDbObjectId a = Text(L"A", 0, 0), b = Text(L"B", 50, 0);
    ads_name ea, eb, set, same;
    acdbGetAdsName(ea, a);
    acdbGetAdsName(eb, b);
    ASSERT_EQ(acedSSAdd(ea, nullptr, set), RTNORM);
    ASSERT_EQ(acedSSAdd(eb, set, same), RTNORM);
    ASSERT_EQ(acedSSAdd(ea, set, same), RTNORM);  // already a member
    std::int32_t length = 0;
    acedSSLength(set, &length);
    EXPECT_EQ(length, 2);
    ASSERT_EQ(acedSSSetFirst(set, nullptr), RTNORM);
    ads_name implied;
    ASSERT_EQ(acedSSGet(L"I", nullptr, nullptr, nullptr, implied), RTNORM);
    acedSSLength(implied, &length);
    EXPECT_EQ(length, 2);
    EXPECT_EQ(acedSSFree(set), RTNORM);
    EXPECT_EQ(acedSSFree(set), RTERROR);
    EXPECT_EQ(acedSSLength(set, &length), RTERROR);
    ads_name bad = {0, 0};
    EXPECT_EQ(acedSSAdd(ea, bad, same), RTERROR);
}

TEST_F(SelectionTest, entdel_erases_and_brings_back) {
    AcDbObjectId a = Text(L"A", 0, 0);
    ads_name name;
    acdbGetAdsName(name, a);
    ASSERT_EQ(acdbEntDel(name), RTNORM);
    EXPECT_TRUE(a.isErased());
    ASSERT_EQ(acdbEntDel(name), RTNORM);
    EXPECT_FALSE(a.isErased());
}

TEST_F(SelectionTest, entsel_answers_point_keyword_enter_cancel_and_retries_bad_input) {
    AcDbObjectId a = Text(L"A", 0, 0);
    std::vector<std::wstring> lines = {L"1,1", L"c", L"", L"^C", L"x;y", L"1,1", L"500,500"};
    size_t next = 0;
    SetHostInputSource([&](const std::wstring&, std::wstring& line) {
        if (next >= lines.size()) return false;
        line = lines[next++];
        return true;
    });
    ads_name picked;
    ads_point at;
    acedInitGet(2, L"Color");
    ASSERT_EQ(acedEntSel(L"pick", picked, at), RTNORM);
    AcDbObjectId id;
    acdbGetObjectId(id, picked);
    EXPECT_EQ(id, a);
    acedInitGet(2, L"Color");
    ASSERT_EQ(acedEntSel(L"pick", picked, at), RTKWORD);
    ACHAR keyword[133];
    acedGetInput(keyword);
    EXPECT_STREQ(keyword, L"Color");
    EXPECT_EQ(acedEntSel(L"pick", picked, at), RTNONE);
    EXPECT_EQ(acedEntSel(L"pick", picked, at), RTCAN);
    EXPECT_EQ(acedEntSel(L"pick", picked, at), RTNORM);  // "x;y" gets a message, then 1,1
    EXPECT_EQ(acedEntSel(L"pick", picked, at), RTERROR);  // nothing there
    EXPECT_EQ(acedEntSel(L"pick", picked, at), RTCAN);    // the input ended
    SetHostInputSource(nullptr);
}

}  // namespace
