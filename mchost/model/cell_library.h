// Cell libraries as files: read whole, or written anew.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/types.h"

namespace host {

struct Model;

// What a library file holds, in memory. The case of letters doesn't count in names of cells.
class CellLibrary {
  public:
    struct Cell {
        FilePos position;
        std::wstring name, description;
    };

    explicit CellLibrary(const std::string& path);  // FileProblem when it can't be used
    ~CellLibrary();
    CellLibrary(const CellLibrary&) = delete;
    CellLibrary& operator=(const CellLibrary&) = delete;

    const std::string& path() const { return path_; }
    const std::vector<Cell>& cells() const { return cells_; }  // in the order in which they were added
    const Cell* find(std::wstring_view name) const;            // null when it has none of that name

    // The cell as a descriptor of `target`, with its units, levels and kind; for null with units and kind of the
    // library and levels of the session (levelModel), where there is one. Null when out of memory.
    ElementDescr* read(const Cell& cell, ModelRef* target) const;

  private:
    void takeCells();

    std::string path_;
    std::unique_ptr<Model> model_;
    std::vector<Cell> cells_;
    std::unordered_map<std::wstring, size_t> places_;  // in cells_, by name in capitals
};

// A library in the making.
class CellLibraryDraft {
  public:
    explicit CellLibraryDraft(double uorPerMaster);
    ~CellLibraryDraft();
    CellLibraryDraft(const CellLibraryDraft&) = delete;
    CellLibraryDraft& operator=(const CellLibraryDraft&) = delete;

    // The level of that name, made when it isn't there; "Default" is. A name has 1 to 511 characters.
    LevelId level(std::wstring_view name);
    void setLevelSymbology(LevelId id, uint32_t color, int32_t style, uint32_t weight);

    bool has(std::wstring_view name) const;  // a cell of that name
    // Adds a cell: a header (mdlCell_create) with its components. False when it isn't one, is too large, or another
    // cell has its name. The descriptor stays the caller's.
    bool add(const ElementDescr* cell);

    // Writes the library in place of a file of that name, which stays as it was when that fails: FileProblem.
    void write(const std::string& path);

  private:
    std::unique_ptr<Model> model_;
    std::unordered_set<std::wstring> names_;  // in capitals
};

}  // namespace host
