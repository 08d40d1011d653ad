// A formula, then a count and that many parameters. Blocks have their exact sizes, so that reading past them shows.
#include "mclib/text/formula.h"

#include <vector>

#include "bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Bytes input(data, size);
    const std::string text = input.text();
    const std::vector<char> formula(text.c_str(), text.c_str() + text.size() + 1);
    const int count = input.take<int8_t>();
    std::vector<char> names(count > 0 ? static_cast<size_t>(count) * MCLIB_FORMULA_NAME_SIZE : 0);
    std::vector<double> values(count > 0 ? static_cast<size_t>(count) : 0);
    for (char& c : names) c = input.take<char>();
    for (double& v : values) v = input.take<int16_t>() / 16.0;
    int error = -1;
    const double* const value = mclibParse_parseFormulaP(formula.data(), &error, count, names.data(), values.data());
    require(error == 0 || (error == 1 && *value == 0.0));
    return 0;
}
