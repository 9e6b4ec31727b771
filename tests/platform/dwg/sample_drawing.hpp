#pragma once
// A drawing made in memory with one entity of each kind the plate sheets use, a Chinese layer
// name and texts, and a block with an attribute: the DWG writer's tests write it and read it
// back in our reader and in the oracles.
#include <gtest/gtest.h>

#include <string>

#include "platform/db/arc.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/database.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/db/text.hpp"

namespace dwg_test {

inline AcDbObjectId Append(AcDbDatabase& db, AcDbObjectId block, AcDbEntity* entity) {
    AcDbBlockTableRecord* record = nullptr;
    EXPECT_EQ(acdbOpenObject(record, block, AcDb::kForWrite), Acad::eOk);
    AcDbObjectId id;
    record->appendAcDbEntity(id, entity);
    entity->close();
    record->close();
    (void)db;
    return id;
}

inline AcDbObjectId AddLayer(AcDbDatabase& db, const std::wstring& name, int color) {
    AcDbLayerTable* layers = nullptr;
    db.getSymbolTable(layers, AcDb::kForWrite);
    auto* layer = new AcDbLayerTableRecord;
    layer->setName(name);
    AcCmColor c;
    c.setColorIndex(static_cast<std::uint16_t>(color));
    layer->setColor(c);
    AcDbObjectId id;
    layers->add(id, layer);
    layer->close();
    layers->close();
    return id;
}

inline AcDbObjectId AddBlock(AcDbDatabase& db, const std::wstring& name) {
    AcDbBlockTable* blocks = nullptr;
    db.getSymbolTable(blocks, AcDb::kForWrite);
    auto* block = new AcDbBlockTableRecord;
    block->setName(name);
    AcDbObjectId id;
    blocks->add(id, block);
    block->close();
    blocks->close();
    return id;
}

inline void BuildDrawing(AcDbDatabase& db) {
    AddLayer(db, L"轮廓线", 1);
    const AcDbObjectId model = db.modelSpaceId();
    auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(100, 50, 0));
    line->setLayer(L"轮廓线");
    Append(db, model, line);
    Append(db, model, new AcDbCircle(AcGePoint3d(10, 20, 0), AcGeVector3d(0, 0, 1), 5.5));
    Append(db, model, new AcDbArc(AcGePoint3d(-3, 4, 0), 2.25, 0.5, 2.0));
    Append(db, model, new AcDbPoint(AcGePoint3d(7, 8, 9)));
    Append(db, model, new AcDbText(AcGePoint3d(1, 2, 0), L"模板 A-1", AcDbObjectId::kNull, 3.5, 0.25));
    auto* mtext = new AcDbMText;
    mtext->setLocation(AcGePoint3d(5, 6, 0));
    mtext->setContents(L"第一行\\P第二行");
    mtext->setTextHeight(2.5);
    Append(db, model, mtext);
    auto* polyline = new AcDbPolyline(3);
    polyline->addVertexAt(0, AcGePoint2d(0, 0));
    polyline->addVertexAt(1, AcGePoint2d(10, 0), 0.5);
    polyline->addVertexAt(2, AcGePoint2d(10, 10));
    polyline->setClosed(true);
    Append(db, model, polyline);
    Append(db, model, new AcDbEllipse(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1),
                                      AcGeVector3d(4, 0, 0), 0.5));
    const AcDbObjectId block = AddBlock(db, L"标题栏");
    Append(db, block, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0)));
    Append(db, block, new AcDbAttributeDefinition(AcGePoint3d(0, 0, 0), L"", L"图号", L"图号?"));
    auto* reference = new AcDbBlockReference(AcGePoint3d(50, 60, 0), block);
    const AcDbObjectId referenceId = Append(db, model, reference);
    AcDbBlockReference* opened = nullptr;
    ASSERT_EQ(acdbOpenObject(opened, referenceId, AcDb::kForWrite), Acad::eOk);
    opened->appendAttribute(new AcDbAttribute(AcGePoint3d(50, 60, 0), L"MP-001", L"图号"));
    opened->close();
}

}  // namespace dwg_test
