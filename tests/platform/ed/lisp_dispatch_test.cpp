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
int Fourth() { calls.push_back(3); return 0; }

AdsSymbolEntry firstRow = {L"t-first", First, false, -1};
AdsSymbolEntry secondRow = {L"t-second", Second, false, -1};
AdsSymbolEntry thirdRow = {L"t-third", Third, false, -1};
AdsSymbolEntry fourthRow = {L"t-fourth", Fourth, true, -1};
// A gap in the table, as the linker may leave one between sections.
AdsSymbolEntry* rows[] = {&firstRow, nullptr, &secondRow, &thirdRow, &fourthRow};

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
    EXPECT_TRUE(CallWithCode(4).empty());
}

// Loading a document defines every row under its running index; only a row whose register flag
// is set gets its function registered, so that only its calls bypass the message.
TEST_F(LispDispatch, document_load_defines_every_row_and_registers_only_the_flagged_one) {
    DispatchApp app;
    EXPECT_EQ(app.On_kLoadDwgMsg(nullptr), AcRx::kRetOK);
    const std::vector<LispFunction>& defined = Editor().lispFunctions;
    ASSERT_EQ(defined.size(), 4u);
    const wchar_t* names[] = {L"t-first", L"t-second", L"t-third", L"t-fourth"};
    for (int code = 0; code < 4; ++code) {
        EXPECT_EQ(defined[code].name, names[code]);
        EXPECT_EQ(defined[code].functionCode, code);
        EXPECT_EQ(defined[code].function, code == 3 ? &Fourth : nullptr) << code;
    }
}

// The last message code that reaches a handler is 15; a code above it reaches none.
class EndDialogApp : public AcRxArxApp {
public:
    int endDialogs = 0;
    AcRx::AppRetCode On_kEndDialogMsg(void*) override {
        ++endDialogs;
        return AcRx::kRetError;
    }
    void RegisterServerComponents() override {}
};

TEST_F(LispDispatch, message_fifteen_reaches_its_handler_and_sixteen_none) {
    EndDialogApp app;
    EXPECT_EQ(app.Dispatch(AcRx::kEndDialogMsg, nullptr), AcRx::kRetError);
    EXPECT_EQ(app.Dispatch(static_cast<AcRx::AppMsgCode>(AcRx::kEndDialogMsg + 1), nullptr), AcRx::kRetOK);
    EXPECT_EQ(app.endDialogs, 1);
}

}  // namespace

// The tables of this test binary, as a module's binary has its own.
ArxTable<ArxCommandEntry> ArxCommandTable() { return {nullptr, nullptr}; }
ArxTable<AdsSymbolEntry> AdsSymbolTable() { return {rows, rows + 5}; }
