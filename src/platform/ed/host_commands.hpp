#pragma once
// The host's own commands and acedCommand. MOVE and COPY are the editor's; the host program
// adds its file commands. A typed name may carry "." (the host's command, not a redefinition)
// and "_" (the global name) in front.
#include <string>
#include <vector>

#include "platform/ed/editor_state.hpp"
#include "platform/ed/resbuf.hpp"

void RegisterHostCommand(const std::wstring& name, const std::wstring& help, void (*function)());
// Registers MOVE and COPY.
void RegisterEditingCommands();
const HostCommand* LookupHostCommand(std::wstring name);
const std::vector<HostCommand>& HostCommands();

// Runs a command with its arguments as answers to its prompts: (type, value) pairs ended by 0
// or RTNONE, the first a string with the command's name; RTSTR "" is Enter, RTSTR PAUSE ("\\")
// leaves that prompt to the user, RTPICKS or RTENAME answers a prompt for objects. Answers
// left over when the command ends are dropped. RTNORM, RTERROR for an unknown command or bad
// arguments, RTCAN when the command was cancelled.
int acedCommand(int restype, ...);
// The same with a list of result buffers.
int acedCmd(const resbuf* arguments);
