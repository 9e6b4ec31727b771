// Lines, circles, arcs, points and lightweight polylines whose records would be plain are built from their decoded
// values, without their records being made: a drawing read so holds, object by object and bit
// by bit, what it holds when every entity is read through its record, and writes the same DXF
// and DWG bytes.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/line.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/dwg/common.hpp"
#include "platform/dwg/curves.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/entities.hpp"
#include "platform/dwg/object_lines.hpp"
#include "platform/dwg/plain_entities.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dwg/sample_drawing.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/plain_entity.hpp"
#include "platform/win/codepage.hpp"
#include "shared_folder.hpp"

namespace {

// Reads the file with plain entities and through records only; expects the same databases. The
// entities that keep no record are counted in `plain`, and the polylines among them in
// `polylines`; false when the file does not read.
bool PlainReadsAsRecords(const std::vector<std::uint8_t>& file, const std::string& name, int& plain, int& polylines) {
    AcDbDatabase fast(false, true), records(false, true);
    const Acad::ErrorStatus es = dwg::ReadDwgBytes(records, file, name, false);
    EXPECT_EQ(dwg::ReadDwgBytes(fast, file, name, true), es);
    EXPECT_EQ(Utf8FromWide(fast.lastError()), Utf8FromWide(records.lastError()));
    if (es != Acad::eOk) return false;
    const std::vector<std::string> got = dwg_test::ObjectLines(fast), expected = dwg_test::ObjectLines(records);
    EXPECT_EQ(got.size(), expected.size());
    for (std::size_t i = 0; i < std::min(got.size(), expected.size()); ++i) {
        if (got[i] != expected[i]) {
            ADD_FAILURE() << "object " << i << "\n" << got[i] << "\n" << expected[i];
            break;
        }
    }
    for (const AcDbStub& stub : fast.stubs()) {
        const auto* o = stub.object.get();
        if (o && o->fileTags().empty() &&
            (AcDbLine::cast(o) || AcDbCircle::cast(o) || AcDbArc::cast(o) || AcDbPoint::cast(o) || AcDbPolyline::cast(o))) {
            ++plain;
            polylines += AcDbPolyline::cast(o) != nullptr;
        }
    }
    EXPECT_EQ(fast.handseed().value(), records.handseed().value());
    EXPECT_EQ(dwg_test::WrittenDxf(fast, AcDb::kDHL_1018), dwg_test::WrittenDxf(records, AcDb::kDHL_1018));
    EXPECT_TRUE(dwg_test::WrittenDwg(fast) == dwg_test::WrittenDwg(records));
    return true;
}

TEST(DwgPlainEntities, every_corpus_drawing_reads_as_through_records) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(SharedFile("corpus/dwg")))
        if (entry.path().extension() == ".dwg") names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    int read = 0, plain = 0, polylines = 0;
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        if (PlainReadsAsRecords(dwg_test::ReadFileBytes(dwg_test::CorpusPath(name)), name, plain, polylines)) ++read;
        if (HasFailure()) return;
    }
    EXPECT_GE(read, 20);
    EXPECT_GE(plain, 1000);
    EXPECT_GE(polylines, 400);
}

// A lightweight polyline of 1 to 5 vertices: open or closed, with bulges (a negative zero among
// them), widths (zero ones too), a constant width, an elevation, a thickness, linetype generation
// or a normal off the z axis.
AcDbPolyline* PolylineVariant(int i, double x) {
    auto* p = new AcDbPolyline();
    for (int k = 0; k < 1 + i % 5; ++k) {
        const double bulge = i % 3 == 0 ? 0.25 * k : i % 11 == 4 ? -0.0 : 0.0;
        p->addVertexAt(static_cast<unsigned>(k), AcGePoint2d(x + k, k % 2 == 0 ? 1.0 / 7 : -2.5), bulge);
        if (i % 7 == 2) p->setWidthsAt(static_cast<unsigned>(k), 0.1 * k, k % 2 == 0 ? 0.0 : 0.3);
    }
    p->setClosed(i % 2 == 1);
    if (i % 9 == 5) {
        p->setConstantWidth(i % 18 == 5 ? 0.0 : 0.75);
        p->setConstantWidthTag(true);
    }
    if (i % 13 == 3) p->setElevation(i % 26 == 3 ? -0.0 : 4.5);
    if (i % 17 == 6) p->setThickness(2.0);
    if (i % 15 == 8) p->setPlinegen(true);
    if (i % 37 == 12) p->setNormal(AcGeVector3d(0, 0, -1));
    return p;
}

