// The pattern language: a pattern to its elements, and the errors of a text against them.
#include "mclib/design/pattern.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mclib/frame/letters.h"

namespace mc::design {

namespace {

enum class Kind : uint16_t { character, set, bar, star };

// What a character of a pattern stands for. One of kind `character` fits c when (traits of c & mask) == value; the
// others take more than their character to tell what they fit, and fit nothing by it alone.
struct alignas(8) Element {
    Kind kind;
    uint16_t mask, value;
};

// Traits of a character: its code, folded where case doesn't count, and classes.
constexpr uint16_t codeTrait = 0xFF, digitTrait = 0x100, letterTrait = 0x200, letterOrDigitTrait = 0x400,
                   highTrait = 0x800;

constexpr uint16_t traitsOf(char c, bool caseSensitive) {
    const auto code = static_cast<uint8_t>(caseSensitive ? c : lower(c));
    const int classes = (isDigit(c) ? digitTrait | letterOrDigitTrait : 0) |
                        (isLetter(c) ? letterTrait | letterOrDigitTrait : 0) |
                        (static_cast<uint8_t>(c) >= 0x80 ? highTrait : 0);
    return static_cast<uint16_t>(code | classes);
}

}  // namespace

struct PatternAlphabet {
    std::array<uint16_t, 256> traits{};
    std::array<Element, 256> elements{};

    constexpr explicit PatternAlphabet(bool caseSensitive) {
        for (size_t c = 0; c < traits.size(); ++c) {
            traits[c] = traitsOf(static_cast<char>(c), caseSensitive);
            elements[c] = {Kind::character, codeTrait, static_cast<uint16_t>(traits[c] & codeTrait)};
        }
        elements['?'] = {Kind::character, 0, 0};
        elements['#'] = {Kind::character, digitTrait, digitTrait};
        elements['@'] = {Kind::character, letterTrait, letterTrait};
        elements['&'] = {Kind::character, letterOrDigitTrait, letterOrDigitTrait};
        elements['_'] = {Kind::character, codeTrait, ' '};
        elements[0xA7] = {Kind::character, codeTrait, '"'};
        elements[0xA4] = {Kind::character, highTrait, highTrait};
        elements['['] = {Kind::set, 0, 1};
        elements['|'] = {Kind::bar, 0, 1};
        elements['*'] = {Kind::star, 0, 1};
    }
};

namespace {

constexpr PatternAlphabet exactAlphabet(true), foldedAlphabet(false);

constexpr int plainStarLimit = 200;
constexpr size_t longestTaken = MCLIB_SEARCH_TEXT_SIZE;  // a pattern whose wildcards are asked for what they took
constexpr size_t mostLimitDigits = 3;

// ---- a text against a pattern ----

// Positions in both: the pattern's is that of the first character of an element.
struct Place {
    size_t text, pattern;
};

struct Star {
    int limit;  // the most characters that it takes
    bool isLimited;
    size_t end;  // behind it in the pattern
};

// Told where in the text each element of the pattern begins, by its place in the pattern; an element that is tried
// again is told again. Nobody listens.
struct NoTrace {
    void operator()(size_t, size_t) const {}
};

class Matching {
  public:
    Matching(std::string_view pattern, const PatternAlphabet& alphabet, std::string_view text, int maxErrors)
        : pattern_(pattern), alphabet_(alphabet), text_(text), maxErrors_(maxErrors) {}

