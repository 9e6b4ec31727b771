// An independent reader, acad-ts (installed by scripts/deps into build-oracle), agrees with our
// decoders and with the database read from the file on the model-space entities of every
// corpus drawing: the same handles with the same entity types, so the same count of each type.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "platform/dwg/classes.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/carried.hpp"
#include "platform/dwg/decode.hpp"
#include "platform/dwg/read.hpp"
#include "platform/win/codepage.hpp"

namespace {

const std::string kOracle = std::string(TAVRIK_SOURCE_DIR) + "/build-oracle";

std::vector<std::string> OracleEntities(const std::string& path) {
    const std::string command = "node " + std::string(TAVRIK_SOURCE_DIR) +
                                "/tests/platform/dwg/oracle_entities.mjs " + kOracle + " " + path;
    std::vector<std::string> lines;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return lines;
    char buffer[256];
    while (fgets(buffer, sizeof buffer, pipe)) {
        std::string line(buffer);
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
        lines.push_back(line);
    }
    pclose(pipe);
    std::sort(lines.begin(), lines.end());
    return lines;
}

// "TYPE HANDLE" as acad-ts names the entity: it names a TRACE "SOLID" (the same geometry).
// It does not read lights, which both lists leave out.
std::string Line(std::string type, std::uint64_t handle) {
    if (type == "TRACE") type = "SOLID";
    std::ostringstream line;
    line << type << ' ' << std::uppercase << std::hex << handle;
    return line.str();
}

std::vector<std::string> OwnEntities(const std::string& path) {
    const auto file = dwg_test::ReadFileBytes(path);
    std::vector<std::string> lines;
    dwg::DwgContainer container;
    dwg::MapError error;
    if (!dwg::ReadDwgContainer(file, container, error)) return lines;
    const dwg::DwgSections sections = dwg::SectionsOf(container, file);
    std::vector<dwg::ClassRecord> classes;
    if (!dwg::ParseClasses(sections.classes, sections.version, sections.maintenance,
                           sections.codePage, classes, error)) {
        return lines;
    }
    std::vector<dwg::ObjectLocation> map;
    if (!dwg::ParseObjectMap(sections.objectMap, map, error)) return lines;
    for (const auto& loc : map) {
        dwg::ObjectStreams o;
        if (!dwg::OpenObject(sections.objects, loc.offset, sections.version, sections.codePage, o,
                             error)) {
            continue;
        }
        dwg::DecodedObject decoded;
        dwg::DecodeObject(o, classes, decoded);
        const dwg::EntityCommon* common = dwg::EntityCommonOf(decoded);
        if (!common || common->mode != 2) continue;  // model space only
        // The block's own BLOCK and ENDBLK are not among the entities acad-ts lists.
        if (o.type == dwg::kBlock || o.type == dwg::kEndblk) continue;
        const std::string type = dwg::TypeName(o.type, classes);
        if (type != "LIGHT") lines.push_back(Line(type, o.handle));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

// The model-space entities of the database read from the file, as "TYPE HANDLE".
std::vector<std::string> DatabaseEntities(const std::string& path) {
    AcDbDatabase db(false, true);
    std::vector<std::string> lines;
    if (dwg::ReadDwgBytes(db, dwg_test::ReadFileBytes(path), path) != Acad::eOk) return lines;
    AcDbBlockTableRecord* model = nullptr;
    if (acdbOpenObject(model, db.modelSpaceId(), AcDb::kForRead) != Acad::eOk) return lines;
    for (const AcDbObjectId& id : model->entityIds()) {
        const AcDbObject* o = id.stub()->object.get();
        std::wstring type = o->isA()->dxfName();
        if (auto* u = AcDbUnknownEntity::cast(o)) type = u->dxfName();
        if (type != L"LIGHT") lines.push_back(Line(Utf8FromWide(type), id.handle().value()));
    }
    model->close();
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::string TypeOf(const std::string& line) { return line.substr(0, line.find(' ')); }

// acad-ts leaves out what it cannot read: modeler geometry (in part) and kinds it does not
// know. An entity only we list is a difference when acad-ts reads its kind in that drawing and
// the kind is not modeler geometry; the others are printed, not failed.
bool OracleLeavesOut(const std::string& type, const std::set<std::string>& oracleTypes) {
    static const std::set<std::string> kModeler = {"3DSOLID", "REGION", "BODY"};
    return kModeler.count(type) || !oracleTypes.count(type);
}

// The lines only one side has, and the count of each type on each side where they differ.
std::string Differences(const std::vector<std::string>& oracle, const std::vector<std::string>& own) {
    std::vector<std::string> onlyOracle, onlyOwn;
    std::set_difference(oracle.begin(), oracle.end(), own.begin(), own.end(),
                        std::back_inserter(onlyOracle));
    std::set_difference(own.begin(), own.end(), oracle.begin(), oracle.end(),
                        std::back_inserter(onlyOwn));
    std::set<std::string> oracleTypes;
    for (const auto& l : oracle) oracleTypes.insert(TypeOf(l));
    std::string differences;
    for (const auto& l : onlyOracle) differences += "  acad-ts only: " + l + "\n";
    for (const auto& l : onlyOwn) {
        if (OracleLeavesOut(TypeOf(l), oracleTypes)) {
            std::cout << "  not read by acad-ts: " << l << "\n";
        } else {
            differences += "  ours only: " + l + "\n";
        }
    }
    std::map<std::string, std::pair<int, int>> counts;
    for (const auto& l : oracle) ++counts[TypeOf(l)].first;
    for (const auto& l : own) ++counts[TypeOf(l)].second;
    for (const auto& [type, count] : counts) {
        if (count.first == count.second || OracleLeavesOut(type, oracleTypes)) continue;
        differences += "  " + type + ": " + std::to_string(count.first) + " (acad-ts) vs " +
                       std::to_string(count.second) + " (ours)\n";
    }
    return differences;
}

std::vector<std::string> CorpusDwgFiles() {
    std::vector<std::string> names;
    const std::filesystem::path folder = dwg_test::CorpusPath("");
    if (!std::filesystem::is_directory(folder)) return names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".dwg") names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool OracleInstalled() {
    return std::filesystem::exists(kOracle + "/node_modules/@node-projects/acad-ts");
}

class DwgOracle : public ::testing::TestWithParam<std::string> {};

TEST_P(DwgOracle, model_space_entities_match_acad_ts) {
    if (!OracleInstalled()) GTEST_SKIP() << "acad-ts is not installed (scripts/deps installs it)";
    const std::string path = dwg_test::CorpusPath(GetParam());
    const auto oracle = OracleEntities(path);
    const auto own = OwnEntities(path);
    const std::string differences = Differences(oracle, own);
    EXPECT_TRUE(differences.empty()) << differences;
}

TEST_P(DwgOracle, database_model_space_matches_acad_ts) {
    if (!OracleInstalled()) GTEST_SKIP() << "acad-ts is not installed (scripts/deps installs it)";
    const std::string path = dwg_test::CorpusPath(GetParam());
    const auto oracle = OracleEntities(path);
    const auto own = DatabaseEntities(path);
    ASSERT_FALSE(own.empty());
    const std::string differences = Differences(oracle, own);
    EXPECT_TRUE(differences.empty()) << differences;
}

INSTANTIATE_TEST_SUITE_P(Corpus, DwgOracle, ::testing::ValuesIn(CorpusDwgFiles()),
                         [](const auto& info) {
                             std::string name = info.param;
                             std::replace_if(name.begin(), name.end(),
                                             [](char c) { return !std::isalnum(c); }, '_');
                             return name;
                         });

}  // namespace
