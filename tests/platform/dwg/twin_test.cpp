// The six drawings the corpus has as both DWG and DXF: the database read from the DWG equals
// the one read from its DXF twin object by object (handles, kinds, owners, layers, blocks,
// coordinates, texts, dimension values); every difference is listed.
#include <gtest/gtest.h>

#include <iostream>

#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dwg/twin_compare.hpp"
#include "platform/dxf/dxf.hpp"

namespace {

class DwgTwin : public ::testing::TestWithParam<const char*> {};

TEST_P(DwgTwin, database_equals_the_dxf_twin_object_by_object) {
    const std::string stem = GetParam();
    const std::string path = dwg_test::CorpusPath(stem + ".dwg");
    AcDbDatabase fromDwg(false, true), fromDxf(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(fromDwg, dwg_test::ReadFileBytes(path), path), Acad::eOk)
        << Utf8FromWide(fromDwg.lastError());
    ASSERT_EQ(dxf::ReadDxfFile(fromDxf, "/work/shared/corpus/dxf/" + stem + ".dxf"), Acad::eOk);
    dwg_test::TwinComparison twins;
    twins.compare(fromDwg, fromDxf, fromDwg.handseed().value());
    for (const auto& d : twins.differences) ADD_FAILURE() << d;
    for (auto h : twins.missing) ADD_FAILURE() << std::hex << h << " is missing";
    EXPECT_GT(twins.compared, 400);
    std::cout << stem << ": " << twins.compared << " objects compared\n";
}

INSTANTIATE_TEST_SUITE_P(Corpus, DwgTwin,
                         ::testing::Values("example_2000", "example_2004", "example_2007",
                                           "example_2010", "example_2013", "example_2018"));

}  // namespace
