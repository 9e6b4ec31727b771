#include <gtest/gtest.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <cstdlib>
#include <memory>
#include <numbers>

#include "drawing_queries.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/database.hpp"
#include "platform/db/dictionary.hpp"
#include "platform/db/line.hpp"
#include "platform/db/text.hpp"

namespace {

AcDbObjectId append(AcDbDatabase& db, AcDbEntity* entity,
                    const std::wstring& block = ACDB_MODEL_SPACE) {
    AcDbBlockTableRecord* record = OpenBlockRecord(db, block, AcDb::kForWrite);
    AcDbObjectId id;
    EXPECT_EQ(record->appendAcDbEntity(id, entity), Acad::eOk);
    entity->close();
    record->close();
    return id;
}

AcDbObjectId addLayer(AcDbDatabase& db, const std::wstring& name, int color) {
    AcDbLayerTable* layers = nullptr;
    EXPECT_EQ(db.getSymbolTable(layers, AcDb::kForWrite), Acad::eOk);
    auto* layer = new AcDbLayerTableRecord();
    layer->setName(name);
    AcCmColor c;
    c.setColorIndex(static_cast<std::uint16_t>(color));
    layer->setColor(c);
    AcDbObjectId id;
    EXPECT_EQ(layers->add(id, layer), Acad::eOk);
    layer->close();
    layers->close();
    return id;
}

AcDbObjectId addBlock(AcDbDatabase& db, const std::wstring& name) {
    AcDbBlockTable* blocks = nullptr;
    db.getSymbolTable(blocks, AcDb::kForWrite);
    auto* block = new AcDbBlockTableRecord();
    block->setName(name);
    AcDbObjectId id;
    EXPECT_EQ(blocks->add(id, block), Acad::eOk);
    block->close();
    blocks->close();
    return id;
}

std::vector<AcDbObjectId> modelSpaceIds(AcDbDatabase& db) {
    std::vector<AcDbObjectId> ids;
    AcDbBlockTable* blocks = nullptr;
    db.getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForRead);
    blocks->close();
    AcDbBlockTableRecordIterator* it = nullptr;
    model->newIterator(it);
    model->close();
    for (it->start(); !it->done(); it->step()) {
        AcDbObjectId id;
        it->getEntityId(id);
        ids.push_back(id);
    }
    delete it;
    return ids;
}

TEST(DefaultDrawing, holds_what_every_drawing_has) {
    AcDbDatabase db;
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(db.getSymbolTable(layers, AcDb::kForRead), Acad::eOk);
    EXPECT_TRUE(layers->has(L"0"));
    layers->close();
    AcDbLinetypeTable* linetypes = nullptr;
    db.getSymbolTable(linetypes, AcDb::kForRead);
    EXPECT_TRUE(linetypes->has(L"ByBlock"));
    EXPECT_TRUE(linetypes->has(L"BYLAYER"));
    EXPECT_TRUE(linetypes->has(L"continuous"));
    linetypes->close();
    AcDbTextStyleTable* styles = nullptr;
    db.getSymbolTable(styles, AcDb::kForRead);
    EXPECT_TRUE(styles->has(L"Standard"));
    styles->close();
    AcDbDimStyleTable* dimstyles = nullptr;
    db.getSymbolTable(dimstyles, AcDb::kForRead);
    EXPECT_TRUE(dimstyles->has(L"Standard"));
    dimstyles->close();
    EXPECT_FALSE(db.modelSpaceId().isNull());
    EXPECT_FALSE(db.paperSpaceId().isNull());
}

