// Forms filled: a page from a cell, the texts of a model, logos and callbacks in place of texts.
#include <cmath>
#include <cstring>
#include <map>
#include <string>

#include "mchost/mdl/cell.h"
#include "mchost/mdl/dialog.h"
#include "mchost/mdl/modify.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mchost/model/cell_library.h"
#include "mclib/forms/forms.h"
#include "mclib/geometry/elmdscr.h"
#include "mclib/mclib.h"
#include "tests/support/library_fixture.h"

namespace {

constexpr double uor = 1000;

struct Words {
    std::string text;
    Point3d origin;
    uint32_t level, color;
};

// The texts of a descriptor, those in headers too.
std::vector<Words> wordsOf(ElementDescr* ed) {
    std::vector<Words> words;
    mdlElmdscr_operation(
        ed,
        [](MSElementBuffer* element, void* list, int32_t, int32_t, ElementDescr*) {
            if (mdlElement_getType(element) != MDL_TEXT) return 0;
            char text[MDL_TEXT_CHARACTERS + 1];
            Words found{};
            mdlText_extractString(text, element);
            mdlText_extractWide(nullptr, &found.origin, nullptr, nullptr, nullptr, element);
            mdlElement_getProperties(&found.level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                     element);
            mdlElement_getSymbology(&found.color, nullptr, nullptr, element);
            found.text = text;
            static_cast<std::vector<Words>*>(list)->push_back(found);
            return 0;
        },
        &words, 1);
    return words;
}

std::string joined(const std::vector<Words>& words) {
    std::string all;
    for (const Words& w : words) all += w.text + '|';
    return all;
}

void makeText(MSElementBuffer* out, const char* text, double x, double y, uint32_t color = 3) {
    const Point3d origin{x, y, 0};
    const TextSize size{1, 2 * uor, 3 * uor, 0};
    const TextParams params{0, 2, -1, -1, 0, 0, 0};
    mdlText_create(out, nullptr, text, &origin, nullptr, &size, &params, 0);
    mdlElement_setSymbology(out, &color, nullptr, nullptr);
}

// Libraries in a folder that MC_CELL names: form.cel with the cells that a test gives it, logo.cel with a square.
class Filling : public LibraryTest {
  protected:
    Filling() {
        openDesignFile();
        mdlSystem_defineCfgVar("MC_CELL", path("").c_str(), 4);
        form_ = mclibMatList_createFormDataArray(4, 8);
        mclibMatList_insertValue(form_, "DESC", MCLIB_FORM_TEXT, 2, "Bolt");
        mclibMatList_insertValue(form_, "MASS", MCLIB_FORM_FLOAT, 0, 12.5);
    }
    ~Filling() override {
        mclibMatList_destroyFormDataArray(form_);
        mdlElmdscr_freeAll(&page_);
        mdlCell_detachLibrary();
    }

    // A sheet of 200 by 100 master units with the texts on it, one below the other.
    void makeForm(const std::vector<std::string>& texts, double width = 200, double height = 100) {
        host::CellLibraryDraft draft(uor);
        mdlCell_create(dgnBufP, L"LIST", nullptr, 0);
        ElementDescr* cell = nullptr;
        mdlElmdscr_new(&cell, nullptr, dgnBufP);
        const Point3d sheet[] = {{0, 0, 0}, {width * uor, 0, 0}, {width * uor, height * uor, 0}, {0, height * uor, 0}};
        if (width > 0) mdlShape_create(dgnBufP, nullptr, sheet, 4, 0), mdlElmdscr_appendElement(cell, dgnBufP);
        double y = 90 * uor;
        for (const std::string& text : texts) {
            makeText(dgnBufP, text.c_str(), 10 * uor, y);
            mdlElmdscr_appendElement(cell, dgnBufP);
            y -= 10 * uor;
        }
        EXPECT_TRUE(draft.add(cell));
        mdlElmdscr_freeAll(&cell);
        draft.write(path("form.cel"));
    }
    void makeLogo(const wchar_t* name, const char* file) {
        host::CellLibraryDraft draft(uor);
        mdlCell_create(dgnBufP, name, nullptr, 0);
        ElementDescr* cell = nullptr;
        mdlElmdscr_new(&cell, nullptr, dgnBufP);
        const Point3d square[] = {{0, 0, 0}, {50, 0, 0}, {50, 50, 0}, {0, 50, 0}};
        mdlShape_create(dgnBufP, nullptr, square, 4, 0);
        mdlElmdscr_appendElement(cell, dgnBufP);
        EXPECT_TRUE(draft.add(cell));
        mdlElmdscr_freeAll(&cell);
        draft.write(path(file));
    }
    static void setUp(const std::string& field, const char* value) {
        EXPECT_EQ(mdlDialog_setAccessValue(("mclibpsd->" + field).c_str(), value), MDL_SUCCESS);
    }
    int fill(FormData* form) {
        mdlElmdscr_freeAll(&page_);
        return mclibMatList_generatePageElementDescr("LIST", "form.cel", &page_, form, 1);
    }
    // The texts of a filled page.
    std::string filled(const std::vector<std::string>& texts) {
        makeForm(texts);
        mdlCell_detachLibrary();
        EXPECT_EQ(fill(form_), 0);
        return joined(wordsOf(page_));
    }

