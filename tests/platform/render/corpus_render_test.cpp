// Every DXF drawing of the shared corpus renders without an error.
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/render/picture.hpp"

namespace {

using namespace rendertest;

const fs::path kCorpus = "/work/shared/corpus/dxf";

std::vector<std::string> CorpusFiles() {
    std::vector<std::string> names;
    if (!fs::exists(kCorpus)) return names;
    for (const auto& entry : fs::directory_iterator(kCorpus)) names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

class CorpusRender : public testing::TestWithParam<std::string> {};

TEST_P(CorpusRender, renders_to_png_without_error) {
    tavrik::render::Options options;
    options.width = 400;
    options.height = 300;
    fs::path out = TempDir() / (GetParam() + ".png");
    std::string error;
    ASSERT_EQ(RenderFile(kCorpus / GetParam(), out, options, error), 0) << error;
    Picture picture(out);
    ASSERT_TRUE(picture.ok());
    EXPECT_EQ(picture.width(), 400);
}

INSTANTIATE_TEST_SUITE_P(Corpus, CorpusRender, testing::ValuesIn(CorpusFiles()),
                         [](const testing::TestParamInfo<std::string>& info) {
                             std::string name = info.param;
                             for (auto& c : name)
                                 if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                             return name;
                         });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(CorpusRender);

}  // namespace
