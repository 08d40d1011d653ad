// References as the user attaches and changes them: by key-ins, and by the dialog.
#include <gmock/gmock.h>

#include "mchost/dialog/dialog.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/undo.h"
#include "mchost/session/keyin.h"
#include "tests/mchost/model/model_fixture.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;

// Beside the drawing lies "my part.mcd".
class ReferenceWords : public OpenModelTest {
  protected:
    ReferenceWords() {
        LevelId road = 0;
        EXPECT_EQ(mdlSystem_createDesignFile(path("my part.mcd").c_str(), 0), MDL_SUCCESS);
        EXPECT_EQ(mdlSystem_newDesignFile(path("my part.mcd").c_str(), 0), MDL_SUCCESS);
        EXPECT_EQ(mdlLevel_create(&road, nullptr, L"Road"), MDL_SUCCESS);
        EXPECT_EQ(mdlElement_add(numbered(1, road)), 1u);
        open();
    }
    // What is told: the reason why it isn't done, or else the lines on the console.
    std::string key(const std::string& line) {
        front().clear();
        const host::ApplicationScope control(nullptr);
        EXPECT_TRUE(host::carryOutHostWord(line)) << line;
        return front().messages.empty() ? front().consoleText : front().messages.back().brief;
    }
    std::string attachPart(const std::string& how = "") {
        return key("reference attach \"" + path("my part.mcd") + "\"" + how);
    }
    void fence() { EXPECT_EQ(key("fence 0,0 20,10"), ""); }
};

TEST_F(ReferenceWords, DoWhatTheySayAndAreTakenBack) {
    EXPECT_EQ(attachPart(" 100,200 2 30"), "attached: 1: my part.mcd, on, at 100,200, scale 2, turned by 30\n");
    EXPECT_EQ(attachPart(), "attached: 2: my part.mcd, on, at 0,0\n");
    ASSERT_EQ(mdlElement_add(shape()), 1u);
    fence();
    const struct {
        const char *line, *then;
    } cases[] = {
        {"reference move 2 5,-1", "2: my part.mcd, on, at 5,-1\n"},
        {"reference clip 2 5,-1 10,-1 10,4", "2: my part.mcd, on, at 5,-1, clip of 3 corners\n"},
        {"reference scale 2 3", "2: my part.mcd, on, at 5,-1, scale 3, clip of 3 corners\n"},
        {"reference rotate 2 90 0,0", "2: my part.mcd, on, at 1,5, scale 3, turned by 90, clip of 3 corners\n"},
        {"reference clip 2 fence", "2: my part.mcd, on, at 1,5, scale 3, turned by 90, clip of 4 corners\n"},
        {"reference clip 2 element 0,0", "2: my part.mcd, on, at 1,5, scale 3, turned by 90, clip of an element\n"},
        {"Reference OFF 2", "2: my part.mcd, off, at 1,5, scale 3, turned by 90, clip of an element\n"},
        {"reference level 2 Road off 3",
         "2: my part.mcd, off, at 1,5, scale 3, turned by 90, clip of an element; levels off in view 3: Road\n"},
    };
    std::vector<std::string> before;
    for (const auto& [line, then] : cases) {
        before.push_back(key("reference list"));
        EXPECT_EQ(key(line), "") << line;
        EXPECT_THAT(key("reference list"), EndsWith(std::string("turned by 30\n") + then)) << line;
    }
    for (auto list = before.rbegin(); list != before.rend(); ++list) {
        EXPECT_THAT(key("undo"), HasSubstr("Taken back: "));
        EXPECT_EQ(key("reference list"), *list);
    }
    key("reference clip all 0,0 10,0 10,10");
    EXPECT_EQ(key("reference clip all none"), "");
    EXPECT_EQ(key("reference detach all"), "");
    EXPECT_EQ(key("reference list"), "Nothing is attached to the drawing.\n");
}

TEST_F(ReferenceWords, AScaledClipGoesAlong) {
    attachPart();
    key("reference clip 1 0,0 10,0 10,10");
    key("reference scale 1 2 10,0");
    Point3d corners[3] = {};
    ModelRefIterator* places = nullptr;
    ASSERT_EQ(mdlModelRefIterator_create(&places, nullptr, MDL_ITERATE_REFERENCES, 1), MDL_SUCCESS);
    EXPECT_EQ(mdlRefFile_getClip(corners, nullptr, mdlModelRefIterator_getFirst(places)), MDL_SUCCESS);
    mdlModelRefIterator_free(&places);
    EXPECT_EQ(corners[0].x, -100000);
    EXPECT_EQ(corners[2].y, 200000);
}

