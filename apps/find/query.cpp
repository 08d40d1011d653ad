#include "query.h"

#include <algorithm>

#include <mchost/mdl/level.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/tag.h>
#include <mchost/mdl/text.h>
#include <mclib/mclib.h>
#include <mchost/mdl/owned.hpp>
#include <mclib/app/numbers.hpp>

namespace find {

namespace {

constexpr int32_t searched[] = {MDL_CELL_HEADER, MDL_TEXT_NODE, MDL_TEXT, MDL_TAG};

std::wstring wide(const std::string& text) {
    std::wstring out(text.size() + 1, L'\0');
    mdlCnv_convertMultibyteToUnicode(text.c_str(), -1, out.data(), static_cast<int>(out.size()));
    return out.c_str();
}

std::string levelName(ModelRef* model, LevelId level) {
    wchar_t name[512] = L"";
    char narrow[512] = "";
    if (mdlLevel_getName(name, static_cast<int32_t>(std::size(name)), model, level) == MDL_SUCCESS)
        mdlCnv_convertUnicodeToMultibyte(name, -1, narrow, sizeof narrow);
    return narrow;
}

std::vector<LevelId> levelsNamed(const std::vector<std::string>& names, ModelRef* model) {
    std::vector<LevelId> levels;
    for (const std::string& name : names) {
        const auto code = mcapp::numberIn<int32_t>(name);
        LevelId level = 0;
        if (mdlLevel_getIdFromName(&level, model, 0, wide(name).c_str()) == MDL_SUCCESS ||
            (code && mdlLevel_getIdFromCode(&level, model, *code) == MDL_SUCCESS))
            levels.push_back(level);
    }
    return levels;
}

bool holdsNumber(const MSElementBuffer& tag) {
    MdlTagValue value = {};
    mdlTag_extract(nullptr, nullptr, nullptr, nullptr, nullptr, &value, &tag, nullptr);
    return value.type != MDL_TAG_STRING;
}

bool accepts(const std::optional<int>& wanted, int64_t value) {
    return !wanted || *wanted == value;
}

}  // namespace

Query::Query(const Options& options, ModelRef* model)
    : options_(options), model_(model), uorPerMaster_(mdlModelRef_getUorPerMaster(model)) {
    if (!options.levels.empty()) levels_ = levelsNamed(options.levels, model);
}

bool Query::hasLook(const MSElementBuffer& element) const {
    if (levels_ && std::ranges::find(*levels_, element.head.level) == levels_->end()) return false;
    uint32_t color = 0, weight = 0;
    int32_t style = 0;
    return mdlElement_getSymbology(&color, &weight, &style, &element) == MDL_SUCCESS &&
           accepts(options_.colour, static_cast<int32_t>(color)) &&
           accepts(options_.weight, static_cast<int32_t>(weight)) && accepts(options_.style, style);
}

std::optional<Hit> Query::look(const MSElementBuffer& source, FilePos position, int ordinal) const {
    const bool isTag = mdlElement_getType(&source) == MDL_TAG;
    if (isTag && mclibMerge_textFromTag(tagText_.get(), &source, position, model_) != MCLIB_SUCCESS) return {};
    const MSElementBuffer& element = isTag ? *tagText_ : source;
    char text[MDL_TEXT_CHARACTERS + 1];
    if (mdlText_extractString(text, &element) != MDL_SUCCESS) return {};
    const int errors = mclibSearch_compareString(text, options_.pattern.c_str(),
                                                 options_.caseSensitive ? SEARCH_CASE_SENSITIVE : 0, options_.near);
    if (errors > options_.near || !hasLook(element)) return {};
    wchar_t words[MDL_TEXT_CHARACTERS + 1];
    Point3d origin = {}, box[5] = {};
    TextSize size = {};
    if (mdlText_extractWide(words, &origin, nullptr, &size, nullptr, &element) != MDL_SUCCESS ||
        mdlText_extractShape(box, nullptr, &element, 0, 0) != MDL_SUCCESS)
        return {};
    const double height = size.height / uorPerMaster_;
    if (height < options_.minHeight || (options_.maxHeight >= 0 && height > options_.maxHeight)) return {};
    const auto [left, right] = std::ranges::minmax(box, {}, &Point3d::x);
    const auto [low, high] = std::ranges::minmax(box, {}, &Point3d::y);
    if (options_.area &&
        (left.x > options_.area->right * uorPerMaster_ || right.x < options_.area->left * uorPerMaster_ ||
         low.y > options_.area->top * uorPerMaster_ || high.y < options_.area->bottom * uorPerMaster_))
        return {};
    return Hit{position,
               ordinal,
               text,
               errors,
               levelName(model_, element.head.level),
               origin.x / uorPerMaster_,
               origin.y / uorPerMaster_,
               {left.x, low.y, left.z},
               {right.x, high.y, left.z},
               (source.head.properties & MDL_PROP_LOCKED) != 0,
               isTag && holdsNumber(source)};
}

bool Query::addRange(ScanCriteria* criteria) const {
    if (!options_.area) return true;
    constexpr double all = 1e300;
    const Area& a = *options_.area;
    const Range3d box = {{a.left * uorPerMaster_, a.bottom * uorPerMaster_, -all},
                         {a.right * uorPerMaster_, a.top * uorPerMaster_, all}};
    return mdlScanCriteria_setRangeTest(criteria, &box) == MDL_SUCCESS;
}

bool Query::lookAt(FilePos position, const std::function<void(const Hit&)>& f, MSElementBuffer& buffer) const {
    if (mdlElement_read(&buffer, model_, position) == 0) return false;
    if (mdlElement_getType(&buffer) == MDL_TEXT || mdlElement_getType(&buffer) == MDL_TAG) {
        if (const std::optional<Hit> hit = look(buffer, position, 0)) f(*hit);
        return true;
    }
    const mdl::DescrPtr header = mdl::readDescr(position, model_);
    if (!header) return false;
    const bool isLocked = (buffer.head.properties & MDL_PROP_LOCKED) != 0;
    struct Visit {
        const Query& query;
        const std::function<void(const Hit&)>& f;
        FilePos position;
        bool isLocked;
        int ordinal;
    } visit = {*this, f, position, isLocked, 0};
    const auto each = [](MSElementBuffer* element, void* arg, int32_t, int32_t, ElementDescr*) {
        Visit& v = *static_cast<Visit*>(arg);
        std::optional<Hit> hit = v.query.look(*element, v.position, v.ordinal);
        if (!hit) return 0;
        ++v.ordinal;
        hit->isLocked = hit->isLocked || v.isLocked;
        v.f(*hit);
        return 0;
    };
    mdlElmdscr_operation(header.get(), each, &visit, MDL_DESCR_ELEMENTS);
    return true;
}

bool Query::run(const std::function<void(const Hit&)>& f) const {
    const mdl::CurrTransScope uor(mdl::CurrTransScope::Begin::uor);
    const mdl::Scan scan(model_);
    const auto buffer = std::make_unique<MSElementBuffer>();
    if (!uor || !scan || !addRange(scan.criteria())) return false;
    for (const int32_t type : searched)
        if (mdlScanCriteria_addSingleElementTypeTest(scan.criteria(), type) != MDL_SUCCESS) return false;
    bool whole = true;
    auto position = scan.begin();
    for (; position != scan.end(); ++position) whole = lookAt(*position, f, *buffer) && whole;
    return whole && position.isWhole();
}

}  // namespace find
