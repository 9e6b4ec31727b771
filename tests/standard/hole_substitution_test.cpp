// Holes replaced by their symbols: the marker point's layer picks the type, the smallest circle
// the row, the dashed smallest and largest circles the symbol.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>

#include "batch_fixture.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/win/codepage.hpp"
#include "standard/hole_substitution.hpp"

namespace {

constexpr const wchar_t* kIni = L"D:\\MYTOOL\\CAD\\CAD_hole.ini";
constexpr const wchar_t* kDrawing = L"D:\\WORK\\PLATE.dwg";

class HoleSubstitutionTest : public BatchTest {
protected:
    void SetUp() override {
        BatchTest::SetUp();
        WriteText(kDrawing, L"x");
        for (const wchar_t* name : {L"D1", L"S1", L"BD", L"BS", L"DS", L"SD", L"T3A", L"T3B"}) SaveSymbol(name);
    }
    // A symbol drawing of one line on layer SYMBOL in colour 3, its text the symbol's name.
    static void SaveSymbol(const std::wstring& name) {
        SaveDrawing(L"D:\\HOLES\\" + name + L".dwg", [&](AcDbDatabase& db) {
            Modify(Add(db, new AcDbText(AcGePoint3d(1, 0, 0), name), L"SYMBOL"),
                   [](AcDbEntity* text) { text->setColorIndex(3); });
        });
    }
    void WriteIni(const std::wstring& rows) {
        WriteText(kIni, L"[BLKPATH]\r\nBLKPATH,D:\\HOLES\\\r\n[DASHL]\r\nHIDDEN,DASHED\r\n[TYPE1]\r\nLAYER,H1\r\n" + rows);
    }
    AcDbObjectId Circle(const AcGePoint3d& center, double diameter, bool dashed = false,
                        const std::wstring& layer = L"PART") {
        AcDbObjectId id = Add(*hostDrawing_, new AcDbCircle(center, AcGeVector3d::kZAxis, diameter / 2), layer);
        if (dashed) Modify(id, [](AcDbEntity* circle) { circle->setLinetypeName(L"hidden"); });
        return id;
    }
    static void Modify(const AcDbObjectId& id, const std::function<void(AcDbEntity*)>& change) {
        AcDbEntity* entity = nullptr;
        ASSERT_EQ(acdbOpenAcDbEntity(entity, id, AcDb::kForWrite), Acad::eOk);
        change(entity);
        entity->close();
    }
    void Point(const AcGePoint3d& at, const std::wstring& layer = L"h1") {
        Add(*hostDrawing_, new AcDbPoint(at), layer);
    }
    HoleSubstitution Run() {
        AcArray<tPt> points;
        CollectPoints(hostDrawing_.get(), points);
        HoleSubstitution holes(points, kIni);
        holes.ReadHoleConfig(kIni);
        EXPECT_EQ(holes.SubstituteHoles(hostDrawing_.get(), kDrawing, L"TARGET"), 0);
        return holes;
    }
    // The texts of the inserted symbols, with their layers and colours.
    std::vector<std::wstring> Symbols(const std::wstring& layer = L"") {
        std::vector<std::wstring> names;
        for (const AcDbObjectId& id : ModelSpaceIds(*hostDrawing_)) {
            AcDbEntity* entity = nullptr;
            if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
            if (auto* text = AcDbText::cast(entity); text && (layer.empty() || entity->layer() == layer))
                names.push_back(std::wstring(text->textString()));
            entity->close();
        }
        return names;
    }
    bool Exists(const AcDbObjectId& id) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) return false;
        entity->close();
        return true;
    }
    static constexpr const wchar_t* kRow = L"10,D1,S1,BD,BS,DS,SD\r\n";
};

