#include "drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <mchost/mdl/element.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/transform.h>
#include <mclib/mclib.h>
#include <mclib/app/tell.hpp>

namespace alignment {

using mcapp::fail;

namespace {

constexpr double leastTickStep = 20;  // metres of station
constexpr double leastTickGap = 2;    // millimetres between ticks
constexpr int ticksPerText = 5;
constexpr double tickLength = 1.2, longTickLength = 2.5, stationTextAt = 5.0;                     // millimetres
constexpr double boundaryFrom = -2.0, boundaryTo = 7.0, boundaryTextAt = 8.0, boundaryDot = 0.9;  // from the axis
constexpr double labelAt = 4.5, labelSpacing = 3.2, labelClear = 0.5, outerLabelAt = 18.5;
constexpr double northSize = 22;      // of the square that the north arrow takes
constexpr double clearOfRoad = 16;    // grid crosses and scale bar keep that far from the road
constexpr double leastGridStep = 50;  // millimetres between grid crosses

template <class... Values>
std::string formatted(const char* format, Values... values) {
    char text[256];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

// Texts of an attribute are set so from now on.
void setJustification(int attribute, int just) {
    auto data = std::make_unique<ElmAttrData>();
    mclibElmAttr_extractData(attribute, data.get());
    data->useFlags |= ATTR_USE_JUST;
    data->textJust = just;
    mclibElmAttr_editAttribute(attribute, 0, data.get());
}

class Drawing {
  public:
    Drawing(const Road& road, const Sheet& sheet) : road_(road), sheet_(sheet) {}
    bool draw();
    Page take() { return std::move(page_); }

  private:
    using SheetPoint = std::array<double, 2>;

    // Whether the drawing took an element.
    bool note(int status) { return status == MDL_SUCCESS || (isWhole_ = false); }
    int attributeOf(Role role) const { return road_.attributeOf(role); }
    Point3d beside(const Place& place, double along, double left) const;

    bool frame();
    void titleStrip();
    void cell(double x1, double x2, const char* caption, const std::string& value);
    void northArrow();
    void scaleBar();
    void grid();
    void gridCross(double x, double y);
    bool element(const Element& e);
    bool clothoid(const Element& e);
    void label(const Element& e);
    void boundary(const Place& place);
    void stations();

    void line(Role role, const Point3d& from, const Point3d& to);
    void sheetLine(Role role, SheetPoint from, SheetPoint to);
    void text(Role role, const Point3d& at, const std::string& text, double angle, int just);
    void sheetText(Role role, double x, double y, const std::string& text, int just = leftBase);
    void readableText(Role role, const Point3d& at, const std::string& text, double angle, int just);
    bool labelText(Role role, const Point3d& at, const std::string& text, double angle, int just);

    double distanceToRoad(double x, double y) const;  // on the sheet

    const Road& road_;
    const Sheet& sheet_;
    Page page_;
    bool isWhole_ = true;
    std::vector<Point3d> trace_;  // the road on the sheet, in small steps
    SheetPoint north_{};          // middle of the north arrow

    // A piece of a text along the road, about as wide as it is high, in metres.
    struct Piece {
        double x, y, height;
    };
    std::vector<Piece> taken_;
    size_t leftOut_ = 0;  // texts that would have met others
};

// ---- pieces ----

// A point beside the road, in millimetres on paper.
Point3d Drawing::beside(const Place& p, double along, double left) const {
    const double a = sheet_.metres(along), l = sheet_.metres(left);
    return {p.x + a * std::cos(p.bearing) - l * std::sin(p.bearing),
            p.y + a * std::sin(p.bearing) + l * std::cos(p.bearing), 0};
}

void Drawing::line(Role role, const Point3d& from, const Point3d& to) {
    const Point3d points[2] = {from, to};
    note(mclibElement_createLine(points, attributeOf(role), page_.get()));
}

void Drawing::sheetLine(Role role, SheetPoint from, SheetPoint to) {
    line(role, sheet_.ground(from[0], from[1]), sheet_.ground(to[0], to[1]));
}

void Drawing::text(Role role, const Point3d& at, const std::string& text, double angle, int just) {
    const int id = attributeOf(role);
    setJustification(id, just);
    RotMatrix rotation;
    mdlRMatrix_fromAngle(&rotation, angle);
    // Text sizes are metres on paper.
    const int made =
        mclibElmAttr_createText(dgnBufP, nullptr, text.c_str(), &at, &rotation, 0, id, 1 / sheet_.scale, nullptr);
    if (!text.empty()) note(made == MCLIB_SUCCESS ? mdlElmdscr_appendElement(page_.get(), dgnBufP) : made);
}

void Drawing::sheetText(Role role, double x, double y, const std::string& words, int just) {
    text(role, sheet_.ground(x, y), words, sheet_.angle, just);
}

// A text that is turned by half a turn where it would stand upside down on the sheet.
void Drawing::readableText(Role role, const Point3d& at, const std::string& words, double angle, int just) {
    if (mclibUtil_angleIn2Or3Quadrant(angle - sheet_.angle) != 0) {
        angle += M_PI;
        if (just == leftCentre) just = rightCentre;
    }
    text(role, at, words, angle, just);
}

// A readable text along the road. It is left out, which is counted, where it would meet another one.
bool Drawing::labelText(Role role, const Point3d& at, const std::string& words, double angle, int just) {
    double width = 0, height = 0;
    mclibUtil_extractTextSize(words.c_str(), 1 / sheet_.scale, attributeOf(role), 0, &width, &height, nullptr, nullptr);
    const double first = just == leftCentre ? 0 : -width / 2;
    const int steps = height > 0 ? static_cast<int>(width / height) + 1 : 1;
    std::vector<Piece> pieces;
    for (int i = 0; i <= steps; ++i) {
        const double along = first + width * i / steps;
        pieces.push_back({at.x + along * std::cos(angle), at.y + along * std::sin(angle), height});
    }
    const auto isTaken = [this](const Piece& own) {
        return std::ranges::any_of(taken_, [&](const Piece& other) {
            return std::hypot(own.x - other.x, own.y - other.y) < (own.height + other.height) / 2;
        });
    };
    if (std::ranges::any_of(pieces, isTaken)) return ++leftOut_, false;
    taken_.insert(taken_.end(), pieces.begin(), pieces.end());
    readableText(role, at, words, angle, just);
    return true;
}

double Drawing::distanceToRoad(double x, double y) const {
    double least = HUGE_VAL;
    for (const Point3d& p : trace_) least = std::min(least, std::hypot(p.x - x, p.y - y));
    return least;
}

// ---- the road ----

bool Drawing::clothoid(const Element& e) {
    constexpr int points = 25, order = 4;
    BsplineCurve curve;
    if (mclibGeo_createKlotoideByEndpoints(&curve, points, order, e.x1, e.y1, e.x2, e.y2, e.r1, e.r2, e.a) !=
        MCLIB_SUCCESS) {
        return false;
    }
    const int status = mdlBspline_createCurve(dgnBufP, nullptr, &curve);
    mdlBspline_freeCurve(&curve);
    if (status != MDL_SUCCESS) return false;
    mclibElmAttr_setSymbologyAndProperties(dgnBufP, e.attribute, nullptr);
    return mdlElmdscr_appendElement(page_.get(), dgnBufP) == MDL_SUCCESS;
}

bool Drawing::element(const Element& e) {
    const Point3d ends[2] = {{e.x1, e.y1, 0}, {e.x2, e.y2, 0}};
    Point3d centre{};
    switch (e.kind()) {
        case GEO_LINE: return note(mclibElement_createLine(ends, e.attribute, page_.get()));
        case GEO_CIRCLE:
            mclibGeo_getCircleCenter(&centre.x, &centre.y, e.x1, e.y1, e.x2, e.y2, e.r1);
            return note(mclibElement_createArcByCenter(&ends[0], &centre, &ends[1], e.r1 < 0, nullptr, e.attribute,
                                                       page_.get()));
        default: return clothoid(e) || fail(formatted("the clothoid at station %.3f can't be drawn", e.start));
    }
}

// Radius or A, and the length, in two lines on the right of the element's middle. An element that is shorter on paper
// than its label has one line, beyond the stations of its ends.
void Drawing::label(const Element& e) {
    const Place middle = placeOn(e, e.length / 2);
    const std::array<std::string, 3> kinds = {"", formatted("R = %g", std::abs(e.r1)), formatted("A = %g", e.a)};
    const std::string& kind = kinds[e.kind() - GEO_LINE];
    const std::string length = formatted("L = %.2f", e.length);
    double width = 0;
    mclibUtil_extractTextSize(length.c_str(), 1 / sheet_.scale, attributeOf(Role::label), 0, &width, nullptr, nullptr,
                              nullptr);
    const auto write = [&](const std::string& words, double right) {
        return labelText(Role::label, beside(middle, 0, -right), words, middle.bearing, centreCentre);
    };
    if (width + 2 * sheet_.metres(labelClear) > e.length) {
        if (write(kind.empty() ? length : kind, outerLabelAt))
            line(Role::label, beside(middle, 0, 0), beside(middle, 0, -outerLabelAt + labelSpacing));
        return;
    }
    const bool turned = mclibUtil_angleIn2Or3Quadrant(middle.bearing - sheet_.angle) != 0;
    if (!kind.empty()) write(kind, turned ? labelAt + labelSpacing : labelAt);
    write(length, turned || kind.empty() ? labelAt : labelAt + labelSpacing);
}

// A line across the road where two elements meet, with a dot on the axis and the station at its end.
void Drawing::boundary(const Place& p) {
    const Point3d axis = {p.x, p.y, 0};
    note(mclibElement_createEllipseExtended(&axis, sheet_.metres(boundaryDot), 1, attributeOf(Role::boundary),
                                            page_.get()));
    line(Role::boundary, beside(p, 0, -boundaryFrom), beside(p, 0, -boundaryTo));
    labelText(Role::boundary, beside(p, 0, -boundaryTextAt), formatted("%.2f", p.station), p.bearing - M_PI / 2,
              leftCentre);
}

// Ticks each 20 m, or so much farther apart that they don't merge.
void Drawing::stations() {
    double tickStep = leastTickStep;
    for (int i = 0; tickStep < sheet_.metres(leastTickGap); ++i) tickStep *= i % 3 == 0 ? 2.5 : 2;
    const double textStep = ticksPerText * tickStep;
    for (const double station : roundStations(road_, tickStep)) {
        const Place p = placeAt(road_, station);
        const bool isLong = std::abs(std::remainder(station, textStep)) < tickStep / 2;
        const double length = isLong ? longTickLength : tickLength;
        line(Role::tick, beside(p, 0, -length), beside(p, 0, length));
        if (isLong)
            labelText(Role::station, beside(p, 0, stationTextAt), formatted("%g", station), p.bearing, centreCentre);
    }
}

// ---- what stands around it ----

bool Drawing::frame() {
    const Point3d corners[4] = {sheet_.ground(0, 0), sheet_.ground(sheet_.width(), 0),
                                sheet_.ground(sheet_.width(), sheet_.height()), sheet_.ground(0, sheet_.height())};
    mclibElement_createShape(corners, 4, 0, attributeOf(Role::frame), nullptr);
    ElementDescr* page = nullptr;
    if (mdlElmdscr_new(&page, nullptr, dgnBufP) != MDL_SUCCESS) return fail("no memory for the drawing");
    page_.reset(page);
    return true;
}

// A cell of the title strip; x1 is where it begins, and there a line divides it from the one before.
void Drawing::cell(double x1, double x2, const char* caption, const std::string& value) {
    constexpr double inset = 2.5, captionAt = stripHeight - 4.5, valueAt = 5.5;
    if (x1 > 0) sheetLine(Role::grid, {x1, 0}, {x1, stripHeight});
    sheetText(Role::text, x1 + inset, captionAt, caption);
    const Role role = x2 - x1 > 60 ? Role::title : Role::station;
    sheetText(role, x1 + inset, valueAt, value);
}

void Drawing::titleStrip() {
    const double w = sheet_.width();
    sheetLine(Role::frame, {0, stripHeight}, {w, stripHeight});
    struct Cell {
        double width;  // millimetres; 0: what the others leave
        const char* caption;
        std::string value;
    };
    std::vector<Cell> cells = {
        {0, road_.title.c_str(), road_.project},
        {52, "Stations, length in m", formatted("%.2f - %.2f", road_.startStation, road_.endStation())},
        {38, "Coordinates", "x east, y north, m"},
        {28, "Scale", formatted("1:%g (%s)", road_.scale, sheet_.paper.name.c_str())},
    };
    if (!road_.date.empty()) cells.push_back({26, "Date", road_.date});
    double fixed = 0;
    for (const Cell& c : cells) fixed += c.width;
    double x = 0;
    for (const Cell& c : cells) {
        const double end = x + (c.width == 0 ? w - fixed : c.width);
        cell(x, end, c.caption, c.value);
        x = end;
    }
}

// In the first corner that the road leaves free.
void Drawing::northArrow() {
    const double half = northSize / 2, left = half + 3, right = sheet_.width() - left;
    const double top = sheet_.height() - half - 3, bottom = stripHeight + half + 3;
    north_ = {right, top};
    for (const SheetPoint corner : {SheetPoint{right, top}, {left, top}, {left, bottom}, {right, bottom}}) {
        if (distanceToRoad(corner[0], corner[1]) < northSize) continue;
        north_ = corner;
        break;
    }
    const Point3d m = sheet_.ground(north_[0], north_[1]);
    const auto at = [&](double east, double north) {
        return Point3d{m.x + sheet_.metres(east), m.y + sheet_.metres(north), 0};
    };
    const Point3d dark[3] = {at(0, 8), at(-2.4, -6), at(0, -4)};
    const Point3d light[3] = {at(0, 8), at(2.4, -6), at(0, -4)};
    note(mclibElement_createShape(dark, 3, 1, attributeOf(Role::grid), page_.get()));
    note(mclibElement_createShape(light, 3, 0, attributeOf(Role::grid), page_.get()));
    text(Role::station, at(0, 9), "N", 0, centreBase);
}

void Drawing::gridCross(double x, double y) {
    constexpr double arm = 2, textGap = 0.8;
    const Point3d p = sheet_.onSheet(x, y);
    const double edge = 14;
    if (p.x < edge || p.x > sheet_.width() - edge || p.y < stripHeight + edge || p.y > sheet_.height() - edge) return;
    if (distanceToRoad(p.x, p.y) < clearOfRoad || std::hypot(p.x - north_[0], p.y - north_[1]) < northSize) return;
    const double a = sheet_.metres(arm), gap = sheet_.metres(textGap);
    line(Role::grid, {x - a, y, 0}, {x + a, y, 0});
    line(Role::grid, {x, y - a, 0}, {x, y + a, 0});
    text(Role::text, {x + gap, y + gap, 0}, formatted("y %.0f", y), 0, leftBase);
    text(Role::text, {x - gap, y + gap, 0}, formatted("x %.0f", x), M_PI / 2, leftBase);
}

// The length on the ground, 1, 2 or 5 times a power of ten, that is at least so long on paper.
double roundLength(const Sheet& sheet, double millimetres) {
    double step = 1;
    for (int i = 0; step < sheet.metres(millimetres); ++i) step *= i % 3 == 1 ? 2.5 : 2;
    return step;
}

// Four fields, black and white in turn, in the lower left corner; left out where the road comes near.
void Drawing::scaleBar() {
    constexpr double left = 8, bottom = stripHeight + 8, thickness = 1.4;
    constexpr int fields = 4;
    const double field = roundLength(sheet_, 10);
    const double step = field * 1000 / sheet_.scale;
    if (distanceToRoad(left + step * fields / 2, bottom) < step * fields / 2 + clearOfRoad) return;
    for (int i = 0; i < fields; ++i) {
        const double x = left + i * step;
        const Point3d corners[4] = {sheet_.ground(x, bottom), sheet_.ground(x + step, bottom),
                                    sheet_.ground(x + step, bottom + thickness), sheet_.ground(x, bottom + thickness)};
        note(mclibElement_createShape(corners, 4, i % 2 == 0, attributeOf(Role::grid), page_.get()));
    }
    for (const int i : {0, 1, 2, fields}) {
        const char* unit = i == fields ? " m" : "";
        sheetText(Role::text, left + i * step, bottom + thickness + 1, formatted("%g%s", i * field, unit), centreBase);
    }
}

// Crosses at round coordinates, each with its own.
void Drawing::grid() {
    const double step = roundLength(sheet_, leastGridStep);
    const double reach = sheet_.metres(std::hypot(sheet_.width(), sheet_.height()) / 2);
    for (double x = std::ceil((sheet_.centre.x - reach) / step) * step; x < sheet_.centre.x + reach; x += step) {
        for (double y = std::ceil((sheet_.centre.y - reach) / step) * step; y < sheet_.centre.y + reach; y += step) {
            gridCross(x, y);
        }
    }
}

bool Drawing::draw() {
    const mdl::CurrTransScope masterUnits(mdl::CurrTransScope::Begin::masterUnits);
    constexpr double traceStep = 2;  // millimetres
    for (double s = road_.startStation; s < road_.endStation(); s += sheet_.metres(traceStep)) {
        const Place p = placeAt(road_, s);
        trace_.push_back(sheet_.onSheet(p.x, p.y));
    }
    if (!frame()) return false;
    titleStrip();
    northArrow();
    scaleBar();
    grid();
    stations();
    for (const Element& e : road_.elements) {
        if (!element(e)) return false;
        boundary(placeOn(e, 0));
    }
    boundary(placeOn(road_.elements.back(), road_.elements.back().length));
    for (const Element& e : road_.elements) label(e);
    if (leftOut_ > 0) {
        mcapp::warn(
            formatted("there is no room for %zu of the texts along the road at 1:%g, so they are left out; a larger "
                      "scale has room for more",
                      leftOut_, road_.scale));
    }
    return isWhole_ || fail("the drawing lacks elements that there was no memory for");
}

}  // namespace

Page drawRoad(const Road& road, const Sheet& sheet) {
    Drawing drawing(road, sheet);
    return drawing.draw() ? drawing.take() : nullptr;
}

bool turnUpright(ElementDescr* page, const Sheet& sheet) {
    if (sheet.angle == 0) return true;
    const double uor = mdlModelRef_getUorPerMaster(mdlModelRef_getActive());
    const double c = std::cos(sheet.angle), s = std::sin(sheet.angle);
    const double x = sheet.centre.x * uor, y = sheet.centre.y * uor;
    const Transform turn = {{{c, s, 0, x - c * x - s * y}, {-s, c, 0, y + s * x - c * y}, {0, 0, 1, 0}}};
    return mdlElmdscr_transform(page, &turn) == MDL_SUCCESS || fail("the drawing can't be turned upright");
}

Range3d uprightFrame(const Sheet& sheet) {
    const double uor = mdlModelRef_getUorPerMaster(mdlModelRef_getActive());
    const double x = sheet.metres(sheet.width()) / 2, y = sheet.metres(sheet.height()) / 2;
    return {{(sheet.centre.x - x) * uor, (sheet.centre.y - y) * uor, 0},
            {(sheet.centre.x + x) * uor, (sheet.centre.y + y) * uor, 0}};
}

}  // namespace alignment
