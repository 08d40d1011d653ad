// The stack of current transforms.
#include "mchost/space/current.h"

#include <vector>

#include "mchost/base/guard.h"
#include "mchost/mdl/system.h"
#include "mchost/session/drawing.h"
#include "mchost/session/owned_state.h"
#include "mchost/space/view.h"

namespace host {
namespace {

struct System {
    Transform toWorld = identityTransform, fromWorld = identityTransform;
    MdlDesc* owner = nullptr;  // the application that opened it
};

// The open systems, innermost last. Brackets nest within one command, so the stack is empty between commands; what an
// application leaves open ends with it.
struct CurrentTransform {
    std::vector<System> open;
};

std::vector<System>& openSystems() {
    return sessionState<CurrentTransform>().open;
}

constexpr System world;

void closeThoseOf(MdlDesc* application) {
    std::erase_if(openSystems(), [&](const System& system) { return system.owner == application; });
}

const System& innermost() {
    const std::vector<System>& open = openSystems();
    return open.empty() ? world : open.back();
}

bool isFinite(const Transform& t) {
    double taint = 0;
    for (const auto& row : t.form)
        for (double value : row) taint += value * 0;
    return taint == 0;
}

int setInnermost(const Transform& toWorld) {
    Transform inverse;
    std::vector<System>& open = openSystems();
    if (open.empty() || !isFinite(toWorld) || !invert(toWorld, inverse)) return MDL_ERROR;
    open.back().toWorld = toWorld;
    open.back().fromWorld = inverse;
    return MDL_SUCCESS;
}

// The innermost system with its axes replaced by combinations of them: the columns of m.
Transform withAxes(const Transform& t, const RotMatrix& m) {
    Transform result = t;
    for (int i = 0; i < 3; ++i) {
        const Point3d axis = applyToVector(t, column(m, i));
        result.form[0][i] = axis.x, result.form[1][i] = axis.y, result.form[2][i] = axis.z;
    }
    return result;
}

Transform withOrigin(Transform t, const Point3d& origin) {
    t.form[0][3] = origin.x, t.form[1][3] = origin.y, t.form[2][3] = origin.z;
    return t;
}

RotMatrix turnAboutXThenYThenZ(double ax, double ay, double az) {
    const double cx = std::cos(ax), sx = std::sin(ax), cy = std::cos(ay), sy = std::sin(ay);
    RotMatrix z;
    mdlRMatrix_fromAngle(&z, az);
    const RotMatrix x{{{1, 0, 0}, {0, cx, -sx}, {0, sx, cx}}}, y{{{cy, 0, sy}, {0, 1, 0}, {-sy, 0, cy}}};
    return z * (y * x);
}

int applyToPoints(Point3d* out, const Point3d* in, int32_t count, const Transform& transform) {
    if (!out || !in || count < 0) return MDL_ERROR;
    std::transform(in, in + count, out, [&](const Point3d& p) { return applyToPoint(transform, p); });
    return MDL_SUCCESS;
}

}  // namespace

// By the adjugate, rows scaled first so that systems of very small or
// very large units keep their determinant.
bool invert(const Transform& t, Transform& inverse) {
    const auto& f = t.form;
    const Point3d a{f[0][0], f[1][0], f[2][0]}, b{f[0][1], f[1][1], f[2][1]}, c{f[0][2], f[1][2], f[2][2]};
    const double la = length(a), lb = length(b), lc = length(c);
    if (!(la > 0 && lb > 0 && lc > 0)) return false;
    const Point3d ua = a * (1 / la), ub = b * (1 / lb), uc = c * (1 / lc);
    const double det = dot(ua, cross(ub, uc));
    if (!(std::fabs(det) > 1e-12)) return false;
    const Point3d r0 = cross(ub, uc) * (1 / (det * la)), r1 = cross(uc, ua) * (1 / (det * lb)),
                  r2 = cross(ua, ub) * (1 / (det * lc)), origin{f[0][3], f[1][3], f[2][3]};
    inverse = {{{r0.x, r0.y, r0.z, -dot(r0, origin)},
                {r1.x, r1.y, r1.z, -dot(r1, origin)},
                {r2.x, r2.y, r2.z, -dot(r2, origin)}}};
    return isFinite(inverse);
}

const Transform& currentToWorld() {
    return innermost().toWorld;
}
const Transform& currentFromWorld() {
    return innermost().fromWorld;
}

}  // namespace host

