#include "mchost/mdl/describe.h"

#include <algorithm>
#include <array>

namespace {

struct TypeName {
    int32_t type;
    const char* name;
};
constexpr auto typeNames = std::to_array<TypeName>({
    {MDL_CELL_HEADER, "cell"},
    {MDL_LINE, "line"},
    {MDL_LINE_STRING, "line string"},
    {MDL_SHAPE, "shape"},
    {MDL_TEXT_NODE, "text node"},
    {MDL_COMPLEX_SHAPE, "complex shape"},
    {MDL_ELLIPSE, "ellipse"},
    {MDL_ARC, "arc"},
    {MDL_TEXT, "text"},
    {MDL_BSPLINE, "B-spline"},
    {MDL_DIMENSION, "dimension"},
    {MDL_COMPOUND, "compound"},
    {MDL_MULTILINE, "multiline"},
    {MDL_TAG, "tag"},
    {MDL_APPLICATION_DATA, "application data"},
});

}  // namespace

const char* mdlElement_typeName(int32_t type) noexcept {
    const auto known = std::ranges::find(typeNames, type, &TypeName::type);
    return known != typeNames.end() ? known->name : nullptr;
}
