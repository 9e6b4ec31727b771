#pragma once
// A drawing for the clean-ups: the host's working drawing, a CAD_line.ini written for the test
// below the folder D:\CZ\config\CAD, and the clean-up object built on both.
#include <memory>
#include <string>

#include "batch_fixture.hpp"
#include "cleanup/class_interface_data.hpp"

class CleanupTest : public BatchTest {
protected:
    static constexpr const wchar_t* kUserPath = L"D:\\CZ\\config\\CAD";

    AcDbDatabase& Drawing() { return *hostDrawing_; }
    AcDbDatabase* DrawingPtr() { return hostDrawing_.get(); }
    std::wstring IniPath() { return CadLineIniPath(kUserPath); }
    void WriteIni(const std::wstring& text) { WriteText(IniPath(), text); }
    // The clean-up object on the working drawing, after CAD_line.ini is written.
    ClassInterfaceData& Cleanup() {
        cleanup_ = std::make_unique<ClassInterfaceData>(DrawingPtr(), kUserPath);
        return *cleanup_;
    }
    AcDbObjectId AddToDrawing(AcDbEntity* entity, const std::wstring& layer = L"0") {
        return Add(Drawing(), entity, layer);
    }
    // Opens an entity for read, hands it to `look`, closes it; false when it does not open.
    template <typename Look>
    bool Inspect(AcDbObjectId id, Look look) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) return false;
        look(entity);
        entity->close();
        return true;
    }
    bool IsGone(AcDbObjectId id) {
        return !Inspect(id, [](AcDbEntity*) {});
    }

    std::unique_ptr<ClassInterfaceData> cleanup_;
};
