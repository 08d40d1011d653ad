// Line styles and text styles of a model.
#include <algorithm>
#include <cstring>
#include <memory>

#include "mchost/base/guard.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/text.h"
#include "mchost/model/model_ref.h"
#include "mchost/model/table_rules.h"

struct MdlTextStyle {
    host::TextStyle style;
};

namespace host {
namespace {

constexpr int32_t builtInStyles = 8;
constexpr TextParams openParams = {-1, -1, -1, -1, 0, 0, 0};
constexpr TextSize openSize = {1, 0, 0, 0};

const LineStyle* lineStyleByName(const Model& model, std::string_view name) {
    const auto found = std::ranges::find(model.lineStyles, name, &LineStyle::name);
    return found != model.lineStyles.end() ? &*found : nullptr;
}

bool addStyleRow(ListModel* list, int32_t value, const char* text) {
    const int32_t row = mdlListModel_addRow(list);
    return row >= 0 && mdlListModel_setText(list, row, 0, text) == MDL_SUCCESS &&
           mdlListModel_setValue(list, row, 0, value) == MDL_SUCCESS;
}

}  // namespace

const LineStyle* findLineStyle(const Model& model, int32_t number) {
    const auto place = static_cast<size_t>(-(int64_t{number} + 1));  // numbers run from -1 down without a gap
    return number < 0 && place < model.lineStyles.size() ? &model.lineStyles[place] : nullptr;
}

}  // namespace host

using namespace host;

// ---- line styles ----

int mdlLineStyle_define(int32_t* numberP, ModelRef* model, const char* name, const double* pattern,
                        int32_t count) noexcept {
    return guarded(int{MDL_ERROR}, [&]() -> int {
        if (!name || !isLineStyleName({name, strnlen(name, lineStyleNameBytes)})) return MDL_ERROR;
        if (count < 0 || (!pattern && count != 0)) return MDL_ERROR;
        if (!isDashPattern({pattern, static_cast<size_t>(count)})) return MDL_ERROR;
        Model* found = writableModel(model);
        if (!found) return MDL_ERROR;
        std::vector<double> dashes(pattern, pattern + count);
        const LineStyle* before = lineStyleByName(*found, name);
        const int32_t number = before ? before->number : -1 - static_cast<int32_t>(found->lineStyles.size());
        if (before) {
            found->lineStyles[static_cast<size_t>(-1 - number)].pattern = std::move(dashes);
        } else {
            found->lineStyles.push_back({number, name, std::move(dashes)});
        }
        found->tablesChanged = true;
        if (numberP) *numberP = number;
        return MDL_SUCCESS;
    });
}

int mdlLineStyle_numberFromName(int32_t* numberP, const char* name, ModelRef* model) noexcept {
    const Model* found = openModel(model);
    const LineStyle* style = found && name ? lineStyleByName(*found, name) : nullptr;
    if (numberP) *numberP = style ? style->number : 0;
    return style ? int{MDL_SUCCESS} : int{MDL_ERROR};
}

int mdlLineStyle_nameFromNumber(char* name, int32_t number, ModelRef* model) noexcept {
    const Model* found = openModel(model);
    const LineStyle* style = found ? findLineStyle(*found, number) : nullptr;
    if (!style || !name) return MDL_ERROR;
    std::memcpy(name, style->name.c_str(), style->name.size() + 1);
    return MDL_SUCCESS;
}

int mdlLineStyle_getPattern(double* pattern, int32_t* countP, int32_t number, ModelRef* model) noexcept {
    const Model* found = openModel(model);
    const LineStyle* style = found ? findLineStyle(*found, number) : nullptr;
    if (!style) return MDL_ERROR;
    if (pattern) std::ranges::copy(style->pattern, pattern);
    if (countP) *countP = static_cast<int32_t>(style->pattern.size());
    return MDL_SUCCESS;
}

int mdlLevelList_getStyleListModel(ListModel* list, ModelRef* model) noexcept {
    return guarded(int{MDL_ERROR}, [&]() -> int {
        const Model* found = openModel(model);
        if (!found || !list) return MDL_ERROR;
        for (int32_t number = 0; number < builtInStyles; ++number) {
            if (!addStyleRow(list, number, std::to_string(number).c_str())) return MDL_ERROR;
        }
        for (const LineStyle& style : found->lineStyles) {
            if (!addStyleRow(list, MDL_STYLE_NAMED, style.name.c_str())) return MDL_ERROR;
        }
        return MDL_SUCCESS;
    });
}

// ---- text styles ----

MdlTextStyle* mdlTextStyle_getByName(const wchar_t* name, ModelRef* model) noexcept {
    return guarded<MdlTextStyle*>(nullptr, [&]() -> MdlTextStyle* {
        const Model* found = openModel(model);
        if (!found || !name) return nullptr;
        const auto style = found->textStyles.find(name);
        return style != found->textStyles.end() ? new MdlTextStyle{style->second} : nullptr;
    });
}

void mdlTextStyle_free(MdlTextStyle* style) noexcept {
    delete style;
}

int mdlTextStyle_getTextParamWideFromStyle(TextParams* params, TextSize* size, const MdlTextStyle* style) noexcept {
    if (!style) return MDL_ERROR;
    if (params) *params = style->style.params;
    if (size) *size = style->style.size;
    return MDL_SUCCESS;
}

int mdlTextStyle_define(ModelRef* model, const wchar_t* name, const TextParams* params, const TextSize* size) noexcept {
    return guarded(int{MDL_ERROR}, [&]() -> int {
        const TextStyle style = {params ? *params : openParams, size ? *size : openSize};
        if (!name || !isTableName(name) || !isFinite(style)) return MDL_ERROR;
        Model* found = writableModel(model);
        if (!found) return MDL_ERROR;
        found->textStyles[name] = style;
        found->tablesChanged = true;
        return MDL_SUCCESS;
    });
}
