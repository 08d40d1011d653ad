// Owners of what the host's calls hand out: each lets go of what it holds when its scope ends, so that no way out of a
// function leaves a descriptor, a file, a scan or a transform behind. C++20, without exceptions; the C headers beside
// this one stand on their own.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <span>

#include "elmdscr.h"
#include "lists.h"
#include "resource.h"
#include "scan.h"
#include "system.h"
#include "transform.h"

namespace mdl {

// ---- blocks and lists ----

struct FreeHostMemory {
    void operator()(void* block) const { dlmSystem_mdlFree(block); }
};
// A block of the host's memory: texts of mdlSystem_getExpandedCfgVar, points of mdlElement_stroke.
template <class T>
using HostPtr = std::unique_ptr<T, FreeHostMemory>;

struct FreeStringList {
    void operator()(StringList* list) const { mdlStringList_destroy(list); }
};
using StringListPtr = std::unique_ptr<StringList, FreeStringList>;

// ---- descriptors ----

struct FreeDescr {
    void operator()(ElementDescr* ed) const { mdlElmdscr_freeAll(&ed); }
};
using DescrPtr = std::unique_ptr<ElementDescr, FreeDescr>;

// The element at a position with its components; null when it can't be read.
inline DescrPtr readDescr(FilePos position, ModelRef* model) {
    ElementDescr* ed = nullptr;
    mdlElmdscr_read(&ed, position, model);
    return DescrPtr(ed);
}

// For a call that makes a descriptor, or puts another in its place, through an ElementDescr**: `f(descr.out())`.
class Descr {
  public:
    Descr() = default;
    ~Descr() { mdlElmdscr_freeAll(&descr_); }
    Descr(const Descr&) = delete;
    Descr& operator=(const Descr&) = delete;

    ElementDescr** out() { return &descr_; }
    ElementDescr* get() const { return descr_; }
    explicit operator bool() const { return descr_; }

  private:
    ElementDescr* descr_ = nullptr;
};

// ---- resource files ----

// An open resource file; `handle` is 0, and the file false, when it couldn't be opened.
class ResourceFile {
  public:
    // As mdlResource_openFile.
    ResourceFile(const char* name, int mode) {
        if (mdlResource_openFile(&handle_, name, mode) != MDL_SUCCESS) handle_ = 0;
    }
    // Takes over a file that is open; 0 for none.
    explicit ResourceFile(RscHandle handle) : handle_(handle) {}
    ~ResourceFile() {
        if (handle_) mdlResource_closeFile(handle_);
    }
    ResourceFile(const ResourceFile&) = delete;
    ResourceFile& operator=(const ResourceFile&) = delete;

    RscHandle handle() const { return handle_; }
    explicit operator bool() const { return handle_ != 0; }

  private:
    RscHandle handle_ = 0;
};

// A block that is loaded from a resource file; false when there is none.
class Resource {
  public:
    Resource(RscHandle file, int32_t type, int32_t id) : block_(mdlResource_load(file, type, id)) {}
    ~Resource() { mdlResource_free(block_); }
    Resource(const Resource&) = delete;
    Resource& operator=(const Resource&) = delete;

    void* get() const { return block_; }
    std::span<const uint8_t> bytes() const {
        return {static_cast<const uint8_t*>(block_), static_cast<size_t>(mdlResource_size(block_))};
    }
    explicit operator bool() const { return block_; }

  private:
    void* block_;
};

// ---- scans ----

// Criteria of a scan, and, with begin and end, the positions that it finds, in order of the file. False when memory is
// out; it finds nothing then.
class Scan {
  public:
    explicit Scan(ModelRef* model = nullptr) : criteria_(mdlScanCriteria_create()) {
        if (criteria_ && model) mdlScanCriteria_setModel(criteria_, model);
    }
    ~Scan() { mdlScanCriteria_free(&criteria_); }
    Scan(const Scan&) = delete;
    Scan& operator=(const Scan&) = delete;

    ScanCriteria* criteria() const { return criteria_; }
    explicit operator bool() const { return criteria_; }

    // Goes over the positions once, a portion of them at a time.
    class Positions {
      public:
        using iterator_concept = std::input_iterator_tag;
        using value_type = FilePos;
        using difference_type = std::ptrdiff_t;

        explicit Positions(ScanCriteria* criteria) : criteria_(criteria), more_(criteria) { nextPortion(); }
        FilePos operator*() const { return portion_[at_]; }
        Positions& operator++() {
            if (++at_ == found_) nextPortion();
            return *this;
        }
        void operator++(int) { ++*this; }
        bool isWhole() const { return whole_; }         // false when the scan broke off: the model was closed meanwhile
        int32_t indexInPortion() const { return at_; }  // from 0; a portion has 64 positions at most
        bool operator==(std::default_sentinel_t) const { return found_ == 0; }

      private:
        static constexpr int32_t wordsOfPosition = sizeof(FilePos) / sizeof(uint16_t);

        void nextPortion() {
            int32_t words = more_ ? static_cast<int32_t>(portion_.size()) * wordsOfPosition : 0;
            const int status = more_ ? mdlScanCriteria_scan(criteria_, portion_.data(), &words, &start_) : MDL_SUCCESS;
            whole_ = status == MDL_SCAN_MORE || status == MDL_SUCCESS;
            more_ = status == MDL_SCAN_MORE && words != 0;
            found_ = whole_ ? words / wordsOfPosition : 0;
            at_ = 0;
        }

        ScanCriteria* criteria_;
        FilePos start_ = 0;
        int32_t at_ = 0, found_ = 0;
        bool more_, whole_ = true;
        std::array<FilePos, 64> portion_;
    };
    Positions begin() const { return Positions(criteria_); }
    std::default_sentinel_t end() const { return {}; }

  private:
    ScanCriteria* criteria_;
};

// ---- the current transform ----

// A current transform of its own for as long as this stands: the one before comes back behind it.
class CurrTransScope {
  public:
    enum class Begin { asBefore, uor, masterUnits };
    explicit CurrTransScope(Begin begin = Begin::asBefore) : open_(mdlCurrTrans_begin() == MDL_SUCCESS) {
        if (open_ && begin == Begin::uor) mdlCurrTrans_identity();
        if (open_ && begin == Begin::masterUnits) mdlCurrTrans_masterUnitsIdentity();
    }
    ~CurrTransScope() {
        if (open_) mdlCurrTrans_end();
    }
    CurrTransScope(const CurrTransScope&) = delete;
    CurrTransScope& operator=(const CurrTransScope&) = delete;

    // False when too many stand already: the transform is then the one before.
    explicit operator bool() const { return open_; }

  private:
    bool open_;
};

}  // namespace mdl
