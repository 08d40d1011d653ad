// Dialogs for files. The front end only shows a question and hands on what was typed; what an answer means, and whether
// it will do, is decided here.
#include <algorithm>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "mchost/base/charset.h"
#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/base/variables.h"
#include "mchost/base/words.h"
#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/session/loop.h"
#include "mchost/session/session.h"
#include "mchost/session/state.h"

namespace host {

namespace {

namespace fs = std::filesystem;

using Kind = FileQuestion::Kind;

std::string textOf(const char* text) {
    return text ? text : "";
}

// ---- names; host names here are narrow text ----

bool endsInSeparator(std::string_view name) {
    return name.ends_with('/') || name.ends_with('\\');
}

std::string withSeparator(std::string directory) {
    if (directory.empty() || endsInSeparator(directory)) return directory;
    return directory + (directory.find('/') == std::string::npos ? '\\' : '/');
}

bool isAbsolute(std::string_view name) {
    const NameParts parts = partsOf(name);
    return !parts.device.empty() || parts.directory.starts_with('/') || parts.directory.starts_with('\\');
}

bool hasWildcard(std::string_view name) {
    return name.find_first_of("*?") != std::string_view::npos;
}

bool isFolder(const std::string& name) {
    std::error_code ignored;
    return fs::is_directory(systemPath(name), ignored);
}

bool exists(const std::string& name) {
    std::error_code ignored;
    return fs::exists(systemPath(name), ignored);
}

// The extension that the filter's first pattern asks for; empty when that doesn't tell one.
std::string extensionOf(std::string_view filter) {
    const std::string_view pattern = filter.substr(0, filter.find(';'));
    if (!pattern.starts_with("*.")) return {};
    const std::string_view extension = pattern.substr(2);
    return hasWildcard(extension) ? std::string() : std::string(extension);
}

// The folder that a directory argument means: the first one of a configuration variable, or the directory itself, and
// that of a file which is named there; the working folder when that isn't there. With its last separator.
std::string startFolder(const std::string& directory) {
    const std::string value = variables().expandedValue(directory).value_or(directory);
    std::string first = value.substr(0, value.find(';'));
    if (!first.empty() && exists(first) && !isFolder(first))
        first = std::string(partsOf(first).device).append(partsOf(first).directory);
    if (!first.empty() && isFolder(first))
        return withSeparator(isAbsolute(first) ? first : hostName(fs::absolute(systemPath(first)).string()));
    std::error_code ignored;
    return withSeparator(hostName(fs::current_path(ignored).string()));
}

// ---- one round of question and answer ----

// What is asked for, in narrow text.
struct Request {
    Kind kind;
    std::string title, listTitle = {};
    std::string directory, filter, suggested;
    std::vector<std::string> remembered = {};
    std::vector<std::string> members = {};
};

std::vector<std::string> allUtf8(const std::vector<std::string>& texts) {
    std::vector<std::string> all;
    for (const std::string& text : texts) all.push_back(utf8FromNarrow(text));
    return all;
}

bool agrees(const std::string& question) {
    return answerTo<Agreement>(Confirmation{question}).value_or(Agreement{false}).yes;
}

class FileDialog {
  public:
    explicit FileDialog(Request request) : request_(std::move(request)) {}

    // The full name of a file or directory, or nothing.
    std::optional<std::string> one() {
        while (const std::optional<std::string> answer = ask()) {
            const std::string given = answer->empty() ? request_.suggested : *answer;
            if (given.empty() && request_.kind == Kind::directory) return withoutSeparator(request_.directory);
            if (given.empty()) {
                complaint_ = "Give the name of a file.";
                continue;
            }
            if (auto name = taken(given)) return name;
        }
        return std::nullopt;
    }

    // The members of the edited list, or nothing.
    std::optional<std::vector<std::string>> list(bool several) {
        while (const std::optional<std::string> answer = ask()) {
            if (answer->empty()) return request_.members;
            if (answer->starts_with('-') && removed(answer->substr(1))) continue;
            std::vector<std::string> added = found(*answer);
            if (added.empty()) continue;
            if (!several) request_.members.clear();
            if (!several) added.resize(1);
            std::set<std::string> known(request_.members.begin(), request_.members.end());
            for (std::string& name : added)
                if (known.insert(name).second) request_.members.push_back(std::move(name));
        }
        return std::nullopt;
    }

