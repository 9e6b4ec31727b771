#include "pipeline/drawing_pipeline.hpp"

#include <memory>
#include <vector>

#include "cleanup/class_interface_data.hpp"
#include "config/config_root.hpp"
#include "dimension/view_analysis.hpp"
#include "host/module_state.hpp"
#include "pipeline/logs.hpp"
#include "platform/db/circle.hpp"
#include "platform/ed/documents.hpp"
#include "platform/ed/status_bar.hpp"
#include "platform/win/codepage.hpp"
#include "platform/win/files.hpp"
#include "platform/win/library.hpp"
#include "platform/win/messages.hpp"
#include "standard/db_helpers.hpp"
#include "standard/hole_substitution.hpp"
#include "standard/layers_text.hpp"
#include "standard/sheet_frame.hpp"

int ConvertDwgVersion(const std::wstring& source, const std::wstring& target, int version, int flags) {
    using OpenFunction = void (*)();
    using ToVersionFunction = int (*)(const wchar_t*, int, const wchar_t*, int);
    HMODULE library = LoadLibraryW(kDwgVerLibraryPath);
    if (!library) return -1;
    auto open = reinterpret_cast<OpenFunction>(GetProcAddress(library, "openDWGVER"));
    auto close = reinterpret_cast<OpenFunction>(GetProcAddress(library, "closeDWGVER"));
    auto toVersion = reinterpret_cast<ToVersionFunction>(GetProcAddress(library, "toVersion"));
    if (!open) return -1;
    open();
    int result = toVersion(source.c_str(), flags, target.c_str(), version);
    if (close) close();
    return result;  // the library stays loaded
}

