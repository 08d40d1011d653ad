#include "gathering.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <mchost/mdl/model.h>
#include <mchost/mdl/modify.h>
#include <mchost/mdl/state.h>
#include <mchost/mdl/text.h>
#include <mchost/mdl/undo.h>
#include <mchost/mdl/view.h>
#include <mchost/mdl/names.hpp>
#include <mchost/mdl/owned.hpp>
#include <mclib/app/numbers.hpp>
#include "arrow.h"
#include "commands.h"
#include "labels_ids.h"
#include "nearest.h"
#include "placing.h"
#include "refusal.h"
#include "settings.h"

namespace labels {

namespace {

using namespace ids;

// A label that was pointed at.
struct Gathered {
    FilePos position;
    mdl::Descr label;
};
using Labels = std::vector<Gathered>;
bool read(Gathered& gathered) {
    return mdlElmdscr_read(gathered.label.out(), gathered.position, mdlModelRef_getActive()) != 0;
}

// ---- what is done with them; false when a label can't be changed so ----

// A way along the axes of a view, in UOR.
Point3d wayInView(double right, double up, int view) {
    RotMatrix axes;
    mdlRMatrix_fromView(&axes, view);
    Point3d way = {right, up, 0};
    mdlRMatrix_unrotatePoint(&way, &axes);
    return way;
}

template <class Way>
bool align(Labels& labels, int view, Way way) {
    const std::optional<Extent> first = textExtent(labels.front().label.get(), view);
    if (!first) return false;
    return std::all_of(labels.begin() + 1, labels.end(), [&](Gathered& other) {
        const std::optional<Extent> extent = textExtent(other.label.get(), view);
        return extent && moveText(*other.label.out(), way(*first, *extent));
    });
}

bool alignEdges(Labels& labels, int view) {
    return align(labels, view,
                 [&](const Extent& first, const Extent& other) { return wayInView(first.left - other.left, 0, view); });
}

bool alignRow(Labels& labels, int view) {
    return align(labels, view, [&](const Extent& first, const Extent& other) {
        return wayInView(0, (first.bottom + first.top - other.bottom - other.top) / 2, view);
    });
}

struct Renumbering {
    int number;
    bool done = false;
};

int renumberOne(MSElementBuffer* element, void* userArg, ModelRef*, ElementDescr*, ElementDescr**) {
    Renumbering& renumbering = *static_cast<Renumbering*>(userArg);
    char text[MDL_TEXT_CHARACTERS + 1] = "";
    if (renumbering.done || mdlText_extractString(text, element) != MDL_SUCCESS || !mcapp::numberIn<int>(text))
        return MDL_MODIFY_NONE;
    if (mdlText_create(element, element, std::to_string(renumbering.number).c_str(), nullptr, nullptr, nullptr, nullptr,
                       0) != MDL_SUCCESS)
        return MDL_MODIFY_NONE;
    renumbering.done = true;
    return MDL_MODIFY_CHANGED;
}

bool renumber(Labels& labels, int) {
    int number = settings().number;
    for (Gathered& gathered : labels) {
        Renumbering renumbering = {.number = number++};
        mdlModify_elementDescr2(gathered.label.out(), nullptr, MDL_MODIFY_NO_HEADERS, renumberOne, &renumbering, 0);
        if (!renumbering.done) return false;
        mdlCell_setRange(gathered.label.get(), nullptr);
    }
    settings().number = number;
    showSettings();
    return true;
}

// ---- collecting ----

bool liesOnAny(const ElementDescr* leader, const ElementDescr* label) {
    const std::vector<Point3d> points = pointsOf(leader->element);
    for (const ElementDescr* part = label->firstChild; part; part = part->next) {
        if (mdlElement_getType(part->element) != MDL_LINE_STRING) continue;
        const std::vector<Point3d> other = pointsOf(part->element);
        if (mdlVec_distance(&points.front(), &other.front()) < 1) return true;
    }
    return false;
}

// The leaders of `label` whose tips no leader of `whole` has, made to end where the first of `whole` ends.
bool appendOwnLeaders(ElementDescr* whole, ElementDescr*& label) {
    Point3d end = {}, own = {};
    if (!endOfLeader(end, whole) || !endOfLeader(own, label)) return false;
    if (!moveText(label, {end.x - own.x, end.y - own.y, end.z - own.z})) return false;
    for (const ElementDescr* leader = firstLeader(label); leader;) {
        const ElementDescr* next = leader->next;
        while (next && mdlElement_getType(next->element) != MDL_LINE_STRING) next = next->next;
        if (!liesOnAny(leader, whole) && !appendCopies(whole, leader, next)) return false;
        leader = next;
    }
    return true;
}

// The texts of all stand below those of the first, and hang on its leaders; leaders with the same tip become one.
bool collect(Labels& labels, int view) {
    ElementDescr* const first = labels.front().label.get();
    mdl::Descr whole;
    if (mdlElmdscr_new(whole.out(), nullptr, first->element) != MDL_SUCCESS) return false;
    if (!appendCopies(whole.get(), first->firstChild, firstLeader(first))) return false;
    for (size_t i = 1; i < labels.size(); ++i) {
        const std::optional<Extent> above = textExtent(whole.get(), view);
        const std::optional<Extent> own = textExtent(labels[i].label.get(), view);
        if (!above || !own) return false;
        const double gap = (own->top - own->bottom) / 8;
        if (!moveText(*labels[i].label.out(),
                      wayInView(above->left - own->left, above->bottom - gap - own->top, view)) ||
            !appendCopies(whole.get(), labels[i].label.get()->firstChild, firstLeader(labels[i].label.get())))
            return false;
    }
    if (!appendCopies(whole.get(), firstLeader(first), nullptr)) return false;
    for (size_t i = 1; i < labels.size(); ++i)
        if (!appendOwnLeaders(whole.get(), *labels[i].label.out())) return false;
    mdlCell_setRange(whole.get(), nullptr);
    std::swap(*whole.out(), *labels.front().label.out());
    return true;
}

// ---- the command ----

struct Kind {
    int32_t commandMessage, firstPrompt;
    size_t least;                              // labels
    bool (*change)(Labels& labels, int view);  // in memory
    bool keepsFirstAlone;                      // the others are deleted
    void (*start)();
    const mdl::Message<notes::id>& refusal;  // when `change` can't
};

constexpr Kind edges = {
    commands::alignEdge.number, prompts::firstLabel.number, 2, alignEdges, false, startAligningEdges, notes::fixedText};
constexpr Kind row = {commands::alignRow.number, prompts::firstLabel.number, 2, alignRow, false, startAligningRow,
                      notes::fixedText};
constexpr Kind collection = {commands::collect.number, prompts::firstLabel.number, 2, collect, true, startCollecting,
                             notes::fixedText};
constexpr Kind numbers = {commands::renumber.number, prompts::oldest.number, 1, renumber, false,
                          startRenumbering,          notes::noNumber};

struct Gathering {
    const Kind* kind;
    std::vector<FilePos> positions;
    int view = 0;
};
Gathering& gathering() {
    static Gathering gathering = {};
    return gathering;
}

void highlight(FilePos position) {
    if (const mdl::DescrPtr label = mdl::readDescr(position, mdlModelRef_getActive()))
        mdlElmdscr_display(label.get(), mdlModelRef_getActive(), MDL_HIGHLIGHT);
}

void prompt(const mdl::Message<prompts::id>& message) {
    char text[512] = "";
    if (mdlOutput_rscsPrintf(text, 0, prompts::id, message.number) == MDL_SUCCESS) mdlOutput_prompt(text);
}

bool isLocked(FilePos position) {
    int32_t locked = 0;
    const mdl::DescrPtr label = mdl::readDescr(position, mdlModelRef_getActive());
    return label &&
           mdlElement_getProperties(nullptr, nullptr, nullptr, &locked, nullptr, nullptr, nullptr, nullptr,
                                    label->element) == MDL_SUCCESS &&
           locked != 0;
}

void pick(Point3d* point, int32_t view) {
    constexpr double touchPixels = 10;
    const std::optional<Nearest> found = nearestLabel(*point, touchPixels * mdlView_getPixelSize(view), view);
    std::vector<FilePos>& positions = gathering().positions;
    if (!found) {
        refuse(notes::noLabel);
    } else if (std::ranges::find(positions, found->position) != positions.end()) {
        refuse(notes::twice);
    } else if (isLocked(found->position)) {
        refuse(notes::locked);
    } else {
        positions.push_back(found->position);
        gathering().view = view;
        highlight(found->position);
        prompt(prompts::nextLabel);
    }
}

bool writeOne(const Gathered& gathered, bool stays) {
    if (stays) return mdlElmdscr_rewrite(gathered.label.get(), gathered.position) != 0;
    return mdlElement_undoableDelete(nullptr, gathered.position, 0) == MDL_SUCCESS;
}

// All of them or none.
bool write(const Labels& labels, const Kind& kind) {
    for (size_t i = 0; i < labels.size(); ++i) {
        if (writeOne(labels[i], i == 0 || !kind.keepsFirstAlone)) continue;
        if (i > 0) mdlUndo_undo();
        return false;
    }
    return true;
}

bool change(const Gathering& asked) {
    Labels labels(asked.positions.size());
    for (size_t i = 0; i < labels.size(); ++i) {
        labels[i].position = asked.positions[i];
        if (!read(labels[i])) return refuse(notes::notWritten);
    }
    if (!asked.kind->change(labels, asked.view)) return refuse(asked.kind->refusal);
    return write(labels, *asked.kind) || refuse(notes::notWritten);
}

// The end of the gathering, and without enough labels of the command.
void finish() {
    const Gathering asked = std::exchange(gathering(), {});
    if (asked.positions.size() < asked.kind->least) return endCommand();
    if (change(asked)) mdl::printMessage(MDL_FIELD_MESSAGE, notes::changed, static_cast<int>(asked.positions.size()));
    mdlState_restartCurrentCommand();
}

void start(const Kind& kind) {
    gathering() = {.kind = &kind, .positions = {}};
    mdlState_startPrimitive(pick, kind.start, kind.commandMessage, kind.firstPrompt);
    mdlState_setFunction(MDL_STATE_RESET, finish);
}

}  // namespace

void startAligningEdges() {
    start(edges);
}

void startAligningRow() {
    start(row);
}

void startCollecting() {
    start(collection);
}

void startRenumbering() {
    start(numbers);
}

}  // namespace labels
