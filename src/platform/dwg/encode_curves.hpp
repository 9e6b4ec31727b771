#pragma once
// Encoders of the curve entities: the mirror of their decoders.
#include <cstdint>
#include <vector>

#include "platform/dwg/curves.hpp"
#include "platform/dwg/encode_entities.hpp"

namespace dwg {

std::vector<std::uint8_t> EncodeEllipse(const EllipseRecord& ellipse,
                                        const EncodeOptions& options);
// The flags that say which values are stored are set from the values themselves; the others
// (closed, linetype generation) are kept.
std::vector<std::uint8_t> EncodeLwPolyline(const LwPolylineRecord& polyline,
                                           const EncodeOptions& options);
// type: kSolid or kTrace, which share their layout.
std::vector<std::uint8_t> EncodeSolid(const SolidRecord& solid, std::int32_t type,
                                      const EncodeOptions& options);
// POLYLINE of its kind (2D, 3D, polyface mesh) with its vertex handles and SEQEND.
std::vector<std::uint8_t> EncodePolyline(const PolylineRecord& polyline,
                                         const EncodeOptions& options);
// VERTEX of its kind; a polyface face stores only its four indexes.
std::vector<std::uint8_t> EncodeVertex(const VertexRecord& vertex, const EncodeOptions& options);

}  // namespace dwg
