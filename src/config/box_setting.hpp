#pragma once
// boxsetting.txt: which sheet frame drawing fits which drawing name, and default attribute
// values of a sheet.
#include <string>
#include <vector>

#include "platform/db/object_id.hpp"

// Drawings whose name matches `pattern` (acutWcMatch) get the frame drawing `frameFile`.
struct dwgmatch {
    std::wstring pattern;
    std::wstring frameFile;
};

// An attribute value; `source` is the text it came from, null for rows of the file.
struct attstr {
    std::wstring tag;
    std::wstring value;
    AcDbObjectId source;
};

class BoxSetting {
public:
    // Keeps the path and reads the file.
    explicit BoxSetting(std::wstring path);
    // Empties both arrays, then reads the file; `section` goes on from where the last read
    // left it.
    void Read();

    std::vector<dwgmatch> frameMatches;  // [SHTWCH]
    std::vector<attstr> attributes;      // [ATTWCH]
    int section = 0;                     // 0 [SHTWCH], 1 [ATTWCH]
    int missing = 0;                     // 1 when the file was not found
    std::wstring path;
};