TEST(DefaultDrawing, an_empty_database_has_no_tables) {
    AcDbDatabase db(false, true);
    AcDbBlockTable* blocks = nullptr;
    EXPECT_NE(db.getSymbolTable(blocks, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(blocks, nullptr);
}

TEST(SymbolTables, look_up_ignores_case_and_refuses_duplicates) {
    AcDbDatabase db;
    addLayer(db, L"Front", 3);
    AcDbLayerTable* layers = nullptr;
    db.getSymbolTable(layers, AcDb::kForWrite);
    EXPECT_TRUE(layers->has(L"FRONT"));
    auto* twin = new AcDbLayerTableRecord();
    twin->setName(L"front");
    EXPECT_EQ(layers->add(twin), Acad::eDuplicateRecordName);
    delete twin;
    layers->close();
}

TEST(SymbolTables, add_needs_the_table_open_for_write) {
    AcDbDatabase db;
    AcDbLayerTable* layers = nullptr;
    db.getSymbolTable(layers, AcDb::kForRead);
    auto* layer = new AcDbLayerTableRecord();
    layer->setName(L"X");
    EXPECT_EQ(layers->add(layer), Acad::eNotOpenForWrite);
    delete layer;
    layers->close();
}

TEST(SymbolTables, iterator_skips_erased_records_when_asked) {
    AcDbDatabase db;
    AcDbObjectId gone = addLayer(db, L"GONE", 1);
    addLayer(db, L"KEPT", 2);
    AcDbLayerTableRecord* record = nullptr;
    ASSERT_EQ(acdbOpenObject(record, gone, AcDb::kForWrite), Acad::eOk);
    record->erase();
    record->close();
    AcDbLayerTable* layers = nullptr;
    db.getSymbolTable(layers, AcDb::kForRead);
    AcDbSymbolTableIterator* it = nullptr;
    layers->newIterator(it, true, true);
    std::vector<std::wstring> names;
    for (; !it->done(); it->step(true, true)) {
        AcDbSymbolTableRecord* r = nullptr;
        ASSERT_EQ(it->getRecord(r, AcDb::kForRead), Acad::eOk);
        names.push_back(r->name());
        r->close();
    }
    delete it;
    EXPECT_FALSE(layers->has(L"GONE"));
    layers->close();
    EXPECT_EQ(names, (std::vector<std::wstring>{L"0", L"KEPT"}));
}

TEST(Entities, set_layer_fails_for_a_layer_the_drawing_lacks) {
    AcDbDatabase db;
    AcDbObjectId id = append(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
    AcDbEntity* line = nullptr;
    acdbOpenAcDbEntity(line, id, AcDb::kForWrite);
    EXPECT_EQ(line->setLayer(L"NOPE"), Acad::eKeyNotFound);
    EXPECT_EQ(line->layer(), L"0");
    addLayer(db, L"OK", 1);
    EXPECT_EQ(line->setLayer(L"OK"), Acad::eOk);
    line->close();
}

TEST(Entities, colour_index_accepts_byblock_to_bylayer_only) {
    AcDbLine line;
    EXPECT_EQ(line.colorIndex(), 256);
    EXPECT_EQ(line.setColorIndex(0), Acad::eOk);
    EXPECT_EQ(line.setColorIndex(257), Acad::eBadColorIndex);
    EXPECT_EQ(line.colorIndex(), 0);
}

TEST(Entities, database_defaults_come_from_the_current_settings) {
    AcDbDatabase db;
    AcDbObjectId layer = addLayer(db, L"CUR", 4);
    db.setClayer(layer);
    AcCmColor red;
    red.setColorIndex(1);
    db.setCecolor(red);
    AcDbLine line;
    line.setDatabaseDefaults(&db);
    EXPECT_EQ(line.layer(), L"CUR");
    EXPECT_EQ(line.colorIndex(), 1);
}

TEST(Extents, empty_text_has_no_extents) {
    AcDbText text(AcGePoint3d(0, 0, 0), L"", AcDbObjectId::kNull, 2.5);
    AcDbExtents box;
    EXPECT_EQ(text.getGeomExtents(box), Acad::eInvalidExtents);
}

TEST(Extents, chinese_text_is_one_height_per_character_wide) {
    AcDbText text(AcGePoint3d(0, 0, 0), L"材料", AcDbObjectId::kNull, 5.0);
    AcDbExtents box;
    ASSERT_EQ(text.getGeomExtents(box), Acad::eOk);
    EXPECT_NEAR(box.maxPoint().x, 10.0, 1e-12);
    EXPECT_NEAR(box.maxPoint().y, 5.0, 1e-12);
}

TEST(Extents, block_extents_cover_every_live_entity) {
    AcDbDatabase db;
    append(db, new AcDbLine(AcGePoint3d(-1, 2, 0), AcGePoint3d(3, 4, 0)));
    append(db, new AcDbCircle(AcGePoint3d(10, 10, 0), AcGeVector3d::kZAxis, 2));
    AcDbBlockTableRecord* model = nullptr;
    acdbOpenObject(model, db.modelSpaceId(), AcDb::kForRead);
    AcDbExtents box;
    box.addBlockExt(model);
    model->close();
    EXPECT_EQ(box.minPoint(), AcGePoint3d(-1, 2, 0));
    EXPECT_EQ(box.maxPoint(), AcGePoint3d(12, 12, 0));
}

TEST(Extents, update_ext_of_an_empty_drawing_keeps_the_inverted_box) {
    AcDbDatabase db;
    db.updateExt(true);
    EXPECT_GT(db.extmin().x, db.extmax().x);
}

TEST(BlockReferences, explode_of_a_scaled_rotated_reference_transforms_the_block) {
    AcDbDatabase db;
    AcDbObjectId blockId = addBlock(db, L"SYM");
    append(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)), L"SYM");
    append(db, new AcDbCircle(AcGePoint3d(1, 0, 0), AcGeVector3d::kZAxis, 0.5), L"SYM");
    AcDbBlockReference ref(AcGePoint3d(10, 20, 0), blockId);
    ref.setScaleFactors(AcGeScale3d(2.0));
    ref.setRotation(std::numbers::pi / 2);
    AcDbVoidPtrArray parts;
    ASSERT_EQ(ref.explode(parts), Acad::eOk);
    ASSERT_EQ(parts.length(), 2);
    std::unique_ptr<AcDbLine> line(AcDbLine::cast(static_cast<AcDbEntity*>(parts[0])));
    std::unique_ptr<AcDbCircle> circle(AcDbCircle::cast(static_cast<AcDbEntity*>(parts[1])));
    ASSERT_TRUE(line && circle);
    EXPECT_TRUE(line->startPoint().isEqualTo(AcGePoint3d(10, 20, 0), AcGeTol()));
    EXPECT_NEAR(line->endPoint().x, 10.0, 1e-12);
    EXPECT_NEAR(line->endPoint().y, 22.0, 1e-12);
    EXPECT_NEAR(circle->center().y, 22.0, 1e-12);
    EXPECT_NEAR(circle->radius(), 1.0, 1e-12);
}

TEST(BlockReferences, attributes_are_owned_and_iterated) {
    AcDbDatabase db;
    AcDbObjectId blockId = addBlock(db, L"TAG");
    AcDbObjectId refId = append(db, new AcDbBlockReference(AcGePoint3d(0, 0, 0), blockId));
    AcDbBlockReference* ref = nullptr;
    ASSERT_EQ(acdbOpenObject(ref, refId, AcDb::kForWrite), Acad::eOk);
    auto* attribute = new AcDbAttribute(AcGePoint3d(1, 1, 0), L"P20", L"MATERIAL");
    ASSERT_EQ(ref->appendAttribute(attribute), Acad::eOk);
    attribute->close();
    std::unique_ptr<AcDbObjectIterator> it(ref->attributeIterator());
    int count = 0;
    for (; !it->done(); it->step()) {
        auto* found = AcDbAttribute::cast(it->entity());
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->tag(), L"MATERIAL");
        EXPECT_EQ(found->ownerId(), refId);
        ++count;
    }
    EXPECT_EQ(count, 1);
    ref->close();
}

