// The module's commands and LISP functions in process: the text widths of Txtwscl and the camera
// that wzoom hands to the view.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "commands/single_steps.hpp"
#include "commands/zoom.hpp"
#include "host/tavrik_app.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/db/text.hpp"
#include "platform/ed/editor_state.hpp"
#include "platform/ed/sysvars.hpp"
#include "platform/ed/views.hpp"

namespace {

class CommandsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ResetEditorState();
        db_ = std::make_unique<AcDbDatabase>(true, false);
        acdbHostApplicationServices()->setWorkingDatabase(db_.get());
    }
    void TearDown() override {
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
        db_.reset();
        ResetEditorState();
    }
    AcDbObjectId AddText(double width, const wchar_t* layer = L"0") {
        auto* text = new AcDbText(AcGePoint3d(0, 0, 0), L"A", db_->textstyle(), 2.5);
        text->setWidthFactor(width);
        text->setLayerName(layer);
        AcDbBlockTableRecord* model = nullptr;
        EXPECT_EQ(acdbOpenObject(model, db_->modelSpaceId(), AcDb::kForWrite), Acad::eOk);
        AcDbObjectId id;
        EXPECT_EQ(model->appendAcDbEntity(id, text), Acad::eOk);
        text->close();
        model->close();
        return id;
    }
    double Width(AcDbObjectId id) {
        AcDbText* text = nullptr;
        EXPECT_EQ(acdbOpenObject(text, id, AcDb::kForRead), Acad::eOk);
        double width = text->widthFactor();
        text->close();
        return width;
    }
    void AddLockedLayer(const wchar_t* name) {
        AcDbLayerTable* layers = nullptr;
        ASSERT_EQ(db_->getSymbolTable(layers, AcDb::kForWrite), Acad::eOk);
        auto* layer = new AcDbLayerTableRecord();
        layer->setName(name);
        layer->setIsLocked(true);
        ASSERT_EQ(layers->add(layer), Acad::eOk);
        layer->close();
        layers->close();
    }
    static void Set(const wchar_t* name, short value) {
        resbuf rb{};
        rb.restype = RTSHORT;
        rb.resval.rint = value;
        ASSERT_EQ(SetSystemVariable(name, &rb), RTNORM);
    }
    static void SetReal(const wchar_t* name, double value) {
        resbuf rb{};
        rb.restype = RTREAL;
        rb.resval.rreal = value;
        ASSERT_EQ(SetSystemVariable(name, &rb), RTNORM);
    }
    std::unique_ptr<AcDbDatabase> db_;
};

TEST_F(CommandsTest, txtwscl_sets_every_width_factor_to_one) {
    AcDbObjectId a = AddText(0.7), b = AddText(1.3);
    EXPECT_EQ(SetTextWidthsToOne(db_.get()), 0);
    EXPECT_DOUBLE_EQ(Width(a), 1.0);
    EXPECT_DOUBLE_EQ(Width(b), 1.0);
}

TEST_F(CommandsTest, txtwscl_ends_with_16_at_a_text_that_does_not_open_for_write) {
    AddLockedLayer(L"LOCKED");
    AcDbObjectId first = AddText(0.7);
    AcDbObjectId locked = AddText(0.7, L"LOCKED");
    AcDbObjectId after = AddText(0.7);
    EXPECT_EQ(SetTextWidthsToOne(db_.get()), 16);
    EXPECT_DOUBLE_EQ(Width(first), 1.0);
    EXPECT_DOUBLE_EQ(Width(locked), 0.7);
    EXPECT_DOUBLE_EQ(Width(after), 0.7);  // the walk ended
}

TEST_F(CommandsTest, zoom_window_keeps_the_clipping_of_model_space) {
    SetReal(L"FRONTZ", 5.0);
    SetReal(L"BACKZ", -3.0);
    ZoomToWindow(AcGePoint3d(10, 40, 0), AcGePoint3d(30, 0, 0));
    const CurrentViewRecord& view = CurrentView();
    EXPECT_DOUBLE_EQ(view.center.x, 20.0);
    EXPECT_DOUBLE_EQ(view.center.y, 20.0);
    EXPECT_DOUBLE_EQ(view.width, 20.0);
    EXPECT_DOUBLE_EQ(view.height, 40.0);
    EXPECT_FALSE(view.paperSpace);
    EXPECT_DOUBLE_EQ(view.frontClip, 5.0);
    EXPECT_DOUBLE_EQ(view.backClip, -3.0);
    EXPECT_DOUBLE_EQ(view.direction.z, 1.0);
}

