// Modify commands: locating, what is called when, and what is seen meanwhile.
#include <gmock/gmock.h>

#include "mchost/command/overlay.h"
#include "mchost/mdl/modify.h"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/transform.h"
#include "mchost/mdl/undo.h"
#include "mchost/model/parts.h"
#include "mchost/resource/container.h"
#include "tests/mchost/command/modify_fixture.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST_F(ModifyCommand, APointLocatesTheNextOneAcceptsAndAResetLetsGo) {
    const FilePos line = addLine(0);
    start(dynamics);
    host::moveCursor({}, 0);
    EXPECT_TRUE(point(1.5));
    EXPECT_THAT(calls.seen, IsEmpty()) << "there is nothing within reach";
    EXPECT_THAT(told(), HasSubstr("no element"));
    point(0.5, 3);
    EXPECT_THAT(calls.seen, ElementsAre("show"));
    EXPECT_EQ(locatedElement(), line);
    EXPECT_TRUE(host::isHighlighted(line));
    EXPECT_EQ(statedataP->point.x, 3 * reach);
    host::moveCursor({7, 0, 0}, 1);
    EXPECT_EQ(host::dynamicElements().size(), 1u);
    calls.inAccept = [] { EXPECT_TRUE(host::dynamicElements().empty()); };
    host::giveDataPoint({9, 0, 0}, 1);
    EXPECT_THAT(calls.seen, ElementsAre("show", "dynamics", "dynamics", "clean", "accept 9 1"));
    EXPECT_EQ(locatedElement(), line) << "the command wasn't restarted";
    calls.seen.clear();
    host::giveReset();
    EXPECT_THAT(calls.seen, ElementsAre("clean", "reset"));
    EXPECT_EQ(locatedElement(), 0u);
    EXPECT_FALSE(host::isHighlighted(line));
    point(0.5);
    host::giveReset();
    calls.seen.clear();
    host::giveReset();
    EXPECT_THAT(calls.seen, ElementsAre("reset")) << "nothing is located, so nothing is cleaned";
    EXPECT_TRUE(host::commandRuns());
}

TEST_F(ModifyCommand, ARestartBringsBackWhatItWasStartedWith) {
    addLine(0);
    start();
    const int32_t types[] = {MDL_CELL_HEADER};
    mdlLocate_setElemSearchMask(1, types);
    const uint64_t serial = host::commandSerial();
    point(0);
    EXPECT_THAT(told(), HasSubstr("none that this command works on"));
    mdlLocate_setElemSearchMask(0, nullptr);
    calls.inShow = [] {
        mdlState_setFunction(MDL_STATE_DYNAMICS, reinterpret_cast<MdlStateFunction>(dynamics));
        mdlState_restartCurrentCommand();
    };
    point(0);
    EXPECT_EQ(locatedElement(), 0u);
    host::moveCursor({}, 0);
    EXPECT_THAT(calls.seen, ElementsAre("show")) << "the dynamics went with the restart";
    calls.inShow = nullptr;
    calls.inAccept = [] { mdlState_restartCurrentCommand(); };
    for (int i = 0; i < 4; ++i) point(0);
    EXPECT_THAT(calls.seen, ElementsAre("show", "show", "clean", "accept 0 0", "show", "clean", "accept 0 0"));
    EXPECT_EQ(host::commandSerial(), serial);
    calls.inClean = [] { mdlState_restartCurrentCommand(); };
    point(0);
    calls.seen.clear();
    point(0);
    EXPECT_THAT(calls.seen, ElementsAre("clean")) << "a restart leaves nothing to accept";
}

TEST_F(ModifyCommand, WithoutFunctionsItLocatesAcceptsAndEnds) {
    addLine(0);
    mdlState_startModifyCommand(nullptr, nullptr, nullptr, nullptr, nullptr, 0, 0, 0, 0);
    point(0);
    EXPECT_NE(locatedElement(), 0u);
    point(5);
    EXPECT_EQ(locatedElement(), 0u) << "accepted, and it locates again";
    point(0);
    host::giveReset();
    EXPECT_TRUE(host::commandRuns());
    host::giveReset();
    EXPECT_FALSE(host::commandRuns());
}