TEST(Insert, identity_keeps_coordinates_and_merges_layers_by_name) {
    AcDbDatabase source;
    addLayer(source, L"FRONT", 3);
    addLayer(source, L"ONLY_IN_SOURCE", 5);
    auto* line = new AcDbLine(AcGePoint3d(5, 6, 0), AcGePoint3d(7, 8, 0));
    line->setLayerName(L"FRONT");
    append(source, line);
    auto* circle = new AcDbCircle(AcGePoint3d(1, 1, 0), AcGeVector3d::kZAxis, 3);
    circle->setLayerName(L"ONLY_IN_SOURCE");
    append(source, circle);

    AcDbDatabase target;
    AcDbObjectId targetFront = addLayer(target, L"front", 1);
    ASSERT_EQ(target.insert(AcGeMatrix3d::kIdentity, &source, false), Acad::eOk);

    std::vector<AcDbObjectId> ids = modelSpaceIds(target);
    ASSERT_EQ(ids.size(), 2u);
    AcDbLine* copied = nullptr;
    ASSERT_EQ(acdbOpenObject(copied, ids[0], AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(copied->startPoint(), AcGePoint3d(5, 6, 0));
    EXPECT_EQ(copied->layerId(), targetFront);  // the target's record wins
    copied->close();
    AcDbLayerTable* layers = nullptr;
    target.getSymbolTable(layers, AcDb::kForRead);
    EXPECT_TRUE(layers->has(L"ONLY_IN_SOURCE"));
    AcDbLayerTableRecord* front = nullptr;
    layers->getAt(L"FRONT", front, AcDb::kForRead);
    EXPECT_EQ(front->color().colorIndex(), 1);
    front->close();
    layers->close();
}

TEST(Insert, a_translation_moves_the_copies) {
    AcDbDatabase source;
    append(source, new AcDbCircle(AcGePoint3d(1, 1, 0), AcGeVector3d::kZAxis, 3));
    AcDbDatabase target;
    target.insert(AcGeMatrix3d::translation(AcGeVector3d(100, 0, 0)), &source);
    std::vector<AcDbObjectId> ids = modelSpaceIds(target);
    ASSERT_EQ(ids.size(), 1u);
    AcDbCircle* circle = nullptr;
    acdbOpenObject(circle, ids[0], AcDb::kForRead);
    EXPECT_EQ(circle->center(), AcGePoint3d(101, 1, 0));
    circle->close();
}

TEST(Insert, as_a_block_brings_the_model_space_and_nested_blocks) {
    AcDbDatabase source;
    AcDbObjectId inner = addBlock(source, L"INNER");
    append(source, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0)), L"INNER");
    append(source, new AcDbBlockReference(AcGePoint3d(2, 2, 0), inner));
    AcDbDatabase target;
    AcDbObjectId blockId;
    ASSERT_EQ(target.insert(blockId, L"HOLE_M8", &source, true), Acad::eOk);
    AcDbBlockTableRecord* block = nullptr;
    ASSERT_EQ(acdbOpenObject(block, blockId, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(block->name(), L"HOLE_M8");
    ASSERT_EQ(block->entityIds().length(), 1);
    block->close();
    EXPECT_FALSE(target.blockId(L"INNER").isNull());
    AcDbObjectId again;
    EXPECT_EQ(target.insert(again, L"hole_m8", &source), Acad::eDuplicateRecordName);
}

TEST(Purge, keeps_a_layer_that_an_entity_uses) {
    AcDbDatabase db;
    AcDbObjectId used = addLayer(db, L"USED", 1);
    AcDbObjectId unused = addLayer(db, L"UNUSED", 2);
    auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    line->setLayerName(L"USED");
    append(db, line);
    AcDbObjectIdArray ids;
    ids.append(used);
    ids.append(unused);
    ASSERT_EQ(db.purge(ids), Acad::eOk);
    ASSERT_EQ(ids.length(), 1);
    EXPECT_EQ(ids[0], unused);
}

TEST(Purge, never_offers_layer_zero_or_the_layout_blocks) {
    AcDbDatabase db;
    AcDbObjectIdArray ids;
    AcDbObjectId zero;
    AcDbLayerTable* layers = nullptr;
    db.getSymbolTable(layers, AcDb::kForRead);
    layers->getAt(L"0", zero);
    layers->close();
    ids.append(zero);
    ids.append(db.modelSpaceId());
    ids.append(db.paperSpaceId());
    db.purge(ids);
    EXPECT_TRUE(ids.isEmpty());
}

TEST(Purge, keeps_a_block_that_is_referenced) {
    AcDbDatabase db;
    AcDbObjectId used = addBlock(db, L"USED");
    AcDbObjectId unused = addBlock(db, L"UNUSED");
    append(db, new AcDbBlockReference(AcGePoint3d(0, 0, 0), used));
    AcDbObjectIdArray ids;
    ids.append(used);
    ids.append(unused);
    db.purge(ids);
    ASSERT_EQ(ids.length(), 1);
    EXPECT_EQ(ids[0], unused);
}

TEST(WorkingDatabase, is_set_and_cleared_when_the_database_goes) {
    auto db = std::make_unique<AcDbDatabase>();
    acdbHostApplicationServices()->setWorkingDatabase(db.get());
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), db.get());
    db.reset();
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), nullptr);
}

}  // namespace

