// Numbers with two decimals, held against printf.
#include "print/hundredths.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

namespace {

std::string formatted(double v) {
    char text[hundredthsRoom];
    return {text, putHundredths(text, v)};
}

std::string printed(double v) {
    char text[400];
    std::snprintf(text, sizeof text, "%.2f", v);
    return text;
}

void expectAsPrinted(double v) {
    for (const double signedValue : {v, -v})
        ASSERT_EQ(formatted(signedValue), printed(signedValue)) << std::hexfloat << signedValue;
}

}  // namespace

TEST(Hundredths, EdgesAreThoseOfPrintf) {
    using limits = std::numeric_limits<double>;
    for (const double v : {0.0,
                           0.004,
                           0.005,
                           0.015,
                           0.995,
                           9.995,
                           99.995,
                           0.125,
                           0.375,
                           2.5,
                           1e15 + 0.5,
                           999999.995,
                           4503599627370495.5,
                           4503599627370496.5,
                           9007199254740991.0,
                           9007199254740992.0,
                           1e16,
                           1e22,
                           1e300,
                           limits::max(),
                           limits::min(),
                           limits::denorm_min(),
                           limits::epsilon(),
                           limits::infinity(),
                           limits::quiet_NaN()}) {
        expectAsPrinted(v);
        expectAsPrinted(std::nextafter(v, limits::infinity()));
        expectAsPrinted(std::nextafter(v, -limits::infinity()));
    }
}

TEST(Hundredths, HalvesGoToTheEvenDigit) {
    // With a binary fraction of eighths the hundredths are exact halves.
    for (int i = 0; i < 100000; ++i) expectAsPrinted(i * 0.125);
}

TEST(Hundredths, RandomNumbersAreThoseOfPrintf) {
    std::mt19937_64 random(11);
    for (int i = 0; i < 50000; ++i) {
        expectAsPrinted(std::bit_cast<double>(random()));  // of any size
        expectAsPrinted(std::ldexp(static_cast<double>(random() >> 11), -static_cast<int>(random() % 64)));
        expectAsPrinted(static_cast<double>(random() % 100000000) / 1000);  // near halves
    }
}
