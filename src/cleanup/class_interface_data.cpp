#include "cleanup/class_interface_data.hpp"

ClassInterfaceData::ClassInterfaceData() { CleanupGlobals->flag = 0; }

ClassInterfaceData::ClassInterfaceData(AcDbDatabase* db) : ClassInterfaceData(db, L"D:\\MYTOOL\\CAD") {}

ClassInterfaceData::ClassInterfaceData(AcDbDatabase* db, std::wstring path) : database(db) {
    CleanupGlobals->flag = 0;
    CleanupGlobals->UserPath = path;
    IniReadString(CadLineIniPath(path), L"public", L"StrDottedLineType", dottedLinetype);
    IniReadString(CadLineIniPath(path), L"public", L"StrSolidLineType", solidLinetype);
    CleanupGlobals->LogPath = path + L"\\Log.log";
}

void ClassInterfaceData::Init(AcDbDatabase* db) { database = db; }

void ClassInterfaceData::Close() {}

void ClassInterfaceData::SetLogPath(std::wstring path) {
    if (LogFileExists(path)) CleanupGlobals->LogPath = path;
}

std::wstring ClassInterfaceData::GetUserPath() { return CleanupGlobals->UserPath; }

void ClassInterfaceData::SetUserPath(std::wstring path) { CleanupGlobals->UserPath = path; }
