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

// What a print device is and does. Lengths are millimetres on the paper, x right, y up, origin at the sheet's lower
// left corner; angles are degrees, counter-clockwise. All that a device knows of a job lies in the job's state, a block
// of `jobSize` bytes that is zero-filled at first and goes after `close`; many jobs may be open at a time. `open` comes
// first, once; it tells of a failure on the console, and only `status` is asked then. A null member: the device has no
// such operation; one without `open` takes whole jobs and makes nothing of them.
struct PrintDriver {
    McPrintDevice device;             // what users and applications know of it
    const ShownLetters* letters;      // that its files show; null: all of Windows-1252
    const ShownLetters* moreLetters;  // and those that they show when device.lettersVariable has its value

    size_t jobSize;
    bool (*open)(void* job, const char* fileName, int pageCode);
    void (*newPage)(void* job);
    void (*close)(void* job);      // ends the last page
    int32_t (*status)(void* job);  // MCLIB_SUCCESS or MCLIB_ERROR: was all written so far?
    void (*stroke)(void* job, const Stroke& stroke);
    void (*label)(void* job, const Label& label);

    bool is(uint32_t trait) const { return (device.traits & trait) != 0; }
};

// A member function of the structure that is a device's job state, as the row wants it: onJob<&PsJob::newPage>.
template <auto Function>
struct OnJob;
template <class Job, class Result, class... Arguments, Result (Job::*Function)(Arguments...)>
struct OnJob<Function> {
    static Result call(void* job, Arguments... arguments) {
        static_assert(std::is_trivially_default_constructible_v<Job> && std::is_trivially_destructible_v<Job>);
        return (static_cast<Job*>(job)->*Function)(arguments...);
    }
};
template <auto Function>
inline constexpr auto onJob = OnJob<Function>::call;

// Whether its files, opened now, show what device.lettersVariable brings.
bool hasMoreLetters(const PrintDriver& driver);

}  // namespace mc
