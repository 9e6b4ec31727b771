// The DWG writer takes the DXF writer's records as tags, without their text, and encodes a long
// list of entities a batch per thread: the file it writes is the one written on one thread from
// the DXF text of the same drawing, read back tag by tag, byte for byte.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/dwg/corpus_drawings.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dwg/write_context.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "platform/dxf/tagger.hpp"
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
    AcDbBlockTable* blocks = nullptr;
    db.getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
    blocks->close();
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
        if (tags[i].first == 0 && tags[i].second == "LINE") ++lines;
        if ((lines == 10 || lines == 8000) && tags[i].first == 0 && tags[i + 1].first == 5) {
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

}  // namespace
