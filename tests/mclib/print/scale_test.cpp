// Plot scales: the list and its file, the active one and who hears of it, the dialog and the option button.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "mchost/dialog/dialog.h"
#include "mchost/dialog/menus.h"
#include "mchost/front/scripted.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/resource.h"
#include "mclib/print/scale.h"
#include "mclib/print/setup.h"
#include "mclib/print/shared.h"
#include "tests/support/library_fixture.h"

namespace {

using host::Dialog;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int32_t scales = 20010, choice = 20016;
enum { add = 0, removeEntry = 1, read = 2, save = 3, create = 4 };  // entries of the menu

std::vector<std::string> heard;  // by scale functions: who, before and after
template <char Who>
void hear(double before, double after) {
    heard.push_back(Who + std::to_string(static_cast<int>(before)) + ">" + std::to_string(static_cast<int>(after)));
}

std::vector<std::string> rows() {
    std::vector<std::string> all;
    for (int32_t row = 0; row < mdlListModel_rowCount(mcScaleP->scaleList); ++row)
        all.push_back(std::string(mdlListModel_getText(mcScaleP->scaleList, row, 0)) + "=" +
                      mdlListModel_getText(mcScaleP->scaleList, row, 1));
    return all;
}

// Two applications, the tester and another one, that hear of scales.
class PlotScales : public LibraryTest {
  protected:
    PlotScales() {
        heard.clear();
        front().answer = std::ref(script);
        mclibMain_setScaleFunction(hear<'t'>);
        session().startApplication("other", [](int argc, char** argv) {
            const int status = mclibMain_initMcLib("Other", argc, argv);
            mclibMain_setScaleFunction(hear<'o'>);
            return status;
        });
    }
    ~PlotScales() override { EXPECT_EQ(script.fault(), ""); }

    // A scale file; a name that begins with "*" is marked.
    std::string scaleFile(const char* name, const std::vector<std::string>& strings) {
        const std::string file = path(name);
        EXPECT_EQ(mdlResource_createFile(file.c_str(), "Plotscales", MDL_RSC_WRITE), MDL_SUCCESS);
        const mdl::StringListPtr list(mdlStringList_create(static_cast<int32_t>(strings.size()), 1));
        for (int32_t i = 0; i < mdlStringList_size(list.get()); ++i) {
            const std::string& text = strings[static_cast<size_t>(i)];
            const int32_t marked = text.starts_with('*');
            mdlStringList_setMember(list.get(), i, text.c_str() + marked, &marked);
        }
        McHandle handle{};
        EXPECT_EQ(mclibResource_openFile(&handle, file.c_str(), MDL_RSC_WRITE), MCLIB_SUCCESS);
        EXPECT_EQ(mclibResource_addStringList(&handle, 20001, list.get()), MCLIB_SUCCESS);
        mclibResource_closeFile(&handle);
        return file;
    }
    int readFrom(const std::string& file) {
        McHandle handle{};
        EXPECT_EQ(mclibResource_openFile(&handle, file.c_str(), MDL_RSC_READ), MCLIB_SUCCESS);
        const int status = mclibPlotScale_readSettings(&handle);
        mclibResource_closeFile(&handle);
        return status;
    }
    // Types into a cell of the dialog.
    void edit(int32_t row, int32_t column, const char* text) {
        script.selectRow(scales, row)
            .check([=](Dialog& d) {
                EXPECT_TRUE(d.activate(static_cast<size_t>(d.indexOf(ITEM_LIST_BOX, scales)), column));
            })
            .setValue(ITEM_LIST_BOX, scales, text);
    }
    void entry(int32_t row, size_t which) {
        script.selectRow(scales, row).check([=](Dialog& d) {
            EXPECT_TRUE(d.askForMenu(static_cast<size_t>(d.indexOf(ITEM_LIST_BOX, scales))));
            EXPECT_TRUE(d.choose(which));
        });
    }

