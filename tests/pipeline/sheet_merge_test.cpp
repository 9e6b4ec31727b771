// The merge of a part's finished drawings into one file, and symbol drawings loaded as blocks.
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "drawing_queries.hpp"
#include "geometry_matchers.hpp"
#include "pipeline/sheet_merge.hpp"
#include "platform/ed/editor_state.hpp"

namespace {

const std::wstring kFallback = L"d:\\Mytool\\temp\\Dorvault.dwg";

class SheetMerge : public BatchTest {
protected:
    // A finished drawing with one line on PART from `from` to `to`.
    static std::wstring SaveLine(const std::wstring& path, AcGePoint3d from, AcGePoint3d to) {
        SaveDrawing(path, [&](AcDbDatabase& db) { Add(db, new AcDbLine(from, to), L"PART"); });
        return path;
    }
    static std::wstring ReadLine(const std::wstring& path) {
        return L"读入文件：" + path + L" \n0读入成功\n";
    }
    // The status with which a file does not read.
    static int ReadStatus(const std::wstring& path) {
        AcDbDatabase db(false, true);
        return db.readDwgFile(path.c_str(), 0x10, false, nullptr);
    }
    // The temporary folder of the tool, as an installation has it.
    static void MakeFallbackFolder() { std::filesystem::create_directories(ResolvePath(L"d:\\Mytool\\temp")); }
    // A file where the folder "D:\out" should be, so that nothing can be saved below it.
    void BlockTheOutFolder() { WriteAt(L"D:\\out", "a file where the folder should be"); }
    int Merge(const std::vector<std::wstring>& files, std::wstring& target) {
        return MergeDrawings(files, target, 0, 1);
    }
    // What a merge printed on the command line and showed in alerts.
    struct Shown {
        std::string printed;
        std::string alerts;
    };
    Shown MergeShowing(const std::vector<std::wstring>& files, std::wstring& target) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        Merge(files, target);
        Shown shown;
        shown.alerts = testing::internal::GetCapturedStderr();
        shown.printed = testing::internal::GetCapturedStdout();
        return shown;
    }
    static std::string FallbackAlert() {
        return "文件名 D:\\out\\P.dxf 无效!\n\n已保存到 d:\\Mytool\\temp\\Dorvault.dwg \n";
    }
};

TEST_F(SheetMerge, EmptyListAnswers53AndSavesNothing) {
    std::wstring target = L"D:\\out\\P.dxf";
    EXPECT_EQ(Merge({}, target), 53);
    EXPECT_FALSE(ExistsAt(target));
    EXPECT_EQ(CgLog(), L"");
    EXPECT_EQ(target, L"D:\\out\\P.dxf");
}

TEST_F(SheetMerge, EntitiesKeepTheirCoordinates) {
    std::wstring a = SaveLine(L"D:\\parts\\P-1.dxf", AcGePoint3d(1, 2, 0), AcGePoint3d(3, 4, 0));
    std::wstring b = SaveLine(L"D:\\parts\\P-2.dxf", AcGePoint3d(10, 20, 0), AcGePoint3d(30, 40, 0));
    std::wstring target = L"D:\\out\\P.dxf";
    EXPECT_EQ(Merge({a, b}, target), 0);
    auto merged = ReadDrawing(target);
    ASSERT_TRUE(merged);
    auto lines = ModelSpaceLines(*merged);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].first, AcGePoint3d(1, 2, 0));
    EXPECT_EQ(lines[0].second, AcGePoint3d(3, 4, 0));
    EXPECT_EQ(lines[1].first, AcGePoint3d(10, 20, 0));
    EXPECT_EQ(lines[1].second, AcGePoint3d(30, 40, 0));
}

