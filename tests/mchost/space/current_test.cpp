#include <gtest/gtest.h>

#include <cmath>

#include "mchost/mdl/transform.h"
#include "mchost/session/session.h"
#include "mchost/space/vector.h"

namespace {

Point3d toWorld(const Point3d& p) {
    const Transform* t = nullptr;
    mdlCurrTrans_getAddresses(&t, nullptr);
    const auto& f = t->form;
    return {f[0][0] * p.x + f[0][1] * p.y + f[0][2] * p.z + f[0][3],
            f[1][0] * p.x + f[1][1] * p.y + f[1][2] * p.z + f[1][3],
            f[2][0] * p.x + f[2][1] * p.y + f[2][2] * p.z + f[2][3]};
}

void expectPoint(const Point3d& p, double x, double y, double z, double tolerance = 1e-9) {
    EXPECT_NEAR(p.x, x, tolerance);
    EXPECT_NEAR(p.y, y, tolerance);
    EXPECT_NEAR(p.z, z, tolerance);
}

struct Bracket {
    Bracket() { mdlCurrTrans_begin(), mdlCurrTrans_identity(); }
    ~Bracket() { mdlCurrTrans_end(); }
};

TEST(CurrentTransform, PaperMillimetresReachTheDrawing) {
    // A page from (1000, 2000), 1:50, its lower left corner at (10, 20) mm on the paper.
    Bracket bracket;
    const Point3d low{1000, 2000, 0}, corner{-10, -20, 0};
    mdlCurrTrans_translateOrigin(&low);
    mdlCurrTrans_scale(50, 50, 1);
    mdlCurrTrans_translateOrigin(&corner);
    expectPoint(toWorld({10, 20, 0}), 1000, 2000, 0);
    expectPoint(toWorld({12, 21, 3}), 1100, 2050, 3);
}

TEST(CurrentTransform, RotationTurnsTheAxesAndWhatFollowsMovesAlongThem) {
    Bracket bracket;
    mdlCurrTrans_rotateByAngles(0, 0, *fc_piover2P);
    const Point3d step{5, 0, 0};
    mdlCurrTrans_translateOrigin(&step);
    expectPoint(toWorld({0, 0, 0}), 0, 5, 0);
    expectPoint(toWorld({1, 0, 0}), 0, 6, 0);
}

TEST(CurrentTransform, AnglesTurnAboutXThenYThenZ) {
    Bracket bracket;
    mdlCurrTrans_rotateByAngles(*fc_piover2P, *fc_piover2P, *fc_piover2P);
    // y goes to z by the first turn, to x by the second and to y by the third.
    expectPoint(toWorld({0, 1, 0}), 0, 1, 0);
    expectPoint(toWorld({1, 0, 0}), 0, 0, -1);
}

TEST(Transforms, AMoveAndATurnFollowEachOther) {
    Transform t;
    mdlTMatrix_getIdentity(&t);
    mdlTMatrix_translate(&t, &t, -3, 0, 1);
    mdlTMatrix_rotateByAngles(&t, &t, 0, 0, *fc_piover2P);
    mdlTMatrix_translate(&t, &t, 100, 0, 0);
    const Point3d moved = host::applyToPoint(t, {5, 0, 0});
    EXPECT_NEAR(moved.x, 100, 1e-12);
    EXPECT_NEAR(moved.y, 2, 1e-12) << "turned behind the move";
    EXPECT_NEAR(moved.z, 1, 1e-12);
    mdlTMatrix_translate(&t, nullptr, 1, 2, 3);
    EXPECT_EQ(host::applyToPoint(t, {}).z, 3);
}

TEST(CurrentTransform, WorldOriginIsAddedInUor) {
    Bracket bracket;
    mdlCurrTrans_scale(10, 10, 10);
    const Point3d shift{3, 4, 5};
    mdlCurrTrans_translateOriginWorld(&shift);
    expectPoint(toWorld({1, 1, 1}), 13, 14, 15);
}

TEST(CurrentTransform, BeginCopiesTheSystemAroundAndEndBringsItBack) {
    Bracket bracket;
    mdlCurrTrans_scale(2, 3, 4);
    mdlCurrTrans_begin();
    expectPoint(toWorld({1, 1, 1}), 2, 3, 4);
    mdlCurrTrans_scale(10, 10, 10);
    mdlCurrTrans_end();
    expectPoint(toWorld({1, 1, 1}), 2, 3, 4);
}

TEST(CurrentTransform, InverseUndoesMirroredAndUnevenSystems) {
    Bracket bracket;
    const Point3d low{6.5e9, -3e9, 7};
    mdlCurrTrans_translateOrigin(&low);
    mdlCurrTrans_scale(-1e-6, 4e5, 2);
    mdlCurrTrans_rotateByAngles(0.1, 0.2, 0.3);
    const Transform *to, *from;
    mdlCurrTrans_getAddresses(&to, &from);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column) {
            double product = 0;
            for (int i = 0; i < 3; ++i) product += from->form[row][i] * to->form[i][column];
            EXPECT_NEAR(product, row == column ? 1 : 0, 1e-9);
        }
}

TEST(CurrentTransform, RefusesWhatHasNoWayBack) {
    EXPECT_EQ(mdlCurrTrans_end(), MDL_ERROR);
    EXPECT_EQ(mdlCurrTrans_scale(2, 2, 2), MDL_ERROR) << "no system is open";
    Bracket bracket;
    const Point3d bad{NAN, 0, 0};
    EXPECT_EQ(mdlCurrTrans_scale(0, 1, 1), MDL_ERROR);
    EXPECT_EQ(mdlCurrTrans_scale(1, INFINITY, 1), MDL_ERROR);
    EXPECT_EQ(mdlCurrTrans_translateOrigin(&bad), MDL_ERROR);
    EXPECT_EQ(mdlCurrTrans_translateOrigin(nullptr), MDL_ERROR);
    expectPoint(toWorld({1, 2, 3}), 1, 2, 3);
}

TEST(CurrentTransform, EndsWithItsSession) {
    {
        host::Session session;
        mdlCurrTrans_begin();
    }
    EXPECT_EQ(mdlCurrTrans_end(), MDL_ERROR);
}

TEST(Vectors, NormalPointsFromTheFirstPointToTheSecond) {
    const Point3d a{1, 1, 1}, b{1, 5, 4};
    Point3d out;
    EXPECT_DOUBLE_EQ(mdlVec_computeNormal(&out, &a, &b), 5);
    expectPoint(out, 0, 0.8, 0.6);
    EXPECT_EQ(mdlVec_computeNormal(&out, &a, &a), 0);
    expectPoint(out, 0, 0, 0);
}

TEST(Matrices, TurningAndTurningBack) {
    RotMatrix m;
    mdlRMatrix_fromAngle(&m, *fc_piover6P);
    Point3d p[] = {{1, 0, 2}, {0, 1, 0}};
    mdlRMatrix_rotatePointArray(p, &m, 2);
    expectPoint(p[0], std::sqrt(3) / 2, 0.5, 2);
    mdlRMatrix_unrotatePointArray(p, &m, 2);
    expectPoint(p[1], 0, 1, 0);
    Point3d low{0, 0, 0}, high{2, 1, 0};
    mdlRMatrix_fromAngle(&m, *fc_piover2P);
    mdlRMatrix_multiplyRange(&low, &high, &m);
    expectPoint(low, -1, 0, 0);
    expectPoint(high, 0, 2, 0);
}

}  // namespace
