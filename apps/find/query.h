// Which texts are looked for, and looking for them in a model.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <mchost/mdl/elmdscr.h>
#include <mchost/mdl/scan.h>
#include "options.h"

namespace find {

struct Hit {
    FilePos position;  // of the element in the file that the text is, or lies in
    int ordinal;       // of the hit in that element, from 0
    std::string text;  // Windows-1252
    int errors;
    std::string level;
    double x, y;        // of the text's origin, in master units
    Point3d low, high;  // of its box, in UOR
    bool isLocked;
    bool isNumber;  // a tag that holds a number
};

// The texts of one model that are looked for.
class Query {
  public:
    // `options` outlives it.
    Query(const Options& options, ModelRef* model);

    // False when the model has none of the levels that were asked for.
    bool hasLevels() const { return !levels_ || !levels_->empty(); }
    // The text of an element or tag, when it is looked for; `position` and `ordinal` go to the hit.
    std::optional<Hit> look(const MSElementBuffer& element, FilePos position, int ordinal) const;
    // Calls f for each hit, in order of the file. False when not all of the model could be read.
    bool run(const std::function<void(const Hit&)>& f) const;

  private:
    bool lookAt(FilePos position, const std::function<void(const Hit&)>& f, MSElementBuffer& buffer) const;
    bool hasLook(const MSElementBuffer& element) const;
    bool addRange(ScanCriteria* criteria) const;

    const Options& options_;
    ModelRef* const model_;
    const double uorPerMaster_;
    std::optional<std::vector<LevelId>> levels_;
    const std::unique_ptr<MSElementBuffer> tagText_ = std::make_unique<MSElementBuffer>();
};

}  // namespace find
