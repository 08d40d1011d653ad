#include "mchost/dialog/access.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <vector>

#include "mchost/base/charset.h"
#include "mchost/base/guard.h"
#include "mchost/base/number_format.h"
#include "mchost/mdl/system.h"
#include "mchost/session/owned_state.h"

namespace {

struct PublishedPointer {
    std::string structName;
    void* address;
};

}  // namespace

struct SymbolSet {
    MdlDesc* owner;  // null: made outside any application
    std::map<std::string, const StructField*, std::less<>> structures;
    std::map<std::string, PublishedPointer, std::less<>> pointers;
};

namespace host {

namespace {

// In order of making. A set goes with its application, whose memory it may point to, or else with the session.
struct SymbolSets {
    std::vector<std::unique_ptr<SymbolSet>> all;
};
std::vector<std::unique_ptr<SymbolSet>>& symbolSets() {
    return sessionState<SymbolSets>().all;
}

void dropSetsOf(MdlDesc* desc) {
    std::erase_if(symbolSets(), [desc](const auto& set) { return set->owner == desc; });
}

SymbolSet* makeSet() {
    auto set = std::make_unique<SymbolSet>();
    set->owner = mdlSystem_getCurrMdlDesc();
    symbolSets().push_back(std::move(set));
    letGoAtEnd<dropSetsOf>(symbolSets().back()->owner);
    return symbolSets().back().get();
}

bool isSet(const SymbolSet* set) {
    return std::ranges::any_of(symbolSets(), [set](const auto& known) { return known.get() == set; });
}

// Calls `look` for each set until it gives something: the current application's first, the last made first.
template <class Look>
auto searchSets(Look look) -> decltype(look(std::declval<const SymbolSet&>())) {
    const auto& sets = symbolSets();
    MdlDesc* const current = mdlSystem_getCurrMdlDesc();
    for (const bool own : {true, false})
        for (auto set = sets.rbegin(); set != sets.rend(); ++set)
            if (((*set)->owner == current) == own)
                if (auto found = look(**set)) return found;
    return {};
}

const StructField* fieldsOf(std::string_view structName) {
    return searchSets([&](const SymbolSet& set) -> const StructField* {
        const auto found = set.structures.find(structName);
        return found == set.structures.end() ? nullptr : found->second;
    });
}

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// Walks an access string from place to place.
class Walk {
  public:
    explicit Walk(std::string_view text) : rest_(text) {}

    AccessResult run() {
        if (start()) {
            while (fault_.empty() && !rest_.empty()) step();
        }
        if (fault_.empty() && (atStructure() || left_ > 1)) fault_ = "the access string stops before a single value";
        if (!fault_.empty()) return {std::nullopt, fault_, onNull_};
        return {AccessPlace{address_, type_, size_}, {}, false};
    }

  private:
    bool atStructure() const { return type_ == FIELD_STRUCT || type_ == FIELD_POINTER; }
    void fail(std::string what) { fault_ = std::move(what); }

    std::string_view takeName() {
        const auto end = std::ranges::find_if_not(rest_, isNameCharacter);
        const std::string_view name = rest_.substr(0, static_cast<size_t>(end - rest_.begin()));
        rest_.remove_prefix(name.size());
        return name;
    }

    bool take(std::string_view token) {
        if (!rest_.starts_with(token)) return false;
        rest_.remove_prefix(token.size());
        return true;
    }

    bool start() {
        const std::string_view name = takeName();
        const PublishedPointer* pointer = searchSets([&](const SymbolSet& set) -> const PublishedPointer* {
            const auto found = set.pointers.find(name);
            return found == set.pointers.end() ? nullptr : &found->second;
        });
        if (!pointer) {
            fail("no published name " + quoted(name));
            return false;
        }
        address_ = static_cast<unsigned char*>(pointer->address);
        structName_ = pointer->structName;
        type_ = FIELD_POINTER;
        path_ = name;
        return true;
    }

