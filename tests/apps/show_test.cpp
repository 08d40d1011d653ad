// The application show, run by mchost as a user would, on files that the library and the host make.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cwchar>
#include <string>
#include <vector>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/text.h"
#include "mclib/elmattr/resources.h"
#include "mclib/forms/preview_extent.h"
#include "mclib/frame/stored_layout.h"
#include "mclib/print/setup_record.h"
#include "mclib/project/application_data.h"
#include "mclib/project/records.h"
#include "mclib/project/shared.h"
#include "mclib/project/store.h"
#include "tests/support/application_test.h"
#include "tests/support/cell_file.h"
#include "tests/support/library_fixture.h"

using namespace mc;

namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

class Show : public LibraryTest, protected ApplicationRun {
  protected:
    Show() : ApplicationRun("show") {}

    // What is told of a file in which nothing is wrong.
    std::string shown(const std::string& name, const std::string& options = "") const {
        const Outcome outcome = run(options + " '" + path(name) + "'");
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        return outcome.output;
    }
    // The message about a file that can't be shown.
    std::string refusal(const std::string& name) const {
        const Outcome outcome = run("'" + path(name) + "'");
        EXPECT_EQ(outcome.status, 1) << outcome.output;
        return outcome.output;
    }
    void makeResourceFile(const char* title = "") {
        ASSERT_EQ(mdlResource_createFile(file_.c_str(), title, MDL_RSC_WRITE), MDL_SUCCESS);
        ASSERT_EQ(mdlResource_openFile(&handle_, file_.c_str(), MDL_RSC_WRITE), MDL_SUCCESS);
    }
    void add(int32_t type, int32_t id, std::span<const uint8_t> bytes, const char* name = "") {
        ASSERT_EQ(mdlResource_add(handle_, type, id, bytes.data(), static_cast<int32_t>(bytes.size()), 0, name), 0);
    }
    // What is told of the file that was made.
    std::string resources(const std::string& options = "") {
        mdlResource_closeFile(handle_);
        return shown("some.rsc", options);
    }

    const std::string file_ = path("some.rsc");
    RscHandle handle_ = 0;
};

FilePos addLine(LevelId level, double length) {
    const Point3d ends[] = {{0, 0, 0}, {length * 10000, 5000, 0}};
    MSElementBuffer element;
    mdlLine_create(&element, nullptr, ends);
    element.head.level = level;
    return mdlElement_add(&element);
}

// ---- design files and cell libraries ----

TEST_F(Show, CountsElementsByTypeAndLevel) {
    openDesignFile();
    LevelId pipes = 0;
    mdlLevel_create(&pipes, nullptr, L"R\u00f8r");
    for (int i = 1; i <= 3; ++i) addLine(pipes, i);
    addLine(1, 20);
    MSElementBuffer text;
    const Point3d origin = {10000, 0, 0};
    mdlText_create(&text, nullptr, "\"V1\"\x01", &origin, nullptr, nullptr, nullptr, 0);
    text.head.level = 7;  // which the file doesn't know
    mdlElement_add(&text);
    mdlSystem_closeDesignFile();

    EXPECT_THAT(shown("test.mcd"), AllOf(HasSubstr("design file, 2D, 10000 UOR in a master unit, 5 elements"),
                                         HasSubstr("extent 0,"), ContainsRegex(" 3 +0  line +\"R\u00f8r\"\n"),
                                         ContainsRegex(" 1 +0  line +\"Default\"\n"), ContainsRegex(" 1 +0  text +7\n"),
                                         ContainsRegex(" 3 +0 +2 +64  \"R\u00f8r\"\n"), Not(HasSubstr("V1"))));
    EXPECT_THAT(shown("test.mcd", "--full"),
                AllOf(ContainsRegex("line +\"Default\"  0,0 to 20,0.5\n"), HasSubstr("\"\\\"V1\\\"\\x01\"")));
}

TEST_F(Show, CellLibrariesShowTheirCellsWithTheirOwnUnitsAndLevels) {
    CellFile(1000).add(L"VALVE", L"A valve", 2, 4, L"Pipes").add(L"TEE").write(path("some.cel"));
    EXPECT_THAT(shown("some.cel"),
                AllOf(HasSubstr("cell library, 2D, 1000 UOR in a master unit, 2 cells"),
                      HasSubstr("\"VALVE\"  \"A valve\"  0,0 to 4,1, 2 elements\n"),
                      HasSubstr("\"TEE\"  0,0 to 10,0, 1 element\n"), ContainsRegex(" 0 +2  line +\"Pipes\"\n")));
    EXPECT_THAT(shown("some.cel", "--full"), ContainsRegex("line +\"Pipes\"  0,1 to 4,1\n"));
}

