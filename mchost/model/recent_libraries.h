// Cell libraries that were read lately.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "mchost/model/cell_library.h"

namespace host {

// Which file it is, in which state: equal as long as the file is unchanged.
struct FileStamp {
    dev_t device;
    ino_t file;
    off_t size;
    int64_t changed;  // nanoseconds since 1970
    bool operator==(const FileStamp&) const = default;
};

// Keeps the last few in memory, so that an application that takes cells from several of them in turn needn't wait for
// their files each time.
class RecentLibraries {
  public:
    // A library as its file is now: FileProblem when it can't be used.
    std::shared_ptr<const CellLibrary> load(const std::string& path);

  private:
    static constexpr size_t most = 4;
    struct Kept {
        FileStamp stamp;
        std::shared_ptr<const CellLibrary> library;
    };
    std::vector<Kept> kept_;  // the last one in front
};

}  // namespace host
