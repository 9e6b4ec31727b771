// The single steps of the standardisation as commands of the draftsman. They work on the
// host's working database, except ZDMT, which works on the pipeline's drawing.
#include "commands/single_steps.hpp"
#include "host/module_state.hpp"
#include "host/tavrik_app.hpp"
#include "platform/db/text.hpp"
#include "standard/db_helpers.hpp"
#include "standard/layers_text.hpp"
#include "standard/model_space_walk.hpp"

namespace {

AcDbDatabase* Working() { return acdbHostApplicationServices()->workingDatabase(); }

}  // namespace

// Width factor 1.0 on every single-line text of the model space; the walk ends at a text that
// does not open for write (16).
int SetTextWidthsToOne(AcDbDatabase* db) {
    return WalkModelSpace(db, AcDb::kForWrite, kEndAtFailedOpen, [](AcDbEntity* entity) {
        if (auto* text = AcDbText::cast(entity)) text->setWidthFactor(1.0);
    });
}

namespace {

void TxtwsclCommand() { SetTextWidthsToOne(Working()); }
void ExpmtCommand() { ExplodeMText(Working()); }
void ClearLayerCommand() { PurgeLayers(Working()); }
void ZtoZeroCommand() { FlipMirroredCurves(Working()); }
void SubstrCommand() { NormalizeDiameterSign(Working()); }

void ZzfjCommand() {
    SetStyleFonts(L"standard", Working());
    SetStyleFonts(L"chinesef_fs", Working());
}

// The barcode style goes to the pipeline's drawing, which exists only while InsertSheet runs;
// at other times there is no drawing to work on and the command does nothing.
void ZdmtCommand() {
    if (AcDbDatabase* db = Module().CurrentDatabase) ApplyTextStyle(L"bar", L"`**`*", db);
}

ArxCommandEntry txtwsclRow = {kCommandGroup, L"_Txtwscl", L"Txtwscl", ACRX_CMD_TRANSPARENT, TxtwsclCommand, nullptr, -1};
ArxCommandEntry expmtRow = {kCommandGroup, L"_Expmt", L"Expmt", ACRX_CMD_TRANSPARENT, ExpmtCommand, nullptr, -1};
ArxCommandEntry zdmtRow = {kCommandGroup, L"_Zdmt", L"ZDMT", ACRX_CMD_TRANSPARENT, ZdmtCommand, nullptr, -1};
ArxCommandEntry zzfjRow = {kCommandGroup, L"_ZZFJ", L"ZZFJ", ACRX_CMD_TRANSPARENT, ZzfjCommand, nullptr, -1};
ArxCommandEntry clearLayerRow = {kCommandGroup, L"_ClearLayer", L"ClearLayer", ACRX_CMD_TRANSPARENT, ClearLayerCommand,
                                 nullptr, -1};
ArxCommandEntry ztoZeroRow = {kCommandGroup, L"_ZtoZero", L"ZZ1", ACRX_CMD_TRANSPARENT, ZtoZeroCommand, nullptr, -1};
ArxCommandEntry substrRow = {kCommandGroup, L"_Substr", L"Substr", ACRX_CMD_TRANSPARENT, SubstrCommand, nullptr, -1};
// One array, so that the rows keep the order of the command table.
__attribute__((used, section("ARXCOMMA"))) ArxCommandEntry* singleStepRows[] = {
    &txtwsclRow, &expmtRow, &zdmtRow, &zzfjRow, &clearLayerRow, &ztoZeroRow, &substrRow};

}  // namespace
