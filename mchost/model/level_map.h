// Levels of one model in another.
#pragma once

#include <functional>
#include <map>
#include <utility>

#include "mchost/model/model.h"

namespace host {

// Values of elements that take theirs from their level.
constexpr int32_t colorByLevel = -1, weightByLevel = -1, styleByLevel = 0x7FFFFFFF;

// Levels of a model in the one that its elements go to, by their names. That one gets those that it hasn't, which are
// stored with the first element on them; `styleIn` tells what number a named line style has there.
class LevelMap {
  public:
    LevelMap(const Model& from, Model& to, std::function<int32_t(int32_t)> styleIn)
        : from_(from), to_(to), styleIn_(std::move(styleIn)) {}

    LevelId operator()(LevelId id) {
        const auto [place, isNew] = known_.try_emplace(id, id);
        if (isNew) place->second = lookUp(id);
        return place->second;
    }

  private:
    LevelId lookUp(LevelId id) {
        const Level* source = findLevel(from_, id);
        if (!source) return id;
        if (const Level* found = findLevel(to_, source->name)) return found->id;
        const int32_t style = source->byLevel.style < 0 ? styleIn_(source->byLevel.style) : source->byLevel.style;
        Level& made = addLevel(to_, source->name);
        made.byLevel = source->byLevel;
        made.byLevel.style = style;
        made.override = source->override;
        made.fromCells = true;
        return made.id;
    }

    const Model& from_;
    Model& to_;
    std::function<int32_t(int32_t)> styleIn_;
    std::map<LevelId, LevelId> known_;
};

}  // namespace host
