#pragma once
// The host's window and message services: timers and the message loop that runs them, the
// main window (WM_CLOSE to it ends the host), Sleep on the host clock, and message boxes.
#include <cstdio>
#include <string_view>

#include "platform/win/wintypes.hpp"

// The host's main window. It is enabled while the host can take input.
HWND HostMainWindow();

// With a null window the id is chosen by the host and returned; with a window, the timer of
// that window and id is set anew. Timers repeat until killed.
UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT elapseMs, TIMERPROC proc);
BOOL KillTimer(HWND window, UINT_PTR id);
// WM_CLOSE to the main window asks the host to end; other messages do nothing here.
LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
BOOL IsWindowEnabled(HWND window);
void Sleep(DWORD milliseconds);
DWORD GetTickCount();

// Runs every timer that is due, once each, in order of due time. Returns how many ran.
int RunDueTimers();
// Milliseconds until the next timer is due (0 if one is due now); -1 when none is armed.
long long MillisecondsToNextTimer();
// Runs timers until the main window is closed or no timer is armed, sleeping on the host
// clock between them. True when the host was closed.
bool RunMessageLoop();
bool HostCloseRequested();

// Text for the user on stderr (UTF-8). When the host is interactive the box waits for Enter,
// in a batch it does not. The text and caption are in the host code page.
int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type);
// The same for the host's own alerts: the text and a line end on stderr, then the wait.
void ShowUserMessage(std::wstring_view text);
void WriteConsoleText(std::FILE* stream, std::wstring_view text);
