// Drawings by files, patterns, folders and lists.
#include "mchost/mdl/drawing_names.h"

#include <glob.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/base/words.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/system.h"

namespace fs = std::filesystem;

namespace host {

namespace {

constexpr std::string_view drawingSuffix = ".mcd";

// Tells what is wrong with a name. Always false.
bool refuse(const std::string& name, const std::string& why) {
    mdlOutput_messageCenter(MDL_PRIORITY_ERROR, (hostName(name) + ": " + why).c_str(), "", 0);
    return false;
}

std::string canonical(const std::string& path) {
    std::error_code error;
    const fs::path whole = fs::weakly_canonical(path, error);
    return error ? path : whole.string();
}

// Names of the files and of the folders of a folder that count, each in their order.
struct Entries {
    std::vector<std::string> files, folders;
    std::error_code error;
};
Entries entriesOf(const std::string& folder) {
    Entries entries;
    for (fs::directory_iterator entry(folder, entries.error), end; !entries.error && entry != end;
         entry.increment(entries.error)) {
        const std::string name = entry->path().filename();
        std::error_code unknown;  // a link to nothing is no folder
        if (name.starts_with('.')) continue;
        if (entry->is_directory(unknown))
            entries.folders.push_back(name);
        else if (sameName(entry->path().extension().string(), drawingSuffix))
            entries.files.push_back(name);
    }
    std::ranges::sort(entries.files);
    std::ranges::sort(entries.folders);
    return entries;
}

}  // namespace
}  // namespace host

using namespace host;

struct MdlDrawingNames {
    bool add(const std::string& name);
    bool addList(const std::string& name);

    std::vector<std::string> names;  // of the host

  private:
    // Names of the system from here on.
    void put(const std::string& path);
    bool addFolder(const std::string& path);
    bool addPattern(const std::string& path);
    bool walk(const std::string& folder);

    std::set<std::string> known_;  // canonical
};

void MdlDrawingNames::put(const std::string& path) {
    if (known_.insert(canonical(path)).second) names.push_back(hostName(path));
}

bool MdlDrawingNames::add(const std::string& name) {
    const std::string path = systemPath(name);
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::is_directory(status)) return addFolder(path);
    if (!fs::exists(status) && path.find_first_of("*?[") != path.npos) return addPattern(path);
    put(path);
    return true;
}

bool MdlDrawingNames::addFolder(const std::string& path) {
    if (known_.contains(canonical(path))) return true;
    const size_t before = known_.size();
    const bool whole = walk(path);
    const size_t folders = 1;
    return whole && (known_.size() > before + folders || refuse(path, "there is no drawing (.mcd) in this folder."));
}

bool MdlDrawingNames::addPattern(const std::string& path) {
    glob_t found = {};
    const int status = glob(path.c_str(), 0, nullptr, &found);
    const std::unique_ptr<glob_t, decltype(&globfree)> owner(&found, globfree);
    if (status == GLOB_NOSPACE) throw std::bad_alloc();
    if (status == GLOB_NOMATCH) return refuse(path, "no file has such a name.");
    if (status != 0) return refuse(path, "the folder of these names can't be read.");
    bool whole = true;
    for (size_t i = 0; i < found.gl_pathc; ++i) {
        const std::string one = found.gl_pathv[i];
        std::error_code error;
        if (fs::is_directory(one, error))
            whole = walk(one) && whole;
        else
            put(one);
    }
    return whole;
}

bool MdlDrawingNames::walk(const std::string& folder) {
    if (!known_.insert(canonical(folder)).second) return true;
    const Entries entries = entriesOf(folder);
    const std::string front = folder.ends_with('/') ? folder : folder + "/";
    for (const std::string& file : entries.files) put(front + file);
    bool whole = !entries.error || refuse(folder, "the folder can't be read: " + entries.error.message() + ".");
    for (const std::string& below : entries.folders) whole = walk(front + below) && whole;
    return whole;
}

bool MdlDrawingNames::addList(const std::string& name) {
    const std::unique_ptr<MdlTextFile, int (*)(MdlTextFile*)> list(mdlTextFile_open(name.c_str(), MDL_TEXT_READ),
                                                                   mdlTextFile_close);
    if (!list) return refuse(systemPath(name), "the list of drawings can't be read.");
    bool whole = true;
    std::array<char, 4096> buffer;
    std::string line;
    while (mdlTextFile_getString(buffer.data(), static_cast<int>(buffer.size()), list.get(), 1)) {
        line += buffer.data();
        if (!line.ends_with('\n')) continue;
        line.pop_back();
        const std::string one(trimmed(line));
        line.clear();
        if (one.empty() || one.starts_with('#')) continue;
        const std::string beside = fs::path(systemPath(name)).parent_path() / systemPath(one);
        std::error_code error;
        whole = add(!fs::exists(systemPath(one), error) && fs::exists(beside, error) ? beside : one) && whole;
    }
    if (mdlTextFile_error(list.get()) != 0) return refuse(systemPath(name), "the list of drawings can't be read.");
    return whole;
}

MdlDrawingNames* mdlDrawingNames_create(void) noexcept {
    return guarded<MdlDrawingNames*>(nullptr, [] { return new MdlDrawingNames; });
}

void mdlDrawingNames_free(MdlDrawingNames* names) noexcept {
    delete names;
}

int mdlDrawingNames_add(MdlDrawingNames* names, const char* name) noexcept {
    return guarded<int>(MDL_ERROR, [&] { return names && name && names->add(name) ? MDL_SUCCESS : MDL_ERROR; });
}

int mdlDrawingNames_addList(MdlDrawingNames* names, const char* fileName) noexcept {
    return guarded<int>(MDL_ERROR,
                        [&] { return names && fileName && names->addList(fileName) ? MDL_SUCCESS : MDL_ERROR; });
}

int32_t mdlDrawingNames_count(const MdlDrawingNames* names) noexcept {
    return names ? static_cast<int32_t>(names->names.size()) : 0;
}

const char* mdlDrawingNames_get(const MdlDrawingNames* names, int32_t index) noexcept {
    if (index < 0 || index >= mdlDrawingNames_count(names)) return nullptr;
    return names->names[static_cast<size_t>(index)].c_str();
}
