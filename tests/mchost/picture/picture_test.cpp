#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <memory>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/transform.h"
#include "mchost/mdl/view.h"
#include "tests/support/session_fixture.h"

namespace {

using testing::HasSubstr;

class PictureTest : public SessionTest {
  protected:
    ~PictureTest() override { mdlElmdscr_freeAll(&page_); }

    void add(uint32_t color, uint32_t weight, int32_t style) {
        mdlElement_setSymbology(dgnBufP, &color, &weight, &style);
        if (page_)
            ASSERT_EQ(mdlElmdscr_appendElement(page_, dgnBufP), MDL_SUCCESS);
        else
            ASSERT_EQ(mdlElmdscr_new(&page_, nullptr, dgnBufP), MDL_SUCCESS);
    }

    // A frame, lines of all styles, a filled shape, an arc, and texts upright, turned and by their right end.
    void drawPage() {
        const Point3d frame[] = {{0, 0, 0}, {200, 0, 0}, {200, 100, 0}, {0, 100, 0}};
        mdlShape_create(dgnBufP, nullptr, frame, 4, 0);
        add(0, 3, 0);
        for (int32_t style = 0; style < 8; ++style) {
            const Point3d line[] = {{10, 20.0 + 8 * style, 0}, {90, 20.0 + 8 * style, 0}};
            mdlLine_create(dgnBufP, nullptr, line);
            add(static_cast<uint32_t>(style), static_cast<uint32_t>(style / 2), style);
        }
        const Point3d triangle[] = {{110, 20, 0}, {150, 20, 0}, {130, 45, 0}}, center{170, 40, 0};
        mdlShape_create(dgnBufP, nullptr, triangle, 3, 1);
        add(6, 1, 0);
        mdlArc_create(dgnBufP, nullptr, &center, 20, 12, nullptr, 0, 4);
        add(3, 2, 0);
        const Point3d at{110, 80, 0}, end{190, 65, 0};
        const TextSize size{1, 8, 8, 1}, small{1, 4, 5, 1};
        TextParams right{};
        right.just = 11, right.textStyle = right.styleFields = -1;
        mdlText_createWide(dgnBufP, nullptr, L"Vei 1200", &at, nullptr, &size, nullptr, 0);
        add(1, 0, 0);
        addTextBox();
        RotMatrix turned;
        mdlRMatrix_fromAngle(&turned, 0.3);
        mdlText_createWide(dgnBufP, nullptr, L"R = 300 \u00c5", &end, &turned, &small, &right, 0);
        add(0, 0, 0);
        addTextBox();
    }

    void addTextBox() {
        Point3d box[5];
        mdlText_extractShape(box, nullptr, dgnBufP, 0, 0);
        mdlShape_create(dgnBufP, nullptr, box, 5, 0);
        add(8, 0, 1);
    }

    std::vector<std::string> names() {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(path("x")).parent_path()))
            found.push_back(entry.path().filename().string());
        return found;
    }

    ElementDescr* page_ = nullptr;
};

TEST_F(PictureTest, EachKindIsWritten) {
    drawPage();
    struct Case {
        const char* name;
        std::string_view magic;
    };
    for (const Case& c : {Case{"page.png", "\x89PNG"}, Case{"page.SVG", "<?xml"}, Case{"page.pdf", "%PDF"}}) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(mdlPicture_write(path(c.name).c_str(), page_, nullptr, 200, 150), MDL_SUCCESS);
        const std::string bytes = readFile(c.name);
        EXPECT_EQ(bytes.substr(0, c.magic.size()), c.magic);
        EXPECT_GT(bytes.size(), 2000u);
    }
    for (const std::string& name : names()) EXPECT_THAT(name, testing::Not(HasSubstr("part")));
}

