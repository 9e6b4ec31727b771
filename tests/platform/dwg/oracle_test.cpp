// An independent reader, acad-ts (installed by scripts/deps into build-oracle), agrees with our
// decoders and with the database read from the file on the entities of every block (model
// space, paper spaces, blocks) of every corpus drawing: the same handles with the same entity
// types, so the same count of each type.
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
#include "platform/db/symbol_tables.hpp"
#include "platform/dwg/decode.hpp"
#include "platform/dwg/entities.hpp"
#include "platform/dwg/read.hpp"
#include "platform/win/codepage.hpp"

namespace {

const std::string kOracle = std::string(TAVRIK_SOURCE_DIR) + "/build-oracle";

// What acad-ts makes of a file: the entities of every block it read as "TYPE HANDLE", how many
// entities of each kind it does not know it met (it keeps no handle for them), and the handles
// of the objects it says it could not read.
struct OracleRead {
    std::vector<std::string> entities;
    std::map<std::string, int> unknownKinds;
    std::set<std::uint64_t> unread;
};

// "TYPE HANDLE" as acad-ts names the entity: it names a TRACE "SOLID" (the same geometry).
std::string Line(std::string type, std::uint64_t handle) {
    if (type == "TRACE") type = "SOLID";
    std::ostringstream line;
    line << type << ' ' << std::uppercase << std::hex << handle;
    return line.str();
}

std::string TypeOf(const std::string& line) { return line.substr(0, line.find(' ')); }
std::uint64_t HandleOf(const std::string& line) {
    return std::stoull(line.substr(line.rfind(' ') + 1), nullptr, 16);
}

OracleRead ReadWithOracle(const std::string& path) {
    const std::string command = "node " + std::string(TAVRIK_SOURCE_DIR) +
                                "/tests/platform/dwg/oracle_entities.mjs " + kOracle + " '" +
                                path + "'";
    OracleRead read;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return read;
    char buffer[256];
    while (fgets(buffer, sizeof buffer, pipe)) {
        std::string line(buffer);
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
        if (line.size() < 3) continue;
        const std::string rest = line.substr(2);
        if (line[0] == 'E') read.entities.push_back(Line(TypeOf(rest), HandleOf(rest)));
        if (line[0] == 'U') ++read.unknownKinds[rest];
        if (line[0] == 'X') read.unread.insert(HandleOf(rest));
    }
    pclose(pipe);
    std::sort(read.entities.begin(), read.entities.end());
    return read;
}

// Entities that belong to another entity rather than to a block, and a block's own BLOCK and
// ENDBLK: acad-ts lists none of them among a block's entities.
bool OwnedByEntity(std::int32_t type) {
    switch (type) {
        case dwg::kAttrib: case dwg::kBlock: case dwg::kEndblk: case dwg::kSeqend:
        case dwg::kVertex2d: case dwg::kVertex3d: case dwg::kVertexMesh: case dwg::kVertexPface:
        case dwg::kVertexPfaceFace:
            return true;
        default:
            return false;
    }
}

// The entities of every block as our decoders read them from the object stream.
std::vector<std::string> DecodedEntities(const std::string& path) {
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
        if (!dwg::EntityCommonOf(decoded) || OwnedByEntity(o.type)) continue;
        lines.push_back(Line(dwg::TypeName(o.type, classes), o.handle));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

// The entities of every block of the database read from the file.
std::vector<std::string> DatabaseEntities(const std::string& path) {
    AcDbDatabase db(false, true);
    std::vector<std::string> lines;
    if (dwg::ReadDwgBytes(db, dwg_test::ReadFileBytes(path), path) != Acad::eOk) return lines;
    AcDbBlockTable* table = nullptr;
    if (db.getBlockTable(table, AcDb::kForRead) != Acad::eOk) return lines;
    for (const AcDbObjectId& blockId : table->recordIds()) {
        const auto* block = AcDbBlockTableRecord::cast(blockId.stub()->object.get());
        if (!block) continue;
        for (const AcDbObjectId& id : block->entityIds()) {
            const AcDbObject* o = id.stub()->object.get();
            std::wstring type = o->isA()->dxfName();
            if (auto* u = AcDbUnknownEntity::cast(o)) type = u->dxfName();
            lines.push_back(Line(Utf8FromWide(type), id.handle().value()));
        }
    }
    table->close();
    std::sort(lines.begin(), lines.end());
    return lines;
}

// Every difference between acad-ts and our list: an entity only one side has, and the count of
// each kind where they differ. acad-ts leaves out what it says it could not read (printed here,
// not failed), and counts the kinds it does not know without their handles: those are compared
// by count.
std::string Differences(const OracleRead& oracle, const std::vector<std::string>& own) {
    std::vector<std::string> onlyOracle, onlyOwn;
    std::set_difference(oracle.entities.begin(), oracle.entities.end(), own.begin(), own.end(),
                        std::back_inserter(onlyOracle));
    std::set_difference(own.begin(), own.end(), oracle.entities.begin(), oracle.entities.end(),
                        std::back_inserter(onlyOwn));
    std::string differences;
    for (const auto& l : onlyOracle) differences += "  acad-ts only: " + l + "\n";
    std::map<std::string, int> unknownOwn;
    std::set<std::string> unread;
    for (const auto& l : onlyOwn) {
        if (oracle.unread.count(HandleOf(l))) {
            std::cout << "  acad-ts could not read: " << l << "\n";
            unread.insert(l);
        } else if (oracle.unknownKinds.count(TypeOf(l))) {
            ++unknownOwn[TypeOf(l)];
        } else {
            differences += "  ours only: " + l + "\n";
        }
    }
    for (const auto& [type, count] : oracle.unknownKinds) {
        std::cout << "  kind acad-ts does not know: " << type << " x" << count << "\n";
        if (unknownOwn[type] != count) {
            differences += "  " + type + ": " + std::to_string(count) + " (acad-ts, unknown kind) vs " +
                           std::to_string(unknownOwn[type]) + " (ours)\n";
        }
    }
    std::map<std::string, std::pair<int, int>> counts;
    for (const auto& l : oracle.entities) ++counts[TypeOf(l)].first;
    for (const auto& l : own) {
        if (!unread.count(l) && !oracle.unknownKinds.count(TypeOf(l))) ++counts[TypeOf(l)].second;
    }
    for (const auto& [type, count] : counts) {
        if (count.first == count.second) continue;
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

TEST_P(DwgOracle, block_entities_match_acad_ts) {
    if (!OracleInstalled()) GTEST_SKIP() << "acad-ts is not installed (scripts/deps installs it)";
    const std::string path = dwg_test::CorpusPath(GetParam());
    const auto oracle = ReadWithOracle(path);
    ASSERT_FALSE(oracle.entities.empty());
    const auto own = DecodedEntities(path);
    const std::string differences = Differences(oracle, own);
    EXPECT_TRUE(differences.empty()) << differences;
}

TEST_P(DwgOracle, database_block_entities_match_acad_ts) {
    if (!OracleInstalled()) GTEST_SKIP() << "acad-ts is not installed (scripts/deps installs it)";
    const std::string path = dwg_test::CorpusPath(GetParam());
    const auto oracle = ReadWithOracle(path);
    ASSERT_FALSE(oracle.entities.empty());
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
