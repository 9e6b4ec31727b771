// What the database does not model comes back in place; what it models comes back as changed.
#include <gtest/gtest.h>

#include <set>

#include "platform/db/block_table_record.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/line.hpp"
#include "platform/db/polyline.hpp"
#include "platform/dxf/codepage.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"

namespace {

const std::string kDrawing =
    "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1018\n  9\n$DWGCODEPAGE\n  3\nANSI_936\n"
    "  9\n$HANDSEED\n  5\n100\n  9\n$EXTMIN\n 10\n-1.5\n 20\n-2.5\n 30\n0.0\n  0\nENDSEC\n"
    "  0\nSECTION\n  2\nTABLES\n  0\nENDSEC\n  0\nSECTION\n  2\nBLOCKS\n  0\nENDSEC\n"
    "  0\nSECTION\n  2\nENTITIES\n"
    "  0\nLINE\n  5\n2A\n330\n1F\n100\nAcDbEntity\n  8\nWALLS\n100\nAcDbLine\n 10\n1.0\n 20\n2.0\n"
    " 30\n0.0\n 11\n3.0\n 21\n4.0\n 31\n0.0\n100\nAcDbVendorExtra\n 90\n77\n"
    "1001\nVENDOR\n1000\nkeep me\n"
    "  0\nWHIZZBANG\n  5\n2B\n330\n1F\n100\nAcDbEntity\n  8\n0\n 10\n5.0\n"
    "  0\nDIMENSION\n  5\n2C\n330\n1F\n100\nAcDbEntity\n  8\n0\n100\nAcDbDimension\n 10\n0.0\n"
    " 20\n0.0\n 30\n0.0\n 70\n6\n100\nAcDbOrdinateDimension\n 13\n1.0\n 23\n2.0\n 33\n0.0\n"
    " 14\n1.0\n 24\n9.0\n 34\n0.0\n1001\nACAD\n1000\nDSTYLE\n1002\n{\n1070\n71\n1070\n1\n"
    "1070\n47\n1040\n0.2\n1002\n}\n"
    "  0\nENDSEC\n  0\nSECTION\n  2\nOBJECTS\n  0\nDICTIONARY\n  5\nC\n330\n0\n100\nAcDbDictionary\n"
    "  0\nENDSEC\n  0\nEOF\n";

AcDbObject* ObjectAt(AcDbDatabase& db, std::uint64_t handle) {
    AcDbObjectId id;
    db.getAcDbObjectId(id, false, AcDbHandle(handle));
    return id.isNull() ? nullptr : id.stub()->object.get();
}

TEST(Lossless, UnknownSubclassAndExtensionDataStayInPlaceWhileChangedValuesAreWritten) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, kDrawing, "in.dxf"), Acad::eOk) << dxf::Utf8(db.lastError());
    auto* line = AcDbLine::cast(ObjectAt(db, 0x2A));
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->layer(), L"WALLS");
    line->setEndPoint({30.0, 40.0, 0.0});
    std::string out;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    EXPECT_NE(out.find(" 10\n1.0\n 20\n2.0\n 30\n0.0\n 11\n30.0\n 21\n40.0\n 31\n0.0\n"
                       "100\nAcDbVendorExtra\n 90\n77\n1001\nVENDOR\n1000\nkeep me\n"),
              std::string::npos) << out;
}

TEST(Lossless, HeaderExtentsSurviveASave) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, kDrawing, "in.dxf"), Acad::eOk);
    EXPECT_DOUBLE_EQ(db.extmin().x, -1.5);
    std::string out;
    dxf::WriteDxfText(db, {}, out);
    EXPECT_NE(out.find("$EXTMIN\n 10\n-1.5\n 20\n-2.5\n 30\n0.0\n"), std::string::npos) << out;
}

