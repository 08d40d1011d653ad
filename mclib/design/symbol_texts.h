// The texts of a symbol: those that stand in its boxes, how well they fit, and how they are taken out of the drawing.
#pragma once

#include "mclib/design/base_element.h"

namespace mc::design {

// For one search, in the current transform of master units. Its room for elements is made for the first symbol that is
// looked at.
class SymbolTexts {
  public:
    // `spec` must outlive this.
    explicit SymbolTexts(const SearchElementSpec& spec);

    // Whether each text of the symbol stands in one of the boxes about the base element.
    bool find(const BaseElement& base);

    // ---- of the symbol that was found last: one of each for each text ----
    MSElementBuffer* texts() const { return texts_.get(); }
    int32_t* errors() const { return errors_.get(); }
    bool anyErrors() const;
    // Takes the texts out of the drawing. What can't be taken is told on the console, and stays.
    void deleteFromDrawing() const;

  private:
    // Where a text was found.
    struct Place {
        FilePos position;   // of the element
        int32_t component;  // in it; 0 for an element without components
        bool isFound;
    };
    struct Candidate {
        SymbolTexts& texts;
        FilePos position;
        Point3d low, high;      // of the region's box
        int32_t component = 0;  // that is looked at next
    };
    struct Removal {
        const SymbolTexts& texts;
        FilePos position;
        int32_t component = 0;
    };

    bool begin();
    bool lookIn(const Point3d& low, const Point3d& high);
    static int lookAtComponent(MSElementBuffer* element, void* candidate, int32_t order, int32_t offset, ElementDescr*);
    void check(const MSElementBuffer& text, const Candidate& candidate);
    int errorsAgainst(const SearchTextSpec& wanted, const MSElementBuffer& text) const;
    static int removeComponent(MSElementBuffer*, void* removal, ModelRef*, ElementDescr*, ElementDescr**);
    bool isTakenWhole(FilePos position, int32_t component) const;
    bool deleteElement(FilePos position) const;

    const SearchElementSpec& spec_;
    ModelRef* const model_;
    const mdl::Scan scan_;
    ElementBuffer texts_;
    ElementBuffer tagText_;
    mdl::HostPtr<int32_t> errors_;
    mdl::HostPtr<Place> places_;
    int32_t foundCount_ = 0;
};

}  // namespace mc::design
