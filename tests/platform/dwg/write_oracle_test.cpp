// Drawings written as AC1018 DWG read in two independent readers used as test oracles only,
// acad-ts and libredwg-web (installed by scripts/deps into build-oracle): each corpus drawing our
// reader reads, written by our writer, gives both the same model-space entities (type and
// handle) and the same texts as our reader gives back.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/carried.hpp"
#include "platform/db/database.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/text.hpp"
#include "platform/dwg/corpus_drawings.hpp"
#include "platform/dwg/sample_drawing.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dxf/model.hpp"
#include "platform/win/codepage.hpp"

namespace {

namespace fs = std::filesystem;
const std::string kOracle = std::string(TAVRIK_SOURCE_DIR) + "/build-oracle";

using Lines = std::vector<std::string>;
const std::string kMInsert = " (MINSERT)";

// "TYPE HANDLE" of each model-space entity, "STRING text" of each text, "ATTRIB tag=value" of
// each attribute of a model-space insert and "LAYER name" of each layer, sorted. A MINSERT is an
// INSERT as DXF names it; it is marked, as libredwg-web's entity list leaves it out.
Lines OwnLines(const std::string& path) {
    AcDbDatabase db(false, true);
    Lines lines;
    if (db.readDwgFile(dxf::Wide(path).c_str()) != Acad::eOk) return {"ERROR " + dxf::Utf8(db.lastError())};
    AcDbLayerTable* layers = nullptr;
    if (db.getSymbolTable(layers, AcDb::kForRead) == Acad::eOk) {
        for (const AcDbObjectId& id : layers->recordIds()) {
            if (auto* layer = AcDbLayerTableRecord::cast(id.stub()->object.get())) {
                lines.push_back("LAYER " + dxf::Utf8(layer->name()));
            }
        }
        layers->close();
    }
    AcDbBlockTableRecord* model = nullptr;
    if (acdbOpenObject(model, db.modelSpaceId(), AcDb::kForRead) != Acad::eOk) return lines;
    for (const AcDbObjectId& id : model->entityIds()) {
        const AcDbObject* o = id.stub()->object.get();
        std::string type = dxf::TypeName(*o);
        std::ostringstream line;
        line << type << ' ' << std::uppercase << std::hex << id.handle().value();
        if (AcDbMInsertBlock::cast(o)) line << kMInsert;
        lines.push_back(line.str());
        if (auto* t = AcDbText::cast(o); t && type == "TEXT") lines.push_back("STRING " + dxf::Utf8(t->textString()));
        if (auto* m = AcDbMText::cast(o)) lines.push_back("STRING " + dxf::Utf8(m->contents()));
        if (auto* insert = AcDbBlockReference::cast(o)) {
            for (const AcDbObjectId& a : insert->attributeIds()) {
                if (auto* attribute = AcDbAttribute::cast(a.stub()->object.get())) {
                    lines.push_back("ATTRIB " + dxf::Utf8(attribute->tag()) + "=" +
                                    dxf::Utf8(attribute->textString()));
                }
            }
        }
    }
    model->close();
    std::sort(lines.begin(), lines.end());
    return lines;
}

// The oracles' lines by file and reader.
std::map<std::string, std::map<std::string, Lines>> OracleLines(const std::vector<std::string>& files) {
    std::string command = "node " + std::string(TAVRIK_SOURCE_DIR) +
                          "/tests/platform/dwg/oracle_written.mjs " + kOracle;
    for (const auto& f : files) command += " '" + f + "'";
    std::map<std::string, std::map<std::string, Lines>> out;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return out;
    char buffer[4096];
    while (fgets(buffer, sizeof buffer, pipe)) {
        std::string line(buffer);
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
        const auto first = line.find(' ');
        const auto second = line.find(' ', first + 1);
        if (first == std::string::npos) continue;
        Lines& lines = out[line.substr(0, first)][line.substr(first + 1, second - first - 1)];
        // "READ" says the reader read the file; it names no entity.
        if (second != std::string::npos && line.compare(second + 1, std::string::npos, "READ") != 0) {
            lines.push_back(line.substr(second + 1));
        }
    }
    pclose(pipe);
    for (auto& [file, readers] : out) {
        for (auto& [reader, lines] : readers) std::sort(lines.begin(), lines.end());
    }
    return out;
}

// What a reader names differently: acad-ts reads a TRACE as a SOLID; libredwg-web names 2D and
// 3D polylines apart and leaves traces, polyface and polygon meshes and MINSERTs (its converter
// has no case for the MINSERT type) out of its entity list.
Lines AsReaderNames(Lines lines, const std::string& reader) {
    Lines out;
    for (std::string& line : lines) {
        const bool minsert = line.size() > kMInsert.size() &&
                             line.compare(line.size() - kMInsert.size(), kMInsert.size(), kMInsert) == 0;
        if (minsert) line.erase(line.size() - kMInsert.size());
        if (reader == "acad-ts" && line.rfind("TRACE ", 0) == 0) line = "SOLID" + line.substr(5);
        if (reader == "libredwg" &&
            (line.rfind("POLYLINE", 0) == 0 || line.rfind("TRACE ", 0) == 0 || minsert)) {
            continue;
        }
        out.push_back(line);
    }
    std::sort(out.begin(), out.end());
    return out;
}

// The text as a reader of the drawing shows it: the \U+XXXX escapes that stand for what the
// code page cannot hold become their characters (the oracles give them as stored).
std::string Unescaped(const std::string& text) {
    std::wstring wide = dxf::Wide(text), out;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        if (wide.compare(i, 3, L"\\U+") == 0 && i + 7 <= wide.size()) {
            out.push_back(static_cast<wchar_t>(std::stoul(dxf::Utf8(wide.substr(i + 3, 4)), nullptr, 16)));
            i += 6;
            continue;
        }
        out.push_back(wide[i]);
    }
    return dxf::Utf8(out);
}

