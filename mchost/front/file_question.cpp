#include "mchost/front/file_question.h"

#include <algorithm>
#include <filesystem>
#include <utility>
#include <vector>

#include "mchost/base/paths.h"
#include "mchost/files/file_list.h"

namespace host {

namespace {

namespace fs = std::filesystem;
using Kind = FileQuestion::Kind;

constexpr size_t mostChoices = 60;  // names shown
constexpr size_t mostColumns = 76;

bool matchesFilter(std::string_view filter, std::string_view name) {
    while (!filter.empty()) {
        const std::string_view pattern = filter.substr(0, filter.find(';'));
        if (matchesPattern(pattern, name)) return true;
        filter.remove_prefix(std::min(filter.size(), pattern.size() + 1));
    }
    return false;
}

bool isAbsolute(std::string_view name) {
    const NameParts parts = partsOf(name);
    return !parts.device.empty() || parts.directory.starts_with('/') || parts.directory.starts_with('\\');
}

struct Entries {
    std::vector<std::string> folders, filtered, files;
};

Entries entriesOf(const fs::path& folder, std::string_view begin, std::string_view filter) {
    Entries entries;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (!name.starts_with(begin) || (begin.empty() && name.starts_with('.'))) continue;
        std::error_code ignored;
        if (entry->is_directory(ignored)) {
            entries.folders.push_back(name);
        } else {
            entries.files.push_back(name);
            if (matchesFilter(filter, name)) entries.filtered.push_back(name);
        }
    }
    return entries;
}

void appendNumbered(std::string& text, const std::vector<std::string>& names) {
    for (size_t i = 0; i < names.size(); ++i) text += "  " + std::to_string(i + 1) + ") " + names[i] + "\n";
}

// The folders, and the files of the filter, in lines of a terminal's width.
std::string folderListing(const FileQuestion& question) {
    Entries entries = entriesOf(systemPath(question.directory), "", question.filter);
    for (std::string& name : entries.folders) name += '/';
    std::vector<std::string> names = std::move(entries.folders);
    if (question.kind != Kind::directory) names.insert(names.end(), entries.filtered.begin(), entries.filtered.end());
    std::ranges::sort(names);
    std::string text, line;
    for (size_t i = 0; i < std::min(names.size(), mostChoices); ++i) {
        if (!line.empty() && line.size() + names[i].size() > mostColumns) text += std::exchange(line, {}) + "\n";
        line += "  " + names[i];
    }
    if (!line.empty()) text += line + "\n";
    if (names.size() > mostChoices) text += "  ... and " + std::to_string(names.size() - mostChoices) + " more\n";
    return text;
}

const char* helpOf(Kind kind) {
    switch (kind) {
        case Kind::directory: return "Give a directory; an empty line takes the one above, ! cancels.\n";
        case Kind::list:
            return "Give a name or pattern to add, -number to take one out, an empty line when the list is complete, "
                   "! to cancel.\n";
        default: return "Give a name, a number above or a directory; ! cancels.\n";
    }
}

}  // namespace

std::string textOf(const FileQuestion& question) {
    std::string text = "--- " + (question.title.empty() ? std::string("File") : question.title) + " ---\n";
    text += "Directory: " + question.directory + "\n";
    if (question.kind != Kind::directory) text += "Filter: " + question.filter + "\n";
    text += folderListing(question);
    if (!question.remembered.empty()) text += "Remembered:\n";
    appendNumbered(text, question.remembered);
    if (question.kind == Kind::list) {
        text += (question.listTitle.empty() ? std::string("List") : question.listTitle) + ":" +
                (question.members.empty() ? " (empty)\n" : "\n");
        appendNumbered(text, question.members);
    }
    text += helpOf(question.kind);
    if (!question.complaint.empty()) text += question.complaint + "\n";
    return text;
}

std::string promptOf(const FileQuestion& question) {
    return question.suggested.empty() ? "> " : "[" + question.suggested + "] > ";
}

Completion completeFileName(const FileQuestion& question, std::string_view typed) {
    const size_t separator = typed.find_last_of("/\\:");
    const std::string head(typed.substr(0, separator == std::string_view::npos ? 0 : separator + 1));
    const std::string_view begin = typed.substr(head.size());
    const std::string folder = isAbsolute(typed) ? head : question.directory + head;
    Entries entries = entriesOf(systemPath(folder), begin, question.filter);
    const char divider = head.find('\\') != std::string::npos ? '\\' : '/';
    for (std::string& name : entries.folders) name += divider;

    std::vector<std::string> names = std::move(entries.folders);
    if (question.kind != Kind::directory) {
        const auto& files = entries.filtered.empty() ? entries.files : entries.filtered;
        names.insert(names.end(), files.begin(), files.end());
    }
    if (names.empty()) return {std::string(typed), {}};
    std::ranges::sort(names);
    Completion completion{head + commonBeginning(names), std::move(names)};
    if (completion.choices.size() > mostChoices) {
        const size_t more = completion.choices.size() - mostChoices;
        completion.choices.resize(mostChoices);
        completion.choices.push_back("... and " + std::to_string(more) + " more");
    }
    return completion;
}

}  // namespace host
