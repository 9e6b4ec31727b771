// The steps of a sheet inside the pipeline: the frame file chosen by the drawing's name, the
// frame placed when TAVRIK is on, and the views dimensioned when DIM is on.
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "platform/db/dimension.hpp"

namespace {

class SheetSteps : public BatchTest {
protected:
    const std::wstring path_ = HandOff(L"P-1.dxf");

    void SetUp() override {
        BatchTest::SetUp();
        WriteText(L"D:\\CZ\\config\\标准图框\\boxsetting.txt", L"[SHTWCH]\r\nP-*,FRAME.DWG\r\n");
        // A frame of width 210 at half the sheet's size: two border lines.
        SaveDrawing(L"D:\\CZ\\config\\标准图框\\FRAME.DWG", [](AcDbDatabase& db) {
            Add(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(210, 0, 0)), L"FRAMELINE");
            Add(db, new AcDbLine(AcGePoint3d(210, 0, 0), AcGePoint3d(210, 148.5, 0)), L"FRAMELINE");
        });
        SaveDrawing(path_, [](AcDbDatabase& db) {
            AddSheet(db, AcGePoint3d(0, 0, 0));
            AcGePoint3d a(100, 100, 0), b(200, 100, 0), c(200, 180, 0), d(100, 180, 0);
            Add(db, new AcDbLine(a, b), L"FRONT");
            Add(db, new AcDbLine(b, c), L"FRONT");
            Add(db, new AcDbLine(c, d), L"FRONT");
            Add(db, new AcDbLine(d, a), L"FRONT");
            Add(db, new AcDbCircle(AcGePoint3d(130, 120, 0), AcGeVector3d::kZAxis, 4.0), L"PART");
        });
    }
    void SetSundry(const std::wstring& lines) {
        WriteText(L"D:\\CZ\\config\\CAD\\CAD_standard.ini",
                  DefaultStandard() + L"XMAX,400\r\nYMAX,300\r\nCIRCOUNT,40\r\n" + lines);
    }
    int Dimensions(AcDbDatabase& db) {
        int n = 0;
        for (const AcDbObjectId& id : ModelSpaceIds(db))
            if (AcDbDimension::cast(id.stub()->object.get())) ++n;
        return n;
    }
    // Dimensions whose block holds no picture.
    int DimensionsWithoutPicture(AcDbDatabase& db) {
        int n = 0;
        for (const AcDbObjectId& id : ModelSpaceIds(db)) {
            auto* dim = AcDbDimension::cast(id.stub()->object.get());
            if (dim == nullptr) continue;
            auto* block = dim->dimBlockId().isValid()
                              ? AcDbBlockTableRecord::cast(dim->dimBlockId().stub()->object.get())
                              : nullptr;
            if (block == nullptr || block->entityIds().isEmpty()) ++n;
        }
        return n;
    }
};

TEST_F(SheetSteps, frame_of_the_drawings_name_is_scaled_onto_the_sheet) {
    SetSundry(L"");
    ProcessDrawing(path_);
    auto db = ReadDrawing(path_);
    ASSERT_TRUE(db);
    EXPECT_EQ(CountOnLayer(*db, L"FRAMELINE"), 2);
    bool found = false;
    for (const auto& [from, to] : ModelSpaceLines(*db))
        if (to.distanceTo(AcGePoint3d(420, 297, 0)) < 1e-9) found = true;  // scaled by 2
    EXPECT_TRUE(found);
    EXPECT_NE(CgLog().find(L"\n图框名为:D:\\CZ\\config\\标准图框\\FRAME.DWG"), std::wstring::npos);
    EXPECT_EQ(Module().frameName, L"FRAME.DWG");
}

TEST_F(SheetSteps, tavrik_off_with_dim_on_dimensions_the_views_without_a_frame) {
    SetSundry(L"TAVRIK,0\r\n");
    ProcessDrawing(path_);
    auto db = ReadDrawing(path_);
    ASSERT_TRUE(db);
    EXPECT_EQ(CountOnLayer(*db, L"FRAMELINE"), 0);
    EXPECT_EQ(CgLog().find(L"查找图框"), std::wstring::npos);
    // One hole and two corner seeds, each with an x and a y ordinate.
    EXPECT_EQ(Dimensions(*db), 6);
    EXPECT_EQ(DimensionsWithoutPicture(*db), 0);
    // The frame box was measured all the same: the sheet's scale is 420 / 297.
    EXPECT_DOUBLE_EQ(Module().dimensionState.sheetScale, 420.0 / 297.0);
}

TEST_F(SheetSteps, dim_off_makes_no_dimensions) {
    SetSundry(L"DIM,0\r\n");
    ProcessDrawing(path_);
    auto db = ReadDrawing(path_);
    ASSERT_TRUE(db);
    EXPECT_EQ(Dimensions(*db), 0);
    EXPECT_EQ(CgLog().find(L"准备标注"), std::wstring::npos);
}

}  // namespace
