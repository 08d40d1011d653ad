// What the library remembers of the arrow that is being placed, for all applications.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "mclib/arrows/arrows.h"
#include "mclib/frame/room.h"

namespace mc::arrows {

// The values that the attribute hook fills in.
struct Looks {
    int headType = 0;
    double headSize = 0.0, scale = 1.0;
    int leaderMode = 0, frameKind = 0;
    double angle = 0.0, width = 0.0;
};

struct PlaceHooks {
    McArrowSnapHook snap = nullptr;
    McArrowTextHook text = nullptr;
    McArrowSymbolHook symbol = nullptr;
    McArrowCellHook cell = nullptr;
    McArrowFinishHook finish = nullptr;
    McArrowAttributesHook attributes = nullptr;
    McArrowResetHook reset = nullptr;
};

struct PlaceState {
    bool withText = false, withArrow = false;
    bool withTail = true;  // an arrow without text has one when its width says so
    int textAttrId = 0, lineAttrId = 0, headAttrId = 0;
    bool headAtStart = false;
    std::optional<std::string> nextPrompt;  // none: the library's own
    char text[ARROW_TEXT_LENGTH + 1] = "";
    wchar_t cellName[512] = L"";
    std::array<Point3d, ARROW_MOST_VERTICES> vertices{};  // UOR
    int vertexCount = 0;                                  // the next one goes to this index
    Point3d lastPoint{};                                  // the last data point, and its view
    int lastView = 0;
    Looks looks;
    double circleSize = 0.0;
    bool useCircleSize = false;
    double snapOffset1 = 0.0, snapOffset2 = 0.0;  // x of the ends of the underline, master units
    PlaceHooks hooks;
    FilePos latestFilePos = 0;
};
extern RoomState<PlaceState> placeState;
inline PlaceState& currentPlacing() {
    return *placeState.operator->();
}

}  // namespace mc::arrows

namespace mc {
extern const Room arrowsRoom;
}
