#pragma once
// Encoders of the block records and the entities around them: block headers, BLOCK, ENDBLK,
// SEQEND, INSERT and MINSERT. The mirror of their decoders.
#include <cstdint>
#include <vector>

#include "platform/dwg/blocks.hpp"
#include "platform/dwg/encode_object.hpp"

namespace dwg {

// Owned entities (attributes, vertices), the mirror of ReadOwnedHandles: a first and last handle
// before 2004, the list from then on (its count is written among the values), then the SEQEND.
void WriteOwned(ObjectWriter& o, std::uint64_t first, std::uint64_t last,
                const std::vector<std::uint64_t>& handles);
void WriteOwnedHandles(ObjectWriter& o, const OwnedList& owned);

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
