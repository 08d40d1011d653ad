// The output: the texts of the job, kept until it ends, then sorted into rows and written with line feeds and blanks
// for what lies between them.
#include "mclib/print/ascii.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "mchost/mdl/system.h"
#include "mchost/mdl/transform.h"
#include "mclib/frame/errors.h"
#include "mclib/print/job.h"
#include "mclib/print/output.h"

namespace mc {

namespace {

constexpr double lineHeight = 2.0;  // mm
constexpr double columnsPerMm = 0.8333333333333334;
constexpr double mostTurned = 1.0;  // degrees
constexpr double mostGap = 100000;  // lines or columns: a text in a senseless place shall not fill the disk

// ---- the store ----

// A block of the host's memory that grows by doubling. Zero-filled it is empty.
template <class T>
struct GrowingBlock {
    T* data;
    size_t count, room;

    // Makes room for more members behind the last. False, with a message and nothing lost, when memory runs out.
    bool makeRoom(size_t more) {
        if (count + more <= room) return true;
        const size_t newRoom = std::max({count + more, 2 * room, size_t{1024}});
        void* block = mclibMem_reallocRscErrorPrintf(data, room * sizeof(T), newRoom * sizeof(T), MCLIB_ERRORS,
                                                     MCLIB_OUT_OF_MEMORY);
        if (!block) return false;
        data = static_cast<T*>(block);
        room = newRoom;
        return true;
    }
    void release() {
        dlmSystem_mdlFree(data);
        *this = {};
    }
};

struct AsciiText {
    size_t offset, length;  // in the characters of the job
    double x, y;            // lower left corner of its box
};

// ---- rows ----

// Rows from the top of the page down, and within a row from left to right; less than 1 mm apart counts as equal. As
// texts of a row may stand on different heights, this is no ordering of all texts: a before b and b before c doesn't
// put a before c.
bool isBefore(const AsciiText& a, const AsciiText& b) {
    const double down = b.y - a.y;
    return std::abs(down) >= lineHeight ? down < 0 : a.x - b.x <= -1.0;
}

// Merges two runs that lie one behind the other.
void mergeRuns(const AsciiText* left, const AsciiText* right, const AsciiText* end, AsciiText* to) {
    const AsciiText* const leftEnd = right;
    while (left != leftEnd && right != end) *to++ = isBefore(*right, *left) ? *right++ : *left++;
    std::copy(right, end, std::copy(left, leftEnd, to));
}

// A stable merge sort; unlike the standard one it is defined for a comparison that is no ordering.
void sortRows(AsciiText* texts, size_t count) {
    AsciiText *from = texts, *to = texts + count;
    for (size_t run = 1; run < count; run *= 2) {
        for (size_t i = 0; i < count; i += 2 * run)
            mergeRuns(from + i, from + std::min(i + run, count), from + std::min(i + 2 * run, count), to + i);
        std::swap(from, to);
    }
    if (from != texts) std::copy(from, from + count, texts);
}

// ---- the job ----

struct AsciiJob {
    PrintOutput output;
    // The texts of the sheet. The store has room for each of them twice: sorting takes no memory that could be missing.
    GrowingBlock<char> characters;
    GrowingBlock<AsciiText> texts;
    double minX;  // of all texts
    bool gapCut;

    bool open(const char* fileName, int) {
        beginSheet();
        return output.open("mclibAscii", fileName);
    }
    void newPage() {
        endSheet();
        output.write("\f");
        beginSheet();
    }
    void close() {
        endSheet();
        output.close("a text file");
    }
    int32_t status() { return output.status(); }

    void drawText(const Point3d& place, std::string_view text, double angle);
    void label(const Label& l) { drawText(l.shape[0], l.text, l.angle - l.pageAngle); }

    void beginSheet() {
        characters = {};
        texts = {};
        minX = *fc_rmaxi4P;
        gapCut = false;
    }
    void endSheet();
    size_t cutGap(double gap);
    size_t linesBetween(double lastY, double y);
    void layOutTexts();
    void tellCutGaps();
};

size_t AsciiJob::cutGap(double gap) {
    if (gap > mostGap) gapCut = true;
    return static_cast<size_t>(std::clamp(gap, 0.0, mostGap));
}

// A text less than two lines lower than the one before it stands on the next line, and so on by the line.
size_t AsciiJob::linesBetween(double lastY, double y) {
    return cutGap(std::ceil((lastY - y) / lineHeight) - 1);
}

void AsciiJob::layOutTexts() {
    size_t column = 0;
    for (const AsciiText* text = texts.data; text != texts.data + texts.count; ++text) {
        if (text != texts.data && text[-1].y - text->y > lineHeight) {
            output.repeat('\n', linesBetween(text[-1].y, text->y));
            column = 0;
        }
        const size_t target = cutGap((text->x - minX) * columnsPerMm);
        if (target > column) {
            output.repeat(' ', target - column);
            column = target;
        }
        output.write({characters.data + text->offset, text->length});
        column += text->length;
    }
}

void AsciiJob::tellCutGaps() {
    toolSubsystem_printf(
        "mclibAscii: gaps over %.0f lines or columns are cut in %s; look for a text far off the page.\n", mostGap,
        output.name());
}

void AsciiJob::endSheet() {
    sortRows(texts.data, texts.count);
    layOutTexts();
    if (gapCut) tellCutGaps();
    texts.release();
    characters.release();
    output.write("\n");
}

void AsciiJob::drawText(const Point3d& place, std::string_view text, double angle) {
    if (!(std::abs(angle) <= mostTurned) || !std::isfinite(place.x) || !std::isfinite(place.y)) return;
    if (!characters.makeRoom(text.size()) || !texts.makeRoom(texts.count + 2)) return;
    put(characters.data + characters.count, text);
    texts.data[texts.count++] = {.offset = characters.count, .length = text.size(), .x = place.x, .y = place.y};
    characters.count += text.size();
    minX = std::min(minX, place.x);
}

}  // namespace

}  // namespace mc

using namespace mc;

// ---- the exported calls ----

int mclibAscii_fopen(const char* fileName) {
    return print::openCurrentJob(PRINT_ASCII, fileName);
}

void mclibAscii_newPage(void) {}

void mclibAscii_fclose(void) {
    print::currentJob(PRINT_ASCII).close();
}

int mclibAscii_jobStatus(void) {
    return print::currentJob(PRINT_ASCII).fileStatus();
}

void mclibAscii_drawText(const Point3d* shape, const char* text, double, double, double angle, int) {
    auto* job = static_cast<AsciiJob*>(print::currentJob(PRINT_ASCII).state());
    if (job && shape && text) job->drawText(shape[0], text, angle);
}

namespace mc {

// ---- the device ----

extern constexpr PrintDriver asciiDriver = {
    .device = {.code = PRINT_ASCII,
               .key = "ascii",
               .name = "table of text",
               .suffix = ".txt",
               .traits = PRINT_DEVICE_TEXT_ONLY | PRINT_DEVICE_ONE_PAGE,
               .longestPaperSide = 0,
               .lettersVariable = nullptr,
               .lettersValue = nullptr},
    .letters = nullptr,
    .moreLetters = nullptr,
    .job = callsOf<AsciiJob>(),
};

}  // namespace mc
