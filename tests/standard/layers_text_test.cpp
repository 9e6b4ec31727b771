// The barcode text style: texts between two asterisks get the style "bar".
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "drawing_queries.hpp"
#include "standard/layers_text.hpp"

namespace {

const wchar_t* const kBarcodePattern = L"`**`*";

class TextStyle : public BatchTest {
protected:
    AcDbDatabase& Drawing() { return *hostDrawing_; }
    AcDbObjectId AddText(const std::wstring& text) {
        return Add(Drawing(), new AcDbText(AcGePoint3d(0, 0, 0), text, Drawing().textstyle()));
    }
    AcDbObjectId AddMText(const std::wstring& contents) {
        auto* mtext = new AcDbMText;
        mtext->setContents(contents);
        mtext->setTextStyle(Drawing().textstyle());
        return Add(Drawing(), mtext);
    }
    int ApplyBarcodeStyle() { return ApplyTextStyle(L"bar", kBarcodePattern, &Drawing()); }
};

TEST_F(TextStyle, TextBetweenTwoAsterisksGetsTheStyleBar) {
    AddTextStyle(Drawing(), L"bar");
    AcDbObjectId barcode = AddText(L"*P-1*");
    EXPECT_EQ(ApplyBarcodeStyle(), 0);
    EXPECT_EQ(TextStyleName(barcode), L"bar");
}

TEST_F(TextStyle, TextWithoutTheAsterisksKeepsItsStyle) {
    AddTextStyle(Drawing(), L"bar");
    AcDbObjectId plain = AddText(L"P-1");
    AcDbObjectId leading = AddText(L"*P-1");
    AcDbObjectId trailing = AddText(L"P-1*");
    EXPECT_EQ(ApplyBarcodeStyle(), 0);
    EXPECT_EQ(TextStyleName(plain), L"Standard");
    EXPECT_EQ(TextStyleName(leading), L"Standard");
    EXPECT_EQ(TextStyleName(trailing), L"Standard");
}

TEST_F(TextStyle, MultiLineTextsAreMatchedByTheirContents) {
    AddTextStyle(Drawing(), L"bar");
    AcDbObjectId barcode = AddMText(L"*P-2*");
    AcDbObjectId plain = AddMText(L"P-2");
    EXPECT_EQ(ApplyBarcodeStyle(), 0);
    EXPECT_EQ(TextStyleName(barcode), L"bar");
    EXPECT_EQ(TextStyleName(plain), L"Standard");
}

TEST_F(TextStyle, MissingStyleBarLeavesBarcodeTextsAsTheyAreAndAnswers16) {
    AcDbObjectId barcode = AddText(L"*P-1*");
    AcDbObjectId mtext = AddMText(L"*P-2*");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(ApplyBarcodeStyle(), 16);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(TextStyleName(barcode), L"Standard");
    EXPECT_EQ(TextStyleName(mtext), L"Standard");
}

}  // namespace
