// What the application alignment keeps from one run to the next: looks, the user's own attributes, the last roads, and
// the project data of drawings.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "mchost/mdl/model.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mchost/session/session.h"
#include "mclib/mclib.h"
#include "tests/support/application_test.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

const std::string examples = PROJECT_SOURCE_DIR "/apps/alignment/examples/";
const std::string project = "PROJECT \"P\"\n";
const std::string rest = "SCALE 1000\n";
const std::string ditch = "OWN 101 \"Ditch\" 5 6 2 \"Ditches\"\n";

std::string straight(const std::string& attribute = "") {
    return "ELEMENT 0 0 100 0 0 0 0 " + attribute + "\n";
}

class AlignmentKept : public ApplicationTest {
  protected:
    AlignmentKept() : ApplicationTest("alignment") {
        fs::copy_file(examples + "attributes.txt", folder_ / "attributes.txt");
        writeRoad("road", straight());
    }
    // NAME.txt with the shared attributes.
    void writeRoad(const std::string& name, const std::string& lines) const {
        write(name + ".txt", "%include attributes.txt\n" + project + rest + lines);
    }
    void succeed(const std::string& arguments, const std::string& hostArguments = "") const {
        const Outcome outcome = run(arguments, hostArguments);
        EXPECT_EQ(outcome.status, 0) << arguments << "\n" << outcome.output;
    }
    void refuse(const std::string& arguments, const std::string& told) const {
        const std::vector<std::string> before = files();
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 1) << arguments;
        EXPECT_THAT(outcome.output, HasSubstr(told)) << arguments;
        EXPECT_EQ(files(), before) << arguments;
    }
    mclibProsjektData projectOf(const std::string& drawing) const {
        const host::Session session;
        mclibProsjektData data = {};
        EXPECT_EQ(mdlSystem_newDesignFile((folder_ / drawing).c_str(), 1), MDL_SUCCESS);
        EXPECT_EQ(mclibProject_readProjectInfoFromDesignFile(&data), 1);
        return data;
    }
};

// ---- looks ----

TEST_F(AlignmentKept, LooksComeBackOverWhatAnotherInputTells) {
    succeed("road.txt --save-attributes looks.rsc");
    shell(
        "sed -i 's/\"Straight\" *0 *4/\"Straight\" 3 9/; s/\"Title\"\\(.*\\) 5.0 5.0/\"Title\"\\1 3.0 3.0/' "
        "attributes.txt");
    succeed("road.txt --out plain");
    succeed("road.txt --out kept --attributes looks.rsc");
    EXPECT_EQ(read("kept.ps"), read("road.ps"));
    EXPECT_NE(read("plain.ps"), read("road.ps"));
}

TEST_F(AlignmentKept, ANumberThatTheFileLacksLooksAsTheInputSays) {
    succeed("road.txt --save-attributes looks.rsc --list");
    writeRoad("more", "ATTRIBUTE 55 \"More\" 1 7 3 \"L\"\n" + straight("55"));
    succeed("more.txt");
    succeed("more.txt --out again --attributes looks.rsc");
    EXPECT_EQ(read("again.ps"), read("more.ps"));
    // And a file that is written to keeps the numbers that the input lacks.
    succeed("more.txt --list --save-attributes looks.rsc --overwrite");
    succeed("road.txt --list --save-attributes looks.rsc --overwrite");
    writeRoad("other", "ATTRIBUTE 55 \"More\" 6 0 0 \"Elsewhere\"\n" + straight("55"));
    succeed("other.txt --attributes looks.rsc");
    EXPECT_EQ(read("other.ps"), read("more.ps"));
}

TEST_F(AlignmentKept, LooksThatAreThereChangeOnlyWhenTheyMay) {
    succeed("road.txt --list --save-attributes looks.rsc");
    const std::string before = read("looks.rsc");
    refuse("road.txt --save-attributes looks.rsc", "looks.rsc: the file is there already; give --overwrite");
    EXPECT_EQ(read("looks.rsc"), before);
}

// ---- own attributes ----

