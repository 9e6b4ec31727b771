// The run report kept on disk while the batch runs: records come back as they were put away,
// Cg.log's lines go to the drawing that they follow, and the report written from the scratch
// folder is the one written from the same drawings held in memory.
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "platform/win/codepage.hpp"
#include "report_scratch.hpp"

namespace fs = std::filesystem;

namespace {

class ReportScratchTest : public ::testing::Test {
protected:
    void SetUp() override {
        SetHostCodePage(936);
        const char* tmp = std::getenv("TMPDIR");
        scratch.folder = fs::path(tmp ? tmp : "/tmp") /
                         ("report-scratch-test-" + std::to_string(::getpid()) + "-" +
                          ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(scratch.folder);
        fs::create_directories(scratch.folder);
    }
    void TearDown() override { fs::remove_all(scratch.folder); }

    void WriteBytes(const fs::path& file, const std::string& bytes) {
        std::ofstream out(file, std::ios::binary);
        out << bytes;
    }
    // Cg.log as the module writes it: ANSI (GBK) lines ending in CR LF.
    void WriteLog(const fs::path& file, const std::vector<std::wstring>& lines, const std::string& ahead = "") {
        std::string bytes = ahead;
        for (const std::wstring& line : lines) bytes += AnsiFromWide(line) + "\r\n";
        WriteBytes(file, bytes);
    }

    ReportScratch scratch;
};

DrawingSummary Summary(int entities, const std::vector<std::string>& texts) {
    DrawingSummary summary;
    summary.version = "AC1018";
    summary.codePage = "ANSI_936";
    summary.extents = tavrik::render::Window{-1.5, 2.0, 300.25, 210.0};
    summary.entitiesByType = {{"LINE", entities}, {"POINT", 3}};
    summary.entitiesByLayer = {{"0", 1}, {"轮廓", entities + 2}};
    summary.blocks = {{"*D1", 7}};
    summary.texts = texts;
    return summary;
}

DrawingReport Drawing(const fs::path& folder, int index, bool finished) {
    DrawingReport d;
    d.name = "MP2305-" + std::to_string(index + 1) + ".dxf";
    d.file = fs::path("/prefix/hand-off") / d.name;
    d.finished = finished;
    d.seconds = 0.25 * (index + 1);
    d.before = Summary(10 + index, {"模板 " + std::to_string(index), "φ12"});
    if (finished) {
        d.after = Summary(20 + index, {"正确 " + std::to_string(index)});
        d.after.extents.reset();
        d.previewAfter = folder / ("after-" + std::to_string(index) + ".png");
        d.dimensionsPerView = {{"FRONT", 2 + index}, {"TOP", -1}};
        d.holesReplaced = index;
    }
    d.previewBefore = folder / ("before-" + std::to_string(index) + ".png");
    return d;
}

DrawingFacts Facts(int index) {
    DrawingFacts facts;
    facts.points = {{1.0, 2.0, 0.0}, {3.5, -4.0, 1.0 * index}};
    facts.dimensionCentres = {{10.0, 20.0, 0.0}};
    facts.viewBoxes["FRONT"] = {0.0, 0.0, 100.0, 50.0 + index};
    return facts;
}

void ExpectSameSummary(const DrawingSummary& a, const DrawingSummary& b) {
    EXPECT_EQ(a.version, b.version);
    EXPECT_EQ(a.codePage, b.codePage);
    ASSERT_EQ(a.extents.has_value(), b.extents.has_value());
    if (a.extents) {
        EXPECT_EQ(a.extents->x0, b.extents->x0);
        EXPECT_EQ(a.extents->y0, b.extents->y0);
        EXPECT_EQ(a.extents->x1, b.extents->x1);
        EXPECT_EQ(a.extents->y1, b.extents->y1);
    }
    EXPECT_EQ(a.entitiesByType, b.entitiesByType);
    EXPECT_EQ(a.entitiesByLayer, b.entitiesByLayer);
    EXPECT_EQ(a.blocks, b.blocks);
    EXPECT_EQ(a.texts, b.texts);
}

void ExpectSamePoints(const std::vector<AcGePoint3d>& a, const std::vector<AcGePoint3d>& b) {
    ASSERT_EQ(a.size(), b.size());
    for (size_t i = 0; i < a.size(); ++i) {
        EXPECT_EQ(a[i].x, b[i].x);
        EXPECT_EQ(a[i].y, b[i].y);
        EXPECT_EQ(a[i].z, b[i].z);
    }
}

std::pair<std::string, std::string> Written(const RunReport& report, const std::function<bool(DrawingReport&)>& next) {
    std::ostringstream json, html;
    WriteReportStreams(json, html, report, next);
    return {json.str(), html.str()};
}

std::function<bool(DrawingReport&)> FromMemory(const std::vector<DrawingReport>& drawings) {
    return [&drawings, i = size_t{0}](DrawingReport& d) mutable {
        if (i == drawings.size()) return false;
        d = drawings[i++];
        return true;
    };
}

TEST_F(ReportScratchTest, record_gives_back_every_field_chinese_texts_and_facts_included) {
    DrawingReport put = Drawing(scratch.folder, 1, true);
    ASSERT_TRUE(StoreDrawingRecord(scratch.Record(0), put, Facts(1)));
    DrawingReport got;
    DrawingFacts facts;
    ASSERT_TRUE(LoadDrawingRecord(scratch.Record(0), got, facts));
    EXPECT_EQ(got.name, put.name);
    EXPECT_EQ(got.file, put.file);
    EXPECT_EQ(got.finished, put.finished);
    EXPECT_EQ(got.seconds, put.seconds);
    ExpectSameSummary(got.before, put.before);
    ExpectSameSummary(got.after, put.after);
    EXPECT_EQ(got.previewBefore, put.previewBefore);
    EXPECT_EQ(got.previewAfter, put.previewAfter);
    EXPECT_EQ(got.dimensionsPerView, put.dimensionsPerView);
    EXPECT_EQ(got.holesReplaced, put.holesReplaced);
    ExpectSamePoints(facts.points, Facts(1).points);
    ExpectSamePoints(facts.insertPositions, {});
    ExpectSamePoints(facts.dimensionCentres, Facts(1).dimensionCentres);
    ASSERT_EQ(facts.viewBoxes.size(), 1u);
    EXPECT_EQ(facts.viewBoxes["FRONT"].y1, 51.0);
}

TEST_F(ReportScratchTest, record_cut_short_or_missing_is_refused) {
    ASSERT_TRUE(StoreDrawingRecord(scratch.Record(0), Drawing(scratch.folder, 0, true), Facts(0)));
    std::ifstream in(scratch.Record(0), std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    DrawingReport d;
    DrawingFacts facts;
    for (size_t keep : {bytes.size() - 1, bytes.size() / 2, size_t{4}}) {
        WriteBytes(scratch.Record(1), bytes.substr(0, keep));
        EXPECT_FALSE(LoadDrawingRecord(scratch.Record(1), d, facts)) << keep << " bytes kept";
    }
    WriteBytes(scratch.Record(1), bytes + "x");
    EXPECT_FALSE(LoadDrawingRecord(scratch.Record(1), d, facts)) << "a byte too many";
    EXPECT_FALSE(LoadDrawingRecord(scratch.Record(7), d, facts));
}

TEST_F(ReportScratchTest, listed_files_come_back_in_order_and_the_last_match_wins) {
    for (const char* name : {"/h/甲-1.dxf", "/h/甲-2.dxf", "/h/甲-1.dxf"}) ASSERT_TRUE(AppendListedFile(scratch.List(), name));
    std::vector<std::string> seen;
    VisitListedFiles(scratch.List(), [&](int index, const fs::path& file) {
        EXPECT_EQ(index, static_cast<int>(seen.size()));
        seen.push_back(file.string());
    });
    EXPECT_EQ(seen, (std::vector<std::string>{"/h/甲-1.dxf", "/h/甲-2.dxf", "/h/甲-1.dxf"}));
    EXPECT_EQ(LastListed(scratch, [](const fs::path& f) { return f == "/h/甲-1.dxf"; }), 2);
    EXPECT_EQ(LastListed(scratch, [](const fs::path& f) { return f == "/h/甲-2.dxf"; }), 1);
    EXPECT_EQ(LastListed(scratch, [](const fs::path& f) { return f == "/h/乙.dxf"; }), -1);
}

TEST_F(ReportScratchTest, text_lines_start_at_the_run_and_lose_their_line_ends) {
    fs::path log = scratch.folder / "Cg.log";
    WriteLog(log, {L"开始处理 a", L"关闭"}, "earlier run\r\n");
    std::vector<std::wstring> lines;
    TextLines from(log, 13);
    for (std::wstring line; from.Next(line);) lines.push_back(line);
    EXPECT_EQ(lines, (std::vector<std::wstring>{L"开始处理 a", L"关闭"}));
}

// Where the run began against the file's size: a start at its end has nothing new; a start past
// it (the file was replaced by a shorter one) reads the file whole.
struct StartCase {
    std::uintmax_t start;
    std::vector<std::wstring> lines;
};

class TextLinesStart : public ReportScratchTest, public ::testing::WithParamInterface<StartCase> {};

TEST_P(TextLinesStart, text_lines_from_the_start_or_whole_when_the_file_is_shorter) {
    fs::path log = scratch.folder / "Cg.log";
    WriteLog(log, {L"保存", L"x"});  // 4 + 2 + 1 + 2 bytes
    TextLines from(log, GetParam().start);
    std::vector<std::wstring> lines;
    for (std::wstring line; from.Next(line);) lines.push_back(line);
    EXPECT_EQ(lines, GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(Starts, TextLinesStart,
                         ::testing::Values(StartCase{8, {L""}}, StartCase{9, {}}, StartCase{10, {L"保存", L"x"}},
                                           StartCase{6, {L"x"}}));

TEST_F(ReportScratchTest, text_lines_after_a_utf8_mark_are_utf8) {
    fs::path log = scratch.folder / "Cg.log";
    WriteBytes(log, "x\n\xEF\xBB\xBF\xE5\x85\xB3\xE9\x97\xAD\r\nb\r\r\n");
    std::vector<std::wstring> lines;
    TextLines from(log, 2);
    for (std::wstring line; from.Next(line);) lines.push_back(line);
    EXPECT_EQ(lines, (std::vector<std::wstring>{L"关闭", L"b\r"}));
}

// Three drawings, the last never saved, with Cg.log lines before the first drawing, a drawing
// started twice, and a start line that names no drawing of the part.
TEST_F(ReportScratchTest, streamed_report_equals_the_report_of_the_same_drawings_in_memory) {
    std::vector<DrawingReport> drawings;
    for (int i = 0; i < 3; ++i) {
        drawings.push_back(Drawing(scratch.folder, i, i < 2));
        WriteBytes(drawings[i].previewBefore, "png before " + std::to_string(i));
        if (drawings[i].finished) WriteBytes(drawings[i].previewAfter, "png after " + std::to_string(i));
        ASSERT_TRUE(AppendListedFile(scratch.List(), drawings[i].file));
        ASSERT_TRUE(StoreDrawingRecord(scratch.Record(i), drawings[i], Facts(i)));
    }
    fs::path log = scratch.folder / "Cg.log";
    WriteLog(log, {L"载入配置", L"开始处理 D:\\交接\\MP2305-1.dxf", L"查找图框", L"图框名为:A3横.DWG 比例1",
                   L"开始处理 D:\\交接\\MP2305-2.dxf", L"查找图框", L"查找图框", L"图框名为:A2.dwg",
                   L"图框名为:A1", L"开始处理 D:\\其他\\零件.dxf", L"开始处理 D:\\交接\\MP2305-1.dxf", L"关闭"});
    drawings[0].logLines = {"开始处理 D:\\交接\\MP2305-1.dxf", "查找图框", "图框名为:A3横.DWG 比例1",
                            "开始处理 D:\\交接\\MP2305-1.dxf", "关闭"};
    drawings[0].sheets = 1;
    drawings[0].frames = {"A3横.DWG"};
    drawings[1].logLines = {"开始处理 D:\\交接\\MP2305-2.dxf", "查找图框", "查找图框", "图框名为:A2.dwg",
                            "图框名为:A1", "开始处理 D:\\其他\\零件.dxf"};
    drawings[1].sheets = 2;
    drawings[1].frames = {"A2.dwg", "A1"};
    RunReport report;
    report.mergedSeen = true;
    report.mergedPath = "/prefix/成品图/MP2305.dxf";

    SplitLogLines(scratch, log, 0);
    auto [json, html] = Written(report, ScratchDrawings(scratch, 3));
    auto [memoryJson, memoryHtml] = Written(report, FromMemory(drawings));
    EXPECT_EQ(json, memoryJson);
    EXPECT_EQ(html, memoryHtml);
    size_t first = html.find("<h2>MP2305-1.dxf</h2>"), second = html.find("<h2>MP2305-2.dxf</h2>"),
           third = html.find("<h2>MP2305-3.dxf</h2>");
    EXPECT_TRUE(first < second && second < third && third != std::string::npos) << "drawings out of order";
    size_t preview = html.find(Base64("png after 1"));
    EXPECT_TRUE(second < preview && preview < third) << "the second drawing's preview is not in its section";
    EXPECT_NE(json.find("\"正确 1\""), std::string::npos);
}

TEST_F(ReportScratchTest, drawing_without_a_readable_record_shows_its_name_and_its_log) {
    ASSERT_TRUE(AppendListedFile(scratch.List(), "/h/MP2305-1.dxf"));
    fs::path log = scratch.folder / "Cg.log";
    WriteLog(log, {L"开始处理 MP2305-1.dxf"});
    SplitLogLines(scratch, log, 0);
    auto next = ScratchDrawings(scratch, 1);
    DrawingReport d;
    ASSERT_TRUE(next(d));
    EXPECT_EQ(d.name, "MP2305-1.dxf");
    EXPECT_FALSE(d.finished);
    EXPECT_EQ(d.logLines, (std::vector<std::string>{"开始处理 MP2305-1.dxf"}));
    EXPECT_FALSE(next(d));
}

}  // namespace