TEST_F(ModifyCommand, TheNearestThatPassesTheRulesIsTaken) {
    const FilePos far = addLine(0.5), near = addLine(0.1), locked = addLine(0, true);
    start();
    point(0);
    EXPECT_EQ(locatedElement(), locked) << "locked elements pass unless the command says that they don't";
    host::giveReset();
    mdlLocate_noElemNoLocked();
    point(0);
    EXPECT_EQ(locatedElement(), 0u) << "no mask lets any type pass";
    const int32_t types[] = {MDL_LINE};
    mdlLocate_setElemSearchMask(1, types);
    point(0);
    EXPECT_EQ(locatedElement(), near);
    host::giveReset();
    std::vector<FilePos> asked;
    calls.post = [&](const MSElementBuffer* element, ModelRef* model, FilePos position) {
        EXPECT_EQ(mdlElement_getType(element), MDL_LINE);
        EXPECT_EQ(model, mdlModelRef_getActive());
        EXPECT_EQ(mdlElement_getFilePos(MDL_FILE_POS_COMPONENT, nullptr), position);
        asked.push_back(position);
        return position == near ? int{MDL_LOCATE_REJECT} : int{MDL_LOCATE_ACCEPT};
    };
    mdlLocate_setFunction(MDL_LOCATE_POST, reinterpret_cast<MdlStateFunction>(postLocate));
    point(0);
    EXPECT_THAT(asked, ElementsAre(near, far));
    EXPECT_EQ(locatedElement(), far);
    start();
    point(0.1);
    EXPECT_EQ(locatedElement(), near) << "a command that starts has no rules";
}

TEST_F(ModifyCommand, WhyNothingIsTakenIsTold) {
    const int32_t lines[] = {MDL_LINE};
    addLine(0, true);
    start();
    mdlLocate_noElemNoLocked();
    mdlLocate_setElemSearchMask(1, lines);
    point(0);
    EXPECT_THAT(told(), HasSubstr("locked"));
    open(true);
    addLine(4);
    start();
    mdlLocate_noElemNoLocked();
    mdlLocate_setElemSearchMask(0, nullptr);
    point(0);
    EXPECT_THAT(told(), HasSubstr("locked"));
    close();
    ASSERT_EQ(mdlRefFile_attach(nullptr, nullptr, file.c_str(), nullptr, nullptr, 0), MDL_SUCCESS);
    start();
    point(0);
    EXPECT_THAT(told(), HasSubstr("attached"));
    EXPECT_EQ(mdlSystem_failureNoted(), 1) << "whoever runs a script has to hear of it";
}

TEST_F(ModifyCommand, AFileThatIsReadOnlyIsTold) {
    addLine(0);
    open(true);
    start();
    mdlLocate_noElemNoLocked();
    mdlLocate_setElemSearchMask(0, nullptr);
    point(0);
    EXPECT_THAT(told(), HasSubstr("read only"));
}

TEST_F(ModifyCommand, WhatThePostLocateFunctionDoesToTheCommandCounts) {
    addLine(0);
    addLine(0.1);
    const struct {
        const char* what;
        std::function<void()> act;
    } cases[] = {
        {"another command", [] { mdlState_startPrimitive(nullptr, nullptr, 0, 0); }},
        {"a restart", [] { mdlState_restartCurrentCommand(); }},
        {"another file", [&] { close(); }},
        {"the end of the application", [&] { session().endApplication(application("editor")); }},
    };
    for (const auto& [what, act] : cases) {
        if (mdlModelRef_getElementCount(nullptr) == 0) open();
        calls.seen.clear();
        start();
        calls.post = [&](const MSElementBuffer*, ModelRef*, FilePos) -> int {
            calls.seen.emplace_back("post");
            act();
            return MDL_LOCATE_ACCEPT;
        };
        mdlLocate_setFunction(MDL_LOCATE_POST, reinterpret_cast<MdlStateFunction>(postLocate));
        point(0);
        EXPECT_THAT(calls.seen, ElementsAre("post")) << what;
        EXPECT_EQ(locatedElement(), 0u) << what;
    }
    open();
    start();
    calls.post = [](const MSElementBuffer*, ModelRef*, FilePos position) -> int {
        mdlElement_undoableDelete(nullptr, position, 0);
        return MDL_LOCATE_ACCEPT;
    };
    mdlLocate_setFunction(MDL_LOCATE_POST, reinterpret_cast<MdlStateFunction>(postLocate));
    point(0);
    EXPECT_EQ(locatedElement(), 0u) << "what isn't there any more isn't located";
}

