#include <gtest/gtest.h>

#include <vector>

#include "editor_fixture.hpp"
#include "platform/ed/host_commands.hpp"
#include "platform/ed/lisp.hpp"
#include "platform/ed/prompts.hpp"
#include "platform/ed/sysvars.hpp"
#include "platform/ed/trans.hpp"

namespace {

// Answers the prompts from a list of lines; the input ends after the last.
class PromptTest : public EditorTest {
protected:
    void Answers(std::vector<std::wstring> lines) {
        lines_ = std::move(lines);
        next_ = 0;
        SetHostInputSource([this](const std::wstring&, std::wstring& line) {
            if (next_ >= lines_.size()) return false;
            line = lines_[next_++];
            return true;
        });
    }
    std::vector<std::wstring> lines_;
    size_t next_ = 0;
};

TEST_F(PromptTest, keyword_may_be_abbreviated_to_its_capitals_and_unknown_ones_are_asked_again) {
    Answers({L"c", L"COL", L"Colorx", L"e", L"", L"^C"});
    ACHAR result[133];
    acedInitGet(0, L"Color Exit");
    EXPECT_EQ(acedGetKword(L"?", result), RTNORM);
    EXPECT_STREQ(result, L"Color");
    acedInitGet(0, L"Color Exit");
    EXPECT_EQ(acedGetKword(L"?", result), RTNORM);  // "COL"
    EXPECT_STREQ(result, L"Color");
    acedInitGet(0, L"Color Exit");
    EXPECT_EQ(acedGetKword(L"?", result), RTNORM);  // "Colorx" refused, then "e"
    EXPECT_STREQ(result, L"Exit");
    acedInitGet(0, L"Color Exit");
    EXPECT_EQ(acedGetKword(L"?", result), RTNONE);
    acedInitGet(0, L"Color Exit");
    EXPECT_EQ(acedGetKword(L"?", result), RTCAN);
}

TEST_F(PromptTest, enter_is_refused_when_null_is_not_allowed) {
    Answers({L"", L"G"});
    ACHAR result[133];
    acedInitGet(RSG_NONULL, L"G M");
    EXPECT_EQ(acedGetKword(L"?", result), RTNORM);
    EXPECT_STREQ(result, L"G");
}

TEST_F(PromptTest, string_ends_at_a_space_unless_spaces_are_allowed) {
    Answers({L"AB CD", L"AB CD", L"", L"^C"});
    ACHAR result[133];
    EXPECT_EQ(acedGetString(0, L"?", result), RTNORM);
    EXPECT_STREQ(result, L"AB");
    EXPECT_EQ(acedGetString(1, L"?", result), RTNORM);
    EXPECT_STREQ(result, L"AB CD");
    EXPECT_EQ(acedGetString(0, L"?", result), RTNORM);
    EXPECT_STREQ(result, L"");
    EXPECT_EQ(acedGetString(0, L"?", result), RTCAN);
}

TEST_F(PromptTest, points_absolute_relative_and_refused) {
    Answers({L"1,2", L"3,4,5", L"@1,1", L"1,", L"1,2,3,4", L"a,b", L"7,8", L""});
    ads_point p, base = {10, 10, 0};
    ASSERT_EQ(acedGetPoint(nullptr, L"?", p), RTNORM);
    EXPECT_EQ(p[0], 1.0);
    EXPECT_EQ(p[1], 2.0);
    EXPECT_EQ(p[2], 0.0);
    ASSERT_EQ(acedGetPoint(nullptr, L"?", p), RTNORM);
    EXPECT_EQ(p[2], 5.0);
    ASSERT_EQ(acedGetPoint(base, L"?", p), RTNORM);
    EXPECT_EQ(p[0], 11.0);
    EXPECT_EQ(p[1], 11.0);
    ASSERT_EQ(acedGetPoint(nullptr, L"?", p), RTNORM);  // three refused lines, then 7,8
    EXPECT_EQ(p[0], 7.0);
    EXPECT_EQ(acedGetPoint(nullptr, L"?", p), RTNONE);
    EXPECT_EQ(acedGetPoint(nullptr, L"?", p), RTCAN);  // the input ended
}

TEST_F(PromptTest, colour_index_in_range_enter_keeps_and_cancel_leaves) {
    Answers({L"0", L"256", L"3.5", L"12", L"", L"^C", L"256"});
    int color = 6;
    EXPECT_TRUE(acedSetColorDialog(color, false, 256));
    EXPECT_EQ(color, 12);
    EXPECT_TRUE(acedSetColorDialog(color, false, 256));
    EXPECT_EQ(color, 12);
    EXPECT_FALSE(acedSetColorDialog(color, false, 256));
    EXPECT_EQ(color, 12);
    EXPECT_TRUE(acedSetColorDialog(color, true, 256));
    EXPECT_EQ(color, 256);
}

TEST_F(PromptTest, command_arguments_answer_prompts_and_a_pause_asks_the_user) {
    static std::wstring first, second;
    RegisterHostCommand(L"ASKTWO", L"", [] {
        ACHAR a[133], b[133];
        acedGetString(1, L"?", a);
        acedGetString(1, L"?", b);
        first = a;
        second = b;
    });
    Answers({L"typed"});
    EXPECT_EQ(acedCommand(RTSTR, L".asktwo", RTSTR, L"given", RTSTR, PAUSE, 0), RTNORM);
    EXPECT_EQ(first, L"given");
    EXPECT_EQ(second, L"typed");
    EXPECT_EQ(acedCommand(RTSTR, L"NOSUCH", 0), RTERROR);
}

TEST_F(PromptTest, system_variables_read_set_and_refuse) {
    resbuf value{};
    ASSERT_EQ(acedGetVar(L"useri1", &value), RTNORM);
    EXPECT_EQ(value.restype, RTSHORT);
    EXPECT_EQ(value.resval.rint, 0);
    value.resval.rint = 1;
    EXPECT_EQ(acedSetVar(L"USERI1", &value), RTNORM);
    ASSERT_EQ(acedGetVar(L"USERI1", &value), RTNORM);
    EXPECT_EQ(value.resval.rint, 1);
    EXPECT_EQ(acedSetVar(L"VIEWDIR", &value), RTERROR);  // read only
    EXPECT_EQ(acedGetVar(L"NOSUCH", &value), RTERROR);
    value.restype = RTSTR;
    EXPECT_EQ(acedSetVar(L"USERI1", &value), RTERROR);  // wrong type
    ASSERT_EQ(acedGetVar(L"VIEWDIR", &value), RTNORM);
    EXPECT_EQ(value.restype, RT3DPOINT);
    EXPECT_EQ(value.resval.rpoint[2], 1.0);
}

TEST_F(PromptTest, trans_world_and_user_are_one_and_display_follows_target_and_twist) {
    resbuf world{}, ucs{}, display{}, other{};
    world.restype = ucs.restype = display.restype = other.restype = RTSHORT;
    world.resval.rint = 0;
    ucs.resval.rint = 1;
    display.resval.rint = 2;
    other.resval.rint = 7;
    ads_point p = {5, 6, 7}, out;
    ASSERT_EQ(acedTrans(p, &world, &ucs, 0, out), RTNORM);
    EXPECT_EQ(out[0], 5.0);
    EXPECT_EQ(out[2], 7.0);
    EXPECT_EQ(acedTrans(p, &world, &other, 0, out), RTERROR);
    resbuf target{};
    target.restype = RT3DPOINT;
    target.resval.rpoint[0] = 1;
    target.resval.rpoint[1] = 1;
    ASSERT_EQ(SetSystemVariable(L"TARGET", &target), RTNORM);
    ASSERT_EQ(acedTrans(p, &world, &display, 0, out), RTNORM);
    EXPECT_NEAR(out[0], 4.0, 1e-12);
    EXPECT_NEAR(out[1], 5.0, 1e-12);
    ASSERT_EQ(acedTrans(p, &world, &display, 1, out), RTNORM);  // a displacement ignores the origin
    EXPECT_NEAR(out[0], 5.0, 1e-12);
    resbuf twist{};
    twist.restype = RTREAL;
    twist.resval.rreal = 1.5707963267948966;
    ASSERT_EQ(SetSystemVariable(L"VIEWTWIST", &twist), RTNORM);
    ads_point east = {1, 0, 0};
    ASSERT_EQ(acedTrans(east, &world, &display, 1, out), RTNORM);
    EXPECT_NEAR(out[0], 0.0, 1e-12);
    EXPECT_NEAR(std::abs(out[1]), 1.0, 1e-12);
}

TEST_F(PromptTest, lisp_calls_read_points_lists_strings_and_refuse_the_rest) {
    std::wstring name, error;
    resbuf* args = nullptr;
    ASSERT_TRUE(ParseLispCall(L"(wzoom '(0 0 0) '(100.5 2) \"a b\" 7 T nil '(1 \"x\"))", name, args, error)) << error;
    EXPECT_EQ(name, L"wzoom");
    ASSERT_NE(args, nullptr);
    EXPECT_EQ(args->restype, RT3DPOINT);
    resbuf* rb = args->rbnext;
    EXPECT_EQ(rb->restype, RTPOINT);
    EXPECT_EQ(rb->resval.rpoint[0], 100.5);
    rb = rb->rbnext;
    EXPECT_EQ(rb->restype, RTSTR);
    EXPECT_STREQ(rb->resval.rstring, L"a b");
    rb = rb->rbnext;
    EXPECT_EQ(rb->restype, RTSHORT);
    EXPECT_EQ((rb = rb->rbnext)->restype, RTT);
    EXPECT_EQ((rb = rb->rbnext)->restype, RTNIL);
    EXPECT_EQ((rb = rb->rbnext)->restype, RTLB);
    EXPECT_EQ((rb = rb->rbnext)->restype, RTSHORT);
    EXPECT_EQ((rb = rb->rbnext)->restype, RTSTR);
    EXPECT_EQ((rb = rb->rbnext)->restype, RTLE);
    EXPECT_EQ(rb->rbnext, nullptr);
    acutRelRb(args);
    for (const wchar_t* bad : {L"(wzoom '(0 0 0)", L"(f (list 1 2))", L"(f \"open)", L"()", L"(f) x", L"f"}) {
        EXPECT_FALSE(ParseLispCall(bad, name, args, error)) << bad;
        EXPECT_FALSE(error.empty());
        EXPECT_EQ(args, nullptr);
    }
}

}  // namespace
