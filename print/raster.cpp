// Everything is drawn as runs of neighbouring bits: a line is one run a row, a fill one for each pair of edges in a
// row.
#include "print/raster.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <span>

#include "host/mdl/system.h"

namespace {

// Bit numbers and pixels need more than 32 bits, their products more than 64.
__extension__ using Wide = __int128;

struct Pixel {
    int64_t x, y;
};

// ---- slopes ----

// Columns a row of a line with dx up to dy: 0 or 1, and a fraction of 2^64, rounded up. A line begins half way between
// columns, so where it is lies at 1 / (2 * dy) or more from the next column, or exactly on it. What the rounding adds
// up to over dy rows stays below that while 2 * dy * dy is below 2^64.
struct Slope {
    static constexpr int64_t longest = (int64_t{1} << 31) - 1;
    Slope(int64_t dx, int64_t dy)
        : whole(dx == dy), fraction(whole ? 0 : static_cast<uint64_t>(((Wide(dx) << 64) + dy - 1) / dy)) {}
    const int64_t whole;
    const uint64_t fraction;
};

// The bits of a pixel, and behind them those of a pixel and the next one, for each place in a byte; two bytes in a row.
constexpr auto pairMasks = [] {
    std::array<uint16_t, 16> masks{};
    for (size_t place = 0; place < 8; ++place) {
        for (size_t more = 0; more < 2; ++more) {
            const unsigned bits = (more ? 0xC000U : 0x8000U) >> place;
            masks[more * 8 + place] = std::bit_cast<uint16_t>(
                std::array{static_cast<unsigned char>(bits >> 8), static_cast<unsigned char>(bits & 0xFF)});
        }
    }
    return masks;
}();

// ---- the bitmap ----

class Bitmap {
  public:
    Bitmap(unsigned char* bytes, int byteCount, const int* size, int mode)
        : width(size[0]),
          height(size[1]),
          bytes(bytes),
          byteCount(width > 0 ? std::max(byteCount, 0) : 0),
          ink(mode == 1 ? ~0ULL : 0) {}

    int64_t bitCount() const { return byteCount * 8; }
    Wide bitOf(int64_t x, int64_t y) const { return Wide(width) * y + x; }

    // Whether all pixels of the box lie in the bitmap, and the word from each of them on.
    bool holds(Pixel low, Pixel high) const {
        return width > 0 && bitOf(low.x, low.y) >= 0 && bitOf(high.x, high.y) + wordBits <= bitCount();
    }

    // Draws the bits from `first` to `last`, both included, as far as the bitmap has them.
    void run(int64_t first, int64_t last) {
        first = std::max<int64_t>(first, 0);
        last = std::min(last, bitCount() - 1);
        if (first > last) return;
        if (first + wordBits <= bitCount()) {
            runInside(first, last);
        } else {
            runOfBytes(first, last);
        }
    }
    // The same where the bitmap is known to hold the bits and the word from the first one on.
    void runInside(int64_t first, int64_t last) {
        const int64_t offset = first & 7, length = last - first + 1;
        if (offset + length > wordBits) return runOfBytes(first, last);
        apply(first, (~uint64_t{0} << (wordBits - length)) >> offset);
    }
    // Downwards from `bit` over `rows` further rows, all known to be held: in each row the bit that the line comes from
    // and, where it goes over to the next column, the one there.
    void slopeInside(int64_t bit, Slope slope, int sideways, int64_t rows) {
        runInside(bit, bit);
        if (ink) {
            sideways > 0 ? slopeRows<true, true>(bit, slope, rows) : slopeRows<true, false>(bit, slope, rows);
        } else {
            sideways > 0 ? slopeRows<false, true>(bit, slope, rows) : slopeRows<false, false>(bit, slope, rows);
        }
    }

    const int64_t width, height;

  private:
    static constexpr int64_t wordBits = 64;

    // Draws the bits of a mask whose highest bit is that of the byte of `first`.
    template <class Mask>
    void apply(int64_t first, Mask mask) {
        if constexpr (std::endian::native == std::endian::little) mask = swapBytes(mask);
        unsigned char* const at = bytes + (first >> 3);
        Mask value;
        std::memcpy(&value, at, sizeof value);
        value = static_cast<Mask>((value & ~mask) | (static_cast<Mask>(ink) & mask));
        std::memcpy(at, &value, sizeof value);
    }
    static uint8_t swapBytes(uint8_t value) { return value; }
    static uint64_t swapBytes(uint64_t value) { return __builtin_bswap64(value); }

    template <bool set, bool toTheRight>
    void slopeRows(int64_t bit, Slope slope, int64_t rows) const {
        unsigned char* const start = bytes;
        const int64_t nextRow = width;
        uint64_t along = uint64_t{1} << 63;  // how far the line is from one column to the next
        for (; rows > 0; --rows) {
            const int64_t stepped = slope.whole + __builtin_add_overflow(along, slope.fraction, &along);
            bit += toTheRight ? nextRow : nextRow - stepped;
            unsigned char* const at = start + (bit >> 3);
            const uint16_t mask = pairMasks[static_cast<size_t>(stepped * 8 + (bit & 7))];
            uint16_t value;
            std::memcpy(&value, at, sizeof value);
            value = static_cast<uint16_t>(set ? value | mask : value & ~mask);
            std::memcpy(at, &value, sizeof value);
            if (toTheRight) bit += stepped;
        }
    }

