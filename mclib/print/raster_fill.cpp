// Fills: a run of neighbouring bits for each pair of edges in a row.
#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include "mchost/mdl/owned.hpp"
#include "mclib/print/bitmap.h"
#include "mclib/print/raster.h"

using namespace mc;
using namespace mc::raster;

namespace mc {

namespace {

// An edge of the outline, downwards. Its crossing with a row is x + error / dy.
template <class Int>
struct Edge {
    Int top, bottom;
    Int x, error;
    Int stepX, stepError;  // from row to row
    Int dy, limit;  // an error of `limit` or more goes over into x: above dy for an edge to the right, so that its
                    // error ends above 0 and up to dy; dy for one to the left, from 0 and below dy
};

// From the end of smaller y to the other one; they differ.
template <class Int>
Edge<Int> makeEdge(Pixel upper, Pixel lower) {
    const auto dy = static_cast<Int>(lower.y - upper.y), dx = static_cast<Int>(lower.x - upper.x);
    const Int toTheRight = dx > 0;
    Int stepX = 0;
    if (dx > dy) stepX = (dx - 1) / dy;
    if (dx < 0) stepX = -((dy - 1 - dx) / dy);
    return {static_cast<Int>(upper.y),
            static_cast<Int>(lower.y),
            static_cast<Int>(upper.x),
            0,
            stepX,
            static_cast<Int>(dx - stepX * dy),
            dy,
            static_cast<Int>(dy + toTheRight)};
}

template <class Int>
void advance(Edge<Int>& edge) {
    edge.x += edge.stepX;
    edge.error += edge.stepError;
    const bool over = edge.error >= edge.limit;
    edge.x += over;
    edge.error -= over ? edge.dy : 0;
}

// Keeps the order of equal ones, without memory for the few edges of most outlines.
template <class Int>
void sortBy(std::span<Edge<Int>> edges, Int Edge<Int>::*field) {
    constexpr size_t few = 24;
    if (edges.size() > few) {
        std::ranges::stable_sort(edges, {}, field);
        return;
    }
    for (size_t i = 1; i < edges.size(); ++i) {
        const Edge<Int> edge = edges[i];
        size_t at = i;
        for (; at > 0 && edges[at - 1].*field > edge.*field; --at) edges[at] = edges[at - 1];
        edges[at] = edge;
    }
}

// One fill. The edges lie in one block: in front those that cross the row, by their crossings; behind, after a gap of
// those that have ended, the ones that still wait for their first row. Edges that cross at the same x stand in an order
// that decides about pixels: it is turned round from row to row, and new edges come last.
template <class Int>
class Fill {
  public:
    // `waiting` in the outline's order, from its end to its start.
    Fill(Bitmap& bitmap, std::span<Edge<Int>> waiting) : bitmap(bitmap), edges(waiting) {}

    void run() {
        if (edges.empty()) return;
        sortBy(edges, &Edge<Int>::top);
        Int row = edges.front().top;
        do {
            addNew(row);
            fillRow(row);
            ++row;
            if (row == MCLIB_RASTER_FILL_ROWS || crossing == 0) return;
            moveTo(row);
        } while (true);
    }

  private:
    void addNew(Int row) {
        size_t end = waiting;
        while (end < edges.size() && edges[end].top == row) ++end;
        constexpr size_t few = 16;
        if (end - waiting > few) {
            std::copy(edges.begin() + static_cast<ptrdiff_t>(waiting), edges.begin() + static_cast<ptrdiff_t>(end),
                      edges.begin() + static_cast<ptrdiff_t>(crossing));
            crossing += end - waiting;
            waiting = end;
            sortBy(edges.first(crossing), &Edge<Int>::x);
        }
        for (; waiting < end; ++waiting) insert(edges[waiting]);
    }

    void insert(const Edge<Int> edge) {
        const auto end = edges.begin() + static_cast<ptrdiff_t>(crossing++);
        const auto at = std::upper_bound(edges.begin(), end, edge.x, [](Int x, const Edge<Int>& e) { return x < e.x; });
        std::copy_backward(at, end, end + 1);
        *at = edge;
    }

    void fillRow(Int row) {
        const int64_t rowStart = bitmap.width * row;
        for (size_t i = 0; i + 1 < crossing; i += 2) {
            const Edge<Int>&left = edges[i], &right = edges[i + 1];
            const int64_t first = int64_t(left.x) + (left.error > 0), last = int64_t(right.x) - (right.error == 0);
            if (first <= last) bitmap.run(rowStart + first, rowStart + last);
        }
    }

    // Drops the edges that end at the row, moves the others to it and brings them in order again.
    void moveTo(Int row) {
        size_t kept = 0;
        bool equals = false;
        for (size_t i = 0; i < crossing; ++i) {
            Edge<Int> edge = edges[i];
            if (edge.bottom == row) continue;
            advance(edge);
            size_t at = kept++;
            for (; at > 0 && edges[at - 1].x > edge.x; --at) edges[at] = edges[at - 1];
            equals |= at > 0 && edges[at - 1].x == edge.x;
            edges[at] = edge;
        }
        crossing = kept;
        if (equals) turnEquals();
    }

    void turnEquals() {
        const auto end = edges.begin() + static_cast<ptrdiff_t>(crossing);
        for (auto first = edges.begin(); first != end;) {
            const auto last = std::find_if(first, end, [&](const Edge<Int>& e) { return e.x != first->x; });
            std::reverse(first, last);
            first = last;
        }
    }

    Bitmap& bitmap;
    const std::span<Edge<Int>> edges;
    size_t crossing = 0, waiting = 0;
};

template <class Int>
void fillOutline(Bitmap& bitmap, const Outline& outline, size_t edgeCount) {
    constexpr size_t few = 32;
    std::array<Edge<Int>, few> local;
    mdl::HostPtr<Edge<Int>> block;
    Edge<Int>* edges = local.data();
    if (edgeCount > few) {
        block.reset(static_cast<Edge<Int>*>(dlmSystem_mdlMalloc(edgeCount * sizeof(Edge<Int>))));
        edges = block.get();
        if (!edges) return;
    }
    size_t used = 0;
    for (size_t i = edgeCount; i-- > 0;) {
        Pixel upper = outline[i], lower = outline[i + 1];
        if (upper.y > lower.y) std::swap(upper, lower);
        if (upper.y < 0 || upper.y >= MCLIB_RASTER_FILL_ROWS || upper.y == lower.y) continue;
        edges[used++] = makeEdge<Int>(upper, lower);
    }
    Fill<Int>(bitmap, {edges, used}).run();
}

// All sums and differences of the fill then stay within 32 bits.
bool isNear(const Outline& outline, size_t count) {
    constexpr int64_t limit = 1 << 28;
    for (size_t i = 0; i < count; ++i) {
        const Pixel p = outline[i];
        if (std::max(std::abs(p.x), std::abs(p.y)) > limit) return false;
    }
    return true;
}

}  // namespace

}  // namespace mc

void mclibRaster_fillShape(const int* points, int count, const int* origin, int byteCount, const int* size,
                           unsigned char* bitmap, int mode) {
    if (count < 2) return;
    Bitmap target(bitmap, byteCount, size, mode);
    const Outline outline(points, origin, target);
    const auto edgeCount = static_cast<size_t>(count) - 1;
    if (isNear(outline, edgeCount + 1)) {
        fillOutline<int32_t>(target, outline, edgeCount);
    } else {
        fillOutline<int64_t>(target, outline, edgeCount);
    }
}
