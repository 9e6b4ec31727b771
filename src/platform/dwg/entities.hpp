#pragma once
// Decoders of the simple entities: each reads the values and handles of its kind after the
// common entity data, into a plain record with the values a DXF file of the drawing would give.
#include <cstdint>
#include <string>

#include "platform/dwg/common.hpp"

namespace dwg {

// Object type numbers fixed by the format (classes above 500 are numbered per drawing).
enum ObjectType : std::int32_t {
    kText = 1, kAttrib = 2, kAttdef = 3, kBlock = 4, kEndblk = 5, kSeqend = 6, kInsert = 7,
    kMinsert = 8, kVertex2d = 10, kVertex3d = 11, kVertexMesh = 12, kVertexPface = 13,
    kVertexPfaceFace = 14, kPolyline2d = 15, kPolyline3d = 16, kPolylinePface = 29,
    kArc = 17, kCircle = 18, kLine = 19, kDimensionOrdinate = 20, kDimensionLinear = 21,
    kDimensionAligned = 22, kDimensionAngular3Pt = 23, kDimensionAngular2Ln = 24,
    kDimensionRadius = 25, kDimensionDiameter = 26, kPoint = 27, kFace3d = 28, kSolid = 31, kTrace = 32,
    kEllipse = 35, kSpline = 36, kMText = 44, kLeader = 45, kLwPolyline = 77, kHatch = 78,
    kDictionary = 42, kBlockControl = 48, kBlockHeader = 49, kLayerControl = 50, kLayer = 51,
    kStyleControl = 52, kStyle = 53, kLinetypeControl = 56, kLinetype = 57,
    kDimensionStyle = 69, kXRecord = 79, kLayout = 82, kRay = 40, kXLine = 41, kGroup = 72, kMLineStyle = 73,
    kPlaceHolder = 80, kView = 61, kUcs = 63, kViewport = 65, kAppId = 67, kProxyEntity = 498
};

struct LineRecord {
    EntityCommon common;
    Point3 start, end;
    double thickness = 0;
    Point3 normal{0, 0, 1};
};

struct CircleRecord {
    EntityCommon common;
    Point3 center;
    double radius = 0;
    double thickness = 0;
    Point3 normal{0, 0, 1};
};

struct ArcRecord {
    CircleRecord circle;
    double startAngle = 0, endAngle = 0;
};

struct PointRecord {
    EntityCommon common;
    Point3 position;
    double thickness = 0;
    Point3 normal{0, 0, 1};
    double xAxisAngle = 0;
};

struct TextRecord {
    EntityCommon common;
    double elevation = 0;
    Point2 insertion, alignment;
    Point3 normal{0, 0, 1};
    double thickness = 0, oblique = 0, rotation = 0, height = 0, widthFactor = 1;
    std::string text;  // UTF-8
    std::int16_t generation = 0, horizontal = 0, vertical = 0;
    std::uint64_t style = 0;
};

// Each reads from an object opened by OpenObject; false when the data ran out.
bool ReadLine(ObjectStreams& o, LineRecord& out);
bool ReadCircle(ObjectStreams& o, CircleRecord& out);
bool ReadArc(ObjectStreams& o, ArcRecord& out);
bool ReadPoint(ObjectStreams& o, PointRecord& out);
bool ReadText(ObjectStreams& o, TextRecord& out);
// The common data and the values of a TEXT, shared by attributes; no handles.
void ReadTextBody(ObjectStreams& o, TextRecord& out);

}  // namespace dwg
