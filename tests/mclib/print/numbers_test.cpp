// Numbers held against printf.
#include "mclib/print/numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

using namespace mc;

namespace {

using Room = char[numberRoom];

template <class Value>
std::string printed(const char* format, Value v) {
    char text[400];
    std::snprintf(text, sizeof text, format, v);
    return text;
}

void expectAsPrinted(double v) {
    for (const double signedValue : {v, -v}) {
        Room text;
        ASSERT_EQ(std::string(text, putHundredths(text, signedValue)), printed("%.2f", signedValue))
            << std::hexfloat << signedValue;
        ASSERT_EQ(std::string(text, putTenths(text, signedValue)), printed("%.1f", signedValue))
            << std::hexfloat << signedValue;
    }
}

}  // namespace

TEST(Numbers, EdgesAreThoseOfPrintf) {
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

TEST(Numbers, HalvesGoToTheEvenDigit) {
    // With a binary fraction of eighths the hundredths are exact halves, with one of quarters the tenths.
    for (int i = 0; i < 100000; ++i) expectAsPrinted(i * 0.125);
}

TEST(Numbers, RandomNumbersAreThoseOfPrintf) {
    std::mt19937_64 random(11);
    for (int i = 0; i < 50000; ++i) {
        expectAsPrinted(std::bit_cast<double>(random()));  // of any size
        expectAsPrinted(std::ldexp(static_cast<double>(random() >> 11), -static_cast<int>(random() % 64)));
        expectAsPrinted(static_cast<double>(random() % 100000000) / 1000);  // near halves
    }
}

TEST(Numbers, WholeNumbersAreCutTowardsZeroAndHeldAtTheirLimits) {
    using limits = std::numeric_limits<double>;
    struct Case {
        double v;
        int32_t whole;
    };
    for (const Case& c : {Case{2.999, 2}, Case{-2.999, -2}, Case{-0.5, 0}, Case{2147483646.5, 2147483646},
                          Case{2147483647.0, INT32_MAX}, Case{1e300, INT32_MAX}, Case{limits::infinity(), INT32_MAX},
                          Case{-2147483647.5, -2147483647}, Case{-2147483648.0, INT32_MIN}, Case{-1e300, INT32_MIN},
                          Case{limits::quiet_NaN(), 0}})
        EXPECT_EQ(truncated(c.v), c.whole) << c.v;
    for (const int32_t v : {0, 7, -7, 10, 99, 100, 9999, 10000, -12345678, INT32_MAX, INT32_MIN}) {
        Room text;
        EXPECT_EQ(std::string(text, putInteger(text, v)), printed("%d", v));
    }
}
