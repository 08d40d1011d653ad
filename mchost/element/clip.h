// Clipping: what of elements lies inside an area that is seen along one direction.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "mchost/mdl/elmdscr.h"

namespace host {

struct Point2 {
    double x, y;
};
constexpr Point2 operator-(const Point2& a, const Point2& b) {
    return {a.x - b.x, a.y - b.y};
}
constexpr double dot(const Point2& a, const Point2& b) {
    return a.x * b.x + a.y * b.y;
}
constexpr double cross(const Point2& a, const Point2& b) {
    return a.x * b.y - a.y * b.x;
}
using Ring = std::vector<Point2>;
using Rings = std::vector<Ring>;

// The inside of rings: what an odd number of turns goes round, and the rim. Each ring is closed by itself; one of fewer
// than three corners doesn't count.
class ClipArea {
  public:
    explicit ClipArea(Rings rings);
    explicit ClipArea(std::span<const Point2> ring) : ClipArea(Rings{{ring.begin(), ring.end()}}) {}

    const Rings& rings() const { return rings_; }
    bool isInside(const Point2& p) const;

    struct Edge {
        Point2 a, b;
        uint32_t firstRow;
    };
    std::span<const Edge> edges() const { return edges_; }

    // Fills `at` with where the segment may change sides, from 0 at a to 1 at b, both ends included, rising. False,
    // with `at` empty, when no edge comes near it.
    bool crossings(std::vector<double>& at, const Point2& a, const Point2& b) const;

  private:
    void measure();
    void fillRows();
    uint32_t rowAt(double y) const;
    std::span<const uint32_t> edgesIn(uint32_t row) const;

    Rings rings_;
    std::vector<Edge> edges_;
    // Which edges pass through each of the rows that the area is divided into, from the lowest up.
    std::vector<uint32_t> rowStarts_, rowEdges_;
    Point2 low_{}, high_{};
    double rowsPerUnit_ = 0;
    double slack_ = 0;  // so far from an edge lies the rim
};

// The pieces of a line that lie inside, in order and direction. `toPlane` takes its points to the plane of the area,
// where z doesn't count. Pieces without length are left out.
std::vector<std::vector<Point3d>> piecesInside(const ClipArea& area, const Transform& toPlane,
                                               std::span<const Point3d> line);

enum class Clipped { whole, cut, nothing };

// What of the chain `in` lies in the area, as it is seen along z behind `toPlane`, which takes UOR to the plane of the
// area. With `cut` *outPP is a new chain that the caller frees; else it stays as it is, and all of `in` is inside or
// nothing is.
//
// What is open comes as one element for each piece, in order: arcs as arcs, B-splines as line strings. Of what is
// closed and filled comes the area, as filled shapes; of what is closed and not filled, the pieces of its outline.
// Texts, text nodes, tags, dimensions and cells are inside as a whole when their origin is; compounds and multi-lines
// by the elements that they hold. What isn't drawn is inside.
Clipped clipDescriptor(ElementDescr** outPP, const ElementDescr* in, const ClipArea& area, const Transform& toPlane);

}  // namespace host