TEST(Lossless, UnknownEntityIsWrittenWhole) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, kDrawing, "in.dxf"), Acad::eOk);
    std::string out;
    dxf::WriteDxfText(db, {}, out);
    EXPECT_NE(out.find("  0\nWHIZZBANG\n  5\n2B\n330\n"), std::string::npos) << out;
    EXPECT_NE(out.find("AcDbEntity\n  8\n0\n 10\n5.0\n"), std::string::npos) << out;
}

TEST(Lossless, DimensionStyleOverridesComeFromAndGoToDstyleExtensionData) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, kDrawing, "in.dxf"), Acad::eOk);
    auto* dim = AcDbOrdinateDimension::cast(ObjectAt(db, 0x2C));
    ASSERT_NE(dim, nullptr);
    EXPECT_TRUE(dim->dimtol());
    EXPECT_DOUBLE_EQ(dim->dimtp(), 0.2);
    EXPECT_TRUE(dim->xData().empty());
    dim->setDimtm(0.05);
    std::string out;
    dxf::WriteDxfText(db, {}, out);
    EXPECT_NE(out.find("1001\nACAD\n1000\nDSTYLE\n1002\n{\n1070\n47\n1040\n0.2\n1070\n48\n1040\n"
                       "0.05\n1070\n71\n1070\n1\n1002\n}\n"),
              std::string::npos) << out;
}

TEST(Lossless, HandlesSurviveAndRecordsTheFileLacksTakeHandlesFromHandseed) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, kDrawing, "in.dxf"), Acad::eOk);
    // The file has no block records: the layout blocks are made from $HANDSEED on.
    EXPECT_GE(db.modelSpaceId().handle().value(), 0x100u);
    EXPECT_GT(db.handseed().value(), db.modelSpaceId().handle().value());
    std::string out;
    dxf::WriteDxfText(db, {}, out);
    AcDbDatabase back(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(back, out, "out.dxf"), Acad::eOk) << dxf::Utf8(back.lastError());
    EXPECT_NE(AcDbLine::cast(ObjectAt(back, 0x2A)), nullptr);
    EXPECT_NE(AcDbOrdinateDimension::cast(ObjectAt(back, 0x2C)), nullptr);
    EXPECT_GE(back.handseed().value(), 0x100u);
}

// A drawing of one entity record in model space (block record 1F).
std::string DrawingWith(const std::string& record) {
    return "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1018\n  0\nENDSEC\n"
           "  0\nSECTION\n  2\nTABLES\n  0\nTABLE\n  2\nBLOCK_RECORD\n  5\n1\n330\n0\n"
           "100\nAcDbSymbolTable\n 70\n1\n  0\nBLOCK_RECORD\n  5\n1F\n330\n1\n"
           "100\nAcDbSymbolTableRecord\n100\nAcDbBlockTableRecord\n  2\n*Model_Space\n"
           "  0\nENDTAB\n  0\nENDSEC\n  0\nSECTION\n  2\nBLOCKS\n  0\nENDSEC\n"
           "  0\nSECTION\n  2\nENTITIES\n" + record +
           "  0\nENDSEC\n  0\nSECTION\n  2\nOBJECTS\n  0\nDICTIONARY\n  5\nC\n330\n0\n"
           "100\nAcDbDictionary\n  0\nENDSEC\n  0\nEOF\n";
}

const std::string kPolylineWithIds =
    "  0\nLWPOLYLINE\n  5\n2D\n330\n1F\n100\nAcDbEntity\n  8\n0\n100\nAcDbPolyline\n 90\n2\n"
    " 70\n0\n 43\n0.0\n 10\n1.0\n 20\n2.0\n 91\n7\n 10\n3.0\n 20\n4.0\n 91\n8\n";

TEST(Lossless, PolylineVertexIdsGoBackWithTheirVertices) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, DrawingWith(kPolylineWithIds), "in.dxf"), Acad::eOk)
        << dxf::Utf8(db.lastError());
    std::string out;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    EXPECT_NE(out.find(" 10\n1.0\n 20\n2.0\n 91\n7\n 10\n3.0\n 20\n4.0\n 91\n8\n"),
              std::string::npos) << out;
}

