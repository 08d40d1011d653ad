// The drawings that an application is called for: files, patterns such as "sheet-*.mcd", folders, and lists of all
// these.
#pragma once

#include <glob.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include <mclib/mclib.h>
#include <mclib/text/file.h>
#include <mclib/app/names.hpp>
#include <mclib/app/system_path.hpp>
#include <mclib/app/tell.hpp>

namespace mcapp {

// Their names in the order that they are told in, each file and each folder once. Those of a folder are its design
// files
// (.mcd) and, behind them, those of its folders, in order of their names and without hidden ones.
class Drawings {
  public:
    // A name of the host; one that no pattern or folder gives is taken as it stands. False after a message, when there
    // is nothing behind the pattern or in the folder, or not all of it can be read.
    bool add(const std::string& name);
    // Lines of a text file (mclib/text/file.h), each a name as above, as it stands or else beside the list. False after
    // a message.
    bool addList(const std::string& fileName);

    const std::vector<std::string>& names() const { return names_; }

  private:
    void put(const std::string& name);
    bool addPattern(const std::string& name);
    bool walk(const std::string& folder);

    std::vector<std::string> names_;
    std::set<std::string> known_;  // paths of the system
};

namespace detail {

inline constexpr const char* drawingSuffix = ".mcd";

inline std::string canonical(const std::string& name) {
    std::error_code error;
    const std::filesystem::path path = systemPath(name);
    const std::filesystem::path whole = std::filesystem::weakly_canonical(path, error);
    return error ? path.string() : whole.string();
}

inline bool isFolder(const std::string& name) {
    std::error_code error;
    return std::filesystem::is_directory(systemPath(name), error);
}

inline bool exists(const std::string& name) {
    std::error_code error;
    return std::filesystem::exists(systemPath(name), error);
}

}  // namespace detail

inline void Drawings::put(const std::string& name) {
    if (known_.insert(detail::canonical(name)).second) names_.push_back(name);
}

inline bool Drawings::add(const std::string& name) {
    const size_t before = names_.size(), known = known_.size();
    if (detail::isFolder(name)) {
        if (!walk(name)) return false;
        const bool isNew = known_.size() > known;
        return !isNew || names_.size() > before || fail(name + ": there is no drawing (.mcd) in this folder");
    }
    if (detail::exists(name) || name.find_first_of("*?[") == name.npos) {
        put(name);
        return true;
    }
    return addPattern(name);
}

inline bool Drawings::addPattern(const std::string& name) {
    glob_t found = {};
    const int status = glob(systemPath(name).c_str(), 0, nullptr, &found);
    const std::unique_ptr<glob_t, decltype(&globfree)> owner(&found, globfree);
    if (status == GLOB_NOMATCH) return fail(name + ": no file has such a name");
    if (status != 0) return fail(name + ": the files of such names can't be listed");
    bool whole = true;
    for (size_t i = 0; i < found.gl_pathc; ++i) {
        const std::string path = found.gl_pathv[i];
        if (!detail::isFolder(path)) {
            put(path);
        } else if (!walk(path)) {
            whole = false;
        }
    }
    return whole;
}

inline bool Drawings::walk(const std::string& folder) {
    if (!known_.insert(detail::canonical(folder)).second) return true;
    std::error_code error;
    std::vector<std::string> files, folders;
    for (std::filesystem::directory_iterator entry(systemPath(folder), error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string last = entry->path().filename().string();
        std::error_code unknown;  // a link to nothing is no folder
        if (last.starts_with('.')) continue;
        if (entry->is_directory(unknown)) {
            folders.push_back(folder + "/" + last);
        } else if (sameName(entry->path().extension().string(), detail::drawingSuffix)) {
            files.push_back(folder + "/" + last);
        }
    }
    if (error) return fail(folder + ": the folder can't be read: " + std::strerror(error.value()));
    std::ranges::sort(files);
    std::ranges::sort(folders);
    for (const std::string& file : files) put(file);
    bool whole = true;
    for (const std::string& below : folders) whole = walk(below) && whole;
    return whole;
}

inline bool Drawings::addList(const std::string& fileName) {
    constexpr int longestLine = 4096;
    McFile* const list = mclibFile_openExtended(fileName.c_str(), "r", "\\", "#", longestLine);
    if (!list) return fail(fileName + ": the list of drawings can't be read");
    std::string line(longestLine, '\0');
    bool whole = true;
    for (int taken; (taken = mclibFile_read(line.data(), list, longestLine)) != 0 || line[0] != '\0';) {
        const std::string name = line.c_str() + std::strspn(line.c_str(), " \t");
        const std::string beside = (std::filesystem::path(fileName).parent_path() / name).string();
        if (taken < 0) whole = false;
        if (taken < 0 && mdlTextFile_error(list->stream) != 0) break;
        if (taken >= 0 && !name.empty())
            whole = add(!detail::exists(name) && detail::exists(beside) ? beside : name) && whole;
        if (taken == 0) break;
        line[0] = '\0';
    }
    return mclibFile_close(list) == MCLIB_SUCCESS && whole;
}

}  // namespace mcapp
