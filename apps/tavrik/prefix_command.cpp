// tavrik prefix init DIR
#include <cstdio>
#include <string>
#include <string_view>

#include "platform/win/prefix.hpp"
#include "subcommands.hpp"

int RunPrefix(int argc, char** argv) {
    if (argc != 3 || std::string_view(argv[1]) != "init") {
        std::fprintf(stderr, "usage: tavrik prefix init DIR\n");
        return kExitUsage;
    }
    std::string error;
    if (!InitPrefix(argv[2], error)) {
        std::fprintf(stderr, "tavrik: %s\n", error.c_str());
        return kExitFailure;
    }
    std::printf("prefix made at %s\n", argv[2]);
    return kExitOk;
}
