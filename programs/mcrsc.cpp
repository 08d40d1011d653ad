// mcrsc: compiles resource sources into one resource file. docs/sources.md tells what a source may have.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "mchost/base/number_format.h"
#include "mchost/mdl/dialog.h"
#include "mchost/resource/container.h"
#include "mchost/session/program.h"
#include "programs/compiler_call.h"
#include "programs/resource_names.h"
#include "programs/toml_source.h"

namespace {

MCHOST_FIRST const host::ProgramStart programStart;

using host::DialogLayout;
using host::Icon;
using host::ItemLayout;
using host::MenuLayout;
using host::ResourceContents;
using host::RowLayout;
using host::Texts;

struct KindName {
    std::string_view name;
    int32_t kind;
};
constexpr auto kindNames = std::to_array<KindName>({
    {"push button", ITEM_PUSH_BUTTON},
    {"text", ITEM_TEXT},
    {"label", ITEM_LABEL},
    {"list box", ITEM_LIST_BOX},
    {"generic", ITEM_GENERIC},
    {"toggle", ITEM_TOGGLE},
    {"option button", ITEM_OPTION_BUTTON},
    {"group box", ITEM_GROUP_BOX},
    {"combo box", ITEM_COMBO_BOX},
});
constexpr int32_t usualItemHeight = 20;

// The conversions of a printf format, such as "%d%s" for "%5d files in %s".
std::string conversionsOf(std::string_view format) {
    std::string found;
    for (size_t i = format.find('%'); i < format.size(); i = format.find('%', i + 1)) {
        const size_t end = format.find_first_not_of("0123456789.+-# '*hlLqjzt", i + 1);
        if (end == std::string_view::npos) break;
        if (format[end] != '%') {
            for (const char c : format.substr(i, end - i + 1))
                if (std::string_view("0123456789.+-# '").find(c) == std::string_view::npos) found.push_back(c);
        }
        i = end;
    }
    return found;
}

// Compiles sources one after another; each fault is one line on standard error.
class Compiler {
  public:
    void compile(const std::vector<std::string>& paths);
    void requireEnglish();
    int faults() const { return in_.faults(); }
    const ResourceContents& contents() const { return contents_; }
    const ResourceNames& names() const { return names_; }

  private:
    struct Source {
        std::string path;
        toml::table table;
    };
    void readHooks(const Source& source);
    void compile(const Source& source);
    void compileList(const toml::table& list);
    void compileString(int32_t list, const std::string& scope, const toml::key& key, const toml::node& node);
    void compileDialog(const toml::table& source);
    ItemLayout compileItem(const toml::table& source, const std::string& dialog, const std::string& scope);
    void compileIcon(const toml::table& source);
    void compileMenu(const toml::table& source);

    void addName(const toml::node& where, const std::string& scope, const NamedNumber& number);
    std::string nameOf(const toml::table& table);
    std::string addScope(const toml::table& table, int32_t id);
    int32_t hook(const toml::table& table);
    int32_t number(const toml::table& table, std::string_view key, std::optional<int32_t> fallback = std::nullopt);
    std::string narrow(const toml::node& node, const std::string& what);
    std::string plainText(const toml::table& table, std::string_view key, const std::string& what);
    Texts texts(const toml::table& table, std::string_view key, const std::string& what);

