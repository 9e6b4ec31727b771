#pragma once
// The drawing clean-ups, exported as one plain class whose methods are the operations. Each
// operation works on the model space of one drawing and changes it in place; it reads its
// section of CAD_line.ini (below UserPath) anew at every call and reports nothing. All
// instances share CleanupGlobals: the folder, the log path and the settings records.
//
// Where the operations live: each group of methods below is defined in its own file, named in
// the group's comment (cleanup/ for the clean-ups that keep curves as they are, curves/ for
// those that rebuild curves). A group keeps its helpers in its own file; a new group adds its
// declarations as a block of its own here, so that groups do not share lines.
#include <string>

#include "cleanup/cleanup_globals.hpp"
#include "cleanup/cleanup_log.hpp"
#include "cleanup/color_helpers.hpp"
#include "cleanup/ini_readers.hpp"
#include "curves/curve_record.hpp"
#include "platform/db/database.hpp"

class ClassInterfaceData {
public:
    // Strings empty, database unset: to be followed by Init.
    ClassInterfaceData();
    // UserPath "D:\MYTOOL\CAD", then as below.
    explicit ClassInterfaceData(AcDbDatabase* db);
    // Sets UserPath, keeps the database, reads the dashed and solid linetype names of section
    // public, and sets LogPath to UserPath + "\Log.log".
    ClassInterfaceData(AcDbDatabase* db, std::wstring path);

    // Keeps the database, nothing else.
    void Init(AcDbDatabase* db);
    void Close();
    // Takes the path only when LogFileExists says so; otherwise LogPath stays.
    void SetLogPath(std::wstring path);
    std::wstring GetUserPath();
    // Sets UserPath without a test; the linetype names are not read again.
    void SetUserPath(std::wstring path);

    // Simple clean-ups (cleanup/simple_cleanups.cpp).
    void FunCoorToZero();
    void FunUpLineScale();
    void FunDeleteSmallLineAndPoint();
    void FunLineWidthToZero();

    // Colour rules (cleanup/color_rules.cpp, cleanup/modify_color.cpp).
    void FunChangeColor();
    void FunModifyColor();

    // Duplicate removal (cleanup/repeating_lines.cpp).
    void FunDeleteRepeatingLine();
    void FunDeleteLineAndArcDownSpline(int mode);

    // Line deviation (cleanup/line_deviation.cpp).
    void FunLineDeviation();

    // Curve conversions (curves/, one file each).
    void FunSplineToLineAndArc();
    void FunSplineToPline();
    void FunConnectPline();
    void FunLineAndArcMerged();

    AcDbDatabase* database = nullptr;
    std::wstring dottedLinetype;
    std::wstring solidLinetype;
};