    FormData* form_;
    ElementDescr* page_ = nullptr;
};

TEST_F(Filling, PageHasTheValuesInThePlaceOfTheCodes) {
    mclibMatList_insertValue(form_, "VOID", MCLIB_FORM_TEXT, 0, "");
    EXPECT_EQ(filled({"Heading", "100%%", "%03%DESC", "%01%8.2MASS kg", "%05%DESC", "%01%VOID", "%01%NONE"}),
              "Heading|100%|Bolt|   12.50 kg| | | |");
    const Words bolt = wordsOf(page_)[2];
    EXPECT_EQ(bolt.color, 3u);
    EXPECT_EQ(bolt.origin.x, 10 * *mclibUtil_masterToUORP(1));
}

TEST_F(Filling, TextWithABadRowStaysAsItWas) {
    front().answer = [](host::Dialog&) { return false; };
    EXPECT_EQ(filled({"%09%DESC", "%03%DESC"}), "%09%DESC|Bolt|");
    EXPECT_EQ(front().dialogs, 1);
}

TEST_F(Filling, NullFormLeavesBlanks) {
    makeForm({"Heading", "%03%DESC"});
    ASSERT_EQ(fill(nullptr), 0);
    EXPECT_EQ(joined(wordsOf(page_)), " | |");
}

TEST_F(Filling, MissingLibraryOrCell) {
    ElementDescr* page = reinterpret_cast<ElementDescr*>(this);
    EXPECT_EQ(mclibMatList_generatePageElementDescr("LIST", "nowhere.cel", &page, form_, 1), -2);
    EXPECT_EQ(page, nullptr);
    makeForm({});
    for (int times = 0; times < 2; ++times)
        EXPECT_EQ(mclibMatList_generatePageElementDescr("OTHER", "form.cel", &page, form_, 1), -1);
    ASSERT_EQ(front().messages.size(), 2u) << "of the library that isn't there, and once of the cell";
    EXPECT_NE(front().messages[1].brief.find("\"OTHER\" isn't in the library " + path("")), std::string::npos)
        << front().messages[1].brief;
    EXPECT_EQ(page, nullptr);
}

TEST_F(Filling, ValueOfSeveralLinesBecomesATextNode) {
    mclibMatList_insertValue(form_, "NOTE", MCLIB_FORM_TEXT, 0, "Galvanised\r\n\nSee drawing 12");
    EXPECT_EQ(filled({"%01%NOTE"}), "Galvanised| |See drawing 12|");
    const std::vector<Words> lines = wordsOf(page_);
    const double unit = *mclibUtil_masterToUORP(1), step = 3 + 2 / 2.0;  // text height and half a character's width
    for (size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i].color, 3u);
        EXPECT_NEAR(lines[i].origin.x, 10 * unit, 1e-6);
        EXPECT_NEAR(lines[i].origin.y, (90 - step * static_cast<double>(i)) * unit, 1e-6);
    }
    EXPECT_EQ(mdlElement_getType(page_->firstChild->next->element), MDL_TEXT_NODE);
}

TEST_F(Filling, TooLongLinesAreCutAndTold) {
    mclibMatList_insertValue(form_, "NOTE", MCLIB_FORM_TEXT, 0, std::string(400, 'x').c_str());
    EXPECT_EQ(filled({"%01%NOTE"}), std::string(255, 'x') + '|');
    EXPECT_NE(front().consoleText.find("255"), std::string::npos);
    mclibMatList_insertValue(form_, "NOTE", MCLIB_FORM_TEXT, 0, (std::string(300, 'x') + "\nshort").c_str());
    front().consoleText.clear();
    EXPECT_EQ(filled({"%01%NOTE"}), std::string(255, 'x') + "|short|");
    EXPECT_NE(front().consoleText.find("255"), std::string::npos);
}

