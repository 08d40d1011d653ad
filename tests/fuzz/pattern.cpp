// A pattern and a text, then the most errors and whether case counts. Blocks have their exact sizes, so that reading
// past them shows.
#include "mclib/design/pattern.h"

#include <vector>

#include "bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Bytes input(data, size);
    const std::string first = input.text(), second = input.text();
    const std::vector<char> pattern(first.begin(), first.end()), text(second.begin(), second.end());
    const int maxErrors = input.take<int8_t>();
    const bool caseSensitive = input.take<uint8_t>() % 2 != 0;
    const mc::design::Pattern prepared({pattern.data(), pattern.size()}, caseSensitive);
    const std::string_view whole(text.data(), text.size());
    const int errors = prepared.errorsOf(whole, maxErrors);
    require(errors >= 0);
    require(errors == 0 || prepared.errorsOf(whole, 0) != 0);  // what fits does so whatever is allowed
    const mc::design::Pattern::Wildcards wildcards = prepared.wildcards();
    std::vector<std::string_view> runs(wildcards.stars);
    std::vector<char> characters(wildcards.characters);
    if (prepared.take(whole, {runs, characters})) require(prepared.errorsOf(whole, 0) == 0);
    return 0;
}
