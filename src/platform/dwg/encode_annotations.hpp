#pragma once
// Encoders of dimensions, splines, hatches and the small kinds (3D faces, rays and xlines,
// dictionary variables, scales, groups): the mirrors of their decoders.
#include <cstdint>
#include <vector>

#include "platform/dwg/annotations.hpp"
#include "platform/dwg/encode_object.hpp"
#include "platform/dwg/hatch.hpp"
#include "platform/dwg/small_kinds.hpp"

namespace dwg {

std::vector<std::uint8_t> EncodeDimension(const DimensionRecord& dimension,
                                          const EncodeOptions& options);
std::vector<std::uint8_t> EncodeSpline(const SplineRecord& spline, const EncodeOptions& options);
std::vector<std::uint8_t> EncodeHatch(const HatchRecord& hatch, const EncodeOptions& options);
std::vector<std::uint8_t> EncodeFace(const FaceRecord& face, const EncodeOptions& options);
// type: 40 RAY or 41 XLINE.
std::vector<std::uint8_t> EncodeRay(const RayRecord& ray, std::int32_t type,
                                    const EncodeOptions& options);
// The class kinds take the drawing's number of their class.
std::vector<std::uint8_t> EncodeDictionaryVariable(const DictionaryVariableRecord& variable,
                                                   std::int32_t type, const EncodeOptions& options);
std::vector<std::uint8_t> EncodeScale(const ScaleRecord& scale, std::int32_t type,
                                      const EncodeOptions& options);
std::vector<std::uint8_t> EncodeGroup(const GroupRecord& group, const EncodeOptions& options);

}  // namespace dwg
