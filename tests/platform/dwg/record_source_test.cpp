// The DWG writer takes the DXF writer's records as tags, without their text, and encodes a long
// list of entities a batch per thread: the file it writes is the one written on one thread from
// the DXF text of the same drawing, read back tag by tag, byte for byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/db/arc.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/dwg/corpus_drawings.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dwg/write_context.hpp"
#include "platform/dxf/angle_text.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "platform/dxf/tagger.hpp"
#include "drawing_queries.hpp"
#include "shared_folder.hpp"

namespace {

using Bytes = std::vector<std::uint8_t>;

// The file written from the DXF text: the text's tags as a reader finds them, grouped and
// encoded as the writer does, on one thread.
Bytes WrittenThroughText(AcDbDatabase& db, int codePage) {
    dxf::WriteOptions options;
    options.version = AcDb::kDHL_1032;
    options.codePage = codePage;
    std::string text;
    EXPECT_EQ(dxf::WriteDxfText(db, options, text), Acad::eOk);
    std::vector<dwg::SourceTag> tags;
    dxf::TagCursor cursor(text);
    dxf::Tag tag;
    while (cursor.next(tag)) tags.emplace_back(tag.code, tag.value);
    EXPECT_EQ(cursor.error(), "");
    dwg::SourceDrawing source;
    std::string error;
    EXPECT_TRUE(dwg::ReadSource(tags, source, error)) << error;
    dwg::EncodedDrawing encoded;
    EXPECT_EQ(encoded.context.threads, 1u);
    dwg::NoteKeptObjects(db, encoded);
    dwg::EncodeSource(source, codePage, encoded);
    dwg::DwgWriteReport report;
    return dwg::AssembleDwg(db, encoded, report);
}

Bytes Written(AcDbDatabase& db, int codePage) {
    Bytes bytes;
    dwg::DwgWriteReport report;
    EXPECT_EQ(dwg::WriteDwgBytes(db, codePage, bytes, report), Acad::eOk);
    return bytes;
}

// Both ways after a first save, which gives the drawing what every save adds (handles of
// objects made in memory, the objects a drawing needs), so that both start from one database.
void ExpectSameFile(AcDbDatabase& db, int codePage, const std::string& name) {
    Written(db, codePage);
    const Bytes direct = Written(db, codePage);
    const Bytes throughText = WrittenThroughText(db, codePage);
    ASSERT_GT(direct.size(), 0x100u) << name;
    EXPECT_TRUE(direct == throughText) << name << " code page " << codePage;
}

TEST(DwgRecordSource, corpus_drawings_written_from_tags_as_from_text) {
    const int drawings = dwg_test::ForEachCorpusDrawing([](AcDbDatabase& db, const std::filesystem::path& path) {
        ExpectSameFile(db, 936, path.filename().string());
    });
    EXPECT_GT(drawings, 20);
}

// A generated plate drawing of 10000 entities: the model space is long enough for the DXF
// writer to make its records a batch per thread.
TEST(DwgRecordSource, generated_plate_drawing_written_from_tags_as_from_text) {
    const std::filesystem::path generator = SharedFile("bench/gen_plates.py");
    if (!std::filesystem::exists(generator)) GTEST_SKIP() << generator.string() << " not found (TAVRIK_SHARED names its folder)";
    const std::string path = (std::filesystem::temp_directory_path() / "record_source_plates.dxf").string();
    const std::string command = "/usr/bin/python3 " + generator.string() + " 10000 " + path + " > /dev/null";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfFile(db, path), Acad::eOk);
    std::filesystem::remove(path);
    ExpectSameFile(db, 936, "plates");
}

// The tags of the DXF text of a drawing of `count` lines in model space.
std::vector<dwg::SourceTag> LinesTags(AcDbDatabase& db, int count, std::string& text) {
    AcDbBlockTableRecord* model = OpenModelSpace(db, AcDb::kForWrite);
    for (int i = 0; i < count; ++i) {
        auto* line = new AcDbLine(AcGePoint3d(i, 0, 0), AcGePoint3d(i, 10, 0));
        line->setDatabaseDefaults(&db);
        model->appendAcDbEntity(line);
        line->close();
    }
    model->close();
    dxf::WriteOptions options;
    options.version = AcDb::kDHL_1032;
    EXPECT_EQ(dxf::WriteDxfText(db, options, text), Acad::eOk);
    std::vector<dwg::SourceTag> tags;
    dxf::TagCursor cursor(text);
    dxf::Tag tag;
    while (cursor.next(tag)) tags.emplace_back(tag.code, tag.value);
    return tags;
}

// Records without a handle take new ones in the records' order: two lines without one, in
// different batches of a long list, get the same handles on two threads as on one.
TEST(DwgRecordSource, records_without_handles_in_a_long_list_are_numbered_as_on_one_thread) {
    AcDbDatabase db(true, false);
    std::string text;
    std::vector<dwg::SourceTag> tags = LinesTags(db, 9000, text);
    // The handles of the 10th and the 8000th line go.
    int lines = 0;
    for (std::size_t i = 0; i + 1 < tags.size(); ++i) {
        if (tags[i].code() == 0 && tags[i].text() == "LINE") ++lines;
        if ((lines == 10 || lines == 8000) && tags[i].code() == 0 && tags[i + 1].code() == 5) {
            tags.erase(tags.begin() + static_cast<std::ptrdiff_t>(i) + 1);
        }
    }
    dwg::EncodedObjects objects[2];
    for (std::size_t threads : {1u, 2u}) {
        dwg::SourceDrawing source;
        std::string error;
        ASSERT_TRUE(dwg::ReadSource(tags, source, error)) << error;
        dwg::EncodedDrawing encoded;
        encoded.context.threads = threads;
        dwg::EncodeSource(source, 936, encoded);
        objects[threads - 1] = std::move(encoded.context.objects);
    }
    EXPECT_GT(objects[0].size(), 9000u);
    EXPECT_TRUE(objects[0] == objects[1]);
}

