// Small cell libraries for tests.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "mchost/mdl/elmdscr.h"
#include "mchost/model/cell_library.h"

// A library in the making, with cells of lines.
class CellFile {
  public:
    explicit CellFile(double uorPerMaster = 10000) : uorPerMaster_(uorPerMaster), draft_(uorPerMaster) {}

    // A cell of `lines` lines along the x axis from the origin, one above the other: `length` and 1 master unit.
    CellFile& add(const wchar_t* name, const wchar_t* description = L"", int lines = 1, double length = 10,
                  const wchar_t* level = L"Default") {
        MSElementBuffer element;
        ElementDescr* cell = nullptr;
        EXPECT_EQ(mdlCell_create(&element, name, nullptr, 0), MDL_SUCCESS);
        if (*description != L'\0') mdlCell_setDescription(&element, description);
        mdlElmdscr_new(&cell, nullptr, &element);
        for (int i = 0; i < lines; ++i) {
            const Point3d ends[] = {{0, i * uorPerMaster_, 0}, {length * uorPerMaster_, i * uorPerMaster_, 0}};
            mdlLine_create(&element, nullptr, ends);
            element.head.level = draft_.level(level);
            mdlElmdscr_appendElement(cell, &element);
        }
        EXPECT_TRUE(draft_.add(cell));
        mdlElmdscr_freeAll(&cell);
        return *this;
    }
    host::CellLibraryDraft& draft() { return draft_; }
    void write(const std::string& path) { draft_.write(path); }

  private:
    double uorPerMaster_;
    host::CellLibraryDraft draft_;
};
