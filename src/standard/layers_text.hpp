#pragma once
// Bringing an exported drawing to the house standard: mirrored curves, texts and their styles,
// and the layers that the file name and the layer table ask for. Each operation takes the
// database it works on and answers 0, 16 when a walk or a look-up fails, or the status of
// OpenModelSpaceIterator.
#include <string>

#include "platform/db/database.hpp"

// Circles, arcs and 2D polylines whose normal is -Z are mirrored in the XY plane: the normal
// comes to +Z, z changes its sign, the plan stays. The walk ends at an entity that does not open
// for write (16).
int FlipMirroredCurves(AcDbDatabase* db);

// Replaces every multi-line text by the single-line texts it explodes to.
int ExplodeMText(AcDbDatabase* db);
// In every single-line text the first of each diameter sign ("\U+2205", "\U+00D8", U+2205,
// U+00D8) becomes "%%c"; every text gets the width factor 1.0.
int NormalizeDiameterSign(AcDbDatabase* db);
// Gives the text style `style` to every single-line text and multi-line text of the model space
// whose text matches `pattern` as a host wild card. 16 when the drawing lacks the style.
int ApplyTextStyle(const std::wstring& style, const std::wstring& pattern, AcDbDatabase* db);
// Sets the style's font files to gbenor.shx and gbcbig.shx; 16 when the style is missing.
int SetStyleFonts(const std::wstring& style, AcDbDatabase* db);

// The number after the last "-" of the drawing's file title selects a [FILLAY] row of
// CAD_layerug.ini: targetLayer becomes its layer and the answer is 1. 0 when the file is not
// found, the title has no "-" (with a message) or no row has the number; targetLayer then keeps
// the value of an earlier drawing.
int FindLayerByFileName(AcDbDatabase* db);
// Moves entities to targetLayer: an entity of a [SCRSET] colour to targetLayer + the row's
// suffix, any other not on a kept layer (the standard's layers, the [FILLAY] columns,
// targetLayer) to targetLayer.
int ConvertLayersByColor(AcDbDatabase* db);
// For each [CONVERT] row: a missing `to` layer is made by renaming `from`; an existing one takes
// the entities of `from`, which stays.
int ConvertLayersByTable(AcDbDatabase* db);
// Moves every dimension to `layer`, made when missing.
int GatherDimensions(const std::wstring& layer, AcDbDatabase* db);
