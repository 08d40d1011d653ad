#include "listing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <utility>

#include <mchost/mdl/system.h>
#include <mchost/mdl/transform.h>
#include <mclib/mclib.h>
#include <mclib/app/tell.hpp>

namespace alignment {

namespace {

constexpr double sameStation = 1e-6;    // metres
constexpr double straightRadius = 1e7;  // beyond this a radius counts as infinite

// A line of the list: what stands in which column.
struct Cell {
    size_t column;
    std::string text;
};
using Line = std::vector<Cell>;

// Where the columns of numbers end, and where the last one begins.
constexpr std::array<size_t, 5> ends = {12, 27, 42, 54, 66};
constexpr size_t remarkColumn = 68;

std::string formatted(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string radiusText(double curvature) {
    return std::abs(curvature) < 1 / straightRadius ? "-" : formatted("%.2f", 1 / curvature);
}

const char* kindName(const Element& e) {
    static constexpr std::array<const char*, 3> names = {"straight", "circle", "clothoid"};
    return names[e.kind() - GEO_LINE];
}

Line row(const std::array<std::string, ends.size()>& numbers, const char* remark) {
    Line line;
    for (size_t i = 0; i < ends.size(); ++i) {
        const size_t begin = line.empty() ? 0 : line.back().column + line.back().text.size() + 1;
        const size_t length = numbers[i].size();
        line.push_back({std::max(begin, ends[i] - std::min(ends[i], length)), numbers[i]});
    }
    if (*remark != '\0') line.push_back({remarkColumn, remark});
    return line;
}

Line rowOf(const Place& p, const char* begins) {
    return row({formatted("%.3f", p.station), formatted("%.3f", p.x), formatted("%.3f", p.y),
                formatted("%.5f", gonFromNorth(p.bearing)), radiusText(p.curvature)},
               begins);
}

std::vector<Line> stationList(const Road& road, double step) {
    std::vector<Line> lines = {
        {{0, road.project}},
        {{0, "Lengths in metres, x east, y north; bearings in gon, clockwise from north;"}},
        {{0, "radii positive to the left, - on a straight."}},
        {},
        row({"station", "x", "y", "bearing", "radius"}, "begins"),
    };
    for (const Element& e : road.elements) {
        lines.push_back(rowOf(placeOn(e, 0), kindName(e)));
        for (const double station : roundStations(road, step)) {
            if (station > e.start + sameStation && station < e.start + e.length - sameStation) {
                lines.push_back(rowOf(placeOn(e, station - e.start), ""));
            }
        }
    }
    lines.push_back(rowOf(placeOn(road.elements.back(), road.elements.back().length), "end"));
    return lines;
}

// ---- on a page ----

// What a device of lines and columns takes for one: more than 2 mm down is a new line, and each 2 mm more another; a
// column is 1.2 mm. A text begins well within its column.
constexpr double lineHeight = 2.5, columnWidth = 1.2, insideColumn = 0.3;
constexpr double letterWidth = 1.0;

size_t columnsOf(const std::vector<Line>& lines) {
    size_t columns = 1;
    for (const Line& line : lines) {
        for (const Cell& cell : line) columns = std::max(columns, cell.column + cell.text.size());
    }
    return columns;
}

// From now on the attribute's texts are as small as the columns need.
void setSize(int attribute) {
    auto data = std::make_unique<ElmAttrData>();
    mclibElmAttr_extractData(attribute, data.get());
    data->useFlags |= ATTR_USE_SIZE | ATTR_USE_JUST;
    data->textWidth = data->textHeight = letterWidth;
    data->textJust = leftBase;
    mclibElmAttr_editAttribute(attribute, 0, data.get());
}

bool addText(ElementDescr* page, const Cell& cell, double y, int attribute) {
    const Point3d at = {static_cast<double>(cell.column) * columnWidth + (cell.column > 0 ? insideColumn : 0), y, 0};
    return cell.text.empty() ||
           mclibElement_createText(&at, cell.text.c_str(), 1.0, nullptr, attribute, page) == MCLIB_SUCCESS;
}

}  // namespace

void printStations(const Road& road, double step) {
    for (const Line& line : stationList(road, step)) {
        std::string text;
        for (const Cell& cell : line) text.append(cell.column - text.size(), ' ') += cell.text;
        toolSubsystem_printf("%s\n", text.c_str());
    }
}

ListPage stationPage(const Road& road, double step) {
    const mdl::CurrTransScope masterUnits(mdl::CurrTransScope::Begin::masterUnits);
    const std::vector<Line> lines = stationList(road, step);
    ListPage list{nullptr, static_cast<double>(columnsOf(lines) + 1) * columnWidth,
                  static_cast<double>(lines.size() + 1) * lineHeight};
    // The frame is the page's extent.
    const Point3d corners[4] = {{0, 0, 0}, {list.width, 0, 0}, {list.width, list.height, 0}, {0, list.height, 0}};
    mclibElement_createShape(corners, 4, 0, road.attributeOf(Role::frame), nullptr);
    ElementDescr* page = nullptr;
    if (mdlElmdscr_new(&page, nullptr, dgnBufP) != MDL_SUCCESS) {
        mcapp::fail("no memory for the station list");
        return list;
    }
    Page made(page);
    const int attribute = road.attributeOf(Role::text);
    setSize(attribute);
    double y = list.height;
    for (const Line& line : lines) {
        y -= lineHeight;
        for (const Cell& cell : line) {
            if (addText(page, cell, y, attribute)) continue;
            mcapp::fail("the station list can't be made: \"" + cell.text + "\" finds no place in it");
            return list;
        }
    }
    list.page = std::move(made);
    return list;
}

}  // namespace alignment
