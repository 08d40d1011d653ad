// How each type of element lays out its bytes, and reading them without trust.
//
// An element is its head (32 bytes, mchost/mdl/element.h), the body told here, then linkages. Everything is
// little-endian and unpadded; points and vectors are three doubles, in UOR. Every body is a multiple of 8 bytes, so
// that linkages behind it are too.
#pragma once

#include <cstring>
#include <iterator>
#include <optional>
#include <span>

#include "mchost/mdl/element.h"
#include "mchost/mdl/text.h"

namespace host {

constexpr size_t headBytes = 32;
static_assert(sizeof(ElementHead) == headBytes && sizeof(MSElementBuffer) == MDL_ELEMENT_BYTES);

// Line (3): its two ends.
struct LineBody {
    Point3d ends[2];
};
static_assert(sizeof(LineBody) == 48);

// Line string (4) and shape (6): this, then `count` points. A shape's last point is its first.
struct VerticesBody {
    uint32_t count, zero;
};
static_assert(sizeof(VerticesBody) == 8);

// Ellipse (15) and, with start and sweep, arc (16): the points center + axis0 cos t + axis90 sin t. The axes are
// conjugate half diameters, which stay so under any affine transform.
struct EllipseBody {
    Point3d center, axis0, axis90;
};
struct ArcBody {
    EllipseBody ellipse;
    double start, sweep;
};
static_assert(sizeof(EllipseBody) == 72 && sizeof(ArcBody) == 88);

// Text (17): this, then `count` 16-bit characters, padded with zeros to 8 bytes.
struct TextBody {
    int32_t font, just, textStyle, styleFields;
    uint32_t flags;
    uint16_t count, zero;
    double slant;
    double spacing;                         // line spacing in text heights
    Point3d origin, widthAxis, heightAxis;  // the place of the justification; a character's width and height as vectors
};
static_assert(sizeof(TextBody) == 112);
constexpr uint32_t maxTextCharacters = MDL_TEXT_CHARACTERS;

// B-spline (27): this, then the poles, poleCount + order knots and, when rational, a weight for each pole.
struct CurveBody {
    int32_t order, poleCount, rational, closed, curveDisplay, polygonDisplay;
};
static_assert(sizeof(CurveBody) == 24);

// Complex shape (14) and text node (7): the number of components.
struct ComplexBody {
    uint32_t count, zero;
};
static_assert(sizeof(ComplexBody) == 8);

// Text node: how its lines are made lies behind the number of components; its own count of characters is 0.
struct TextNodeBody {
    ComplexBody complex;
    TextBody lines;
};
static_assert(sizeof(TextNodeBody) == 120);

// Tag (37): this, then the characters of `text`, which are what it shows: the string itself, or its number as a text.
struct TagBody {
    int32_t valueType, display;  // MDL_TAG_...; display 0: nothing is shown
    int32_t integer, zero;       // the value of a short or long tag
    double real;                 // of a double one
    TextBody text;
};
static_assert(sizeof(TagBody) == 136);

// Dimension (33), compound element (35) and multi-line (36): this, then `count` plain elements that show it, each
// filled up to a multiple of 8 bytes.
struct PartsBody {
    uint32_t count, zero;
};
static_assert(sizeof(PartsBody) == 8);

// Cell header (2). Other programs put the origin back by its place in the element: byte 232 in 3D, byte 176 in 2D.
struct CellBody3d {
    uint32_t is3d, zero;
    double spare[9];
    Point3d low, high;  // range of the components
    Point3d axes[3];    // columns of its matrix
    Point3d origin;
};
struct CellBody2d {
    uint32_t is3d, zero;
    double spare[9];
    double low[2], high[2];
    double axes[2][2];
    double origin[2];
};
static_assert(headBytes + offsetof(CellBody3d, origin) == 232 && headBytes + offsetof(CellBody2d, origin) == 176);

// Primary ids of the host's own linkages.
enum HostLinkage : uint16_t {
    linkageCellName = 0x4801,         // a count of 16-bit characters, then these
    linkageCellDescription = 0x4802,  // the same
    linkageLineStyle = 0x4803,        // LineStyleLinkage
    linkageFillColor = 0x4804,        // FillColorLinkage
};

struct LineStyleLinkage {
    LinkageHeader header;
    uint32_t modifiers;
    double scale, startWidth, endWidth;
    double dashScale, gapScale;  // left out when neither counts
};
static_assert(sizeof(LineStyleLinkage) == 48 && offsetof(LineStyleLinkage, dashScale) == 32);

struct FillColorLinkage {
    LinkageHeader header;
    int32_t color;
};
static_assert(sizeof(FillColorLinkage) == 8);

template <class T>
T loadAt(const MSElementBuffer* element, size_t offset) {
    T value;
    std::memcpy(&value, element->bytes + offset, sizeof value);
    return value;
}
template <class T>
void storeAt(MSElementBuffer* element, size_t offset, const T& value) {
    std::memcpy(element->bytes + offset, &value, sizeof value);
}

// Bytes up to the next multiple of 8.
constexpr size_t filledToWord(size_t bytes) {
    return (bytes + 7) & ~size_t{7};
}

// The head, also of an element that lies at an odd address.
inline ElementHead headOf(const MSElementBuffer* element) {
    return loadAt<ElementHead>(element, 0);
}

// Points in an element, wherever they lie.
class PointsView {
  public:
    PointsView() = default;
    PointsView(const uint8_t* first, uint32_t count) : first_(first), count_(count) {}
    uint32_t size() const { return count_; }
    Point3d operator[](uint32_t i) const {
        Point3d p;
        std::memcpy(&p, first_ + i * sizeof p, sizeof p);
        return p;
    }