TEST_F(HoleSubstitutionTest, one_solid_circle_with_marker_becomes_solid_one_symbol_on_its_layer) {
    WriteIni(kRow);
    AcDbObjectId circle = Circle(AcGePoint3d(5, 5, 0), 10);
    Point(AcGePoint3d(5, 5, 0));
    HoleSubstitution holes = Run();
    EXPECT_FALSE(Exists(circle));
    EXPECT_EQ(Symbols(L"PART"), (std::vector<std::wstring>{L"S1"}));
    ASSERT_EQ(holes.inserted.length(), 1);
    AcDbEntity* symbol = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(symbol, holes.inserted[0], AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(symbol->colorIndex(), 3);
    ASSERT_NE(AcDbText::cast(symbol), nullptr);
    EXPECT_EQ(AcDbText::cast(symbol)->position(), AcGePoint3d(6, 5, 0));  // placed at scale 1
    symbol->close();
}

TEST_F(HoleSubstitutionTest, one_dashed_circle_becomes_dash_one_symbol) {
    WriteIni(kRow);
    Circle(AcGePoint3d(0, 0, 0), 10, true);
    Point(AcGePoint3d(0, 0, 0));
    Run();
    EXPECT_EQ(Symbols(), (std::vector<std::wstring>{L"D1"}));
}

struct TwoCircles {
    bool smallDashed, largeDashed;
    const wchar_t* symbol;
};

TEST_F(HoleSubstitutionTest, two_circles_choose_by_smallest_and_largest_dash) {
    for (TwoCircles c : {TwoCircles{true, true, L"BD"}, TwoCircles{false, false, L"BS"},
                         TwoCircles{true, false, L"DS"}, TwoCircles{false, true, L"SD"}}) {
        hostDrawing_ = std::make_unique<AcDbDatabase>(true, true);
        WriteIni(kRow);
        Circle(AcGePoint3d(0, 0, 0), 10, c.smallDashed);
        Circle(AcGePoint3d(0, 0, 0), 16, c.largeDashed);
        Point(AcGePoint3d(0, 0, 0));
        Run();
        EXPECT_EQ(Symbols(), (std::vector<std::wstring>{c.symbol})) << c.symbol;
    }
}

TEST_F(HoleSubstitutionTest, circle_without_marker_point_stays) {
    WriteIni(kRow);
    AcDbObjectId circle = Circle(AcGePoint3d(0, 0, 0), 10);
    Point(AcGePoint3d(0.0011, 0, 0));
    Run();
    EXPECT_TRUE(Exists(circle));
    EXPECT_TRUE(Symbols().empty());
}

TEST_F(HoleSubstitutionTest, marker_within_a_thousandth_matches) {
    WriteIni(kRow);
    Circle(AcGePoint3d(0, 0, 0), 10);
    Point(AcGePoint3d(0.001, 0, 0));
    Run();
    EXPECT_EQ(Symbols().size(), 1u);
}

TEST_F(HoleSubstitutionTest, marker_on_another_types_layer_does_not_match) {
    WriteIni(kRow + std::wstring(L"[TYPE2]\r\nLAYER,H2\r\n12,x,x,x,x,x,x\r\n"));
    AcDbObjectId circle = Circle(AcGePoint3d(0, 0, 0), 10);
    Point(AcGePoint3d(0, 0, 0), L"H2");
    Run();
    EXPECT_TRUE(Exists(circle));
    EXPECT_TRUE(Symbols().empty());
}

TEST_F(HoleSubstitutionTest, three_circles_use_smallest_and_largest_and_make_one_symbol) {
    WriteIni(kRow);
    AcDbObjectId small = Circle(AcGePoint3d(0, 0, 0), 10, true);
    AcDbObjectId middle = Circle(AcGePoint3d(0, 0, 0), 12, false);
    AcDbObjectId large = Circle(AcGePoint3d(0, 0, 0), 16, true);
    Point(AcGePoint3d(0, 0, 0));
    HoleSubstitution holes = Run();
    EXPECT_EQ(Symbols(), (std::vector<std::wstring>{L"BD"}));
    EXPECT_EQ(holes.inserted.length(), 1);
    EXPECT_FALSE(Exists(small));
    EXPECT_TRUE(Exists(middle));
    EXPECT_TRUE(Exists(large));
}

TEST_F(HoleSubstitutionTest, three_circles_drawn_largest_first_take_the_smallest) {
    WriteIni(kRow);
    AcDbObjectId large = Circle(AcGePoint3d(0, 0, 0), 16);
    AcDbObjectId middle = Circle(AcGePoint3d(0, 0, 0), 12);
    AcDbObjectId small = Circle(AcGePoint3d(0, 0, 0), 10, true);
    Point(AcGePoint3d(0, 0, 0));
    Run();
    EXPECT_EQ(Symbols(), (std::vector<std::wstring>{L"DS"}));
    EXPECT_FALSE(Exists(small));
    EXPECT_TRUE(Exists(middle));
    EXPECT_TRUE(Exists(large));
}

TEST_F(HoleSubstitutionTest, circles_whose_centres_lie_up_to_0_001_apart_are_one_hole) {
    // The 10 circle alone is a solid one-circle hole; with the 16 circle it is a two-circle hole.
    struct Row {
        double offset;
        const wchar_t* symbol;
    };
    for (Row row : {Row{0.0009, L"BS"}, Row{0.001, L"BS"}, Row{0.0011, L"S1"}}) {
        hostDrawing_ = std::make_unique<AcDbDatabase>(true, true);
        WriteIni(kRow);
        Circle(AcGePoint3d(0, 0, 0), 10);
        Circle(AcGePoint3d(row.offset, 0, 0), 16);
        Point(AcGePoint3d(0, 0, 0));
        Run();
        EXPECT_EQ(Symbols(), (std::vector<std::wstring>{row.symbol})) << row.offset;
    }
}

TEST_F(HoleSubstitutionTest, same_result_whichever_member_comes_last_in_drawing_order) {
    WriteIni(kRow);
    AcDbObjectId large = Circle(AcGePoint3d(0, 0, 0), 16);
    AcDbObjectId small = Circle(AcGePoint3d(0, 0, 0), 10, true);
    Point(AcGePoint3d(0, 0, 0));
    Run();
    EXPECT_EQ(Symbols(), (std::vector<std::wstring>{L"DS"}));
    EXPECT_FALSE(Exists(small));
    EXPECT_TRUE(Exists(large));
}

TEST_F(HoleSubstitutionTest, largest_circle_of_two_circle_hole_stays_beside_the_symbol) {
    WriteIni(kRow);
    AcDbObjectId small = Circle(AcGePoint3d(0, 0, 0), 10);
    AcDbObjectId large = Circle(AcGePoint3d(0, 0, 0), 16);
    Point(AcGePoint3d(0, 0, 0));
    Run();
    EXPECT_FALSE(Exists(small));
    EXPECT_TRUE(Exists(large));
}

TEST_F(HoleSubstitutionTest, later_matching_row_overwrites_the_name) {
    WriteIni(L"3.0,T3A,T3A,T3A,T3A,T3A,T3A\r\n3.00001,T3B,T3B,T3B,T3B,T3B,T3B\r\n");
    Circle(AcGePoint3d(0, 0, 0), 3.000005);
    Point(AcGePoint3d(0, 0, 0));
    Run();
    EXPECT_EQ(Symbols(), (std::vector<std::wstring>{L"T3B"}));
}

TEST_F(HoleSubstitutionTest, diameter_off_by_more_than_tolerance_does_not_match) {
    WriteIni(L"3.0,T3A,T3A,T3A,T3A,T3A,T3A\r\n");
    Circle(AcGePoint3d(0, 0, 0), 3.00002);
    Point(AcGePoint3d(0, 0, 0));
    Run();
    EXPECT_TRUE(Symbols().empty());
}

TEST_F(HoleSubstitutionTest, diameter_tolerance_bound_is_1e_05_inclusive) {
    struct Row {
        double diameter;
        bool substituted;
    };
    for (Row row : {Row{3.000009, true}, Row{2.999991, true}, Row{3.000011, false}, Row{2.999989, false}}) {
        hostDrawing_ = std::make_unique<AcDbDatabase>(true, true);
        WriteIni(L"3.0,T3A,T3A,T3A,T3A,T3A,T3A\r\n");
        Circle(AcGePoint3d(0, 0, 0), row.diameter);
        Point(AcGePoint3d(0, 0, 0));
        Run();
        EXPECT_EQ(Symbols().size(), row.substituted ? 1u : 0u) << row.diameter;
    }
}

// Of two circles of one diameter the sort exchanges the pair: the later one is the smallest.
TEST_F(HoleSubstitutionTest, of_two_equal_circles_the_later_counts_as_the_smallest) {
    WriteIni(kRow);
    AcDbObjectId earlier = Circle(AcGePoint3d(0, 0, 0), 10, true);
    AcDbObjectId later = Circle(AcGePoint3d(0, 0, 0), 10, false);
    Point(AcGePoint3d(0, 0, 0));
    Run();
    EXPECT_EQ(Symbols(), (std::vector<std::wstring>{L"SD"}));
    EXPECT_TRUE(Exists(earlier));
    EXPECT_FALSE(Exists(later));
}

TEST_F(HoleSubstitutionTest, replaced_circle_is_erased_and_closed) {
    WriteIni(kRow);
    AcDbObjectId circle = Circle(AcGePoint3d(0, 0, 0), 10);
    Point(AcGePoint3d(0, 0, 0));
    Run();
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(entity, circle, AcDb::kForRead, true), Acad::eOk);
    EXPECT_TRUE(entity->isErased());
    entity->close();
}

