// The sheet frame of a drawing: the frame file its name selects, the KEY:VALUE texts that fill
// the title block, and the frame drawing scaled onto the sheet with its attributes filled.
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "geometry_matchers.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/mtext.hpp"
#include "standard/sheet_frame.hpp"

namespace {

constexpr const wchar_t* kFrameFolder = L"D:\\CZ\\config\\标准图框\\";

class SheetFrameInsert : public BatchTest {
protected:
    void SetUp() override {
        BatchTest::SetUp();
        drawing_ = std::make_unique<AcDbDatabase>(true, true);
        Module().CurrentDatabase = drawing_.get();
        acdbHostApplicationServices()->setWorkingDatabase(drawing_.get());
        Module().dimensionState.frameBox = Box(AcGePoint3d(100, 50, 0), AcGePoint3d(940, 644, 0));
    }
    void TearDown() override {
        Module().CurrentDatabase = nullptr;
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
        drawing_.reset();
        BatchTest::TearDown();
    }
    static AcDbExtents Box(const AcGePoint3d& a, const AcGePoint3d& b) {
        AcDbExtents box;
        box.addPoint(a);
        box.addPoint(b);
        return box;
    }
    AcDbDatabase& Drawing() { return *drawing_; }
    AcDbObjectId AddText(const std::wstring& text, const AcGePoint3d& at) {
        return Add(Drawing(), new AcDbText(at, text), L"TEXT");
    }
    std::vector<attstr>& Rows() { return Module().boxSetting.attributes; }

    // A frame drawing 420 wide: its border lines and a title block reference whose attributes
    // are NAME and MATERIAL.
    static void SaveFrame(const std::wstring& fileName) {
        SaveDrawing(std::wstring(kFrameFolder) + fileName, [](AcDbDatabase& db) {
            AcDbBlockTable* blocks = nullptr;
            db.getSymbolTable(blocks, AcDb::kForWrite);
            auto* title = new AcDbBlockTableRecord;
            title->setName(L"TITLE");
            AcDbObjectId titleId;
            blocks->add(titleId, title);
            blocks->close();
            title->appendAcDbEntity(new AcDbLine(AcGePoint3d(-180, 0, 0), AcGePoint3d(0, 0, 0)));
            for (const wchar_t* tag : {L"NAME", L"MATERIAL"}) {
                auto* def = new AcDbAttributeDefinition(AcGePoint3d(-170, 10, 0), L"", tag, tag);
                title->appendAcDbEntity(def);
                def->close();
            }
            title->close();
            Add(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(420, 0, 0)));
            Add(db, new AcDbLine(AcGePoint3d(420, 0, 0), AcGePoint3d(420, 297, 0)));
            auto* reference = new AcDbBlockReference(AcGePoint3d(415, 5, 0), titleId);
            AcDbObjectId referenceId = Add(db, reference);
            AcDbBlockReference* open = nullptr;
            acdbOpenObject(open, referenceId, AcDb::kForWrite);
            for (const wchar_t* tag : {L"name", L"MATERIAL"}) {
                auto* attribute = new AcDbAttribute(AcGePoint3d(245, 15, 0), L"-", tag);
                open->appendAttribute(attribute);
                attribute->close();
            }
            open->close();
        });
    }

    // Values of the attributes of the model space's block references, by tag.
    std::map<std::wstring, std::wstring> AttributeValues() {
        std::map<std::wstring, std::wstring> values;
        for (const AcDbObjectId& id : ModelSpaceIds(Drawing())) {
            AcDbBlockReference* reference = nullptr;
            if (acdbOpenObject(reference, id, AcDb::kForRead) != Acad::eOk) continue;
            for (const AcDbObjectId& a : reference->attributeIds()) {
                AcDbAttribute* attribute = nullptr;
                acdbOpenObject(attribute, a, AcDb::kForRead);
                values[attribute->tag()] = attribute->textString();
                attribute->close();
            }
            reference->close();
        }
        return values;
    }
    bool IsErased(AcDbObjectId id) { return id.isErased(); }

    std::unique_ptr<AcDbDatabase> drawing_;
};

// ---- Which frame ----

TEST_F(SheetFrameInsert, first_matching_pattern_gives_the_frame_file) {
    std::vector<dwgmatch> rows = {{L"*-2", L"A4.DWG"}, {L"MP*-1", L"A3.DWG"}, {L"*", L"A2.DWG"}};
    EXPECT_EQ(MatchFrameName(rows, L"C:\\Convert\\MP2305-1.dwg"), L"A3.DWG");
}

TEST_F(SheetFrameInsert, drawing_name_is_cut_at_the_last_backslash_and_the_first_point) {
    std::vector<dwgmatch> rows = {{L"P-1", L"EXACT.DWG"}};
    EXPECT_EQ(MatchFrameName(rows, L"C:\\a.b\\P-1.x.dwg"), L"EXACT.DWG");
    EXPECT_EQ(MatchFrameName(rows, L"C:\\a\\P-1"), L"");  // no point: the name is empty
}

