// The compiler of cell libraries, run as a program.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "mchost/mdl/text.h"
#include "mchost/model/cell_library.h"
#include "tests/support/compiler_fixture.h"

namespace {

namespace fs = std::filesystem;

class Mccel : public CompilerTest {
  protected:
    Mccel() : CompilerTest("mccel") {}
    ~Mccel() override { mdlElmdscr_freeAll(&cell); }

    // Compiles a cell "C" of these elements, and reads it back in `cell`.
    void compile(const std::string& elements, const std::string& before = "") {
        source("c.toml",
               before + "\n[[cell]]\nname = \"C\"\ndescription = \"A cell\"\ndraw = [\n" + elements + "\n]\n");
        const Outcome outcome = run("-o c.cel c.toml");
        ASSERT_EQ(outcome.status, 0) << outcome.output;
        const host::CellLibrary library((folder / "c.cel").string());
        ASSERT_EQ(library.cells().size(), 1u + (before.find("[[cell]]") != std::string::npos));
        mdlElmdscr_freeAll(&cell);
        cell = library.read(library.cells().back(), nullptr);
        ASSERT_NE(cell, nullptr);
    }
    const MSElementBuffer* element(int index) const {
        const ElementDescr* node = cell->firstChild;
        while (node && index-- > 0) node = node->next;
        return node ? node->element : nullptr;
    }
    static std::vector<double> pointsOf(const MSElementBuffer* element) {
        Point3d points[16];
        int32_t count = 0;
        EXPECT_EQ(mdlLinear_extract(points, &count, element, 16), MDL_SUCCESS);
        std::vector<double> values;
        for (int32_t i = 0; i < count; ++i) values.insert(values.end(), {points[i].x / 10000, points[i].y / 10000});
        return values;
    }
    struct TextOf {
        std::string text;
        Point3d origin;
        double width, height, charHeight;
        int32_t just;
    };
    static TextOf textOf(const MSElementBuffer* element) {
        TextOf t{};
        char text[256] = "";
        EXPECT_EQ(mdlText_extract(nullptr, &t.origin, &t.width, &t.height, text, nullptr, nullptr, &t.just,
                                  &t.charHeight, nullptr, element),
                  MDL_SUCCESS);
        t.text = text;
        return t;
    }

