#pragma once
// The application framework of a module, as the host's wizard generates it: the module's
// command and LISP tables, gathered by the linker in the named data sections ARXCOMMA and
// ADSSYMBO, and the application classes AcRxDbxApp and AcRxArxApp that turn host messages into
// virtual calls.
#include <map>

#include "platform/ed/commands.hpp"
#include "platform/ed/documents.hpp"
#include "platform/ed/lisp.hpp"
#include "platform/ed/rxapp.hpp"

struct ArxCommandEntry {
    const ACHAR* groupName;
    const ACHAR* globalName;
    const ACHAR* localName;  // null: loaded from the string resources by stringId
    int flags;
    AcRxFunctionPtr function;
    AcEdUIContext* uiContext;
    int stringId;
};

struct AdsSymbolEntry {
    const ACHAR* name;  // null: loaded from the string resources by stringId
    int (*function)();
    bool registerFunction;  // also acedRegFunc
    int stringId;
};

// Puts a pointer to `row` into the table of its kind. Rows may stand in any source file of the
// module; the linker gathers them in link order.
#define ARX_TABLE_SLOT(sectionName, type, row) \
    __attribute__((used, section(sectionName))) type* row##_slot = &row

#define ACED_ARXCOMMAND_ENTRY(row) ARX_TABLE_SLOT("ARXCOMMA", ArxCommandEntry, row)
#define ACED_ADSSYMBOL_ENTRY(row) ARX_TABLE_SLOT("ADSSYMBO", AdsSymbolEntry, row)

template <typename Row>
struct ArxTable {
    Row** first;
    Row** last;
    Row** begin() const { return first; }
    Row** end() const { return last; }
};

// The module's two tables, defined by the module itself so that the section bounds are those of
// the module's own binary.
ArxTable<ArxCommandEntry> ArxCommandTable();
ArxTable<AdsSymbolEntry> AdsSymbolTable();

// The database side of an application: locking, MDI awareness, server components.
class AcRxDbxApp {
public:
    AcRxDbxApp() = default;
    virtual ~AcRxDbxApp() = default;

    virtual AcRx::AppRetCode On_kInitAppMsg(void* appId) {
        if (m_bUnlocked) acrxDynamicLinker->unlockApplication(appId);
        if (m_bMDIAware) acrxDynamicLinker->registerAppMDIAware(appId);
        RegisterServerComponents();
        // No custom database classes: the class table of the module is empty.
        return AcRx::kRetOK;
    }
    virtual AcRx::AppRetCode On_kUnloadAppMsg(void*) { return AcRx::kRetOK; }
    virtual AcRx::AppRetCode On_kLoadDwgMsg(void*) { return AcRx::kRetOK; }
    virtual AcRx::AppRetCode On_kUnloadDwgMsg(void*) { return AcRx::kRetOK; }
    virtual AcRx::AppRetCode On_kInvkSubrMsg(void*) { return AcRx::kRetOK; }
    virtual AcRx::AppRetCode On_kCfgMsg(void*) { return AcRx::kRetOK; }
    virtual AcRx::AppRetCode On_kEndMsg(void*) { return AcRx::kRetOK; }
    virtual AcRx::AppRetCode On_kQuitMsg(void*) { return AcRx::kRetOK; }
    virtual AcRx::AppRetCode On_kSaveMsg(void*) { return AcRx::kRetOK; }
    virtual AcRx::AppRetCode On_kDependencyMsg(void*) { return AcRx::kRetOK; }
    virtual AcRx::AppRetCode On_kNoDependencyMsg(void*) { return AcRx::kRetOK; }
    virtual AcRx::AppRetCode On_kOleUnloadAppMsg(void*) { return AcRx::kRetOK; }
    virtual AcRx::AppRetCode On_kPreQuitMsg(void*) { return AcRx::kRetOK; }
    virtual AcRx::AppRetCode On_kInitDialogMsg(void*) { return AcRx::kRetOK; }
    virtual AcRx::AppRetCode On_kEndDialogMsg(void*) { return AcRx::kRetOK; }
    virtual AcRx::AppRetCode On_kNullMsg(void*) { return AcRx::kRetOK; }
    virtual void RegisterServerComponents() = 0;

