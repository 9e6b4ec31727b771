// The conversion library writes AC1018 DWG for a ".dwg" target and DXF for a ".dxf" one, and the
// pipeline's save of an export with a ".dwg" name leaves a DWG that reads back processed.
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "shared_folder.hpp"

namespace {

class DwgVersion : public BatchTest {
protected:
    std::string Head(const std::wstring& windowsPath) { return ReadAt(windowsPath).substr(0, 6); }
    int EntitiesOf(const std::wstring& windowsPath) {
        auto db = ReadDrawing(windowsPath);
        return db ? ModelSpaceIds(*db).length() : -1;
    }
};

TEST_F(DwgVersion, to_version_8_writes_ac1018_dwg_for_a_dwg_target) {
    SaveExport(HandOff(L"P-1.dxf"), 2);
    ASSERT_EQ(Head(HandOff(L"P-1.dxf")).substr(0, 3), "  0");
    ASSERT_EQ(ConvertDwgVersion(HandOff(L"P-1.dxf"), HandOff(L"P-1.dwg"), 8, 0), 0);
    EXPECT_EQ(Head(HandOff(L"P-1.dwg")), "AC1018");
    EXPECT_EQ(EntitiesOf(HandOff(L"P-1.dwg")), 12);
}

TEST_F(DwgVersion, to_version_writes_dxf_for_a_dxf_target_and_reads_dwg_sources) {
    SaveExport(HandOff(L"P-1.dwg"));
    ASSERT_EQ(Head(HandOff(L"P-1.dwg")), "AC1018");
    ASSERT_EQ(ConvertDwgVersion(HandOff(L"P-1.dwg"), HandOff(L"P-1.dxf"), 8, 0), 0);
    EXPECT_EQ(Head(HandOff(L"P-1.dxf")).substr(0, 3), "  0");
    EXPECT_EQ(EntitiesOf(HandOff(L"P-1.dxf")), 6);
}

TEST_F(DwgVersion, to_version_of_a_missing_source_fails_and_writes_nothing) {
    testing::internal::CaptureStderr();
    EXPECT_NE(ConvertDwgVersion(HandOff(L"none.dwg"), HandOff(L"out.dwg"), 8, 0), 0);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_FALSE(std::filesystem::exists(ResolvePath(HandOff(L"out.dwg"))));
    // The reason, after the library's name, names the source.
    EXPECT_EQ(said.rfind("dwgver: ", 0), 0u) << said;
    EXPECT_NE(said.find("none.dwg"), std::string::npos) << said;
}

TEST_F(DwgVersion, to_version_into_a_missing_folder_fails_and_says_why) {
    SaveExport(HandOff(L"P-1.dxf"));
    testing::internal::CaptureStderr();
    EXPECT_NE(ConvertDwgVersion(HandOff(L"P-1.dxf"), HandOff(L"none\\P-1.dwg"), 8, 0), 0);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(said.rfind("dwgver: " + ResolvePath(HandOff(L"none\\P-1.dwg")).string() + ":0: DXF008 ", 0), 0u)
        << said;
}

// What the DWG cannot hold of the source is named on standard error, a line each.
TEST_F(DwgVersion, to_version_names_what_the_dwg_leaves_out) {
    const std::filesystem::path source = ResolvePath(HandOff(L"x.dxf"));
    std::filesystem::create_directories(source.parent_path());
    std::filesystem::copy_file(SharedFile("corpus/dxf/x0292430_c.dxf"), source);
    testing::internal::CaptureStderr();
    EXPECT_EQ(ConvertDwgVersion(HandOff(L"x.dxf"), HandOff(L"x.dwg"), 8, 0), 0);
    const std::string said = testing::internal::GetCapturedStderr();
    const std::string prefix = "dwgver: " + ResolvePath(HandOff(L"x.dwg")).string() + ": 1 DIMSTYLE variable ";
    EXPECT_EQ(said, prefix + "270 record(s) not written (no DWG encoder)\n" + prefix +
                        "287 record(s) not written (no DWG encoder)\n");
}

TEST_F(DwgVersion, processed_export_with_a_dwg_name_is_saved_as_dwg) {
    SaveExport(HandOff(L"P-1.dwg"));
    ProcessDrawing(HandOff(L"P-1.dwg"));
    EXPECT_EQ(Head(HandOff(L"P-1.dwg")), "AC1018");
    auto db = ReadDrawing(HandOff(L"P-1.dwg"));
    ASSERT_TRUE(db);
    EXPECT_EQ(CountOnLayer(*db, L"BIGFRAM"), 0);  // the frame goes with the sheet's construction
    EXPECT_EQ(ModelSpaceLines(*db).size(), 1u);
}

}  // namespace
