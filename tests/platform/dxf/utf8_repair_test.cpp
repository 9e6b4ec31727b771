#include <gtest/gtest.h>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/text.hpp"
#include "platform/dxf/codepage.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"

namespace {

struct Case {
    const char* bytes;
    const char* decoded;
};

TEST(Utf8Repair, each_bad_sequence_becomes_one_replacement_and_keeps_what_follows) {
    const Case cases[] = {
        {"A\xff" "BCDEF", "A\xEF\xBF\xBD" "BCDEF"},
        {"\xE4\xB8" "X", "\xEF\xBF\xBD" "X"},               // a cut three-byte sequence
        {"\xC0\xAF" "Y", "\xEF\xBF\xBD\xEF\xBF\xBD" "Y"},   // overlong: two bad bytes
        {"\xED\xA0\x80" "Z", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD" "Z"},  // a surrogate
        {"\xE4\xB8\xAD", "\xE4\xB8\xAD"},                   // well formed stays
    };
    for (const Case& c : cases) {
        std::string out;
        dxf::DecodeText(c.bytes, 65001, out);
        EXPECT_EQ(out, c.decoded) << c.bytes;
        EXPECT_EQ(dxf::DecodesUnchanged(c.bytes, 65001), out == c.bytes);
    }
}

// The text of the only TEXT entity of a drawing written as `version` whose value, as stored in
// the file, is `bytes`: a text "#" is written, then its bytes are put in its place.
std::wstring TextRead(AcDb::AcDbDwgVersion version, const std::string& bytes) {
    AcDbDatabase made(true, false);
    AcDbBlockTableRecord* space = nullptr;
    EXPECT_EQ(acdbOpenObject(space, made.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    auto* marker = new AcDbText({0, 0, 0}, L"#", AcDbObjectId::kNull);
    EXPECT_EQ(space->appendAcDbEntity(marker), Acad::eOk);
    marker->close();
    space->close();
    dxf::WriteOptions options;
    options.version = version;
    std::string drawing;
    EXPECT_EQ(dxf::WriteDxfText(made, options, drawing), Acad::eOk);
    size_t at = drawing.find("\n  1\n#\n");
    EXPECT_NE(at, std::string::npos);
    drawing.replace(at + 5, 1, bytes);
    AcDbDatabase db(false, true);
    EXPECT_EQ(dxf::ReadDxfBytes(db, drawing, "in.dxf"), Acad::eOk) << dxf::Utf8(db.lastError());
    for (const auto& stub : db.stubs())
        if (auto* text = AcDbText::cast(stub.object.get())) return text->textString();
    return L"(no text)";
}

TEST(Utf8Repair, bad_byte_in_a_2007_drawing_keeps_the_characters_after_it) {
    EXPECT_EQ(TextRead(AcDb::kDHL_1021, "A\xff" "BCDEF"), L"A\uFFFDBCDEF");
    EXPECT_EQ(TextRead(AcDb::kDHL_1032, "\xE4\xB8" "X\xE4\xB8\xAD"), L"\uFFFDX\u4E2D");
}

TEST(Utf8Repair, broken_gbk_in_a_2004_drawing_becomes_a_replacement_too) {
    EXPECT_EQ(TextRead(AcDb::kDHL_1018, "A\xFF" "BC"), L"A\uFFFDBC");
}

}  // namespace