TEST(Lossless, PolylineVertexIdsAreLeftOutWhenTheVerticesChange) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, DrawingWith(kPolylineWithIds), "in.dxf"), Acad::eOk);
    auto* polyline = AcDbPolyline::cast(ObjectAt(db, 0x2D));
    ASSERT_NE(polyline, nullptr);
    polyline->appendVertex({{5.0, 6.0}});
    std::string out;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    EXPECT_EQ(out.find(" 91\n"), std::string::npos) << out;
    EXPECT_NE(out.find(" 10\n5.0\n 20\n6.0\n"), std::string::npos) << out;
}

TEST(Lossless, RecordOfAnEntityTheDatabaseModelsComesBackAsRead) {
    const std::string line =
        "  0\nLINE\n  5\n2E\n330\n1F\n100\nAcDbEntity\n  8\nWALLS\n100\nAcDbLine\n"
        " 10\n1.5\n 20\n2.0\n 30\n0.0\n 11\n3.0\n 21\n4.0\n 31\n0.0\n";
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, DrawingWith(line), "in.dxf"), Acad::eOk);
    std::string out;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    EXPECT_NE(out.find(line), std::string::npos) << out;
}

TEST(Lossless, RecordWithValuesTheDatabaseDoesNotModelIsKept) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, kDrawing, "in.dxf"), Acad::eOk);
    // The line has an unknown subclass; a number written in a longer form is kept as well.
    EXPECT_FALSE(ObjectAt(db, 0x2A)->fileTags().empty());
    const std::string longForm =
        "  0\nLINE\n  5\n2E\n330\n1F\n100\nAcDbEntity\n  8\n0\n100\nAcDbLine\n"
        " 10\n1.50\n 20\n2.0\n 30\n0.0\n 11\n3.0\n 21\n4.0\n 31\n0.0\n";
    AcDbDatabase db2(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db2, DrawingWith(longForm), "in.dxf"), Acad::eOk);
    EXPECT_FALSE(ObjectAt(db2, 0x2E)->fileTags().empty());
    std::string out;
    dxf::WriteDxfText(db2, {}, out);
    EXPECT_NE(out.find(" 10\n1.50\n"), std::string::npos) << out;
}

TEST(Lossless, AcdsDataSectionIsWrittenWhole) {
    const std::string section =
        "  0\nSECTION\n  2\nACDSDATA\n 70\n2\n 71\n6\n  0\nACDSSCHEMA\n 90\n0\n  1\n"
        "AcDb3DSolid_ASM_Data\n  2\nAcDbDs::ID\n280\n10\n 91\n8\n  0\nACDSRECORD\n 90\n0\n"
        "  2\nASM_Data\n280\n15\n 94\n4\n310\n414243FF\n  0\nENDSEC\n";
    std::string drawing = DrawingWith("");
    drawing.insert(drawing.find("  0\nEOF\n"), section);
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, drawing, "in.dxf"), Acad::eOk) << dxf::Utf8(db.lastError());
    std::string out;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    EXPECT_NE(out.find("  0\nENDSEC\n" + section + "  0\nEOF\n"), std::string::npos) << out;
}

TEST(CodePages, GbkBytesDecodeToUnicode) {
    std::string out;
    dxf::DecodeText("\xD6\xD0\xCE\xC4", 936, out);  // 中文 in GBK
    EXPECT_EQ(out, "中文");
}

TEST(CodePages, UnicodeAndMifEscapesAreDecoded) {
    std::string out;
    dxf::DecodeText("a\\U+00B0b\\M+5D6D0c", 1252, out);
    EXPECT_EQ(out, "a°b中c");
}

TEST(CodePages, CharactersOutsideTheCodePageBecomeUnicodeEscapes) {
    std::string out;
    dxf::EncodeText("中ü", 1252, out);
    EXPECT_EQ(out, "\\U+4E2D\xFC");
    out.clear();
    dxf::EncodeText("中", 936, out);
    EXPECT_EQ(out, "\xD6\xD0");
}

