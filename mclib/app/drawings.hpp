// The drawings that an application is called for (mchost/mdl/drawing_names.h), and copies of them.
#pragma once

#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include <mchost/mdl/drawing_names.h>
#include <mchost/mdl/files.h>
#include <mclib/app/system_path.hpp>

namespace mcapp {

class Drawings {
  public:
    // A file, a pattern or a folder. False after a message.
    bool add(const std::string& name) { return mdlDrawingNames_add(names_.get(), name.c_str()) == MDL_SUCCESS; }
    // A text file whose lines are names. False after a message.
    bool addList(const std::string& fileName) {
        return mdlDrawingNames_addList(names_.get(), fileName.c_str()) == MDL_SUCCESS;
    }

    // All of several names and lists, those that are good too when others aren't.
    bool addAll(const std::vector<std::string>& names, const std::vector<std::string>& lists) {
        bool whole = true;
        for (const std::string& name : names) whole = add(name) && whole;
        for (const std::string& list : lists) whole = addList(list) && whole;
        return whole;
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

// Makes a whole copy of a drawing that no session has open. Why it can't; empty when it is made.
inline std::string copyDrawing(const std::string& copy, const std::string& name) {
    std::error_code error;
    if (std::filesystem::exists(systemPath(name + "-wal"), error))
        return "the drawing isn't closed yet, so no whole copy of it can be made";
    const int status = mdlFile_copy(copy.c_str(), name.c_str());
    return status == 0 ? "" : "the copy of it can't be made (" + std::string(std::strerror(status)) + ")";
}

}  // namespace mcapp
