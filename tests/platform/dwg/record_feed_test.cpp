// Every corpus drawing read with its decoded records handed to the DXF reader one at a time
// builds, object by object, the database that the same records give as one DXF text, but for
// the records of entities that the writers make the same from the database alone, which the
// fed database does not keep: both databases write the same DXF and DWG bytes.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/db/arc.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/text.hpp"
#include "platform/db/object.hpp"
#include "platform/db/spline.hpp"
#include "platform/dwg/container.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/drawing.hpp"
#include "platform/dwg/object_lines.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dwg/sample_drawing.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/record_feed.hpp"
#include "platform/win/codepage.hpp"
#include "shared_folder.hpp"

namespace {

struct Decoded {
    AcDbDatabase db{false, true};
    std::vector<dwg::KeptData> kept;
};

// The old way: the whole drawing as DXF text, read by the DXF reader.
bool ReadThroughText(const dwg::DwgSections& sections, const std::string& name, Decoded& out) {
    std::string text;
    dwg::MapError error;
    return dwg::DwgToDxfText(sections, text, out.kept, error) &&
           dxf::ReadDxfBytes(out.db, text, name) == Acad::eOk;
}

bool ReadThroughFeed(const dwg::DwgSections& sections, const std::string& name, Decoded& out) {
    dxf::RecordFeed feed(out.db, name);
    dwg::MapError error;
    std::vector<dwg::ErasedEntries> erased;
    std::vector<dwg::DimensionStyleColors> colors;
    return dwg::DwgToRecords(sections, feed, out.kept, erased, colors, error) && feed.finish() == Acad::eOk;
}

std::string Tags(const AcDbRawTags& tags) {
    std::string out;
    for (const AcDbRawTag& t : tags) out += std::to_string(t.code) + "=" + std::string(t.value) + " ";
    return out;
}

// One line per object: its handle, class, owner, links and extension data.
std::vector<std::string> Objects(const AcDbDatabase& db) {
    std::vector<std::string> lines;
    for (const AcDbStub& stub : db.stubs()) {
        if (!stub.object) continue;
        const AcDbObject& o = *stub.object;
        std::string line = dwg_test::ObjectHead(stub);
        for (const auto& group : o.xData()) line += " xdata " + Utf8FromWide(group.appName) + " " + Tags(group.tags);
        lines.push_back(line);
    }
    return lines;
}

// How many objects of `fed` keep no record where those of `text` keep one; fails the test for
// an object that keeps another record than the text's.
int DroppedRecords(const AcDbDatabase& fed, const AcDbDatabase& text) {
    int dropped = 0;
    auto a = fed.stubs().begin();
    for (auto b = text.stubs().begin(); a != fed.stubs().end() && b != text.stubs().end(); ++a, ++b) {
        if (!a->object || !b->object) continue;
        const AcDbRawTags& kept = a->object->fileTags();
        if (kept.empty() && !b->object->fileTags().empty()) ++dropped;
        else EXPECT_EQ(kept, b->object->fileTags()) << a->handle.value();
    }
    return dropped;
}

std::vector<std::string> CorpusDrawings() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(SharedFile("corpus/dwg"))) {
        if (entry.path().extension() == ".dwg") names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

// Reads the drawing both ways and expects the same database, adding to `dropped` the objects
// whose record the feed did not keep; false when the drawing does not read.
bool FeedBuildsWhatTextBuilds(const std::vector<std::uint8_t>& file, const std::string& name, int& dropped) {
    dwg::DwgContainer container;
    dwg::MapError error;
    if (!dwg::ReadDwgContainer(file, container, error)) return false;
    const dwg::DwgSections sections = dwg::SectionsOf(container, file);
    Decoded text, fed;
    const bool readAsText = ReadThroughText(sections, name, text);
    EXPECT_EQ(ReadThroughFeed(sections, name, fed), readAsText) << Utf8FromWide(fed.db.lastError());
    if (!readAsText) return false;
    const std::vector<std::string> expected = Objects(text.db), got = Objects(fed.db);
    EXPECT_EQ(got.size(), expected.size());
    for (std::size_t i = 0; i < std::min(got.size(), expected.size()); ++i)
        if (got[i] != expected[i]) {
            ADD_FAILURE() << "object " << i << "\n" << got[i] << "\n" << expected[i];
            break;
        }
    EXPECT_EQ(fed.db.headerVars(), text.db.headerVars());
    EXPECT_EQ(fed.db.classesSection(), text.db.classesSection());
    EXPECT_EQ(fed.db.handseed().value(), text.db.handseed().value());
    EXPECT_EQ(fed.kept.size(), text.kept.size());
    for (std::size_t i = 0; i < std::min(fed.kept.size(), text.kept.size()); ++i) {
        EXPECT_EQ(fed.kept[i].handle, text.kept[i].handle);
        EXPECT_EQ(fed.kept[i].bytes, text.kept[i].bytes);
    }
    dropped += DroppedRecords(fed.db, text.db);
    EXPECT_EQ(dwg_test::WrittenDxf(fed.db), dwg_test::WrittenDxf(text.db));
    EXPECT_EQ(dwg_test::WrittenDxf(fed.db, AcDb::kDHL_1018), dwg_test::WrittenDxf(text.db, AcDb::kDHL_1018));
    EXPECT_TRUE(dwg_test::WrittenDwg(fed.db) == dwg_test::WrittenDwg(text.db));
    return true;
}

TEST(DwgRecordFeed, every_corpus_drawing_builds_the_database_its_dxf_text_builds) {
    int compared = 0, dropped = 0;
    for (const std::string& name : CorpusDrawings()) {
        SCOPED_TRACE(name);
        if (FeedBuildsWhatTextBuilds(dwg_test::ReadFileBytes(dwg_test::CorpusPath(name)), name, dropped))
            ++compared;
        if (HasFailure()) return;
    }
    // The corpus has two dozen drawings of every version; nearly all of them read, and most of
    // their entities are lines, arcs and texts as the database models them.
    EXPECT_GE(compared, 20);
    EXPECT_GE(dropped, 1000);
}

// Lines, circles, arcs and Chinese texts in turn in model space.
void FillModelSpace(AcDbDatabase& db, int count) {
    AcDbBlockTable* blocks = nullptr;
    db.getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
    blocks->close();
    for (int i = 0; i < count; ++i) {
        const double x = i * 0.37;
        AcDbEntity* entity = nullptr;
        switch (i % 4) {
            case 0: entity = new AcDbLine(AcGePoint3d(x, 1, 0), AcGePoint3d(x + 2.5, -1.25, 0)); break;
            case 1: entity = new AcDbCircle(AcGePoint3d(x, 3, 0), AcGeVector3d::kZAxis, 1.0 + i % 7); break;
            case 2: entity = new AcDbArc(AcGePoint3d(x, 5, 0), 2.0, 0.1 * (i % 11), 3.0); break;
            default: entity = new AcDbText(AcGePoint3d(x, 7, 0), L"孔 " + std::to_wstring(i)); break;
        }
        AcDbObjectId id;
        model->appendAcDbEntity(id, entity);
        entity->close();
    }
    model->close();
}

// The entities of a large block are decoded a batch at a time beside the building of the
// database: the records reach the database in the order, and with the values, of one thread.
TEST(DwgRecordFeed, a_drawing_of_many_entities_builds_the_database_its_dxf_text_builds) {
    AcDbDatabase db;
    FillModelSpace(db, 2 * 2048 + 1234);
    std::vector<std::uint8_t> file;
    dwg::DwgWriteReport report;
    ASSERT_EQ(dwg::WriteDwgBytes(db, 936, file, report), Acad::eOk);
    int dropped = 0;
    EXPECT_TRUE(FeedBuildsWhatTextBuilds(file, "many.dwg", dropped));
}

// A spline of control points is stored without fit tolerance: its decoded record has none, as
// its DXF record has none, so the database keeps no record of it; a spline of fit points alone
// keeps its tolerance.
TEST(DwgRecordFeed, a_spline_of_control_points_keeps_no_record_and_one_of_fit_points_its_tolerance) {
    AcDbDatabase db;
    FillModelSpace(db, 1);
    AcDbBlockTable* blocks = nullptr;
    db.getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
    blocks->close();
    auto* byControl = new AcDbSpline();
    byControl->setNurbsData(3, false, false, false,
                            {AcGePoint3d(0, 0, 0), AcGePoint3d(1, 2, 0), AcGePoint3d(3, 1, 0), AcGePoint3d(4, 3, 0)},
                            {0, 0, 0, 0, 1, 1, 1, 1}, {});
    auto* byFit = new AcDbSpline();
    byFit->fitPoints() = {AcGePoint3d(0, 0, 0), AcGePoint3d(2, 1, 0), AcGePoint3d(4, 3, 0)};
    byFit->setFitTolerance(0.25);
    for (AcDbEntity* spline : {static_cast<AcDbEntity*>(byControl), static_cast<AcDbEntity*>(byFit)}) {
        AcDbObjectId id;
        model->appendAcDbEntity(id, spline);
        spline->close();
    }
    model->close();
    std::vector<std::uint8_t> file = dwg_test::WrittenDwg(db);
    AcDbDatabase back(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(back, std::move(file), "splines.dwg"), Acad::eOk);
    std::vector<const AcDbSpline*> splines;
    for (const AcDbStub& stub : back.stubs())
        if (const auto* s = stub.object ? AcDbSpline::cast(stub.object.get()) : nullptr) splines.push_back(s);
    ASSERT_EQ(splines.size(), 2u);
    EXPECT_FALSE(splines[0]->hasFitData());
    EXPECT_TRUE(splines[0]->fileTags().empty());
    ASSERT_TRUE(splines[1]->hasFitData());
    EXPECT_EQ(splines[1]->fitTolerance(), 0.25);
}

// A DWG's MTEXT gives its measured size, line spacing style and default values, and its INSERT
// has its attributes after it: the writers make both again from the database alone, so read from
// DWG they keep no record, and the drawing writes what its DXF text (every record kept) writes.
TEST(DwgRecordFeed, an_mtext_and_an_insert_with_attributes_keep_no_record) {
    AcDbDatabase db;
    dwg_test::BuildDrawing(db);
    std::vector<std::uint8_t> file = dwg_test::WrittenDwg(db);
    int dropped = 0;
    EXPECT_TRUE(FeedBuildsWhatTextBuilds(file, "sample.dwg", dropped));
    AcDbDatabase back(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(back, std::move(file), "sample.dwg"), Acad::eOk);
    int texts = 0, inserts = 0;
    for (const AcDbStub& stub : back.stubs()) {
        const AcDbObject* o = stub.object.get();
        if (o == nullptr) continue;
        if (AcDbMText::cast(o)) {
            ++texts;
            EXPECT_TRUE(o->fileTags().empty());
        } else if (const auto* insert = AcDbBlockReference::cast(o)) {
            ++inserts;
            EXPECT_EQ(insert->attributeIds().length(), 1);
            EXPECT_TRUE(o->fileTags().empty());
        }
    }
    EXPECT_EQ(texts, 1);
    EXPECT_EQ(inserts, 1);
}

}  // namespace