TEST_F(Show, ProjectAndPageRecordsOfEveryForm) {
    openDesignFile();
    mclibProsjektData project = {};
    std::strcpy(project.pron, "4711");
    std::strcpy(project.pros[1], "Granlia \xF8st");
    mclibProject_writeProjectInfoToDesignFile(&project);
    const std::string older("Sheet 1\0Water\0", 14), oldest = "8\n";
    FilePos position = 0;
    mclib66Elem_saveDataToFile(MCLIB_PAGE_DATA, 2, older.data(), 14, &position);
    mclib66Elem_saveDataToFile(MCLIB_PROJECT_DATA, 1, oldest.data(), 3, &position);
    mclib66Elem_saveDataToFile(MCLIB_PAGE_DATA, 9, older.data(), 14, &position);
    mclib66Elem_saveDataToFile(25, 4, older.data(), 3, &position);
    mdlSystem_closeDesignFile();

    const std::string text = shown("test.mcd");
    EXPECT_THAT(text, AllOf(HasSubstr("application 101 (project), sub id 3, "), ContainsRegex("pron +\"4711\"\n"),
                            HasSubstr("pros 2  \"Granlia \u00f8st\"\n"), Not(HasSubstr("pros 1  \"\""))));
    EXPECT_THAT(text, AllOf(HasSubstr("application 110 (page), sub id 2, 14 bytes"),
                            HasSubstr("pageName  \"Sheet 1\"\n"), HasSubstr("pros 1    \"Water\"\n")));
    EXPECT_THAT(text, HasSubstr("\"8\\x0a\""));
    EXPECT_THAT(text, HasSubstr("sub id 9, 14 bytes, at position 4 (a form of a newer make: 14 bytes: 53 68"));
    EXPECT_THAT(text,
                ContainsRegex("application 25, sub id 4, 4 bytes, at position 5\n +payload  4 bytes: 53 68 65 00"));
    EXPECT_THAT(shown("test.mcd", "--full"), AllOf(ContainsRegex("pros 1 +\"\"\n"), Not(HasSubstr("kopo 1"))));
}

// ---- resource files ----

TEST_F(Show, AttributeRecordsTellTheValuesThatApply) {
    mclibElmAttr_setGroupeNames(1, "Group", 3, 0);
    ElmAttrData data = {};
    data.color = 5;
    data.style = 1;
    data.weight = ATTR_BY_LEVEL;
    std::wcscpy(data.levelName, L"Pipes");
    data.useFlags = ATTR_USE_COLOR | ATTR_USE_WEIGHT | ATTR_USE_LEVEL;
    mclibElmAttr_addAttribute(12, "Pipe", 3, ATTR_KIND_SYMBOLOGY, ATTR_USE_COLOR, nullptr, 0, &data);
    ASSERT_EQ(mclibElmAttr_writeResource(file_.c_str()), MCLIB_SUCCESS);
    EXPECT_THAT(shown("some.rsc"),
                ContainsRegex("McA3 12 +1480  attribute 12: group 3, kind symbology, lockMask 0x0001, "
                              "color 5, weight by level, level \"Pipes\"\n"));
    EXPECT_THAT(shown("some.rsc", "--full"), AllOf(ContainsRegex("style +1\n"), ContainsRegex("useFlags +0x000d\n")));
    ASSERT_EQ(mclibElmAttr_writeResourceExtended(file_.c_str()), MCLIB_SUCCESS);
    EXPECT_THAT(shown("some.rsc"), AllOf(HasSubstr("ASNo 1           4  attribute set: records 1\n"),
                                         HasSubstr("ASNa 0          80  number 0 of a set: label \"Pipe\"\n"),
                                         HasSubstr("1480  number 0 of a set, attribute 12: group 3")));
}

