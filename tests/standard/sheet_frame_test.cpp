// The sheets of an exported drawing: their marker circles, the exporter's construction entities
// and the frame measured from the lines through a marker.
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "geometry_matchers.hpp"
#include "standard/sheet_frame.hpp"

namespace {

class SheetFrame : public BatchTest {
protected:
    AcDbDatabase& Drawing() { return *hostDrawing_; }
    AcDbObjectId AddCircle(const std::wstring& layer) {
        return Add(Drawing(), new AcDbCircle(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 5.0), layer);
    }
    AcDbObjectId AddLine(AcGePoint3d from, AcGePoint3d to, const std::wstring& layer = L"BIGFRAM") {
        return Add(Drawing(), new AcDbLine(from, to), layer);
    }
    int FindMarkers(AcDbObjectIdArray& markers) {
        return FindSheetMarkers({L"RECT", L"URECT", L"STAND", L"USTAND"}, &Drawing(), markers);
    }
    AcDbExtents Measure(const AcGePoint3d& marker) {
        AcDbExtents box;
        EXPECT_EQ(MeasureSheetFrame(marker, box, &Drawing()), 0);
        return box;
    }
};

TEST_F(SheetFrame, CirclesOnTheFourMarkerLayersAreFoundInAnyCase) {
    AcDbObjectId rect = AddCircle(L"RECT");
    AcDbObjectId urect = AddCircle(L"urect");
    AddCircle(L"PART");
    AcDbObjectId stand = AddCircle(L"Stand");
    AddLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), L"RECT");
    AcDbObjectId ustand = AddCircle(L"USTAND");
    AcDbObjectIdArray markers;
    EXPECT_EQ(FindMarkers(markers), 0);
    EXPECT_EQ(markers, (AcDbObjectIdArray{rect, urect, stand, ustand}));
}

TEST_F(SheetFrame, ErasedEntitiesArePassedOverByTheMarkerAndFrameWalks) {
    // One erased entity where a walk starts and one where it steps.
    AcDbObjectId first = AddCircle(L"RECT");
    AcDbObjectId marker = AddCircle(L"RECT");
    AcDbObjectId middle = AddCircle(L"RECT");
    for (AcDbObjectId gone : {first, middle}) {
        AcDbEntity* entity = nullptr;
        acdbOpenAcDbEntity(entity, gone, AcDb::kForWrite);
        entity->erase();
        entity->close();
    }
    AddLine(AcGePoint3d(0, 0, 0), AcGePoint3d(420, 0, 0));
    AddLine(AcGePoint3d(0, 0, 0), AcGePoint3d(0, 297, 0));
    AcDbObjectIdArray markers;
    EXPECT_EQ(FindMarkers(markers), 0);
    EXPECT_EQ(markers, AcDbObjectIdArray{marker});
    AcDbExtents box = Measure(AcGePoint3d(0, 0, 0));
    EXPECT_EQ(box.maxPoint(), AcGePoint3d(420, 297, 0));
}

TEST_F(SheetFrame, NoMarkerCircleAnswers16) {
    AddCircle(L"PART");
    AddLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), L"RECT");
    AcDbObjectIdArray markers;
    EXPECT_EQ(FindMarkers(markers), 16);
    EXPECT_TRUE(markers.isEmpty());
}

// The walk ends at an entity that does not open: the marker found before it does not count.
TEST_F(SheetFrame, EntityThatDoesNotOpenAfterAMarkerAnswers16) {
    AcDbObjectId marker = AddCircle(L"RECT");
    AcDbObjectId busy = AddLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), L"PART");
    AcDbEntity* open = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(open, busy, AcDb::kForWrite), Acad::eOk);
    AcDbObjectIdArray markers;
    EXPECT_EQ(FindMarkers(markers), 16);
    EXPECT_EQ(markers, AcDbObjectIdArray{marker});
    open->close();
}

TEST_F(SheetFrame, WalksOfADrawingWithoutTablesAnswer16) {
    AcDbDatabase bare(false, false);
    AcDbExtents box;
    EXPECT_EQ(MeasureSheetFrame(AcGePoint3d(0, 0, 0), box, &bare), 16);
    EXPECT_EQ(CollectAttributeTexts(&bare), 16);
    AcDbObjectIdArray ids;
    EXPECT_EQ(CollectSheetEntities(ids, &bare), 16);
}

TEST_F(SheetFrame, ConstructionEntitiesOnTheExportersLayersAreCollected) {
    AcDbObjectIdArray expected;
    for (const wchar_t* layer : {L"BIGFRAM", L"ustand", L"URECT", L"Front", L"LEFT", L"top", L"STAND", L"RECT"})
        expected.append(AddLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), layer));
    AddLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), L"PART");
    AddLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), L"DIM");
    AcDbObjectIdArray ids;
    EXPECT_EQ(CollectSheetEntities(ids, &Drawing()), 0);
    EXPECT_EQ(ids, expected);
}

TEST_F(SheetFrame, FrameIsTheBoxOfTheTwoLinesThroughTheMarker) {
    AddSheet(Drawing(), AcGePoint3d(100, 50, 0));
    AcDbExtents box = Measure(AcGePoint3d(100, 50, 0));
    EXPECT_EQ(box.minPoint(), AcGePoint3d(100, 50, 0));
    EXPECT_EQ(box.maxPoint(), AcGePoint3d(520, 347, 0));
}

TEST_F(SheetFrame, MarkerFromWhichNoFrameLineStartsYieldsAnEmptyBox) {
    AddSheet(Drawing(), AcGePoint3d(100, 50, 0));
    AddLine(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0), L"PART");
    EXPECT_TRUE(Measure(AcGePoint3d(0, 0, 0)).isEmpty());
}

TEST_F(SheetFrame, OnlyFrameLinesTouchingTheMarkerWithinTheToleranceCount) {
    AddLine(AcGePoint3d(5e-6, 0, 0), AcGePoint3d(0, 100, 0));
    AddLine(AcGePoint3d(-50, 0, 0), AcGePoint3d(0, -5e-6, 0), L"bigfram");
    AddLine(AcGePoint3d(2e-5, 0, 0), AcGePoint3d(300, 0, 0));
    AddLine(AcGePoint3d(0, 0, 0), AcGePoint3d(0, -300, 0), L"PART");
    AcDbExtents box = Measure(AcGePoint3d(0, 0, 0));
    EXPECT_EQ(box.minPoint(), AcGePoint3d(-50, -5e-6, 0));
    EXPECT_EQ(box.maxPoint(), AcGePoint3d(5e-6, 100, 0));
}

TEST_F(SheetFrame, FrameLayerIsTheValueOfTheStandard) {
    std::wstring standard = DefaultStandard();
    standard.replace(standard.find(L"BIGFRAM,BIGFRAM"), 15, L"BIGFRAM,KUANG");
    WriteText(L"D:\\CZ\\config\\CAD\\CAD_standard.ini", standard);
    BuildModuleState();
    AddLine(AcGePoint3d(0, 0, 0), AcGePoint3d(200, 0, 0));
    AddLine(AcGePoint3d(0, 0, 0), AcGePoint3d(0, 100, 0), L"kuang");
    AcDbExtents box = Measure(AcGePoint3d(0, 0, 0));
    EXPECT_EQ(box.maxPoint(), AcGePoint3d(0, 100, 0));
}

}  // namespace