    const Request& request() const { return request_; }

  private:
    // An answer in narrow text.
    std::optional<std::string> ask() {
        const Request& r = request_;
        const FileQuestion question{r.kind,
                                    utf8FromNarrow(r.title),
                                    utf8FromNarrow(r.listTitle),
                                    utf8FromNarrow(r.directory),
                                    utf8FromNarrow(r.filter),
                                    utf8FromNarrow(r.suggested),
                                    allUtf8(r.remembered),
                                    allUtf8(r.members),
                                    utf8FromNarrow(std::exchange(complaint_, {}))};
        const std::optional<std::string> answer = answerTo<FileAnswer>(question).value_or(FileAnswer{}).text;
        return answer ? std::optional(hostName(*answer)) : std::nullopt;
    }

    static std::string withoutSeparator(std::string directory) {
        while (directory.size() > 1 && endsInSeparator(directory) && !directory.ends_with(":\\") &&
               !directory.ends_with(":/"))
            directory.pop_back();
        return directory;
    }

    std::optional<size_t> numberUpTo(std::string_view text, size_t most) const {
        size_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || end != text.data() + text.size() || number < 1 || number > most)
            return std::nullopt;
        return number - 1;
    }

    // The whole name that an answer stands for.
    std::string wholeName(const std::string& answer) const {
        if (const auto number = numberUpTo(answer, request_.remembered.size())) return request_.remembered[*number];
        if (answer.starts_with("~/"))
            if (const char* home = std::getenv("HOME")) return hostName(home) + answer.substr(1);
        return isAbsolute(answer) ? answer : request_.directory + answer;
    }

    // The file that an answer chooses; nothing when it led elsewhere, or won't do, which `complaint_` tells.
    std::optional<std::string> taken(const std::string& answer) {
        std::string name = wholeName(answer);
        if (name.size() > longestHostName)
            return complain("\"" + name + "\" is too long for a name. Give a shorter one.");
        if (request_.kind == Kind::directory) return takenFolder(name);
        if (isFolder(name)) return goTo(name);
        if (hasWildcard(partsOf(name).name) || hasWildcard(partsOf(name).extension)) return filterBy(answer, name);
        return request_.kind == Kind::open ? takenToRead(name) : takenToMake(std::move(name));
    }

    std::optional<std::string> takenFolder(const std::string& name) {
        if (isFolder(name)) return withoutSeparator(name);
        return complain("The directory \"" + name + "\" isn't there. Give another one.");
    }

    std::optional<std::string> takenToRead(const std::string& name) {
        char full[longestHostName + 1];
        if (mdlFile_find(full, name.c_str(), nullptr, extensionOf(request_.filter).c_str()) == MDL_SUCCESS) return full;
        return complain("The file \"" + name + "\" isn't there. Give the name of another one.");
    }

    std::optional<std::string> takenToMake(std::string name) {
        const std::string extension = extensionOf(request_.filter);
        if (partsOf(name).extension.empty() && !extension.empty() && !name.ends_with('.')) name += "." + extension;
        if (name.size() > longestHostName)
            return complain("\"" + name + "\" is too long for a name. Give a shorter one.");
        const NameParts parts = partsOf(name);
        const std::string folder = std::string(parts.device) + std::string(parts.directory);
        if (!isFolder(folder))
            return complain("The directory \"" + folder + "\" isn't there. Make it, or give another name.");
        if (exists(name) && !agrees(utf8FromNarrow("The file \"" + name + "\" is there already. Replace it?")))
            return std::nullopt;
        return name;
    }

    std::optional<std::string> goTo(const std::string& folder) {
        request_.directory = withSeparator(folder);
        request_.suggested.clear();
        return std::nullopt;
    }

    std::optional<std::string> filterBy(const std::string& answer, const std::string& name) {
        const NameParts parts = partsOf(answer);
        const std::string directory = std::string(partsOf(name).device) + std::string(partsOf(name).directory);
        if (!isFolder(directory)) return complain("The directory \"" + directory + "\" isn't there.");
        request_.directory = directory;
        request_.filter = std::string(parts.name) + (parts.extension.empty() ? "" : ".") + std::string(parts.extension);
        return std::nullopt;
    }

    std::nullopt_t complain(std::string what) {
        complaint_ = std::move(what);
        return std::nullopt;
    }