TEST_F(Show, OlderAttributeRecordsAreReadByTheirOwnLayouts) {
    std::vector<uint8_t> older(1320), oldest(320);
    for (auto* record : {&older, &oldest}) {
        storeNumber(&(*record)[4], int32_t{ATTR_KIND_TEXT});
        storeNumber(&(*record)[8], int32_t{7});
        storeNumber(&(*record)[48], int32_t{33});
    }
    storeNumber(&older[1088], uint32_t{ATTR_USE_COLOR | ATTR_USE_FONT});
    storeNumber(&older[1176], int32_t{4});
    storeNumber(&oldest[68], uint32_t{ATTR_USE_LEVEL | ATTR_USE_SIZE});
    storeNumber(&oldest[60], int32_t{21});
    storeNumber(&oldest[168], 2.5);
    makeResourceFile();
    add(MDL_RSC_TYPE('M', 'c', 'A', '2'), 7, older);
    add(MDL_RSC_TYPE('A', 'S', 'D', 'a'), 0, oldest);
    EXPECT_THAT(resources(),
                AllOf(HasSubstr("1320  attribute 7: group 0, kind text, color 33, font 4\n"),
                      HasSubstr("320  number 0 of a set, attribute 7: group 0, kind text, level \"Level 21\", "
                                "width 2.5, height 0, lineSpacing 0\n")));
}

TEST_F(Show, RecordsOfThePreferenceFile) {
    mclibPrinterSetupData setup = {};
    setup.pageSize = 10;
    setup.pageWidth = 297;
    setup.pageHeight = 210;
    setup.deviceType = 5;
    setup.copies = 2;
    std::strcpy(setup.printerName, "LPT1");
    std::strcpy(setup.plotterFile, "c:\\pdf.plt");
    std::vector<uint8_t> bytes(print::setupSize), extent(forms::storedExtentSize);
    print::setupLayout(StoreFields(bytes), setup);
    storeNumber(&extent[0], int32_t{640});
    makeResourceFile("Preferences");
    add(print::SETUP_TYPE, 20002, bytes);
    add(print::OLDER_TYPE, 20001, std::span(bytes).first(print::olderSize));
    add(forms::extentType, 20001, extent);
    UserFileRecord files = {};
    files.marker = MDL_USER_FILE_MARKER;
    files.version = MDL_USER_FILE_VERSION;
    files.fileCount = 2;
    std::strcpy(files.fileName, "c:\\a.txt");
    std::strcpy(files.fileHistory[1], "c:\\b.txt");
    ASSERT_EQ(mdlUserPrefs_saveFileName(&files, handle_, 5), MDL_SUCCESS);
    mclibProsjektData project = {};
    std::strcpy(project.kost2, "third");
    add(project::projectType, 3, {reinterpret_cast<const uint8_t*>(&project), sizeof project});

    const std::string text = resources();
    EXPECT_THAT(text, HasSubstr("resource file \"Preferences\"\n"));
    EXPECT_THAT(text, HasSubstr("840  printer set-up: page A4 landscape, width 297, height 210, "));
    EXPECT_THAT(text, HasSubstr("device PCL, copies 2, printer \"LPT1\", plotterFile \"c:\\\\pdf.plt\"\n"));
    EXPECT_THAT(text, HasSubstr("584  printer set-up: page A4 landscape"));
    EXPECT_THAT(text, HasSubstr("size of the preview's window: width 640, height 0\n"));
    EXPECT_THAT(text, HasSubstr("11032  remembered files: file \"c:\\\\a.txt\", file 2 \"c:\\\\b.txt\"\n"));
    EXPECT_THAT(text, HasSubstr("1603  project: kost2 \"third\"\n"));
}

TEST_F(Show, WhatTheLibraryDoesNotKnowIsShownAsItIs) {
    makeResourceFile();
    const std::vector<uint8_t> some(20, 0xAB), cut(1479, 'x');
    add(MDL_RSC_TYPE('A', 'b', 'c', 1), -4, some, "mine");
    add(MDL_RSC_TYPE('M', 'c', 'A', '3'), 1, cut);
    StringList* list = mdlStringList_create(2, 1);
    const int32_t info = -7;
    mdlStringList_setMember(list, 1, "second", &info);
    mdlStringList_addResource(handle_, 40, list, "names");
    mdlStringList_destroy(list);
    const std::string text = resources("--full");
    EXPECT_THAT(text, ContainsRegex("0x41626301 -4 +20  \"mine\", 20 bytes:( ab){20}\n"));
    EXPECT_THAT(text, HasSubstr("a record that is cut short (1480 bytes belong to it, and 1479 are there)"));
    EXPECT_THAT(text, AllOf(HasSubstr("40          2 members, \"names\"\n"), HasSubstr("1  \"second\"  -7\n")));
    EXPECT_THAT(run(BUILD_DIR "/lib/mclib.rsc").output, AllOf(HasSubstr("strings in en no\n"), HasSubstr(" items\n")));
}

