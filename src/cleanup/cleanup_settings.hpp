#pragma once
// The settings records of the clean-ups, kept in CleanupGlobals across calls. Each operation
// overwrites its record from CAD_line.ini at every call, so a value held from an earlier call or
// from the load is never a default.
#include <string>

#include "platform/db/database.hpp"
#include "platform/ge/array.hpp"
#include "platform/ge/point3d.hpp"

// A colour rule of FunModifyColor: the layer of the chains, the colours to give solid and other
// entities, the colours that stay, and the chains found at the current run.
struct ColorRule {
    std::wstring layer;
    int colorSolid = 0;
    int colorDotted = 0;
    AcArray<int> excludeColors;
    AcArray<AcDbObjectIdArray> groups;
};

// An entity as FunModifyColor sees it.
struct ColorEntity {
    AcDbObjectId id;
    AcGePoint3d min;
    AcGePoint3d max;
    std::wstring layer;
    int color = 0;
    int kind = 0;
    bool isSolid = false;
};

struct ModifyColorSettings {
    std::wstring dottedLinetype;
    std::wstring solidLinetype;
    AcDbDatabase* database = nullptr;
    bool BolOpen = false;
    double tolerance = 0.0;
    AcArray<ColorRule> rules;
    AcArray<ColorEntity> entities;
};

struct SplineToLineAndArcSettings {
    bool BolOpen = false;
    std::wstring dottedLinetype;
    std::wstring solidLinetype;
    double ToleranceLine = 0.05;
    double ToleranceArc = 0.05;
    AcDbDatabase* database = nullptr;
};

struct SplineToPlineSettings {
    std::wstring dottedLinetype;
    std::wstring solidLinetype;
    bool BolOpen = false;
    int EqualDivision = 10;
    double Tolerance = 0.02;
    std::wstring StrFilterLayer;
    AcArray<int> colors;
    AcDbDatabase* database = nullptr;
};

struct ConnectPlineSettings {
    std::wstring dottedLinetype;
    std::wstring solidLinetype;
    bool BolOpen = false;
    double Tolerance = 0.05;
    AcArray<int> colors;
    AcDbDatabase* database = nullptr;
};

struct LineAndArcMergedSettings {
    std::wstring dottedLinetype;
    std::wstring solidLinetype;
    bool BolOpen = false;
    double Tolerance = 0.05;
    AcDbDatabase* database = nullptr;
};
