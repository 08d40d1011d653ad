#include "mchost/mdl/matrix.h"

#include "mchost/space/current.h"

using namespace host;

int mdlTMatrix_getInverse(Transform* out, const Transform* in) noexcept {
    Transform inverse;
    if (!out || !in || !invert(*in, inverse)) return MDL_ERROR;
    *out = inverse;
    return MDL_SUCCESS;
}

int mdlRMatrix_isIdentity(const RotMatrix* matrix) noexcept {
    constexpr double slack = 1e-12;
    for (int row = 0; matrix && row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            if (!(std::fabs(matrix->form[row][column] - identityMatrix.form[row][column]) <= slack)) return 0;
    return matrix ? 1 : 0;
}
