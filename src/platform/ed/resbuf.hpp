#pragma once
// Result buffers: the host's linked lists of typed values, used by system variables, filter
// lists of selection sets, LISP arguments and results, and command arguments. A `restype`
// is either an RT code (RTSTR, RT3DPOINT...) or a drawing-file group code (0, 8, 10, -4...),
// whose value kind follows from the code's range.
#include <cstdint>

#include "platform/ed/ads.hpp"
#include "platform/win/wintypes.hpp"

using ads_real = double;
using ads_point = ads_real[3];
using ads_name = std::int64_t[2];
using ads_pointp = ads_real*;
using ads_namep = std::int64_t*;

inline constexpr int RTREAL = 5001;
inline constexpr int RTPOINT = 5002;
inline constexpr int RTSHORT = 5003;
inline constexpr int RTANG = 5004;
inline constexpr int RTSTR = 5005;
inline constexpr int RTENAME = 5006;
inline constexpr int RTPICKS = 5007;
inline constexpr int RTORINT = 5008;
inline constexpr int RT3DPOINT = 5009;
inline constexpr int RTLONG = 5010;
inline constexpr int RTVOID = 5014;
inline constexpr int RTLB = 5016;
inline constexpr int RTLE = 5017;
inline constexpr int RTDOTE = 5018;
inline constexpr int RTNIL = 5019;
inline constexpr int RTDXF0 = 5020;
inline constexpr int RTT = 5021;
inline constexpr const ACHAR* PAUSE = L"\\";

union ads_u_val {
    ads_real rreal;
    ads_real rpoint[3];
    short rint;
    ACHAR* rstring;
    std::int64_t rlname[2];
    std::int32_t rlong;
};

struct resbuf {
    resbuf* rbnext;
    short restype;
    ads_u_val resval;
};

// What a result buffer of a type holds.
enum class RbKind { kNone, kString, kReal, kPoint, kShort, kLong, kName };
RbKind ResbufKind(int restype);

resbuf* acutNewRb(int restype);
// Frees the whole list with its strings.
int acutRelRb(resbuf* list);
// A list from (type, value) pairs ended by 0 or RTNONE: strings as const ACHAR*, reals as
// double, shorts as int, longs as int32, points as const ads_real*, names as const int64*;
// RTLB, RTLE, RTDOTE, RTNIL, RTT and RTVOID take no value. Null for a type it cannot hold.
resbuf* acutBuildList(int restype, ...);

// Copies of strings into result buffers and back.
void SetResbufString(resbuf* rb, const ACHAR* text);