TEST_F(Filling, PageScaleFillsThePrintableArea) {
    makeForm({"%03%DESC"});
    EXPECT_EQ(*mclibMatList_getCurrentPageScaleP(), 1.0);
    setUp("pageWidth", "297"), setUp("pageHeight", "210");
    setUp("marginLeft", "10"), setUp("marginRight", "17"), setUp("marginTop", "5"), setUp("marginBottom", "15");
    ASSERT_EQ(fill(form_), 0);
    EXPECT_NEAR(*mclibMatList_getCurrentPageScaleP(), 270.0 / 200, 1e-9);
    setUp("pageHeight", "90");
    ASSERT_EQ(fill(form_), 0);
    EXPECT_NEAR(*mclibMatList_getCurrentPageScaleP(), 70.0 / 100, 1e-9);
    setUp("pageHeight", "10");  // less than its margins
    ASSERT_EQ(fill(form_), 0);
    EXPECT_EQ(*mclibMatList_getCurrentPageScaleP(), 1.0);
    makeForm({}, 0, 0);  // no extent
    mdlCell_detachLibrary();
    setUp("pageHeight", "210");
    ASSERT_EQ(fill(form_), 0);
    EXPECT_EQ(*mclibMatList_getCurrentPageScaleP(), 1.0);
}

TEST_F(Filling, LogoFillsTheBoxOfItsText) {
    makeLogo(L"LOGO", "logo.cel");
    ASSERT_EQ(mclibMatList_insertLogo(form_), 0);
    EXPECT_EQ(filled({"%LOGO", "%03%DESC"}), "Bolt|");
    ElementDescr* logo = page_->firstChild->next;
    ASSERT_EQ(mdlElement_getType(logo->element), MDL_CELL_HEADER);
    Point3d range[2];
    ElementDescr* shape = nullptr;
    mdlElmdscr_duplicate(&shape, logo->firstChild);
    ASSERT_EQ(mclibElemDscr_getRange(range, shape), 0);
    mdlElmdscr_freeAll(&shape);
    const double unit = *mclibUtil_masterToUORP(1);
    EXPECT_NEAR(range[1].y - range[0].y, 3 * unit, 1e-3 * unit);  // as high as the text, and square
    EXPECT_NEAR(range[1].x - range[0].x, 3 * unit, 1e-3 * unit);
    EXPECT_NEAR(range[0].y, 90 * unit, 1e-3 * unit);
    EXPECT_GT(range[0].x, 10 * unit);  // in the middle of the wider text
}

TEST_F(Filling, LogoThatCanNotBeHadIsABlank) {
    ASSERT_EQ(mclibMatList_insertLogoExt(form_, "MARK", "none.cel"), 0);
    EXPECT_EQ(filled({"%LOGO", "%03%DESC"}), " |Bolt|");
    makeLogo(L"OTHER", "none.cel");
    EXPECT_EQ(filled({"%LOGO", "%03%DESC"}), " |Bolt|");
    makeLogo(L"MARK", "none.cel");
    mdlCell_detachLibrary();
    EXPECT_EQ(filled({"%LOGO", "%03%DESC"}), "Bolt|");
}

MdlDesc* calledFor;
int calledArg;
int makeLine(int, char*, ElementDescr** newDescr, int userArg, double width, double) {
    calledFor = mdlSystem_getCurrMdlDesc();
    calledArg = userArg;
    const Point3d ends[] = {{0, 0, 0}, {width, 0, 0}};
    mdlLine_create(dgnBufP, nullptr, ends);
    mdlElmdscr_new(newDescr, nullptr, dgnBufP);
    return 0;
}

TEST_F(Filling, ApplicationDrawsInPlaceOfATextThroughTheHost) {
    mclibMatList_insertValue(form_, "SIGN", MCLIB_FORM_CALLBACK, 0, makeLine, int32_t{-5}, int32_t{0});
    EXPECT_EQ(filled({"%SIGN", "%03%DESC"}), "Bolt|");
    EXPECT_EQ(calledFor, application("tester"));
    EXPECT_EQ(calledArg, -5);
    EXPECT_EQ(mdlElement_getType(page_->firstChild->next->element), MDL_LINE);
}

