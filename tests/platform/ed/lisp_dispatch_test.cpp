// The application class hands a LISP call to the one row of its symbol table whose place is the
// function code of the call; every other row stays idle.
#include <gtest/gtest.h>

#include <vector>

#include "editor_fixture.hpp"
#include "platform/ed/arx_app.hpp"

namespace {

std::vector<int> calls;

int First() { calls.push_back(0); return 0; }
int Second() { calls.push_back(1); return 0; }
int Third() { calls.push_back(2); return 0; }

AdsSymbolEntry firstRow = {L"t-first", First, false, -1};
AdsSymbolEntry secondRow = {L"t-second", Second, false, -1};
AdsSymbolEntry thirdRow = {L"t-third", Third, false, -1};
// A gap in the table, as the linker may leave one between sections.
AdsSymbolEntry* rows[] = {&firstRow, nullptr, &secondRow, &thirdRow};

class DispatchApp : public AcRxArxApp {
    void RegisterServerComponents() override {}
};

class LispDispatch : public EditorTest {
protected:
    void SetUp() override {
        EditorTest::SetUp();
        calls.clear();
    }
    std::vector<int> CallWithCode(int code) {
        Editor().currentFunctionCode = code;
        DispatchApp app;
        EXPECT_EQ(app.On_kInvkSubrMsg(nullptr), AcRx::kRetOK);
        Editor().currentFunctionCode = -1;
        return calls;
    }
};

TEST_F(LispDispatch, call_runs_only_the_row_of_its_code) {
    EXPECT_EQ(CallWithCode(1), std::vector<int>{1});
}

TEST_F(LispDispatch, codes_count_rows_and_skip_gaps) {
    EXPECT_EQ(CallWithCode(0), std::vector<int>{0});
    calls.clear();
    EXPECT_EQ(CallWithCode(2), std::vector<int>{2});
}

TEST_F(LispDispatch, code_of_no_row_runs_nothing) {
    EXPECT_TRUE(CallWithCode(3).empty());
}

}  // namespace

// The tables of this test binary, as a module's binary has its own.
ArxTable<ArxCommandEntry> ArxCommandTable() { return {nullptr, nullptr}; }
ArxTable<AdsSymbolEntry> AdsSymbolTable() { return {rows, rows + 4}; }