TEST_F(HoleSubstitutionTest, missing_library_file_is_reported_and_circle_stays) {
    WriteIni(L"10,NONE,NONE,NONE,NONE,NONE,NONE\r\n");
    AcDbObjectId circle = Circle(AcGePoint3d(0, 0, 0), 10);
    Point(AcGePoint3d(0, 0, 0));
    testing::internal::CaptureStdout();
    Run();
    std::wstring printed = WideFromUtf8(testing::internal::GetCapturedStdout());
    EXPECT_NE(printed.find(L"\n找不到换孔文件 D:\\HOLES\\NONE.dwg"), std::wstring::npos);
    EXPECT_TRUE(Exists(circle));
    EXPECT_NE(CgLog().find(L"换孔文件未找到\n"), std::wstring::npos);
}

TEST_F(HoleSubstitutionTest, drawing_without_tables_gives_100_and_without_a_model_space_16) {
    HoleSubstitution holes(AcArray<tPt>(), kIni);
    AcDbDatabase empty(false, true);
    EXPECT_EQ(holes.SubstituteHoles(&empty, kDrawing, L"TARGET"), 100);
    AcDbBlockTable* table = nullptr;
    ASSERT_EQ(hostDrawing_->getBlockTable(table, AcDb::kForRead), Acad::eOk);
    AcDbBlockTableRecord* model = nullptr;
    ASSERT_EQ(table->getAt(L"*Model_Space", model, AcDb::kForWrite), Acad::eOk);
    table->close();
    model->erase();
    model->close();
    EXPECT_EQ(holes.SubstituteHoles(hostDrawing_.get(), kDrawing, L"TARGET"), 16);
}

