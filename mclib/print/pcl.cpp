// The output: for each page a head of PCL sequences, which ends in the switch to HP-GL/2, and its instructions for all
// that is drawn. How texts look is only sent when it differs from the text before on the page.
#include "mclib/print/pcl.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "mclib/print/driver.h"
#include "mclib/print/output.h"
#include "mclib/print/styles.h"

namespace {

constexpr double unitsPerMm = 40;
constexpr int64_t leftMargin = 240;                  // plotter units that the x axis is moved to the left
constexpr double sizeOfHeight = 2.7932960893854752;  // height of the font, for each millimetre of the text's
constexpr char labelEnd = 3;

constexpr std::string_view portraitHead =
    "\33E"              // reset
    "\33&l26a0O"        // A4, portrait
    "\33*c5952x8418Y"   // picture frame
    "\33&l0E"           // no top margin
    "\33*p0x0Y\33*c0T"  // its anchor is here
    "\33%1B"            // to HP-GL/2
    "IN;SP1;PA0,0;\n";
constexpr std::string_view landscapeHead =
    "\33E"
    "\33&l26a1O"
    "\33*c8418x5952Y"
    "\33&l0E"
    "\33*p0x0Y\33*c0T"
    "\33%1B"
    "IN;SP1;PA0,0;\n";
constexpr std::string_view toPcl = "\33%1A";
constexpr std::string_view reset = "\33E";

// The font's symbol set is ISO 8859-1: what Windows-1252 has between ASCII and the no-break space isn't there.
constexpr auto shownLetters = [] {
    ShownLetters shown = asciiAnd({});
    for (size_t c = 0xA0; c < shown.size(); ++c) shown[c] = true;
    return shown;
}();

PrintOutput output;

// What the page knows of the texts before.
struct TextSetup {
    double height, angle;  // angle in radians
    int32_t just;
};
constexpr TextSetup setupOfNewPage = {0.0, 0.0, 2};

// The job's page code and its current page.
struct PclState {
    int pageCode;
    TextSetup last;
};
PclState state;

void startPage() {
    state.last = setupOfNewPage;
    output.write(state.pageCode == 10 || state.pageCode == 12 ? landscapeHead : portraitHead);
}

char* putPoint(char* p, double x, double y) {
    constexpr int64_t least = std::numeric_limits<int32_t>::min();
    p = putInteger(p, static_cast<int32_t>(std::max(truncated(unitsPerMm * x) - leftMargin, least)));
    *p++ = ',';
    return putInteger(p, truncated(unitsPerMm * y));
}

void drawLine(const Point3d* points, int count, double width) {
    char* p = putHundredths(put(output.line(), "PU;PW"), width);
    p = put(putPoint(put(p, ";PA"), points[0].x, points[0].y), ";");
    for (int i = 1; i < count; ++i) p = put(putPoint(put(output.roomAt(p), "PD;PA"), points[i].x, points[i].y), ";\n");
    output.taken(p);
}

void fillOutline(const Point3d* points, int count, double width, double gray) {
    char* p = putHundredths(put(output.line(), "PU;PW"), width);
    p = put(putPoint(put(p, ";PA"), points[0].x, points[0].y), ";PM0;PD");
    for (int i = 1; i < count; ++i) p = put(putPoint(output.roomAt(p), points[i].x, points[i].y), ",");
    p = put(putPoint(output.roomAt(p), points[0].x, points[0].y), ";\nPM2;FT1");
    if (gray != 0.0) p = putInteger(put(p, "0,"), truncated((1.0 - gray) * 100));
    output.taken(put(p, ";FP;"));
}

char* putFont(char* p, double height, double angle) {
    p = putInteger(put(p, "SD1,14,2,1,4,"), truncated(height * sizeOfHeight));
    p = putTenths(put(p, ",5,0,5,-7,7,52;SS;DI"), std::cos(angle));
    return put(putTenths(put(p, ","), std::sin(angle)), ";");
}

constexpr std::string_view labelOrigin(int just) {
    switch (just) {
        case 0: return "LO4;";
        case 1: return "LO7;";
        default: return "LO1;";
    }
}

}  // namespace

// ---- the job ----

int mclibPcl_fopen(const char* fileName, int pageCode) {
    mclibPcl_fclose();
    if (!output.open("mclibPcl", fileName)) return 0;
    state.pageCode = pageCode;
    startPage();
    return 1;
}

void mclibPcl_newPage(void) {
    if (!output.isOpen()) return;
    output.write(toPcl);
    startPage();
}

void mclibPcl_fclose(void) {
    if (!output.isOpen()) return;
    output.write(toPcl);
    output.write(reset);
    output.close("PCL");
}

int mclibPcl_jobStatus(void) {
    return output.status();
}

// ---- drawing ----

void mclibPcl_drawPolyline(const Point3d* points, int count, double width, double gray) {
    if (!output.isOpen() || !points || count < 1) return;
    if (isGray(gray))
        fillOutline(points, count, width, gray);
    else
        drawLine(points, count, width);
}

void mclibPcl_drawPolylineExtended(const Point3d* points, int count, double width, int lineType, double patternLength,
                                   double gray) {
    if (!output.isOpen() || !points || count < 1) return;
    if (lineType > 0) {
        char* p = put(putInteger(put(output.line(), "LT"), lineType), ",");
        output.taken(put(putHundredths(p, patternLength), ";"));
    }
    mclibPcl_drawPolyline(points, count, width, gray);
    if (lineType > 0) output.write("LT");
}

void mclibPcl_drawText(double x, double y, const char* text, double height, double angle, int just) {
    if (!output.isOpen() || !text) return;
    output.look(text, shownLetters);
    const double radians = angle * std::numbers::pi / 180;
    TextSetup& last = state.last;
    char* p = put(putPoint(put(output.line(), "PU;PA"), x, y), ";");
    if (height != last.height || radians != last.angle) {
        p = putFont(p, height, radians);
        last.height = height;
        last.angle = radians;
    }
    if (just != last.just) {
        p = put(p, labelOrigin(just));
        last.just = just;
    }
    output.taken(put(p, "LB"));
    output.write(text);
    output.write({&labelEnd, 1});
    output.write("\n");
}

void mclibPcl_drawLine(float, float, float, float, float) {}

void mclibPcl_drawArc(double, double, double, double, double, double) {}

void mclibPcl_fillCirc(double, double, double, double, double, double) {}

// ---- the contract ----

constexpr PrintDriver pclDriver = {
    .quarterTurn = false,
    .open = mclibPcl_fopen,
    .newPage = mclibPcl_newPage,
    .close = mclibPcl_fclose,
    .jobStatus = mclibPcl_jobStatus,
    .stroke =
        [](const Stroke& s) {
            mclibPcl_drawPolylineExtended(s.points, s.count, s.width, s.style->pclType, s.style->pclLength, s.gray);
        },
    .label = [](const Label& l) { mclibPcl_drawText(l.x, l.y, l.text, l.height, l.angle, l.just); },
};
