// The clean-ups that change each entity by itself: flatten, linetype scale, short lines and
// points, lineweight.
#include <gtest/gtest.h>

#include "cleanup_fixture.hpp"
#include "watchdog.hpp"
#include "geometry_matchers.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"

namespace {

constexpr double kPi = 3.14159265358979323846;

class SimpleCleanups : public CleanupTest {
protected:
    AcDbObjectId AddLine(double length, double z0 = 0.0, double z1 = 0.0) {
        return AddToDrawing(new AcDbLine(AcGePoint3d(3, 4, z0), AcGePoint3d(3 + length, 4, z1)));
    }
    AcDbObjectId AddPoint() { return AddToDrawing(new AcDbPoint(AcGePoint3d(1, 1, 0))); }
    AcDbObjectId AddPolyline(double length, double elevation = 0.0) {
        auto* polyline = new AcDbPolyline;
        polyline->addVertexAt(0, AcGePoint2d(0, 0));
        polyline->addVertexAt(1, AcGePoint2d(length, 0));
        polyline->setElevation(elevation);
        return AddToDrawing(polyline);
    }
    void SetLinetype(AcDbObjectId id, const std::wstring& name, double scale = 1.0) {
        AcDbEntity* entity = nullptr;
        acdbOpenAcDbEntity(entity, id, AcDb::kForWrite);
        entity->setLinetypeName(name);
        entity->setLinetypeScale(scale);
        entity->close();
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
    double LinetypeScaleOf(AcDbObjectId id) {
        double scale = -1.0;
        Inspect(id, [&](AcDbEntity* e) { scale = e->linetypeScale(); });
        return scale;
    }
};

// FunCoorToZero

TEST_F(SimpleCleanups, sloping_line_ends_flat) {
    AcDbObjectId id = AddLine(10.0, 1.0, 2.0);
    Cleanup().FunCoorToZero();
    Inspect(id, [](AcDbEntity* e) {
        EXPECT_EQ(AcDbLine::cast(e)->startPoint(), AcGePoint3d(3, 4, 0));
        EXPECT_EQ(AcDbLine::cast(e)->endPoint(), AcGePoint3d(13, 4, 0));
    });
}

TEST_F(SimpleCleanups, raised_arc_moves_to_z0_keeping_radius_and_angles) {
    AcDbObjectId id = AddToDrawing(new AcDbArc(AcGePoint3d(5, 6, 12.5), 4.0, 0.5, 2.0));
    Cleanup().FunCoorToZero();
    Inspect(id, [](AcDbEntity* e) {
        auto* arc = AcDbArc::cast(e);
        EXPECT_EQ(arc->center(), AcGePoint3d(5, 6, 0));
        EXPECT_EQ(arc->radius(), 4.0);
        EXPECT_EQ(arc->startAngle(), 0.5);
        EXPECT_EQ(arc->endAngle(), 2.0);
    });
}

TEST_F(SimpleCleanups, raised_circle_moves_to_z0) {
    AcDbObjectId id = AddToDrawing(new AcDbCircle(AcGePoint3d(5, 6, -3), AcGeVector3d::kZAxis, 2.0));
    Cleanup().FunCoorToZero();
    Inspect(id, [](AcDbEntity* e) { EXPECT_EQ(AcDbCircle::cast(e)->center(), AcGePoint3d(5, 6, 0)); });
}

TEST_F(SimpleCleanups, polyline_at_elevation_5_stays) {
    AcDbObjectId id = AddPolyline(10.0, 5.0);
    AcDbObjectId point = AddToDrawing(new AcDbPoint(AcGePoint3d(1, 1, 7)));
    Cleanup().FunCoorToZero();
    Inspect(id, [](AcDbEntity* e) { EXPECT_EQ(AcDbPolyline::cast(e)->elevation(), 5.0); });
    Inspect(point, [](AcDbEntity* e) { EXPECT_EQ(AcDbPoint::cast(e)->position().z, 7.0); });
}

// FunDeleteSmallLineAndPoint

TEST_F(SimpleCleanups, missing_tolerance_removes_all_points_and_no_line) {
    WriteIni(L"[DeleteSmallLineAndPoint]\r\nBolOpen=1\r\n");
    AcDbObjectId line = AddLine(0.001);
    AcDbObjectId p1 = AddPoint(), p2 = AddPoint();
    Cleanup().FunDeleteSmallLineAndPoint();
    EXPECT_FALSE(IsGone(line));
    EXPECT_TRUE(IsGone(p1));
    EXPECT_TRUE(IsGone(p2));
}

TEST_F(SimpleCleanups, line_shorter_than_tolerance_goes_and_equal_one_stays) {
    WriteIni(L"[DeleteSmallLineAndPoint]\r\nBolOpen=1\r\nTolerance=0.5\r\n");
    AcDbObjectId shorter = AddLine(0.4999), equal = AddLine(0.5), longer = AddLine(0.5001);
    Cleanup().FunDeleteSmallLineAndPoint();
    EXPECT_TRUE(IsGone(shorter));
    EXPECT_FALSE(IsGone(equal));
    EXPECT_FALSE(IsGone(longer));
}

TEST_F(SimpleCleanups, short_polyline_stays) {
    WriteIni(L"[DeleteSmallLineAndPoint]\r\nBolOpen=1\r\nTolerance=5\r\n");
    AcDbObjectId polyline = AddPolyline(1.0);
    AcDbObjectId circle = AddToDrawing(new AcDbCircle(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 0.1));
    Cleanup().FunDeleteSmallLineAndPoint();
    EXPECT_FALSE(IsGone(polyline));
    EXPECT_FALSE(IsGone(circle));
}

TEST_F(SimpleCleanups, neighbouring_short_lines_and_points_all_go) {
    WriteIni(L"[DeleteSmallLineAndPoint]\r\nBolOpen=1\r\nTolerance=1\r\n");
    AcDbObjectId a = AddLine(0.1), b = AddPoint(), c = AddLine(0.2), d = AddLine(3.0), e = AddPoint();
    Cleanup().FunDeleteSmallLineAndPoint();
    EXPECT_TRUE(IsGone(a));
    EXPECT_TRUE(IsGone(b));
    EXPECT_TRUE(IsGone(c));
    EXPECT_FALSE(IsGone(d));
    EXPECT_TRUE(IsGone(e));
    // The erased entities are closed again.
    for (AcDbObjectId id : {a, b, c, e}) {
        AcDbEntity* entity = nullptr;
        ASSERT_EQ(acdbOpenAcDbEntity(entity, id, AcDb::kForRead, true), Acad::eOk);
        entity->close();
    }
}

TEST_F(SimpleCleanups, delete_switch_off_removes_nothing) {
    WriteIni(L"[DeleteSmallLineAndPoint]\r\nBolOpen=0\r\nTolerance=5\r\n");
    AcDbObjectId line = AddLine(0.1), point = AddPoint();
    Cleanup().FunDeleteSmallLineAndPoint();
    EXPECT_FALSE(IsGone(line));
    EXPECT_FALSE(IsGone(point));
}

// A point or short line on a locked layer does not open for write, and the walk tries the same
// id again without end; a long line on a locked layer is no candidate and does not hold it up.
TEST_F(SimpleCleanups, point_on_locked_layer_keeps_the_walk_from_ending) {
    WriteIni(L"[DeleteSmallLineAndPoint]\r\nBolOpen=1\r\nTolerance=1\r\n");
    AddToDrawing(new AcDbPoint(AcGePoint3d(1, 1, 0)), L"LOCKED");
    AddToDrawing(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(5, 0, 0)), L"LOCKED_TOO");
    LockLayer(L"LOCKED");
    ClassInterfaceData& cleanup = Cleanup();
    EXPECT_EQ(RunUnderWatchdog([&] { cleanup.FunDeleteSmallLineAndPoint(); }, std::chrono::milliseconds(1500)),
              WatchdogVerdict::kStillRunning);
}

TEST_F(SimpleCleanups, short_line_on_locked_layer_keeps_the_walk_from_ending) {
    WriteIni(L"[DeleteSmallLineAndPoint]\r\nBolOpen=1\r\nTolerance=1\r\n");
    AddToDrawing(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(0.5, 0, 0)), L"LOCKED");
    LockLayer(L"LOCKED");
    ClassInterfaceData& cleanup = Cleanup();
    EXPECT_EQ(RunUnderWatchdog([&] { cleanup.FunDeleteSmallLineAndPoint(); }, std::chrono::milliseconds(1500)),
              WatchdogVerdict::kStillRunning);
}