TEST_F(SheetFrameInsert, name_matching_no_pattern_leaves_the_frame_name_empty) {
    std::vector<dwgmatch> rows = {{L"X*", L"A4.DWG"}};
    EXPECT_EQ(MatchFrameName(rows, L"C:\\Convert\\MP2305-1.dwg"), L"");
}

TEST_F(SheetFrameInsert, empty_frame_name_looks_up_the_folder_itself_as_the_file) {
    SaveFrame(L"A3.DWG");
    Module().frameName = L"";
    AcDbObjectIdArray ids;
    InsertSheetFrame(kFrameFolder, AcGePoint3d(100, 50, 0), ids);
    // A search for the folder's path, ending in a backslash, finds no file: no frame.
    EXPECT_TRUE(ids.isEmpty());
    EXPECT_EQ(CgLog(), L"\n查找图框");
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), &Drawing());
}

// ---- KEY:VALUE texts ----

TEST_F(SheetFrameInsert, text_with_the_colon_at_index_zero_is_not_used) {
    AddText(L":VALUE", AcGePoint3d(200, 100, 0));
    EXPECT_EQ(CollectAttributeTexts(&Drawing()), 0);
    EXPECT_TRUE(Rows().empty());
}

TEST_F(SheetFrameInsert, text_with_two_colons_gives_the_first_tag_and_the_second_value) {
    AcDbObjectId id = AddText(L"  a:b:c ", AcGePoint3d(200, 100, 0));
    CollectAttributeTexts(&Drawing());
    ASSERT_EQ(Rows().size(), 1u);
    EXPECT_EQ(Rows()[0].tag, L"A");
    EXPECT_EQ(Rows()[0].value, L"B");
    EXPECT_EQ(Rows()[0].source, id);
}

TEST_F(SheetFrameInsert, texts_on_the_frame_box_edge_count_and_outside_it_do_not) {
    AddText(L"ON:EDGE", AcGePoint3d(100, 644, 0));
    AddText(L"OUT:SIDE", AcGePoint3d(99.999, 100, 0));
    AddText(L"ABOVE:IT", AcGePoint3d(200, 644.001, 0));
    AddText(L"NOVALUE:", AcGePoint3d(200, 100, 0));
    auto* multi = new AcDbMText;
    multi->setLocation(AcGePoint3d(940, 50, 0));
    multi->setContents(L"MULTI:LINE");
    Add(Drawing(), multi, L"TEXT");
    CollectAttributeTexts(&Drawing());
    ASSERT_EQ(Rows().size(), 2u);
    EXPECT_EQ(Rows()[0].tag, L"ON");
    EXPECT_EQ(Rows()[1].value, L"LINE");
}

// ---- The frame on the sheet ----

TEST_F(SheetFrameInsert, frame_is_scaled_to_the_frame_box_with_its_base_on_the_marker) {
    SaveFrame(L"A3.DWG");
    Module().frameName = L"A3.DWG";
    AcDbObjectIdArray ids;
    EXPECT_EQ(InsertSheetFrame(kFrameFolder, AcGePoint3d(100, 50, 0), ids), 0);
    ASSERT_EQ(ids.length(), 3);  // two lines and the nested title block
    // The frame file was read into a scratch drawing; the sheet's drawing is working again.
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), &Drawing());
    auto lines = ModelSpaceLines(Drawing());
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_THAT(lines[0].first, IsNearPoint(AcGePoint3d(100, 50, 0), 1e-9));
    EXPECT_THAT(lines[0].second, IsNearPoint(AcGePoint3d(940, 50, 0), 1e-9));
    EXPECT_THAT(lines[1].second, IsNearPoint(AcGePoint3d(940, 644, 0), 1e-9));
    EXPECT_NE(CgLog().find(L"图框名为:" + std::wstring(kFrameFolder) + L"A3.DWG"), std::wstring::npos);
}

TEST_F(SheetFrameInsert, block_name_is_the_file_name_trimmed_by_the_characters_of_dot_dwg) {
    SaveFrame(L"STD.DWG");
    Module().frameName = L"STD.DWG";
    AcDbObjectIdArray ids;
    InsertSheetFrame(kFrameFolder, AcGePoint3d(100, 50, 0), ids);
    AcDbBlockTable* blocks = nullptr;
    Drawing().getSymbolTable(blocks, AcDb::kForRead);
    EXPECT_TRUE(blocks->has(L"ST"));  // the D of STD goes with the suffix
    EXPECT_FALSE(blocks->has(L"STD"));
    blocks->close();
}

TEST_F(SheetFrameInsert, missing_frame_file_adds_nothing_after_its_log_line) {
    Module().frameName = L"NONE.DWG";
    AcDbObjectIdArray ids;
    EXPECT_EQ(InsertSheetFrame(kFrameFolder, AcGePoint3d(100, 50, 0), ids), 16);
    EXPECT_TRUE(ids.isEmpty());
    EXPECT_EQ(CgLog(), L"\n查找图框NONE.DWG");
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), &Drawing());
}