    void step() {
        if (take("->") || take(".")) return stepToField();
        if (take("[")) return stepToElement();
        fail("what follows " + quoted(path_) + " can't be read: " + quoted(rest_));
    }

    void stepToField() {
        const std::string_view name = takeName();
        if (!atStructure()) return fail(quoted(path_) + " is no structure");
        if (left_ > 1) return fail(quoted(path_) + " is an array; an element of it is meant");
        if (type_ == FIELD_POINTER) {
            void* target;
            std::memcpy(&target, address_, sizeof target);
            onNull_ = !target;
            if (!target) return fail(quoted(path_) + " is null");
            address_ = static_cast<unsigned char*>(target);
        }
        const StructField* field = fieldsOf(structName_);
        if (!field) return fail("no published structure " + quoted(structName_));
        while (field->name && name != field->name) ++field;
        if (!field->name) return fail("structure " + quoted(structName_) + " has no field " + quoted(name));
        address_ += field->offset;
        type_ = field->type;
        size_ = field->size;
        left_ = field->count;
        structName_ = field->structName ? field->structName : "";
        path_ += "." + std::string(name);
    }

    void stepToElement() {
        const size_t close = rest_.find(']');
        if (close == std::string_view::npos) return fail("a \"]\" is missing behind " + quoted(path_));
        const std::optional<long long> index = wholeNumberOf(rest_.substr(0, close));
        if (left_ <= 1) return fail(quoted(path_) + " is no array");
        if (!index || *index < 0 || *index >= static_cast<long long>(left_))
            return fail(quoted(path_) + " has the elements 0 to " + std::to_string(left_ - 1) + ", not " +
                        quoted(rest_.substr(0, close)));
        address_ += static_cast<size_t>(*index) * size_;
        left_ = 1;
        path_ += "[" + std::to_string(*index) + "]";
        rest_.remove_prefix(close + 1);
    }

