// ezdxf reads the block that each dimension made in memory names, with the picture in it.
#include <gtest/gtest.h>

#include "drawing_queries.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/dimension.hpp"
#include "platform/dxf/dxf.hpp"
#include "support.hpp"

namespace {

AcDbObjectId Append(AcDbDatabase& db, AcDbDimension* dim) {
    AcDbBlockTableRecord* model = OpenModelSpace(db, AcDb::kForWrite);
    AcDbObjectId id;
    model->appendAcDbEntity(id, dim);
    model->close();
    dim->close();
    return id;
}

TEST(DimensionBlockOracle, ezdxf_reads_the_picture_of_ordinates_and_rotated_dimensions) {
    AcDbDatabase db(true, true);
    auto* ordinate = new AcDbOrdinateDimension(true, AcGePoint3d(35.5, 20, 0), AcGePoint3d(40, 60, 0));
    ordinate->setOrigin(AcGePoint3d(10, 0, 0));
    ordinate->setIntVar(278, '.');
    ordinate->setDimdec(2);
    ordinate->setDimzin(8);
    ordinate->setDimtol(true);
    ordinate->setDimtp(0.02);
    ordinate->setDimtm(0.01);
    ordinate->setDimtdec(2);
    ordinate->setDimtfac(0.7);
    Append(db, ordinate);
    auto* rotated = new AcDbRotatedDimension(0.0, AcGePoint3d(0, 0, 0), AcGePoint3d(80, 0, 0),
                                             AcGePoint3d(40, -15, 0));
    rotated->setIntVar(278, '.');
    rotated->setDimdec(1);
    rotated->setDimzin(0);
    Append(db, rotated);

    auto dir = dxftest::TempDir("dimblock");
    auto path = dir / "dims.dxf";
    ASSERT_EQ(dxf::WriteDxfFile(db, path.string(), dxf::WriteOptions{}), Acad::eOk);
    auto r = dxftest::Run(dxftest::Python() + " " + dxftest::Script("ezdxf_dimension_block.py") +
                          " " + dxftest::Quote(path));
    ASSERT_EQ(r.status, 0) << r.output;
    EXPECT_NE(r.output.find("\"errors\": []"), std::string::npos) << r.output;
    // 25.5 with DIMDEC 2 and DIMZIN 8 shows 25.5; +0.02/-0.01 stacks both.
    EXPECT_NE(r.output.find("\\\\A0;25.5{\\\\H0.7x;\\\\S+0.02^-0.01;}"), std::string::npos) << r.output;
    EXPECT_NE(r.output.find("\"lines\": 3, \"polylines\": 0"), std::string::npos) << r.output;
    EXPECT_NE(r.output.find("\"raw\": [\"80.0\"]"), std::string::npos) << r.output;
    EXPECT_NE(r.output.find("\"polylines\": 2"), std::string::npos) << r.output;
    std::filesystem::remove_all(dir);
}

}  // namespace
