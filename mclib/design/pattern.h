// Patterns of texts: prepared once, then held against any number of texts. Nothing is allocated, and no session is
// needed. The language stands in text_search.h.
#pragma once

#include <span>
#include <string_view>

#include "mclib/design/text_search.h"

namespace mc::design {

struct PatternAlphabet;

class Pattern {
  public:
    // `text` must outlive the pattern.
    Pattern(std::string_view text, bool caseSensitive);

    // 0 when the text fits; how far it lies from the pattern, in errors, up to `maxErrors`; more when it doesn't fit.
    int errorsOf(std::string_view text, int maxErrors) const;

    // The wildcards of the pattern: stars, and elements that stand for one character of several.
    struct Wildcards {
        int stars, characters;
    };
    Wildcards wildcards() const;
    // What the wildcards took of a text that fits without an error, each kind in its order: runs of the stars, and
    // single characters. There is room for all of them. False when the text doesn't fit.
    struct Taken {
        std::span<std::string_view> runs;
        std::span<char> characters;
    };
    bool take(std::string_view text, const Taken& taken) const;

  private:
    std::string_view text_;
    const PatternAlphabet& alphabet_;
};

// The same for a text of an element or an application: it is expanded in place first (MCLIB_SEARCH_TEXT_SIZE
// characters), and blanks count only when asked to. A text that is too long for that is told on the console, and
// doesn't fit.
int errorsOfText(char* text, const Pattern& pattern, bool ignoreBlanks, int maxErrors);

}  // namespace mc::design