TEST_F(ModifyCommand, AComponentIsPointedAtAndHasAPositionWhileItsElementIsLocated) {
    const FilePos other = addLine(0), cell = addCell();
    start();
    point(102, 0.5);
    ModelRef* model = nullptr;
    const FilePos component = mdlElement_getFilePos(MDL_FILE_POS_COMPONENT, &model);
    EXPECT_EQ(locatedElement(), cell);
    EXPECT_EQ(component, cell + MDL_COMPONENT_OFFSET + 4);
    EXPECT_EQ(front().field(MDL_FIELD_STATUS), "Located: cell, at its line string");
    EXPECT_EQ(model, mdlModelRef_getActive());
    EXPECT_EQ(mdlElement_getFilePos(2, nullptr), 0u);
    EXPECT_GT(mdlElement_read(dgnBufP, nullptr, component), 0u);
    EXPECT_EQ(mdlElement_getType(dgnBufP), MDL_LINE_STRING);
    EXPECT_EQ(mdlElement_read(dgnBufP, nullptr, component + 1), 0u) << "there are four components";
    ElementRef* const reference = mdlModelRef_getElementRef(model, component);
    EXPECT_EQ(elementRef_isComplexComponent(reference), 1);
    ElementRef* const top = elementRef_getParent(reference);
    EXPECT_EQ(elementRef_isComplexComponent(top), 0);
    EXPECT_EQ(elementRef_getParent(top), nullptr);
    EXPECT_EQ(elementRef_getElement(top, dgnBufP, 40), 0u) << "there isn't room for it";
    EXPECT_GT(elementRef_getElement(top, dgnBufP, 0x20000), 0u);
    EXPECT_EQ(mdlElement_getType(dgnBufP), MDL_CELL_HEADER);
    mdlState_restartCurrentCommand();
    point(100, 0.5);
    EXPECT_EQ(elementRef_getParent(mdlModelRef_getElementRef(model, cell + MDL_COMPONENT_OFFSET + 2)), top)
        << "the element, not the cell in between";
    mdlState_restartCurrentCommand();
    EXPECT_EQ(elementRef_getElement(reference, dgnBufP, 0x20000), 0u);
    EXPECT_EQ(mdlElement_read(dgnBufP, nullptr, component), 0u);
    EXPECT_EQ(mdlModelRef_getElementRef(model, other + 100), nullptr);
    point(0);
    EXPECT_EQ(mdlElement_getFilePos(MDL_FILE_POS_COMPONENT, nullptr), other) << "it has no components";
    mdlElement_undoableDelete(nullptr, other, 0);
    EXPECT_EQ(locatedElement(), 0u);
    ElementRef* const stale = mdlModelRef_getElementRef(nullptr, cell);
    close();
    EXPECT_EQ(elementRef_getElement(stale, dgnBufP, 0x20000), 0u) << "its model isn't open any more";
}

TEST_F(ModifyCommand, AComponentIsModifiedByItsPosition) {
    const FilePos cell = addCell();
    start();
    point(101, 0.5);
    mdl::Descr ed;
    ASSERT_EQ(mdlElmdscr_read(ed.out(), cell, nullptr), 5u);
    const FilePos component = mdlElement_getFilePos(MDL_FILE_POS_COMPONENT, nullptr);
    const auto take = [](MSElementBuffer*, void* found, ModelRef*, ElementDescr* node, ElementDescr**) -> int {
        static_cast<std::vector<ElementDescr*>*>(found)->push_back(node);
        return MDL_MODIFY_NONE;
    };
    std::vector<ElementDescr*> found;
    mdlModify_elementDescr2(ed.out(), nullptr, MDL_MODIFY_ALL, take, &found, static_cast<int32_t>(component - cell));
    EXPECT_THAT(found, ElementsAre(ed.get()->firstChild->next));
}

