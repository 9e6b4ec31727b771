// The console host's own commands and the single steps of the module on a drawing.
#include <utility>

#include "console_fixture.hpp"
#include "platform/db/circle.hpp"

namespace {

using Console = ConsoleTest;

TEST_F(Console, help_lists_the_host_commands_the_module_commands_and_lisp_functions) {
    ConsoleRun run = Run("HELP\n", false, false);
    ASSERT_EQ(run.status, 0) << run.output;
    for (const char* name : {"OPEN", "SAVE", "SAVEAS", "QUIT", "MOVE", "COPY", "FFG", "Substr", "ZDMT", "ZZFJ",
                             "ClearLayer", "ZZ1", "Expmt", "Txtwscl", "(wzoom)", "(zoomall)", "USERI1"})
        EXPECT_NE(run.output.find(name), std::string::npos) << name << " in " << run.output;
}

TEST_F(Console, open_and_save_work_from_a_script) {
    AddText(L"Ø20", 0, 0);
    std::string drawing = SaveDrawing().string();
    ConsoleRun run = Run("OPEN\n" + drawing + "\nSubstr\nSAVE\n", false, false);
    ASSERT_EQ(run.status, 0) << run.output;
    AcDbDatabase saved(false, true);
    ASSERT_EQ(saved.readDwgFile(dxf::Wide(drawing).c_str()), Acad::eOk);
    AcDbBlockTableRecord* model = nullptr;
    ASSERT_EQ(acdbOpenObject(model, saved.modelSpaceId(), AcDb::kForRead), Acad::eOk);
    AcDbBlockTableRecordIterator walk(model, true, true);
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(walk.getEntity(entity, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(AcDbText::cast(entity)->textString(), L"%%c20");
    entity->close();
    model->close();
}

TEST_F(Console, open_of_a_missing_drawing_names_it_and_the_run_fails) {
    ConsoleRun run = Run("OPEN\n/nonexistent/plate.dxf\nHELP\n", false, false);
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.output.find("cannot open /nonexistent/plate.dxf"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("Commands of the host"), std::string::npos);  // the host went on
}

TEST_F(Console, drawing_named_at_start_that_cannot_be_read_fails_with_its_name) {
    std::filesystem::path bad = work_ / "bad.dxf";
    std::ofstream(bad) << "garbage";
    ConsoleRun run = Shell(std::string(TAVRIK_EXE) + " --prefix " + prefix_.string() + " " + bad.string() + " < /dev/null");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.output.find("cannot open " + bad.string()), std::string::npos) << run.output;
}

TEST_F(Console, system_variable_typed_as_a_command_takes_a_value_and_refuses_a_bad_one) {
    ConsoleRun ok = Run("USERI1\n5\nSETVAR\nuseri1\n\nVIEWSIZE\n", false, false);
    EXPECT_EQ(ok.status, 0) << ok.output;
    ConsoleRun bad = Run("USERI1\nlots\nSETVAR\nNOSUCHVAR\n", false, false);
    EXPECT_EQ(bad.status, 1);
    EXPECT_NE(bad.output.find("\"lots\" is no value for USERI1"), std::string::npos) << bad.output;
    EXPECT_NE(bad.output.find("unknown variable name \"NOSUCHVAR\""), std::string::npos) << bad.output;
}

TEST_F(Console, txtwscl_sets_the_width_factor_of_every_text_to_one) {
    auto* wide = new AcDbText(AcGePoint3d(0, 0, 0), L"A", db_->textstyle(), 2.5);
    wide->setWidthFactor(0.7);
    Append(wide);
    ConsoleRun run = Run("Txtwscl\n");
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_DOUBLE_EQ(SavedTexts().at(0).widthFactor, 1.0);
}

TEST_F(Console, expmt_explodes_multiline_texts) {
    AddMText(L"ONE\\PTWO", 0, 0);
    ConsoleRun run = Run("Expmt\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    EXPECT_EQ(Count(texts, L"ONE"), 1);
    EXPECT_EQ(Count(texts, L"TWO"), 1);
}

TEST_F(Console, zz1_turns_a_circle_with_a_reversed_normal) {
    Append(new AcDbCircle(AcGePoint3d(5, 5, 0), -AcGeVector3d::kZAxis, 2.0));
    ConsoleRun run = Run("ZZ1\n");
    ASSERT_EQ(run.status, 0) << run.output;
    AcDbDatabase saved(false, true);
    ASSERT_EQ(saved.readDwgFile(dxf::Wide(Out()).c_str()), Acad::eOk);
    AcDbBlockTableRecord* model = nullptr;
    ASSERT_EQ(acdbOpenObject(model, saved.modelSpaceId(), AcDb::kForRead), Acad::eOk);
    AcDbBlockTableRecordIterator walk(model, true, true);
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(walk.getEntity(entity, AcDb::kForRead), Acad::eOk);
    EXPECT_GT(AcDbCircle::cast(entity)->normal().z, 0.0);
    entity->close();
    model->close();
}

TEST_F(Console, clearlayer_purges_unused_layers) {
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(db_->getSymbolTable(layers, AcDb::kForWrite), Acad::eOk);
    auto* unused = new AcDbLayerTableRecord();
    unused->setName(L"UNUSED");
    ASSERT_EQ(layers->add(unused), Acad::eOk);
    unused->close();
    layers->close();
    ConsoleRun run = Run("ClearLayer\n");
    ASSERT_EQ(run.status, 0) << run.output;
    AcDbDatabase saved(false, true);
    ASSERT_EQ(saved.readDwgFile(dxf::Wide(Out()).c_str()), Acad::eOk);
    ASSERT_EQ(saved.getSymbolTable(layers, AcDb::kForRead), Acad::eOk);
    EXPECT_FALSE(layers->has(L"UNUSED"));
    layers->close();
}

TEST_F(Console, zdmt_outside_a_batch_has_no_drawing_and_changes_nothing) {
    AddText(L"*123*", 0, 0);
    ConsoleRun run = Run("ZDMT\nZZFJ\n");
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(Count(SavedTexts(), L"*123*"), 1);
}

// The fonts of a text style of the saved drawing; empty names when the style is missing.
std::pair<std::wstring, std::wstring> SavedFonts(const std::string& path, const wchar_t* style) {
    AcDbDatabase saved(false, true);
    EXPECT_EQ(saved.readDwgFile(dxf::Wide(path).c_str()), Acad::eOk);
    AcDbTextStyleTable* styles = nullptr;
    EXPECT_EQ(saved.getSymbolTable(styles, AcDb::kForRead), Acad::eOk);
    AcDbTextStyleTableRecord* record = nullptr;
    std::pair<std::wstring, std::wstring> fonts;
    if (styles->getAt(style, record, AcDb::kForRead) == Acad::eOk) {
        fonts = {record->fileName(), record->bigFontFileName()};
        record->close();
    }
    styles->close();
    return fonts;
}

TEST_F(Console, zzfj_gives_standard_and_chinesef_fs_the_house_fonts) {
    AcDbTextStyleTable* styles = nullptr;
    ASSERT_EQ(db_->getSymbolTable(styles, AcDb::kForWrite), Acad::eOk);
    auto* chinese = new AcDbTextStyleTableRecord();
    chinese->setName(L"chinesef_fs");
    chinese->setFileName(L"simsun.ttf");
    ASSERT_EQ(styles->add(chinese), Acad::eOk);
    chinese->close();
    auto* other = new AcDbTextStyleTableRecord();
    other->setName(L"other");
    other->setFileName(L"romans.shx");
    ASSERT_EQ(styles->add(other), Acad::eOk);
    other->close();
    styles->close();
    ConsoleRun run = Run("ZZFJ\n");
    ASSERT_EQ(run.status, 0) << run.output;
    using Fonts = std::pair<std::wstring, std::wstring>;
    EXPECT_EQ(SavedFonts(Out(), L"Standard"), (Fonts{L"gbenor.shx", L"gbcbig.shx"}));
    EXPECT_EQ(SavedFonts(Out(), L"chinesef_fs"), (Fonts{L"gbenor.shx", L"gbcbig.shx"}));
    EXPECT_EQ(SavedFonts(Out(), L"other").first, L"romans.shx");
}

TEST_F(Console, zzfj_without_chinesef_fs_still_sets_standard) {
    ConsoleRun run = Run("ZZFJ\n");
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(SavedFonts(Out(), L"Standard").first, L"gbenor.shx");
    EXPECT_EQ(SavedFonts(Out(), L"chinesef_fs").first, L"");
}

TEST_F(Console, move_typed_by_hand_selects_by_pick_and_takes_two_points) {
    AddText(L"A", 0, 0);
    AddText(L"B", 50, 0);
    AddText(L"C", 100, 0);
    ConsoleRun run = Run("MOVE\n1,1\n51,1\n\n0,0\n@5,10\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    EXPECT_NE(Find(texts, L"A", 5), nullptr);
    EXPECT_NE(Find(texts, L"B", 55), nullptr);
    EXPECT_NE(Find(texts, L"C", 100), nullptr);
}

TEST_F(Console, copy_typed_by_hand_selects_by_window_and_enter_takes_the_base_as_displacement) {
    AddText(L"A", 0, 0);
    AddText(L"B", 50, 0);
    AddText(L"C", 100, 0);
    ConsoleRun run = Run("COPY\nW\n-1,-1\n60,10\n\n0,20\n\n");
    ASSERT_EQ(run.status, 0) << run.output;
    auto texts = SavedTexts();
    EXPECT_EQ(texts.size(), 5u);
    int raised = 0;
    for (const SeenText& t : texts) raised += std::abs(t.position.y - 20.0) < 1e-9;
    EXPECT_EQ(raised, 2);
}

TEST_F(Console, selection_prompt_answers_bad_input_and_a_miss_and_cancel_moves_nothing) {
    AddText(L"A", 0, 0);
    ConsoleRun run = Run("MOVE\nzz\n500,500\n1,1\n\n0,0\n^C\n");
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("*Invalid selection*"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("0 found"), std::string::npos) << run.output;
    EXPECT_NE(Find(SavedTexts(), L"A", 0), nullptr);
}

}  // namespace
