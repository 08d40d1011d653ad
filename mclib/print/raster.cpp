// Lines: one run of neighbouring bits a row.
#include "mclib/print/raster.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "mchost/mdl/system.h"
#include "mclib/print/bitmap.h"

using namespace mc;
using namespace mc::raster;

namespace mc {

namespace {

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

}  // namespace

}  // namespace mc

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
