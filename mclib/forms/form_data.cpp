// Form data arrays: making and freeing them, and storing values.
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/text.h"
#include "mclib/forms/forms.h"
#include "mclib/forms/logo.h"
#include "mclib/frame/errors.h"

namespace mc {

namespace {

enum Result { STORED = 0, NO_FORM = 1, BAD_ROW = 2, NOT_STORED = 3 };
constexpr int compressedTextSize = 1024, compressedTextLimit = 8;  // as the host's compression of texts takes them

struct Extent {
    int32_t rowCount, nameLength;
};

Extent extentOf(const FormData* form) {
    return {form->values->head.rowCount, form->values->head.nameLength};
}

// A node with everything that belongs to it in one block: values first, they have the strictest alignment.
FormData* makeNode(size_t slots, size_t nameSize) {
    const size_t atFlags = sizeof(FormData) + slots * sizeof(FormValue), atName = atFlags + slots * sizeof(int32_t);
    static_assert(sizeof(FormData) % alignof(FormValue) == 0 && alignof(FormValue) % alignof(int32_t) == 0);
    auto* block =
        static_cast<char*>(mclibMem_mallocRscErrorPrintf(atName + nameSize, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY));
    if (!block) return nullptr;
    auto* node = reinterpret_cast<FormData*>(block);
    node->values = reinterpret_cast<FormValue*>(block + sizeof(FormData));
    node->isSet = reinterpret_cast<int32_t*>(block + atFlags);
    node->name = nameSize ? block + atName : nullptr;
    return node;
}

FormData* appendField(FormData* last, std::string_view name, int type, const Extent& extent) {
    FormData* field = makeNode(static_cast<size_t>(extent.rowCount), static_cast<size_t>(extent.nameLength) + 1);
    if (!field) return nullptr;
    std::memcpy(field->name, name.data(), name.size());
    field->type = type;
    last->next = field;
    return field;
}

// The field of that name, made at the end of the list when there is none; null when out of memory.
FormData* findOrMakeField(FormData* form, const char* wanted, int type) {
    const Extent extent = extentOf(form);
    const std::string_view name(wanted, strnlen(wanted, static_cast<size_t>(extent.nameLength)));
    FormData* last = form;
    for (FormData* field = form->next; field; field = field->next) {
        if (std::strncmp(field->name, name.data(), name.size()) == 0 && field->name[name.size()] == '\0') return field;
        last = field;
    }
    return appendField(last, name, type, extent);
}

// ---- values ----

// A value argument as the caller gave it: a number, a text or a callback.
struct Argument {
    int type;
    double floating;
    int32_t integer;
    const char* text;
    FormValue callback;
};

Argument readArgument(int type, va_list values) {
    Argument argument{};
    argument.type = type;
    switch (type) {
        case MCLIB_FORM_FLOAT: argument.floating = va_arg(values, double); break;
        case MCLIB_FORM_INTEGER: argument.integer = va_arg(values, int32_t); break;
        case MCLIB_FORM_TEXT:
        case MCLIB_FORM_CHAR: argument.text = va_arg(values, const char*); break;
        case MCLIB_FORM_CALLBACK:
            argument.callback.callback.function = va_arg(values, FormCallback);
            argument.callback.callback.userArg = va_arg(values, int32_t);
            argument.callback.callback.direct = va_arg(values, int32_t);
            break;
        default: break;
    }
    return argument;
}

bool isText(int type) {
    return type == MCLIB_FORM_TEXT || type == MCLIB_FORM_CHAR;
}

bool isKind(int type) {
    return type >= MCLIB_FORM_FLOAT && type <= MCLIB_FORM_CALLBACK;
}

// The type that the argument is read by: the field's. A float and anything else are passed in different places, so
// there the argument's own counts.
int typeToRead(int type, int fieldType) {
    const bool passedOtherwise = isKind(type) && (type == MCLIB_FORM_FLOAT) != (fieldType == MCLIB_FORM_FLOAT);
    return passedOtherwise ? type : fieldType;
}

int32_t integerOf(const Argument& argument) {
    if (argument.type == MCLIB_FORM_INTEGER) return argument.integer;
    if (!(argument.floating > INT32_MIN)) return INT32_MIN;
    return argument.floating < INT32_MAX ? static_cast<int32_t>(argument.floating) : INT32_MAX;
}

// A pointer counts as its address, cut to the word.
double floatOf(const Argument& argument) {
    if (argument.type == MCLIB_FORM_FLOAT) return argument.floating;
    if (argument.type == MCLIB_FORM_INTEGER) return argument.integer;
    const auto address = isText(argument.type) ? reinterpret_cast<uintptr_t>(argument.text)
                                               : reinterpret_cast<uintptr_t>(argument.callback.callback.function);
    return static_cast<int32_t>(static_cast<uint32_t>(address));
}

int storeText(FormValue& value, const char* text) {
    if (!text) text = "";
    mdl::HostPtr<char> kept(
        static_cast<char*>(mclibMem_mallocRscErrorPrintf(std::strlen(text) + 1, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY)));
    if (!kept) return NOT_STORED;
    char compressed[compressedTextSize];
    mdlText_compressString(compressed, text, compressedTextSize, compressedTextLimit);
    std::strcpy(kept.get(), compressed);  // never longer than the text that it comes from
    dlmSystem_mdlFree(value.text);
    value.text = kept.release();
    return STORED;
}

int reportMismatch(const FormData& field, int row, int type) {
    toolSubsystem_printf(
        "Forms: the value for row %d of field %s isn't stored: it is of type %d and the field of type %d. "
        "Insert it with the type that the field began with, or under another name.\n",
        row, field.name, type, field.type);
    return NOT_STORED;
}

int storeValue(FormData& field, int row, const Argument& argument) {
    FormValue& value = field.values[row];
    switch (field.type) {
        case MCLIB_FORM_FLOAT: value.floating = floatOf(argument); return STORED;
        case MCLIB_FORM_INTEGER: value.integer = integerOf(argument); return STORED;
        case MCLIB_FORM_TEXT:
            return isText(argument.type) ? storeText(value, argument.text) : reportMismatch(field, row, argument.type);
        case MCLIB_FORM_CHAR:
            if (!isText(argument.type)) return reportMismatch(field, row, argument.type);
            value.character = argument.text ? argument.text[0] : '\0';
            return STORED;
        case MCLIB_FORM_CALLBACK:
            if (argument.type != MCLIB_FORM_CALLBACK) return reportMismatch(field, row, argument.type);
            value = argument.callback;
            return STORED;
        default: return NOT_STORED;
    }
}

void freeTexts(FormData* field, int32_t rowCount) {
    for (int32_t row = 0; row < rowCount; ++row)
        if (field->isSet[row]) dlmSystem_mdlFree(field->values[row].text);
}

}  // namespace

}  // namespace mc