    // ---- lists ----

    bool removed(std::string_view text) {
        const auto number = numberUpTo(text, request_.members.size());
        if (number) request_.members.erase(request_.members.begin() + static_cast<ptrdiff_t>(*number));
        return number.has_value();
    }

    // The files that an answer adds: those of a pattern, or one.
    std::vector<std::string> found(const std::string& answer) {
        const std::string name = wholeName(answer);
        if (isFolder(name)) {
            goTo(name);
            return {};
        }
        if (!hasWildcard(name)) {
            const auto file = takenToRead(name);
            return file ? std::vector{*file} : std::vector<std::string>();
        }
        StringList* matches = nullptr;
        mdlFileList_get(&matches, name.c_str(), 0);
        const mdl::StringListPtr owner(matches);
        const std::string directory = std::string(partsOf(name).device) + std::string(partsOf(name).directory);
        std::vector<std::string> files;
        for (int32_t i = 0; i < mdlStringList_size(matches); ++i) {
            const char* text = "";
            mdlStringList_getMember(&text, nullptr, matches, i);
            if (directory.size() + std::strlen(text) <= longestHostName) files.push_back(directory + text);
        }
        if (files.empty()) complain("There is no file \"" + name + "\".");
        return files;
    }

    Request request_;
    std::string complaint_;
};

// ---- remembered files ----

bool isOurs(const UserFileRecord& record) {
    return record.marker == MDL_USER_FILE_MARKER && record.version == MDL_USER_FILE_VERSION;
}

template <size_t size>
void bringToFront(char (&list)[10][256], int32_t& count, const char (&value)[size]) {
    std::vector<std::string> texts(list, list + count);
    std::erase(texts, value);
    texts.insert(texts.begin(), value);
    count = static_cast<int32_t>(std::min<size_t>(texts.size(), MDL_HISTORY_MOST));
    for (int32_t i = 0; i < count; ++i) copyCut(list[i], texts[static_cast<size_t>(i)]);
}

// What the next dialog of this record starts from.
void remember(UserFileRecord& record, const std::string& name, const std::string& filter) {
    const NameParts parts = partsOf(name);
    copyCut(record.fileName, name);
    copyCut(record.filter, filter);
    copyCut(record.directory, std::string(parts.device) + std::string(parts.directory));
    if (!isOurs(record)) {
        record.fileCount = record.filterCount = record.directoryCount = 0;
        record.marker = MDL_USER_FILE_MARKER;
        record.version = MDL_USER_FILE_VERSION;
    }
    bringToFront(record.fileHistory, record.fileCount, record.fileName);
    bringToFront(record.filterHistory, record.filterCount, record.filter);
    bringToFront(record.directoryHistory, record.directoryCount, record.directory);
}

// The record that a dialog starts from; one of the session stands in for a stored one that isn't there.
UserFileRecord recordOf(RscHandle handle, int32_t id) {
    UserFileRecord record = {};
    if (handle == 0 || mdlUserPrefs_getFileName(&record, handle, id) != MDL_SUCCESS)
        mdlUserPrefs_getFileName(&record, 0, id);
    return record;
}

void apply(const UserFileRecord& record, Request& request) {
    if (record.directory[0] != '\0' && isFolder(record.directory)) request.directory = withSeparator(record.directory);
    if (record.filter[0] != '\0') request.filter = record.filter;
    if (isOurs(record))
        for (int32_t i = 0; i < record.fileCount; ++i)
            if (record.fileHistory[i][0] != '\0') request.remembered.emplace_back(record.fileHistory[i]);
}

// ---- calls ----

Request requestOf(Kind kind, const char* suggested, const char* filter, const char* directory, const char* title) {
    Request request{.kind = kind,
                    .title = textOf(title),
                    .directory = startFolder(textOf(directory)),
                    .filter = textOf(filter),
                    .suggested = textOf(suggested)};
    if (request.filter.empty()) request.filter = "*.*";
    return request;
}

int answer(char* result, FileDialog& dialog) {
    const std::optional<std::string> name = dialog.one();
    if (!name) return MDL_DIALOG_CANCELLED;
    std::memcpy(result, name->c_str(), name->size() + 1);
    return MDL_SUCCESS;
}

int askForFile(Kind kind, char* result, const char* suggested, const char* filter, const char* directory,
               const char* title) {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!Session::current() || !result) return MDL_ERROR;
        FileDialog dialog(requestOf(kind, suggested, filter, directory, title));
        return answer(result, dialog);
    });
}

