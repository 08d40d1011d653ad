#include "mclib/print/walker.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string_view>

#include "mchost/mdl/model.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/text.h"
#include "mchost/mdl/transform.h"
#include "mclib/frame/util.h"
#include "mclib/geometry/elmdscr.h"
#include "mclib/print/page_look.h"
#include "mclib/print/styles.h"

namespace {

constexpr double pi = std::numbers::pi;
constexpr double strokeTolerance = 0.01;  // mm
constexpr double heightOfBox = 1.3;       // text height for each millimetre of its box

// ---- from design to paper ----

// Brackets the walk: what the host gives inside is in millimetres on the paper.
class PaperTransform {
  public:
    PaperTransform() {
        mdlCurrTrans_begin();
        mdlCurrTrans_identity();
    }
    ~PaperTransform() { mdlCurrTrans_end(); }
    PaperTransform(const PaperTransform&) = delete;
    PaperTransform& operator=(const PaperTransform&) = delete;

    void moveOrigin(double x, double y) {
        const Point3d origin = {x, y, 0};
        mdlCurrTrans_translateOrigin(&origin);
    }

    // Puts the page with this range into the box: as large as fits, in its middle. False when no scale does that: the
    // page or the box has no extent.
    bool fit(const Point3d (&range)[2], const PaperBox& box, bool quarterTurn) {
        const double dx = range[1].x - range[0].x, dy = range[1].y - range[0].y;
        const double scale = std::min(box.width / dx, box.height / dy);
        if (!(scale > 0 && std::isfinite(scale))) return false;
        const double offsetX = (box.width - dx * scale) * 0.5, offsetY = (box.height - dy * scale) * 0.5;
        moveOrigin(range[0].x, range[0].y);
        mdlCurrTrans_scale(1 / scale, 1 / scale, 1.0);
        if (quarterTurn) {
            mdlCurrTrans_rotateByAngles(0, 0, -pi / 2);
            moveOrigin(-box.height, 0);
        }
        moveOrigin(-box.x - offsetX, -box.y - offsetY);
        return true;
    }
};

// ---- one element ----

using PointArray = mdl::HostPtr<Point3d[]>;

struct Symbology {
    int32_t color, weight, style;
};

// One pass over the page.
struct Pass {
    const PrintDriver& driver;
    void* job;
    ModelRef* model;
    double pageAngle;
    int32_t filter;
    LevelId knownLevel = 0;  // the level that was looked up last, and its code
    int32_t knownCode = 0;
    bool levelKnown = false;