    ElementDescr* cell = nullptr;
};

TEST_F(Mccel, ElementsAreReadBackWithTheirLooks) {
    compile(
        "{ line = [[0, 0], [10, 5]], pen = \"thick\" },\n"
        "{ line = [[0, 0], [1, 0], [1, 1]], pen = \"thick\", weight = 1, style = 3 },\n"
        "{ rect = [1, 2, 3, 4], fill = true },\n"
        "{ polygon = [[0, 0], [4, 0], [2, 3]], color = \"by level\" },\n"
        "{ circle = [5, 5, 2.5] },\n"
        "{ arc = [0, 0, 1, 90, -45] },",
        "[level.Form]\ncolor = 2\n[pen.thick]\nlevel = \"Form\"\nweight = 4\ncolor = 7");
    const int types[] = {MDL_LINE, MDL_LINE_STRING, MDL_SHAPE, MDL_SHAPE, MDL_ELLIPSE, MDL_ARC};
    for (int i = 0; i < 6; ++i) ASSERT_EQ(mdlElement_getType(element(i)), types[i]) << i;
    EXPECT_EQ(element(6), nullptr);
    EXPECT_EQ(pointsOf(element(0)), (std::vector<double>{0, 0, 10, 5}));
    EXPECT_EQ(pointsOf(element(2)), (std::vector<double>{1, 2, 3, 2, 3, 4, 1, 4, 1, 2}));
    EXPECT_TRUE(mdlElement_isFilled(element(2)));
    EXPECT_FALSE(mdlElement_isFilled(element(3)));
    EXPECT_EQ(element(0)->head.weight, 4);
    EXPECT_EQ(element(0)->head.color, 7);
    EXPECT_EQ(element(1)->head.weight, 1);
    EXPECT_EQ(element(1)->head.style, 3);
    EXPECT_EQ(element(3)->head.color, -1);
    EXPECT_EQ(element(0)->head.level, element(1)->head.level);
    EXPECT_NE(element(0)->head.level, element(2)->head.level);
    Point3d centre;
    double axis = 0, start = 0, sweep = 0;
    mdlArc_extract(&centre, &axis, nullptr, nullptr, nullptr, nullptr, element(4));
    EXPECT_EQ(centre.x, 50000);
    EXPECT_EQ(axis, 25000);
    mdlArc_extract(nullptr, nullptr, nullptr, nullptr, &start, &sweep, element(5));
    EXPECT_NEAR(sweep, -3.14159265358979 / 4, 1e-12);
}

TEST_F(Mccel, TextsHaveTheirLetteringAndRow) {
    compile(
        "{ text = \"Lengde \xc3\xb8\", at = [1, 2], lettering = \"small\" },\n"
        "{ text = \"x\", at = [1, 2], align = \"centre top\", height = 4 },\n"
        "{ text = \"%LOGO\", box = [10, 20, 40, 32] },\n"
        "{ repeat = 3, step = [0, -7], first = 9, draw = [\n"
        "  { text = \"%{row}%DESC {row}\", at = [5, 100] },\n"
        "  { repeat = 2, step = [1, 0], draw = [{ text = \"{row}\", at = [0, 50] }] },\n"
        "] },",
        "[lettering.small]\nheight = 2\nwidth = 1\nalign = \"right\"");
    const TextOf small = textOf(element(0)), top = textOf(element(1)), logo = textOf(element(2));
    EXPECT_EQ(small.text, "Lengde \xf8");
    EXPECT_EQ(small.just, 14);
    EXPECT_EQ(small.charHeight, 20000);
    EXPECT_EQ(top.just, 6);
    EXPECT_NEAR(logo.width, 300000, 0.01);
    EXPECT_NEAR(logo.height, 120000, 0.01);
    EXPECT_EQ(logo.origin.x, 100000);
    const char* rows[] = {"%09%DESC 09", "01", "02", "%10%DESC 10", "01", "02", "%11%DESC 11"};
    for (int i = 0; i < 7; ++i) EXPECT_EQ(textOf(element(3 + i)).text, rows[i]);
    EXPECT_EQ(textOf(element(9)).origin.y, (100 - 14) * 10000.0);
    EXPECT_EQ(textOf(element(8)).origin.x, 10000);
    EXPECT_EQ(textOf(element(8)).origin.y, (50 - 7) * 10000.0);
}

TEST_F(Mccel, CellsArePlacedInCells) {
    compile(
        "{ cell = \"MARK\", at = [10, 20], scale = 0.5, angle = 90 },\n"
        "{ cell = \"MARK\", box = [0, 0, 30, 10] },",
        "[[cell]]\nname = \"MARK\"\ndraw = [{ rect = [2, 0, 4, 2] }]");
    const ElementDescr* first = cell->firstChild;
    ASSERT_EQ(mdlElement_getType(first->element), MDL_CELL_HEADER);
    Point3d low, high;
    mdlElmdscr_computeRange(&low, &high, first->firstChild, nullptr);
    EXPECT_NEAR(low.x, 90000, 1e-6);
    EXPECT_NEAR(low.y, 210000, 1e-6);
    EXPECT_NEAR(high.x, 100000, 1e-6);
    EXPECT_NEAR(high.y, 220000, 1e-6);
    mdlElmdscr_computeRange(&low, &high, first->next->firstChild, nullptr);
    EXPECT_NEAR(low.x, 100000, 1e-6);
    EXPECT_NEAR(high.x, 200000, 1e-6);
    EXPECT_NEAR(high.y, 100000, 1e-6);
}

TEST_F(Mccel, EachFaultIsOneLineAndTheOldFileStays) {
    const auto cellOf = [](const std::string& element) {
        return "[[cell]]\nname = \"C\"\ndraw = [\n" + element + ",\n]\n";
    };
    struct Case {
        std::string text;
        const char* line;
    };
    const Case cases[] = {
        {"[[cell]\n", "bad.toml:1: "},
        {"[[cell]]\ndraw = []\n", "bad.toml:1: a cell needs a name"},
        {"[[cell]]\nname = \"C\"\n", "bad.toml:1: cell \"C\": there is nothing in it"},
        {"[[cell]]\nname = \"\"\ndraw = []\n", "\"name\" must have 1 to 511 characters"},
        {"[cell]\nname = \"C\"\n", "\"cell\" must be a list of tables, such as [[cell]]"},
        {cellOf("{ line = [[0, 0], [1, 1]] }") + cellOf("{ line = [[0, 0], [1, 1]] }"),
         "bad.toml:6: cell \"C\": there is a cell of that name"},
        {cellOf("{ line = [[0, 0]] }"), "bad.toml:4: cell \"C\": \"line\" must be points such as [10, 20], at least 2"},
        {cellOf("{ line = [[0, 0], [1]] }"), "\"line\" must be points such as"},
        {cellOf("{ line = [[0, 0], [1, \"2\"]] }"), "\"line\" must be a number"},
        {cellOf("{ line = [[0, 0], [1, 2e9]] }"), "must be a number of at most 1000000"},
        {cellOf("{ line = [[0, 0], [1, nan]] }"), "must be a number"},
        {cellOf("{ line = [[0, 0], [1, 2]], wieght = 2 }"), "unknown key \"wieght\""},
        {cellOf("{ line = [[0, 0], [1, 2]], weight = 16 }"), "\"weight\" must be a whole number from 0 to 15"},
        {cellOf("{ line = [[0, 0], [1, 2]], pen = \"no\" }"), "there is no pen of that name"},
        {cellOf("{ rect = [5, 0, 1, 2] }"), "\"rect\" must be left, bottom, right, top"},
        {cellOf("{ rect = [5, 0, 1] }"), "\"rect\" must be 4 numbers"},
        {cellOf("{ circle = [5, 0, 0] }"), "the radius of a circle must be above 0"},
        {cellOf("{ arc = [5, 0, 1, 0, 400] }"), "sweep up to 360"},
        {cellOf("{ text = \"\", at = [0, 0] }"), "\"text\" must have 1 to 255 characters"},
        {cellOf("{ text = \"a\\nb\", at = [0, 0] }"), "in one line"},
        {cellOf("{ text = \"" + std::string(256, 'a') + "\", at = [0, 0] }"), "1 to 255 characters"},
        {cellOf("{ text = \"\xe6\x97\xa5\", at = [0, 0] }"), "the character \"\xe6\x97\xa5\" has no code"},
        {cellOf("{ text = \"a\" }"), "a text needs its place"},
        {cellOf("{ text = \"{row}\", at = [0, 0] }"), "{row} has a meaning within a repeat only"},
        {cellOf("{ text = \"a\", at = [0, 0], align = \"middel\" }"), "\"align\" must be of left"},
        {cellOf("{ text = \"a\", at = [0, 0], height = 0 }"), "\"height\" must be above 0"},
        {cellOf("{ cell = \"C\", at = [0, 0] }"), "no cell \"C\" stands further up"},
        {cellOf("{ repeat = 200, step = [1, 0], draw = [{ line = [[0, 0], [1, 1]] }] }") +
             "[[cell]]\nname = \"D\"\ndraw = [{ repeat = 501, step = [1, 0], draw = [{ cell = \"C\", at = [0, 0] }] "
             "}]\n",
         "cell \"D\": a cell has at most 100000 elements"},
        {cellOf("{ repeat = 0, step = [0, 1], draw = [] }"), "\"repeat\" must be a whole number from 1 to 1000"},
        {cellOf("{ repeat = 2, draw = [] }"), "a repeat needs step"},
        {cellOf("{ square = 1 }"), "an element is a line, rect"},
        {cellOf("5"), "an element must be a table"},
        {"[pen.a]\nweight = 1.5\n", "bad.toml:2: \"weight\" must be a whole number"},
        {"[lettering]\na = 5\n", "\"a\" must be a table"},
        {"[level.\"\"]\ncolor = 1\n", "the name of level \"\" can't be used"},
        {"[level.F]\ncolor = \"by level\"\n", "a level can't look \"by level\""},
        {"[pen.a]\n", "there is no [[cell]] in the sources"},
    };
    source("good.toml", cellOf("{ line = [[0, 0], [1, 1]] }"));
    ASSERT_EQ(run("-o out.cel good.toml").status, 0);
    const auto bytes = [&] {
        std::ifstream in(folder / "out.cel", std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    const std::string before = bytes();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        source("bad.toml", c.text);
        const Outcome outcome = run("-o out.cel bad.toml");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_THAT(outcome.output, testing::HasSubstr(c.line));
        EXPECT_EQ(std::ranges::count(outcome.output, '\n'), 1) << outcome.output;
        EXPECT_TRUE(bytes() == before);
    }
    EXPECT_THAT(run("-o out.cel nowhere.toml").output, testing::StartsWith("mccel: nowhere.toml: "));
    const Outcome unwritable = run("-o nowhere/out.cel good.toml");
    EXPECT_EQ(unwritable.status, 1);
    EXPECT_THAT(unwritable.output, testing::StartsWith("mccel: nowhere/out.cel: "));
    EXPECT_EQ(run("good.toml").status, 2);
}

TEST_F(Mccel, DefinitionsHoldForTheSourcesBehindAndPicturesAreMade) {
    source("pens.toml", "[pen.frame]\nweight = 4\n");
    source("a.toml", "[[cell]]\nname = \"A/1\"\ndraw = [{ line = [[0, 0], [30, 9]], pen = \"frame\" }]\n");
    ASSERT_EQ(run("-o out.cel pens.toml a.toml --pictures shots").output, "");
    EXPECT_TRUE(fs::exists(folder / "shots" / "A_1.png"));
    source("again.toml", "[pen.frame]\nweight = 4\n");
    EXPECT_THAT(run("-o out.cel pens.toml again.toml a.toml").output,
                testing::HasSubstr("again.toml:1: pen \"frame\" is defined twice"));
}

}  // namespace
