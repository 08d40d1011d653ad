#include "replacing.h"

#include <algorithm>
#include <ctime>
#include <map>
#include <string_view>

#include <mchost/mdl/modify.h>
#include <mchost/mdl/text.h>
#include <mchost/mdl/undo.h>
#include <mclib/mclib.h>

namespace find {

namespace {

constexpr const char* notWritten = "the element can't be written";

uint32_t flagsOf(const Options& options) {
    return options.caseSensitive ? SEARCH_CASE_SENSITIVE : 0;
}

std::string today(const std::string& format) {
    const std::time_t now = std::time(nullptr);
    std::tm day = {};
    localtime_r(&now, &day);
    char text[256] = "";
    std::strftime(text, sizeof text, format.c_str(), &day);
    return text;
}

// As plain characters of a replacement.
std::string plain(const std::string& text) {
    std::string out;
    for (const char c : text) out += std::string_view("*?|").find(c) == std::string_view::npos ? "" : "|", out += c;
    return out;
}

// Puts `value` in place of every `name`.
void fill(std::string& text, const std::string& name, const std::string& value) {
    for (size_t at = text.find(name); at != text.npos; at = text.find(name, at + value.size()))
        text.replace(at, name.size(), value);
}

void fillDates(std::string& text) {
    fill(text, "<date>", plain(today("%Y-%m-%d")));
    constexpr std::string_view begin = "<date:";
    for (size_t at = text.find(begin); at != text.npos; at = text.find(begin, at + 1)) {
        const size_t end = text.find('>', at);
        if (end == text.npos) return;
        const std::string format = text.substr(at + begin.size(), end - at - begin.size());
        text.replace(at, end + 1 - at, plain(today(format)));
    }
}

}  // namespace

std::string replacementFor(const std::string& replacement, size_t page, size_t pages) {
    std::string text = replacement;
    fill(text, "<page>", std::to_string(page));
    fill(text, "<pages>", std::to_string(pages));
    fillDates(text);
    return text;
}

NewText newText(const Options& options, const std::string& replacement, const Hit& hit) {
    char text[MDL_TEXT_CHARACTERS + 1];
    switch (mclibSearch_replaceString(text, sizeof text, hit.text.c_str(), options.pattern.c_str(),
                                      replacement.c_str(), flagsOf(options))) {
        case MCLIB_SUCCESS: break;
        case MCLIB_REPLACE_TOO_LONG:
            return {"", "the new text has more than " + std::to_string(MDL_TEXT_CHARACTERS) + " characters"};
        default: return {"", "the text doesn't fit any more"};
    }
    if (*text == '\0') return {"", "nothing would be left of it"};
    if (hit.isLocked) return {"", "the element is locked"};
    return {text, ""};
}

void replaceTexts(std::vector<Change>& changes, const Query& query, const Options& options,
                  const std::string& replacement, ModelRef* model) {
    struct Work {
        const Query& query;
        const Options& options;
        const std::string& replacement;
        FilePos position;
    } work = {query, options, replacement, 0};
    const auto each = [](MSElementBuffer* element, void* arg, ModelRef*, ElementDescr* node, ElementDescr**) -> int {
        const Work& w = *static_cast<const Work*>(arg);
        std::optional<Hit> hit = w.query.look(*element, w.position);
        if (!hit) return MDL_MODIFY_NONE;
        const ElementDescr* const header = node->parent;
        hit->isLocked = hit->isLocked || (header && (header->element->head.properties & MDL_PROP_LOCKED) != 0);
        const NewText after = newText(w.options, w.replacement, *hit);
        if (after.text.empty() || after.text == hit->text) return MDL_MODIFY_NONE;
        if (mdlText_create(element, element, after.text.c_str(), nullptr, nullptr, nullptr, nullptr, 0) != MDL_SUCCESS)
            return MDL_MODIFY_NONE;
        return MDL_MODIFY_CHANGED;
    };
    if (mdlUndo_mark("Replace texts") != MDL_SUCCESS) {
        for (Change& change : changes) change.after = {"", notWritten};
        return;
    }
    std::map<FilePos, int> wanted;  // texts of an element that are to be changed
    for (const Change& change : changes)
        wanted[change.hit.position] += change.after.why.empty() && change.after.text != change.hit.text;
    for (const auto& [position, count] : wanted) {
        work.position = position;
        if (count == 0) continue;
        if (mdlModify_elementSingle(model, position, MDL_MODIFY_NO_HEADERS, 0, each, &work, 0) == count) continue;
        for (Change& change : changes)
            if (change.hit.position == position && change.after.why.empty()) change.after = {"", notWritten};
    }
}

}  // namespace find
