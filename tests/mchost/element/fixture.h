// What the tests of elements share.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/transform.h"

// An element on the heap: 128 KB are much for a stack, and sanitizers see what is read behind it.
struct TestElement {
    std::unique_ptr<MSElementBuffer> block = std::make_unique<MSElementBuffer>();
    MSElementBuffer* get() { return block.get(); }
    const MSElementBuffer* get() const { return block.get(); }
    operator MSElementBuffer*() { return block.get(); }
};

// A current system that is turned, mirrored and unevenly scaled; none when `kind` is 0.
struct TestSystem {
    static constexpr int kinds = 5;
    explicit TestSystem(int kind) {
        mdlCurrTrans_begin();
        const Point3d origin{1000, -500, 20};
        if (kind > 0) mdlCurrTrans_translateOrigin(&origin);
        if (kind == 1) mdlCurrTrans_scale(25, 25, 1);
        if (kind == 2) mdlCurrTrans_rotateByAngles(0, 0, 0.7);
        if (kind == 3) mdlCurrTrans_scale(1, -1, 1);
        if (kind == 4) mdlCurrTrans_scale(2, 0.5, 1), mdlCurrTrans_rotateByAngles(0, 0, -1.2);
    }
    ~TestSystem() { mdlCurrTrans_end(); }
};

inline void expectNear(const Point3d& a, const Point3d& b, double tolerance) {
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

inline std::vector<Point3d> strokeOf(const MSElementBuffer* element, double tolerance) {
    Point3d* points = nullptr;
    int32_t count = 0;
    if (mdlElement_stroke(&points, &count, element, tolerance) != MDL_SUCCESS) return {};
    std::vector<Point3d> result(points, points + count);
    dlmSystem_mdlFree(points);
    return result;
}

inline double distanceToPolyline(const Point3d& p, const std::vector<Point3d>& line) {
    double best = HUGE_VAL;
    for (size_t i = 1; i < line.size(); ++i) {
        const Point3d &a = line[i - 1], &b = line[i];
        const double x = b.x - a.x, y = b.y - a.y, z = b.z - a.z, squared = x * x + y * y + z * z;
        double t = squared > 0 ? ((p.x - a.x) * x + (p.y - a.y) * y + (p.z - a.z) * z) / squared : 0;
        t = std::fmin(1, std::fmax(0, t));
        const Point3d foot{a.x + t * x, a.y + t * y, a.z + t * z};
        best = std::fmin(best, mdlVec_distance(&p, &foot));
    }
    return best;
}

struct DescriptorHolder {
    ElementDescr* ed = nullptr;
    ~DescriptorHolder() { mdlElmdscr_freeAll(&ed); }
};
