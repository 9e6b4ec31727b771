#pragma once
// Writes the classes section and the object map (AcDb:Handles): the mirrors of ParseClasses and
// ParseObjectMap.
#include <cstdint>
#include <vector>

#include "platform/dwg/classes.hpp"
#include "platform/dwg/object_map.hpp"

namespace dwg {

// The classes as stored: sentinels, size, (2004: the highest class number) each class, CRC.
std::vector<std::uint8_t> EncodeClassesSection(const std::vector<ClassRecord>& classes,
                                                Version version, int codePage);

// The object map: pages of at most 2032 bytes, each counting handle and offset differences
// from zero again, closed by an empty page. The locations must be in ascending handle order.
std::vector<std::uint8_t> EncodeObjectMap(const std::vector<ObjectLocation>& locations);

// The small sections readers look for beside the drawing's data, each in the form a new
// drawing has: the summary (no title, author or properties), an empty preview, no revision
// history, the template's measurement (0 imperial, 1 metric).
std::vector<std::uint8_t> EncodeSummaryInfo();
std::vector<std::uint8_t> EncodePreview();
std::vector<std::uint8_t> EncodeRevisionHistory();
std::vector<std::uint8_t> EncodeTemplate(int measurement);
// The auxiliary header: versions, save counts, creation and update dates (days and
// milliseconds), the handle seed.
std::vector<std::uint8_t> EncodeAuxHeader(double created, double updated, std::uint64_t handseed);

}  // namespace dwg
