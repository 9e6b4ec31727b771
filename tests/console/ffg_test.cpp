// FFG through the tavrik program: a sheet (an attributed block reference, 200 x 100 at the
// origin) with the texts "H7:20" at x 50 and "H7" at x 80 and 120 on it, and "H7" at x 300
// off every sheet.
#include "console_fixture.hpp"

namespace {

class Ffg : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        AddSheet(0, 0, 200, 100);
        AddText(L"H7:20", 50, 50);
        AddText(L"H7", 80, 50);
        AddText(L"H7", 120, 50);
        AddText(L"H7", 300, 50);
    }
    // The count text, if the drawing has one.
    static const SeenText* CountText(const std::vector<SeenText>& texts) {
        for (const SeenText& t : texts)
            if (t.value.starts_with(L"共 ")) return &t;
        return nullptr;
    }
};

TEST_F(Ffg, picked_text_outside_every_sheet_changes_nothing) {
    ConsoleRun run = Run("USERI1\n1\nFFG\n301,51\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    ASSERT_EQ(texts.size(), 4u);
    for (const SeenText& t : texts) EXPECT_EQ(t.color, 256) << dxf::Utf8(t.value);
    EXPECT_EQ(CountText(texts), nullptr);
}

TEST_F(Ffg, enter_at_the_pick_prompt_ends_the_command) {
    ConsoleRun run = Run("FFG\n\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    ASSERT_EQ(texts.size(), 4u);
    for (const SeenText& t : texts) EXPECT_EQ(t.color, 256) << dxf::Utf8(t.value);
}

TEST_F(Ffg, colon_text_searches_the_part_before_it_and_the_count_leaves_the_picked_text_out) {
    ConsoleRun run = Run("USERI1\n1\nFFG\n51,51\n\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    // Found: the two H7 of the sheet, plus the picked text; counted: the two.
    EXPECT_EQ(Find(texts, L"H7:20", 50)->color, 6);
    EXPECT_EQ(Find(texts, L"H7", 80)->color, 6);
    EXPECT_EQ(Find(texts, L"H7", 120)->color, 6);
    EXPECT_EQ(Find(texts, L"H7", 300)->color, 256);
    const SeenText* count = CountText(texts);
    ASSERT_NE(count, nullptr);
    EXPECT_EQ(count->value, L"共 2 个");
    // To the left of the picked text, one text height (2.5) between them, on its base line.
    const SeenText* picked = Find(texts, L"H7:20", 50);
    EXPECT_NEAR(count->box.maxPoint().x, picked->box.minPoint().x - 2.5, 1e-9);
    EXPECT_DOUBLE_EQ(count->position.y, 50.0);
    EXPECT_DOUBLE_EQ(count->position.z, 0.0);
}

TEST_F(Ffg, colon_right_after_the_first_character_still_cuts_the_search) {
    AddText(L"K:1", 50, 20);
    AddText(L"K", 80, 20);
    ConsoleRun run = Run("USERI1\n1\nFFG\n51,21\n\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    EXPECT_EQ(Find(texts, L"K", 80)->color, 6);
    const SeenText* count = CountText(texts);
    ASSERT_NE(count, nullptr);
    EXPECT_EQ(count->value, L"共 1 个");
}

TEST_F(Ffg, found_texts_stay_selected_so_that_move_takes_them_without_asking) {
    ConsoleRun run = Run("FFG\n81,51\n\nMOVE\n0,0\n0,10\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    for (double x : {80.0, 120.0}) {
        const SeenText* text = Find(texts, L"H7", x);
        ASSERT_NE(text, nullptr) << x;
        EXPECT_DOUBLE_EQ(text->position.y, 60.0) << x;
    }
    EXPECT_DOUBLE_EQ(Find(texts, L"H7", 300)->position.y, 50.0);
}

TEST_F(Ffg, text_whose_corner_stands_on_the_sheets_edge_is_on_the_sheet) {
    struct Case {
        double x, y;
        int color;  // of the picked text after FFG
    };
    for (Case c : {Case{200.0, 50.0, 6}, Case{50.0, 100.0, 6}, Case{200.5, 50.0, 256}, Case{50.0, 100.5, 256}}) {
        db_ = std::make_unique<AcDbDatabase>(true, true);
        AddSheet(0, 0, 200, 100);
        AddText(L"Q", c.x, c.y);
        ConsoleRun run = Run("FFG\n" + std::to_string(c.x + 0.5) + "," + std::to_string(c.y + 1) + "\n\n");
        ASSERT_EQ(run.status, 0) << run.output;
        const SeenText* text = Find(SavedTexts(), L"Q", c.x);
        ASSERT_NE(text, nullptr) << c.x << "," << c.y;
        EXPECT_EQ(text->color, c.color) << c.x << "," << c.y;
    }
}

TEST_F(Ffg, plain_text_counts_itself) {
    ConsoleRun run = Run("USERI1\n1\nFFG\n81,51\n\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    ASSERT_NE(CountText(texts), nullptr);
    EXPECT_EQ(CountText(texts)->value, L"共 2 个");
    EXPECT_EQ(Find(texts, L"H7:20", 50)->color, 256);  // "H7:20" is not "H7"
}

TEST_F(Ffg, count_text_stays_with_useri1_one_and_vanishes_with_zero) {
    struct Case {
        const char* useri1;
        bool stays;
    };
    for (Case c : {Case{"1", true}, Case{"0", false}}) {
        ConsoleRun run = Run(std::string("USERI1\n") + c.useri1 + "\nFFG\n81,51\n\n");
        ASSERT_EQ(run.status, 0) << run.output;
        EXPECT_EQ(CountText(SavedTexts()) != nullptr, c.stays) << "useri1 " << c.useri1;
    }
}

TEST_F(Ffg, cancel_at_the_keyword_prompt_keeps_the_highlight_and_deletes_the_count_text) {
    ConsoleRun run = Run("FFG\n81,51\n^C\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    EXPECT_EQ(Find(texts, L"H7", 80)->color, 6);
    EXPECT_EQ(Find(texts, L"H7", 120)->color, 6);
    EXPECT_EQ(CountText(texts), nullptr);
}

TEST_F(Ffg, cancel_at_the_new_text_ends_at_once_and_leaves_the_count_text) {
    ConsoleRun run = Run("FFG\n81,51\nG\n^C\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    EXPECT_NE(CountText(texts), nullptr);
    EXPECT_EQ(Count(texts, L"H7"), 3);
}

TEST_F(Ffg, replace_changes_every_place_of_the_search_in_a_text) {
    AddText(L"AB:AB", 50, 20);
    AddText(L"AB", 80, 20);
    AddMText(L"{\\fSimSun;AB-AB}", 100, 20);
    AddText(L"AB", 300, 20);
    ConsoleRun run = Run("FFG\n51,21\nG\nXY\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    EXPECT_NE(Find(texts, L"XY:XY", 50), nullptr);
    EXPECT_NE(Find(texts, L"XY", 80), nullptr);
    EXPECT_NE(Find(texts, L"{\\fSimSun;XY-XY}", 100), nullptr);
    EXPECT_NE(Find(texts, L"AB", 300), nullptr);  // off the sheet
}

TEST_F(Ffg, new_text_ends_at_a_space) {
    ConsoleRun run = Run("FFG\n81,51\nG\nK6 rest\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    EXPECT_EQ(Count(texts, L"K6"), 2);
    EXPECT_NE(Find(texts, L"H7:20", 50), nullptr);  // not one of the found texts
}

TEST_F(Ffg, move_takes_the_found_texts_by_the_points_the_host_asks_for) {
    ConsoleRun run = Run("FFG\n81,51\nM\n0,0\n10,5\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    EXPECT_NE(Find(texts, L"H7", 90), nullptr);
    EXPECT_NE(Find(texts, L"H7", 130), nullptr);
    EXPECT_NE(Find(texts, L"H7", 300), nullptr);
    EXPECT_NEAR(Find(texts, L"H7", 90)->position.y, 55.0, 1e-9);
}

TEST_F(Ffg, copy_pauses_twice_for_the_points) {
    ConsoleRun run = Run("FFG\n81,51\nC\n0,0\n0,20\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    EXPECT_EQ(Count(texts, L"H7"), 5);
    int raised = 0;
    for (const SeenText& t : texts) raised += t.value == L"H7" && std::abs(t.position.y - 70.0) < 1e-9;
    EXPECT_EQ(raised, 2);
}

TEST_F(Ffg, erase_deletes_the_found_texts) {
    ConsoleRun run = Run("FFG\n81,51\nE\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    EXPECT_EQ(Count(texts, L"H7"), 1);
    EXPECT_NE(Find(texts, L"H7", 300), nullptr);
}

TEST_F(Ffg, highlight_colour_chosen_at_the_pick_prompt_stays_for_the_next_run) {
    AddText(L"AB", 50, 20);
    ConsoleRun run = Run("FFG\nC\n3\n81,51\n\nFFG\n51,21\n\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    EXPECT_EQ(Find(texts, L"H7", 80)->color, 3);
    EXPECT_EQ(Find(texts, L"AB", 50)->color, 3);
}

TEST_F(Ffg, colour_dialog_left_by_cancel_keeps_the_colour) {
    ConsoleRun run = Run("FFG\nC\n^C\n81,51\n\n");
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(Find(SavedTexts(), L"H7", 80)->color, 6);
}

TEST_F(Ffg, bad_point_unknown_keyword_and_bad_colour_get_the_hosts_answer) {
    ConsoleRun run = Run("FFG\nC\n999\nred\n2\nabc\n81,51\nZ\nE\n");
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("Requires an integer between 1 and 255."), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("Point or option keyword required."), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("Invalid option keyword."), std::string::npos) << run.output;
    EXPECT_EQ(Count(SavedTexts(), L"H7"), 1);  // E still came through
}

TEST_F(Ffg, end_of_input_at_a_prompt_cancels_and_ends_the_session_cleanly) {
    for (const char* script : {"FFG\n", "FFG\n81,51\n", "FFG\n81,51\nG\n", "FFG\n81,51\nM\n0,0\n"}) {
        ConsoleRun run = Run(script, true, false);
        EXPECT_EQ(run.status, 0) << script << run.output;
    }
}

TEST_F(Ffg, pick_on_empty_space_or_on_a_text_without_letters_ends_the_command) {
    AddText(L"20", 50, 20);
    ConsoleRun run = Run("USERI1\n1\nFFG\n150,80\nFFG\n51,21\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    for (const SeenText& t : texts) EXPECT_EQ(t.color, 256);
    EXPECT_EQ(texts.size(), 5u);
}

}  // namespace
