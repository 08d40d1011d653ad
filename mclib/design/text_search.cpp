// Texts of the active model by pattern.
#include "mclib/design/text_search.h"

#include <cstddef>
#include <cstring>
#include <string>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mclib/design/criteria.h"
#include "mclib/design/pattern.h"

using namespace mc;
using design::Pattern;

namespace {

static_assert(offsetof(SearchTextSpec, minHeight) == 216 && offsetof(SearchTextSpec, levelMask) == 232 &&
              offsetof(SearchTextSpec, low) == 248 && sizeof(SearchTextSpec) == 296);

struct HitFunction {
    MclibSearchTextHit function;
    void* arg;
};

// One search: what was asked for when it began, whatever its functions do to the description.
class TextSearch {
  public:
    TextSearch(SearchTextSpec* spec, HitFunction exact, HitFunction near)
        : asked_(spec),
          spec_(*spec),
          pattern_({spec_.pattern, strnlen(spec_.pattern, sizeof spec_.pattern)},
                   (spec_.flags & SEARCH_CASE_SENSITIVE) != 0),
          exact_(exact),
          near_(near) {}

    void run() {
        if (!element_) return;  // which the user has been told
        const mdl::CurrTransScope masterUnits(mdl::CurrTransScope::Begin::masterUnits);
        const mdl::Scan scan;
        if (!masterUnits || !design::prepareScan(scan, design::ElementGroup::texts, spec_.levelMask,
                                                 (spec_.flags & SEARCH_USE_RANGE) != 0, spec_.low, spec_.high)) {
            toolSubsystem_printf(
                "ERROR - Texts can't be searched: no design file is open, the search area isn't a box, "
                "too many transforms are open, or memory is out\n");
            return;
        }
        FilePos position = 0;
        for (int32_t words = 2; mdlScanCriteria_scan(scan.criteria(), &position, &words, nullptr) == MDL_SCAN_MORE;
             words = 2) {
            if (position != 0 && look(position)) return;
        }
    }

  private:
    // True when a function wants the search to end.
    bool look(FilePos position) {
        if (mdlElement_read(element_.get(), model_, position) == 0) return false;
        char text[MCLIB_SEARCH_TEXT_SIZE];
        if (mdlText_extractString(text, element_.get()) != MDL_SUCCESS) {
            toolSubsystem_printf("error extract: %s\n", ("element " + std::to_string(position)).c_str());
            return false;
        }
        // The pattern goes first: nothing else refuses as many texts at so little cost.
        const int errors =
            design::errorsOfText(text, pattern_, (spec_.flags & SEARCH_IGNORE_BLANKS) != 0, spec_.maxErrors);
        if ((errors != 0 && errors > spec_.maxErrors) || !filter_.accepts(*element_) || !acceptsHeight()) return false;
        return callHit(errors == 0 ? exact_ : near_, position, errors);
    }
    bool acceptsHeight() const {
        if (spec_.minHeight < 0 && spec_.maxHeight < 0) return true;
        double height = 0;
        return mdlText_extract(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &height, nullptr,
                               element_.get()) == MDL_SUCCESS &&
               height >= spec_.minHeight && (spec_.maxHeight < 0 || height <= spec_.maxHeight);
    }
    bool callHit(const HitFunction& hit, FilePos position, int32_t errors) {
        int stop = 0;
        if (hit.function)
            dlmSystem_callAnyFunction("PPIIPP", mdlSystem_getCurrMdlDesc(), reinterpret_cast<void*>(hit.function),
                                      &stop, element_.get(), position, errors, asked_, hit.arg);
        return stop != 0;
    }

    SearchTextSpec* const asked_;
    const SearchTextSpec spec_;
    const Pattern pattern_;
    const HitFunction exact_, near_;
    const design::ElementFilter filter_ = {spec_.levelMask, spec_.weight, spec_.style, spec_.color};
    const design::Limits heights_ = {spec_.minHeight, spec_.maxHeight};
    ModelRef* const model_ = mdlModelRef_getActive();
    const design::ElementBuffer element_ = design::makeElementBuffers();
};

}  // namespace

int mclibSearch_checkString(char* text, const char* pattern) {
    char empty[] = "";
    return design::errorsOfText(text ? text : empty, Pattern(pattern ? pattern : empty, false), false, 0);
}

int mclibSearch_Tekst(SearchTextSpec* spec, MclibSearchTextHit exactFunction, void* exactArg,
                      MclibSearchTextHit nearFunction, void* nearArg) {
    if (spec) {
        TextSearch(spec, {exactFunction, exactArg}, {nearFunction, nearArg}).run();
    } else {
        toolSubsystem_printf("ERROR - Texts can't be searched: no description of them was given\n");
    }
    return MCLIB_SUCCESS;
}