TEST_F(ModifyCommand, TextsAreHitInTheirBoxAndCurvesOnTheirLine) {
    const Point3d centre{50 * reach, 0, 0};
    mdlArc_create(dgnBufP, nullptr, &centre, 10 * reach, 10 * reach, nullptr, 0, *fc_2piP);
    const FilePos arc = mdlElement_add(dgnBufP);
    const TextSize size{1, 4 * reach, 4 * reach, 1};
    const Point3d origin{0, 50 * reach, 0};
    ASSERT_EQ(mdlText_create(dgnBufP, nullptr, "WORDS", &origin, nullptr, &size, nullptr, 0), MDL_SUCCESS);
    const FilePos text = mdlElement_add(dgnBufP);
    start();
    point(52, 10);
    EXPECT_EQ(locatedElement(), text);
    mdlState_restartCurrentCommand();
    point(7, 50 + 7);
    EXPECT_EQ(locatedElement(), arc);
    mdlState_restartCurrentCommand();
    point(0, 50);
    EXPECT_EQ(locatedElement(), 0u) << "the middle of a circle is none of it";
}

TEST_F(ModifyCommand, WhatAViewShowsBesideEachOtherIsHitThere) {
    RotMatrix front;
    ASSERT_EQ(mdlView_getStandard(&front, 5), MDL_SUCCESS);
    ASSERT_EQ(mdlView_setRotation(3, &front), MDL_SUCCESS);
    const Point3d ends[] = {{0, 500 * reach, 7 * reach}, {10 * reach, 500 * reach, 7 * reach}};
    mdlLine_create(dgnBufP, nullptr, ends);
    const FilePos line = mdlElement_add(dgnBufP);
    start();
    host::giveDataPoint({5 * reach, 0, 7.5 * reach}, 3);
    EXPECT_EQ(locatedElement(), line) << "how deep it lies doesn't count";
    mdlState_restartCurrentCommand();
    host::giveDataPoint({5 * reach, 500 * reach, 0}, 3);
    EXPECT_EQ(locatedElement(), 0u);
}

TEST_F(ModifyCommand, ItEndsWithItsApplicationAndWithItsDesignFile) {
    addLine(0);
    start();
    point(0);
    session().endApplication(application("editor"));
    EXPECT_FALSE(host::commandRuns());
    EXPECT_EQ(locatedElement(), 0u);
    start();
    point(0);
    EXPECT_NE(locatedElement(), 0u);
    close();
    EXPECT_FALSE(point(0));
    EXPECT_EQ(locatedElement(), 0u);
}

TEST_F(ModifyCommand, WhatATurnWritesIsOneStep) {
    FilePos first = addLine(0);
    mdlUndo_mark(nullptr);
    start();
    calls.inAccept = [&] {
        addLine(1);
        addLine(1);
        if (first) mdlElement_undoableDelete(nullptr, std::exchange(first, 0), 0);
        mdlState_restartCurrentCommand();
    };
    for (const double y : {0.0, 1.0}) {
        point(y);
        point(y);
    }
    EXPECT_EQ(allPositions().size(), 4u);
    for (const size_t left : {2u, 1u, 0u}) {
        EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS);
        EXPECT_EQ(allPositions().size(), left);
    }
}

TEST_F(ModifyCommand, ItsMessagesAreShownAndNameItsSteps) {
    host::ResourceContents contents;
    contents.strings[{MDL_COMMAND_MESSAGES, 7}].set("en", "Copy line");
    contents.strings[{MDL_PROMPT_MESSAGES, 9}].set("en", "Point at a line");
    host::writeContainer(path("editor.rsc"), contents);
    addLine(0);
    asApplication("editor", [&] {
        RscHandle file = 0;
        EXPECT_EQ(mdlResource_openFile(&file, path("editor.rsc").c_str(), MDL_RSC_READ), MDL_SUCCESS);
        return mdlState_startModifyCommand(nullptr, accept, nullptr, show, nullptr, 7, 9, 0, 0);
    });
    EXPECT_EQ(front().field(MDL_FIELD_COMMAND), "Copy line");
    EXPECT_EQ(host::commandPrompt(), "Point at a line");
    const auto nameOfLast = [] {
        char name[32] = "";
        mdlUndo_getUndoName(name, sizeof name);
        return std::string(name);
    };
    calls.inAccept = [&] {
        addLine(5);
        mdlOutput_prompt("");
        mdlState_restartCurrentCommand();
    };
    point(0);
    point(0);
    EXPECT_EQ(nameOfLast(), "Copy line");
    EXPECT_EQ(host::commandPrompt(), "Point at a line") << "shown again";
    calls.inShow = [] { mdlState_startPrimitive(accept, nullptr, 0, 99); };
    calls.inAccept = [&] { addLine(6); };
    point(0);
    EXPECT_EQ(front().field(MDL_FIELD_COMMAND), "");
    EXPECT_EQ(host::commandPrompt(), "") << "it has no message 99";
    point(3);
    EXPECT_EQ(nameOfLast(), "Copy line") << "the command that goes on with it has no name of its own";
    start();
    calls.inShow = nullptr;
    point(0);
    point(0);
    EXPECT_EQ(nameOfLast(), "");
}

