// One drawing through the pipeline: conversion, reading, the steps in their order, the sheets,
// the early exit and the save.
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "platform/ed/status_bar.hpp"

namespace {

class Pipeline : public BatchTest {
protected:
    const std::wstring path_ = HandOff(L"P-1.dxf");

    void SetSundry(const std::wstring& lines) {
        WriteText(L"D:\\CZ\\config\\CAD\\CAD_standard.ini", DefaultStandard() + lines);
    }
    int OnLayerAfter(const std::wstring& layer) {
        auto db = ReadDrawing(path_);
        return db ? CountOnLayer(*db, layer) : -1;
    }
    static bool Contains(const std::wstring& text, const std::wstring& part) {
        return text.find(part) != std::wstring::npos;
    }
    static int Occurrences(const std::wstring& text, const std::wstring& part) {
        int count = 0;
        for (size_t at = text.find(part); at != std::wstring::npos; at = text.find(part, at + 1)) ++count;
        return count;
    }
};

TEST_F(Pipeline, TraceOfOneSheetNamesEveryStepInOrder) {
    SaveExport(path_);
    ProcessDrawing(path_);
    EXPECT_EQ(CgLog(), L"开始处理 " + path_ + L"读取 " + path_ + L"填写属性\n插入图框路径为D:\\CZ\\config\\标准图框\\\n\n查找图框"
                           L"主视图 准备标注取视图外框\n左视图 准备标注取视图外框\n附视图 准备标注取视图外框\n保存" +
                           path_ + L"\n关闭\n");
    EXPECT_EQ(MsgTxt(), L"设置条码样式取所有圆设置图层主视图标注左视图标注顶视图标注");
}

TEST_F(Pipeline, TwoMarkerCirclesRunTheSheetStepsTwiceAndRefillTheAttributes) {
    SaveExport(path_, 2);
    WriteText(L"D:\\CZ\\config\\标准图框\\boxsetting.txt", L"[ATTWCH]\r\n单位,模具厂\r\n");
    ReloadConfiguration();
    Module().boxSetting.attributes.push_back({L"图号", L"P-1", AcDbObjectId::kNull});
    ProcessDrawing(path_);
    EXPECT_EQ(Occurrences(CgLog(), L"填写属性\n"), 2);
    EXPECT_EQ(Occurrences(MsgTxt(), L"主视图标注左视图标注顶视图标注"), 2);
    ASSERT_EQ(Module().boxSetting.attributes.size(), 1u);
    EXPECT_EQ(Module().boxSetting.attributes[0].tag, L"单位");
}

TEST_F(Pipeline, SheetScaleAndTextPitchComeFromTheFrameWidth) {
    SaveDrawing(path_, [](AcDbDatabase& db) { AddSheet(db, AcGePoint3d(100, 100, 0), 594.0); });
    ProcessDrawing(path_);
    const DimensionState& dim = Module().dimensionState;
    EXPECT_DOUBLE_EQ(dim.sheetScale, 2.0);
    EXPECT_DOUBLE_EQ(dim.textPitch, 3.5 * 1.0 * 2.0);
    EXPECT_DOUBLE_EQ(dim.ordinateOffset, 7.0 * 2.0);
}

TEST_F(Pipeline, DrawingWithoutSheetMarkerEndsAfterTheMarkerSearchUnsaved) {
    SaveDrawing(path_, [](AcDbDatabase& db) {
        Add(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0)), L"BIGFRAM");
    });
    ProcessDrawing(path_);
    EXPECT_EQ(CgLog(), L"开始处理 " + path_ + L"读取 " + path_);
    EXPECT_EQ(MsgTxt(), L"设置条码样式取所有圆");
    EXPECT_EQ(OnLayerAfter(L"BIGFRAM"), 1);  // the erasure of construction entities never ran
    EXPECT_EQ(Module().CurrentDatabase, nullptr);
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), hostDrawing_.get());
    EXPECT_FALSE(CurrentProgressMeter().shown);
}

