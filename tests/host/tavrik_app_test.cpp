// The module's skin towards the host: host messages, the command and LISP tables, and the end
// of a completed batch, a timer that closes the host.
#include <gtest/gtest.h>

#include <algorithm>

#include "batch_fixture.hpp"
#include "host/module_state.hpp"
#include "host/tavrik_app.hpp"
#include "platform/ed/editor_state.hpp"
#include "platform/win/messages.hpp"

namespace {

class TavrikApp : public BatchTest {
protected:
    AcRx::AppRetCode Send(AcRx::AppMsgCode message) { return Module().app.Dispatch(message, &appId_); }
    AcRx::AppRetCode Load() { return Send(AcRx::kInitAppMsg); }

    static bool TimerArmed() { return !Host().timers.empty(); }
    static const AcEdCommandRecord* Command(const ArxCommandEntry& row) {
        return acedRegCmds->lookupGlobalCmd(row.globalName);
    }
    static int LispRowCount() {
        auto rows = AdsSymbolTable();
        return static_cast<int>(std::count_if(rows.begin(), rows.end(), [](AdsSymbolEntry* row) { return row != nullptr; }));
    }
    // A part of one exported sheet in the hand-off, which the batch completes.
    void HandOffOnePart() {
        WriteHandOff(L"D:\\out\\\r\nP-.dxf\r\n");
        SaveExport(HandOff(L"P-1.dxf"));
    }
    // Documents besides the host's: `count` of them, each on a modified drawing of its own.
    std::vector<AcApDocument*> OpenModifiedDocuments(int count) {
        std::vector<AcApDocument*> documents;
        for (int i = 0; i < count; ++i) {
            drawings_.push_back(std::make_unique<AcDbDatabase>(true, false));
            acdbSetDbmod(drawings_.back().get(), 1);
            documents.push_back(OpenHostDocument(drawings_.back().get(), L"Other" + std::to_wstring(i) + L".dwg"));
        }
        return documents;
    }
    static std::vector<AcApDocument*> OpenDocuments() {
        std::vector<AcApDocument*> documents;
        for (const auto& document : Editor().documents) documents.push_back(document.get());
        return documents;
    }

