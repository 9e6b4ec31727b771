// Colours, linetypes and lineweights of entities, resolved through their layer and, inside a
// block, through the reference that draws them.
#include <algorithm>
#include <cmath>
#include <cwctype>

#include "platform/db/database.hpp"
#include "platform/db/entity.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/render/canvas.hpp"

namespace tavrik::render {

namespace {

constexpr int kDefaultLineWeight = 25;  // hundredths of a millimetre, the host's default

// Linetype dashes as cairo takes them: alternating on and off lengths starting with on (dots
// are zero-length dashes, which the stroke widens to a pixel). A pattern that starts with a
// gap is turned round to start with its first dash; the pattern is cyclic.
std::vector<double> CairoDashes(std::vector<double> dashes) {
    auto firstOn = std::find_if(dashes.begin(), dashes.end(), [](double d) { return d >= 0.0; });
    if (firstOn == dashes.end()) return {};
    std::rotate(dashes.begin(), firstOn, dashes.end());
    std::vector<double> out;
    bool lastOn = false;
    for (double d : dashes) {
        bool on = d >= 0.0;
        if (!out.empty() && on == lastOn) out.back() += std::fabs(d);
        else out.push_back(std::fabs(d));
        lastOn = on;
    }
    if (out.size() % 2 == 1 && out.size() > 1) {
        out.front() += out.back();
        out.pop_back();
    }
    if (out.size() < 2) out.clear();  // a single dash is a solid line
    return out;
}

Rgb FromColorRef(std::uint32_t rgb) {
    return {static_cast<double>(rgb >> 16 & 0xFF) / 255.0, static_cast<double>(rgb >> 8 & 0xFF) / 255.0,
            static_cast<double>(rgb & 0xFF) / 255.0};
}

Rgb ColorOf(const Canvas& canvas, const AcCmColor& color) {
    if (color.hasTrueColor()) return FromColorRef(color.trueColor());
    return IndexColor(canvas, color.colorIndex());
}

double LineWeightPx(int weight) {
    if (weight < 0) weight = kDefaultLineWeight;
    return std::max(1.0, weight / 100.0 * 96.0 / 25.4);
}

const LayerLook* LayerOf(const Canvas& canvas, const std::wstring& layer) {
    auto it = canvas.layers.find(Upper(layer));
    return it == canvas.layers.end() ? nullptr : &it->second;
}

void LoadLinetypes(Canvas& canvas) {
    AcDbLinetypeTable* table = nullptr;
    if (canvas.db->getSymbolTable(table, AcDb::kForRead) != Acad::eOk) return;
    for (AcDbObjectId id : table->recordIds()) {
        AcDbLinetypeTableRecord* record = nullptr;
        if (acdbOpenObject(record, id, AcDb::kForRead) != Acad::eOk) continue;
        canvas.linetypes[Upper(record->name())] = CairoDashes(record->dashes());
        record->close();
    }
    table->close();
}

std::vector<double> LinetypeDashes(const Canvas& canvas, const std::wstring& name) {
    auto it = canvas.linetypes.find(Upper(name));
    return it == canvas.linetypes.end() ? std::vector<double>{} : it->second;
}

void LoadLayers(Canvas& canvas) {
    AcDbLayerTable* table = nullptr;
    if (canvas.db->getSymbolTable(table, AcDb::kForRead) != Acad::eOk) return;
    for (AcDbObjectId id : table->recordIds()) {
        AcDbLayerTableRecord* record = nullptr;
        if (acdbOpenObject(record, id, AcDb::kForRead) != Acad::eOk) continue;
        LayerLook look;
        look.color = record->color();
        look.lineWeight = record->lineWeight();
        look.hidden = record->isOff() || record->isFrozen();
        AcDbLinetypeTableRecord* linetype = nullptr;
        if (acdbOpenObject(linetype, record->linetypeObjectId(), AcDb::kForRead) == Acad::eOk) {
            look.dashes = CairoDashes(linetype->dashes());
            linetype->close();
        }
        canvas.layers[Upper(record->name())] = look;
        record->close();
    }
    table->close();
}

}  // namespace

std::wstring Upper(std::wstring text) {
    for (auto& c : text) c = static_cast<wchar_t>(std::towupper(c));
    return text;
}

void LoadTables(Canvas& canvas) {
    canvas.ltscale = canvas.db->ltscale() > 0.0 ? canvas.db->ltscale() : 1.0;
    LoadLinetypes(canvas);
    LoadLayers(canvas);
}

Rgb ForegroundColor(const Canvas& canvas) { return canvas.dark ? Rgb{1, 1, 1} : Rgb{0, 0, 0}; }

// Index 7 (and the other white) is drawn in the colour that stands out from the background.
Rgb IndexColor(const Canvas& canvas, int index) {
    if (index < 1 || index > 255 || index == 7) return ForegroundColor(canvas);
    DWORD ref = acedGetRGB(index);
    Rgb rgb{(ref & 0xFF) / 255.0, (ref >> 8 & 0xFF) / 255.0, (ref >> 16 & 0xFF) / 255.0};
    bool white = rgb.r > 0.99 && rgb.g > 0.99 && rgb.b > 0.99;
    return white ? ForegroundColor(canvas) : rgb;
}

std::wstring EffectiveLayer(const AcDbEntity& entity, const BlockContext& context) {
    if (context.depth > 0 && entity.layer() == L"0") return context.layer;
    return entity.layer();
}

bool IsHidden(const Canvas& canvas, const std::wstring& layer) {
    const LayerLook* look = LayerOf(canvas, layer);
    return look && look->hidden;
}

Pen PenOf(const Canvas& canvas, const AcDbEntity& entity, const BlockContext& context) {
    Pen pen;
    const LayerLook* layer = LayerOf(canvas, EffectiveLayer(entity, context));
    AcCmColor color = entity.color();
    if (color.isByBlock()) pen.color = context.color;
    else if (color.isByLayer()) pen.color = layer ? ColorOf(canvas, layer->color) : ForegroundColor(canvas);
    else pen.color = ColorOf(canvas, color);

    std::wstring linetype = Upper(entity.linetype());
    if (linetype == L"BYBLOCK") pen.dashes = context.dashes;
    else if (linetype == L"BYLAYER" || linetype.empty()) pen.dashes = layer ? layer->dashes : std::vector<double>{};
    else pen.dashes = LinetypeDashes(canvas, linetype);
    for (double& d : pen.dashes) d *= entity.linetypeScale() * canvas.ltscale;

    int weight = entity.lineWeight();
    if (weight == AcDb::kLnWtByBlock) weight = context.lineWeight;
    else if (weight == AcDb::kLnWtByLayer) weight = layer ? layer->lineWeight : -3;
    pen.widthPx = LineWeightPx(weight);
    return pen;
}

BlockContext ChildContext(const Canvas& canvas, const AcDbEntity& entity, const BlockContext& parent,
                          const AcGeMatrix3d& blockXform) {
    Pen pen = PenOf(canvas, entity, parent);
    BlockContext child;
    child.xform = parent.xform * blockXform;
    AcGeVector3d unit = child.xform * AcGeVector3d(1, 0, 0);
    child.scale = unit.length();
    child.layer = EffectiveLayer(entity, parent);
    child.color = pen.color;
    child.dashes = pen.dashes;
    int weight = entity.lineWeight();
    if (weight == AcDb::kLnWtByBlock) weight = parent.lineWeight;
    else if (weight == AcDb::kLnWtByLayer) {
        const LayerLook* layer = LayerOf(canvas, child.layer);
        weight = layer ? layer->lineWeight : -3;
    }
    child.lineWeight = weight;
    child.depth = parent.depth + 1;
    return child;
}

}  // namespace tavrik::render