    template <class Trace = NoTrace>
    int errors(Trace trace = {}) const {
        Place at = {0, 0}, star = {0, none};  // the star to go back to, and where the text goes on behind it
        int retries = 0, errors = 0;          // retries of that star
        for (passFitting(at, trace); at.text < text_.size() && at.pattern < pattern_.size(); passFitting(at, trace)) {
            const size_t tried = at.pattern;
            const Kind kind = elementAt(tried).kind;
            if (star.pattern != tried) trace(tried, at.text);
            if (kind == Kind::star ? stepStar(at, retries, trace) : kind != Kind::character && stepOne(at)) {
                if (kind != Kind::star) continue;
                if (star.pattern != tried) retries = 0;
                star = {at.text, tried};
            } else if (star.pattern != none && star.pattern != tried) {
                ++retries;
                at = star;
            } else {
                star.pattern = none;
                if (errors >= maxErrors_) return errors + 1;
                const Recovery recovery = recover(*this, at, retries);
                errors += recovery.errors;
                if (errors > maxErrors_) return errors;
                at = recovery.resume;
            }
        }
        traceFrom(at.pattern, pattern_.size(), text_.size(), trace);
        return errors + errorsOfRest(at, maxErrors_ - errors);
    }

    // Calls f(place of the element, its wildcard: a star, a character, or none) for each element in turn.
    enum class Wildcard { none, star, character };
    template <class F>
    void forEach(F f) const {
        for (size_t at = 0; at < pattern_.size(); at = endOf(at)) {
            const Element& element = elementAt(at);
            const bool isOneOfMany =
                element.kind == Kind::set || (element.kind == Kind::character && element.mask != codeTrait);
            f(at, element.kind == Kind::star ? Wildcard::star : isOneOfMany ? Wildcard::character : Wildcard::none);
        }
    }

  private:
    static constexpr size_t none = ~size_t{0};
    struct Recovery {
        Place resume;
        int errors;
    };

    // ---- elements of the pattern ----

    const Element& elementAt(size_t at) const { return alphabet_.elements[static_cast<uint8_t>(pattern_[at])]; }
    bool isStar(size_t at) const { return elementAt(at).kind == Kind::star; }
    Star starAt(size_t at) const {
        const size_t colon = at + 1;
        if (colon + 1 >= pattern_.size() || pattern_[colon] != ':' || !isDigit(pattern_[colon + 1]))
            return {plainStarLimit, false, colon};
        int limit = 0;
        size_t end = colon + 1;
        for (; end < pattern_.size() && end <= colon + mostLimitDigits && isDigit(pattern_[end]); ++end)
            limit = limit * 10 + (pattern_[end] - '0');
        return {limit, true, end};
    }
    // Behind the element.
    size_t endOf(size_t at) const {
        const Kind kind = elementAt(at).kind;
        if (kind == Kind::character) return at + 1;
        if (kind == Kind::star) return starAt(at).end;
        if (kind == Kind::bar) return std::min(at + 2, pattern_.size());
        return std::min(pattern_.find(']', at), pattern_.size() - 1) + 1;
    }
    bool fits(const Element& element, char c) const {
        return (alphabet_.traits[static_cast<uint8_t>(c)] & element.mask) == element.value;
    }
    // The same for a set or a bar that ends at `end` in the pattern.
    bool fitsLong(size_t at, size_t end, char c) const {
        const auto codeOf = [&](char one) { return alphabet_.traits[static_cast<uint8_t>(one)] & codeTrait; };
        const auto same = [&](char one) { return codeOf(one) == codeOf(c); };
        if (elementAt(at).kind == Kind::bar) return same(pattern_[end - 1]);
        return pattern_[end - 1] == ']' && std::ranges::any_of(pattern_.substr(at + 1, end - at - 2), same);
    }

    // ---- steps ----

    // Moves behind all elements of one character that fit.
    template <class Trace>
    void passFitting(Place& at, Trace trace) const {
        const char *const text = text_.data() + at.text, *const pattern = pattern_.data() + at.pattern;
        const size_t end = std::min(text_.size() - at.text, pattern_.size() - at.pattern);
        size_t count = 0;
        while (count < end && fits(alphabet_.elements[static_cast<uint8_t>(pattern[count])], text[count])) {
            trace(at.pattern + count, at.text + count);
            ++count;
        }
        at = {at.text + count, at.pattern + count};
    }