using namespace mc;

FormData* mclibMatList_createFormDataArray(int nameLength, int rowCount) {
    if (nameLength < 1 || nameLength == INT_MAX || rowCount < 0) {
        toolSubsystem_printf(
            "Forms: an array with names of %d characters and %d rows can't be made. Give it names of 1 "
            "character or more and 0 rows or more.\n",
            nameLength, rowCount);
        return nullptr;
    }
    FormData* head = makeNode(1, 0);
    if (!head) return nullptr;
    head->type = MCLIB_FORM_HEAD;
    head->values->head = {rowCount, nameLength};
    return head;
}

void mclibMatList_destroyFormDataArray(FormData* form) {
    if (!form) return;
    const int32_t rowCount = extentOf(form).rowCount;
    for (FormData *node = form, *next; node; node = next) {
        next = node->next;
        if (node->type == MCLIB_FORM_TEXT) freeTexts(node, rowCount);
        dlmSystem_mdlFree(node);
    }
}

int mclibMatList_insertValue(FormData* form, const char* name, int type, int row, ...) {
    if (!form || !name) return NO_FORM;
    if (row < 0 || row >= extentOf(form).rowCount) return BAD_ROW;
    FormData* field = findOrMakeField(form, name, type);
    if (!field) return NOT_STORED;
    field->isSet[row] = 1;
    va_list values;
    va_start(values, row);
    const Argument argument = readArgument(typeToRead(type, field->type), values);
    va_end(values);
    return storeValue(*field, row, argument);
}

// ---- the logo ----

int mclibMatList_insertLogo(FormData* form) {
    return mclibMatList_insertLogoExt(form, forms::logoCell, forms::logoLibrary);
}

int mclibMatList_insertLogoExt(FormData* form, const char* cellName, const char* library) {
    forms::setLogo(cellName, library);
    return mclibMatList_insertValue(form, "LOGO", MCLIB_FORM_CALLBACK, 0, forms::makeLogo, 0, 1);
}
