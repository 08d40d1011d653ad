// An expression, then a table of names and values as texts.
#include "mclib/text/tagstring.h"

#include <vector>

#include "bytes.h"
#include "mchost/mdl/system.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Bytes input(data, size);
    const std::string text = input.text();
    const std::vector<char> expression(text.c_str(), text.c_str() + text.size() + 1);
    std::vector<TagEntry> tags;
    while (!input.empty() && tags.size() < 8) {
        TagEntry& tag = tags.emplace_back();
        const std::string name = input.text(), value = input.text();
        std::memcpy(tag.name, name.data(), std::min(name.size(), sizeof tag.name));
        std::memcpy(tag.value, value.data(), std::min(value.size(), sizeof tag.value));
    }
    char* const built = mclibParse_tagString(expression.data(), tags.data(), static_cast<int>(tags.size()));
    require(!built || std::strlen(built) <= MCLIB_TAG_RESULT_LENGTH);
    dlmSystem_mdlFree(built);
    return 0;
}
