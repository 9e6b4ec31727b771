// Damaged files give a clear status with file, line and reason, and leave the database empty.
#include <gtest/gtest.h>

#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "platform/dxf/tagger.hpp"

namespace {

const std::string kGood =
    "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1009\n  0\nENDSEC\n"
    "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n  8\n0\n 10\n1.5\n 20\n2.5\n 30\n0.0\n"
    " 11\n3.0\n 21\n4.0\n 31\n0.0\n  0\nENDSEC\n  0\nEOF\n";

struct Outcome {
    Acad::ErrorStatus status;
    std::string message;
    size_t objects;
};

Outcome Read(const std::string& text) {
    AcDbDatabase db(false, true);
    Acad::ErrorStatus es = dxf::ReadDxfBytes(db, text, "bad.dxf");
    return {es, dxf::Utf8(db.lastError()), db.stubs().size()};
}

std::string Replace(std::string text, const std::string& from, const std::string& to) {
    text.replace(text.find(from), from.size(), to);
    return text;
}

TEST(BadInput, GoodFileReads) {
    Outcome o = Read(kGood);
    EXPECT_EQ(o.status, Acad::eOk) << o.message;
    EXPECT_GT(o.objects, 0u);
}

TEST(BadInput, TruncatedFileNamesTheMissingEnd) {
    Outcome o = Read(kGood.substr(0, kGood.find("  0\nENDSEC\n  0\nEOF")));
    EXPECT_NE(o.status, Acad::eOk);
    EXPECT_NE(o.message.find("bad.dxf:"), std::string::npos) << o.message;
    EXPECT_NE(o.message.find("DXF004"), std::string::npos) << o.message;
    EXPECT_EQ(o.objects, 0u);
}

TEST(BadInput, FileEndingAfterAGroupCodeIsTruncated) {
    Outcome o = Read(kGood.substr(0, kGood.find("1.5")));
    EXPECT_NE(o.message.find("DXF004"), std::string::npos) << o.message;
    EXPECT_EQ(o.objects, 0u);
}

TEST(BadInput, WrongGroupCodeGivesItsLine) {
    Outcome o = Read(Replace(kGood, " 10\n1.5", " 1x\n1.5"));
    EXPECT_EQ(o.status, Acad::eInvalidDxfCode);
    EXPECT_NE(o.message.find("bad.dxf:19: DXF003"), std::string::npos) << o.message;
    EXPECT_EQ(o.objects, 0u);
}

TEST(BadInput, UnknownGroupCodeIsRejected) {
    Outcome o = Read(Replace(kGood, " 10\n1.5", " 85\n1.5"));
    EXPECT_NE(o.message.find("DXF003"), std::string::npos) << o.message;
}

TEST(BadInput, ValueThatIsNotANumberGivesItsLine) {
    Outcome o = Read(Replace(kGood, "1.5", "one"));
    EXPECT_EQ(o.status, Acad::eBadDxfFile);
    EXPECT_NE(o.message.find("bad.dxf:20: DXF005"), std::string::npos) << o.message;
    EXPECT_EQ(o.objects, 0u);
}

TEST(BadInput, MissingEntitiesSectionIsReported) {
    std::string text = "  0\nSECTION\n  2\nHEADER\n  0\nENDSEC\n  0\nEOF\n";
    Outcome o = Read(text);
    EXPECT_EQ(o.status, Acad::eMissingDxfSection);
    EXPECT_NE(o.message.find("DXF006"), std::string::npos) << o.message;
}

TEST(BadInput, BinaryGarbageIsNotADrawing) {
    std::string garbage;
    for (int i = 0; i < 4096; ++i) garbage += static_cast<char>((i * 7919) & 0xFF);
    Outcome o = Read(garbage);
    EXPECT_NE(o.status, Acad::eOk);
    EXPECT_NE(o.message.find("DXF002"), std::string::npos) << o.message;
    EXPECT_EQ(o.objects, 0u);
}

TEST(BadInput, TruncatedBinaryDrawingIsReported) {
    std::string binary(dxf::kBinarySentinel);
    binary += std::string("\x00\x00SECTION\x00\x02\x00", 11);
    binary += std::string("\x0a\x00\x01", 3);  // a double cut short
    Outcome o = Read(binary);
    EXPECT_NE(o.status, Acad::eOk);
    EXPECT_NE(o.message.find("DXF004"), std::string::npos) << o.message;
}

TEST(BadInput, DamageAfterManyGoodRecordsLeavesTheDatabaseEmpty) {
    std::string lines;
    for (int i = 0; i < 50; ++i) lines += "  0\nLINE\n  8\n0\n 10\n1.0\n 20\n2.0\n 11\n3.0\n 21\n4.0\n";
    std::string text = Replace(kGood, "  0\nENDSEC\n  0\nEOF", lines + "  0\nLINE\n 10\nabc\n  0\nENDSEC\n  0\nEOF");
    AcDbDatabase db(true, true);  // a drawing with its defaults, replaced by the read
    EXPECT_EQ(dxf::ReadDxfBytes(db, text, "bad.dxf"), Acad::eBadDxfFile);
    EXPECT_NE(dxf::Utf8(db.lastError()).find("DXF005"), std::string::npos);
    EXPECT_EQ(db.stubs().size(), 0u);
    EXPECT_TRUE(db.headerVars().empty());
}

TEST(BadInput, MissingSectionFoundAtTheEndLeavesTheDatabaseEmpty) {
    std::string text = Replace(kGood, "AC1009", "AC1018");  // 2000 and later need TABLES, BLOCKS, OBJECTS
    Outcome o = Read(text);
    EXPECT_EQ(o.status, Acad::eMissingDxfSection);
    EXPECT_NE(o.message.find("no TABLES section"), std::string::npos) << o.message;
    EXPECT_EQ(o.objects, 0u);
}

TEST(BadInput, WhatFollowsEofIsIgnored) {
    Outcome o = Read(kGood + "garbage that is not a group code\n\x01\x02");
    EXPECT_EQ(o.status, Acad::eOk) << o.message;
    EXPECT_GT(o.objects, 0u);
}

TEST(BadInput, EndsecWithStrayTagsIsReported) {
    Outcome o = Read(Replace(kGood, "  0\nENDSEC\n  0\nSECTION", "  0\nENDSEC\n  8\nX\n  0\nSECTION"));
    EXPECT_NE(o.message.find("DXF007"), std::string::npos) << o.message;
    EXPECT_NE(o.message.find("group code 8 outside a section"), std::string::npos) << o.message;
    EXPECT_EQ(o.objects, 0u);
}

TEST(BadInput, MissingFileIsReportedByName) {
    AcDbDatabase db(false, true);
    EXPECT_EQ(db.readDwgFile(L"/nonexistent/drawing.dxf"), Acad::eFileNotFound);
    EXPECT_NE(db.lastError().find(L"/nonexistent/drawing.dxf"), std::wstring::npos);
}

}  // namespace
