// Every corpus drawing read with its decoded records handed to the DXF reader one at a time
// builds, object by object, the database that the same records give as one DXF text.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/db/database.hpp"
#include "platform/db/object.hpp"
#include "platform/dwg/container.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/drawing.hpp"
#include "platform/dwg/read.hpp"
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
    return dwg::DwgToRecords(sections, feed, out.kept, error) && feed.finish() == Acad::eOk;
}

std::string Handle(const AcDbObjectId& id) {
    return id.isNull() ? "null" : std::to_string(id.stub()->handle.value());
}

std::string Tags(const AcDbRawTags& tags) {
    std::string out;
    for (const AcDbRawTag& t : tags) out += std::to_string(t.code) + "=" + std::string(t.value) + " ";
    return out;
}

// One line per object: its handle, class, owner, links and every tag it keeps.
std::vector<std::string> Objects(const AcDbDatabase& db) {
    std::vector<std::string> lines;
    for (const AcDbStub& stub : db.stubs()) {
        if (!stub.object) continue;
        const AcDbObject& o = *stub.object;
        std::string line = std::to_string(stub.handle.value()) + " " + Utf8FromWide(o.isA()->name()) +
                           " owner " + Handle(o.ownerId()) + " xdict " + Handle(o.extensionDictionary()) +
                           " reactors";
        for (int i = 0; i < o.persistentReactors().length(); ++i) line += " " + Handle(o.persistentReactors()[i]);
        line += " | " + Tags(o.fileTags());
        for (const auto& group : o.xData()) line += " xdata " + Utf8FromWide(group.appName) + " " + Tags(group.tags);
        lines.push_back(line);
    }
    return lines;
}

std::string WrittenDxf(AcDbDatabase& db) {
    std::string out;
    dxf::WriteOptions options;
    options.version = AcDb::kDHL_1032;
    EXPECT_EQ(dxf::WriteDxfText(db, options, out), Acad::eOk);
    return out;
}

std::vector<std::string> CorpusDrawings() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(SharedFile("corpus/dwg"))) {
        if (entry.path().extension() == ".dwg") names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

TEST(DwgRecordFeed, every_corpus_drawing_builds_the_database_its_dxf_text_builds) {
    int compared = 0;
    for (const std::string& name : CorpusDrawings()) {
        SCOPED_TRACE(name);
        const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath(name));
        dwg::DwgContainer container;
        dwg::MapError error;
        if (!dwg::ReadDwgContainer(file, container, error)) continue;
        const dwg::DwgSections sections = dwg::SectionsOf(container, file);
        Decoded text, fed;
        const bool readAsText = ReadThroughText(sections, name, text);
        ASSERT_EQ(ReadThroughFeed(sections, name, fed), readAsText) << Utf8FromWide(fed.db.lastError());
        if (!readAsText) continue;
        const std::vector<std::string> expected = Objects(text.db), got = Objects(fed.db);
        ASSERT_EQ(got.size(), expected.size());
        for (std::size_t i = 0; i < got.size(); ++i) ASSERT_EQ(got[i], expected[i]);
        EXPECT_EQ(fed.db.headerVars(), text.db.headerVars());
        EXPECT_EQ(fed.db.classesSection(), text.db.classesSection());
        EXPECT_EQ(fed.db.handseed().value(), text.db.handseed().value());
        ASSERT_EQ(fed.kept.size(), text.kept.size());
        for (std::size_t i = 0; i < fed.kept.size(); ++i) {
            EXPECT_EQ(fed.kept[i].handle, text.kept[i].handle);
            EXPECT_EQ(fed.kept[i].bytes, text.kept[i].bytes);
        }
        EXPECT_EQ(WrittenDxf(fed.db), WrittenDxf(text.db));
        ++compared;
    }
    // The corpus has two dozen drawings of every version; nearly all of them read.
    EXPECT_GE(compared, 20);
}

}  // namespace
