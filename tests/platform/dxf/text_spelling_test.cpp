// Texts a file spells with escapes (\U+XXXX) for characters the database holds as characters:
// the host sees the characters, and a writer gives the file's spelling back, in DXF and in
// DWG, while the text is the one read. A text changed since is written the normal way.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"

namespace {

// A drawing of code page 1252 whose file spells ß in a layer's name (lower-case digits) and
// the degree sign in an MTEXT on that layer, though the code page has both.
const std::string kSpelledDrawing =
    "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1018\n  9\n$DWGCODEPAGE\n  3\nANSI_1252\n"
    "  9\n$HANDSEED\n  5\n100\n  0\nENDSEC\n"
    "  0\nSECTION\n  2\nTABLES\n  0\nTABLE\n  2\nLAYER\n  5\n2\n330\n0\n100\nAcDbSymbolTable\n"
    " 70\n1\n  0\nLAYER\n  5\n10\n330\n2\n100\nAcDbSymbolTableRecord\n100\nAcDbLayerTableRecord\n"
    "  2\nMa\\U+00dfstab\n 70\n0\n 62\n7\n  6\nContinuous\n  0\nENDTAB\n"
    "  0\nTABLE\n  2\nBLOCK_RECORD\n  5\n1\n330\n0\n100\nAcDbSymbolTable\n 70\n1\n"
    "  0\nBLOCK_RECORD\n  5\n1F\n330\n1\n100\nAcDbSymbolTableRecord\n100\nAcDbBlockTableRecord\n"
    "  2\n*Model_Space\n  0\nENDTAB\n  0\nENDSEC\n  0\nSECTION\n  2\nBLOCKS\n  0\nENDSEC\n"
    "  0\nSECTION\n  2\nENTITIES\n"
    "  0\nMTEXT\n  5\n2E\n330\n1F\n100\nAcDbEntity\n  8\nMa\\U+00dfstab\n100\nAcDbMText\n 10\n1.0\n"
    " 20\n2.0\n 30\n0.0\n 40\n2.5\n  1\n108\\U+00B0\n"
    "  0\nENDSEC\n  0\nSECTION\n  2\nOBJECTS\n  0\nDICTIONARY\n  5\nC\n330\n0\n100\nAcDbDictionary\n"
    "  0\nENDSEC\n  0\nEOF\n";

constexpr std::uint64_t kMText = 0x2E;

template <typename T>
T* ObjectAt(AcDbDatabase& db, std::uint64_t handle) {
    AcDbObjectId id;
    db.getAcDbObjectId(id, false, AcDbHandle(handle));
    return id.isNull() ? nullptr : T::cast(id.stub()->object.get());
}

void ReadSpelled(AcDbDatabase& db) {
    ASSERT_EQ(dxf::ReadDxfBytes(db, kSpelledDrawing, "spelled.dxf"), Acad::eOk) << dxf::Utf8(db.lastError());
}

std::string DxfOf(AcDbDatabase& db, int codePage, AcDb::AcDbDwgVersion version = AcDb::kDHL_1018) {
    dxf::WriteOptions options;
    options.codePage = codePage;
    options.version = version;
    std::string out;
    EXPECT_EQ(dxf::WriteDxfText(db, options, out), Acad::eOk);
    return out;
}

// The DWG the database is written to, read again.
void ThroughDwg(AcDbDatabase& db, int codePage, AcDbDatabase& back) {
    std::vector<std::uint8_t> bytes;
    dwg::DwgWriteReport report;
    ASSERT_EQ(dwg::WriteDwgBytes(db, codePage, bytes, report), Acad::eOk);
    ASSERT_EQ(dwg::ReadDwgBytes(back, bytes, "spelled.dwg"), Acad::eOk) << dxf::Utf8(back.lastError());
}

// The texts of a record that its file spelled with escapes, as code and spelling.
std::vector<std::pair<int, std::string>> SpellingsOf(const AcDbDatabase& db, std::uint64_t handle) {
    std::vector<std::pair<int, std::string>> out;
    const auto it = db.textSpellings().find(handle);
    if (it == db.textSpellings().end()) return out;
    for (const AcDbRawTag& t : it->second) out.emplace_back(t.code, std::string(t.value));
    return out;
}

int LayersNamed(AcDbDatabase& db, const std::wstring& name) {
    AcDbLayerTable* layers = nullptr;
    if (acdbOpenObject(layers, db.layerTableId(), AcDb::kForRead) != Acad::eOk) return -1;
    int named = 0;
    for (const AcDbObjectId& id : layers->recordIds()) {
        const auto* layer = AcDbLayerTableRecord::cast(id.stub()->object.get());
        if (layer != nullptr && layer->name() == name) ++named;
    }
    layers->close();
    return named;
}

TEST(TextSpelling, escape_spelled_in_the_file_reads_as_the_character) {
    AcDbDatabase db(false, true);
    ReadSpelled(db);
    auto* mtext = ObjectAt<AcDbMText>(db, kMText);
    ASSERT_NE(mtext, nullptr);
    EXPECT_EQ(mtext->contents(), L"108°");
    EXPECT_EQ(mtext->layer(), L"Maßstab");
    EXPECT_EQ(LayersNamed(db, L"Maßstab"), 1);
    using Spellings = std::vector<std::pair<int, std::string>>;
    EXPECT_EQ(SpellingsOf(db, kMText), (Spellings{{8, "Ma\\U+00dfstab"}, {1, "108\\U+00B0"}}));
    EXPECT_EQ(SpellingsOf(db, 0x10), (Spellings{{2, "Ma\\U+00dfstab"}}));
}

// Whatever the code page and version written, the file's spelling comes back, the digits'
// case included.
TEST(TextSpelling, escape_spelled_in_the_file_comes_back_spelled_so_in_dxf) {
    struct Case {
        int codePage;
        AcDb::AcDbDwgVersion version;
    };
    for (const Case& c : {Case{1252, AcDb::kDHL_1018}, Case{936, AcDb::kDHL_1018}, Case{65001, AcDb::kDHL_1018},
                          Case{936, AcDb::kDHL_1032}}) {
        AcDbDatabase db(false, true);
        ReadSpelled(db);
        const std::string out = DxfOf(db, c.codePage, c.version);
        EXPECT_NE(out.find("  1\n108\\U+00B0\n"), std::string::npos) << c.codePage << "\n" << out;
        EXPECT_NE(out.find("  2\nMa\\U+00dfstab\n"), std::string::npos) << c.codePage << "\n" << out;
        EXPECT_NE(out.find("  8\nMa\\U+00dfstab\n"), std::string::npos) << c.codePage << "\n" << out;
    }
}

TEST(TextSpelling, escape_spelled_in_the_file_comes_back_spelled_so_in_dwg) {
    for (const int codePage : {1252, 936}) {
        AcDbDatabase db(false, true);
        ReadSpelled(db);
        AcDbDatabase back(false, true);
        ThroughDwg(db, codePage, back);
        auto* mtext = ObjectAt<AcDbMText>(back, kMText);
        ASSERT_NE(mtext, nullptr) << codePage;
        EXPECT_EQ(mtext->contents(), L"108°") << codePage;
        EXPECT_EQ(mtext->layer(), L"Maßstab") << codePage;
        // Read again, the DWG spells them as the DXF did.
        EXPECT_EQ(SpellingsOf(back, kMText), SpellingsOf(db, kMText)) << codePage;
        EXPECT_EQ(SpellingsOf(back, 0x10), SpellingsOf(db, 0x10)) << codePage;
    }
}

// The AutoCAD drawing's MTEXT 0x44C spells the degree sign in code page 1252: its DXF spells
// it so, as AutoCAD's own DXF of the drawing does.
TEST(TextSpelling, escape_of_a_dwg_text_comes_back_spelled_so_in_dxf) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(db, dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2004.dwg")), "example_2004.dwg"),
              Acad::eOk);
    auto* mtext = ObjectAt<AcDbMText>(db, 0x44C);
    ASSERT_NE(mtext, nullptr);
    EXPECT_EQ(mtext->contents(), L"108°");
    EXPECT_NE(DxfOf(db, 936).find("  1\n108\\U+00B0\n"), std::string::npos);
}