    // Elements from one place in the pattern to another that all begin at the same place in the text.
    template <class Trace>
    void traceFrom(size_t begin, size_t end, size_t text, Trace trace) const {
        if constexpr (!std::is_same_v<Trace, NoTrace>)
            for (; begin < end; begin = endOf(begin)) trace(begin, text);
    }

    // Tries the element at the place, and moves both behind what fits; leaves them where they are otherwise.
    bool step(Place& at, int retries) const {
        if (at.text == text_.size()) return at.pattern == pattern_.size();
        if (at.pattern == pattern_.size()) return false;
        return isStar(at.pattern) ? stepStar(at, retries, NoTrace()) : stepOne(at);
    }
    bool stepOne(Place& at) const {
        const Element& element = elementAt(at.pattern);
        const size_t end = endOf(at.pattern);
        const bool isCharacter = element.kind == Kind::character;
        if (isCharacter ? !fits(element, text_[at.text]) : !fitsLong(at.pattern, end, text_[at.text])) return false;
        at = {at.text + 1, end};
        return true;
    }

    // A star looks for the next element that isn't one. Stars right behind it look for the same one, each from the
    // best place for it, so all that matters of them is that they may take what is left to them: nothing in front of
    // another element, one character at the end of the pattern.
    template <class Trace>
    bool stepStar(Place& at, int retries, Trace trace) const {
        const Star star = starAt(at.pattern);
        int limitOfLast = limitOf(star, retries);
        size_t next = star.end;
        while (next < pattern_.size() && isStar(next)) {
            const Star another = starAt(next);
            limitOfLast = limitOf(another, retries);
            if (limitOfLast < 0) return false;
            next = another.end;
        }
        if (next < pattern_.size()) {
            if (!findBehindStar(at, next, limitOf(star, retries))) return false;
            traceFrom(star.end, at.pattern, at.text - 1, trace);
            return true;
        }
        const bool isAlone = star.end == next;
        const auto taken = static_cast<int>(text_.size() - at.text) - (isAlone ? 0 : 1);
        if (taken > limitOf(star, retries) || (!isAlone && limitOfLast < 1)) return false;
        traceFrom(star.end, next, text_.size(), trace);
        at = {text_.size(), next};
        return true;
    }
    bool findBehindStar(Place& at, size_t next, int limit) const {
        const Element& element = elementAt(next);
        const size_t nextEnd = endOf(next);
        const size_t end = std::min(text_.size(), at.text + static_cast<size_t>(std::max(limit + 1, 0)));
        size_t found = at.text;
        if (element.kind == Kind::character) {
            while (found < end && !fits(element, text_[found])) ++found;
        } else {
            while (found < end && !fitsLong(next, nextEnd, text_[found])) ++found;
        }
        if (found == end) return false;
        at = {found + 1, nextEnd};
        return true;
    }
    static int limitOf(const Star& star, int retries) { return star.isLimited ? star.limit - retries : star.limit; }

    // ---- behind a mismatch ----

    // Goes on from the nearest place where text and pattern agree again; the errors that lie on the way. Apart and with
    // a copy, so that texts that fit are matched in registers.
    [[gnu::noinline]] static Recovery recover(Matching matching, Place at, int retries) {
        return matching.recovery(at, retries);
    }
    Recovery recovery(Place at, int retries) const {
        const bool failedAtStar = isStar(at.pattern);
        const auto maxErrors = static_cast<size_t>(maxErrors_);
        size_t current = failedAtStar ? endOf(at.pattern) : at.pattern;
        size_t span = text_.size() - at.text, resume = none, skipped = 0;
        if (!failedAtStar && maxErrors < span) span = maxErrors + 1;
        for (; current < pattern_.size() && skipped <= span && skipped <= maxErrors; ++skipped) {
            const size_t following = endOf(current);
            const size_t offset = findAgreement({at.text, current}, following, span, retries);
            if (offset < span) {
                resume = current;
                span = offset;
            }
            current = following;
        }
        const Place next = {at.text + span, resume != none ? resume : current};
        if (resume != none && isStar(resume)) return {next, static_cast<int>(skipped) - 1};
        return {next, static_cast<int>(failedAtStar ? errorsOfStar(starAt(at.pattern), span, skipped) : span)};
    }
    // The first offset below `span` where an element fits and the following one right behind it; else `span`.
    size_t findAgreement(Place from, size_t following, size_t span, int retries) const {
        for (size_t offset = 0; offset < span; ++offset) {
            Place at = {from.text + offset, from.pattern};
            if (!step(at, retries)) continue;
            at.pattern = following;
            if (step(at, retries)) return offset;
        }
        return span;
    }
    static size_t errorsOfStar(const Star& star, size_t span, size_t skipped) {
        const auto limit = static_cast<size_t>(star.limit);
        return (skipped == 0 ? 0 : skipped - 1) + (star.isLimited && span > limit ? span - limit : 0);
    }

