// The formatter: a template with field codes to text, into a buffer of a told size. Needs no session.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "mclib/forms/forms.h"

namespace mc::forms {

constexpr size_t pageTextSize = 512;    // what a text may take on a page, its NUL included
constexpr size_t exportTextSize = 256;  // and in a spreadsheet

// An index of an array's fields for whoever formats many texts: it finds the fields that a walk through the list finds,
// in the same order. It stays right while values change; a field that is added later isn't in it.
class FieldIndex {
  public:
    explicit FieldIndex(const FormData* form);
    // Whether fields were added to the array since.
    bool isOld() const { return last_ && last_->next; }

    // Calls visit(FormData&) for each field whose name agrees with `name` on nameLength characters, until it gives
    // false.
    template <class Visit>
    void forEachMatch(const char* name, Visit visit) const {
        const uint32_t key = keyOf(name);
        for (uint32_t i = firstOf(key); i != none; i = entries_[i].next)
            if (entries_[i].key == key && matches(*entries_[i].field, name) && !visit(*entries_[i].field)) return;
    }

  private:
    static constexpr uint32_t none = UINT32_MAX;
    struct Entry {
        uint32_t key;
        uint32_t next;  // entry of the same bucket that is further on in the list
        FormData* field;
    };
    uint32_t keyOf(const char* name) const;
    size_t bucketOf(uint32_t key) const;
    uint32_t firstOf(uint32_t key) const { return buckets_.empty() ? none : buckets_[bucketOf(key)]; }
    bool matches(const FormData& field, const char* name) const;

    const FormData* last_ = nullptr;
    size_t nameLength_ = 0;
    std::vector<Entry> entries_;  // in order of the list
    std::vector<uint32_t> buckets_;
};

// What to format. Fields as the arguments of mclibMatList_generateFormatedText.
struct FormatRequest {
    const char* text;
    FormData* form;
    ElementDescr** newDescr = nullptr;
    double textWidth = 0, textHeight = 0;
    bool useRows = true;
    const FieldIndex* index = nullptr;  // of the form; null: the list is walked for each code
};

// As mclibMatList_generateFormatedText, with a buffer of a known size (1 or more): what doesn't fit is cut.
int generateText(std::span<char> out, const FormatRequest& request);

}  // namespace mc::forms
