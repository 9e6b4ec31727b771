// A read that gives the objects section's memory back to the system as the entities are decoded
// for the last time builds the database that the read keeping the section whole builds, object
// by object; whole chunks of the section then read as zeros. Only a section that is the
// container's own and is not kept after the read is given back.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/db/block_reference.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/db/text.hpp"
#include "platform/dwg/container.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/drawing.hpp"
#include "platform/dwg/filed_objects.hpp"
#include "platform/dwg/object_lines.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dwg/released_pages.hpp"
#include "platform/dwg/sample_drawing.hpp"
#include "platform/dxf/record_feed.hpp"
#include "shared_folder.hpp"

namespace {

struct Read {
    AcDbDatabase db{false, true};
    std::vector<dwg::KeptData> kept;
    std::vector<std::uint8_t> objects;  // the objects section after the read
    // The chunks of pages wholly inside the section (aligned on their size where the container
    // held it), and how many of them read as zeros after the read.
    std::size_t wholeChunks = 0, zeroChunks = 0;
};

void CountZeroChunks(std::span<const std::uint8_t> objects, Read& out) {
    const std::size_t chunk = dwg::kReleasedChunk;
    const auto address = reinterpret_cast<std::uintptr_t>(objects.data());
    std::size_t at = (chunk - address % chunk) % chunk;
    for (; at + chunk <= objects.size(); at += chunk) {
        ++out.wholeChunks;
        const auto bytes = objects.subspan(at, chunk);
        out.zeroChunks += std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t b) { return b == 0; });
    }
}

// The drawing read through its records, its objects section's memory given back or not.
bool ReadRecords(const std::vector<std::uint8_t>& file, bool givesBack, Read& out) {
    dwg::DwgContainer container;
    dwg::MapError error;
    if (!dwg::ReadDwgContainer(file, container, error)) return false;
    const dwg::DwgSections sections = dwg::SectionsOf(container, file);
    dxf::RecordFeed feed(out.db, "drawing.dwg");
    std::vector<dwg::ErasedEntries> erased;
    std::vector<dwg::DimensionStyleColors> colors;
    const bool read = dwg::DwgToRecords(sections, feed, out.kept, erased, colors, error, true, givesBack) &&
                      feed.finish() == Acad::eOk;
    out.objects.assign(sections.objects.begin(), sections.objects.end());
    CountZeroChunks(sections.objects, out);
    return read;
}

// The objects section as the file holds it.
std::vector<std::uint8_t> FiledObjects(const std::vector<std::uint8_t>& file) {
    dwg::DwgContainer container;
    dwg::MapError error;
    EXPECT_TRUE(dwg::ReadDwgContainer(file, container, error));
    const std::span<const std::uint8_t> objects = dwg::SectionsOf(container, file).objects;
    return {objects.begin(), objects.end()};
}

// The bytes of `after` that are not those of `before`; fails the test for one that is not zero.
std::size_t Zeroed(const std::vector<std::uint8_t>& before, const std::vector<std::uint8_t>& after) {
    EXPECT_EQ(after.size(), before.size());
    std::size_t zeroed = 0;
    for (std::size_t i = 0; i < std::min(before.size(), after.size()); ++i) {
        if (after[i] == before[i]) continue;
        EXPECT_EQ(after[i], 0) << i;
        ++zeroed;
    }
    return zeroed;
}

