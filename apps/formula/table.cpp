#include "table.h"

#include <algorithm>

#include <mchost/mdl/system.h>

namespace formula {

namespace {

int widest(const std::vector<Row>& rows, std::string Row::*column) {
    size_t width = 0;
    for (const Row& row : rows) width = std::max(width, (row.*column).size());
    return static_cast<int>(width);
}

}  // namespace

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
