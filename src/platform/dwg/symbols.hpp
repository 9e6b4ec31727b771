#pragma once
// The symbol table records other than layers and block records (text styles, linetypes,
// application ids, views, UCSs, viewports, dimension styles), and the DXF records of every
// table record and of the BLOCK and ENDBLK that open and close a block's entities.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/dwg/blocks.hpp"
#include "platform/dwg/dxf_records.hpp"
#include "platform/dwg/header.hpp"
#include "platform/dwg/tables.hpp"

namespace dwg {

struct SymbolRecord {
    TableEntry entry;
    // STYLE
    bool vertical = false, shapeFile = false;
    double fixedHeight = 0, widthFactor = 1, oblique = 0, lastHeight = 0;
    std::uint8_t generation = 0;
    std::string font, bigFont;
    // LTYPE: the dashes' lengths (shapes and texts of complex linetypes are not kept)
    std::string description;
    double patternLength = 0;
    std::vector<double> dashes;
    // DIMSTYLE
    DimensionVariables dim;
    // VIEW and VPORT: the view; VPORT's width is its aspect ratio
    double height = 0, width = 0, twist = 0, lensLength = 50, frontClip = 0, backClip = 0;
    Point2 center;
    Point3 target, direction{0, 0, 1};
    std::uint8_t viewMode = 0, renderMode = 0;
    bool paperSpace = false;
    // VPORT: the viewport's corners, grid and snap
    Point2 lowerLeft, upperRight{1, 1}, gridSpacing, snapBase, snapSpacing;
    std::int16_t circleZoom = 1000, snapIsoPair = 0;
    bool fastZoom = true, gridOn = false, snapOn = false, snapStyle = false, ucsFollow = false;
    std::uint8_t ucsIcon = 0;
    double snapRotation = 0;
    // UCS, and the UCS of a view or viewport
    bool hasUcs = false;
    Point3 origin, xAxis{1, 0, 0}, yAxis{0, 1, 0};
    double elevation = 0;
    std::int16_t orthoType = 0;
};

// Reads the record by its type: the text style and linetype values in full, the name and
// flags of the others.
bool ReadSymbolRecord(ObjectStreams& o, SymbolRecord& out);

void WriteSymbolRecord(DxfText& out, const std::string& table, const SymbolRecord& r);
void WriteLayer(DxfText& out, const LayerRecord& r, const NameIndex& names);
void WriteBlockRecord(DxfText& out, const BlockHeaderRecord& r, const std::string& name);
void WriteBlockBegin(DxfText& out, const BlockHeaderRecord& r, const std::string& name,
                     const BlockBeginRecord* begin, std::uint64_t record, const NameIndex& names);
void WriteBlockEnd(DxfText& out, const EntityCommon* end, std::uint64_t record,
                   const NameIndex& names);

}  // namespace dwg
