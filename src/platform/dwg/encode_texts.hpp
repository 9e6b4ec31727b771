#pragma once
// Encoders of MTEXT and of the attributes and attribute definitions of blocks: the mirror of
// their decoders.
#include <cstdint>
#include <vector>

#include "platform/dwg/encode_entities.hpp"
#include "platform/dwg/texts.hpp"

namespace dwg {

std::vector<std::uint8_t> EncodeMText(const MTextRecord& mtext, const EncodeOptions& options);
// definition: an ATTDEF, with its prompt; else an ATTRIB.
std::vector<std::uint8_t> EncodeAttribute(const AttributeRecord& attribute, bool definition,
                                          const EncodeOptions& options);

}  // namespace dwg
