// The resource files that are open, for the other rooms of the host. A handle 0 stands for all of them: those of the
// current application first, the last opened first.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "mchost/mdl/types.h"
#include "mchost/resource/container.h"
#include "mchost/resource/store.h"

namespace host {

// The language of MS_LANGUAGE in small letters; the fallback when it isn't defined.
std::string currentLanguage();

// What such a file holds under the id, kept alive with its file; null when there is none.
std::shared_ptr<const DialogLayout> findDialogLayout(RscHandle file, int32_t dialogId);
std::shared_ptr<const Icon> findIcon(RscHandle file, int32_t iconId);
std::shared_ptr<const MenuLayout> findMenuLayout(RscHandle file, int32_t menuId);

// What mcrsc made in an open file, kept alive with it; null for a handle that isn't open.
std::shared_ptr<const ResourceContents> contentsOf(RscHandle file);

// What applications keep in an open file; lives until the file is closed.
struct OpenStore {
    RscHandle file;
    int mode;  // MDL_RSC_...
    ResourceStore* store;
};
// The store of that handle, or all in order of search.
std::vector<OpenStore> openStores(RscHandle file);
// Tells why a file can't be read: an application once, however often it tries, until that file has been opened.
void tellUnreadable(const ResourceError& error);
// Runs a body that writes to the store of a handle. A status of mchost/mdl/resource.h; the reason of a failure goes to
// the message centre.
int writeTo(RscHandle file, const std::function<void(ResourceStore&)>& body) noexcept;

}  // namespace host
