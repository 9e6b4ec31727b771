// A small module for the host program's tests: it registers commands on load, defines a LISP
// function per document, and can arm a timer that closes the host, as a finished batch does.
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "platform/db/database.hpp"
#include "platform/ed/commands.hpp"
#include "platform/ed/documents.hpp"
#include "platform/ed/input.hpp"
#include "platform/ed/lisp.hpp"
#include "platform/ed/rxapp.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/win/messages.hpp"

namespace {

const ACHAR* kGroup = L"TavrikTest";

void Hello() {
    std::wstring name;
    ReadHostInputLine(L"Name: ", name);
    acutPrintf(L"你好 hello %s\n", name.c_str());
}

void Throw() { throw std::runtime_error("boom"); }

// Fails while a drawing of its own is the working database, as the batch does on a bad
// configuration row; the drawing stays open.
void ThrowInDrawing() {
    auto* drawing = new AcDbDatabase(true, false);
    drawing->setFilename(L"D:\\WORK\\PLATE.dwg");
    acdbHostApplicationServices()->setWorkingDatabase(drawing);
    throw std::invalid_argument("Invalid argument");
}

void QuitTimerProc(HWND, UINT, UINT_PTR, DWORD) {
    acutPrintf(L"closing\n");
    SendMessageW(adsw_acadMainWnd(), WM_CLOSE, 0, 0);
}

void ArmQuit() { SetTimer(nullptr, 1, 100, QuitTimerProc); }

void Register() {
    acedRegCmds->addCommand(kGroup, L"_Hello", L"HELLO", ACRX_CMD_MODAL, Hello);
    acedRegCmds->addCommand(kGroup, L"_Throw", L"THROW", ACRX_CMD_MODAL, Throw);
    acedRegCmds->addCommand(kGroup, L"_ThrowInDrawing", L"THROWINDRAWING", ACRX_CMD_MODAL, ThrowInDrawing);
    acedRegCmds->addCommand(kGroup, L"_ArmQuit", L"ARMQUIT", ACRX_CMD_SESSION, ArmQuit);
}

void Unregister() {
    for (const ACHAR* name : {L"_Hello", L"_Throw", L"_ThrowInDrawing", L"_ArmQuit"}) acedRegCmds->removeCmd(kGroup, name);
    acutPrintf(L"unloaded\n");
}

}  // namespace

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* appId) {
    switch (message) {
    case AcRx::kInitAppMsg:
        acrxDynamicLinker->unlockApplication(appId);
        acrxDynamicLinker->registerAppMDIAware(appId);
        Register();
        if (std::getenv("TAVRIK_TEST_QUIT_ON_LOAD")) ArmQuit();
        break;
    case AcRx::kUnloadAppMsg: Unregister(); break;
    case AcRx::kLoadDwgMsg: acedDefun(L"tm-code", 0); break;
    case AcRx::kUnloadDwgMsg: acedUndef(L"tm-code", 0); break;
    case AcRx::kInvkSubrMsg: acutPrintf(L"lisp %d\n", acedGetFunCode()); break;
    default: break;
    }
    return AcRx::kRetOK;
}

extern "C" int acrxGetApiVersion() { return 0x110000; }
