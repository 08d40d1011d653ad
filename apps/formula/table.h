// The results of a job as a table, and numbers as they are shown.
#pragma once

#include <string>
#include <vector>

namespace formula {

constexpr int mostDecimals = 12;

// With so many decimals; below 0 stands for as many as the number needs.
std::string shown(double value, int decimals);

struct Row {
    std::string name, value, remark;
};

struct Table {
    std::string title;
    std::vector<Row> numbers;  // values stand right
    std::vector<Row> texts;    // below them; values stand left
};
// To the console.
void print(const Table& table);

}  // namespace formula
