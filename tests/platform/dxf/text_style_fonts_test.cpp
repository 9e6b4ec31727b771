// Font files of a text style and the width factor of a text survive a save and a read.
#include <gtest/gtest.h>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/db/text.hpp"
#include "support.hpp"

namespace {

TEST(TextStyleFonts, font_files_and_width_factor_read_back_as_written) {
    auto dir = dxftest::TempDir("style_fonts");
    {
        AcDbDatabase db(true, false);
        AcDbTextStyleTable* styles = nullptr;
        db.getSymbolTable(styles, AcDb::kForWrite);
        auto* style = new AcDbTextStyleTableRecord;
        style->setName(L"chinesef_fs");
        style->setFileName(L"gbenor.shx");
        style->setBigFontFileName(L"gbcbig.shx");
        AcDbObjectId styleId;
        styles->add(styleId, style);
        style->close();
        styles->close();
        AcDbBlockTable* blocks = nullptr;
        db.getSymbolTable(blocks, AcDb::kForRead);
        AcDbBlockTableRecord* model = nullptr;
        blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
        blocks->close();
        auto* text = new AcDbText(AcGePoint3d(0, 0, 0), L"%%c10", styleId);
        text->setWidthFactor(0.7);
        model->appendAcDbEntity(text);
        text->close();
        model->close();
        ASSERT_EQ(db.saveAs((dir / "fonts.dxf").wstring().c_str()), Acad::eOk);
    }
    AcDbDatabase again(false, true);
    ASSERT_EQ(again.readDwgFile((dir / "fonts.dxf").wstring().c_str()), Acad::eOk);
    AcDbTextStyleTable* styles = nullptr;
    again.getSymbolTable(styles, AcDb::kForRead);
    AcDbTextStyleTableRecord* style = nullptr;
    ASSERT_EQ(styles->getAt(L"chinesef_fs", style, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(style->fileName(), L"gbenor.shx");
    EXPECT_EQ(style->bigFontFileName(), L"gbcbig.shx");
    style->close();
    styles->close();
    AcDbBlockTable* blocks = nullptr;
    again.getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForRead);
    blocks->close();
    ASSERT_EQ(model->entityIds().length(), 1);
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(entity, model->entityIds()[0], AcDb::kForRead), Acad::eOk);
    EXPECT_DOUBLE_EQ(AcDbText::cast(entity)->widthFactor(), 0.7);
    EXPECT_EQ(AcDbText::cast(entity)->textString(), L"%%c10");
    entity->close();
    model->close();
}

}  // namespace