TEST_F(ReferenceWords, WhatCannotBeDoneIsToldWithTheReason) {
    EXPECT_THAT(key("reference on 1"), HasSubstr("Nothing is attached"));
    attachPart();
    const struct {
        const char *line, *why;
    } cases[] = {
        {"reference", "Give one of: list, attach"},
        {"reference attach", "No file is named"},
        {"reference attach none.mcd", "none.mcd"},
        {"reference attach none.mcd 0,0 0", "none.mcd"},
        {"reference move 7 1,1", "\"7\" is no reference"},
        {"reference move 1", "isn't a point"},
        {"reference scale 1 0", "above 0"},
        {"reference scale 1 big", "isn't a factor"},
        {"reference clip 1 fence", "no fence"},
        {"reference clip 1 0,0 1,1", "3 corners or more"},
        {"reference clip 1 element 500,500", "within reach"},
        {"reference level 1 Rail off", "no level \"Rail\""},
        {"reference level 1 Road", "isn't a view"},
        {"reference list 1", "more than this key-in takes"},
    };
    for (const auto& [line, why] : cases) EXPECT_THAT(key(line), HasSubstr(why)) << line;
    EXPECT_THAT(attachPart(" 0,0 0"), HasSubstr("scale"));
    EXPECT_EQ(key("reference list"), "1: my part.mcd, on, at 0,0\n");
    open(true);
    EXPECT_THAT(key("reference off 1"), HasSubstr("read only"));
}

TEST_F(ReferenceWords, MissingFilesAreListedAndCanBeGivenAgain) {
    attachPart();
    close();
    std::filesystem::rename(path("my part.mcd"), path("found.mcd"));
    open();
    EXPECT_THAT(key("reference list"), HasSubstr("my part.mcd"));
    EXPECT_EQ(key("reference list"), "1: my part.mcd, missing, at 0,0\n");
    EXPECT_EQ(key("reference file 1 " + path("found.mcd")), "");
    EXPECT_EQ(key("reference list"), "1: found.mcd, on, at 0,0\n");
}

TEST_F(ReferenceWords, NestedOnesStandBelowThoseThatTheyAreIn) {
    attachPart();
    attachPart(" 7,7");
    ASSERT_EQ(mdlSystem_createDesignFile(path("outer.mcd").c_str(), 0), MDL_SUCCESS);
    ASSERT_EQ(mdlSystem_newDesignFile(path("outer.mcd").c_str(), 0), MDL_SUCCESS);
    key("reference attach " + file);
    EXPECT_EQ(key("reference list"),
              "1: a.mcd, on, at 0,0\n  1: my part.mcd, on, at 0,0\n  2: my part.mcd, on, at 7,7\n");
}

class ReferenceWindow : public ReferenceWords {
  protected:
    host::Dialog& dialog() { return *host::openDialogs().at(0); }
    void press(const std::string& label) {
        front().clear();
        const auto& items = dialog().items();
        const auto item = std::ranges::find(items, label, &host::DialogItem::label);
        ASSERT_NE(item, items.end()) << label;
        EXPECT_TRUE(dialog().press(static_cast<size_t>(item - items.begin()))) << label;
    }
    void fill(const std::string& label, const std::string& value) {
        const auto item = std::ranges::find(dialog().items(), label, &host::DialogItem::label);
        EXPECT_TRUE(dialog().setValue(static_cast<size_t>(item - dialog().items().begin()), value)) << label;
    }
    std::string rows() {
        std::string text;
        for (int32_t row = 0; row < host::Dialog::rowCount(dialog().items()[0]); ++row)
            text += host::Dialog::cellText(dialog().items()[0], row, 0) + "\n";
        return text;
    }
};

TEST_F(ReferenceWindow, ShowsWhatIsAttachedAndDoesWhatTheKeyInsDo) {
    EXPECT_EQ(key("references"), "");
    ASSERT_EQ(host::openDialogs().size(), 1u);
    EXPECT_EQ(key("references"), "");
    EXPECT_EQ(host::openDialogs().size(), 1u) << "it is open already";
    EXPECT_EQ(rows(), "");
    press("Detach");
    EXPECT_THAT(front().messages.back().brief, HasSubstr("No reference is chosen"));
    front().files.answer(path("my part.mcd"));
    press("Attach...");
    attachPart(" 1,1");
    EXPECT_EQ(rows(), "1: my part.mcd, on, at 0,0\n2: my part.mcd, on, at 1,1\n") << "also what a key-in does";
    EXPECT_TRUE(dialog().selectRows(0, {1}));
    fill("x", "10");
    press("Move");
    EXPECT_THAT(rows(), EndsWith("at 11,1\n"));
    fill("Factor", "2");
    press("Scale");
    press("Off");
    fence();
    press("Clip by fence");
    EXPECT_THAT(rows(), EndsWith("2: my part.mcd, off, at 11,1, scale 2, clip of 4 corners\n"));
    press("No clip");
    press("On");
    EXPECT_THAT(rows(), EndsWith("2: my part.mcd, on, at 11,1, scale 2\n"));
    press("Detach");
    EXPECT_EQ(rows(), "1: my part.mcd, on, at 0,0\n");
    key("undo");
    EXPECT_THAT(rows(), EndsWith("2: my part.mcd, on, at 11,1, scale 2\n"));
    press("Close");
    EXPECT_TRUE(host::openDialogs().empty());
    EXPECT_EQ(key("references"), "");
    EXPECT_THAT(rows(), HasSubstr("2: my part.mcd"));
}

}  // namespace
