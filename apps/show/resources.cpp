// What a resource file holds.
#include <cstdio>
#include <memory>

#include <mchost/mdl/lists.h>
#include <mchost/mdl/resource.h>
#include <mchost/mdl/owned.hpp>
#include "show.h"

namespace show {

namespace {

struct Entry {
    MdlResourceEntry head;  // its name is null
    std::string name;
};
using Entries = std::vector<Entry>;

// False after a message.
bool collect(RscHandle file, Entries& entries) {
    const auto take = [](void* userArg, const MdlResourceEntry* entry) {
        auto& all = *static_cast<Entries*>(userArg);
        all.push_back({*entry, entry->name});
        Entry& kept = all.back();
        kept.head.name = nullptr;
        return 0;
    };
    return mdlResource_list(file, take, &entries) == MDL_SUCCESS;
}

// ---- blocks ----

constexpr size_t bytesInLine = 16;

std::string typeName(int32_t type) {
    std::string characters;
    char digits[16];
    std::snprintf(digits, sizeof digits, "0x%08x", static_cast<uint32_t>(type));
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto c = static_cast<char>(static_cast<uint32_t>(type) >> shift);
        if (c < ' ' || c > '~') return digits;
        characters += c;
    }
    return characters;
}

// False, after a message, when it can't be read.
bool tellBlock(RscHandle file, const Entry& entry, bool full) {
    const int32_t type = entry.head.type, id = entry.head.id;
    const std::string key = typeName(type) + " " + std::to_string(id);
    const mdl::Resource block(file, type, id);
    if (!block) {
        line(2, key + "  can't be read");
        return false;
    }
    const std::span bytes = block.bytes();
    const Record record = recordOf({file, type, id, bytes});
    const std::string head = left(key, 12) + right(std::to_string(bytes.size()), 6) + "  ";
    if (record.title.empty()) {
        line(2, head + (entry.name.empty() ? "" : quoted(entry.name) + ", ") +
                    hex(bytes, full ? bytes.size() : bytesInLine));
    } else if (!full) {
        line(2, head + record.shortForm());
    } else {
        line(2, head + record.title + (record.problem.empty() ? "" : " (" + record.problem + ")"));
        record.tellFields(4, true);
    }
    return true;
}

// ---- all others ----

std::string infoOf(const StringList* list, int32_t index) {
    std::string text;
    int32_t value = 0;
    for (int32_t field = 0; mdlStringList_getInfoField(&value, list, index, field) == MDL_SUCCESS; ++field)
        text += (field == 0 ? "  " : ", ") + std::to_string(value);
    return text;
}

bool tellList(RscHandle file, const Entry& entry, bool full) {
    line(2, left(std::to_string(entry.head.id), 12) + counted(static_cast<size_t>(entry.head.size), "member") +
                (entry.name.empty() ? "" : ", " + quoted(entry.name)));
    if (!full) return true;
    const mdl::StringListPtr list(mdlStringList_loadResource(file, entry.head.id));
    const int32_t members = mdlStringList_size(list.get());
    for (int32_t i = 0; i < members; ++i) {
        const char* text = "";
        mdlStringList_getMember(&text, nullptr, list.get(), i);
        line(3, right(std::to_string(i), 5) + "  " + quoted(std::string_view(text)) + infoOf(list.get(), i));
    }
    return list && members == entry.head.size;
}

bool tellMessages(RscHandle, const Entry& entry, bool) {
    line(2, left(std::to_string(entry.head.id), 12) + counted(static_cast<size_t>(entry.head.size), "string") + " in " +
                entry.name);
    return true;
}

bool tellDialog(RscHandle, const Entry& entry, bool) {
    line(2, left(std::to_string(entry.head.id), 12) + quoted(entry.name) + ", " +
                counted(static_cast<size_t>(entry.head.size), "item"));
    return true;
}

bool tellIcon(RscHandle, const Entry& entry, bool) {
    const std::string side = std::to_string(entry.head.size);
    line(2, left(std::to_string(entry.head.id), 12) + side + " x " + side + " pixels" +
                (entry.name.empty() ? "" : ", in text " + quoted(entry.name)));
    return true;
}

bool tellMenu(RscHandle, const Entry& entry, bool) {
    line(2, left(std::to_string(entry.head.id), 12) + quoted(entry.name) + ", " + std::to_string(entry.head.size) +
                (entry.head.size == 1 ? " entry" : " entries"));
    return true;
}

struct KindRow {
    int32_t kind;
    const char* title;
    bool (*tell)(RscHandle, const Entry&, bool);
};
constexpr KindRow kinds[] = {
    {MDL_RSC_BLOCK, "blocks: type and id, bytes, what they hold", tellBlock},
    {MDL_RSC_STRING_LIST, "string lists", tellList},
    {MDL_RSC_MESSAGES, "message lists", tellMessages},
    {MDL_RSC_DIALOG, "dialogs", tellDialog},
    {MDL_RSC_ICON, "icons", tellIcon},
    {MDL_RSC_MENU, "menus", tellMenu},
};

bool tellKind(RscHandle file, const KindRow& kind, const Entries& entries, bool full) {
    bool good = true, first = true;
    for (const Entry& entry : entries) {
        if (entry.head.kind != kind.kind) continue;
        if (first) line(1, kind.title);
        first = false;
        good = kind.tell(file, entry, full) && good;
    }
    return good;
}

}  // namespace

bool tellResources(const std::string& name, bool full) {
    const mdl::ResourceFile file(name.c_str(), MDL_RSC_READ);
    Entries entries;
    if (!file.handle() || !collect(file.handle(), entries)) return false;
    char title[256] = "";
    mdlResource_getTitle(title, sizeof title, file.handle());
    line(0, name + ": resource file" + (*title == '\0' ? "" : " " + quoted(std::string_view(title))) +
                (entries.empty() ? ", empty" : ""));
    bool good = true;
    for (const KindRow& kind : kinds) good = tellKind(file.handle(), kind, entries, full) && good;
    return good;
}

}  // namespace show
