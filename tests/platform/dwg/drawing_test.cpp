// A DWG drawing read into a database holds what its DXF twin holds: the same objects under the
// same handles, with the same layers, blocks, coordinates and texts.
#include "platform/dwg/drawing.hpp"
#include "platform/dwg/read.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <streambuf>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"
#include "platform/dwg/container.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/filed_objects.hpp"
#include "platform/dwg/encode_sections.hpp"
#include "platform/dwg/entities.hpp"
#include "platform/dwg/object_builder.hpp"
#include "platform/dwg/object_stream.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/win/codepage.hpp"
#include "drawing_queries.hpp"

namespace {

TEST(DwgDrawing, example_2000_gives_dxf_text_the_dxf_reader_takes) {
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2000.dwg"));
    std::string text;
    std::vector<dwg::KeptData> kept;
    dwg::MapError error;
    ASSERT_TRUE(dwg::DwgToDxfText(dwg_test::FileSections(file), text, kept, error))
        << error.reason << " at " << error.offset;
    std::ofstream("/work/tmp/dwgo/example_2000.from_dwg.dxf") << text;
    AcDbDatabase db(false, true);
    EXPECT_EQ(dxf::ReadDxfBytes(db, text, "example_2000.dwg"), Acad::eOk)
        << Utf8FromWide(db.lastError());
}


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
        std::vector<dwg::KeptData> kept;
        dwg::MapError error;
        ASSERT_TRUE(dwg::DwgToDxfText(dwg_test::FileSections(file), text, kept, error))
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

namespace {

std::string HeaderValue(const AcDbDatabase& db, const std::string& name) {
    for (const auto& [var, tags] : db.headerVars()) {
        if (var == name && !tags.empty()) return std::string(tags.begin()->value);
    }
    return {};
}

TEST(DwgRead, the_database_keeps_the_file_version_and_code_page) {
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_r14.dwg"));
    AcDbDatabase db(false, true);
    ASSERT_EQ(dwg::ReadDwgSections(db, dwg_test::FileSections(file), "r14.dwg"),
              Acad::eOk);
    EXPECT_EQ(db.originalFileVersion(), AcDb::kDHL_1014);
    EXPECT_EQ(HeaderValue(db, "$ACADVER"), "AC1014");
    EXPECT_EQ(HeaderValue(db, "$DWGCODEPAGE"), "ANSI_1252");
    EXPECT_TRUE(db.lastError().empty());
}

// A damaged object: the read fails naming the file, the object's offset and the reason, and
// the database is left empty even though it held a drawing before.
TEST(DwgRead, a_damaged_object_leaves_the_database_empty_and_names_offset_and_reason) {
    auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2000.dwg"));
    std::vector<dwg::ObjectLocation> map;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ParseObjectMap(dwg_test::FileSection(file, dwg::kHandlesSection), map, error));
    const auto offset = static_cast<std::size_t>(map[map.size() / 2].offset);
    file[offset + 4] ^= 0x5A;
    AcDbDatabase db(true, true);
    EXPECT_EQ(dwg::ReadDwgSections(db, dwg_test::FileSections(file), "bad.dwg"),
              Acad::eDwgNeedsRecovery);
    const std::string message = Utf8FromWide(db.lastError());
    EXPECT_EQ(message, "bad.dwg: offset " + std::to_string(offset) + ": object CRC mismatch")
        << message;
    EXPECT_TRUE(db.stubs().empty());
    EXPECT_TRUE(db.headerVars().empty());
}

// A LINE of 2000 whose common entity data is whole and whose own values are missing: in model
// space (mode 2), or owned by an object that is no block (mode 0 and that owner).
std::vector<std::uint8_t> LineWithoutValues(std::uint64_t handle, int mode, std::uint64_t owner) {
    dwg_test::ObjectParts p;
    p.version = dwg::Version::kR2000;
    p.type = dwg::kLine;
    p.handle = handle;
    auto& w = p.values;
    w.BS(0);       // no extended data
    w.B(false);    // no preview
    w.BB(static_cast<unsigned>(mode));
    w.BL(0);       // reactors
    w.B(true);     // no links
    w.BS(7);       // colour
    w.BD(1.0);     // linetype scale
    w.BB(0);       // linetype by layer
    w.BB(0);       // plot style by layer
    w.BS(0);       // visible
    w.RC(29);      // lineweight by layer
    if (mode == 0) p.handles.H(4, owner);
    p.handles.H(3, 0);  // no extension dictionary
    p.handles.H(5, 0x10);
    return dwg_test::BuildObject(p);
}

// The drawing with its first LINE replaced by a shorter object in its place; the offset and
// handle of that LINE.
struct ReplacedLine {
    std::vector<std::uint8_t> objects;
    std::size_t offset = 0;
    std::uint64_t handle = 0;
};

ReplacedLine ReplaceFirstLine(const std::vector<std::uint8_t>& file, int mode, std::uint64_t owner) {
    const dwg::DwgSections sections = dwg_test::FileSections(file);
    std::vector<dwg::ObjectLocation> map;
    dwg::MapError error;
    EXPECT_TRUE(dwg::ParseObjectMap(sections.objectMap, map, error));
    ReplacedLine out{{sections.objects.begin(), sections.objects.end()}, 0, 0};
    for (const dwg::ObjectLocation& at : map) {
        dwg::ObjectStreams o;
        if (!dwg::OpenObject(sections.objects, at.offset, sections.version, sections.codePage, o, error) ||
            o.type != dwg::kLine)
            continue;
        const auto line = LineWithoutValues(at.handle, mode, owner);
        EXPECT_LE(line.size(), o.size + 4);
        std::copy(line.begin(), line.end(), out.objects.begin() + at.offset);
        out.offset = static_cast<std::size_t>(at.offset);
        out.handle = at.handle;
        return out;
    }
    ADD_FAILURE() << "no LINE in the drawing";
    return out;
}

// Entities are decoded whole when their block writes them; one that does not decode fails the
// read as at the map, whether a block holds it or none does.
TEST(DwgRead, an_entity_whose_values_do_not_decode_fails_the_read_wherever_it_belongs) {
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2000.dwg"));
    for (const int mode : {2, 0}) {
        SCOPED_TRACE(mode == 2 ? "in model space" : "owned by no block");
        // Owner 1: the block control object, which writes no entities.
        const ReplacedLine replaced = ReplaceFirstLine(file, mode, 1);
        dwg::DwgSections sections = dwg_test::FileSections(file);
        sections.objects = replaced.objects;
        AcDbDatabase db(true, true);
        EXPECT_EQ(dwg::ReadDwgSections(db, sections, "bad.dwg"), Acad::eDwgNeedsRecovery);
        EXPECT_EQ(Utf8FromWide(db.lastError()), "bad.dwg: offset " + std::to_string(replaced.offset) +
                                                     ": object " + std::to_string(replaced.handle) +
                                                     " (LINE) does not hold what its type needs");
        EXPECT_TRUE(db.stubs().empty());
    }
}

// How the object map of a test lists the dimension style table's control object: twice, once
// and then a LINE under its handle, or (the last of the objects of) the next handle up only.
enum class ControlListed { kTwice, kThenALineUnderItsHandle, kUnderTheNextHandleOnly };

// The drawing's DXF text with its object map changed so.
std::string TextWithControlListed(const std::vector<std::uint8_t>& file, ControlListed listed) {
    dwg::DwgSections sections = dwg_test::FileSections(file);
    std::vector<dwg::ObjectLocation> map;
    dwg::MapError error;
    EXPECT_TRUE(dwg::ParseObjectMap(sections.objectMap, map, error));
    std::size_t control = map.size();
    std::int64_t line = -1;
    for (std::size_t k = 0; k < map.size(); ++k) {
        dwg::ObjectStreams o;
        if (!dwg::OpenObject(sections.objects, map[k].offset, sections.version, sections.codePage, o, error)) continue;
        if (o.type == dwg::kDimensionStyle - 1) control = k;
        if (o.type == dwg::kLine) line = map[k].offset;
    }
    EXPECT_LT(control, map.size());
    EXPECT_GE(line, 0);
    if (control == map.size()) return "";
    const auto at = map.begin() + static_cast<std::ptrdiff_t>(control);
    if (listed == ControlListed::kUnderTheNextHandleOnly) {
        const dwg::ObjectLocation moved{at->handle + 1, at->offset};
        map.erase(at);
        const auto after = std::upper_bound(map.begin(), map.end(), moved.handle,
                                            [](std::uint64_t h, const dwg::ObjectLocation& l) { return h < l.handle; });
        map.insert(after, moved);
    } else {
        map.insert(at + 1, {at->handle, listed == ControlListed::kTwice ? at->offset : line});
    }
    const std::vector<std::uint8_t> objectMap = dwg::EncodeObjectMap(map);
    sections.objectMap = objectMap;
    std::string text;
    std::vector<dwg::KeptData> kept;
    EXPECT_TRUE(dwg::DwgToDxfText(sections, text, kept, error)) << error.reason;
    return text;
}

// An object is looked up by its handle, and of two objects the map lists under one handle the
// later is the one found: the dimension style table's control object gives the table its list
// of styles, unless a LINE listed later under its handle hides it or it is not under its handle.
TEST(DwgDrawing, of_two_objects_under_one_handle_the_later_is_the_one_looked_up) {
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2000.dwg"));
    const std::string listOfStyles = "\nAcDbDimStyleTable\n";
    EXPECT_NE(TextWithControlListed(file, ControlListed::kTwice).find(listOfStyles), std::string::npos);
    EXPECT_EQ(TextWithControlListed(file, ControlListed::kThenALineUnderItsHandle).find(listOfStyles),
              std::string::npos);
    EXPECT_EQ(TextWithControlListed(file, ControlListed::kUnderTheNextHandleOnly).find(listOfStyles),
              std::string::npos);
}

// Objects other than entities are decoded whole by the first pass over the map: a table
// record whose values do not decode fails the read there, named by its handle and kind.
TEST(DwgRead, a_table_record_whose_values_do_not_decode_fails_the_read) {
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2000.dwg"));
    const dwg::DwgSections sections = dwg_test::FileSections(file);
    std::vector<dwg::ObjectLocation> map;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ParseObjectMap(sections.objectMap, map, error));
    for (const dwg::ObjectLocation& at : map) {
        dwg::ObjectStreams o;
        if (!dwg::OpenObject(sections.objects, at.offset, sections.version, sections.codePage, o, error) ||
            o.type != dwg::kLayer)
            continue;
        dwg_test::ObjectParts p;
        p.version = dwg::Version::kR2000;
        p.type = dwg::kLayer;
        p.handle = at.handle;
        p.values.BS(0);  // no extended data, and nothing of the record after it
        const auto layer = dwg_test::BuildObject(p);
        ASSERT_LE(layer.size(), o.size + 4);
        std::vector<std::uint8_t> objects(sections.objects.begin(), sections.objects.end());
        std::copy(layer.begin(), layer.end(), objects.begin() + at.offset);
        dwg::DwgSections bad = sections;
        bad.objects = objects;
        AcDbDatabase db(true, true);
        EXPECT_EQ(dwg::ReadDwgSections(db, bad, "bad.dwg"), Acad::eDwgNeedsRecovery);
        EXPECT_EQ(Utf8FromWide(db.lastError()), "bad.dwg: offset " + std::to_string(at.offset) + ": object " +
                                                     std::to_string(at.handle) +
                                                     " (LAYER) does not hold what its type needs");
        return;
    }
    FAIL() << "no LAYER in the drawing";
}

