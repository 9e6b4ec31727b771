#pragma once
// Text and style standardisation of a drawing.
#include <string>

#include "platform/db/database.hpp"

// Gives the text style `style` to every single-line text and multi-line text of the model space
// whose text matches `pattern` as a host wild card. 16 when the drawing lacks the style.
int ApplyTextStyle(const std::wstring& style, const std::wstring& pattern, AcDbDatabase* db);