    host::DialogScript script;
};

TEST_F(PlotScales, AListedScaleIsMadeActiveAndTold) {
    EXPECT_EQ(rows().size(), 15u);
    EXPECT_EQ(rows()[10], "1:500=500.000000");
    EXPECT_EQ(mclibPlotScale_setActiveScale(500, 1), MCLIB_SUCCESS);
    EXPECT_THAT(heard, ElementsAre("t1>500", "o1>500"));
    EXPECT_EQ(mcScaleP->activeIndex, 10);
    EXPECT_EQ(*mclibPlotScale_getActiveScaleP(), 500.0);
    heard.clear();
    EXPECT_EQ(mclibPlotScale_setActiveScale(500 + 1e-9, 1), MCLIB_SUCCESS);
    EXPECT_EQ(mclibPlotScale_setActiveScale(333, 1), MCLIB_ERROR);
    EXPECT_EQ(mclibPlotScale_setActiveScale(0.0 / 0.0, 1), MCLIB_ERROR);
    EXPECT_THAT(heard, IsEmpty());
    EXPECT_EQ(mcScaleP->activeIndex, 10);
    EXPECT_EQ(mclibPlotScale_setActiveScale(2, 0), MCLIB_SUCCESS);
    EXPECT_THAT(heard, ElementsAre("o500>2"));
}

TEST_F(PlotScales, AFileReplacesTheListAndMayMarkTheActiveOne) {
    mclibPlotScale_setActiveScale(500, 1);
    heard.clear();
    EXPECT_EQ(readFrom(scaleFile("a.rsc", {"*1:10", "10.5", "*fine", "0.25", "odd"})), MCLIB_SUCCESS);
    EXPECT_THAT(rows(), ElementsAre("1:10=10.5", "fine=0.25"));
    EXPECT_EQ(mcScaleP->activeIndex, 1);
    EXPECT_EQ(mcScaleP->activeScale, 0.25);
    EXPECT_THAT(heard, ElementsAre("o500>0"));
    heard.clear();
    EXPECT_EQ(readFrom(scaleFile("b.rsc", {"1:7", "7", "1:4", "0.25", "1:9", "9"})), MCLIB_SUCCESS);
    EXPECT_EQ(mcScaleP->activeIndex, 1) << "no row is marked";
    EXPECT_THAT(heard, IsEmpty());
    EXPECT_EQ(readFrom(scaleFile("c.rsc", {"1:7", "7", "*none", "1:abc", "1:0", "0"})), MCLIB_SUCCESS);
    EXPECT_EQ(mcScaleP->activeScale, 1.0);
    EXPECT_EQ(readFrom(scaleFile("d.rsc", {"*1:7", "7"})), MCLIB_SUCCESS);
    EXPECT_EQ(readFrom(scaleFile("e.rsc", {})), MCLIB_ERROR);
    EXPECT_THAT(rows(), ElementsAre("1:7=7"));
}

TEST_F(PlotScales, AListComesBackFromItsFileAsItWas) {
    mclibPlotScale_setActiveScale(200, 1);
    const std::vector<std::string> before = rows();
    const std::string file = scaleFile("s.rsc", {"1:3", "3"});
    McHandle handle{};
    ASSERT_EQ(mclibResource_openFile(&handle, file.c_str(), MDL_RSC_WRITE), MCLIB_SUCCESS);
    EXPECT_EQ(mclibPlotScale_saveSettings(&handle), MCLIB_SUCCESS);
    mclibResource_closeFile(&handle);
    mclibPlotScale_setActiveScale(2, 1);
    EXPECT_EQ(readFrom(file), MCLIB_SUCCESS);
    EXPECT_EQ(rows(), before);
    EXPECT_EQ(mcScaleP->activeIndex, 8);
    EXPECT_EQ(mcScaleP->activeScale, 200.0);
}

TEST_F(PlotScales, TheFirstApplicationTakesTheListOfTheNamedFile) {
    const std::string file = scaleFile("own.rsc", {"1:40", "40", "*1:75", "75"});
    mdlSystem_defineCfgVar("MC_PLOTSCALES", file.c_str(), 4);
    EXPECT_TRUE(mc::loadPlotScales());
    EXPECT_THAT(rows(), ElementsAre("1:40=40", "1:75=75"));
    EXPECT_EQ(mcScaleP->activeScale, 75.0);
    mdlListModel_destroy(std::exchange(mcScaleP->scaleList, nullptr));
    mdlSystem_defineCfgVar("MC_PLOTSCALES", scaleFile("empty.rsc", {}).c_str(), 4);
    EXPECT_TRUE(mc::loadPlotScales());
    EXPECT_EQ(rows().size(), 15u);
    EXPECT_EQ(mcScaleP->activeScale, 1.0);
    EXPECT_THAT(front().consoleText, HasSubstr("empty.rsc has no list of scales"));
}

TEST_F(PlotScales, CellsAreEditedByTheirRules) {
    struct Case {
        int32_t column;
        const char *text, *row;
    };
    const Case cases[] = {
        {0, "2:5", "2:5=2.500000"},       {0, "1:500", "1:500=500.000000"}, {0, "detail", "detail=500.000000"},
        {0, "1:abc", "1:abc=500.000000"}, {0, "0:5", "0:5=500.000000"},     {1, "12,5", "0:5=12.000000"},
        {1, " 12.5 mm", "0:5=12.500000"}, {1, "-3", "0:5=1.000000"},        {1, "", "0:5=1.000000"},
    };
    for (const Case& c : cases) {
        edit(3, c.column, c.text);
        script.check([=](Dialog&) { EXPECT_EQ(rows()[3], c.row); });
    }
    script.press(-3);
    mclibPlotScale_dialogOpen();
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(PlotScales, RowsAreAddedBehindTheirModelAndRemovedButForTheLast) {
    readFrom(scaleFile("three.rsc", {"2:5", "2.5", "*1:7", "7", "1:9", "9"}));
    heard.clear();
    entry(0, add);
    script.check([](Dialog&) {
        EXPECT_THAT(rows(), ElementsAre("2:5=2.5", "2:5=5.000000", "1:7=7", "1:9=9"));
        EXPECT_EQ(mcScaleP->activeIndex, 2);
    });
    entry(2, add);
    script.check([](Dialog&) { EXPECT_EQ(mcScaleP->activeIndex, 2); });
    for (int32_t i = 0; i < 6; ++i) entry(0, removeEntry);
    script.check([](Dialog&) { EXPECT_THAT(rows(), ElementsAre("1:9=9")); }).press(-3);
    mclibPlotScale_dialogOpen();
    EXPECT_EQ(mcScaleP->activeIndex, -1);
    EXPECT_EQ(mcScaleP->activeScale, 1.0);
    EXPECT_THAT(heard, ElementsAre("t7>1", "o7>1"));
}

TEST_F(PlotScales, FilesAreMadeSavedAndReadInTheDialog) {
    const std::string file = path("made.rsc");
    front().files.answer(file).answer(file).answer(file).answer(path("drive_c/none.rsc"));
    edit(0, 0, "1:3");
    entry(0, create);
    entry(0, save);
    edit(0, 0, "1:4");
    entry(0, read);
    script.check([](Dialog& d) {
        EXPECT_EQ(rows()[0], "1:3=3.000000");
        EXPECT_EQ(Dialog::cellText(d.items().at(static_cast<size_t>(d.indexOf(ITEM_LIST_BOX, scales))), 0, 0), "1:3");
    });
    script.press(-3);
    mclibPlotScale_dialogOpen();
    ASSERT_EQ(front().files.questions.size(), 3u);
    EXPECT_EQ(front().files.questions[0].title, "New plot scale file");
    EXPECT_EQ(front().files.questions[1].title, "Save plot scales");
    EXPECT_EQ(front().files.questions[2].filter, "*.rsc");
}

TEST_F(PlotScales, TheOptionButtonOfADialogFollowsAndSetsTheScale) {
    MdlDialog* const dialog = mdlDialog_open(0, 20006);
    const auto shown = host::openDialogs().at(0);
    const auto button = static_cast<size_t>(shown->indexOf(ITEM_OPTION_BUTTON, choice));
    EXPECT_EQ(shown->items()[button].rows.size(), 15u);
    mclibPlotScale_setActiveScale(100, 0);
    EXPECT_EQ(shown->items()[button].value, "7");
    heard.clear();
    EXPECT_TRUE(shown->setValue(button, "10"));
    EXPECT_THAT(heard, ElementsAre("t100>500", "o100>500"));
    EXPECT_EQ(mcScaleP->activeScale, 500.0);
    entry(0, removeEntry);
    script.press(-3);
    mclibPlotScale_dialogOpen();
    EXPECT_EQ(shown->items()[button].rows.size(), 14u);
    EXPECT_EQ(shown->items()[button].value, "9");
    mdlWindow_close(dialog, 0, 1);
}

}  // namespace
