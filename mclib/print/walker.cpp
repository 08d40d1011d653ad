#include "mclib/print/walker.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string_view>

#include "mchost/mdl/model.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/text.h"
#include "mchost/mdl/transform.h"
#include "mchost/mdl/walk.h"
#include "mclib/frame/util.h"
#include "mclib/print/page_look.h"
#include "mclib/print/styles.h"

namespace mc {

namespace {

constexpr double pi = std::numbers::pi;
constexpr double strokeTolerance = 0.01;  // mm
constexpr double heightOfBox = 1.3;       // text height for each millimetre of its box

// ---- from design to paper ----

struct Extent {
    Point3d low, high;
};

void moveOrigin(double x, double y) {
    const Point3d origin = {x, y, 0};
    mdlCurrTrans_translateOrigin(&origin);
}

// Makes the current system, which is UOR, that of the paper: a page of this extent lies in the box as large as fits, in
// its middle. False when no scale does that: the page or the box has no extent.
bool fitIntoBox(const Extent& page, const PaperBox& box, bool quarterTurn) {
    const double dx = page.high.x - page.low.x, dy = page.high.y - page.low.y;
    const double scale = std::min(box.width / dx, box.height / dy);
    if (!(scale > 0 && std::isfinite(scale))) return false;
    const double offsetX = (box.width - dx * scale) * 0.5, offsetY = (box.height - dy * scale) * 0.5;
    moveOrigin(page.low.x, page.low.y);
    mdlCurrTrans_scale(1 / scale, 1 / scale, 1.0);
    if (quarterTurn) {
        mdlCurrTrans_rotateByAngles(0, 0, -pi / 2);
        moveOrigin(-box.height, 0);
    }
    moveOrigin(-box.x - offsetX, -box.y - offsetY);
    return true;
}

// ---- one pass over the page ----

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

int isOfOtherPass(void* pass, const ElementDescr* node) {
    mclibUtil_updateHourGlass();
    Pass& p = *static_cast<Pass*>(pass);
    return !print::isInPass(p.filter, p.levelCodeOf(node->element));
}

void printLine(void* pass, const MSElementBuffer* element, const MdlLook* look, const Point3d* points, int32_t count) {
    if (count < 2) return;
    Pass& p = *static_cast<Pass*>(pass);
    const bool closed = print::isClosedShape(element);
    const double gray = closed ? print::fillOf(element, p.levelCodeOf(element), look->color) : print::noFill;
    p.driver.job.stroke(p.job, {.points = points,
                                .count = count,
                                .width = mdl::penWidthOf(look->weight),
                                .style = &lineStyleOf(look->style),
                                .gray = gray});
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

void printText(void* pass, const MSElementBuffer* element, const MdlLook*) {
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
    const Pass& p = *static_cast<Pass*>(pass);
    p.driver.job.label(p.job, {.x = origin.x + std::sin(angle) * down,
                               .y = origin.y - std::cos(angle) * down,
                               .text = text,
                               .height = height * heightOfBox,
                               .angle = angle * 180 / pi,
                               .just = anchor.just,
                               .shape = box,
                               .size = size,
                               .pageAngle = p.pageAngle});
}

}  // namespace

void print::walkPage(const PrintDriver& driver, void* job, const PaperPage& page) {
    Transform quarter;
    mdlTMatrix_rotateByAngles(&quarter, nullptr, 0, 0, pi / 2);
    const Transform* turn = page.turned ? &quarter : nullptr;
    Extent extent;
    if (mdlElmdscr_computeRange(&extent.low, &extent.high, page.descr, turn) != MDL_SUCCESS) return;
    const mdl::CurrTransScope paper(mdl::CurrTransScope::Begin::uor);
    if (!paper || !fitIntoBox(extent, page.box, driver.is(PRINT_DEVICE_QUARTER_TURN))) return;
    for (const int32_t filter : pagePasses) {
        Pass pass{.driver = driver,
                  .job = job,
                  .model = mdlModelRef_getActive(),
                  .pageAngle = page.pageAngle,
                  .filter = filter};
        const MdlPen pen = {.userArg = &pass,
                            .tolerance = strokeTolerance,
                            .transform = turn,
                            .range = nullptr,
                            .skip = isOfOtherPass,
                            .line = driver.job.stroke ? printLine : nullptr,
                            .text = driver.job.label ? printText : nullptr};
        mdlElmdscr_walk(page.descr, &pen);  // what memory doesn't suffice for shows in the job's status
    }
}

}  // namespace mc
