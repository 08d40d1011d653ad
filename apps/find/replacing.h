// Other words in place of the texts that were found.
#pragma once

#include <string>
#include <vector>

#include "query.h"

namespace find {

// Whether the pattern has all wildcards that the replacement wants to be filled.
bool canFill(const std::string& pattern, const std::string& replacement);

// The replacement for one drawing of a run: the number of the drawing, that of all, and the day stand in it.
std::string replacementFor(const std::string& replacement, size_t page, size_t pages);

// What a hit's text becomes; empty when it can't be told, and `why` then tells the reason.
struct NewText {
    std::string text, why;
};
NewText newText(const Options& options, const std::string& replacement, const Hit& hit);

struct Change {
    Hit hit;
    NewText after;

    bool isOne() const { return after.why.empty() && after.text != hit.text; }
};

// Changes the texts of the hits in the model, which is open to be written, as one step that can be taken back. A change
// that can't be made gets its reason.
void replaceTexts(std::vector<Change>& changes, const Query& query, ModelRef* model);

}  // namespace find
