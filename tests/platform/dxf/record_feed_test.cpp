// Records handed to the reader one at a time build what the same records read as a file build,
// and are checked and refused as a file's are (same reason, same line).
#include "platform/dxf/record_feed.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "platform/db/object.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/tagger.hpp"
#include "platform/win/codepage.hpp"
#include "feed_text.hpp"
#include "shared_folder.hpp"

namespace {

// Hands the text's records to a feed as its tags come, split at each 0 tag.
Acad::ErrorStatus Feed(AcDbDatabase& db, std::string_view text, const std::string& name) {
    dxf::RecordFeed feed(db, name);
    dxftest::FeedText(feed, text);
    return feed.finish();
}

std::string Written(AcDbDatabase& db) {
    std::string out;
    EXPECT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    return out;
}

std::string FileText(const std::string& name) {
    std::ifstream in(SharedFile("corpus/dxf/" + name), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(DxfRecordFeed, corpus_drawings_fed_build_what_their_files_build) {
    for (const char* name : {"example_2018.dxf", "example_r12.dxf", "hatches_2.dxf", "dim_sample.dxf"}) {
        SCOPED_TRACE(name);
        const std::string text = FileText(name);
        ASSERT_FALSE(text.empty());
        AcDbDatabase read(false, true), fed(false, true);
        ASSERT_EQ(dxf::ReadDxfBytes(read, text, name), Acad::eOk);
        ASSERT_EQ(Feed(fed, text, name), Acad::eOk) << Utf8FromWide(fed.lastError());
        EXPECT_EQ(fed.stubs().size(), read.stubs().size());
        EXPECT_EQ(Written(fed), Written(read));
    }
}

const std::string kHead = "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n0\nENDSEC\n";
const std::string kTail =
    "0\nSECTION\n2\nTABLES\n0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n0\nENDSEC\n"
    "0\nSECTION\n2\nOBJECTS\n0\nENDSEC\n0\nEOF\n";

std::string Drawing(const std::string& entities) {
    return kHead + "0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n" + kTail;
}

struct Case {
    const char* behaviour;
    std::string text;
};

// Each drawing is read both ways; the status and the message must be the same.
TEST(DxfRecordFeed, records_are_checked_and_refused_as_a_files_are) {
    const Case cases[] = {
        {"a line", Drawing("0\nLINE\n5\n2A\n8\n0\n10\n1.5\n20\n2\n30\n0\n11\n3\n21\n4\n31\n0\n")},
        {"blanks around a number", Drawing("0\nLINE\n5\n2A\n8\n0\n10\n  1.5 \n20\n\t2\n30\n0\n")},
        {"a comment between tags", Drawing("0\nLINE\n999\nnote\n5\n2A\n8\n0\n10\n1\n")},
        {"a number that is not one", Drawing("0\nLINE\n5\n2A\n8\n0\n10\nx1\n")},
        {"an unknown group code", Drawing("0\nLINE\n5\n2A\n85\n1\n")},
        {"no ENTITIES section", kHead + kTail},
        {"records after EOF", Drawing("") + "0\nLINE\n10\nbad\n"},
        {"no EOF", kHead + "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n"},
        {"a record outside a section", kHead + "0\nLINE\n" + kTail},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        AcDbDatabase read(false, true), fed(false, true);
        const Acad::ErrorStatus expected = dxf::ReadDxfBytes(read, c.text, "t.dxf");
        EXPECT_EQ(Feed(fed, c.text, "t.dxf"), expected);
        EXPECT_EQ(Utf8FromWide(fed.lastError()), Utf8FromWide(read.lastError()));
        EXPECT_EQ(fed.stubs().size(), read.stubs().size());
        if (expected == Acad::eOk) {
            EXPECT_EQ(Written(fed), Written(read));
        }
    }
}

TEST(DxfRecordFeed, bad_number_names_the_line_of_its_value) {
    AcDbDatabase db(false, true);
    EXPECT_EQ(Feed(db, Drawing("0\nLINE\n5\n2A\n8\n0\n10\nx1\n"), "t.dxf"), Acad::eBadDxfFile);
    // Header 10 lines, ENTITIES 4, then LINE: its 10 is on line 21, the value on line 22.
    EXPECT_EQ(Utf8FromWide(db.lastError()), "t.dxf:22: DXF005 value 'x1' of group code 10 is not a number");
    EXPECT_TRUE(db.stubs().empty());
}

// An integer code takes a whole number written as a real ("3.0"), and refuses one with a
// fraction, in a file and from a feed alike.
TEST(DxfRecordFeed, integer_codes_take_whole_reals_and_refuse_fractions) {
    const std::string whole = Drawing("0\nTEXT\n5\n2A\n8\n0\n40\n1\n62\n3.0\n");
    const std::string fraction = Drawing("0\nTEXT\n5\n2A\n8\n0\n40\n1\n62\n3.5\n");
    for (const bool fed : {false, true}) {
        SCOPED_TRACE(fed ? "fed" : "read");
        AcDbDatabase a(false, true), b(false, true);
        EXPECT_EQ(fed ? Feed(a, whole, "t.dxf") : dxf::ReadDxfBytes(a, whole, "t.dxf"), Acad::eOk);
        EXPECT_EQ(fed ? Feed(b, fraction, "t.dxf") : dxf::ReadDxfBytes(b, fraction, "t.dxf"),
                  Acad::eBadDxfFile);
        EXPECT_EQ(Utf8FromWide(b.lastError()),
                  "t.dxf:24: DXF005 value '3.5' of group code 62 is not a number");
    }
}

Acad::ErrorStatus FeedEntity(AcDbDatabase& db, const std::vector<dxf::Tag>& entity);

// The value of the first tag of `code` an object of the database keeps; empty when none has one.
std::string KeptValue(const AcDbDatabase& db, int code) {
    for (const AcDbStub& stub : db.stubs()) {
        if (!stub.object) continue;
        for (const AcDbRawTag& t : stub.object->fileTags())
            if (t.code == code) return std::string(t.value);
    }
    return {};
}

// An integer is kept in its plain form, however the file or the decoder wrote it: "+3" and
// "3.0" from a file, "3.0" made from a real and "3" made from an integer are all kept as "3".
TEST(DxfRecordFeed, integers_are_kept_in_their_plain_form) {
    using dxf::Made;
    for (const char* text : {"+3", "3.0", "3"}) {
        SCOPED_TRACE(text);
        AcDbDatabase db(false, true);
        const std::string drawing = Drawing("0\nTEXT\n5\n2A\n8\n0\n40\n1\n62\n" + std::string(text) + "\n");
        ASSERT_EQ(dxf::ReadDxfBytes(db, drawing, "t.dxf"), Acad::eOk);
        EXPECT_EQ(KeptValue(db, 62), "3");
    }
    const std::pair<const char*, Made> made[] = {{"3.0", Made::kReal}, {"3", Made::kInteger}};
    for (const auto& [text, how] : made) {
        SCOPED_TRACE(text);
        AcDbDatabase db(false, true);
        ASSERT_EQ(FeedEntity(db, {{0, "TEXT"}, {5, "2A"}, {8, "0"}, {40, "1"}, {62, text, 0, how}}), Acad::eOk);
        EXPECT_EQ(KeptValue(db, 62), "3");
    }
}

// A value that is no number is quoted in the message by its first 40 characters.
TEST(DxfRecordFeed, a_long_bad_number_is_quoted_by_its_first_forty_characters) {
    const std::string value = std::string(40, '7') + "x123456789";
    AcDbDatabase read(false, true), fed(false, true);
    const std::string text = Drawing("0\nLINE\n5\n2A\n8\n0\n10\n" + value + "\n");
    EXPECT_EQ(dxf::ReadDxfBytes(read, text, "t.dxf"), Acad::eBadDxfFile);
    EXPECT_EQ(Feed(fed, text, "t.dxf"), Acad::eBadDxfFile);
    for (const AcDbDatabase* db : {&read, &fed}) {
        EXPECT_EQ(Utf8FromWide(db->lastError()),
                  "t.dxf:22: DXF005 value '" + std::string(40, '7') + "' of group code 10 is not a number");
    }
}

// The order of sections, read from a file and from a feed alike, with the line each fault
// names: a section named by a tag other than 2, a long record name outside a section quoted by
// its first 40 characters, and the sections an AC1015 drawing needs that an AC1014 one may lack.
TEST(DxfRecordFeed, section_order_faults_name_their_lines_and_versions_their_sections) {
    struct OrderCase {
        const char* behaviour;
        std::string text;
        Acad::ErrorStatus status;
        std::string message;
    };
    const std::string entities = "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n";
    const std::string head14 = "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1014\n0\nENDSEC\n";
    const OrderCase cases[] = {
        {"a section named by another code", kHead + "0\nSECTION\n3\nENTITIES\n" + kTail,
         Acad::eBadDxfFile, "t.dxf:13: DXF007 SECTION without a name"},
        {"a long record outside a section", kHead + "0\n" + std::string(45, 'R') + "\n" + kTail,
         Acad::eBadDxfFile, "t.dxf:11: DXF007 record " + std::string(40, 'R') + " outside a section"},
        {"AC1014 without tables, blocks and objects", head14 + entities, Acad::eOk, ""},
        {"AC1015 without tables, blocks and objects", kHead + entities, Acad::eMissingDxfSection,
         "t.dxf:17: DXF006 no TABLES section"},
    };
    for (const OrderCase& c : cases) {
        SCOPED_TRACE(c.behaviour);
        AcDbDatabase read(false, true), fed(false, true);
        EXPECT_EQ(dxf::ReadDxfBytes(read, c.text, "t.dxf"), c.status);
        EXPECT_EQ(Feed(fed, c.text, "t.dxf"), c.status);
        EXPECT_EQ(Utf8FromWide(read.lastError()), c.message);
        EXPECT_EQ(Utf8FromWide(fed.lastError()), c.message);
    }
}

// A drawing of one entity record handed to a feed as a decoder hands it.
Acad::ErrorStatus FeedEntity(AcDbDatabase& db, const std::vector<dxf::Tag>& entity) {
    dxf::RecordFeed feed(db, "t.dxf");
    auto record = [&](std::initializer_list<dxf::Tag> tags) { feed.record(std::vector<dxf::Tag>(tags)); };
    record({{0, "SECTION"}, {2, "HEADER"}, {9, "$ACADVER"}, {1, "AC1015"}});
    record({{0, "ENDSEC"}});
    record({{0, "SECTION"}, {2, "ENTITIES"}});
    feed.record(entity);
    record({{0, "ENDSEC"}});
    for (const char* section : {"TABLES", "BLOCKS", "OBJECTS"}) {
        record({{0, "SECTION"}, {2, section}});
        record({{0, "ENDSEC"}});
    }
    record({{0, "EOF"}});
    return feed.finish();
}

// Values a decoder made from numbers skip the check a file's text needs only where they fit
// the group code: an integer where an integer or a real goes, a real where a real goes. A real
// where an integer goes is checked as text, and refused when it has a fraction.
TEST(DxfRecordFeed, numbers_made_by_a_decoder_build_and_fail_as_the_same_text_in_a_file) {
    using dxf::Made;
    struct MadeCase {
        const char* behaviour;
        dxf::Tag tag;
        const char* text;  // the same tag in a file
    };
    const MadeCase cases[] = {
        {"an integer for a real", {10, "2", 0, Made::kInteger}, "10\n2\n"},
        {"a real for a real", {10, "1.5", 0, Made::kReal}, "10\n1.5\n"},
        {"an integer for an integer", {62, "3", 0, Made::kInteger}, "62\n3\n"},
        {"a whole real for an integer", {62, "3.0", 0, Made::kReal}, "62\n3.0\n"},
        {"a real with a fraction for an integer", {62, "3.5", 0, Made::kReal}, "62\n3.5\n"},
        {"an integer for a text", {1, "12", 0, Made::kInteger}, "1\n12\n"},
        {"an integer under an unknown code", {85, "1", 0, Made::kInteger}, "85\n1\n"},
    };
    for (const MadeCase& c : cases) {
        SCOPED_TRACE(c.behaviour);
        AcDbDatabase read(false, true), fed(false, true);
        const Acad::ErrorStatus expected =
            dxf::ReadDxfBytes(read, Drawing(std::string("0\nTEXT\n5\n2A\n8\n0\n40\n1\n") + c.text), "t.dxf");
        const std::vector<dxf::Tag> entity = {{0, "TEXT"}, {5, "2A"}, {8, "0"}, {40, "1"}, c.tag};
        EXPECT_EQ(FeedEntity(fed, entity), expected);
        EXPECT_EQ(Utf8FromWide(fed.lastError()), Utf8FromWide(read.lastError()));
        if (expected == Acad::eOk) {
            EXPECT_EQ(Written(fed), Written(read));
        }
    }
}

// The feed takes values as a decoder makes them: blanks around a number are dropped as a file's
// are, those of a text kept.
TEST(DxfRecordFeed, blanks_around_a_fed_number_are_dropped_and_a_texts_kept) {
    AcDbDatabase fed(false, true), read(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(read, Drawing("0\nTEXT\n5\n2A\n8\n0\n10\n1.5\n20\n2\n30\n0\n40\n1\n1\n a \n"), "t.dxf"),
              Acad::eOk);
    dxf::RecordFeed feed(fed, "t.dxf");
    auto record = [&](std::initializer_list<dxf::Tag> tags) { feed.record(std::vector<dxf::Tag>(tags)); };
    record({{0, "SECTION"}, {2, "HEADER"}, {9, "$ACADVER"}, {1, "AC1015"}});
    record({{0, "ENDSEC"}});
    record({{0, "SECTION"}, {2, "ENTITIES"}});
    record({{0, "TEXT"}, {5, "2A"}, {8, "0"}, {10, " 1.5\t"}, {20, "2 "}, {30, "0"}, {40, "1"}, {1, " a "}});
    record({{0, "ENDSEC"}});
    for (const char* section : {"TABLES", "BLOCKS", "OBJECTS"}) {
        record({{0, "SECTION"}, {2, section}});
        record({{0, "ENDSEC"}});
    }
    record({{0, "EOF"}});
    ASSERT_EQ(feed.finish(), Acad::eOk) << Utf8FromWide(fed.lastError());
    EXPECT_EQ(Written(fed), Written(read));
}

}  // namespace
