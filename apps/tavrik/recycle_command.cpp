// tavrik recycle list | restore ITEM... | restore --all: the files of the prefix's recycle folder.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "platform/win/prefix.hpp"
#include "platform/win/recycle.hpp"
#include "subcommands.hpp"

namespace {

int Usage() {
    std::fprintf(stderr,
                 "usage: tavrik recycle list [--prefix DIR]\n"
                 "       tavrik recycle restore [--prefix DIR] ITEM...   (ITEM as list prints it)\n"
                 "       tavrik recycle restore [--prefix DIR] --all     (the latest version of each file)\n");
    return kExitUsage;
}

int List(const std::string& prefix) {
    std::vector<RecycledFile> files = ListRecycle(prefix);
    if (files.empty()) std::printf("the recycle folder of %s is empty\n", prefix.c_str());
    for (const RecycledFile& file : files)
        std::printf("%s\t%ju bytes\tfrom %s\n", file.item.c_str(), file.size, file.original.c_str());
    return kExitOk;
}

// The items to restore: those named, or for --all the last version of each original path.
std::vector<std::string> Chosen(const std::string& prefix, const std::vector<std::string>& named, bool all) {
    if (!all) return named;
    std::vector<std::string> items;
    for (const RecycledFile& file : LatestVersions(ListRecycle(prefix))) items.push_back(file.item);
    return items;
}

int Restore(const std::string& prefix, const std::vector<std::string>& items) {
    int status = kExitOk;
    for (const std::string& item : items) {
        std::string error;
        if (RestoreRecycled(prefix, item, error)) {
            std::printf("restored %s\n", item.c_str());
        } else {
            std::fprintf(stderr, "tavrik recycle: %s\n", error.c_str());
            status = kExitFailure;
        }
    }
    return status;
}

}  // namespace

int RunRecycle(int argc, char** argv) {
    if (argc < 2) return Usage();
    std::string action = argv[1];
    const char* fromEnvironment = std::getenv(kPrefixEnvironmentVariable);
    std::string prefix = fromEnvironment ? fromEnvironment : "";
    std::vector<std::string> items;
    bool all = false;
    for (int i = 2; i < argc; ++i) {
        std::string_view arg = argv[i];
        if (arg == "--prefix" && i + 1 < argc) prefix = argv[++i];
        else if (arg == "--all") all = true;
        else items.emplace_back(arg);
    }
    if (prefix.empty()) return Usage();
    std::string error;
    if (!OpenPrefix(prefix, error)) {
        std::fprintf(stderr, "tavrik recycle: %s\n", error.c_str());
        return kExitUsage;
    }
    if (action == "list" && items.empty() && !all) return List(prefix);
    if (action == "restore" && (all != !items.empty())) return Restore(prefix, Chosen(prefix, items, all));
    return Usage();
}
