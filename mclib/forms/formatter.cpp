#include "mclib/forms/formatter.h"

#include <bit>
#include <cstdlib>
#include <cstring>

#include "mchost/mdl/system.h"
#include "mclib/forms/value.h"
#include "mclib/frame/named_messages.hpp"
#include "resources/ids.h"

namespace mc::forms {
namespace {

constexpr bool isLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

int32_t rowCountOf(const FormData* form) {
    return form->values->head.rowCount;
}
size_t nameLengthOf(const FormData* form) {
    return static_cast<size_t>(form->values->head.nameLength);
}

// A code, taken apart.
struct Code {
    int32_t row;       // from 0; -1 for a row number of 0
    const char* from;  // where the prefix begins
    const char* name;  // behind the prefix; at the template's end when there is none
};

// The row that a run of digits and minus signs names, less 1; a minus sign in front of the digits is dropped, and what
// stands behind another one isn't read. A number beyond the type counts as the greatest.
int32_t rowOf(const char* run) {
    int64_t number = 0;
    for (run += *run == '-'; isDigit(*run); ++run)
        if (number < INT32_MAX) number = number * 10 + (*run - '0');
    return static_cast<int32_t>(number < INT32_MAX ? number : int64_t{INT32_MAX}) - 1;
}

// `at` is the code's "%".
Code readCode(const char* at, bool useRows) {
    Code code{0, at, nullptr};
    const size_t run = useRows ? std::strspn(at + 1, "-0123456789") : 0;
    if (run > 0) {
        code.row = rowOf(at + 1);
        code.from = at + 1 + run;
    }
    code.name = code.from;
    if (*code.name) ++code.name;
    while (*code.name && !isLetter(*code.name)) ++code.name;
    return code;
}

// The application's own function is reached through the host.
void callField(const FormData& field, int32_t row, const FormatRequest& request) {
    const auto [function, userArg, direct] = field.values[row].callback;
    if (!request.newDescr || !function) return;
    if (direct) {
        function(row, field.name, request.newDescr, userArg, request.textWidth, request.textHeight);
    } else {
        dlmSystem_callAnyFunction("IPPPDD", mdlSystem_getCurrMdlDesc(), reinterpret_cast<void*>(function), row,
                                  field.name, request.newDescr, reinterpret_cast<void*>(intptr_t{userArg}),
                                  request.textWidth, request.textHeight);
    }
}

template <class Visit>
void forEachMatch(const FormatRequest& request, const char* name, Visit visit) {
    if (request.index) return request.index->forEachMatch(name, visit);
    const size_t length = nameLengthOf(request.form);
    for (FormData* field = request.form->next; field; field = field->next)
        if (std::strncmp(field->name, name, length) == 0 && !visit(*field)) return;
}

// Puts what the code stands for into `out`; the type of the last field that matched goes to `result`. False when a
// callback field ended the text.
bool expand(BoundedText& out, const Code& code, const FormatRequest& request, int& result) {
    bool goesOn = true;
    forEachMatch(request, code.name, [&](FormData& field) {
        result = field.type;
        if (code.row < 0 || !field.isSet[code.row]) return true;
        if (field.type == MCLIB_FORM_CALLBACK) {
            callField(field, code.row, request);
            return goesOn = false;
        }
        const std::string_view prefix(code.from, static_cast<size_t>(code.name - code.from));
        putValue(out, prefix, field, code.row);
        return true;
    });
    return goesOn;
}

}  // namespace

FieldIndex::FieldIndex(const FormData* form) : last_(form) {
    if (!form) return;
    nameLength_ = nameLengthOf(form);
    for (FormData* field = form->next; field; field = field->next) {
        entries_.push_back({keyOf(field->name), none, field});
        last_ = field;
    }
    buckets_.assign(std::bit_ceil(2 * entries_.size() + 1), none);
    for (size_t i = entries_.size(); i-- > 0;) {  // from the end, so that each bucket is in order of the list
        uint32_t& bucket = buckets_[bucketOf(entries_[i].key)];
        entries_[i].next = bucket;
        bucket = static_cast<uint32_t>(i);
    }
}

// The first characters of a name, as far as they count.
uint32_t FieldIndex::keyOf(const char* name) const {
    uint32_t key = 0;
    for (size_t i = 0; i < sizeof key && i < nameLength_ && name[i]; ++i)
        key |= uint32_t{static_cast<unsigned char>(name[i])} << (8 * i);
    return key;
}

size_t FieldIndex::bucketOf(uint32_t key) const {
    return std::rotl(key * 0x9E3779B1u, 16) & (buckets_.size() - 1);
}

bool FieldIndex::matches(const FormData& field, const char* name) const {
    return std::strncmp(field.name, name, nameLength_) == 0;
}

int generateText(std::span<char> buffer, const FormatRequest& request) {
    BoundedText out(buffer);
    if (request.newDescr) *request.newDescr = nullptr;
    int result = MCLIB_FORM_TEXT;
    if (!request.form || !request.text) return result;
    const int32_t rowCount = rowCountOf(request.form);
    for (const char* at = request.text; *at;) {
        const size_t plain = std::strcspn(at, "%");
        out.put(std::string_view(at, plain));
        at += plain;
        if (!*at) break;
        if (at[1] == '%') {
            out.put('%');
            at += 2;
            continue;
        }
        const Code code = readCode(at, request.useRows);
        if (code.row >= rowCount) {
            mc::showNotice(ids::errors::rowBeyondArray, code.row + 1, code.from, rowCount);
            return MCLIB_FORM_BAD_ROW;
        }
        if (!*code.name) break;
        if (!expand(out, code, request, result)) return MCLIB_FORM_CALLED;
        at = code.name + strnlen(code.name, nameLengthOf(request.form));
    }
    return result;
}

}  // namespace mc::forms

using namespace mc;

int mclibMatList_generateFormatedText(const char* format, FormData* form, char* out, ElementDescr** newDescr,
                                      double textWidth, double textHeight, int useRows) {
    if (!out) return MCLIB_FORM_TEXT;
    return forms::generateText({out, forms::pageTextSize},
                               {format, form, newDescr, textWidth, textHeight, useRows != 0});
}
