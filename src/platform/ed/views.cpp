#include "platform/ed/views.hpp"

#include "platform/db/symbol_tables.hpp"
#include "platform/ed/editor_state.hpp"

Acad::ErrorStatus acedSetCurrentView(AcDbViewTableRecord* view, AcDbViewport*) {
    if (view == nullptr) return Acad::eNullObjectPointer;
    Editor().currentView = {true,
                            view->centerPoint(),
                            view->width(),
                            view->height(),
                            view->target(),
                            view->viewDirection(),
                            view->isPaperspaceView(),
                            view->frontClipDistance(),
                            view->backClipDistance(),
                            view->lensLength(),
                            view->viewTwist(),
                            view->perspectiveEnabled(),
                            view->frontClipEnabled(),
                            view->backClipEnabled(),
                            view->frontClipAtEye()};
    return Acad::eOk;
}

const CurrentViewRecord& CurrentView() { return Editor().currentView; }
