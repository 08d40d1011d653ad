#include "mchost/command/selection.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

#include "mchost/base/guard.h"
#include "mchost/command/fence.h"
#include "mchost/command/hits.h"
#include "mchost/session/owned_state.h"
#include "mchost/space/vector.h"
#include "mchost/view/area.h"

namespace host {
namespace {

struct SelectionSet {
    uint64_t model = 0;                   // serial
    std::vector<FilePos> positions = {};  // rising
    uint64_t changes = 0;
};

// That of the active model.
SelectionSet& selection() {
    SelectionSet& set = sessionState<SelectionSet>();
    if (const uint64_t model = activeModelSerial(); set.model != model) set = {model, {}, set.changes + 1};
    return set;
}

void select(std::vector<FilePos> positions) {
    SelectionSet& set = selection();
    positions.insert(positions.end(), set.positions.begin(), set.positions.end());
    std::ranges::sort(positions);
    const auto again = std::ranges::unique(positions);
    positions.erase(again.begin(), again.end());
    set.positions = std::move(positions);
    ++set.changes;
}

// The active model when it is meant and an element lies there.
const Model* modelWith(FilePos position, ModelRef* place) {
    const Model* model = openModel(nullptr);
    const bool isIts = openPlace(place) == openPlace(nullptr);
    return model && isIts && model->elements.isLive(position) ? model : nullptr;
}

std::vector<FilePos> allThatIsSeen(const Model& model) {
    std::vector<FilePos> all;
    const auto keys = model.elements.keys();
    for (FilePos position = 1; position < model.elements.nextPosition(); ++position) {
        if (keys[position].live && keys[position].type != MDL_APPLICATION_DATA) all.push_back(position);
    }
    return all;
}

// ---- the fence ----

struct Edge {
    Point3d from, to;
};

// A fence as its view shows it.
class FenceArea {
  public:
    explicit FenceArea(const Fence& fence) : toSeen_(seenFrom(fence.view)), tolerance_(viewPixelSize(fence.view)) {
        std::vector<Point3d> corners;
        for (const Point3d& corner : fence.corners) corners.push_back(flat(applyToPoint(toSeen_, corner)));
        for (size_t i = 0; i < corners.size(); ++i) {
            edges_.push_back({corners[i], corners[(i + 1) % corners.size()]});
            range_.add(corners[i]);
        }
    }

    std::vector<FilePos> elementsIn(Model& model) {
        std::vector<FilePos> found = elementsBehind(model, toSeen_, range_.range());
        std::erase_if(found, [&](FilePos position) { return !holds(model.elements.record(position)); });
        return found;
    }

  private:
    static Point3d flat(const Point3d& p) { return {p.x, p.y, 0}; }

    bool holds(const RecordHead* record) {
        bool any = false, all = true;
        forEachNode(record, [&](const StoredNode& node) {
            forEachPart(node.element, [&](const MSElementBuffer* part) {
                if (!all || !outlineOf(points_, part, tolerance_, toSeen_)) return;
                any = true;
                all = holdsLine();
            });
        });
        return any && all;
    }

    bool holdsLine() {
        for (Point3d& p : points_) p = flat(p);
        if (!std::ranges::all_of(points_, [&](const Point3d& p) { return isInside(p); })) return false;
        for (size_t i = 1; i < points_.size(); ++i) {
            const auto isCrossed = [&](const Edge& edge) { return cross(edge, {points_[i - 1], points_[i]}); };
            if (std::ranges::any_of(edges_, isCrossed)) return false;
        }
        return true;
    }

    // By the number of edges to its right.
    bool isInside(const Point3d& p) const {
        bool inside = false;
        for (const auto& [a, b] : edges_) {
            if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (b.x - a.x) * ((p.y - a.y) / (b.y - a.y))) inside = !inside;
        }
        return inside;
    }

    static bool cross(const Edge& a, const Edge& b) {
        const auto side = [](const Edge& edge, const Point3d& p) {
            return host::cross(edge.to - edge.from, p - edge.from).z;
        };
        return side(a, b.from) * side(a, b.to) < 0 && side(b, a.from) * side(b, a.to) < 0;
    }

    Transform toSeen_;
    double tolerance_;
    std::vector<Edge> edges_;
    RangeBuilder range_;
    std::vector<Point3d> points_;
};

template <class T>
T* arrayOf(const std::vector<T>& values) {
    T* array = static_cast<T*>(std::malloc(values.size() * sizeof(T)));
    if (!array) throw std::bad_alloc();
    std::ranges::copy(values, array);
    return array;
}

}  // namespace

bool isSelected(FilePos position) {
    return std::ranges::binary_search(selection().positions, position);
}

std::vector<FilePos> selectedElements() {
    const Model* model = openModel(nullptr);
    std::vector<FilePos> there = selection().positions;
    std::erase_if(there, [&](FilePos position) { return !model || !model->elements.isLive(position); });
    return there;
}

uint64_t selectionChanges() {
    return selection().changes;
}

}  // namespace host

using namespace host;

int mdlSelect_isActive(void) noexcept {
    return guarded<int>(0, [] { return selectedElements().empty() ? 0 : 1; });
}

int mdlSelect_returnPositions(FilePos** positionsP, ModelRef*** modelsP, int32_t* countP) noexcept {
    if (!positionsP || !modelsP || !countP) return MDL_ERROR;
    *positionsP = nullptr;
    *modelsP = nullptr;
    *countP = 0;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const std::vector<FilePos> positions = selectedElements();
        if (positions.empty()) return MDL_SUCCESS;
        std::unique_ptr<FilePos, decltype(&std::free)> found(arrayOf(positions), std::free);
        *modelsP = arrayOf(std::vector<ModelRef*>(positions.size(), openPlace(nullptr)));
        *positionsP = found.release();
        *countP = static_cast<int32_t>(positions.size());
        return MDL_SUCCESS;
    });
}

int mdlSelect_addElement(FilePos position, ModelRef* model) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!modelWith(position, model)) return MDL_ERROR;
        select({position});
        return MDL_SUCCESS;
    });
}

int mdlSelect_removeElement(FilePos position, ModelRef* model) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!modelWith(position, model)) return MDL_ERROR;
        std::erase(selection().positions, position);
        ++selection().changes;
        return MDL_SUCCESS;
    });
}

int mdlSelect_freeAll(void) noexcept {
    return guarded<int>(MDL_ERROR, [] {
        selection().positions.clear();
        ++selection().changes;
        return MDL_SUCCESS;
    });
}

int mdlSelect_allElements(void) noexcept {
    return guarded<int>(MDL_ERROR, [] {
        if (const Model* model = openModel(nullptr)) select(allThatIsSeen(*model));
        return MDL_SUCCESS;
    });
}

int mdlSelect_byFence(void) noexcept {
    return guarded<int>(MDL_ERROR, []() -> int {
        const Fence* fence = activeFence();
        Model* model = openModel(nullptr);
        if (!fence || !model) return MDL_ERROR;
        select(FenceArea(*fence).elementsIn(*model));
        return MDL_SUCCESS;
    });
}
