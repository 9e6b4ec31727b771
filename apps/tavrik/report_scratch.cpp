// Records of the run report in its scratch folder: plain bytes in this program's own layout
// (numbers as in memory, texts with their length before them), written and read by this run
// only.
#include "report_scratch.hpp"

#include <cctype>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <optional>

#include "platform/dxf/model.hpp"
#include "platform/win/codepage.hpp"

namespace fs = std::filesystem;

namespace {

struct Writer {
    std::string bytes;
};

struct Reader {
    std::string_view rest;
    bool ok = true;
};

template <typename Number>
void PutNumber(Writer& w, Number value) {
    w.bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

template <typename Number>
Number GetNumber(Reader& r) {
    Number value{};
    if (r.rest.size() < sizeof value) {
        r.ok = false;
        return value;
    }
    std::memcpy(&value, r.rest.data(), sizeof value);
    r.rest.remove_prefix(sizeof value);
    return value;
}

void Put(Writer& w, std::int64_t n) { PutNumber(w, n); }
void Put(Writer& w, double x) { PutNumber(w, x); }
void Put(Writer& w, const std::string& text) {
    Put(w, static_cast<std::int64_t>(text.size()));
    w.bytes += text;
}
void Put(Writer& w, const AcGePoint3d& p) {
    for (double x : {p.x, p.y, p.z}) Put(w, x);
}
void Put(Writer& w, const tavrik::render::Window& box) {
    for (double x : {box.x0, box.y0, box.x1, box.y1}) Put(w, x);
}
template <typename Item>
void Put(Writer& w, const std::vector<Item>& items) {
    Put(w, static_cast<std::int64_t>(items.size()));
    for (const Item& item : items) Put(w, item);
}
template <typename Value>
void Put(Writer& w, const std::map<std::string, Value>& items) {
    Put(w, static_cast<std::int64_t>(items.size()));
    for (const auto& [key, value] : items) {
        Put(w, key);
        if constexpr (std::is_same_v<Value, int>) Put(w, static_cast<std::int64_t>(value));
        else Put(w, value);
    }
}

void Get(Reader& r, double& x) { x = GetNumber<double>(r); }
void Get(Reader& r, int& n) { n = static_cast<int>(GetNumber<std::int64_t>(r)); }
void Get(Reader& r, bool& flag) { flag = GetNumber<std::int64_t>(r) != 0; }
void Get(Reader& r, std::string& text) {
    std::int64_t size = GetNumber<std::int64_t>(r);
    if (!r.ok || size < 0 || static_cast<std::uint64_t>(size) > r.rest.size()) {
        r.ok = false;
        return;
    }
    text.assign(r.rest.substr(0, static_cast<size_t>(size)));
    r.rest.remove_prefix(static_cast<size_t>(size));
}
void Get(Reader& r, AcGePoint3d& p) {
    for (double* x : {&p.x, &p.y, &p.z}) Get(r, *x);
}
void Get(Reader& r, tavrik::render::Window& box) {
    for (double* x : {&box.x0, &box.y0, &box.x1, &box.y1}) Get(r, *x);
}
// Counts read back are taken at their word only as far as the record goes.
std::int64_t GetCount(Reader& r) {
    std::int64_t count = GetNumber<std::int64_t>(r);
    if (count < 0 || static_cast<std::uint64_t>(count) > r.rest.size()) r.ok = false;
    return r.ok ? count : 0;
}
template <typename Item>
void Get(Reader& r, std::vector<Item>& items) {
    items.clear();
    for (std::int64_t n = GetCount(r); n > 0 && r.ok; --n) Get(r, items.emplace_back());
}
template <typename Value>
void Get(Reader& r, std::map<std::string, Value>& items) {
    items.clear();
    for (std::int64_t n = GetCount(r); n > 0 && r.ok; --n) {
        std::string key;
        Get(r, key);
        Get(r, items[key]);
    }
}

void Put(Writer& w, const DrawingSummary& s) {
    Put(w, s.version);
    Put(w, s.codePage);
    Put(w, static_cast<std::int64_t>(s.extents.has_value()));
    if (s.extents) Put(w, *s.extents);
    Put(w, s.entitiesByType);
    Put(w, s.entitiesByLayer);
    Put(w, s.blocks);
    Put(w, s.texts);
}

void Get(Reader& r, DrawingSummary& s) {
    Get(r, s.version);
    Get(r, s.codePage);
    bool hasExtents = false;
    Get(r, hasExtents);
    s.extents.reset();
    if (hasExtents) Get(r, s.extents.emplace());
    Get(r, s.entitiesByType);
    Get(r, s.entitiesByLayer);
    Get(r, s.blocks);
    Get(r, s.texts);
}

void Put(Writer& w, const fs::path& file) { Put(w, file.string()); }
void Get(Reader& r, fs::path& file) {
    std::string text;
    Get(r, text);
    file = text;
}

std::string ReadAll(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

}  // namespace

bool StoreDrawingRecord(const fs::path& file, const DrawingReport& d, const DrawingFacts& facts) {
    Writer w;
    Put(w, d.name);
    Put(w, d.file);
    Put(w, static_cast<std::int64_t>(d.finished));
    Put(w, d.seconds);
    Put(w, d.before);
    Put(w, d.after);
    Put(w, d.previewBefore);
    Put(w, d.previewAfter);
    Put(w, d.dimensionsPerView);
    Put(w, static_cast<std::int64_t>(d.holesReplaced));
    Put(w, facts.points);
    Put(w, facts.insertPositions);
    Put(w, facts.dimensionCentres);
    Put(w, facts.viewBoxes);
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out << w.bytes;
    return static_cast<bool>(out);
}

bool LoadDrawingRecord(const fs::path& file, DrawingReport& d, DrawingFacts& facts) {
    std::string bytes = ReadAll(file);
    Reader r{bytes};
    Get(r, d.name);
    Get(r, d.file);
    Get(r, d.finished);
    Get(r, d.seconds);
    Get(r, d.before);
    Get(r, d.after);
    Get(r, d.previewBefore);
    Get(r, d.previewAfter);
    Get(r, d.dimensionsPerView);
    Get(r, d.holesReplaced);
    Get(r, facts.points);
    Get(r, facts.insertPositions);
    Get(r, facts.dimensionCentres);
    Get(r, facts.viewBoxes);
    return r.ok && r.rest.empty();
}

bool AppendListedFile(const fs::path& list, const fs::path& file) {
    Writer w;
    Put(w, file);
    std::ofstream out(list, std::ios::binary | std::ios::app);
    out << w.bytes;
    return static_cast<bool>(out);
}

void VisitListedFiles(const fs::path& list, const std::function<void(int, const fs::path&)>& visit) {
    std::ifstream in(list, std::ios::binary);
    for (int index = 0;; ++index) {
        std::int64_t size = 0;
        if (!in.read(reinterpret_cast<char*>(&size), sizeof size) || size < 0) return;
        std::string text(static_cast<size_t>(size), '\0');
        if (!in.read(text.data(), size)) return;
        visit(index, fs::path(text));
    }
}

TextLines::TextLines(const fs::path& file, std::uintmax_t start) : in_(file, std::ios::binary) {
    // A file that has become shorter than where the run began is read whole.
    std::error_code error;
    if (start > fs::file_size(file, error) || error) start = 0;
    in_.seekg(static_cast<std::streamoff>(start));
    char mark[3] = {};
    in_.read(mark, sizeof mark);
    utf8_ = in_.gcount() == 3 && std::memcmp(mark, "\xEF\xBB\xBF", 3) == 0;
    in_.clear();
    in_.seekg(static_cast<std::streamoff>(start + (utf8_ ? 3 : 0)));
}

bool TextLines::Next(std::wstring& line) {
    std::string bytes;
    if (!std::getline(in_, bytes)) return false;
    line = utf8_ ? WideFromUtf8(bytes) : WideFromAnsi(bytes);
    if (!line.empty() && line.back() == L'\r') line.pop_back();
    return true;
}

int LastListed(const ReportScratch& scratch, const std::function<bool(const fs::path&)>& matches) {
    int found = -1;
    VisitListedFiles(scratch.List(), [&](int index, const fs::path& file) {
        if (matches(file)) found = index;
    });
    return found;
}

void SplitLogLines(const ReportScratch& scratch, const fs::path& cgLog, std::uintmax_t start) {
    TextLines lines(cgLog, start);
    std::ofstream out;
    int current = -1;
    for (std::wstring line; lines.Next(line);) {
        size_t begins = line.find(L"开始处理");
        if (begins != std::wstring::npos) {
            int named = LastListed(scratch, [&](const fs::path& file) {
                return line.find(dxf::Wide(file.filename().string()), begins) != std::wstring::npos;
            });
            if (named >= 0 && named != current) {
                current = named;
                out.close();
                out.open(scratch.Log(current), std::ios::binary | std::ios::app);
            }
        }
        if (current >= 0) out << dxf::Utf8(line) << '\n';
    }
}

namespace {

void LoadLogLines(const ReportScratch& scratch, int index, DrawingReport& drawing) {
    std::ifstream in(scratch.Log(index), std::ios::binary);
    for (std::string text; std::getline(in, text);) {
        drawing.logLines.push_back(text);
        std::wstring line = dxf::Wide(text);
        if (line.find(L"查找图框") != std::wstring::npos) ++drawing.sheets;
        size_t frame = line.find(L"图框名为:");
        if (frame != std::wstring::npos) {
            std::string name = dxf::Utf8(line.substr(frame + 5));
            size_t end = AsciiLower(name).find(".dwg");
            drawing.frames.push_back(end == std::string::npos ? name : name.substr(0, end + 4));
        }
    }
}

fs::path ListedFile(const ReportScratch& scratch, int wanted) {
    fs::path found;
    VisitListedFiles(scratch.List(), [&](int index, const fs::path& file) {
        if (index == wanted) found = file;
    });
    return found;
}

}  // namespace

std::function<bool(DrawingReport&)> ScratchDrawings(const ReportScratch& scratch, int count) {
    return [scratch, count, index = 0](DrawingReport& drawing) mutable {
        if (index >= count) return false;
        DrawingFacts facts;
        if (!LoadDrawingRecord(scratch.Record(index), drawing, facts)) {
            drawing = DrawingReport{};
            drawing.file = ListedFile(scratch, index);
            drawing.name = drawing.file.filename().string();
        }
        LoadLogLines(scratch, index++, drawing);
        return true;
    };
}

std::string AsciiLower(std::string text) {
    for (auto& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}
