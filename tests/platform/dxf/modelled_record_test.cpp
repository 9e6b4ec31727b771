// An entity whose record as read is the one the writer makes from the database alone gives its
// record up; one whose record holds more than that, or holds it otherwise, keeps it.
#include "platform/dxf/modelled_record.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "platform/db/arc.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/line.hpp"
#include "platform/db/polyline.hpp"
#include "platform/dxf/angle_text.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/tagger.hpp"

namespace {

void Append(AcDbDatabase& db, AcDbEntity* e) {
    AcDbBlockTableRecord* block = nullptr;
    ASSERT_EQ(acdbOpenObject(block, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    ASSERT_EQ(block->appendAcDbEntity(e), Acad::eOk);
    e->close();
    block->close();
}

std::string Written(AcDbDatabase& db) {
    std::string out;
    EXPECT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    return out;
}

// The text of a drawing of a line, an arc and a polyline made in memory, as the writer writes it.
std::string WrittenDrawing() {
    AcDbDatabase db(true, true);
    Append(db, new AcDbLine({1.5, 2, 0}, {30, 40.25, 0}));
    Append(db, new AcDbArc({50, 50, 0}, 20, 0.3, 2.0));
    auto* polyline = new AcDbPolyline();
    polyline->addVertexAt(0, {0, 0}, 0.0, 0.0, 0.0);
    polyline->addVertexAt(1, {40, 0}, 0.5, 0.0, 0.0);
    polyline->addVertexAt(2, {40, 30}, 0.0, 0.0, 0.0);
    Append(db, polyline);
    return Written(db);
}

// The first entity of model space of a drawing read from the text, which keeps every record.
AcDbEntity* FirstEntity(AcDbDatabase& db, const std::string& text, int index = 0) {
    EXPECT_EQ(dxf::ReadDxfBytes(db, text, "t.dxf"), Acad::eOk);
    AcDbBlockTableRecord* block = AcDbBlockTableRecord::cast(db.modelSpaceId().stub()->object.get());
    return AcDbEntity::cast(block->entityIds()[index].stub()->object.get());
}

// The text with `insert` put in after the first occurrence of `after`.
std::string Inserted(std::string text, const std::string& after, const std::string& insert) {
    const auto at = text.find(after);
    EXPECT_NE(at, std::string::npos) << after;
    return text.insert(at + after.size(), insert);
}

TEST(ModelledRecord, record_as_the_writer_makes_it_is_dropped_and_written_the_same) {
    const std::string text = WrittenDrawing();
    for (int index : {0, 1, 2}) {
        SCOPED_TRACE(index);
        AcDbDatabase db(false, true);
        AcDbEntity* e = FirstEntity(db, text, index);
        ASSERT_FALSE(e->fileTags().empty());
        const std::string before = Written(db);
        dxf::Model model;
        AcDbRawTags dropped;
        EXPECT_TRUE(dxf::DropModelledRecord(*e, model, dropped));
        EXPECT_TRUE(e->fileTags().empty());
        EXPECT_EQ(Written(db), before);
    }
}

struct KeptCase {
    const char* behaviour;
    std::string after, insert;
};

// Records that give the writer something the database does not: each is kept whole.
TEST(ModelledRecord, record_with_more_or_other_than_the_model_is_kept) {
    const std::string text = WrittenDrawing();
    const KeptCase cases[] = {
        {"a tag the model does not own", "AcDbLine\n", "  3\nnote\n"},
        {"a value at its default that the model leaves out", "AcDbLine\n", " 39\n0.0\n"},
        {"a number in a text of its own", "\n 10\n1.5\n", " 40\n2\n"},
        {"a group of another application", "AcDbLine\n", "102\n{MINE\n330\n1F\n102\n}\n"},
    };
    for (const KeptCase& c : cases) {
        SCOPED_TRACE(c.behaviour);
        AcDbDatabase db(false, true);
        AcDbEntity* e = FirstEntity(db, Inserted(text, c.after, c.insert));
        const AcDbRawTags asRead = e->fileTags();
        dxf::Model model;
        AcDbRawTags dropped;
        EXPECT_FALSE(dxf::DropModelledRecord(*e, model, dropped));
        EXPECT_EQ(e->fileTags(), asRead);
    }
}

// "1.50" stands for the model's 1.5: the writer keeps the file's text, so the record stays.
TEST(ModelledRecord, number_written_otherwise_for_the_same_value_is_kept) {
    std::string text = WrittenDrawing();
    text.replace(text.find("\n 10\n1.5\n"), 9, "\n 10\n1.50\n");
    AcDbDatabase db(false, true);
    dxf::Model model;
    AcDbRawTags dropped;
    EXPECT_FALSE(dxf::DropModelledRecord(*FirstEntity(db, text), model, dropped));
}

// A value the database holds otherwise (flag bits of a polyline that it does not keep) is
// written from the database with or without the record: the record is dropped.
TEST(ModelledRecord, value_the_database_holds_otherwise_is_dropped) {
    std::string text = WrittenDrawing();
    const auto at = text.find("AcDbPolyline\n 90\n3\n 70\n0\n");
    ASSERT_NE(at, std::string::npos);
    text.replace(at + 23, 1, "2");
    AcDbDatabase db(false, true);
    AcDbEntity* polyline = FirstEntity(db, text, 2);
    const std::string before = Written(db);
    ASSERT_EQ(before.find("AcDbPolyline\n 90\n3\n 70\n2\n"), std::string::npos);
    dxf::Model model;
    AcDbRawTags dropped;
    EXPECT_TRUE(dxf::DropModelledRecord(*polyline, model, dropped));
    EXPECT_EQ(Written(db), before);
}

// A dimension reads its record again (its block, its measurement): never dropped.
TEST(ModelledRecord, dimension_keeps_its_record) {
    AcDbDatabase made(true, true);
    Append(made, new AcDbAlignedDimension({0, 0, 0}, {40, 0, 0}, {20, 10, 0}, L"", made.dimstyle()));
    AcDbDatabase db(false, true);
    AcDbEntity* dim = FirstEntity(db, Written(made));
    ASSERT_TRUE(AcDbDimension::cast(dim));
    dxf::Model model;
    AcDbRawTags dropped;
    EXPECT_FALSE(dxf::DropModelledRecord(*dim, model, dropped));
    EXPECT_FALSE(dim->fileTags().empty());
}

// The record's tags as a decoder makes them: numbers carried with the texts they were written as
// (the codes in `angles` as angles, their radians read back from the degrees).
std::vector<dxf::Tag> MadeTags(const AcDbRawTags& tags, std::initializer_list<int> angles) {
    std::vector<dxf::Tag> made;
    for (const AcDbRawTag& t : tags) {
        dxf::Tag tag{t.code, t.value};
        const dxf::ValueKind kind = dxf::KindOfCode(t.code);
        if (std::find(angles.begin(), angles.end(), t.code) != angles.end()) {
            tag.made = dxf::Made::kAngle;
            tag.real = dxf::Radians(t.value);
        } else if (kind == dxf::ValueKind::kDouble) {
            tag.made = dxf::Made::kReal;
            EXPECT_TRUE(dxf::ParseDouble(t.value, tag.real));
        } else if (dxf::IsIntegerKind(kind)) {
            tag.made = dxf::Made::kInteger;
        } else if (t.code == 5 || t.code == 330) {
            tag.made = dxf::Made::kHandle;
        }
        made.push_back(tag);
    }
    return made;
}

struct MadeCase {
    const char* behaviour;
    int index;                                        // of the entity in model space
    std::string from, to;                             // an edit of the written drawing
    std::function<void(AcDbEntity&)> change;          // of the entity once read
    bool dropped;
};

// Values a decoder made from numbers are compared as numbers: the record goes or stays exactly
// as when its texts are compared.
TEST(ModelledRecord, numbers_made_by_a_decoder_decide_as_their_texts_do) {
    const std::string text = WrittenDrawing();
    const std::string kLineStart = " 10\n1.5\n 20\n2.0\n 30\n0.0\n", kNegativeZero = " 10\n1.5\n 20\n2.0\n 30\n-0.0\n";
    const MadeCase cases[] = {
        {"the same line", 0, "", "", nullptr, true},
        {"a line the database moved", 0, "", "",
         [](AcDbEntity& e) { AcDbLine::cast(&e)->setStartPoint({7, 8, 0}); }, true},
        {"a negative zero the writer gives as 0.0", 0, kLineStart, kNegativeZero, nullptr, false},
        {"a negative zero the database changed", 0, kLineStart, kNegativeZero,
         [](AcDbEntity& e) { AcDbLine::cast(&e)->setStartPoint({1.5, 2, 3}); }, true},
        {"a line the database gave another owner", 0, "", "",
         [](AcDbEntity& e) { e.setOwnerId(e.database()->paperSpaceId()); }, true},
        {"the same arc", 1, "", "", nullptr, true},
        {"an arc the database turned", 1, "", "",
         [](AcDbEntity& e) { AcDbArc::cast(&e)->setStartAngle(1.0); }, true},
        {"an arc from zero degrees", 1, "", "",
         [](AcDbEntity& e) { AcDbArc::cast(&e)->setStartAngle(0.0); }, true},
        {"flag bits the database holds otherwise", 2, "AcDbPolyline\n 90\n3\n 70\n0\n",
         "AcDbPolyline\n 90\n3\n 70\n2\n", nullptr, true},
    };
    for (const MadeCase& c : cases) {
        SCOPED_TRACE(c.behaviour);
        std::string edited = text;
        if (!c.from.empty()) {
            const auto at = edited.find(c.from);
            ASSERT_NE(at, std::string::npos);
            edited.replace(at, c.from.size(), c.to);
        }
        for (bool numbers : {false, true}) {
            SCOPED_TRACE(numbers ? "numbers" : "texts");
            AcDbDatabase db(false, true);
            AcDbEntity* e = FirstEntity(db, edited, c.index);
            if (c.change) c.change(*e);
            const AcDbRawTags asRead = e->fileTags();
            const std::vector<dxf::Tag> made = numbers ? MadeTags(asRead, {50, 51}) : std::vector<dxf::Tag>{};
            dxf::Model model;
            AcDbRawTags dropped;
            EXPECT_EQ(dxf::DropModelledRecord(*e, model, dropped, made), c.dropped);
        }
    }
}

}  // namespace
