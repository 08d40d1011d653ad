// The geometry of frames and of where leader and text stand at them: points in, points out. All in the arrow's own
// system: master units, x along the lines of text.
#pragma once

#include <array>

#include "mchost/mdl/types.h"

namespace mc::arrows {

// The measures of a text of one or more lines.
struct TextBlock {
    double width = 0.0;  // of the widest line
    double lineHeight = 0.0;
    double height = 0.0;  // of all lines
    int just = 0;         // justification code of the host
    int lines = 1;
};

struct FrameRequest {
    int frameKind, leaderMode;
    bool withArrow;
    Point3d anchor;    // where the leader was led to
    Point3d previous;  // the vertex before
    Point3d cursor;    // the point that was given last
    double legAngle;   // of the last leg
    double gap;        // between text and frame
    TextBlock text;
    bool fixedSize;  // circle and diamond have this radius, whatever the text
    double radius;
};

enum class Outline { none, line, shape, circle };

struct Frame {
    Outline outline = Outline::none;
    std::array<Point3d, 7> points{};  // of a line or shape; of a circle the first is its centre
    int count = 0;
    double radius = 0.0;
    double turn = 0.0;  // where the circle begins
    Point3d end;        // where the leader ends
    bool hasText = true;
    Point3d textOrigin{};
    int just = 0;
    bool hasUnderline = false;  // also one that isn't drawn
    double underlineX[2] = {};  // of its two ends
};

// A kind that there isn't gives no outline and no text, and leaves the end where the anchor is.
Frame makeFrame(const FrameRequest& request);

// Where the second vertex of a leader that has no more lies for the sake of its first leg.
Point3d fittedFirstLeg(const Point3d& tip, const Point3d& second, int leaderMode, int frameKind, double gap,
                       const TextBlock& text);

// How far above the text's origin its first line stands; `step` leads from line to line.
double riseOfFirstLine(int frameKind, int lines, double step);

}  // namespace mc::arrows