    std::string_view rest_;
    std::string path_;
    std::string fault_;
    bool onNull_ = false;
    unsigned char* address_ = nullptr;
    FieldType type_ = FIELD_POINTER;
    uint32_t size_ = sizeof(void*);
    uint32_t left_ = 1;  // elements that an index may still choose from
    std::string structName_;
};

template <class Value>
Value load(const AccessPlace& place) {
    Value value;
    std::memcpy(&value, place.address, sizeof value);
    return value;
}

template <class Value>
std::string store(const AccessPlace& place, Value value) {
    std::memcpy(place.address, &value, sizeof value);
    return {};
}

template <class Whole>
std::string storeWhole(const AccessPlace& place, std::string_view text) {
    constexpr auto least = std::numeric_limits<Whole>::min(), most = std::numeric_limits<Whole>::max();
    const std::optional<long long> value = wholeNumberOf(text);
    if (!value) return numberOf(text) ? "isn't a whole number" : notANumber(text);
    if (*value < least || *value > most)
        return "isn't between " + std::to_string(least) + " and " + std::to_string(most);
    return store(place, static_cast<Whole>(*value));
}

std::string numberText(double value, const std::string& format) {
    const std::optional<std::string> formatted = format.empty() ? std::nullopt : formatNumber(format, value);
    return formatted ? *formatted : shortestNumber(value);
}

std::string wideText(const AccessPlace& place) {
    std::string text;
    for (uint32_t at = 0; at + sizeof(wchar_t) <= place.size; at += sizeof(wchar_t)) {
        wchar_t character;
        std::memcpy(&character, place.address + at, sizeof character);
        if (character == 0) break;
        text.push_back(static_cast<char>(narrowCodeOf(static_cast<char32_t>(character)).value_or('?')));
    }
    return text;
}

std::string tooLong(std::string_view text, size_t most) {
    return "is too long: it has " + std::to_string(text.size()) + " characters, and " + std::to_string(most) + " fit";
}

std::string storeChars(const AccessPlace& place, std::string_view text) {
    if (text.size() >= place.size) return tooLong(text, place.size - 1);
    std::memset(place.address, 0, place.size);
    std::memcpy(place.address, text.data(), text.size());
    return {};
}

std::string storeWide(const AccessPlace& place, std::string_view text) {
    const size_t most = place.size / sizeof(wchar_t) - 1;
    if (text.size() > most) return tooLong(text, most);
    std::memset(place.address, 0, place.size);
    for (size_t i = 0; i < text.size(); ++i) {
        const auto character = static_cast<wchar_t>(unicodeOf(static_cast<unsigned char>(text[i])));
        std::memcpy(place.address + i * sizeof character, &character, sizeof character);
    }
    return {};
}

}  // namespace

AccessResult resolveAccess(std::string_view accessString) {
    return Walk(accessString).run();
}

std::string readPlace(const AccessPlace& place, const std::string& format) {
    switch (place.type) {
        case FIELD_INT32: return numberText(load<int32_t>(place), format);
        case FIELD_UINT32: return numberText(load<uint32_t>(place), format);
        case FIELD_BYTE: return numberText(load<uint8_t>(place), format);
        case FIELD_DOUBLE: return numberText(load<double>(place), format);
        case FIELD_CHARS: {
            const auto* text = reinterpret_cast<const char*>(place.address);
            return std::string(text, strnlen(text, place.size));
        }
        case FIELD_WCHARS: return wideText(place);
        case FIELD_STRUCT:
        case FIELD_POINTER: break;
    }
    return {};
}

std::string writePlace(const AccessPlace& place, std::string_view text) {
    switch (place.type) {
        case FIELD_INT32: return storeWhole<int32_t>(place, text);
        case FIELD_UINT32: return storeWhole<uint32_t>(place, text);
        case FIELD_BYTE: return storeWhole<uint8_t>(place, text);
        case FIELD_DOUBLE: {
            const std::optional<double> value = numberOf(text);
            return value ? store(place, *value) : notANumber(text);
        }
        case FIELD_CHARS: return storeChars(place, text);
        case FIELD_WCHARS: return storeWide(place, text);
        case FIELD_STRUCT:
        case FIELD_POINTER: break;
    }
    return "has no place here";
}

}  // namespace host

SymbolSet* mdlCExpression_initializeSet(int32_t, int32_t, int32_t) noexcept {
    return host::guarded<SymbolSet*>(nullptr, [] { return host::makeSet(); });
}

int mdlDialog_publishStructure(SymbolSet* set, const char* structName, const StructField* fields) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (!host::isSet(set) || !structName || !fields) return MDL_ERROR;
        set->structures[structName] = fields;
        return MDL_SUCCESS;
    });
}

int mdlDialog_publishComplexPtr(SymbolSet* set, const char* structName, const char* name, void* address) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (!host::isSet(set) || !structName || !name || !address) return MDL_ERROR;
        set->pointers[name] = {structName, address};
        return MDL_SUCCESS;
    });
}

int mdlDialog_getAccessValue(char* text, int32_t size, const char* accessString) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (!text || size < 1 || !accessString) return MDL_ERROR;
        const host::AccessResult result = host::resolveAccess(accessString);
        if (!result.place) return MDL_ERROR;
        const std::string value = host::readPlace(*result.place);
        const size_t length = std::min(value.size(), static_cast<size_t>(size) - 1);
        std::memcpy(text, value.data(), length);
        text[length] = '\0';
        return MDL_SUCCESS;
    });
}

int mdlDialog_setAccessValue(const char* accessString, const char* text) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (!accessString || !text) return MDL_ERROR;
        const host::AccessResult result = host::resolveAccess(accessString);
        return result.place && host::writePlace(*result.place, text).empty() ? MDL_SUCCESS : MDL_ERROR;
    });
}
