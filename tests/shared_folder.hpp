#pragma once
// The project's shared folder (the plate generator, the corpus of real drawings): TAVRIK_SHARED
// when it is set, else the folder "shared" beside the repository when there is one, else
// /work/shared. Tests that need a file of it skip, naming the file, when it is missing.
#include <cstdlib>
#include <filesystem>
#include <string>

inline std::filesystem::path SharedFolder() {
    if (const char* set = std::getenv("TAVRIK_SHARED"); set && *set) return set;
    std::filesystem::path beside = std::filesystem::path(TAVRIK_SOURCE_DIR).parent_path() / "shared";
    std::error_code error;
    return std::filesystem::is_directory(beside, error) ? beside : std::filesystem::path("/work/shared");
}

inline std::filesystem::path SharedFile(const std::string& relative) { return SharedFolder() / relative; }
