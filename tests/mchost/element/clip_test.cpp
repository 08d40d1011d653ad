// Clipping: what of lines, arcs, areas and whole elements lies in an area.
#include "mchost/element/clip.h"

#include <gmock/gmock.h>

#include <cstring>
#include <numbers>
#include <random>
#include <string>

#include "mchost/element/layout.h"
#include "mchost/mdl/compound.h"
#include "mchost/mdl/region.h"
#include "mchost/mdl/tag.h"
#include "mchost/space/vector.h"
#include "tests/mchost/element/fixture.h"

using namespace host;

namespace {

using testing::ElementsAre;
using Line = std::vector<Point3d>;

const Ring square{{0, 0}, {10, 0}, {10, 10}, {0, 10}};
// Open to the top: what goes across it is inside twice.
const Ring fork{{0, 0}, {30, 0}, {30, 20}, {20, 20}, {20, 10}, {10, 10}, {10, 20}, {0, 20}};

std::string told(const std::vector<Line>& pieces) {
    std::string all;
    for (const Line& piece : pieces) {
        for (const Point3d& p : piece)
            all += std::to_string(std::lround(p.x)) + "," + std::to_string(std::lround(p.y)) + " ";
        all += "| ";
    }
    return all;
}

TEST(PiecesInside, ComeInOrderAndDirectionOfTheLine) {
    struct Case {
        const char* what;
        Ring ring;
        Line line;
        std::string pieces;
    };
    for (const Case& c : {
             Case{"inside", square, {{1, 1, 0}, {9, 1, 0}, {9, 9, 0}}, "1,1 9,1 9,9 | "},
             Case{"outside", square, {{11, 1, 0}, {19, 1, 0}}, ""},
             Case{"round about", square, {{-5, -5, 0}, {15, -5, 0}, {15, 15, 0}}, ""},
             Case{"out and in", square, {{5, 5, 0}, {15, 5, 0}, {15, 7, 0}, {3, 7, 0}}, "5,5 10,5 | 10,7 3,7 | "},
             Case{"across both prongs", fork, {{-5, 15, 0}, {35, 15, 0}}, "0,15 10,15 | 20,15 30,15 | "},
             Case{"and back", fork, {{35, 15, 0}, {-5, 15, 0}}, "30,15 20,15 | 10,15 0,15 | "},
             Case{"through corners", square, {{-5, -5, 0}, {15, 15, 0}}, "0,0 10,10 | "},
             Case{"touching a corner", square, {{-5, 5, 0}, {5, -5, 0}}, ""},
             Case{"ending on the rim", square, {{5, 5, 0}, {10, 5, 0}, {15, 8, 0}}, "5,5 10,5 | "},
             Case{"along the rim", square, {{-5, 0, 0}, {10, 0, 0}, {10, 15, 0}}, "0,0 10,0 10,10 | "},
             Case{"the rim itself", square, {{0, 0, 0}, {0, 10, 0}, {10, 10, 0}}, "0,0 0,10 10,10 | "},
             Case{"a point again", square, {{5, 5, 0}, {5, 5, 0}, {15, 5, 0}}, "5,5 5,5 10,5 | "},
             Case{"no length", square, {{5, 5, 0}, {5, 5, 0}}, ""},
             Case{"nothing to be inside of", {{0, 0}, {10, 10}}, {{1, 1, 0}, {2, 2, 0}}, ""},
             Case{"a corner nowhere", {{0, 0}, {10, 0}, {NAN, 10}}, {{1, 1, 0}, {2, 2, 0}}, ""},
         })
        EXPECT_EQ(told(piecesInside(ClipArea(c.ring), identityTransform, c.line)), c.pieces) << c.what;
}

TEST(PiecesInside, HolesAreOutsideAndDepthGoesAlong) {
    const ClipArea area(Rings{square, {{4, 4}, {6, 4}, {6, 6}, {4, 6}}});
    const Line line{{-5, 50, 0}, {15, 50, 20}};
    const Transform turned{{{1, 0, 0, 0}, {0, 0.1, 0, 0}, {0, 0, 1, 0}}};  // y of 50 is seen at 5
    const std::vector<Line> pieces = piecesInside(area, turned, line);
    EXPECT_EQ(told(pieces), "0,50 4,50 | 6,50 10,50 | ");
    EXPECT_NEAR(pieces[1][0].z, 11, 1e-9);
}

// ---- against sampling ----

std::mt19937 random(7);

double uniform(double low, double high) {
    return std::uniform_real_distribution(low, high)(random);
}

Ring randomStar(size_t corners) {
    Ring ring;
    for (size_t i = 0; i < corners; ++i) {
        const double angle = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(corners);
        const double r = uniform(20, 100);
        ring.push_back({100 + r * std::cos(angle), 100 + r * std::sin(angle)});
    }
    return ring;
}

// By the number of edges to the right, each of them looked at.
bool isIn(const Ring& ring, double x, double y) {
    bool inside = false;
    for (size_t i = 0, before = ring.size() - 1; i < ring.size(); before = i++) {
        const Point2 &a = ring[before], &b = ring[i];
        if ((a.y > y) != (b.y > y) && x < a.x + (b.x - a.x) * (y - a.y) / (b.y - a.y)) inside = !inside;
    }
    return inside;
}

double lengthOf(const Line& line) {
    double sum = 0;
    for (size_t i = 1; i < line.size(); ++i) sum += mdlVec_distance(&line[i - 1], &line[i]);
    return sum;
}

double sampledLength(const Ring& ring, const Line& line) {
    double sum = 0;
    for (size_t i = 1; i < line.size(); ++i) {
        const int steps = 10 + static_cast<int>(20 * mdlVec_distance(&line[i - 1], &line[i]));
        int inside = 0;
        for (int s = 0; s < steps; ++s) {
            const Point3d p = line[i - 1] + (line[i] - line[i - 1]) * ((s + 0.5) / steps);
            inside += isIn(ring, p.x, p.y);
        }
        sum += mdlVec_distance(&line[i - 1], &line[i]) * inside / steps;
    }
    return sum;
}

TEST(PiecesInside, AreAsLongAsSamplesTellAndKeepTheWayOfTheLine) {
    for (int round = 0; round < 200; ++round) {
        const Ring ring = randomStar(3 + static_cast<size_t>(round) % 60);
        Line line;
        for (int i = 0; i < 12; ++i) line.push_back({uniform(-20, 220), uniform(-20, 220), 0});
        double total = 0, last = -1;
        for (const Line& piece : piecesInside(ClipArea(ring), identityTransform, line)) {
            total += lengthOf(piece);
            for (const Point3d& p : piece) {
                // How far along the line the point lies: it never goes back.
                double along = -1, before = 0;
                for (size_t i = 1; i < line.size() && along < last - 1e-6; ++i) {
                    if (distanceToPolyline(p, {line[i - 1], line[i]}) < 1e-9)
                        along = before + mdlVec_distance(&line[i - 1], &p);
                    before += mdlVec_distance(&line[i - 1], &line[i]);
                }
                EXPECT_GE(along, last - 1e-6) << round;
                last = along;
            }
        }
        EXPECT_NEAR(total, sampledLength(ring, line), 2) << round;
    }
}

// ---- elements ----

class ClippedElements : public testing::Test {
  protected:
    ClippedElements() { mdlCurrTrans_begin(); }
    ~ClippedElements() override { mdlCurrTrans_end(); }

