#pragma once
// XRECORD: an application's data as DXF groups, each stored as a group code and a value of
// the type the code stands for.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/dwg/common.hpp"

namespace dwg {

struct XRecordRecord {
    ObjectCommon common;
    std::vector<std::pair<int, std::string>> groups;  // code, value as ASCII DXF writes it
    std::int16_t cloning = 1;                          // DXF 280
    std::vector<std::uint64_t> references;             // the objects the data names
};

bool ReadXRecord(ObjectStreams& o, XRecordRecord& out);

// The value type of a group code of application data, as the DXF reference gives it.
enum class DataKind { kString, kPoint, kReal, kShort, kLong, kLongLong, kChar, kBinary, kHandle };
DataKind DataKindOf(int code);

// Reads one group of the data: its code, then its value as its code's type wants. False when
// the data ends inside it.
bool ReadDataGroup(BitReader& d, std::vector<std::pair<int, std::string>>& out);

}  // namespace dwg
