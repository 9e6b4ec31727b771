// What the host observes of a batch: the hand-off's drawings before the module touches them,
// each drawing and the merged one when the batch saves it, and the lines of Cg.log.
#include "run_report.hpp"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>

#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "platform/render/render.hpp"
#include "platform/win/codepage.hpp"
#include "platform/win/crt.hpp"
#include "platform/win/paths.hpp"
#include "report_scratch.hpp"

namespace fs = std::filesystem;

namespace {

// The logs' folder, where Cg.log is written, and the hand-off below LOCALAPPDATA.
constexpr const wchar_t* kLogFolder = L"D:\\Mytool\\cad\\";
constexpr const char* kViewLayers[] = {"FRONT", "LEFT", "TOP"};
// A hole mark and the symbol put there share their position within this distance.
constexpr double kSamePosition = 0.01;

struct Watch {
    bool active = false;
    fs::path handOffLog;
    fs::path mergedFolder;
    fs::path cgLog;
    std::uintmax_t cgLogStart = 0;
    std::chrono::steady_clock::time_point lastSave;     // the end of the last save seen
    std::chrono::steady_clock::time_point drawingStart;  // the last save of another drawing
    int currentDrawing = -1;
    int drawings = 0;               // of the part, listed in the scratch folder
    double observingSeconds = 0.0;  // the report's own work during the current drawing
    RunReport report;
};

Watch& TheWatch() {
    static Watch watch;
    return watch;
}

std::string ReadBytes(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

void Widen(tavrik::render::Window& box, const AcDbExtents& e, bool first) {
    if (first) box = {e.minPoint().x, e.minPoint().y, e.maxPoint().x, e.maxPoint().y};
    box.x0 = std::min(box.x0, e.minPoint().x);
    box.y0 = std::min(box.y0, e.minPoint().y);
    box.x1 = std::max(box.x1, e.maxPoint().x);
    box.y1 = std::max(box.y1, e.maxPoint().y);
}

void NoteEntity(const AcDbEntity& entity, DrawingFacts& facts) {
    if (const AcDbPoint* point = AcDbPoint::cast(&entity)) facts.points.push_back(point->position());
    if (const AcDbBlockReference* reference = AcDbBlockReference::cast(&entity))
        facts.insertPositions.push_back(reference->position());
    if (const AcDbDimension* dimension = AcDbDimension::cast(&entity))
        facts.dimensionCentres.push_back(dimension->textPosition());
    AcDbExtents box;
    std::string layer = dxf::Utf8(entity.layer());
    for (const char* view : kViewLayers) {
        if (AsciiLower(layer) != AsciiLower(view) || entity.getGeomExtents(box) != Acad::eOk) continue;
        bool first = !facts.viewBoxes.count(view);
        Widen(facts.viewBoxes[view], box, first);
    }
}

DrawingFacts FactsOf(const AcDbDatabase& db) {
    DrawingFacts facts;
    AcDbBlockTableRecord* space = nullptr;
    if (acdbOpenObject(space, db.modelSpaceId(), AcDb::kForRead) != Acad::eOk) return facts;
    AcDbObjectIdArray ids = space->entityIds();
    space->close();
    for (AcDbObjectId id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
        NoteEntity(*entity, facts);
        entity->close();
    }
    return facts;
}

// This run's previews and records wait in TMPDIR's folder "tavrik-report-PID" until the report
// is written.
constexpr const char* kScratchStem = "tavrik-report-";

fs::path TempFolder() {
    const char* tmp = std::getenv("TMPDIR");
    return tmp ? tmp : "/tmp";
}

std::string Pid() { return std::to_string(::getpid()); }

fs::path ScratchFolder() { return TempFolder() / (kScratchStem + Pid()); }
ReportScratch Scratch() { return {ScratchFolder()}; }

// The report's files are written beside themselves as "report.json.PID.part" first.
constexpr const char* kReportFiles[] = {"report.json", "report.html"};
fs::path PartFile(const fs::path& target) { return target.string() + "." + Pid() + ".part"; }

// What runs that were killed left in `folder`: the entries named `stem`, a process id and
// `suffix`, whose process no longer runs.
void RemoveLeftByEndedRuns(const fs::path& folder, const std::string& stem, const std::string& suffix) {
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        std::string name = entry.path().filename().string();
        if (name.size() <= stem.size() + suffix.size() || name.rfind(stem, 0) != 0 ||
            name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0)
            continue;
        std::string id = name.substr(stem.size(), name.size() - stem.size() - suffix.size());
        if (id.find_first_not_of("0123456789") != std::string::npos) continue;
        pid_t owner = static_cast<pid_t>(std::atol(id.c_str()));
        std::error_code ignored;
        if (owner > 0 && ::kill(owner, 0) != 0 && errno == ESRCH) fs::remove_all(entry.path(), ignored);
    }
}

// Draws the drawing into the scratch folder; the file, or an empty path when it could not be drawn.
fs::path Preview(const AcDbDatabase& db, const std::string& name) {
    fs::path file = ScratchFolder() / (name + ".png");
    tavrik::render::Options options;
    options.width = 800;
    options.height = 600;
    std::string error;
    if (tavrik::render::RenderDrawing(db, file.string(), options, error) != 0) return {};
    return file;
}

double DistanceToBox(const AcGePoint3d& p, const tavrik::render::Window& box) {
    double dx = std::max({box.x0 - p.x, 0.0, p.x - box.x1});
    double dy = std::max({box.y0 - p.y, 0.0, p.y - box.y1});
    return std::hypot(dx, dy);
}

// Dimensions per view: each dimension belongs to the view whose box is nearest its text.
std::map<std::string, int> DimensionsPerView(const DrawingFacts& facts, const DrawingFacts& views) {
    std::map<std::string, int> counts;
    for (const auto& [view, box] : views.viewBoxes) counts[view] = 0;
    for (const AcGePoint3d& text : facts.dimensionCentres) {
        const std::string* nearest = nullptr;
        double best = 0.0;
        for (const auto& [view, box] : views.viewBoxes) {
            double d = DistanceToBox(text, box);
            if (!nearest || d < best) nearest = &view, best = d;
        }
        if (nearest) ++counts[*nearest];
    }
    return counts;
}

// Dimensions that the batch added per view (the views' boxes are the export's); holes
// replaced: hole marks (the export's points) where a block (the symbol) stands after.
void CompareFacts(const DrawingFacts& before, const DrawingFacts& after, DrawingReport& drawing) {
    std::map<std::string, int> was = DimensionsPerView(before, before), is = DimensionsPerView(after, before);
    for (const auto& [view, n] : is) drawing.dimensionsPerView[view] = n - was[view];
    drawing.holesReplaced = static_cast<int>(std::count_if(before.points.begin(), before.points.end(), [&](const AcGePoint3d& p) {
        return std::any_of(after.insertPositions.begin(), after.insertPositions.end(),
                           [&](const AcGePoint3d& q) { return p.distanceTo(q) <= kSamePosition; });
    }));
}

// A drawing of the part saved by the batch: its record is brought back, completed and put away.
void NoteDrawingSaved(Watch& watch, int index, AcDbDatabase& db, std::chrono::steady_clock::time_point now) {
    DrawingReport drawing;
    DrawingFacts before;
    LoadDrawingRecord(Scratch().Record(index), drawing, before);
    // A drawing is saved more than once (the version conversion rewrites it first): its time
    // runs from the last save of the drawing before it to its own last save.
    if (watch.currentDrawing != index) {
        watch.drawingStart = watch.lastSave;
        watch.observingSeconds = 0.0;
    }
    watch.currentDrawing = index;
    drawing.finished = true;
    drawing.seconds = std::chrono::duration<double>(now - watch.drawingStart).count() - watch.observingSeconds;
    drawing.after = SummarizeDrawing(db);
    drawing.previewAfter = Preview(db, "after-" + std::to_string(index));
    CompareFacts(before, FactsOf(db), drawing);
    StoreDrawingRecord(Scratch().Record(index), drawing, before);
}

void OnSaved(AcDbDatabase& db, const std::string& written) {
    Watch& watch = TheWatch();
    fs::path file = fs::path(written).lexically_normal();
    auto now = std::chrono::steady_clock::now();
    int index = LastListed(Scratch(), [&](const fs::path& listed) { return listed == file; });
    if (index >= 0) {
        NoteDrawingSaved(watch, index, db, now);
        watch.lastSave = std::chrono::steady_clock::now();
        watch.observingSeconds += std::chrono::duration<double>(watch.lastSave - now).count();
        return;
    }
    if (file.parent_path() == watch.mergedFolder) {
        watch.report.mergedSeen = true;
        watch.report.mergedPath = file.string();
        watch.report.merged = SummarizeDrawing(db);
        watch.report.mergedPreview = Preview(db, "merged");
    }
}

std::vector<std::wstring> Lines(const std::wstring& text) {
    std::vector<std::wstring> lines;
    std::wstringstream in(text);
    std::wstring line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == L'\r') line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

// The part's drawings: the hand-off's files of its extension whose stem begins with the part's.
std::vector<fs::path> PartDrawings(const fs::path& folder, const std::wstring& partFile) {
    std::wstring stem = partFile.substr(0, partFile.rfind(L'.'));
    std::wstring ext = partFile.substr(partFile.rfind(L'.') + 1);
    std::vector<fs::path> files;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        std::string name = AsciiLower(entry.path().filename().string());
        std::string wantStem = AsciiLower(dxf::Utf8(stem)), wantExt = "." + AsciiLower(dxf::Utf8(ext));
        if (name.rfind(wantStem, 0) == 0 && name.size() > wantExt.size() &&
            name.compare(name.size() - wantExt.size(), wantExt.size(), wantExt) == 0)
            files.push_back(entry.path().lexically_normal());
    }
    std::sort(files.begin(), files.end());
    return files;
}

