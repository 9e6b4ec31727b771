// Saving through the host's entry points: the target's extension chooses the format (AC1018
// DWG for ".dwg" in any case, DXF otherwise), the save is atomic, and what the DWG holds reads
// back.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/dxf/support.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "platform/win/faults.hpp"
#include "platform/win/host_state.hpp"
#include "platform/win/paths.hpp"
#include "platform/win/recycle.hpp"
#include "shared_folder.hpp"

namespace {

namespace fs = std::filesystem;

// A drawing of one line on layer PART in linetype HIDDEN, which no table record defines.
void DrawLine(AcDbDatabase& db) {
    AcDbBlockTable* blocks = nullptr;
    db.getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
    blocks->close();
    auto* line = new AcDbLine(AcGePoint3d(1, 2, 0), AcGePoint3d(30, 40, 0));
    line->setDatabaseDefaults(&db);
    line->setLayer(L"PART");
    line->setLinetypeName(L"HIDDEN");
    model->appendAcDbEntity(line);
    line->close();
    model->close();
}

std::string FirstBytes(const fs::path& path, std::size_t count) {
    std::ifstream in(path, std::ios::binary);
    std::string head(count, '\0');
    in.read(head.data(), static_cast<std::streamsize>(count));
    head.resize(static_cast<std::size_t>(in.gcount()));
    return head;
}

// The lines of the model space of a drawing read from `path`, as "layer linetype x0,y0-x1,y1".
std::vector<std::string> LinesOf(const fs::path& path) {
    AcDbDatabase db(false, true);
    EXPECT_EQ(db.readDwgFile(path.wstring().c_str()), Acad::eOk);
    AcDbBlockTable* blocks = nullptr;
    db.getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForRead);
    blocks->close();
    std::vector<std::string> out;
    AcDbBlockTableRecordIterator* it = nullptr;
    model->newIterator(it);
    for (; !it->done(); it->step()) {
        AcDbEntity* entity = nullptr;
        it->getEntity(entity, AcDb::kForRead);
        if (auto* line = AcDbLine::cast(entity)) {
            out.push_back(dxf::Utf8(line->layer()) + " " + dxf::Utf8(line->linetype()) + " " +
                          std::to_string(line->startPoint().x) + "," + std::to_string(line->startPoint().y) + "-" +
                          std::to_string(line->endPoint().x) + "," + std::to_string(line->endPoint().y));
        }
        entity->close();
    }
    delete it;
    model->close();
    return out;
}

const std::vector<std::string> kExpectedLines = {"PART HIDDEN 1.000000,2.000000-30.000000,40.000000"};

struct SaveCase {
    const char* name;
    const char* head;  // the first bytes of the file written
};

class SaveByName : public ::testing::TestWithParam<SaveCase> {};

TEST_P(SaveByName, extension_chooses_the_format_and_the_drawing_reads_back) {
    const fs::path dir = dxftest::TempDir("save_by_name");
    const fs::path target = dir / GetParam().name;
    {
        AcDbDatabase db(true, false);
        DrawLine(db);
        ASSERT_EQ(db.saveAs(target.wstring().c_str()), Acad::eOk);
        EXPECT_EQ(db.filename(), target.wstring());
    }
    EXPECT_EQ(FirstBytes(target, 6), GetParam().head);
    EXPECT_EQ(LinesOf(target), kExpectedLines);
    fs::remove_all(dir);
}

INSTANTIATE_TEST_SUITE_P(Names, SaveByName,
                         ::testing::Values(SaveCase{"plate.dwg", "AC1018"}, SaveCase{"PLATE.DWG", "AC1018"},
                                           SaveCase{"plate.Dwg", "AC1018"}, SaveCase{"plate.dxf", "  0\nSE"},
                                           SaveCase{"plate.dwg.dxf", "  0\nSE"},
                                           SaveCase{"plate_dwg", "  0\nSE"}, SaveCase{".dwg", "AC1018"},
                                           SaveCase{"dwg", "  0\nSE"}));

struct NameCase {
    const char* name;
    bool dwg;
};

class DwgName : public ::testing::TestWithParam<NameCase> {};

// The name asks for DWG when its last four characters are ".dwg" in any case; a shorter name
// never does.
TEST_P(DwgName, ends_in_dot_dwg) { EXPECT_EQ(dwg::NamesDwgFile(GetParam().name), GetParam().dwg); }

INSTANTIATE_TEST_SUITE_P(Names, DwgName,
                         ::testing::Values(NameCase{"", false}, NameCase{"x", false}, NameCase{"dwg", false},
                                           NameCase{".dwg", true}, NameCase{".DwG", true}, NameCase{"a.dwg", true},
                                           NameCase{"adwg", false}, NameCase{"a.dwg ", false},
                                           NameCase{"a.dxf", false}),
                         [](const auto& info) {
                             std::string name = "name_" + std::to_string(info.index);
                             return name;
                         });

TEST(SaveAs2004, dwg_name_writes_ac1018_over_the_file_it_replaces_and_leaves_no_temporary) {
    const fs::path dir = dxftest::TempDir("save_2004");
    const fs::path target = dir / "export.dwg";
    std::ofstream(target) << "  0\nSECTION\n  2\nENTITIES\n  0\nENDSEC\n  0\nEOF\n";
    AcDbDatabase db(true, false);
    DrawLine(db);
    ASSERT_EQ(acdbSaveAs2004(&db, target.wstring().c_str()), Acad::eOk);
    EXPECT_EQ(FirstBytes(target, 6), "AC1018");
    EXPECT_EQ(LinesOf(target), kExpectedLines);
    int files = 0;
    for (const auto& entry : fs::directory_iterator(dir)) files += entry.path().filename() == "export.dwg" ? 1 : 100;
    EXPECT_EQ(files, 1);
    fs::remove_all(dir);
}

