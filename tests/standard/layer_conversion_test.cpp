// The layers that the file name, the colour rows and the layer table ask for, and the layer of
// the dimensions.
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "platform/db/dimension.hpp"
#include "standard/layers_text.hpp"

namespace {

class LayerConversion : public BatchTest {
protected:
    AcDbDatabase& Drawing() { return *hostDrawing_; }
    AcDbDatabase* Db() { return hostDrawing_.get(); }
    void WriteLayerUg(const std::wstring& text) { WriteText(L"D:\\CZ\\config\\CAD\\CAD_layerug.ini", text); }
    void NameDrawing(const std::wstring& name) { Drawing().setFilename(L"C:\\parts\\" + name); }
    AcDbObjectId AddLine(const std::wstring& layer, int color = 256) {
        auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
        AcDbObjectId id = Add(Drawing(), line, layer);
        AcDbEntity* entity = nullptr;
        acdbOpenAcDbEntity(entity, id, AcDb::kForWrite);
        entity->setColorIndex(static_cast<std::uint16_t>(color));
        entity->close();
        return id;
    }
    std::wstring LayerOf(AcDbObjectId id) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) return L"?";
        std::wstring layer = entity->layer();
        entity->close();
        return layer;
    }
    bool HasLayer(const std::wstring& name) {
        AcDbLayerTable* layers = nullptr;
        Drawing().getSymbolTable(layers, AcDb::kForRead);
        bool has = layers->has(name);
        layers->close();
        return has;
    }
};

// FindLayerByFileName

TEST_F(LayerConversion, number_after_the_last_hyphen_selects_the_fillay_row) {
    WriteLayerUg(L"[FILLAY]\r\n6,SIX\r\n7,PLATE\r\n07,LATER\r\n");
    struct Case {
        const wchar_t* name;
        int answer;
        const wchar_t* target;
    };
    for (Case c : {Case{L"plate-07.dwg", 1, L"PLATE"}, Case{L"mp-2305-6.dwg", 1, L"SIX"},
                   Case{L"a-b- 7 .dwg", 1, L"PLATE"}}) {
        Module().targetLayer = L"BEFORE";
        NameDrawing(c.name);
        EXPECT_EQ(FindLayerByFileName(Db()), c.answer);
        EXPECT_EQ(Module().targetLayer, c.target);
    }
}

TEST_F(LayerConversion, number_that_is_no_number_reads_zero_and_fits_row_zero) {
    WriteLayerUg(L"[FILLAY]\r\n0,ZERO\r\n");
    NameDrawing(L"plate-x.dwg");
    EXPECT_EQ(FindLayerByFileName(Db()), 1);
    EXPECT_EQ(Module().targetLayer, L"ZERO");
}

TEST_F(LayerConversion, no_fitting_row_keeps_the_earlier_target_layer) {
    WriteLayerUg(L"[FILLAY]\r\n1,ONE\r\n");
    Module().targetLayer = L"FROM_FIRST_DRAWING";
    NameDrawing(L"plate-2.dwg");
    EXPECT_EQ(FindLayerByFileName(Db()), 0);
    EXPECT_EQ(Module().targetLayer, L"FROM_FIRST_DRAWING");
}

TEST_F(LayerConversion, title_without_hyphen_prints_its_message_and_answers_0) {
    WriteLayerUg(L"[FILLAY]\r\n0,ZERO\r\n");
    NameDrawing(L"plate7.dwg");
    testing::internal::CaptureStdout();
    EXPECT_EQ(FindLayerByFileName(Db()), 0);
    EXPECT_EQ(WideFromUtf8(testing::internal::GetCapturedStdout()), L"\n文件名 plate7 中不包含分隔符");
    EXPECT_EQ(Module().targetLayer, L"");
}

TEST_F(LayerConversion, missing_layer_table_file_answers_0) {
    NameDrawing(L"plate-1.dwg");
    EXPECT_EQ(FindLayerByFileName(Db()), 0);
}

// ConvertLayersByColor

class ConvertByColor : public LayerConversion {
protected:
    void SetUp() override {
        LayerConversion::SetUp();
        Module().targetLayer = L"PART";
        Module().cadStandardIni.colorLayers = {{1, L"-RED"}, {3, L"-GREEN"}, {1, L"-LATER"}};
        Module().layerUgIni.fillLayers = {{L"1", L"INSERT"}};
    }
};

TEST_F(ConvertByColor, colour_row_moves_entity_to_target_with_suffix_even_from_kept_layer) {
    AcDbObjectId red = AddLine(L"OUTLINE", 1);
    AcDbObjectId frame = AddLine(L"BIGFRAM", 3);
    EXPECT_EQ(ConvertLayersByColor(Db()), 0);
    EXPECT_EQ(LayerOf(red), L"PART-RED");
    EXPECT_EQ(LayerOf(frame), L"PART-GREEN");
    EXPECT_TRUE(HasLayer(L"PART-RED"));
}

