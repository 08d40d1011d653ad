// Files that are made whole under a name of their own, and then get the one that they are known by.
#pragma once

#include <optional>
#include <string>

#include "mchost/base/unfinished.h"

namespace host {

// An empty file "PATH.PROCESS.new" to fill, which nobody else takes or can lead elsewhere by a link. It goes again
// unless it gets its name, also at a signal that ends the process. Those of processes that were killed are removed on
// the way.
class NewFile {
  public:
    explicit NewFile(const std::string& path);  // std::system_error when it can't be made
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    const std::string& name() const { return name_; }

    // Gives the file its name when it is safely on the disk. Throws std::system_error when that fails; file_exists when
    // the name has been taken in the meantime.
    void publish();
    // The same in place of any file that has the name.
    void replace();

  private:
    using Naming = int (*)(const std::string& from, const std::string& to);
    void giveName(Naming naming);

    std::string path_, name_;
    std::optional<Unfinished> noted_;  // until it has its name
};

}  // namespace host
