// The clean-ups inside the pipeline: the first ones after the read, the last ones before the
// save, both driven by CAD_line.ini below the configuration root.
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "cleanup/cleanup_globals.hpp"
#include "platform/db/extents.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"

namespace {

class PipelineCleanups : public BatchTest {
protected:
    const std::wstring path_ = HandOff(L"P-1.dxf");

    void WriteCadLine(const std::wstring& text) { WriteText(L"D:\\CZ\\config\\CAD\\CAD_line.ini", text); }
    // One sheet with a raised dashed line, a short line and a point.
    void SaveDrawingToClean() {
        SaveDrawing(path_, [](AcDbDatabase& db) {
            AddSheet(db, AcGePoint3d(0, 0, 0));
            auto* dashed = new AcDbLine(AcGePoint3d(50, 50, 2), AcGePoint3d(150, 50, 3));
            AcDbObjectId id = Add(db, dashed, L"PART");
            AcDbEntity* entity = nullptr;
            acdbOpenAcDbEntity(entity, id, AcDb::kForWrite);
            entity->setLinetypeName(L"HIDDEN");
            entity->close();
            Add(db, new AcDbLine(AcGePoint3d(60, 60, 0), AcGePoint3d(60.05, 60, 0)), L"PART");
            Add(db, new AcDbPoint(AcGePoint3d(70, 70, 0)), L"HOLE");
        });
    }
    struct Found {
        int lines = 0, points = 0, shortLines = 0;
        bool flat = true, weightsZero = true;
        double dashedScale = -1.0, otherScale = -1.0;
    };
    Found Inspect() {
        Found found;
        auto db = ReadDrawing(path_);
        for (const AcDbObjectId& id : ModelSpaceIds(*db)) {
            AcDbEntity* entity = nullptr;
            acdbOpenAcDbEntity(entity, id, AcDb::kForRead);
            found.weightsZero = found.weightsZero && entity->lineWeight() == AcDb::kLnWt000;
            if (AcDbPoint::cast(entity)) ++found.points;
            if (auto* line = AcDbLine::cast(entity)) {
                ++found.lines;
                found.flat = found.flat && line->startPoint().z == 0.0 && line->endPoint().z == 0.0;
                if (line->startPoint().distanceTo(line->endPoint()) < 0.1) ++found.shortLines;
                (entity->linetype() == L"HIDDEN" ? found.dashedScale : found.otherScale) = entity->linetypeScale();
            }
            entity->close();
        }
        return found;
    }
};

TEST_F(PipelineCleanups, drawing_is_flattened_and_finished_before_the_save) {
    WriteCadLine(L"[public]\r\nStrDottedLineType=HIDDEN\r\n[UpLineScale]\r\nBolOpen=1\r\nVarScale=5\r\n"
                 L"[DeleteSmallLineAndPoint]\r\nBolOpen=1\r\nTolerance=0.1\r\n");
    SaveDrawingToClean();
    ProcessDrawing(path_);
    Found found = Inspect();
    EXPECT_TRUE(found.flat);
    EXPECT_EQ(found.points, 0);
    EXPECT_EQ(found.shortLines, 0);
    EXPECT_EQ(found.lines, 1);  // the frame lines go with the construction entities
    EXPECT_EQ(found.dashedScale, 5.0);
    EXPECT_TRUE(found.weightsZero);
}

TEST_F(PipelineCleanups, missing_cad_line_ini_flattens_but_keeps_points_and_short_lines) {
    SaveDrawingToClean();
    ProcessDrawing(path_);
    Found found = Inspect();
    EXPECT_TRUE(found.flat);
    EXPECT_EQ(found.points, 1);
    EXPECT_EQ(found.shortLines, 1);
    EXPECT_EQ(found.dashedScale, 1.0);
    EXPECT_TRUE(found.weightsZero);
}

TEST_F(PipelineCleanups, clean_up_folder_is_below_the_configuration_root) {
    SaveDrawingToClean();
    ProcessDrawing(path_);
    EXPECT_EQ(CleanupGlobals->UserPath, L"D:\\CZ\\config\\CAD");
}

TEST_F(PipelineCleanups, tool_log_is_taken_only_when_it_exists) {
    SaveDrawingToClean();
    ProcessDrawing(path_);
    EXPECT_EQ(CleanupGlobals->LogPath, L"D:\\CZ\\config\\CAD\\Log.log");
    WriteAt(L"D:\\MYTOOL\\CAD\\Log.log", "");
    SaveDrawingToClean();
    ProcessDrawing(path_);
    EXPECT_EQ(CleanupGlobals->LogPath, L"D:\\MYTOOL\\CAD\\Log.log");
}

}  // namespace

