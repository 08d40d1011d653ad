// The project data of a drawing: what a road's PROJECT, TITLE and DATE say, for everybody who opens the drawing later.
#pragma once

#include <string>

#include <mclib/mclib.h>
#include "road.h"

namespace alignment {

class Project {
  public:
    // As the open drawing tells it; empty when none is open.
    static Project ofOpenDrawing();

    // Gives the road the texts that the project has.
    void tell(Road& road) const;
    // Takes the road's texts, with a warning for one that has no room.
    void take(const Road& road);
    // Puts it into the open drawing, which has the name `drawing` in messages. False after a message.
    bool write(const std::string& drawing) const;

  private:
    mclibProsjektData data_ = {};
};

}  // namespace alignment
