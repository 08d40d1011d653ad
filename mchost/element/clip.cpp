// Clipping of descriptors.
#include "mchost/element/clip.h"

#include <algorithm>
#include <memory>
#include <new>
#include <numbers>

#include "mchost/element/build.h"
#include "mchost/element/descriptor.h"
#include "mchost/element/geometry.h"
#include "mchost/element/region.h"
#include "mchost/mdl/compound.h"

namespace host {
namespace {

constexpr double turn = 2 * std::numbers::pi;

// ---- arcs ----

struct Span {
    double from, to;  // parts of the sweep, from 0 at its start to 1 at its end
};

// An arc as it is seen in the plane of an area.
struct SeenArc {
    Point2 center, axis0, axis90;
    double start, sweep;

    SeenArc(const ArcBody& arc, const Transform& toPlane)
        : center(flat(toPlane, arc.ellipse.center)), start(arc.start), sweep(arc.sweep) {
        const Point3d u = applyToVector(toPlane, arc.ellipse.axis0), v = applyToVector(toPlane, arc.ellipse.axis90);
        axis0 = {u.x, u.y};
        axis90 = {v.x, v.y};
    }
    double angleAt(double part) const { return start + sweep * part; }
    Point2 pointAt(double angle) const {
        const double c = std::cos(angle), s = std::sin(angle);
        return {center.x + axis0.x * c + axis90.x * s, center.y + axis0.y * c + axis90.y * s};
    }
    // How much of the sweep has been gone through at an angle, which may be on it or not.
    double partAt(double angle) const {
        double past = std::fmod(sweep < 0 ? start - angle : angle - start, turn);
        if (past < 0) past += turn;
        return past / std::fabs(sweep);
    }
};

// Where the arc may change sides at an edge.
void addCrossings(std::vector<double>& at, const SeenArc& arc, const ClipArea::Edge& edge) {
    constexpr double slack = 1e-9;
    const Point2 along = edge.b - edge.a;
    const double a = cross(along, arc.axis0), b = cross(along, arc.axis90), reach = std::hypot(a, b);
    const double off = cross(along, edge.a - arc.center);
    if (!(reach > 0) || std::fabs(off) > reach) return;
    const double middle = std::atan2(b, a), aside = std::acos(off / reach);
    for (const double angle : {middle - aside, middle + aside}) {
        const double s = dot(arc.pointAt(angle) - edge.a, along) / dot(along, along);
        const double part = arc.partAt(angle);
        if (s >= -slack && s <= 1 + slack && part > 0 && part < 1) at.push_back(part);
    }
}

// The parts of the arc that lie inside, in order. Of a full ellipse the last one goes on into the first.
std::vector<Span> spansInside(const ClipArea& area, const SeenArc& arc, bool closed) {
    std::vector<double> at{0, 1};
    for (const ClipArea::Edge& edge : area.edges()) addCrossings(at, arc, edge);
    std::ranges::sort(at);
    std::vector<Span> spans;
    for (size_t i = 0; i + 1 < at.size(); ++i) {
        if (at[i] == at[i + 1] || !area.isInside(arc.pointAt(arc.angleAt((at[i] + at[i + 1]) / 2)))) continue;
        if (!spans.empty() && spans.back().to == at[i])
            spans.back().to = at[i + 1];
        else
            spans.push_back({at[i], at[i + 1]});
    }
    if (closed && spans.size() > 1 && spans.front().from == 0 && spans.back().to == 1) {
        spans.front().from = spans.back().from - 1;
        spans.pop_back();
    }
    return spans;
}

// ---- elements ----

// Where the elements lie that are inside as a whole.
std::optional<Point3d> originOf(const MSElementBuffer* element) {
    const int type = headOf(element).type;
    Point3d origin;
    if (const auto text = textOf(element)) return text->body.origin;
    if (const auto tag = tagOf(element)) return tag->body.text.origin;
    if (const auto node = textNodeOf(element)) return node->origin;
    if (type == MDL_CELL_HEADER && mdlCell_extract(&origin, nullptr, element) == MDL_SUCCESS) return origin;
    const auto parts = type == MDL_DIMENSION ? partsOf(element) : std::nullopt;
    if (!parts) return {};
    const MSElementBuffer* const first = *parts->begin();
    if (const auto vertices = verticesOf(first)) return (*vertices)[0];
    return originOf(first);
}

// How far a curve may stray that is followed by straight lines.
double toleranceFor(const ElementDescr* node) {
    constexpr double fine = 2e-5;  // of its extent
    ElementDescr alone = *node;
    alone.next = nullptr;
    Range3d range;
    if (mdlElmdscr_computeRange(&range.low, &range.high, &alone, nullptr) != MDL_SUCCESS) return 1;
    return std::max(fine * distance(range.low, range.high), 1e-9);
}

class Clipping {
  public:
    Clipping(const ClipArea& area, const Transform& toPlane) : area_(area), toPlane_(toPlane) {}

    // With `cut` what is inside is added to the chain.
    Clipped clipChain(NewChain& to, const ElementDescr* in) {
        bool whole = true;
        for (const ElementDescr* node = in; node; node = node->next) {
            NewChain pieces(node->model);
            const Clipped clipped = clipNode(pieces, node);
            if (clipped != Clipped::whole && whole)
                for (const ElementDescr* before = in; before != node; before = before->next) to.addCopy(before);
            whole = whole && clipped == Clipped::whole;
            if (clipped == Clipped::whole && !whole) to.addCopy(node);
            if (clipped == Clipped::cut) to.add(pieces);
        }
        return whole ? Clipped::whole : to ? Clipped::cut : Clipped::nothing;
    }