TEST(CodePages, NamesMapToCodePageNumbers) {
    EXPECT_EQ(dxf::CodePageFromName("ANSI_936"), 936);
    EXPECT_EQ(dxf::CodePageFromName("ansi_1252"), 1252);
    EXPECT_EQ(dxf::CodePageFromName(""), 1252);
    EXPECT_EQ(dxf::CodePageName(936), "ANSI_936");
}

TEST(Lossless, RecordWithoutHandleGivesWayWhenALaterRecordNamesItsHandle) {
    // No header and no tables: the reader numbers the block table, *Model_Space and the first
    // line itself, from 1; the second line then names handle 2 as its own.
    const std::string text =
        "  0\nSECTION\n  2\nENTITIES\n"
        "  0\nLINE\n  8\n0\n 10\n0.0\n 20\n0.0\n 11\n1.0\n 21\n0.0\n"
        "  0\nLINE\n  5\n2\n  8\n0\n 10\n5.0\n 20\n5.0\n 11\n6.0\n 21\n5.0\n"
        "  0\nENDSEC\n  0\nEOF\n";
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, text, "in.dxf"), Acad::eOk) << dxf::Utf8(db.lastError());
    auto* named = AcDbLine::cast(ObjectAt(db, 2));
    ASSERT_NE(named, nullptr);
    EXPECT_EQ(named->startPoint().x, 5.0);
    std::set<std::uint64_t> handles;
    int lines = 0;
    for (const auto& stub : db.stubs()) {
        if (!stub.object) continue;
        EXPECT_TRUE(handles.insert(stub.handle.value()).second) << stub.handle.value();
        if (AcDbLine::cast(stub.object.get())) ++lines;
    }
    EXPECT_EQ(lines, 2);
    EXPECT_GT(db.handseed().value(), *handles.rbegin());
}

TEST(Lossless, ObjectsAreWrittenInTheFileOrderEvenWhenReferencedBeforeTheyCome) {
    // The root dictionary names the two objects in the opposite order to the file's.
    const std::string objects =
        "  0\nDICTIONARY\n  5\nC\n330\n0\n100\nAcDbDictionary\n  3\nB_SECOND\n350\nE1\n"
        "  3\nA_FIRST\n350\nE0\n"
        "  0\nXRECORD\n  5\nE0\n330\nC\n100\nAcDbXrecord\n  1\nfirst\n"
        "  0\nXRECORD\n  5\nE1\n330\nC\n100\nAcDbXrecord\n  1\nsecond\n";
    std::string text = DrawingWith("");
    text.replace(text.find("  0\nDICTIONARY\n  5\nC\n330\n0\n100\nAcDbDictionary\n"),
                 std::string("  0\nDICTIONARY\n  5\nC\n330\n0\n100\nAcDbDictionary\n").size(), objects);
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, text, "in.dxf"), Acad::eOk) << dxf::Utf8(db.lastError());
    std::string out;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    size_t first = out.find("  1\nfirst\n"), second = out.find("  1\nsecond\n");
    ASSERT_NE(first, std::string::npos) << out;
    ASSERT_NE(second, std::string::npos) << out;
    EXPECT_LT(first, second);
}

TEST(Lossless, PolylineVerticesKeepTheWidthTagsTheirRecordHadAndGetNoneItLacked) {
    const std::string polyline =
        "  0\nLWPOLYLINE\n  5\n2D\n330\n1F\n100\nAcDbEntity\n  8\n0\n100\nAcDbPolyline\n 90\n3\n"
        " 70\n0\n 10\n1.0\n 20\n2.0\n 40\n0.0\n 41\n0.0\n 10\n3.0\n 20\n4.0\n"
        " 10\n5.0\n 20\n6.0\n 40\n0.5\n 41\n0.25\n";
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, DrawingWith(polyline), "in.dxf"), Acad::eOk) << dxf::Utf8(db.lastError());
    std::string out;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    EXPECT_NE(out.find(polyline), std::string::npos) << out;
}