// Reads the drawing giving back its objects section and keeping it; expects the same databases.
// Returns the bytes of the section the read giving back zeroed; `givenBack` is that read.
std::size_t GivenBackReadsAsKept(const std::vector<std::uint8_t>& file, Read& givenBack) {
    Read kept;
    const bool read = ReadRecords(file, false, kept);
    EXPECT_EQ(ReadRecords(file, true, givenBack), read) << Utf8FromWide(givenBack.db.lastError());
    EXPECT_EQ(kept.zeroChunks, 0u);
    if (!read) return 0;
    const std::vector<std::string> got = dwg_test::ObjectLines(givenBack.db), expected = dwg_test::ObjectLines(kept.db);
    EXPECT_EQ(got.size(), expected.size());
    for (std::size_t i = 0; i < std::min(got.size(), expected.size()); ++i) {
        if (got[i] != expected[i]) {
            ADD_FAILURE() << "object " << i << "\n" << got[i] << "\n" << expected[i];
            break;
        }
    }
    EXPECT_EQ(givenBack.db.handseed().value(), kept.db.handseed().value());
    EXPECT_EQ(givenBack.kept.size(), kept.kept.size());
    for (std::size_t i = 0; i < std::min(givenBack.kept.size(), kept.kept.size()); ++i)
        EXPECT_EQ(givenBack.kept[i].bytes, kept.kept[i].bytes);
    EXPECT_EQ(dwg_test::WrittenDxf(givenBack.db), dwg_test::WrittenDxf(kept.db));
    const std::vector<std::uint8_t> filed = FiledObjects(file);
    EXPECT_TRUE(kept.objects == filed);
    return Zeroed(filed, givenBack.objects);
}

// A classic 2D polyline of three vertices.
AcDbEntity* ClassicPolyline(double x) {
    auto* polyline = new AcDb2dPolyline;
    for (int k = 0; k < 3; ++k) {
        AcDb2dVertex vertex;
        vertex.position = AcGePoint3d(x + k, k % 2, 0);
        polyline->vertices().push_back(vertex);
    }
    return polyline;
}

// A drawing like the plate sheets of the entities of each kind in turn, among them block
// references with attributes and classic polylines, whose attributes and vertices are written
// after them; a block of circles.
std::vector<std::uint8_t> LargeDrawing(int modelEntities, int paperEntities, int blockEntities = 1) {
    AcDbDatabase db;
    dwg_test::BuildDrawing(db);
    const AcDbObjectId block = dwg_test::AddBlock(db, L"PLATE");
    for (int i = 0; i < blockEntities; ++i)
        dwg_test::Append(db, block, new AcDbCircle(AcGePoint3d(i, 0, 0), AcGeVector3d::kZAxis, 4));
    const auto entity = [&](int i) -> AcDbEntity* {
        const double x = i * 0.5;
        switch (i % 6) {
            case 0: return new AcDbLine(AcGePoint3d(x, 0, 0), AcGePoint3d(x + 2, 1, 0));
            case 1: return new AcDbCircle(AcGePoint3d(x, 3, 0), AcGeVector3d::kZAxis, 1.0 + i % 7);
            case 2: return new AcDbText(AcGePoint3d(x, 5, 0), L"板 " + std::to_wstring(i), AcDbObjectId::kNull, 2.5, 0);
            case 3: return ClassicPolyline(x);
            case 4: {
                auto* polyline = new AcDbPolyline(2);
                polyline->addVertexAt(0, AcGePoint2d(x, 0));
                polyline->addVertexAt(1, AcGePoint2d(x, 9), 0.25);
                return polyline;
            }
            default: return new AcDbBlockReference(AcGePoint3d(x, 7, 0), block);
        }
    };
    const auto append = [&](AcDbObjectId space, int i) {
        const AcDbObjectId id = dwg_test::Append(db, space, entity(i));
        AcDbBlockReference* reference = nullptr;
        if (i % 6 != 5 || acdbOpenObject(reference, id, AcDb::kForWrite) != Acad::eOk) return;
        reference->appendAttribute(new AcDbAttribute(AcGePoint3d(i * 0.5, 7, 0), L"P-" + std::to_wstring(i), L"NO"));
        reference->close();
    };
    for (int i = 0; i < modelEntities; ++i) append(db.modelSpaceId(), i);
    for (int i = 0; i < paperEntities; ++i) append(db.paperSpaceId(), i);
    std::vector<std::uint8_t> file;
    dwg::DwgWriteReport report;
    EXPECT_EQ(dwg::WriteDwgBytes(db, 936, file, report), Acad::eOk);
    return file;
}

