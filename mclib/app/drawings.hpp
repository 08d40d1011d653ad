// The drawings that an application is called for (mchost/mdl/drawing_names.h).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <mchost/mdl/drawing_names.h>

namespace mcapp {

class Drawings {
  public:
    // A file, a pattern or a folder. False after a message.
    bool add(const std::string& name) { return mdlDrawingNames_add(names_.get(), name.c_str()) == MDL_SUCCESS; }
    // A text file whose lines are names. False after a message.
    bool addList(const std::string& fileName) {
        return mdlDrawingNames_addList(names_.get(), fileName.c_str()) == MDL_SUCCESS;
    }

    // Names of the host, in their order, each file once.
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (int32_t i = 0; const char* const name = mdlDrawingNames_get(names_.get(), i); ++i) all.emplace_back(name);
        return all;
    }

  private:
    struct Free {
        void operator()(MdlDrawingNames* names) const { mdlDrawingNames_free(names); }
    };
    std::unique_ptr<MdlDrawingNames, Free> names_{mdlDrawingNames_create()};
};

}  // namespace mcapp
