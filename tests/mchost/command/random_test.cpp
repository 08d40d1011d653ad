// Commands under whatever a user may do: random points, moves, resets, undo, redo and restarts, through modify commands
// that move, take apart, copy and delete what they locate.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "mchost/command/command.h"
#include "mchost/command/overlay.h"
#include "mchost/mdl/locate.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/snap.h"
#include "mchost/mdl/state.h"
#include "mchost/mdl/transform.h"
#include "mchost/mdl/undo.h"
#include "mchost/mdl/view.h"
#include "mchost/model/model.h"
#include "mchost/model/model_ref.h"
#include "tests/mchost/model/model_fixture.h"

namespace {

std::mt19937 dice;
mdl::DescrPtr inHand;  // what the command that runs has located
ElementDescr* piece;   // the component of it that was pointed at
Point3d takenAt;

int roll(int sides) {
    return std::uniform_int_distribution<int>(0, sides - 1)(dice);
}

FilePos locatedElement() {
    return mdlElement_getFilePos(MDL_FILE_POS_ELEMENT, nullptr);
}

// Reads what is located and takes the component that was pointed at off the screen.
void take() {
    inHand = mdl::readDescr(locatedElement(), nullptr);
    piece = nullptr;
    takenAt = statedataP->point;
    const FilePos component = mdlElement_getFilePos(MDL_FILE_POS_COMPONENT, nullptr);
    ASSERT_TRUE(inHand);
    if (component == locatedElement()) return;
    ASSERT_NE(mdlElement_read(dgnBufP, nullptr, component), 0u);
    mdlElement_display(dgnBufP, MDL_ERASE);
    piece = inHand->firstChild;
    for (int i = roll(3); i > 0 && piece->next; --i) piece = piece->next;
}

void showMoved(const Point3d* point, int32_t mode) {
    if (!inHand) return;
    Transform move;
    mdlTMatrix_translate(&move, nullptr, point->x - takenAt.x, point->y - takenAt.y, 0);
    ElementDescr* moved = nullptr;
    ASSERT_EQ(mdlElmdscr_duplicate(&moved, inHand.get()), MDL_SUCCESS);
    const mdl::DescrPtr owner(moved);
    ASSERT_EQ(mdlElmdscr_transform(moved, &move), MDL_SUCCESS);
    mdlElmdscr_display(moved, nullptr, mode);
    if (mode == MDL_DRAW && mdlElmdscr_rewrite(moved, locatedElement()) == 0) FAIL() << "not written";
}

void showDynamics(Point3d* point, int32_t, int32_t mode) {
    showMoved(point, mode);
}

void showAndFollow() {
    take();
    mdlState_setFunction(MDL_STATE_DYNAMICS, reinterpret_cast<MdlStateFunction>(showDynamics));
    if (roll(8) == 0) mdlState_restartCurrentCommand();
}

void acceptMove(Point3d* point, int32_t) {
    showMoved(point, MDL_DRAW);
    mdlState_restartCurrentCommand();
}

void acceptCopy(Point3d*, int32_t) {
    ASSERT_TRUE(inHand);
    ASSERT_NE(mdlElmdscr_add(inHand.get()), 0u);
    if (roll(2) == 0) mdlState_restartCurrentCommand();
}

void acceptDelete(Point3d*, int32_t) {
    ASSERT_EQ(mdlElement_undoableDelete(nullptr, locatedElement(), 0), MDL_SUCCESS);
    if (roll(2) == 0) mdlState_restartCurrentCommand();
}

// Puts the piece at the end of its cell.
void acceptTakenApart(Point3d*, int32_t) {
    if (piece && piece->next) {
        ASSERT_EQ(mdlElmdscr_appendElement(inHand.get(), piece->element), MDL_SUCCESS);
        mdlElmdscr_removeElement(piece);
        ASSERT_EQ(mdlElmdscr_rewrite(inHand.get(), locatedElement()), locatedElement());
    }
    mdlState_restartCurrentCommand();
}

void cleanUp() {
    if (inHand) mdlElmdscr_display(inHand.get(), nullptr, MDL_ERASE);
}

int anyOf(const MSElementBuffer*, ModelRef*, FilePos) {
    return roll(4) == 0 ? int{MDL_LOCATE_REJECT} : int{MDL_LOCATE_ACCEPT};
}

void startCommand(int number);
void resetHook() {
    if (roll(4) == 0) startCommand(roll(4));
}

void startCommand(int number) {
    const struct {
        MdlDataPointFunction accept;
        MdlStateFunction show, clean;
    } commands[] = {{acceptMove, showAndFollow, nullptr},
                    {acceptCopy, take, cleanUp},
                    {acceptDelete, nullptr, cleanUp},
                    {acceptTakenApart, take, nullptr}};
    const auto& [accept, show, clean] = commands[number];
    mdlState_startModifyCommand(resetHook, accept, nullptr, show, clean, 0, 0, 0, 0);
    mdlLocate_setFunction(MDL_LOCATE_POST, reinterpret_cast<MdlStateFunction>(anyOf));
    mdlLocate_noElemNoLocked();
    mdlLocate_setElemSearchMask(0, nullptr);
    mdlAccuSnap_enableLocate(roll(2));
}

class RandomCommands : public OpenModelTest {
  protected:
    static constexpr double side = 10000;

