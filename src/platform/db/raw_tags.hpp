#pragma once
#include <string>
#include <vector>

// A group-code/value pair as a drawing file holds it. Values are kept as the text they have in
// an ASCII file (UTF-8 for strings, shortest round-tripping form for numbers), so that what the
// database does not model can be written back unchanged.
struct AcDbRawTag {
    int code = 0;
    std::string value;
    bool operator==(const AcDbRawTag&) const = default;
};

using AcDbRawTags = std::vector<AcDbRawTag>;
