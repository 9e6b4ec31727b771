#include "platform/dxf/table_records.hpp"

#include <map>

#include "platform/db/block_table_record.hpp"
#include "platform/db/dimension.hpp"
#include "platform/dxf/field_values.hpp"
#include "platform/dxf/model.hpp"

namespace dxf {

AcDbSymbolTable* NewTable(const std::string& name, AcDbDatabase::TableKind& kind) {
    static const std::map<std::string, std::pair<AcDbDatabase::TableKind, AcDbSymbolTable* (*)()>> tables = {
        {"BLOCK_RECORD", {AcDbDatabase::kBlockTable, [] () -> AcDbSymbolTable* { return new AcDbBlockTable(); }}},
        {"LAYER", {AcDbDatabase::kLayerTable, [] () -> AcDbSymbolTable* { return new AcDbLayerTable(); }}},
        {"STYLE", {AcDbDatabase::kTextStyleTable, [] () -> AcDbSymbolTable* { return new AcDbTextStyleTable(); }}},
        {"LTYPE", {AcDbDatabase::kLinetypeTable, [] () -> AcDbSymbolTable* { return new AcDbLinetypeTable(); }}},
        {"DIMSTYLE", {AcDbDatabase::kDimStyleTable, [] () -> AcDbSymbolTable* { return new AcDbDimStyleTable(); }}},
        {"VIEW", {AcDbDatabase::kViewTable, [] () -> AcDbSymbolTable* { return new AcDbViewTable(); }}},
        {"VPORT", {AcDbDatabase::kViewportTable, [] () -> AcDbSymbolTable* { return new AcDbViewportTable(); }}},
        {"APPID", {AcDbDatabase::kRegAppTable, [] () -> AcDbSymbolTable* { return new AcDbRegAppTable(); }}},
        {"UCS", {AcDbDatabase::kUCSTable, [] () -> AcDbSymbolTable* { return new AcDbUCSTable(); }}},
    };
    auto it = tables.find(name);
    if (it == tables.end()) return nullptr;
    kind = it->second.first;
    return it->second.second();
}

AcDbSymbolTableRecord* NewRecord(std::string_view type) {
    if (type == "LAYER") return new AcDbLayerTableRecord();
    if (type == "STYLE") return new AcDbTextStyleTableRecord();
    if (type == "LTYPE") return new AcDbLinetypeTableRecord();
    if (type == "DIMSTYLE") return new AcDbDimStyleTableRecord();
    if (type == "VIEW") return new AcDbViewTableRecord();
    if (type == "VPORT") return new AcDbViewportTableRecord();
    if (type == "APPID") return new AcDbRegAppTableRecord();
    if (type == "UCS") return new AcDbUCSTableRecord();
    if (type == "BLOCK_RECORD") return new AcDbBlockTableRecord();
    return nullptr;
}

void ReadRecordFields(AcDbSymbolTableRecord& r, const AcDbRawTags& tags,
                      std::vector<std::pair<AcDbLayerTableRecord*, std::wstring>>& linetypes,
                      std::function<AcDbObjectId(std::string_view)> idOf) {
    auto* layer = AcDbLayerTableRecord::cast(&r);
    auto* style = AcDbTextStyleTableRecord::cast(&r);
    auto* ltype = AcDbLinetypeTableRecord::cast(&r);
    auto* dim = AcDbDimStyleTableRecord::cast(&r);
    auto* view = AcDbAbstractViewTableRecord::cast(&r);
    auto* vport = AcDbViewportTableRecord::cast(&r);
    auto* ucs = AcDbUCSTableRecord::cast(&r);
    auto* block = AcDbBlockTableRecord::cast(&r);
    AcGePoint2d center;
    AcGePoint3d target, origin;
    AcGeVector3d direction = AcGeVector3d::kZAxis, xAxis = AcGeVector3d::kXAxis, yAxis = AcGeVector3d::kYAxis;
    double height = 1.0, widthOrAspect = 1.0;
    std::vector<double> dashes;
    ForEachBodyTag(tags, [&](std::string_view, const AcDbRawTag& t) {
        std::string_view s = t.value;
        int c = t.code;
        if (c == 2) { r.setName(Wide(s)); return; }
        if (c == 70 && !block) {
            int f = static_cast<int>(Integer(s));
            if (layer) {
                layer->setIsFrozen(f & 1);
                layer->setVPDFLT(f & 2);
                layer->setIsLocked(f & 4);
                f &= ~7;
            }
            r.setFlagBits(f);
            return;
        }
        if (layer) {
            if (c == 62) {
                long long i = Integer(s);
                AcCmColor col = layer->color();
                col.setColorIndex(static_cast<std::uint16_t>(std::min(std::llabs(i), 256LL)));
                layer->setColor(col);
                layer->setIsOff(i < 0);
            } else if (c == 420) {
                AcCmColor col = layer->color();
                col.setTrueColor(static_cast<std::uint32_t>(Integer(s)));
                layer->setColor(col);
            } else if (c == 6) {
                linetypes.push_back({layer, Wide(s)});
            } else if (c == 290) {
                layer->setIsPlottable(Integer(s) != 0);
            } else if (c == 370) {
                layer->setLineWeight(static_cast<AcDb::LineWeight>(Integer(s)));
            }
        } else if (style) {
            switch (c) {
                case 40: style->setTextSize(Real(s)); break;
                case 41: style->setXScale(Real(s)); break;
                case 50: style->setObliquingAngle(Radians(s)); break;
                case 71: style->setTextGenerationFlags(static_cast<int>(Integer(s))); break;
                case 42: style->setPriorSize(Real(s)); break;
                case 3: style->setFileName(Wide(s)); break;
                case 4: style->setBigFontFileName(Wide(s)); break;
                default: break;
            }
        } else if (ltype) {
            if (c == 3) ltype->setComments(Wide(s));
            else if (c == 40) ltype->setPatternLength(Real(s));
            else if (c == 49) dashes.push_back(Real(s));
        } else if (dim) {
            if (c == 105 || c == 5) return;
            AcDbDimVarValue v;
            const AcDbDimVarInfo* info = acdbDimVarByCode(c);
            ValueKind kind = KindOfCode(c);
            if (kind == ValueKind::kHandle) { v.kind = AcDbDimVarValue::kHandle; v.id = idOf(s); }
            else if (kind == ValueKind::kString) { v.kind = AcDbDimVarValue::kString; v.text = Wide(s); }
            else if (kind == ValueKind::kDouble && (!info || info->kind == AcDbDimVarValue::kReal)) {
                v.kind = AcDbDimVarValue::kReal; v.real = Real(s);
            } else { v.kind = AcDbDimVarValue::kInt; v.integer = static_cast<int>(Integer(s)); }
            dim->dimVars()[c] = v;
        } else if (view) {
            bool vp = vport != nullptr;
            double d = Real(s);
            if (vp ? (c == 12) : (c == 10)) center.x = d;
            else if (vp ? (c == 22) : (c == 20)) center.y = d;
            else if (c == 40) height = d;
            else if (c == 41) widthOrAspect = d;
            else if ((vp && (c == 16 || c == 26 || c == 36)) || (!vp && (c == 11 || c == 21 || c == 31)))
                SetAxis(direction, c, vp ? 16 : 11, d);
            else if ((vp && (c == 17 || c == 27 || c == 37)) || (!vp && (c == 12 || c == 22 || c == 32)))
                SetAxis(target, c, vp ? 17 : 12, d);
        } else if (ucs) {
            double d = Real(s);
            if (c == 10 || c == 20 || c == 30) SetAxis(origin, c, 10, d);
            else if (c == 11 || c == 21 || c == 31) SetAxis(xAxis, c, 11, d);
            else if (c == 12 || c == 22 || c == 32) SetAxis(yAxis, c, 12, d);
        } else if (block && c == 340) {
            block->setLayoutId(idOf(s));
        }
    });
    if (ltype) ltype->setDashes(dashes);
    if (view) {
        view->setCenterPoint(center);
        view->setHeight(height);
        view->setWidth(vport ? widthOrAspect * height : widthOrAspect);
        view->setViewDirection(direction);
        view->setTarget(target);
    }
    if (ucs) {
        ucs->setOrigin(origin);
        ucs->setXAxis(xAxis);
        ucs->setYAxis(yAxis);
    }
}

}  // namespace dxf
