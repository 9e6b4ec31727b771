// Every DWG of the shared corpus reads into a database through the file reader, whatever its
// version, with its version kept and its model space filled.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "platform/db/block_table_record.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/read.hpp"
#include "platform/win/codepage.hpp"

namespace {

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

TEST(DwgCorpus, the_corpus_has_drawings_of_every_container) {
    const auto names = CorpusDwgFiles();
    std::set<dwg::Version> versions;
    for (const auto& name : names) {
        dwg::Version version;
        const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath(name));
        if (dwg::VersionFromMagic(file, version)) versions.insert(version);
    }
    for (auto v : {dwg::Version::kR14, dwg::Version::kR2000, dwg::Version::kR2004,
                   dwg::Version::kR2007, dwg::Version::kR2010, dwg::Version::kR2013,
                   dwg::Version::kR2018}) {
        EXPECT_TRUE(versions.count(v)) << static_cast<int>(v);
    }
}

class DwgCorpusRead : public ::testing::TestWithParam<std::string> {};

TEST_P(DwgCorpusRead, reads_without_error_with_its_version_and_model_space) {
    const std::string path = dwg_test::CorpusPath(GetParam());
    const auto file = dwg_test::ReadFileBytes(path);
    dwg::Version version;
    ASSERT_TRUE(dwg::VersionFromMagic(file, version));
    AcDbDatabase db(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(db, file, path), Acad::eOk) << Utf8FromWide(db.lastError());
    EXPECT_EQ(db.originalFileVersion(), dwg::DatabaseVersion(version));
    EXPECT_TRUE(db.lastError().empty());
    AcDbBlockTableRecord* model = nullptr;
    ASSERT_EQ(acdbOpenObject(model, db.modelSpaceId(), AcDb::kForRead), Acad::eOk);
    EXPECT_GT(model->entityIds().length(), 0);
    model->close();
}

INSTANTIATE_TEST_SUITE_P(Corpus, DwgCorpusRead, ::testing::ValuesIn(CorpusDwgFiles()),
                         [](const auto& info) {
                             std::string name = info.param;
                             std::replace_if(name.begin(), name.end(),
                                             [](char c) { return !std::isalnum(c); }, '_');
                             return name;
                         });

}  // namespace
