#include "replacing.h"

#include <algorithm>
#include <ctime>
#include <map>
#include <string_view>

#include <mchost/mdl/modify.h>
#include <mchost/mdl/tag.h>
#include <mchost/mdl/text.h>
#include <mchost/mdl/undo.h>
#include <mclib/mclib.h>

namespace find {

namespace {

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

// ---- one element ----

struct Rewriting {
    const Query& query;
    const std::vector<Change*>& changes;  // of the element
    int ordinal;                          // of the next hit in it
};

// Other words in a text or a tag.
bool write(MSElementBuffer* element, const std::string& text) {
    if (mdlElement_getType(element) != MDL_TAG)
        return mdlText_create(element, element, text.c_str(), nullptr, nullptr, nullptr, nullptr, 0) == MDL_SUCCESS;
    Point3d origin;
    TextSize size;
    RotMatrix rotation;
    TextParams params;
    MdlTagValue value;
    int32_t display = 0;
    if (mdlTag_extract(&origin, &size, &rotation, &display, &params, &value, element, nullptr) != MDL_SUCCESS)
        return false;
    value.string[text.copy(value.string, sizeof value.string - 1)] = '\0';
    return mdlTag_create(element, element, &value, &origin, &rotation, &size, &params, display) == MDL_SUCCESS;
}

// A text that isn't what it was when it was found stays.
int rewrite(MSElementBuffer* element, void* userArg, ModelRef*, ElementDescr*, ElementDescr**) {
    Rewriting& work = *static_cast<Rewriting*>(userArg);
    const std::optional<Hit> hit = work.query.look(*element, 0, work.ordinal);
    if (!hit) return MDL_MODIFY_NONE;
    const auto isIts = [&](const Change* change) {
        return change->hit.ordinal == hit->ordinal && change->hit.text == hit->text;
    };
    const auto change = std::ranges::find_if(work.changes, isIts);
    ++work.ordinal;
    if (change == work.changes.end()) return MDL_MODIFY_NONE;
    return write(element, (*change)->after.text) ? MDL_MODIFY_CHANGED : MDL_MODIFY_NONE;
}

}  // namespace

bool canFill(const std::string& pattern, const std::string& replacement) {
    const std::string filled = replacementFor(replacement, 1, 1);
    return mclibSearch_replaceString(nullptr, 0, nullptr, pattern.c_str(), filled.c_str(), 0) == MCLIB_SUCCESS;
}

std::string replacementFor(const std::string& replacement, size_t page, size_t pages) {
    std::string text = replacement;
    fill(text, "<page>", std::to_string(page));
    fill(text, "<pages>", std::to_string(pages));
    fillDates(text);
    return text;
}

NewText newText(const Options& options, const std::string& replacement, const Hit& hit) {
    char text[MDL_TEXT_CHARACTERS + 1];
    switch (mclibSearch_replaceString(text, sizeof text, hit.text.c_str(), options.pattern.c_str(), replacement.c_str(),
                                      flagsOf(options))) {
        case MCLIB_SUCCESS: break;
        case MCLIB_REPLACE_TOO_LONG:
            return {"", "the new text has more than " + std::to_string(MDL_TEXT_CHARACTERS) + " characters"};
        default: return {"", "the text doesn't fit any more"};
    }
    if (*text == '\0') return {"", "nothing would be left of it"};
    if (hit.isNumber) return {"", "it is a tag that holds a number"};
    if (hit.isLocked) return {"", "the element is locked"};
    return {text, ""};
}

void replaceTexts(std::vector<Change>& changes, const Query& query, ModelRef* model) {
    std::map<FilePos, std::vector<Change*>> byElement;
    for (Change& change : changes)
        if (change.isOne()) byElement[change.hit.position].push_back(&change);
    const bool isMarked = mdlUndo_mark("Replace texts") == MDL_SUCCESS;
    for (const auto& [position, ofElement] : byElement) {
        Rewriting work = {query, ofElement, 0};
        const int count = static_cast<int>(ofElement.size());
        if (isMarked && mdlModify_elementSingle(model, position, MDL_MODIFY_NO_HEADERS, 0, rewrite, &work, 0) == count)
            continue;
        for (Change* const change : ofElement) change->after = {"", "the element can't be written"};
    }
}

}  // namespace find
