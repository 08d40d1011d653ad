// A template, the names' length and the rows of an array, the size of the buffer, then fields: name, type, row, value.
#include "mclib/forms/formatter.h"

#include <cstring>
#include <memory>

#include "bytes.h"

using namespace mc;

namespace {

int drawNothing(int, char*, ElementDescr**, int, double, double) {
    return 0;
}

// The type that the value has to be of when it is said to be of `type`: other fields than those of floats take what
// they began with.
int typeToGive(const FormData* form, const std::string& name, int nameLength, int type) {
    const FormData* field = form->next;
    while (field && std::strncmp(field->name, name.c_str(), static_cast<size_t>(nameLength)) != 0) field = field->next;
    const bool counts = field && type != MCLIB_FORM_FLOAT && field->type != MCLIB_FORM_FLOAT;
    return counts ? field->type : type;
}

void insert(FormData* form, int nameLength, Bytes& input) {
    const std::string name = input.text();
    const int type = 1 + input.take<uint8_t>() % 5, row = input.take<int8_t>();
    switch (typeToGive(form, name, nameLength, type)) {
        case MCLIB_FORM_FLOAT: mclibMatList_insertValue(form, name.c_str(), type, row, input.take<double>()); break;
        case MCLIB_FORM_INTEGER: mclibMatList_insertValue(form, name.c_str(), type, row, input.take<int32_t>()); break;
        case MCLIB_FORM_CALLBACK:
            mclibMatList_insertValue(form, name.c_str(), type, row, drawNothing, input.take<int32_t>(), 1);
            break;
        default: mclibMatList_insertValue(form, name.c_str(), type, row, input.text().c_str()); break;
    }
}

// What both ways to find a field give, in buffers of their exact size.
void format(const FormData* form, const forms::FormatRequest& request, size_t size) {
    const std::unique_ptr<char[]> walked(new char[size]), indexed(new char[size]);
    const forms::FieldIndex index(form);
    forms::FormatRequest withIndex = request;
    withIndex.index = &index;
    const int result = forms::generateText({walked.get(), size}, request);
    require(result >= MCLIB_FORM_BAD_ROW && result <= MCLIB_FORM_CALLED);
    require(forms::generateText({indexed.get(), size}, withIndex) == result);
    require(std::strlen(walked.get()) < size);
    require(std::strcmp(walked.get(), indexed.get()) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Bytes input(data, size);
    const std::string given = input.text();
    const std::unique_ptr<char[]> text(new char[given.size() + 1]);  // its end is where reading must end
    std::memcpy(text.get(), given.c_str(), given.size() + 1);
    const int nameLength = 1 + input.take<uint8_t>() % 8, rows = input.take<uint8_t>() % 32;
    const size_t room = 1 + input.take<uint16_t>() % forms::pageTextSize;
    FormData* form = mclibMatList_createFormDataArray(nameLength, rows);
    for (int i = 0; i < 12 && !input.empty(); ++i) insert(form, nameLength, input);
    ElementDescr* made = nullptr;
    for (const bool useRows : {true, false})
        format(form, {.text = text.get(), .form = form, .newDescr = &made, .useRows = useRows}, room);
    mclibMatList_destroyFormDataArray(form);
    return 0;
}
