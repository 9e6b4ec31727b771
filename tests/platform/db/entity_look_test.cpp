// The look an entity shares with others (layer, linetype, plot style, colour, linetype scale,
// lineweight): every setter answers as plain fields of the same values would, and entities of
// one look hold the one kept copy of it.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "platform/db/line.hpp"

namespace {

// The six properties as plain fields, set as the entity's setters set them.
struct Plain {
    std::wstring layer = L"0", linetype = L"BYLAYER", plotStyle;
    AcCmColor color;
    double scale = 1.0;
    AcDb::LineWeight weight = AcDb::kLnWtByLayer;
};

void ExpectSame(const AcDbEntity& e, const Plain& p) {
    EXPECT_EQ(e.layer(), p.layer);
    EXPECT_EQ(e.linetype(), p.linetype);
    EXPECT_EQ(e.plotStyleName(), p.plotStyle);
    EXPECT_EQ(e.color(), p.color);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(e.linetypeScale()), std::bit_cast<std::uint64_t>(p.scale));
    EXPECT_EQ(e.lineWeight(), p.weight);
}

TEST(EntityLook, SettersAnswerAsPlainFieldsInAnyOrder) {
    const std::wstring names[] = {L"0", L"A", L"B", L"DASHED", L""};
    const double scales[] = {1.0, 0.5, 0.0, -0.0, 2.0};
    std::mt19937 random(7);
    for (int round = 0; round < 50; ++round) {
        AcDbLine line;
        Plain plain;
        for (int step = 0; step < 40; ++step) {
            const std::wstring& name = names[random() % 5];
            switch (random() % 6) {
                case 0: line.setLayerName(name); plain.layer = name; break;
                case 1: line.setLinetypeName(name); plain.linetype = name; break;
                case 2: line.setPlotStyleName(name); plain.plotStyle = name; break;
                case 3: {
                    AcCmColor color;
                    color.setColorIndex(static_cast<std::uint16_t>(random() % 257));
                    if (random() % 2) color.setTrueColor(static_cast<std::uint32_t>(random()));
                    if (random() % 2) color.setColorName(name);
                    line.setColor(color);
                    plain.color = color;
                    break;
                }
                case 4: {
                    const double scale = scales[random() % 5];
                    ASSERT_EQ(line.setLinetypeScale(scale), Acad::eOk);
                    plain.scale = scale;
                    break;
                }
                default: {
                    const auto weight = static_cast<AcDb::LineWeight>(static_cast<int>(random() % 30) - 3);
                    line.setLineWeight(weight);
                    plain.weight = weight;
                }
            }
            ExpectSame(line, plain);
        }
        AcDbLine copy;
        copy.setPropertiesFrom(&line);
        ExpectSame(copy, plain);
    }
}

TEST(EntityLook, RefusedScaleLeavesTheLookAsItWas) {
    AcDbLine line;
    line.setLayerName(L"A");
    EXPECT_EQ(line.setLinetypeScale(-1.0), Acad::eBadLinetypeScale);
    EXPECT_EQ(line.linetypeScale(), 1.0);
    EXPECT_EQ(line.layer(), L"A");
}

TEST(EntityLook, EntitiesOfOneLookHoldOneCopy) {
    AcDbLine a, b, c;
    a.setLayerName(L"PLATES");
    a.setColorIndex(3);
    b.setColorIndex(3);
    b.setLayerName(L"PLATES");
    c.setLayerName(L"PLATES");
    EXPECT_EQ(&a.look(), &b.look());
    EXPECT_NE(&a.look(), &c.look());
    AcDbLine fresh;
    EXPECT_EQ(&fresh.look(), &AcDbLine().look());
}

TEST(EntityLook, ScalesAreOneLookOnlyBitForBit) {
    AcDbLine zero, negativeZero, nan, nanAgain;
    zero.setLinetypeScale(0.0);
    negativeZero.setLinetypeScale(-0.0);
    EXPECT_NE(&zero.look(), &negativeZero.look());
    EXPECT_TRUE(std::signbit(negativeZero.linetypeScale()));
    AcDbEntityLook look;
    look.linetypeScale = std::numeric_limits<double>::quiet_NaN();
    nan.setLook(look);
    nanAgain.setLook(look);
    EXPECT_EQ(&nan.look(), &nanAgain.look());
    EXPECT_TRUE(SameLook(nan.look(), look));
}

}  // namespace
