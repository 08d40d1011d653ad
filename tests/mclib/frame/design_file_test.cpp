// What a new design file changes, and what dialogs of an application get from the library.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/resource/container.h"
#include "mclib/frame/main.h"
#include "mclib/frame/util.h"
#include "tests/support/session_fixture.h"

namespace {

enum { PROJECT_DIALOG = 20008, ATTRIBUTE_DIALOG = 20013, NUMBER_ITEM = 1, OTHER_ITEM = 2 };

host::ItemLayout textItem(int32_t id, const char* access, const char* format) {
    host::ItemLayout item;
    item.kind = ITEM_TEXT;
    item.id = id;
    item.width = 100;
    item.height = 20;
    item.access = access;
    item.format = format;
    return item;
}

// An application with a resource file that has the two dialogs.
class DesignFile : public SessionTest {
  protected:
    DesignFile() : SessionTest({{"MC_DIR", "c:\\mc\\"}}) {
        host::ResourceContents contents;
        for (const int32_t id : {PROJECT_DIALOG, ATTRIBUTE_DIALOG}) {
            host::DialogLayout dialog;
            dialog.id = id;
            dialog.width = dialog.height = 200;
            dialog.items = {textItem(NUMBER_ITEM, "mgdP->pageScale", "%8.2f"),
                            textItem(OTHER_ITEM, "mclibpd->pron", "")};
            contents.dialogs.emplace(id, dialog);
        }
        host::writeContainer(path("own.rsc"), contents);
        mdlSystem_defineCfgVar("MS_APPRSC", path("own.rsc").c_str(), 4);
    }
    MdlDesc* start(const char* name) {
        return session().startApplication(
            name, [](int argc, char** argv) { return mclibMain_initMcLib(argv[0], argc, argv); });
    }
    void openDesignFile(const char* name) {
        ASSERT_EQ(mdlSystem_createDesignFile(path(name).c_str(), 1), MDL_SUCCESS);
        ASSERT_EQ(mdlSystem_newDesignFile(path(name).c_str(), 0), MDL_SUCCESS);
    }
};

TEST_F(DesignFile, ClosesTheAttributeDialogAndBringsTheProjectDialogUpToDate) {
    MdlDesc *roads = start("Roads"), *rails = start("Rails");
    ASSERT_EQ(mdlDialog_setAccessValue("mclibpd->pron", "E39"), MDL_SUCCESS);  // of the file before
    {
        const host::ApplicationScope scope(rails);
        ASSERT_NE(mdlDialog_open(0, ATTRIBUTE_DIALOG), nullptr);
        ASSERT_NE(mdlDialog_open(0, PROJECT_DIALOG), nullptr);
    }
    MdlDialog* project = mdlDialog_find(PROJECT_DIALOG, nullptr);
    const host::ApplicationScope scope(roads);
    mclibMain_newDesignFile(nullptr, 0);
    EXPECT_NE(mdlDialog_find(ATTRIBUTE_DIALOG, nullptr), nullptr);
    EXPECT_STREQ(mdlDialog_itemGetValue(mdlDialog_itemGetByTypeAndId(project, ITEM_TEXT, OTHER_ITEM)), "E39");
    mclibMain_newDesignFile(nullptr, 1);
    EXPECT_EQ(mdlDialog_find(ATTRIBUTE_DIALOG, nullptr), nullptr);
    EXPECT_STREQ(mdlDialog_itemGetValue(mdlDialog_itemGetByTypeAndId(project, ITEM_TEXT, OTHER_ITEM)), "");
}

TEST_F(DesignFile, LeavesTheActiveLineStyleAsItWas) {
    openDesignFile("a.mcd");
    const double dashes[] = {2.0, 1.0};
    int32_t number = 0;
    ASSERT_EQ(mdlLineStyle_define(&number, mdlModelRef_getActive(), "Kerb", dashes, 2), MDL_SUCCESS);
    const int32_t chosen = 3;
    mdlParams_setActive(&chosen, MDL_PARAM_STYLE);
    const host::ApplicationScope scope(start("Roads"));
    mclibMain_newDesignFile(nullptr, 1);
    int32_t active = -1;
    mdlParams_getActive(&active, MDL_PARAM_STYLE);
    EXPECT_EQ(active, chosen);
}

std::string formatOf(MdlItem* item) {
    char format[32] = "";
    mdlDialog_textGetInfo(format, item);
    return format;
}

TEST_F(DesignFile, NumbersInTextItemsTakeTheDecimalsOfTheReadout) {
    const host::ApplicationScope scope(start("Roads"));
    MdlDialog* dialog = mdlDialog_open(0, PROJECT_DIALOG);
    ASSERT_NE(dialog, nullptr);
    MdlItem* number = mdlDialog_itemGetByTypeAndId(dialog, ITEM_TEXT, NUMBER_ITEM);
    struct Case {
        const char* before;
        unsigned char readoutFormat;
        const char *after, *value;
    };
    constexpr Case cases[] = {{"%8.2f", 4, "%8.3f", "   1.000"},
                              {"%.3f", 0, "%.4f", "1.0000"},
                              {"%.4f", 5, "%.4f", "1.0000"},
                              {"%d", 4, "%d", "1"}};
    for (const Case& c : cases) {
        ASSERT_EQ(mdlDialog_textSetInfo(number, c.before), MDL_SUCCESS);
        tcbP->readoutFormat = c.readoutFormat;
        mclibUtil_setActiveDecimalNumberInTextItem(number);
        EXPECT_EQ(formatOf(number), c.after);
        mdlDialog_itemSynch(number);
        EXPECT_STREQ(mdlDialog_itemGetValue(number), c.value);
    }
    mclibUtil_setActiveDecimalNumberInTextItem(nullptr);
}

TEST_F(DesignFile, MasterUnitsAreThoseOfTheActiveModel) {
    openDesignFile("a.mcd");
    const host::ApplicationScope scope(start("Roads"));
    const double* uor = mclibUtil_masterToUORP(2.5);
    EXPECT_EQ(*uor, 2.5 * mdlModelRef_getUorPerMaster(mdlModelRef_getActive()));
    EXPECT_EQ(mclibUtil_UORToMasterP(*uor), uor);
    EXPECT_EQ(*uor, 2.5);
}

}  // namespace
