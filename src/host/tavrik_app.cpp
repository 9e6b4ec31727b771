#include "host/tavrik_app.hpp"

#include <vector>

#include "host/module_state.hpp"
#include "pipeline/batch_driver.hpp"
#include "platform/db/database.hpp"
#include "platform/win/messages.hpp"

AcRx::AppRetCode CTavrikApp::On_kInitAppMsg(void* appId) {
    m_hdllInstance = Module().moduleInstance;
    AcRx::AppRetCode result = AcRxArxApp::On_kInitAppMsg(appId);
    RunBatch();
    return result;
}

void WaitForHostReady() {
    HWND window = acedGetAcadDwgView()->GetSafeHwnd();
    do {
        Sleep(1000);
    } while (!IsWindowEnabled(window));
}

void CloseOtherDocuments(void*) {
    AcApDocumentIterator* iterator = acDocManager->newAcApDocumentIterator();
    std::vector<AcApDocument*> others;
    for (; !iterator->done(); iterator->step())
        if (iterator->document() != acDocManager->curDocument()) others.push_back(iterator->document());
    for (AcApDocument* document : others) {
        acdbSetDbmod(document->database(), 0);
        acDocManager->appContextCloseDocument(document);
        acedGetAcadWinApp()->PumpMessage();
    }
    delete iterator;
}

void QuitTimerProc(HWND, UINT, UINT_PTR, DWORD) {
    WaitForHostReady();
    acDocManager->executeInApplicationContext(CloseOtherDocuments, nullptr);
    acdbSetDbmod(acdbHostApplicationServices()->workingDatabase(), 0);
    SendMessageW(adsw_acadMainWnd(), WM_CLOSE, 0, 0);
}
