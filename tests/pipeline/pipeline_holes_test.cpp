// The hole substitution inside the pipeline: run only for drawings with points, its
// configuration read and logged whatever SUBCIR says, the drawing changed only with SUBCIR on.
#include <gtest/gtest.h>

#include <stdexcept>

#include "batch_fixture.hpp"
#include "platform/db/point_entity.hpp"

namespace {

class PipelineHoles : public BatchTest {
protected:
    const std::wstring path_ = HandOff(L"P-1.dxf");

    void SetUp() override {
        BatchTest::SetUp();
        SaveDrawing(L"D:\\HOLES\\S1.dwg", [](AcDbDatabase& db) {
            Add(db, new AcDbText(AcGePoint3d(0, 0, 0), L"SYMBOL"), L"LIB");
        });
    }
    void WriteHoleIni(const std::wstring& rows) {
        WriteText(L"D:\\CZ\\config\\CAD\\CAD_hole.ini",
                  L"[BLKPATH]\r\nBLKPATH,D:\\HOLES\\\r\n[TYPE1]\r\nLAYER,H1\r\n" + rows);
    }
    void SaveHoleExport() {
        SaveDrawing(path_, [](AcDbDatabase& db) {
            AddSheet(db, AcGePoint3d(0, 0, 0));
            Add(db, new AcDbCircle(AcGePoint3d(100, 100, 0), AcGeVector3d::kZAxis, 5.0), L"PART");
            Add(db, new AcDbPoint(AcGePoint3d(100, 100, 0)), L"H1");
        });
    }
    // Circles of radius 5 and texts in the saved drawing.
    std::pair<int, int> HoleCirclesAndSymbols() {
        auto db = ReadDrawing(path_);
        std::pair<int, int> counts{0, 0};
        for (const AcDbObjectId& id : ModelSpaceIds(*db)) {
            AcDbEntity* entity = nullptr;
            acdbOpenAcDbEntity(entity, id, AcDb::kForRead);
            if (auto* circle = AcDbCircle::cast(entity); circle && circle->radius() == 5.0 && circle->center().x == 100)
                ++counts.first;
            if (auto* text = AcDbText::cast(entity); text && text->textString() == L"SYMBOL") ++counts.second;
            entity->close();
        }
        return counts;
    }
};

TEST_F(PipelineHoles, drawing_without_points_has_no_hole_lines) {
    WriteHoleIni(L"10,S1,S1,S1,S1,S1,S1\r\n");
    SaveExport(path_);
    ProcessDrawing(path_);
    EXPECT_EQ(CgLog().find(L"换孔"), std::wstring::npos);
    EXPECT_EQ(CgLog().find(L"StartreRead"), std::wstring::npos);
}

TEST_F(PipelineHoles, subcir_on_replaces_the_marked_hole) {
    WriteHoleIni(L"10,S1,S1,S1,S1,S1,S1\r\n");
    SaveHoleExport();
    ProcessDrawing(path_);
    EXPECT_EQ(HoleCirclesAndSymbols(), std::make_pair(0, 1));
    EXPECT_NE(CgLog().find(L"换孔\nStartreRead开始处理 D:\\CZ\\config\\CAD\\CAD_hole.ini\n"), std::wstring::npos);
    EXPECT_NE(CgLog().find(L"准备 换孔\n1\n"), std::wstring::npos);
}

TEST_F(PipelineHoles, subcir_zero_with_points_reads_and_logs_but_changes_nothing) {
    std::wstring standard = DefaultStandard();
    standard.replace(standard.find(L"SUBCIR,1"), 8, L"SUBCIR,0");
    WriteText(L"D:\\CZ\\config\\CAD\\CAD_standard.ini", standard);
    WriteHoleIni(L"10,S1,S1,S1,S1,S1,S1\r\n");
    SaveHoleExport();
    ProcessDrawing(path_);
    EXPECT_EQ(HoleCirclesAndSymbols(), std::make_pair(1, 0));
    EXPECT_NE(CgLog().find(L"打开文件 D:\\CZ\\config\\CAD\\CAD_hole.ini\n"), std::wstring::npos);
    EXPECT_NE(CgLog().find(L"准备 换孔\n0\n"), std::wstring::npos);
}

TEST_F(PipelineHoles, short_row_of_the_hole_file_escapes_the_pipeline) {
    WriteHoleIni(L"10,S1,S1\r\n");
    SaveHoleExport();
    EXPECT_THROW(ProcessDrawing(path_), std::invalid_argument);
    // The drawing stays open as the working database, so that the host can name it.
    ASSERT_NE(Module().CurrentDatabase, nullptr);
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), Module().CurrentDatabase);
    EXPECT_NE(Module().CurrentDatabase->filename().find(L"P-1.dxf"), std::wstring::npos);
}

}  // namespace