TEST_F(AlignmentKept, AnOwnAttributeStaysForEveryRoad) {
    writeRoad("first", ditch + straight("101"));
    writeRoad("second", straight("101"));
    succeed("first.txt --own mine.rsc");
    refuse("second.txt", "line 4, column 25: there is no attribute 101; ATTRIBUTE and OWN lines come first");
    succeed("second.txt --own mine.rsc");
    EXPECT_EQ(read("second.ps"), read("first.ps"));
    // Another one comes beside it, and it takes a new look by its number and label.
    writeRoad("third", "OWN 102 \"Wall\" 2 3 0 \"Walls\"\n" + straight("101"));
    writeRoad("changed", "OWN 101 \"Ditch\" 1 1 0 \"Ditches\"\n" + straight("101"));
    succeed("third.txt --own mine.rsc");
    EXPECT_EQ(read("third.ps"), read("first.ps"));
    succeed("changed.txt --own mine.rsc");
    succeed("second.txt --own mine.rsc --overwrite");
    EXPECT_EQ(read("second.ps"), read("changed.ps"));
    EXPECT_NE(read("second.ps"), read("first.ps"));
    writeRoad("both", straight("102"));
    succeed("both.txt --own mine.rsc --list");
}

TEST_F(AlignmentKept, TheFileIsFoundByTheNameThatItWasMadeWith) {
    writeRoad("first", ditch + straight("101"));
    writeRoad("second", "OWN 102 \"Wall\" 2 3 0 \"Walls\"\n" + straight("101"));
    fs::create_directories(folder_ / "m\xc3\xa5l");
    for (const auto& [made, found] : {std::pair("m\xc3\xa5l/mine.rsc", "m\xc3\xa5l\\mine"), std::pair("plain", "plain"),
                                      std::pair("mine.rsc", "mine")}) {
        succeed("first.txt --list --own " + std::string(made));
        succeed("second.txt --list --own '" + std::string(found) + "'");
        succeed("second.txt --list --own " + std::string(made));
    }
}

TEST_F(AlignmentKept, OneFileMayHoldLooksAndOwnAttributes) {
    writeRoad("first", ditch + straight("101"));
    writeRoad("second", straight("101"));
    succeed("first.txt --own all.rsc --save-attributes all.rsc");
    succeed("second.txt --own all.rsc --attributes all.rsc");
    EXPECT_EQ(read("second.ps"), read("first.ps"));
}

TEST_F(AlignmentKept, LooksOfOthersLeaveOwnAttributesAlone) {
    writeRoad("theirs", "ATTRIBUTE 101 \"Theirs\" 1 0 0 \"L\"\n" + straight("101"));
    writeRoad("mine", ditch + straight("101"));
    succeed("theirs.txt --list --save-attributes looks.rsc");
    succeed("mine.txt --own mine.rsc");
    succeed("mine.txt --own mine.rsc --attributes looks.rsc --out again");
    EXPECT_EQ(read("again.ps"), read("mine.ps"));
}

TEST_F(AlignmentKept, NothingIsKeptWhenTheWorkFails) {
    writeRoad("far", ditch + "ELEMENT 0 0 5000 0 0 0 0 101\n");
    refuse("far.txt --own mine.rsc --save-attributes looks.rsc", "doesn't fit");
}

TEST_F(AlignmentKept, NumbersThatMeanSomethingElseAreRefusedAtTheirPlace) {
    writeRoad("mine", ditch + straight("101"));
    succeed("mine.txt --own mine.rsc");
    const std::string before = read("mine.rsc");
    struct Case {
        const char *line, *told;
    };
    for (const Case& c : {Case{"OWN 101 \"Dyke\" 1 1 1 \"L\"", "column 5: attribute 101 of mine.rsc is \"Ditch\""},
                          Case{"ATTRIBUTE 101 \"Ditch\" 1 1 1 \"L\"", "column 11: mine.rsc has an attribute 101"},
                          Case{"OWN 3 \"Circle\" 1 1 1 \"L\"", "column 5: there is an attribute 3 already"},
                          Case{"OWN 103 \"Wall\" 1 1", "column 19: the line style is missing"},
                          Case{"OWN", "column 4: the attribute number is missing"}}) {
        writeRoad("bad", c.line + std::string("\n") + straight());
        refuse("bad.txt --own mine.rsc", c.told);
        EXPECT_EQ(read("mine.rsc"), before) << c.line;
    }
}