TEST_F(SheetMerge, CgLogNamesEachFileItsStatusAndTheTarget) {
    std::wstring a = SaveLine(L"D:\\parts\\P-1.dxf", AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    std::wstring b = SaveLine(L"D:\\parts\\P-2.dxf", AcGePoint3d(0, 0, 0), AcGePoint3d(2, 0, 0));
    std::wstring target = L"D:\\out\\P.dxf";
    Merge({a, b}, target);
    EXPECT_EQ(CgLog(), ReadLine(a) + ReadLine(b) + target);
}

TEST_F(SheetMerge, UnreadableFileLogsItsStatusThenReadSuccessfullyAndIsLeftOut) {
    std::wstring good = SaveLine(L"D:\\parts\\P-1.dxf", AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    std::wstring missing = L"D:\\parts\\P-2.dxf";
    int status = ReadStatus(missing);
    ASSERT_NE(status, 0);
    std::wstring target = L"D:\\out\\P.dxf";
    EXPECT_EQ(Merge({missing, good}, target), 0);
    EXPECT_EQ(CgLog(), L"读入文件：" + missing + L" \n" + std::to_wstring(status) + L"读入成功\n" + ReadLine(good) + target);
    auto merged = ReadDrawing(target);
    ASSERT_TRUE(merged);
    EXPECT_EQ(CountOnLayer(*merged, L"PART"), 1);
}

TEST_F(SheetMerge, AllFilesUnreadableSaveAnEmptyDrawingWithTheDefaultContent) {
    std::wstring target = L"D:\\out\\P.dxf";
    EXPECT_EQ(Merge({L"D:\\parts\\P-1.dxf", L"D:\\parts\\P-2.dxf"}, target), 0);
    auto merged = ReadDrawing(target);
    ASSERT_TRUE(merged);
    EXPECT_EQ(CountOnLayer(*merged), 0);
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(merged->getSymbolTable(layers, AcDb::kForRead), Acad::eOk);
    EXPECT_TRUE(layers->has(L"0"));
    layers->close();
    EXPECT_FALSE(ExistsAt(kFallback));
}

TEST_F(SheetMerge, BlankInTheTargetNameIsRemovedBeforeTheSaveWithoutFallback) {
    std::wstring a = SaveLine(L"D:\\parts\\P-1.dxf", AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    std::wstring target = L"D:\\out\\my part.dxf";
    Shown shown = MergeShowing({a}, target);
    EXPECT_EQ(target, L"D:\\out\\mypart.dxf");
    EXPECT_TRUE(ExistsAt(L"D:\\out\\mypart.dxf"));
    EXPECT_FALSE(ExistsAt(L"D:\\out\\my part.dxf"));
    EXPECT_FALSE(ExistsAt(kFallback));
    EXPECT_EQ(shown.alerts, "");
}

TEST_F(SheetMerge, FailedSaveFallsBackToDorvaultNamesItInTheTargetAndAlerts) {
    std::wstring a = SaveLine(L"D:\\parts\\P-1.dxf", AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    MakeFallbackFolder();
    BlockTheOutFolder();
    std::wstring target = L"D:\\out\\P.dxf";
    Shown shown = MergeShowing({a}, target);
    EXPECT_EQ(target, kFallback);
    auto saved = ReadDrawing(kFallback);
    ASSERT_TRUE(saved);
    EXPECT_EQ(CountOnLayer(*saved, L"PART"), 1);
    EXPECT_EQ(shown.printed, "\n保存 d:\\Mytool\\temp\\Dorvault.dwg 成功!");
    EXPECT_EQ(shown.alerts, FallbackAlert());
    EXPECT_EQ(CgLog(), ReadLine(a) + kFallback);
}

TEST_F(SheetMerge, FailedFallbackSaveStillAlertsAndNamesTheFallback) {
    std::wstring a = SaveLine(L"D:\\parts\\P-1.dxf", AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    BlockTheOutFolder();
    std::wstring target = L"D:\\out\\P.dxf";
    Shown shown = MergeShowing({a}, target);
    EXPECT_EQ(shown.printed, "");
    EXPECT_EQ(shown.alerts, FallbackAlert());
    EXPECT_EQ(target, kFallback);
    EXPECT_FALSE(ExistsAt(kFallback));
}

TEST_F(SheetMerge, AFolderAtTheTargetHidesTheFailedSave) {
    std::wstring a = SaveLine(L"D:\\parts\\P-1.dxf", AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    std::filesystem::create_directories(ResolvePath(L"D:\\out\\P.dxf"));
    std::wstring target = L"D:\\out\\P.dxf";
    Merge({a}, target);
    EXPECT_EQ(target, L"D:\\out\\P.dxf");
    EXPECT_FALSE(ExistsAt(kFallback));
}

TEST_F(SheetMerge, BarcodeTextsOfTheMergedDrawingGetTheStyleBar) {
    std::wstring a = L"D:\\parts\\P-1.dxf";
    SaveDrawing(a, [](AcDbDatabase& db) {
        AcDbObjectId bar = AddTextStyle(db, L"bar");
        Add(db, new AcDbText(AcGePoint3d(0, 0, 0), L"*P-1*", db.textstyle()));
        Add(db, new AcDbText(AcGePoint3d(0, 10, 0), L"note", bar));
        Add(db, new AcDbText(AcGePoint3d(0, 20, 0), L"P-1", db.textstyle()));
    });
    std::wstring target = L"D:\\out\\P.dxf";
    Merge({a}, target);
    auto merged = ReadDrawing(target);
    ASSERT_TRUE(merged);
    std::vector<AcDbObjectId> texts = ModelSpaceTexts(*merged);
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(TextStyleName(texts[0]), L"bar");
    EXPECT_EQ(TextStyleName(texts[2]), L"Standard");
}

TEST_F(SheetMerge, WorkingDrawingIsRestoredAndTheDocumentStaysLockedForWrite) {
    std::wstring a = SaveLine(L"D:\\parts\\P-1.dxf", AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    acDocManager->setDefaultFormatForSave(36);
    std::wstring target = L"D:\\out\\P.dxf";
    Merge({a}, target);
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), hostDrawing_.get());
    EXPECT_EQ(acDocManager->curDocument()->lockMode(), AcAp::kWrite);
    EXPECT_EQ(acDocManager->curDocument()->lockCount(), 1);
    EXPECT_EQ(acDocManager->defaultFormatForSave(), 24);
}

TEST(RemoveBadNameCharacters, RemovesAsterisksQuestionMarksAnglesBarsAndBlanks) {
    std::wstring text = L"D:\\o u t\\*a?b<c>d|e f.dxf";
    RemoveBadNameCharacters(text);
    EXPECT_EQ(text, L"D:\\out\\abcdef.dxf");
}

// Symbol drawings brought into a drawing as blocks.
class SymbolInsert : public SheetMerge {
protected:
    void SetUp() override {
        SheetMerge::SetUp();
        drawing_ = std::make_unique<AcDbDatabase>(true, false);
    }
    void TearDown() override {
        for (void* entity : entities_) delete static_cast<AcDbEntity*>(entity);
        drawing_.reset();
        SheetMerge::TearDown();
    }
    // A symbol of a circle of radius 2 about the origin and a line from it along x.
    static std::wstring SaveSymbol(const std::wstring& path) {
        SaveDrawing(path, [](AcDbDatabase& db) {
            Add(db, new AcDbCircle(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 2.0));
            Add(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(2, 0, 0)));
        });
        return path;
    }
    int Insert(const std::wstring& file, AcGePoint3d position = AcGePoint3d(10, 20, 0), double scale = 2.0) {
        for (void* entity : entities_) delete static_cast<AcDbEntity*>(entity);
        entities_.removeAll();
        return InsertDrawingEntities(drawing_.get(), file, entities_, position, scale);
    }
    // The log of a call that finds the block in the drawing.
    static std::wstring KnownBlockLog(const std::wstring& file) {
        return L"开始插入文件: " + file + L"\n取得块表返回值: 0\n换孔开始\n";
    }
    static std::wstring ReadLog(const std::wstring& file) {
        return L"建新数据库\n读入文件" + file + L"\n上一次在这里出错，如果这行是最后一行，错误没有解除\n错误行已运行通过\n";
    }
    AcDbCircle* FirstCircle() const {
        for (void* entity : entities_)
            if (auto* circle = AcDbCircle::cast(static_cast<AcDbEntity*>(entity))) return circle;
        return nullptr;
    }

    std::unique_ptr<AcDbDatabase> drawing_;
    AcDbVoidPtrArray entities_;
};

TEST_F(SymbolInsert, FirstInsertReadsTheFileAndExplodesAScaledReference) {
    std::wstring file = SaveSymbol(L"D:\\sym\\HOLE.dxf");
    EXPECT_EQ(Insert(file), 0);
    ASSERT_EQ(entities_.length(), 2);
    AcDbCircle* circle = FirstCircle();
    ASSERT_NE(circle, nullptr);
    EXPECT_EQ(circle->center(), AcGePoint3d(10, 20, 0));
    EXPECT_DOUBLE_EQ(circle->radius(), 4.0);
    for (void* entity : entities_) EXPECT_TRUE(static_cast<AcDbEntity*>(entity)->objectId().isNull());
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), drawing_.get());
}

TEST_F(SymbolInsert, FirstInsertLogsEachStep) {
    std::wstring file = SaveSymbol(L"D:\\sym\\HOLE.dxf");
    Insert(file);
    EXPECT_EQ(CgLog(), KnownBlockLog(file) + ReadLog(file) + L"开始插入文件 " + file +
                           L"\n错误信息：0\n已插入\n打散块已打散");
}

TEST_F(SymbolInsert, SecondInsertOfTheSameFileReadsNoFile) {
    std::wstring file = SaveSymbol(L"D:\\sym\\HOLE.dxf");
    ASSERT_EQ(Insert(file), 0);
    std::filesystem::remove(ResolvePath(file));
    WriteAt(kCgLogPath, "");
    EXPECT_EQ(Insert(file, AcGePoint3d(5, 5, 0), 1.0), 0);
    EXPECT_EQ(CgLog(), KnownBlockLog(file) + L"打散块已打散");
    ASSERT_EQ(entities_.length(), 2);
    EXPECT_EQ(FirstCircle()->center(), AcGePoint3d(5, 5, 0));
}

TEST_F(SymbolInsert, SymbolOfTheSameTitleInAnotherFolderUsesTheBlockAlreadyLoaded) {
    std::wstring first = SaveSymbol(L"D:\\sym\\HOLE.dxf");
    std::wstring second = SaveLine(L"D:\\other\\HOLE.dxf", AcGePoint3d(0, 0, 0), AcGePoint3d(9, 9, 0));
    ASSERT_EQ(Insert(first), 0);
    WriteAt(kCgLogPath, "");
    EXPECT_EQ(Insert(second), 0);
    EXPECT_EQ(CgLog(), KnownBlockLog(second) + L"打散块已打散");
    ASSERT_EQ(entities_.length(), 2);
    EXPECT_NE(FirstCircle(), nullptr);
}

TEST_F(SymbolInsert, UnreadableFileAnswers76AndLeavesTheScratchDrawingWorking) {
    std::wstring file = L"D:\\sym\\NONE.dxf";
    EXPECT_EQ(Insert(file), 76);
    EXPECT_EQ(CgLog(), KnownBlockLog(file) + ReadLog(file));
    EXPECT_TRUE(entities_.isEmpty());
    AcDbDatabase* working = acdbHostApplicationServices()->workingDatabase();
    EXPECT_NE(working, drawing_.get());
    EXPECT_NE(working, hostDrawing_.get());
}

TEST_F(SymbolInsert, SymbolWithoutABlockAfterTheAttemptAnswers16) {
    std::wstring file = SaveSymbol(L"D:\\sym\\HOLE");
    EXPECT_EQ(Insert(file), 16);
    EXPECT_TRUE(entities_.isEmpty());
    EXPECT_EQ(CgLog().find(L"打散块"), std::wstring::npos);
    EXPECT_NE(CgLog().find(L"已插入\n"), std::wstring::npos);
}

}  // namespace