    int appId_ = 0;
    std::vector<std::unique_ptr<AcDbDatabase>> drawings_;
};

TEST_F(TavrikApp, MessageAboveFifteenReturnsZeroAndDoesNothing) {
    HandOffOnePart();
    EXPECT_EQ(Send(AcRx::kSuspendMsg), AcRx::kRetOK);
    EXPECT_EQ(Send(static_cast<AcRx::AppMsgCode>(99)), AcRx::kRetOK);
    EXPECT_TRUE(Editor().commands.empty());
    EXPECT_FALSE(TimerArmed());
    EXPECT_EQ(CgLog(), L"");
}

TEST_F(TavrikApp, MessagesSixToFifteenAndTheNullMessageReturnZeroAndDoNothing) {
    HandOffOnePart();
    EXPECT_EQ(Send(AcRx::kNullMsg), AcRx::kRetOK);
    for (int code = AcRx::kCfgMsg; code <= AcRx::kEndDialogMsg; ++code)
        EXPECT_EQ(Send(static_cast<AcRx::AppMsgCode>(code)), AcRx::kRetOK) << code;
    EXPECT_TRUE(Editor().commands.empty());
    EXPECT_TRUE(Editor().lispFunctions.empty());
    EXPECT_EQ(CgLog(), L"");
}

TEST_F(TavrikApp, LoadWithoutHandOffRegistersEveryCommandAndArmsNoTimer) {
    EXPECT_EQ(Load(), AcRx::kRetOK);
    ASSERT_NE(ArxCommandTable().begin(), ArxCommandTable().end());
    for (ArxCommandEntry* row : ArxCommandTable()) {
        if (!row) continue;
        EXPECT_NE(acedRegCmds->lookupGlobalCmd(row->globalName), nullptr) << row->globalName;
        EXPECT_NE(acedRegCmds->lookupLocalCmd(row->localName), nullptr) << row->localName;
    }
    EXPECT_FALSE(TimerArmed());
    EXPECT_FALSE(RunMessageLoop());
    EXPECT_FALSE(HostCloseRequested());
}

TEST_F(TavrikApp, LoadRunsTheBatchBeforeItReturns) {
    Load();
    EXPECT_EQ(CgLog(), L"20191115\n");
}

TEST_F(TavrikApp, LoadUnlocksTheModuleAndDeclaresItMdiAware) {
    Load();
    EXPECT_TRUE(Editor().applications[&appId_].unlocked);
    EXPECT_TRUE(Editor().applications[&appId_].mdiAware);
}

TEST_F(TavrikApp, InsertSheetIsASessionCommandOfTheGroupWithoutResources) {
    Module().moduleInstance = reinterpret_cast<HINSTANCE>(0x5000);
    Load();
    const AcEdCommandRecord* command = acedRegCmds->lookupLocalCmd(L"InsertSheet");
    ASSERT_NE(command, nullptr);
    EXPECT_EQ(command->globalName, L"_MyCommand1");
    EXPECT_EQ(command->groupName, L"Tavrik");
    EXPECT_EQ(command->flags, 0x200001);
    EXPECT_EQ(command->resourceHandle, nullptr);
    EXPECT_EQ(command->uiContext, nullptr);
    EXPECT_EQ(command->functionCode, -1);
}

TEST_F(TavrikApp, OnlySessionCommandsAreRegisteredWithoutTheModuleInstance) {
    HINSTANCE instance = reinterpret_cast<HINSTANCE>(0x5000);
    Module().moduleInstance = instance;
    Load();
    EXPECT_EQ(Module().app.m_hdllInstance, instance);
    for (ArxCommandEntry* row : ArxCommandTable()) {
        if (!row) continue;
        const AcEdCommandRecord* command = Command(*row);
        ASSERT_NE(command, nullptr) << row->globalName;
        EXPECT_EQ(command->resourceHandle, (row->flags & ACRX_CMD_SESSION) ? nullptr : instance) << row->globalName;
        EXPECT_EQ(command->flags, row->flags) << row->globalName;
    }
}

TEST_F(TavrikApp, UnloadRemovesTheCommands) {
    Load();
    EXPECT_EQ(Send(AcRx::kUnloadAppMsg), AcRx::kRetOK);
    for (ArxCommandEntry* row : ArxCommandTable()) {
        if (!row) continue;
        EXPECT_EQ(Command(*row), nullptr) << row->globalName;
    }
    EXPECT_TRUE(Editor().commands.empty());
}

TEST_F(TavrikApp, LoadWithAHandOffRunsTheBatchAndTheTimerClosesTheHost) {
    HandOffOnePart();
    Load();
    EXPECT_TRUE(ExistsAt(L"D:\\out\\P.dxf"));
    ASSERT_TRUE(TimerArmed());
    EXPECT_FALSE(HostCloseRequested());
    EXPECT_TRUE(RunMessageLoop());
    EXPECT_TRUE(HostCloseRequested());
}

TEST_F(TavrikApp, InsertSheetTypedByHandRunsTheBatchAndACompletedRunClosesTheHost) {
    Load();
    ASSERT_FALSE(TimerArmed());
    HandOffOnePart();
    const AcEdCommandRecord* command = acedRegCmds->lookupCmd(L"INSERTSHEET");
    ASSERT_NE(command, nullptr);
    command->function();
    EXPECT_TRUE(ExistsAt(L"D:\\out\\P.dxf"));
    EXPECT_EQ(Module().MergedFileName, L"D:\\out\\P.dxf");
    ASSERT_TRUE(TimerArmed());
    EXPECT_TRUE(RunMessageLoop());
    EXPECT_TRUE(HostCloseRequested());
}

TEST_F(TavrikApp, InsertSheetWithoutHandOffLeavesTheHostOpen) {
    Load();
    acedRegCmds->lookupLocalCmd(L"InsertSheet")->function();
    EXPECT_EQ(CgLog(), L"20191115\n20191115\n");
    EXPECT_FALSE(TimerArmed());
}

TEST_F(TavrikApp, TheQuitTimerFiresTwoSecondsAfterTheBatchAndIsNotKilled) {
    HandOffOnePart();
    Load();
    std::uint64_t armedAt = now_;
    now_ += 1999;
    EXPECT_EQ(RunDueTimers(), 0);
    EXPECT_FALSE(HostCloseRequested());
    now_ = armedAt + 2000;
    EXPECT_EQ(RunDueTimers(), 1);
    EXPECT_TRUE(HostCloseRequested());
    EXPECT_TRUE(TimerArmed());
}

TEST_F(TavrikApp, LoadingADocumentDefinesEveryLispFunctionByItsPlace) {
    Load();
    EXPECT_EQ(Send(AcRx::kLoadDwgMsg), AcRx::kRetOK);
    ASSERT_EQ(static_cast<int>(Editor().lispFunctions.size()), LispRowCount());
    int index = 0;
    for (AdsSymbolEntry* row : AdsSymbolTable()) {
        if (!row) continue;
        EXPECT_EQ(Editor().lispFunctions[index].name, row->name);
        EXPECT_EQ(Editor().lispFunctions[index].functionCode, index);
        ++index;
    }
    EXPECT_EQ(Send(AcRx::kUnloadDwgMsg), AcRx::kRetOK);
    EXPECT_TRUE(Editor().lispFunctions.empty());
}

TEST_F(TavrikApp, LispCallWithACodeThatNoRowHasRunsNothingAndReturnsZero) {
    Load();
    Send(AcRx::kLoadDwgMsg);
    std::wstring logBefore = CgLog();
    Editor().currentFunctionCode = LispRowCount();
    EXPECT_EQ(acedGetFunCode(), LispRowCount());
    EXPECT_EQ(Send(AcRx::kInvkSubrMsg), AcRx::kRetOK);
    Editor().currentFunctionCode = -1;
    EXPECT_EQ(CgLog(), logBefore);
    EXPECT_FALSE(TimerArmed());
    EXPECT_FALSE(HostCloseRequested());
}

TEST_F(TavrikApp, LispCallOutsideACallReturnsZero) {
    Load();
    EXPECT_EQ(Send(AcRx::kInvkSubrMsg), AcRx::kRetOK);
}

TEST_F(TavrikApp, OtherDocumentsAreClosedUnsavedAndTheCurrentOneStays) {
    std::vector<AcApDocument*> others = OpenModifiedDocuments(2);
    AcApDocument* current = others[0];
    acDocManager->setCurDocument(current);
    acdbSetDbmod(hostDrawing_.get(), 1);
    acDocManager->executeInApplicationContext(CloseOtherDocuments, nullptr);
    EXPECT_EQ(OpenDocuments(), std::vector<AcApDocument*>{current});
    EXPECT_EQ(acDocManager->curDocument(), current);
    EXPECT_EQ(acdbGetDbmod(hostDrawing_.get()), 0);
    EXPECT_EQ(acdbGetDbmod(drawings_[1].get()), 0);
    EXPECT_EQ(acdbGetDbmod(drawings_[0].get()), 1);
    EXPECT_TRUE(hostDrawing_->filename().empty());
    EXPECT_TRUE(drawings_[1]->filename().empty());
}

TEST_F(TavrikApp, QuitTimerClosesTheOtherDocumentsMarksTheDrawingUnmodifiedAndClosesTheHost) {
    AcApDocument* host = Editor().currentDocument;
    OpenModifiedDocuments(3);
    acDocManager->setCurDocument(host);
    acdbSetDbmod(hostDrawing_.get(), 1);
    QuitTimerProc(nullptr, WM_TIMER, 1, 0);
    EXPECT_EQ(OpenDocuments(), std::vector<AcApDocument*>{host});
    for (const auto& drawing : drawings_) {
        EXPECT_EQ(acdbGetDbmod(drawing.get()), 0);
        EXPECT_TRUE(drawing->filename().empty());
    }
    EXPECT_EQ(acdbGetDbmod(hostDrawing_.get()), 0);
    EXPECT_TRUE(HostCloseRequested());
    EXPECT_FALSE(acDocManager->isApplicationContext());
}

TEST_F(TavrikApp, WaitForHostReadyTakesAtLeastOneSecond) {
    WaitForHostReady();
    EXPECT_EQ(now_, 1000u);
}

TEST_F(TavrikApp, WaitForHostReadyWaitsWhileTheMainWindowIsDisabled) {
    Host().mainWindowEnabled = false;
    Host().clock.sleepMs = [this](std::uint64_t ms) {
        now_ += ms;
        if (now_ >= 4000) Host().mainWindowEnabled = true;
    };
    WaitForHostReady();
    EXPECT_EQ(now_, 4000u);
}

}  // namespace
