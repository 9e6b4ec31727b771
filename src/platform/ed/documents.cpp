#include "platform/ed/documents.hpp"

#include <algorithm>

#include "platform/ed/editor_state.hpp"
#include "platform/win/messages.hpp"

namespace {

auto FindDocument(const AcApDocument* document) {
    auto& documents = Editor().documents;
    return std::find_if(documents.begin(), documents.end(),
                        [&](const std::unique_ptr<AcApDocument>& d) { return d.get() == document; });
}

}  // namespace

AcApDocument::AcApDocument(AcDbDatabase* database, std::wstring fileName)
    : database_(database), fileName_(std::move(fileName)) {}

bool AcApDocumentIterator::done() const { return index_ >= Editor().documents.size(); }
void AcApDocumentIterator::step() { ++index_; }
AcApDocument* AcApDocumentIterator::document() const {
    return done() ? nullptr : Editor().documents[index_].get();
}

AcApDocument* AcApDocManager::curDocument() const { return Editor().currentDocument; }

int AcApDocManager::documentCount() const { return static_cast<int>(Editor().documents.size()); }

Acad::ErrorStatus AcApDocManager::lockDocument(AcApDocument* document, AcAp::DocLockMode mode,
                                               const ACHAR*, const ACHAR*, bool) {
    if (!document || FindDocument(document) == Editor().documents.end()) return Acad::eNoDocument;
    if (document->lockCount_++ == 0) document->lockMode_ = mode;
    return Acad::eOk;
}

Acad::ErrorStatus AcApDocManager::unlockDocument(AcApDocument* document) {
    if (!document || document->lockCount_ == 0) return Acad::eNotApplicable;
    if (--document->lockCount_ == 0) document->lockMode_ = AcAp::kNotLocked;
    return Acad::eOk;
}

AcApDocumentIterator* AcApDocManager::newAcApDocumentIterator() { return new AcApDocumentIterator(); }

Acad::ErrorStatus AcApDocManager::appContextCloseDocument(AcApDocument* document) {
    EditorState& state = Editor();
    if (!state.applicationContext) return Acad::eNotApplicable;
    auto found = FindDocument(document);
    if (found == state.documents.end()) return Acad::eNoDocument;
    for (AcApDocManagerReactor* reactor : std::vector(state.reactors)) reactor->documentToBeDestroyed(document);
    std::unique_ptr<AcApDocument> closing = std::move(*found);
    state.documents.erase(found);
    if (state.currentDocument == document)
        state.currentDocument = state.documents.empty() ? nullptr : state.documents.front().get();
    return Acad::eOk;
}

void AcApDocManager::executeInApplicationContext(void (*function)(void*), void* data) {
    bool saved = Editor().applicationContext;
    Editor().applicationContext = true;
    if (function) function(data);
    Editor().applicationContext = saved;
}

bool AcApDocManager::isApplicationContext() const { return Editor().applicationContext; }

Acad::ErrorStatus AcApDocManager::setCurDocument(AcApDocument* document) {
    if (FindDocument(document) == Editor().documents.end()) return Acad::eNoDocument;
    Editor().currentDocument = document;
    for (AcApDocManagerReactor* reactor : std::vector(Editor().reactors)) reactor->documentBecameCurrent(document);
    return Acad::eOk;
}

void AcApDocManager::addReactor(AcApDocManagerReactor* reactor) {
    auto& reactors = Editor().reactors;
    if (reactor && std::find(reactors.begin(), reactors.end(), reactor) == reactors.end()) reactors.push_back(reactor);
}

void AcApDocManager::removeReactor(AcApDocManagerReactor* reactor) { std::erase(Editor().reactors, reactor); }

AcApDocManager* acDocManagerPtr() {
    static AcApDocManager manager;
    return &manager;
}

AcApDocument* OpenHostDocument(AcDbDatabase* database, const std::wstring& fileName) {
    EditorState& state = Editor();
    state.documents.push_back(std::make_unique<AcApDocument>(database, fileName));
    AcApDocument* document = state.documents.back().get();
    for (AcApDocManagerReactor* reactor : std::vector(state.reactors)) reactor->documentCreated(document);
    acDocManager->setCurDocument(document);
    return document;
}

int acdbSetDbmod(AcDbDatabase* database, int value) {
    int& flag = Editor().dbmod[database];
    int former = flag;
    flag = value;
    return former;
}

int acdbGetDbmod(const AcDbDatabase* database) {
    auto found = Editor().dbmod.find(database);
    return found == Editor().dbmod.end() ? 0 : found->second;
}

HWND CView::GetSafeHwnd() const { return HostMainWindow(); }

BOOL CWinApp::PumpMessage() {
    RunDueTimers();
    return TRUE;
}

Acad::ErrorStatus AcApDocManager::setDefaultFormatForSave(int format) {
    Editor().defaultSaveFormat = format;
    return Acad::eOk;
}

int AcApDocManager::defaultFormatForSave() const { return Editor().defaultSaveFormat; }

CView* acedGetAcadDwgView() {
    static CView view;
    return &view;
}

CWinApp* acedGetAcadWinApp() {
    static CWinApp app;
    return &app;
}

HWND adsw_acadMainWnd() { return HostMainWindow(); }