TEST_F(HoleSubstitutionTest, missing_drawing_file_changes_nothing) {
    WriteIni(kRow);
    AcDbObjectId circle = Circle(AcGePoint3d(0, 0, 0), 10);
    Point(AcGePoint3d(0, 0, 0));
    AcArray<tPt> points;
    CollectPoints(hostDrawing_.get(), points);
    HoleSubstitution holes(points, kIni);
    holes.ReadHoleConfig(kIni);
    testing::internal::CaptureStdout();
    holes.SubstituteHoles(hostDrawing_.get(), L"D:\\WORK\\MISSING.dwg", L"T");
    std::wstring printed = WideFromUtf8(testing::internal::GetCapturedStdout());
    EXPECT_NE(printed.find(L"\n未指到文件 D:\\WORK\\MISSING.dwg"), std::wstring::npos);
    EXPECT_TRUE(Exists(circle));
    EXPECT_EQ(holes.layerName, L"T");
}

TEST_F(HoleSubstitutionTest, insertion_is_logged_step_by_step) {
    WriteIni(kRow);
    Circle(AcGePoint3d(0, 0, 0), 10);
    Point(AcGePoint3d(0, 0, 0));
    Run();
    std::wstring log = CgLog();
    size_t found = log.find(L"10.000000换孔文件已找到,开始插入\n开始插入块\nD:\\HOLES\\S1.dwg插入dwg D:\\HOLES\\S1.dwg\n");
    ASSERT_NE(found, std::wstring::npos) << Utf8FromWide(log);
    EXPECT_NE(log.find(L"孔文件正确插入\n1\n0取颜色正确\n清除pary\n", found), std::wstring::npos) << Utf8FromWide(log);
}

