#pragma once
// The messages a host sends to a module through its entry point
//   extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* appId);
// and the module's API stamp, from
//   extern "C" int acrxGetApiVersion();
namespace AcRx {

enum AppMsgCode : int {
    kNullMsg = 0,
    kInitAppMsg = 1,
    kUnloadAppMsg = 2,
    kLoadDwgMsg = 3,
    kUnloadDwgMsg = 4,
    kInvkSubrMsg = 5,
    kCfgMsg = 6,
    kEndMsg = 7,
    kQuitMsg = 8,
    kSaveMsg = 9,
    kDependencyMsg = 10,
    kNoDependencyMsg = 11,
    kOleUnloadAppMsg = 12,
    kPreQuitMsg = 13,
    kInitDialogMsg = 14,
    kEndDialogMsg = 15,
    kSuspendMsg = 16,
};

enum AppRetCode : int { kRetOK = 0, kRetError = 3 };

}  // namespace AcRx

using AcRxEntryPointFunction = AcRx::AppRetCode (*)(AcRx::AppMsgCode, void*);
using AcRxApiVersionFunction = int (*)();
