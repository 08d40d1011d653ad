// A chain of elements in the making.
#pragma once

#include <new>
#include <utility>

#include "mchost/mdl/owned.hpp"

namespace host {

// Unlike mdlElmdscr_appendDscr it goes on behind a header that it begins with. Throws when memory is out.
class NewChain {
  public:
    explicit NewChain(ModelRef* model) : model_(model) {}

    void add(const MSElementBuffer* element) {
        mdl::Descr made;
        if (mdlElmdscr_new(made.out(), model_, element) != MDL_SUCCESS) throw std::bad_alloc();
        join(made);
    }
    // Without what follows it.
    void addCopy(const ElementDescr* node) {
        ElementDescr alone = *node;
        alone.next = nullptr;
        mdl::Descr copy;
        if (mdlElmdscr_duplicate(copy.out(), &alone) != MDL_SUCCESS) throw std::bad_alloc();
        join(copy);
    }
    void add(NewChain& behind) { join(behind.first_); }
    void give(ElementDescr** outPP) { *outPP = std::exchange(*first_.out(), nullptr); }
    explicit operator bool() const { return static_cast<bool>(first_); }

  private:
    void join(mdl::Descr& chain) {
        ElementDescr* const part = std::exchange(*chain.out(), nullptr);
        if (!part) return;
        if (first_) {
            last_->next = part;
            part->previous = last_;
        } else {
            *first_.out() = part;
        }
        for (last_ = part; last_->next;) last_ = last_->next;
    }

    ModelRef* model_;
    mdl::Descr first_;
    ElementDescr* last_ = nullptr;
};

}  // namespace host
