// The output: a set-up, then the pen's ways and the labels in plotter units; each page ends with a page feed.
#include "mclib/print/hpgl.h"

#include <array>
#include <cmath>
#include <numbers>

#include "mclib/print/job.h"
#include "mclib/print/output.h"

namespace mc {

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

// ---- the job ----

struct HpglJob {
    PrintOutput output;

    bool open(const char* fileName, int) {
        if (!output.open("mchpgllib", fileName)) return false;
        output.write(setUp);
        return true;
    }
    void newPage() { output.write(pageEnd); }
    void close() {
        newPage();
        output.close("HP-GL");
    }
    int32_t status() { return output.status(); }

    void drawPolyline(const Point3d* points, int count);
    void drawText(double x, double y, char* text, double height, double angle, int just);

    void stroke(const Stroke& s) { drawPolyline(s.points, s.count); }
    void label(const Label& l) { drawText(l.x, l.y, l.text, l.height, l.angle, l.just); }
};

void HpglJob::drawPolyline(const Point3d* points, int count) {
    char* p = put(putPoint(put(output.line(), "PU;PA"), points[0].x, points[0].y), ";PD;");
    for (int i = 1; i < count; ++i) p = put(putPoint(put(output.roomAt(p), "PD;PA"), points[i].x, points[i].y), ";\n");
    output.taken(p);
}

void HpglJob::drawText(double x, double y, char* text, double height, double angle, int just) {
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

HpglJob* currentHpglJob() {
    return static_cast<HpglJob*>(print::currentJob(PRINT_HPGL).state());
}

}  // namespace

}  // namespace mc

using namespace mc;

// ---- the exported calls ----

int mclibHpgl_fopen(const char* fileName) {
    return print::openCurrentJob(PRINT_HPGL, fileName);
}

void mclibHpgl_newPage(void) {
    if (HpglJob* job = currentHpglJob()) job->newPage();
}

void mclibHpgl_fclose(void) {
    print::currentJob(PRINT_HPGL).close();
}

int mclibHpgl_jobStatus(void) {
    return print::currentJob(PRINT_HPGL).fileStatus();
}

void mclibHpgl_drawPolyline(const Point3d* points, int count, double, double) {
    HpglJob* job = currentHpglJob();
    if (job && points && count >= 1) job->drawPolyline(points, count);
}

void mclibHpgl_drawText(double x, double y, char* text, double height, double angle, int just) {
    HpglJob* job = currentHpglJob();
    if (job && text) job->drawText(x, y, text, height, angle, just);
}

void mclibHpgl_drawLine(float, float, float, float, float) {}

void mclibHpgl_drawArc(double, double, double, double, double, double) {}

void mclibHpgl_fillCirc(double, double, double, double, double, double) {}

namespace mc {

// ---- the device ----

extern constexpr PrintDriver hpglDriver = {
    .device = {.code = PRINT_HPGL,
               .key = "hpgl",
               .name = "HP-GL",
               .suffix = ".hpgl",
               .traits = PRINT_DEVICE_TO_PRINTER | PRINT_DEVICE_QUARTER_TURN,
               .longestPaperSide = 0,
               .lettersVariable = nullptr,
               .lettersValue = nullptr},
    .letters = &shownLetters,
    .moreLetters = nullptr,
    .job = callsOf<HpglJob>(),
};

}  // namespace mc