TEST(Lossless, NewPolylineWritesWidthsOnlyWhereTheyAreNotZero) {
    AcDbDatabase db(true, true);
    auto* pl = new AcDbPolyline();
    pl->addVertexAt(0, {0, 0}, 0.0, 0.0, 0.0);
    pl->addVertexAt(1, {10, 0}, 0.0, 1.0, 2.0);
    AcDbBlockTableRecord* space = nullptr;
    ASSERT_EQ(acdbOpenObject(space, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    ASSERT_EQ(space->appendAcDbEntity(pl), Acad::eOk);
    pl->close();
    space->close();
    std::string out;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    EXPECT_NE(out.find(" 10\n0.0\n 20\n0.0\n 10\n10.0\n 20\n0.0\n 40\n1.0\n 41\n2.0\n"), std::string::npos) << out;
}

const std::string kR12 =
    "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1009\n  0\nENDSEC\n"
    "  0\nSECTION\n  2\nTABLES\n  0\nTABLE\n  2\nLAYER\n 70\n1\n"
    "  0\nLAYER\n  2\nHOLES\n 70\n0\n 62\n3\n  6\nCONTINUOUS\n  0\nENDTAB\n  0\nENDSEC\n"
    "  0\nSECTION\n  2\nENTITIES\n"
    "  0\nLINE\n  8\nHOLES\n 62\n1\n 10\n1.5\n 20\n2.0\n 30\n0.0\n 11\n3.0\n 21\n4.0\n 31\n0.0\n"
    "  0\nSOLID\n  8\nHOLES\n 10\n0.0\n 20\n0.0\n 11\n1.0\n 21\n0.0\n 12\n0.0\n 22\n1.0\n"
    " 13\n1.0\n 23\n1.0\n"
    "  0\nENDSEC\n  0\nEOF\n";

TEST(Lossless, R12DrawingIsWrittenAs2004WithSubclassesInPlace) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, kR12, "in.dxf"), Acad::eOk) << dxf::Utf8(db.lastError());
    std::string out;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    EXPECT_NE(out.find("$ACADVER\n  1\nAC1018\n"), std::string::npos);
    EXPECT_NE(out.find("  0\nTABLE\n  2\nLAYER\n  5\n"), std::string::npos) << out;
    EXPECT_NE(out.find("100\nAcDbSymbolTableRecord\n100\nAcDbLayerTableRecord\n  2\nHOLES\n"), std::string::npos) << out;
    // The colour goes with the entity's properties, before the line's own subclass.
    size_t line = out.find("  0\nLINE\n  5\n");
    ASSERT_NE(line, std::string::npos) << out;
    EXPECT_EQ(out.find("100\nAcDbEntity\n  8\nHOLES\n 62\n1\n100\nAcDbLine\n 10\n1.5\n", line),
              out.find("100\nAcDbEntity\n", line)) << out.substr(line, 300);
    size_t solid = out.find("  0\nSOLID\n");
    ASSERT_NE(solid, std::string::npos);
    EXPECT_NE(out.find("100\nAcDbEntity\n  8\nHOLES\n100\nAcDbTrace\n 10\n0.0\n", solid), std::string::npos)
        << out.substr(solid, 300);
    EXPECT_NE(out.find("  0\nSECTION\n  2\nOBJECTS\n"), std::string::npos);
}

TEST(Lossless, R12DrawingKeepsItsVersionAndRecordsWhenAsked) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, kR12, "in.dxf"), Acad::eOk) << dxf::Utf8(db.lastError());
    dxf::WriteOptions keep;
    keep.keepVersion = true;
    std::string out;
    ASSERT_EQ(dxf::WriteDxfText(db, keep, out), Acad::eOk);
    EXPECT_NE(out.find("$ACADVER\n  1\nAC1009\n"), std::string::npos);
    EXPECT_EQ(out.find("100\n"), std::string::npos) << out;
    EXPECT_NE(out.find("  0\nLINE\n  8\nHOLES\n 62\n1\n 10\n1.5\n"), std::string::npos) << out;
}