    TomlSource in_{"mcrsc"};
    std::string language_;
    ResourceContents contents_;
    ResourceNames names_;
    std::map<std::string, int32_t, std::less<>> hooks_;
};

// ---- names ----

void Compiler::addName(const toml::node& where, const std::string& scope, const NamedNumber& number) {
    if (const std::string what = names_.add(scope, number); !what.empty()) in_.fault(where, what);
}

// The name that stands beside a number; empty for none.
std::string Compiler::nameOf(const toml::table& table) {
    const toml::node* node = table.get("name");
    return node ? narrow(*node, "name") : std::string();
}

// The name of a dialog or list, which has its id under its own name; empty when it has none.
std::string Compiler::addScope(const toml::table& table, int32_t id) {
    std::string name = nameOf(table);
    if (!name.empty()) addName(table, name, {"id", "int32_t", std::to_string(id)});
    return name;
}

void Compiler::readHooks(const Source& source) {
    in_.begin(source.path);
    const toml::table* hooks = source.table["hooks"].as_table();
    if (!hooks) return;
    for (const auto& [key, node] : *hooks) {
        const std::string name(key.str());
        const int32_t id = number(*hooks, name);
        addName(node, "hooks", {name, "int32_t", std::to_string(id)});
        hooks_.emplace(name, id);
    }
}

// A hook by its number or by its name; 0 for none.
int32_t Compiler::hook(const toml::table& table) {
    const toml::node* node = table.get("hook");
    const std::optional<std::string_view> name =
        node ? node->value_exact<std::string_view>() : std::optional<std::string_view>();
    if (!name) return number(table, "hook", 0);
    const auto found = hooks_.find(*name);
    if (found != hooks_.end()) return found->second;
    in_.fault(*node, "there is no hook \"" + std::string(*name) + "\" in [hooks] of any source");
    return 0;
}

int32_t Compiler::number(const toml::table& table, std::string_view key, std::optional<int32_t> fallback) {
    const toml::node* node = table.get(key);
    if (!node) {
        if (!fallback) in_.fault(table, "\"" + std::string(key) + "\" is missing");
        return fallback.value_or(0);
    }
    const std::optional<int64_t> value = node->value_exact<int64_t>();
    if (!value || *value < std::numeric_limits<int32_t>::min() || *value > std::numeric_limits<int32_t>::max()) {
        in_.fault(*node, "\"" + std::string(key) + "\" must be a whole number of 32 bits");
        return 0;
    }
    return static_cast<int32_t>(*value);
}

// A text that can be stored; what can't be is told of `what`.
std::string Compiler::narrow(const toml::node& node, const std::string& what) {
    const std::string text = in_.narrow(node, what).value_or(std::string());
    if (text.size() > host::longestString)
        in_.fault(node, what + ": has " + std::to_string(text.size()) + " characters; " +
                            std::to_string(host::longestString) + " is the most");
    if (text.find('\0') != std::string::npos) in_.fault(node, what + ": holds a NUL character");
    return text;
}

std::string Compiler::plainText(const toml::table& table, std::string_view key, const std::string& what) {
    const toml::node* node = table.get(key);
    return node ? narrow(*node, what + ", " + std::string(key)) : std::string();
}

Texts Compiler::texts(const toml::table& table, std::string_view key, const std::string& what) {
    Texts result;
    const toml::node* node = table.get(key);
    if (!node) return result;
    const std::string place = what + ", " + std::string(key);
    const toml::table* languages = node->as_table();
    if (!languages) {
        result.set(host::fallbackLanguage, narrow(*node, place));
        return result;
    }
    for (const auto& [language, text] : *languages)
        result.set(language.str(), narrow(text, place + ", language " + std::string(language.str())));
    if (!result.has(host::fallbackLanguage)) in_.fault(*node, place + ": has no English text");
    return result;
}

void Compiler::compileString(int32_t list, const std::string& scope, const toml::key& key, const toml::node& node) {
    const std::string what = "list " + std::to_string(list) + ", number " + std::string(key.str());
    int32_t messageId = 0;
    const std::string digits(key.str());
    const std::string& language = language_;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), messageId);
    if (error != std::errc() || end != digits.data() + digits.size())
        return in_.fault(node, what + ": a message goes under a whole number");
    Texts& known = contents_.strings[{list, messageId}];
    if (known.has(language)) return in_.fault(node, what + ": has a text in " + language + " already");
    const toml::table* named = node.as_table();
    if (!named) return known.set(language, narrow(node, what));
    in_.requireKeys(*named, {"name", "text"});
    const std::string text = plainText(*named, "text", what);
    const std::string type = "mdl::Message<" + std::to_string(list) + valueTypesOf(text) + ">";
    if (type.find('?') != type.npos)
        return in_.fault(node, what + ": takes a value of a kind that no C++ type stands for");
    addName(node, scope, {nameOf(*named), type, digits});
    known.set(language, text);
}

