// The project dialog: what the user types reaches the block, the design file and files of its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "mchost/dialog/dialog.h"
#include "mchost/dialog/registry.h"
#include "mchost/front/scripted.h"
#include "mchost/mdl/resource.h"
#include "mclib/project/dialog.h"
#include "mclib/project/store.h"
#include "tests/support/drawn.h"
#include "tests/support/library_fixture.h"

namespace {

using testing::HasSubstr;

constexpr int32_t loadButton = 20025, saveButton = 20026, readButton = 20027, writeButton = 20028;
constexpr int32_t projectNumber = 20100;
constexpr int32_t projectType = MDL_RSC_TYPE('C', 'm', 'P', 'r'), projectId = 3;

class ProjectDialog : public LibraryTest {
  protected:
    ProjectDialog() {
        front().answer = std::ref(answers);
        openDesignFile();
    }
    ~ProjectDialog() override {
        EXPECT_TRUE(answers.finished());
        EXPECT_EQ(answers.fault(), "");
    }

    void open() {
        ASSERT_EQ(mclibProject_dialogOpen(), MCLIB_SUCCESS);
        dialog = host::dialogOf(mdlDialog_find(20008, nullptr));
    }
    size_t placeOf(int32_t kind, int32_t id) const { return static_cast<size_t>(dialog->indexOf(kind, id)); }
    void press(int32_t button) const { EXPECT_TRUE(dialog->press(placeOf(ITEM_PUSH_BUTTON, button))); }
    void type(const std::string& number) const {
        EXPECT_TRUE(dialog->setValue(placeOf(ITEM_TEXT, projectNumber), number));
    }
    std::string shown() const { return dialog->items()[placeOf(ITEM_TEXT, projectNumber)].value; }
    static std::string storedNumber() {
        mclibProsjektData project;
        mclibProject_readProjectInfoFromDesignFile(&project);
        return project.pron;
    }
    // The next message box is answered so, and its text kept.
    void answerBox(int button) {
        answers.check([this](host::Dialog& box) { told += textDrawnIn(box); }).press(button);
    }
    // A resource file with a block of that size as its project.
    void writeProject(const std::string& name, std::string bytes) {
        RscHandle file = 0;
        ASSERT_EQ(mdlResource_createFile(name.c_str(), "test", MDL_RSC_WRITE), MDL_SUCCESS);
        ASSERT_EQ(mdlResource_openFile(&file, name.c_str(), MDL_RSC_WRITE), MDL_SUCCESS);
        mdlResource_add(file, projectType, projectId, bytes.data(), static_cast<int32_t>(bytes.size()), 0, nullptr);
        mdlResource_closeFile(file);
    }
    static std::string storedBlock(const std::string& name) {
        RscHandle file = 0;
        std::string bytes;
        if (mdlResource_openFile(&file, name.c_str(), MDL_RSC_READ) != MDL_SUCCESS) return bytes;
        if (void* block = mdlResource_load(file, projectType, projectId)) {
            bytes.assign(static_cast<char*>(block), static_cast<size_t>(mdlResource_size(block)));
            mdlResource_free(block);
        }
        mdlResource_closeFile(file);
        return bytes;
    }

    host::DialogScript answers;
    std::shared_ptr<host::Dialog> dialog;
    std::string told;  // by message boxes
};

TEST_F(ProjectDialog, GoesToTheDesignFileByItsButtonAlone) {
    open();
    type("17");
    EXPECT_EQ(storedNumber(), "");
    press(writeButton);
    EXPECT_EQ(storedNumber(), "17");
    type("18");
    press(readButton);
    EXPECT_EQ(shown(), "17");
    type("19");
    press(-4);
    open();  // what was typed and not written is gone
    EXPECT_EQ(shown(), "17");
}

TEST_F(ProjectDialog, SavesAndLoadsTheSame1603Bytes) {
    open();
    type("17");
    EXPECT_TRUE(dialog->setValue(placeOf(ITEM_TEXT, 20139), std::string(39, 'x')));
    const std::string name = path("own.rsc");
    front().files.answer(name);
    press(saveButton);
    const std::string saved = storedBlock(name);
    EXPECT_EQ(saved.size(), 1603u);
    type("18");
    front().files.answer(name);
    press(loadButton);
    EXPECT_EQ(shown(), "17");
    EXPECT_EQ(front().files.questions[0].title, "Save project data");
    EXPECT_EQ(front().files.questions[1].filter, "*.rsc");
    const std::string second = path("second.rsc");
    front().files.answer(second);
    press(saveButton);
    EXPECT_EQ(storedBlock(second), saved);
}

TEST_F(ProjectDialog, AsksBeforeItReplacesAFile) {
    const std::string name = path("own.rsc");
    writeProject(name, "something else");
    open();
    type("17");
    front().files.answer(name).agree(true);
    answerBox(-4);
    press(saveButton);
    EXPECT_EQ(storedBlock(name), "something else");
    EXPECT_THAT(told, HasSubstr(name));
    front().files.answer(name).agree(true);
    answerBox(-3);
    press(saveButton);
    EXPECT_EQ(storedBlock(name).size(), 1603u);
}

TEST_F(ProjectDialog, TellsWhatIsWrongWithAFileAndKeepsTheBlock) {
    const std::string short_ = path("short.rsc"), empty = path("empty.rsc");
    writeProject(short_, "4711");
    ASSERT_EQ(mdlResource_createFile(empty.c_str(), "test", MDL_RSC_WRITE), MDL_SUCCESS);
    open();
    type("17");
    for (const auto& [name, message] : {std::pair(short_, "no project data"), std::pair(empty, "no project data"),
                                        std::pair(writeFile("text.rsc", "text"), "can't be opened")}) {
        told.clear();
        front().files.answer(name);
        answerBox(-3);
        press(loadButton);
        EXPECT_THAT(told, HasSubstr(message));
        EXPECT_THAT(told, HasSubstr(name));
        EXPECT_EQ(shown(), "17");
    }
    front().files.cancel().cancel();
    press(loadButton);
    press(saveButton);
    EXPECT_EQ(shown(), "17");
}

TEST_F(ProjectDialog, TextsWithoutAnEndAreCutToTheirFields) {
    const std::string name = path("long.rsc");
    writeProject(name, std::string(1603, 'y'));
    open();
    front().files.answer(name);
    press(loadButton);
    EXPECT_EQ(shown(), std::string(30, 'y'));
    EXPECT_EQ(dialog->items()[placeOf(ITEM_TEXT, 20139)].value, std::string(39, 'y'));
}

TEST_F(ProjectDialog, AFileOfAnotherKindIsToldAndKept) {
    const std::string name = writeFile("text.rsc", "a letter");
    open();
    front().files.answer(name).agree(true);
    answerBox(-3);  // replace it
    answerBox(-3);
    press(saveButton);
    EXPECT_THAT(told, HasSubstr("can't be opened"));
    EXPECT_EQ(readFile("text.rsc"), "a letter");
}

}  // namespace
