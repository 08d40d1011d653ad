// What an attribute does: dressing an element, making a text, and keeping line style names and numbers in step.
#include <cmath>
#include <cstring>

#include "mchost/mdl/element.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/transform.h"
#include "mclib/elmattr/table.h"
#include "mclib/frame/current_units.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"
#include "mclib/frame/util.h"

namespace mc {

namespace {

bool uses(const ElmAttrData& data, uint32_t flag) {
    return (data.useFlags & flag) != 0;
}

const ElmAttrRecord* recordOfCurrentApplication(int id) {
    const GlobalData* gd = mclibMain_getGlobalDataP();
    return gd ? elmattr::findRecord(*gd, id) : nullptr;
}

// ---- dressing an element ----

void applyNamedStyle(MSElementBuffer* element, const ElmAttrData& data) {
    int32_t number = 0;
    if (mdlLineStyle_numberFromName(&number, data.styleName, mdlModelRef_getActive()) != MDL_SUCCESS) return;
    LineStyleParams params = {0, data.styleScale, data.styleWidth, data.styleWidth, 1, 1};
    if (uses(data, ATTR_USE_STYLE_WIDTH)) params.modifiers |= LINE_STYLE_START_WIDTH | LINE_STYLE_END_WIDTH;
    if (uses(data, ATTR_USE_STYLE_SCALE)) params.modifiers |= LINE_STYLE_SCALE;
    mdlElement_setLineStyle(element, data.styleName, &params);
}

void applyLevel(MSElementBuffer* element, const ElmAttrData& data) {
    const LevelId level = mclibUtil_levelIdFromName(data.levelName);
    if (level == 0) return;
    mdlElement_setProperties(element, &level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
}

constexpr int32_t primaryClass = 0, constructionClass = 1;

void applyLooks(MSElementBuffer* element, const ElmAttrData& data) {
    if (uses(data, ATTR_USE_COLOR)) {
        const auto color = static_cast<uint32_t>(data.color);
        mdlElement_setSymbology(element, &color, nullptr, nullptr);
    }
    if (uses(data, ATTR_USE_STYLE)) {
        if (data.style >= 0) {
            mdlElement_setSymbology(element, nullptr, nullptr, &data.style);
        } else {
            applyNamedStyle(element, data);
        }
    }
    if (uses(data, ATTR_USE_WEIGHT)) {
        const auto weight = static_cast<uint32_t>(data.weight);
        mdlElement_setSymbology(element, nullptr, &weight, nullptr);
    }
    if (uses(data, ATTR_USE_LEVEL)) applyLevel(element, data);
    if (uses(data, ATTR_USE_CLASS)) {
        const int32_t elementClass = data.elementClass == 0 ? primaryClass : constructionClass;
        mdlElement_setProperties(element, nullptr, nullptr, &elementClass, nullptr, nullptr, nullptr, nullptr, nullptr);
    }
}

// ---- making a text ----

// Size and parameters of a text; the size goes to the host only when it is settled.
struct TextSettings {
    TextSize size = {1, 0.0, 0.0, 1.0};
    TextParams params = {};
    bool styleLoaded = false;
    bool sizeSettled = false;
};

template <class T>
T activeParameter(int parameter) {
    T value{};
    mdlParams_getActive(&value, parameter);
    return value;
}

// A dimension that the style leaves open becomes the active text size.
void settleStyleDimension(double& dimension, double uorInMaster, double scale) {
    dimension /= scale / uorInMaster;
    if (dimension == 0.0) dimension = inCurrentUnits(activeParameter<double>(MDL_PARAM_TEXT_SIZE)) / scale;
}

void loadTextStyle(TextSettings& text, const ElmAttrData& data, double scale) {
    if (uses(data, ATTR_USE_TEXT_STYLE)) {
        if (MdlTextStyle* style = mdlTextStyle_getByName(data.textStyleName, mdlModelRef_getActive())) {
            mdlTextStyle_getTextParamWideFromStyle(&text.params, &text.size, style);
            mdlTextStyle_free(style);
            const double uorInMaster = *mclibUtil_UORToMasterP(1.0);
            settleStyleDimension(text.size.width, uorInMaster, scale);
            settleStyleDimension(text.size.height, uorInMaster, scale);
            text.styleLoaded = text.sizeSettled = true;
            return;
        }
    }
    text.params.textStyle = text.params.styleFields = -1;
}

void setSlant(TextParams& params, double degrees) {
    params.flags |= TEXT_FLAG_SLANT;
    params.slant = degrees * *fc_piover180P;
}

// Kinds with a text value have it in the place of the slant.
bool hasSlant(const ElmAttrRecord& record) {
    return record.kind != ATTR_KIND_LABELLED_TEXT && record.kind != ATTR_KIND_OPTION_TEXT;
}

TextSettings textSettings(const ElmAttrRecord& record, double scale) {
    const ElmAttrData& data = record.data;
    TextSettings text;
    loadTextStyle(text, data, scale);
    if (uses(data, ATTR_USE_SIZE)) {
        text.size.width = data.textWidth / scale;
        text.size.height = data.textHeight / scale;
        text.params.lineSpacing = text.size.height * data.textLineSpacing;
        text.sizeSettled = true;
    }
    if (uses(data, ATTR_USE_JUST)) {
        text.params.just = data.textJust;
    } else if (!text.styleLoaded) {
        text.params.just = -1;
    }
    if (uses(data, ATTR_USE_FONT)) {
        text.params.font = data.textFont;
    } else if (!text.styleLoaded) {
        text.params.font = activeParameter<int32_t>(MDL_PARAM_FONT);
    }
    if (uses(data, ATTR_USE_SLANT) && hasSlant(record)) {
        setSlant(text.params, data.textSlant);
    } else if (!text.styleLoaded && std::abs(tcbP->activeSlant) > *fc_epsilonP) {
        setSlant(text.params, tcbP->activeSlant);
    }
    return text;
}

mdl::HostPtr<wchar_t> toWide(const char* text) {
    const size_t length = std::strlen(text);
    mdl::HostPtr<wchar_t> wide(static_cast<wchar_t*>(dlmSystem_mdlMalloc((length + 1) * sizeof(wchar_t))));
    if (wide) {
        mdlCnv_convertMultibyteToUnicode(text, static_cast<int>(length), wide.get(), static_cast<int>(length + 1));
    }
    return wide;
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibElmAttr_setSymbologyAndProperties(MSElementBuffer* element, int id, ElmAttrData* data) {
    const ElmAttrRecord* record = recordOfCurrentApplication(id);
    if (!record || !element) return MCLIB_ERROR;
    applyLooks(element, record->data);
    if (data) *data = record->data;
    return MCLIB_SUCCESS;
}

int mclibElmAttr_createText(MSElementBuffer* out, const MSElementBuffer* templateP, const char* text,
                            const Point3d* origin, const RotMatrix* rotation, int32_t reserved, int32_t id,
                            double scale, ElmAttrData* data) {
    mdl::HostPtr<wchar_t> wide;
    if (text && !(wide = toWide(text))) return MCLIB_ERROR;
    const ElmAttrRecord* record = recordOfCurrentApplication(id);
    if (!record) return MCLIB_ERROR;
    const TextSettings settings = textSettings(*record, scale);
    if (mdlText_createWide(out, templateP, wide.get(), origin, rotation,
                           settings.sizeSettled ? &settings.size : nullptr, &settings.params,
                           reserved) != MDL_SUCCESS) {
        return MCLIB_ERROR;
    }
    return mclibElmAttr_setSymbologyAndProperties(out, id, data);
}

namespace mc {

void elmattr::bringStyleNumbersInStep() {
    GlobalData* gd = mclibMain_getGlobalDataP();
    ModelRef* model = mdlModelRef_getActive();
    if (!gd || !model) return;
    for (ElmAttrRecord* r = gd->attributeList; r; r = r->next) {
        if (r->data.style >= 0) continue;
        int32_t number = 0;
        if (r->data.styleName[0] == '\0') {
            mdlLineStyle_nameFromNumber(r->data.styleName, r->data.style, model);
        } else if (mdlLineStyle_numberFromName(&number, r->data.styleName, model) == MDL_SUCCESS) {
            r->data.style = number;
        }
    }
}

}  // namespace mc
