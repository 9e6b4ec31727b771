#pragma once
// Encoders of the table control objects, the symbol table records other than layers and block
// records, and the objects every drawing of 2000 on has (layouts, multiline styles,
// placeholders): the mirrors of their decoders.
#include <cstdint>
#include <vector>

#include "platform/dwg/encode_object.hpp"
#include "platform/dwg/layout.hpp"
#include "platform/dwg/small_kinds.hpp"
#include "platform/dwg/symbols.hpp"
#include "platform/dwg/xrecord.hpp"

namespace dwg {

// A table's control object: its records (soft owner), then the records it holds apart (the
// model and paper space blocks, the ByBlock and ByLayer linetypes) as hard owners.
struct ControlRecord {
    ObjectCommon common;
    std::int32_t type = 0;  // 48 BLOCK_CONTROL ... 68 DIMSTYLE_CONTROL
    std::vector<std::uint64_t> entries;
    std::vector<std::uint64_t> apart;
    // The dimension style table's second list of its styles (hard pointers), in its own order.
    std::vector<std::uint64_t> styles;
};

std::vector<std::uint8_t> EncodeControl(const ControlRecord& control,
                                        const EncodeOptions& options);
// STYLE, LTYPE, APPID, DIMSTYLE and VPORT by the record's type.
std::vector<std::uint8_t> EncodeSymbolRecord(const SymbolRecord& record, std::int32_t type,
                                             const EncodeOptions& options);
std::vector<std::uint8_t> EncodeLayout(const LayoutRecord& layout, const EncodeOptions& options);
std::vector<std::uint8_t> EncodeMLineStyle(const MLineStyleRecord& style,
                                           const EncodeOptions& options);
// PLOTSETTINGS, numbered by the drawing's class.
std::vector<std::uint8_t> EncodePlotSettings(const ObjectCommon& common, const PlotSettings& plot,
                                             std::int32_t type, const EncodeOptions& options);
// XRECORD: the groups (points as three groups, angles in degrees, as the DXF gives them) in
// their own run of bytes; dwgCodePage is the file header's code page number for the texts.
std::vector<std::uint8_t> EncodeXRecord(const XRecordRecord& xrecord, int dwgCodePage,
                                        const EncodeOptions& options);
std::vector<std::uint8_t> EncodePlaceHolder(const ObjectCommon& common,
                                            const EncodeOptions& options);

}  // namespace dwg