TEST(Lossless, PolyfaceMeshOfR12GetsSubclassesHandlesAndOwnersIn2004) {
    const std::string mesh =
        "  0\nPOLYLINE\n  8\nM\n 66\n1\n 10\n0.0\n 20\n0.0\n 30\n0.0\n 70\n64\n 71\n3\n 72\n1\n"
        "  0\nVERTEX\n  8\nM\n 10\n0.0\n 20\n0.0\n 30\n0.0\n 70\n192\n"
        "  0\nVERTEX\n  8\nM\n 10\n1.0\n 20\n0.0\n 30\n0.0\n 70\n192\n"
        "  0\nVERTEX\n  8\nM\n 10\n0.0\n 20\n1.0\n 30\n0.0\n 70\n192\n"
        "  0\nVERTEX\n  8\nM\n 10\n0.0\n 20\n0.0\n 30\n0.0\n 70\n128\n 71\n1\n 72\n2\n 73\n3\n"
        "  0\nSEQEND\n  8\nM\n";
    std::string text = kR12;
    text.replace(text.find("  0\nLINE\n"), 0, mesh);
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, text, "in.dxf"), Acad::eOk) << dxf::Utf8(db.lastError());
    std::string out;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    size_t at = out.find("  0\nPOLYLINE\n  5\n");
    ASSERT_NE(at, std::string::npos) << out;
    size_t end = out.find("  0\nLINE\n", at);
    std::string part = out.substr(at, end - at);
    EXPECT_NE(part.find("100\nAcDbEntity\n  8\nM\n100\nAcDbPolyFaceMesh\n 66\n1\n"), std::string::npos) << part;
    std::string owner = part.substr(part.find("  5\n") + 4);
    owner = owner.substr(0, owner.find('\n'));
    const std::string vertexHead = "330\n" + owner + "\n100\nAcDbEntity\n  8\nM\n";
    size_t vertices = 0, faces = 0, pos = 0;
    while ((pos = part.find(vertexHead + "100\nAcDbVertex\n100\nAcDbPolyFaceMeshVertex\n", pos)) != std::string::npos) {
        ++vertices;
        ++pos;
    }
    pos = 0;
    while ((pos = part.find(vertexHead + "100\nAcDbFaceRecord\n", pos)) != std::string::npos) {
        ++faces;
        ++pos;
    }
    EXPECT_EQ(vertices, 3u) << part;
    EXPECT_EQ(faces, 1u) << part;
    EXPECT_NE(part.find("  0\nSEQEND\n  5\n"), std::string::npos) << part;
    // Every record of the mesh has a handle of its own.
    std::set<std::string> handles;
    for (size_t p = part.find("\n  5\n"); p != std::string::npos; p = part.find("\n  5\n", p + 1)) {
        std::string h = part.substr(p + 5);
        handles.insert(h.substr(0, h.find('\n')));
    }
    EXPECT_EQ(handles.size(), 6u) << part;
}

TEST(Lossless, PolylineVerticesKeepTheirTextWhereTheValueIsUnchanged) {
    const std::string polyline =
        "  0\nLWPOLYLINE\n  5\n2D\n330\n1F\n100\nAcDbEntity\n  8\n0\n100\nAcDbPolyline\n 90\n2\n"
        " 70\n0\n 10\n1.50\n 20\n571.6812651496752\n 10\n3.0\n 20\n4.0\n";
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, DrawingWith(polyline), "in.dxf"), Acad::eOk);
    std::string out;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    EXPECT_NE(out.find(polyline), std::string::npos) << out;
    auto* p = AcDbPolyline::cast(ObjectAt(db, 0x2D));
    ASSERT_NE(p, nullptr);
    p->setPointAt(1, AcGePoint2d(7.25, p->vertexAt(1).point.y));  // a changed value is written as the database has it
    ASSERT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    EXPECT_NE(out.find(" 10\n1.50\n 20\n571.6812651496752\n 10\n7.25\n 20\n4.0\n"), std::string::npos) << out;
}

}  // namespace
