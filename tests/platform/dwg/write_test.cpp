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
#include "platform/dwg/classes.hpp"
#include "platform/dwg/container.hpp"
#include "platform/dwg/corpus_drawings.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dwg/sample_drawing.hpp"
#include "platform/dwg/twin_compare.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dxf/codepage.hpp"
#include "platform/dxf/model.hpp"

namespace {

using Bytes = std::vector<std::uint8_t>;

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
    dwg_test::BuildDrawing(db);
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

// A drawing without classes of its own still gets the writer's classes, and the section ends
// with eight zero bytes after its sentinel, as AutoCAD writes it (LibreCAD reads past a section
// that ends with the sentinel, and fails on one without classes).
TEST(DwgWrite, classes_section_of_an_empty_drawing_holds_the_writers_classes) {
    AcDbDatabase db;
    dwg::DwgWriteReport report;
    const Bytes bytes = Written(db, report);
    dwg::DwgContainer container;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ReadDwgContainer(bytes, container, error)) << error.reason;
    const auto section = dwg::FindSection(container, "AcDb:Classes");
    ASSERT_GT(section.size(), 8u);
    EXPECT_TRUE(std::all_of(section.end() - 8, section.end(), [](std::uint8_t b) { return b == 0; }));
    std::vector<dwg::ClassRecord> classes;
    ASSERT_TRUE(dwg::ParseClasses(section, dwg::Version::kR2004, 0, 936, classes, error)) << error.reason;
    std::vector<std::string> names;
    for (const auto& c : classes) names.push_back(c.dxfName);
    EXPECT_EQ(names, (std::vector<std::string>{"ACDBDICTIONARYWDFLT", "DICTIONARYVAR", "SCALE", "PLOTSETTINGS"}));
    EXPECT_EQ(classes.front().number, 500);
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
    dwg_test::BuildDrawing(db);
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
    const int drawings = dwg_test::ForEachCorpusDrawing([](AcDbDatabase& db, const std::filesystem::path& path) {
        dwg::DwgWriteReport report;
        const Bytes bytes = Written(db, report);
        AcDbDatabase back(false, true);
        const std::string name = path.filename().string();
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
    });
    EXPECT_GT(drawings, 20);
}

}  // namespace
