#pragma once
// LISP functions defined by modules. acedDefun binds a name to a function code of the module
// whose message is being handled; calling the name sends that module kInvkSubrMsg, during
// which acedGetFunCode gives the code, unless acedRegFunc gave the code a function of its own.
#include "platform/win/wintypes.hpp"

int acedDefun(const ACHAR* name, int functionCode);      // RTNORM
int acedUndef(const ACHAR* name, int functionCode);      // RTNORM, RTERROR if not defined
int acedGetFunCode();                                     // RTERROR outside a LISP call
int acedRegFunc(int (*function)(), int functionCode);    // RTNORM

// The host's side: runs a defined function by name; RTERROR when no function has the name.
int InvokeLispFunction(const ACHAR* name);
