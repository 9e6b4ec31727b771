// The standardisation inside the pipeline: the attributes refilled for each sheet, the layers of
// the file number kept from drawing to drawing, texts, curves and dimensions of a finished drawing.
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/mtext.hpp"

namespace {

class PipelineStandard : public BatchTest {
protected:
    void WriteLayerUg(const std::wstring& text) { WriteText(L"D:\\CZ\\config\\CAD\\CAD_layerug.ini", text); }
    // The layer of each model-space entity of a saved drawing, by its kind and first point.
    template <typename Look>
    void ForEachEntity(const std::wstring& path, Look look) {
        auto db = ReadDrawing(path);
        ASSERT_TRUE(db);
        for (const AcDbObjectId& id : ModelSpaceIds(*db)) {
            AcDbEntity* entity = nullptr;
            acdbOpenAcDbEntity(entity, id, AcDb::kForRead);
            look(entity);
            entity->close();
        }
    }
};

TEST_F(PipelineStandard, attributes_are_refilled_for_the_second_sheet) {
    std::wstring path = HandOff(L"P-1.dxf");
    SaveDrawing(path, [](AcDbDatabase& db) {
        AddSheet(db, AcGePoint3d(0, 0, 0));
        AddSheet(db, AcGePoint3d(500, 0, 0));
        Add(db, new AcDbText(AcGePoint3d(10, 10, 0), L"图号:A", db.textstyle()), L"TEXT");
        Add(db, new AcDbText(AcGePoint3d(510, 10, 0), L"材料:B", db.textstyle()), L"TEXT");
    });
    WriteText(L"D:\\CZ\\config\\标准图框\\boxsetting.txt", L"[ATTWCH]\r\n单位,模具厂\r\n");
    ProcessDrawing(path);
    std::vector<std::wstring> tags;
    for (const attstr& row : Module().boxSetting.attributes) tags.push_back(row.tag + L":" + row.value);
    EXPECT_EQ(tags, (std::vector<std::wstring>{L"单位:模具厂", L"材料:B"}));
}

TEST_F(PipelineStandard, number_with_fillay_row_moves_part_to_its_layer_and_dimensions_to_dim) {
    WriteLayerUg(L"[CONVERT]\r\nOUTLINE,粗实线\r\n[FILLAY]\r\n1,模板\r\n");
    std::wstring path = HandOff(L"P-1.dxf");
    SaveDrawing(path, [](AcDbDatabase& db) {
        AddSheet(db, AcGePoint3d(0, 0, 0));
        Add(db, new AcDbLine(AcGePoint3d(50, 50, 0), AcGePoint3d(150, 50, 0)), L"PART");
        Add(db, new AcDbRotatedDimension(0.0, AcGePoint3d(50, 40, 0), AcGePoint3d(150, 40, 0),
                                         AcGePoint3d(100, 30, 0), L"", AcDbObjectId::kNull), L"PART");
        Add(db, new AcDbLine(AcGePoint3d(50, 60, 0), AcGePoint3d(150, 60, 0)), L"OUTLINE");
    });
    ProcessDrawing(path);
    EXPECT_EQ(Module().targetLayer, L"模板");
    std::vector<std::wstring> layers;
    ForEachEntity(path, [&](AcDbEntity* e) { layers.push_back(e->isA()->name() + std::wstring(L"@") + e->layer()); });
    EXPECT_EQ(layers, (std::vector<std::wstring>{L"AcDbLine@模板", L"AcDbRotatedDimension@DIM", L"AcDbLine@模板"}));
}

TEST_F(PipelineStandard, table_conversion_renames_a_kept_layer) {
    WriteLayerUg(L"[CONVERT]\r\n1,粗实线\r\n[FILLAY]\r\n1,模板\r\n");
    std::wstring path = HandOff(L"P-1.dxf");
    SaveDrawing(path, [](AcDbDatabase& db) {
        AddSheet(db, AcGePoint3d(0, 0, 0));
        Add(db, new AcDbLine(AcGePoint3d(50, 50, 0), AcGePoint3d(150, 50, 0)), L"1");
    });
    ProcessDrawing(path);
    std::vector<std::wstring> layers;
    ForEachEntity(path, [&](AcDbEntity* e) { layers.push_back(e->layer()); });
    EXPECT_EQ(layers, (std::vector<std::wstring>{L"粗实线"}));
}

TEST_F(PipelineStandard, second_drawing_without_fillay_row_keeps_its_layers_and_the_first_target) {
    WriteLayerUg(L"[FILLAY]\r\n1,模板\r\n");
    for (const wchar_t* name : {L"P-1.dxf", L"P-2.dxf"})
        SaveDrawing(HandOff(name), [](AcDbDatabase& db) {
            AddSheet(db, AcGePoint3d(0, 0, 0));
            Add(db, new AcDbLine(AcGePoint3d(50, 50, 0), AcGePoint3d(150, 50, 0)), L"PART");
        });
    ProcessDrawing(HandOff(L"P-1.dxf"));
    ProcessDrawing(HandOff(L"P-2.dxf"));
    EXPECT_EQ(Module().targetLayer, L"模板");
    std::vector<std::wstring> layers;
    ForEachEntity(HandOff(L"P-2.dxf"), [&](AcDbEntity* e) { layers.push_back(e->layer()); });
    EXPECT_EQ(layers, (std::vector<std::wstring>{L"PART"}));
}

TEST_F(PipelineStandard, title_without_hyphen_prints_its_message_and_keeps_the_layers) {
    WriteLayerUg(L"[FILLAY]\r\n0,模板\r\n");
    std::wstring path = HandOff(L"P1.dxf");
    SaveDrawing(path, [](AcDbDatabase& db) {
        AddSheet(db, AcGePoint3d(0, 0, 0));
        Add(db, new AcDbLine(AcGePoint3d(50, 50, 0), AcGePoint3d(150, 50, 0)), L"PART");
    });
    testing::internal::CaptureStdout();
    ProcessDrawing(path);
    std::wstring printed = WideFromUtf8(testing::internal::GetCapturedStdout());
    EXPECT_NE(printed.find(L"\n文件名 P1 中不包含分隔符"), std::wstring::npos);
    EXPECT_EQ(Module().targetLayer, L"");
    std::vector<std::wstring> layers;
    ForEachEntity(path, [&](AcDbEntity* e) { layers.push_back(e->layer()); });
    EXPECT_EQ(layers, (std::vector<std::wstring>{L"PART"}));
}

TEST_F(PipelineStandard, finished_texts_are_single_lines_with_the_standard_diameter_sign) {
    std::wstring path = HandOff(L"P-1.dxf");
    SaveDrawing(path, [](AcDbDatabase& db) {
        AddSheet(db, AcGePoint3d(0, 0, 0));
        auto* mtext = new AcDbMText;
        mtext->setLocation(AcGePoint3d(50, 200, 0));
        mtext->setTextHeight(5.0);
        mtext->setContents(L"4-Ø25 H7\\P2-Ø8 Ø8");
        Add(db, mtext, L"TEXT");
        AcDbTextStyleTable* styles = nullptr;
        db.getSymbolTable(styles, AcDb::kForWrite);
        auto* style = new AcDbTextStyleTableRecord;
        style->setName(L"chinesef_fs");
        styles->add(style);
        style->close();
        styles->close();
    });
    ProcessDrawing(path);
    std::vector<std::wstring> texts;
    int mtexts = 0;
    ForEachEntity(path, [&](AcDbEntity* e) {
        if (auto* text = AcDbText::cast(e)) texts.push_back(text->textString());
        if (AcDbMText::cast(e)) ++mtexts;
    });
    EXPECT_EQ(mtexts, 0);
    EXPECT_EQ(texts, (std::vector<std::wstring>{L"4-%%c25 H7", L"2-%%c8 Ø8"}));
    auto db = ReadDrawing(path);
    AcDbTextStyleTable* styles = nullptr;
    db->getSymbolTable(styles, AcDb::kForRead);
    AcDbTextStyleTableRecord* style = nullptr;
    ASSERT_EQ(styles->getAt(L"chinesef_fs", style, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(style->fileName(), L"gbenor.shx");
    EXPECT_EQ(style->bigFontFileName(), L"gbcbig.shx");
    style->close();
    styles->close();
}

TEST_F(PipelineStandard, curve_exported_with_minus_z_normal_is_saved_with_plus_z) {
    std::wstring path = HandOff(L"P-1.dxf");
    SaveDrawing(path, [](AcDbDatabase& db) {
        AddSheet(db, AcGePoint3d(0, 0, 0));
        Add(db, new AcDbCircle(AcGePoint3d(60, 70, 0), AcGeVector3d(0, 0, -1), 4.0), L"PART");
    });
    ProcessDrawing(path);
    int flipped = 0;
    ForEachEntity(path, [&](AcDbEntity* e) {
        auto* circle = AcDbCircle::cast(e);
        if (circle && circle->radius() == 4.0 && circle->normal().isEqualTo(AcGeVector3d::kZAxis) &&
            circle->center().isEqualTo(AcGePoint3d(60, 70, 0)))
            ++flipped;
    });
    EXPECT_EQ(flipped, 1);
}

}  // namespace