void Compiler::compileList(const toml::table& list) {
    in_.requireKeys(list, {"id", "name", "text"});
    const int32_t id = number(list, "id");
    const std::string scope = addScope(list, id);
    if (language_.empty()) return in_.fault(list, "\"language\" is missing at the head of the file");
    const toml::table* texts = list["text"].as_table();
    if (!texts) return in_.fault(list, "list " + std::to_string(id) + ": has no [list.text]");
    for (const auto& [key, node] : *texts) compileString(id, scope, key, node);
}

ItemLayout Compiler::compileItem(const toml::table& source, const std::string& dialog, const std::string& scope) {
    in_.requireKeys(source, {"kind", "id", "name", "x", "y", "width", "height", "hook", "access", "format", "label",
                             "rows", "group"});
    ItemLayout item;
    const std::string name = source["kind"].value_or(std::string());
    const auto kind =
        std::find_if(kindNames.begin(), kindNames.end(), [&](const KindName& k) { return k.name == name; });
    if (kind == kindNames.end())
        in_.fault(source, dialog + ": unknown item kind \"" + name + "\"");
    else
        item.kind = kind->kind;
    item.id = number(source, "id");
    item.x = number(source, "x");
    item.y = number(source, "y");
    item.width = number(source, "width");
    item.height = number(source, "height", usualItemHeight);
    item.hook = hook(source);
    item.group = number(source, "group", 0);
    if (const std::string itemName = nameOf(source); !itemName.empty())
        addName(source, scope, {itemName, "mdl::ItemId", std::to_string(item.kind) + ", " + std::to_string(item.id)});
    const std::string what = dialog + ", " + name + " " + std::to_string(item.id);
    item.access = plainText(source, "access", what);
    item.format = plainText(source, "format", what);
    if (!item.format.empty() && !host::isValueFormat(item.format))
        in_.fault(source, what + ": the format \"" + item.format + "\" must have one conversion, such as %8.3f");
    item.label = texts(source, "label", what);
    in_.eachTable(source, "rows", [&](const toml::table& row) {
        in_.requireKeys(row, {"value", "label"});
        item.rows.push_back({number(row, "value"), texts(row, "label", what + ", row")});
    });
    if (!item.rows.empty() && item.kind != ITEM_OPTION_BUTTON)
        in_.fault(source, what + ": only option buttons have rows");
    return item;
}

void Compiler::compileDialog(const toml::table& source) {
    in_.requireKeys(source, {"id", "name", "title", "width", "height", "hook", "item"});
    DialogLayout dialog;
    dialog.id = number(source, "id");
    dialog.width = number(source, "width");
    dialog.height = number(source, "height");
    dialog.hook = hook(source);
    const std::string scope = addScope(source, dialog.id);
    const std::string what = "dialog " + std::to_string(dialog.id);
    dialog.title = texts(source, "title", what);
    std::set<std::pair<int32_t, int32_t>> seen;  // kinds and ids
    in_.eachTable(source, "item", [&](const toml::table& item) {
        dialog.items.push_back(compileItem(item, what, scope));
        const ItemLayout& last = dialog.items.back();
        if (!seen.emplace(last.kind, last.id).second)
            in_.fault(item, what + ": has an item of this kind and id " + std::to_string(last.id) + " already");
    });
    for (const ItemLayout& item : dialog.items)
        if (item.group != 0 && !seen.contains({ITEM_GROUP_BOX, item.group}))
            in_.fault(source, what + ", item " + std::to_string(item.id) + ": there is no group box " +
                                  std::to_string(item.group));
    if (!contents_.dialogs.emplace(dialog.id, std::move(dialog)).second) in_.fault(source, what + ": comes twice");
}

void Compiler::compileIcon(const toml::table& source) {
    in_.requireKeys(source, {"id", "name", "sign", "rows"});
    Icon icon;
    icon.id = number(source, "id");
    if (const std::string name = nameOf(source); !name.empty())
        addName(source, "icons", {name, "int32_t", std::to_string(icon.id)});
    const std::string what = "icon " + std::to_string(icon.id);
    icon.sign = plainText(source, "sign", what);
    const toml::array* rows = source["rows"].as_array();
    if (!rows || rows->empty()) return in_.fault(source, what + ": has no rows");
    icon.size = static_cast<int32_t>(rows->size());
    for (const toml::node& node : *rows) {
        const std::string row = narrow(node, what);
        if (row.size() != rows->size()) return in_.fault(node, what + ": must have as many columns as rows");
        for (const char pixel : row) icon.pixels.push_back(pixel == '#');
    }
    if (!contents_.icons.emplace(icon.id, std::move(icon)).second) in_.fault(source, what + ": comes twice");
}

