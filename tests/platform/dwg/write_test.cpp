// Writing AC1018 DWG files: a drawing written and read back by our reader holds the same
// objects, handles and values; the file's sections are framed as readers check them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "platform/db/arc.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/carried.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/database.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/db/text.hpp"
#include "platform/dwg/container.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dwg/twin_compare.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dxf/codepage.hpp"
#include "platform/dxf/model.hpp"

namespace {

using Bytes = std::vector<std::uint8_t>;

AcDbObjectId Append(AcDbDatabase& db, AcDbObjectId block, AcDbEntity* entity) {
    AcDbBlockTableRecord* record = nullptr;
    EXPECT_EQ(acdbOpenObject(record, block, AcDb::kForWrite), Acad::eOk);
    AcDbObjectId id;
    record->appendAcDbEntity(id, entity);
    entity->close();
    record->close();
    (void)db;
    return id;
}

AcDbObjectId AddLayer(AcDbDatabase& db, const std::wstring& name, int color) {
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

AcDbObjectId AddBlock(AcDbDatabase& db, const std::wstring& name) {
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

// A drawing made in memory with one entity of each kind the plate sheets use, a Chinese layer
// name and texts, and a block with an attribute.
void BuildDrawing(AcDbDatabase& db) {
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

Bytes Written(AcDbDatabase& db, dwg::DwgWriteReport& report) {
    Bytes bytes;
    EXPECT_EQ(dwg::WriteDwgBytes(db, 936, bytes, report), Acad::eOk);
    return bytes;
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string out;
    for (const auto& line : lines) out += line + "\n";
    return out;
}

std::string HandleText(std::uint64_t handle) {
    char text[20];
    std::snprintf(text, sizeof text, "%llX", static_cast<unsigned long long>(handle));
    return text;
}

// "code=value" pairs of the same code whose values are the same number to 1e-9.
bool SameNumber(const std::string& p, const std::string& q) {
    const auto i = p.find('='), j = q.find('=');
    if (i == std::string::npos || p.substr(0, i) != q.substr(0, j)) return false;
    char* end1 = nullptr;
    char* end2 = nullptr;
    const double a = std::strtod(p.c_str() + i + 1, &end1), b = std::strtod(q.c_str() + j + 1, &end2);
    return *end1 == 0 && *end2 == 0 && end1 != p.c_str() + i + 1 &&
           std::fabs(a - b) <= 1e-9 * std::max(1.0, std::fabs(b));
}

// A layout's groups after its head as a round trip through AC1018 keeps them: a 2004 layout
// always carries its shade plot settings (76 to 78), which a DXF layout may leave out, a zero
// UCS handle (345, 346) refers to nothing, and the plot view goes by handle, not by name (6).
std::vector<std::string> LayoutGroups(const AcDbRawTags& tags) {
    std::vector<std::string> out;
    bool body = false;
    for (const auto& t : tags) {
        body = body || t.code == 100;
        if (!body || t.code == 76 || t.code == 77 || t.code == 78 || t.code == 6) continue;
        if ((t.code == 345 || t.code == 346) && t.value == "0") continue;
        out.push_back(std::to_string(t.code) + "=" + std::string(t.value));
    }
    return out;
}

// The differences of the comparison that the format makes or the writer names as left out:
// dimension variables its report lists, and layouts, compared here by LayoutGroups instead.
std::vector<std::string> Unexplained(const dwg_test::TwinComparison& comparison,
                                     const dwg::DwgWriteReport& report, const AcDbDatabase& db,
                                     AcDbDatabase& back) {
    std::vector<std::string> out;
    std::vector<std::string> layouts;
    for (const auto& stub : db.stubs()) {
        auto* u = stub.object ? AcDbUnknownObject::cast(stub.object.get()) : nullptr;
        if (!u || u->dxfName() != L"LAYOUT") continue;
        layouts.push_back(HandleText(stub.handle.value()) + ":");
        AcDbObjectId id;
        if (back.getAcDbObjectId(id, false, stub.handle) != Acad::eOk || !id.stub()->object) continue;
        const auto a = LayoutGroups(id.stub()->object->fileTags());
        const auto b = LayoutGroups(stub.object->fileTags());
        for (std::size_t i = 0; i < std::max(a.size(), b.size()); ++i) {
            const std::string x = i < a.size() ? a[i] : "", y = i < b.size() ? b[i] : "";
            if (x == y || SameNumber(x, y)) continue;
            out.push_back(layouts.back() + " layout group " + std::to_string(i) + " '" + x +
                          "' (DWG) vs '" + y + "'");
            break;
        }
    }
    for (const auto& line : comparison.differences) {
        const auto variable = line.find("dimension variable ");
        if (variable != std::string::npos) {
            const std::string code = line.substr(variable + 19, line.find(' ', variable + 19) - variable - 19);
            if (report.leftOut.count("DIMSTYLE variable " + code)) continue;
        }
        const bool layout = std::any_of(layouts.begin(), layouts.end(), [&](const std::string& h) {
            return line.rfind(h, 0) == 0 && line.find(" group ") != std::string::npos;
        });
        // A hatch without a gradient: the DXF may close it with the gradient's groups, off.
        const bool gradientOff = line.find(" '' (DWG) vs '450=0' (DXF)") != std::string::npos;
        // Spline edges of hatches have fit data from 2010 on: a 2004 edge has no count of it.
        const bool noFitCount = line.find("vs '97=0' (DXF)") != std::string::npos;
        // A record of R12 has no subclass marker: there is no body to compare groups with.
        const bool noBody = line.find(": group 0 ") != std::string::npos &&
                            line.find("' (DWG) vs '' (DXF)") != std::string::npos;
        const bool colourIndex = report.leftOut.count("HATCH gradient colour index") != 0 &&
                                 line.find("'63=") != std::string::npos;
        if (!layout && !gradientOff && !noBody && !noFitCount && !colourIndex) out.push_back(line);
    }
    return out;
}

TEST(DwgWrite, drawing_made_in_memory_reads_back_with_the_same_objects) {
    AcDbDatabase db;
    BuildDrawing(db);
    dwg::DwgWriteReport report;
    const Bytes bytes = Written(db, report);
    EXPECT_TRUE(report.leftOut.empty());
    AcDbDatabase back(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(back, bytes, "written.dwg"), Acad::eOk) << dxf::Utf8(back.lastError());
    dwg_test::TwinComparison comparison;
    comparison.compare(back, db, db.handseed().value());
    const auto unexplained = Unexplained(comparison, report, db, back);
    EXPECT_TRUE(unexplained.empty()) << Joined(unexplained);
    EXPECT_TRUE(comparison.missing.empty()) << comparison.missing.size() << " missing";
    EXPECT_GT(comparison.compared, 20);
}

TEST(DwgWrite, file_is_ac1018_with_the_host_code_page) {
    AcDbDatabase db;
    dwg::DwgWriteReport report;
    const Bytes bytes = Written(db, report);
    ASSERT_GT(bytes.size(), 0x100u);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 6), "AC1018");
    dwg::DwgContainer container;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ReadDwgContainer(bytes, container, error)) << error.reason;
    EXPECT_EQ(container.version, dwg::Version::kR2004);
    EXPECT_EQ(container.dwgCodePage, 39);  // ANSI_936
}

std::string ObjectsSection(const Bytes& file) {
    dwg::DwgContainer container;
    dwg::MapError error;
    EXPECT_TRUE(dwg::ReadDwgContainer(file, container, error)) << error.reason;
    const auto data = dwg::FindSection(container, "AcDb:AcDbObjects");
    return std::string(data.begin(), data.end());
}

// True when the bytes stand in the data at any bit position (the bit streams of objects do not
// keep texts on byte boundaries).
bool HasBits(const std::string& data, const std::string& bytes) {
    for (int shift = 0; shift < 8; ++shift) {
        std::string shifted(data.size(), '\0');
        for (std::size_t i = 0; i + 1 < data.size(); ++i) {
            const unsigned high = static_cast<unsigned char>(data[i]) << shift;
            const unsigned low = static_cast<unsigned char>(data[i + 1]) >> (8 - shift);
            shifted[i] = static_cast<char>((high | (shift ? low : 0)) & 0xFF);
        }
        if (shifted.find(bytes) != std::string::npos) return true;
    }
    return false;
}

std::wstring LayerOfFirstLine(AcDbDatabase& db) {
    AcDbBlockTableRecord* model = nullptr;
    if (acdbOpenObject(model, db.modelSpaceId(), AcDb::kForRead) != Acad::eOk) return {};
    std::wstring layer;
    for (const AcDbObjectId& id : model->entityIds()) {
        if (auto* line = AcDbLine::cast(id.stub()->object.get())) {
            layer = line->layer();
            break;
        }
    }
    model->close();
    return layer;
}

// With the host's code page 936 the Chinese names and texts are stored as GBK bytes (the file
// header says ANSI_936); with another host code page they are stored as \U+XXXX escapes. Both
// read back as the same text.
TEST(DwgWrite, gbk_names_and_texts_survive_in_code_page_936_and_as_escapes_otherwise) {
    AcDbDatabase db;
    BuildDrawing(db);
    std::string gbk;
    dxf::EncodeText("轮廓线", 936, gbk);
    ASSERT_EQ(gbk.size(), 6u);
    for (const int codePage : {936, 65001}) {
        Bytes bytes;
        dwg::DwgWriteReport report;
        ASSERT_EQ(dwg::WriteDwgBytes(db, codePage, bytes, report), Acad::eOk);
        const std::string objects = ObjectsSection(bytes);
        const bool hasGbk = HasBits(objects, gbk);
        const bool hasEscape = HasBits(objects, "\\U+8F6E");  // 轮
        EXPECT_EQ(hasGbk, codePage == 936) << codePage;
        EXPECT_EQ(hasEscape, codePage != 936) << codePage;
        AcDbDatabase back(false, true);
        ASSERT_EQ(dwg::ReadDwgBytes(back, bytes, "gbk.dwg"), Acad::eOk);
        EXPECT_EQ(LayerOfFirstLine(back), L"轮廓线") << codePage;
        dwg_test::TwinComparison comparison;
        comparison.compare(back, db, db.handseed().value());
        EXPECT_TRUE(Unexplained(comparison, report, db, back).empty()) << codePage;
    }
}

// Every corpus drawing our reader reads, written as DWG and read back, holds the same objects
// with the same values; the objects the writer leaves out are named in its report and are all
// that the drawing read back lacks.
TEST(DwgWrite, corpus_drawings_read_back_with_the_same_objects) {
    int drawings = 0;
    for (const char* folder : {"/work/shared/corpus/dxf", "/work/shared/corpus/dwg"}) {
        if (!std::filesystem::exists(folder)) continue;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            AcDbDatabase db(false, true);
            if (db.readDwgFile(dxf::Wide(entry.path().string()).c_str()) != Acad::eOk) continue;
            dwg::DwgWriteReport report;
            const Bytes bytes = Written(db, report);
            AcDbDatabase back(false, true);
            const std::string name = entry.path().filename().string();
            ASSERT_EQ(dwg::ReadDwgBytes(back, bytes, name), Acad::eOk) << dxf::Utf8(back.lastError());
            dwg_test::TwinComparison comparison;
            comparison.compare(back, db, db.handseed().value());
            const auto unexplained = Unexplained(comparison, report, db, back);
            EXPECT_TRUE(unexplained.empty()) << name << "\n" << Joined(unexplained);
            // The objects left out, by record type (the other entries name values, with spaces).
            int leftOut = 0;
            for (const auto& [type, count] : report.leftOut) {
                if (type.find(' ') == std::string::npos) leftOut += count;
            }
            std::map<std::string, int> missingKinds;
            for (std::uint64_t handle : comparison.missing) {
                AcDbObjectId id;
                db.getAcDbObjectId(id, false, AcDbHandle(handle));
                ++missingKinds[dxf::TypeName(*id.stub()->object)];
            }
            std::string kinds;
            for (const auto& [kind, count] : missingKinds) kinds += " " + kind + ":" + std::to_string(count);
            EXPECT_EQ(comparison.missing.size(), static_cast<std::size_t>(leftOut)) << name << kinds;
            ++drawings;
        }
    }
    EXPECT_GT(drawings, 20);
}

}  // namespace
