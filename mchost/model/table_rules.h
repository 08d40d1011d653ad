// What levels, styles, attachments and views may be called and hold: calls and files are held to the same.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "mchost/model/model.h"

namespace host {

constexpr size_t longestTableName = 511;   // characters of the name of a level or a text style
constexpr size_t lineStyleNameBytes = 64;  // with the NUL
constexpr size_t mostDashes = 32;
constexpr size_t longestFileName = 4095;  // bytes
constexpr size_t mostClipPoints = 5000;

// Of the area that a view shows, in UOR.
constexpr double leastViewSide = 1e-3, greatestViewSide = 1e15, farthestViewOrigin = 1e16;

bool isTableName(std::wstring_view name);
bool isLineStyleName(std::string_view name);
bool isDashPattern(std::span<const double> pattern);
bool isFinite(const LineStyleParams& params);
bool isFinite(const TextStyle& style);
bool isClip(std::span<const Point2> corners);
bool isSound(const Attachment& attachment);  // but for its number
// The rotation that the matrix is but for the errors of reckoning; nothing for what isn't one.
std::optional<RotMatrix> nearestRotation(const RotMatrix& m);
bool isViewArea(const Point3d& origin, const Point3d& extent);

// Whether all of that holds for a model's tables, each thing has its own number, and new ones will have theirs.
bool tablesAreSound(const Model& model);

}  // namespace host
