// The example forms, filled with values of the lengths that their README tells.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/view.h"
#include "mclib/forms/forms.h"
#include "tests/support/library_fixture.h"

namespace {

constexpr int nameLength = 4, rowCount = 28;

class ExampleForms : public LibraryTest {
  protected:
    ExampleForms() {
        openDesignFile();
        mdlSystem_defineCfgVar("MC_CELL", BUILD_DIR "/lib/cell", 4);
        form = mclibMatList_createFormDataArray(nameLength, rowCount);
    }
    ~ExampleForms() override {
        mdlElmdscr_freeAll(&page);
        mclibMatList_destroyFormDataArray(form);
    }

    void text(const char* name, int row, const char* value) {
        EXPECT_EQ(mclibMatList_insertValue(form, name, MCLIB_FORM_TEXT, row, value), 0) << name;
    }
    void fillRows() {
        for (int row = 0; row < rowCount; ++row) {
            text("MARK", row, "VK 12.4");
            text("DESC", row, "Gate valve with flanges, long type");
            text("DIME", row, "DN 200 x 150");
            text("MATL", row, "Ductile iron GGG 400");
            text("NUMB", row, "1234.50");
            text("UNIT", row, "pcs");
            text("MASS", row, "1234.56");
            text("TOTM", row, "123456.78");
            text("NOTE", row, "Standard 558 part 2, face to face F4, drilled");
        }
        text("SUMM", 0, "1234567.8");
        text("SUMM", 1, "12345678.9");
    }
    void fillPage() {
        mclibMatList_insertValue(form, "page", MCLIB_FORM_INTEGER, 0, 12);
        mclibMatList_insertValue(form, "pags", MCLIB_FORM_INTEGER, 0, 34);
        mclibMatList_insertSystemData(form);
        mclibMatList_insertLogo(form);
        text("pron", 0, "2006-1234");
        for (int row = 0; row < 5; ++row) text("pros", row, "New water main Nordvik to S\xf8rstrand");
        for (int row = 0; row < 5; ++row) text("kost", row, row < 3 ? "Nordvik municipality, water" : "Nordvik 12");
        for (int row = 0; row < 10; ++row) text("tegn", row, "Pipes and fittings, km 0.0 to 2.4");
        for (int row = 0; row < 20; ++row) text("kopo", row, "Contractor, site");
        for (const char* name : {"UNav", "RNav", "SNav"}) text(name, 0, "K. Nordmann");
        for (const char* name : {"USig", "RSig", "SSig"}) text(name, 0, "KN");
        for (const char* name : {"UDat", "RDat", "SDat"}) text(name, 0, "24.11.06");
        text("revs", 0, "B");
    }
    void makePage(const char* cell) {
        mdlElmdscr_freeAll(&page);
        ASSERT_EQ(mclibMatList_generatePageElementDescr(cell, "forms.cel", &page, form, 1), 0);
        if (const char* folder = std::getenv("FORM_PICTURES"))  // for people who want to see them
            mdlPicture_write((std::string(folder) + "/" + cell + ".png").c_str(), page, nullptr, 300, 150);
    }

    struct Text {
        std::string text;
        Range3d box;
    };
    // All texts of the page that aren't part of a cell in it.
    std::vector<Text> texts() const {
        std::vector<Text> found;
        for (const ElementDescr* node = page->firstChild; node; node = node->next) {
            Text t;
            char narrow[256];
            if (mdlText_extract(nullptr, nullptr, nullptr, nullptr, narrow, nullptr, nullptr, nullptr, nullptr, nullptr,
                                node->element) != MDL_SUCCESS)
                continue;
            t.text = narrow;
            Point3d box[5];
            mdlText_extractShape(box, nullptr, node->element, 0, 0);
            t.box = {box[0], box[2]};
            found.push_back(t);
        }
        return found;
    }

    FormData* form = nullptr;
    ElementDescr* page = nullptr;
};

bool meet(const Range3d& a, const Range3d& b) {
    return a.low.x < b.high.x && b.low.x < a.high.x && a.low.y < b.high.y && b.low.y < a.high.y;
}

TEST_F(ExampleForms, FilledTextsKeepClearOfEachOtherAndOfTheEdge) {
    struct Case {
        const char* cell;
        double width, height;
    };
    fillRows();
    fillPage();
    for (const Case& c : {Case{"MATLIST-A4", 180, 277}, Case{"MATLIST-A3", 390, 277}, Case{"TITLEBLOCK", 180, 70}}) {
        SCOPED_TRACE(c.cell);
        makePage(c.cell);
        Point3d low, high;
        ASSERT_EQ(mdlElmdscr_computeRange(&low, &high, page, nullptr), MDL_SUCCESS);
        EXPECT_NEAR(high.x - low.x, c.width * 10000, 1);
        EXPECT_NEAR(high.y - low.y, c.height * 10000, 1);
        std::vector<Text> all = texts();
        std::erase_if(all, [](const Text& text) { return text.text == " "; });  // a field without a value
        for (size_t i = 0; i < all.size(); ++i) {
            EXPECT_EQ(all[i].text.find('%'), std::string::npos) << all[i].text;
            for (size_t k = 0; k < i; ++k)
                EXPECT_FALSE(meet(all[i].box, all[k].box)) << all[i].text << " | " << all[k].text;
        }
    }
    EXPECT_TRUE(front().messages.empty());
}

TEST_F(ExampleForms, AnEmptyPageShowsTheFormAlone) {
    for (const char* cell : {"MATLIST-A4", "MATLIST-A3", "TITLEBLOCK"}) {
        makePage(cell);
        for (const Text& t : texts()) EXPECT_EQ(t.text.find('%'), std::string::npos) << t.text;
    }
    EXPECT_EQ(front().dialogs, 0);  // no code names a row beyond the array
}

TEST_F(ExampleForms, TheLogoStandsInItsBox) {
    fillPage();
    makePage("MATLIST-A4");
    int cells = 0;
    for (const ElementDescr* node = page->firstChild; node; node = node->next) {
        if (mdlElement_getType(node->element) != MDL_CELL_HEADER) continue;
        ++cells;
        Point3d low, high;
        mdlElmdscr_computeRange(&low, &high, node->firstChild, nullptr);
        EXPECT_GE(low.x, 30000 - 1);
        EXPECT_LE(high.x, 450000 + 1);
        EXPECT_GE(low.y, 2600000 - 1);
        EXPECT_LE(high.y, 2740000 + 1);
    }
    EXPECT_EQ(cells, 1);
}

}  // namespace
