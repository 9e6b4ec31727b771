#pragma once
#include <cstddef>
#include <string>

// Symbol and dictionary names are compared as the host does: without regard to case.
bool acdbNamesEqual(const std::wstring& a, const std::wstring& b);
std::wstring acdbNameUpper(const std::wstring& name);
// A hash of a name that names equal by acdbNamesEqual share, for indexes of names.
std::size_t acdbNameHash(const std::wstring& name);