    void start(const MSElementBuffer* element) {
        mdlElmdscr_freeAll(&in.ed);
        ASSERT_EQ(mdlElmdscr_new(&in.ed, nullptr, element), MDL_SUCCESS);
    }
    Clipped clip(const Ring& ring) {
        mdlElmdscr_freeAll(&out.ed);
        return clipDescriptor(&out.ed, in.ed, ClipArea(ring), identityTransform);
    }
    // Types and colours of what came out.
    std::vector<std::string> pieces() const {
        std::vector<std::string> all;
        for (const ElementDescr* ed = out.ed; ed; ed = ed->next)
            all.push_back(std::to_string(ed->element->head.type) + " colour " +
                          std::to_string(ed->element->head.color));
        return all;
    }
    static void color(MSElementBuffer* e, uint32_t index) { mdlElement_setSymbology(e, &index, nullptr, nullptr); }
    void makeLine(uint32_t index, double x1, double y1, double x2, double y2) {
        const Point3d ends[] = {{x1, y1, 0}, {x2, y2, 0}};
        ASSERT_EQ(mdlLine_create(e, nullptr, ends), MDL_SUCCESS);
        color(e, index);
    }
    void makeShape(const Line& corners, bool filled) {
        ASSERT_EQ(mdlShape_create(e, nullptr, corners.data(), static_cast<int32_t>(corners.size()), filled),
                  MDL_SUCCESS);
    }