// A drawing of 2004 with `lines` LINEs in model space, as our writer makes it.
std::vector<std::uint8_t> ManyLines(int lines) {
    AcDbDatabase db;
    AcDbBlockTableRecord* model = OpenModelSpace(db, AcDb::kForWrite);
    for (int i = 0; i < lines; ++i) {
        auto* line = new AcDbLine(AcGePoint3d(i, 0, 0), AcGePoint3d(i, 1, 0));
        AcDbObjectId id;
        model->appendAcDbEntity(id, line);
        line->close();
    }
    model->close();
    std::vector<std::uint8_t> file;
    dwg::DwgWriteReport report;
    EXPECT_EQ(dwg::WriteDwgBytes(db, 1252, file, report), Acad::eOk);
    return file;
}

// A large drawing's objects are first read on two threads, a chunk at a time: of the damaged
// objects, the read names the first in the map, whichever thread meets which.
TEST(DwgRead, of_damaged_objects_of_a_large_drawing_the_first_in_the_map_is_named) {
    const auto file = ManyLines(3 * 2048 + 500);
    dwg::DwgContainer container;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ReadDwgContainer(file, container, error)) << error.reason;
    const dwg::DwgSections sections = dwg::SectionsOf(container, file);
    std::vector<dwg::ObjectLocation> map;
    ASSERT_TRUE(dwg::ParseObjectMap(sections.objectMap, map, error));
    ASSERT_GT(map.size(), 3u * 2048);
    const std::size_t last = map.size() - 1;
    const std::vector<std::vector<std::size_t>> damages = {
        {10}, {2048 + 5}, {last}, {10, 4100}, {2100, 4100}, {2047, 2048}, {4100, last}};
    for (const auto& damaged : damages) {
        SCOPED_TRACE(testing::PrintToString(damaged));
        std::vector<std::uint8_t> objects(sections.objects.begin(), sections.objects.end());
        for (const std::size_t k : damaged) objects[static_cast<std::size_t>(map[k].offset) + 4] ^= 0x5A;
        dwg::DwgSections bad = sections;
        bad.objects = objects;
        AcDbDatabase db(false, true);
        EXPECT_EQ(dwg::ReadDwgSections(db, bad, "bad.dwg"), Acad::eDwgNeedsRecovery);
        EXPECT_EQ(Utf8FromWide(db.lastError()),
                  "bad.dwg: offset " + std::to_string(map[damaged.front()].offset) + ": object CRC mismatch");
        EXPECT_TRUE(db.stubs().empty());
    }
}

