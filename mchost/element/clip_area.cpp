// Areas, and the pieces of lines that lie in them.
#include <algorithm>
#include <cmath>

#include "mchost/element/region.h"
#include "mchost/space/vector.h"

namespace host {
namespace {

constexpr size_t mostRows = 4096;
constexpr double relativeSlack = 1e-12;  // of the area's extent
constexpr double nearEnd = 1e-9;         // of a segment: crossings so near to its ends count

bool isFinite2(const Point2& p) {
    return p.x * 0 + p.y * 0 == 0;
}

// Whether p lies on the edge.
bool isOnEdge(const ClipArea::Edge& edge, const Point2& p, double slack) {
    const Point2 along = edge.b - edge.a, to = p - edge.a;
    const double squared = dot(along, along), off = cross(along, to);
    if (off * off > slack * slack * squared) return false;
    const double far = dot(along, to), beyond = slack * std::sqrt(squared);
    return far >= -beyond && far <= squared + beyond;
}

// A line that is taken apart into pieces as it goes on.
class Pieces {
  public:
    Pieces(const ClipArea& area, const Transform& toPlane, std::span<const Point3d> line)
        : area_(area), toPlane_(toPlane), line_(line) {}

    std::vector<std::vector<Point3d>> take() {
        Point2 seen = line_.empty() ? Point2{} : flat(toPlane_, line_[0]);
        for (size_t i = 0; i + 1 < line_.size(); ++i) {
            const Point2 next = flat(toPlane_, line_[i + 1]);
            goAlong(i, seen, next);
            seen = next;
        }
        end();
        return std::move(pieces_);
    }

  private:
    // The segment from the point of that number; where it is seen.
    void goAlong(size_t i, const Point2& from, const Point2& to) {
        // One that no edge comes near lies where the one before ended.
        const bool crossed = area_.crossings(at_, from, to);
        if (!crossed && i == 0 && area_.isInside(from)) begin(i, line_[0]);
        for (size_t part = 0; crossed && part + 1 < at_.size(); ++part) {
            const double middle = (at_[part] + at_[part + 1]) / 2;
            const Point2 along = to - from;
            const bool inside = area_.isInside({from.x + along.x * middle, from.y + along.y * middle});
            if (inside == open_) continue;
            const double t = at_[part];
            const Point3d p = t == 0 ? line_[i] : line_[i] + (line_[i + 1] - line_[i]) * t;
            if (inside)
                begin(i, p);
            else
                endAt(p, t);
        }
        if (open_) pieces_.back().push_back(line_[i + 1]);
    }

    void begin(size_t i, const Point3d& p) {
        pieces_.emplace_back().reserve(line_.size() - i + 1);
        pieces_.back().push_back(p);
        open_ = true;
    }
    void endAt(const Point3d& p, double t) {
        if (t > 0) pieces_.back().push_back(p);  // else it has been added as the end of the segment before
        end();
    }
    void end() {
        if (!open_) return;
        open_ = false;
        const std::vector<Point3d>& piece = pieces_.back();
        const bool hasLength = std::ranges::any_of(piece, [&](const Point3d& p) { return !(p == piece.front()); });
        if (!hasLength) pieces_.pop_back();
    }

