#pragma once
// LAYOUT: a layout's plot settings and its own values (name, tab order, limits, UCS, the paper
// space block it shows).
#include <cstdint>
#include <string>
#include <vector>

#include "platform/dwg/common.hpp"

namespace dwg {

struct PlotSettings {
    std::string pageSetupName, printerName, paperSize, plotViewName, styleSheet;  // UTF-8
    std::int16_t flags = 0, paperUnits = 0, rotation = 0, plotType = 0, scaleType = 0;
    double margins[4] = {0, 0, 0, 0};  // left, bottom, right, top
    double paperWidth = 0, paperHeight = 0;
    Point2 origin, windowMin, windowMax, imageOrigin;
    double realWorldUnits = 1, drawingUnits = 1, scaleFactor = 1;
    std::int16_t shadeMode = 0, shadeResolution = 0, shadeDpi = 0;
    bool shadeStored = false;  // 2004 on: the shade plot settings are part of the record
    std::uint64_t plotView = 0;
};

struct LayoutRecord {
    ObjectCommon common;
    PlotSettings plot;
    std::string name;
    std::int16_t tabOrder = 0, flags = 0, orthoView = 0;
    Point3 ucsOrigin, insbase, ucsX{1, 0, 0}, ucsY{0, 1, 0}, extmin, extmax;
    Point2 limmin, limmax;
    double elevation = 0;
    std::uint64_t block = 0, viewport = 0, baseUcs = 0, namedUcs = 0, visualStyle = 0;
    std::vector<std::uint64_t> viewports;  // 2004 on
};

bool ReadLayout(ObjectStreams& o, LayoutRecord& out);

}  // namespace dwg