// ---- files that can't be shown ----

TEST_F(Show, FilesThatCannotBeShownAreToldAndTheOthersAreShown) {
    openDesignFile();
    addLine(1, 10);
    mdlSystem_closeDesignFile();
    const std::string whole = readFile("test.mcd");
    writeFile("note.txt", "hello");
    writeFile("head.mcd", whole.substr(0, 60));
    writeFile("cut.mcd", whole.substr(0, whole.size() - 3000));
    std::string newer = whole;
    newer[63] = 99;  // user_version
    writeFile("newer.mcd", newer);
    for (const auto& [name, why] : {std::pair{"note.txt", "this is no design file, cell library or resource file"},
                                    {"head.mcd", "or its beginning is missing"},
                                    {"cut.mcd", "damaged and was left as it is"},
                                    {"newer.mcd", "made by a newer version"},
                                    {"none.mcd", "No such file"}})
        EXPECT_THAT(refusal(name), AllOf(HasSubstr(name), HasSubstr(why))) << name;
    EXPECT_EQ(readFile("cut.mcd"), whole.substr(0, whole.size() - 3000));

    const Outcome both = run("'" + path("note.txt") + "' '" + path("test.mcd") + "'");
    EXPECT_EQ(both.status, 1);
    EXPECT_THAT(both.output, AllOf(HasSubstr("2D, 10000 UOR"), HasSubstr("1 of 2 files couldn't be shown")));
}

TEST_F(Show, ADamagedBlockHidesNoOther) {
    makeResourceFile();
    const std::vector<uint8_t> first(4, 1), second(8, 2);
    add(MDL_RSC_TYPE('A', 'S', 'N', 'o'), 1, first);
    add(forms::extentType, forms::extentId, second);
    mdlResource_closeFile(handle_);
    if (!canRun("sqlite3")) GTEST_SKIP() << "sqlite3 isn't there";
    shell("sqlite3 '" + file_ + "' \"UPDATE block SET data = x'02010101' WHERE type = 0x41534E6F\"");
    EXPECT_THAT(refusal("some.rsc"), AllOf(HasSubstr("resource \"ASNo\" 1 is damaged"),
                                           HasSubstr("ASNo 1  can't be read"), HasSubstr("width 33686018")));
}

TEST_F(Show, ResourceFilesThatAreCutNewerOrLackPartsAreTold) {
    makeResourceFile();
    StringList* list = mdlStringList_create(2, 0);
    mdlStringList_addResource(handle_, 40, list, "names");
    mdlStringList_destroy(list);
    mdlResource_closeFile(handle_);
    std::string whole = readFile("some.rsc");
    writeFile("cut.rsc", whole.substr(0, whole.size() / 2));
    whole[63] = 99;  // user_version
    writeFile("newer.rsc", whole);
    EXPECT_THAT(refusal("cut.rsc"), HasSubstr("damaged"));
    EXPECT_THAT(refusal("newer.rsc"), HasSubstr("a newer version"));
    if (!canRun("sqlite3")) GTEST_SKIP() << "sqlite3 isn't there";
    shell("sqlite3 '" + file_ + "' 'DELETE FROM member WHERE place = 1'");
    const Outcome lacking = run("--full '" + file_ + "'");
    EXPECT_EQ(lacking.status, 1);
    EXPECT_THAT(lacking.output, HasSubstr("the string list 40 lacks members"));
}

TEST_F(Show, ShowingChangesNothing) {
    openDesignFile();
    mdlSystem_closeDesignFile();
    makeResourceFile();
    mdlResource_closeFile(handle_);
    const std::string drawing = readFile("test.mcd"), resource = readFile("some.rsc");
    const Outcome outcome =
        run("'" + file_ + "' '" + path("test.mcd") + "'", "--set MS_USERPREF='" + path("own.rsc") + "'");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_EQ(readFile("test.mcd"), drawing);
    EXPECT_EQ(readFile("some.rsc"), resource);
    EXPECT_FALSE(std::filesystem::exists(path("own.rsc")));
}

TEST_F(Show, CallsThatCannotBeUnderstood) {
    for (const char* arguments : {"", "--full", "--all x.mcd"}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_THAT(outcome.output, HasSubstr("usage: mchost show")) << arguments;
    }
}

}  // namespace
