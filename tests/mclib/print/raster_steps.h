// The rasteriser pixel by pixel and edge by edge, with lists and plain loops: what the fast one is held against.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <list>
#include <map>
#include <utility>
#include <vector>

namespace raster_steps {

struct Target {
    std::vector<uint8_t> bytes;
    int64_t width, height;
    bool set;

    void pixel(int64_t x, int64_t y) {
        const int64_t bit = width * y + x;
        if (width <= 0 || bit < 0 || bit / 8 >= static_cast<int64_t>(bytes.size())) return;
        const auto mask = static_cast<uint8_t>(0x80 >> bit % 8);
        uint8_t& byte = bytes[static_cast<size_t>(bit / 8)];
        byte = static_cast<uint8_t>(set ? byte | mask : byte & ~mask);
    }
};

struct Point {
    int64_t x, y;
};

inline std::vector<Point> pixels(const Target& target, const std::vector<int>& points, const int* origin) {
    std::vector<Point> all;
    for (size_t i = 0; i + 1 < points.size(); i += 2) {
        all.push_back({int64_t(points[i]) - origin[0], target.height - 1 + origin[1] - points[i + 1]});
    }
    return all;
}

// `set` gets the main and the side coordinate: y and x of a steep line.
template <class Set>
void slopingLine(int64_t main, int64_t side, int64_t mainEnd, int64_t sideEnd, Set set) {
    const int64_t longer = mainEnd - main, shorter = std::abs(sideEnd - side), step = sideEnd > side ? 1 : -1;
    int64_t decision = 2 * shorter - longer;
    set(main, side);
    while (main < mainEnd) {
        ++main;
        if (decision < 0) {
            decision += 2 * shorter;
        } else {
            set(main, side);
            side += step;
            decision += 2 * (shorter - longer);
        }
        set(main, side);
    }
}

inline void line(Target& target, Point a, Point b) {
    const int64_t dx = std::abs(a.x - b.x), dy = std::abs(a.y - b.y);
    if (dy == 0) {
        int64_t x = std::min(a.x, b.x), length = dx;
        if (dx > 8) {
            if (a.y < 0 || a.y >= target.height) return;
            x = std::max<int64_t>(x, 0);
            if (length >= target.width) length = target.width - 1;
        }
        for (int64_t i = 0; i < length; ++i) target.pixel(x + i, a.y);
    } else if (dx == 0) {
        for (int64_t i = 0; i < dy; ++i) target.pixel(a.x, std::min(a.y, b.y) + i);
    } else if (dy >= dx) {
        if (a.y > b.y) std::swap(a, b);
        slopingLine(a.y, a.x, b.y, b.x, [&](int64_t y, int64_t x) { target.pixel(x, y); });
    } else {
        if (a.x > b.x) std::swap(a, b);
        slopingLine(a.x, a.y, b.x, b.y, [&](int64_t x, int64_t y) { target.pixel(x, y); });
    }
}

inline int lines(Target& target, const std::vector<int>& points, const int* origin) {
    const std::vector<Point> chain = pixels(target, points, origin);
    int count = 0;
    for (size_t i = 1; i < chain.size(); ++i) {
        if (std::max(chain[i - 1].x, chain[i].x) > 2 * target.width) continue;
        if (std::max(chain[i - 1].y, chain[i].y) > 2 * target.height) continue;
        line(target, chain[i - 1], chain[i]);
        ++count;
    }
    return count;
}

struct ActiveEdge {
    int64_t yMax, x, error, dy, dx;
};

inline std::list<ActiveEdge> sorted(std::list<ActiveEdge> edges) {
    std::list<ActiveEdge> result;
    while (!edges.empty()) {
        const auto largest =
            std::max_element(edges.begin(), edges.end(), [](const auto& a, const auto& b) { return a.x < b.x; });
        result.push_front(*largest);
        edges.erase(largest);
    }
    return result;
}

inline void advance(ActiveEdge& edge) {
    edge.error += edge.dx;
    for (; edge.dx > 0 && edge.error > edge.dy; ++edge.x) edge.error -= edge.dy;
    for (; edge.dx < 0 && edge.error < 0; --edge.x) edge.error += edge.dy;
}

inline void fill(Target& target, const std::vector<int>& points, const int* origin) {
    constexpr int64_t rowCount = 100024;
    const std::vector<Point> outline = pixels(target, points, origin);
    std::map<int64_t, std::list<ActiveEdge>> rows;
    for (size_t i = 1; i < outline.size(); ++i) {
        Point a = outline[i - 1], b = outline[i];
        if (a.y > b.y) std::swap(a, b);
        if (a.y >= 0 && a.y < rowCount && a.y != b.y) rows[a.y].push_front({b.y, a.x, 0, b.y - a.y, b.x - a.x});
    }
    if (rows.empty()) return;
    std::list<ActiveEdge> active;
    int64_t y = rows.begin()->first;
    do {
        active.remove_if([y](const ActiveEdge& edge) { return edge.yMax == y; });
        for (const ActiveEdge& edge : rows[y]) active.push_front(edge);
        active = sorted(active);
        for (auto left = active.begin(); left != active.end() && std::next(left) != active.end();
             std::advance(left, 2)) {
            const auto right = std::next(left);
            if (left->x == right->x && left->error == 0 && right->error == 0) continue;
            for (int64_t x = left->x + (left->error > 0); x <= right->x - (right->error == 0); ++x) target.pixel(x, y);
        }
        ++y;
        for (ActiveEdge& edge : active) advance(edge);
    } while (!active.empty() && y < rowCount);
}

}  // namespace raster_steps