void Compiler::compileMenu(const toml::table& source) {
    in_.requireKeys(source, {"id", "name", "title", "entry"});
    MenuLayout menu;
    menu.id = number(source, "id");
    if (const std::string name = nameOf(source); !name.empty())
        addName(source, "menus", {name, "int32_t", std::to_string(menu.id)});
    const std::string what = "menu " + std::to_string(menu.id);
    menu.title = texts(source, "title", what);
    in_.eachTable(source, "entry", [&](const toml::table& entry) {
        in_.requireKeys(entry, {"value", "hook", "label"});
        menu.entries.push_back({number(entry, "value"), hook(entry), texts(entry, "label", what + ", entry")});
    });
    if (menu.entries.empty()) in_.fault(source, what + ": has no entries");
    if (!contents_.menus.emplace(menu.id, std::move(menu)).second) in_.fault(source, what + ": comes twice");
}

void Compiler::compile(const Source& source) {
    in_.begin(source.path);
    in_.requireKeys(source.table, {"language", "hooks", "list", "dialog", "icon", "menu"});
    language_ = source.table["language"].value_or(std::string());
    in_.eachTable(source.table, "list", [&](const toml::table& list) { compileList(list); });
    in_.eachTable(source.table, "dialog", [&](const toml::table& dialog) { compileDialog(dialog); });
    in_.eachTable(source.table, "icon", [&](const toml::table& icon) { compileIcon(icon); });
    in_.eachTable(source.table, "menu", [&](const toml::table& menu) { compileMenu(menu); });
}

// A dialog may name a hook of any source.
void Compiler::compile(const std::vector<std::string>& paths) {
    std::vector<Source> sources;
    for (const std::string& path : paths)
        if (std::optional<toml::table> table = in_.read(path)) sources.push_back({path, std::move(*table)});
    for (const Source& source : sources) readHooks(source);
    for (const Source& source : sources) compile(source);
}

void Compiler::requireEnglish() {
    const auto faultOf = [&](const std::pair<int32_t, int32_t>& key, const std::string& what) {
        in_.fault("list " + std::to_string(key.first) + ", number " + std::to_string(key.second) + ": " + what);
    };
    for (const auto& [key, texts] : contents_.strings) {
        if (!texts.has(host::fallbackLanguage)) {
            faultOf(key, "has no English text");
            continue;
        }
        const std::string wanted = conversionsOf(texts.textIn(host::fallbackLanguage));
        for (const auto& [language, text] : texts.all())
            if (conversionsOf(text) != wanted)
                faultOf(key, "language " + language + " has the conversions \"" + conversionsOf(text) +
                                 "\" where English has \"" + wanted + "\"");
    }
}

int runWith(int argc, char** argv) {
    CompilerCall call("mcrsc", "Compiles resource sources (TOML) into one resource file.", "resource file", "FILE.rsc",
                      "Sources of string lists, dialogs and icons");
    std::string names;
    call.app.add_option("-n,--names", names, "Also write a C++ header of the numbers by name")->type_name("FILE.h");
    if (const int ended = call.parse(argc, argv); ended >= 0) return ended;

    Compiler compiler;
    compiler.compile(call.sources);
    compiler.requireEnglish();
    if (compiler.faults() > 0) return 1;
    try {
        host::writeContainer(call.output, compiler.contents());
    } catch (const host::ResourceError& error) {
        std::fprintf(stderr, "mcrsc: %s\n", error.what());
        return 1;
    }
    const std::string failed = names.empty() ? std::string() : compiler.names().write(names);
    if (!failed.empty()) std::fprintf(stderr, "mcrsc: %s\n", failed.c_str());
    return failed.empty() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    return host::runProgram("mcrsc", [&] { return runWith(argc, argv); });
}