namespace {

void LogTrace(const std::wstring& text) { AppendLogText(text, kCgLogPath); }
void LogStep(const std::wstring& text) { AppendLogText(text, kMsgTxtPath); }

// The marker layers of a sheet, from a fresh read of the configuration.
std::vector<std::wstring> FrameLayers() {
    const LayerKeys& layers = Module().cadStandardIni.layer;
    return {layers.RECT, layers.URECT, layers.STAND, layers.USTAND};
}

// Replaces the exported file by a copy in the version the host reads. A failure is shown to the
// user, and the pipeline goes on with the file as it is.
void ConvertExportedFile(const std::wstring& path) {
    _wmkdir(L"D:\\MYTOOL");
    _wmkdir(L"D:\\MYTOOL\\application");
    _wmkdir(L"D:\\MYTOOL\\application\\temp");
    DeleteFileW(kConvertedTempPath);
    try {
        int result = ConvertDwgVersion(path, kConvertedTempPath, 8, 0);
        if (result != 0) {
            std::string text = AnsiFromWide(L"转换DWG失败，失败代码:" + std::to_wstring(result));
            MessageBoxA(nullptr, text.c_str(), AnsiFromWide(L"提示").c_str(), 0x10);
        } else {
            DeleteFileW(path.c_str());
            CopyFileW(kConvertedTempPath, path.c_str(), FALSE);
        }
    } catch (...) {
        // Whatever the library throws ends the conversion only.
    }
}

void CollectAllEntityIds(AcDbDatabase* db) {
    AcDbObjectIdArray& ids = Module().AllEntityIds;
    ids.setLogicalLength(0);
    AcDbBlockTableRecordIterator* iterator = nullptr;
    if (OpenModelSpaceIterator(iterator, db) != 0) return;
    std::unique_ptr<AcDbBlockTableRecordIterator> walk(iterator);
    for (walk->start(true, true); !walk->done(); walk->step(true, true)) {
        AcDbObjectId id;
        if (walk->getEntityId(id) == Acad::eOk) ids.append(id);
    }
}

AcGePoint3d MarkerCentre(AcDbObjectId marker) {
    AcDbEntity* entity = nullptr;
    AcGePoint3d centre;
    if (acdbOpenAcDbEntity(entity, marker, AcDb::kForRead) != Acad::eOk) return centre;
    if (auto* circle = AcDbCircle::cast(entity)) centre = circle->center();
    entity->close();
    return centre;
}

// The sheet's scale from the frame's width, and the text pitch and ordinate offset from it.
void ScaleSheet(ModuleState& state) {
    DimensionState& dim = state.dimensionState;
    const CadStandardIni& ini = state.cadStandardIni;
    dim.sheetScale = (dim.frameBox.maxPoint().x - dim.frameBox.minPoint().x) / 297.0;
    dim.textPitch = ini.dimStyle.DIMTXT * ini.dimStyle.DIMSCALE * dim.sheetScale;
    dim.ordinateOffset = dim.textPitch * ini.sundry.ORDOFFSCL;
}

// One sheet: its marker's centre, scale, attributes and views.
void ProcessSheet(ModuleState& state, AcDbObjectId marker, int index) {
    AcGePoint3d sheetOrigin = MarkerCentre(marker);
    MeasureSheetFrame(sheetOrigin, state.dimensionState.frameBox, state.CurrentDatabase);
    ScaleSheet(state);
    state.boxSetting.Read();
    LogTrace(L"填写属性\n");
    CollectAttributeTexts(state.CurrentDatabase);
    LogTrace(L"插入图框路径为" + state.FrameFolder + L"\n");
    if (state.cadStandardIni.sundry.TAVRIK) {
        AcDbObjectIdArray entitySet;
        InsertSheetFrame(state.FrameFolder, sheetOrigin, entitySet);
    }
    if (state.cadStandardIni.sundry.DIM) {
        static const wchar_t* const kViewSteps[] = {L"主视图标注", L"左视图标注", L"顶视图标注"};
        const LayerKeys& layers = state.cadStandardIni.layer;
        const std::wstring* viewLayers[] = {&layers.FRONT, &layers.LEFT, &layers.TOP};
        for (int kind = 0; kind < 3; ++kind) {
            LogStep(kViewSteps[kind]);
            state.dimensionState.viewKind = kind;
            DimensionView(*viewLayers[kind]);
        }
    }
    acedSetStatusBarProgressMeterPos(index);
}

// Erases the exporter's construction entities; one that does not open is passed over. The
// erased entities are not closed.
void EraseSheetEntities(const AcDbObjectIdArray& sheetEntities) {
    for (const AcDbObjectId& id : sheetEntities) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite) == Acad::eOk) entity->erase();
    }
}

// The clean-ups that run before the texts and layers, on a clean-up object of the drawing that
// the pipeline keeps for the last clean-ups and never frees.
ClassInterfaceData* RunFirstCleanups(AcDbDatabase* db) {
    std::wstring userPath = GetConfigRoot() + L"\\CAD";
    auto* cleanup = new ClassInterfaceData(db, userPath);
    cleanup->SetLogPath(kLogLogPath);
    cleanup->SetUserPath(userPath);
    cleanup->FunCoorToZero();
    cleanup->FunSplineToLineAndArc();
    cleanup->FunSplineToPline();
    cleanup->FunLineAndArcMerged();
    cleanup->FunChangeColor();
    cleanup->FunModifyColor();
    cleanup->FunDeleteRepeatingLine();
    cleanup->FunConnectPline();
    cleanup->FunLineDeviation();
    return cleanup;
}

void RunLastCleanups(ClassInterfaceData* cleanup) {
    cleanup->FunDeleteSmallLineAndPoint();
    cleanup->FunUpLineScale();
    cleanup->FunLineWidthToZero();
}

