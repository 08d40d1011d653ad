#include "report.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include <mclib/app/numbers.hpp>

namespace find {

namespace {

struct Column {
    const char* name;
    bool isNumber;
    std::string (*value)(const Row& row);
    bool ofReplacing;  // shown with --replace alone
};
// clang-format off
constexpr std::array columns = {
    Column{"file",     false, [](const Row& row) { return row.file; }, false},
    Column{"position", true,  [](const Row& row) { return std::to_string(row.hit.position); }, false},
    Column{"text",     false, [](const Row& row) { return row.hit.text; }, false},
    Column{"becomes",  false, [](const Row& row) { return row.after; }, true},
    Column{"errors",   true,  [](const Row& row) { return std::to_string(row.hit.errors); }, false},
    Column{"level",    false, [](const Row& row) { return row.hit.level; }, false},
    Column{"x",        true,  [](const Row& row) { return mcapp::shown(row.hit.x, mcapp::asNeeded); }, false},
    Column{"y",        true,  [](const Row& row) { return mcapp::shown(row.hit.y, mcapp::asNeeded); }, false},
};
// clang-format on

std::vector<Column> columnsFor(const Options& options) {
    std::vector<Column> shown;
    for (const Column& column : columns)
        if (!column.ofReplacing || options.replacement) shown.push_back(column);
    return shown;
}

// ---- a table for people ----

std::string line(const std::vector<std::string>& cells, const std::vector<Column>& shown,
                 const std::vector<size_t>& widths) {
    std::string out;
    for (size_t i = 0; i < cells.size(); ++i) {
        const std::string padding(widths[i] - cells[i].size(), ' ');
        out += (i == 0 ? "" : "  ") + (shown[i].isNumber ? padding + cells[i] : cells[i] + padding);
    }
    out.erase(out.find_last_not_of(' ') + 1);
    return out + "\n";
}

std::string table(const std::vector<Row>& rows, const std::vector<Column>& shown) {
    std::vector<std::vector<std::string>> lines(1);
    std::vector<size_t> widths;
    for (const Column& column : shown) {
        lines[0].push_back(column.name);
        widths.push_back(lines[0].back().size());
    }
    for (const Row& row : rows) {
        std::vector<std::string>& cells = lines.emplace_back();
        for (const Column& column : shown) {
            cells.push_back(column.value(row));
            size_t& width = widths[cells.size() - 1];
            width = std::max(width, cells.back().size());
        }
    }
    std::string out;
    for (const std::vector<std::string>& cells : lines) out += line(cells, shown, widths);
    return out;
}

// ---- for other programs ----

// RFC 4180, with the line ends of this system.
std::string csvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == text.npos) return text;
    std::string out = "\"";
    for (const char c : text) out += c == '"' ? "\"\"" : std::string(1, c);
    return out + "\"";
}

std::string csv(const std::vector<Row>& rows, const std::vector<Column>& shown) {
    std::string out;
    for (const Column& column : shown) out += (out.empty() ? "" : ",") + std::string(column.name);
    out += "\n";
    for (const Row& row : rows) {
        for (const Column& column : shown) out += (&column == shown.data() ? "" : ",") + csvField(column.value(row));
        out += "\n";
    }
    return out;
}

// RFC 8259; letters above ASCII stand as they are.
std::string jsonString(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') out += '\\';
        char escape[8] = "";
        if (code < 0x20) std::snprintf(escape, sizeof escape, "\\u%04x", code);
        out += code < 0x20 ? escape : std::string(1, c);
    }
    return out + "\"";
}

std::string json(const std::vector<Row>& rows, const std::vector<Column>& shown) {
    std::string out = "[";
    for (const Row& row : rows) {
        out += &row == rows.data() ? "\n  {" : ",\n  {";
        for (const Column& column : shown) {
            const std::string value = column.value(row);
            out += (&column == shown.data() ? "\"" : ", \"") + std::string(column.name) + "\": ";
            out += column.isNumber ? value : jsonString(value);
        }
        out += "}";
    }
    return out + (rows.empty() ? "]\n" : "\n]\n");
}

}  // namespace

std::string report(const std::vector<Row>& rows, const Options& options) {
    const std::vector<Column> shown = columnsFor(options);
    switch (options.format) {
        case Format::csv: return csv(rows, shown);
        case Format::json: return json(rows, shown);
        default: return rows.empty() ? "" : table(rows, shown);
    }
}

}  // namespace find
