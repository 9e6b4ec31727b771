// Records handed to the reader one at a time (as the DWG reader hands them) give themselves up
// when the writer makes them again from the database alone: an MTEXT that gives its measured
// size, line spacing style and default values, as a DWG file's texts do, and an INSERT whose
// attributes follow it. Records with more than the model keep theirs; either way the drawing
// writes the DXF that the same text read as a file (which keeps every record) writes.
#include <gtest/gtest.h>

#include <string>

#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/mtext.hpp"
#include "platform/dwg/sample_drawing.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/record_feed.hpp"
#include "feed_text.hpp"

namespace {

std::string Written(AcDbDatabase& db) {
    std::string out;
    EXPECT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    return out;
}

// The sample drawing (an MTEXT, a block with an attribute definition and an INSERT of it with
// its attribute) as the writer writes it.
std::string WrittenSample() {
    AcDbDatabase db;
    dwg_test::BuildDrawing(db);
    return Written(db);
}

// Where the record of `type` ends, or where its first tag of `code` (as the writer spells it,
// "  1" for code 1) ends.
size_t RecordEnd(const std::string& text, const std::string& type) {
    const size_t start = text.find("  0\n" + type + "\n");
    EXPECT_NE(start, std::string::npos) << type;
    return text.find("  0\n", start + 1);
}

size_t TagEnd(const std::string& text, const std::string& type, const std::string& code) {
    const size_t start = text.find("  0\n" + type + "\n");
    const size_t at = text.find("\n" + code + "\n", start);
    EXPECT_LT(at, RecordEnd(text, type)) << type << " " << code;
    return text.find('\n', at + code.size() + 2) + 1;
}

// The sample's MTEXT as a DWG file gives it: its measured size after the contents, then the
// direction, line spacing style and factor at their defaults.
std::string SampleOfDwgTexts() {
    std::string text = WrittenSample();
    text.insert(RecordEnd(text, "MTEXT"), " 11\n1.0\n 21\n0.0\n 31\n0.0\n 73\n1\n 44\n1.0\n");
    text.insert(TagEnd(text, "MTEXT", "  1"), " 42\n0.0\n 43\n0.0\n");
    return text;
}

void Feed(AcDbDatabase& db, const std::string& text) {
    dxf::RecordFeed feed(db, "fed.dxf");
    dxftest::FeedText(feed, text);
    ASSERT_EQ(feed.finish(), Acad::eOk);
}

template <typename T>
T* FirstInModelSpace(const AcDbDatabase& db) {
    const auto* model = AcDbBlockTableRecord::cast(db.modelSpaceId().stub()->object.get());
    for (int i = 0; i < model->entityIds().length(); ++i)
        if (T* e = T::cast(model->entityIds()[i].stub()->object.get())) return e;
    return nullptr;
}

// The text of the record of `type` in a drawing's text.
std::string RecordText(const std::string& text, const std::string& type) {
    const size_t start = text.find("  0\n" + type + "\n");
    return start == std::string::npos ? std::string() : text.substr(start, RecordEnd(text, type) - start);
}

TEST(FedTextRecords, mtext_as_a_dwg_gives_it_and_insert_with_attributes_keep_no_record_and_write_the_same_dxf) {
    const std::string text = SampleOfDwgTexts();
    AcDbDatabase fed(false, true), read(false, true);
    Feed(fed, text);
    ASSERT_EQ(dxf::ReadDxfBytes(read, text, "read.dxf"), Acad::eOk);
    const auto* mtext = FirstInModelSpace<AcDbMText>(fed);
    const auto* insert = FirstInModelSpace<AcDbBlockReference>(fed);
    ASSERT_TRUE(mtext && insert);
    EXPECT_TRUE(mtext->fileTags().empty());
    EXPECT_TRUE(insert->fileTags().empty());
    EXPECT_EQ(insert->attributeIds().length(), 1);
    const std::string written = Written(fed);
    EXPECT_EQ(written, Written(read));
    EXPECT_EQ(RecordText(written, "MTEXT"), RecordText(text, "MTEXT"));
    EXPECT_EQ(RecordText(written, "INSERT"), RecordText(text, "INSERT"));
}

struct KeptCase {
    const char* behaviour;
    std::string type;  // of the record that stays
    std::string text;
};

// The sample with its ATTRIB record taken out: the INSERT says attributes follow, none do.
std::string SampleWithoutAttribute() {
    std::string text = SampleOfDwgTexts();
    const size_t start = text.find("  0\nATTRIB\n");
    return text.erase(start, RecordEnd(text, "ATTRIB") - start);
}

std::string SampleWith(const std::string& type, const std::string& code, const std::string& insert) {
    std::string text = SampleOfDwgTexts();
    return text.insert(TagEnd(text, type, code), insert);
}

// The sample with the value of the first tag of `code` in the record of `type` replaced.
std::string SampleWithValue(const std::string& type, const std::string& code, const std::string& value) {
    std::string text = SampleOfDwgTexts();
    const size_t end = TagEnd(text, type, code);
    const size_t start = text.rfind('\n', end - 2) + 1;
    return text.replace(start, end - start, value + "\n");
}

const AcDbEntity* FirstOfType(const AcDbDatabase& db, const std::string& type) {
    if (type == "MTEXT") return FirstInModelSpace<AcDbMText>(db);
    return FirstInModelSpace<AcDbBlockReference>(db);
}

TEST(FedTextRecords, record_with_what_the_model_lacks_is_kept_and_written_the_same) {
    const KeptCase cases[] = {
        {"an MTEXT's defined height, not modelled", "MTEXT", SampleWith("MTEXT", " 41", " 46\n0.0\n")},
        {"an MTEXT's rotation beside its direction", "MTEXT", SampleWith("MTEXT", " 44", " 50\n0.0\n")},
        {"a measured size in a text of its own", "MTEXT", SampleWithValue("MTEXT", " 42", "0.00")},
        {"a line spacing style in a text of its own", "MTEXT", SampleWithValue("MTEXT", " 73", "01")},
        {"an INSERT whose attributes do not follow", "INSERT", SampleWithoutAttribute()},
        {"an INSERT of a block the file does not have", "INSERT", SampleWithValue("INSERT", "  2", "NOWHERE")},
    };
    for (const KeptCase& c : cases) {
        SCOPED_TRACE(c.behaviour);
        AcDbDatabase fed(false, true), read(false, true);
        Feed(fed, c.text);
        ASSERT_EQ(dxf::ReadDxfBytes(read, c.text, "read.dxf"), Acad::eOk);
        const AcDbEntity* keeper = FirstOfType(fed, c.type);
        const AcDbEntity* asFile = FirstOfType(read, c.type);
        ASSERT_TRUE(keeper && asFile);
        EXPECT_FALSE(keeper->fileTags().empty());
        EXPECT_EQ(keeper->fileTags(), asFile->fileTags());
        EXPECT_EQ(Written(fed), Written(read));
    }
}

// A file's measured size, line spacing style and factor are the text's; a text made here, which
// was never measured, writes none of them at their defaults, and those it is given.
TEST(FedTextRecords, mtext_reads_the_values_its_file_gives_and_a_made_one_writes_those_not_at_default) {
    std::string text = SampleOfDwgTexts();
    for (auto [from, to] : {std::pair<std::string, std::string>{" 42\n0.0\n 43\n0.0\n", " 42\n12.5\n 43\n3.0\n"},
                            {" 11\n1.0\n 21\n0.0\n", " 11\n0.0\n 21\n1.0\n"},
                            {" 73\n1\n 44\n1.0\n", " 73\n2\n 44\n1.5\n"}})
        text.replace(text.find(from), from.size(), to);
    AcDbDatabase read(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(read, text, "read.dxf"), Acad::eOk);
    const AcDbMText* mtext = FirstInModelSpace<AcDbMText>(read);
    ASSERT_TRUE(mtext);
    EXPECT_EQ(mtext->actualWidth(), 12.5);
    EXPECT_EQ(mtext->actualHeight(), 3.0);
    EXPECT_EQ(mtext->lineSpacingStyle(), AcDb::kExactly);
    EXPECT_EQ(mtext->lineSpacingFactor(), 1.5);
    EXPECT_EQ(mtext->direction(), AcGeVector3d(0, 1, 0));

    AcDbDatabase made;
    dwg_test::BuildDrawing(made);
    const std::string plain = RecordText(Written(made), "MTEXT");
    for (const char* code : {"\n 42\n", "\n 43\n", "\n 11\n", "\n 73\n", "\n 44\n"})
        EXPECT_EQ(plain.find(code), std::string::npos) << code;
    AcDbMText* given = FirstInModelSpace<AcDbMText>(made);
    given->setLineSpacingStyle(AcDb::kExactly);
    given->setActualWidth(7.25);
    const std::string written = RecordText(Written(made), "MTEXT");
    EXPECT_NE(written.find("\n 42\n7.25\n"), std::string::npos);
    EXPECT_NE(written.find("\n 73\n2\n"), std::string::npos);
    EXPECT_EQ(written.find("\n 43\n"), std::string::npos);
}

TEST(FedTextRecords, scaling_an_mtext_scales_its_measured_size) {
    AcDbMText mtext;
    mtext.setActualWidth(12.5);
    mtext.setActualHeight(3.0);
    ASSERT_EQ(mtext.transformBy(AcGeMatrix3d::scaling(2.0)), Acad::eOk);
    EXPECT_EQ(mtext.actualWidth(), 25.0);
    EXPECT_EQ(mtext.actualHeight(), 6.0);
}

}  // namespace