TEST_F(SimpleCleanups, long_line_on_locked_layer_lets_the_walk_end) {
    WriteIni(L"[DeleteSmallLineAndPoint]\r\nBolOpen=1\r\nTolerance=1\r\n");
    AddToDrawing(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(5, 0, 0)), L"LOCKED");
    AddToDrawing(new AcDbPoint(AcGePoint3d(1, 1, 0)), L"OPEN");
    LockLayer(L"LOCKED");
    ClassInterfaceData& cleanup = Cleanup();
    EXPECT_EQ(RunUnderWatchdog([&] { cleanup.FunDeleteSmallLineAndPoint(); }, std::chrono::seconds(20)),
              WatchdogVerdict::kEnded);
}

TEST_F(SimpleCleanups, locked_layer_entities_stay_unchanged_and_others_are_done) {
    WriteIni(L"[UpLineScale]\r\nBolOpen=1\r\nVarScale=2\r\n");
    AcDbObjectId locked = AddLine(5, 3, 3);
    AcDbObjectId free = AddToDrawing(new AcDbLine(AcGePoint3d(0, 0, 4), AcGePoint3d(1, 0, 4)), L"FREE");
    AcDbEntity* entity = nullptr;
    acdbOpenAcDbEntity(entity, locked, AcDb::kForWrite);
    entity->setLayerName(L"LOCKED");
    entity->close();
    AddToDrawing(new AcDbPoint(AcGePoint3d(0, 0, 0)), L"LOCKED");
    LockLayer(L"LOCKED");
    ClassInterfaceData& cleanup = Cleanup();
    cleanup.FunCoorToZero();
    cleanup.FunUpLineScale();
    cleanup.FunLineWidthToZero();
    Inspect(locked, [](AcDbEntity* e) {
        EXPECT_EQ(AcDbLine::cast(e)->startPoint().z, 3.0);
        EXPECT_EQ(e->linetypeScale(), 1.0);
        EXPECT_EQ(e->lineWeight(), AcDb::kLnWtByLayer);
    });
    Inspect(free, [](AcDbEntity* e) {
        EXPECT_EQ(AcDbLine::cast(e)->startPoint().z, 0.0);
        EXPECT_EQ(e->linetypeScale(), 0.0);
        EXPECT_EQ(e->lineWeight(), AcDb::kLnWt000);
    });
}

