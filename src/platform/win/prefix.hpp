#pragma once
// The prefix: the folder that stands for the Windows machine the module expects.
//   drives/<letter>/   one folder per drive letter
//   registry.reg       the registry, in the text format of a registry export
//   host.ini           [Host] CodePage=936|65001, CurrentDirectory=C:\ ;
//                      [Environment] NAME=value, seen by getenv when the process lacks NAME
#include <filesystem>
#include <string>

inline constexpr const char* kPrefixEnvironmentVariable = "TAVRIK_PREFIX";
inline constexpr const char* kRegistryFileName = "registry.reg";
inline constexpr const char* kHostSettingsFileName = "host.ini";

// Makes `folder` the prefix of the process: reads its settings and registry into the host
// state. False, with a message naming the problem, when the folder or a setting is unusable.
bool OpenPrefix(const std::filesystem::path& folder, std::string& error);
// Makes an empty, valid prefix: drives C and D, an empty registry, code page 936 and a
// LOCALAPPDATA below drive C. Refuses a folder that exists and is not empty.
bool InitPrefix(const std::filesystem::path& folder, std::string& error);
