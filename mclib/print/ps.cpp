// The output: the prolog, then one line of text for each drawing step, in points, on one open page after the other.
#include "mclib/print/ps.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <numbers>
#include <string_view>

#include "mchost/mdl/files.h"
#include "mchost/mdl/system.h"
#include "mclib/print/job.h"
#include "mclib/print/output.h"
#include "mclib/print/ps_letters.h"
#include "mclib/print/ps_prolog.h"
#include "mclib/print/styles.h"

namespace mc {

extern const PrintDriver psDriver;  // the end of this file

namespace {

// Points in a millimetre. Differs from 72 / 25.4 in the eighth decimal; every PostScript file is made with this value.
constexpr double pointsPerMm = 2.834645651435303;

inline char* putNumber(char* p, double v) {
    p = putHundredths(p, v);
    *p++ = ' ';
    return p;
}

inline char* putLength(char* p, double mm) {
    return putNumber(p, mm * pointsPerMm);
}

inline char* putPoint(char* p, double x, double y, std::string_view operation) {
    return put(putLength(putLength(p, x), y), operation);
}

char* putGray(char* p, double gray) {
    return put(putNumber(p, gray), "setgray\n");
}

char* putLineWidth(char* p, double width) {
    return put(putLength(p, width), "setlinewidth\n");
}

char* putArc(char* p, double x, double y, double radius, double startAngle, double endAngle) {
    p = putLength(putLength(putLength(p, x), y), radius);
    return put(putNumber(putNumber(p, startAngle), endAngle), "arc\n");
}

constexpr std::string_view fillOperations = "closepath fill\n0.00 setgray\n";

// ---- texts ----

constexpr size_t escapedTextSize = 256;  // its NUL included

// A text between the parentheses of a string: backslashes doubled, and a backslash before each parenthesis that has no
// partner.
class EscapedText {
  public:
    explicit EscapedText(std::string_view text) {
        text = text.substr(0, escapedTextSize - 1);
        if (text.find_first_of("\\()") == text.npos) {
            length = text.copy(buffer, text.size());
            return;
        }
        while (!escape(text)) text.remove_suffix(1);
    }

    std::string_view view() const { return {buffer, length}; }

  private:
    // False when the result doesn't fit. A shorter text can lack a parenthesis that was a partner.
    bool escape(std::string_view text) {
        bool alone[escapedTextSize] = {};
        size_t open[escapedTextSize], depth = 0;
        for (size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '(') open[depth++] = i;
            if (text[i] == ')' && depth-- == 0) alone[i] = true, depth = 0;
        }
        for (size_t i = 0; i < depth; ++i) alone[open[i]] = true;
        length = 0;
        for (size_t i = 0; i < text.size(); ++i) {
            const bool escaped = text[i] == '\\' || alone[i];
            if (length + escaped + 1 >= escapedTextSize) return false;
            if (escaped) buffer[length++] = '\\';
            buffer[length++] = text[i];
        }
        return true;
    }

    char buffer[escapedTextSize];
    size_t length = 0;
};

constexpr std::string_view textProcedure(int just) {
    switch (just) {
        case 0: return "_dtfc\n";
        case 1: return "_dtfr\n";
        default: return "_dtfl\n";
    }
}

// ---- files ----

struct CloseStream {
    void operator()(FILE* stream) const { dlmSystem_mdlFclose(stream); }
};
using Stream = std::unique_ptr<FILE, CloseStream>;

int cannotLoad(const char* fileName) {
    toolSubsystem_printf("mcpslib: unable to load %s.\n", fileName);
    return 0;
}

char* putThousandths(char* p, double v) {
    p = std::to_chars(p, p + numberRoom, v, std::chars_format::fixed, 3).ptr;
    *p++ = ' ';
    return p;
}

// ---- the job ----

struct PsJob {
    PrintOutput output;
    bool extended;     // the rest of Windows-1252 is set up where a page needs it
    bool setUpOnPage;  // and was on this page

    bool open(const char* fileName, int pageCode);
    void newPage();
    void close();
    int32_t status() { return output.status(); }

    void prepareLetters(std::string_view text);
    void drawPolyline(const Point3d* points, int count, double width, double gray);
    void drawPolyline(const Point3d* points, int count, double width, const char* dash, double gray);
    void drawText(double x, double y, const char* text, double height, double angle, int just);

    void stroke(const Stroke& s) { drawPolyline(s.points, s.count, s.width, s.style->psDash, s.gray); }
    void label(const Label& l) { drawText(l.x, l.y, l.text, l.height, l.angle, l.just); }
};

PsJob* currentPsJob() {
    return static_cast<PsJob*>(print::currentJob(PRINT_POSTSCRIPT).state());
}

}  // namespace

bool PsJob::open(const char* fileName, int) {
    if (!output.open("mcpslib", fileName)) return false;
    output.write(psProlog);
    extended = hasMoreLetters(psDriver);
    return true;
}

void PsJob::newPage() {
    output.write("showpage\n");
    setUpOnPage = false;
}

void PsJob::close() {
    newPage();
    output.close(psDriver.device.name, extended ? "" : "; MC_PSENCODING = 1252 brings what Windows-1252 has");
}

// ---- drawing ----

// Before the first text of a page with a letter that the head doesn't bring, the font is set up anew.
void PsJob::prepareLetters(std::string_view text) {
    output.look(text, extended ? windowsLetters : headLetters);
    if (!extended || setUpOnPage) return;
    const auto isInHead = [](char c) { return headLetters[static_cast<unsigned char>(c)]; };
    if (std::ranges::all_of(text, isInHead)) return;
    output.write(psWindowsLetters);
    setUpOnPage = true;
}

