#include "table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "host/mdl/system.h"

namespace formula {

namespace {

constexpr double largestInDecimals = 1e15;  // beyond it a double has hardly any

int widest(const std::vector<Row>& rows, std::string Row::*column) {
    size_t width = 0;
    for (const Row& row : rows) width = std::max(width, (row.*column).size());
    return static_cast<int>(width);
}

}  // namespace

std::string shown(double value, int decimals) {
    char text[64];  // 15 digits, a point, 12 decimals and a sign at most
    if (decimals >= 0 && std::abs(value) < largestInDecimals) {
        std::snprintf(text, sizeof text, "%.*f", std::min(decimals, mostDecimals), value);
    } else {
        std::snprintf(text, sizeof text, "%.12g", value);
    }
    const std::string all = text;
    const bool minusZero = all.starts_with('-') && all.find_first_not_of("-0.") == all.npos;
    return minusZero ? all.substr(1) : all;
}

void print(const Table& table) {
    if (!table.title.empty()) toolSubsystem_printf("%s\n\n", table.title.c_str());
    const int name = std::max(widest(table.numbers, &Row::name), widest(table.texts, &Row::name));
    const int value = widest(table.numbers, &Row::value);
    for (const Row& row : table.numbers) {
        toolSubsystem_printf("%-*s  %*s%s%s\n", name, row.name.c_str(), value, row.value.c_str(),
                             row.remark.empty() ? "" : "  ", row.remark.c_str());
    }
    if (!table.numbers.empty() && !table.texts.empty()) toolSubsystem_printf("\n");
    for (const Row& row : table.texts) toolSubsystem_printf("%-*s  %s\n", name, row.name.c_str(), row.value.c_str());
}

}  // namespace formula