// The drawing's tags as the DWG writer takes them, once the entities are in model space.
Acad::ErrorStatus TagsWith(AcDbDatabase& db, std::initializer_list<AcDbEntity*> entities,
                           dxf::DrawingTags& tags) {
    AcDbBlockTableRecord* model = OpenModelSpace(db, AcDb::kForWrite);
    for (AcDbEntity* e : entities) {
        e->setDatabaseDefaults(&db);
        model->appendAcDbEntity(e);
        e->close();
    }
    model->close();
    dxf::WriteOptions options;
    options.version = AcDb::kDHL_1032;
    return dxf::WriteDxfTags(db, options, tags);
}

// A record longer than a part's usual length stays whole in one part: every part begins with a
// record's 0 tag, also after a polyline of 40000 vertices (80000 coordinate tags).
TEST(DwgRecordSource, record_longer_than_a_part_stays_whole) {
    AcDbDatabase db(true, false);
    auto* polyline = new AcDbPolyline();
    for (unsigned i = 0; i < 40000; ++i) polyline->addVertexAt(i, AcGePoint2d(i, i % 7));
    dxf::DrawingTags tags;
    ASSERT_EQ(TagsWith(db, {polyline}, tags), Acad::eOk);
    std::size_t longest = 0;
    for (const auto& part : tags.parts()) {
        ASSERT_FALSE(part.empty());
        EXPECT_EQ(part.front().code(), 0);
        longest = std::max(longest, part.size());
    }
    EXPECT_GT(longest, 80000u);
}

// The first tag of a code in the first record of a type, among the drawing's tags.
const dxf::DrawingTag* TagOf(const dxf::DrawingTags& tags, std::string_view type, int code) {
    bool inside = false;
    for (const auto& part : tags.parts()) {
        for (const dxf::DrawingTag& t : part) {
            if (t.code() == 0) {
                if (inside) return nullptr;
                inside = t.text() == type;
            } else if (inside && t.code() == code) {
                return &t;
            }
        }
    }
    return nullptr;
}

TEST(DrawingTag, a_number_has_no_text_and_a_text_is_no_number) {
    const dxf::DrawingTag number = dxf::DrawingTag::Number(10, -0.0);
    EXPECT_TRUE(number.isNumber());
    EXPECT_TRUE(std::signbit(number.number()));
    const auto& [code, text] = number;
    EXPECT_EQ(code, 10);
    EXPECT_EQ(text, "");
    const dxf::DrawingTag named(8, "WALLS");
    EXPECT_FALSE(named.isNumber());
    EXPECT_EQ(named.code(), 8);
    EXPECT_EQ(named.text(), "WALLS");
    EXPECT_EQ(dxf::DrawingTag(1, "").text(), "");
    EXPECT_FALSE(dxf::DrawingTag(1, "").isNumber());
}

// The reals of entities come as numbers (the values the text reads back as); angles, whose text
// the reader turns into radians, and the records of tables come as text.
TEST(DwgRecordSource, entity_reals_come_as_numbers_angles_and_tables_as_text) {
    AcDbDatabase db(true, false);
    auto* line = new AcDbLine(AcGePoint3d(1.25, 0.1, -0.0), AcGePoint3d(3, 4, 5));
    auto* arc = new AcDbArc(AcGePoint3d(7, 8, 0), 2.5, 0.5, 1.5);
    // A NaN's text reads back as a NaN of other bits: it goes as text.
    std::uint64_t nanBits = 0x7FF0000000000001ull;
    double nan = 0;
    std::memcpy(&nan, &nanBits, sizeof nan);
    auto* point = new AcDbPoint(AcGePoint3d(nan, 1, 0));
    dxf::DrawingTags tags;
    ASSERT_EQ(TagsWith(db, {line, arc, point}, tags), Acad::eOk);
    const std::pair<int, double> lineReals[] = {{10, 1.25}, {20, 0.1}, {30, 0.0}, {11, 3}, {31, 5}};
    for (const auto& [code, value] : lineReals) {
        const dxf::DrawingTag* t = TagOf(tags, "LINE", code);
        ASSERT_NE(t, nullptr) << code;
        ASSERT_TRUE(t->isNumber()) << code;
        EXPECT_EQ(t->number(), value) << code;
        EXPECT_FALSE(std::signbit(t->number())) << code;  // a zero's text is "0.0"
    }
    const dxf::DrawingTag* radius = TagOf(tags, "ARC", 40);
    ASSERT_NE(radius, nullptr);
    EXPECT_TRUE(radius->isNumber());
    const dxf::DrawingTag* start = TagOf(tags, "ARC", 50);
    ASSERT_NE(start, nullptr);
    EXPECT_FALSE(start->isNumber());
    EXPECT_EQ(dxf::Radians(start->text()), 0.5);
    const dxf::DrawingTag* nanX = TagOf(tags, "POINT", 10);
    ASSERT_NE(nanX, nullptr);
    EXPECT_FALSE(nanX->isNumber());
    const dxf::DrawingTag* pointY = TagOf(tags, "POINT", 20);
    ASSERT_NE(pointY, nullptr);
    EXPECT_TRUE(pointY->isNumber());
    const dxf::DrawingTag* layer = TagOf(tags, "LINE", 8);
    ASSERT_NE(layer, nullptr);
    EXPECT_EQ(layer->text(), "0");
    const dxf::DrawingTag* viewHeight = TagOf(tags, "VPORT", 40);
    ASSERT_NE(viewHeight, nullptr);
    EXPECT_FALSE(viewHeight->isNumber());
}

}  // namespace
