// The drawings made for the renderer (every entity kind, a Chinese text, a dimension with a
// tolerance, nested blocks with attributes, hatches) drawn as the reference pictures show
// them. The references were looked at and found right; a change of the renderer that moves
// more pixels than the tolerance shows here. TAVRIK_UPDATE_RENDER_REFERENCES=1 rewrites them.
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/render/picture.hpp"

namespace {

using namespace rendertest;

const fs::path kDrawings = fs::path(TAVRIK_SOURCE_DIR) / "tests/platform/render/drawings";
const fs::path kReferences = fs::path(TAVRIK_SOURCE_DIR) / "tests/platform/render/reference";

// A pixel differs when a channel is off by more than this; a picture matches when at most
// this fraction of its pixels differ (anti-aliasing of another cairo or font build); a
// thousandth of 480 x 360 is 172 pixels, less than a line across the picture.
constexpr int kChannelTolerance = 64;
constexpr double kDifferingPixelTolerance = 0.001;

double DifferingFraction(const Picture& a, const Picture& b) {
    int differing = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            Pixel p = a.at(x, y), q = b.at(x, y);
            if (std::abs(p.r - q.r) > kChannelTolerance || std::abs(p.g - q.g) > kChannelTolerance ||
                std::abs(p.b - q.b) > kChannelTolerance)
                ++differing;
        }
    }
    return static_cast<double>(differing) / (a.width() * a.height());
}

class ReferencePicture : public testing::TestWithParam<std::string> {};

TEST_P(ReferencePicture, matches_reference_within_a_thousandth_of_pixels) {
    fs::path out = TempDir() / (GetParam() + ".png");
    tavrik::render::Options options;
    options.width = 480;
    options.height = 360;
    options.background = tavrik::render::Background::kLight;
    std::string error;
    ASSERT_EQ(RenderFile(kDrawings / (GetParam() + ".dxf"), out, options, error), 0) << error;
    fs::path reference = kReferences / (GetParam() + ".png");
    if (std::getenv("TAVRIK_UPDATE_RENDER_REFERENCES")) {
        fs::create_directories(kReferences);
        fs::copy_file(out, reference, fs::copy_options::overwrite_existing);
        GTEST_SKIP() << "reference rewritten: " << reference;
    }
    Picture drawn(out), expected(reference);
    ASSERT_TRUE(drawn.ok());
    ASSERT_TRUE(expected.ok()) << reference;
    ASSERT_EQ(drawn.width(), expected.width());
    ASSERT_EQ(drawn.height(), expected.height());
    EXPECT_LE(DifferingFraction(drawn, expected), kDifferingPixelTolerance);
}

INSTANTIATE_TEST_SUITE_P(Scenes, ReferencePicture,
                         testing::Values("curves", "texts", "mtext_codes", "blocks", "dimension", "hatches"));

}  // namespace
