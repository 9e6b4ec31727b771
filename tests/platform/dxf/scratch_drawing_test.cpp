// A drawing built in memory is written so that ezdxf and LibreCAD read it back as made.
#include <gtest/gtest.h>

#include "platform/db/arc.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/spline.hpp"
#include "platform/db/text.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "support.hpp"

namespace {

void Append(AcDbDatabase& db, AcDbObjectId blockId, AcDbEntity* e) {
    AcDbBlockTableRecord* block = nullptr;
    ASSERT_EQ(acdbOpenObject(block, blockId, AcDb::kForWrite), Acad::eOk);
    ASSERT_EQ(block->appendAcDbEntity(e), Acad::eOk);
    e->close();
    block->close();
}

// Lines, arcs, circles, a polyline, a spline, an ellipse, Chinese texts, an ordinate dimension
// with tolerance overrides, and a block with an attribute inserted once.
void BuildDrawing(AcDbDatabase& db) {
    AcDbObjectId ms = db.modelSpaceId();
    Append(db, ms, new AcDbLine({0, 0, 0}, {100, 50, 0}));
    Append(db, ms, new AcDbArc({50, 50, 0}, 20, 0.0, 1.5707963267948966));
    Append(db, ms, new AcDbCircle({10, 10, 0}, AcGeVector3d::kZAxis, 5));
    auto* pl = new AcDbPolyline();
    pl->addVertexAt(0, {0, 0}, 0.0, 0.0, 0.0);
    pl->addVertexAt(1, {40, 0}, 0.5, 0.0, 0.0);
    pl->addVertexAt(2, {40, 30}, 0.0, 0.0, 0.0);
    pl->setClosed(true);
    Append(db, ms, pl);
    auto* spline = new AcDbSpline();
    spline->setNurbsData(3, false, false, false,
                         {{0, 0, 0}, {10, 20, 0}, {30, 20, 0}, {40, 0, 0}},
                         {0, 0, 0, 0, 1, 1, 1, 1}, {});
    Append(db, ms, spline);
    Append(db, ms, new AcDbEllipse({200, 0, 0}, AcGeVector3d::kZAxis, {30, 0, 0}, 0.5));
    Append(db, ms, new AcDbText({0, 100, 0}, L"中文标注 ABC", db.textstyle(), 3.5));
    auto* mtext = new AcDbMText();
    mtext->setContents(L"多行文字\\P第二行");
    mtext->setLocation({0, 120, 0});
    Append(db, ms, mtext);
    auto* dim = new AcDbOrdinateDimension(true, {40, 30, 0}, {40, 60, 0}, L"", db.dimstyle());
    dim->setDimtol(true);
    dim->setDimtp(0.1);
    dim->setDimtm(0.05);
    Append(db, ms, dim);

    AcDbBlockTable* blocks = nullptr;
    ASSERT_EQ(db.getBlockTable(blocks, AcDb::kForWrite), Acad::eOk);
    auto* block = new AcDbBlockTableRecord();
    block->setName(L"TITLE");
    AcDbObjectId blockId;
    ASSERT_EQ(blocks->add(blockId, block), Acad::eOk);
    blocks->close();
    block->close();
    Append(db, blockId, new AcDbCircle({0, 0, 0}, AcGeVector3d::kZAxis, 2));
    Append(db, blockId, new AcDbAttributeDefinition({0, -5, 0}, L"", L"PART", L"Part number"));

    auto* ref = new AcDbBlockReference({300, 300, 0}, blockId);
    AcDbObjectId refId;
    AcDbBlockTableRecord* space = nullptr;
    ASSERT_EQ(acdbOpenObject(space, ms, AcDb::kForWrite), Acad::eOk);
    ASSERT_EQ(space->appendAcDbEntity(refId, ref), Acad::eOk);
    space->close();
    auto* attribute = new AcDbAttribute({300, 295, 0}, L"零件-7", L"PART");
    ASSERT_EQ(ref->appendAttribute(attribute), Acad::eOk);
    attribute->close();
    ref->close();
}

struct Written {
    std::string json;
    int status = -1;
};

Written WriteAndCheck(const dxf::WriteOptions& options, const std::string& name) {
    AcDbDatabase db(true, true);
    BuildDrawing(db);
    auto dir = dxftest::TempDir("scratch");
    auto path = dir / name;
    Written w;
    if (dxf::WriteDxfFile(db, path.string(), options) != Acad::eOk) return w;
    auto r = dxftest::Run(dxftest::Python() + " " + dxftest::Script("ezdxf_scratch_check.py") +
                          " " + dxftest::Quote(path));
    w.json = r.output;
    w.status = r.status;
    return w;
}

void ExpectDrawingAsBuilt(const Written& w) {
    ASSERT_EQ(w.status, 0) << w.json;
    EXPECT_NE(w.json.find("\"errors\": []"), std::string::npos) << w.json;
    for (const char* kind : {"\"LINE\": 1", "\"ARC\": 1", "\"CIRCLE\": 1", "\"LWPOLYLINE\": 1",
                             "\"SPLINE\": 1", "\"ELLIPSE\": 1", "\"TEXT\": 1", "\"MTEXT\": 1",
                             "\"DIMENSION\": 1", "\"INSERT\": 1"})
        EXPECT_NE(w.json.find(kind), std::string::npos) << kind << " in " << w.json;
    EXPECT_NE(w.json.find("中文标注 ABC"), std::string::npos) << w.json;
    EXPECT_NE(w.json.find("多行文字\\\\P第二行"), std::string::npos) << w.json;
    EXPECT_NE(w.json.find("\"PART\": \"零件-7\""), std::string::npos) << w.json;
    EXPECT_NE(w.json.find("\"dimtol\": 1"), std::string::npos) << w.json;
    EXPECT_NE(w.json.find("\"dimtp\": 0.1"), std::string::npos) << w.json;
    EXPECT_NE(w.json.find("\"dimtm\": 0.05"), std::string::npos) << w.json;
    EXPECT_NE(w.json.find("\"dimtype\": 6"), std::string::npos) << w.json;  // ordinate
    EXPECT_NE(w.json.find("\"spline_control_points\": 4"), std::string::npos) << w.json;
    EXPECT_NE(w.json.find("\"ellipse_ratio\": 0.5"), std::string::npos) << w.json;
}

TEST(ScratchDrawing, GbkFileReadsBackInEzdxfWithChineseAndDimensionOverrides) {
    dxf::WriteOptions options;
    options.codePage = 936;
    Written w = WriteAndCheck(options, "gbk.dxf");
    ExpectDrawingAsBuilt(w);
    EXPECT_NE(w.json.find("\"codepage\": \"ANSI_936\""), std::string::npos) << w.json;
    EXPECT_NE(w.json.find("\"version\": \"AC1018\""), std::string::npos) << w.json;
}

TEST(ScratchDrawing, Utf8FileReadsBackInEzdxfWithChinese) {
    dxf::WriteOptions options;
    options.version = AcDb::kDHL_1021;
    Written w = WriteAndCheck(options, "utf8.dxf");
    ExpectDrawingAsBuilt(w);
    EXPECT_NE(w.json.find("\"version\": \"AC1021\""), std::string::npos) << w.json;
}

TEST(ScratchDrawing, Utf8HostWrites2004WithUnicodeEscapes) {
    dxf::WriteOptions options;
    options.codePage = 65001;
    AcDbDatabase db(true, true);
    BuildDrawing(db);
    std::string text;
    ASSERT_EQ(dxf::WriteDxfText(db, options, text), Acad::eOk);
    EXPECT_NE(text.find("\\U+4E2D\\U+6587"), std::string::npos);  // 中文
    Written w = WriteAndCheck(options, "escaped.dxf");
    ExpectDrawingAsBuilt(w);
}

TEST(ScratchDrawing, LibreCadConvertsItToPdf) {
    AcDbDatabase db(true, true);
    BuildDrawing(db);
    auto dir = dxftest::TempDir("librecad");
    auto path = dir / "drawing.dxf";
    ASSERT_EQ(dxf::WriteDxfFile(db, path.string(), {}), Acad::eOk);
    std::filesystem::remove(dir / "drawing.pdf");
    std::filesystem::remove(dir / "out.pdf");
    if (dxftest::Run("command -v librecad").status != 0) GTEST_SKIP() << "librecad not installed";
    auto r = dxftest::Run("cd " + dxftest::Quote(dir) +
                          " && QT_QPA_PLATFORM=offscreen timeout 120 librecad dxf2pdf -o out.pdf drawing.dxf");
    EXPECT_EQ(r.status, 0) << r.output;
    auto pdf = std::filesystem::exists(dir / "out.pdf") ? dir / "out.pdf" : dir / "drawing.pdf";
    ASSERT_TRUE(std::filesystem::exists(pdf)) << r.output;
    EXPECT_GT(std::filesystem::file_size(pdf), 1000u);
}

TEST(ScratchDrawing, NewObjectsTakeHandlesFromHandseedWhichIsRaised) {
    AcDbDatabase db(true, true);
    BuildDrawing(db);
    std::string text;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, text), Acad::eOk);
    AcDbDatabase back(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(back, text, "scratch.dxf"), Acad::eOk) << dxf::Utf8(back.lastError());
    std::uint64_t highest = 0;
    for (const auto& stub : back.stubs())
        if (stub.object) highest = std::max<std::uint64_t>(highest, stub.handle.value());
    EXPECT_GT(back.handseed().value(), highest);
    EXPECT_EQ(back.handseed(), db.handseed());
}

}  // namespace

