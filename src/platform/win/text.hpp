#pragma once
// Small text helpers shared by the Windows services: Windows compares names (files, registry
// keys, INI sections and keys) without regard to case.
#include <string>
#include <string_view>

std::wstring UpperCase(std::wstring_view text);
bool EqualNoCase(std::wstring_view a, std::wstring_view b);
std::wstring TrimBlanks(std::wstring_view text);
