// The pattern language: a pattern to its elements, and the errors of a text against them.
#include "mclib/design/pattern.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mclib/frame/letters.h"

namespace mc::design {

namespace {

using Table = std::array<uint8_t, 256>;

enum TableNumber : uint8_t { exactly, folded, classes };
enum CharacterClass : uint8_t { digit = 1, letter = 2, letterOrDigit = 4, high = 8 };

constexpr Table makeTable(uint8_t (*valueOf)(char)) {
    Table table{};
    for (size_t c = 0; c < table.size(); ++c) table[c] = valueOf(static_cast<char>(c));
    return table;
}

constexpr uint8_t classesOf(char c) {
    return static_cast<uint8_t>((isDigit(c) ? digit | letterOrDigit : 0) | (isLetter(c) ? letter | letterOrDigit : 0) |
                                (static_cast<uint8_t>(c) >= 0x80 ? high : 0));
}

constexpr std::array<Table, 3> tables = {makeTable([](char c) { return static_cast<uint8_t>(c); }),
                                         makeTable([](char c) { return static_cast<uint8_t>(lower(c)); }),
                                         makeTable(classesOf)};

// ---- what characters of a pattern stand for ----

constexpr int plainStarLimit = 200;
constexpr size_t mostLimitDigits = 3;

constexpr PatternElement oneOf(CharacterClass wanted) {
    return {.kind = PatternElement::character, .table = classes, .mask = wanted, .value = wanted};
}
constexpr PatternElement literal(char c, uint8_t table) {
    return {.kind = PatternElement::character,
            .table = table,
            .mask = 0xFF,
            .value = tables[table][static_cast<uint8_t>(c)]};
}

// One that takes more than its character to tell what it fits.
constexpr PatternElement fitsNothing(PatternElement::Kind kind, uint8_t table) {
    return {.kind = kind, .table = table, .mask = 0, .value = 1};
}

constexpr PatternElements makeElements(uint8_t table) {
    PatternElements elements{};
    for (size_t c = 0; c < elements.size(); ++c) elements[c] = literal(static_cast<char>(c), table);
    elements['?'] = {.kind = PatternElement::character, .table = exactly, .mask = 0, .value = 0};
    elements['#'] = oneOf(digit);
    elements['@'] = oneOf(letter);
    elements['&'] = oneOf(letterOrDigit);
    elements['_'] = literal(' ', exactly);
    elements[0xA7] = literal('"', exactly);
    elements[0xA4] = oneOf(high);
    elements['['] = fitsNothing(PatternElement::set, table);
    elements['|'] = fitsNothing(PatternElement::bar, table);
    elements['*'] = fitsNothing(PatternElement::star, table);
    return elements;
}
constexpr PatternElements exactElements = makeElements(exactly), foldedElements = makeElements(folded);

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

class Matching {
  public:
    Matching(std::string_view pattern, const PatternElements& elements, std::string_view text, int maxErrors)
        : pattern_(pattern), elements_(elements), text_(text), maxErrors_(maxErrors) {}

    int errors() {
        for (passFitting(); at_.text < text_.size() && at_.pattern < pattern_.size(); passFitting()) {
            const size_t tried = at_.pattern;
            if (step(at_)) {
                if (isStar(tried)) remember(tried);
            } else if (star_ && star_->pattern != tried) {
                ++retries_;
                at_ = *star_;
            } else {
                star_.reset();
                if (errors_ >= maxErrors_) return errors_ + 1;
                errors_ += recover();
                if (errors_ > maxErrors_) return errors_;
            }
        }
        return withWhatIsLeft();
    }

  private:
    // ---- elements of the pattern ----

    const PatternElement& elementAt(size_t at) const { return elements_[static_cast<uint8_t>(pattern_[at])]; }
    bool isStar(size_t at) const { return elementAt(at).kind == PatternElement::star; }
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
        const PatternElement::Kind kind = elementAt(at).kind;
        if (kind == PatternElement::character) return at + 1;
        if (kind == PatternElement::star) return starAt(at).end;
        if (kind == PatternElement::bar) return std::min(at + 2, pattern_.size());
        return std::min(pattern_.find(']', at), pattern_.size() - 1) + 1;
    }
    static bool fits(const PatternElement& element, char c) {
        return (tables[element.table][static_cast<uint8_t>(c)] & element.mask) == element.value;
    }
    // The same for an element that has more than one character in the pattern, up to `end`.
    bool fitsLong(size_t at, size_t end, char c) const {
        const PatternElement& element = elementAt(at);
        const auto same = [&](char one) { return fits(literal(one, element.table), c); };
        if (element.kind == PatternElement::bar) return same(pattern_[end - 1]);
        return pattern_[end - 1] == ']' && std::ranges::any_of(pattern_.substr(at + 1, end - at - 2), same);
    }

    // ---- steps ----

    // Moves behind all elements of one character that fit.
    void passFitting() {
        const char *const text = text_.data() + at_.text, *const pattern = pattern_.data() + at_.pattern;
        const size_t end = std::min(text_.size() - at_.text, pattern_.size() - at_.pattern);
        size_t count = 0;
        while (count < end && fits(elements_[static_cast<uint8_t>(pattern[count])], text[count])) ++count;
        at_ = {at_.text + count, at_.pattern + count};
    }

