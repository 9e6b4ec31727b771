#include <gtest/gtest.h>

#include <vector>

#include "editor_fixture.hpp"
#include "platform/ed/documents.hpp"
#include "platform/win/messages.hpp"

namespace {

struct Recorder : AcApDocManagerReactor {
    std::vector<AcApDocument*> destroyed;
    void documentToBeDestroyed(AcApDocument* document) override { destroyed.push_back(document); }
};

// Stand-ins for databases: the manager only holds their addresses.
AcDbDatabase* FakeDatabase(int& storage) { return reinterpret_cast<AcDbDatabase*>(&storage); }

using DocumentManager = EditorTest;

TEST_F(DocumentManager, LastOpenedDocumentIsCurrentAndShowsItsDatabase) {
    int a = 0, b = 0;
    OpenHostDocument(FakeDatabase(a), L"Drawing1.dwg");
    AcApDocument* second = OpenHostDocument(FakeDatabase(b), L"Drawing2.dwg");
    EXPECT_EQ(acDocManager->curDocument(), second);
    EXPECT_EQ(acDocManager->curDocument()->database(), FakeDatabase(b));
    EXPECT_EQ(acDocManager->documentCount(), 2);
}

TEST_F(DocumentManager, LocksNestAndKeepTheFirstMode) {
    int a = 0;
    AcApDocument* document = OpenHostDocument(FakeDatabase(a), L"D.dwg");
    EXPECT_EQ(acDocManager->lockDocument(document, AcAp::kWrite, nullptr, nullptr, true), Acad::eOk);
    EXPECT_EQ(acDocManager->lockDocument(document, AcAp::kRead), Acad::eOk);
    EXPECT_EQ(document->lockMode(), AcAp::kWrite);
    EXPECT_EQ(document->lockCount(), 2);
    acDocManager->unlockDocument(document);
    acDocManager->unlockDocument(document);
    EXPECT_EQ(document->lockMode(), AcAp::kNotLocked);
    EXPECT_EQ(acDocManager->lockDocument(nullptr), Acad::eNoDocument);
}

// What the module's quit timer does: close every document but the current one.
void CloseOthers(void*) {
    AcApDocumentIterator* it = acDocManager->newAcApDocumentIterator();
    std::vector<AcApDocument*> others;
    for (; !it->done(); it->step())
        if (it->document() != acDocManager->curDocument()) others.push_back(it->document());
    delete it;
    for (AcApDocument* d : others) {
        acdbSetDbmod(d->database(), 0);
        acDocManager->appContextCloseDocument(d);
        acedGetAcadWinApp()->PumpMessage();
    }
}

TEST_F(DocumentManager, ClosingInTheApplicationContextTellsReactorsAndKeepsTheCurrent) {
    int a = 0, b = 0, c = 0;
    AcApDocument* first = OpenHostDocument(FakeDatabase(a), L"1.dwg");
    AcApDocument* second = OpenHostDocument(FakeDatabase(b), L"2.dwg");
    AcApDocument* current = OpenHostDocument(FakeDatabase(c), L"3.dwg");
    Recorder recorder;
    acDocManager->addReactor(&recorder);
    EXPECT_EQ(acDocManager->appContextCloseDocument(first), Acad::eNotApplicable);  // not from a command
    acDocManager->executeInApplicationContext(CloseOthers, nullptr);
    acDocManager->removeReactor(&recorder);
    EXPECT_EQ(recorder.destroyed, (std::vector<AcApDocument*>{first, second}));
    EXPECT_EQ(acDocManager->documentCount(), 1);
    EXPECT_EQ(acDocManager->curDocument(), current);
    EXPECT_FALSE(acDocManager->isApplicationContext());
}

TEST_F(DocumentManager, SetDbmodReturnsTheFormerValue) {
    int a = 0;
    EXPECT_EQ(acdbSetDbmod(FakeDatabase(a), 5), 0);
    EXPECT_EQ(acdbSetDbmod(FakeDatabase(a), 0), 5);
    EXPECT_EQ(acdbGetDbmod(FakeDatabase(a)), 0);
}

TEST_F(DocumentManager, ViewAndMainWindowAreTheHostWindow) {
    EXPECT_EQ(acedGetAcadDwgView()->GetSafeHwnd(), adsw_acadMainWnd());
    EXPECT_TRUE(IsWindowEnabled(acedGetAcadDwgView()->GetSafeHwnd()));
}

}  // namespace
