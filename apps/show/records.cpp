// The library's stored records taken apart, through the same layouts that the library reads and writes them by.
#include <array>
#include <cstring>
#include <optional>

#include <mchost/mdl/file_dialogs.h>
#include "mclib/elmattr/records.h"
#include "mclib/forms/preview_extent.h"
#include "mclib/print/print.h"
#include "mclib/print/setup_record.h"
#include "mclib/project/application_block.h"
#include "mclib/project/records.h"
#include "show.h"

using namespace mc;

namespace show {

namespace {

using Bytes = std::span<const uint8_t>;

void addText(Record& record, const std::string& name, std::string_view text) {
    record.fields.push_back({name, quoted(text), !text.empty()});
}

void addNumber(Record& record, const char* name, double value, bool says = true) {
    record.fields.push_back({name, number(value), says});
}

struct CodeRow {
    int32_t code;
    const char* name;
};

template <size_t Rows>
std::string nameOf(const CodeRow (&rows)[Rows], int32_t code) {
    for (const CodeRow& row : rows)
        if (row.code == code) return row.name;
    return std::to_string(code);
}

// ---- attributes ----

constexpr CodeRow kinds[] = {
    {ATTR_KIND_SYMBOLOGY, "symbology"},
    {ATTR_KIND_SYMBOL, "symbol"},
    {ATTR_KIND_SIZED_SYMBOL, "symbol with a size"},
    {ATTR_KIND_TEXT, "text"},
    {ATTR_KIND_LABELLED_SYMBOL, "symbol with a text"},
    {ATTR_KIND_LABELLED_TEXT, "text with a value"},
    {ATTR_KIND_OPTION_TEXT, "text with an option"},
};

std::string orByLevel(int32_t value, int32_t byLevel) {
    return value == byLevel ? "by level" : std::to_string(value);
}

void addSymbology(Record& record, const ElmAttrData& data) {
    const auto used = [&](uint32_t flag) { return (data.useFlags & flag) != 0; };
    auto& fields = record.fields;
    fields.push_back({"color", orByLevel(data.color, ATTR_BY_LEVEL), used(ATTR_USE_COLOR)});
    fields.push_back({"style", orByLevel(data.style, ATTR_STYLE_BY_LEVEL), used(ATTR_USE_STYLE)});
    fields.push_back({"styleName", quoted(std::string_view(data.styleName)), used(ATTR_USE_STYLE) && data.style < 0});
    fields.push_back({"styleScale", number(data.styleScale), used(ATTR_USE_STYLE_SCALE)});
    fields.push_back({"styleWidth", number(data.styleWidth), used(ATTR_USE_STYLE_WIDTH)});
    fields.push_back({"weight", orByLevel(data.weight, ATTR_BY_LEVEL), used(ATTR_USE_WEIGHT)});
    fields.push_back({"level", quoted(data.levelName), used(ATTR_USE_LEVEL)});
    fields.push_back({"class", std::to_string(data.elementClass), used(ATTR_USE_CLASS)});
}

void addSymbol(Record& record, const ElmAttrData& data, int32_t kind) {
    addNumber(record, "symbol", data.symbolNumber, kind != ATTR_KIND_SYMBOLOGY);
    addNumber(record, "size", data.symbolSize, kind == ATTR_KIND_SIZED_SYMBOL || kind == ATTR_KIND_LABELLED_SYMBOL);
    record.fields.push_back({"text", quoted(std::string_view(data.symbolText)), kind == ATTR_KIND_LABELLED_SYMBOL});
}

void addTextValues(Record& record, const ElmAttrData& data, int32_t kind) {
    const auto used = [&](uint32_t flag) { return (data.useFlags & flag) != 0; };
    record.fields.push_back({"textStyle", quoted(data.textStyleName), used(ATTR_USE_TEXT_STYLE)});
    addNumber(record, "font", data.textFont, used(ATTR_USE_FONT));
    addNumber(record, "width", data.textWidth, used(ATTR_USE_SIZE));
    addNumber(record, "height", data.textHeight, used(ATTR_USE_SIZE));
    addNumber(record, "lineSpacing", data.textLineSpacing, used(ATTR_USE_SIZE));
    addNumber(record, "justification", data.textJust, used(ATTR_USE_JUST));
    if (!elmattr::hasTextValue(kind)) return addNumber(record, "slant", data.textSlant, used(ATTR_USE_SLANT));
    record.fields.push_back({"text", quoted(std::string_view(data.optionText)), true});
    addNumber(record, "option", data.optionValue, kind == ATTR_KIND_OPTION_TEXT);
}

std::string hexNumber(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%04x", value);
    return text;
}

Record attribute(const Block& block, const elmattr::RecordResource& resource) {
    const Bytes bytes = block.bytes.first(resource.bytes);
    const elmattr::RecordHead head = elmattr::headOf(bytes);
    ElmAttrData data = {};
    elmattr::unpackData(data, resource.layout, bytes, head.kind, [](const char*) { return std::optional<int32_t>(); });
    const bool isInSet = block.type == resource.setType;
    Record record{(isInSet ? "number " + std::to_string(block.id) + " of a set, attribute " : "attribute ") +
                      std::to_string(head.id),
                  {},
                  {}};
    record.fields = {{"group", std::to_string(head.group), true},
                     {"kind", nameOf(kinds, head.kind), true},
                     {"lockMask", hexNumber(head.lockMask), head.lockMask != 0},
                     {"useFlags", hexNumber(data.useFlags), false}};
    addSymbology(record, data);
    if (elmattr::isTextKind(head.kind))
        addTextValues(record, data, head.kind);
    else
        addSymbol(record, data, head.kind);
    return record;
}

template <size_t Layout>
Record attribute(const Block& block) {
    return attribute(block, elmattr::recordResources[Layout]);
}

Record attributeCount(const Block& block) {
    Record record{"attribute set", {}, {}};
    addNumber(record, "records", loadNumber<int32_t>(block.bytes.data()));
    return record;
}

Record attributeLabel(const Block& block) {
    Record record{"number " + std::to_string(block.id) + " of a set", {}, {}};
    addText(record, "label", textAt(block.bytes));
    return record;
}

// ---- printer set-up and preview ----

constexpr CodeRow pages[] = {
    {0, "as typed"},      {1, "A0 portrait"},  {2, "A0 landscape"},  {3, "A1 portrait"},  {4, "A1 landscape"},
    {5, "A2 portrait"},   {6, "A2 landscape"}, {7, "A3 portrait"},   {8, "A3 landscape"}, {9, "A4 portrait"},
    {10, "A4 landscape"}, {11, "A5 portrait"}, {12, "A5 landscape"},
};
constexpr CodeRow orientations[] = {{0, "always turned"}, {1, "never turned"}, {2, "by the page's shape"}};

std::string deviceName(int32_t code) {
    const McPrintDevice* device = mclibPrint_findDeviceP(code);
    return device ? device->name : std::to_string(code);
}

Record printerSetup(const Block& block) {
    mclibPrinterSetupData setup = {};
    print::setupLayout(LoadFields(block.bytes), setup);
    Record record{"printer set-up", {}, {}};
    record.fields.push_back({"page", nameOf(pages, setup.pageSize), true});
    addNumber(record, "width", setup.pageWidth);
    addNumber(record, "height", setup.pageHeight);
    addNumber(record, "marginLeft", setup.marginLeft);
    addNumber(record, "marginRight", setup.marginRight);
    addNumber(record, "marginTop", setup.marginTop);
    addNumber(record, "marginBottom", setup.marginBottom);
    record.fields.push_back({"orientation", nameOf(orientations, setup.orientation), true});
    record.fields.push_back({"device", deviceName(setup.deviceType), true});
    addNumber(record, "copies", setup.copies);
    addText(record, "printer", setup.printerName);
    addText(record, "file", setup.fileName);
    record.fields.push_back({"fileOnly", setup.fileOnly ? "yes" : "no", setup.fileOnly != 0});
    if (block.type == print::SETUP_TYPE) addText(record, "plotterFile", setup.plotterFile);
    return record;
}

Record previewSize(const Block& block) {
    struct {
        int32_t width, height;
    } size = {};
    forms::extentFields(LoadFields(block.bytes), size);
    Record record{"size of the preview's window", {}, {}};
    addNumber(record, "width", size.width);
    addNumber(record, "height", size.height);
    return record;
}

// ---- remembered files ----

void addHistory(Record& record, const char* name, int32_t count, const char (&texts)[MDL_HISTORY_MOST][256]) {
    for (int32_t i = 0; i < count; ++i) addText(record, name + std::string(" ") + std::to_string(i + 1), texts[i]);
}

Record rememberedFiles(const Block& block) {
    UserFileRecord files = {};
    mdlUserPrefs_getFileName(&files, block.file, block.id);
    Record record{"remembered files", {}, {}};
    addText(record, "file", files.fileName);
    addText(record, "filter", files.filter);
    addText(record, "directory", files.directory);
    if (files.marker != MDL_USER_FILE_MARKER || files.version != MDL_USER_FILE_VERSION) {
        record.problem = "marker " + std::to_string(files.marker) + ", version " + std::to_string(files.version) +
                         ": its lists don't count";
        return record;
    }
    addHistory(record, "file", files.fileCount, files.fileHistory);
    addHistory(record, "filter", files.filterCount, files.filterHistory);
    addHistory(record, "directory", files.directoryCount, files.directoryHistory);
    return record;
}

// ---- project and pages ----

template <class BlockOfTexts>
void addTexts(Record& record, const BlockOfTexts& block, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        const project::TextField& field = project::Layout<BlockOfTexts>::order[i];
        const char* text = reinterpret_cast<const char*>(&block) + field.offset;
        addText(record, field.line == 0 ? field.name : field.name + std::string(" ") + std::to_string(field.line),
                {text, strnlen(text, field.size)});
    }
}

Record projectFile(const Block& block) {
    mclibProsjektData project;
    std::memcpy(&project, block.bytes.data(), sizeof project);
    Record record{"project", {}, {}};
    addTexts(record, project, std::size(project::projectOrder));
    return record;
}

template <class BlockOfTexts>
void addPayload(Record& record, const application_data::Block& data) {
    BlockOfTexts block = {};
    if (!project::unpackRecord(block, data.subId, data.payload)) {
        record.problem = "a form of a newer make: " + hex(data.payload, 16);
        return;
    }
    const auto form = std::ranges::find(project::Layout<BlockOfTexts>::forms, data.subId, &project::Form::subId);
    addTexts(record, block, form->texts);
}

// ---- blocks of resource files ----

struct Decoder {
    int32_t type;
    size_t bytes;
    Record (*decode)(const Block&);
};

constexpr Decoder decoders[] = {
    {elmattr::recordResources[0].plainType, elmattr::recordResources[0].bytes, attribute<0>},
    {elmattr::recordResources[0].setType, elmattr::recordResources[0].bytes, attribute<0>},
    {elmattr::recordResources[1].plainType, elmattr::recordResources[1].bytes, attribute<1>},
    {elmattr::recordResources[1].setType, elmattr::recordResources[1].bytes, attribute<1>},
    {elmattr::recordResources[2].plainType, elmattr::recordResources[2].bytes, attribute<2>},
    {elmattr::recordResources[2].setType, elmattr::recordResources[2].bytes, attribute<2>},
    {elmattr::setCountType, sizeof(int32_t), attributeCount},
    {elmattr::setLabelType, elmattr::setLabelBytes, attributeLabel},
    {print::SETUP_TYPE, print::setupSize, printerSetup},
    {print::OLDER_TYPE, print::olderSize, printerSetup},
    {forms::extentType, forms::storedExtentSize, previewSize},
    {project::projectType, sizeof(mclibProsjektData), projectFile},
    {MDL_RSC_TYPE('U', 's', 'F', 'i'), sizeof(UserFileRecord), rememberedFiles},
};

}  // namespace

