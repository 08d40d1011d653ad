#include "mchost/session/memory.h"

#include <dlfcn.h>
#include <malloc.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string>

#include "mchost/base/guard.h"
#include "mchost/mdl/system.h"

namespace host {

namespace {

std::atomic<size_t> blocksInUse{0};
std::atomic<size_t> bytesInUse{0};
std::atomic<int> callsUntilFailure{0};  // 0: none fails; 1: every one does

// A size that no block can have; the system's allocator would answer the same.
bool isImpossible(size_t size) {
    return size > PTRDIFF_MAX;
}

bool failsNow() {
    int left = callsUntilFailure.load(std::memory_order_relaxed);
    if (left == 0) return false;
    if (left > 1) callsUntilFailure.store(left - 1, std::memory_order_relaxed);
    return left == 1;
}

// The place in the code that a return address lies in: function, file and offset, as addr2line takes them.
std::string placeOf(void* caller) {
    Dl_info info{};
    if (dladdr(caller, &info) == 0 || !info.dli_fname) return "an unknown place";
    char place[512];
    std::snprintf(place, sizeof place, "%s (%s+0x%zx)", !info.dli_sname ? "?" : info.dli_sname, info.dli_fname,
                  static_cast<size_t>(static_cast<char*>(caller) - static_cast<char*>(info.dli_fbase)));
    return place;
}

// Who took which block, while MCHOST_TRACE_MEMORY is set. Stays to the end of the process, since blocks are freed until
// then. The place is kept as text: its module may be gone when the report is made.
class Trace {
  public:
    static Trace* active() {
        static Trace* const trace = !std::getenv("MCHOST_TRACE_MEMORY") ? nullptr : start();
        return trace;
    }
    void add(void* block, void* caller) {
        const std::lock_guard lock(mutex_);
        places_[block] = placeOf(caller);
    }
    void remove(void* block) {
        const std::lock_guard lock(mutex_);
        places_.erase(block);
    }

  private:
    static Trace* start() {
        static Trace* const trace = new Trace;
        std::atexit([] { trace->report(); });
        return trace;
    }
    void report() {
        const std::lock_guard lock(mutex_);
        for (const auto& [block, place] : places_) {
            std::fprintf(stderr, "not freed: %zu bytes taken by %s\n", malloc_usable_size(block), place.c_str());
        }
    }
    std::mutex mutex_;
    std::map<void*, std::string> places_;
};

void count(void* block, void* caller) {
    blocksInUse.fetch_add(1, std::memory_order_relaxed);
    bytesInUse.fetch_add(malloc_usable_size(block), std::memory_order_relaxed);
    if (Trace* trace = Trace::active()) trace->add(block, caller);
}

void uncount(void* block) {
    blocksInUse.fetch_sub(1, std::memory_order_relaxed);
    bytesInUse.fetch_sub(malloc_usable_size(block), std::memory_order_relaxed);
    if (Trace* trace = Trace::active()) trace->remove(block);
}

}  // namespace

MemoryUse memoryUse() {
    return {blocksInUse.load(), bytesInUse.load()};
}

void failMemoryFrom(int call) {
    callsUntilFailure.store(call);
}

}  // namespace host

using namespace host;

void* dlmSystem_mdlMalloc(size_t size) noexcept {
    void* block = failsNow() || isImpossible(size) ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block)
        count(block, __builtin_return_address(0));
    else
        noteMemoryRanOut();
    return block;
}

void* dlmSystem_mdlRealloc(void* block, size_t size) noexcept {
    if (failsNow() || isImpossible(size)) {
        noteMemoryRanOut();
        return nullptr;
    }
    const size_t before = !block ? 0 : malloc_usable_size(block);
    if (block && Trace::active()) Trace::active()->remove(block);
    void* grown = std::realloc(block, size == 0 ? 1 : size);
    void* const caller = __builtin_return_address(0);
    if (!grown) {
        if (block && Trace::active()) Trace::active()->add(block, caller);
        noteMemoryRanOut();
        return nullptr;
    }
    if (block) {
        blocksInUse.fetch_sub(1, std::memory_order_relaxed);
        bytesInUse.fetch_sub(before, std::memory_order_relaxed);
    }
    count(grown, caller);
    return grown;
}

void dlmSystem_mdlFree(void* block) noexcept {
    if (!block) return;
    uncount(block);
    std::free(block);
}
