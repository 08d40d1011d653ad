// Levels of a model, and what elements take from them.
#include "mchost/mdl/level.h"

#include <algorithm>
#include <cwchar>

#include "mchost/base/guard.h"
#include "mchost/mdl/element.h"
#include "mchost/model/level_map.h"
#include "mchost/model/model_ref.h"
#include "mchost/model/table_rules.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/session.h"

namespace host {
namespace {

constexpr int32_t firstFreeCode = 64;  // codes below belong to "Level 1" to "Level 63"

Level* findLevel(Model& model, LevelId id) {
    const auto found = std::ranges::lower_bound(model.levels, id, {}, &Level::id);
    return found != model.levels.end() && found->id == id ? &*found : nullptr;
}

const Level* levelByName(const Model* model, const wchar_t* name) {
    return model && name ? host::findLevel(*model, std::wstring_view(name)) : nullptr;
}

bool codeIsFree(const Model& model, int32_t code) {
    return std::ranges::find(model.levels, code, &Level::code) == model.levels.end();
}

// The N of a name "Level N" or "N" with N from 1 to 63; 0 for every other name.
int32_t numberInName(std::wstring_view name) {
    constexpr std::wstring_view prefix = L"Level ";
    if (name.starts_with(prefix)) name.remove_prefix(prefix.size());
    if (name.empty() || name.size() > 2 || name.front() == L'0') return 0;
    int32_t number = 0;
    for (const wchar_t c : name) {
        if (c < L'0' || c > L'9') return 0;
        number = 10 * number + (c - L'0');
    }
    return number < firstFreeCode ? number : 0;
}

int32_t codeFor(const Model& model, std::wstring_view name) {
    const int32_t number = numberInName(name);
    if (number != 0 && codeIsFree(model, number)) return number;
    int32_t code = firstFreeCode;
    for (const Level& level : model.levels) code = std::max(code, level.code + 1);
    return code;
}

template <class Value>
void takeIfGiven(Value& to, const Value* from) {
    if (from) to = *from;
}

// The levels of the session itself.
struct OwnLevels {
    Model model;
    OwnLevels() { addFirstLevel(model); }
};

Model* sessionLevels() {
    return Session::current() ? &sessionState<OwnLevels>().model : nullptr;
}

// As levelModel, of what can be written; null with a line in the message centre.
Model* writableLevelModel(ModelRef* place) {
    Model* own = place || openModel(nullptr) ? nullptr : levelModel(nullptr);
    return own ? own : writableModel(place);
}

// Changes a level of a model that can be written.
template <class Change>
int changeLevel(ModelRef* model, LevelId id, Change apply) {
    return guarded(int{MDL_ERROR}, [&]() -> int {
        Model* found = writableLevelModel(model);
        Level* level = found ? findLevel(*found, id) : nullptr;
        if (!level) return MDL_ERROR;
        apply(*level);
        level->fromCells = false;
        if (level->stored) found->tablesChanged = true;
        return MDL_SUCCESS;
    });
}

}  // namespace

Model* levelModel(ModelRef* place) {
    Model* found = openModel(place);
    return found || place ? found : guarded<Model*>(nullptr, sessionLevels);
}

void addFirstLevel(Model& model) {
    model.levels.push_back({.id = 1, .code = 0, .name = L"Default", .stored = true});
    model.nextLevel = 2;
}

const Level* findLevel(const Model& model, LevelId id) {
    return findLevel(const_cast<Model&>(model), id);
}

const Level* findLevel(const Model& model, std::wstring_view name) {
    const auto found = std::ranges::find(model.levels, name, &Level::name);
    return found != model.levels.end() ? &*found : nullptr;
}

Level& addLevel(Model& model, std::wstring_view name) {
    const int32_t code = codeFor(model, name);
    Level& level = model.levels.emplace_back(
        Level{.id = model.nextLevel, .code = code, .name = std::wstring(name), .stored = false});
    ++model.unstoredLevels;
    ++model.nextLevel;
    return level;
}

void storeLevel(Model& model, LevelId id) {
    Level* level = findLevel(model, id);
    if (!level || level->stored) return;
    level->stored = true;
    level->fromCells = false;
    --model.unstoredLevels;
    model.tablesChanged = true;
}

}  // namespace host

using namespace host;

int mdlLevel_isValidByName(ModelRef* model, const wchar_t* name) noexcept {
    return levelByName(levelModel(model), name) != nullptr;
}

int mdlLevel_getIdFromName(LevelId* idP, ModelRef* model, LevelId, const wchar_t* name) noexcept {
    const Level* level = levelByName(levelModel(model), name);
    if (!level) return MDL_ERROR;
    if (idP) *idP = level->id;
    return MDL_SUCCESS;
}

int mdlLevel_getIdFromCode(LevelId* idP, ModelRef* model, int32_t code) noexcept {
    const Model* found = levelModel(model);
    if (!found) return MDL_ERROR;
    const auto level = std::ranges::find(found->levels, code, &Level::code);
    if (level == found->levels.end()) return MDL_ERROR;
    if (idP) *idP = level->id;
    return MDL_SUCCESS;
}

int mdlLevel_getName(wchar_t* name, int32_t size, ModelRef* model, LevelId id) noexcept {
    const Model* found = levelModel(model);
    const Level* level = found ? findLevel(*found, id) : nullptr;
    if (!level || !name || size <= 0) return MDL_ERROR;
    const size_t copied = std::min(level->name.size(), static_cast<size_t>(size - 1));
    std::wmemcpy(name, level->name.data(), copied);
    name[copied] = L'\0';
    return copied == level->name.size() ? int{MDL_SUCCESS} : int{MDL_ERROR};
}

