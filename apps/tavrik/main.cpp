// tavrik: a headless CAD host. With no subcommand it runs the host; otherwise the first
// argument names a subcommand of the table below.
#include <cstdio>
#include <cstring>
#include <string_view>

#include "subcommands.hpp"

namespace {

struct Subcommand {
    const char* name;
    int (*run)(int argc, char** argv);
    const char* usage;
};

const Subcommand kSubcommands[] = {
    {"prefix", RunPrefix, "tavrik prefix init DIR      make an empty, valid prefix"},
    {"convert", RunConvert, "tavrik convert IN OUT       convert a drawing"},
    {"render", RunRender, "tavrik render IN OUT        draw a drawing to .png, .svg or .pdf (see render --help)"},
    {"recycle", RunRecycle, "tavrik recycle list|restore ITEM...|restore --all [--prefix DIR]\n"
                            "                            files the batch deleted or overwrote"},
    {"info", RunInfo, "tavrik info IN [--json]     version, code page, extents, counts, blocks, texts"},
};

void PrintHelp() {
    std::printf(
        "usage: tavrik [--prefix DIR] [--module FILE]... [--script FILE] [--timeout SECONDS] [DRAWING]\n"
        "       tavrik SUBCOMMAND ARGS...\n"
        "\n"
        "Runs a headless CAD host: loads each module (Tavrik.arx beside the program unless\n"
        "--module is given; its load runs the batch when the prefix holds a hand-off), runs\n"
        "the message loop, then takes commands from the script (one command or answer per\n"
        "line) or the terminal until QUIT, end of input, or the module closes the host.\n"
        "DRAWING is opened as the current document first. HELP at the command line lists the\n"
        "commands (OPEN, SAVE, SAVEAS, MOVE, COPY, the module's) and the LISP functions; at a\n"
        "terminal the line can be edited and the history recalled; Esc or ^C cancels a prompt.\n"
        "\n"
        "  --prefix DIR    the Windows machine: drive folders, registry.reg, host.ini\n"
        "                  (default: $TAVRIK_PREFIX)\n"
        "  --module FILE   a module to load instead of Tavrik.arx; may be repeated\n"
        "  --script FILE   read commands from FILE instead of the terminal\n"
        "  --timeout S     end the run after S seconds, printing the last line of Cg.log\n"
        "  --help          this text\n"
        "  --version       the version\n"
        "\n"
        "subcommands:\n");
    for (const Subcommand& s : kSubcommands) std::printf("  %s\n", s.usage);
    std::printf(
        "\nOne run at a time works on a prefix: a second run on a prefix in use is refused.\n"
        "Files that the batch deletes or overwrites inside the prefix are kept in its recycle\n"
        "folder for RecycleDays days (host.ini, 14 by default). When a batch ends without a\n"
        "merged drawing that reads at the name the hand-off gives, the host says so and fails.\n"
        "\nexit status: 0 success, 1 failure, 2 usage error or unreadable host file\n");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc >= 2) {
        std::string_view first = argv[1];
        if (first == "--help" || first == "-h") {
            PrintHelp();
            return kExitOk;
        }
        if (first == "--version") {
            std::printf("tavrik %s\n", TAVRIK_VERSION);
            return kExitOk;
        }
        for (const Subcommand& s : kSubcommands) {
            if (first != s.name) continue;
            if (!s.run) {
                std::fprintf(stderr, "tavrik: the subcommand %s is not available in this build\n", s.name);
                return kExitFailure;
            }
            return s.run(argc - 1, argv + 1);
        }
    }
    return RunHost(argc, argv);
}
