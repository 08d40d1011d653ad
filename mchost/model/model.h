// A model in memory.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mchost/element/clip.h"
#include "mchost/mdl/element.h"
#include "mchost/mdl/text.h"
#include "mchost/model/element_store.h"
#include "mchost/model/range_index.h"
#include "mchost/space/view.h"

namespace host {

struct LevelSymbology {
    uint32_t color = 0;
    int32_t style = 0;
    uint32_t weight = 0;
    uint32_t fillColor = 0;
    LineStyleParams styleParams = {0, 1, 0, 0, 1, 1};
};

struct LevelOverride {
    uint32_t color = 0;
    int32_t style = 0;
    uint32_t weight = 0;
};

struct Level {
    LevelId id;
    int32_t code;
    std::wstring name;
    LevelSymbology byLevel = {};
    LevelOverride override = {};
    bool stored = false;     // belongs into the file
    bool fromCells = false;  // a cell that was read has made it: it is stored with an element alone
};

struct LineStyle {
    int32_t number;  // below 0
    std::string name;
    std::vector<double> pattern;  // dashes and gaps in turn, master units
};

struct TextStyle {
    TextParams params;
    TextSize size;
};

// Another model that is shown in this one: where, and what of it.
struct Attachment {
    uint32_t number = 0;    // from 1
    std::string file = {};  // path (UTF-8), from the folder of this model's file where the two have one in common
    Transform toParent = {};
    Ring clip = {};           // corners of the part that is shown, in this model's UOR; none: all is
    FilePos clipElement = 0;  // or the element of this model whose inside that is, as it lies now
    bool shown = true;
    bool hidden = false;
    std::array<LevelNames, viewCount> levelsOff = {};  // in each view, beside those that are off in the view itself

    bool isClipped() const { return !clip.empty() || clipElement != 0; }
};

// What a model holds. It knows no file that it is stored in and no place where it is shown.
struct Model {
    uint64_t serial = 0;  // differs for every model that was ever open in a session, while the address may come again
    bool is3d = false;
    double uorPerMaster = 10000;
    ElementStore elements = {};
    std::vector<Level> levels = {};  // in order of id
    LevelId nextLevel = 1;
    std::vector<LineStyle> lineStyles = {};  // in order of their numbers from -1 down
    std::map<std::wstring, TextStyle> textStyles = {};
    std::vector<Attachment> attachments = {};  // in order of number
    uint64_t attachmentChanges = 0;            // how often they were changed so far
    ViewTable views = {};
    bool tablesChanged = false;   // levels, styles or attachments, since they were last stored
    uint32_t unstoredLevels = 0;  // levels that aren't to be stored so far

    RangeIndex ranges = {};  // filled at the first search by window
    bool rangesFilled = false;
};

const Level* findLevel(const Model& model, LevelId id);
const LineStyle* findLineStyle(const Model& model, int32_t number);
const Level* findLevel(const Model& model, std::wstring_view name);
void addFirstLevel(Model& model);  // "Default", to a model without levels
// Makes a level of a name that the model hasn't yet, in memory: it isn't stored before it is marked.
Level& addLevel(Model& model, std::wstring_view name);
// Marks a level as one that belongs into the file.
void storeLevel(Model& model, LevelId id);

inline void noteAttachmentsChanged(Model& model) noexcept {
    ++model.attachmentChanges;
    model.tablesChanged = true;
}

// The nodes of an element with its components, in the order in which they are stored.
using Unit = std::vector<StoredNode>;
Unit unitOf(const ElementDescr* node);
// The element at a live position with its components, as a descriptor of `owner`; counts its nodes. Null, and a count
// of 0, when out of memory.
ElementDescr* readUnit(const Model& model, FilePos position, ModelRef* owner, uint32_t& count);

// The index of ranges of the model's elements, made at the first call.
RangeIndex& rangesOf(Model& model);
// Brings the index in line with what is at the position now, if there is an index already.
void updateRange(Model& model, FilePos position) noexcept;
std::optional<Range3d> modelRange(Model& model);  // of all elements

}  // namespace host