// ---- what is seen over the drawing ----

class OverlayTest : public ModifyCommand {
  protected:
    void display(FilePos component, int32_t mode) {
        ASSERT_NE(mdlElement_read(dgnBufP, nullptr, component), 0u);
        EXPECT_EQ(mdlElement_display(dgnBufP, mode), MDL_SUCCESS);
    }
};

TEST_F(OverlayTest, ErasedComponentsAreToldByTheirBytes) {
    const FilePos cell = addCell();
    start();
    point(101, 0.5);
    const FilePos component = mdlElement_getFilePos(MDL_FILE_POS_COMPONENT, nullptr);
    display(component, MDL_ERASE);
    EXPECT_TRUE(host::overlay().isErased(cell, 3));
    EXPECT_FALSE(host::overlay().isErased(cell, 2));
    EXPECT_FALSE(host::overlay().isErased(cell));
    mdl::DescrPtr ed = mdl::readDescr(cell, nullptr);
    mdlElement_display(ed->element, MDL_ERASE);
    EXPECT_FALSE(host::overlay().isErased(cell)) << "a header alone has no look";
    mdlElmdscr_display(ed->firstChild, nullptr, MDL_ERASE);
    EXPECT_TRUE(host::overlay().isErased(cell, 1)) << "with what lies in it";
    EXPECT_TRUE(host::overlay().isErased(cell, 2));
    mdlElmdscr_display(ed.get(), nullptr, MDL_ERASE);
    EXPECT_TRUE(host::overlay().isErased(cell));
    EXPECT_TRUE(host::overlay().isErased(cell, 2)) << "with the whole element";
    host::giveReset();
    EXPECT_FALSE(host::overlay().isErased(cell)) << "it returns when the command lets go";
}

TEST_F(OverlayTest, WhatWasDrawnIsErasedAgainAndNothingReachesTheFile) {
    const FilePos line = addLine(0);
    start();
    point(0);
    along(3);
    mdlElement_display(dgnBufP, MDL_HIGHLIGHT);
    mdl::DescrPtr cell = mdl::readDescr(addCell(), nullptr);
    EXPECT_TRUE(host::overlay().drawn.empty()) << "the change of the model shows all anew";
    mdlElement_display(along(3), MDL_HIGHLIGHT);
    mdlElmdscr_display(cell.get(), nullptr, MDL_DRAW);
    ASSERT_EQ(host::overlay().drawn.size(), 2u);
    EXPECT_TRUE(host::overlay().drawn[0].highlighted);
    EXPECT_FALSE(host::overlay().drawn[1].highlighted);
    mdlElement_display(along(3), MDL_ERASE);
    EXPECT_EQ(host::overlay().drawn.size(), 1u);
    mdlElmdscr_display(cell.get(), nullptr, MDL_ERASE);
    EXPECT_EQ(host::overlay().drawn.size(), 0u);
    EXPECT_EQ(mdlModelRef_getElementCount(nullptr), 2u);
    EXPECT_FALSE(host::overlay().isErased(line));
    mdlElement_display(along(3), MDL_DYNAMICS);
    EXPECT_TRUE(host::dynamicElements().empty()) << "outside of a dynamics function";
    EXPECT_EQ(mdlElement_display(along(3), 3), MDL_ERROR);
}

}  // namespace
