// An independent reader, acad-ts (installed by scripts/deps into build-oracle), agrees with our
// decoders on the model-space entities of the uncompressed corpus drawings: the same handles
// with the same entity types.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
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

std::vector<std::string> OwnEntities(const std::string& path, dwg::Version version) {
    const auto file = dwg_test::ReadFileBytes(path);
    std::vector<dwg::ClassRecord> classes;
    dwg::MapError error;
    std::vector<std::string> lines;
    if (!dwg::ParseClasses(dwg_test::FileSection(file, dwg::kClassesSection), version, 0, 1252, classes, error)) {
        return lines;
    }
    std::vector<dwg::ObjectLocation> map;
    if (!dwg::ParseObjectMap(dwg_test::FileSection(file, dwg::kHandlesSection), map, error)) return lines;
    for (const auto& loc : map) {
        dwg::ObjectStreams o;
        if (!dwg::OpenObject(file, loc.offset, version, 1252, o, error)) continue;
        dwg::DecodedObject decoded;
        dwg::DecodeObject(o, classes, decoded);
        const dwg::EntityCommon* common = dwg::EntityCommonOf(decoded);
        if (!common || common->mode != 2) continue;  // model space only
        // The block's own BLOCK and ENDBLK are not among the entities acad-ts lists.
        if (o.type == dwg::kBlock || o.type == dwg::kEndblk) continue;
        std::string type = dwg::TypeName(o.type, classes);
        // acad-ts does not read lights and names a TRACE "SOLID" (the same geometry).
        if (type == "LIGHT") continue;
        if (type == "TRACE") type = "SOLID";
        std::ostringstream line;
        line << type << ' ' << std::uppercase << std::hex << o.handle;
        lines.push_back(line.str());
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

// The model-space entities of the database read from the file, as "TYPE HANDLE".
std::vector<std::string> DatabaseEntities(const std::string& path, dwg::Version version) {
    const auto file = dwg_test::ReadFileBytes(path);
    const dwg::DwgSections sections = dwg_test::FileSections(file);
    AcDbDatabase db(false, true);
    std::vector<std::string> lines;
    if (dwg::ReadDwgSections(db, sections, path) != Acad::eOk) return lines;
    AcDbBlockTableRecord* model = nullptr;
    if (acdbOpenObject(model, db.modelSpaceId(), AcDb::kForRead) != Acad::eOk) return lines;
    for (const AcDbObjectId& id : model->entityIds()) {
        const AcDbObject* o = id.stub()->object.get();
        std::wstring type = o->isA()->dxfName();
        if (auto* u = AcDbUnknownEntity::cast(o)) type = u->dxfName();
        if (type == L"LIGHT") continue;
        if (type == L"TRACE") type = L"SOLID";
        std::ostringstream line;
        line << Utf8FromWide(type) << ' ' << std::uppercase << std::hex << id.handle().value();
        lines.push_back(line.str());
    }
    model->close();
    std::sort(lines.begin(), lines.end());
    return lines;
}

class DwgOracle : public ::testing::TestWithParam<std::pair<const char*, dwg::Version>> {};

TEST_P(DwgOracle, model_space_entities_match_acad_ts) {
    if (!std::filesystem::exists(kOracle + "/node_modules/@node-projects/acad-ts")) {
        GTEST_SKIP() << "acad-ts is not installed (scripts/deps installs it)";
    }
    const std::string path = dwg_test::CorpusPath(GetParam().first);
    const auto oracle = OracleEntities(path);
    const auto own = OwnEntities(path, GetParam().second);
    ASSERT_FALSE(oracle.empty());
    std::vector<std::string> onlyOracle, onlyOwn;
    std::set_difference(oracle.begin(), oracle.end(), own.begin(), own.end(),
                        std::back_inserter(onlyOracle));
    std::set_difference(own.begin(), own.end(), oracle.begin(), oracle.end(),
                        std::back_inserter(onlyOwn));
    std::string differences;
    for (const auto& l : onlyOracle) differences += "  acad-ts only: " + l + "\n";
    for (const auto& l : onlyOwn) differences += "  ours only: " + l + "\n";
    EXPECT_TRUE(differences.empty()) << differences;
    EXPECT_EQ(own.size(), oracle.size());
}

TEST_P(DwgOracle, database_model_space_matches_acad_ts) {
    if (!std::filesystem::exists(kOracle + "/node_modules/@node-projects/acad-ts")) {
        GTEST_SKIP() << "acad-ts is not installed (scripts/deps installs it)";
    }
    const std::string path = dwg_test::CorpusPath(GetParam().first);
    const auto oracle = OracleEntities(path);
    const auto own = DatabaseEntities(path, GetParam().second);
    ASSERT_FALSE(oracle.empty());
    std::vector<std::string> onlyOracle, onlyOwn;
    std::set_difference(oracle.begin(), oracle.end(), own.begin(), own.end(),
                        std::back_inserter(onlyOracle));
    std::set_difference(own.begin(), own.end(), oracle.begin(), oracle.end(),
                        std::back_inserter(onlyOwn));
    std::string differences;
    for (const auto& l : onlyOracle) differences += "  acad-ts only: " + l + "\n";
    for (const auto& l : onlyOwn) differences += "  ours only: " + l + "\n";
    EXPECT_TRUE(differences.empty()) << differences;
}

INSTANTIATE_TEST_SUITE_P(
    Corpus, DwgOracle,
    ::testing::Values(std::pair{"example_2000.dwg", dwg::Version::kR2000},
                      std::pair{"example_r14.dwg", dwg::Version::kR14},
                      std::pair{"entities-2d.dwg", dwg::Version::kR2000},
                      std::pair{"color_sample_AC1015.dwg", dwg::Version::kR2000},
                      std::pair{"Leader.dwg", dwg::Version::kR14}),
    [](const auto& info) {
        std::string name = info.param.first;
        std::replace_if(name.begin(), name.end(), [](char c) { return !std::isalnum(c); }, '_');
        return name;
    });

}  // namespace
