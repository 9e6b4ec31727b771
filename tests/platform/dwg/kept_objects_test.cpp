// Objects of a DWG whose kind the database does not model: kept whole with their DWG data, left
// out of a DXF written from the database (their records would be their head only) and named.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include "platform/db/block_table_record.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "platform/dxf/support.hpp"
#include "shared_folder.hpp"

namespace {

namespace fs = std::filesystem;

void ReadCorpusDwg(AcDbDatabase& db, const std::string& name) {
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath(name));
    ASSERT_EQ(dwg::ReadDwgBytes(db, file, name), Acad::eOk) << dxf::Utf8(db.lastError());
}

bool HasRecord(const std::string& dxfText, const std::string& type) {
    return dxfText.find("\n  0\n" + type + "\n") != std::string::npos;
}

TEST(DwgKeptObjects, undecoded_kinds_are_kept_with_their_dwg_data) {
    AcDbDatabase db(false, true);
    ReadCorpusDwg(db, "example_2000.dwg");
    std::map<std::string, int> kinds;
    for (const auto& [handle, kept] : db.dwgKeptObjects()) {
        ++kinds[kept.typeName];
        EXPECT_FALSE(kept.data.empty()) << kept.typeName;
        AcDbObjectId id;
        EXPECT_EQ(db.getAcDbObjectId(id, false, AcDbHandle(handle)), Acad::eOk) << kept.typeName;
    }
    EXPECT_EQ(kinds["REGION"], 2);
    EXPECT_EQ(kinds["3DSOLID"], 1);
    EXPECT_EQ(kinds["MLINE"], 1);
    // Decoded kinds and the symbol tables are not among them.
    EXPECT_EQ(kinds.count("MLINESTYLE"), 0u);
    EXPECT_EQ(kinds.count("LINE"), 0u);
    EXPECT_EQ(kinds.count("LAYER"), 0u);
    EXPECT_EQ(kinds.count("DICTIONARY"), 0u);
}

TEST(DwgKeptObjects, dxf_writer_leaves_kept_kinds_out_and_names_them) {
    AcDbDatabase db(false, true);
    ReadCorpusDwg(db, "example_2000.dwg");
    std::string text;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, text), Acad::eOk);
    for (const char* type : {"REGION", "3DSOLID", "MLINE", "WIPEOUT"}) {
        EXPECT_FALSE(HasRecord(text, type)) << type;
    }
    EXPECT_TRUE(HasRecord(text, "LINE"));
    EXPECT_TRUE(HasRecord(text, "MLINESTYLE"));
    const auto left = dxf::LeftOutOfDxf(db);
    EXPECT_EQ(left.at("REGION"), 2);
    EXPECT_EQ(left.at("3DSOLID"), 1);
    EXPECT_EQ(left.count("LINE"), 0u);
}

TEST(DwgKeptObjects, erased_kept_object_is_not_named) {
    AcDbDatabase db(false, true);
    ReadCorpusDwg(db, "example_2000.dwg");
    int solids = 0;
    for (const auto& [handle, kept] : db.dwgKeptObjects()) {
        if (kept.typeName != "3DSOLID") continue;
        AcDbObjectId id;
        ASSERT_EQ(db.getAcDbObjectId(id, false, AcDbHandle(handle)), Acad::eOk);
        AcDbObject* solid = nullptr;
        ASSERT_EQ(acdbOpenAcDbObject(solid, id, AcDb::kForWrite), Acad::eOk);
        solid->erase();
        solid->close();
        ++solids;
    }
    ASSERT_EQ(solids, 1);
    EXPECT_EQ(dxf::LeftOutOfDxf(db).count("3DSOLID"), 0u);
}

TEST(DwgKeptObjects, drawing_read_from_dxf_leaves_nothing_out) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfFile(db, SharedFile("corpus/dxf/example_2000.dxf").string()), Acad::eOk)
        << dxf::Utf8(db.lastError());
    EXPECT_TRUE(db.dwgKeptObjects().empty());
    EXPECT_TRUE(dxf::LeftOutOfDxf(db).empty());
}

TEST(DwgKeptObjects, merged_copies_of_kept_entities_stay_left_out) {
    AcDbDatabase source(false, true);
    ReadCorpusDwg(source, "example_2000.dwg");
    AcDbDatabase target;
    ASSERT_EQ(target.insert(AcGeMatrix3d::kIdentity, &source), Acad::eOk);
    const auto left = dxf::LeftOutOfDxf(target);
    EXPECT_EQ(left.count("REGION"), 1u);
    std::string text;
    ASSERT_EQ(dxf::WriteDxfText(target, {}, text), Acad::eOk);
    EXPECT_FALSE(HasRecord(text, "REGION"));
    EXPECT_FALSE(HasRecord(text, "3DSOLID"));
}

// The DXF written from each drawing, kinds left out, reads in ezdxf without a recover or audit
// error, and in our own reader.
class DwgToDxfAudit : public testing::TestWithParam<std::string> {};

TEST_P(DwgToDxfAudit, dxf_written_from_dwg_passes_ezdxf_audit) {
    AcDbDatabase db(false, true);
    ReadCorpusDwg(db, GetParam());
    const fs::path dir = dxftest::TempDir("dwg_kept");
    const fs::path written = dir / (fs::path(GetParam()).stem().string() + ".dxf");
    ASSERT_EQ(dxf::WriteDxfFile(db, written.string(), {}), Acad::eOk) << dxf::Utf8(db.lastError());
    const auto result = dxftest::Run(dxftest::Python() + " " + dxftest::Script("ezdxf_view.py") +
                                     " " + dxftest::Quote(written));
    ASSERT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("\"audit_errors\": []"), std::string::npos) << result.output.substr(0, 2000);
    EXPECT_NE(result.output.find("\"recover_errors\": []"), std::string::npos) << result.output.substr(0, 2000);
    AcDbDatabase again(false, true);
    EXPECT_EQ(dxf::ReadDxfFile(again, written.string()), Acad::eOk) << dxf::Utf8(again.lastError());
    fs::remove_all(dir);
}

INSTANTIATE_TEST_SUITE_P(Corpus, DwgToDxfAudit,
                         testing::Values("example_r14.dwg", "example_2000.dwg", "example_2004.dwg",
                                         "Leader.dwg", "HatchG.dwg", "entities-2d.dwg",
                                         "color_sample_AC1015.dwg"),
                         [](const testing::TestParamInfo<std::string>& info) {
                             std::string name = fs::path(info.param).stem().string();
                             for (char& c : name)
                                 if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                             return name;
                         });

}  // namespace
