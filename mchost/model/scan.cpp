// Scans over the elements of a model.
#include "mchost/mdl/scan.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <optional>

#include "mchost/base/guard.h"
#include "mchost/model/bitmask.h"
#include "mchost/model/model_ref.h"

struct ScanCriteria {
    ModelRef* model = nullptr;  // null: the active one
    std::vector<uint16_t> types;
    std::vector<LevelId> levels;
    std::optional<MdlBitMask> levelMask;
    uint32_t classMask = 0;
    bool drawnAlone = false;
    FilePos end = 0;  // 0: none
    std::optional<Range3d> window;
    int32_t returnType = MDL_SCAN_POSITIONS;
    bool oneElement = false;
    bool nested = false;
    MdlScanDescrFunction function = nullptr;
    void* userArg = nullptr;

    // What the scan has found, fixed with its first portion.
    uint64_t modelSerial = 0;  // 0: none so far
    uint64_t removals = 0;     // of the model's elements at that time
    std::vector<FilePos> found;
    size_t next = 0;  // in found: what the next portion begins with
};

namespace host {
namespace {

constexpr int32_t wordsPerPosition = sizeof(FilePos) / sizeof(uint16_t);

template <class Value>
bool passes(const std::vector<Value>& wanted, Value value) {
    return wanted.empty() || std::ranges::find(wanted, value) != wanted.end();
}

bool passesLevel(const ScanCriteria& criteria, LevelId level) {
    if (!criteria.levelMask) return passes(criteria.levels, level);
    if (level != 0 && criteria.levelMask->test(level - 1)) return true;
    return !criteria.levels.empty() && passes(criteria.levels, level);
}

bool passes(const ScanCriteria& criteria, const ElementKey& key) {
    if (criteria.drawnAlone && key.type == MDL_APPLICATION_DATA) return false;
    return key.live && passes(criteria.types, key.type) && passesLevel(criteria, key.level) &&
           (criteria.classMask == 0 || (criteria.classMask >> key.elementClass & 1) != 0);
}

ElementKey keyOf(const ElementHead& head) {
    return {head.level, head.type, static_cast<uint8_t>(head.properties & MDL_PROP_CLASS), true};
}

bool looksInside(const ScanCriteria& criteria) {
    return criteria.nested && criteria.returnType == MDL_SCAN_DESCRIPTORS;
}

// Whether a component of the element at the position passes, where these count.
bool passesInside(const ScanCriteria& criteria, const Model& model, FilePos position) {
    if (!looksInside(criteria) || !model.elements.isLive(position)) return false;
    bool any = false;
    forEachNode(model.elements.record(position),
                [&](const StoredNode& node) { any = any || passes(criteria, keyOf(node.element->head)); });
    return any;
}

bool takesAll(const ScanCriteria& criteria) {
    return criteria.types.empty() && criteria.levels.empty() && !criteria.levelMask && criteria.classMask == 0 &&
           !criteria.drawnAlone;
}

// Sorts positions below `limit` by digits of at most 11 bits, the lowest first.
void sortPositions(std::vector<FilePos>& positions, uint32_t limit) {
    if (positions.size() < 256) {
        std::ranges::sort(positions);
        return;
    }
    constexpr int mostBits = 11, mostPasses = 3;
    const int bits = std::bit_width(limit), passes = (bits + mostBits - 1) / mostBits;
    const int digitBits = (bits + passes - 1) / passes;
    const uint32_t digits = 1u << digitBits;
    const auto digitOf = [&](FilePos position, int pass) { return position >> (pass * digitBits) & (digits - 1); };
    uint32_t places[mostPasses][1 << mostBits];
    for (int pass = 0; pass < passes; ++pass) std::fill_n(places[pass], digits, 0);
    for (const FilePos position : positions) {
        for (int pass = 0; pass < passes; ++pass) ++places[pass][digitOf(position, pass)];
    }
    std::vector<FilePos> sorted(positions.size());
    for (int pass = 0; pass < passes; ++pass) {
        uint32_t* place = places[pass];
        std::exclusive_scan(place, place + digits, place, 0u);
        for (const FilePos position : positions) sorted[place[digitOf(position, pass)]++] = position;
        positions.swap(sorted);
    }
}

void findInWindow(const ScanCriteria& criteria, Model& model, std::vector<FilePos>& found) {
    rangesOf(model).search(*criteria.window, found);
    sortPositions(found, model.elements.nextPosition());
    if (takesAll(criteria)) return;
    const std::span<const ElementKey> keys = model.elements.keys();
    std::erase_if(found, [&](FilePos position) {
        return !passes(criteria, keys[position]) && !passesInside(criteria, model, position);
    });
}

uint64_t wantedTypes(const ScanCriteria& criteria) {
    uint64_t bits = criteria.types.empty() || looksInside(criteria) ? ~uint64_t{0} : 0;
    for (const uint16_t type : criteria.types) bits |= typeBit(type);
    return bits;
}

// Passes over runs of positions without an element of the types that are asked for.
void findAnywhere(const ScanCriteria& criteria, const Model& model, std::vector<FilePos>& found) {
    const std::span<const ElementKey> keys = model.elements.keys();
    const uint64_t wanted = wantedTypes(criteria);
    constexpr size_t run = ElementStore::positionsOfBits;
    if (takesAll(criteria)) found.reserve(model.elements.liveCount());
    for (size_t first = 0; first < keys.size(); first += run) {
        if ((model.elements.typeBitsAt(static_cast<FilePos>(first)) & wanted) == 0) continue;
        const size_t end = std::min(first + run, keys.size());
        for (size_t position = first; position < end; ++position) {
            const auto at = static_cast<FilePos>(position);
            if (passes(criteria, keys[at]) || passesInside(criteria, model, at)) found.push_back(at);
        }
    }
}

void fixResult(ScanCriteria& criteria, Model& model) {
    criteria.found.clear();
    criteria.next = 0;
    if (criteria.window) {
        findInWindow(criteria, model, criteria.found);
    } else {
        findAnywhere(criteria, model, criteria.found);
    }
    if (criteria.end != 0) {
        criteria.found.erase(std::ranges::lower_bound(criteria.found, criteria.end), criteria.found.end());
    }
    criteria.modelSerial = model.serial;
    criteria.removals = model.elements.removals();
}

void forgetResult(ScanCriteria& criteria) {
    criteria.found = {};
    criteria.modelSerial = 0;
}

// Moves `next` to the first element that hasn't been deleted since; false at the end.
bool moveToLive(ScanCriteria& criteria, const Model& model) {
    while (criteria.next < criteria.found.size() && !model.elements.isLive(criteria.found[criteria.next])) {
        ++criteria.next;
    }
    return criteria.next < criteria.found.size();
}

void placeBehind(ScanCriteria& criteria, FilePos start) {
    criteria.next = static_cast<size_t>(std::ranges::upper_bound(criteria.found, start) - criteria.found.begin());
}

// Fills the buffer; true when elements follow those in it.
bool fillPortion(ScanCriteria& criteria, const Model& model, std::span<FilePos> buffer, size_t& count) {
    if (criteria.removals == model.elements.removals()) {
        count = std::min(buffer.size(), criteria.found.size() - criteria.next);
        std::copy_n(criteria.found.begin() + static_cast<ptrdiff_t>(criteria.next), count, buffer.begin());
        criteria.next += count;
        return criteria.next < criteria.found.size();
    }
    for (count = 0; moveToLive(criteria, model); ++count) {
        if (count == buffer.size()) return true;
        buffer[count] = criteria.found[criteria.next++];
    }
    return false;
}

int scan(ScanCriteria& criteria, std::span<FilePos> buffer, int32_t* sizeP, FilePos* startP) {
    *sizeP = 0;
    Model* model = openModel(criteria.model);
    if (!model || buffer.empty()) return MDL_ERROR;
    const bool begins = startP && *startP == 0;
    if (begins || criteria.modelSerial != model->serial) fixResult(criteria, *model);
    if (startP) placeBehind(criteria, *startP);
    size_t count = 0;
    bool more = fillPortion(criteria, *model, criteria.oneElement ? buffer.first(1) : buffer, count);
    if (criteria.oneElement) more = count != 0;
    *sizeP = static_cast<int32_t>(count) * wordsPerPosition;
    if (startP && count != 0) *startP = buffer[count - 1];
    if (!more) forgetResult(criteria);
    return more ? int{MDL_SCAN_MORE} : int{MDL_SUCCESS};
}

// Gives the function each element that was found and is still there.
int scanDescriptors(ScanCriteria& criteria) {
    ModelRef* place = openPlace(criteria.model);
    Model* model = openModel(place);
    if (!model || !criteria.function) return MDL_ERROR;
    fixResult(criteria, *model);
    const std::vector<FilePos> found = std::move(criteria.found);
    forgetResult(criteria);
    for (const FilePos position : found) {
        ElementDescr* ed = nullptr;
        if (openPlace(place) != place) return MDL_ERROR;
        if (mdlElmdscr_read(&ed, position, place) == 0) continue;
        const int status = criteria.function(ed, criteria.userArg, &criteria);
        mdlElmdscr_freeAll(&ed);
        if (status != 0) return status;
    }
    return MDL_SUCCESS;
}

// Changes what is asked for; a scan that has begun begins anew.
template <class Change>
int change(ScanCriteria* criteria, Change apply) {
    return guarded(int{MDL_ERROR}, [&]() -> int {
        if (!criteria) return MDL_ERROR;
        forgetResult(*criteria);
        return apply(*criteria);
    });
}

}  // namespace
}  // namespace host