// A file of 2004 handed over whole reads as the same bytes lent do, and keeps the same sections.
TEST(DwgRead, a_2004_file_handed_over_reads_as_its_bytes_lent_do) {
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2004.dwg"));
    AcDbDatabase lent(false, true), given(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(lent, std::span<const std::uint8_t>(file), "a.dwg"), Acad::eOk);
    ASSERT_EQ(dwg::ReadDwgBytes(given, std::vector<std::uint8_t>(file), "a.dwg"), Acad::eOk)
        << Utf8FromWide(given.lastError());
    EXPECT_EQ(given.stubs().size(), lent.stubs().size());
    const auto& a = lent.dwgFiledObjects();
    const auto& b = given.dwgFiledObjects();
    EXPECT_FALSE(b.objects.empty());
    EXPECT_EQ(b.header, a.header);
    EXPECT_EQ(b.classes, a.classes);
    EXPECT_EQ(b.objectMap, a.objectMap);
    EXPECT_EQ(b.objects, a.objects);
}

// The kept sections are the container's buffers moved into the database, not copies of them;
// without the container they are copied.
TEST(DwgRead, filed_sections_are_moved_out_of_the_container_that_holds_them) {
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2004.dwg"));
    dwg::DwgContainer container;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ReadDwgContainer(file, container, error));
    const dwg::DwgSections sections = dwg::SectionsOf(container, file);
    const std::vector<std::uint8_t> objects(sections.objects.begin(), sections.objects.end());
    const std::vector<std::uint8_t> header(sections.header.begin(), sections.header.end());
    AcDbDatabase copied(false, true), moved(false, true);
    dwg::KeepFiledObjects(copied, sections);
    EXPECT_NE(copied.dwgFiledObjects().objects.data(), sections.objects.data());
    dwg::KeepFiledObjects(moved, sections, &container);
    EXPECT_EQ(moved.dwgFiledObjects().objects.data(), sections.objects.data());
    EXPECT_EQ(moved.dwgFiledObjects().header.data(), sections.header.data());
    EXPECT_EQ(moved.dwgFiledObjects().objects, objects);
    EXPECT_EQ(moved.dwgFiledObjects().header, header);
    EXPECT_EQ(copied.dwgFiledObjects().objects, objects);
}

