// The header variables of the corpus drawings agree with what their DXF twins say, and a
// damaged section is refused with its offset and reason.
#include "platform/dwg/header.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "platform/db/database.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dxf/dxf.hpp"
#include "shared_folder.hpp"

namespace {

// The value of a tag of a header variable of the DXF twin, as text.
std::string DxfValue(const AcDbDatabase& db, const std::string& name, int code) {
    for (const auto& [var, tags] : db.headerVars()) {
        if (var != name) continue;
        for (const auto& t : tags)
            if (t.code == code) return std::string(t.value);
    }
    ADD_FAILURE() << name << " " << code << " not in the DXF";
    return {};
}

double DxfReal(const AcDbDatabase& db, const std::string& name, int code) {
    return std::strtod(DxfValue(db, name, code).c_str(), nullptr);
}

int DxfInt(const AcDbDatabase& db, const std::string& name, int code = 70) {
    return std::atoi(DxfValue(db, name, code).c_str());
}

void ExpectPoint(const AcDbDatabase& db, const std::string& name, const dwg::Point3& p) {
    EXPECT_DOUBLE_EQ(p.x, DxfReal(db, name, 10)) << name;
    EXPECT_DOUBLE_EQ(p.y, DxfReal(db, name, 20)) << name;
    EXPECT_DOUBLE_EQ(p.z, DxfReal(db, name, 30)) << name;
}

void ExpectPlanPoint(const AcDbDatabase& db, const std::string& name, const dwg::Point3& p) {
    EXPECT_DOUBLE_EQ(p.x, DxfReal(db, name, 10)) << name;
    EXPECT_DOUBLE_EQ(p.y, DxfReal(db, name, 20)) << name;
}

dwg::HeaderVariables ReadCorpusHeader(const std::string& name, dwg::Version version) {
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath(name));
    dwg::HeaderVariables vars;
    dwg::MapError error;
    EXPECT_TRUE(dwg::ParseHeader(dwg_test::FileSection(file, dwg::kHeaderSection), version, file[0x0B], 1252,
                                 vars, error))
        << error.reason << " at " << error.offset;
    return vars;
}

TEST(DwgHeader, variables_of_a_2000_drawing_are_those_of_its_dxf_twin) {
    const auto vars = ReadCorpusHeader("example_2000.dwg", dwg::Version::kR2000);
    AcDbDatabase dxf(false, true);
    ASSERT_EQ(dxf::ReadDxfFile(dxf, SharedFile("corpus/dxf/example_2000.dxf").string()), Acad::eOk);
    // The DXF was exported later and numbered objects of its own: the seed lies above every
    // handle of the DWG and not above the DXF's.
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2000.dwg"));
    std::vector<dwg::ObjectLocation> map;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ParseObjectMap(dwg_test::FileSection(file, dwg::kHandlesSection), map, error));
    for (const auto& loc : map) ASSERT_LT(loc.handle, vars.handseed);
    EXPECT_LE(vars.handseed, std::stoull(DxfValue(dxf, "$HANDSEED", 5), nullptr, 16));
    EXPECT_EQ(vars.handseed, 0xBE7u);
    // The export measured the extents anew in z only.
    ExpectPlanPoint(dxf, "$EXTMIN", vars.model.extmin);
    ExpectPlanPoint(dxf, "$EXTMAX", vars.model.extmax);
    ExpectPoint(dxf, "$INSBASE", vars.model.insbase);
    ExpectPoint(dxf, "$PEXTMIN", vars.paper.extmin);
    EXPECT_DOUBLE_EQ(vars.model.limmax.x, DxfReal(dxf, "$LIMMAX", 10));
    EXPECT_DOUBLE_EQ(vars.model.limmax.y, DxfReal(dxf, "$LIMMAX", 20));
    EXPECT_DOUBLE_EQ(vars.textsize, DxfReal(dxf, "$TEXTSIZE", 40));
    EXPECT_DOUBLE_EQ(vars.ltscale, DxfReal(dxf, "$LTSCALE", 40));
    EXPECT_EQ(vars.luprec, DxfInt(dxf, "$LUPREC"));
    EXPECT_EQ(vars.attmode, DxfInt(dxf, "$ATTMODE"));
    EXPECT_EQ(vars.cecolor.index, DxfInt(dxf, "$CECOLOR", 62));
    // Dates are stored in universal time; the export added its own minutes of editing.
    EXPECT_NEAR(vars.tdcreate, DxfReal(dxf, "$TDUCREATE", 40), 1e-8);
    EXPECT_NEAR(vars.tdindwg, DxfReal(dxf, "$TDINDWG", 40), 1e-3);
    EXPECT_EQ(vars.menu, DxfValue(dxf, "$MENU", 1));
    // Dimension variables from each group of the section.
    EXPECT_DOUBLE_EQ(vars.dim.asz, DxfReal(dxf, "$DIMASZ", 40));
    EXPECT_DOUBLE_EQ(vars.dim.exo, DxfReal(dxf, "$DIMEXO", 40));
    EXPECT_DOUBLE_EQ(vars.dim.dli, DxfReal(dxf, "$DIMDLI", 40));
    EXPECT_DOUBLE_EQ(vars.dim.txt, DxfReal(dxf, "$DIMTXT", 40));
    EXPECT_DOUBLE_EQ(vars.dim.altf, DxfReal(dxf, "$DIMALTF", 40));
    EXPECT_DOUBLE_EQ(vars.dim.gap, DxfReal(dxf, "$DIMGAP", 40));
    EXPECT_EQ(vars.dim.tad, DxfInt(dxf, "$DIMTAD"));
    EXPECT_EQ(vars.dim.zin, DxfInt(dxf, "$DIMZIN"));
    EXPECT_EQ(vars.dim.tofl, DxfInt(dxf, "$DIMTOFL") != 0);
    EXPECT_EQ(vars.dim.altd, DxfInt(dxf, "$DIMALTD"));
    EXPECT_EQ(vars.dim.dec, DxfInt(dxf, "$DIMDEC"));
    EXPECT_EQ(vars.dim.alttd, DxfInt(dxf, "$DIMALTTD"));
    EXPECT_EQ(vars.dim.dsep, DxfInt(dxf, "$DIMDSEP"));
    EXPECT_EQ(vars.dim.atfit, DxfInt(dxf, "$DIMATFIT"));
    EXPECT_EQ(vars.dim.tzin, DxfInt(dxf, "$DIMTZIN"));
    EXPECT_EQ(vars.dim.lunit, DxfInt(dxf, "$DIMLUNIT"));
    EXPECT_EQ(vars.dim.lwd, DxfInt(dxf, "$DIMLWD"));
    EXPECT_EQ(vars.dim.lwe, DxfInt(dxf, "$DIMLWE"));
    EXPECT_EQ(vars.insunits, DxfInt(dxf, "$INSUNITS"));
    EXPECT_EQ(vars.celweight, DxfInt(dxf, "$CELWEIGHT", 370));
    EXPECT_EQ(vars.fingerprintguid, DxfValue(dxf, "$FINGERPRINTGUID", 2));
    EXPECT_EQ(vars.versionguid, DxfValue(dxf, "$VERSIONGUID", 2));
    // The control objects are the tables of the DXF, under the same handles.
    EXPECT_EQ(vars.handles.blockControl, dxf.blockTableId().handle().value());
    EXPECT_EQ(vars.handles.layerControl, dxf.layerTableId().handle().value());
    EXPECT_EQ(vars.handles.styleControl, dxf.textStyleTableId().handle().value());
    EXPECT_EQ(vars.handles.linetypeControl, dxf.linetypeTableId().handle().value());
    EXPECT_EQ(vars.handles.viewControl, dxf.viewTableId().handle().value());
    EXPECT_EQ(vars.handles.ucsControl, dxf.UCSTableId().handle().value());
    EXPECT_EQ(vars.handles.vportControl, dxf.viewportTableId().handle().value());
    EXPECT_EQ(vars.handles.appidControl, dxf.regAppTableId().handle().value());
    EXPECT_EQ(vars.handles.dimstyleControl, dxf.dimStyleTableId().handle().value());
    EXPECT_EQ(vars.handles.namedObjects, dxf.namedObjectsDictionaryId().handle().value());
    EXPECT_EQ(vars.handles.modelSpace, dxf.modelSpaceId().handle().value());
    EXPECT_EQ(vars.handles.paperSpace, dxf.paperSpaceId().handle().value());
}

