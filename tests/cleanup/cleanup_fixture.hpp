#pragma once
// A drawing for the clean-ups: the host's working drawing, a CAD_line.ini written for the test
// below the folder D:\CZ\config\CAD, and the clean-up object built on both.
#include <memory>
#include <initializer_list>
#include <string>
#include <vector>

#include "batch_fixture.hpp"
#include "cleanup/class_interface_data.hpp"
#include "platform/db/polyline.hpp"

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
    // Opens an entity for read, hands it to `look`, closes it. An entity that does not open (erased,
    // or left open by the operation under test) fails the test.
    template <typename Look>
    bool Inspect(AcDbObjectId id, Look look) {
        AcDbEntity* entity = nullptr;
        Acad::ErrorStatus status = acdbOpenAcDbEntity(entity, id, AcDb::kForRead);
        EXPECT_EQ(status, Acad::eOk) << "the entity does not open for read";
        if (status != Acad::eOk) return false;
        look(entity);
        entity->close();
        return true;
    }
    bool IsGone(AcDbObjectId id) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) return true;
        entity->close();
        return false;
    }
    // Erased in the database, as opposed to not opening for another reason (such as being left
    // open).
    bool IsErased(AcDbObjectId id) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, true) != Acad::eOk) return false;
        bool erased = entity->isErased();
        entity->close();
        return erased;
    }
    // Opens an entity for write and hands it to `change`.
    template <typename Edit>
    void Change(AcDbObjectId id, Edit change) {
        AcDbEntity* entity = nullptr;
        ASSERT_EQ(acdbOpenAcDbEntity(entity, id, AcDb::kForWrite), Acad::eOk);
        change(entity);
        entity->close();
    }
    void Color(AcDbObjectId id, int color) {
        Change(id, [&](AcDbEntity* e) { e->setColorIndex(static_cast<std::uint16_t>(color)); });
    }
    int ColorOf(AcDbObjectId id) {
        int color = -1;
        Inspect(id, [&](AcDbEntity* e) { color = e->colorIndex(); });
        return color;
    }
    void LinetypeName(AcDbObjectId id, const std::wstring& name) {
        Change(id, [&](AcDbEntity* e) { e->setLinetypeName(name); });
    }
    std::wstring LinetypeOf(AcDbObjectId id) {
        std::wstring name;
        Inspect(id, [&](AcDbEntity* e) { name = e->linetype(); });
        return name;
    }
    double LinetypeScaleOf(AcDbObjectId id) {
        double scale = -1.0;
        Inspect(id, [&](AcDbEntity* e) { scale = e->linetypeScale(); });
        return scale;
    }
    AcDbObjectId AddLine(double x0, double y0, double x1, double y1, const std::wstring& layer = L"0") {
        return AddToDrawing(new AcDbLine(AcGePoint3d(x0, y0, 0), AcGePoint3d(x1, y1, 0)), layer);
    }
    // A polyline through the points (x, y pairs), without bulges.
    AcDbObjectId AddPolyline(std::initializer_list<double> xy, bool closed, const std::wstring& layer = L"0") {
        auto* polyline = new AcDbPolyline;
        std::vector<double> v(xy);
        for (size_t i = 0; i + 1 < v.size(); i += 2)
            polyline->addVertexAt(polyline->numVerts(), AcGePoint2d(v[i], v[i + 1]), 0, 0, 0);
        polyline->setClosed(closed);
        return AddToDrawing(polyline, layer);
    }
    // The entities of the model space that are still there, in drawing order.
    AcDbObjectIdArray LiveIds() { return GetModelSpaceIds(DrawingPtr()); }
    void LayerState(const std::wstring& name, int color, bool locked) {
        AcDbLayerTable* layers = nullptr;
        Drawing().getSymbolTable(layers, AcDb::kForRead);
        AcDbLayerTableRecord* layer = nullptr;
        layers->getAt(name, layer, AcDb::kForWrite);
        AcCmColor cmColor;
        cmColor.setColorIndex(static_cast<std::uint16_t>(color));
        layer->setColor(cmColor);
        layer->setIsLocked(locked);
        layer->close();
        layers->close();
    }

    std::unique_ptr<ClassInterfaceData> cleanup_;
};
