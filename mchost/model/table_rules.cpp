#include "mchost/model/table_rules.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>

#include "mchost/base/utf8.h"
#include "mchost/space/current.h"

namespace host {
namespace {

constexpr int32_t greatestNumber = INT32_MAX / 2;  // of a level; what memory holds never counts up to the type's end

bool levelsAreSound(const Model& model) {
    LevelId before = 0;
    for (const Level& level : model.levels) {
        if (level.id <= before || level.code < 0 || level.code > greatestNumber) return false;
        if (!isTableName(level.name) || !isFinite(level.byLevel.styleParams)) return false;
        before = level.id;
    }
    return before < model.nextLevel && model.nextLevel <= greatestNumber;
}

bool lineStylesAreSound(const Model& model) {
    int32_t next = -1;
    return std::ranges::all_of(model.lineStyles, [&](const LineStyle& style) {
        return style.number == next-- && isLineStyleName(style.name) && isDashPattern(style.pattern);
    });
}

bool textStylesAreSound(const Model& model) {
    return std::ranges::all_of(model.textStyles, [](const auto& named) {
        const auto& [name, style] = named;
        return isTableName(name) && isFinite(style);
    });
}

bool attachmentsAreSound(const Model& model) {
    uint32_t before = 0;
    return std::ranges::all_of(model.attachments, [&](const Attachment& attachment) {
        return std::exchange(before, attachment.number) < attachment.number && isSound(attachment);
    });
}

bool namesAreSound(const LevelNames& names) {
    return std::ranges::all_of(names, isTableName);
}

bool viewIsSound(const View& view) {
    const bool known = (view.controls & ~knownControls) == 0;
    const bool unseen = view.extent == Point3d{};
    return known && nearestRotation(view.rotation) && (unseen || isViewArea(view.origin, view.extent)) &&
           namesAreSound(view.levelsOff);
}

}  // namespace

std::optional<RotMatrix> nearestRotation(const RotMatrix& m) {
    constexpr double tolerance = 1e-6;
    const Point3d x = column(m, 0), y = column(m, 1), z = column(m, 2);
    if (!(std::fabs(length(x) - 1) < tolerance && std::fabs(length(y) - 1) < tolerance &&
          std::fabs(dot(x, y)) < tolerance && distance(cross(x, y), z) < tolerance))
        return std::nullopt;
    const Point3d first = x * (1 / length(x)), across = y - first * dot(first, y);
    const Point3d second = across * (1 / length(across));
    return fromColumns(first, second, cross(first, second));
}

bool isViewArea(const Point3d& origin, const Point3d& extent) {
    const auto [low, high] = std::minmax(extent.x, extent.y);
    return host::isFinite(origin) && host::isFinite(extent) && low >= leastViewSide && high <= greatestViewSide &&
           extent.z >= 0 && length(origin) <= farthestViewOrigin;
}

bool isTableName(std::wstring_view name) {
    const bool hasNul = name.find(L'\0') != std::wstring_view::npos;
    return !name.empty() && name.size() <= longestTableName && !hasNul && isUnicode(name);
}

bool isLineStyleName(std::string_view name) {
    return !name.empty() && name.size() < lineStyleNameBytes && name.find('\0') == std::string_view::npos;
}

bool isDashPattern(std::span<const double> pattern) {
    return pattern.size() <= mostDashes &&
           std::ranges::all_of(pattern, [](double length) { return std::isfinite(length) && length >= 0; });
}

bool isFinite(const LineStyleParams& params) {
    return std::isfinite(params.scale) && std::isfinite(params.startWidth) && std::isfinite(params.endWidth) &&
           std::isfinite(params.dashScale) && std::isfinite(params.gapScale);
}

bool isFinite(const TextStyle& style) {
    const auto& [params, size] = style;
    return std::isfinite(params.slant) && std::isfinite(params.lineSpacing) && std::isfinite(size.width) &&
           std::isfinite(size.height) && std::isfinite(size.aspect);
}

bool isClip(std::span<const Point2> corners) {
    return corners.size() >= 3 && corners.size() <= mostClipPoints &&
           std::ranges::all_of(corners, [](const Point2& p) { return std::isfinite(p.x) && std::isfinite(p.y); });
}

bool isSound(const Attachment& attachment) {
    const auto& [number, file, toParent, clip, clipElement, shown, hidden, levelsOff] = attachment;
    Transform inverse;
    return !file.empty() && file.size() <= longestFileName && file.find('\0') == std::string::npos &&
           invert(toParent, inverse) && (clip.empty() || (clipElement == 0 && isClip(clip))) &&
           std::ranges::all_of(levelsOff, namesAreSound);
}

bool tablesAreSound(const Model& model) {
    return std::isfinite(model.uorPerMaster) && model.uorPerMaster > 0 && levelsAreSound(model) &&
           lineStylesAreSound(model) && textStylesAreSound(model) && attachmentsAreSound(model) &&
           std::ranges::all_of(model.views.views, viewIsSound);
}

}  // namespace host
