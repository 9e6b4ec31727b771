#pragma once
// Encoders of the simple entities: the mirror of their decoders, each writing the common entity
// data then the values and handles of its kind, framed as the object data stores it.
#include <cstdint>
#include <vector>

#include "platform/dwg/encode_object.hpp"
#include "platform/dwg/entities.hpp"

namespace dwg {

std::vector<std::uint8_t> EncodeLine(const LineRecord& line, const EncodeOptions& options);
std::vector<std::uint8_t> EncodeCircle(const CircleRecord& circle, const EncodeOptions& options);
std::vector<std::uint8_t> EncodeArc(const ArcRecord& arc, const EncodeOptions& options);
std::vector<std::uint8_t> EncodePoint(const PointRecord& point, const EncodeOptions& options);
// The values of a TEXT after its common data, shared by attributes: from 2000 a flag byte says
// which values are left at their defaults and not stored.
void WriteTextValues(BitWriter& d, const TextRecord& text);
std::vector<std::uint8_t> EncodeText(const TextRecord& text, const EncodeOptions& options);

}  // namespace dwg