int addField(int, char*, ElementDescr**, int form, double, double);
FormData* growing;
int addField(int, char*, ElementDescr**, int, double, double) {
    mclibMatList_insertValue(growing, "LATE", MCLIB_FORM_TEXT, 0, "here");
    return 0;
}

TEST_F(Filling, FieldThatACallbackAddsIsSeenByTheTextsBehindIt) {
    growing = form_;
    mclibMatList_insertValue(form_, "GROW", MCLIB_FORM_CALLBACK, 0, addField, int32_t{0}, int32_t{1});
    EXPECT_EQ(filled({"%LATE", "%GROW", "%LATE"}), " | |here|");
}

TEST_F(Filling, ExportMakesNoPage) {
    makeForm({"%03%DESC"});
    mclibMatList_setExportToExcel(1);
    EXPECT_EQ(fill(nullptr), 32768);
    EXPECT_EQ(front().consoleText, "");
    EXPECT_EQ(fill(form_), 32768);
    EXPECT_EQ(page_, nullptr);
    EXPECT_NE(front().consoleText.find("spreadsheet"), std::string::npos);
    mclibMatList_setExportToExcel(0);
    EXPECT_EQ(fill(form_), 0);
}

// ---- models ----

std::string wordsInModel(FilePos position) {
    ElementDescr* ed = nullptr;
    if (!mdlElmdscr_read(&ed, position, nullptr)) return "gone";
    const std::string words = joined(wordsOf(ed));
    mdlElmdscr_freeAll(&ed);
    return words;
}

TEST_F(Filling, TextsOfAModelAreFilledOnTheLevelsOfTheMask) {
    const auto addText = [](const char* text, uint32_t level) {
        makeText(dgnBufP, text, 0, 0);
        mdlElement_setProperties(dgnBufP, &level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
        return mdlElement_add(dgnBufP);
    };
    const FilePos one = addText("%03%DESC", 1), two = addText("%03%DESC", 2), plain = addText("plain", 1);
    mdlCell_create(dgnBufP, L"TITLE", nullptr, 0);
    ElementDescr* title = nullptr;
    mdlElmdscr_new(&title, nullptr, dgnBufP);
    for (const uint32_t level : {1u, 2u}) {
        makeText(dgnBufP, "%01%.1MASS", 0, 0);
        mdlElement_setProperties(dgnBufP, &level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
        mdlElmdscr_appendElement(title, dgnBufP);
    }
    const FilePos cell = mdlElmdscr_add(title);
    mdlElmdscr_freeAll(&title);

    MdlBitMask* levels = mdlBitMask_create();
    mdlBitMask_setBit(levels, 1, 1);  // level 2
    EXPECT_EQ(mclibMatList_changeTextInMasterFile(form_, levels, mdlModelRef_getActive()), 0);
    mdlBitMask_free(&levels);
    EXPECT_EQ(wordsInModel(one), "%03%DESC|");
    EXPECT_EQ(wordsInModel(two), "Bolt|");
    EXPECT_EQ(wordsInModel(cell), "%01%.1MASS|12.5|");
    EXPECT_EQ(mclibMatList_changeTextInMasterFile(form_, nullptr, nullptr), 0);
    EXPECT_EQ(wordsInModel(one), "Bolt|");
    EXPECT_EQ(wordsInModel(cell), "12.5|12.5|");
    EXPECT_EQ(wordsInModel(plain), "plain|");
}

TEST_F(Filling, TextsOfAModelBecomeNodesAndPiecesOfDrawing) {
    mclibMatList_insertValue(form_, "NOTE", MCLIB_FORM_TEXT, 0, "one\ntwo");
    mclibMatList_insertValue(form_, "SIGN", MCLIB_FORM_CALLBACK, 0, makeLine, int32_t{0}, int32_t{1});
    makeText(dgnBufP, "%NOTE", 0, 0);
    const FilePos note = mdlElement_add(dgnBufP);
    makeText(dgnBufP, "%SIGN", 0, 0);
    const FilePos sign = mdlElement_add(dgnBufP);
    EXPECT_EQ(mclibMatList_changeTextInMasterFile(form_, nullptr, nullptr), 0);
    EXPECT_EQ(wordsInModel(note), "one|two|");
    mdlElement_read(dgnBufP, nullptr, sign);
    EXPECT_EQ(mdlElement_getType(dgnBufP), MDL_LINE);
}

}  // namespace