    RandomCommands() {
        const Point3d origin{}, extent{side, side, 0};
        mdlView_setArea(0, &origin, &extent);
        for (int i = 0; i < 6; ++i) EXPECT_NE(mdlElement_add(somewhere()), 0u);
        for (int i = 0; i < 3; ++i) addCell();
        application("drawer");
        open();  // what was done so far can't be taken back
    }

    static double place() { return std::uniform_real_distribution<double>(0, side)(dice); }
    static MSElementBuffer* somewhere() {
        const double x = place(), y = place();
        return line(x, y, x + side / 10, y + side / 10);
    }
    void addCell() {
        mdl::Descr cell;
        mdlCell_create(dgnBufP, L"CELL", nullptr, 0);
        EXPECT_EQ(mdlElmdscr_new(cell.out(), nullptr, dgnBufP), MDL_SUCCESS);
        for (int i = 0; i < 3; ++i) EXPECT_EQ(mdlElmdscr_appendElement(cell.get(), somewhere()), MDL_SUCCESS);
        EXPECT_NE(mdlElmdscr_add(cell.get()), 0u);
    }

    // The bytes of every element, by position.
    static std::map<FilePos, std::string> content() {
        std::map<FilePos, std::string> all;
        const host::Model& model = *host::openModel(nullptr);
        for (const FilePos position : allPositions()) {
            const host::RecordHead* record = model.elements.record(position);
            all[position] = {reinterpret_cast<const char*>(record), host::recordBytes(record)};
        }
        return all;
    }

    static void act() {
        const Point3d point{place(), place(), 0};
        switch (roll(12)) {
            case 0: startCommand(roll(4)); break;
            case 1: host::giveReset(); break;
            case 2: host::carryOutHostWord(roll(2) == 0 ? "undo" : "redo"); break;
            case 3: mdlState_restartCurrentCommand(); break;
            case 4: mdlSnap_setModes(static_cast<uint32_t>(roll(64)) << 1); break;
            case 5: host::carryOutHostWord(roll(2) == 0 ? "select all" : "select none"); break;
            case 6:
            case 7: host::moveCursor(point, roll(8)); break;
            default: host::giveDataPoint(point, 0); break;
        }
        host::tellWhatIsSeen();
    }
};

TEST_F(RandomCommands, NeverCrashAndUndoBringsTheBytesOfBefore) {
    constexpr int scripts = 10000, longest = 20;
    const host::ApplicationScope whole(application("drawer"));  // nothing is stored on the way
    const auto before = content();
    int changed = 0;
    for (int script = 0; script < scripts && !HasFailure(); ++script) {
        dice.seed(static_cast<uint32_t>(script));
        startCommand(roll(4));
        for (int i = roll(longest); i >= 0; --i) act();
        const auto after = content();
        changed += after != before;
        mdlUndo_mark(nullptr);
        while (mdlUndo_undo() == MDL_SUCCESS) {
        }
        ASSERT_EQ(content(), before) << "script " << script;
        if (roll(4) == 0) {
            while (mdlUndo_redo() == MDL_SUCCESS) {
            }
            while (mdlUndo_undo() == MDL_SUCCESS) {
            }
            ASSERT_EQ(content(), before) << "script " << script << ", done again and taken back";
        }
        front().clear();
    }
    EXPECT_GT(changed, scripts / 4) << "scripts that change nothing test nothing";
    inHand.reset();
}

}  // namespace