TEST_F(AlignmentKept, FilesThatAreNoneOfThemAreRefusedAndStay) {
    writeRoad("mine", ditch + straight("101"));
    succeed("mine.txt --own mine.rsc --save-attributes looks.rsc --out drawing");
    write("text.rsc", "no resource file");
    {
        // A list that says two, and holds none.
        const host::Session session;
        const std::string name = (folder_ / "short.rsc").string();
        const uint8_t two[] = {2, 0, 0, 0};
        RscHandle file = 0;
        ASSERT_EQ(mdlResource_createFile(name.c_str(), "Attributes", MDL_RSC_WRITE), MDL_SUCCESS);
        ASSERT_EQ(mdlResource_openFile(&file, name.c_str(), MDL_RSC_WRITE), MDL_SUCCESS);
        ASSERT_EQ(mdlResource_add(file, MDL_RSC_TYPE('A', 'S', 'N', 'o'), 1, two, sizeof two, 0, ""), MDL_SUCCESS);
        mdlResource_closeFile(file);
    }
    const std::vector<std::string> kept = {"mine.rsc", "looks.rsc", "text.rsc", "short.rsc", "drawing.mcd"};
    std::vector<std::string> before;
    for (const std::string& name : kept) before.push_back(read(name));
    struct Case {
        const char *arguments, *told;
    };
    for (const Case& c :
         {Case{"--attributes none.rsc", "none.rsc"}, Case{"--attributes text.rsc", "text.rsc"},
          Case{"--attributes mine.rsc", "mine.rsc: the file has no look for any attribute of the input"},
          Case{"--attributes drawing.mcd", "drawing.mcd: this is no resource file"},
          Case{"--save-attributes text.rsc --overwrite", "text.rsc: this is no resource file"},
          Case{"--save-attributes drawing.mcd --overwrite", "drawing.mcd: this is no resource file"},
          Case{"--own text.rsc", "text.rsc: this is no resource file"},
          Case{"--own short.rsc", "short.rsc: the file holds no list of own attributes, or not all of it"},
          Case{"--own looks.rsc", "looks.rsc: the file holds no list of own attributes"}}) {
        refuse("mine.txt " + std::string(c.arguments), c.told);
        for (size_t i = 0; i < kept.size(); ++i) EXPECT_TRUE(read(kept[i]) == before[i]) << c.arguments << kept[i];
    }
    refuse("road.txt --own none.rsc", "none.rsc: there is no such file, and the input has no OWN line");
}

// ---- the last roads ----

const std::string preferences = "--set MS_USERPREF=user.rsc";

TEST_F(AlignmentKept, TheLastRoadIsTakenAgain) {
    writeRoad("other", straight());
    succeed("road.txt --list", preferences);
    succeed("other.txt --list", preferences);
    write("bad.txt", "ROAD\n");
    EXPECT_EQ(run("bad.txt", preferences).status, 1);  // can't be read, so nobody wants it back
    succeed("--last", preferences);
    EXPECT_TRUE(fs::exists(folder_ / "other.ps"));
    EXPECT_FALSE(fs::exists(folder_ / "road.ps"));
    fs::remove(folder_ / "other.txt");
    const Outcome gone = run("--last", preferences);
    EXPECT_EQ(gone.status, 1);
    EXPECT_THAT(gone.output, HasSubstr("other.txt: there is no such file"));
}

