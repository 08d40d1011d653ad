// What the library remembers of the arrow that is being changed, for all applications. Points are UOR.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "mchost/mdl/owned.hpp"
#include "mclib/arrows/arrows.h"
#include "mclib/frame/room.h"

namespace mc::arrows {

enum class CommandKind {
    none = 0,
    addLeader = 1,
    deleteLeader = 2,
    insertVertex = 3,
    deleteVertex = 4,
    moveText = 5,
    changeText = 6,
    moveHead = 7,
    replaceHead = 8
};

struct EditHooks {
    McArrowLocateFilter filter = nullptr;
    McArrowReadHook read = nullptr;
    McArrowBeforeWriteHook beforeWrite = nullptr;
    McArrowChangeTextHook changeText = nullptr;
    McArrowAttributesHook attributes = nullptr;
    McArrowResetHook reset = nullptr;
};

// Those that all commands have.
inline EditHooks editHooks(McArrowLocateFilter filter, McArrowReadHook read, McArrowBeforeWriteHook beforeWrite,
                           McArrowResetHook reset) {
    EditHooks hooks;
    hooks.filter = filter;
    hooks.read = read;
    hooks.beforeWrite = beforeWrite;
    hooks.reset = reset;
    return hooks;
}

// The frame of an arrow as its elements tell.
struct FoundFrame {
    int kind = -1;                     // as ARROW_FRAME_...; -1 none
    std::array<Point3d, 2> line{};     // of an underline
    std::array<Point3d, 4> corners{};  // the first ones of a shape
    Point3d centre{};                  // of a circle
    double radius = 0.0;
    std::array<Point3d, 2> beside{};  // where a leader ends at a text without frame
};

// A leader that is taken out of its arrow.
struct Leader {
    MSElementBuffer element;
    std::array<Point3d, MDL_MAX_POINTS> points;
    int count = 0;
    mdl::DescrPtr head;             // the elements behind it; null for none
    mdl::DescrPtr headKept;         // as they were
    Point3d tipKept{}, nextKept{};  // the ends of the first segment as they were
    int vertex = 0;                 // the one that is worked on
    int segment = 0;                // the one that was pointed at

    Point3d& at(int index) { return points[static_cast<size_t>(index)]; }
};

struct EditState {
    CommandKind kind = CommandKind::none;
    EditHooks hooks;
    std::span<const int32_t> types;  // that may be located
    int lineAttrId = 0, headAttrId = 0;
    bool textAlone = false;  // text is moved without its frame and symbol

    mdl::DescrPtr cell;                 // the arrow as read
    ElementDescr* component = nullptr;  // in the cell: the leader that was located
    FilePos cellFilePos = 0;
    mdl::DescrPtr legs;  // leaders and heads, taken out of the cell
    Leader leader;
    int leaderTotal = 0;  // leaders of the cell that aren't of class 2
    int lineTotal = 0;    // lines in front of the first leader, at most 2
    FoundFrame frame;
    Point3d anchor{};  // where the first leader ends
    double textDirection = 1.0;
    Point3d startPoint{};  // where a move began
    int startView = 0;
};
extern RoomState<EditState> editState;
inline EditState& currentEdit() {
    return *editState.operator->();
}

}  // namespace mc::arrows
