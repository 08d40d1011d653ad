// The key-ins that place elements: "place tag 10,20 P-101", "place dimension 0,0 10,0 0,3".
#include <memory>
#include <vector>

#include "mchost/base/number_format.h"
#include "mchost/base/words.h"
#include "mchost/command/input.h"
#include "mchost/mdl/compound.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/system.h"
#include "mchost/mdl/tag.h"
#include "mchost/mdl/undo.h"
#include "mchost/model/model_ref.h"
#include "mchost/session/keyin.h"
#include "mchost/view/words.h"

namespace host {
namespace {

// An element in UOR of the active model, with its settings.
class Placing {
  public:
    Placing(const char* step, const char* refusal) : step_(step), refusal_(refusal) { requireDesignFile(); }

    MSElementBuffer* element() { return element_.get(); }
    void store(int made) {
        if (made != MDL_SUCCESS) refuse(refusal_);
        mdlUndo_mark(step_);
        if (mdlElement_add(element()) == 0) mdlSystem_noteFailure();  // why has been told
    }

  private:
    const char *step_, *refusal_;
    std::unique_ptr<MSElementBuffer> element_ = std::make_unique_for_overwrite<MSElementBuffer>();
    mdl::CurrTransScope inUor_{mdl::CurrTransScope::Begin::uor};
};

// A number is one of its type, all else, and what stands in quotes, a string.
MdlTagValue valueIn(std::string_view text) {
    MdlTagValue value{};
    const bool inQuotes = text.size() > 1 && text.starts_with('"') && text.ends_with('"');
    const auto whole = inQuotes ? std::nullopt : numberIn<int32_t>(text);
    const auto number = inQuotes ? std::nullopt : numberOf(text);
    if (inQuotes) text = text.substr(1, text.size() - 2);
    value.type = whole ? MDL_TAG_LONG : number ? MDL_TAG_DOUBLE : MDL_TAG_STRING;
    value.longValue = whole.value_or(0);
    value.doubleValue = number.value_or(0);
    if (text.empty() || text.size() > MDL_TEXT_CHARACTERS)
        refuse("A tag shows 1 to 255 characters. Give its value behind the point.");
    if (value.type == MDL_TAG_STRING) text.copy(value.string, text.size());
    return value;
}

void placeTag(std::string_view rest) {
    Placing placing("place a tag", "A tag can't show that. Give a number with fewer digits, or a text.");
    const Point3d origin = takePoint(rest);
    const MdlTagValue value = valueIn(rest);
    placing.store(mdlTag_create(placing.element(), nullptr, &value, &origin, nullptr, nullptr, nullptr, 1));
}

void placeDimension(std::string_view rest) {
    Placing placing("place a dimension", "A dimension has two ends that lie apart. Give them and a point of its line.");
    Point3d ends[2];
    for (Point3d& end : ends) end = takePoint(rest);
    const Point3d through = takePoint(rest);
    takeNothingMore(rest);
    placing.store(mdlDimension_create(placing.element(), nullptr, ends, &through, nullptr, nullptr));
}

void placeMultiline(std::string_view rest) {
    Placing placing(
        "place a multi-line",
        "A multi-line goes through two points and more, and has fewer lines. Give OFFSET,OFFSET... x,y x,y...");
    const double uorPerMaster = mdlModelRef_getUorPerMaster(nullptr);
    std::vector<double> offsets;
    for (std::string_view all = takeWord(rest); !all.empty();) {
        const size_t end = std::min(all.find(','), all.size());
        std::string_view one = all.substr(0, end);
        offsets.push_back(takeNumber(one, "an offset") * uorPerMaster);
        all.remove_prefix(std::min(end + 1, all.size()));
    }
    std::vector<Point3d> points;
    while (!rest.empty()) points.push_back(takePoint(rest));
    placing.store(mdlMultiline_create(placing.element(), nullptr, points.data(), static_cast<int32_t>(points.size()),
                                      offsets.data(), static_cast<int32_t>(offsets.size())));
}

[[maybe_unused]] const bool added =
    addHostWord({"place tag",
                 "  place tag x,y VALUE: a number, or a text (in quotes where it looks like a number), as a tag\n",
                 placeTag}) &&
    addHostWord({"place dimension",
                 "  place dimension x,y x,y x,y: the distance of two points, its line through the third\n",
                 placeDimension}) &&
    addHostWord({"place multiline",
                 "  place multiline OFFSET,OFFSET... x,y x,y...: lines beside a run of points, to the left of it\n",
                 placeMultiline});

}  // namespace
}  // namespace host
