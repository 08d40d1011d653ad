// Design files and cell libraries. The first byte tells the kind of file and what the others are: the whole file;
// places and bytes in a sound file; or changes of its rows, whose digests are then made right again. A file is refused
// with one line and stays as it is; what can be read can be walked, changed, stored and read again.
#include <cstring>

#include "database.h"
#include "mchost/element/clip.h"
#include "mchost/mdl/cell.h"
#include "mchost/mdl/compound.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/region.h"
#include "mchost/mdl/scan.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/tag.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/undo.h"
#include "mchost/model/cell_library.h"
#include "mchost/space/vector.h"
#include "mclib/project/store.h"
#include "session.h"
#include "tests/support/model_digests.h"

namespace {

// ---- sound files ----

using Elements = std::vector<MSElementBuffer>;

Elements oneOfEachType() {
    static MSElementBuffer e;
    Elements all;
    const Point3d points[] = {{0, 0, 0}, {1e5, 2e5, 0}, {3e5, 0, 0}, {0, 0, 0}};
    const TextSize size = {0, 5000, 5000, 0};
    const auto add = [&](int status) {
        require(status == MDL_SUCCESS);
        all.push_back(e);
    };
    add(mdlLine_create(&e, nullptr, points));
    if (mdlElement_setLineStyle(&e, "fence", nullptr) == MDL_SUCCESS) all.push_back(e);  // where there is one
    add(mdlLineString_create(&e, nullptr, points, 3));
    add(mdlShape_create(&e, nullptr, points, 4, 1));
    add(mdlArc_create(&e, nullptr, points, 5e4, 3e4, nullptr, 0.5, 2));
    add(mdlEllipse_create(&e, nullptr, points, 5e4, 3e4, nullptr, 0));
    add(mdlText_createWide(&e, nullptr, L"Text \x20AC", points, nullptr, &size, nullptr, 0));
    MdlTagValue value{};
    value.type = MDL_TAG_LONG;
    add(mdlTag_create(&e, nullptr, &value, points, nullptr, &size, nullptr, 1));
    const double offsets[] = {0, 1e3};
    add(mdlMultiline_create(&e, nullptr, points, 3, offsets, 2));
    add(mdlDimension_create(&e, nullptr, points, points + 2, L"1", &size));
    BsplineCurve curve{};
    const Point3d curved[] = {{0, 0, 0}, {1e4, 2e4, 0}, {3e4, 1e4, 0}, {5e4, 4e4, 0}, {6e4, 0, 0}};
    curve.order = 4;
    curve.numPoles = 4;
    if (mdlBspline_leastSquaresToCurve(&curve, nullptr, nullptr, curved, nullptr, 5) == MDL_SUCCESS)
        add(mdlBspline_createCurve(&e, nullptr, &curve));
    mdlBspline_freeCurve(&curve);
    return all;
}

ElementDescr* cellOf(const wchar_t* name, const Elements& elements) {
    static MSElementBuffer header;
    ElementDescr* cell = nullptr;
    mdlCell_create(&header, name, nullptr, 0);
    mdlCell_setDescription(&header, L"Description");
    mdlElmdscr_new(&cell, nullptr, &header);
    for (const MSElementBuffer& element : elements) mdlElmdscr_appendElement(cell, &element);
    mdlCell_setRange(cell, nullptr);
    return cell;
}

std::string designSeed() {
    const std::string path = folder().pathOf("seed.mcd");
    require(mdlSystem_createDesignFile(path.c_str(), 0) == MDL_SUCCESS);
    require(mdlSystem_newDesignFile(path.c_str(), 0) == MDL_SUCCESS);
    LevelId level = 0;
    mdlLevel_create(&level, nullptr, L"Kerb");
    mdlLevelTable_rewrite(nullptr);
    const double dashes[] = {2, 1};
    mdlLineStyle_define(nullptr, nullptr, "fence", dashes, 2);
    const TextSize size = {0, 5000, 5000, 0};
    mdlTextStyle_define(nullptr, L"Large", nullptr, &size);
    const Elements elements = oneOfEachType();
    for (const MSElementBuffer& element : elements) require(mdlElement_add(&element) != 0);
    ElementDescr* cell = cellOf(L"cell", elements);
    mdlElmdscr_add(cell);
    mdlElmdscr_freeAll(&cell);
    const Point3d clip[] = {{0, 0, 0}, {1e5, 0, 0}, {1e5, 1e5, 0}};
    require(mdlRefFile_attach(nullptr, nullptr, path.c_str(), nullptr, clip, 3) == MDL_SUCCESS);
    ModelRef* second = nullptr;
    require(mdlRefFile_attach(&second, nullptr, path.c_str(), nullptr, nullptr, 0) == MDL_SUCCESS);
    require(mdlRefFile_setLevelOn(second, 1, level, 0) == MDL_SUCCESS);
    mclibProsjektData project{};
    std::strcpy(project.pron, "4711");
    mclibProject_writeProjectInfoToDesignFile(&project);
    mdlElement_undoableDelete(nullptr, 2, 0);
    require(mdlSystem_closeDesignFile() == MDL_SUCCESS);
    return folder().read("seed.mcd");
}

std::string librarySeed() {
    const std::string path = folder().pathOf("seed.cel");
    host::CellLibraryDraft draft(10000);
    for (const wchar_t* name : {L"one", L"two"}) {
        ElementDescr* cell = cellOf(name, oneOfEachType());
        require(draft.add(cell));
        mdlElmdscr_freeAll(&cell);
    }
    draft.write(path);
    return folder().read("seed.cel");
}

// ---- changed files ----

// ---- walking ----

// What can be asked of an element of any type.
int look(MSElementBuffer* element, void*, int32_t, int32_t, ElementDescr*) {
    static Point3d points[MDL_MAX_POINTS];
    static char text[4096];
    static wchar_t wide[4096];
    Point3d p, q;
    RotMatrix rotation;
    double a, b, c, d;
    int32_t count = 0, i = 0, j = 0;
    uint32_t color = 0, weight = 0;
    mdlLinear_extract(points, &count, element, MDL_MAX_POINTS);
    mdlArc_extract(&p, &a, &b, &rotation, &c, &d, element);
    TextSize size;
    TextParams params;
    mdlText_extract(&p, &q, &a, &b, text, &rotation, &params, &i, &c, &d, element);
    mdlText_extractWide(wide, &p, &rotation, &size, &params, element);
    mdlText_extractShape(points, &p, element, 0, 0);
    MdlTagValue value;
    mdlTag_extract(&p, &size, &rotation, &i, &params, &value, element, nullptr);
    ElementDescr* parts = nullptr;
    if (mdlElmdscr_fromCompoundElement(&parts, element, nullptr) == MDL_SUCCESS) mdlElmdscr_freeAll(&parts);
    mdlCell_extract(&p, &rotation, element);
    mdlCell_extractName(wide, 512, element);
    mdlCell_extractDescription(wide, 512, element);
    mdlElement_getSymbology(&color, &weight, &i, element);
    mdlElement_getEffectiveSymbology(&i, &j, &count, &a, &b, element, nullptr);
    LineStyleParams style;
    mdlElement_getLineStyle(&i, &style, element);
    mdlElement_getFillColor(&color, element);
    BsplineCurve curve{};
    if (mdlBspline_extractCurve(&curve, element) == MDL_SUCCESS) mdlBspline_evaluateCurvePoint(&p, &curve, 0.5);
    mdlBspline_freeCurve(&curve);
    static MSElementBuffer copy;
    mdlElement_stripAttributes(&copy, element);
    return 0;
}

void walk(ElementDescr* ed) {
    constexpr int32_t allElements = 11;
    static const host::ClipArea area(host::Ring{{-1e5, -1e5}, {2e5, 0}, {1e5, 1e5}, {5e4, 2e4}});
    ElementDescr* cut = nullptr;
    clipDescriptor(&cut, ed, area, host::identityTransform);
    mdlElmdscr_freeAll(&cut);
    mdlElmdscr_operation(ed, look, nullptr, allElements);
    Point3d low, high, *points = nullptr;
    int32_t count = 0;
    if (mdlElmdscr_computeRange(&low, &high, ed, nullptr) == MDL_SUCCESS &&
        mdlElmdscr_stroke(&points, &count, ed, std::max({high.x - low.x, high.y - low.y, 1.0}) / 50) == MDL_SUCCESS)
        dlmSystem_mdlFree(points);
    const Transform turned{{{0, -2, 0, 10}, {2, 0, 0, 20}, {0, 0, 2, 0}}};
    mdlElmdscr_transform(ed, &turned);
    mdlElmdscr_validate(ed, nullptr);
    mdlElmdscr_freeAll(&ed);
}

std::vector<FilePos> positions(ModelRef* model) {
    std::vector<FilePos> all(256);
    ScanCriteria* scan = mdlScanCriteria_create();
    int32_t words = 2 * static_cast<int32_t>(all.size());
    if (mdlScanCriteria_setModel(scan, model) == MDL_SUCCESS) mdlScanCriteria_scan(scan, all.data(), &words, nullptr);
    mdlScanCriteria_free(&scan);
    all.resize(static_cast<size_t>(words) / 2);
    return all;
}

void lookAtTables(ModelRef* model) {
    wchar_t level[512];
    char style[64];
    double pattern[32];
    int32_t code = 0, dashes = 0;
    for (LevelId id = 0; id < 8; ++id) {
        mdlLevel_getName(level, 512, model, id);
        mdlLevel_getCode(&code, model, id);
    }
    for (int32_t number = -8; number < 0; ++number) {
        if (mdlLineStyle_nameFromNumber(style, number, model) != MDL_SUCCESS) continue;
        require(mdlLineStyle_getPattern(pattern, &dashes, number, model) == MDL_SUCCESS && dashes <= 32);
    }
    mdlTextStyle_free(mdlTextStyle_getByName(L"Large", model));
}

void walkModel(ModelRef* model) {
    lookAtTables(model);
    Range3d range;
    mdlModelRef_getRange(model, &range);
    ModelRefIterator* places = nullptr;
    require(mdlModelRefIterator_create(&places, model, MDL_ITERATE_REFERENCES, 0) == MDL_SUCCESS);
    while (mdlModelRefIterator_getNext(places)) continue;
    mdlModelRefIterator_free(&places);
    for (const FilePos position : positions(model)) {
        ElementDescr* ed = nullptr;
        if (mdlElmdscr_readToMaster(&ed, position, model) != 0) walk(ed);
    }
}

// Changes what is there and adds to it.
void change(const Elements& elements) {
    const std::vector<FilePos> there = positions(nullptr);
    for (size_t i = 0; i < there.size() && i < 4; ++i) {
        ElementDescr* ed = nullptr;
        if (i % 2 == 0) {
            mdlElement_undoableDelete(nullptr, there[i], 0);
        } else if (mdlElmdscr_read(&ed, there[i], nullptr) != 0) {
            mdlElmdscr_rewrite(ed, there[i]);
            mdlElmdscr_freeAll(&ed);
        }
    }
    mdlUndo_lastDelete();
    require(mdlUndo_undo() != MDL_ERROR && mdlUndo_redo() != MDL_ERROR);
    LevelId level = 0;
    mdlLevel_create(&level, nullptr, L"Level 7");
    mdlLevel_create(&level, nullptr, L"Another");
    mdlLevelTable_rewrite(nullptr);
    const double dashes[] = {1, 2, 3, 4};
    mdlLineStyle_define(nullptr, nullptr, "another", dashes, 4);
    for (const MSElementBuffer& element : elements) mdlElement_add(&element);
    mclibProsjektData project{};
    mclibProject_readProjectInfoFromDesignFile(&project);
    mclibProject_writeProjectInfoToDesignFile(&project);
}

void readDesign(const std::string& path, const std::string& bytes) {
    FuzzFrontEnd& front = fuzzSession().front;
    front.messages.clear();
    ModelRef* model = nullptr;
    const bool good = mdlWorkDgn_openFile(&model, path.c_str()) == MDL_SUCCESS;
    if (!good) {
        front.requireRefusal(path);
        require(folder().read("a.mcd") == bytes);
        front.messages.clear();
        require(mdlSystem_newDesignFile(path.c_str(), 0) != MDL_SUCCESS);
        return front.requireRefusal(path);
    }
    require(front.messages.empty());
    walkModel(model);
    mdlWorkDgn_closeFile(model);
    static const Elements added = oneOfEachType();
    require(mdlSystem_newDesignFile(path.c_str(), 0) == MDL_SUCCESS);
    change(added);
    const uint32_t count = mdlModelRef_getElementCount(nullptr);
    require(mdlSystem_closeDesignFile() == MDL_SUCCESS);
    require(mdlSystem_newDesignFile(path.c_str(), 0) == MDL_SUCCESS);
    require(mdlModelRef_getElementCount(nullptr) == count);
    walkModel(nullptr);
    require(mdlSystem_closeDesignFile() == MDL_SUCCESS);
}

void readLibrary(const std::string& path, const std::string& bytes) {
    FuzzFrontEnd& front = fuzzSession().front;
    front.messages.clear();
    if (mdlCell_attachLibraryEx(nullptr, path.c_str(), 0, 1, 2) != MDL_SUCCESS) {
        front.requireRefusal(path);
        return require(folder().read("a.cel") == bytes);
    }
    MdlCellLibrary* library = nullptr;
    require(mdlCell_getLibraryObject(&library, path.c_str()) == MDL_SUCCESS);
    MdlModelIterator* cells = mdlModelIterator_create(library);
    wchar_t text[512];
    while (const MdlModelItem* cell = mdlModelIterator_getNext(cells)) {
        mdlModelItem_getDescription(text, 512, cell);
        require(mdlModelItem_getName(text, 512, cell) == MDL_SUCCESS);
        ElementDescr* ed = nullptr;
        if (mdlCell_getElmDscr(&ed, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0, text,
                               nullptr) == MDL_SUCCESS)
            walk(ed);
    }
    mdlModelIterator_free(cells);
    mdlCell_detachLibrary();
}

struct Kind {
    const char* name;
    std::string (*seed)();
    void (*read)(const std::string& path, const std::string& bytes);
};
constexpr Kind kinds[] = {{"a.mcd", designSeed, readDesign}, {"a.cel", librarySeed, readLibrary}};

const std::string& seedOf(size_t kind) {
    static const std::string seeds[] = {kinds[0].seed(), kinds[1].seed()};
    return seeds[kind];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const host::ApplicationScope scope(fuzzSession().application);
    const Kind& kind = kinds[data[0] % 2];
    const std::string path = folder().pathOf(kind.name);
    const int what = data[0] / 2 % 3;
    Bytes input(data + 1, size - 1);
    std::string file = what == 0 ? std::string(reinterpret_cast<const char*>(data + 1), size - 1) : seedOf(data[0] % 2);
    if (what == 1) patch(file, input);
    folder().removeDatabase(path);
    folder().write(kind.name, file);
    if (what == 2) {
        {
            FuzzDatabase database(path);
            while (!input.empty()) database.change(input);
            database.run("UPDATE model SET next_position=next_position%100000");  // each of them takes memory
            setModelDigests(database.handle());
        }
        file = folder().read(kind.name);
    }
    kind.read(path, file);
    return 0;
}