// The export as the batch found it, put away in the scratch folder with its preview.
void NoteDrawingBefore(Watch& watch, const fs::path& file) {
    int index = watch.drawings++;
    DrawingReport drawing;
    drawing.name = file.filename().string();
    drawing.file = file;
    AcDbDatabase db(false, true);
    DrawingFacts facts;
    if (dxf::ReadDxfFile(db, file.string()) == Acad::eOk) {
        drawing.before = SummarizeDrawing(db);
        drawing.previewBefore = Preview(db, "before-" + std::to_string(index));
        facts = FactsOf(db);
    }
    AppendListedFile(Scratch().List(), file);
    StoreDrawingRecord(Scratch().Record(index), drawing, facts);
}

// report.json and report.html written beside themselves as temporaries, then put in place.
bool WriteReportFiles(const Watch& watch, const fs::path& folder) {
    fs::path json = PartFile(folder / kReportFiles[0]), html = PartFile(folder / kReportFiles[1]);
    {
        std::ofstream jsonOut(json, std::ios::binary | std::ios::trunc), htmlOut(html, std::ios::binary | std::ios::trunc);
        WriteReportStreams(jsonOut, htmlOut, watch.report, ScratchDrawings(Scratch(), watch.drawings));
        jsonOut.close();
        htmlOut.close();
        if (!jsonOut || !htmlOut) return false;
    }
    std::error_code error;
    fs::rename(json, folder / kReportFiles[0], error);
    if (!error) fs::rename(html, folder / kReportFiles[1], error);
    return !error;
}

