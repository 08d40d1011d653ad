#include "mchost/model/journal.h"

#include <algorithm>
#include <span>
#include <utility>

namespace host {
namespace {

constexpr uint32_t longestRun = (1u << 30) - 1;

// Makes what the change did undone, or done again: the two are the same exchange. There is memory for it.
void exchange(Model& model, Change& change) {
    ElementStore& elements = model.elements;
    for (uint32_t i = 0; i < change.count; ++i) {
        const FilePos position = change.position + i;
        if (change.kind == Change::rewritten) {
            change.other = elements.putBack(position, change.other);
        } else if (elements.isLive(position)) {
            elements.remove(position);
        } else {
            elements.restore(position);
        }
        updateRange(model, position);
    }
}

void makeMemory(Model& model, std::span<const Change> changes) {
    uint64_t bytes = 0;
    for (const Change& change : changes) {
        for (uint32_t i = 0; i < change.count; ++i) {
            const FilePos position = change.position + i;
            bytes += change.kind == Change::rewritten  ? recordBytes(change.other)
                     : model.elements.isLive(position) ? sizeof(RecordHead)
                                                       : recordBytes(model.elements.record(position));
        }
    }
    model.elements.makeMemory(bytes);
}

enum class Order { asDone, lastFirst };

void exchangeAll(Journal::Part& part, Order order) {
    const size_t count = part.changes.size();
    for (size_t i = 0; i < count; ++i) {
        exchange(*part.model, part.changes[order == Order::asDone ? i : count - 1 - i]);
    }
}

// Moves the last step of one list to the end of the other, with all its changes exchanged.
void moveStep(std::vector<Journal::Step>& from, std::vector<Journal::Step>& to, Order order) {
    Journal::Step& step = from.back();
    to.reserve(to.size() + 1);
    for (Journal::Part& part : step.parts) makeMemory(*part.model, part.changes);
    for (Journal::Part& part : step.parts) {
        exchangeAll(part, order);
        if (!part.attachments) continue;
        part.model->attachments.swap(*part.attachments);
        noteAttachmentsChanged(*part.model);
    }
    to.push_back(std::move(step));
    from.pop_back();
}

// Whether the change goes on where the run ends.
bool continues(const Change& run, const Change& change) {
    return run.kind == change.kind && run.kind != Change::rewritten && run.count < longestRun &&
           run.position + run.count == change.position;
}

void dropParts(std::vector<Journal::Step>& steps, const Model& model) {
    for (Journal::Step& step : steps) {
        std::erase_if(step.parts, [&](const Journal::Part& part) { return part.model == &model; });
    }
}

bool isEmpty(const Journal::Step& step) {
    return std::ranges::all_of(step.parts,
                               [](const Journal::Part& part) { return part.changes.empty() && !part.attachments; });
}

void dropEmptyEnd(std::vector<Journal::Step>& steps) {
    while (!steps.empty() && isEmpty(steps.back())) steps.pop_back();
}

}  // namespace

void Journal::beginStep(std::string name) {
    nextName_ = std::move(name);
    open_ = false;
}

Journal::Part& Journal::makeRoom(Model& model) {
    if (!open_) {
        done_.push_back({nextName_, {}});
        open_ = true;
    }
    std::vector<Part>& parts = done_.back().parts;
    const auto found = std::ranges::find(parts, &model, &Part::model);
    Part& part = found != parts.end() ? *found : parts.emplace_back(Part{&model, {}});
    if (part.changes.size() == part.changes.capacity()) part.changes.reserve(2 * part.changes.size() + 1);
    return part;
}

void Journal::note(Part& part, const Change& change) noexcept {
    undone_.clear();
    std::vector<Change>& changes = part.changes;
    if (!changes.empty() && continues(changes.back(), change)) {
        ++changes.back().count;
    } else {
        changes.push_back(change);
    }
}

void Journal::keepAttachments(Model& model) {
    std::optional<std::vector<Attachment>>& kept = makeRoom(model).attachments;
    if (!kept) kept = model.attachments;
    undone_.clear();
}

const Journal::Step* Journal::lastDone() {
    const size_t before = done_.size();
    dropEmptyEnd(done_);
    if (done_.size() != before) open_ = false;
    return done_.empty() ? nullptr : &done_.back();
}

const Journal::Step* Journal::lastUndone() {
    dropEmptyEnd(undone_);
    return undone_.empty() ? nullptr : &undone_.back();
}

void Journal::undo() {
    open_ = false;
    moveStep(done_, undone_, Order::lastFirst);
}

void Journal::redo() {
    open_ = false;
    moveStep(undone_, done_, Order::asDone);
}

// Takes the last position of a run out of its step, as a step that can be done again.
FilePos Journal::takeOut(const std::string& name, Part& part, size_t at) {
    Change& run = part.changes[at];
    Step taken = {name, {{part.model, {{run.position + run.count - 1, 1, run.kind, run.other}}}}};
    Change& change = taken.parts.front().changes.front();
    undone_.reserve(undone_.size() + 1);
    makeMemory(*part.model, {&change, 1});
    exchange(*part.model, change);
    if (--run.count == 0) part.changes.erase(part.changes.begin() + static_cast<ptrdiff_t>(at));
    undone_.push_back(std::move(taken));
    return change.position;
}

FilePos Journal::undoLast(Model& model, bool deletionsAlone) {
    for (auto step = done_.rbegin(); step != done_.rend(); ++step) {
        for (Part& part : step->parts) {
            for (size_t at = part.model == &model ? part.changes.size() : 0; at-- > 0;) {
                const uint32_t kind = part.changes[at].kind;
                if (kind == Change::deleted || (kind == Change::rewritten && !deletionsAlone)) {
                    return takeOut(step->name, part, at);
                }
            }
        }
    }
    return 0;
}

void Journal::forget(const Model& model) noexcept {
    dropParts(done_, model);
    dropParts(undone_, model);
}

}  // namespace host
