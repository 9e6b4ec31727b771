#include "config/read_config_file.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "module_fixture.hpp"

namespace {

using Fields = std::vector<std::string>;

class ReadConfigFileTest : public ModuleTest {
protected:
    bool Load(const std::string& bytes) {
        WriteAt(L"D:\\t.csv", bytes);
        return reader.Load("D:\\t.csv");
    }
    ReadConfigFile reader;
};

TEST_F(ReadConfigFileTest, AMissingFileDoesNotLoad) {
    EXPECT_FALSE(reader.Load("D:\\none.csv"));
    EXPECT_EQ(reader.path, "D:\\none.csv");
}

TEST_F(ReadConfigFileTest, EveryCommaCutsAndEmptyFieldsStay) {
    ASSERT_TRUE(Load("a,b,c\n,x,\n"));
    ASSERT_EQ(reader.rows.size(), 2u);
    EXPECT_EQ(reader.rows[1], (Fields{"", "x", ""}));
}

TEST_F(ReadConfigFileTest, ShortRowsAreFilledToTheHeaderWidthAndLongRowsStayLong) {
    ASSERT_TRUE(Load("a,b,c\r\n1\r\n1,2,3,4\r\n"));
    EXPECT_EQ(reader.rows[1], (Fields{"1", "", ""}));
    EXPECT_EQ(reader.rows[2], (Fields{"1", "2", "3", "4"}));
}

TEST_F(ReadConfigFileTest, EmptyLinesAreNoRows) {
    ASSERT_TRUE(Load("\r\na,b\r\n\r\n1,2\r\n\n"));
    EXPECT_EQ(reader.rows.size(), 2u);
    EXPECT_EQ(reader.Column("b"), (Fields{"2"}));
}

TEST_F(ReadConfigFileTest, FieldsAreNotTrimmedNorUnquoted) {
    ASSERT_TRUE(Load("a, b\n\"1,2\", 3 \n"));
    EXPECT_EQ(reader.Column(" b"), (Fields{"2\""}));
    EXPECT_TRUE(reader.Column("b").empty());
}

TEST_F(ReadConfigFileTest, ADoubledHeaderTakesTheLastColumn) {
    ASSERT_TRUE(Load("h,h\n1,2\n"));
    EXPECT_EQ(reader.Column("h"), (Fields{"2"}));
}

TEST_F(ReadConfigFileTest, AnUnknownHeaderOrAHeaderOnlyGiveNothing) {
    ASSERT_TRUE(Load("a,b\n"));
    EXPECT_TRUE(reader.Column("a").empty());
    ASSERT_TRUE(Load("a,b\n1,2\n"));
    EXPECT_TRUE(reader.Column("c").empty());
    EXPECT_TRUE(reader.Column("A").empty());
}

TEST_F(ReadConfigFileTest, LoadingAgainReplacesTheRows) {
    ASSERT_TRUE(Load("a\n1\n2\n"));
    reader.Close();
    ASSERT_TRUE(Load("a\n3\n"));
    EXPECT_EQ(reader.Column("a"), (Fields{"3"}));
}

}  // namespace