// FunUpLineScale

TEST_F(SimpleCleanups, dashed_get_var_scale_and_others_exactly_zero) {
    WriteIni(L"[public]\r\nStrDottedLineType=HIDDEN\r\n[UpLineScale]\r\nBolOpen=1\r\nVarScale=3.5\r\n");
    AcDbObjectId dashed = AddLine(5), lower = AddLine(5), solid = AddLine(5);
    SetLinetype(dashed, L"HIDDEN");
    SetLinetype(lower, L"hidden");
    SetLinetype(solid, L"CONTINUOUS", 2.0);
    Cleanup().FunUpLineScale();
    EXPECT_EQ(LinetypeScaleOf(dashed), 3.5);
    EXPECT_EQ(LinetypeScaleOf(lower), 0.0);
    EXPECT_EQ(LinetypeScaleOf(solid), 0.0);
}

TEST_F(SimpleCleanups, missing_var_scale_sets_zero_on_every_entity) {
    WriteIni(L"[public]\r\nStrDottedLineType=HIDDEN\r\n[UpLineScale]\r\nBolOpen=1\r\n");
    AcDbObjectId dashed = AddLine(5), circle = AddToDrawing(new AcDbCircle(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 1));
    SetLinetype(dashed, L"HIDDEN", 4.0);
    Cleanup().FunUpLineScale();
    EXPECT_EQ(LinetypeScaleOf(dashed), 0.0);
    EXPECT_EQ(LinetypeScaleOf(circle), 0.0);
}

