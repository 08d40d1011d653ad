// Symbols counted into a list of materials.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "recognising.h"

namespace symbols {

struct Doubt {
    std::string drawing;
    Symbol symbol;
};

class MaterialList {
  public:
    // `file` must outlive this.
    explicit MaterialList(const SymbolFile& file) : file_(file) {}

    // The symbols of one drawing. False after a message, when a text can't stand in its item.
    bool add(const Recognised& found, const std::string& drawing);
    size_t count() const { return count_; }
    const std::vector<Doubt>& doubts() const { return doubts_; }
    // In Windows-1252: the lines that were told, the items by group and kind, and what is in doubt as comments.
    std::string text() const;

  private:
    struct Line {
        Symbol symbol;  // the first one
        size_t count;

        std::string item() const;
    };
    std::vector<const Line*> linesOf(const std::string& group) const;

    const SymbolFile& file_;
    std::map<std::pair<std::string, std::string>, Line> lines_;  // by group and the item without its number
    std::vector<Doubt> doubts_;
    size_t count_ = 0;
};

// As a person reads them, such as: plan.mcd at 120.5, 33.0: gate valve "V-1O4", 1 error.
std::string toldErrors(const Symbol& symbol);
std::string toldDoubt(const Doubt& doubt);

}  // namespace symbols
