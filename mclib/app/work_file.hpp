// A new design file that an application's work is done in.
#pragma once

#include <string>

#include <mchost/mdl/model.h>

namespace mcapp {

// Made and active; closed again however the work ends.
class WorkFile {
  public:
    explicit WorkFile(const std::string& name) {
        open_ = mdlSystem_createDesignFile(name.c_str(), 0) == MDL_SUCCESS &&
                mdlSystem_newDesignFile(name.c_str(), 0) == MDL_SUCCESS;
    }
    ~WorkFile() { close(); }
    WorkFile(const WorkFile&) = delete;
    WorkFile& operator=(const WorkFile&) = delete;

    bool isOpen() const { return open_; }
    // False when it couldn't be stored.
    bool close() {
        const bool wasOpen = open_;
        open_ = false;
        return !wasOpen || mdlSystem_closeDesignFile() == MDL_SUCCESS;
    }

  private:
    bool open_ = false;
};

}  // namespace mcapp
