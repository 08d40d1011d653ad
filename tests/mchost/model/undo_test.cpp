// Steps that are taken back and done again.
#include "mchost/mdl/undo.h"

#include <map>
#include <random>

#include "mchost/mdl/files.h"
#include "mchost/mdl/owned.hpp"
#include "tests/mchost/model/model_fixture.h"
#include "tests/support/child.h"

namespace {

using Contents = std::map<FilePos, uint32_t>;  // numbers by position

Contents contentsOf(ModelRef* model = nullptr) {
    Contents all;
    for (const FilePos position : allPositions(model)) all[position] = numberOf(position, model);
    return all;
}

FilePos addTo(ModelRef* model, uint32_t number) {
    mdl::Descr ed;
    EXPECT_EQ(mdlElmdscr_new(ed.out(), model, numbered(number)), MDL_SUCCESS);
    return mdlElmdscr_add(ed.get());
}

std::string undoName() {
    char name[64] = "";
    return mdlUndo_getUndoName(name, sizeof name) == MDL_UNDO_NONE ? "none" : name;
}

std::string redoName() {
    char name[64] = "";
    return mdlUndo_getRedoName(name, sizeof name) == MDL_UNDO_NONE ? "none" : name;
}

class Undo : public OpenModelTest {
  protected:
    // Opens another file to be written beside the active one.
    ModelRef* openWork() {
        ModelRef* work = nullptr;
        EXPECT_EQ(mdlSystem_createDesignFile(workFile.c_str(), 0), MDL_SUCCESS);
        EXPECT_EQ(mdlWorkDgn_openFileToWrite(&work, workFile.c_str()), MDL_SUCCESS);
        return work;
    }
    const std::string workFile = path("work.mcd");
};

// Adds, rewrites and deletes here and there.
void changeAtRandom(std::mt19937& random) {
    for (int i = 0; i < 40; ++i) {
        const std::vector<FilePos> all = allPositions();
        const uint32_t number = random() % 100'000;
        const FilePos position = all.empty() ? 0 : all[random() % all.size()];
        const uint32_t what = position == 0 ? 0 : random() % 5;
        if (what < 2) {
            EXPECT_NE(mdlElement_add(numbered(number)), 0u);
        } else if (what < 4) {
            EXPECT_EQ(mdlElement_rewrite(numbered(number), position), position);
        } else {
            EXPECT_EQ(mdlElement_undoableDelete(nullptr, position, 0), MDL_SUCCESS);
        }
    }
}

TEST_F(Undo, StepsAreTakenBackAndDoneAgainExactly) {
    constexpr size_t steps = 30;
    std::mt19937 random(4711);
    std::vector<Contents> states = {contentsOf()};
    for (size_t step = 1; step <= steps; ++step) {
        EXPECT_EQ(mdlUndo_mark(std::to_string(step).c_str()), MDL_SUCCESS);
        changeAtRandom(random);
        states.push_back(contentsOf());
        if (step % 7 == 0) {
            EXPECT_EQ(mdlSystem_saveDesignFile(), MDL_SUCCESS);
        }
    }
    for (int round = 0; round < 2; ++round) {
        for (size_t step = steps; step > 0; --step) {
            EXPECT_EQ(undoName(), std::to_string(step));
            ASSERT_EQ(mdlUndo_undo(), MDL_SUCCESS);
            ASSERT_EQ(contentsOf(), states[step - 1]) << step;
        }
        EXPECT_EQ(mdlUndo_undo(), MDL_UNDO_NONE);
        for (size_t step = 1; step <= steps; ++step) {
            EXPECT_EQ(redoName(), std::to_string(step));
            ASSERT_EQ(mdlUndo_redo(), MDL_SUCCESS);
            ASSERT_EQ(contentsOf(), states[step]) << step;
        }
        EXPECT_EQ(mdlUndo_redo(), MDL_UNDO_NONE);
    }
    for (int i = 0; i < 5; ++i) mdlUndo_undo();
    reopen();
    EXPECT_EQ(contentsOf(), states[steps - 5]) << "what is taken back is stored so";
    EXPECT_EQ(mdlUndo_undo(), MDL_UNDO_NONE) << "the journal isn't in the file";
    EXPECT_EQ(mdlUndo_redo(), MDL_UNDO_NONE);
}

TEST_F(Undo, AnotherChangeEndsWhatCanBeDoneAgain) {
    mdlUndo_mark("add");
    mdlElement_add(numbered(1));
    mdlUndo_mark("nothing");
    mdlUndo_mark("more");
    mdlElement_add(numbered(2));
    EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS);
    EXPECT_EQ(undoName(), "add");
    mdlElement_add(numbered(3));
    EXPECT_EQ(redoName(), "none");
    EXPECT_EQ(mdlUndo_redo(), MDL_UNDO_NONE);
    EXPECT_EQ(contentsOf(), (Contents{{1, 1}, {3, 3}}));
    char cut[3];
    mdlUndo_undo();
    EXPECT_EQ(mdlUndo_getUndoName(cut, sizeof cut), MDL_ERROR);
    EXPECT_STREQ(cut, "ad");
}

