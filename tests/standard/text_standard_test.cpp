// Mirrored curves, multi-line texts, diameter signs and the fonts of the standard styles.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "geometry_matchers.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/polyline_classic.hpp"
#include "standard/layers_text.hpp"

namespace {

class TextStandard : public BatchTest {
protected:
    AcDbDatabase& Drawing() { return *hostDrawing_; }
    AcDbDatabase* Db() { return hostDrawing_.get(); }
    template <typename Look>
    void Inspect(AcDbObjectId id, Look look) {
        AcDbEntity* entity = nullptr;
        ASSERT_EQ(acdbOpenAcDbEntity(entity, id, AcDb::kForRead), Acad::eOk);
        look(entity);
        entity->close();
    }
    AcDbObjectId AddText(const std::wstring& text, double widthFactor = 0.8) {
        auto* entity = new AcDbText(AcGePoint3d(0, 0, 0), text, Drawing().textstyle());
        entity->setWidthFactor(widthFactor);
        return Add(Drawing(), entity);
    }
    std::wstring TextOf(AcDbObjectId id) {
        std::wstring text;
        Inspect(id, [&](AcDbEntity* e) { text = AcDbText::cast(e)->textString(); });
        return text;
    }
    void LockLayer(const std::wstring& name) {
        AcDbLayerTable* layers = nullptr;
        Drawing().getSymbolTable(layers, AcDb::kForRead);
        AcDbLayerTableRecord* layer = nullptr;
        layers->getAt(name, layer, AcDb::kForWrite);
        layer->setIsLocked(true);
        layer->close();
        layers->close();
    }
};

const AcGeVector3d kMinusZ(0, 0, -1);

// FlipMirroredCurves

TEST_F(TextStandard, circle_with_minus_z_normal_comes_to_plus_z_with_its_z_negated) {
    AcDbObjectId id = Add(Drawing(), new AcDbCircle(AcGePoint3d(5, 6, 3), kMinusZ, 2.0));
    EXPECT_EQ(FlipMirroredCurves(Db()), 0);
    Inspect(id, [](AcDbEntity* e) {
        auto* circle = AcDbCircle::cast(e);
        EXPECT_TRUE(circle->normal().isEqualTo(AcGeVector3d::kZAxis));
        EXPECT_THAT(circle->center(), IsNearPoint(AcGePoint3d(5, 6, -3), 1e-12));
    });
}

TEST_F(TextStandard, circle_with_plus_z_normal_is_not_touched) {
    AcDbObjectId id = Add(Drawing(), new AcDbCircle(AcGePoint3d(5, 6, 3), AcGeVector3d::kZAxis, 2.0));
    EXPECT_EQ(FlipMirroredCurves(Db()), 0);
    Inspect(id, [](AcDbEntity* e) {
        EXPECT_TRUE(AcDbCircle::cast(e)->normal().isEqualTo(AcGeVector3d::kZAxis));
        EXPECT_EQ(AcDbCircle::cast(e)->center(), AcGePoint3d(5, 6, 3));
    });
}

TEST_F(TextStandard, arc_and_2d_polyline_with_minus_z_normal_are_flipped) {
    AcDbObjectId arc = Add(Drawing(), new AcDbArc(AcGePoint3d(1, 2, 0), kMinusZ, 3.0, 0.2, 1.0));
    auto* polyline = new AcDb2dPolyline;
    polyline->setNormal(kMinusZ);
    AcDb2dVertex vertex;
    polyline->vertices().push_back(vertex);
    vertex.position = AcGePoint3d(4, 0, 0);
    polyline->vertices().push_back(vertex);
    AcDbObjectId pline = Add(Drawing(), polyline);
    EXPECT_EQ(FlipMirroredCurves(Db()), 0);
    Inspect(arc, [](AcDbEntity* e) { EXPECT_TRUE(AcDbArc::cast(e)->normal().isEqualTo(AcGeVector3d::kZAxis)); });
    Inspect(pline, [](AcDbEntity* e) { EXPECT_TRUE(AcDb2dPolyline::cast(e)->normal().isEqualTo(AcGeVector3d::kZAxis)); });
}

TEST_F(TextStandard, ellipse_with_minus_z_normal_is_passed_over) {
    AcDbObjectId id = Add(Drawing(), new AcDbEllipse(AcGePoint3d(0, 0, 0), kMinusZ, AcGeVector3d(4, 0, 0), 0.5));
    EXPECT_EQ(FlipMirroredCurves(Db()), 0);
    Inspect(id, [](AcDbEntity* e) { EXPECT_TRUE(AcDbEllipse::cast(e)->normal().isEqualTo(kMinusZ)); });
}

TEST_F(TextStandard, flip_walk_ends_at_an_entity_that_does_not_open_with_16) {
    Add(Drawing(), new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)), L"LOCKED");
    AcDbObjectId after = Add(Drawing(), new AcDbCircle(AcGePoint3d(5, 6, 0), kMinusZ, 2.0));
    LockLayer(L"LOCKED");
    EXPECT_EQ(FlipMirroredCurves(Db()), 16);
    Inspect(after, [](AcDbEntity* e) { EXPECT_TRUE(AcDbCircle::cast(e)->normal().isEqualTo(kMinusZ)); });
}