TEST(DwgHeader, variables_of_an_r14_drawing_name_its_control_objects) {
    const auto vars = ReadCorpusHeader("example_r14.dwg", dwg::Version::kR14);
    // The fixed handles an R14 drawing gives its control objects.
    EXPECT_EQ(vars.handles.blockControl, 1u);
    EXPECT_EQ(vars.handles.layerControl, 2u);
    EXPECT_EQ(vars.handles.styleControl, 3u);
    EXPECT_EQ(vars.handles.linetypeControl, 5u);
    EXPECT_EQ(vars.handles.appidControl, 9u);
    EXPECT_EQ(vars.handles.dimstyleControl, 0xAu);
    EXPECT_GT(vars.handseed, 0x10u);
    EXPECT_NE(vars.handles.modelSpace, 0u);
    EXPECT_NE(vars.handles.continuous, 0u);
    EXPECT_LE(vars.model.extmin.x, vars.model.extmax.x);
}

}  // namespace

namespace {

std::vector<std::uint8_t> CorpusHeaderSection() {
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2000.dwg"));
    const auto section = dwg_test::FileSection(file, dwg::kHeaderSection);
    return {section.begin(), section.end()};
}

dwg::MapError ParseDamaged(const std::vector<std::uint8_t>& section) {
    dwg::HeaderVariables vars;
    dwg::MapError error;
    EXPECT_FALSE(dwg::ParseHeader(section, dwg::Version::kR2000, 0, 1252, vars, error));
    return error;
}

TEST(DwgHeader, a_changed_byte_fails_the_crc_at_its_end) {
    auto section = CorpusHeaderSection();
    section[100] ^= 0x10;
    const auto error = ParseDamaged(section);
    EXPECT_EQ(error.reason, "header section CRC mismatch");
    EXPECT_EQ(error.offset, section.size() - 16 - 2);
}

TEST(DwgHeader, a_size_past_the_section_is_refused) {
    auto section = CorpusHeaderSection();
    section.resize(section.size() - 20);
    const auto error = ParseDamaged(section);
    EXPECT_EQ(error.offset, 16u);
    EXPECT_NE(error.reason.find("runs past the section"), std::string::npos);
}

TEST(DwgHeader, a_missing_sentinel_is_refused) {
    auto section = CorpusHeaderSection();
    section[15] = 0;
    EXPECT_EQ(ParseDamaged(section).reason, "header section does not start with its sentinel");
    EXPECT_EQ(ParseDamaged({}).reason, "header section does not start with its sentinel");
}

}  // namespace