TEST_F(CommandsTest, zoom_window_in_the_paper_space_viewport_is_a_paper_view_without_clipping) {
    struct Case {
        short tilemode, cvport;
        bool paper;
    };
    for (Case c : {Case{0, 1, true}, Case{0, 2, false}, Case{1, 1, false}}) {
        Set(L"TILEMODE", c.tilemode);
        Set(L"CVPORT", c.cvport);
        SetReal(L"FRONTZ", 5.0);
        ZoomToWindow(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0));
        EXPECT_EQ(CurrentView().paperSpace, c.paper) << c.tilemode << "," << c.cvport;
        EXPECT_DOUBLE_EQ(CurrentView().frontClip, c.paper ? 0.0 : 5.0);
    }
}

TEST_F(CommandsTest, zoom_window_takes_lens_twist_and_the_bits_of_viewmode) {
    SetReal(L"LENSLENGTH", 35.0);
    SetReal(L"VIEWTWIST", 0.25);
    struct Case {
        short mode;
        bool perspective, front, back, atEye;
    };
    for (Case c : {Case{0, false, false, false, true}, Case{1, true, false, false, true},
                   Case{2, false, true, false, true}, Case{4, false, false, true, true},
                   Case{16, false, false, false, false}, Case{23, true, true, true, false}}) {
        Set(L"VIEWMODE", c.mode);
        ZoomToWindow(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0));
        const CurrentViewRecord& view = CurrentView();
        EXPECT_EQ(view.perspective, c.perspective) << c.mode;
        EXPECT_EQ(view.frontClipOn, c.front) << c.mode;
        EXPECT_EQ(view.backClipOn, c.back) << c.mode;
        EXPECT_EQ(view.frontClipAtEye, c.atEye) << c.mode;
        EXPECT_DOUBLE_EQ(view.lensLength, 35.0);
        EXPECT_DOUBLE_EQ(view.twist, 0.25);
    }
}

TEST_F(CommandsTest, command_rows_carry_their_group_names_and_flags) {
    struct Row {
        const wchar_t *global, *local;
        int flags;
    };
    const Row expected[] = {{L"_MyCommand1", L"InsertSheet", 0x200001}, {L"_Txtwscl", L"Txtwscl", 0x1},
                            {L"_Expmt", L"Expmt", 0x1},   {L"_Zdmt", L"ZDMT", 0x1},
                            {L"_ZZFJ", L"ZZFJ", 0x1},     {L"_ClearLayer", L"ClearLayer", 0x1},
                            {L"_ZtoZero", L"ZZ1", 0x1},   {L"_FFG", L"FFG", 0x7},
                            {L"_Substr", L"Substr", 0x1}};
    int rows = 0;
    for (ArxCommandEntry* row : ArxCommandTable()) {
        if (!row) continue;
        ++rows;
        const Row* match = nullptr;
        for (const Row& r : expected)
            if (std::wstring(r.global) == row->globalName) match = &r;
        ASSERT_NE(match, nullptr) << "unexpected row";
        EXPECT_STREQ(row->groupName, L"Tavrik");
        EXPECT_STREQ(row->localName, match->local);
        EXPECT_EQ(row->flags, match->flags) << match->local;
        EXPECT_EQ(row->uiContext, nullptr);
        EXPECT_EQ(row->stringId, -1);
    }
    EXPECT_EQ(rows, 9);
    std::vector<std::wstring> lisp;
    for (AdsSymbolEntry* row : AdsSymbolTable()) {
        if (!row) continue;
        lisp.push_back(row->name);
        EXPECT_FALSE(row->registerFunction);
    }
    EXPECT_EQ(lisp, (std::vector<std::wstring>{L"wzoom", L"zoomall"}));  // codes 0 and 1
}

TEST_F(CommandsTest, zoom_window_takes_the_target_turned_to_the_world) {
    resbuf target{};
    target.restype = RT3DPOINT;
    target.resval.rpoint[0] = 3;
    target.resval.rpoint[1] = 4;
    target.resval.rpoint[2] = 0;
    ASSERT_EQ(SetSystemVariable(L"TARGET", &target), RTNORM);
    ZoomToWindow(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 10, 0));
    EXPECT_DOUBLE_EQ(CurrentView().target.x, 3.0);
    EXPECT_DOUBLE_EQ(CurrentView().target.y, 4.0);
    // The display system has its origin at the target: the centre is seen from there.
    EXPECT_DOUBLE_EQ(CurrentView().center.x, 2.0);
    EXPECT_DOUBLE_EQ(CurrentView().center.y, 1.0);
}

}  // namespace