  private:
    Clipped clipNode(NewChain& to, const ElementDescr* node) {
        const MSElementBuffer* const element = node->element;
        const int type = headOf(element).type;
        if (const auto origin = originOf(element))
            return area_.isInside(flat(toPlane_, *origin)) ? Clipped::whole : Clipped::nothing;
        if (isClosedType(type) && mdlElement_isFilled(element)) return clipFilled(to, node);
        if (type == MDL_COMPLEX_SHAPE) return clipChain(to, node->firstChild);
        if (partsOf(element)) return clipCompound(to, node);
        if (const auto arc = arcOf(element)) return clipArc(to, node, *arc);
        return clipLine(to, node);
    }

    Clipped clipCompound(NewChain& to, const ElementDescr* node) {
        mdl::Descr parts;
        if (mdlElmdscr_fromCompoundElement(parts.out(), node->element, node->model) != MDL_SUCCESS)
            throw std::bad_alloc();
        return clipChain(to, parts.get());
    }

    Clipped clipFilled(NewChain& to, const ElementDescr* node) {
        const double tolerance = toleranceFor(node);
        std::vector<Point3d> outline;
        if (!strokeNode(outline, node, tolerance, identityTransform)) return Clipped::whole;
        if (area_.rings().size() == 1 && isAll(piecesInside(area_, toPlane_, outline), outline)) return Clipped::whole;
        if (addIntersection(to, node, area_.rings(), toPlane_, tolerance) == MDL_SUCCESS)
            return to ? Clipped::cut : Clipped::nothing;
        return clipOutline(to, node, outline);  // seen edge on, or with too many corners
    }

    Clipped clipLine(NewChain& to, const ElementDescr* node) {
        std::vector<Point3d> line;
        if (!strokeNode(line, node, toleranceFor(node), identityTransform)) return Clipped::whole;
        return clipOutline(to, node, line);
    }

    Clipped clipOutline(NewChain& to, const ElementDescr* node, std::span<const Point3d> line) {
        std::vector<std::vector<Point3d>> pieces = piecesInside(area_, toPlane_, line);
        if (isAll(pieces, line)) return Clipped::whole;
        if (isClosedType(headOf(node->element).type)) joinEnds(pieces, line.front());
        for (const std::vector<Point3d>& piece : pieces) addLine(to, node->element, piece);
        return to ? Clipped::cut : Clipped::nothing;
    }

    static bool isAll(const std::vector<std::vector<Point3d>>& pieces, std::span<const Point3d> line) {
        return pieces.size() == 1 && pieces[0].size() == line.size() && pieces[0].front() == line.front() &&
               pieces[0].back() == line.back();
    }

    // What goes through the point where an outline begins and ends is one piece.
    static void joinEnds(std::vector<std::vector<Point3d>>& pieces, const Point3d& at) {
        if (pieces.size() < 2 || !(pieces.front().front() == at && pieces.back().back() == at)) return;
        pieces.back().insert(pieces.back().end(), pieces.front().begin() + 1, pieces.front().end());
        pieces.front() = std::move(pieces.back());
        pieces.pop_back();
    }

    // A line as a line, all else as line strings, of which a very long piece takes several.
    void addLine(NewChain& to, const MSElementBuffer* like, std::span<const Point3d> line) {
        if (headOf(like).type == MDL_LINE) {
            addMade(to, mdlLine_create(scratch(), like, line.data()));
            return;
        }
        while (line.size() > 1) {
            const size_t count = std::min<size_t>(line.size(), MDL_MAX_POINTS);
            addMade(to, mdlLineString_create(scratch(), like, line.data(), static_cast<int32_t>(count)));
            line = line.subspan(count - 1);
        }
    }

    Clipped clipArc(NewChain& to, const ElementDescr* node, const ArcBody& arc) {
        const SeenArc seen(arc, toPlane_);
        const std::vector<Span> spans = spansInside(area_, seen, headOf(node->element).type == MDL_ELLIPSE);
        if (spans.size() == 1 && spans[0].from == 0 && spans[0].to == 1) return Clipped::whole;
        for (const auto& [from, to1] : spans) {
            const ArcBody part{arc.ellipse, seen.angleAt(from), arc.sweep * (to1 - from)};
            addMade(to, finish(NewElement(scratch(), node->element, MDL_ARC), part));
        }
        return to ? Clipped::cut : Clipped::nothing;
    }

    void addMade(NewChain& to, int status) {
        if (status == MDL_SUCCESS) to.add(scratch());
    }

    MSElementBuffer* scratch() {
        if (!scratch_) scratch_ = std::make_unique_for_overwrite<MSElementBuffer>();
        return scratch_.get();
    }

    const ClipArea& area_;
    const Transform& toPlane_;
    std::unique_ptr<MSElementBuffer> scratch_;
};

}  // namespace

Clipped clipDescriptor(ElementDescr** outPP, const ElementDescr* in, const ClipArea& area, const Transform& toPlane) {
    const mdl::CurrTransScope inUor(mdl::CurrTransScope::Begin::uor);
    if (!inUor) throw std::bad_alloc();
    NewChain made(in->model);
    const Clipped clipped = Clipping(area, toPlane).clipChain(made, in);
    if (clipped == Clipped::cut) made.give(outPP);
    return clipped;
}

}  // namespace host
