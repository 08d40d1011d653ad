#include "attributes.h"

#include <algorithm>
#include <array>

#include <mchost/mdl/files.h>
#include <mchost/mdl/resource.h>
#include <mclib/app/tell.hpp>

namespace alignment {

using mcapp::fail;

namespace {

enum Group { drawingGroup = 1, ownGroup = 2 };
constexpr const char* noMemory = "no memory for the attribute";
constexpr size_t longestLabel = 79;

// As resource files are found: a name without an extension also stands for the one with ".rsc".
bool isThere(const std::string& file) {
    return !file.empty() && mdlFile_find(nullptr, file.c_str(), nullptr, ".rsc") == MDL_SUCCESS;
}

// A resource file that is closed when it goes. The library tells why it can't be opened.
class ResourceFile {
  public:
    ResourceFile(const std::string& name, int mode)
        : open_(mclibResource_openFile(&file_, name.c_str(), mode) == MCLIB_SUCCESS) {}
    ~ResourceFile() {
        if (open_) mclibResource_closeFile(&file_);
    }
    ResourceFile(const ResourceFile&) = delete;
    ResourceFile& operator=(const ResourceFile&) = delete;
    explicit operator bool() const { return open_; }
    McHandle* get() { return &file_; }

  private:
    McHandle file_ = {};
    bool open_;
};

bool add(const ToldAttribute& a, Group group) {
    return mclibElmAttr_addAttribute(a.id, a.label.c_str(), group, a.kind, 0, nullptr, 0, &a.data) == MCLIB_SUCCESS;
}

bool replaceOwn(const ToldAttribute& attribute) {
    mclibElmAttr_deleteAttribute(attribute.id, 0);  // where it is there
    return add(attribute, ownGroup);
}

// As the table cuts it.
std::string labelOf(int id) {
    char label[longestLabel + 1] = "";
    mclibElmAttr_getLabelFromId(id, label);
    return label;
}

bool isIn(const std::vector<ToldAttribute>& attributes, int id) {
    return std::ranges::find(attributes, id, &ToldAttribute::id) != attributes.end();
}

std::string alreadyTold(int id) {
    return "there is an attribute " + std::to_string(id) + " already";
}

// Whether the file has a look for that number, of any age.
bool hasLook(ResourceFile& file, int id) {
    constexpr auto types = std::array{MDL_RSC_TYPE('M', 'c', 'A', '3'), MDL_RSC_TYPE('M', 'c', 'A', '2'),
                                      MDL_RSC_TYPE('M', 'c', 'A', 's')};
    char start;
    return std::ranges::any_of(
        types, [&](int32_t type) { return mclibResource_load(file.get(), type, id, &start, 1) == MCLIB_SUCCESS; });
}

}  // namespace

bool Attributes::begin(const std::string& ownFile) {
    ownFile_ = ownFile;
    mclibElmAttr_setGroupeNames(2, "Alignment", drawingGroup, 0, "Own", ownGroup, ATTR_GROUP_EDITABLE);
    return fillOwn();
}

bool Attributes::fillOwn() {
    mclibElmAttr_freeAllAttribute();
    if (isThere(ownFile_) && mclibElmAttr_readResourceExtended(ownFile_.c_str()) != MCLIB_SUCCESS)
        return fail(ownFile_ +
                    ": the file holds no list of own attributes, or not all of it; give another one with --own");
    return std::ranges::all_of(own_, replaceOwn) || fail(noMemory);
}

bool Attributes::fillDrawing() {
    mclibElmAttr_freeAllAttribute();
    return addTold();
}

bool Attributes::addTold() const {
    const auto added = [](const ToldAttribute& a) { return alignment::add(a, drawingGroup); };
    return std::ranges::all_of(told_, added) || fail(noMemory);
}

// ---- the input ----

std::string Attributes::add(const ToldAttribute& attribute) {
    if (isIn(told_, attribute.id) || isIn(own_, attribute.id)) return alreadyTold(attribute.id);
    if (isKnown(attribute.id)) {
        return ownFile_ + " has an attribute " + std::to_string(attribute.id) + ", \"" + labelOf(attribute.id) +
               "\"; use another number";
    }
    told_.push_back(attribute);
    return alignment::add(attribute, drawingGroup) ? "" : noMemory;
}

std::string Attributes::addOwn(const ToldAttribute& attribute) {
    if (isIn(told_, attribute.id) || isIn(own_, attribute.id)) return alreadyTold(attribute.id);
    const std::string kept = labelOf(attribute.id);
    if (isKnown(attribute.id) && kept != attribute.label.substr(0, longestLabel)) {
        return "attribute " + std::to_string(attribute.id) + " of " + ownFile_ + " is \"" + kept +
               "\"; use another number, or that label to change it";
    }
    own_.push_back(attribute);
    return replaceOwn(attribute) ? "" : noMemory;
}

// ---- files ----

bool Attributes::canKeep(const std::string& looksFile, bool overwrite) const {
    if (!ownFile_.empty() && !isThere(ownFile_) && own_.empty())
        return fail(ownFile_ + ": there is no such file, and the input has no OWN line to be kept in it");
    if (!own_.empty() && isThere(ownFile_) && !ResourceFile(ownFile_, MDL_RSC_WRITE)) return false;
    if (!isThere(looksFile)) return true;
    if (!overwrite) {
        return fail(looksFile +
                    ": the file is there already; give --overwrite to change the looks in it, or another name");
    }
    return static_cast<bool>(ResourceFile(looksFile, MDL_RSC_WRITE));
}

bool Attributes::readLooks(const std::string& file) {
    {
        ResourceFile looks(file, MDL_RSC_READ);
        if (!looks) return false;
        if (std::ranges::none_of(told_, [&](const ToldAttribute& a) { return hasLook(looks, a.id); }))
            return fail(file + ": the file has no look for any attribute of the input; give another one");
        if (!fillDrawing()) return false;
        mclibElmAttr_readResourceByHandle(looks.get());
    }
    for (ToldAttribute& a : told_) mclibElmAttr_extractData(a.id, &a.data);
    return fillOwn() && addTold();
}

bool Attributes::saveLooks(const std::string& file) {
    ResourceFile looks(file, MDL_RSC_WRITE);
    if (!looks || !fillDrawing()) return false;
    if (mclibElmAttr_writeResourceByHandle(looks.get()) != MCLIB_SUCCESS)
        return fail(file + ": not all looks could be kept in the file");
    toolSubsystem_printf("alignment: kept the looks of %zu attributes in %s\n", told_.size(), file.c_str());
    return true;
}

bool Attributes::saveOwn() {
    if (ownFile_.empty() || own_.empty()) return true;
    if (!fillOwn()) return false;
    if (mclibElmAttr_writeResourceExtended(ownFile_.c_str()) != MCLIB_SUCCESS)
        return fail(ownFile_ + ": not all own attributes could be kept in the file");
    for (const ToldAttribute& a : own_)
        toolSubsystem_printf("alignment: kept attribute %d, %s, in %s\n", a.id, a.label.c_str(), ownFile_.c_str());
    return true;
}

}  // namespace alignment
