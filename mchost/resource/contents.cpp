// What a resource file holds, listed; and the kind of any file.
#include <algorithm>
#include <cstring>
#include <set>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/resource.h"
#include "mchost/model/container.h"
#include "mchost/resource/open_files.h"

namespace host {

namespace {

// Shows entries until a visit ends the listing.
class Listing {
  public:
    Listing(MdlResourceVisit visit, void* userArg) : visit_(visit), userArg_(userArg) {}
    void show(int32_t kind, int32_t type, int32_t id, size_t size, int32_t attributes, const std::string& name) {
        const MdlResourceEntry entry = {kind, type, id, static_cast<int32_t>(size), attributes, name.c_str()};
        if (result_ == 0) result_ = visit_(userArg_, &entry);
    }
    int result() const { return result_; }

  private:
    MdlResourceVisit visit_;
    void* userArg_;
    int result_ = 0;
};

std::string joined(const std::set<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

void listStore(ResourceStore& store, Listing& listing) {
    for (const BlockHead& block : store.blocks())
        listing.show(MDL_RSC_BLOCK, block.type, block.id, static_cast<size_t>(block.size), block.attributes,
                     block.name);
    for (const ListHead& list : store.lists())
        listing.show(MDL_RSC_STRING_LIST, 0, list.id, static_cast<size_t>(list.members), 0, list.name);
}

void listMessages(const ResourceContents& contents, Listing& listing) {
    for (auto first = contents.strings.begin(); first != contents.strings.end();) {
        const int32_t list = first->first.first;
        std::set<std::string> languages;
        size_t count = 0;
        for (; first != contents.strings.end() && first->first.first == list; ++first, ++count)
            for (const auto& [language, text] : first->second.all()) languages.insert(language);
        listing.show(MDL_RSC_MESSAGES, 0, list, count, 0, joined(languages));
    }
}

void listContents(const ResourceContents& contents, Listing& listing) {
    listMessages(contents, listing);
    const std::string language = currentLanguage();
    for (const auto& [id, dialog] : contents.dialogs)
        listing.show(MDL_RSC_DIALOG, 0, id, dialog.items.size(), 0, dialog.title.textIn(language));
    for (const auto& [id, icon] : contents.icons)
        listing.show(MDL_RSC_ICON, 0, id, static_cast<size_t>(icon.size), 0, icon.sign);
    for (const auto& [id, menu] : contents.menus)
        listing.show(MDL_RSC_MENU, 0, id, menu.entries.size(), 0, menu.title.textIn(language));
}

// The store of that open file; null with a line.
ResourceStore* openStore(RscHandle file) {
    const std::vector<OpenStore> stores = file == 0 ? std::vector<OpenStore>() : openStores(file);
    if (!stores.empty()) return stores.front().store;
    reportError("A resource file that isn't open can't be listed: open it first.");
    return nullptr;
}

int32_t kindOf(const std::string& path) {
    const auto id = applicationIdOf(path);
    if (id == applicationIds[static_cast<size_t>(FileKind::designFile)]) return MDL_FILE_DESIGN;
    if (id == applicationIds[static_cast<size_t>(FileKind::cellLibrary)]) return MDL_FILE_CELL_LIBRARY;
    return id == uint32_t{containerKind} ? MDL_FILE_RESOURCE : MDL_FILE_OTHER;
}

}  // namespace

}  // namespace host

using namespace host;

int mdlResource_list(RscHandle rscFile, MdlResourceVisit visit, void* userArg) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        ResourceStore* const store = openStore(rscFile);
        if (!store || !visit) return MDL_ERROR;
        const auto contents = contentsOf(rscFile);  // lives on when the visit closes the file
        Listing listing(visit, userArg);
        listStore(*store, listing);
        listContents(*contents, listing);
        return listing.result();
    });
}

int mdlResource_getTitle(char* title, int32_t size, RscHandle rscFile) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        ResourceStore* const store = openStore(rscFile);
        if (!store || !title || size < 1) return MDL_ERROR;
        const std::string text = store->title();
        const size_t copied = std::min(text.size(), static_cast<size_t>(size) - 1);
        std::memcpy(title, text.data(), copied);
        title[copied] = '\0';
        return copied == text.size() ? MDL_SUCCESS : MDL_ERROR;
    });
}

int mdlFile_getKind(int32_t* kindP, const char* name) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const std::string given = name ? name : "";
        try {
            const int32_t kind = kindOf(systemPath(given));
            if (kindP) *kindP = kind;
            return MDL_SUCCESS;
        } catch (const FileProblem& problem) {
            return fileProblem("Can't read the file \"" + given + "\": " + problem.what());
        }
    });
}
