// Every drawing of the shared corpus, DXF and DWG, renders without an error.
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/dxf/model.hpp"
#include "platform/render/picture.hpp"
#include "shared_folder.hpp"

namespace {

using namespace rendertest;

const fs::path kCorpus = SharedFile("corpus");

// The corpus's drawings as "dxf/NAME" and "dwg/NAME".
std::vector<std::string> CorpusFiles() {
    std::vector<std::string> names;
    for (const char* folder : {"dxf", "dwg"}) {
        if (!fs::exists(kCorpus / folder)) continue;
        for (const auto& entry : fs::directory_iterator(kCorpus / folder))
            names.push_back(std::string(folder) + "/" + entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

class CorpusRender : public testing::TestWithParam<std::string> {};

TEST_P(CorpusRender, renders_to_png_without_error) {
    tavrik::render::Options options;
    options.width = 400;
    options.height = 300;
    fs::path out = TempDir() / (fs::path(GetParam()).filename().string() + ".png");
    AcDbDatabase db(false, true);
    ASSERT_EQ(db.readDwgFile(dxf::Wide((kCorpus / GetParam()).string()).c_str()), Acad::eOk) << GetParam();
    std::string error;
    ASSERT_EQ(render::RenderDrawing(db, out.string(), options, error), 0) << error;
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
