#include "marking.h"

#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <memory>
#include <set>

#include <mchost/mdl/model.h>
#include <mclib/mclib.h>
#include <mclib/app/drawings.hpp>
#include <mclib/app/outputs.hpp>
#include <mclib/app/system_path.hpp>
#include <mclib/app/tell.hpp>

namespace symbols {

namespace {

namespace fs = std::filesystem;

constexpr const char* drawingSuffix = ".mcd";
enum { LINE_LOOK = 1, TEXT_LOOK = 2 };

// ---- labels ----

// Sizes of attributes are whole parts of the height of letters, which the scale of an arrow divides by.
constexpr double partsOfHeight = 100;
constexpr int headSize = 120;

bool addLook(int id, const char* label, int kind) {
    constexpr int group = 1, red = 3;
    const auto look = std::make_unique<ElmAttrData>();
    look->useFlags = ATTR_USE_COLOR | ATTR_USE_WEIGHT | ATTR_USE_STYLE | ATTR_USE_LEVEL;
    look->color = red;
    std::wcscpy(look->levelName, L"Doubtful");
    if (kind == ATTR_KIND_TEXT) {
        look->useFlags |= ATTR_USE_SIZE;
        look->textHeight = look->textWidth = partsOfHeight;
        look->textLineSpacing = 0.5;
    }
    return mclibElmAttr_addAttribute(id, label, group, kind, 0, nullptr, 0, look.get()) == MCLIB_SUCCESS;
}

bool beginLooks() {
    mclibElmAttr_setGroupeNames(1, "Doubtful symbols", 1, 0);
    return (addLook(LINE_LOOK, "Leader and frame", ATTR_KIND_SYMBOLOGY) &&
            addLook(TEXT_LOOK, "Text", ATTR_KIND_TEXT)) ||
           mcapp::fail("no memory for the looks of marks");
}

// A label above and to the right of the symbol, with letters as large as its own.
bool drawMark(const Symbol& symbol) {
    constexpr int view = 0, filledHead = 6;
    constexpr double leaderHeights = 5;
    const double uor = mdlModelRef_getUorPerMaster(mdlModelRef_getActive());
    const double reach = symbol.textHeight * leaderHeights;
    const Point3d& tip = symbol.place;
    const Point3d vertices[] = {{tip.x * uor, tip.y * uor, tip.z * uor},
                                {(tip.x + reach) * uor, (tip.y + reach) * uor, tip.z * uor}};
    std::string text = toldErrors(symbol);
    text.resize(std::min<size_t>(text.size(), ARROW_TEXT_LENGTH));
    mclibArrow_initFilePos();
    return mclibArrow_drawTextArrow(vertices, 2, TEXT_LOOK, LINE_LOOK, LINE_LOOK, partsOfHeight / symbol.textHeight, 0,
                                    text.c_str(), "DOUBTFUL", filledHead, headSize, ARROW_FRAME_BOX_SIDE,
                                    view) == MCLIB_SUCCESS;
}

// ---- copies ----

bool markCopy(const std::string& copy, const std::vector<const Symbol*>& symbols) {
    if (mdlSystem_newDesignFile(copy.c_str(), 0) != MDL_SUCCESS) return false;
    const bool drawn = std::ranges::all_of(symbols, [](const Symbol* symbol) { return drawMark(*symbol); });
    const bool stored = mdlSystem_closeDesignFile() == MDL_SUCCESS;
    return (drawn && stored) || mcapp::failOutput(copy, "not all marks can be drawn; is the disk full?");
}

struct Copy {
    std::string drawing;
    std::vector<const Symbol*> symbols;
    fs::path base;  // of its name, without suffix
};

// One for each drawing, and each with a name of its own.
std::vector<Copy> copiesFor(const std::vector<Doubt>& doubts, const std::string& folder) {
    std::vector<Copy> copies;
    std::set<std::string> taken;
    for (const Doubt& doubt : doubts) {
        auto copy = std::ranges::find(copies, doubt.drawing, &Copy::drawing);
        if (copy == copies.end()) {
            const std::string stem = fs::path(doubt.drawing).stem().string();
            std::string name = stem;
            for (int number = 2; !taken.insert(name).second; ++number) name = stem + "-" + std::to_string(number);
            copy = copies.insert(copies.end(), {doubt.drawing, {}, fs::path(folder) / name});
        }
        copy->symbols.push_back(&doubt.symbol);
    }
    return copies;
}

bool isApart(const Copy& copy) {
    std::error_code error;
    const std::string name = copy.base.string() + drawingSuffix;
    return !fs::equivalent(mcapp::systemPath(name), mcapp::systemPath(copy.drawing), error) ||
           mcapp::fail(copy.drawing + ": its marked copy would take its place; give another folder with --mark");
}

bool make(const Copy& copy, bool overwrite) {
    mcapp::Outputs outputs(copy.base, {drawingSuffix});
    if (!outputs.prepare(copy.drawing, overwrite)) return false;
    const std::string name = outputs.temporary(drawingSuffix);
    const std::string why = mcapp::copyDrawing(name, copy.drawing);
    if (!why.empty()) return mcapp::fail(copy.drawing + ": " + why + ", so it can't be marked");
    if (!markCopy(name, copy.symbols) || !outputs.finish()) return false;
    toolSubsystem_printf("symbols: made %s\n", outputs.names().front().c_str());
    return true;
}

}  // namespace

bool markDoubts(const std::vector<Doubt>& doubts, const std::string& folder, bool overwrite) {
    if (doubts.empty()) return true;
    const std::vector<Copy> copies = copiesFor(doubts, folder);
    if (!std::ranges::all_of(copies, isApart) || !beginLooks()) return false;
    std::error_code error;
    fs::create_directories(mcapp::systemPath(folder), error);
    return std::ranges::all_of(copies, [&](const Copy& copy) { return make(copy, overwrite); });
}

}  // namespace symbols