// The kinds in turn with the properties a plain record holds (colour index, lineweight,
// linetype scale, thickness, an ASCII layer) and those it does not (a Chinese layer, a true
// colour, a normal off the z axis, a negative zero, paper space, a non-positive radius).
AcDbEntity* Variant(int i) {
    const double x = i * 0.37 - 40;
    AcDbEntity* e = nullptr;
    switch (i % 5) {
        case 0: e = new AcDbLine(AcGePoint3d(x, 1.0 / 3, 0), AcGePoint3d(x + 2.5, -1.25, i % 9 == 0 ? 1e-300 : 0)); break;
        case 1: e = new AcDbCircle(AcGePoint3d(x, 3, 0), i % 13 == 1 ? AcGeVector3d(0, 0.6, 0.8) : AcGeVector3d::kZAxis, 1.0 + i % 7); break;
        case 2: e = new AcDbArc(AcGePoint3d(x, 5, 0), 2.0, 0.1 * (i % 11), 0.7 * (i % 10)); break;
        case 3: e = PolylineVariant(i / 5, x); break;
        default: {
            auto* p = new AcDbPoint(AcGePoint3d(x, i % 17 == 3 ? -0.0 : 7, 2));
            if (i % 3 == 0) p->setEcsRotation(0.01 * i);
            e = p;
        }
    }
    if (i % 5 == 1) e->setColorIndex(static_cast<std::uint16_t>(i % 256));
    if (i % 6 == 2) e->setLineWeight(AcDb::kLnWt035);
    if (i % 7 == 3) e->setLinetypeScale(0.5 + i % 3);
    if (i % 8 == 4) e->setLayer(i % 16 == 4 ? L"孔" : L"HOLES");
    if (i % 19 == 5) {
        AcCmColor c;
        c.setTrueColor(0x123456);
        e->setColor(c);
    }
    if (i % 29 == 7) e->setLinetype(L"ByBlock");
    if (i % 31 == 8) e->setVisibility(AcDb::kInvisible);
    if (i % 23 == 6) {
        if (auto* l = AcDbLine::cast(e)) l->setThickness(1.5);
        if (auto* c = AcDbCircle::cast(e)) c->setThickness(-2.0);
    }
    return e;
}

