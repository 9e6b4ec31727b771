// The parts of an object that few objects have (extension dictionary, reactors, extended data,
// the record as read) read as empty until set, and are given back when all are empty again.
#include <gtest/gtest.h>

#include "platform/db/color.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"

namespace {

TEST(ObjectParts, object_made_in_memory_has_none_of_the_rare_parts) {
    const AcDbLine line({0, 0, 0}, {1, 0, 0});
    EXPECT_TRUE(line.extensionDictionary().isNull());
    EXPECT_TRUE(line.persistentReactors().isEmpty());
    EXPECT_TRUE(line.xData().empty());
    EXPECT_TRUE(line.fileTags().empty());
}

TEST(ObjectParts, copy_carries_extended_data_and_record_but_not_dictionary_or_reactors) {
    AcDbDatabase db(true, true);
    AcDbLine line({0, 0, 0}, {1, 0, 0});
    line.setExtensionDictionary(db.layerTableId());
    line.persistentReactors().append(db.blockTableId());
    line.xData().push_back({L"APP", {{1000, "note"}}});
    line.fileTags().push_back(0, "LINE");
    AcDbEntity* copy = nullptr;
    ASSERT_EQ(line.getTransformedCopy(AcGeMatrix3d(), copy), Acad::eOk);
    EXPECT_TRUE(copy->extensionDictionary().isNull());
    EXPECT_TRUE(copy->persistentReactors().isEmpty());
    ASSERT_EQ(copy->xData().size(), 1u);
    EXPECT_EQ(copy->xData()[0].appName, L"APP");
    EXPECT_EQ(copy->fileTags(), line.fileTags());
    delete copy;
    EXPECT_EQ(line.extensionDictionary(), db.layerTableId());
    EXPECT_EQ(line.persistentReactors().length(), 1);
}

TEST(ObjectParts, parts_are_given_back_only_when_all_are_empty) {
    AcDbDatabase db(true, true);
    AcDbLine line({0, 0, 0}, {1, 0, 0});
    line.fileTags().push_back(0, "LINE");
    line.setExtensionDictionary(db.layerTableId());
    line.fileTags().clear();
    line.releaseEmptyParts();
    EXPECT_EQ(line.extensionDictionary(), db.layerTableId());
    line.setExtensionDictionary(AcDbObjectId());
    line.releaseEmptyParts();
    EXPECT_TRUE(line.extensionDictionary().isNull());
    EXPECT_TRUE(line.fileTags().empty());
    // A null dictionary set on an object without parts leaves it without them.
    line.setExtensionDictionary(AcDbObjectId());
    EXPECT_TRUE(line.extensionDictionary().isNull());
}

TEST(ObjectParts, colour_book_name_is_kept_and_an_index_forgets_it) {
    AcCmColor a, b;
    a.setColorName(L"RAL$RAL 1000");
    b.setColorName(std::wstring(L"RAL$RAL ") + L"1000");
    EXPECT_EQ(a.colorName(), L"RAL$RAL 1000");
    EXPECT_EQ(a, b);
    b.setColorName(L"RAL$RAL 1001");
    EXPECT_FALSE(a == b);
    a.setColorIndex(3);
    EXPECT_TRUE(a.colorName().empty());
}

}  // namespace
