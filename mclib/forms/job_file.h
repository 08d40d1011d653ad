// The file of a print job, which is there only when it is whole: a job that fails leaves what had the name, or nothing.
#pragma once

#include <memory>
#include <string>

#include "mchost/mdl/files.h"

namespace mc::forms {

class JobFile {
  public:
    // What isn't a plain file, such as a device or a link, and what lies where no other file can be made, is written to
    // directly.
    explicit JobFile(const char* name);
    ~JobFile();
    JobFile(const JobFile&) = delete;
    JobFile& operator=(const JobFile&) = delete;

    // Where the job is to be written.
    const char* name() const { return temporary_.empty() ? name_.c_str() : temporary_.c_str(); }
    // The job is whole: its file takes the place of what had the name. False, with that as it was, when it can't.
    bool publish();

  private:
    struct Remove {
        void operator()(MdlWorkFolder* folder) const { mdlWorkFolder_remove(folder); }
    };

    std::string name_, temporary_;  // temporary_ empty: it is written under its own name
    std::unique_ptr<MdlWorkFolder, Remove> folder_;
    bool isNew_ = false;  // nothing has the name until it is whole
};

}  // namespace mc::forms