// A stream is read from where it stands to its end, in one go when it can tell its size and
// as it comes when it cannot (a pipe).
TEST(DwgRead, stream_bytes_are_read_from_where_the_stream_stands) {
    std::istringstream seekable(std::string("AC1018-rest"));
    char head[6];
    seekable.read(head, sizeof head);
    const std::vector<std::uint8_t> rest = dwg::StreamBytes(seekable);
    EXPECT_EQ(std::string(rest.begin(), rest.end()), "-rest");
    struct Unseekable : std::streambuf {
        explicit Unseekable(std::string& s) { setg(s.data(), s.data(), s.data() + s.size()); }
    };
    std::string text = "AC1018 piped";
    Unseekable buffer(text);
    std::istream piped(&buffer);
    const std::vector<std::uint8_t> all = dwg::StreamBytes(piped);
    EXPECT_EQ(std::string(all.begin(), all.end()), "AC1018 piped");
}

// A stream that tells a size larger than it holds (a file cut short while it is read) gives
// what it holds.
TEST(DwgRead, stream_bytes_of_a_stream_shorter_than_it_says_are_what_it_holds) {
    // Says it ends at 100 and holds 10 characters.
    struct Shrunk : std::streambuf {
        explicit Shrunk(std::string& s) { setg(s.data(), s.data(), s.data() + s.size()); }
        pos_type seekoff(off_type off, std::ios_base::seekdir dir, std::ios_base::openmode) override {
            at = (dir == std::ios_base::end ? 100 : dir == std::ios_base::cur ? at : 0) + off;
            return pos_type(at);
        }
        pos_type seekpos(pos_type pos, std::ios_base::openmode) override {
            at = pos;
            setg(eback(), eback() + std::min<off_type>(pos, egptr() - eback()), egptr());
            return pos;
        }
        off_type at = 0;
    };
    std::string text = "AC1018 cut";
    Shrunk buffer(text);
    std::istream in(&buffer);
    const std::vector<std::uint8_t> bytes = dwg::StreamBytes(in);
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "AC1018 cut");
}

