// A place where a model is shown. Handles of the host's calls point to places.
#pragma once

#include "mchost/mdl/types.h"
#include "mchost/model/model.h"

namespace host {
class DesignFile;
}

struct ModelRef {
    host::DesignFile* file = nullptr;  // whose model is shown
};

namespace host {

// The place that a caller means: the active model for null. Null for one that isn't open any more.
ModelRef* openPlace(ModelRef* place);
// The model that is shown there.
Model* openModel(ModelRef* place);
// The same when it can be written, else null with a line in the message centre.
Model* writableModel(ModelRef* place);
uint64_t activeModelSerial();  // 0 while no design file is open

// The model that a caller of level functions means: while no design file is open, null stands for a table of the
// session's own, which isn't stored. Null when there is no session either.
Model* levelModel(ModelRef* place);

}  // namespace host
