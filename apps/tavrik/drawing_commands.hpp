#pragma once
// The host program's own commands: the drawing of the session (OPEN, SAVE, SAVEAS), HELP, and
// system variables (SETVAR, or a variable's name typed as a command).
#include <string>

class AcDbDatabase;

void RegisterDrawingCommands();
// A new, empty drawing "Drawing1.dwg" as the current document.
void NewHostDrawing();
// Reads the drawing (a path of the host or of the prefix) and makes it the current document
// in place of the one open. False, with a message naming the file, when it cannot be read.
bool OpenHostDrawing(const std::wstring& path);
AcDbDatabase* HostDrawing();
// Closes the host's document and deletes its drawing (the end of the session).
void CloseHostDrawing();
// Shows a system variable and asks for its new value unless it is read only.
void EditSystemVariable(const std::wstring& name);
// True once after a host command failed (a drawing not read or not saved, a bad value).
bool TakeHostCommandFailure();
