// The contract between print jobs and print devices. A device is a file that ends with a row of this kind, and its name
// in the list of devices.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "mclib/print/letters.h"
#include "mclib/print/print.h"

namespace mc {

struct LineStyle;  // mclib/print/styles.h

// A polyline. gray from 0 (black) to 1 (white) asks for the closed outline to be filled; any other value for a line.
struct Stroke {
    const Point3d* points;
    int32_t count;  // at least 2
    double width;   // of the pen
    const LineStyle* style;
    double gray;
};
constexpr bool isGray(double gray) {
    return 0.0 <= gray && gray <= 1.0;
}

// A text on its base line.
struct Label {
    double x, y;
    char* text;     // HP-GL replaces letters in it
    double height;  // 1.3 times the height of the text's box
    double angle;
    int32_t just;          // 0 centred, 1 right-aligned, else left-aligned
    const Point3d* shape;  // the five points of its box, turned about the sheet's origin so that the text lies level
    double size;           // as the host tells it
    double pageAngle;      // direction of reading of the page
};

// What is done with a job. Lengths are millimetres on the paper, x right, y up, origin at the sheet's lower left
// corner; angles are degrees, counter-clockwise. All that a device knows of a job lies in the job's state, a block of
// `size` bytes that is zero-filled at first and goes after `close`; many jobs may be open at a time. `open` comes
// first, once; it tells of a failure on the console, and only `status` is asked then.
struct JobCalls {
    size_t size;
    bool (*open)(void* job, const char* fileName,
                 int pageCode);  // null: the device takes whole jobs, and makes nothing
    void (*newPage)(void* job);
    void (*close)(void* job);                         // ends the last page
    int32_t (*status)(void* job);                     // MCLIB_SUCCESS or MCLIB_ERROR: was all written so far?
    void (*stroke)(void* job, const Stroke& stroke);  // null: lines aren't shown
    void (*label)(void* job, const Label& label);
};
constexpr JobCalls noCalls{};

// The calls of a structure that is a device's job state: its member functions of these names.
template <class Job>
constexpr JobCalls callsOf() {
    static_assert(std::is_trivially_default_constructible_v<Job> && std::is_trivially_destructible_v<Job>);
    JobCalls calls = {
        .size = sizeof(Job),
        .open = [](void* job, const char* fileName, int page) { return static_cast<Job*>(job)->open(fileName, page); },
        .newPage = [](void* job) { static_cast<Job*>(job)->newPage(); },
        .close = [](void* job) { static_cast<Job*>(job)->close(); },
        .status = [](void* job) { return static_cast<Job*>(job)->status(); },
        .stroke = nullptr,
        .label = [](void* job, const Label& label) { static_cast<Job*>(job)->label(label); },
    };
    if constexpr (requires { &Job::stroke; })
        calls.stroke = [](void* job, const Stroke& stroke) { static_cast<Job*>(job)->stroke(stroke); };
    return calls;
}

// What a print device is and does.
struct PrintDriver {
    McPrintDevice device;             // what users and applications know of it
    const ShownLetters* letters;      // that its files show; null: all of Windows-1252
    const ShownLetters* moreLetters;  // and those that they show when device.lettersVariable has its value
    JobCalls job;

    bool is(uint32_t trait) const { return (device.traits & trait) != 0; }
};

// Whether its files, opened now, show what device.lettersVariable brings.
bool hasMoreLetters(const PrintDriver& driver);

}  // namespace mc
