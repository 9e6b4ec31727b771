#pragma once
// A reader of comma-separated tables (standard.csv). Fields are narrow strings in the host code
// page, compared as bytes; there is no quoting and no trimming.
#include <fstream>
#include <string>
#include <vector>

class ReadConfigFile {
public:
    virtual ~ReadConfigFile() = default;

    // Reads the table at `path`, replacing the former rows. False when it cannot be opened.
    bool Load(const std::string& path);
    // The fields below the header `header` (the last of equal headers), for each row that has
    // one; empty without such a header or without data rows.
    std::vector<std::string> Column(const std::string& header) const;
    void Close();

    std::string path;
    std::ifstream stream;
    std::vector<std::vector<std::string>> rows;  // row 0 is the header
};