// ExplodeMText

TEST_F(TextStandard, multi_line_text_becomes_single_line_texts) {
    auto* mtext = new AcDbMText;
    mtext->setContents(L"技术要求\\P1.未注倒角C0.5");
    mtext->setTextHeight(5.0);
    AcDbObjectId source = Add(Drawing(), mtext, L"TEXT");
    AcDbObjectId kept = AddText(L"plain");
    EXPECT_EQ(ExplodeMText(Db()), 0);
    std::vector<std::wstring> texts;
    int mtexts = 0;
    for (const AcDbObjectId& id : ModelSpaceIds(Drawing()))
        Inspect(id, [&](AcDbEntity* e) {
            if (auto* text = AcDbText::cast(e)) texts.push_back(text->textString() + L"@" + e->layer());
            if (AcDbMText::cast(e)) ++mtexts;
        });
    EXPECT_EQ(mtexts, 0);
    EXPECT_THAT(texts, testing::ElementsAre(L"plain@0", L"技术要求@TEXT", L"1.未注倒角C0.5@TEXT"));
    AcDbEntity* gone = nullptr;
    EXPECT_EQ(acdbOpenAcDbEntity(gone, source, AcDb::kForRead), Acad::eWasErased);
    EXPECT_EQ(TextOf(kept), L"plain");
}

// NormalizeDiameterSign

TEST_F(TextStandard, first_of_each_diameter_sign_becomes_percent_c) {
    struct Case {
        std::wstring before, after;
    };
    const Case cases[] = {
        {L"Ø10 Ø20", L"%%c10 Ø20"},
        {L"4-∅6.8 ∅8", L"4-%%c6.8 ∅8"},
        {L"\\U+2205 10", L"%%c 10"},
        {L"\\U+00D8 10 \\U+00D8", L"%%c 10 \\U+00D8"},
        {L"Ø8 ∅9", L"%%c8 %%c9"},
        {L"M8", L"M8"},
    };
    std::vector<AcDbObjectId> ids;
    for (const Case& c : cases) ids.push_back(AddText(c.before));
    EXPECT_EQ(NormalizeDiameterSign(Db()), 0);
    for (size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(TextOf(ids[i]), cases[i].after);
}

TEST_F(TextStandard, every_text_gets_width_factor_one) {
    AcDbObjectId plain = AddText(L"M8", 0.7);
    AcDbObjectId sign = AddText(L"Ø8", 0.5);
    EXPECT_EQ(NormalizeDiameterSign(Db()), 0);
    Inspect(plain, [](AcDbEntity* e) { EXPECT_EQ(AcDbText::cast(e)->widthFactor(), 1.0); });
    Inspect(sign, [](AcDbEntity* e) { EXPECT_EQ(AcDbText::cast(e)->widthFactor(), 1.0); });
}

TEST_F(TextStandard, multi_line_text_keeps_its_diameter_sign) {
    auto* mtext = new AcDbMText;
    mtext->setContents(L"Ø10");
    AcDbObjectId id = Add(Drawing(), mtext);
    EXPECT_EQ(NormalizeDiameterSign(Db()), 0);
    Inspect(id, [](AcDbEntity* e) { EXPECT_EQ(AcDbMText::cast(e)->contents(), L"Ø10"); });
}

// SetStyleFonts and the barcode style

TEST_F(TextStandard, style_fonts_become_gbenor_and_gbcbig) {
    AcDbObjectId style = AddTextStyle(Drawing(), L"chinesef_fs");
    EXPECT_EQ(SetStyleFonts(L"CHINESEF_FS", Db()), 0);
    AcDbObject* object = nullptr;
    ASSERT_EQ(acdbOpenAcDbObject(object, style, AcDb::kForRead), Acad::eOk);
    auto* record = AcDbTextStyleTableRecord::cast(object);
    EXPECT_EQ(record->fileName(), L"gbenor.shx");
    EXPECT_EQ(record->bigFontFileName(), L"gbcbig.shx");
    object->close();
}

TEST_F(TextStandard, missing_style_gives_16) {
    EXPECT_EQ(SetStyleFonts(L"chinesef_fs", Db()), 16);
}

TEST_F(TextStandard, drawing_without_a_style_table_gives_16) {
    AcDbDatabase bare(false, false);
    EXPECT_EQ(SetStyleFonts(L"chinesef_fs", &bare), 16);
    EXPECT_EQ(ApplyTextStyle(L"bar", L"`**`*", &bare), 16);
}

TEST_F(TextStandard, missing_bar_style_leaves_barcodes_without_message) {
    AcDbObjectId barcode = AddText(L"*P-1*");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(ApplyTextStyle(L"bar", L"`**`*", Db()), 16);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(TextStyleName(barcode), L"Standard");
}

TEST_F(TextStandard, style_look_up_closes_the_style_table) {
    AddTextStyle(Drawing(), L"bar");
    EXPECT_EQ(ApplyTextStyle(L"bar", L"`**`*", Db()), 0);
    EXPECT_EQ(SetStyleFonts(L"bar", Db()), 0);
    AcDbTextStyleTable* styles = nullptr;
    ASSERT_EQ(Drawing().getSymbolTable(styles, AcDb::kForWrite), Acad::eOk);
    styles->close();
}

}  // namespace