    TestElement e;
    DescriptorHolder in, out;
};

TEST_F(ClippedElements, ArcsStayArcsOfTheirDirection) {
    for (int round = 0; round < 300; ++round) {
        const Point3d centre{uniform(50, 150), uniform(50, 150), 0};
        RotMatrix turned;
        mdlRMatrix_fromAngle(&turned, uniform(0, 6));
        const double r1 = uniform(10, 90), r2 = uniform(10, 90), from = uniform(-7, 7),
                     sweep = uniform(0.1, 6.28) * (round % 2 == 0 ? 1 : -1);
        const bool whole = round % 5 == 0;
        if (whole)
            mdlEllipse_create(e, nullptr, &centre, r1, r2, &turned, 0);
        else
            mdlArc_create(e, nullptr, &centre, r1, r2, &turned, from, sweep);
        color(e, 7);
        start(e);
        const Ring ring = randomStar(3 + static_cast<size_t>(round) % 20);
        const double expected = sampledLength(ring, strokeOf(e, 0.01));
        const Clipped clipped = clip(ring);
        double total = clipped == Clipped::whole ? lengthOf(strokeOf(e, 0.01)) : 0;
        for (const ElementDescr* ed = out.ed; ed; ed = ed->next) {
            EXPECT_EQ(ed->element->head.type, MDL_ARC);
            EXPECT_EQ(ed->element->head.color, 7);
            total += lengthOf(strokeOf(ed->element, 0.01));
            const double part = arcOf(ed->element)->sweep;
            EXPECT_EQ(part > 0, whole || sweep > 0);
        }
        EXPECT_NEAR(total, expected, 0.01 * lengthOf(strokeOf(e, 0.01))) << round;
    }
}

TEST_F(ClippedElements, AnEllipseThatIsCutOnceIsOneArc) {
    const Point3d centre{0, 5, 0};
    mdlEllipse_create(e, nullptr, &centre, 3, 3, nullptr, 0);
    start(e);
    ASSERT_EQ(clip(square), Clipped::cut);
    EXPECT_THAT(pieces(), ElementsAre("16 colour 0"));
    EXPECT_NEAR(arcOf(out.ed->element)->sweep, std::numbers::pi, 1e-9);
    EXPECT_NEAR(lengthOf(strokeOf(out.ed->element, 1e-4)), 3 * std::numbers::pi, 1e-2);
}

TEST_F(ClippedElements, OutlinesAndCurvesComeAsTheirPieces) {
    makeShape({{5, 5, 0}, {15, 5, 0}, {15, 8, 0}, {5, 8, 0}}, false);
    color(e, 3);
    start(e);
    ASSERT_EQ(clip(square), Clipped::cut);
    EXPECT_THAT(pieces(), ElementsAre("4 colour 3"));
    EXPECT_EQ(told({strokeOf(out.ed->element, 1)}), "10,8 5,8 5,5 10,5 | ") << "through its first corner";

    Line poles{{5, 5, 0}, {15, 5, 0}, {15, 9, 0}, {5, 9, 0}};
    double knots[] = {0, 0, 0, 0, 1, 1, 1, 1};
    BsplineCurve curve{};
    curve.order = 4;
    curve.numPoles = 4;
    curve.poles = poles.data();
    curve.numKnots = 8;
    curve.knots = knots;
    ASSERT_EQ(mdlBspline_createCurve(e, nullptr, &curve), MDL_SUCCESS);
    start(e);
    ASSERT_EQ(clip(square), Clipped::cut);
    EXPECT_THAT(pieces(), ElementsAre("4 colour 0", "4 colour 0"));
}

double areaOf(const Line& outline) {
    double twice = 0;
    for (size_t i = 1; i < outline.size(); ++i) twice += cross(outline[i - 1], outline[i]).z;
    return std::fabs(twice) / 2;
}

TEST_F(ClippedElements, FilledOnesComeAsFilledShapes) {
    const uint32_t fill = 6, level = 12;
    const auto filled = [&](const Line& corners) {
        makeShape(corners, true);
        color(e, 2);
        ASSERT_EQ(mdlElement_setFillColor(e, &fill), MDL_SUCCESS);
        mdlElement_setProperties(e, &level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
        start(e);
    };
    filled({{5, 5, 7}, {15, 5, 7}, {15, 8, 7}, {5, 8, 7}});
    ASSERT_EQ(clip(square), Clipped::cut);
    ASSERT_THAT(pieces(), ElementsAre("6 colour 2"));
    EXPECT_NEAR(areaOf(strokeOf(out.ed->element, 1)), 15, 1e-9);
    EXPECT_NEAR(strokeOf(out.ed->element, 1)[0].z, 7, 1e-9);
    uint32_t found = 0;
    EXPECT_EQ(mdlElement_getFillColor(&found, out.ed->element), MDL_SUCCESS);
    EXPECT_EQ(found, fill);
    EXPECT_EQ(out.ed->element->head.level, level);
    filled({{-50, -50, 0}, {50, -50, 0}, {50, 50, 0}, {-50, 50, 0}});
    ASSERT_EQ(clip(square), Clipped::cut) << "all of the area lies in it";
    EXPECT_NEAR(areaOf(strokeOf(out.ed->element, 1)), 100, 1e-9);
    filled({{-5, 12, 0}, {50, 12, 0}, {50, 18, 0}, {-5, 18, 0}});
    ASSERT_EQ(clip(fork), Clipped::cut);
    EXPECT_THAT(pieces(), ElementsAre("6 colour 2", "6 colour 2"));
    filled({{1, 1, 0}, {2, 1, 0}, {2, 2, 0}});
    EXPECT_EQ(clip(square), Clipped::whole);
    filled({{11, 11, 0}, {12, 11, 0}, {12, 12, 0}});
    EXPECT_EQ(clip(square), Clipped::nothing);
}

TEST_F(ClippedElements, WhatIsOnePieceGoesByItsOrigin) {
    const TextSize size{1, 5, 5, 1};
    MdlTagValue value{};
    value.type = MDL_TAG_LONG;
    for (const double x : {9.0, 11.0}) {
        const Clipped expected = x < 10 ? Clipped::whole : Clipped::nothing;
        const Point3d origin{x, 5, 0};
        mdlText_createWide(e, nullptr, L"far beyond the rim", &origin, nullptr, &size, nullptr, 0);
        start(e);
        EXPECT_EQ(clip(square), expected);
        ASSERT_EQ(mdlTag_create(e, nullptr, &value, &origin, nullptr, &size, nullptr, 1), MDL_SUCCESS);
        start(e);
        EXPECT_EQ(clip(square), expected);
        mdlTextNode_createWide(e, nullptr, nullptr, &origin, nullptr, &size, nullptr);
        start(e);
        EXPECT_EQ(clip(square), expected);
        mdlCell_create(e, L"PUMP", &origin, 0);
        start(e);
        makeLine(1, x - 5, 5, x + 5, 5);
        ASSERT_EQ(mdlElmdscr_appendElement(in.ed, e), MDL_SUCCESS);
        EXPECT_EQ(clip(square), expected);
    }
}

TEST_F(ClippedElements, ChainsAndCompoundsKeepTheOrderOfTheirPieces) {
    makeLine(1, 1, 1, 2, 2);
    start(e);
    const Point3d origin{5, 5, 0};
    mdlCell_create(e, L"PUMP", &origin, 0);
    color(e, 2);
    ASSERT_EQ(mdlElmdscr_new(&out.ed, nullptr, e), MDL_SUCCESS);
    in.ed->next = std::exchange(out.ed, nullptr);
    in.ed->next->previous = in.ed;
    EXPECT_EQ(clip(square), Clipped::whole);
    makeLine(3, 20, 20, 30, 20);
    ASSERT_EQ(mdlElmdscr_appendElement(in.ed, e), MDL_SUCCESS);
    makeLine(4, 5, 5, 15, 5);
    ASSERT_EQ(mdlElmdscr_appendElement(in.ed, e), MDL_SUCCESS);
    makeLine(5, 1, 1, 2, 2);
    ASSERT_EQ(mdlElmdscr_appendElement(in.ed, e), MDL_SUCCESS);
    ASSERT_EQ(clip(square), Clipped::cut);
    EXPECT_THAT(pieces(), ElementsAre("3 colour 1", "2 colour 2", "3 colour 4", "3 colour 5"));

    makeLine(1, 5, 5, 15, 5);
    start(e);
    makeLine(2, 5, 6, 6, 6);
    ASSERT_EQ(mdlElmdscr_appendElement(in.ed, e), MDL_SUCCESS);
    ASSERT_EQ(mdlCompound_create(e, nullptr, in.ed), MDL_SUCCESS);
    start(e);
    ASSERT_EQ(clip(square), Clipped::cut);
    EXPECT_THAT(pieces(), ElementsAre("3 colour 1", "3 colour 2"));
    EXPECT_EQ(clip({{-1, -1}, {20, -1}, {20, 20}, {-1, 20}}), Clipped::whole);
    e.get()->head.type = MDL_DIMENSION;
    start(e);
    EXPECT_EQ(clip(square), Clipped::whole) << "its origin is inside";
}

// ---- areas ----

TEST_F(ClippedElements, ShapesAreIntersectedWhateverTheyAreMadeOf) {
    const Point3d centre{10, 5, 0};
    makeShape({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, false);
    start(e);
    DescriptorHolder other;
    mdlEllipse_create(e, nullptr, &centre, 3, 3, nullptr, 0);
    ASSERT_EQ(mdlElmdscr_new(&other.ed, nullptr, e), MDL_SUCCESS);
    ASSERT_EQ(mdlElmdscr_intersectShapes(&out.ed, in.ed, other.ed, 0.001), 0);
    EXPECT_THAT(pieces(), ElementsAre("6 colour 0"));
    EXPECT_NEAR(areaOf(strokeOf(out.ed->element, 1)), 4.5 * std::numbers::pi, 0.02);
    mdlElmdscr_freeAll(&out.ed);

    makeShape({{0, 0, 0},
               {30, 0, 0},
               {30, 20, 0},
               {0, 20, 0},
               {0, 0, 0},
               {5, 5, 0},
               {5, 15, 0},
               {25, 15, 0},
               {25, 5, 0},
               {5, 5, 0}},
              true);
    mdlElmdscr_freeAll(&other.ed);
    ASSERT_EQ(mdlElmdscr_new(&other.ed, nullptr, e), MDL_SUCCESS);
    makeShape({{-1, -1, 0}, {31, -1, 0}, {31, 21, 0}, {-1, 21, 0}}, true);
    start(e);
    ASSERT_EQ(mdlElmdscr_intersectShapes(&out.ed, other.ed, in.ed, 0.001), 0);
    EXPECT_THAT(pieces(), ElementsAre("6 colour 0")) << "one with a hole";
    EXPECT_NEAR(areaOf(strokeOf(out.ed->element, 1)), 600 - 200, 1e-6);
    mdlElmdscr_freeAll(&out.ed);

    makeLine(1, 0, 0, 1, 1);
    start(e);
    EXPECT_EQ(mdlElmdscr_intersectShapes(&out.ed, in.ed, other.ed, 0.001), MDL_REGION_OPEN);
    EXPECT_EQ(mdlElmdscr_intersectShapes(&out.ed, other.ed, in.ed, 0.001), MDL_REGION_OPEN);
    EXPECT_EQ(mdlElmdscr_intersectShapes(&out.ed, other.ed, other.ed, 0), MDL_REGION_OPEN);
    makeShape({{0, 5, 0}, {10, 5, 0}, {10, 5, 10}, {0, 5, 10}}, true);
    start(e);
    EXPECT_EQ(mdlElmdscr_intersectShapes(&out.ed, in.ed, other.ed, 0.001), MDL_REGION_NO_PLANE);
    EXPECT_FALSE(out.ed);
}

TEST_F(ClippedElements, FillColoursBelongToFilledElementsAlone) {
    const uint32_t index = 9;
    uint32_t found = 0;
    makeLine(1, 0, 0, 1, 1);
    start(e);
    EXPECT_EQ(mdlElmdscr_addFill(in.ed), MDL_ERROR);
    EXPECT_EQ(mdlElement_setFillColor(e, &index), MDL_ERROR);
    makeShape({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}, false);
    color(e, 4);
    start(e);
    EXPECT_EQ(mdlElmdscr_setFillColor(in.ed, &index), MDL_SUCCESS) << "nothing is filled";
    EXPECT_EQ(mdlElement_getFillColor(&found, in.ed->element), MDL_ERROR);
    ASSERT_EQ(mdlElmdscr_addFill(in.ed), MDL_SUCCESS);
    EXPECT_EQ(mdlElement_getFillColor(&found, in.ed->element), MDL_SUCCESS);
    EXPECT_EQ(found, 4u);
    for (int again = 0; again < 2; ++again) {
        ASSERT_EQ(mdlElmdscr_setFillColor(in.ed, &index), MDL_SUCCESS);
        EXPECT_EQ(mdlElement_getFillColor(&found, in.ed->element), MDL_SUCCESS);
        EXPECT_EQ(found, index);
        EXPECT_EQ(mdlElement_bytes(in.ed->element), mdlElement_bytes(e) + 8);
    }
}

}  // namespace