TEST(ScratchDrawing, LargeDrawingWrittenToAFileInBatchesEqualsTheTextWrittenInOnePiece) {
    AcDbDatabase db(true, true);
    AcDbBlockTableRecord* space = nullptr;
    ASSERT_EQ(acdbOpenObject(space, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    // More entities than several batches, with a part batch at the end.
    for (int i = 0; i < 30001; ++i) {
        double x = i * 0.5;
        AcDbEntity* e = i % 3 == 0   ? static_cast<AcDbEntity*>(new AcDbLine({x, 0, 0}, {x, 10, 0}))
                        : i % 3 == 1 ? static_cast<AcDbEntity*>(new AcDbCircle({x, 5, 0}, AcGeVector3d::kZAxis, 1))
                                     : new AcDbText({x, 20, 0}, L"孔" + std::to_wstring(i), db.textstyle(), 2.5);
        ASSERT_EQ(space->appendAcDbEntity(e), Acad::eOk);
        e->close();
    }
    space->close();
    std::string inOnePiece;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, inOnePiece), Acad::eOk);
    auto path = dxftest::TempDir("batches") / "large.dxf";
    ASSERT_EQ(dxf::WriteDxfFile(db, path.string(), {}), Acad::eOk);
    std::string fromFile = dxftest::ReadFile(path);
    EXPECT_EQ(fromFile.size(), inOnePiece.size());
    EXPECT_TRUE(fromFile == inOnePiece);
}