// The scan through the grid of centres against the plain scan over all circles, on random
// plates: holes of one to three circles whose centres scatter around the 0.001 that makes them
// one hole, markers on the type's layer, on another layer or missing, in random drawing order.
class HoleCentreWalks : public HoleSubstitutionTest {
protected:
    void TearDown() override {
        HoleCentreWalk = ClusterWalk::Indexed;
        HoleSubstitutionTest::TearDown();
    }
    static std::string Bits(double v) {
        char text[40];
        std::snprintf(text, sizeof text, "%a", v);
        return text;
    }
    std::vector<std::string> SubstituteRandomPlate(ClusterWalk walk, unsigned seed) {
        hostDrawing_ = std::make_unique<AcDbDatabase>(true, true);
        WriteIni(L"10,D1,S1,BD,BS,DS,SD\r\n8,S1,D1,BS,BD,SD,DS\r\n");
        std::mt19937 rng(seed);
        auto uniform = [&](double low, double high) { return std::uniform_real_distribution<double>(low, high)(rng); };
        struct Piece {
            AcGePoint3d at;
            double diameter;  // 0: the marker point
            bool dashed;
            std::wstring layer;
        };
        std::vector<Piece> pieces;
        for (int site = 0; site < 150; ++site) {
            AcGePoint3d centre((site % 15) * 20.0 + uniform(0, 0.01), (site / 15) * 20.0, 0.0);
            int circles = 1 + static_cast<int>(rng() % 3);
            for (int c = 0; c < circles; ++c) {
                AcGePoint3d at = centre + AcGeVector3d(uniform(-0.0008, 0.0008), uniform(-0.0008, 0.0008), 0);
                double diameter = c == 0 ? (rng() % 2 ? 10.0 : 8.0) : 12.0 + 4.0 * c;
                pieces.push_back({at, diameter, rng() % 3 == 0, L"PART"});
            }
            if (int marker = static_cast<int>(rng() % 4); marker < 3)
                pieces.push_back({centre, 0.0, false, marker == 2 ? L"h2" : L"h1"});
        }
        // A circle whose centre has no defined z stands at every centre: the plain scan keeps it
        // in every group, since a distance from it is undefined and so not above 0.001.
        pieces.push_back({AcGePoint3d(40.0, 40.0, std::nan("")), 10.0, false, L"PART"});
        std::shuffle(pieces.begin(), pieces.end(), rng);
        for (const Piece& piece : pieces) {
            if (piece.diameter == 0.0) Point(piece.at, piece.layer);
            else Circle(piece.at, piece.diameter, piece.dashed, piece.layer);
        }
        HoleCentreWalk = walk;
        Run();
        std::vector<std::string> entities;
        for (const AcDbObjectId& id : ModelSpaceIds(*hostDrawing_)) {
            AcDbEntity* entity = nullptr;
            if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
            std::string text = Utf8FromWide(entity->layer()) + " " + std::to_string(entity->colorIndex());
            if (auto* circle = AcDbCircle::cast(entity))
                text += " circle " + Bits(circle->center().x) + "," + Bits(circle->center().y) + " " + Bits(circle->radius());
            if (auto* symbol = AcDbText::cast(entity))
                text += " text " + Utf8FromWide(symbol->textString()) + " " + Bits(symbol->position().x) + "," +
                        Bits(symbol->position().y);
            entity->close();
            entities.push_back(text);
        }
        return entities;
    }
};

TEST_F(HoleCentreWalks, grid_scan_substitutes_random_plates_entity_by_entity_as_the_plain_scan) {
    size_t symbols = 0;
    for (unsigned seed = 1; seed <= 4; ++seed) {
        std::vector<std::string> plain = SubstituteRandomPlate(ClusterWalk::Plain, seed);
        std::vector<std::string> grid = SubstituteRandomPlate(ClusterWalk::Indexed, seed);
        ASSERT_EQ(plain.size(), grid.size()) << "seed " << seed;
        for (size_t i = 0; i < plain.size(); ++i) ASSERT_EQ(plain[i], grid[i]) << "seed " << seed << ", entity " << i;
        symbols += static_cast<size_t>(std::count_if(plain.begin(), plain.end(),
                                                     [](const std::string& e) { return e.find(" text ") != std::string::npos; }));
    }
    EXPECT_GT(symbols, 150u);  // many holes are replaced, so the comparison covers the substitution
}

}  // namespace
