#include "platform/ed/editor_state.hpp"

EditorState& Editor() {
    static EditorState state;
    return state;
}

void ResetEditorState() { Editor() = EditorState{}; }
