// A drawing that is open beside the active one.
#pragma once

#include <string>
#include <utility>

#include <mchost/mdl/files.h>

namespace mcapp {

class OpenDrawing {
  public:
    enum class Use { look, write };
    // `model` is null, after a message from the host, when it can't be opened.
    OpenDrawing(const std::string& name, Use use) {
        const auto open = use == Use::look ? mdlWorkDgn_openFile : mdlWorkDgn_openFileToWrite;
        if (open(&model_, name.c_str()) != MDL_SUCCESS) model_ = nullptr;
    }
    ~OpenDrawing() { close(); }
    OpenDrawing(const OpenDrawing&) = delete;
    OpenDrawing& operator=(const OpenDrawing&) = delete;

    ModelRef* model() const { return model_; }
    // False, with a message from the host, when what was changed can't be stored.
    bool close() {
        ModelRef* const model = std::exchange(model_, nullptr);
        return !model || mdlWorkDgn_closeFile(model) == MDL_SUCCESS;
    }

  private:
    ModelRef* model_ = nullptr;
};

}  // namespace mcapp