int askForRememberedFile(Kind kind, char* result, const char* suggested, const char* filter, const char* directory,
                         const char* title, int32_t id, RscHandle handle) {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!Session::current() || !result) return MDL_ERROR;
        UserFileRecord record = recordOf(handle, id);
        Request request = requestOf(kind, suggested, filter, directory, title);
        apply(record, request);
        FileDialog dialog(std::move(request));
        const int status = answer(result, dialog);
        if (status != MDL_SUCCESS) return status;
        remember(record, result, dialog.request().filter);
        mdlUserPrefs_saveFileName(&record, 0, id);
        if (handle != 0) mdlUserPrefs_saveFileName(&record, handle, id);
        return MDL_SUCCESS;
    });
}

std::vector<std::string> membersOf(const StringList* list) {
    std::vector<std::string> members;
    for (int32_t i = 0; i < mdlStringList_size(list); ++i) {
        const char* text = "";
        mdlStringList_getMember(&text, nullptr, list, i);
        members.emplace_back(text);
    }
    return members;
}

mdl::StringListPtr listOf(const std::vector<std::string>& members) {
    mdl::StringListPtr list(mdlStringList_create(static_cast<int32_t>(members.size()), 1));
    for (size_t i = 0; list && i < members.size(); ++i)
        if (mdlStringList_setMember(list.get(), static_cast<int32_t>(i), members[i].c_str(), nullptr) != MDL_SUCCESS)
            list.reset();
    return list;
}

StringList* editList(FileDialogResult& result, Request request, bool several) {
    const bool wantsFolder = request.kind == Kind::directory;
    FileDialog dialog(std::move(request));
    std::optional<std::vector<std::string>> members;
    if (wantsFolder) {
        if (auto folder = dialog.one()) members = {std::move(*folder)};
    } else {
        members = dialog.list(several);
    }
    mdl::StringListPtr list = members ? listOf(*members) : nullptr;
    if (!list) return nullptr;
    result.reply = MDL_FILES_OK;
    copyCut(result.directory, dialog.request().directory);
    copyCut(result.filter, dialog.request().filter);
    return list.release();
}

}  // namespace

}  // namespace host

using namespace host;

int mdlDialog_fileOpen(char* result, RscHandle, int32_t, const char* suggestedName, const char* filter,
                       const char* directory, const char* title) noexcept {
    return askForFile(Kind::open, result, suggestedName, filter, directory, title);
}

int mdlDialog_fileCreate(char* result, RscHandle, int32_t, const char* suggestedName, const char* filter,
                         const char* directory, const char* title) noexcept {
    return askForFile(Kind::create, result, suggestedName, filter, directory, title);
}

int mdlDialog_defFileOpen(char* result, RscHandle, int32_t, const char* suggestedName, const char* filter,
                          const char* directory, const char* title, int32_t id, RscHandle handle) noexcept {
    return askForRememberedFile(Kind::open, result, suggestedName, filter, directory, title, id, handle);
}

int mdlDialog_defFileCreate(char* result, RscHandle, int32_t, const char* suggestedName, const char* filter,
                            const char* directory, const char* title, int32_t id, RscHandle handle) noexcept {
    return askForRememberedFile(Kind::create, result, suggestedName, filter, directory, title, id, handle);
}

StringList* mdlFileList_edit(FileDialogResult* result, const StringList* list, int32_t options, const char* title,
                             const char* listTitle, const char* filter, const char* directory) noexcept {
    FileDialogResult own = {};
    FileDialogResult& reply = result ? *result : own;
    reply.reply = MDL_FILES_CANCEL;
    return guarded<StringList*>(nullptr, [&]() -> StringList* {
        if (!Session::current()) return nullptr;
        const Kind kind = options & MDL_FILE_LIST_DIRECTORY ? Kind::directory : Kind::list;
        Request request = requestOf(kind, nullptr, reply.filter[0] != '\0' ? reply.filter : filter, directory, title);
        request.listTitle = textOf(listTitle);
        request.members = membersOf(list);
        return editList(reply, std::move(request), (options & MDL_FILE_LIST_SEVERAL) != 0);
    });
}
