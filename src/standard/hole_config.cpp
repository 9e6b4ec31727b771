// Reading of CAD_hole.ini: the library folder, the layer table, the dash list and the symbol rows
// of the hole types.
#include <stdexcept>

#include "pipeline/logs.hpp"
#include "platform/ed/ads.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/win/crt.hpp"
#include "platform/win/stdio_file.hpp"
#include "platform/win/text.hpp"
#include "standard/hole_substitution.hpp"

namespace {

constexpr int kBlockPathSection = 0;
constexpr int kLayerTableSection = 1;
constexpr int kDashListSection = 2;
constexpr int kFirstTypeSection = 10;

// The field at `index`; a row too short throws as the bounds-checked string array does.
const std::wstring& FieldAt(const std::vector<std::wstring>& fields, size_t index) {
    if (index >= fields.size()) throw std::invalid_argument("Invalid argument: string array index out of range");
    return fields[index];
}

// The section a line opens, or `current` when it opens none. [TYPE1] to [TYPE99] give 10 + n.
int SectionOfLine(const std::wstring& line, int current) {
    if (line.starts_with(L"[BLKPATH]")) return kBlockPathSection;
    if (line.starts_with(L"[SCRSET]")) return kLayerTableSection;
    if (line.starts_with(L"[DASHL]")) return kDashListSection;
    if (acutWcMatch(line.c_str(), L"`[TYPE[1-9]`]*,`[TYPE[1-9][0-9]`]*") == RTNORM) {
        std::wstring number = line.substr(5, line.find(L']') - 5);
        return kFirstTypeSection + _wtoi(number.c_str());
    }
    return current;
}

}  // namespace

void HoleSubstitution::ReadHoleConfig(const std::wstring& path) {
    AppendLogText(L"StartreRead", kCgLogPath);
    AppendLogText(L"开始处理 " + path + L"\n", kCgLogPath);
    AppendLogText(path, kCgLogPath);
    CStdioFile file;
    if (!FileExists(path) || !file.Open(path.c_str(), CFile::modeRead | CFile::shareDenyNone)) {
        acutPrintf(L"\n未找到换孔配置文件 %s", path.c_str());
        return;
    }
    AppendLogText(L"\n打开文件 " + path + L"\n", kCgLogPath);
    std::wstring raw;
    while (file.ReadString(raw)) ReadHoleLine(UpperCase(TrimBlanks(raw)));
    file.Close();
}

void HoleSubstitution::ReadHoleLine(const std::wstring& line) {
    section = SectionOfLine(line, section);
    if (section < 0) return;
    if (line.starts_with(L"//") || line.starts_with(L";") || line.starts_with(L"[")) return;
    std::vector<std::wstring> fields;
    SplitString(line, L",", fields);
    if (fields.size() < 2) return;
    std::wstring key = TrimBlanks(fields[0]);
    std::wstring value = TrimBlanks(fields[1]);
    if (section == kBlockPathSection) {
        if (key.starts_with(L"BLKPATH")) blockPath = value;
    } else if (section == kLayerTableSection) {
        if (key == L"*") defaultLayer = value;
        else layerColors.push_back({key, value, _wtoi(key.c_str())});
    } else if (section == kDashListSection) {
        dashList = fields;
    } else if (section > kFirstTypeSection) {
        typeNumber = section - kFirstTypeSection;
        if (key == L"LAYER") currentLayer = value;
        else AddHoleRow(fields);
    }
}

// Appends the row, or puts it before the last row when its diameter is below that row's: the
// one step of ordering that the table gets.
void HoleSubstitution::AddHoleRow(const std::vector<std::wstring>& fields) {
    tHole hole;
    acdbDisToF(TrimBlanks(FieldAt(fields, 0)).c_str(), 2, &hole.diameter);
    std::wstring* names[] = {&hole.blockDashOne,   &hole.blockSolidOne,  &hole.blockBothDash,
                             &hole.blockBothSolid, &hole.blockDashSolid, &hole.blockSolidDash};
    for (size_t i = 0; i < 6; ++i) *names[i] = TrimBlanks(FieldAt(fields, i + 1));
    hole.layer = currentLayer;
    hole.typeNumber = typeNumber;
    if (!holes.empty() && hole.diameter < holes.back().diameter) holes.insert(holes.end() - 1, hole);
    else holes.push_back(hole);
}