    int32_t levelCodeOf(const MSElementBuffer* element) {
        LevelId level = 0;
        mdlElement_getProperties(&level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, element);
        if (levelKnown && level == knownLevel) return knownCode;
        knownCode = print::codeOfLevel(model, level);
        knownLevel = level;
        levelKnown = true;
        return knownCode;
    }
};

Symbology symbologyOf(const MSElementBuffer* element, ModelRef* model) {
    Symbology s = {0, fallbackWeight, 0};
    mdlElement_getEffectiveSymbology(&s.color, &s.weight, &s.style, nullptr, nullptr, element, model);
    return s;
}

// ---- texts ----

// What the host's justification codes mean on paper: how far the origin moves down to the base line, in halves of the
// text's height, and the alignment that a driver knows.
struct Anchor {
    int32_t halves, just;
};
enum { centred = 0, right = 1, left = 2 };
// clang-format off
constexpr auto anchors = std::to_array<Anchor>({
    // top          centre        base
    { 2, left    }, { 1, left    }, { 0, left    },  //  0 left
    { 2, left    }, { 1, left    }, { 0, left    },  //  3 left margin
    { 2, centred }, { 1, centred }, { 0, centred },  //  6 centre
    { 2, right   }, { 1, right   }, { 0, right   },  //  9 right margin
    { 2, right   }, { 1, right   }, { 0, right   },  // 12 right
});
// clang-format on
static_assert(anchors.size() == 15);

Anchor anchorOf(int32_t just) {
    return 0 <= just && just < static_cast<int32_t>(anchors.size()) ? anchors[static_cast<size_t>(just)]
                                                                    : Anchor{0, just};
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t\n\v\f\r") == text.npos;
}

double angleOf(const RotMatrix& rotation) {
    Point3d axis[2] = {{0, 0, 0}, {1, 0, 0}};
    mdlRMatrix_rotatePointArray(axis, &rotation, 2);
    return std::atan2(axis[1].y - axis[0].y, axis[1].x - axis[0].x);
}

void printText(const Pass& pass, const MSElementBuffer* element) {
    Point3d origin, box[5];
    char text[256] = "";
    RotMatrix rotation;
    TextParams params;
    int32_t just = 0;
    double size = 0;
    if (mdlText_extract(nullptr, &origin, nullptr, nullptr, text, &rotation, &params, &just, &size, nullptr, element) !=
        MDL_SUCCESS)
        return;
    if (isBlank(text) || mdlText_extractShape(box, nullptr, element, 0, 0) != MDL_SUCCESS) return;
    const double angle = angleOf(rotation);
    const double height = mdlVec_distance(&box[1], &box[2]);
    const Anchor anchor = anchorOf(just);
    const double down = anchor.halves * height * 0.5;
    mdlRMatrix_unrotatePointArray(box, &rotation, static_cast<int32_t>(std::size(box)));
    pass.driver.label(pass.job, {.x = origin.x + std::sin(angle) * down,
                                 .y = origin.y - std::cos(angle) * down,
                                 .text = text,
                                 .height = height * heightOfBox,
                                 .angle = angle * 180 / pi,
                                 .just = anchor.just,
                                 .shape = box,
                                 .size = size,
                                 .pageAngle = pass.pageAngle});
}

// ---- lines and closed shapes ----

void printStroke(const Pass& pass, const PointArray& points, int32_t count, const Symbology& symbology, double gray) {
    if (!points || count < 2) return;
    pass.driver.stroke(pass.job, {.points = points.get(),
                                  .count = count,
                                  .width = penWidthOf(symbology.weight),
                                  .style = &lineStyleOf(symbology.style),
                                  .gray = gray});
}

void printClosedShape(const Pass& pass, const ElementDescr* node, int32_t levelCode) {
    const Symbology symbology = symbologyOf(node->element, pass.model);
    Point3d* points = nullptr;
    int32_t count = 0;
    const int status = mdlElmdscr_stroke(&points, &count, node, strokeTolerance);
    const PointArray owned(points);
    if (status == MDL_SUCCESS)
        printStroke(pass, owned, count, symbology, print::fillOf(node->element, levelCode, symbology.color));
}

void printLine(const Pass& pass, const MSElementBuffer* element) {
    Point3d* points = nullptr;
    int32_t count = 0;
    const int status = mdlElement_stroke(&points, &count, element, strokeTolerance);
    const PointArray owned(points);
    if (status == MDL_SUCCESS) printStroke(pass, owned, count, symbologyOf(element, pass.model), print::noFill);
}

bool isPartOfComplexShape(const ElementDescr* node) {
    return node->parent && mdlElement_getType(node->parent->element) == MDL_COMPLEX_SHAPE;
}

int printElement(MSElementBuffer* element, void* argument, int32_t, int32_t, ElementDescr* node) {
    auto& pass = *static_cast<Pass*>(argument);
    mclibUtil_updateHourGlass();
    const int32_t levelCode = pass.levelCodeOf(element);
    if (!print::isInPass(pass.filter, levelCode) || isPartOfComplexShape(node)) return 0;
    if (mdlElement_getType(element) == MDL_TEXT) {
        if (pass.driver.label) printText(pass, element);
    } else if (pass.driver.stroke) {
        if (print::isClosedShape(element))
            printClosedShape(pass, node, levelCode);
        else
            printLine(pass, element);
    }
    return 0;
}

}  // namespace

void print::walkPage(const PrintDriver& driver, void* job, const PaperPage& page) {
    Point3d range[2];
    if (!page.descr || mclibElemDscr_getRange(range, page.descr) != MDL_SUCCESS) return;
    PaperTransform transform;
    if (!transform.fit(range, page.box, driver.is(PRINT_DEVICE_QUARTER_TURN))) return;
    for (const int32_t filter : pagePasses) {
        Pass pass{.driver = driver,
                  .job = job,
                  .model = mdlModelRef_getActive(),
                  .pageAngle = page.pageAngle,
                  .filter = filter};
        mdlElmdscr_operation(page.descr, printElement, &pass, MDL_DESCR_ALL);
    }
}