TEST_F(SimpleCleanups, empty_dashed_name_treats_only_empty_linetype_as_dashed) {
    WriteIni(L"[UpLineScale]\r\nBolOpen=1\r\nVarScale=2\r\n");
    AcDbObjectId unnamed = AddLine(5), named = AddLine(5);
    SetLinetype(unnamed, L"");
    SetLinetype(named, L"HIDDEN");
    Cleanup().FunUpLineScale();
    EXPECT_EQ(LinetypeScaleOf(unnamed), 2.0);
    EXPECT_EQ(LinetypeScaleOf(named), 0.0);
}

TEST_F(SimpleCleanups, scale_switch_off_changes_nothing) {
    WriteIni(L"[public]\r\nStrDottedLineType=HIDDEN\r\n[UpLineScale]\r\nBolOpen=0\r\nVarScale=2\r\n");
    AcDbObjectId line = AddLine(5);
    SetLinetype(line, L"CONTINUOUS", 1.5);
    Cleanup().FunUpLineScale();
    EXPECT_EQ(LinetypeScaleOf(line), 1.5);
}

TEST_F(SimpleCleanups, scale_works_on_the_working_database) {
    WriteIni(L"[UpLineScale]\r\nBolOpen=1\r\nVarScale=2\r\n");
    AcDbDatabase other(true, false);
    AcDbObjectId foreign = Add(other, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
    SetLinetype(foreign, L"CONTINUOUS", 1.5);
    AcDbObjectId here = AddLine(5);
    SetLinetype(here, L"CONTINUOUS", 1.5);
    ClassInterfaceData cleanup(&other, kUserPath);
    cleanup.FunUpLineScale();
    EXPECT_EQ(LinetypeScaleOf(foreign), 1.5);
    EXPECT_EQ(LinetypeScaleOf(here), 0.0);
}

// FunLineWidthToZero

TEST_F(SimpleCleanups, every_entity_gets_lineweight_zero) {
    AcDbObjectId line = AddLine(5), point = AddPoint();
    Inspect(line, [](AcDbEntity* e) { EXPECT_EQ(e->lineWeight(), AcDb::kLnWtByLayer); });
    Cleanup().FunLineWidthToZero();
    Inspect(line, [](AcDbEntity* e) { EXPECT_EQ(e->lineWeight(), AcDb::kLnWt000); });
    Inspect(point, [](AcDbEntity* e) { EXPECT_EQ(e->lineWeight(), AcDb::kLnWt000); });
}

TEST_F(SimpleCleanups, cleanups_of_the_database_field_leave_the_working_drawing) {
    WriteIni(L"[DeleteSmallLineAndPoint]\r\nBolOpen=1\r\nTolerance=5\r\n");
    AcDbObjectId here = AddLine(1, 2, 3), point = AddPoint();
    AcDbDatabase other(true, false);
    ClassInterfaceData cleanup(&other, kUserPath);
    cleanup.FunCoorToZero();
    cleanup.FunDeleteSmallLineAndPoint();
    cleanup.FunLineWidthToZero();
    EXPECT_FALSE(IsGone(point));
    Inspect(here, [](AcDbEntity* e) {
        EXPECT_EQ(AcDbLine::cast(e)->startPoint().z, 2.0);
        EXPECT_EQ(e->lineWeight(), AcDb::kLnWtByLayer);
    });
}

TEST_F(SimpleCleanups, empty_model_space_leaves_all_four_without_effect) {
    WriteIni(L"[DeleteSmallLineAndPoint]\r\nBolOpen=1\r\nTolerance=5\r\n[UpLineScale]\r\nBolOpen=1\r\n");
    ClassInterfaceData& cleanup = Cleanup();
    cleanup.FunCoorToZero();
    cleanup.FunDeleteSmallLineAndPoint();
    cleanup.FunUpLineScale();
    cleanup.FunLineWidthToZero();
    EXPECT_TRUE(ModelSpaceIds(Drawing()).isEmpty());
}

}  // namespace
