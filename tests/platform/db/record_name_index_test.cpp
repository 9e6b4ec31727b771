// Look-ups of symbol records by name give what a walk over the table's records in order gives:
// the first record of the name ignoring case, erased ones skipped unless asked for, through
// adds, renames (open or not), erase and unerase, and records a reader attaches directly.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "platform/db/database.hpp"
#include "platform/db/names.hpp"
#include "platform/db/symbol_tables.hpp"
#include "drawing_queries.hpp"

namespace {

// The look-up as a walk over the records, the reference the indexed look-up must agree with.
AcDbObjectId WalkedId(const AcDbSymbolTable& table, const std::wstring& name, bool erased) {
    for (const AcDbObjectId& id : table.recordIds()) {
        const AcDbObject* object = id.stub()->object.get();
        if (object->isErased() && !erased) continue;
        if (acdbNamesEqual(static_cast<const AcDbSymbolTableRecord*>(object)->name(), name)) return id;
    }
    return AcDbObjectId::kNull;
}

AcDbObjectId IndexedId(const AcDbSymbolTable& table, const std::wstring& name, bool erased) {
    AcDbObjectId id;
    return table.getAt(name, id, erased) == Acad::eOk ? id : AcDbObjectId::kNull;
}

AcDbLayerTable* Layers(AcDbDatabase& db) {
    return static_cast<AcDbLayerTable*>(db.layerTableId().stub()->object.get());
}

// As a drawing reader does: added to the database and attached, with no check of the name.
AcDbObjectId AttachLayer(AcDbDatabase& db, const std::wstring& name) {
    auto* layer = new AcDbLayerTableRecord;
    layer->setName(name);
    layer->setOwnerId(db.layerTableId());
    AcDbObjectId id;
    db.addAcDbObject(id, layer);
    layer->close();
    Layers(db)->attachRecord(id);
    return id;
}

Acad::ErrorStatus Rename(AcDbObjectId id, const std::wstring& name, bool open) {
    AcDbObject* object = id.stub()->object.get();
    if (!open) return AcDbSymbolTableRecord::cast(object)->setName(name);
    acdbOpenAcDbObject(object, id, AcDb::kForWrite, true);
    Acad::ErrorStatus es = AcDbSymbolTableRecord::cast(object)->setName(name);
    object->close();
    return es;
}

void Erase(AcDbObjectId id, bool erasing) {
    AcDbObject* object = nullptr;
    acdbOpenAcDbObject(object, id, AcDb::kForWrite, true);
    object->erase(erasing);
    object->close();
}

const std::vector<std::wstring> kNames = {L"Wall", L"WALL", L"wall", L"孔", L"孔位", L"Äbc",
                                          L"äBC", L"Hole-1", L"hole-1", L"X", L"0", L"Missing"};

void ExpectLookUpsAgree(AcDbDatabase& db, const std::string& step) {
    for (const std::wstring& name : kNames)
        for (bool erased : {false, true})
            EXPECT_EQ(IndexedId(*Layers(db), name, erased), WalkedId(*Layers(db), name, erased))
                << step << " name #" << (&name - kNames.data()) << " erased " << erased;
}

TEST(RecordNameIndex, finds_records_added_ignoring_case) {
    AcDbDatabase db;
    AcDbObjectId wall = AddLayer(db, L"Wall");
    EXPECT_EQ(IndexedId(*Layers(db), L"wALL", false), wall);
    AcDbObjectId hole = AddLayer(db, L"孔位");
    EXPECT_EQ(IndexedId(*Layers(db), L"孔位", false), hole);
    EXPECT_TRUE(IndexedId(*Layers(db), L"孔", false).isNull());
    ExpectLookUpsAgree(db, "added");
}

TEST(RecordNameIndex, a_renamed_record_is_found_by_its_new_name_only) {
    AcDbDatabase db;
    AcDbObjectId wall = AddLayer(db, L"Wall");
    EXPECT_EQ(IndexedId(*Layers(db), L"Wall", false), wall);
    ASSERT_EQ(Rename(wall, L"Hole-1", true), Acad::eOk);
    EXPECT_EQ(IndexedId(*Layers(db), L"HOLE-1", false), wall);
    EXPECT_TRUE(IndexedId(*Layers(db), L"Wall", false).isNull());
    // A record renamed while not open (as a reader fills it) is found by its new name too.
    Rename(wall, L"X", false);
    EXPECT_EQ(IndexedId(*Layers(db), L"x", false), wall);
    EXPECT_TRUE(IndexedId(*Layers(db), L"Hole-1", false).isNull());
}

TEST(RecordNameIndex, erased_records_are_found_only_when_asked_for) {
    AcDbDatabase db;
    AcDbObjectId wall = AddLayer(db, L"Wall");
    EXPECT_EQ(IndexedId(*Layers(db), L"wall", false), wall);
    Erase(wall, true);
    EXPECT_TRUE(IndexedId(*Layers(db), L"wall", false).isNull());
    EXPECT_EQ(IndexedId(*Layers(db), L"wall", true), wall);
    Erase(wall, false);
    EXPECT_EQ(IndexedId(*Layers(db), L"wall", false), wall);
}

TEST(RecordNameIndex, the_first_of_records_sharing_a_name_wins_as_in_a_walk) {
    AcDbDatabase db;
    AcDbObjectId first = AddLayer(db, L"Wall");
    Erase(first, true);
    AcDbObjectId second = AddLayer(db, L"WALL");
    AcDbObjectId third = AttachLayer(db, L"wall");
    EXPECT_EQ(IndexedId(*Layers(db), L"Wall", false), second);
    EXPECT_EQ(IndexedId(*Layers(db), L"Wall", true), first);
    Erase(second, true);
    EXPECT_EQ(IndexedId(*Layers(db), L"Wall", false), third);
}

// Random adds, attaches, renames and erasures, each followed by every look-up both ways.
TEST(RecordNameIndex, agrees_with_a_walk_over_random_changes) {
    AcDbDatabase db;
    std::mt19937 random(17);
    std::vector<AcDbObjectId> records;
    auto pickName = [&] { return kNames[random() % (kNames.size() - 1)]; };  // never "Missing"
    for (int step = 0; step < 400; ++step) {
        const unsigned action = records.empty() ? 0 : random() % 5;
        const std::string label = "step " + std::to_string(step) + " action " + std::to_string(action);
        if (action == 0) {
            const std::wstring name = pickName();
            if (!Layers(db)->has(name)) records.push_back(AddLayer(db, name));
        } else if (action == 1) {
            records.push_back(AttachLayer(db, pickName()));
        } else if (action == 2) {
            Rename(records[random() % records.size()], pickName(), random() % 2 == 0);
        } else {
            const AcDbObjectId id = records[random() % records.size()];
            Erase(id, !id.isErased());
        }
        ExpectLookUpsAgree(db, label);
        if (HasFailure()) return;
    }
}

TEST(NameHash, names_equal_ignoring_case_hash_alike) {
    EXPECT_EQ(acdbNameHash(L"Hole-1"), acdbNameHash(L"HOLE-1"));
    EXPECT_EQ(acdbNameHash(L"az"), acdbNameHash(L"AZ"));
    EXPECT_EQ(acdbNameHash(L"孔位"), acdbNameHash(L"孔位"));
    EXPECT_NE(acdbNameHash(L"Hole-1"), acdbNameHash(L"Hole-2"));
    // Only letters fold: '@' and '[' border 'A' and 'Z', '`' and '{' border 'a' and 'z'.
    EXPECT_NE(acdbNameHash(L"@"), acdbNameHash(L"`"));
    EXPECT_NE(acdbNameHash(L"["), acdbNameHash(L"{"));
}

}  // namespace