TEST_F(PictureTest, FailureTellsWhyAndLeavesTheOldFile) {
    drawPage();
    writeFile("old.svg", "old");
    struct Case {
        const char *name, *why;
        double width, dpi;
    };
    for (const Case& c : {Case{"old.svg", "above 0", 0, 100}, Case{"old.svg", "above 0", NAN, 100},
                          Case{"old.gif", ".png, .svg or .pdf", 100, 100}, Case{"old.png", "resolution", 100, 0},
                          Case{"old.png", "too large", 5000, 1200}, Case{"none/old.svg", "", 100, 100}}) {
        SCOPED_TRACE(c.name);
        front().clear();
        EXPECT_EQ(mdlPicture_write(path(c.name).c_str(), page_, nullptr, c.width, c.dpi), MDL_ERROR);
        ASSERT_EQ(front().messages.size(), 1u);
        EXPECT_THAT(front().messages[0].brief, HasSubstr(c.why));
    }
    EXPECT_EQ(readFile("old.svg"), "old");
}

TEST_F(PictureTest, NothingToShowIsAnError) {
    EXPECT_EQ(mdlPicture_write(path("empty.svg").c_str(), nullptr, nullptr, 100, 100), MDL_ERROR);
    const Point3d origin{0, 0, 0};
    mdlCell_create(dgnBufP, L"EMPTY", &origin, 1);
    add(0, 0, 0);
    EXPECT_EQ(mdlPicture_write(path("empty.svg").c_str(), page_, nullptr, 100, 100), MDL_ERROR);
    EXPECT_FALSE(std::filesystem::exists(path("empty.svg")));
}

TEST_F(PictureTest, OneDimensionIsEnough) {
    const Point3d line[] = {{5, 5, 0}, {5, 5, 0}}, upright[] = {{0, 0, 0}, {0, 1e6, 0}};
    mdlLine_create(dgnBufP, nullptr, line);
    add(0, 0, 0);
    EXPECT_EQ(mdlPicture_write(path("point.png").c_str(), page_, nullptr, 10, 100), MDL_SUCCESS);
    mdlElmdscr_freeAll(&page_);
    mdlLine_create(dgnBufP, nullptr, upright);
    add(0, 0, 0);
    EXPECT_EQ(mdlPicture_write(path("line.png").c_str(), page_, nullptr, 10, 100), MDL_SUCCESS);
}

TEST_F(PictureTest, ModelIsDrawnAsItsElementsAre) {
    ASSERT_EQ(mdlSystem_createDesignFile(path("drawing.mcd").c_str(), 0), MDL_SUCCESS);
    ASSERT_EQ(mdlSystem_newDesignFile(path("drawing.mcd").c_str(), 0), MDL_SUCCESS);
    drawPage();
    for (const ElementDescr* node = page_; node; node = node->next) ASSERT_NE(mdlElement_add(node->element), 0u);
    ASSERT_EQ(mdlPicture_write(path("model.svg").c_str(), nullptr, nullptr, 200, 0), MDL_SUCCESS);
    ASSERT_EQ(mdlPicture_write(path("page.svg").c_str(), page_, nullptr, 200, 0), MDL_SUCCESS);
    const auto drawn = [&](const char* name) {  // without what cairo numbers through
        const std::string bytes = readFile(name);
        return bytes.substr(bytes.find("<rect"));
    };
    EXPECT_TRUE(drawn("model.svg") == drawn("page.svg"));
    const Range3d corner{{100, 0, 0}, {120, 10, 0}};
    ASSERT_EQ(mdlPicture_write(path("corner.svg").c_str(), nullptr, &corner, 200, 0), MDL_SUCCESS);
    EXPECT_LT(readFile("corner.svg").size(), readFile("model.svg").size() / 4);
}

TEST_F(PictureTest, StandardViewsAreRightHanded) {
    for (int32_t view = 1; view <= 6; ++view) {
        RotMatrix m;
        ASSERT_EQ(mdlView_getStandard(&m, view), MDL_SUCCESS);
        const auto& f = m.form;
        const double det = f[0][0] * (f[1][1] * f[2][2] - f[1][2] * f[2][1]) -
                           f[0][1] * (f[1][0] * f[2][2] - f[1][2] * f[2][0]) +
                           f[0][2] * (f[1][0] * f[2][1] - f[1][1] * f[2][0]);
        EXPECT_EQ(det, 1) << view;
    }
    RotMatrix m;
    EXPECT_EQ(mdlView_getStandard(&m, 0), MDL_ERROR);
    EXPECT_EQ(mdlView_getStandard(&m, 7), MDL_ERROR);
}

}  // namespace