TEST(Handles, seed_is_never_set_below_a_handle_in_use) {
    AcDbDatabase db;
    AcDbObjectId id = append(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
    const std::uint64_t largest = db.handseed().value() - 1;
    db.setHandseed(AcDbHandle(1));
    EXPECT_EQ(db.handseed().value(), largest + 1);
    db.setHandseed(AcDbHandle(largest + 10));
    EXPECT_EQ(db.handseed().value(), largest + 10);
    EXPECT_EQ(id.handle().value(), largest);
}

TEST(Handles, seed_follows_the_largest_handle_after_it_moved_down) {
    AcDbDatabase db;
    AcDbObjectId first = append(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
    db.setHandseed(AcDbHandle(0x1000));
    AcDbObjectId moved = append(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(2, 0, 0)));
    ASSERT_EQ(moved.handle().value(), 0x1000u);
    ASSERT_EQ(db.moveToHandle(moved, AcDbHandle(first.handle().value() + 1)), Acad::eOk);
    db.setHandseed(AcDbHandle(1));
    EXPECT_EQ(db.handseed().value(), first.handle().value() + 2);
}

TEST(Handles, an_empty_database_keeps_the_seed_it_is_given) {
    AcDbDatabase db(false);
    db.setHandseed(AcDbHandle(0x20));
    EXPECT_EQ(db.handseed().value(), 0x20u);
}

namespace {

AcDbObjectId addDictionaryWithHandle(AcDbDatabase& db, std::uint64_t handle) {
    AcDbObjectId id;
    EXPECT_EQ(db.addClosedAcDbObjectWithHandle(id, new AcDbDictionary(), AcDbHandle(handle)), Acad::eOk);
    return id;
}

}  // namespace

TEST(AddedOrder, non_entities_are_listed_in_the_order_they_were_added_not_by_handle) {
    AcDbDatabase db(false, true);
    const AcDbObjectId later = addDictionaryWithHandle(db, 0x30);
    const AcDbObjectId earlier = addDictionaryWithHandle(db, 0x20);
    ASSERT_EQ(db.nonEntitiesAdded().size(), 2u);
    EXPECT_EQ(db.nonEntitiesAdded()[0], later.stub());
    EXPECT_EQ(db.nonEntitiesAdded()[1], earlier.stub());
}

TEST(AddedOrder, a_stub_made_by_a_reference_first_stands_where_its_object_was_added) {
    AcDbDatabase db(false, true);
    AcDbObjectId referenced;
    ASSERT_EQ(db.getAcDbObjectId(referenced, true, AcDbHandle(0x40)), Acad::eOk);
    EXPECT_TRUE(db.nonEntitiesAdded().empty());
    const AcDbObjectId first = addDictionaryWithHandle(db, 0x50);
    const AcDbObjectId filled = addDictionaryWithHandle(db, 0x40);
    EXPECT_EQ(filled, referenced);
    ASSERT_EQ(db.nonEntitiesAdded().size(), 2u);
    EXPECT_EQ(db.nonEntitiesAdded()[0], first.stub());
    EXPECT_EQ(db.nonEntitiesAdded()[1], referenced.stub());
}

TEST(AddedOrder, entities_are_not_listed_and_a_discarded_drawing_lists_nothing) {
    AcDbDatabase db(true, true);
    const std::size_t tablesAndDictionaries = db.nonEntitiesAdded().size();
    EXPECT_GT(tablesAndDictionaries, 0u);
    append(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
    EXPECT_EQ(db.nonEntitiesAdded().size(), tablesAndDictionaries);
    addDictionaryWithHandle(db, 0x7000);
    EXPECT_EQ(db.nonEntitiesAdded().size(), tablesAndDictionaries + 1);
    db.discardContents();
    EXPECT_TRUE(db.nonEntitiesAdded().empty());
}

#ifdef __GLIBC__
TEST(DatabaseMemory, large_blocks_keep_their_own_mappings_after_one_is_freed) {
    const AcDbDatabase db(false, true);
    // A freed mapped block would raise the allocator's threshold to its size, and the next
    // block a little smaller would come from the heap instead. (Volatile: the blocks are made.)
    void* volatile first = std::malloc(4 << 20);
    std::free(first);
    const std::size_t mapped = mallinfo2().hblks;
    void* volatile next = std::malloc(3 << 20);
    EXPECT_EQ(mallinfo2().hblks, mapped + 1);
    std::free(next);
}
#endif