namespace {

TEST_F(PipelineCleanups, colour_table_recolours_the_drawing_before_the_save) {
    WriteCadLine(L"[ModifyColor]\r\nStrChangeColor=[{\"ColorOld\":\"255 0 0\",\"ColorNew\":\"0 255 0\"}]\r\n");
    SaveDrawing(path_, [](AcDbDatabase& db) {
        AddSheet(db, AcGePoint3d(0, 0, 0));
        AcDbObjectId id = Add(db, new AcDbLine(AcGePoint3d(50, 50, 0), AcGePoint3d(150, 50, 0)), L"PART");
        AcDbEntity* entity = nullptr;
        acdbOpenAcDbEntity(entity, id, AcDb::kForWrite);
        entity->setColorIndex(1);
        entity->close();
    });
    ProcessDrawing(path_);
    auto db = ReadDrawing(path_);
    int red = 0, green = 0;
    for (const AcDbObjectId& id : ModelSpaceIds(*db)) {
        AcDbEntity* entity = nullptr;
        acdbOpenAcDbEntity(entity, id, AcDb::kForRead);
        if (AcDbLine::cast(entity) && entity->layer() == L"PART") {
            red += entity->colorIndex() == 1;
            green += entity->colorIndex() == 3;
        }
        entity->close();
    }
    EXPECT_EQ(red, 0);
    EXPECT_EQ(green, 1);
}

}  // namespace

namespace {

// Step 18 removes the doubled side before the sides are joined, and the joined polyline is
// offset after it was made.
TEST_F(PipelineCleanups, duplicates_go_before_chains_are_joined_and_chains_are_offset_after) {
    WriteCadLine(L"[DeleteRepeatingLine]\r\nBolOpen=1\r\nTolerance=0.01\r\n"
                 L"[ConnectPline]\r\nTolerance=0.05\r\nColorInspect=255 0 0;\r\n"
                 L"[LineDeviation]\r\nBolOpen=1\r\nStrLayer=DEV\r\nStrJson=[{\"Color\":\"255 0 0\",\"VarOffset\":1}]\r\n");
    SaveDrawing(path_, [](AcDbDatabase& db) {
        AddSheet(db, AcGePoint3d(0, 0, 0));
        const double corners[][4] = {{50, 50, 60, 50}, {60, 50, 60, 60}, {60, 60, 50, 60}, {50, 60, 50, 50}, {52, 50, 58, 50}};
        for (const auto& c : corners) {
            AcDbObjectId id = Add(db, new AcDbLine(AcGePoint3d(c[0], c[1], 0), AcGePoint3d(c[2], c[3], 0)), L"DEV");
            AcDbEntity* entity = nullptr;
            acdbOpenAcDbEntity(entity, id, AcDb::kForWrite);
            entity->setColorIndex(1);
            entity->close();
        }
    });
    ProcessDrawing(path_);
    auto db = ReadDrawing(path_);
    int lines = 0;
    std::vector<AcDbExtents> polylines;
    for (const AcDbObjectId& id : ModelSpaceIds(*db)) {
        AcDbEntity* entity = nullptr;
        acdbOpenAcDbEntity(entity, id, AcDb::kForRead);
        AcDbExtents box;
        entity->getGeomExtents(box);
        bool inPart = box.minPoint().x > 45 && box.maxPoint().x < 65 && box.minPoint().y > 45 && box.maxPoint().y < 65;
        if (inPart && AcDbLine::cast(entity)) ++lines;
        if (inPart && AcDbPolyline::cast(entity)) polylines.push_back(box);
        entity->close();
    }
    EXPECT_EQ(lines, 0);
    ASSERT_EQ(polylines.size(), 1u);
    // The square of side 10 made from the four sides and offset by 1 to the inside.
    EXPECT_NEAR(polylines[0].minPoint().x, 51.0, 1e-9);
    EXPECT_NEAR(polylines[0].maxPoint().y, 59.0, 1e-9);
}

}  // namespace