// A damaged container is named as the container reader names it, whether the file's bytes are
// lent or handed over, and the database is left empty.
TEST(DwgRead, a_damaged_container_is_named_by_both_ways_of_handing_the_file) {
    auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2004.dwg"));
    file.resize(file.size() / 2);
    dwg::DwgContainer container;
    dwg::MapError error;
    ASSERT_FALSE(dwg::ReadDwgContainer(file, container, error));
    const std::string expected = "cut.dwg: offset " + std::to_string(error.offset) + ": " + error.reason;
    AcDbDatabase lent(true, true), given(true, true);
    EXPECT_EQ(dwg::ReadDwgBytes(lent, std::span<const std::uint8_t>(file), "cut.dwg"), Acad::eDwgNeedsRecovery);
    EXPECT_EQ(dwg::ReadDwgBytes(given, std::vector<std::uint8_t>(file), "cut.dwg"), Acad::eDwgNeedsRecovery);
    EXPECT_EQ(Utf8FromWide(lent.lastError()), expected);
    EXPECT_EQ(Utf8FromWide(given.lastError()), expected);
    EXPECT_TRUE(lent.stubs().empty());
    EXPECT_TRUE(given.stubs().empty());
}

// A section is taken from the buffer that holds it, not from another one of its size.
TEST(DwgRead, a_filed_section_is_taken_from_its_own_buffer) {
    dwg::DwgContainer container;
    container.buffers = {{1, 2, 3, 4}, {5, 6, 7, 8}};
    dwg::DwgSections sections;
    sections.version = dwg::Version::kR2004;
    sections.codePage = 1252;
    sections.header = container.buffers[1];
    AcDbDatabase db(false, true);
    dwg::KeepFiledObjects(db, sections, &container);
    EXPECT_EQ(db.dwgFiledObjects().header, (std::vector<std::uint8_t>{5, 6, 7, 8}));
    EXPECT_EQ(container.buffers[0], (std::vector<std::uint8_t>{1, 2, 3, 4}));
}

