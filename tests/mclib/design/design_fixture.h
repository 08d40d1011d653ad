// An open design file with texts in it, for searches.
#pragma once

#include <cstring>
#include <memory>

#include "mchost/mdl/element.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/text.h"
#include "mclib/design/text_search.h"
#include "tests/support/library_fixture.h"

struct Look {
    uint32_t level = 1, color = 0, weight = 0;
    int32_t style = 0;
    double height = 2;  // master units
};

inline SearchTextSpec textsLike(const char* pattern, int maxErrors = 0) {
    SearchTextSpec spec = {};
    std::strcpy(spec.pattern, pattern);
    spec.weight = spec.style = spec.color = -1;
    spec.minHeight = spec.maxHeight = -1;
    spec.maxErrors = maxErrors;
    return spec;
}

class DesignTest : public LibraryTest {
  protected:
    DesignTest() { openDesignFile(); }

    static FilePos addText(const char* text, Point3d origin = {0, 0, 0}, const Look& look = {}) {
        const mdl::CurrTransScope units(mdl::CurrTransScope::Begin::masterUnits);
        const TextSize size = {1, look.height, look.height, 1};
        auto element = std::make_unique<MSElementBuffer>();
        EXPECT_EQ(mdlText_create(element.get(), nullptr, text, &origin, nullptr, &size, nullptr, 0), MDL_SUCCESS);
        mdlElement_setSymbology(element.get(), &look.color, &look.weight, &look.style);
        mdlElement_setProperties(element.get(), &look.level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                 nullptr);
        return mdlElement_add(element.get());
    }
};
