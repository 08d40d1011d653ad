#include "tests/mclib/print/stroke_list.h"

#include <cmath>
#include <string>

#include "mclib/print/output.h"
#include "mclib/print/styles.h"

using namespace mc;

namespace {

struct StrokeListJob {
    PrintOutput output;
    int32_t page;

    bool open(const char* fileName, int) {
        if (!output.open("strokes", fileName)) return false;
        newPage();
        return true;
    }
    void newPage() { output.write("page " + std::to_string(++page) + "\n"); }
    void close() { output.close("a list"); }
    int32_t status() { return output.status(); }

    void stroke(const Stroke& s) {
        output.write(isGray(s.gray) ? "fill" : "line");
        for (int32_t i = 0; i < s.count; ++i) output.write(" " + place(s.points[i].x, s.points[i].y));
        output.write("\n");
    }
    void label(const Label& l) {
        output.write("text " + place(l.x, l.y) + " " + std::to_string(std::lround(l.angle)) + " " + l.text + "\n");
    }

    static std::string place(double x, double y) {
        return std::to_string(std::lround(x)) + "," + std::to_string(std::lround(y));
    }
};

}  // namespace

constexpr PrintDriver strokeListDriver = {
    .device = {.code = 1000,
               .key = "strokes",
               .name = "list of strokes",
               .suffix = ".strokes",
               .traits = 0,
               .longestPaperSide = 0,
               .lettersVariable = nullptr,
               .lettersValue = nullptr},
    .letters = nullptr,
    .moreLetters = nullptr,
    .job = callsOf<StrokeListJob>(),
};
