// The results of a job as a table.
#pragma once

#include <string>
#include <vector>

namespace formula {

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
