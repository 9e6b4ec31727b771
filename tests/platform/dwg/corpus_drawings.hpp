#pragma once
// The drawings of the shared corpus (DXF and DWG) that our reader reads, for the tests that
// write every one of them.
#include <filesystem>
#include <string>

#include "platform/db/database.hpp"
#include "platform/dxf/model.hpp"
#include "shared_folder.hpp"

namespace dwg_test {

// Reads each corpus drawing in turn and gives it to visit with the file's path; how many
// were read. Files the reader refuses are passed over.
template <typename Visit>
int ForEachCorpusDrawing(Visit visit) {
    int drawings = 0;
    for (const auto& folder : {SharedFile("corpus/dxf"), SharedFile("corpus/dwg")}) {
        if (!std::filesystem::exists(folder)) continue;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            AcDbDatabase db(false, true);
            if (db.readDwgFile(dxf::Wide(entry.path().string()).c_str()) != Acad::eOk) continue;
            visit(db, entry.path());
            ++drawings;
        }
    }
    return drawings;
}

}  // namespace dwg_test
