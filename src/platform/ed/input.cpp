#include "platform/ed/input.hpp"

#include "platform/ed/editor_state.hpp"

void SetHostInputSource(HostInputSource source) { Editor().input = std::move(source); }

bool ReadHostInputLine(const std::wstring& prompt, std::wstring& line) {
    line.clear();
    return Editor().input && Editor().input(prompt, line);
}
