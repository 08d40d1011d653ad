// Symbols of the active model: base elements with texts in boxes.
#include "mclib/design/element_search.h"

#include <cmath>
#include <cstddef>

#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mclib/design/room.h"
#include "mclib/design/symbol_texts.h"

using namespace mc;

namespace {

static_assert(offsetof(SearchElementSpec, minSizeA) == 208 && offsetof(SearchElementSpec, weight) == 240 &&
              offsetof(SearchElementSpec, levelMask) == 256 && offsetof(SearchElementSpec, regionCount) == 280 &&
              offsetof(SearchElementSpec, textSpecs) == 288 && sizeof(SearchElementSpec) == 304);

struct HitFunction {
    MclibSearchElementHit function;
    void* arg;
};

bool isPlace(const Point3d& corner) {
    return std::isfinite(corner.x) && std::isfinite(corner.y);
}

// Why nothing can be recognised; null when the description is good.
const char* faultOf(const SearchElementSpec* spec) {
    if (!spec) return "no description of the symbols was given";
    if (spec->group < SEARCH_GROUP_LINE || spec->group > SEARCH_GROUP_TEXT)
        return "the base element is none of lines, circles, rectangles and texts (1 to 4)";
    if (!spec->textSpecs || spec->textSpecCount < 1) return "a symbol needs a text, or more";
    if (!spec->regionLow || !spec->regionHigh || spec->regionCount < 1)
        return "a symbol needs a box for its texts, or more";
    for (int32_t i = 0; i < spec->regionCount; ++i)
        if (!isPlace(spec->regionLow[i]) || !isPlace(spec->regionHigh[i])) return "a corner of a box isn't a number";
    return nullptr;
}

void tellFault(const char* fault) {
    toolSubsystem_printf("ERROR - Symbols can't be recognised: %s\n", fault);
}

// One search: what was asked for when it began, whatever its functions do to the description.
class ElementSearch {
  public:
    ElementSearch(SearchElementSpec* spec, HitFunction exact, HitFunction near, bool deletesTexts)
        : asked_(spec), spec_(*spec), exact_(exact), near_(near), deletesTexts_(deletesTexts) {}

    void run() {
        if (!element_) return;  // which the user has been told
        const mdl::Scan scan;
        if (!masterUnits_ ||
            !design::prepareScan(scan, static_cast<design::ElementGroup>(spec_.group), spec_.levelMask,
                                 (spec_.flags & SEARCH_USE_RANGE) != 0, spec_.regionLow[0], spec_.regionHigh[0])) {
            tellFault("no design file is open, too many transforms are open, or memory is out");
            return;
        }
        FilePos position = 0;
        for (int32_t words = 2; mdlScanCriteria_scan(scan.criteria(), &position, &words, nullptr) == MDL_SCAN_MORE;
             words = 2) {
            if (position == 0 || design::doneList->positions.has(position)) continue;
            if (look(position) && design::doneList->isUsed) design::doneList->positions.add(position);
        }
    }

  private:
    // True when a symbol was reported and is done.
    bool look(FilePos position) {
        if (mdlElement_read(element_.get(), model_, position) == 0) return false;
        const std::optional<design::BaseElement> base = bases_.baseOf(*element_, position);
        return base && texts_.find(*base) && report(*base, position);
    }
    bool report(const design::BaseElement& base, FilePos position) {
        mdl::Descr descr;
        if (mdlElmdscr_new(descr.out(), model_, base.element) != MDL_SUCCESS) {
            tellFault("memory is out");
            return false;
        }
        descr.get()->filePos = position;
        if (texts_.anyErrors() && near_.function) return call(near_, descr.get()) == 0;
        if (deletesTexts_) texts_.deleteFromDrawing();
        return call(exact_, descr.get()) == 0;
    }
    // The function's status.
    int call(const HitFunction& hit, ElementDescr* base) {
        int status = 0;
        if (hit.function)
            dlmSystem_callAnyFunction("PPPPPP", mdlSystem_getCurrMdlDesc(), reinterpret_cast<void*>(hit.function),
                                      &status, base, texts_.texts(), texts_.errors(), asked_, hit.arg);
        return status;
    }

    SearchElementSpec* const asked_;
    const SearchElementSpec spec_;
    const HitFunction exact_, near_;
    const bool deletesTexts_;
    const mdl::CurrTransScope masterUnits_{mdl::CurrTransScope::Begin::masterUnits};
    ModelRef* const model_ = mdlModelRef_getActive();
    design::BaseElements bases_{spec_, design::doneList->positions};
    design::SymbolTexts texts_{spec_};
    const design::ElementBuffer element_ = design::makeElementBuffers();
};

}  // namespace

int mclibSearch_InitElement(void) {
    design::doneList->positions.clear();
    design::doneList->isUsed = true;
    return MCLIB_SUCCESS;
}

int mclibSearch_Element(SearchElementSpec* spec, MclibSearchElementHit exactFunction, void* exactArg,
                        MclibSearchElementHit nearFunction, void* nearArg, int deleteTexts) {
    if (const char* fault = faultOf(spec)) {
        tellFault(fault);
    } else {
        ElementSearch(spec, {exactFunction, exactArg}, {nearFunction, nearArg}, deleteTexts != 0).run();
    }
    return MCLIB_SUCCESS;
}
