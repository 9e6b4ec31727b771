// The layers that the drawing's file name and the layer table of the standard ask for.
#include <vector>

#include "config/config_root.hpp"
#include "host/module_state.hpp"
#include "pipeline/logs.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/ed/ads.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/win/crt.hpp"
#include "platform/win/text.hpp"
#include "standard/db_helpers.hpp"
#include "standard/layers_text.hpp"
#include "standard/model_space_walk.hpp"

namespace {

// The layers an entity may stay on: the standard's own layers, both columns of [FILLAY] and the
// target layer.
std::vector<std::wstring> KeptLayers(const ModuleState& state) {
    const LayerKeys& keys = state.cadStandardIni.layer;
    std::vector<std::wstring> kept = {keys.BIGFRAM, keys.DIM,  keys.FRONT, keys.LEFT,  keys.RECT,
                                      keys.STAND,   keys.STRINGS, keys.TOP, keys.URECT, keys.USTAND};
    for (const fillay& row : state.layerUgIni.fillLayers) {
        kept.push_back(row.number);
        kept.push_back(row.layer);
    }
    kept.push_back(state.targetLayer);
    return kept;
}

bool IsKept(const std::vector<std::wstring>& kept, const std::wstring& layer) {
    for (const std::wstring& name : kept)
        if (EqualNoCase(name, layer)) return true;
    return false;
}

// The [SCRSET] row of the entity's own colour index, or null.
const collay* ColorRowOf(const AcDbEntity* entity, const std::vector<collay>& rows) {
    for (const collay& row : rows)
        if (row.color == entity->colorIndex()) return &row;
    return nullptr;
}

bool HasLayer(AcDbDatabase* db, const std::wstring& name) {
    AcDbLayerTable* layers = nullptr;
    if (db->getSymbolTable(layers, AcDb::kForRead) != Acad::eOk) return false;
    bool has = layers->has(name);
    layers->close();
    return has;
}

int RenameLayer(AcDbDatabase* db, const std::wstring& from, const std::wstring& to) {
    AcDbLayerTable* layers = nullptr;
    if (db->getSymbolTable(layers, AcDb::kForRead) != Acad::eOk) return 16;
    AcDbLayerTableRecord* layer = nullptr;
    Acad::ErrorStatus es = layers->getAt(from, layer, AcDb::kForWrite);
    layers->close();
    if (es != Acad::eOk) return 16;
    layer->setName(to);
    layer->close();
    return 0;
}

int MoveLayerEntities(AcDbDatabase* db, const std::wstring& from, const std::wstring& to) {
    return WalkModelSpace(db, AcDb::kForWrite, kEndAtFailedOpen, [&](AcDbEntity* entity) {
        if (EqualNoCase(entity->layer(), from)) entity->setLayer(to);
    });
}

}  // namespace

int FindLayerByFileName(AcDbDatabase* db) {
    std::wstring path = Module().ConfigRoot + kLayerUgIniName;
    wchar_t found[260] = {};
    if (acedFindFile(path.c_str(), found, 260) != RTNORM) return 0;
    LayerUgIni table(path);
    const ACHAR* fileName = L"";
    db->getFilename(fileName);
    std::wstring title = FileTitle(fileName);
    size_t hyphen = title.rfind(L'-');
    if (hyphen == std::wstring::npos) {
        acutPrintf(L"\n文件名 %s 中不包含分隔符", title.c_str());
        return 0;
    }
    int number = _wtoi(TrimBlanks(title.substr(hyphen + 1)).c_str());
    for (const fillay& row : table.fillLayers) {
        if (_wtoi(row.number.c_str()) != number) continue;
        Module().targetLayer = row.layer;
        return 1;
    }
    return 0;
}

// A colour row goes before the kept layers: a coloured entity on a construction layer moves too.
int ConvertLayersByColor(AcDbDatabase* db) {
    ModuleState& state = Module();
    AddLayer(state.targetLayer, db);
    std::vector<std::wstring> kept = KeptLayers(state);
    return WalkModelSpace(db, AcDb::kForWrite, kEndAtFailedOpen, [&](AcDbEntity* entity) {
        if (const collay* row = ColorRowOf(entity, state.cadStandardIni.colorLayers)) {
            std::wstring layer = state.targetLayer + row->suffix;
            AddLayer(layer, db);
            entity->setLayer(layer);
        } else if (!IsKept(kept, entity->layer())) {
            entity->setLayer(state.targetLayer);
        }
    });
}

int ConvertLayersByTable(AcDbDatabase* db) {
    for (const LConv& row : Module().layerUgIni.conversions) {
        if (!HasLayer(db, row.from)) continue;
        if (!HasLayer(db, row.to)) RenameLayer(db, row.from, row.to);
        else MoveLayerEntities(db, row.from, row.to);
    }
    return 0;
}

int GatherDimensions(const std::wstring& layer, AcDbDatabase* db) {
    AcDbLayerTable* layers = nullptr;
    if (db->getSymbolTable(layers, AcDb::kForWrite) != Acad::eOk) return 16;
    if (!layers->has(layer)) {
        AcDbLayerTableRecord* record = NewStandardLayer(layer, db, false);
        if (layers->add(record) == Acad::eOk) record->close();
        else delete record;
    }
    layers->close();
    return WalkModelSpace(db, AcDb::kForWrite, kEndAtFailedOpen, [&](AcDbEntity* entity) {
        if (AcDbDimension::cast(entity)) entity->setLayer(layer);
    });
}