TEST_F(Pipeline, ConstructionEntitiesAreErasedWhenHolecaIsZero) {
    SaveExport(path_);
    ProcessDrawing(path_);
    EXPECT_EQ(OnLayerAfter(L"BIGFRAM"), 0);
    EXPECT_EQ(OnLayerAfter(L"RECT"), 0);
    EXPECT_EQ(OnLayerAfter(L"PART"), 1);
}

TEST_F(Pipeline, HolecaNotZeroKeepsTheConstructionEntities) {
    SetSundry(L"HOLECA,2\r\n");
    SaveExport(path_);
    ProcessDrawing(path_);
    EXPECT_EQ(OnLayerAfter(L"BIGFRAM"), 4);
    EXPECT_EQ(OnLayerAfter(L"RECT"), 1);
}

// The key is an integer: a value whose integer part is 0 erases like 0, any other keeps.
TEST_F(Pipeline, HolecaIsReadAsAnIntegerAndOnlyZeroErases) {
    struct Case {
        const wchar_t* value;
        int framesLeft;
    };
    for (Case c : {Case{L"0.9", 0}, Case{L"ABC", 0}, Case{L"-1", 4}, Case{L"1", 4}}) {
        SetSundry(std::wstring(L"HOLECA,") + c.value + L"\r\n");
        SaveExport(path_);
        ProcessDrawing(path_);
        EXPECT_EQ(OnLayerAfter(L"BIGFRAM"), c.framesLeft) << c.value;
    }
}

TEST_F(Pipeline, SaveqOffLogsTheSaveButLeavesTheConvertedExport) {
    SetSundry(L"SAVEQ,0\r\n");
    SaveExport(path_);
    ProcessDrawing(path_);
    EXPECT_TRUE(Contains(CgLog(), L"保存" + path_ + L"\n关闭\n"));
    EXPECT_EQ(OnLayerAfter(L"BIGFRAM"), 4);
}

TEST_F(Pipeline, DimOffWritesNoViewStepsAndViewKindKeepsItsValue) {
    SetSundry(L"DIM,0\r\n");
    SaveExport(path_);
    Module().dimensionState.viewKind = 1;
    ProcessDrawing(path_);
    EXPECT_EQ(MsgTxt(), L"设置条码样式取所有圆设置图层");
    EXPECT_EQ(Module().dimensionState.viewKind, 1);
}

TEST_F(Pipeline, DimOnLeavesViewKindAtTheTopView) {
    SaveExport(path_);
    ProcessDrawing(path_);
    EXPECT_EQ(Module().dimensionState.viewKind, 2);
}

TEST_F(Pipeline, ConfigurationIsReadAnewForEachDrawing) {
    SaveExport(path_);
    SetSundry(L"SAVEQ,0\r\n");  // written after the module was loaded
    ProcessDrawing(path_);
    EXPECT_FALSE(Module().cadStandardIni.sundry.SAVEQ);
    EXPECT_EQ(OnLayerAfter(L"BIGFRAM"), 4);
}

TEST_F(Pipeline, ConversionRewritesTheExportInThe2004Format) {
    SaveDrawing(path_, [](AcDbDatabase& db) { AddSheet(db, AcGePoint3d::kOrigin); });
    SetSundry(L"SAVEQ,0\r\n");
    ProcessDrawing(path_);
    EXPECT_NE(ReadAt(path_).find("AC1018"), std::string::npos);
    EXPECT_TRUE(ExistsAt(kConvertedTempPath));
}