TEST(SaveAs2004, dwg_save_into_a_missing_folder_fails_and_names_the_file) {
    const fs::path dir = dxftest::TempDir("save_missing");
    const fs::path target = dir / "no_such_folder" / "export.dwg";
    AcDbDatabase db(true, false);
    DrawLine(db);
    EXPECT_EQ(acdbSaveAs2004(&db, target.wstring().c_str()), Acad::eFileAccessErr);
    EXPECT_NE(db.lastError().find(L"export.dwg"), std::wstring::npos);
    EXPECT_FALSE(fs::exists(target));
    fs::remove_all(dir);
}

TEST(SaveAs2004, dwg_save_over_a_folder_fails_and_says_so) {
    const fs::path dir = dxftest::TempDir("save_folder");
    const fs::path target = dir / "export.dwg";
    fs::create_directories(target);
    AcDbDatabase db(true, false);
    DrawLine(db);
    EXPECT_EQ(acdbSaveAs2004(&db, target.wstring().c_str()), Acad::eFileAccessErr);
    EXPECT_EQ(db.lastError(), target.wstring() + L":0: DXF008 cannot save: a folder stands at that name");
    EXPECT_TRUE(fs::is_directory(target));
    fs::remove_all(dir);
}

TEST(SaveAs2004, dwg_save_to_a_full_drive_fails_and_says_so) {
    const fs::path target = DriveFolder(L'Q') / "full.dwg";
    ::setenv(kFullDriveVariable, "Q", 1);
    AcDbDatabase db(true, false);
    DrawLine(db);
    const Acad::ErrorStatus es = acdbSaveAs2004(&db, target.wstring().c_str());
    ::unsetenv(kFullDriveVariable);
    EXPECT_EQ(es, Acad::eFileAccessErr);
    EXPECT_EQ(db.lastError(), target.wstring() + L":0: DXF008 cannot write: No space left on device");
    EXPECT_FALSE(fs::exists(target));
}

// Inside the prefix the drawing a save replaces is first kept in the recycle folder: where a
// file stands in the folder's place, the save fails, says why, and the old drawing stays.
TEST(SaveAs2004, dwg_save_that_cannot_keep_the_replaced_drawing_fails_and_leaves_it) {
    const fs::path dir = dxftest::TempDir("save_recycle");
    const fs::path target = dir / "export.dwg";
    std::ofstream(target) << "old";
    std::ofstream(dir / kRecycleFolderName) << "not a folder";
    const fs::path prefix = Host().prefix;
    Host().prefix = dir;
    AcDbDatabase db(true, false);
    DrawLine(db);
    const Acad::ErrorStatus es = acdbSaveAs2004(&db, target.wstring().c_str());
    Host().prefix = prefix;
    EXPECT_EQ(es, Acad::eFileAccessErr);
    const std::wstring expected =
        target.wstring() + L":0: DXF008 " + target.wstring() + L": cannot keep a copy in the recycle folder: ";
    EXPECT_EQ(db.lastError().substr(0, expected.size()), expected) << dxf::Utf8(db.lastError());
    EXPECT_EQ(FirstBytes(target, 6), "old");
    fs::remove_all(dir);
}

// The drawings the observer was told of, with whether the file was there when it was told.
std::vector<std::pair<AcDbDatabase*, std::string>>& Told() {
    static std::vector<std::pair<AcDbDatabase*, std::string>> told;
    return told;
}

void NoteSaved(AcDbDatabase& db, const std::string& path) {
    Told().push_back({&db, path + (FirstBytes(path, 6) == "AC1018" ? " written" : " missing")});
}

TEST(SaveAs2004, dwg_save_tells_the_observer_once_written_and_a_failed_one_does_not) {
    const fs::path dir = dxftest::TempDir("save_observer");
    const fs::path target = dir / "told.dwg";
    Told().clear();
    dxf::SetDrawingSavedObserver(NoteSaved);
    AcDbDatabase db(true, false);
    DrawLine(db);
    EXPECT_EQ(acdbSaveAs2004(&db, (dir / "none" / "x.dwg").wstring().c_str()), Acad::eFileAccessErr);
    EXPECT_TRUE(Told().empty());
    EXPECT_EQ(acdbSaveAs2004(&db, target.wstring().c_str()), Acad::eOk);
    dxf::SetDrawingSavedObserver(nullptr);
    ASSERT_EQ(Told().size(), 1u);
    EXPECT_EQ(Told()[0].first, &db);
    EXPECT_EQ(Told()[0].second, target.string() + " written");
    fs::remove_all(dir);
}

// A save that leaves values out of the DWG says so on standard error, a line each.
TEST(SaveAs2004, dwg_save_names_what_it_leaves_out) {
    const fs::path dir = dxftest::TempDir("save_left_out");
    const fs::path target = dir / "x0292430_c.dwg";
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfFile(db, SharedFile("corpus/dxf/x0292430_c.dxf").string()), Acad::eOk);
    ::testing::internal::CaptureStderr();
    const Acad::ErrorStatus es = db.saveAs(target.wstring().c_str());
    const std::string said = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(es, Acad::eOk);
    const std::string prefix = "saveAs: " + target.string() + ": 1 DIMSTYLE variable ";
    EXPECT_EQ(said, prefix + "270 record(s) not written (no DWG encoder)\n" + prefix +
                        "287 record(s) not written (no DWG encoder)\n");
    fs::remove_all(dir);
}

TEST(SaveAs2004, null_database_is_refused) {
    EXPECT_EQ(acdbSaveAs2004(nullptr, L"x.dwg"), Acad::eNullObjectPointer);
}

}  // namespace