// Model or paper space large enough that its entities are decoded on a helper thread, or not;
// a large block, whose entities are all written before the spaces'. Every entity is decoded for
// the last time by the end of the read, so every whole chunk of the section is given back.
TEST(DwgGivenBackObjects, large_drawings_read_giving_back_their_objects_build_the_databases_read_keeping_them) {
    const struct {
        int model, paper, block;
    } cases[] = {{6000, 0, 1}, {6000, 1500, 1}, {300, 3000, 1}, {2000, 0, 3000}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.model) + " in model space, " + std::to_string(c.paper) + " in paper space");
        Read givenBack;
        GivenBackReadsAsKept(LargeDrawing(c.model, c.paper, c.block), givenBack);
        EXPECT_GE(givenBack.wholeChunks, 3u);
        EXPECT_EQ(givenBack.zeroChunks, givenBack.wholeChunks);
    }
}

TEST(DwgGivenBackObjects, corpus_drawings_read_giving_back_their_objects_build_the_databases_read_keeping_them) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(SharedFile("corpus/dwg")))
        if (entry.path().extension() == ".dwg") names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    std::size_t zeroed = 0;
    int paged = 0;
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        const std::vector<std::uint8_t> file = dwg_test::ReadFileBytes(dwg_test::CorpusPath(name));
        dwg::Version version;
        if (!dwg::VersionFromMagic(file, version) || version < dwg::Version::kR2004) continue;
        Read givenBack;
        zeroed += GivenBackReadsAsKept(file, givenBack);
        ++paged;
        if (HasFailure()) return;
    }
    EXPECT_GE(paged, 10);
    EXPECT_GE(zeroed, dwg::kReleasedChunk);
}

TEST(DwgGivenBackObjects, only_a_section_the_container_holds_and_the_read_does_not_keep_is_given_back) {
    // AC1018 in code page 936: its sections are kept unless it is read from a file, which a
    // save reads again.
    const std::vector<std::uint8_t> kept = LargeDrawing(10, 0);
    const AcDbDatabase::DwgSourceFile source;
    const struct {
        const char* what;
        std::vector<std::uint8_t> file;
        bool container;
        const AcDbDatabase::DwgSourceFile* source;
        bool givenBack;
    } cases[] = {
        {"2007, the container's", dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2007.dwg")), true, nullptr, true},
        {"2018, the container's", dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2018.dwg")), true, nullptr, true},
        {"2007, the caller's", dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2007.dwg")), false, nullptr, false},
        {"2000, within the file", dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2000.dwg")), true, nullptr, false},
        {"2004, kept", kept, true, nullptr, false},
        {"2004, read from a file", kept, true, &source, true},
        {"2004, read from a file, the caller's", kept, false, &source, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        dwg::DwgContainer container;
        dwg::MapError error;
        ASSERT_TRUE(dwg::ReadDwgContainer(c.file, container, error));
        const dwg::DwgSections sections = dwg::SectionsOf(container, c.file);
        EXPECT_EQ(dwg::GivesBackObjects(sections, c.container ? &container : nullptr, c.source), c.givenBack);
    }
}

TEST(DwgGivenBackObjects, a_drawing_whose_sections_are_kept_keeps_its_objects_as_filed) {
    const std::vector<std::uint8_t> file = LargeDrawing(3000, 0);
    const std::vector<std::uint8_t> filed = FiledObjects(file);
    AcDbDatabase fromSpan(false, true), fromBytes(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(fromSpan, std::span<const std::uint8_t>(file), "kept.dwg"), Acad::eOk);
    ASSERT_EQ(dwg::ReadDwgBytes(fromBytes, std::vector<std::uint8_t>(file), "kept.dwg"), Acad::eOk);
    EXPECT_GT(filed.size(), 2 * dwg::kReleasedChunk);
    EXPECT_TRUE(fromSpan.dwgFiledObjects().objects == filed);
    EXPECT_TRUE(fromBytes.dwgFiledObjects().objects == filed);
}

}  // namespace