// Replaces the marked holes by their symbols; a drawing without points has no hole work at all.
void SubstituteDrawingHoles(ModuleState& state, const AcArray<tPt>& drawingPoints, const std::wstring& path) {
    if (drawingPoints.isEmpty()) return;
    AppendLogText(L"换孔\n", kCgLogPath);
    std::wstring configPath = GetConfigRoot() + L"\\CAD\\CAD_hole.ini";
    HoleSubstitution holes(drawingPoints, configPath);
    holes.ReadHoleConfig(configPath);
    AppendLogText(L"准备 换孔\n", kCgLogPath);
    AppendLogInt(state.cadStandardIni.sundry.SUBCIR ? 1 : 0, kCgLogPath);
    AppendLogText(L"\n", kCgLogPath);
    if (state.cadStandardIni.sundry.SUBCIR) holes.SubstituteHoles(state.CurrentDatabase, path, state.targetLayer);
}

// Ends the drawing: the former working database comes back and the drawing's goes.
void ReleaseDrawing(ModuleState& state, AcDbDatabase* previousDatabase) {
    acdbHostApplicationServices()->setWorkingDatabase(previousDatabase);
    delete state.CurrentDatabase;
    state.CurrentDatabase = nullptr;
}

}  // namespace

void ProcessDrawing(const std::wstring& path) {
    ModuleState& state = Module();
    AcDbDatabase* previousDatabase = acdbHostApplicationServices()->workingDatabase();
    ReloadConfiguration();
    std::vector<std::wstring> frameLayers = FrameLayers();
    LogTrace(L"开始处理 " + path);
    acDocManager->lockDocument(acDocManager->curDocument(), AcAp::kWrite, nullptr, nullptr, true);
    state.CurrentDatabase = new AcDbDatabase(false, false);
    AcDbDatabase* db = state.CurrentDatabase;
    LogTrace(L"读取 " + path);
    ConvertExportedFile(path);
    db->readDwgFile(path.c_str(), 0x40, false, nullptr);
    acdbHostApplicationServices()->setWorkingDatabase(db);
    AcArray<tPt> drawingPoints;
    CollectPoints(db, drawingPoints);
    FlipMirroredCurves(db);
    CollectAllEntityIds(db);
    ClassInterfaceData* cleanup = RunFirstCleanups(db);
    ExplodeMText(db);
    NormalizeDiameterSign(db);

    ApplyTextStyle(L"bar", L"`**`*", db);
    LogStep(L"设置条码样式");
    SetStyleFonts(L"standard", db);
    SetStyleFonts(L"chinesef_fs", db);

    LogStep(L"取所有圆");
    AcDbObjectIdArray sheetMarkers;
    if (FindSheetMarkers(frameLayers, db, sheetMarkers) != 0) {
        ReleaseDrawing(state, previousDatabase);
        return;
    }
    AcDbObjectIdArray sheetEntities;
    CollectSheetEntities(sheetEntities, db);
    LogStep(L"设置图层");
    if (FindLayerByFileName(db) == 1) ConvertLayersByColor(db);
    std::vector<dwgmatch> matchCopy = state.boxSetting.frameMatches;
    state.frameName = MatchFrameName(matchCopy, path);

    std::wstring message = L"正在处理 " + path + L" ,请稍等";
    acedSetStatusBarProgressMeter(message.c_str(), 0, sheetMarkers.length());
    for (int i = 0; i < sheetMarkers.length(); ++i) ProcessSheet(state, sheetMarkers[i], i);
    db->updateExt(false);
    SubstituteDrawingHoles(state, drawingPoints, path);

    acdbHostApplicationServices()->setWorkingDatabase(db);
    ConvertLayersByTable(db);
    GatherDimensions(state.cadStandardIni.layer.DIM, db);
    if (state.cadStandardIni.sundry.HOLECA == 0) EraseSheetEntities(sheetEntities);
    ZoomExtents(db);
    RunLastCleanups(cleanup);
    LogTrace(L"保存" + path);
    if (state.cadStandardIni.sundry.SAVEQ) acdbSaveAs2004(db, path.c_str());
    LogTrace(L"\n关闭\n");
    ReleaseDrawing(state, previousDatabase);
    acedRestoreStatusBar();
}
