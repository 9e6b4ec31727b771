#pragma once
// A host ready for the batch, over a fresh prefix: a virtual clock (sleeps take no time), a
// first document with its drawing, the tool folder in the registry, a small drawing standard,
// the trace logs present, and the module-level objects built from them. Exported drawings are
// made in the database and saved as the exporter would leave them.
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "drawing_queries.hpp"
#include "host/module_state.hpp"
#include "module_fixture.hpp"
#include "pipeline/drawing_pipeline.hpp"
#include "pipeline/logs.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/db/text.hpp"
#include "platform/ed/documents.hpp"
#include "platform/ed/editor_state.hpp"
#include "platform/win/files.hpp"
#include "platform/win/text.hpp"

class BatchTest : public ModuleTest {
protected:
    // The standard of the tests: marker layer RECT, frame layer BIGFRAM, all switches on.
    static std::wstring DefaultStandard() {
        return L"[LAYER]\r\nRECT,RECT\r\nURECT,URECT\r\nSTAND,STAND\r\nUSTAND,USTAND\r\n"
               L"BIGFRAM,BIGFRAM\r\nFRONT,FRONT\r\nLEFT,LEFT\r\nTOP,TOP\r\nDIM,DIM\r\n"
               L"[DIMSTYLE]\r\nDIMSCALE,1\r\nDIMTXT,3.5\r\n"
               L"[SUNDRY]\r\nTAVRIK,1\r\nDIM,1\r\nSUBCIR,1\r\nSAVEQ,1\r\nHOLECA,0\r\nORDOFFSCL,2\r\n";
    }

    void SetUp() override {
        ModuleTest::SetUp();
        ResetEditorState();
        now_ = 0;
        Host().clock = {[this] { return now_; }, [this](std::uint64_t ms) { now_ += ms; }};
        hostDrawing_ = std::make_unique<AcDbDatabase>(true, false);
        acdbHostApplicationServices()->setWorkingDatabase(hostDrawing_.get());
        OpenHostDocument(hostDrawing_.get(), L"Drawing1.dwg");
        SetRegistry(L"[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment]\r\n"
                    L"\"CZConfig\"=\"D:\\\\CZ\"\r\n");
        WriteText(L"D:\\CZ\\config\\CAD\\CAD_standard.ini", DefaultStandard());
        WriteAt(kCgLogPath, "");
        WriteAt(kMsgTxtPath, "");
        InstallConversionLibrary();
        BuildModuleState();
    }

    void TearDown() override {
        DestroyModuleState();
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
        ResetEditorState();
        hostDrawing_.reset();
        ModuleTest::TearDown();
    }

    // The conversion library at its fixed path, as an installation has it (for the suites
    // that are given it).
    void InstallConversionLibrary(const char* library = nullptr) {
#ifdef TAVRIK_DWGVER_LIBRARY
        if (!library) library = TAVRIK_DWGVER_LIBRARY;
#endif
        if (!library) return;
        std::filesystem::path target = ResolvePath(kDwgVerLibraryPath);
        std::filesystem::create_directories(target.parent_path());
        std::filesystem::copy_file(library, target, std::filesystem::copy_options::overwrite_existing);
    }

    void WriteText(std::wstring_view windowsPath, std::wstring_view text) {
        WriteAt(windowsPath, Encoded(text));
    }
    // A text file as its lines read, with "\n" for the line ends that text mode writes.
    std::wstring ReadText(std::wstring_view windowsPath) {
        std::wstring text = WideFromAnsi(ReadAt(windowsPath));
        for (size_t at = text.find(L"\r\n"); at != std::wstring::npos; at = text.find(L"\r\n", at))
            text.erase(at, 1);
        return text;
    }
    std::wstring CgLog() { return ReadText(kCgLogPath); }
    std::wstring MsgTxt() { return ReadText(kMsgTxtPath); }