TEST_F(ConvertByColor, kept_layers_stay_and_others_go_to_target) {
    AcDbObjectId frame = AddLine(L"bigfram");
    AcDbObjectId dim = AddLine(L"DIM");
    AcDbObjectId number = AddLine(L"1");
    AcDbObjectId fill = AddLine(L"insert");
    AcDbObjectId other = AddLine(L"OUTLINE", 5);
    AcDbObjectId byLayer = AddLine(L"0");
    EXPECT_EQ(ConvertLayersByColor(Db()), 0);
    EXPECT_EQ(LayerOf(frame), L"bigfram");
    EXPECT_EQ(LayerOf(dim), L"DIM");
    EXPECT_EQ(LayerOf(number), L"1");
    EXPECT_EQ(LayerOf(fill), L"insert");
    EXPECT_EQ(LayerOf(other), L"PART");
    EXPECT_EQ(LayerOf(byLayer), L"PART");
    EXPECT_TRUE(HasLayer(L"PART"));
}

TEST_F(ConvertByColor, target_layer_itself_is_kept) {
    AcDbObjectId onTarget = AddLine(L"part");
    EXPECT_EQ(ConvertLayersByColor(Db()), 0);
    EXPECT_EQ(LayerOf(onTarget), L"part");
}

// ConvertLayersByTable

TEST_F(LayerConversion, missing_to_layer_is_made_by_renaming_from) {
    AcDbObjectId line = AddLine(L"1");
    Module().layerUgIni.conversions = {{L"1", L"粗实线"}};
    EXPECT_EQ(ConvertLayersByTable(Db()), 0);
    EXPECT_FALSE(HasLayer(L"1"));
    EXPECT_TRUE(HasLayer(L"粗实线"));
    EXPECT_EQ(LayerOf(line), L"粗实线");
}

TEST_F(LayerConversion, existing_to_layer_takes_the_entities_and_from_stays) {
    AcDbObjectId line = AddLine(L"text");
    AcDbObjectId there = AddLine(L"文字");
    AcDbObjectId other = AddLine(L"OTHER");
    Module().layerUgIni.conversions = {{L"TEXT", L"文字"}};
    EXPECT_EQ(ConvertLayersByTable(Db()), 0);
    EXPECT_TRUE(HasLayer(L"TEXT"));
    EXPECT_EQ(LayerOf(line), L"文字");
    EXPECT_EQ(LayerOf(there), L"文字");
    EXPECT_EQ(LayerOf(other), L"OTHER");
}

TEST_F(LayerConversion, row_whose_to_equals_its_existing_from_leaves_entities) {
    AcDbObjectId line = AddLine(L"SAME");
    Module().layerUgIni.conversions = {{L"SAME", L"SAME"}};
    EXPECT_EQ(ConvertLayersByTable(Db()), 0);
    EXPECT_EQ(LayerOf(line), L"SAME");
    EXPECT_TRUE(HasLayer(L"SAME"));
}

TEST_F(LayerConversion, row_of_a_missing_from_layer_changes_nothing) {
    AcDbObjectId line = AddLine(L"KEEP");
    Module().layerUgIni.conversions = {{L"ABSENT", L"KEEP"}, {L"ABSENT", L"NEW"}};
    EXPECT_EQ(ConvertLayersByTable(Db()), 0);
    EXPECT_EQ(LayerOf(line), L"KEEP");
    EXPECT_FALSE(HasLayer(L"NEW"));
}

TEST_F(LayerConversion, rows_repeated_by_rereads_apply_once) {
    AcDbObjectId line = AddLine(L"2");
    Module().layerUgIni.conversions = {{L"2", L"HIDDEN"}, {L"2", L"HIDDEN"}};
    EXPECT_EQ(ConvertLayersByTable(Db()), 0);
    EXPECT_EQ(LayerOf(line), L"HIDDEN");
}

// GatherDimensions

TEST_F(LayerConversion, dimensions_gather_on_the_dim_layer_which_is_made) {
    auto* dimension = new AcDbRotatedDimension;
    AcDbObjectId dim = Add(Drawing(), dimension, L"1");
    AcDbObjectId line = AddLine(L"1");
    EXPECT_EQ(GatherDimensions(L"标注", Db()), 0);
    EXPECT_EQ(LayerOf(dim), L"标注");
    EXPECT_EQ(LayerOf(line), L"1");
    AcDbLayerTable* layers = nullptr;
    Drawing().getSymbolTable(layers, AcDb::kForRead);
    AcDbLayerTableRecord* layer = nullptr;
    ASSERT_EQ(layers->getAt(L"标注", layer, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(layer->color().colorIndex(), 7);
    EXPECT_FALSE(layer->isLocked() || layer->isFrozen() || layer->isOff());
    layer->close();
    layers->close();
}

TEST_F(LayerConversion, dimensions_of_a_drawing_without_tables_give_16) {
    AcDbDatabase empty(false, true);
    EXPECT_EQ(GatherDimensions(L"DIM", &empty), 16);
}

}  // namespace