    // One for each character of the text that is left, or each element, but for stars, up to one more than `most`.
    int errorsOfRest(Place at, int most) const {
        if (at.pattern == pattern_.size()) return static_cast<int>(text_.size() - at.text);
        int errors = 0;
        for (; at.pattern < pattern_.size(); at.pattern = endOf(at.pattern)) {
            if (!isStar(at.pattern) && ++errors > most) return errors;
        }
        return errors;
    }

    const std::string_view pattern_;
    const PatternAlphabet& alphabet_;
    const std::string_view text_;
    const int maxErrors_;
};

}  // namespace

Pattern::Pattern(std::string_view text, bool caseSensitive)
    : text_(text), alphabet_(caseSensitive ? exactAlphabet : foldedAlphabet) {}

int Pattern::errorsOf(std::string_view text, int maxErrors) const {
    return Matching(text_, alphabet_, text, maxErrors).errors();
}

Pattern::Wildcards Pattern::wildcards() const {
    Wildcards count = {0, 0};
    Matching(text_, alphabet_, "", 0).forEach([&](size_t, Matching::Wildcard wildcard) {
        count.stars += wildcard == Matching::Wildcard::star;
        count.characters += wildcard == Matching::Wildcard::character;
    });
    return count;
}

bool Pattern::take(std::string_view text, const Taken& taken) const {
    const Matching matching(text_, alphabet_, text, 0);
    std::array<uint16_t, longestTaken> begins;
    if (text_.size() > begins.size() || text.size() > UINT16_MAX) return false;
    if (matching.errors([&](size_t at, size_t begin) { begins[at] = static_cast<uint16_t>(begin); }) != 0) return false;
    size_t star = 0, character = 0, run = 0;
    bool inRun = false;
    matching.forEach([&](size_t at, Matching::Wildcard wildcard) {
        const size_t begin = begins[at];
        if (inRun) taken.runs[star++] = text.substr(run, begin - run);
        inRun = wildcard == Matching::Wildcard::star;
        run = begin;
        if (wildcard == Matching::Wildcard::character) taken.characters[character++] = text[begin];
    });
    if (inRun) taken.runs[star++] = text.substr(run);
    return true;
}

// ---- texts of elements and applications ----

int errorsOfText(char* text, const Pattern& pattern, bool ignoreBlanks, int maxErrors) {
    mdlText_expandString(text, text, MCLIB_SEARCH_TEXT_SIZE, 2);
    const std::string_view whole(text);
    if (!ignoreBlanks) return pattern.errorsOf(whole, maxErrors);
    constexpr size_t mostCharacters = 1000;
    if (whole.size() > mostCharacters) {
        toolSubsystem_printf("ERROR - Buffer size exceeded\n");
        return std::clamp(maxErrors, 0, INT32_MAX - 1) + 1;
    }
    char kept[mostCharacters];
    const char* const end = std::ranges::remove_copy(whole, kept, ' ').out;
    return pattern.errorsOf({kept, end}, maxErrors);
}

}  // namespace mc::design
