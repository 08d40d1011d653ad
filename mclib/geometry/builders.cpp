// Element builders by attribute, and the symbology and linkages of one element.
#include "mclib/geometry/builders.h"

#include <array>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "mclib/elmattr/attributes.h"
#include "mclib/geometry/one_off.h"
#include "mclib/geometry/userdata.h"

namespace mc {

namespace {

int dressAndAppend(MSElementBuffer* element, int attrId, ElementDescr* ed) {
    mclibElmAttr_setSymbologyAndProperties(element, attrId, nullptr);
    if (!ed) return MCLIB_SUCCESS;
    return mdlElmdscr_appendElement(ed, element) == MDL_SUCCESS ? MCLIB_SUCCESS : MCLIB_ERROR;
}

int createText(const Point3d* origin, const char* text, double scale, int attrId, ElementDescr* ed) {
    const int status = mclibElmAttr_createText(dgnBufP, nullptr, text, origin, nullptr, 0, attrId, scale, nullptr);
    if (status != MCLIB_SUCCESS) return MCLIB_ERROR;
    return !ed || mdlElmdscr_appendElement(ed, dgnBufP) == MDL_SUCCESS ? MCLIB_SUCCESS : MCLIB_ERROR;
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibElement_createLine(const Point3d* points, int attrId, ElementDescr* ed) {
    mdlLine_create(dgnBufP, nullptr, points);
    return dressAndAppend(dgnBufP, attrId, ed);
}

int mclibElement_createLineString(const Point3d* points, int count, int attrId, ElementDescr* ed) {
    mdlLineString_create(dgnBufP, nullptr, points, count);
    return dressAndAppend(dgnBufP, attrId, ed);
}

int mclibElement_createArc(const Point3d* center, double radius, double startAngle, double sweepAngle, int attrId,
                           ElementDescr* ed) {
    mdlArc_create(dgnBufP, nullptr, center, radius, radius, nullptr, startAngle, sweepAngle);
    return dressAndAppend(dgnBufP, attrId, ed);
}

int mclibElement_createArcByCenter(const Point3d* start, const Point3d* center, const Point3d* end, int clockwise,
                                   const Point3d* normal, int attrId, ElementDescr* ed) {
    static MSElementBuffer arc;  // not dgnBufP, which stays as it is; too large for a small stack
    arc.head = {};
    mdlArc_createByCenter(&arc, nullptr, start, center, end, clockwise, normal);
    return dressAndAppend(&arc, attrId, ed);
}

int mclibElement_createEllipse(const Point3d* center, double radius, int attrId, ElementDescr* ed) {
    return mclibElement_createEllipseExtended(center, radius, 0, attrId, ed);
}

int mclibElement_createEllipseExtended(const Point3d* center, double radius, int fillMode, int attrId,
                                       ElementDescr* ed) {
    mdlEllipse_create(dgnBufP, nullptr, center, radius, radius, nullptr, fillMode);
    return dressAndAppend(dgnBufP, attrId, ed);
}

int mclibElement_createShape(const Point3d* points, int count, int fillMode, int attrId, ElementDescr* ed) {
    mdlShape_create(dgnBufP, nullptr, points, count, fillMode);
    return dressAndAppend(dgnBufP, attrId, ed);
}

int mclibElement_createText(const Point3d* origin, const char* text, double scale, const int* just, int attrId,
                            ElementDescr* ed) {
    if (!just) return createText(origin, text, scale, attrId, ed);
    const OneOffJustification justification(attrId, *just);
    return justification.known() ? createText(origin, text, scale, attrId, ed) : MCLIB_ERROR;
}

int mclibElement_setSymbologyByLevel(MSElementBuffer* element) {
    const auto byLevel = static_cast<uint32_t>(ATTR_BY_LEVEL);
    const int32_t styleByLevel = ATTR_STYLE_BY_LEVEL;
    return mdlElement_setSymbology(element, &byLevel, &byLevel, &styleByLevel);
}

void mclibElement_setSymbologyFromLevel(MSElementBuffer* element, LevelId level) {
    uint32_t color = 0, weight = 0;
    int32_t style = 0;
    if (mdlLevel_getElementSymbology(&color, &style, &weight, mdlModelRef_getActive(), level) != MDL_SUCCESS) return;
    mdlElement_setSymbology(element, &color, &weight, &style);
}

int mclibElement_stripAttributes(MSElementBuffer* out, const MSElementBuffer* in) {
    if (const int status = mdlElement_memcpy(out, in); status != MDL_SUCCESS) return status;
    return mdlLinkage_deleteFromElement(out, MCLIB_USER_DATA_ID, nullptr, nullptr, nullptr, nullptr);
}

void mclibElement_stripAttributes2(MSElementBuffer* out, const MSElementBuffer* in) {
    std::array<wchar_t, 512> name, description;
    const bool isCell = mdlElement_getType(in) == MDL_CELL_HEADER;
    const bool hasName = isCell && mdlCell_extractName(name.data(), name.size(), in) == MDL_SUCCESS;
    const bool hasDescription =
        isCell && mdlCell_extractDescription(description.data(), description.size(), in) == MDL_SUCCESS;
    mdlElement_stripAttributes(out, in);
    if (hasName) mdlCell_setName(out, name.data());
    if (hasDescription) mdlCell_setDescription(out, description.data());
}
