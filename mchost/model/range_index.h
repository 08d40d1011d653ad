// Where elements lie: boxes by position, searched by window.
//
// The boxes are laid out once along a Hilbert curve of their centres, with a box over each 16 of them, over each 16 of
// those, and so on: a packed R-tree without pointers, where what lies below a node is one run of positions. A node that
// lies wholly in the window gives its run without a look at the boxes below it. What is added later waits in a list
// that is searched one by one, until the list is long enough to lay the tree anew.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "mchost/mdl/types.h"

namespace host {

class RangeIndex {
  public:
    struct Entry {
        Range3d box;
        FilePos position;
    };

    void build(std::vector<Entry> entries);
    void put(FilePos position, const Range3d& box);  // adds, or replaces the box of a position
    void drop(FilePos position);                     // takes a position out

    // A box that holds all of them; may be larger than what is needed.
    const Range3d& bounds() const { return bounds_; }
    // Appends the positions whose boxes meet the window, edges included, in no order.
    void search(const Range3d& window, std::vector<FilePos>& found);
    // Calls visit(position, box) for each entry.
    template <class Visit>
    void forEach(Visit visit) const {
        for (const Entry& entry : packed_) {
            if (!isStale(entry.position)) visit(entry.position, entry.box);
        }
        for (const Entry& entry : waiting_) visit(entry.position, entry.box);
    }

  private:
    bool isStale(FilePos position) const { return position < stale_.size() && stale_[position]; }
    void pack(std::vector<Entry> entries);
    void repackWhenDue();
    void searchBelow(const Range3d& window, size_t level, size_t node, std::vector<FilePos>& found) const;
    void takeRun(size_t first, size_t last, std::vector<FilePos>& found) const;
    void dropWaiting(FilePos position);

    Range3d bounds_ = {};
    std::vector<Entry> packed_;                // in order of the curve
    std::vector<FilePos> run_;                 // the positions of packed_, close together
    std::vector<std::vector<Range3d>> boxes_;  // boxes_[0] over 16 entries each, boxes_[1] over 16 of those
    std::vector<bool> inTree_;                 // by position
    std::vector<bool> stale_;                  // by position: its entry in the tree no longer counts
    size_t staleCount_ = 0;
    std::vector<Entry> waiting_;
    std::unordered_map<FilePos, size_t> waitingAt_;
};

}  // namespace host
