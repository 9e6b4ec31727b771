#pragma once
// LISP functions defined by modules. acedDefun binds a name to a function code of the module
// whose message is being handled; calling the name sends that module kInvkSubrMsg, during
// which acedGetFunCode gives the code, unless acedRegFunc gave the code a function of its own.
#include <string>

#include "platform/win/wintypes.hpp"

int acedDefun(const ACHAR* name, int functionCode);      // RTNORM
int acedUndef(const ACHAR* name, int functionCode);      // RTNORM, RTERROR if not defined
int acedGetFunCode();                                     // RTERROR outside a LISP call
int acedRegFunc(int (*function)(), int functionCode);    // RTNORM

// The host's side: runs a defined function by name; RTERROR when no function has the name.
int InvokeLispFunction(const ACHAR* name);

// Arguments and results of a LISP call. acedGetArgs gives the call's arguments (the host owns
// them; a list of two or three numbers arrives as RTPOINT or RT3DPOINT). The acedRet
// functions set the value the call returns; the last one stands. RTNORM.
struct resbuf;
resbuf* acedGetArgs();
int acedRetT();
int acedRetNil();
int acedRetVoid();
int acedRetReal(double value);
int acedRetInt(int value);
int acedRetStr(const ACHAR* value);
int acedRetPoint(const double* point);

// The host's side: runs a function with arguments; RTERROR when no function has the name.
// The value it returned (nil when it set none; void prints nothing) goes to `result` as text.
int InvokeLispFunction(const ACHAR* name, const resbuf* arguments, std::wstring& result);
// Reads a typed call "(name arg...)": numbers, "strings", T, nil and quoted lists of them.
// False with `error` for anything else.
bool ParseLispCall(const std::wstring& line, std::wstring& name, resbuf*& arguments, std::wstring& error);