    // Tries the element at the place, and moves both behind what fits; leaves them where they are otherwise.
    bool step(Place& at) const {
        if (at.text == text_.size()) return at.pattern == pattern_.size();
        if (at.pattern == pattern_.size()) return false;
        const PatternElement& element = elementAt(at.pattern);
        if (element.kind == PatternElement::star) return stepStar(at);
        const size_t end = endOf(at.pattern);
        const bool isCharacter = element.kind == PatternElement::character;
        if (isCharacter ? !fits(element, text_[at.text]) : !fitsLong(at.pattern, end, text_[at.text])) return false;
        at = {at.text + 1, end};
        return true;
    }

    // A star looks for the next element that isn't one. Stars right behind it look for the same one, each from the
    // best place for it, so all that matters of them is that they may take what is left to them: nothing in front of
    // another element, one character at the end of the pattern.
    bool stepStar(Place& at) const {
        const Star star = starAt(at.pattern);
        int limitOfLast = limitOf(star);
        size_t next = star.end;
        while (next < pattern_.size() && isStar(next)) {
            const Star another = starAt(next);
            limitOfLast = limitOf(another);
            if (limitOfLast < 0) return false;
            next = another.end;
        }
        if (next < pattern_.size()) return findBehindStar(at, next, limitOf(star));
        const bool isAlone = star.end == next;
        const auto taken = static_cast<int>(text_.size() - at.text) - (isAlone ? 0 : 1);
        if (taken > limitOf(star) || (!isAlone && limitOfLast < 1)) return false;
        at = {text_.size(), next};
        return true;
    }
    bool findBehindStar(Place& at, size_t next, int limit) const {
        const PatternElement& element = elementAt(next);
        const size_t nextEnd = endOf(next);
        const size_t end = std::min(text_.size(), at.text + static_cast<size_t>(std::max(limit + 1, 0)));
        size_t found = at.text;
        if (element.kind == PatternElement::character) {
            while (found < end && !fits(element, text_[found])) ++found;
        } else {
            while (found < end && !fitsLong(next, nextEnd, text_[found])) ++found;
        }
        if (found == end) return false;
        at = {found + 1, nextEnd};
        return true;
    }
    int limitOf(const Star& star) const { return star.isLimited ? star.limit - retries_ : star.limit; }

    void remember(size_t star) {
        if (!star_ || star_->pattern != star) retries_ = 0;
        star_ = {at_.text, star};
    }

    // ---- behind a mismatch ----

    // Goes on from the nearest place where text and pattern agree again; the errors that lie on the way. Kept out of
    // the way of texts that fit.
    [[gnu::noinline]] int recover() {
        const size_t failed = at_.pattern;
        const bool failedAtStar = isStar(failed);
        const auto maxErrors = static_cast<size_t>(maxErrors_);
        size_t current = failedAtStar ? endOf(failed) : failed;
        size_t span = text_.size() - at_.text;
        if (!failedAtStar && maxErrors < span) span = maxErrors + 1;
        std::optional<size_t> resume;
        size_t skipped = 0;
        for (; current < pattern_.size() && skipped <= span && skipped <= maxErrors; ++skipped) {
            const size_t following = endOf(current);
            if (const auto offset = findAgreement(current, following, span)) {
                resume = current;
                span = *offset;
            }
            current = following;
        }
        at_ = {at_.text + span, resume.value_or(current)};
        if (resume && isStar(*resume)) return static_cast<int>(skipped) - 1;
        return static_cast<int>(failedAtStar ? errorsOfStar(starAt(failed), span, skipped) : span);
    }
    // The first offset below `span` where an element fits and the following one right behind it.
    std::optional<size_t> findAgreement(size_t element, size_t following, size_t span) const {
        for (size_t offset = 0; offset < span; ++offset) {
            Place at = {at_.text + offset, element};
            if (!step(at)) continue;
            at.pattern = following;
            if (step(at)) return offset;
        }
        return {};
    }
    static size_t errorsOfStar(const Star& star, size_t span, size_t skipped) {
        const auto limit = static_cast<size_t>(star.limit);
        return (skipped == 0 ? 0 : skipped - 1) + (star.isLimited && span > limit ? span - limit : 0);
    }

    int withWhatIsLeft() {
        if (at_.pattern == pattern_.size()) return errors_ + static_cast<int>(text_.size() - at_.text);
        for (size_t at = at_.pattern; at < pattern_.size(); at = endOf(at)) {
            if (!isStar(at) && ++errors_ > maxErrors_) return errors_;
        }
        return errors_;
    }

    const std::string_view pattern_;
    const PatternElements& elements_;
    const std::string_view text_;
    const int maxErrors_;
    Place at_ = {0, 0};
    std::optional<Place> star_;  // the one to go back to, and where the text goes on behind it
    int retries_ = 0;            // of that star
    int errors_ = 0;
};

}  // namespace

Pattern::Pattern(std::string_view text, bool caseSensitive)
    : text_(text), elements_(caseSensitive ? exactElements : foldedElements) {}

int Pattern::errorsOf(std::string_view text, int maxErrors) const {
    return Matching(text_, elements_, text, maxErrors).errors();
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
