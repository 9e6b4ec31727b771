#pragma once
#include <gtest/gtest.h>

#include "platform/ed/editor_state.hpp"
#include "platform/win/host_state.hpp"

// Fresh editor and host state for each test.
class EditorTest : public ::testing::Test {
protected:
    void SetUp() override {
        ResetEditorState();
        ResetHostState();
    }
    void TearDown() override {
        ResetEditorState();
        ResetHostState();
    }
};