// report.json and report.html beside Cg.log; none when the batch stopped early and left its
// hand-off.
void WriteReport(const Watch& watch) {
    std::error_code error;
    if (fs::exists(watch.handOffLog, error)) return;
    SplitLogLines(Scratch(), watch.cgLog, watch.cgLogStart);
    fs::path folder = watch.cgLog.parent_path();
    fs::create_directories(folder, error);
    if (!WriteReportFiles(watch, folder)) {
        std::fprintf(stderr, "tavrik: cannot write the run report in %s\n", folder.c_str());
        for (const char* name : kReportFiles) fs::remove(PartFile(folder / name), error);
    }
}

// What killed runs left: their scratch folders and their report files half written.
void RemoveLeftovers(const fs::path& logFolder) {
    RemoveLeftByEndedRuns(TempFolder(), kScratchStem, "");
    for (const char* name : kReportFiles) RemoveLeftByEndedRuns(logFolder, std::string(name) + ".", ".part");
}

}  // namespace

void BeginRunReport() {
    Watch& watch = TheWatch();
    watch.cgLog = ResolvePath(kLogFolder) / "Cg.log";
    RemoveLeftovers(watch.cgLog.parent_path());
    const char* localAppData = crt::getenv("LOCALAPPDATA");
    fs::path handOff = ResolvePath(WideFromAnsi(std::string(localAppData ? localAppData : "") + "\\Convert\\"));
    watch.handOffLog = handOff / "ugm.log";
    std::vector<std::wstring> ugm = Lines(DecodeTextBytes(ReadBytes(watch.handOffLog)));
    if (ugm.size() < 2 || ugm[1].find(L'.') == std::wstring::npos) return;
    watch.active = true;
    std::error_code created;
    fs::create_directories(ScratchFolder(), created);
    watch.mergedFolder = ResolvePath(ugm[0]).lexically_normal();
    if (!watch.mergedFolder.has_filename()) watch.mergedFolder = watch.mergedFolder.parent_path();
    std::error_code error;
    watch.cgLogStart = fs::exists(watch.cgLog, error) ? fs::file_size(watch.cgLog, error) : 0;
    // Line 2 names the part as a file: its stem and extension (the folder before them is the
    // hand-off's).
    std::wstring partFile = ugm[1].substr(ugm[1].find_last_of(L"\\/") + 1);
    for (const fs::path& file : PartDrawings(handOff, partFile)) NoteDrawingBefore(watch, file);
    dxf::SetDrawingSavedObserver(OnSaved);
    watch.lastSave = std::chrono::steady_clock::now();
}

void FinishRunReport() {
    Watch& watch = TheWatch();
    dxf::SetDrawingSavedObserver(nullptr);
    if (!watch.active) return;
    WriteReport(watch);
    std::error_code error;
    fs::remove_all(ScratchFolder(), error);
}
