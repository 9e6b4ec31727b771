#pragma once
// Encoders of the block records and the entities around them: block headers, BLOCK, ENDBLK,
// SEQEND, INSERT and MINSERT. The mirror of their decoders.
#include <cstdint>
#include <vector>

#include "platform/dwg/blocks.hpp"
#include "platform/dwg/encode_object.hpp"

namespace dwg {

std::vector<std::uint8_t> EncodeBlockHeader(const BlockHeaderRecord& block,
                                            const EncodeOptions& options);
std::vector<std::uint8_t> EncodeBlockBegin(const BlockBeginRecord& begin,
                                           const EncodeOptions& options);
// type: kEndblk or kSeqend, which have only the common entity data.
std::vector<std::uint8_t> EncodeCommonOnly(const EntityCommon& common, std::int32_t type,
                                           const EncodeOptions& options);
// multiple: a MINSERT, with its columns and rows.
std::vector<std::uint8_t> EncodeInsert(const InsertRecord& insert, bool multiple,
                                       const EncodeOptions& options);

}  // namespace dwg
