// The file of a print job, which gets its name when it is whole: until then, and when the job fails, what had the name
// stays.
#pragma once

#include <memory>
#include <string>

#include "mchost/mdl/files.h"

namespace forms {

class JobFile {
  public:
    // What isn't a plain file, such as a device or a link, and what lies where no other file can be made, is written to
    // directly.
    explicit JobFile(const char* name);

    // Where the job is to be written.
    const char* name() const { return temporary_.empty() ? name_.c_str() : temporary_.c_str(); }
    // Gives the file its name; false, with what had the name as it was, when that can't be done.
    bool publish();

  private:
    struct Remove {
        void operator()(MdlWorkFolder* folder) const { mdlWorkFolder_remove(folder); }
    };

    std::string name_, temporary_;
    std::unique_ptr<MdlWorkFolder, Remove> folder_;
};

}  // namespace forms
