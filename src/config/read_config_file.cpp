#include "config/read_config_file.hpp"

#include <cstddef>

#include "platform/win/paths.hpp"

namespace {

// Every comma cuts: empty fields stay fields, and so does the text after the last comma.
std::vector<std::string> SplitFields(const std::string& line) {
    std::vector<std::string> fields;
    size_t start = 0;
    for (size_t comma = line.find(','); comma != std::string::npos; comma = line.find(',', start)) {
        fields.push_back(line.substr(start, comma - start));
        start = comma + 1;
    }
    fields.push_back(line.substr(start));
    return fields;
}

}  // namespace

bool ReadConfigFile::Load(const std::string& tablePath) {
    path = tablePath;
    Close();
    stream.open(ResolvePathA(path));
    if (!stream.is_open()) return false;
    rows.clear();
    size_t width = 0;
    std::string line;
    while (std::getline(stream, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();  // the file's text mode
        if (line.empty()) continue;
        std::vector<std::string> fields = SplitFields(line);
        if (rows.empty()) width = fields.size();
        if (fields.size() < width) fields.resize(width);
        rows.push_back(std::move(fields));
    }
    return true;
}

std::vector<std::string> ReadConfigFile::Column(const std::string& header) const {
    if (rows.size() < 2) return {};
    const std::vector<std::string>& names = rows.front();
    size_t index = names.size();
    for (size_t i = 0; i < names.size(); ++i)
        if (names[i] == header) index = i;  // the last of equal headers counts
    if (index == names.size()) return {};
    std::vector<std::string> column;
    for (size_t r = 1; r < rows.size(); ++r)
        if (rows[r].size() > index) column.push_back(rows[r][index]);
    return column;
}

void ReadConfigFile::Close() {
    if (stream.is_open()) stream.close();
    stream.clear();
}
