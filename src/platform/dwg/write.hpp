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

}  // namespace dwg
