#include "mchost/model/range_index.h"

#include <algorithm>
#include <limits>

namespace host {
namespace {

constexpr size_t fanOut = 16;
constexpr int fanBits = 4;
constexpr uint32_t gridSize = 1u << 16;  // cells along each side of the grid that the curve runs through

bool meets(const Range3d& a, const Range3d& b) {
    return (a.low.x <= b.high.x) & (a.high.x >= b.low.x) & (a.low.y <= b.high.y) & (a.high.y >= b.low.y) &
           (a.low.z <= b.high.z) & (a.high.z >= b.low.z);
}

bool holds(const Range3d& outer, const Range3d& inner) {
    return (outer.low.x <= inner.low.x) & (outer.high.x >= inner.high.x) & (outer.low.y <= inner.low.y) &
           (outer.high.y >= inner.high.y) & (outer.low.z <= inner.low.z) & (outer.high.z >= inner.high.z);
}

void extend(Range3d& range, const Range3d& by) {
    range.low = {std::min(range.low.x, by.low.x), std::min(range.low.y, by.low.y), std::min(range.low.z, by.low.z)};
    range.high = {std::max(range.high.x, by.high.x), std::max(range.high.y, by.high.y),
                  std::max(range.high.z, by.high.z)};
}

// Place of a cell along the Hilbert curve of order 16 (the common iterative form: quadrants from the largest down,
// turning the remainder into the orientation of its quadrant).
uint32_t alongCurve(uint32_t x, uint32_t y) {
    uint32_t place = 0;
    for (uint32_t side = gridSize / 2; side > 0; side /= 2) {
        const uint32_t right = (x & side) != 0, upper = (y & side) != 0;
        place += side * side * ((3 * right) ^ upper);
        if (upper == 0) {
            if (right != 0) {
                x = gridSize - 1 - x;
                y = gridSize - 1 - y;
            }
            std::swap(x, y);
        }
    }
    return place;
}

struct Place {
    uint32_t along;
    uint32_t entry;
};

// Sorts by place along the curve: two passes of 16 bits.
void sortAlongCurve(std::vector<Place>& places) {
    std::vector<Place> other(places.size());
    for (const int shift : {0, 16}) {
        std::vector<uint32_t> begin(gridSize + 1);
        for (const Place& p : places) ++begin[((p.along >> shift) & 0xFFFF) + 1];
        for (size_t i = 1; i < begin.size(); ++i) begin[i] += begin[i - 1];
        for (const Place& p : places) other[begin[(p.along >> shift) & 0xFFFF]++] = p;
        places.swap(other);
    }
}

// The number of the cell that the middle of a side lies in.
uint32_t cell(double from, double to, double low, double perUnit) {
    return static_cast<uint32_t>(std::clamp((from / 2 + to / 2 - low) * perUnit, 0.0, gridSize - 1.0));
}

std::vector<Place> placesOf(const std::vector<RangeIndex::Entry>& entries) {
    constexpr double huge = std::numeric_limits<double>::max();
    Range3d all = {{huge, huge, huge}, {-huge, -huge, -huge}};
    for (const RangeIndex::Entry& entry : entries) extend(all, entry.box);
    const auto scale = [](double low, double high) { return high > low ? gridSize / (high - low) : 0.0; };
    const double perX = scale(all.low.x, all.high.x), perY = scale(all.low.y, all.high.y);
    std::vector<Place> places;
    places.reserve(entries.size());
    for (const auto& [box, position] : entries) {
        const uint32_t x = cell(box.low.x, box.high.x, all.low.x, perX);
        const uint32_t y = cell(box.low.y, box.high.y, all.low.y, perY);
        places.push_back({alongCurve(x, y), static_cast<uint32_t>(places.size())});
    }
    return places;
}

// Boxes over 16 of what lies below each.
template <class Below, class BoxOf>
std::vector<Range3d> boxesOver(const Below& below, BoxOf boxOf) {
    std::vector<Range3d> boxes;
    boxes.reserve(below.size() / fanOut + 1);
    for (size_t first = 0; first < below.size(); first += fanOut) {
        Range3d box = boxOf(below[first]);
        for (size_t i = first + 1; i < std::min(first + fanOut, below.size()); ++i) extend(box, boxOf(below[i]));
        boxes.push_back(box);
    }
    return boxes;
}

}  // namespace

void RangeIndex::build(std::vector<Entry> entries) {
    waiting_.clear();
    waitingAt_.clear();
    pack(std::move(entries));
}

void RangeIndex::pack(std::vector<Entry> entries) {
    std::vector<Place> places = placesOf(entries);
    sortAlongCurve(places);
    packed_.clear();
    packed_.reserve(entries.size());
    run_.clear();
    run_.reserve(entries.size());
    FilePos last = 0;
    for (const Place& place : places) {
        packed_.push_back(entries[place.entry]);
        run_.push_back(entries[place.entry].position);
        last = std::max(last, run_.back());
    }
    boxes_.clear();
    if (!packed_.empty()) boxes_.push_back(boxesOver(packed_, [](const Entry& entry) { return entry.box; }));
    while (!boxes_.empty() && boxes_.back().size() > 1) {
        boxes_.push_back(boxesOver(boxes_.back(), [](const Range3d& box) { return box; }));
    }
    bounds_ = boxes_.empty() ? Range3d{} : boxes_.back().front();
    inTree_.assign(packed_.empty() ? 0 : last + 1, false);
    for (const FilePos position : run_) inTree_[position] = true;
    stale_.assign(inTree_.size(), false);
    staleCount_ = 0;
}

void RangeIndex::put(FilePos position, const Range3d& box) {
    drop(position);
    if (packed_.empty() && waiting_.empty()) bounds_ = box;
    extend(bounds_, box);
    waitingAt_[position] = waiting_.size();
    waiting_.push_back({box, position});
}

void RangeIndex::drop(FilePos position) {
    dropWaiting(position);
    if (position >= inTree_.size() || !inTree_[position] || stale_[position]) return;
    stale_[position] = true;
    ++staleCount_;
}

void RangeIndex::dropWaiting(FilePos position) {
    const auto found = waitingAt_.find(position);
    if (found == waitingAt_.end()) return;
    const size_t at = found->second;
    waitingAt_.erase(found);
    if (at + 1 != waiting_.size()) {
        waiting_[at] = waiting_.back();
        waitingAt_[waiting_[at].position] = at;
    }
    waiting_.pop_back();
}

void RangeIndex::repackWhenDue() {
    if (waiting_.size() + staleCount_ <= 1024 + packed_.size() / 32) return;
    std::vector<Entry> entries;
    entries.reserve(packed_.size() + waiting_.size());
    forEach([&](FilePos position, const Range3d& box) { entries.push_back({box, position}); });
    build(std::move(entries));
}

void RangeIndex::search(const Range3d& window, std::vector<FilePos>& found) {
    repackWhenDue();
    found.reserve(found.size() + 1024);
    if (!boxes_.empty()) searchBelow(window, boxes_.size() - 1, 0, found);
    for (const Entry& entry : waiting_) {
        if (meets(window, entry.box)) found.push_back(entry.position);
    }
}

void RangeIndex::searchBelow(const Range3d& window, size_t level, size_t node, std::vector<FilePos>& found) const {
    const Range3d& box = boxes_[level][node];
    if (!meets(window, box)) return;
    if (holds(window, box)) {
        const size_t span = size_t{1} << (fanBits * (level + 1));
        return takeRun(node * span, std::min((node + 1) * span, run_.size()), found);
    }
    const size_t first = node * fanOut;
    if (level > 0) {
        const size_t last = std::min(first + fanOut, boxes_[level - 1].size());
        for (size_t child = first; child < last; ++child) searchBelow(window, level - 1, child, found);
        return;
    }
    for (size_t i = first; i < std::min(first + fanOut, packed_.size()); ++i) {
        if (meets(window, packed_[i].box) && (staleCount_ == 0 || !stale_[run_[i]])) found.push_back(run_[i]);
    }
}

void RangeIndex::takeRun(size_t first, size_t last, std::vector<FilePos>& found) const {
    if (staleCount_ == 0) {
        found.insert(found.end(), run_.begin() + first, run_.begin() + last);
        return;
    }
    for (size_t i = first; i < last; ++i) {
        if (!stale_[run_[i]]) found.push_back(run_[i]);
    }
}

}  // namespace host