    // Dispatches a host message by its code; codes above kEndDialogMsg are not dispatched.
    AcRx::AppRetCode Dispatch(AcRx::AppMsgCode message, void* appId) {
        using Handler = AcRx::AppRetCode (AcRxDbxApp::*)(void*);
        static constexpr Handler kHandlers[] = {
            &AcRxDbxApp::On_kNullMsg,         &AcRxDbxApp::On_kInitAppMsg,
            &AcRxDbxApp::On_kUnloadAppMsg,    &AcRxDbxApp::On_kLoadDwgMsg,
            &AcRxDbxApp::On_kUnloadDwgMsg,    &AcRxDbxApp::On_kInvkSubrMsg,
            &AcRxDbxApp::On_kCfgMsg,          &AcRxDbxApp::On_kEndMsg,
            &AcRxDbxApp::On_kQuitMsg,         &AcRxDbxApp::On_kSaveMsg,
            &AcRxDbxApp::On_kDependencyMsg,   &AcRxDbxApp::On_kNoDependencyMsg,
            &AcRxDbxApp::On_kOleUnloadAppMsg, &AcRxDbxApp::On_kPreQuitMsg,
            &AcRxDbxApp::On_kInitDialogMsg,   &AcRxDbxApp::On_kEndDialogMsg,
        };
        if (message < 0 || message > AcRx::kEndDialogMsg) return AcRx::kRetOK;
        return (this->*kHandlers[message])(appId);
    }

    HINSTANCE m_hdllInstance = nullptr;
    bool m_bUnlocked = true;
    bool m_bMDIAware = true;
};

// The editor side: registers the commands of ARXCOMMA on load and removes them on unload,
// defines the LISP functions of ADSSYMBO for each document and dispatches their calls.
class AcRxArxApp : public AcRxDbxApp {
public:
    AcRx::AppRetCode On_kInitAppMsg(void* appId) override {
        AcRx::AppRetCode result = AcRxDbxApp::On_kInitAppMsg(appId);
        for (ArxCommandEntry* row : ArxCommandTable()) {
            if (!row) continue;
            // Session commands run without the module's resources.
            HINSTANCE resources = (row->flags & ACRX_CMD_SESSION) ? nullptr : m_hdllInstance;
            acedRegCmds->addCommand(row->groupName, row->globalName, row->localName, row->flags,
                                    row->function, row->uiContext, -1, resources, nullptr);
        }
        return result;
    }
    AcRx::AppRetCode On_kUnloadAppMsg(void* appId) override {
        for (ArxCommandEntry* row : ArxCommandTable())
            if (row) acedRegCmds->removeCmd(row->groupName, row->globalName);
        return AcRxDbxApp::On_kUnloadAppMsg(appId);
    }
    AcRx::AppRetCode On_kLoadDwgMsg(void*) override {
        int index = 0;
        for (AdsSymbolEntry* row : AdsSymbolTable()) {
            if (!row) continue;
            acedDefun(row->name, index);
            if (row->registerFunction) acedRegFunc(row->function, index);
            ++index;
        }
        return AcRx::kRetOK;
    }
    AcRx::AppRetCode On_kUnloadDwgMsg(void*) override {
        int index = 0;
        for (AdsSymbolEntry* row : AdsSymbolTable())
            if (row) acedUndef(row->name, index++);
        return AcRx::kRetOK;
    }
    AcRx::AppRetCode On_kInvkSubrMsg(void*) override {
        int code = acedGetFunCode();
        int index = 0;
        for (AdsSymbolEntry* row : AdsSymbolTable()) {
            if (!row) continue;
            if (index++ == code) row->function();
        }
        return AcRx::kRetOK;
    }
};

// Per-document data of a module: one T for each document, dropped when the document goes.
template <typename T>
class AcApDataManager : public AcApDocManagerReactor {
public:
    AcApDataManager() { acDocManager->addReactor(this); }
    ~AcApDataManager() override { acDocManager->removeReactor(this); }
    AcApDataManager(const AcApDataManager&) = delete;
    AcApDataManager& operator=(const AcApDataManager&) = delete;

    void documentToBeDestroyed(AcApDocument* document) override { data_.erase(document); }
    T& docData(AcApDocument* document) { return data_[document]; }
    T& docData() { return docData(acDocManager->curDocument()); }

private:
    std::map<AcApDocument*, T> data_;
};
