// What commands change in models, so that it can be taken back and done again. It lasts as long as the session: a file
// that is closed takes its part along.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "mchost/model/model.h"

namespace host {

// What became of elements at positions that follow each other.
struct Change {
    enum Kind : uint32_t { added, deleted, rewritten };
    FilePos position;  // the first
    uint32_t count : 30;
    uint32_t kind : 2;
    const RecordHead* other;  // of a rewrite of one: the record that isn't in force, where it lies in the store
};

class Journal {
  public:
    // What one model has had done in a step, in order.
    struct Part {
        Model* model;
        std::vector<Change> changes;
        std::optional<std::vector<Attachment>> attachments = {};  // those that aren't in force, when they were changed
    };
    struct Step {
        std::string name;
        std::vector<Part> parts;
    };

    // What is changed from now on belongs to another step, of that name.
    void beginStep(std::string name);

    // Where the next change of the model is noted, with room for it: noting it can't fail.
    Part& makeRoom(Model& model);
    void noteAdded(Part& part, FilePos position) noexcept { note(part, {position, 1, Change::added, nullptr}); }
    void noteDeleted(Part& part, FilePos position) noexcept { note(part, {position, 1, Change::deleted, nullptr}); }
    void noteRewritten(Part& part, FilePos position, const RecordHead* before) noexcept {
        note(part, {position, 1, Change::rewritten, before});
    }

    // The model's attachments are to be changed.
    void keepAttachments(Model& model);

    // The step that undo or redo would take; null when there is none.
    const Step* lastDone();
    const Step* lastUndone();
    // Of a step that is there: all of it, or std::bad_alloc.
    void undo();
    void redo();
    // Takes back by itself the last deletion in the model, or the last deletion or rewrite there: nothing that was
    // done later has to do with that element. Redo does it again. Its position, or 0 when there is none.
    FilePos undoLast(Model& model, bool deletionsAlone);

    // The model is to be closed, or its store laid anew: what was done in it can't be taken back any more.
    void forget(const Model& model) noexcept;

  private:
    FilePos takeOut(const std::string& name, Part& part, size_t at);
    void note(Part& part, const Change& change) noexcept;

    std::vector<Step> done_, undone_;  // the last one last
    std::string nextName_;
    bool open_ = false;  // whether done_.back() goes on being filled
};

}  // namespace host
