#include "host/module_state.hpp"

#include "config/config_root.hpp"

namespace {

std::unique_ptr<ModuleState> g_module;

// Copies the layer names and the dimensioning values that the rest of the module keeps apart
// from the reader.
void CopyConfiguredValues(ModuleState& state) {
    const CadStandardIni& ini = state.cadStandardIni;
    state.frameLayer = ini.layer.BIGFRAM;
    state.frontLayer = ini.layer.FRONT;
    state.leftLayer = ini.layer.LEFT;
    state.topLayer = ini.layer.TOP;
}

void CopyDimensionValues(ModuleState& state) {
    const CadStandardIni& ini = state.cadStandardIni;
    DimensionState& dim = state.dimensionState;
    dim.offset = ini.sundry.OFFSET;
    dim.dimTxt = ini.dimStyle.DIMTXT;
    dim.dimScale = ini.dimStyle.DIMSCALE;
    dim.textPitch = ini.dimStyle.DIMSCALE * ini.dimStyle.DIMTXT;
    dim.ordinateOffset = ini.dimStyle.DIMTXT * ini.sundry.ORDOFFSCL;
}

}  // namespace

ModuleState::ModuleState()
    : ConfigRoot(GetConfigRoot()),
      cadStandardIni(ConfigRoot + kCadStandardIniName),
      boxSetting(ConfigRoot + kBoxSettingName),
      FrameFolder(ConfigRoot + kFrameFolderName),
      layerUgIni(ConfigRoot + kLayerUgIniName) {
    CopyConfiguredValues(*this);
}

ModuleState& Module() {
    if (!g_module) BuildModuleState();
    return *g_module;
}

void BuildModuleState() {
    g_module.reset();
    g_module = std::make_unique<ModuleState>();
}

void DestroyModuleState() { g_module.reset(); }

void ReloadConfiguration() {
    ModuleState& state = Module();
    state.cadStandardIni.Read();
    state.boxSetting.Read();
    state.layerUgIni.Read();
    CopyConfiguredValues(state);
    CopyDimensionValues(state);
}
