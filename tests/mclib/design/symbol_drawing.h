// Drawings of symbols, and what is recognised in them.
#pragma once

#include <functional>
#include <numbers>
#include <string>
#include <vector>

#include "mchost/mdl/compound.h"
#include "mchost/mdl/transform.h"
#include "mclib/design/element_search.h"
#include "tests/mclib/design/design_fixture.h"

constexpr double pi = std::numbers::pi;

// A search for symbols whose texts stand in boxes; all that isn't told is taken as it is.
struct SymbolSearch {
    SearchElementSpec spec = {};
    std::vector<Point3d> low, high;
    std::vector<SearchTextSpec> texts;

    explicit SymbolSearch(int32_t group, std::vector<SearchTextSpec> wanted = {textsLike("*")})
        : low({{-50, -50, 0}}), high({{50, 50, 0}}), texts(std::move(wanted)) {
        spec.group = group;
        spec.minSizeA = spec.maxSizeA = spec.minSizeB = spec.maxSizeB = -1;
        spec.weight = spec.style = spec.color = -1;
        std::strcpy(spec.pattern, "*");
    }
    SymbolSearch(const SymbolSearch&) = delete;
    SymbolSearch& operator=(const SymbolSearch&) = delete;

    SearchElementSpec* ready() {
        spec.regionLow = low.data();
        spec.regionHigh = high.data();
        spec.regionCount = static_cast<int32_t>(low.size());
        spec.textSpecs = texts.data();
        spec.textSpecCount = static_cast<int32_t>(texts.size());
        return &spec;
    }
};

// What a report tells.
struct Report {
    bool isNear;
    FilePos position;
    int type;  // of the base element
    std::vector<std::string> texts;
    std::vector<int32_t> errors;
    Point3d center;  // of an ellipse, in master units
    double axis1, axis2;
    RotMatrix rotation;
};

class SymbolTest : public DesignTest {
  protected:
    template <class Build>
    static FilePos add(Build build) {
        const mdl::CurrTransScope units(mdl::CurrTransScope::Begin::masterUnits);
        auto element = std::make_unique<MSElementBuffer>();
        EXPECT_EQ(build(element.get()), MDL_SUCCESS);
        return mdlElement_add(element.get());
    }
    static FilePos addLine(Point3d from, Point3d to) {
        const Point3d ends[] = {from, to};
        return add([&](MSElementBuffer* e) { return mdlLine_create(e, nullptr, ends); });
    }
    static FilePos addShape(const std::vector<Point3d>& corners) {
        return add([&](MSElementBuffer* e) {
            return mdlShape_create(e, nullptr, corners.data(), static_cast<int32_t>(corners.size()), 0);
        });
    }
    static FilePos addBox(Point3d low, double width, double height) {
        return addShape({low,
                         {low.x + width, low.y, low.z},
                         {low.x + width, low.y + height, low.z},
                         {low.x, low.y + height, low.z}});
    }
    static FilePos addEllipse(Point3d center, double axis1, double axis2) {
        return add(
            [&](MSElementBuffer* e) { return mdlEllipse_create(e, nullptr, &center, axis1, axis2, nullptr, 0); });
    }
    static FilePos addArc(Point3d center, double radius, double start, double sweep) {
        return add([&](MSElementBuffer* e) {
            return mdlArc_create(e, nullptr, &center, radius, radius, nullptr, start, sweep);
        });
    }
    using Part = std::function<int(MSElementBuffer*)>;
    static FilePos addCompound(const std::vector<Part>& parts) {
        return add([&](MSElementBuffer* e) {
            mdl::Descr all;
            for (const Part& part : parts) {
                EXPECT_EQ(part(e), MDL_SUCCESS);
                EXPECT_EQ(all ? mdlElmdscr_appendElement(all.get(), e) : mdlElmdscr_new(all.out(), nullptr, e),
                          MDL_SUCCESS);
            }
            return mdlCompound_create(e, nullptr, all.get());
        });
    }
    static std::string textOf(const MSElementBuffer& element) {
        char text[MDL_TEXT_CHARACTERS + 1] = "";
        EXPECT_EQ(mdlText_extractString(text, &element), MDL_SUCCESS);
        return text;
    }

    std::vector<Report> reports;
    int status = 0;  // of the functions

    static void report(SymbolTest& test, bool isNear, int* status, const ElementDescr* base,
                       const MSElementBuffer* texts, const int32_t* errors, const SearchElementSpec* spec) {
        EXPECT_EQ(*status, 0);
        Report told = {isNear, base->filePos, mdlElement_getType(base->element), {}, {}, {}, 0, 0, {}};
        for (int32_t i = 0; i < spec->textSpecCount; ++i) {
            told.texts.push_back(textOf(texts[i]));
            told.errors.push_back(errors[i]);
        }
        if (told.type == MDL_ELLIPSE)
            mdlArc_extract(&told.center, &told.axis1, &told.axis2, &told.rotation, nullptr, nullptr, base->element);
        test.reports.push_back(told);
        *status = test.status;
    }
    template <bool isNear>
    static void hit(int* status, ElementDescr* base, MSElementBuffer* texts, int32_t* errors, SearchElementSpec* spec,
                    void* test) {
        report(*static_cast<SymbolTest*>(test), isNear, status, base, texts, errors, spec);
    }
    enum Options { plain = 0, nearToo = 1, deleteTexts = 2 };
    const std::vector<Report>& recognised(SymbolSearch& search, int options = nearToo) {
        reports.clear();
        EXPECT_EQ(mclibSearch_Element(search.ready(), hit<false>, this, (options & nearToo) != 0 ? hit<true> : nullptr,
                                      this, (options & deleteTexts) != 0),
                  0);
        return reports;
    }
    size_t count(SymbolSearch& search, int options = nearToo) { return recognised(search, options).size(); }
};
