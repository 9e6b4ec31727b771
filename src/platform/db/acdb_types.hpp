#pragma once
#include <cstdint>

using ACHAR = wchar_t;

namespace Adesk {
using Int8 = std::int8_t;
using Int16 = std::int16_t;
using Int32 = std::int32_t;
using Int64 = std::int64_t;
using UInt8 = std::uint8_t;
using UInt16 = std::uint16_t;
using UInt32 = std::uint32_t;
using UInt64 = std::uint64_t;
using Boolean = bool;
inline constexpr bool kTrue = true;
inline constexpr bool kFalse = false;
}  // namespace Adesk

namespace AcDb {
enum OpenMode { kForRead = 0, kForWrite = 1, kForNotify = 2 };

enum LineWeight : int {
    kLnWt000 = 0, kLnWt005 = 5, kLnWt009 = 9, kLnWt013 = 13, kLnWt015 = 15, kLnWt018 = 18,
    kLnWt020 = 20, kLnWt025 = 25, kLnWt030 = 30, kLnWt035 = 35, kLnWt040 = 40, kLnWt050 = 50,
    kLnWt053 = 53, kLnWt060 = 60, kLnWt070 = 70, kLnWt080 = 80, kLnWt090 = 90, kLnWt100 = 100,
    kLnWt106 = 106, kLnWt120 = 120, kLnWt140 = 140, kLnWt158 = 158, kLnWt200 = 200,
    kLnWt211 = 211,
    kLnWtByLayer = -1, kLnWtByBlock = -2, kLnWtByLwDefault = -3
};

enum Visibility { kVisible = 0, kInvisible = 1 };

// Drawing versions the codec knows, oldest first (the host's names).
enum AcDbDwgVersion {
    kDHL_Unknown = 0,
    kDHL_1009 = 16,  // R12
    kDHL_1012 = 18,  // R13
    kDHL_1014 = 21,  // R14
    kDHL_1015 = 23,  // 2000
    kDHL_1018 = 25,  // 2004
    kDHL_1021 = 27,  // 2007
    kDHL_1024 = 29,  // 2010
    kDHL_1027 = 31,  // 2013
    kDHL_1032 = 33,  // 2018
    kDHL_CURRENT = kDHL_1018
};

enum TextHorzMode { kTextLeft = 0, kTextCenter = 1, kTextRight = 2, kTextAlign = 3,
                    kTextMid = 4, kTextFit = 5 };
enum TextVertMode { kTextBase = 0, kTextBottom = 1, kTextVertMid = 2, kTextTop = 3 };
// How multi-line text spaces its lines: at least, or exactly, the spacing factor's pitch. Any
// other number a file gives is held as it is.
enum LineSpacingStyle : int { kAtLeast = 1, kExactly = 2 };

enum Poly2dType { k2dSimplePoly = 0, k2dFitCurvePoly = 1, k2dQuadSplinePoly = 2,
                  k2dCubicSplinePoly = 3 };
enum Poly3dType { k3dSimplePoly = 0, k3dQuadSplinePoly = 1, k3dCubicSplinePoly = 2 };
enum Vertex2dType { k2dVertex = 0, k2dSplineCtlVertex = 1, k2dSplineFitVertex = 2,
                    k2dCurveFitVertex = 3 };
enum Vertex3dType { k3dSimpleVertex = 0, k3dControlVertex = 1, k3dFitVertex = 2 };

// Which DXF group codes mark an entity as lying in paper space.
enum SpaceKind { kModelSpace = 0, kPaperSpace = 1 };
}  // namespace AcDb
