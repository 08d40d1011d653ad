// Text nodes: headers that keep how their lines are made, and the lines.
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/element/build.h"
#include "mchost/element/text.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/text.h"

namespace host {
namespace {

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    for (;;) {
        const size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        lines.push_back(line.empty() ? " " : line);
        if (end == text.npos) return lines;
        text.remove_prefix(end + 1);
    }
}

// The place of the first line: that of a text of one line, or higher by half of what is below it when lines are
// centred.
Point3d firstLine(const TextBody& node, size_t count) {
    constexpr int32_t mostJustification = 14, centre = 1;
    const bool centred = node.just >= 0 && node.just <= mostJustification && node.just % 3 == centre;
    return centred ? node.origin + node.heightAxis * ((1 + node.spacing) * 0.5 * static_cast<double>(count - 1))
                   : node.origin;
}

bool makeLine(MSElementBuffer* out, const MSElementBuffer* header, TextBody body, std::string_view line) {
    body.count = static_cast<uint16_t>(line.size());
    uint8_t* const to = NewElement(out, header, MDL_TEXT).body(sizeof body + line.size() * sizeof(uint16_t));
    if (!to) return false;
    std::memcpy(to, &body, sizeof body);
    storeCharacters(to + sizeof body, line);
    return true;
}

// Lets go of all components behind `last`.
void dropBehind(ElementDescr* node, ElementDescr* last) {
    ElementDescr* added = last ? last->next : node->firstChild;
    if (!added) return;
    (last ? last->next : node->firstChild) = nullptr;
    node->lastChild = last;
    mdlElmdscr_freeAll(&added);
}

}  // namespace
}  // namespace host

using namespace host;

int mdlTextNode_createWide(MSElementBuffer* out, const MSElementBuffer* templateP, const wchar_t* text,
                           const Point3d* origin, const RotMatrix* rotation, const TextSize* size,
                           const TextParams* params) noexcept {
    if (!out || text) return MDL_ERROR;
    const auto lines = newTextBody(origin, rotation, size, params);
    return lines ? finish(NewElement(out, templateP, MDL_TEXT_NODE), TextNodeBody{{}, *lines}) : int{MDL_ERROR};
}

int mdlText_addStringsToNodeDscr(ElementDescr* node, const char* text) noexcept {
    const auto made = node && text ? textNodeOf(node->element) : std::nullopt;
    if (!made) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const std::vector<std::string_view> lines = linesOf(text);
        for (const std::string_view line : lines)
            if (line.size() > maxTextCharacters) return MDL_ERROR;
        const auto scratch = std::make_unique<MSElementBuffer>();
        TextBody body = *made;
        body.origin = firstLine(body, lines.size());
        ElementDescr* const last = node->lastChild;
        for (const std::string_view line : lines) {
            if (!makeLine(scratch.get(), node->element, body, line) ||
                mdlElmdscr_appendElement(node, scratch.get()) != MDL_SUCCESS) {
                dropBehind(node, last);
                return MDL_ERROR;
            }
            body.origin = body.origin - body.heightAxis * (1 + body.spacing);
        }
        return mdlElmdscr_validate(node, node->model);
    });
}