// A decoded line is plain when its record holds no more than a plain record does; each other
// property it may have makes it need its record.
TEST(DwgPlainEntities, a_line_is_plain_unless_its_record_holds_more) {
    dwg::NameIndex names;
    names.modelSpace = 0x1F;
    names.paperSpace = 0x1E;
    names.layers = {{0x10, "HOLES"}, {0x11, "孔"}, {0x12, "A\tB"}};
    auto line = [] {
        dwg::LineRecord r;
        r.common.handle = 0x2A;
        r.common.layer = 0x10;
        r.common.color.index = 256;
        r.common.lineweight = 29;  // by layer
        r.end = {3, 4, 0};
        return r;
    };
    struct Case {
        const char* behaviour;
        void (*change)(dwg::LineRecord&);
        std::uint64_t owner;
        bool plain;
    };
    const Case cases[] = {
        {"a plain line", [](dwg::LineRecord&) {}, 0x1F, true},
        {"coloured, thick, of a lineweight and scale", [](dwg::LineRecord& r) {
             r.common.color.index = 7;
             r.common.lineweight = 5;
             r.common.linetypeScale = 2;
             r.thickness = 1.5;
         }, 0x1F, true},
        {"by block", [](dwg::LineRecord& r) { r.common.color.index = 0; }, 0x1F, true},
        {"with a reactor", [](dwg::LineRecord& r) { r.common.reactors.push_back(0x40); }, 0x1F, false},
        {"with an extension dictionary", [](dwg::LineRecord& r) { r.common.extensionDictionary = 0x41; }, 0x1F, false},
        {"with extended data", [](dwg::LineRecord& r) { r.common.extended.emplace_back(); }, 0x1F, false},
        {"in paper space", [](dwg::LineRecord& r) { r.common.mode = 1; }, 0x1E, false},
        {"owned by paper space", [](dwg::LineRecord&) {}, 0x1E, false},
        {"of a linetype by block", [](dwg::LineRecord& r) { r.common.linetypeFlags = 1; }, 0x1F, false},
        {"of a plot style", [](dwg::LineRecord& r) { r.common.plotStyleFlags = 3; }, 0x1F, false},
        {"invisible", [](dwg::LineRecord& r) { r.common.invisible = 1; }, 0x1F, false},
        {"of a colour index out of range", [](dwg::LineRecord& r) { r.common.color.index = 257; }, 0x1F, false},
        {"of a negative colour index", [](dwg::LineRecord& r) { r.common.color.index = -3; }, 0x1F, false},
        {"of a true colour", [](dwg::LineRecord& r) { r.common.color.rgb = 0xC2123456; }, 0x1F, false},
        {"of a colour book", [](dwg::LineRecord& r) { r.common.color.hasBookHandle = true; }, 0x1F, false},
        {"transparent", [](dwg::LineRecord& r) { r.common.color.hasTransparency = true; }, 0x1F, false},
        {"on a Chinese layer", [](dwg::LineRecord& r) { r.common.layer = 0x11; }, 0x1F, false},
        {"on a layer with a tab", [](dwg::LineRecord& r) { r.common.layer = 0x12; }, 0x1F, false},
        {"tilted", [](dwg::LineRecord& r) { r.normal = {0, 0, -1}; }, 0x1F, false},
        {"raised", [](dwg::LineRecord& r) { r.normal = {0, 0, 2}; }, 0x1F, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        dwg::LineRecord r = line();
        c.change(r);
        dxf::PlainEntity plain;
        EXPECT_EQ(dwg::PlainEntityOf(dwg::DecodedObject(r), "LINE", c.owner, names, plain), c.plain);
        if (!c.plain) continue;
        EXPECT_EQ(plain.handle, 0x2Au);
        EXPECT_EQ(plain.owner, c.owner);
        EXPECT_EQ(plain.layer, "HOLES");
        EXPECT_EQ(plain.colorIndex, r.common.color.index);
        EXPECT_EQ(plain.lineweight, dwg::LineweightFromIndex(r.common.lineweight));
        EXPECT_EQ(plain.linetypeScale, r.common.linetypeScale);
        EXPECT_EQ(plain.thickness, r.thickness);
        EXPECT_EQ(plain.second.x, 3.0);
    }
    dxf::PlainEntity plain;
    EXPECT_FALSE(dwg::PlainEntityOf(dwg::DecodedObject(line()), "XLINE", 0x1F, names, plain));
}

// A decoded polyline's flags tell it closed (512), of linetype generation (256) and of a constant
// width (4); the others say which values the file stores, which the record does not show.
TEST(DwgPlainEntities, a_polyline_is_told_by_its_flags) {
    dwg::NameIndex names;
    names.layers = {{0x10, "0"}};
    const struct {
        std::int16_t flags;
        bool closed, plinegen, constant;
    } cases[] = {
        {0, false, false, false},     {512, true, false, false},    {256, false, true, false},
        {4, false, false, true},      {1 | 2 | 8 | 16 | 32 | 1024, false, false, false},
        {512 | 256 | 4, true, true, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.flags);
        dwg::LwPolylineRecord r;
        r.common.handle = 0x2A;
        r.common.layer = 0x10;
        r.common.color.index = 256;
        r.flags = c.flags;
        r.points = {{1, 2}, {3, 4}};
        dxf::PlainEntity plain;
        ASSERT_TRUE(dwg::PlainEntityOf(dwg::DecodedObject(r), "LWPOLYLINE", 0x1F, names, plain));
        EXPECT_EQ(plain.closed, c.closed);
        EXPECT_EQ(plain.plinegen, c.plinegen);
        EXPECT_EQ(plain.constant, c.constant);
        EXPECT_EQ(plain.vertices.size(), 2u);
    }
}

TEST(DwgPlainEntities, generated_drawings_read_as_through_records) {
    AcDbDatabase db;
    dwg_test::AddLayer(db, L"HOLES", 3);
    dwg_test::AddLayer(db, L"孔", 4);
    const AcDbObjectId block = dwg_test::AddBlock(db, L"PLATE");
    // Model space holds enough for entities decoded beside the building, the block and paper
    // space a few, handed on one at a time.
    for (int i = 0; i < 2 * 1024 + 300; ++i) dwg_test::Append(db, db.modelSpaceId(), Variant(i));
    for (int i = 0; i < 40; ++i) dwg_test::Append(db, block, Variant(i));
    for (int i = 0; i < 12; ++i) dwg_test::Append(db, db.paperSpaceId(), Variant(i));
    std::vector<std::uint8_t> file;
    dwg::DwgWriteReport report;
    ASSERT_EQ(dwg::WriteDwgBytes(db, 936, file, report), Acad::eOk);
    int plain = 0, polylines = 0;
    EXPECT_TRUE(PlainReadsAsRecords(file, "variants.dwg", plain, polylines));
    EXPECT_GE(plain, 1500);
    EXPECT_GE(polylines, 350);
}

}  // namespace
