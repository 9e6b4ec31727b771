#pragma once
// The configuration root: the tool's folder from the machine's registry, and the sub-folder of
// "config" that standard.csv marks as valid.
#include <string>

// Places of the configuration files below the root.
inline constexpr const wchar_t* kCadStandardIniName = L"\\CAD\\CAD_standard.ini";
inline constexpr const wchar_t* kLayerUgIniName = L"\\CAD\\CAD_layerug.ini";
inline constexpr const wchar_t* kBoxSettingName = L"\\标准图框\\boxsetting.txt";
inline constexpr const wchar_t* kFrameFolderName = L"\\标准图框\\";

// The REG_SZ value `valueName` of `subKey` below predefined root number `root` (0 to 9; 2 is
// HKEY_LOCAL_MACHINE), in the host code page; empty on any failure or another type.
std::string ReadRegistryString(int root, const std::string& subKey, const std::string& valueName);

// "<CZConfig>\config", followed by "\<folder>" for each row of standard.csv marked valid; empty
// when the registry names no tool folder. Read afresh at each call.
std::wstring GetConfigRoot();
