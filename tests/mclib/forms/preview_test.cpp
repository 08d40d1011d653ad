// The preview's window: pages on their sheet, the choice of a page, new lists, its size.
#include <chrono>
#include <cstring>

#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "mclib/frame/global_data.h"
#include "tests/mclib/forms/preview_fixture.h"

using namespace mc;

namespace {

using host::DrawnFill;
using host::ElementLine;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int32_t stripWidth = 160, edge = 8, inset = 5;  // pixels, with the dialog's font 16 high
const TestPage upright{"one", 180000, 277000}, flat{"two", 277000, 180000}, square{"three", 200000, 200000};
const TestPage none{"none", 0, 0};

class PreviewWindow : public PreviewTest {
  protected:
    template <class Drawn>
    std::vector<Drawn> drawn() {
        dialog().refresh();
        return drawnIn<Drawn>(dialog());
    }
    // The one sheet that is on show; empty when there is none.
    DialogRect paper() {
        const auto fills = drawn<DrawnFill>();
        EXPECT_LE(fills.size(), 1u);
        return fills.empty() ? DialogRect{} : fills[0].rect;
    }
    // The frame of the page on show; empty when there is none.
    DialogRect frame() {
        const auto lines = drawn<ElementLine>();
        if (lines.empty()) return {};
        DialogRect rect{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
        for (size_t i = 0; i + 1 < lines[0].points.size(); i += 2) {
            const auto x = static_cast<int32_t>(std::lround(lines[0].points[i]));
            const auto y = static_cast<int32_t>(std::lround(lines[0].points[i + 1]));
            rect = {std::min(rect.left, x), std::min(rect.top, y), std::max(rect.right, x), std::max(rect.bottom, y)};
        }
        return rect;
    }
    bool showsTurnedSheet() {
        const DialogRect sheet = paper();
        const bool flatSheet = sheet.right - sheet.left > sheet.bottom - sheet.top;
        return flatSheet != sheetIsFlat();
    }
    static bool sheetIsFlat() { return std::stod(get("mclibpsd->pageWidth")) > std::stod(get("mclibpsd->pageHeight")); }
};

void expectMargins(const DialogRect& paper, const DialogRect& frame, double pixelsPerMm, double left, double right,
                   double top, double bottom) {
    EXPECT_NEAR(frame.left - paper.left, left * pixelsPerMm, 1.5);
    EXPECT_NEAR(paper.right - frame.right, right * pixelsPerMm, 1.5);
    EXPECT_NEAR(frame.top - paper.top, top * pixelsPerMm, 1.5);
    EXPECT_NEAR(paper.bottom - frame.bottom, bottom * pixelsPerMm, 1.5);
}

TEST_F(PreviewWindow, ShowsThePageWithinTheMarginsOfItsSheet) {
    openPreview({upright, flat});
    EXPECT_EQ(dialog().title(), "Preview - Tester");
    const double scale = (400 - 2 * (edge + inset)) / 297.0;  // the sheet is as high as the area
    const int32_t middle = (edge + 600 - stripWidth) / 2;
    EXPECT_EQ(paper().top, edge + inset);
    EXPECT_EQ(paper().bottom, 400 - edge - inset);
    EXPECT_NEAR(paper().right - paper().left, 210 * scale, 1);
    EXPECT_NEAR((paper().left + paper().right) / 2, middle, 1);
    expectMargins(paper(), frame(), scale, 20, 10, 10, 10);
}

TEST_F(PreviewWindow, MarginsMoveAlongWithATurnedSheet) {
    set("mclibpsd->marginRight", "15");
    set("mclibpsd->marginTop", "5");
    openPreview({{"flat", 282000, 175000}});
    const double scale = (600 - stripWidth - edge - 2 * inset) / 297.0;  // the sheet is as wide as the area
    EXPECT_EQ(paper().left, edge + inset);
    EXPECT_NEAR(paper().bottom - paper().top, 210 * scale, 1);
    expectMargins(paper(), frame(), scale, 10, 5, 20, 15);
}

TEST_F(PreviewWindow, TurnsPagesThatTheSheetsShapeOrTheSetUpAsksFor) {
    struct Case {
        const char* orientation;
        const char *width, *height;
        TestPage page;
        bool turned;
    };
    const Case cases[] = {
        {"2", "210", "297", upright, false}, {"2", "210", "297", flat, true},    {"2", "210", "297", square, true},
        {"2", "297", "210", upright, true},  {"2", "297", "210", flat, false},   {"2", "297", "210", square, true},
        {"1", "210", "297", flat, false},    {"1", "210", "297", square, false}, {"0", "210", "297", upright, true},
        {"0", "297", "210", flat, true},     {"2", "210", "297", none, false},   {"2", "297", "210", none, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.page.name) + " on " + c.width + " by " + c.height + ", orientation " +
                     c.orientation);
        set("mclibpsd->orientation", c.orientation);
        set("mclibpsd->pageWidth", c.width);
        set("mclibpsd->pageHeight", c.height);
        openPreview({c.page});
        EXPECT_EQ(showsTurnedSheet(), c.turned);
    }
}

TEST_F(PreviewWindow, AnEmptySheetStandsForAPageThatCannotBeMade) {
    openPreview({none, upright});
    EXPECT_GT(paper().bottom, 0);
    EXPECT_THAT(drawn<ElementLine>(), IsEmpty());
    openPreview({});
    EXPECT_GT(paper().bottom, 0);
    set("mclibpsd->pageWidth", "0");
    openPreview({upright});
    EXPECT_THAT(drawn<DrawnFill>(), IsEmpty());
}

TEST_F(PreviewWindow, ALargerWindowHasALargerSheetAndItsButtonsOnTheRight) {
    openPreview({upright});
    const DialogRect before = paper();
    const DialogRect button = dialog().items()[placeOf(dialog(), ITEM_PUSH_BUTTON, 20007)].rect;
    ASSERT_TRUE(dialog().resize(1000, 700));
    EXPECT_GT(paper().bottom - paper().top, before.bottom - before.top);
    const DialogRect moved = dialog().items()[placeOf(dialog(), ITEM_PUSH_BUTTON, 20007)].rect;
    EXPECT_EQ(1000 - moved.right, 600 - button.right);
    EXPECT_EQ(moved.top, button.top);
    ASSERT_TRUE(dialog().resize(120, 20));  // no room for a sheet
    EXPECT_THAT(drawn<DrawnFill>(), IsEmpty());
}

TEST_F(PreviewWindow, KeepsItsSizeForTheNextTime) {
    openPreview({upright});
    EXPECT_EQ(dialog().width(), 600);
    for (const int32_t width : {801, 702}) {  // added, then replaced
        ASSERT_TRUE(dialog().resize(width, 500));
        press(dialog(), -4);
        EXPECT_EQ(get("mgdP->previewPage"), "-1");
        openPreview({upright});
        EXPECT_EQ(dialog().width(), width);
        EXPECT_EQ(dialog().height(), 500);
    }
}

// ---- the page on show and the list of pages ----

class PreviewPages : public PreviewTest {
  protected:
    std::vector<std::string> listed() {
        std::vector<std::string> names;
        for (const host::OptionRow& row : dialog().items()[placeOf(dialog(), ITEM_OPTION_BUTTON, 20001)].rows)
            names.push_back(row.label);
        return names;
    }
};

TEST_F(PreviewPages, MakesThePageThatTheUserChooses) {
    openPreview({upright, flat, square}, 1);
    EXPECT_THAT(listed(), ElementsAre("one", "two", "three"));
    EXPECT_EQ(valueOf(dialog(), ITEM_OPTION_BUTTON, 20001), "1");
    choose(dialog(), 20001, 2);
    choose(dialog(), 20001, 2);  // on show already
    choose(dialog(), 20001, 0);
    EXPECT_THAT(testApplication.made, ElementsAre(1, 2, 0));
    EXPECT_THAT(testApplication.currentNames, ElementsAre("two", "three", "one"));
    EXPECT_EQ(get("mgdP->previewPage"), "0");
}

TEST_F(PreviewPages, HoldsAFirstPageOutsideTheListToIt) {
    openPreview({upright, flat}, 7);
    EXPECT_EQ(get("mgdP->previewPage"), "1");
    openPreview({upright, flat}, -3);
    EXPECT_EQ(get("mgdP->previewPage"), "0");
}

TEST_F(PreviewPages, ChoosingAPageReadsItsInformation) {
    mclibSideData info{};
    std::strcpy(info.pageName, "two");
    std::strcpy(info.revs, "B");
    mclibProject_writePageInfoToDesignFile(&info);
    openPreview({upright, flat});
    choose(dialog(), 20001, 1);
    EXPECT_EQ(get("mclibsd->revs"), "B");
    choose(dialog(), 20001, 0);
    EXPECT_EQ(get("mclibsd->revs"), "");
}

TEST_F(PreviewPages, ANewListIsCopiedAndThePageOnShowHeldToIt) {
    openPreview({upright, flat, square}, 2);
    testApplication.newList = {"first", "second"};
    press(dialog(), 20009);
    EXPECT_THAT(listed(), ElementsAre("first", "second"));
    EXPECT_EQ(get("mgdP->previewPage"), "1");
    EXPECT_EQ(valueOf(dialog(), ITEM_OPTION_BUTTON, 20001), "1");
    EXPECT_EQ(testApplication.currentNames.back(), "second");
    testApplication.newList[0] = "other";
    choose(dialog(), 20001, 0);
    EXPECT_EQ(testApplication.currentNames.back(), "first");
}

TEST_F(PreviewPages, AnEmptyNewListChangesNothing) {
    openPreview({upright, flat}, 1);
    press(dialog(), 20009);
    EXPECT_THAT(listed(), ElementsAre("one", "two"));
    EXPECT_THAT(testApplication.made, ElementsAre(1));
}

TEST_F(PreviewPages, ASignalForANewListMayNameThePageToShow) {
    openPreview({upright, flat, square});
    testApplication.newList = {"a", "b", "c"};
    MdlItem* const button = mdlDialog_itemGetByTypeAndId(preview, ITEM_PUSH_BUTTON, 20009);
    mdlDialog_itemSignal(button, 1, 2);
    EXPECT_EQ(get("mgdP->previewPage"), "2");
    mdlDialog_itemSignal(button, 0, 1);
    EXPECT_EQ(get("mgdP->previewPage"), "2");
    mdlDialog_itemSignal(button, 1, 99);
    EXPECT_EQ(get("mgdP->previewPage"), "2");
}

TEST_F(PreviewPages, OpeningAgainStartsAnewAndAnotherApplicationTakesOver) {
    openPreview({upright, flat}, 1);
    openPreview({square});
    EXPECT_THAT(listed(), ElementsAre("three"));
    const auto first = host::dialogOf(preview);
    session().startApplication("other", [](int argc, char** argv) { return mclibMain_initMcLib("Other", argc, argv); });
    asApplication("other", [&] {
        openPreview({upright, flat});
        EXPECT_TRUE(first->ended());
        EXPECT_EQ(dialog().title(), "Preview - Other");
    });
}

TEST_F(PreviewPages, StayWhenAnotherDesignFileIsOpened) {
    openPreview({upright, flat});
    ASSERT_EQ(mdlSystem_createDesignFile(path("other.mcd").c_str(), 0), MDL_SUCCESS);
    ASSERT_EQ(mdlSystem_newDesignFile(path("other.mcd").c_str(), 0), MDL_SUCCESS);
    ASSERT_TRUE(dialog().resize(700, 500));
    dialog().refresh();
    choose(dialog(), 20001, 1);
    EXPECT_EQ(get("mgdP->previewPage"), "1");
}

// A square on the level with that code.
void appendSquare(ElementDescr* page, int32_t levelCode, uint32_t color, uint32_t weight) {
    LevelId id = 0;
    ModelRef* const model = mdlModelRef_getActive();
    if (mdlLevel_getIdFromCode(&id, model, levelCode) != MDL_SUCCESS)
        mdlLevel_create(&id, model, (L"Level " + std::to_wstring(levelCode)).c_str());
    const uint32_t level = id;
    MSElementBuffer element;
    const Point3d corners[] = {{9000, 9000, 0}, {99000, 9000, 0}, {99000, 99000, 0}, {9000, 99000, 0}};
    mdlShape_create(&element, nullptr, corners, 4, 0);
    mdlElement_setSymbology(&element, &color, &weight, nullptr);
    mdlElement_setProperties(&element, &level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    mdlElmdscr_appendElement(page, &element);
}

TEST_F(PreviewWindow, ShowsAPageAsItPrints) {
    testApplication.addTo = [](ElementDescr* page) {
        appendSquare(page, 5, 115, 5);
        appendSquare(page, 63, 115, 0);
    };
    openPreview({upright});
    const DialogRect sheet = paper();
    const auto lines = drawn<ElementLine>();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_NEAR(lines[0].gray, 0.85, 1e-9) << "the background lies under everything else";
    EXPECT_LT(lines[1].gray, 0);
    EXPECT_LT(lines[2].gray, 0) << "elsewhere the colour is no grey";
    EXPECT_NEAR(lines[2].width, (sheet.right - sheet.left) / 210.0, 1e-9) << "weight 5 is 1 mm";
    EXPECT_EQ(mdlWindow_savePicture(preview, path("preview.png").c_str()), MDL_SUCCESS);
}

TEST_F(PreviewPages, TheSpreadsheetIsNotThereYetWhichIsToldBeforeAnythingIsAsked) {
    openPreview({upright});
    answerBox();
    press(dialog(), 20011);
    EXPECT_THAT(told, HasSubstr("can't be sent to a spreadsheet yet"));
    const std::string book = writeFile("list.xlt", "");  // and yet its dialog is there
    front().files.answer(book);
    answers.press(20012).press(-3);
    int32_t reply = 0;
    mdlDialog_openModal(&reply, 0, 20023);
    EXPECT_EQ(get("mgdP->fileDialogP->excelTemplate"), book);
}

TEST_F(PreviewPages, NamesThatRecordsCannotTellApartAreRefused) {
    const std::string start(80, 'x');
    for (const auto& [first, second, refused] :
         {std::tuple(start + "1", start + "2", true), std::tuple(start, start + "2", true),
          std::tuple(start + "1", start + "1", false), std::tuple("1" + start, "2" + start, false)}) {
        std::string names[] = {first, "between", second};
        char* pointers[] = {names[0].data(), names[1].data(), names[2].data()};
        testApplication.pages = {upright, upright, upright};
        told.clear();
        if (refused) answerBox();
        preview = mclibPreview_dialogOpen(3, pointers, makeTestPage, nullptr);
        EXPECT_EQ(preview == nullptr, refused) << first << " " << second;
        EXPECT_EQ(told.find("same 80 letters") != std::string::npos, refused);
    }
}

TEST_F(PreviewPages, EightyThousandPagesAreNoDearerEachThanAThousand) {
    const auto seconds = [](size_t count) {
        std::vector<std::string> names;
        for (size_t i = 0; i < count; ++i) names.push_back("Page " + std::to_string(i));
        std::vector<char*> pointers;
        for (std::string& name : names) pointers.push_back(name.data());
        const auto start = std::chrono::steady_clock::now();
        const auto noPage = [](int, char*, ElementDescr**, int) {};
        mclibPreview_printPages(static_cast<int>(count), pointers.data(), noPage, "/dev/null", 0, 0,
                                static_cast<int>(count) - 1);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    seconds(1000);
    const double each = seconds(1000) / 1000;
    EXPECT_LT(seconds(80000) / 80000, 10 * each);
}

}  // namespace
