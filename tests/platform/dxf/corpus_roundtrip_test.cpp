// Every DXF drawing of the shared corpus goes through the codec and comes out as ezdxf saw it.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "platform/db/entity.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "support.hpp"
#include "shared_folder.hpp"

namespace {

namespace fs = std::filesystem;
const fs::path kCorpus = SharedFile("corpus/dxf");

std::vector<std::string> CorpusFiles() {
    std::vector<std::string> names;
    if (!fs::exists(kCorpus)) return names;
    for (const auto& entry : fs::directory_iterator(kCorpus)) names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

// Per entity kind: count, and each entity's handle and layer, as our reader sees a file.
std::string OwnView(const fs::path& path) {
    AcDbDatabase db(false, true);
    if (dxf::ReadDxfFile(db, path.string()) != Acad::eOk) return "unreadable";
    std::map<std::string, std::vector<std::string>> kinds;
    for (const auto& stub : db.stubs())
        if (auto* e = AcDbEntity::cast(stub.object.get()))
            kinds[dxf::Utf8(e->isA()->name())].push_back(dxf::HandleText(stub.handle) + " " +
                                                        dxf::Utf8(e->layer()));
    std::string view;
    for (const auto& [kind, rows] : kinds) {
        view += kind + " " + std::to_string(rows.size()) + "\n";
        for (const auto& r : rows) view += "  " + r + "\n";
    }
    return view;
}

class CorpusRoundTrip : public testing::TestWithParam<std::string> {};

TEST_P(CorpusRoundTrip, WrittenDrawingReadsInEzdxfAsTheOriginal) {
    fs::path original = kCorpus / GetParam();
    fs::path dir = dxftest::TempDir("corpus");
    fs::path written = dir / (fs::path(GetParam()).stem().string() + ".dxf");
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfFile(db, original.string()), Acad::eOk) << dxf::Utf8(db.lastError());
    ASSERT_EQ(dxf::WriteDxfFile(db, written.string(), {}), Acad::eOk) << dxf::Utf8(db.lastError());

    auto result = dxftest::Run(dxftest::Python() + " " + dxftest::Script("ezdxf_view.py") +
                               " --compare " + dxftest::Quote(original) + " " + dxftest::Quote(written));
    if (result.status == 3) {
        // ezdxf cannot read the original: our own reader is the judge, and a second
        // conversion must give the same bytes.
        EXPECT_EQ(OwnView(original), OwnView(written));
        fs::path again = dir / ("again_" + written.filename().string());
        AcDbDatabase db2(false, true);
        ASSERT_EQ(dxf::ReadDxfFile(db2, written.string()), Acad::eOk);
        ASSERT_EQ(dxf::WriteDxfFile(db2, again.string(), {}), Acad::eOk);
        EXPECT_EQ(dxftest::ReadFile(written), dxftest::ReadFile(again));
    } else {
        EXPECT_EQ(result.status, 0) << result.output;
    }
    fs::remove_all(dir);
}

INSTANTIATE_TEST_SUITE_P(Corpus, CorpusRoundTrip, testing::ValuesIn(CorpusFiles()),
                         [](const testing::TestParamInfo<std::string>& info) {
                             std::string name;
                             for (char c : info.param) name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
                             return name;
                         });

}  // namespace