TEST_F(SheetFrameInsert, lowercase_values_are_written_to_the_frame_in_upper_case) {
    SaveFrame(L"A3.DWG");
    Module().frameName = L"A3.DWG";
    AcDbObjectId text = AddText(L"material:p20", AcGePoint3d(200, 100, 0));
    CollectAttributeTexts(&Drawing());
    AcDbObjectIdArray ids;
    InsertSheetFrame(kFrameFolder, AcGePoint3d(100, 50, 0), ids);
    EXPECT_EQ(AttributeValues()[L"MATERIAL"], L"P20");
    EXPECT_EQ(AttributeValues()[L"name"], L"-");
    EXPECT_TRUE(IsErased(text));
}

TEST_F(SheetFrameInsert, of_two_texts_with_one_tag_the_first_wins_and_only_it_is_erased) {
    SaveFrame(L"A3.DWG");
    Module().frameName = L"A3.DWG";
    AcDbObjectId first = AddText(L"NAME:PLATE", AcGePoint3d(200, 100, 0));
    AcDbObjectId second = AddText(L"NAME:INSERT", AcGePoint3d(200, 90, 0));
    CollectAttributeTexts(&Drawing());
    EXPECT_EQ(Rows().size(), 2u);
    AcDbObjectIdArray ids;
    InsertSheetFrame(kFrameFolder, AcGePoint3d(100, 50, 0), ids);
    EXPECT_EQ(AttributeValues()[L"name"], L"PLATE");
    EXPECT_TRUE(IsErased(first));
    EXPECT_FALSE(IsErased(second));
}

// What the insertion opened it closed: the block table opens for write, the erased text opens.
TEST_F(SheetFrameInsert, insertion_leaves_the_block_table_and_the_erased_text_closed) {
    SaveFrame(L"A3.DWG");
    Module().frameName = L"A3.DWG";
    AcDbObjectId used = AddText(L"NAME:PLATE", AcGePoint3d(200, 100, 0));
    CollectAttributeTexts(&Drawing());
    AcDbObjectIdArray ids;
    EXPECT_EQ(InsertSheetFrame(kFrameFolder, AcGePoint3d(100, 50, 0), ids), 0);
    AcDbBlockTable* blocks = nullptr;
    EXPECT_EQ(Drawing().getSymbolTable(blocks, AcDb::kForWrite), Acad::eOk);
    if (blocks) blocks->close();
    AcDbEntity* text = nullptr;
    EXPECT_EQ(acdbOpenAcDbEntity(text, used, AcDb::kForRead, true), Acad::eOk);
    if (text) {
        EXPECT_TRUE(text->isErased());
        text->close();
    }
}

TEST_F(SheetFrameInsert, box_setting_row_beats_a_text_with_the_same_tag_and_the_text_stays) {
    SaveFrame(L"A3.DWG");
    Module().frameName = L"A3.DWG";
    Rows().push_back({L"NAME", L"FROM FILE", AcDbObjectId::kNull});
    AcDbObjectId text = AddText(L"NAME:FROM TEXT", AcGePoint3d(200, 100, 0));
    CollectAttributeTexts(&Drawing());
    AcDbObjectIdArray ids;
    InsertSheetFrame(kFrameFolder, AcGePoint3d(100, 50, 0), ids);
    EXPECT_EQ(AttributeValues()[L"name"], L"FROM FILE");
    EXPECT_FALSE(IsErased(text));
}

TEST_F(SheetFrameInsert, second_sheet_takes_the_block_already_in_the_table_without_reading_again) {
    SaveFrame(L"A3.DWG");
    Module().frameName = L"A3.DWG";
    AcDbObjectIdArray ids;
    InsertSheetFrame(kFrameFolder, AcGePoint3d(100, 50, 0), ids);
    std::filesystem::remove(ResolvePath(std::wstring(kFrameFolder) + L"A3.DWG"));
    WriteText(std::wstring(kFrameFolder) + L"A3.DWG", L"not a drawing");
    Module().dimensionState.frameBox = Box(AcGePoint3d(1000, 0, 0), AcGePoint3d(1420, 297, 0));
    AcDbObjectIdArray second;
    EXPECT_EQ(InsertSheetFrame(kFrameFolder, AcGePoint3d(1000, 0, 0), second), 0);
    EXPECT_EQ(second.length(), 3);
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), &Drawing());
    EXPECT_EQ(ModelSpaceLines(Drawing()).size(), 4u);
}

TEST_F(SheetFrameInsert, unreadable_frame_file_leaves_the_temporary_database_working) {
    WriteText(std::wstring(kFrameFolder) + L"BAD.DWG", L"not a drawing");
    Module().frameName = L"BAD.DWG";
    AcDbObjectIdArray ids;
    EXPECT_EQ(InsertSheetFrame(kFrameFolder, AcGePoint3d(100, 50, 0), ids), 0);
    EXPECT_TRUE(ids.isEmpty());
    AcDbDatabase* working = acdbHostApplicationServices()->workingDatabase();
    EXPECT_NE(working, &Drawing());
    EXPECT_NE(working, nullptr);
    delete working;
}

}  // namespace
