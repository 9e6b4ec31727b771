#pragma once
// A drawing in work for the dimensioning: the pipeline's database, a sheet frame box, views
// drawn as rectangles of lines on their layers, hole circles, and the dimensions made, read
// back as plain records.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "batch_fixture.hpp"
#include "dimension/ordinate_dimensions.hpp"
#include "dimension/view_analysis.hpp"
#include "platform/db/dimension.hpp"

struct OrdinateSeen {
    bool xAxis;
    AcGePoint3d origin, definingPoint, leaderEnd;
    int dimdec;
    bool tolerance;  // DIMTOL set on the entity
    double tm, tp;
    double measured;
};

class DimensionTest : public BatchTest {
protected:
    void SetUp() override {
        BatchTest::SetUp();
        drawing_ = std::make_unique<AcDbDatabase>(true, true);
        Module().CurrentDatabase = drawing_.get();
        acdbHostApplicationServices()->setWorkingDatabase(drawing_.get());
        DimensionState& state = Module().dimensionState;
        state.frameBox = AcDbExtents();
        state.frameBox.addPoint(AcGePoint3d(0, 0, 0));
        state.frameBox.addPoint(AcGePoint3d(840, 594, 0));
        state.sheetScale = 2.0;
        state.textPitch = 7.0;
        state.ordinateOffset = 10.0;
        SundryKeys& sundry = Module().cadStandardIni.sundry;
        sundry.OFFSET = 5.0;
        sundry.XMAX = 400.0;
        sundry.YMAX = 300.0;
        sundry.CIRCOUNT = 40;
        sundry.Reddec = 3;
        sundry.RedToler = {-0.0, 0.015, 0};
        sundry.Otherdec = 1;
        sundry.OtherToler = {0.0, 0.0, 1};
        sundry.Basedec = 0;
        sundry.BaseToler = {0.0, 0.0, 1};
        sundry.Conerdec = 2;
        sundry.ConerToler = {0.1, 0.2, 0};
        sundry.Eveldec = 1;
        sundry.EvelToler = {0.0, 0.0, 1};
    }
    void TearDown() override {
        Module().CurrentDatabase = nullptr;
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
        drawing_.reset();
        BatchTest::TearDown();
    }
    AcDbDatabase& Drawing() { return *drawing_; }
    DimensionState& State() { return Module().dimensionState; }

    // A view's rectangle of four lines; with OFFSET 5 its view box is 5 inside.
    void AddViewFrame(const std::wstring& layer, double x0, double y0, double x1, double y1) {
        Add(Drawing(), new AcDbLine(AcGePoint3d(x0, y0, 0), AcGePoint3d(x1, y0, 0)), layer);
        Add(Drawing(), new AcDbLine(AcGePoint3d(x1, y0, 0), AcGePoint3d(x1, y1, 0)), layer);
        Add(Drawing(), new AcDbLine(AcGePoint3d(x1, y1, 0), AcGePoint3d(x0, y1, 0)), layer);
        Add(Drawing(), new AcDbLine(AcGePoint3d(x0, y1, 0), AcGePoint3d(x0, y0, 0)), layer);
    }
    AcDbObjectId AddCircle(double x, double y, int color = 256, const std::wstring& layer = L"1") {
        auto* c = new AcDbCircle(AcGePoint3d(x, y, 0), AcGeVector3d::kZAxis, 3.0);
        c->setColorIndex(static_cast<std::uint16_t>(color));
        AcDbObjectId id = Add(Drawing(), c, layer);
        AcDbEntity* open = nullptr;
        acdbOpenAcDbEntity(open, id, AcDb::kForWrite);
        open->setColorIndex(static_cast<std::uint16_t>(color));
        open->close();
        return id;
    }
    static circle Record(double x, double y, int color = 256) {
        return {AcGePoint3d(x, y, 0), color, AcGePoint3d(x, y, 0)};
    }

    std::vector<OrdinateSeen> Ordinates() {
        std::vector<OrdinateSeen> seen;
        for (const AcDbObjectId& id : ModelSpaceIds(Drawing())) {
            AcDbOrdinateDimension* dim = nullptr;
            if (acdbOpenObject(dim, id, AcDb::kForRead) != Acad::eOk) continue;
            double measured = 0.0;
            dim->measurement(measured);
            seen.push_back({dim->isUsingXAxis(), dim->origin(), dim->definingPoint(),
                            dim->leaderEndPoint(), dim->dimdec(),
                            dim->dimVarOverrides().count(71) != 0 && dim->dimtol(), dim->dimtm(),
                            dim->dimtp(), measured});
            dim->close();
        }
        return seen;
    }
    std::vector<AcDbObjectId> RotatedDimensions() {
        std::vector<AcDbObjectId> ids;
        for (const AcDbObjectId& id : ModelSpaceIds(Drawing()))
            if (id.objectClass() == AcDbRotatedDimension::desc()) ids.push_back(id);
        return ids;
    }
    static int Count(const std::wstring& text, const std::wstring& part) {
        int n = 0;
        for (size_t at = text.find(part); at != std::wstring::npos; at = text.find(part, at + 1)) ++n;
        return n;
    }

    std::unique_ptr<AcDbDatabase> drawing_;
};