    // The hand-off folder and a file in it.
    static std::wstring HandOff(const std::wstring& name) {
        return L"C:\\Users\\tavrik\\AppData\\Local\\Convert\\" + name;
    }
    void WriteHandOff(const std::wstring& ugmText) { WriteText(HandOff(L"ugm.log"), ugmText); }

    // Adds an entity to the model space of `db` on `layer` (made when missing) and closes it.
    static AcDbObjectId Add(AcDbDatabase& db, AcDbEntity* entity, const std::wstring& layer = L"0") {
        AcDbLayerTable* layers = nullptr;
        db.getSymbolTable(layers, AcDb::kForWrite);
        if (!layers->has(layer)) {
            auto* record = new AcDbLayerTableRecord;
            record->setName(layer);
            layers->add(record);
            record->close();
        }
        layers->close();
        entity->setDatabaseDefaults(&db);
        entity->setLayerName(layer);
        AcDbBlockTableRecord* model = OpenModelSpace(db, AcDb::kForWrite);
        AcDbObjectId id;
        model->appendAcDbEntity(id, entity);
        model->close();
        entity->close();
        return id;
    }

    // One sheet as the exporter draws it: a marker circle on RECT at `corner` and the frame's
    // four lines on BIGFRAM, `width` by `width` x 297/420.
    static void AddSheet(AcDbDatabase& db, const AcGePoint3d& corner, double width = 420.0) {
        double height = width * 297.0 / 420.0;
        AcGePoint3d a = corner, b = corner + AcGeVector3d(width, 0, 0),
                    c = corner + AcGeVector3d(width, height, 0), d = corner + AcGeVector3d(0, height, 0);
        Add(db, new AcDbCircle(corner, AcGeVector3d::kZAxis, 5.0), L"RECT");
        Add(db, new AcDbLine(a, b), L"BIGFRAM");
        Add(db, new AcDbLine(b, c), L"BIGFRAM");
        Add(db, new AcDbLine(c, d), L"BIGFRAM");
        Add(db, new AcDbLine(d, a), L"BIGFRAM");
    }

    // Saves a drawing at a Windows path; `draw` fills its model space.
    static void SaveDrawing(const std::wstring& windowsPath, const std::function<void(AcDbDatabase&)>& draw) {
        std::filesystem::create_directories(ResolvePath(windowsPath).parent_path());
        AcDbDatabase db(true, true);
        draw(db);
        ASSERT_EQ(acdbSaveAs2004(&db, windowsPath.c_str()), Acad::eOk) << std::string(windowsPath.begin(), windowsPath.end());
    }
    // An exported drawing of `sheets` sheets side by side, with one line of geometry each.
    static void SaveExport(const std::wstring& windowsPath, int sheets = 1) {
        SaveDrawing(windowsPath, [sheets](AcDbDatabase& db) {
            for (int i = 0; i < sheets; ++i) {
                AcGePoint3d corner(500.0 * i, 0, 0);
                AddSheet(db, corner);
                Add(db, new AcDbLine(corner + AcGeVector3d(50, 50, 0), corner + AcGeVector3d(150, 50, 0)), L"PART");
            }
        });
    }

    // Reads a drawing at a Windows path; null when it does not read.
    static std::unique_ptr<AcDbDatabase> ReadDrawing(const std::wstring& windowsPath) {
        auto db = std::make_unique<AcDbDatabase>(false, true);
        if (db->readDwgFile(windowsPath.c_str(), 0x40, false, nullptr) != Acad::eOk) return nullptr;
        return db;
    }
    // The model-space entities of a drawing on a layer (any layer when empty).
    static int CountOnLayer(AcDbDatabase& db, const std::wstring& layer = L"") {
        int count = 0;
        for (const AcDbObjectId& id : ModelSpaceIds(db)) {
            AcDbEntity* entity = nullptr;
            if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
            if (layer.empty() || EqualNoCase(entity->layer(), layer)) ++count;
            entity->close();
        }
        return count;
    }

    std::uint64_t now_ = 0;
    std::unique_ptr<AcDbDatabase> hostDrawing_;
};
