#pragma once
#include <string>

// Symbol and dictionary names are compared as the host does: without regard to case.
bool acdbNamesEqual(const std::wstring& a, const std::wstring& b);
std::wstring acdbNameUpper(const std::wstring& name);
