// What a design file or a cell library holds.
#include <cmath>
#include <map>

#include <mchost/mdl/describe.h>
#include <mchost/mdl/files.h>
#include <mchost/mdl/level.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/reference.h>
#include <mchost/mdl/text.h>
#include <mchost/mdl/owned.hpp>
#include "show.h"

namespace show {

namespace {

constexpr size_t nameCharacters = 512;

std::string typeName(int32_t type) {
    const char* const name = mdlElement_typeName(type);
    return name ? name : "type " + std::to_string(type);
}

class WorkFile {
  public:
    WorkFile(const std::string& name, bool isLibrary) {
        const auto open = isLibrary ? mdlWorkDgn_openCellLibrary : mdlWorkDgn_openFile;
        if (open(&model_, name.c_str()) != MDL_SUCCESS) model_ = nullptr;
    }
    ~WorkFile() {
        if (model_) mdlWorkDgn_closeFile(model_);
    }
    WorkFile(const WorkFile&) = delete;
    WorkFile& operator=(const WorkFile&) = delete;
    ModelRef* model() const { return model_; }

  private:
    ModelRef* model_ = nullptr;
};

// The model that is shown.
struct Subject {
    ModelRef* model;
    bool isLibrary, full;
    double uor;  // in a master unit
};

// ---- parts of lines ----

std::string levelName(const Subject& subject, LevelId id) {
    wchar_t name[nameCharacters];
    const bool known = mdlLevel_getName(name, nameCharacters, subject.model, id) == MDL_SUCCESS;
    return known ? quoted(name) : std::to_string(id);
}

std::string pointText(const Subject& subject, const Point3d& point) {
    constexpr double places = 1e4;
    const auto shown = [&](double value) { return number(std::round(value / subject.uor * places) / places + 0.0); };
    return shown(point.x) + "," + shown(point.y) + (mdlModelRef_is3D(subject.model) ? "," + shown(point.z) : "");
}

std::string rangeText(const Subject& subject, const Point3d& low, const Point3d& high) {
    return pointText(subject, low) + " to " + pointText(subject, high);
}

// The range of one descriptor, its chain left out; "no extent" where there is none.
std::string extentOf(const Subject& subject, const ElementDescr* ed) {
    ElementDescr alone = *ed;
    alone.next = nullptr;
    Point3d low, high;
    const bool has = mdlElmdscr_computeRange(&low, &high, &alone, nullptr) == MDL_SUCCESS;
    return has ? rangeText(subject, low, high) : "no extent";
}

std::span<const uint8_t> bytesOf(const MSElementBuffer* element) {
    return {element->bytes, mdlElement_bytes(element)};
}

// What an element says beside its place: the words of a text, the name of a cell.
std::string contentOf(const MSElementBuffer* element) {
    char words[MDL_TEXT_CHARACTERS + 1];
    if (mdlText_extractString(words, element) == MDL_SUCCESS) return quoted(std::string_view(words));
    wchar_t name[nameCharacters];
    if (mdlCell_extractName(name, nameCharacters, element) == MDL_SUCCESS) return quoted(name);
    return {};
}

size_t componentsOf(const ElementDescr* ed) {
    size_t count = 0;
    for (const ElementDescr* child = ed->firstChild; child; child = child->next) count += 1 + componentsOf(child);
    return count;
}

// ---- elements ----

// How often a type stands on a level: by itself, and within others.
struct Count {
    size_t elements = 0, components = 0;
};

struct Survey {
    const Subject& subject;
    std::map<std::pair<int32_t, LevelId>, Count> counts;
    std::map<LevelId, Count> levels;
    std::vector<Record> applicationData;
};

void tellElement(const Subject& subject, const ElementDescr* ed, int step) {
    const MSElementBuffer* element = ed->element;
    const std::string content = contentOf(element);
    line(step, left(typeName(mdlElement_getType(element)), 16) + "  " + levelName(subject, element->head.level) + "  " +
                   extentOf(subject, ed) + (content.empty() ? "" : "  " + content));
    for (const ElementDescr* child = ed->firstChild; child; child = child->next) tellElement(subject, child, step + 1);
}

void tellCell(const Subject& subject, const ElementDescr* ed) {
    wchar_t description[nameCharacters] = L"";
    mdlCell_extractDescription(description, nameCharacters, ed->element);
    line(2, contentOf(ed->element) + (*description == L'\0' ? "" : "  " + quoted(description)) + "  " +
                extentOf(subject, ed) + ", " + counted(componentsOf(ed), "element"));
    if (!subject.full) return;
    for (const ElementDescr* child = ed->firstChild; child; child = child->next) tellElement(subject, child, 3);
}

int countElement(MSElementBuffer* element, void* userArg, int32_t, int32_t depth, ElementDescr*) {
    Survey& survey = *static_cast<Survey*>(userArg);
    const LevelId level = element->head.level;
    for (Count* count : {&survey.counts[{mdlElement_getType(element), level}], &survey.levels[level]})
        ++(depth == 0 ? count->elements : count->components);
    return 0;
}

int takeElement(ElementDescr* ed, void* userArg, ScanCriteria*) {
    Survey& survey = *static_cast<Survey*>(userArg);
    mdlElmdscr_operation(ed, countElement, &survey, MDL_DESCR_ALL);
    if (mdlElement_getType(ed->element) == MDL_APPLICATION_DATA) {
        Record& record =
            survey.applicationData.emplace_back(applicationData(bytesOf(ed->element), survey.subject.full));
        record.title += ", at position " + std::to_string(ed->filePos);
    }
    if (survey.subject.isLibrary)
        tellCell(survey.subject, ed);
    else if (survey.subject.full)
        tellElement(survey.subject, ed, 2);
    return 0;
}

void scanAll(Survey& survey) {
    const mdl::Scan scan(survey.subject.model);
    ScanCriteria* const criteria = scan.criteria();
    mdlScanCriteria_setReturnType(criteria, MDL_SCAN_DESCRIPTORS, 0, 0);
    mdlScanCriteria_setElmDscrCallback(criteria, takeElement, &survey);
    mdlScanCriteria_scan(criteria, nullptr, nullptr, nullptr);
}

// ---- tables ----

std::string countText(const Count& count) {
    return right(std::to_string(count.elements), 10) + right(std::to_string(count.components), 12) + "  ";
}
constexpr const char* countTitle = "  elements  components  ";

void tellCounts(const Survey& survey) {
    if (survey.counts.empty()) return;
    line(1, "types");
    line(1, countTitle + left("type", 16) + "  level");
    for (const auto& [key, count] : survey.counts)
        line(1, countText(count) + left(typeName(key.first), 16) + "  " + levelName(survey.subject, key.second));
}

void tellLevels(const Survey& survey) {
    ModelRef* const model = survey.subject.model;
    line(1, "levels");
    line(1, std::string(countTitle) + "    id  code  level");
    LevelId id = 0;
    while (mdlLevel_getNextId(&id, model) == MDL_SUCCESS) {
        int32_t code = 0;
        mdlLevel_getCode(&code, model, id);
        const auto found = survey.levels.find(id);
        line(1, countText(found == survey.levels.end() ? Count{} : found->second) + right(std::to_string(id), 6) +
                    right(std::to_string(code), 6) + "  " + levelName(survey.subject, id));
    }
}

void tellLineStyles(const Survey& survey) {
    char name[64];
    for (int32_t style = -1; mdlLineStyle_nameFromNumber(name, style, survey.subject.model) == MDL_SUCCESS; --style) {
        if (style == -1) line(1, "line styles");
        line(2, right(std::to_string(style), 4) + "  " + quoted(std::string_view(name)));
    }
}

std::string referenceText(ModelRef* place) {
    char file[4096] = "";
    int32_t shown = 0, found = 0, corners = 0;
    FilePos element = 0;
    mdlRefFile_getFileName(file, sizeof file, place);
    mdlRefFile_getParameters(&shown, MDL_REFERENCE_SHOWN, place);
    mdlRefFile_getParameters(&found, MDL_REFERENCE_FOUND, place);
    mdlRefFile_getClip(nullptr, &corners, place);
    mdlRefFile_getClipElement(&element, place);
    std::string text = right(std::to_string(mdlRefFile_getNumber(place)), 4) + "  " + quoted(std::string_view(file));
    if (found == 0) text += ", missing";
    if (shown == 0) text += ", off";
    if (corners != 0) text += ", clip of " + std::to_string(corners) + " corners";
    if (element != 0) text += ", clip of the element at position " + std::to_string(element);
    return text;
}

void tellReferences(const Survey& survey) {
    ModelRefIterator* places = nullptr;
    if (mdlModelRefIterator_create(&places, survey.subject.model, MDL_ITERATE_REFERENCES, 1) != MDL_SUCCESS) return;
    ModelRef* place = mdlModelRefIterator_getFirst(places);
    if (place) line(1, "references");
    for (; place; place = mdlModelRefIterator_getNext(places)) line(2, referenceText(place));
    mdlModelRefIterator_free(&places);
}

void tellApplicationData(const Survey& survey) {
    if (!survey.applicationData.empty()) line(1, "application data");
    for (const Record& record : survey.applicationData) {
        line(2, record.title + (record.problem.empty() ? "" : " (" + record.problem + ")"));
        record.tellFields(3, survey.subject.full);
    }
}

void tellHead(const std::string& name, const Subject& subject) {
    const uint32_t count = mdlModelRef_getElementCount(subject.model);
    line(0, name + ": " + (subject.isLibrary ? "cell library, " : "design file, ") +
                (mdlModelRef_is3D(subject.model) ? "3D, " : "2D, ") + number(subject.uor) + " UOR in a master unit, " +
                counted(count, subject.isLibrary ? "cell" : "element"));
    Range3d range;
    if (!subject.isLibrary && mdlModelRef_getRange(subject.model, &range) == MDL_SUCCESS)
        line(1, "extent " + rangeText(subject, range.low, range.high));
}

}  // namespace

bool tellModel(const std::string& name, bool isLibrary, bool full) {
    const WorkFile file(name, isLibrary);
    if (!file.model()) return false;
    const Subject subject = {file.model(), isLibrary, full, mdlModelRef_getUorPerMaster(file.model())};
    tellHead(name, subject);
    Survey survey{subject, {}, {}, {}};
    if (isLibrary || full) line(1, isLibrary ? "cells" : "elements");
    scanAll(survey);
    tellCounts(survey);
    tellLevels(survey);
    tellLineStyles(survey);
    tellReferences(survey);
    tellApplicationData(survey);
    return true;
}

}  // namespace show