using namespace host;

ScanCriteria* mdlScanCriteria_create(void) noexcept {
    return guarded<ScanCriteria*>(nullptr, [] { return new ScanCriteria; });
}

void mdlScanCriteria_free(ScanCriteria** criteriaP) noexcept {
    if (!criteriaP) return;
    delete *criteriaP;
    *criteriaP = nullptr;
}

int mdlScanCriteria_setModel(ScanCriteria* criteria, ModelRef* model) noexcept {
    return change(criteria, [&](ScanCriteria& c) -> int {
        if (!openModel(model)) return MDL_ERROR;
        c.model = model;
        return MDL_SUCCESS;
    });
}

int mdlScanCriteria_addSingleElementTypeTest(ScanCriteria* criteria, int32_t type) noexcept {
    return change(criteria, [&](ScanCriteria& c) -> int {
        if (type <= 0 || type > UINT16_MAX) return MDL_ERROR;
        c.types.push_back(static_cast<uint16_t>(type));
        return MDL_SUCCESS;
    });
}

int mdlScanCriteria_addSingleLevelTest(ScanCriteria* criteria, LevelId level) noexcept {
    return change(criteria, [&](ScanCriteria& c) -> int {
        c.levels.push_back(level);
        return MDL_SUCCESS;
    });
}

