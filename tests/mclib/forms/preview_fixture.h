// An application with pages in the preview: what it was asked for, and the dialogs that the user works with.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "mchost/dialog/dialog.h"
#include "mchost/dialog/registry.h"
#include "mchost/front/scripted.h"
#include "mchost/mdl/element.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mclib/forms/preview.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"
#include "mclib/print/setup.h"
#include "mclib/project/store.h"
#include "tests/support/drawn.h"
#include "tests/support/library_fixture.h"

using namespace mc;

// A page as the test's application makes it: a frame of that size in UOR with the page's name in its lower left corner.
// Without a size no page is made.
struct TestPage {
    std::string name;
    double width, height;
};

// What the application's functions work on and what they were asked for; one for each test, which has a process of its
// own.
struct TestApplication {
    std::vector<TestPage> pages;
    std::vector<std::string> newList;
    std::vector<int> made, drawn;              // page numbers
    std::vector<std::string> currentNames;     // when they were made
    std::function<void(int page)> whileMade;   // what the application does beside making a page
    std::function<void(ElementDescr*)> addTo;  // what else stands on each page
};
inline TestApplication testApplication;

inline void appendFrame(ElementDescr** page, double width, double height) {
    MSElementBuffer element;
    const Point3d corners[] = {{0, 0, 0}, {width, 0, 0}, {width, height, 0}, {0, height, 0}, {0, 0, 0}};
    mdlLineString_create(&element, nullptr, corners, 5);
    mdlElmdscr_new(page, nullptr, &element);
}

inline void appendText(ElementDescr* page, const std::string& text) {
    MSElementBuffer element;
    const Point3d origin = {5000, 5000, 0};
    const TextSize size = {1, 4000, 4000, 1};
    mdlText_createWide(&element, nullptr, std::wstring(text.begin(), text.end()).c_str(), &origin, nullptr, &size,
                       nullptr, 0);
    mdlElmdscr_appendElement(page, &element);
}

inline void makeTestPage(int page, char* name, ElementDescr** result, int) {
    const TestPage& source = testApplication.pages[static_cast<size_t>(page)];
    testApplication.made.push_back(page);
    testApplication.currentNames.push_back(mclibMain_getGlobalDataP()->currentPageName);
    if (testApplication.whileMade) testApplication.whileMade(page);
    if (source.width <= 0) return;
    appendFrame(result, source.width, source.height);
    appendText(*result, name);
    if (testApplication.addTo) testApplication.addTo(*result);
}

inline int giveNewList(char** names) {
    for (size_t i = 0; i < testApplication.newList.size(); ++i) names[i] = testApplication.newList[i].data();
    return static_cast<int>(testApplication.newList.size());
}

inline void drawTestPage(int page) {
    testApplication.drawn.push_back(page);
}

class PreviewTest : public LibraryTest {
  protected:
    PreviewTest() {
        testApplication = {};
        front().answer = std::ref(answers);
        openDesignFile();
    }
    ~PreviewTest() override { EXPECT_EQ(answers.fault(), ""); }

    void openPreview(std::vector<TestPage> pages, int firstShown = 0) {
        testApplication.pages = std::move(pages);
        std::vector<char*> names;
        for (TestPage& page : testApplication.pages) names.push_back(page.name.data());
        preview = mclibPreview_dialogOpenExtended(static_cast<int>(names.size()), firstShown, names.data(),
                                                  makeTestPage, giveNewList);
        ASSERT_NE(preview, nullptr);
        dialog().refresh();
    }

    // An open dialog of that id.
    static std::shared_ptr<host::Dialog> openDialog(int32_t id) { return host::dialogOf(mdlDialog_find(id, nullptr)); }
    host::Dialog& dialog() { return *host::dialogOf(preview); }

    static size_t placeOf(const host::Dialog& dialog, int32_t kind, int32_t id) {
        return static_cast<size_t>(dialog.indexOf(kind, id));
    }
    static void press(host::Dialog& dialog, int32_t button) {
        EXPECT_TRUE(dialog.press(placeOf(dialog, ITEM_PUSH_BUTTON, button))) << button;
    }
    static void choose(host::Dialog& dialog, int32_t optionButton, int value) {
        EXPECT_TRUE(dialog.setValue(placeOf(dialog, ITEM_OPTION_BUTTON, optionButton), std::to_string(value)));
    }
    static std::string valueOf(const host::Dialog& dialog, int32_t kind, int32_t id) {
        return dialog.items()[placeOf(dialog, kind, id)].value;
    }
    // A value that dialogs reach.
    static void set(const char* access, const std::string& value) {
        EXPECT_EQ(mdlDialog_setAccessValue(access, value.c_str()), MDL_SUCCESS) << access;
    }
    static std::string get(const char* access) {
        char value[512] = "";
        EXPECT_EQ(mdlDialog_getAccessValue(value, sizeof value, access), MDL_SUCCESS) << access;
        return value;
    }

    // The next modal dialog is a box with one button; its text goes to `told`.
    void answerBox(int button = -3) {
        answers.check([this](host::Dialog& box) { told += textDrawnIn(box); }).press(button);
    }

    host::DialogScript answers;  // of the modal dialogs
    std::string told;            // by boxes
    MdlDialog* preview = nullptr;
};