TEST_F(Undo, WhatWasBroughtBackByItselfCanBeDoneAgain) {
    for (uint32_t i = 1; i <= 4; ++i) mdlElement_add(numbered(i));
    mdlUndo_mark("delete");
    for (const FilePos position : {2u, 3u, 1u}) mdlElement_undoableDelete(nullptr, position, 0);
    EXPECT_EQ(mdlUndo_lastDelete(), 1u);
    EXPECT_EQ(mdlUndo_lastDelete(), 3u);
    EXPECT_EQ(mdlUndo_redo(), MDL_SUCCESS);
    EXPECT_EQ(contentsOf(), (Contents{{1, 1}, {4, 4}}));
    for (const char* name : {"delete", "delete", ""}) {
        EXPECT_EQ(undoName(), name);
        EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS);
    }
    EXPECT_EQ(contentsOf(), Contents{});
}

TEST_F(Undo, StepEndsWithItsCommandAndSpansItsFiles) {
    ModelRef* work = openWork();
    for (const uint32_t first : {10u, 20u}) {
        asApplication("DRAW", [&] {
            mdlElement_add(numbered(first));
            addTo(work, first + 1);
            return mdlElement_add(numbered(first + 2));
        });
    }
    EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS);
    EXPECT_EQ(contentsOf(), (Contents{{1, 10}, {2, 12}}));
    EXPECT_EQ(contentsOf(work), (Contents{{1, 11}}));
    EXPECT_EQ(mdlUndo_redo(), MDL_SUCCESS);
    EXPECT_EQ(contentsOf(work), (Contents{{1, 11}, {2, 21}}));
    EXPECT_EQ(mdlWorkDgn_closeFile(work), MDL_SUCCESS);
    EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS) << "the rest of the step";
    EXPECT_EQ(contentsOf(), (Contents{{1, 10}, {2, 12}}));
}

// What a process that is killed in its second command leaves in both files.
TEST_F(Undo, FinishedCommandIsStoredAndABrokenOneIsNot) {
    ASSERT_EQ(mdlSystem_createDesignFile(workFile.c_str(), 0), MDL_SUCCESS);
    const auto draw = [&](ModelRef* work, uint32_t number) {
        mdlElement_add(numbered(number));
        addTo(work, number);
        return 0;
    };
    endSession();
    const pid_t child = startChild([&] {
        host::Session session;
        ModelRef* work = nullptr;
        if (mdlSystem_newDesignFile(file.c_str(), 0) != 0 || mdlWorkDgn_openFileToWrite(&work, workFile.c_str()) != 0)
            return 1;
        {
            const host::ApplicationScope scope(nullptr);
            draw(work, 7);
        }
        const host::ApplicationScope scope(nullptr);
        draw(work, 8);
        raise(SIGKILL);
        return 0;
    });
    EXPECT_EQ(waitForChild(child), -1);
    host::Session session;
    for (const std::string& name : {file, workFile}) {
        ModelRef* model = nullptr;
        ASSERT_EQ(mdlWorkDgn_openFile(&model, name.c_str()), MDL_SUCCESS);
        EXPECT_EQ(contentsOf(model), (Contents{{1, 7}}));
    }
}

TEST_F(Undo, FileThatCannotBeWrittenAnyMoreKeepsItsState) {
    mdlElement_add(numbered(1));
    mdlUndo_mark("rewrite");
    mdlElement_rewrite(numbered(2), 1);
    EXPECT_EQ(mdlSystem_saveDesignFile(), MDL_SUCCESS);
    {
        const WriteProtection protection(file);
        EXPECT_EQ(mdlUndo_undo(), MDL_ERROR);
        EXPECT_NE(onlyMessage(file).find("can't be written"), std::string::npos);
        EXPECT_EQ(contentsOf(), (Contents{{1, 2}}));
    }
    EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS);
    EXPECT_EQ(contentsOf(), (Contents{{1, 1}}));
}

}  // namespace