int mdlScanCriteria_setLevelTest(ScanCriteria* criteria, const MdlBitMask* levels, int32_t, int32_t) noexcept {
    return change(criteria, [&](ScanCriteria& c) -> int {
        c.levelMask = levels ? std::optional(*levels) : std::nullopt;
        return MDL_SUCCESS;
    });
}

int mdlScanCriteria_setClassTest(ScanCriteria* criteria, uint32_t classMask) noexcept {
    return change(criteria, [&](ScanCriteria& c) -> int {
        c.classMask = classMask;
        return MDL_SUCCESS;
    });
}

int mdlScanCriteria_setRangeTest(ScanCriteria* criteria, const Range3d* range) noexcept {
    return change(criteria, [&](ScanCriteria& c) -> int {
        c.window = range ? std::optional(*range) : std::nullopt;
        return MDL_SUCCESS;
    });
}

int mdlScanCriteria_setDrawnElements(ScanCriteria* criteria) noexcept {
    return change(criteria, [](ScanCriteria& c) -> int {
        c.drawnAlone = true;
        return MDL_SUCCESS;
    });
}

int mdlScanCriteria_setStopPosition(ScanCriteria* criteria, FilePos end) noexcept {
    return change(criteria, [&](ScanCriteria& c) -> int {
        c.end = end;
        return MDL_SUCCESS;
    });
}

int mdlScanCriteria_setReturnType(ScanCriteria* criteria, int32_t type, int32_t oneElement, int32_t nested) noexcept {
    return change(criteria, [&](ScanCriteria& c) -> int {
        if (type != MDL_SCAN_POSITIONS && type != MDL_SCAN_DESCRIPTORS) return MDL_ERROR;
        c.returnType = type;
        c.oneElement = oneElement != 0;
        c.nested = nested != 0;
        return MDL_SUCCESS;
    });
}

int mdlScanCriteria_setElmDscrCallback(ScanCriteria* criteria, MdlScanDescrFunction f, void* userArg) noexcept {
    return change(criteria, [&](ScanCriteria& c) -> int {
        c.function = f;
        c.userArg = userArg;
        return MDL_SUCCESS;
    });
}

int mdlScanCriteria_scan(ScanCriteria* criteria, FilePos* buffer, int32_t* sizeP, FilePos* startP) noexcept {
    return guarded(int{MDL_ERROR}, [&]() -> int {
        if (criteria && criteria->returnType == MDL_SCAN_DESCRIPTORS) return scanDescriptors(*criteria);
        if (!criteria || !buffer || !sizeP || *sizeP < 0) return MDL_ERROR;
        return scan(*criteria, std::span(buffer, static_cast<size_t>(*sizeP / wordsPerPosition)), sizeP, startP);
    });
}