Lines AsShown(const Lines& lines, bool withoutPolylines) {
    Lines out;
    for (const auto& line : lines) {
        if (withoutPolylines && line.rfind("POLYLINE", 0) == 0) continue;
        const bool text = line.rfind("STRING ", 0) == 0 || line.rfind("ATTRIB ", 0) == 0 ||
                          line.rfind("LAYER ", 0) == 0;
        out.push_back(text ? Unescaped(line) : line);
    }
    std::sort(out.begin(), out.end());
    return out;
}

std::string Difference(const Lines& oracle, const Lines& own) {
    Lines onlyOracle, onlyOwn;
    std::set_difference(oracle.begin(), oracle.end(), own.begin(), own.end(), std::back_inserter(onlyOracle));
    std::set_difference(own.begin(), own.end(), oracle.begin(), oracle.end(), std::back_inserter(onlyOwn));
    std::string text;
    for (std::size_t i = 0; i < onlyOracle.size() && i < 5; ++i) text += "    oracle only: " + onlyOracle[i] + "\n";
    for (std::size_t i = 0; i < onlyOwn.size() && i < 5; ++i) text += "    ours only: " + onlyOwn[i] + "\n";
    return text;
}

TEST(DwgWriteOracle, corpus_drawings_written_read_the_same_in_acad_ts_and_libredwg) {
    if (!fs::exists(kOracle + "/node_modules/@node-projects/acad-ts") ||
        !fs::exists(kOracle + "/node_modules/@mlightcad/libredwg-web")) {
        GTEST_SKIP() << "the oracles are not installed (scripts/deps installs them)";
    }
    const fs::path out = fs::path(::testing::TempDir()) / "dwg_written";
    fs::create_directories(out);
    std::vector<std::string> written;
    std::map<std::string, Lines> own;
    // Drawings our reader does not read yet are not written.
    dwg_test::ForEachCorpusDrawing([&](AcDbDatabase& db, const fs::path& path) {
        // The oracles' lines are split at spaces: the written file's name has none.
        std::string name = path.filename().string() + ".dwg";
        std::replace(name.begin(), name.end(), ' ', '_');
        const std::string target = (out / name).string();
        dwg::DwgWriteReport report;
        ASSERT_EQ(dwg::WriteDwgFile(db, target, 936, report), Acad::eOk) << target;
        written.push_back(target);
        own[fs::path(target).filename().string()] = OwnLines(target);
    });
    ASSERT_GT(written.size(), 20u);
    const auto oracles = OracleLines(written);
    std::string failures;
    for (const auto& [name, lines] : own) {
        const auto found = oracles.find(name);
        if (found == oracles.end()) {
            failures += name + ": no oracle read it\n";
            continue;
        }
        for (const char* reader : {"acad-ts", "libredwg"}) {
            const auto it = found->second.find(reader);
            if (it == found->second.end()) {
                failures += name + ": " + reader + " did not read it\n";
                continue;
            }
            const Lines& oracle = it->second;
            const Lines expected = AsReaderNames(lines, reader);
            const Lines got = AsShown(oracle, std::string(reader) == "libredwg");
            if (got != expected) failures += name + " (" + reader + "):\n" + Difference(got, expected);
        }
    }
    EXPECT_TRUE(failures.empty()) << failures;
}

// The Chinese layer name, texts and attribute of a drawing written with the host code page 936
// (stored as ANSI_936 bytes) read the same in both oracles: both decode code page 936.
TEST(DwgWriteOracle, gbk_layer_names_texts_and_attributes_read_the_same_in_both_oracles) {
    if (!fs::exists(kOracle + "/node_modules/@node-projects/acad-ts") ||
        !fs::exists(kOracle + "/node_modules/@mlightcad/libredwg-web")) {
        GTEST_SKIP() << "the oracles are not installed (scripts/deps installs them)";
    }
    const fs::path out = fs::path(::testing::TempDir()) / "dwg_written_gbk";
    fs::create_directories(out);
    const std::string target = (out / "gbk.dwg").string();
    AcDbDatabase db;
    dwg_test::BuildDrawing(db);
    dwg::DwgWriteReport report;
    ASSERT_EQ(dwg::WriteDwgFile(db, target, 936, report), Acad::eOk);
    const Lines own = OwnLines(target);
    for (const char* expected : {"LAYER 轮廓线", "STRING 模板 A-1", "STRING 第一行\\P第二行", "ATTRIB 图号=MP-001"}) {
        EXPECT_NE(std::find(own.begin(), own.end(), expected), own.end()) << expected;
    }
    const auto oracles = OracleLines({target});
    ASSERT_EQ(oracles.count("gbk.dwg"), 1u);
    for (const char* reader : {"acad-ts", "libredwg"}) {
        const auto it = oracles.at("gbk.dwg").find(reader);
        ASSERT_NE(it, oracles.at("gbk.dwg").end()) << reader;
        EXPECT_EQ(AsShown(it->second, false), AsReaderNames(own, reader))
            << reader << "\n" << Difference(AsShown(it->second, false), AsReaderNames(own, reader));
    }
}

}  // namespace
