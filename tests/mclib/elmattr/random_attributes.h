// Attributes with random values, and whether two of them say the same.
#pragma once

#include <gtest/gtest.h>

#include <random>
#include <tuple>
#include <utility>

#include "mclib/elmattr/records.h"

class RandomAttributes {
  public:
    int32_t number() { return static_cast<int32_t>(engine_()); }
    double real() { return std::uniform_real_distribution<double>(-1e6, 1e6)(engine_); }
    uint32_t below(uint32_t limit) { return engine_() % limit; }
    template <size_t Size>
    void fill(char (&text)[Size]) {
        for (size_t i = 0, length = below(Size); i < length; ++i) text[i] = static_cast<char>(1 + below(255));
    }
    template <size_t Size>
    void fill(wchar_t (&text)[Size]) {
        for (size_t i = 0, length = below(Size); i < length; ++i) text[i] = static_cast<wchar_t>(1 + below(0xD7FF));
    }
    ElmAttrData data(int32_t kind) {
        ElmAttrData d{};
        for (int32_t* word : {&d.color, &d.style, &d.weight, &d.elementClass, &d.reserved, &d.textFont, &d.textJust,
                              &d.reserved2[0], &d.reserved2[1], &d.optionValue})
            *word = number();
        d.useFlags = static_cast<uint32_t>(number());
        for (double* value : {&d.styleScale, &d.styleWidth, &d.textWidth, &d.textHeight, &d.textLineSpacing})
            *value = real();
        fill(d.levelName);
        fill(d.styleName);
        if (elmattr::isTextKind(kind)) {
            fill(d.textStyleName);
        } else {
            d.symbolNumber = number();
            d.symbolSize = real();
            fill(d.symbolText);
        }
        if (elmattr::hasTextValue(kind)) {
            fill(d.optionText);
        } else {
            d.textSlant = real();
        }
        return d;
    }

  private:
    std::mt19937 engine_{20240229};
};

inline void expectSame(const ElmAttrData& a, const ElmAttrData& b, int32_t kind) {
    const auto values = [](const ElmAttrData& d) {
        return std::tuple(d.color, d.style, d.weight, d.elementClass, d.useFlags, d.reserved, d.styleScale,
                          d.styleWidth, d.textFont, d.textWidth, d.textHeight, d.textJust, d.textLineSpacing,
                          d.reserved2[0], d.reserved2[1], d.optionValue);
    };
    EXPECT_EQ(values(a), values(b));
    EXPECT_STREQ(a.levelName, b.levelName);
    EXPECT_STREQ(a.styleName, b.styleName);
    if (elmattr::isTextKind(kind)) {
        EXPECT_STREQ(a.textStyleName, b.textStyleName);
    } else {
        EXPECT_EQ(std::pair(a.symbolNumber, a.symbolSize), std::pair(b.symbolNumber, b.symbolSize));
        EXPECT_STREQ(a.symbolText, b.symbolText);
    }
    if (elmattr::hasTextValue(kind)) {
        EXPECT_STREQ(a.optionText, b.optionText);
    } else {
        EXPECT_EQ(a.textSlant, b.textSlant);
    }
}
