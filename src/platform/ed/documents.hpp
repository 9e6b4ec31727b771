#pragma once
// Documents of the host and their manager. A document shows a database, which it does not own.
#include <string>

#include "platform/db/status.hpp"
#include "platform/win/wintypes.hpp"

class AcDbDatabase;

namespace AcAp {
enum DocLockMode : int {
    kNone = 0x00,
    kAutoWrite = 0x01,
    kNotLocked = 0x02,
    kWrite = 0x04,
    kProtectedAutoWrite = 0x14,
    kRead = 0x20,
    kXWrite = 0x40,
};
}  // namespace AcAp

// The transaction manager of a document, as far as a console host has one: graphics that a
// command queues for the screen. Without a screen the queue is only counted.
class AcTransactionManager {
public:
    void queueForGraphicsFlush() { ++queued_; }
    void flushGraphics() { queued_ = 0; }
    int queuedFlushes() const { return queued_; }

private:
    int queued_ = 0;
};

class AcApDocument {
public:
    AcApDocument(AcDbDatabase* database, std::wstring fileName);
    AcDbDatabase* database() const { return database_; }
    const ACHAR* fileName() const { return fileName_.c_str(); }
    AcAp::DocLockMode lockMode() const { return lockMode_; }
    int lockCount() const { return lockCount_; }
    AcTransactionManager* transactionManager() { return &transactions_; }

private:
    friend class AcApDocManager;
    AcDbDatabase* database_;
    std::wstring fileName_;
    AcAp::DocLockMode lockMode_ = AcAp::kNotLocked;
    int lockCount_ = 0;
    AcTransactionManager transactions_;
};

class AcApDocManagerReactor {
public:
    virtual ~AcApDocManagerReactor() = default;
    virtual void documentCreated(AcApDocument*) {}
    virtual void documentToBeDestroyed(AcApDocument*) {}
    virtual void documentBecameCurrent(AcApDocument*) {}
};

class AcApDocumentIterator {
public:
    bool done() const;
    void step();
    AcApDocument* document() const;

private:
    size_t index_ = 0;
};

class AcApDocManager {
public:
    AcApDocument* curDocument() const;
    AcApDocument* mdiActiveDocument() const { return curDocument(); }
    int documentCount() const;
    // Locks nest; the mode of the first lock stands until the last unlock.
    Acad::ErrorStatus lockDocument(AcApDocument* document, AcAp::DocLockMode mode = AcAp::kWrite,
                                   const ACHAR* globalCommand = nullptr,
                                   const ACHAR* localCommand = nullptr, bool prompt = true);
    Acad::ErrorStatus unlockDocument(AcApDocument* document);
    AcApDocumentIterator* newAcApDocumentIterator();
    // Closes without asking to save; reactors hear documentToBeDestroyed first. Allowed only
    // in the application context.
    Acad::ErrorStatus appContextCloseDocument(AcApDocument* document);
    void executeInApplicationContext(void (*function)(void*), void* data);
    bool isApplicationContext() const;
    Acad::ErrorStatus setCurDocument(AcApDocument* document);
    // The file format of later saves (24: the 2004 drawing format); kept, and read back by
    // defaultFormatForSave.
    Acad::ErrorStatus setDefaultFormatForSave(int format);
    int defaultFormatForSave() const;
    void addReactor(AcApDocManagerReactor* reactor);
    void removeReactor(AcApDocManagerReactor* reactor);
};

AcApDocManager* acDocManagerPtr();
#define acDocManager (acDocManagerPtr())

// The host's side: opens a document on a database and makes it current.
AcApDocument* OpenHostDocument(AcDbDatabase* database, const std::wstring& fileName);

// The database's modification flag (DBMOD); returns the former value.
int acdbSetDbmod(AcDbDatabase* database, int value);
int acdbGetDbmod(const AcDbDatabase* database);

// The host's windows as the module reaches them.
class CView {
public:
    HWND GetSafeHwnd() const;
};
class CWinApp {
public:
    BOOL PumpMessage();  // one turn of the message pump: runs the timers that are due
};
CView* acedGetAcadDwgView();
CWinApp* acedGetAcadWinApp();
HWND adsw_acadMainWnd();
