// The first byte tells which stored record the others are; they are read from a block of just their size, as they are
// and cut to it or filled up with zeros where the record has a size of its own. What was read is sound, and is the same
// when it is stored and read again.
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "bytes.h"
#include "mclib/elmattr/records.h"
#include "mclib/print/setup_record.h"
#include "mclib/project/application_block.h"
#include "mclib/project/records.h"

using namespace mc;

namespace {

// A copy in a block of its own, so that nobody reads behind its end unseen.
class Block {
  public:
    Block(std::span<const uint8_t> bytes, size_t size) : bytes_(new uint8_t[size]()), size_(size) {
        if (!bytes.empty() && size > 0) std::memcpy(bytes_.get(), bytes.data(), std::min(size, bytes.size()));
    }
    explicit Block(std::span<const uint8_t> bytes) : Block(bytes, bytes.size()) {}
    operator std::span<const uint8_t>() const { return {bytes_.get(), size_}; }

  private:
    std::unique_ptr<uint8_t[]> bytes_;
    size_t size_;
};

template <class Unit, size_t Size>
void requireEnded(const Unit (&text)[Size]) {
    require(std::ranges::find(text, Unit{}) != std::end(text));
}

// ---- attributes ----

std::optional<int32_t> styleNumber(const char* name) {
    if (*name == '\0') return {};
    return -static_cast<int32_t>(std::strlen(name));
}

void requireSound(const ElmAttrData& data, int32_t kind) {
    requireEnded(data.levelName);
    requireEnded(data.styleName);
    if (elmattr::isTextKind(kind))
        requireEnded(data.textStyleName);
    else
        requireEnded(data.symbolText);
    if (elmattr::hasTextValue(kind)) requireEnded(data.optionText);
}

void attribute(std::span<const uint8_t> input, const elmattr::RecordResource& resource) {
    const Block record(input, resource.bytes);
    const elmattr::RecordHead head = elmattr::headOf(record);
    ElmAttrData data = {}, again = {};
    elmattr::unpackData(data, resource.layout, record, head.kind, styleNumber);
    requireSound(data, head.kind);
    const elmattr::RecordBytes stored = elmattr::packRecord(head, data);
    elmattr::unpackData(again, elmattr::RecordLayout::current, stored, head.kind, styleNumber);
    requireSound(again, head.kind);
    require(elmattr::packRecord(elmattr::headOf(stored), again) == stored);
}

// ---- title blocks ----

template <class Texts>
void titleBlock(std::span<const uint8_t> input) {
    if (input.empty()) return;
    const int32_t subId = static_cast<int8_t>(input[0]);
    const Block payload(input.subspan(1));
    Texts block = {}, again = {};
    if (!project::unpackRecord(block, subId, payload)) return;
    for (const project::TextField& field : project::Layout<Texts>::order) {
        const char* text = reinterpret_cast<const char*>(&block) + field.offset;
        require(strnlen(text, field.size) < field.size);
    }
    const std::string stored = project::packRecord(block);
    require(stored.size() <= project::fullPayload<Texts>);
    const Block bytes({reinterpret_cast<const uint8_t*>(stored.data()), stored.size()});
    require(project::unpackRecord(again, project::currentForm, bytes));
    require(project::packRecord(again) == stored);
}

// ---- elements of application data ----

void element(std::span<const uint8_t> input) {
    const Block bytes(input);
    const auto block = application_data::readElement(bytes);
    if (!block || block->payload.size() > MCLIB_APPLICATION_DATA_BYTES) return;
    const auto made = application_data::makeElement(block->applicationId, block->subId, block->payload);
    const auto again = application_data::readElement(made);
    require(again && again->applicationId == block->applicationId && again->subId == block->subId);
    require(std::ranges::equal(again->payload, block->payload));
}

// ---- the printer set-up ----

void setup(std::span<const uint8_t> input, size_t size) {
    mclibPrinterSetupData data = {}, again = {};
    print::setupLayout(LoadFields(Block(input, size)), data);
    requireEnded(data.printerName);
    requireEnded(data.fileName);
    requireEnded(data.plotterFile);
    std::array<uint8_t, print::setupSize> stored = {}, twice = {};
    print::setupLayout(StoreFields(stored), data);
    print::setupLayout(LoadFields(stored), again);
    print::setupLayout(StoreFields(twice), again);
    require(stored == twice);
}

using Record = void (*)(std::span<const uint8_t>);
constexpr Record records[] = {
    [](std::span<const uint8_t> input) { attribute(input, elmattr::recordResources[0]); },
    [](std::span<const uint8_t> input) { attribute(input, elmattr::recordResources[1]); },
    [](std::span<const uint8_t> input) { attribute(input, elmattr::recordResources[2]); },
    titleBlock<mclibProsjektData>,
    titleBlock<mclibSideData>,
    element,
    [](std::span<const uint8_t> input) { setup(input, print::setupSize); },
    [](std::span<const uint8_t> input) { setup(input, print::olderSize); },
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 0) records[data[0] % std::size(records)]({data + 1, size - 1});
    return 0;
}
