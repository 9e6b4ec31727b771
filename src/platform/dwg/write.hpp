#pragma once
// Writing a database as an AC1018 DWG file. The DXF writer's records of the database are the
// source (it gives every object its handle and adds what a drawing needs); each record is
// turned into the object the DWG format stores, and the objects, the header variables, the
// classes and the object map are laid into the file's pages.
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/db/database.hpp"

namespace dwg {

struct DwgWriteReport {
    // What the file does not hold: objects of the database by record type, and the values of
    // written records that the format has no place for ("DIMSTYLE variable 270"), with counts.
    std::map<std::string, int> leftOut;
};

// The file's bytes. codePage is the host's (936 or 65001): texts are written in ANSI_936 for
// 936 and in ANSI_1252 otherwise, with \U+XXXX for what the code page cannot hold.
Acad::ErrorStatus WriteDwgBytes(AcDbDatabase& db, int codePage, std::vector<std::uint8_t>& out,
                                DwgWriteReport& report);

// Writes atomically: a temporary file beside the target, then a rename over it.
Acad::ErrorStatus WriteDwgFile(AcDbDatabase& db, const std::string& path, int codePage,
                               DwgWriteReport& report);

// Whether a target name asks for DWG: it ends in ".dwg", in any case.
bool NamesDwgFile(const std::string& path);

// Writes AC1018 DWG when the name ends in ".dwg" and DXF otherwise (the DXF writer's options
// but the code page at their defaults), atomically either way. The report is filled for DWG.
Acad::ErrorStatus SaveDrawingFile(AcDbDatabase& db, const std::string& path, int codePage,
                                  DwgWriteReport& report);

// Says on standard error what a DWG save left out, a line per record type, after "who: path: ".
void PrintLeftOut(const char* who, const std::string& path, const DwgWriteReport& report);

}  // namespace dwg