    void runOfBytes(int64_t first, int64_t last) {
        const int64_t byte = first >> 3, lastByte = last >> 3;
        const auto head = static_cast<uint8_t>(0xFF >> (first & 7)),
                   tail = static_cast<uint8_t>(0xFF << (7 - (last & 7)));
        if (byte == lastByte) return apply(first, static_cast<uint8_t>(head & tail));
        apply(first, head);
        std::memset(bytes + byte + 1, static_cast<int>(ink & 0xFF), static_cast<size_t>(lastByte - byte - 1));
        apply(last, tail);
    }

    unsigned char* const bytes;
    const int64_t byteCount;
    const uint64_t ink;
};

// ---- points ----

// The caller's points as pixels of a bitmap: y downwards from the top row.
class Outline {
  public:
    Outline(const int* points, const int* origin, const Bitmap& bitmap)
        : points(points), left(origin[0]), top(bitmap.height - 1 + origin[1]) {}
    Pixel operator[](size_t i) const { return {points[2 * i] - left, top - points[2 * i + 1]}; }

  private:
    const int* const points;
    const int64_t left, top;
};

// ---- lines ----

struct Rows {
    int64_t first, last;  // none when first is above last
};

Wide floorDivide(Wide a, Wide b) {
    const Wide quotient = a / b;
    return a % b != 0 && (a < 0) != (b < 0) ? quotient - 1 : quotient;
}

// Which k from 0 to `last` have start + k * step within `lowest` to `highest`.
Rows rowsWithin(Wide start, Wide step, int64_t last, Wide lowest, Wide highest) {
    if (step == 0) return start >= lowest && start <= highest ? Rows{0, last} : Rows{0, -1};
    if (step < 0) return rowsWithin(-start, -step, last, -highest, -lowest);
    const Wide from = -floorDivide(start - lowest, step), to = floorDivide(highest - start, step);
    return {static_cast<int64_t>(std::clamp<Wide>(from, 0, last + Wide(1))),
            static_cast<int64_t>(std::clamp<Wide>(to, -1, last))};
}

int32_t nearest32(int64_t value) {
    return static_cast<int32_t>(
        std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

// A horizontal line of `length` pixels.
void drawHorizontal(Bitmap& bitmap, Pixel start, int64_t length) {
    constexpr int64_t longestOfPixels = 8;
    if (length > longestOfPixels) {
        if (start.y < 0 || start.y >= bitmap.height) return;
        start.x = std::max<int64_t>(start.x, 0);
        if (length >= bitmap.width) length = bitmap.width - 1;
    }
    const Wide first = bitmap.bitOf(start.x, start.y);
    if (first >= bitmap.bitCount() || first + length <= 0) return;
    bitmap.run(static_cast<int64_t>(first), static_cast<int64_t>(first) + length - 1);
}

// The rows of a sloping line that can meet the bitmap: bit `start` moves by step / dy a row, and a row's pixels lie
// within margin / dy of it.
Rows rowsOnBitmap(const Bitmap& bitmap, Pixel start, Wide step, int64_t dy, int64_t last, Wide margin) {
    if (bitmap.bitCount() == 0) return {0, -1};
    return rowsWithin(bitmap.bitOf(start.x, start.y) * dy, step, last, -margin, Wide(bitmap.bitCount()) * dy + margin);
}

// Downwards from `start`, dy at least dx: in each row the pixel that the line comes from and, where it steps sideways,
// the one beside it: draw(first bit, 1 with the other one). Bresenham's decision value.
template <class Draw>
void walkSteep(const Bitmap& bitmap, Pixel start, int64_t dx, int64_t dy, int sideways, Rows rows, Draw draw) {
    if (rows.first > rows.last) return;
    const Wide reached = rows.first == 0 ? 0 : (Wide(2) * dx * (rows.first - 1) + dy) / (Wide(2) * dy);
    auto decision = static_cast<int64_t>(Wide(2) * dx * rows.first - dy - Wide(2) * dy * reached);
    auto bit = static_cast<int64_t>(bitmap.bitOf(start.x, start.y + rows.first) + sideways * reached);
    const int64_t width = bitmap.width, toTheLeft = sideways < 0 ? 1 : 0;
    for (int64_t row = rows.first; row <= rows.last; ++row) {
        const int64_t stepped = decision >= 0;
        draw(bit - (stepped & toTheLeft), stepped);
        bit += width + (-stepped & sideways);
        decision += 2 * dx - (-stepped & 2 * dy);
    }
}

void drawSteep(Bitmap& bitmap, Pixel start, int64_t dx, int64_t dy, int sideways, int64_t lastRow) {
    const int64_t left = sideways < 0 ? start.x - dx : start.x;
    if (dy <= Slope::longest && bitmap.holds({left, start.y}, {left + dx, start.y + dy})) {
        bitmap.slopeInside(static_cast<int64_t>(bitmap.bitOf(start.x, start.y)), {dx, dy}, sideways, lastRow);
    } else {
        const Wide step = Wide(bitmap.width) * dy + sideways * dx;
        walkSteep(bitmap, start, dx, dy, sideways, rowsOnBitmap(bitmap, start, step, dy, lastRow, Wide(2) * dy),
                  [&](int64_t first, int64_t more) { bitmap.run(first, first + more); });
    }
}

// To the right from `start`, dx above dy: row by row the pixels up to the step to the next row and the one behind it,
// as draw(first bit, last bit). The step to row j comes at the pixel dx * (2 * j - 1) / (2 * dy), rounded up.
template <class Draw>
void walkFlat(const Bitmap& bitmap, Pixel start, int64_t dx, int64_t dy, int upOrDown, Rows rows, Draw draw) {
    if (rows.first > rows.last) return;
    const auto stepTo = [&](int64_t row) { return -floorDivide(-Wide(dx) * (2 * row - 1), Wide(2) * dy); };
    auto from = static_cast<int64_t>(rows.first == 0 ? 0 : stepTo(rows.first));
    auto to = static_cast<int64_t>(stepTo(rows.first + 1));
    auto roundedBy = static_cast<int64_t>(Wide(2) * dy * to - Wide(dx) * (2 * rows.first + 1));
    auto bit = static_cast<int64_t>(bitmap.bitOf(start.x, start.y + upOrDown * rows.first));
    const int64_t nextRow = upOrDown * bitmap.width, length = dx / dy, remainder = 2 * (dx % dy);
    for (int64_t row = rows.first; row <= rows.last; ++row) {
        draw(bit + from, bit + std::min(to, dx));
        bit += nextRow;
        from = to;
        roundedBy -= remainder;
        const int64_t over = roundedBy < 0;
        to += length + over;
        roundedBy += -over & 2 * dy;
    }
}

void drawFlat(Bitmap& bitmap, Pixel start, int64_t dx, int64_t dy, int upOrDown) {
    const int64_t top = upOrDown < 0 ? start.y - dy : start.y;
    if (bitmap.holds({start.x, top}, {start.x + dx, top + dy})) {
        walkFlat(bitmap, start, dx, dy, upOrDown, {0, dy},
                 [&](int64_t first, int64_t last) { bitmap.runInside(first, last); });
    } else {
        const Wide step = Wide(upOrDown) * bitmap.width * dy + dx;
        walkFlat(bitmap, start, dx, dy, upOrDown, rowsOnBitmap(bitmap, start, step, dy, dy, dx + Wide(3) * dy),
                 [&](int64_t first, int64_t last) { bitmap.run(first, last); });
    }
}

void drawLine(Bitmap& bitmap, Pixel a, Pixel b) {
    const int64_t dx = std::abs(a.x - b.x), dy = std::abs(a.y - b.y);
    if (dx > dy ? a.x > b.x : a.y > b.y) std::swap(a, b);
    if (dy == 0) {
        drawHorizontal(bitmap, a, dx);
    } else if (dx == 0) {
        drawSteep(bitmap, a, 0, dy, 1, dy - 1);
    } else if (dy >= dx) {
        drawSteep(bitmap, a, dx, dy, a.x < b.x ? 1 : -1, dy);
    } else {
        drawFlat(bitmap, a, dx, dy, a.y < b.y ? 1 : -1);
    }
}

// Tells of a line that ends too far out.
bool inRange(const Bitmap& bitmap, Pixel a, Pixel b) {
    if (std::max(a.x, b.x) > 2 * bitmap.width) {
        mdlOutput_printf(0, "X out of range: %d, %d", nearest32(a.x), nearest32(b.x));
        return false;
    }
    if (std::max(a.y, b.y) > 2 * bitmap.height) {
        mdlOutput_printf(0, "Y out of range: %d, %d", nearest32(a.y), nearest32(b.y));
        return false;
    }
    return true;
}

// ---- fills ----

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
    std::unique_ptr<Edge<Int>, decltype(&std::free)> block(nullptr, std::free);
    Edge<Int>* edges = local.data();
    if (edgeCount > few) {
        block.reset(static_cast<Edge<Int>*>(std::malloc(edgeCount * sizeof(Edge<Int>))));
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

int mclibRaster_drawPoints(const int* points, const int* origin, int count, int byteCount, const int* size,
                           unsigned char* bitmap, int mode) {
    constexpr int linesBetweenMessages = 1000;
    Bitmap target(bitmap, byteCount, size, mode);
    const Outline chain(points, origin, target);
    int lines = 0;
    for (int i = 1; i < count; ++i) {
        const Pixel a = chain[static_cast<size_t>(i) - 1], b = chain[static_cast<size_t>(i)];
        if (!inRange(target, a, b)) continue;
        if (++lines % linesBetweenMessages == 0) mdlOutput_printf(0, "<Rasterizing> %d", lines);
        drawLine(target, a, b);
    }
    return lines;
}

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
