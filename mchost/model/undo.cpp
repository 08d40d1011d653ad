// Taking back what commands did, and doing it again.
#include "mchost/mdl/undo.h"

#include <algorithm>
#include <cstring>

#include "mchost/model/open_files.h"

namespace host {
namespace {

// Whether all files that the step changed can be stored; a line in the message centre when one can't.
bool canBeStored(const Journal::Step& step, const char* what) {
    for (const Journal::Part& part : step.parts) {
        const DesignFile& file = openFiles().fileOf(*part.model);
        if (file.canBeStored()) continue;
        fileProblem(what, file.name(),
                    FileProblem("it or its folder can't be written any more. Check their permissions."));
        return false;
    }
    return true;
}

int nameOf(const Journal::Step* (Journal::*last)(), char* name, int32_t size) {
    const Journal::Step* step = guarded<const Journal::Step*>(nullptr, [&] { return (openFiles().journal.*last)(); });
    if (!step || !name || size < 1) return step ? int{MDL_ERROR} : int{MDL_UNDO_NONE};
    const size_t copied = std::min(step->name.size(), static_cast<size_t>(size) - 1);
    std::memcpy(name, step->name.data(), copied);
    name[copied] = '\0';
    return copied == step->name.size() ? int{MDL_SUCCESS} : int{MDL_ERROR};
}

int move(const Journal::Step* step, const char* what, void (Journal::*take)()) {
    if (!step) return MDL_UNDO_NONE;
    if (!canBeStored(*step, what)) return MDL_ERROR;
    (openFiles().journal.*take)();
    return MDL_SUCCESS;
}

FilePos undoLast(bool deletionsAlone) {
    return guarded<FilePos>(0, [&]() -> FilePos {
        DesignFile* active = openFile(nullptr);
        return active ? openFiles().journal.undoLast(active->model, deletionsAlone) : 0;
    });
}

}  // namespace
}  // namespace host

using namespace host;

int mdlUndo_mark(const char* name) noexcept {
    return guarded<int>(MDL_ERROR, [&] {
        openFiles().journal.beginStep(name ? name : "");
        return MDL_SUCCESS;
    });
}

int mdlUndo_undo(void) noexcept {
    return guarded<int>(MDL_ERROR, [] {
        return move(openFiles().journal.lastDone(), "take back what was done in the design file", &Journal::undo);
    });
}

int mdlUndo_redo(void) noexcept {
    return guarded<int>(MDL_ERROR, [] {
        return move(openFiles().journal.lastUndone(), "do again what was done in the design file", &Journal::redo);
    });
}

int mdlUndo_getUndoName(char* name, int32_t size) noexcept {
    return nameOf(&Journal::lastDone, name, size);
}

int mdlUndo_getRedoName(char* name, int32_t size) noexcept {
    return nameOf(&Journal::lastUndone, name, size);
}

FilePos mdlUndo_lastDelete(void) noexcept {
    return undoLast(true);
}

FilePos mdlUndo_lastChange(void) noexcept {
    return undoLast(false);
}
