// Anonymous blocks brought in by an insert take the lowest numbers of their kind that the
// target does not use, insert after insert, as many drawings merged into one need.
#include <gtest/gtest.h>

#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"

namespace {

AcDbObjectId AddBlock(AcDbDatabase& db, const std::wstring& name) {
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

void Append(AcDbDatabase& db, AcDbObjectId blockId, AcDbEntity* entity) {
    AcDbBlockTableRecord* block = nullptr;
    ASSERT_EQ(acdbOpenObject(block, blockId, AcDb::kForWrite), Acad::eOk);
    ASSERT_EQ(block->appendAcDbEntity(entity), Acad::eOk);
    entity->close();
    block->close();
}

// A drawing whose model space references two anonymous blocks, *U1 and *U2.
void MakeSource(AcDbDatabase& source) {
    for (const wchar_t* name : {L"*U1", L"*U2"}) {
        AcDbObjectId block = AddBlock(source, name);
        Append(source, block, new AcDbLine({0, 0, 0}, {1, 1, 0}));
        Append(source, source.modelSpaceId(), new AcDbBlockReference({0, 0, 0}, block));
    }
}

bool Has(AcDbDatabase& db, const wchar_t* name) { return !db.blockId(name).isNull(); }

TEST(InsertAnonymous, blocks_take_the_lowest_free_numbers_insert_after_insert) {
    AcDbDatabase source;
    MakeSource(source);
    AcDbDatabase target;
    AddBlock(target, L"*U1");
    AddBlock(target, L"*u3");   // names compare without regard to case
    AddBlock(target, L"*U04");  // not the name *U4
    ASSERT_EQ(target.insert(AcGeMatrix3d::kIdentity, &source, false), Acad::eOk);
    EXPECT_TRUE(Has(target, L"*U2"));
    EXPECT_TRUE(Has(target, L"*U4"));
    EXPECT_FALSE(Has(target, L"*U5"));
    ASSERT_EQ(target.insert(AcGeMatrix3d::kIdentity, &source, false), Acad::eOk);
    EXPECT_TRUE(Has(target, L"*U5"));
    EXPECT_TRUE(Has(target, L"*U6"));
    EXPECT_FALSE(Has(target, L"*U7"));
}

TEST(InsertAnonymous, an_erased_block_frees_its_number) {
    AcDbDatabase source;
    MakeSource(source);
    AcDbDatabase target;
    AddBlock(target, L"*U1");
    AcDbObjectId erased = AddBlock(target, L"*U2");
    AcDbBlockTableRecord* block = nullptr;
    ASSERT_EQ(acdbOpenObject(block, erased, AcDb::kForWrite), Acad::eOk);
    ASSERT_EQ(block->erase(), Acad::eOk);
    block->close();
    ASSERT_EQ(target.insert(AcGeMatrix3d::kIdentity, &source, false), Acad::eOk);
    EXPECT_TRUE(Has(target, L"*U2"));
    EXPECT_TRUE(Has(target, L"*U3"));
}

TEST(InsertAnonymous, inserted_block_owns_its_entities_closed) {
    AcDbDatabase source;
    MakeSource(source);
    AcDbDatabase target;
    ASSERT_EQ(target.insert(AcGeMatrix3d::kIdentity, &source, false), Acad::eOk);
    AcDbBlockTableRecord* block = nullptr;
    ASSERT_EQ(acdbOpenObject(block, target.blockId(L"*U2"), AcDb::kForRead), Acad::eOk);
    AcDbObjectIdArray ids = block->entityIds();
    block->close();
    ASSERT_EQ(ids.length(), 1);
    // Closed by the insert: the copy opens for write.
    AcDbLine* line = nullptr;
    ASSERT_EQ(acdbOpenObject(line, ids[0], AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(line->endPoint(), AcGePoint3d(1, 1, 0));
    EXPECT_EQ(line->ownerId(), target.blockId(L"*U2"));
    line->close();
}

}  // namespace