void PsJob::drawPolyline(const Point3d* points, int count, double width, double gray) {
    const bool filled = isGray(gray);
    char* p = output.line();
    if (filled) p = putGray(p, gray);
    p = output.roomAt(putLineWidth(p, width));
    p = putPoint(p, points[0].x, points[0].y, "moveto\n");
    for (int i = 1; i < count; ++i) p = putPoint(output.roomAt(p), points[i].x, points[i].y, "lineto\n");
    output.taken(put(output.roomAt(p), filled ? fillOperations : "stroke\n"));
}

void PsJob::drawPolyline(const Point3d* points, int count, double width, const char* dash, double gray) {
    output.write("[");
    output.write(dash);
    output.write("] 0 setdash\n");
    drawPolyline(points, count, width, gray);
}

void PsJob::drawText(double x, double y, const char* text, double height, double angle, int just) {
    prepareLetters(text);
    char* p = putLength(putLength(output.line(), x), y);
    p = put(put(put(p, "("), EscapedText(text).view()), ") ");
    output.taken(put(putNumber(putLength(p, height), angle), textProcedure(just)));
}

}  // namespace mc

using namespace mc;

// ---- the exported calls ----

int mclibPs_fopen(const char* fileName) {
    return print::openCurrentJob(PRINT_POSTSCRIPT, fileName);
}

void mclibPs_newPage(void) {
    if (PsJob* job = currentPsJob()) job->newPage();
}

void mclibPs_fclose(void) {
    print::currentJob(PRINT_POSTSCRIPT).close();
}

int mclibPs_jobStatus(void) {
    return print::currentJob(PRINT_POSTSCRIPT).fileStatus();
}

void mclibPs_drawLine(float x1, float y1, float x2, float y2, float width) {
    PsJob* job = currentPsJob();
    if (!job) return;
    char* p = job->output.line();
    for (const float value : {x1, y1, x2, y2, width}) p = putLength(p, value);
    job->output.taken(put(p, "_dl\n"));
}

void mclibPs_drawPolyline(const Point3d* points, int count, double width, double gray) {
    PsJob* job = currentPsJob();
    if (job && points && count >= 1) job->drawPolyline(points, count, width, gray);
}

void mclibPs_drawPolylineExtended(const Point3d* points, int count, double width, const char* dash, double gray) {
    PsJob* job = currentPsJob();
    if (job && points && count >= 1) job->drawPolyline(points, count, width, dash ? dash : "", gray);
}

void mclibPs_drawText(double x, double y, const char* text, double height, double angle, int just) {
    PsJob* job = currentPsJob();
    if (job && text) job->drawText(x, y, text, height, angle, just);
}

void mclibPs_drawArc(double x, double y, double radius, double startAngle, double endAngle, double width) {
    PsJob* job = currentPsJob();
    if (!job) return;
    PrintOutput& output = job->output;
    const double start = startAngle * std::numbers::pi / 180;
    char* p = output.roomAt(putLineWidth(output.line(), width));
    p = output.roomAt(putPoint(p, x + radius * std::cos(start), y + radius * std::sin(start), "moveto\n"));
    output.taken(put(putArc(p, x, y, radius, startAngle, endAngle), "stroke\n"));
}

void mclibPs_fillCirc(double x, double y, double radius, double startAngle, double endAngle, double gray) {
    PsJob* job = currentPsJob();
    if (!job) return;
    PrintOutput& output = job->output;
    char* p = output.roomAt(putPoint(putGray(output.line(), gray), x, y, "moveto\n"));
    output.taken(put(putArc(p, x, y, radius, startAngle, endAngle), fillOperations));
}

int mclibPs_includeEPSFile(const char* fileName, double scaleX, double scaleY, double x, double y, double rotation) {
    PsJob* job = currentPsJob();
    if (!job) return 0;
    PrintOutput& output = job->output;
    char buffer[4096];
    const Stream eps(dlmSystem_mdlFopen(fileName, "r"));
    size_t length = eps ? std::fread(buffer, 1, sizeof buffer, eps.get()) : 0;
    if (!eps || std::ferror(eps.get())) return cannotLoad(fileName);
    output.write("/EPSsave save def\n/showpage {} def\n");
    char* p = put(putLength(putLength(output.line(), x), y), "translate ");
    p = put(putThousandths(putThousandths(p, scaleX), scaleY), "scale ");
    output.taken(put(putNumber(p, rotation), "rotate\n"));
    output.write("% begin included EPS file\n");
    for (; length > 0; length = std::fread(buffer, 1, sizeof buffer, eps.get())) output.write({buffer, length});
    output.write("% end included EPS file\nEPSsave restore\n");
    return std::ferror(eps.get()) ? cannotLoad(fileName) : 1;
}

namespace mc {

// ---- the device ----

constexpr PrintDriver psDriver = {
    .device = {.code = PRINT_POSTSCRIPT,
               .key = "postscript",
               .name = "PostScript",
               .suffix = ".ps",
               .traits = PRINT_DEVICE_TO_PRINTER,
               .longestPaperSide = 0,
               .lettersVariable = "MC_PSENCODING",
               .lettersValue = "1252"},
    .letters = &headLetters,
    .moreLetters = &windowsLetters,
    .job = callsOf<PsJob>(),
};

}  // namespace mc
