// The observer of the host's saves: AcDbDatabase::saveAs (in the DWG codec, which writes both
// formats) tells it of every drawing written.
#include "platform/dxf/dxf.hpp"

namespace {
dxf::DrawingSavedObserver savedObserver = nullptr;
}  // namespace

void dxf::SetDrawingSavedObserver(DrawingSavedObserver observer) { savedObserver = observer; }

void dxf::NotifyDrawingSaved(AcDbDatabase& db, const std::string& path) {
    if (savedObserver) savedObserver(db, path);
}