TEST(TextSpelling, text_edited_through_the_api_is_written_the_normal_way) {
    AcDbDatabase db(false, true);
    ReadSpelled(db);
    auto* mtext = ObjectAt<AcDbMText>(db, kMText);
    ASSERT_NE(mtext, nullptr);
    mtext->setContents(L"109°");
    const std::string out = DxfOf(db, 1252);
    EXPECT_NE(out.find("  1\n109\xB0\n"), std::string::npos) << out;
    EXPECT_EQ(out.find("\\U+00B0"), std::string::npos) << out;
    // The layer's name, not edited, keeps its spelling.
    EXPECT_NE(out.find("  8\nMa\\U+00dfstab\n"), std::string::npos) << out;
    AcDbDatabase back(false, true);
    ThroughDwg(db, 1252, back);
    EXPECT_EQ(SpellingsOf(back, kMText), (std::vector<std::pair<int, std::string>>{{8, "Ma\\U+00dfstab"}}));
    ASSERT_NE(ObjectAt<AcDbMText>(back, kMText), nullptr);
    EXPECT_EQ(ObjectAt<AcDbMText>(back, kMText)->contents(), L"109°");
}

// The DWG writer finds layers by the characters of their names: an entity the host puts on
// the layer whose name the file spelled lands on that layer.
TEST(TextSpelling, entity_added_on_a_layer_the_file_spelled_stays_on_it_in_dwg) {
    AcDbDatabase db(false, true);
    ReadSpelled(db);
    AcDbBlockTableRecord* model = nullptr;
    ASSERT_EQ(acdbOpenObject(model, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    auto* line = new AcDbLine({0, 0, 0}, {1, 1, 0});
    line->setLayer(L"Maßstab");
    AcDbObjectId lineId;
    ASSERT_EQ(model->appendAcDbEntity(lineId, line), Acad::eOk);
    model->close();
    line->close();
    AcDbDatabase back(false, true);
    ThroughDwg(db, 1252, back);
    auto* read = ObjectAt<AcDbLine>(back, lineId.handle().value());
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->layer(), L"Maßstab");
    EXPECT_EQ(LayersNamed(back, L"Maßstab"), 1);
}

// A text the host writes holds characters; in code page 936 those GBK lacks are written as
// escapes, the others as GBK bytes.
TEST(TextSpelling, code_page_936_output_writes_escapes_for_what_gbk_cannot_hold) {
    AcDbDatabase db(false, true);
    ReadSpelled(db);
    auto* mtext = ObjectAt<AcDbMText>(db, kMText);
    ASSERT_NE(mtext, nullptr);
    mtext->setContents(L"中\u0E01");
    EXPECT_NE(DxfOf(db, 936).find("  1\n\xD6\xD0\\U+0E01\n"), std::string::npos);
    AcDbDatabase back(false, true);
    ThroughDwg(db, 936, back);
    ASSERT_NE(ObjectAt<AcDbMText>(back, kMText), nullptr);
    EXPECT_EQ(ObjectAt<AcDbMText>(back, kMText)->contents(), L"中\u0E01");
    EXPECT_EQ(SpellingsOf(back, kMText), (std::vector<std::pair<int, std::string>>{
                                             {8, "Ma\\U+00dfstab"}, {1, "\xE4\xB8\xAD\\U+0E01"}}));
}

// What only looks like an escape is text: nothing to spell.
TEST(TextSpelling, text_whose_escape_does_not_decode_is_kept_as_it_is) {
    std::string drawing = kSpelledDrawing;
    drawing.replace(drawing.find("108\\U+00B0"), 10, "108\\U+00G0");
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, drawing, "plain.dxf"), Acad::eOk);
    ASSERT_NE(ObjectAt<AcDbMText>(db, kMText), nullptr);
    EXPECT_EQ(ObjectAt<AcDbMText>(db, kMText)->contents(), L"108\\U+00G0");
    EXPECT_EQ(SpellingsOf(db, kMText), (std::vector<std::pair<int, std::string>>{{8, "Ma\\U+00dfstab"}}));
    EXPECT_NE(DxfOf(db, 1252).find("  1\n108\\U+00G0\n"), std::string::npos);
}

}  // namespace
