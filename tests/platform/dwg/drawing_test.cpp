// A DWG drawing read into a database holds what its DXF twin holds: the same objects under the
// same handles, with the same layers, blocks, coordinates and texts.
#include "platform/dwg/drawing.hpp"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/win/codepage.hpp"

namespace {

dwg::DwgSections UncompressedSections(const std::vector<std::uint8_t>& file, dwg::Version v) {
    dwg::DwgSections s;
    s.version = v;
    s.maintenance = file[0x0B];
    s.codePage = dwg::WindowsCodePage(file[0x13] | (file[0x14] << 8));
    s.header = dwg_test::LocatedSection(file, 0);
    s.classes = dwg_test::LocatedSection(file, 1);
    s.objectMap = dwg_test::LocatedSection(file, 2);
    s.objects = file;
    return s;
}

TEST(DwgDrawing, example_2000_gives_dxf_text_the_dxf_reader_takes) {
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2000.dwg"));
    std::string text;
    dwg::MapError error;
    ASSERT_TRUE(dwg::DwgToDxfText(UncompressedSections(file, dwg::Version::kR2000), text, error))
        << error.reason << " at " << error.offset;
    std::ofstream("/work/tmp/dwgo/example_2000.from_dwg.dxf") << text;
    AcDbDatabase db(false, true);
    EXPECT_EQ(dxf::ReadDxfBytes(db, text, "example_2000.dwg"), Acad::eOk)
        << Utf8FromWide(db.lastError());
}

}  // namespace

#include "platform/dwg/twin_compare.hpp"

namespace {

TEST(DwgDrawing, example_2000_equals_its_dxf_twin_object_by_object) {
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2000.dwg"));
    std::string text;
    dwg::MapError error;
    ASSERT_TRUE(dwg::DwgToDxfText(UncompressedSections(file, dwg::Version::kR2000), text, error));
    AcDbDatabase fromDwg(false, true), fromDxf(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(fromDwg, text, "example_2000.dwg"), Acad::eOk);
    ASSERT_EQ(dxf::ReadDxfFile(fromDxf, "/work/shared/corpus/dxf/example_2000.dxf"), Acad::eOk);
    dwg_test::TwinComparison twins;
    twins.compare(fromDwg, fromDxf, fromDwg.handseed().value());
    for (const auto& d : twins.differences) ADD_FAILURE() << d;
    for (auto h : twins.missing) ADD_FAILURE() << std::hex << h << " is missing";
    EXPECT_GT(twins.compared, 400);
    std::cout << twins.compared << " objects compared\n";
}

}  // namespace

namespace {

TEST(DwgDrawing, every_uncompressed_corpus_drawing_reads_into_a_database) {
    const std::pair<const char*, dwg::Version> files[] = {
        {"example_r14.dwg", dwg::Version::kR14},
        {"example_2000.dwg", dwg::Version::kR2000},
        {"Leader.dwg", dwg::Version::kR14},
        {"entities-2d.dwg", dwg::Version::kR2000},
        {"color_sample_AC1015.dwg", dwg::Version::kR2000}};
    for (const auto& [name, version] : files) {
        SCOPED_TRACE(name);
        const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath(name));
        std::string text;
        dwg::MapError error;
        ASSERT_TRUE(dwg::DwgToDxfText(UncompressedSections(file, version), text, error))
            << error.reason << " at " << error.offset;
        AcDbDatabase db(false, true);
        ASSERT_EQ(dxf::ReadDxfBytes(db, text, name), Acad::eOk) << Utf8FromWide(db.lastError());
        AcDbBlockTableRecord* model = nullptr;
        ASSERT_EQ(acdbOpenObject(model, db.modelSpaceId(), AcDb::kForRead), Acad::eOk);
        EXPECT_GT(model->entityIds().length(), 0);
        model->close();
    }
}

}  // namespace
