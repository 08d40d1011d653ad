// B-spline curves as records and elements.
#include "mchost/element/bspline.h"

#include <new>

#include "mchost/base/guard.h"
#include "mchost/element/build.h"
#include "mchost/mdl/system.h"

namespace host {
namespace {

template <class T>
T* copyToHost(std::span<const T> values) {
    if (values.empty()) return nullptr;
    auto* block = static_cast<T*>(dlmSystem_mdlMalloc(values.size_bytes()));
    if (!block) throw std::bad_alloc();
    std::ranges::copy(values, block);
    return block;
}

uint8_t* append(uint8_t* to, const void* values, size_t bytes) {
    if (bytes) std::memcpy(to, values, bytes);
    return to + bytes;
}

}  // namespace

bool splineOf(const BsplineCurve& curve, Spline& spline) {
    const int32_t n = curve.numPoles, order = curve.order;
    if (!curve.poles || !curve.knots || order < 2 || order > mostOrder || n < order) return false;
    if (n > static_cast<int32_t>(MDL_ELEMENT_BYTES / sizeof(Point3d)) || curve.numKnots != n + order) return false;
    if (curve.rational && !curve.weights) return false;
    spline = {order, {curve.poles, curve.poles + n}, {curve.knots, curve.knots + n + order}, {}};
    if (curve.rational) spline.weights.assign(curve.weights, curve.weights + n);
    return spline.isSound();
}

void giveArrays(BsplineCurve& curve, const Spline& spline) {
    BsplineCurve given = curve;
    given.poles = nullptr, given.knots = nullptr, given.weights = nullptr;
    try {
        given.poles = copyToHost(std::span(spline.poles));
        given.knots = copyToHost(std::span(spline.knots));
        given.weights = copyToHost(std::span(spline.weights));
    } catch (...) {
        mdlBspline_freeCurve(&given);
        throw;
    }
    given.order = spline.order;
    given.numPoles = static_cast<int32_t>(spline.poles.size());
    given.numKnots = static_cast<int32_t>(spline.knots.size());
    given.rational = spline.weights.empty() ? 0 : 1;
    curve = given;
}

}  // namespace host

using namespace host;

int mdlBspline_evaluateCurvePoint(Point3d* point, const BsplineCurve* curve, double parameter) noexcept {
    if (!point || !curve || !(parameter >= 0 && parameter <= 1)) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        Spline s;
        if (!splineOf(*curve, s)) return MDL_ERROR;
        *point = s.at(s.begin() + parameter * (s.end() - s.begin()));
        return MDL_SUCCESS;
    });
}

int mdlBspline_createCurve(MSElementBuffer* out, const MSElementBuffer* templateP, const BsplineCurve* curve) noexcept {
    if (!out || !curve) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        Spline s;
        if (!splineOf(*curve, s)) return MDL_ERROR;
        for (Point3d& pole : s.poles) pole = applyToPoint(currentToWorld(), pole);
        if (!s.isSound()) return MDL_ERROR;
        const CurveBody body{curve->order,  curve->numPoles,     s.weights.empty() ? 0 : 1,
                             curve->closed, curve->curveDisplay, curve->polygonDisplay};
        const size_t poles = s.poles.size() * sizeof(Point3d), knots = s.knots.size() * sizeof(double),
                     weights = s.weights.size() * sizeof(double);
        uint8_t* to = NewElement(out, templateP, MDL_BSPLINE).body(sizeof body + poles + knots + weights);
        if (!to) return MDL_ERROR;
        to = append(to, &body, sizeof body);
        to = append(to, s.poles.data(), poles);
        to = append(to, s.knots.data(), knots);
        append(to, s.weights.data(), weights);
        return MDL_SUCCESS;
    });
}

int mdlBspline_extractCurve(BsplineCurve* curve, const MSElementBuffer* element) noexcept {
    if (!curve || !element) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const auto view = curveOf(element);
        if (!view) return MDL_ERROR;
        Spline s = readSpline(*view);
        for (Point3d& pole : s.poles) pole = applyToPoint(currentFromWorld(), pole);
        if (!s.isSound()) return MDL_ERROR;
        BsplineCurve found{};
        found.closed = view->body.closed;
        found.curveDisplay = view->body.curveDisplay;
        found.polygonDisplay = view->body.polygonDisplay;
        giveArrays(found, s);
        *curve = found;
        return MDL_SUCCESS;
    });
}

void mdlBspline_freeCurve(BsplineCurve* curve) noexcept {
    if (!curve) return;
    for (void* block :
         {static_cast<void*>(curve->poles), static_cast<void*>(curve->knots), static_cast<void*>(curve->weights)})
        if (block) dlmSystem_mdlFree(block);
    curve->poles = nullptr;
    curve->knots = nullptr;
    curve->weights = nullptr;
}
