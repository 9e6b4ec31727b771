// The figures of a drawing: version, code page, extents, entities per type and layer, blocks
// and the texts it shows.
#include "drawing_summary.hpp"

#include <cstdio>

#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/carried.hpp"
#include "platform/db/database.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/db/text.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"

namespace {

std::string TypeName(const AcDbEntity& entity) {
    if (const AcDbUnknownEntity* unknown = AcDbUnknownEntity::cast(&entity)) return dxf::Utf8(unknown->dxfName());
    const wchar_t* name = entity.isA()->dxfName();
    return dxf::Utf8(name && *name ? name : entity.isA()->name());
}

std::string CodePageName(const AcDbDatabase& db) {
    for (const auto& [name, tags] : db.headerVars()) {
        if (name != "$DWGCODEPAGE") continue;
        for (AcDbRawTag tag : tags) return std::string(tag.value);
    }
    return {};
}

void AddTexts(const AcDbEntity& entity, std::vector<std::string>& texts) {
    if (const AcDbAttributeDefinition* definition = AcDbAttributeDefinition::cast(&entity)) {
        texts.push_back(dxf::Utf8(definition->tag()));
    } else if (const AcDbText* text = AcDbText::cast(&entity)) {
        texts.push_back(dxf::Utf8(text->textString()));
    } else if (const AcDbMText* mtext = AcDbMText::cast(&entity)) {
        texts.push_back(dxf::Utf8(mtext->text()));
    } else if (const AcDbBlockReference* reference = AcDbBlockReference::cast(&entity)) {
        for (AcDbObjectId id : reference->attributeIds()) {
            AcDbEntity* attribute = nullptr;
            if (acdbOpenAcDbEntity(attribute, id, AcDb::kForRead) != Acad::eOk) continue;
            AddTexts(*attribute, texts);
            attribute->close();
        }
    }
}

void CountModelSpace(const AcDbDatabase& db, DrawingSummary& summary) {
    AcDbBlockTableRecord* space = nullptr;
    if (acdbOpenObject(space, db.modelSpaceId(), AcDb::kForRead) != Acad::eOk) return;
    AcDbObjectIdArray ids = space->entityIds();
    space->close();
    for (AcDbObjectId id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
        ++summary.entitiesByType[TypeName(*entity)];
        ++summary.entitiesByLayer[dxf::Utf8(entity->layer())];
        AddTexts(*entity, summary.texts);
        entity->close();
    }
}

void CountBlocks(const AcDbDatabase& db, DrawingSummary& summary) {
    AcDbBlockTable* table = nullptr;
    if (db.getSymbolTable(table, AcDb::kForRead) != Acad::eOk) return;
    for (AcDbObjectId id : table->recordIds()) {
        AcDbBlockTableRecord* block = nullptr;
        if (acdbOpenObject(block, id, AcDb::kForRead) != Acad::eOk) continue;
        if (!block->isLayout()) summary.blocks[dxf::Utf8(block->name())] = block->entityIds().length();
        block->close();
    }
    table->close();
}

std::string JsonCounts(const std::map<std::string, int>& counts) {
    std::string out = "{";
    for (const auto& [name, count] : counts) {
        if (out.size() > 1) out += ", ";
        out += JsonString(name) + ": " + std::to_string(count);
    }
    return out + "}";
}

std::string Number(double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.10g", value);
    return buffer;
}

}  // namespace

std::string JsonString(const std::string& text) {
    std::string out = "\"";
    for (unsigned char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20) {
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, "\\u%04x", c);
            out += buffer;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

DrawingSummary SummarizeDrawing(const AcDbDatabase& db) {
    DrawingSummary summary;
    summary.version = dxf::VersionName(db.originalFileVersion());
    summary.codePage = CodePageName(db);
    summary.extents = tavrik::render::ModelExtents(db);
    CountModelSpace(db, summary);
    CountBlocks(db, summary);
    return summary;
}

std::string SummaryJson(const DrawingSummary& summary) {
    std::string out = "{\"version\": " + JsonString(summary.version) + ", \"codePage\": " +
                      JsonString(summary.codePage) + ", \"extents\": ";
    if (summary.extents) {
        const auto& e = *summary.extents;
        out += "[" + Number(e.x0) + ", " + Number(e.y0) + ", " + Number(e.x1) + ", " + Number(e.y1) + "]";
    } else {
        out += "null";
    }
    out += ", \"entitiesByType\": " + JsonCounts(summary.entitiesByType);
    out += ", \"entitiesByLayer\": " + JsonCounts(summary.entitiesByLayer);
    out += ", \"blocks\": " + JsonCounts(summary.blocks) + ", \"texts\": [";
    for (size_t i = 0; i < summary.texts.size(); ++i) out += (i ? ", " : "") + JsonString(summary.texts[i]);
    return out + "]}";
}

std::string SummaryText(const DrawingSummary& summary) {
    std::string out = "version: " + summary.version + "\ncode page: " +
                      (summary.codePage.empty() ? "(none)" : summary.codePage) + "\nextents: ";
    if (summary.extents) {
        const auto& e = *summary.extents;
        out += Number(e.x0) + "," + Number(e.y0) + " to " + Number(e.x1) + "," + Number(e.y1) + "\n";
    } else {
        out += "(empty)\n";
    }
    auto list = [&out](const char* title, const std::map<std::string, int>& counts) {
        out += std::string(title) + ":\n";
        for (const auto& [name, count] : counts) out += "  " + name + " " + std::to_string(count) + "\n";
    };
    list("entities per type", summary.entitiesByType);
    list("entities per layer", summary.entitiesByLayer);
    list("blocks (entities each)", summary.blocks);
    out += "texts:\n";
    for (const std::string& text : summary.texts) out += "  " + text + "\n";
    return out;
}
