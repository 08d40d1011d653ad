// Constants, vectors, rotation matrices, and doubles in files.
#include <bit>
#include <cstring>
#include <numbers>

#include "mchost/mdl/vector.h"
#include "mchost/space/current.h"

using namespace host;

namespace {

constexpr double pi = std::numbers::pi;
constexpr double twoPi = 2 * pi, half = pi / 2, quarter = pi / 4, sixth = pi / 6;
constexpr double perDegree = pi / 180, perRadian = 180 / pi;
constexpr double epsilon = 1e-8, zero = 0;
constexpr double maxInt32 = 2147483647.0, maxUint32 = 4294967295.0;

}  // namespace

const double *const fc_piP = &pi, *const fc_2piP = &twoPi, *const fc_piover2P = &half, *const fc_piover4P = &quarter,
                    *const fc_piover6P = &sixth;
const double *const fc_piover180P = &perDegree, *const fc_180overpiP = &perRadian;
const double *const fc_epsilonP = &epsilon, *const fc_zeroP = &zero;
const double *const fc_rmaxi4P = &maxInt32, *const fc_rmaxui4P = &maxUint32;

double mdlVec_distance(const Point3d* a, const Point3d* b) noexcept {
    return distance(*a, *b);
}

int mdlVec_pointEqual(const Point3d* a, const Point3d* b) noexcept {
    return *a == *b ? 1 : 0;
}

double mdlVec_computeNormal(Point3d* out, const Point3d* a, const Point3d* b) noexcept {
    const Point3d span = *b - *a;
    const double d = length(span);
    *out = d > 0 ? Point3d{span.x / d, span.y / d, span.z / d} : Point3d{};
    return d;
}

void mdlRMatrix_getIdentity(RotMatrix* matrix) noexcept {
    *matrix = identityMatrix;
}

void mdlRMatrix_fromAngle(RotMatrix* matrix, double angle) noexcept {
    const double c = std::cos(angle), s = std::sin(angle);
    *matrix = {{{c, -s, 0}, {s, c, 0}, {0, 0, 1}}};
}

void mdlRMatrix_rotatePoint(Point3d* point, const RotMatrix* matrix) noexcept {
    *point = rotate(*matrix, *point);
}

void mdlRMatrix_unrotatePoint(Point3d* point, const RotMatrix* matrix) noexcept {
    *point = unrotate(*matrix, *point);
}

void mdlRMatrix_rotatePointArray(Point3d* points, const RotMatrix* matrix, int32_t count) noexcept {
    for (int32_t i = 0; i < count; ++i) points[i] = rotate(*matrix, points[i]);
}

void mdlRMatrix_unrotatePointArray(Point3d* points, const RotMatrix* matrix, int32_t count) noexcept {
    for (int32_t i = 0; i < count; ++i) points[i] = unrotate(*matrix, points[i]);
}

int mdlRMatrix_getInverse(RotMatrix* out, const RotMatrix* matrix) noexcept {
    if (!out || !matrix) return MDL_ERROR;
    Transform transform, inverse;
    mdlTMatrix_fromRMatrix(&transform, matrix);
    if (!invert(transform, inverse)) return MDL_ERROR;
    for (int row = 0; row < 3; ++row) std::copy_n(inverse.form[row], 3, out->form[row]);
    return MDL_SUCCESS;
}

void mdlTMatrix_getIdentity(Transform* out) noexcept {
    *out = identityTransform;
}

void mdlTMatrix_translate(Transform* out, const Transform* in, double x, double y, double z) noexcept {
    *out = in ? *in : identityTransform;
    out->form[0][3] += x;
    out->form[1][3] += y;
    out->form[2][3] += z;
}

void mdlTMatrix_fromRMatrix(Transform* out, const RotMatrix* matrix) noexcept {
    *out = {};
    for (int row = 0; row < 3; ++row) std::copy_n(matrix->form[row], 3, out->form[row]);
}

void mdlRMatrix_multiplyRange(Point3d* low, Point3d* high, const RotMatrix* matrix) noexcept {
    RangeBuilder turned;
    for (int corner = 0; corner < 8; ++corner)
        turned.add(rotate(
            *matrix, {corner & 1 ? high->x : low->x, corner & 2 ? high->y : low->y, corner & 4 ? high->z : low->z}));
    if (!turned.any()) return;
    *low = turned.range().low;
    *high = turned.range().high;
}

void mdlCnv_doubleToFileFormat(void* bytes, double value) noexcept {
    static_assert(std::endian::native == std::endian::little && sizeof value == 8);
    std::memcpy(bytes, &value, sizeof value);
}

double mdlCnv_doubleFromFileFormat(const void* bytes) noexcept {
    double value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}
