// A place where a model is shown. Handles of the host's calls point to places.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mchost/mdl/types.h"
#include "mchost/model/model.h"

namespace host {
class DesignFile;
}

struct ModelRef {
    host::DesignFile* file = nullptr;  // whose model is shown; null when it can't be read
    ModelRef* parent = nullptr;        // where it is attached; null for a file that is open by itself
    uint32_t number = 0;               // of the parent's attachment, which tells how it is shown
    std::string attached = {};         // and what it was when the file was looked for

    std::vector<std::unique_ptr<ModelRef>> below = {};  // what is attached to the model, as far as it was asked for
    uint64_t belowAsOf = UINT64_MAX;                    // the model's attachmentChanges at that time
};

namespace host {

// The place that a caller means: the active model for null. Null for one that isn't there any more.
ModelRef* openPlace(ModelRef* place) noexcept;
// How a place is shown in its parent; null for a place without one.
const Attachment* attachmentOf(const ModelRef& place);
// From the coordinates of the model to those of the file that is open by itself.
Transform toMaster(const ModelRef& place);
// The model that is shown there.
Model* openModel(ModelRef* place) noexcept;
// The same when it can be written, else null with a line in the message centre.
Model* writableModel(ModelRef* place);
uint64_t activeModelSerial() noexcept;  // 0 while no design file is open

// The model that a caller of level functions means: while no design file is open, null stands for a table of the
// session's own, which isn't stored. Null when there is no session either.
Model* levelModel(ModelRef* place);

}  // namespace host
