#pragma once
// The host's system variables that a module reads or sets. Names compare without regard to
// case. VIEWCTR and VIEWSIZE follow the current view and are read only, as are the view's
// settings (VIEWDIR, TARGET, LENSLENGTH, VIEWTWIST, FRONTZ, BACKZ, VIEWMODE), which change
// only with the view itself.
#include <string>
#include <vector>

#include "platform/ed/resbuf.hpp"

// RTNORM with the value in `result` (a string is a new copy the caller frees), RTERROR for a
// name the host does not know.
int acedGetVar(const ACHAR* name, resbuf* result);
// RTNORM, or RTERROR for an unknown or read-only name or a value of the wrong type.
int acedSetVar(const ACHAR* name, const resbuf* value);

// The host's side: sets any variable, read-only ones included (a view made current, tests).
int SetSystemVariable(const ACHAR* name, const resbuf* value);
bool IsSystemVariable(const std::wstring& name);
bool IsReadOnlySystemVariable(const std::wstring& name);
std::vector<std::wstring> SystemVariableNames();
// The value as the command line shows it: "6", "0.0000,0.0000,1.0000", "50.0000".
std::wstring FormatSystemVariable(const std::wstring& name);
