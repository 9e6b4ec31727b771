#pragma once
// The module's skin towards the host: the application object, which runs the batch as soon as
// the module is loaded, and the end of a completed batch, a timer that closes the host.
#include "platform/ed/arx_app.hpp"
#include "platform/win/wintypes.hpp"

inline constexpr int kTavrikApiVersion = 0x110000;
inline constexpr const ACHAR* kCommandGroup = L"Tavrik";

class CTavrikApp : public AcRxArxApp {
public:
    // Registers the commands, then runs the batch before returning to the host.
    AcRx::AppRetCode On_kInitAppMsg(void* appId) override;
    void RegisterServerComponents() override {}
};

// The per-document data of the module: reserved, with no fields yet.
struct CDocData {};

// Sleeps a second, then again while the drawing window is disabled: at least one second, no
// limit.
void WaitForHostReady();
// Closes every document but the current one, unsaved and without asking.
void CloseOtherDocuments(void* unused);
// Closes the host after a completed batch: other documents go, the working drawing is marked
// unmodified, and the main window gets WM_CLOSE. The timer is left armed.
void QuitTimerProc(HWND window, UINT message, UINT_PTR id, DWORD time);
