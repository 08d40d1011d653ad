// What labels are in a drawing, component by component.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/text.h"
#include "mchost/session/session.h"

// A drawing with its cells; it is a session of its own.
class Drawing {
  public:
    explicit Drawing(const std::filesystem::path& name) {
        EXPECT_EQ(mdlSystem_newDesignFile(name.c_str(), 1), MDL_SUCCESS) << name;
        const mdl::Scan scan(mdlModelRef_getActive());
        mdlScanCriteria_addSingleElementTypeTest(scan.criteria(), MDL_CELL_HEADER);
        mdlScanCriteria_setReturnType(scan.criteria(), 1, 0, 0);
        for (const FilePos position : scan) cells_.push_back(mdl::readDescr(position, mdlModelRef_getActive()));
    }
    size_t count() const { return cells_.size(); }
    // The types of a cell's components, such as "17 4 6".
    std::string types(size_t cell) const {
        std::string all;
        for (const ElementDescr* part : parts(cell))
            all += (all.empty() ? "" : " ") + std::to_string(mdlElement_getType(part->element));
        return all;
    }
    std::vector<const ElementDescr*> parts(size_t cell) const {
        std::vector<const ElementDescr*> all;
        for (const ElementDescr* part = cells_.at(cell)->firstChild; part; part = part->next) all.push_back(part);
        return all;
    }
    // Points of a component, in master units.
    std::vector<Point3d> points(size_t cell, size_t part) const {
        Point3d points[100] = {};
        int32_t count = 0;
        EXPECT_EQ(mdlLinear_extract(points, &count, parts(cell).at(part)->element, 100), MDL_SUCCESS);
        for (Point3d& p : points) p = {p.x / uor_, p.y / uor_, p.z / uor_};
        return {points, points + count};
    }
    std::string text(size_t cell, size_t part) const {
        char text[MDL_TEXT_CHARACTERS + 1] = "";
        EXPECT_EQ(mdlText_extractString(text, parts(cell).at(part)->element), MDL_SUCCESS);
        return text;
    }
    struct Extent {
        Point3d low, high;
    };
    Extent extent(size_t cell, size_t part) const {
        mdl::Descr alone;
        EXPECT_EQ(mdlElmdscr_new(alone.out(), nullptr, parts(cell).at(part)->element), MDL_SUCCESS);
        Point3d low = {}, high = {};
        EXPECT_EQ(mdlElmdscr_computeRange(&low, &high, alone.get(), nullptr), MDL_SUCCESS);
        return {{low.x / uor_, low.y / uor_, 0}, {high.x / uor_, high.y / uor_, 0}};
    }

  private:
    const host::Session session_;
    std::vector<mdl::DescrPtr> cells_;
    const double uor_ = 10000;
};
