// The ranges of a model's elements.
#include <algorithm>
#include <new>

#include "mchost/element/range.h"
#include "mchost/model/model.h"

namespace host {
namespace {

bool isFinite(const Range3d& range) {
    // A sum of finite numbers may overflow; their products with 0 can't.
    const auto& [low, high] = range;
    return 0 * low.x + 0 * low.y + 0 * low.z + 0 * high.x + 0 * high.y + 0 * high.z == 0;
}

void extend(std::optional<Range3d>& all, const Range3d& by) {
    if (!all) {
        all = by;
        return;
    }
    all->low = {std::min(all->low.x, by.low.x), std::min(all->low.y, by.low.y), std::min(all->low.z, by.low.z)};
    all->high = {std::max(all->high.x, by.high.x), std::max(all->high.y, by.high.y), std::max(all->high.z, by.high.z)};
}

// The range of an element with its components.
std::optional<Range3d> unitRange(const RecordHead* record) {
    std::optional<Range3d> all;
    forEachNode(record, [&](const StoredNode& node) {
        Range3d range;
        if (elementRange(node.element, range) && isFinite(range)) extend(all, range);
    });
    return all;
}

void fillRanges(Model& model) {
    std::vector<RangeIndex::Entry> entries;
    entries.reserve(model.elements.liveCount());
    for (FilePos position = 1; position < model.elements.nextPosition(); ++position) {
        if (!model.elements.isLive(position)) continue;
        if (const auto range = unitRange(model.elements.record(position))) entries.push_back({*range, position});
    }
    model.ranges.build(std::move(entries));
    model.rangesFilled = true;
}

}  // namespace

RangeIndex& rangesOf(Model& model) {
    if (!model.rangesFilled) fillRanges(model);
    return model.ranges;
}

void updateRange(Model& model, FilePos position) noexcept try {
    if (!model.rangesFilled) return;
    const bool live = model.elements.isLive(position);
    if (const auto range = live ? unitRange(model.elements.record(position)) : std::nullopt) {
        model.ranges.put(position, *range);
    } else {
        model.ranges.drop(position);
    }
} catch (const std::bad_alloc&) {
    model.rangesFilled = false;
}

std::optional<Range3d> modelRange(Model& model) {
    std::optional<Range3d> all;
    rangesOf(model).forEach([&](FilePos, const Range3d& range) { extend(all, range); });
    return all;
}

}  // namespace host