    const ClipArea& area_;
    const Transform& toPlane_;
    std::span<const Point3d> line_;
    std::vector<double> at_;
    std::vector<std::vector<Point3d>> pieces_;
    bool open_ = false;  // the last piece goes on
};

}  // namespace

ClipArea::ClipArea(Rings rings) : rings_(std::move(rings)) {
    std::erase_if(rings_, [](const Ring& ring) { return ring.size() < 3 || !std::ranges::all_of(ring, isFinite2); });
    for (const Ring& ring : rings_)
        for (size_t i = 0, before = ring.size() - 1; i < ring.size(); before = i++)
            edges_.push_back({ring[before], ring[i], 0});
    if (edges_.empty()) return;
    measure();
    fillRows();
}

void ClipArea::measure() {
    low_ = high_ = edges_[0].a;
    for (const Edge& edge : edges_) {
        low_ = {std::min(low_.x, edge.a.x), std::min(low_.y, edge.a.y)};
        high_ = {std::max(high_.x, edge.a.x), std::max(high_.y, edge.a.y)};
    }
    slack_ = relativeSlack * std::max({high_.x - low_.x, high_.y - low_.y, std::fabs(low_.x), std::fabs(high_.x),
                                       std::fabs(low_.y), std::fabs(high_.y)});
}

void ClipArea::fillRows() {
    const size_t rows = std::min(edges_.size(), mostRows);
    rowsPerUnit_ = high_.y > low_.y ? static_cast<double>(rows) / (high_.y - low_.y) : 0;
    rowStarts_.assign(rows + 1, 0);
    const auto forEachRow = [&](auto visit) {
        for (uint32_t i = 0; i < edges_.size(); ++i) {
            const auto [low, high] = std::minmax(edges_[i].a.y, edges_[i].b.y);
            for (uint32_t row = rowAt(low - slack_), last = rowAt(high + slack_); row <= last; ++row) visit(row, i);
        }
    };
    forEachRow([&](uint32_t row, uint32_t) { ++rowStarts_[row + 1]; });
    for (size_t row = 0; row < rows; ++row) rowStarts_[row + 1] += rowStarts_[row];
    rowEdges_.resize(rowStarts_.back());
    std::vector<uint32_t> next(rowStarts_.begin(), rowStarts_.end() - 1);
    forEachRow([&](uint32_t row, uint32_t i) { rowEdges_[next[row]++] = i; });
    for (Edge& edge : edges_) edge.firstRow = rowAt(std::min(edge.a.y, edge.b.y) - slack_);
}

uint32_t ClipArea::rowAt(double y) const {
    const double row = (y - low_.y) * rowsPerUnit_, last = static_cast<double>(rowStarts_.size() - 2);
    return static_cast<uint32_t>(std::clamp(row, 0.0, last));
}

std::span<const uint32_t> ClipArea::edgesIn(uint32_t row) const {
    return {rowEdges_.begin() + rowStarts_[row], rowEdges_.begin() + rowStarts_[row + 1]};
}

bool ClipArea::isInside(const Point2& p) const {
    const bool within = !edges_.empty() && p.x >= low_.x - slack_ && p.x <= high_.x + slack_ &&
                        p.y >= low_.y - slack_ && p.y <= high_.y + slack_;
    if (!within) return false;
    bool inside = false;
    for (const uint32_t i : edgesIn(rowAt(p.y))) {
        const auto& [a, b, row] = edges_[i];
        if (isOnEdge(edges_[i], p, slack_)) return true;
        if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (b.x - a.x) * ((p.y - a.y) / (b.y - a.y))) inside = !inside;
    }
    return inside;
}

bool ClipArea::crossings(std::vector<double>& at, const Point2& a, const Point2& b) const {
    at.clear();
    const auto [left, right] = std::minmax(a.x, b.x);
    const auto [bottom, top] = std::minmax(a.y, b.y);
    if (edges_.empty() ||
        !(right >= low_.x - slack_ && left <= high_.x + slack_ && top >= low_.y - slack_ && bottom <= high_.y + slack_))
        return false;
    const Point2 along = b - a;
    bool near = false;
    const uint32_t first = rowAt(bottom - slack_), last = rowAt(top + slack_);
    for (uint32_t row = first; row <= last; ++row) {
        for (const uint32_t i : edgesIn(row)) {
            const Edge& edge = edges_[i];
            const bool beside = (edge.a.x < left - slack_ && edge.b.x < left - slack_) ||
                                (edge.a.x > right + slack_ && edge.b.x > right + slack_);
            if (beside || row != std::max(edge.firstRow, first)) continue;  // or it has been looked at
            const Point2 side = edge.b - edge.a, to = edge.a - a;
            const double turn = cross(along, side);
            if (turn == 0) {
                near = true;  // in one direction: where it changes sides the neighbours tell
                continue;
            }
            const double t = cross(to, side) / turn, s = cross(to, along) / turn;
            if (!(t >= -nearEnd && t <= 1 + nearEnd && s >= -nearEnd && s <= 1 + nearEnd)) continue;
            near = true;
            if (t > 0 && t < 1) at.push_back(t);
        }
    }
    if (!near) return false;
    at.push_back(0);
    at.push_back(1);
    std::ranges::sort(at);
    at.erase(std::unique(at.begin(), at.end()), at.end());
    return true;
}

std::vector<std::vector<Point3d>> piecesInside(const ClipArea& area, const Transform& toPlane,
                                               std::span<const Point3d> line) {
    return Pieces(area, toPlane, line).take();
}

}  // namespace host
