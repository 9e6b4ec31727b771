// The module's commands and LISP functions. Rows of later steps stand beside their bodies and
// join these tables through the same sections.
#include "pipeline/batch_driver.hpp"
#include "host/tavrik_app.hpp"

extern "C" {
extern ArxCommandEntry* __start_ARXCOMMA[] __attribute__((weak));
extern ArxCommandEntry* __stop_ARXCOMMA[] __attribute__((weak));
extern AdsSymbolEntry* __start_ADSSYMBO[] __attribute__((weak));
extern AdsSymbolEntry* __stop_ADSSYMBO[] __attribute__((weak));
}

ArxTable<ArxCommandEntry> ArxCommandTable() { return {__start_ARXCOMMA, __stop_ARXCOMMA}; }
ArxTable<AdsSymbolEntry> AdsSymbolTable() { return {__start_ADSSYMBO, __stop_ADSSYMBO}; }

namespace {

void InsertSheetCommand() { RunBatch(); }

ArxCommandEntry insertSheetRow = {kCommandGroup, L"_MyCommand1", L"InsertSheet",
                                  ACRX_CMD_SESSION | ACRX_CMD_TRANSPARENT, InsertSheetCommand,
                                  nullptr, -1};
ACED_ARXCOMMAND_ENTRY(insertSheetRow);

}  // namespace