TEST_F(Pipeline, MissingConversionLibraryIsReportedWithCodeMinusOneAndTheDrawingGoesOn) {
    std::filesystem::remove(ResolvePath(kDwgVerLibraryPath));
    SaveExport(path_);
    testing::internal::CaptureStderr();
    ProcessDrawing(path_);
    std::string shown = testing::internal::GetCapturedStderr();
    EXPECT_NE(WideFromUtf8(shown).find(L"转换DWG失败，失败代码:-1"), std::wstring::npos) << shown;
    EXPECT_EQ(OnLayerAfter(L"PART"), 1);
    EXPECT_EQ(OnLayerAfter(L"BIGFRAM"), 0);
}

TEST_F(Pipeline, ExceptionInTheConversionIsCaughtAndTheDrawingGoesOn) {
    InstallConversionLibrary(TAVRIK_DWGVER_THROWS);
    SaveExport(path_);
    ProcessDrawing(path_);
    EXPECT_TRUE(Contains(CgLog(), L"\n关闭\n"));
    EXPECT_EQ(OnLayerAfter(L"BIGFRAM"), 0);
}

TEST_F(Pipeline, FailedCopyAfterTheDeleteLosesTheDrawingAndEndsEarly) {
    InstallConversionLibrary(TAVRIK_DWGVER_WRITES_NOTHING);
    SaveExport(path_);
    ProcessDrawing(path_);
    EXPECT_FALSE(ExistsAt(path_));
    EXPECT_EQ(CgLog(), L"开始处理 " + path_ + L"读取 " + path_);
}

TEST_F(Pipeline, UnreadableDrawingEndsEarlyWithNothingSaved) {
    WriteAt(path_, "this is not a drawing");
    ProcessDrawing(path_);
    EXPECT_EQ(ReadAt(path_), "this is not a drawing");
    EXPECT_EQ(MsgTxt(), L"设置条码样式取所有圆");
}

TEST_F(Pipeline, ProgressMeterIsRestoredAtTheEnd) {
    SaveExport(path_, 3);
    ProcessDrawing(path_);
    EXPECT_FALSE(CurrentProgressMeter().shown);
}

TEST_F(Pipeline, EachDrawingAddsAWriteLockOnTheCurrentDocument) {
    SaveExport(path_);
    ProcessDrawing(path_);
    ProcessDrawing(path_);
    EXPECT_EQ(acDocManager->curDocument()->lockCount(), 2);
    EXPECT_EQ(acDocManager->curDocument()->lockMode(), AcAp::kWrite);
}

TEST_F(Pipeline, AllEntityIdsKeepTheModelSpaceOfTheLatestDrawing) {
    SaveExport(path_, 2);
    ProcessDrawing(path_);
    EXPECT_EQ(Module().AllEntityIds.length(), 12);
}

TEST_F(Pipeline, BarcodeTextsGetTheBarStyle) {
    SaveDrawing(path_, [](AcDbDatabase& db) {
        AddSheet(db, AcGePoint3d::kOrigin);
        AcDbTextStyleTable* styles = nullptr;
        db.getSymbolTable(styles, AcDb::kForWrite);
        auto* bar = new AcDbTextStyleTableRecord;
        bar->setName(L"bar");
        styles->add(bar);
        bar->close();
        styles->close();
        Add(db, new AcDbText(AcGePoint3d(10, 10, 0), L"*P-1*", AcDbObjectId::kNull, 5.0, 0.0), L"TEXT");
    });
    ProcessDrawing(path_);
    auto db = ReadDrawing(path_);
    ASSERT_TRUE(db);
    AcDbTextStyleTable* styles = nullptr;
    db->getSymbolTable(styles, AcDb::kForRead);
    AcDbObjectId bar;
    styles->getAt(L"bar", bar);
    styles->close();
    bool styled = false;
    AcDbBlockTable* blocks = nullptr;
    db->getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForRead);
    blocks->close();
    for (const AcDbObjectId& id : model->entityIds()) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
        if (auto* text = AcDbText::cast(entity)) styled = text->textStyle() == bar;
        entity->close();
    }
    model->close();
    EXPECT_TRUE(styled);
}

}  // namespace