TEST_F(AlignmentKept, WhoNamesNoRoadIsAskedAndOfferedTheLastOnes) {
    writeRoad("other", straight());
    succeed("road.txt --list", preferences + " --set MC_ALIGNMENT_PREF=roads.upf");
    succeed("other.txt --list", preferences + " --set MC_ALIGNMENT_PREF=roads.upf");
    EXPECT_FALSE(fs::exists(folder_ / "alignment.upf"));
    write("second.answers", "2\n");
    const Outcome asked = run("", preferences + " --set MC_ALIGNMENT_PREF=roads.upf --answers second.answers");
    EXPECT_EQ(asked.status, 0) << asked.output;
    EXPECT_THAT(asked.output, HasSubstr("The road to draw"));
    EXPECT_TRUE(fs::exists(folder_ / "road.ps"));
    EXPECT_FALSE(fs::exists(folder_ / "other.ps"));
}

TEST_F(AlignmentKept, ListingRemembersTheRoadAndMakesNothingHere) {
    EXPECT_THAT(run("--last").output, HasSubstr("alignment.upf: no file is remembered yet"));
    const std::vector<std::string> before = files();
    succeed("road.txt --list");
    EXPECT_THAT(run("--last --list").output, HasSubstr("station"));
    EXPECT_EQ(files(), before);
    const Outcome both = run("road.txt --last");
    EXPECT_EQ(both.status, 2);
    EXPECT_THAT(both.output, HasSubstr("there can't be \"road.txt\" as well"));
}

// ---- project data ----

TEST_F(AlignmentKept, TheDrawingKeepsProjectTitleAndDate) {
    write("full.txt", "%include attributes.txt\nPROJECT \"Bl\xe5s\xf8r\"\nTITLE \"T\"\nDATE \"" + std::string(31, '5') +
                          "\"\n" + rest + straight());
    const Outcome outcome = run("full.txt");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("DATE has 31 characters; the project data keeps 30 of them"));
    const mclibProsjektData data = projectOf("full.mcd");
    EXPECT_STREQ(data.pros[0], "Bl\xe5s\xf8r");
    EXPECT_STREQ(data.pros[1], "T");
    EXPECT_EQ(data.UDat, std::string(30, '5'));
}

TEST_F(AlignmentKept, TheOpenDrawingTellsWhatTheInputDoesNot) {
    succeed(examples + "granlia.txt --out first");
    {
        const host::Session session;
        ASSERT_EQ(mdlSystem_newDesignFile((folder_ / "first.mcd").c_str(), 0), MDL_SUCCESS);
        mclibProsjektData data = {};
        mclibProject_readProjectInfoFromDesignFile(&data);
        std::snprintf(data.USig, sizeof data.USig, "kb");
        mclibProject_writeProjectInfoToDesignFile(&data);
        ASSERT_EQ(mdlSystem_closeDesignFile(), MDL_SUCCESS);
    }
    const std::string first = read("first.mcd");
    write("next.txt", "%include attributes.txt\nTITLE \"Stage 2\"\n" + rest + straight());
    succeed("next.txt", "--open first.mcd");
    for (const char* text : {"(Fv 4127 Granlia - Tverrvik)", "(Stage 2)", "(2026-04-14)"})
        EXPECT_THAT(read("next.ps"), HasSubstr(text));
    const mclibProsjektData data = projectOf("next.mcd");
    EXPECT_STREQ(data.pros[0], "Fv 4127 Granlia - Tverrvik");
    EXPECT_STREQ(data.pros[1], "Stage 2");
    EXPECT_STREQ(data.USig, "kb");
    EXPECT_TRUE(read("first.mcd") == first);
    refuse("next.txt --overwrite", "PROJECT must come before the first ELEMENT");
    EXPECT_STREQ(projectOf("next.mcd").pros[0], "Fv 4127 Granlia - Tverrvik");
}

TEST_F(AlignmentKept, TheSecondExampleFollowsTheFirst) {
    succeed(examples + "granlia.txt --out first --save-attributes looks.rsc");
    const Outcome outcome = run(examples + "stage2.txt --attributes looks.rsc --own mine.rsc", "--open first.mcd");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, Not(HasSubstr("gap")));
    EXPECT_THAT(outcome.output, HasSubstr("kept attribute 101, Planned, in mine.rsc"));
}

}  // namespace