int mdlLevel_getCode(int32_t* codeP, ModelRef* model, LevelId id) noexcept {
    const Model* found = levelModel(model);
    const Level* level = found ? findLevel(*found, id) : nullptr;
    if (!level) return MDL_ERROR;
    if (codeP) *codeP = level->code;
    return MDL_SUCCESS;
}

int mdlLevel_getNextId(LevelId* idP, ModelRef* model) noexcept {
    const Model* found = levelModel(model);
    if (!found || !idP) return MDL_ERROR;
    const auto next = std::ranges::upper_bound(found->levels, *idP, {}, &Level::id);
    if (next == found->levels.end()) return MDL_ERROR;
    *idP = next->id;
    return MDL_SUCCESS;
}

int mdlLevel_create(LevelId* idP, ModelRef* model, const wchar_t* name) noexcept {
    return guarded(int{MDL_ERROR}, [&]() -> int {
        if (!name || !isTableName(name)) return MDL_ERROR;
        Model* found = writableLevelModel(model);
        if (!found || levelByName(found, name)) return MDL_ERROR;
        const Level& level = addLevel(*found, name);
        if (idP) *idP = level.id;
        return MDL_SUCCESS;
    });
}

int mdlLevel_setElementSymbology(ModelRef* model, LevelId id, const uint32_t* color, const int32_t* style,
                                 const void* styleParams, const uint32_t* weight, const uint32_t* fillColor) noexcept {
    const auto* params = static_cast<const LineStyleParams*>(styleParams);
    if (params && !isFinite(*params)) return MDL_ERROR;
    return changeLevel(model, id, [&](Level& level) {
        takeIfGiven(level.byLevel.color, color);
        takeIfGiven(level.byLevel.style, style);
        takeIfGiven(level.byLevel.styleParams, params);
        level.byLevel.styleParams.modifiers &= ~uint32_t{LINE_STYLE_DASH_SCALE | LINE_STYLE_GAP_SCALE};
        takeIfGiven(level.byLevel.weight, weight);
        takeIfGiven(level.byLevel.fillColor, fillColor);
    });
}

int mdlLevel_setSymbology(ModelRef* model, LevelId id, uint32_t color, int32_t style, uint32_t weight) noexcept {
    return changeLevel(model, id, [&](Level& level) { level.override = {color, style, weight}; });
}

int mdlLevel_getSymbology(uint32_t* color, int32_t* style, uint32_t* weight, int32_t* overridesColor,
                          int32_t* overridesStyle, int32_t* overridesWeight, ModelRef* model, LevelId id) noexcept {
    const Model* found = levelModel(model);
    const Level* level = found ? findLevel(*found, id) : nullptr;
    if (!level) return MDL_ERROR;
    const LevelOverride& own = level->override;
    if (color) *color = own.color;
    if (style) *style = own.style;
    if (weight) *weight = own.weight;
    if (overridesColor) *overridesColor = own.color != 0;
    if (overridesStyle) *overridesStyle = own.style != 0;
    if (overridesWeight) *overridesWeight = own.weight != 0;
    return MDL_SUCCESS;
}

int mdlLevel_getElementSymbology(uint32_t* color, int32_t* style, uint32_t* weight, ModelRef* model,
                                 LevelId id) noexcept {
    const Model* found = levelModel(model);
    const Level* level = found ? findLevel(*found, id) : nullptr;
    if (!level) return MDL_ERROR;
    if (color) *color = level->byLevel.color;
    if (style) *style = level->byLevel.style;
    if (weight) *weight = level->byLevel.weight;
    return MDL_SUCCESS;
}

int mdlLevelTable_rewrite(ModelRef* model) noexcept {
    return guarded(int{MDL_ERROR}, [&]() -> int {
        Model* found = writableLevelModel(model);
        if (!found) return MDL_ERROR;
        for (Level& level : found->levels) level.stored = level.stored || !level.fromCells;
        found->unstoredLevels = static_cast<uint32_t>(std::ranges::count(found->levels, false, &Level::stored));
        found->tablesChanged = true;
        return MDL_SUCCESS;
    });
}

int mdlElement_getEffectiveSymbology(int32_t* color, int32_t* weight, int32_t* style, double* styleScale,
                                     double* styleWidth, const MSElementBuffer* element, ModelRef* model) noexcept {
    if (!element) return MDL_ERROR;
    const ElementHead& head = element->head;
    const Model* found = levelModel(model);
    const Level* level = found ? findLevel(*found, head.level) : nullptr;
    const LevelSymbology byLevel = level ? level->byLevel : LevelSymbology{};
    LineStyleParams params = byLevel.styleParams;
    if (head.style != styleByLevel && mdlElement_getLineStyleParams(&params, element) != MDL_SUCCESS) params = {};
    if (color) *color = head.color == colorByLevel ? static_cast<int32_t>(byLevel.color) : head.color;
    if (weight) *weight = head.weight == weightByLevel ? static_cast<int32_t>(byLevel.weight) : head.weight;
    if (style) *style = head.style == styleByLevel ? byLevel.style : head.style;
    if (styleScale) *styleScale = params.modifiers & LINE_STYLE_SCALE ? params.scale : 1;
    if (styleWidth) *styleWidth = params.modifiers & LINE_STYLE_START_WIDTH ? params.startWidth : 0;
    return MDL_SUCCESS;
}
