#include "nearest.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

#include <mchost/mdl/describe.h>
#include <mchost/mdl/element.h>
#include <mchost/mdl/level.h>
#include <mchost/mdl/model.h>
#include <mclib/mclib.h>
#include <mchost/mdl/owned.hpp>
#include <mclib/app/numbers.hpp>
#include <mclib/app/values.hpp>
#include "arrow.h"

namespace labels {

namespace {

// ---- points ----

Point3d closestOn(const Point3d& a, const Point3d& b, const Point3d& point) {
    const double dx = b.x - a.x, dy = b.y - a.y, length = dx * dx + dy * dy;
    const double along = length > 0 ? ((point.x - a.x) * dx + (point.y - a.y) * dy) / length : 0;
    const double t = std::clamp(along, 0.0, 1.0);
    return {a.x + t * dx, a.y + t * dy, a.z + t * (b.z - a.z)};
}

struct Search {
    Point3d from;
    Nearest best;
    bool inTexts;  // texts count as well
};

int lookAt(MSElementBuffer* element, void* userArg, int32_t, int32_t, ElementDescr*) {
    Search& search = *static_cast<Search*>(userArg);
    if (!search.inTexts && mdlElement_getType(element) == MDL_TEXT) return 0;
    const std::vector<Point3d> points = pointsOf(element);
    for (size_t i = 0; i < points.size(); ++i) {
        const Point3d at = closestOn(points[i > 0 ? i - 1 : 0], points[i], search.from);
        const double distance = std::hypot(at.x - search.from.x, at.y - search.from.y);
        if (distance < search.best.distance) search.best = {search.best.position, at, distance};
    }
    return 0;
}

// Whether the nearest point of it comes nearer than what was found before.
bool isNearer(Search& search, ElementDescr* ed) {
    const double before = search.best.distance;
    mdlElmdscr_operation(ed, lookAt, &search, MDL_DESCR_ELEMENTS);
    return search.best.distance < before;
}

// Asks `isTaken` for the elements near the search's point, and keeps the position of the last one that it takes.
template <class IsTaken>
std::optional<Nearest> nearest(Search search, IsTaken isTaken) {
    constexpr double deep = 1e12;
    const double reach = search.best.distance;
    const Point3d& p = search.from;
    const Range3d box = {{p.x - reach, p.y - reach, -deep}, {p.x + reach, p.y + reach, deep}};
    const mdl::Scan scan(mdlModelRef_getActive());
    if (!scan) return {};
    mdlScanCriteria_setRangeTest(scan.criteria(), &box);
    for (const FilePos position : scan) {
        const mdl::DescrPtr ed = mdl::readDescr(position, mdlModelRef_getActive());
        if (ed && isTaken(search, ed.get())) search.best.position = position;
    }
    if (search.best.position == 0) return {};
    return search.best;
}

// ---- values ----

std::string levelOf(const MSElementBuffer* element) {
    uint32_t level = 0;
    wchar_t name[512] = L"";
    mdlElement_getProperties(&level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, element);
    mdlLevel_getName(name, static_cast<int32_t>(std::size(name)), mdlModelRef_getActive(), level);
    return mclibUtil_convertToMultibyteText(name);
}

std::string typeOf(const MSElementBuffer* element) {
    const int type = mdlElement_getType(element);
    const char* const name = mdlElement_typeName(type);
    return name ? name : std::to_string(type);
}

std::string lengthOf(const MSElementBuffer* element) {
    const std::vector<Point3d> points = pointsOf(element);
    double length = 0;
    for (size_t i = 1; i < points.size(); ++i) length += mdlVec_distance(&points[i - 1], &points[i]);
    return mcapp::shown(length / mdlModelRef_getUorPerMaster(mdlModelRef_getActive()), 2);
}

// What was attached as a text, under any of the usual keys.
std::string dataOf(const MSElementBuffer* element) {
    constexpr int mostKeys = 256;
    std::vector<char> data(MCLIB_MAX_USER_DATA + 8, '\0');
    for (int key = 0; key < mostKeys; ++key) {
        int size = 0;
        if (mclibAttrib_extractElementUserData(element, key, nullptr, data.data(), &size) != MCLIB_SUCCESS) continue;
        const std::string text(data.begin(), std::find(data.begin(), data.begin() + size, '\0'));
        return text.substr(0, mcapp::longestTagText);
    }
    return {};
}

}  // namespace

std::optional<Nearest> nearestElement(const Point3d& point, double reach) {
    return nearest({point, {0, point, reach}, false},
                   [](Search& search, ElementDescr* ed) { return !isLabel(ed) && isNearer(search, ed); });
}

std::optional<Nearest> nearestLabel(const Point3d& point, double reach, int view) {
    return nearest({point, {0, point, reach}, true}, [&](Search& search, ElementDescr* ed) {
        if (!isLabel(ed)) return false;
        const std::optional<Extent> texts = textExtent(ed, view);
        if (!texts || !texts->has(point)) return isNearer(search, ed);
        search.best = {0, point, 0};
        return true;
    });
}

std::optional<std::string> textOver(FilePos position, const std::string& tagString, std::string& why) {
    const mdl::DescrPtr ed = mdl::readDescr(position, mdlModelRef_getActive());
    const MSElementBuffer* const element = ed ? ed->element : nullptr;
    mcapp::Values values;
    const auto add = [&](const char* name, std::string (*value)(const MSElementBuffer*)) {
        values.addText(name, element ? value(element) : "");
    };
    add("LEVEL", levelOf);
    add("TYPE", typeOf);
    add("LENGTH", lengthOf);
    add("CELL", cellName);
    add("DATA", dataOf);
    const mcapp::TextOutcome outcome = values.expand(tagString);
    why = outcome.why;
    return outcome.value;
}

}  // namespace labels