TEST(DwgRead, a_damaged_header_section_is_named_in_the_reason) {
    auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2000.dwg"));
    auto sections = dwg_test::FileSections(file);
    std::vector<std::uint8_t> header(sections.header.begin(), sections.header.end());
    header[40] ^= 1;
    sections.header = header;
    AcDbDatabase db(false, true);
    EXPECT_EQ(dwg::ReadDwgSections(db, sections, "bad.dwg"), Acad::eDwgNeedsRecovery);
    EXPECT_NE(Utf8FromWide(db.lastError()).find("header section CRC mismatch"), std::string::npos);
}

TEST(DwgRead, files_are_told_by_their_first_bytes) {
    const std::string dwg = "AC1018\0\0", dxf = "  0\nSECTION", odd = "AC9999";
    auto bytes = [](const std::string& s) {
        return std::span(reinterpret_cast<const std::uint8_t*>(s.data()), s.size());
    };
    EXPECT_TRUE(dwg::LooksLikeDwg(bytes(dwg)));
    EXPECT_FALSE(dwg::LooksLikeDwg(bytes(dxf)));
    EXPECT_FALSE(dwg::LooksLikeDwg(bytes("AC10")));
    dwg::Version v;
    ASSERT_TRUE(dwg::VersionFromMagic(bytes(dwg), v));
    EXPECT_EQ(v, dwg::Version::kR2004);
    EXPECT_FALSE(dwg::VersionFromMagic(bytes(odd), v));
    AcDbDatabase db(false, true);
    EXPECT_EQ(dwg::ReadDwgBytes(db, bytes("AC1099xxxxxxxxxxxxxxxxxxxxxxx"), "odd.dwg"),
              Acad::eDwgNeedsRecovery);
    EXPECT_EQ(Utf8FromWide(db.lastError()),
              "odd.dwg: offset 0: not a DWG version this reader knows (\"AC1099\")");
}

}  // namespace

// Attributes and vertices are the only entities an entity owns: of lines a damaged file gives as
// a chain, each owned by the one before, the read follows the first link only (a chain as long
// as the drawing, or one leading back to its start, would otherwise be followed without end).
TEST(DwgRead, entities_owned_by_an_owned_entity_are_not_followed) {
    AcDbDatabase db;
    AcDbBlockTableRecord* model = OpenModelSpace(db, AcDb::kForWrite);
    std::vector<AcDbObjectId> chain;
    for (int i = 0; i < 4; ++i) {
        auto* line = new AcDbLine(AcGePoint3d(i, 0, 0), AcGePoint3d(i, 1, 0));
        AcDbObjectId id;
        model->appendAcDbEntity(id, line);
        if (!chain.empty()) line->setOwnerId(chain.back());
        line->close();
        chain.push_back(id);
    }
    model->close();
    std::vector<std::uint8_t> file;
    dwg::DwgWriteReport report;
    ASSERT_EQ(dwg::WriteDwgBytes(db, 1252, file, report), Acad::eOk);
    AcDbDatabase read(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(read, std::span<const std::uint8_t>(file), "chain.dwg"), Acad::eOk)
        << Utf8FromWide(read.lastError());
    std::vector<bool> present;
    for (const AcDbObjectId& id : chain) {
        AcDbObjectId found;
        present.push_back(read.getAcDbObjectId(found, false, id.handle()) == Acad::eOk &&
                          AcDbLine::cast(found.stub()->object.get()) != nullptr);
    }
    EXPECT_EQ(present, (std::vector<bool>{true, true, false, false}));
}
