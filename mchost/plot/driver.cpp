#include "mchost/plot/driver.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "mchost/base/words.h"

namespace host {
namespace {

struct StandardPaper {
    std::string_view name;
    double widthMm, heightMm;
};
constexpr auto standardPapers = std::to_array<StandardPaper>({
    {"A0", 841, 1189},
    {"A1", 594, 841},
    {"A2", 420, 594},
    {"A3", 297, 420},
    {"A4", 210, 297},
    {"A5", 148, 210},
});
constexpr std::string_view usualPaper = "A4";

std::optional<double> numberBetween(std::string_view text, double least, double most) {
    const std::optional<double> value = numberIn<double>(text);
    return value && *value >= least && *value <= most ? value : std::nullopt;
}

// ---- the entries; each gives what is wrong with a value, or null ----

struct Draft {
    PlotDriver driver;
    std::string defaultPaper;
    bool extensionGiven = false;
};

const char* takeOutput(Draft& draft, std::string_view value) {
    const auto kind = pictureKindNamed(value);
    if (!kind) return "the output is pdf, png or svg";
    draft.driver.kind = *kind;
    if (!draft.extensionGiven) draft.driver.extension = "." + lowerCase(value);
    return nullptr;
}

const char* takeExtension(Draft& draft, std::string_view value) {
    if (value.find_first_of("/\\") != std::string_view::npos) return "an extension has no folder";
    draft.driver.extension = value;
    draft.extensionGiven = true;
    return nullptr;
}

const char* takeNumber(double& taken, std::string_view value, double low, double high, const char* wanted) {
    const auto number = numberBetween(value, low, high);
    if (!number) return wanted;
    taken = *number;
    return nullptr;
}

const char* takeResolution(Draft& draft, std::string_view value) {
    return takeNumber(draft.driver.resolution, value, 10, 2400, "the resolution is a number from 10 to 2400");
}

const char* takeName(Draft& draft, std::string_view value) {
    draft.driver.outputName = value;
    return nullptr;
}

const char* takePrinter(Draft& draft, std::string_view value) {
    draft.driver.printer = value;
    return nullptr;
}

const char* takePaper(Draft& draft, std::string_view value) {
    std::istringstream words{std::string(value)};
    std::string name, width, height, more;
    words >> name >> width >> height >> more;
    const auto w = numberBetween(width, 1, longestSideMm), h = numberBetween(height, 1, longestSideMm);
    if (!w || !h || !more.empty()) return "a paper is NAME WIDTH HEIGHT, in millimetres from 1 to 10000";
    if (findPaper(draft.driver, name) != SIZE_MAX) return "there is a paper of that name already";
    draft.driver.papers.push_back({name, *w, *h});
    return nullptr;
}

const char* takeDefault(Draft& draft, std::string_view value) {
    draft.defaultPaper = value;
    return nullptr;
}

const char* takeMargin(Draft& draft, std::string_view value) {
    return takeNumber(draft.driver.marginMm, value, 0, 1000, "the margin is a number of millimetres from 0 to 1000");
}

struct Entry {
    std::string_view name;
    const char* (*take)(Draft& draft, std::string_view value);
};
constexpr auto entries = std::to_array<Entry>({
    {"output", takeOutput},
    {"extension", takeExtension},
    {"resolution", takeResolution},
    {"name", takeName},
    {"printer", takePrinter},
    {"paper", takePaper},
    {"default", takeDefault},
    {"margin", takeMargin},
});

const char* takeLine(Draft& draft, std::string_view line) {
    const size_t sign = line.find('=');
    if (sign == std::string_view::npos) return "a line is \"name = value\"";
    const std::string_view name = trimmed(line.substr(0, sign));
    const auto entry = std::ranges::find_if(entries, [&](const Entry& e) { return sameName(e.name, name); });
    if (entry == entries.end()) {
        return "the names are output, extension, resolution, name, printer, paper, default and margin";
    }
    return entry->take(draft, trimmed(line.substr(sign + 1)));
}

// What concerns the file as a whole.
const char* complete(Draft& draft) {
    PlotDriver& driver = draft.driver;
    if (driver.papers.empty()) {
        for (const StandardPaper& p : standardPapers)
            driver.papers.push_back({std::string(p.name), p.widthMm, p.heightMm});
    }
    const bool given = !draft.defaultPaper.empty();
    const size_t chosen = findPaper(driver, given ? draft.defaultPaper : usualPaper);
    if (given && chosen == SIZE_MAX) return "the default isn't a paper of the file";
    driver.defaultPaper = chosen == SIZE_MAX ? 0 : chosen;
    const bool fits = std::ranges::all_of(
        driver.papers, [&](const PaperSize& p) { return std::min(p.widthMm, p.heightMm) > 2 * driver.marginMm; });
    return fits ? nullptr : "the margin leaves nothing of one of the papers";
}

}  // namespace

size_t findPaper(const PlotDriver& driver, std::string_view name) {
    const auto found = std::ranges::find_if(driver.papers, [&](const PaperSize& p) { return sameName(p.name, name); });
    return found == driver.papers.end() ? SIZE_MAX : static_cast<size_t>(found - driver.papers.begin());
}

PlotDriver readPlotDriver(const std::filesystem::path& path) {
    const std::string file = "The plot driver file \"" + path.string() + "\" ";
    std::ifstream stream(path);
    if (!stream) throw std::runtime_error(file + "can't be read; choose one that is there.");
    Draft draft;
    std::string line;
    for (int number = 1; std::getline(stream, line); ++number) {
        const std::string_view text = trimmed(line);
        if (text.empty() || text.starts_with('#')) continue;
        if (const char* wrong = takeLine(draft, text)) {
            throw std::runtime_error(file + "is wrong in line " + std::to_string(number) + ": " + wrong + ".");
        }
    }
    if (!stream.eof()) throw std::runtime_error(file + "can't be read; choose one that is there.");
    if (const char* wrong = complete(draft)) throw std::runtime_error(file + "can't be used: " + wrong + ".");
    return std::move(draft.driver);
}

}  // namespace host
