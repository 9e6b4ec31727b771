#include "line_input.hpp"

#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <readline/history.h>
#include <readline/readline.h>

#include "platform/win/codepage.hpp"
#include "platform/win/messages.hpp"
#include "platform/win/text.hpp"

namespace {

bool waiting = false;     // a prompt is on the screen, its line not yet complete
bool completed = false;
bool ended = false;     // the input ended instead of a line
std::string typed;

void OnLine(char* line) {
    completed = true;
    ended = line == nullptr;
    typed.clear();
    if (line) {
        typed = line;
        if (*line && std::string(line) != "^C") add_history(line);
        std::free(line);
    }
    rl_callback_handler_remove();
    waiting = false;
}

// Esc alone, told from the start of a key sequence (an arrow key's) by the silence after it,
// comes to readline as this key, which no terminal sends.
constexpr int kEscapeAlone = 0x1c;
constexpr int kEscape = 0x1b;
constexpr int kSequenceGapMs = 50;

int ReadKey(FILE* stream) {
    int key = rl_getc(stream);
    if (key != kEscape) return key;
    pollfd more{fileno(stream), POLLIN, 0};
    return ::poll(&more, 1, kSequenceGapMs) > 0 ? key : kEscapeAlone;
}

// Esc: the line becomes the cancel answer and is given at once.
int CancelLine(int count, int key) {
    rl_replace_line("^C", 0);
    rl_point = rl_end;
    return rl_newline(count, key);  // as Enter: readline ends the screen line, OnLine gets it
}

void Prepare() {
    static bool prepared = false;
    if (prepared) return;
    prepared = true;
    rl_readline_name = "tavrik";
    rl_getc_function = ReadKey;
    rl_bind_key(kEscapeAlone, CancelLine);
    using_history();
}

}  // namespace

ReadResult ReadTerminalLine(const std::wstring& prompt, long long timeoutMs, std::wstring& line) {
    Prepare();
    if (!waiting) {
        // Lines of the prompt before its last go out as text; readline keeps only the last.
        size_t cut = prompt.rfind(L'\n');
        if (cut != std::wstring::npos) WriteConsoleText(stdout, prompt.substr(0, cut + 1));
        std::fflush(stdout);
        rl_callback_handler_install(Utf8FromWide(cut == std::wstring::npos ? prompt : prompt.substr(cut + 1)).c_str(),
                                    OnLine);
        waiting = true;
    }
    completed = false;
    while (!completed) {
        pollfd input{STDIN_FILENO, POLLIN, 0};
        int ready = ::poll(&input, 1, static_cast<int>(timeoutMs));
        if (ready == 0) return ReadResult::kTimeout;
        if (ready < 0) continue;
        rl_callback_read_char();
    }
    if (ended) return ReadResult::kEnd;
    line = TrimBlanks(WideFromUtf8(typed));
    return ReadResult::kLine;
}
