// The output: for each page a head of PCL sequences, which ends in the switch to HP-GL/2, and its instructions for all
// that is drawn. How texts look is only sent when it differs from the text before on the page.
#include "mclib/print/pcl.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "mclib/print/job.h"
#include "mclib/print/output.h"
#include "mclib/print/styles.h"

namespace mc {

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

// What the page knows of the texts before.
struct TextSetup {
    double height, angle;  // angle in radians
    int32_t just;
};
constexpr TextSetup setupOfNewPage = {0.0, 0.0, 2};

char* putPoint(char* p, double x, double y) {
    constexpr int64_t least = std::numeric_limits<int32_t>::min();
    p = putInteger(p, static_cast<int32_t>(std::max(truncated(unitsPerMm * x) - leftMargin, least)));
    *p++ = ',';
    return putInteger(p, truncated(unitsPerMm * y));
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

// ---- the job ----

struct PclJob {
    PrintOutput output;
    int pageCode;
    TextSetup last;  // on the current page

    bool open(const char* fileName, int pageCode);
    void newPage() {
        output.write(toPcl);
        startPage();
    }
    void close() {
        output.write(toPcl);
        output.write(reset);
        output.close("PCL");
    }
    int32_t status() { return output.status(); }

    void startPage();
    void drawLine(const Point3d* points, int count, double width);
    void fillOutline(const Point3d* points, int count, double width, double gray);
    void drawPolyline(const Point3d* points, int count, double width, double gray);
    void drawPolyline(const Point3d* points, int count, double width, int lineType, double patternLength, double gray);
    void drawText(double x, double y, const char* text, double height, double angle, int just);

    void stroke(const Stroke& s) {
        drawPolyline(s.points, s.count, s.width, s.style->pclType, s.style->pclLength, s.gray);
    }
    void label(const Label& l) { drawText(l.x, l.y, l.text, l.height, l.angle, l.just); }
};

bool PclJob::open(const char* fileName, int code) {
    if (!output.open("mclibPcl", fileName)) return false;
    pageCode = code;
    startPage();
    return true;
}

void PclJob::startPage() {
    last = setupOfNewPage;
    output.write(pageCode == 10 || pageCode == 12 ? landscapeHead : portraitHead);
}

void PclJob::drawLine(const Point3d* points, int count, double width) {
    char* p = putHundredths(put(output.line(), "PU;PW"), width);
    p = put(putPoint(put(p, ";PA"), points[0].x, points[0].y), ";");
    for (int i = 1; i < count; ++i) p = put(putPoint(put(output.roomAt(p), "PD;PA"), points[i].x, points[i].y), ";\n");
    output.taken(p);
}

void PclJob::fillOutline(const Point3d* points, int count, double width, double gray) {
    char* p = putHundredths(put(output.line(), "PU;PW"), width);
    p = put(putPoint(put(p, ";PA"), points[0].x, points[0].y), ";PM0;PD");
    for (int i = 1; i < count; ++i) p = put(putPoint(output.roomAt(p), points[i].x, points[i].y), ",");
    p = put(putPoint(output.roomAt(p), points[0].x, points[0].y), ";\nPM2;FT1");
    if (gray != 0.0) p = putInteger(put(p, "0,"), truncated((1.0 - gray) * 100));
    output.taken(put(p, ";FP;"));
}

void PclJob::drawPolyline(const Point3d* points, int count, double width, double gray) {
    if (isGray(gray))
        fillOutline(points, count, width, gray);
    else
        drawLine(points, count, width);
}

void PclJob::drawPolyline(const Point3d* points, int count, double width, int lineType, double patternLength,
                          double gray) {
    if (lineType > 0) {
        char* p = put(putInteger(put(output.line(), "LT"), lineType), ",");
        output.taken(put(putHundredths(p, patternLength), ";"));
    }
    drawPolyline(points, count, width, gray);
    if (lineType > 0) output.write("LT");
}

void PclJob::drawText(double x, double y, const char* text, double height, double angle, int just) {
    output.look(text, shownLetters);
    const double radians = angle * std::numbers::pi / 180;
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

PclJob* currentPclJob() {
    return static_cast<PclJob*>(print::currentJob(PRINT_PCL).state());
}

}  // namespace

}  // namespace mc

using namespace mc;

// ---- the exported calls ----

int mclibPcl_fopen(const char* fileName, int pageCode) {
    return print::openCurrentJob(PRINT_PCL, fileName, pageCode);
}

void mclibPcl_newPage(void) {
    if (PclJob* job = currentPclJob()) job->newPage();
}

void mclibPcl_fclose(void) {
    print::currentJob(PRINT_PCL).close();
}

int mclibPcl_jobStatus(void) {
    return print::currentJob(PRINT_PCL).fileStatus();
}

void mclibPcl_drawPolyline(const Point3d* points, int count, double width, double gray) {
    PclJob* job = currentPclJob();
    if (job && points && count >= 1) job->drawPolyline(points, count, width, gray);
}

void mclibPcl_drawPolylineExtended(const Point3d* points, int count, double width, int lineType, double patternLength,
                                   double gray) {
    PclJob* job = currentPclJob();
    if (job && points && count >= 1) job->drawPolyline(points, count, width, lineType, patternLength, gray);
}

void mclibPcl_drawText(double x, double y, const char* text, double height, double angle, int just) {
    PclJob* job = currentPclJob();
    if (job && text) job->drawText(x, y, text, height, angle, just);
}

void mclibPcl_drawLine(float, float, float, float, float) {}

void mclibPcl_drawArc(double, double, double, double, double, double) {}

void mclibPcl_fillCirc(double, double, double, double, double, double) {}

namespace mc {

// ---- the device ----

extern constexpr PrintDriver pclDriver = {
    .device = {.code = PRINT_PCL,
               .key = "pcl",
               .name = "PCL",
               .suffix = ".pcl",
               .traits = PRINT_DEVICE_TO_PRINTER,
               .longestPaperSide = 297,  // its page head asks for A4
               .lettersVariable = nullptr,
               .lettersValue = nullptr},
    .letters = &shownLetters,
    .moreLetters = nullptr,
    .job = callsOf<PclJob>(),
};

}  // namespace mc
