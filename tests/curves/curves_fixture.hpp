#pragma once
// A drawing for the curve clean-ups: the clean-up fixture with the dashed linetype DASHED and
// the solid Continuous named in section public, an existing Log.log, and queries of the model
// space by entity class.
#include <string>
#include <vector>

#include "cleanup/cleanup_fixture.hpp"
#include "curves/curve_record.hpp"
#include "drawing_queries.hpp"
#include "platform/db/symbol_tables.hpp"

class CurvesTest : public CleanupTest {
protected:
    static constexpr const wchar_t* kLogPath = L"D:\\CZ\\config\\CAD\\Log.log";

    void SetUp() override {
        CleanupTest::SetUp();
        AddLinetype(L"DASHED");
        WriteText(kLogPath, L"");
    }
    // CAD_line.ini with section public and the given sections after it.
    void WriteSections(const std::wstring& sections) {
        WriteIni(L"[public]\nStrDottedLineType=DASHED\nStrSolidLineType=Continuous\n" + sections);
    }
    std::wstring LogText() { return ReadText(kLogPath); }
    void AddLinetype(const std::wstring& name) {
        AcDbLinetypeTable* table = nullptr;
        Drawing().getSymbolTable(table, AcDb::kForWrite);
        auto* record = new AcDbLinetypeTableRecord;
        record->setName(name);
        AcDbObjectId id;
        table->add(id, record);
        record->close();
        table->close();
    }
    // The model space's entities with that 2000-series type code, in drawing order.
    AcDbObjectIdArray IdsOfType(int type) {
        AcDbObjectIdArray ids;
        for (const AcDbObjectId& id : ModelSpaceIds(Drawing()))
            if (EntityTypeOfId(id) == type) ids.append(id);
        return ids;
    }
    int CountOfType(int type) { return IdsOfType(type).length(); }
    int EntityCount() { return ModelSpaceIds(Drawing()).length(); }
    // Layer, linetype, linetype scale and colour index of an entity.
    struct Look {
        std::wstring layer;
        std::wstring linetype;
        double scale = -1.0;
        int color = -1;
    };
    Look LookOfId(AcDbObjectId id) {
        Look look;
        Inspect(id, [&](AcDbEntity* e) {
            look = {e->layer(), e->linetype(), e->linetypeScale(), e->colorIndex()};
        });
        return look;
    }
    void SetLook(AcDbObjectId id, const std::wstring& linetype, int color, double scale = 1.0) {
        AcDbEntity* entity = nullptr;
        acdbOpenAcDbEntity(entity, id, AcDb::kForWrite);
        entity->setLinetypeName(linetype);
        entity->setColorIndex(static_cast<std::uint16_t>(color));
        entity->setLinetypeScale(scale);
        entity->close();
    }
    template <typename Curve, typename Look>
    void InspectAs(AcDbObjectId id, Look look) {
        Inspect(id, [&](AcDbEntity* e) {
            auto* curve = Curve::cast(e);
            ASSERT_NE(curve, nullptr);
            look(curve);
        });
    }
};