  private:
    const uint8_t* first_ = nullptr;
    uint32_t count_ = 0;
};

// Whether an arc may have these: from any angle, by at most a full turn either way.
bool isArcSweep(double start, double sweep);

// What the body of an element holds; nothing for another type or a body that the element is too small for.
std::optional<PointsView> verticesOf(const MSElementBuffer* element);  // line, line string, shape
std::optional<ArcBody> arcOf(const MSElementBuffer* element);          // an ellipse is an arc from 0 by 2 pi

struct TextView {
    TextBody body;
    const uint8_t* characters;
};
std::optional<TextView> textOf(const MSElementBuffer* element);

struct TagView {
    TagBody body;
    const uint8_t* characters;
    TextView text() const { return {body.text, characters}; }
};
std::optional<TagView> tagOf(const MSElementBuffer* element);
// The text that an element shows: a text's own, and that of a tag which isn't hidden.
std::optional<TextView> shownTextOf(const MSElementBuffer* element);

// The elements that a dimension, a compound element or a multi-line holds. None of them holds others.
class PartsView {
  public:
    PartsView(const uint8_t* first, uint32_t count) : first_(first), count_(count) {}
    class Iterator {
      public:
        using difference_type = std::ptrdiff_t;
        using value_type = const MSElementBuffer*;
        Iterator() = default;
        Iterator(const uint8_t* at, uint32_t left) : at_(at), left_(left) {}
        const MSElementBuffer* operator*() const { return reinterpret_cast<const MSElementBuffer*>(at_); }
        Iterator& operator++() {
            at_ += filledToWord(size_t{headOf(**this).size} * 2);
            --left_;
            return *this;
        }
        Iterator operator++(int) {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(std::default_sentinel_t) const { return left_ == 0; }

      private:
        const uint8_t* at_ = nullptr;
        uint32_t left_ = 0;
    };
    Iterator begin() const { return {first_, count_}; }
    std::default_sentinel_t end() const { return {}; }

  private:
    const uint8_t* first_;
    uint32_t count_;
};
std::optional<PartsView> partsOf(const MSElementBuffer* element);
// Calls visit(const MSElementBuffer*) with what a compound holds, as it holds it, or with an element that is none.
template <class Visit>
void forEachPart(const MSElementBuffer* element, Visit visit) {
    const auto parts = partsOf(element);
    if (!parts) return visit(element);
    for (const MSElementBuffer* part : *parts) visit(part);
}

std::optional<TextBody> textNodeOf(const MSElementBuffer* element);

struct CurveView {
    CurveBody body;
    PointsView poles;
    const uint8_t *knots, *weights;  // weights null when not rational
};
std::optional<CurveView> curveOf(const MSElementBuffer* element);

// Where points and vectors of the body lie, for whatever treats all types alike. Empty for a type without any.
struct PointRun {
    size_t offset;
    uint32_t count;
    bool vectors;
};
struct PointRuns {
    PointRun runs[3];
    uint32_t count = 0;
};
PointRuns pointRunsOf(const MSElementBuffer* element);

// Those that hold the elements that show them.
constexpr bool isCompoundType(int type) {
    return type == MDL_DIMENSION || type == MDL_COMPOUND || type == MDL_MULTILINE;
}

// Those that have geometry of their own and no components: what a compound may hold.
constexpr bool isPlainType(int type) {
    return type == MDL_LINE || type == MDL_LINE_STRING || type == MDL_SHAPE || type == MDL_ELLIPSE || type == MDL_ARC ||
           type == MDL_TEXT || type == MDL_BSPLINE;
}

// Those that have an inside, which can be filled.
constexpr bool isClosedType(int type) {
    return type == MDL_SHAPE || type == MDL_ELLIPSE || type == MDL_COMPLEX_SHAPE;
}

constexpr bool isHeaderType(int type) {
    return type == MDL_CELL_HEADER || type == MDL_TEXT_NODE || type == MDL_COMPLEX_SHAPE;
}

}  // namespace host
