// Plain file streams on host names.
#include "mchost/files/streams.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/mdl/files.h"

namespace host {

namespace {

bool isFolder(FILE* stream) {
    struct stat status {};
    return fstat(fileno(stream), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

FILE* openStream(const char* name, const char* mode) {
    if (!name || !mode) return nullptr;
    FILE* stream = std::fopen(systemPath(name).c_str(), mode);
    if (!stream || !isFolder(stream)) return stream;
    std::fclose(stream);
    errno = EISDIR;
    return nullptr;
}

int closeStream(FILE* stream) {
    const bool failedBefore = std::ferror(stream) != 0;
    errno = 0;
    if (std::fclose(stream) != 0) return errno == 0 ? EIO : errno;
    return failedBefore ? EIO : 0;
}

}  // namespace host

FILE* dlmSystem_mdlFopen(const char* name, const char* mode) noexcept {
    return host::guarded<FILE*>(nullptr, [&] { return host::openStream(name, mode); });
}

int dlmSystem_mdlFclose(FILE* stream) noexcept {
    return !stream || host::closeStream(stream) != 0 ? EOF : 0;
}
