#pragma once
// Colours of the clean-ups: RGB texts ("255 0 0") packed as red + green * 256 + blue * 65536,
// the palette index nearest to a packed colour, and the colour an entity shows.
#include <string>

#include "platform/db/entity.hpp"

// Up to three numbers of a wide text, split at blanks and double quotes (a leading double quote
// is passed over); two blanks in a row give a number 0, missing numbers count as 0, each number
// is cut to 8 bits.
int ParseRgbText(const std::wstring& text);
// The same for a narrow text split only at blanks; each number read by atoi from at most
// `maxDigits` characters.
int PackNarrowRgb(const std::string& text, size_t maxDigits);
// The index 1 to 254 whose palette colour has the smallest sum of byte differences; the lower
// index on a tie. 255 is never chosen.
int NearestColorIndex(int packedColor);
// NearestColorIndex of a narrow RGB text, numbers of at most 35 characters.
int RgbTextToColorIndex(const std::string& text);
// The entity's colour index, or for ByLayer (256) that of its layer in the working database;
// -1 when the layer does not exist or the entity does not open.
int EffectiveColorIndex(const AcDbEntity* entity);
int EffectiveColorIndex(AcDbObjectId id);
