// The host's user preference file.
#include <filesystem>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/base/variables.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/resource.h"
#include "mchost/resource/store.h"
#include "mchost/session/state.h"

namespace host {

namespace {

namespace fs = std::filesystem;

fs::path preferenceFile() {
    const std::string named = variables().expandedValue("MS_USERPREF").value_or("");
    return named.empty() ? userDataFolder() / "user.rsc" : fs::path(systemPath(named));
}

void makeFile(const fs::path& path) {
    std::error_code ignored;  // what fails here fails again when the file is made
    fs::create_directories(path.parent_path(), ignored);
    makeResourceFile(path, "Preferences");
}

}  // namespace

}  // namespace host

int mdlDialog_userPrefFileOpen(RscHandle* handleP, int mode) noexcept {
    if (handleP) *handleP = 0;
    return host::guarded<int>(MDL_ERROR, [&] {
        const host::fs::path path = host::preferenceFile();
        std::error_code error;
        if (!host::fs::exists(path, error)) host::makeFile(path);
        return mdlResource_openFile(handleP, host::hostName(path.string()).c_str(), mode);
    });
}
