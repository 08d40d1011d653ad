// One small function for each frame.
#include "mclib/arrows/frames.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

#include "mchost/mdl/transform.h"
#include "mclib/arrows/arrows.h"

namespace mc::arrows {

namespace {

constexpr int justLeftCentre = 1, justCentreCentre = 7;

enum class Side { left, centre, right };
enum class Height { top, centre, base };

// Justification codes come three for each side: left, left margin, centre, right margin, right.
Side sideOf(int just) {
    constexpr std::array<Side, 5> sides = {Side::left, Side::left, Side::centre, Side::right, Side::right};
    return sides[static_cast<size_t>(std::clamp(just / 3, 0, 4))];
}
Height heightOf(int just) {
    return static_cast<Height>(just % 3);
}

bool isVerticalLeg(int leaderMode) {
    return leaderMode == ARROW_LEG_VERTICAL || leaderMode == ARROW_LEG_VERTICAL_2;
}

bool hasFixedLeg(int leaderMode) {
    return isVerticalLeg(leaderMode) || leaderMode == ARROW_LEG_HORIZONTAL;
}

Point3d moved(const Point3d& p, double dx, double dy) {
    return {p.x + dx, p.y + dy, p.z};
}

// The first of the nearest ones.
Point3d nearestTo(const Point3d& to, std::span<const Point3d> candidates) {
    return *std::min_element(candidates.begin(), candidates.end(), [&](const Point3d& a, const Point3d& b) {
        return mdlVec_distance(&a, &to) < mdlVec_distance(&b, &to);
    });
}

void setShape(Frame& frame, std::span<const Point3d> corners) {
    frame.outline = Outline::shape;
    std::copy(corners.begin(), corners.end(), frame.points.begin());
    frame.points[corners.size()] = corners.front();
    frame.count = static_cast<int>(corners.size()) + 1;
}

void placeBlockInMiddle(Frame& frame, const FrameRequest& request) {
    frame.textOrigin = moved(request.anchor, -request.text.width / 2, 0);
    frame.just = justLeftCentre;
}

void placeTextOnCentre(Frame& frame, const FrameRequest& request) {
    frame.textOrigin = request.anchor;
    frame.just = justCentreCentre;
}

// ---- rectangles ----

struct Box {
    double left, bottom, right, top;
};

Box drawBox(Frame& frame, const FrameRequest& request) {
    const Point3d& a = request.anchor;
    const double halfWidth = request.text.width / 2 + request.gap, halfHeight = request.text.height / 2 + request.gap;
    const Box box = {a.x - halfWidth, a.y - halfHeight, a.x + halfWidth, a.y + halfHeight};
    const Point3d corners[] = {
        {box.left, box.bottom, a.z}, {box.right, box.bottom, a.z}, {box.right, box.top, a.z}, {box.left, box.top, a.z}};
    setShape(frame, corners);
    placeBlockInMiddle(frame, request);
    return box;
}

void boxSide(Frame& frame, const FrameRequest& request) {
    const Box box = drawBox(frame, request);
    const Point3d& a = request.anchor;
    const Point3d middles[] = {
        {a.x, box.bottom, a.z}, {box.right, a.y, a.z}, {a.x, box.top, a.z}, {box.left, a.y, a.z}};
    frame.end = nearestTo(request.previous, middles);
}

void boxCorner(Frame& frame, const FrameRequest& request) {
    const Box box = drawBox(frame, request);
    const Point3d& v = request.previous;
    frame.end.x = std::abs(box.left - v.x) < std::abs(box.right - v.x) ? box.left : box.right;
    frame.end.y = std::abs(box.bottom - v.y) < std::abs(box.top - v.y) ? box.bottom : box.top;
}

// ---- circle, diamond, hexagon ----

double radiusAround(const FrameRequest& request) {
    return request.fixedSize ? request.radius : std::hypot(request.text.width, request.text.height) / 2 + request.gap;
}

Point3d endOnCircle(const FrameRequest& request, double radius) {
    const Point3d &e = request.anchor, &v = request.previous;
    if (request.leaderMode == ARROW_LEG_HORIZONTAL) return moved(e, e.x > v.x ? -radius : radius, 0);
    if (isVerticalLeg(request.leaderMode)) return moved(e, 0, e.y > v.y ? -radius : radius);
    const double x = e.x - radius, c = std::cos(request.legAngle), s = std::sin(request.legAngle);
    return {c * x - s * e.y, s * x + c * e.y, e.z};
}

void circle(Frame& frame, const FrameRequest& request) {
    frame.outline = Outline::circle;
    frame.points[0] = request.anchor;
    frame.count = 1;
    frame.radius = radiusAround(request);
    frame.turn = hasFixedLeg(request.leaderMode) ? 0.0 : request.legAngle;
    frame.end = endOnCircle(request, frame.radius);
    placeTextOnCentre(frame, request);
}

void diamond(Frame& frame, const FrameRequest& request) {
    const double s = radiusAround(request) * std::numbers::sqrt2;
    const Point3d& a = request.anchor;
    const Point3d corners[] = {moved(a, -s, 0), moved(a, 0, -s), moved(a, s, 0), moved(a, 0, s)};
    setShape(frame, corners);
    frame.end = nearestTo(request.previous, corners);
    placeTextOnCentre(frame, request);
}

void hexagon(Frame& frame, const FrameRequest& request) {
    const Point3d& a = request.anchor;
    const double up = request.text.height / 2 + request.gap, side = request.text.width / 2 + request.gap;
    const double point = side + std::tan(std::numbers::pi / 6) * up;
    const Point3d corners[] = {moved(a, -point, 0), moved(a, -side, -up), moved(a, side, -up),
                               moved(a, point, 0),  moved(a, side, up),   moved(a, -side, up)};
    setShape(frame, corners);
    const Point3d ends[] = {corners[3], corners[0]};  // the right one when both are as near
    frame.end = nearestTo(request.previous, ends);
    placeBlockInMiddle(frame, request);
}

// ---- text alone, and underlined ----

void textWithoutLeader(Frame& frame, const FrameRequest& request) {
    frame.textOrigin = request.anchor;
    frame.just = request.text.just;
    if (request.leaderMode == ARROW_LEG_VERTICAL && request.cursor.x <= 0)
        frame.textOrigin.x -= request.text.width + 2 * request.gap;
}

double riseAboveUnderline(const FrameRequest& request, int just) {
    const double height = request.text.lineHeight, gap = request.gap;
    switch (heightOf(just)) {
        case Height::top: return gap + height;
        case Height::centre: return gap + height / 2;
        default: return gap;
    }
}

// Text and underline go to the right of the leader's end, to its left, or to both sides, as the text is justified; with
// a vertical leg to the side where the cursor is. `outer` is left free between leader and text, a gap more than in it.
void besideLeader(Frame& frame, const FrameRequest& request, double outer) {
    const double width = request.text.width, margin = outer + request.gap;
    const bool toCursor = request.leaderMode == ARROW_LEG_VERTICAL;
    frame.just = toCursor ? justLeftCentre : request.text.just;
    Point3d origin = request.anchor, start = request.anchor;
    switch (sideOf(frame.just)) {
        case Side::left: origin.x += margin; break;
        case Side::centre: start.x -= width / 2 + margin; break;
        case Side::right:
            start.x -= 2 * margin + width;
            origin.x -= margin;
            break;
    }
    origin.y += riseAboveUnderline(request, frame.just);
    const double length = width + 2 * margin;
    const bool toLeft = toCursor && request.cursor.x <= start.x;
    const Point3d end = moved(start, toLeft ? -length : length, 0);
    if (toLeft) origin.x -= length;

    frame.textOrigin = origin;
    frame.points = {start, end};
    frame.count = 2;
    frame.hasUnderline = true;
    frame.underlineX[0] = start.x;
    frame.underlineX[1] = end.x;
    const double v = request.previous.x;
    frame.end = std::abs(end.x - v) < std::abs(start.x - v) ? end : start;
}

void noFrame(Frame& frame, const FrameRequest& request) {
    if (!request.withArrow) return textWithoutLeader(frame, request);
    besideLeader(frame, request, request.gap / 2);
    frame.textOrigin.y -= request.text.lineHeight / 2 + request.gap;
}

void underline(Frame& frame, const FrameRequest& request) {
    if (!request.withArrow) return textWithoutLeader(frame, request);
    besideLeader(frame, request, 0.0);
    frame.outline = Outline::line;
}

using MakeFrame = void (*)(Frame& frame, const FrameRequest& request);
constexpr std::array<MakeFrame, 8> makers = {noFrame, underline, boxSide, boxCorner,
                                             circle,  underline, diamond, hexagon};

bool isFrameKind(int frameKind) {
    return frameKind >= 0 && frameKind < static_cast<int>(makers.size());
}

}  // namespace

Frame makeFrame(const FrameRequest& request) {
    Frame frame;
    frame.end = request.anchor;
    frame.hasText = isFrameKind(request.frameKind);
    if (frame.hasText) makers[static_cast<size_t>(request.frameKind)](frame, request);
    return frame;
}

Point3d fittedFirstLeg(const Point3d& tip, const Point3d& second, int leaderMode, int frameKind, double gap,
                       const TextBlock& text) {
    const bool toCorner = frameKind == ARROW_FRAME_BOX_CORNER;
    const auto beside = [&](double from, double at, double size) {  // the frame's side stands over the tip
        if (at > from) return from + (size / 2 + gap);
        return at < from ? from - (size / 2 + gap) : at;
    };
    Point3d fitted = second;
    if (isVerticalLeg(leaderMode)) fitted.x = toCorner ? beside(tip.x, second.x, text.width) : tip.x;
    if (leaderMode == ARROW_LEG_HORIZONTAL) fitted.y = toCorner ? beside(tip.y, second.y, text.height) : tip.y;
    return fitted;
}

double riseOfFirstLine(int frameKind, int lines, double step) {
    if (frameKind == ARROW_FRAME_UNDERLINE_FIRST) return 0.0;
    const double whole = (lines - 1) * step;
    return frameKind == ARROW_FRAME_UNDERLINE_LAST ? whole : whole / 2;
}

}  // namespace mc::arrows
