// The output: a set-up, then the pen's ways and the labels in plotter units; each page ends with a page feed.
#include "mclib/print/hpgl.h"

#include <array>
#include <cmath>
#include <numbers>

#include "mclib/print/driver.h"
#include "mclib/print/output.h"

namespace {

// Plotter units in a millimetre, and the place on the paper that is their origin.
constexpr double unitsPerMm = 38.46153846153846;
constexpr double originX = 10.0, originY = 1.0;
// Width and height of a character in centimetres, for each millimetre of the text's height.
constexpr double characterWidth = 0.03, characterHeight = 0.06;
constexpr char labelEnd = 3;

// Pen speed 80 cm/s, scaling points, pen 1, character set 32.
constexpr std::string_view setUp = "IN;PU;VS80;IP,603,521,10603,7721;SP1;CS32;\n";
constexpr std::string_view pageEnd = "PU;PA0,0;PG;\n";

// The letters that the plotter's character set has in places of its own.
struct Letter {
    char letter, code;
};
// clang-format off
constexpr auto letters = std::to_array<Letter>({
    { '\xE6', '{' },   // ae
    { '\xF8', '|' },   // o with a stroke
    { '\xE5', '}' },   // a with a ring
    { '\xC6', '[' },   // their capitals
    { '\xD8', '\\' },
    { '\xC5', ']' },
});
// clang-format on

constexpr auto plotterCodes = [] {
    std::array<char, 256> codes{};
    for (size_t i = 0; i < codes.size(); ++i) codes[i] = static_cast<char>(i);
    for (const Letter& l : letters) codes[static_cast<unsigned char>(l.letter)] = l.code;
    return codes;
}();

// The letters, and ASCII without what has given its place to them.
constexpr auto shownLetters = [] {
    ShownLetters shown = asciiAnd({});
    for (const Letter& l : letters) {
        shown[static_cast<unsigned char>(l.letter)] = true;
        shown[static_cast<unsigned char>(l.code)] = false;
    }
    return shown;
}();

PrintOutput output;

char* putPoint(char* p, double x, double y) {
    p = putInteger(p, truncated((x - originX) * unitsPerMm));
    *p++ = ',';
    return putInteger(p, truncated((y - originY) * unitsPerMm));
}

// Two values with a comma between, each as `putValue` writes it.
char* putPair(char* p, char* (*putValue)(char*, double), double first, double second) {
    p = putValue(p, first);
    *p++ = ',';
    return put(putValue(p, second), ";");
}

// Steps back over the characters that stand left of the text's point.
char* putStepBack(char* p, size_t length, int just) {
    const auto characters = static_cast<double>(length);
    switch (just) {
        case 0: return put(putHundredths(put(p, "CP"), -0.5 * characters), ",0;");
        case 1: return put(putInteger(put(p, "CP"), truncated(-characters)), ",0;");
        default: return p;
    }
}

}  // namespace

// ---- the job ----

int mclibHpgl_fopen(const char* fileName) {
    mclibHpgl_fclose();
    if (!output.open("mchpgllib", fileName)) return 0;
    output.write(setUp);
    return 1;
}

void mclibHpgl_newPage(void) {
    if (output.isOpen()) output.write(pageEnd);
}

void mclibHpgl_fclose(void) {
    if (!output.isOpen()) return;
    mclibHpgl_newPage();
    output.close("HP-GL");
}

int mclibHpgl_jobStatus(void) {
    return output.status();
}

// ---- drawing ----

void mclibHpgl_drawPolyline(const Point3d* points, int count, double, double) {
    if (!output.isOpen() || !points || count < 1) return;
    char* p = put(putPoint(put(output.line(), "PU;PA"), points[0].x, points[0].y), ";PD;");
    for (int i = 1; i < count; ++i) p = put(putPoint(put(output.roomAt(p), "PD;PA"), points[i].x, points[i].y), ";\n");
    output.taken(p);
}

void mclibHpgl_drawText(double x, double y, char* text, double height, double angle, int just) {
    if (!output.isOpen() || !text) return;
    const double radians = angle * std::numbers::pi / 180;
    const size_t length = std::char_traits<char>::length(text);
    output.look({text, length}, shownLetters);
    for (size_t i = 0; i < length; ++i) text[i] = plotterCodes[static_cast<unsigned char>(text[i])];
    char* p = put(putPoint(put(output.line(), "PU;PA"), x, y), ";SI");
    p = putPair(p, putHundredths, height * characterWidth, height * characterHeight);
    p = putPair(put(p, "DI"), putTenths, std::cos(radians), std::sin(radians));
    output.taken(put(putStepBack(p, length, just), "SS;LB"));
    output.write({text, length});
    output.write({&labelEnd, 1});
    output.write("\n");
}

void mclibHpgl_drawLine(float, float, float, float, float) {}

void mclibHpgl_drawArc(double, double, double, double, double, double) {}

void mclibHpgl_fillCirc(double, double, double, double, double, double) {}

// ---- the contract ----

constexpr PrintDriver hpglDriver = {
    .quarterTurn = true,
    .open = [](const char* fileName, int) { return mclibHpgl_fopen(fileName); },
    .newPage = mclibHpgl_newPage,
    .close = mclibHpgl_fclose,
    .jobStatus = mclibHpgl_jobStatus,
    .stroke = [](const Stroke& s) { mclibHpgl_drawPolyline(s.points, s.count, s.width, s.gray); },
    .label = [](const Label& l) { mclibHpgl_drawText(l.x, l.y, l.text, l.height, l.angle, l.just); },
};
