#pragma once
// The module-level objects of Tavrik, in one home. Loading the module builds them in the order
// below, which reads the configuration; they live until the process ends, and a value of one
// drawing reaches the next unless a step resets it. Tests build them fresh with
// BuildModuleState().
#include <memory>
#include <string>

#include "config/box_setting.hpp"
#include "config/cad_standard_ini.hpp"
#include "config/layer_ug_ini.hpp"
#include "dimension/dimension_state.hpp"
#include "host/tavrik_app.hpp"
#include "platform/db/database.hpp"

struct ModuleState {
    ModuleState();
    ModuleState(const ModuleState&) = delete;
    ModuleState& operator=(const ModuleState&) = delete;

    // Configuration, fixed at load: the root, the readers of its files (re-read before each
    // drawing), the frame folder and the view layers as first read.
    std::wstring ConfigRoot;
    CadStandardIni cadStandardIni;
    BoxSetting boxSetting;
    std::wstring FrameFolder;
    LayerUgIni layerUgIni;
    std::wstring frameLayer, frontLayer, leftLayer, topLayer;

    DimensionState dimensionState;

    // The pipeline's drawing in work (null between drawings), the ids of its model space as
    // last collected, the sheet frame file, the layer the file name selected, and the merged
    // drawing's target.
    AcDbDatabase* CurrentDatabase = nullptr;
    AcDbObjectIdArray AllEntityIds;
    std::wstring frameName;
    std::wstring targetLayer;
    std::wstring MergedFileName;

    // The host's side: the module's instance handle, its per-document data and the
    // application object.
    HINSTANCE moduleInstance = nullptr;
    AcApDataManager<CDocData> docData;
    CTavrikApp app;
};

ModuleState& Module();
// Builds the module-level objects anew, in load order.
void BuildModuleState();
// Drops them (tests; the process end otherwise).
void DestroyModuleState();

// Reads the three configuration files again into their readers (at the paths fixed at load) and
// copies the values that the dimensioning keeps.
void ReloadConfiguration();