using namespace host;

int mdlCurrTrans_begin(void) noexcept {
    return guarded<int>(MDL_ERROR, [] {
        System inside = innermost();
        inside.owner = mdlSystem_getCurrMdlDesc();
        openSystems().push_back(inside);
        letGoAtEnd<closeThoseOf>(inside.owner);
        return MDL_SUCCESS;
    });
}

int mdlCurrTrans_end(void) noexcept {
    if (openSystems().empty()) return MDL_ERROR;
    openSystems().pop_back();
    return MDL_SUCCESS;
}

int mdlCurrTrans_identity(void) noexcept {
    return setInnermost(identityTransform);
}

int mdlCurrTrans_translateOrigin(const Point3d* origin) noexcept {
    if (!origin) return MDL_ERROR;
    return setInnermost(withOrigin(currentToWorld(), applyToPoint(currentToWorld(), *origin)));
}

int mdlCurrTrans_translateOriginWorld(const Point3d* origin) noexcept {
    if (!origin) return MDL_ERROR;
    return setInnermost(withOrigin(currentToWorld(), applyToPoint(currentToWorld(), {}) + *origin));
}

int mdlCurrTrans_scale(double sx, double sy, double sz) noexcept {
    return setInnermost(withAxes(currentToWorld(), {{{sx, 0, 0}, {0, sy, 0}, {0, 0, sz}}}));
}

int mdlCurrTrans_rotateByAngles(double ax, double ay, double az) noexcept {
    return setInnermost(withAxes(currentToWorld(), turnAboutXThenYThenZ(ax, ay, az)));
}

void mdlTMatrix_rotateByAngles(Transform* out, const Transform* in, double ax, double ay, double az) noexcept {
    const Transform before = in ? *in : identityTransform;
    const RotMatrix turn = turnAboutXThenYThenZ(ax, ay, az);
    for (int i = 0; i < 4; ++i) {
        const Point3d turned = rotate(turn, {before.form[0][i], before.form[1][i], before.form[2][i]});
        out->form[0][i] = turned.x, out->form[1][i] = turned.y, out->form[2][i] = turned.z;
    }
}

int mdlCurrTrans_rotateByView(int32_t view) noexcept {
    return isView(view) ? setInnermost(withAxes(currentToWorld(), transposed(viewRotation(view)))) : int{MDL_ERROR};
}

int mdlCurrTrans_masterUnitsIdentity(void) noexcept {
    const double uor = drawing().getUorPerMaster(nullptr);
    return setInnermost({{{uor, 0, 0, 0}, {0, uor, 0, 0}, {0, 0, uor, 0}}});
}

int mdlCurrTrans_transformPointArray(Point3d* out, const Point3d* in, int32_t count) noexcept {
    return applyToPoints(out, in, count, currentToWorld());
}

int mdlCurrTrans_invtransPointArray(Point3d* out, const Point3d* in, int32_t count) noexcept {
    return applyToPoints(out, in, count, currentFromWorld());
}

int mdlCurrTrans_getAddresses(const Transform** toWorld, const Transform** fromWorld) noexcept {
    if (toWorld) *toWorld = &currentToWorld();
    if (fromWorld) *fromWorld = &currentFromWorld();
    return MDL_SUCCESS;
}

double mdlCnv_masterToUOR(double* resultP, double master, ModelRef* model) noexcept {
    const double uor = master * drawing().getUorPerMaster(model);
    if (resultP) *resultP = uor;
    return uor;
}

double mdlCnv_UORToMaster(double* resultP, double uor, ModelRef* model) noexcept {
    const double master = uor / drawing().getUorPerMaster(model);
    if (resultP) *resultP = master;
    return master;
}
