#include "recognising.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <set>

#include <mchost/mdl/bitmask.h>
#include <mchost/mdl/level.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/text.h>

namespace symbols {

namespace {

// ---- levels ----

struct FreeBitMask {
    void operator()(MdlBitMask* mask) const { mdlBitMask_free(&mask); }
};
using Levels = std::unique_ptr<MdlBitMask, FreeBitMask>;

LevelId levelNamed(const std::string& name) {
    wchar_t wide[512] = L"";
    LevelId level = 0;
    mdlCnv_convertMultibyteToUnicode(name.c_str(), -1, wide, static_cast<int>(std::size(wide)));
    return mdlLevel_getIdFromName(&level, nullptr, 0, wide) == MDL_SUCCESS ? level : 0;
}

// Null for all levels; a mask without a level where the drawing hasn't the one that is asked for.
Levels maskOf(const std::string& name) {
    if (name.empty()) return nullptr;
    Levels levels(mdlBitMask_create());
    const LevelId level = levelNamed(name);
    if (level != 0) mdlBitMask_setBit(levels.get(), level - 1, 1);
    return levels;
}

// ---- one kind ----

// What the reports of the library's search go to.
struct Pass {
    const Kind& kind;
    Recognised& all;
    std::set<FilePos>& certain;
    std::map<FilePos, Symbol>& nearest;
};

// What the first star of the pattern took; all of a text that doesn't fit.
std::string starOf(const SearchTextSpec& wanted, const char* text) {
    char taken[MDL_TEXT_CHARACTERS + 1] = "";
    const int status =
        mclibSearch_replaceString(taken, sizeof taken, text, wanted.pattern, "*", wanted.flags & SEARCH_CASE_SENSITIVE);
    return status == MCLIB_SUCCESS ? taken : text;
}

Symbol symbolOf(const Pass& pass, const ElementDescr* base, const MSElementBuffer* texts, const int32_t* errors) {
    Symbol symbol = {&pass.kind, {}, 0, {}, 0};
    for (size_t i = 0; i < pass.kind.texts.size(); ++i) {
        char text[MDL_TEXT_CHARACTERS + 1] = "";
        mdlText_extractString(text, &texts[i]);
        symbol.values.texts.emplace_back(text);
        symbol.values.stars.push_back(starOf(pass.kind.texts[i].spec, text));
        symbol.errors += errors[i];
    }
    mdlText_extract(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &symbol.textHeight, nullptr,
                    &texts[0]);
    Point3d low = {}, high = {};
    mdlElmdscr_computeRange(&low, &high, base, nullptr);
    const double uor = mdlModelRef_getUorPerMaster(mdlModelRef_getActive());
    symbol.place = {(low.x + high.x) / 2 / uor, (low.y + high.y) / 2 / uor, (low.z + high.z) / 2 / uor};
    return symbol;
}

void takeCertain(int*, ElementDescr* base, MSElementBuffer* texts, int32_t* errors, SearchElementSpec*, void* arg) {
    Pass& pass = *static_cast<Pass*>(arg);
    pass.all.certain.push_back(symbolOf(pass, base, texts, errors));
    pass.certain.insert(base->filePos);
}

// Another kind may fit better, so the element stays one to be looked at.
void takeNear(int* status, ElementDescr* base, MSElementBuffer* texts, int32_t* errors, SearchElementSpec*, void* arg) {
    Pass& pass = *static_cast<Pass*>(arg);
    const Symbol symbol = symbolOf(pass, base, texts, errors);
    const auto [known, isNew] = pass.nearest.try_emplace(base->filePos, symbol);
    if (!isNew && symbol.errors < known->second.errors) known->second = symbol;
    *status = 1;
}

void searchFor(Pass& pass) {
    const Kind& kind = pass.kind;
    std::vector<Levels> levels;
    std::vector<SearchTextSpec> texts;
    for (const WantedText& text : kind.texts) {
        levels.push_back(maskOf(text.level));
        texts.push_back(text.spec);
        texts.back().levelMask = levels.back().get();
    }
    levels.push_back(maskOf(kind.level));
    SearchElementSpec spec = kind.spec;
    spec.levelMask = levels.back().get();
    spec.regionLow = kind.low.data();
    spec.regionHigh = kind.high.data();
    spec.regionCount = static_cast<int32_t>(kind.low.size());
    spec.textSpecs = texts.data();
    spec.textSpecCount = static_cast<int32_t>(texts.size());
    mclibSearch_Element(&spec, takeCertain, &pass, takeNear, &pass, 0);
}

}  // namespace

Recognised recognise(const std::vector<Kind>& kinds) {
    Recognised all;
    std::set<FilePos> certain;
    std::map<FilePos, Symbol> nearest;
    mclibSearch_InitElement();
    for (const Kind& kind : kinds) {
        Pass pass = {kind, all, certain, nearest};
        searchFor(pass);
    }
    for (auto& [position, symbol] : nearest)
        if (!certain.contains(position)) all.doubtful.push_back(std::move(symbol));
    return all;
}

std::vector<std::string> levelsOf(const std::vector<Kind>& kinds) {
    std::set<std::string> levels;
    for (const Kind& kind : kinds) {
        levels.insert(kind.level);
        for (const WantedText& text : kind.texts) levels.insert(text.level);
    }
    levels.erase("");
    return {levels.begin(), levels.end()};
}

bool hasLevel(const std::string& name) {
    return levelNamed(name) != 0;
}

}  // namespace symbols