Record recordOf(const Block& block) {
    const auto decoder = std::ranges::find(decoders, block.type, &Decoder::type);
    if (decoder == std::end(decoders)) return {};
    Record record;
    if (block.bytes.size() >= decoder->bytes)
        record = decoder->decode(block);
    else
        record.title = "a record that is cut short";
    if (block.bytes.size() != decoder->bytes)
        record.problem = std::to_string(decoder->bytes) + " bytes belong to it, and " +
                         std::to_string(block.bytes.size()) + " are there";
    return record;
}

Record applicationData(std::span<const uint8_t> element, bool full) {
    constexpr size_t first = 32;
    const auto data = application_data::readElement(element);
    if (!data) return {"of no application", {}, "the element isn't whole: " + hex(element, 40)};
    const bool isProject = data->applicationId == MCLIB_PROJECT_DATA, isPage = data->applicationId == MCLIB_PAGE_DATA;
    Record record{"application " + std::to_string(data->applicationId) +
                      (isProject ? " (project)"
                       : isPage  ? " (page)"
                                 : "") +
                      ", sub id " + std::to_string(data->subId) + ", " + counted(data->payload.size(), "byte"),
                  {},
                  {}};
    if (isProject)
        addPayload<mclibProsjektData>(record, *data);
    else if (isPage)
        addPayload<mclibSideData>(record, *data);
    else
        record.fields.push_back({"payload", hex(data->payload, full ? data->payload.size() : first), true});
    return record;
}

}  // namespace show
