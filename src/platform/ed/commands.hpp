#pragma once
// The command stack and the dynamic linker of the host. Commands are kept by group and global
// name; the host looks a typed name up by local name, then by global name (a leading '_' asks
// for the global name). Names compare without regard to case.
#include <string>

#include "platform/db/status.hpp"
#include "platform/win/wintypes.hpp"

using AcRxFunctionPtr = void (*)();
class AcEdUIContext;
class AcEdCommand;

inline constexpr int ACRX_CMD_MODAL = 0x00000000;
inline constexpr int ACRX_CMD_TRANSPARENT = 0x00000001;
inline constexpr int ACRX_CMD_USEPICKSET = 0x00000002;
inline constexpr int ACRX_CMD_REDRAW = 0x00000004;
inline constexpr int ACRX_CMD_NOPERSPECTIVE = 0x00000008;
inline constexpr int ACRX_CMD_SESSION = 0x00200000;
inline constexpr const ACHAR* ACRX_COMMAND_DOCK = L"ACAD_REGISTERED_COMMANDS";

struct AcEdCommandRecord {
    std::wstring groupName;
    std::wstring globalName;
    std::wstring localName;
    int flags = 0;
    AcRxFunctionPtr function = nullptr;
    AcEdUIContext* uiContext = nullptr;
    int functionCode = -1;
    HINSTANCE resourceHandle = nullptr;
};

class AcEdCommandStack {
public:
    // eDuplicateKey when the group already has the global name; a null local name takes the
    // global one.
    Acad::ErrorStatus addCommand(const ACHAR* groupName, const ACHAR* globalName,
                                 const ACHAR* localName, int flags, AcRxFunctionPtr function,
                                 AcEdUIContext* uiContext = nullptr, int functionCode = -1,
                                 HINSTANCE resourceHandle = nullptr,
                                 AcEdCommand** command = nullptr);
    Acad::ErrorStatus removeCmd(const ACHAR* groupName, const ACHAR* globalName);
    Acad::ErrorStatus removeGroup(const ACHAR* groupName);
    const AcEdCommandRecord* lookupGlobalCmd(const ACHAR* globalName) const;
    const AcEdCommandRecord* lookupLocalCmd(const ACHAR* localName) const;
    // What the command line does with a typed name.
    const AcEdCommandRecord* lookupCmd(const ACHAR* typedName) const;
};

AcEdCommandStack* acedCommandStack();
#define acedRegCmds (acedCommandStack())

// The host's record of loaded applications.
class AcRxDynamicLinker {
public:
    bool unlockApplication(void* appId);
    bool lockApplication(void* appId);
    bool isApplicationLocked(const void* appId) const;
    bool registerAppMDIAware(void* appId);
    bool registerAppNotMDIAware(void* appId);
    bool isAppMDIAware(const void* appId) const;
};

AcRxDynamicLinker* acrxDynamicLinkerInstance();
#define acrxDynamicLinker (acrxDynamicLinkerInstance())
