// The clean-up object: its paths, its linetype names, the shared settings, the log and the
// snapshot of model-space ids.
#include <gtest/gtest.h>

#include "cleanup_fixture.hpp"
#include "platform/db/line.hpp"

namespace {

class CleanupFrame : public CleanupTest {};

TEST_F(CleanupFrame, constructor_reads_linetype_names_and_sets_paths) {
    WriteIni(L"[public]\r\nStrDottedLineType=HIDDEN\r\nStrSolidLineType=CONTINUOUS\r\n");
    ClassInterfaceData& cleanup = Cleanup();
    EXPECT_EQ(cleanup.dottedLinetype, L"HIDDEN");
    EXPECT_EQ(cleanup.solidLinetype, L"CONTINUOUS");
    EXPECT_EQ(cleanup.database, DrawingPtr());
    EXPECT_EQ(cleanup.GetUserPath(), kUserPath);
    EXPECT_EQ(CleanupGlobals->LogPath, std::wstring(kUserPath) + L"\\Log.log");
}

TEST_F(CleanupFrame, constructor_with_database_only_uses_tool_folder) {
    WriteText(L"D:\\MYTOOL\\CAD\\CAD_line.ini", L"[public]\r\nStrDottedLineType=DASHED\r\n");
    ClassInterfaceData cleanup(DrawingPtr());
    EXPECT_EQ(cleanup.GetUserPath(), L"D:\\MYTOOL\\CAD");
    EXPECT_EQ(cleanup.dottedLinetype, L"DASHED");
    EXPECT_EQ(CleanupGlobals->LogPath, L"D:\\MYTOOL\\CAD\\Log.log");
}

TEST_F(CleanupFrame, default_constructor_keeps_paths_and_init_keeps_database) {
    Cleanup();
    ClassInterfaceData later;
    EXPECT_EQ(later.GetUserPath(), kUserPath);
    EXPECT_TRUE(later.dottedLinetype.empty());
    later.Init(DrawingPtr());
    EXPECT_EQ(later.database, DrawingPtr());
}

TEST_F(CleanupFrame, instances_share_user_path) {
    ClassInterfaceData& first = Cleanup();
    ClassInterfaceData second;
    second.SetUserPath(L"D:\\elsewhere");
    EXPECT_EQ(first.GetUserPath(), L"D:\\elsewhere");
}

TEST_F(CleanupFrame, set_log_path_of_missing_file_keeps_earlier_path) {
    ClassInterfaceData& cleanup = Cleanup();
    cleanup.SetLogPath(L"D:\\MYTOOL\\CAD\\Log.log");
    EXPECT_EQ(CleanupGlobals->LogPath, std::wstring(kUserPath) + L"\\Log.log");
    WriteAt(L"D:\\MYTOOL\\CAD\\Log.log", "");
    cleanup.SetLogPath(L"D:\\MYTOOL\\CAD\\Log.log");
    EXPECT_EQ(CleanupGlobals->LogPath, L"D:\\MYTOOL\\CAD\\Log.log");
}

TEST_F(CleanupFrame, set_user_path_does_not_read_names_again) {
    WriteIni(L"[public]\r\nStrDottedLineType=HIDDEN\r\n");
    ClassInterfaceData& cleanup = Cleanup();
    cleanup.SetUserPath(L"D:\\other");
    EXPECT_EQ(cleanup.GetUserPath(), L"D:\\other");
    EXPECT_EQ(cleanup.dottedLinetype, L"HIDDEN");
}

TEST(CleanupSettings, records_start_with_their_load_values) {
    CleanupState state;
    EXPECT_EQ(state.splineToPline->Tolerance, 0.02);
    EXPECT_EQ(state.splineToPline->EqualDivision, 10);
    EXPECT_EQ(state.connectPline->Tolerance, 0.05);
    EXPECT_EQ(state.lineAndArcMerged->Tolerance, 0.05);
    EXPECT_EQ(state.splineToLineAndArc->ToleranceLine, 0.05);
    EXPECT_EQ(state.splineToLineAndArc->ToleranceArc, 0.05);
}

class CleanupLog : public CleanupTest {};

TEST_F(CleanupLog, log_is_written_only_when_it_exists) {
    Cleanup();
    AppendCleanupLog(L"lost\n");
    EXPECT_FALSE(ExistsAt(CleanupGlobals->LogPath));
    WriteAt(CleanupGlobals->LogPath, "");
    AppendCleanupLog(L"开始\n");
    AppendCleanupLog(L"end\n");
    EXPECT_EQ(ReadAt(CleanupGlobals->LogPath), Encoded(L"开始\r\nend\r\n"));
}

TEST_F(CleanupLog, append_makes_the_file_and_cuts_long_text) {
    EXPECT_FALSE(LogFileExists(L"D:\\logs\\x.log"));
    WriteAt(L"D:\\logs\\keep", "");
    EXPECT_EQ(LogAppend(L"D:\\logs\\x.log", std::wstring(3000, L'a')), 0);
    EXPECT_TRUE(LogFileExists(L"D:\\logs\\x.log"));
    EXPECT_EQ(ReadAt(L"D:\\logs\\x.log"), std::string(2047, 'a'));
    EXPECT_EQ(LogAppend(L"D:\\no_such_folder\\x.log", L"a"), -1);
}

class ModelSpaceIds : public CleanupTest {};

TEST_F(ModelSpaceIds, snapshot_in_drawing_order_without_erased) {
    AcDbObjectId a = AddToDrawing(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
    AcDbObjectId b = AddToDrawing(new AcDbLine(AcGePoint3d(0, 1, 0), AcGePoint3d(1, 1, 0)));
    AcDbObjectId c = AddToDrawing(new AcDbLine(AcGePoint3d(0, 2, 0), AcGePoint3d(1, 2, 0)));
    AcDbEntity* entity = nullptr;
    acdbOpenAcDbEntity(entity, b, AcDb::kForWrite);
    entity->erase();
    entity->close();
    EXPECT_EQ(GetModelSpaceIds(DrawingPtr()), (AcDbObjectIdArray{a, c}));
}

// The walk closes what it opened: the block table and the model space open for write after it.
TEST_F(ModelSpaceIds, snapshot_leaves_the_block_table_and_model_space_closed) {
    AddToDrawing(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
    EXPECT_EQ(GetModelSpaceIds(DrawingPtr()).length(), 1);
    AcDbBlockTable* blocks = nullptr;
    ASSERT_EQ(Drawing().getSymbolTable(blocks, AcDb::kForWrite), Acad::eOk);
    AcDbBlockTableRecord* model = nullptr;
    EXPECT_EQ(blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite), Acad::eOk);
    if (model) model->close();
    blocks->close();
}

TEST_F(ModelSpaceIds, model_space_open_for_read_elsewhere_gives_empty_list) {
    AddToDrawing(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
    AcDbBlockTableRecord* model = OpenModelSpace(Drawing(), AcDb::kForRead);
    EXPECT_TRUE(GetModelSpaceIds(DrawingPtr()).isEmpty());
    model->close();
    EXPECT_EQ(GetModelSpaceIds(DrawingPtr()).length(), 1);
}

}  // namespace
