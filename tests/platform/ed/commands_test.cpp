#include <gtest/gtest.h>

#include "editor_fixture.hpp"
#include "platform/ed/commands.hpp"

namespace {

int runs = 0;
void Count() { ++runs; }
void Other() {}

using CommandStack = EditorTest;

TEST_F(CommandStack, AddedCommandIsFoundByGlobalAndLocalNameWithoutRegardToCase) {
    ASSERT_EQ(acedRegCmds->addCommand(L"Tavrik", L"_MyCommand1", L"InsertSheet", 0x200001, Count), Acad::eOk);
    const AcEdCommandRecord* byLocal = acedRegCmds->lookupLocalCmd(L"insertsheet");
    const AcEdCommandRecord* byGlobal = acedRegCmds->lookupGlobalCmd(L"_MYCOMMAND1");
    ASSERT_NE(byLocal, nullptr);
    EXPECT_EQ(byLocal, byGlobal);
    EXPECT_EQ(byLocal->flags, ACRX_CMD_SESSION | ACRX_CMD_TRANSPARENT);
    EXPECT_EQ(byLocal->groupName, L"Tavrik");
    runs = 0;
    byLocal->function();
    EXPECT_EQ(runs, 1);
}

TEST_F(CommandStack, TypedNameTriesLocalThenGlobalThenGlobalWithoutItsUnderscore) {
    acedRegCmds->addCommand(L"G", L"Expmt", L"EXPLODEMT", ACRX_CMD_MODAL, Count);
    acedRegCmds->addCommand(L"G", L"_FFG", L"FFG", 0x7, Other);
    EXPECT_EQ(acedRegCmds->lookupCmd(L"explodemt")->function, Count);
    EXPECT_EQ(acedRegCmds->lookupCmd(L"expmt")->function, Count);
    EXPECT_EQ(acedRegCmds->lookupCmd(L"_expmt")->function, Count);
    EXPECT_EQ(acedRegCmds->lookupCmd(L"ffg")->flags, ACRX_CMD_TRANSPARENT | ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW);
    EXPECT_EQ(acedRegCmds->lookupCmd(L"nothing"), nullptr);
}

TEST_F(CommandStack, DuplicateGlobalNameInAGroupIsRefused) {
    EXPECT_EQ(acedRegCmds->addCommand(L"G", L"A", L"A", 0, Count), Acad::eOk);
    EXPECT_EQ(acedRegCmds->addCommand(L"g", L"a", L"B", 0, Other), Acad::eDuplicateKey);
    EXPECT_EQ(acedRegCmds->addCommand(L"H", L"A", L"C", 0, Other), Acad::eOk);
}

TEST_F(CommandStack, RemoveCmdTakesTheCommandAwayAndReportsAMissingOne) {
    acedRegCmds->addCommand(L"Tavrik", L"_Txtwscl", L"Txtwscl", 1, Count);
    EXPECT_EQ(acedRegCmds->removeCmd(L"Tavrik", L"_Txtwscl"), Acad::eOk);
    EXPECT_EQ(acedRegCmds->lookupCmd(L"Txtwscl"), nullptr);
    EXPECT_EQ(acedRegCmds->removeCmd(L"Tavrik", L"_Txtwscl"), Acad::eKeyNotFound);
}

TEST_F(CommandStack, NullLocalNameTakesTheGlobalName) {
    acedRegCmds->addCommand(L"G", L"ZZ1", nullptr, 0, Count);
    EXPECT_EQ(acedRegCmds->lookupLocalCmd(L"zz1")->globalName, L"ZZ1");
}

TEST_F(CommandStack, DynamicLinkerRemembersUnlockAndMdiAwarenessPerApplication) {
    int app = 0;
    EXPECT_TRUE(acrxDynamicLinker->isApplicationLocked(&app));
    EXPECT_TRUE(acrxDynamicLinker->unlockApplication(&app));
    EXPECT_TRUE(acrxDynamicLinker->registerAppMDIAware(&app));
    EXPECT_FALSE(acrxDynamicLinker->isApplicationLocked(&app));
    EXPECT_TRUE(acrxDynamicLinker->isAppMDIAware(&app));
}

}  // namespace
