// Named values: numbers that formulas use, and texts that tag strings use. Letter case of a name doesn't count.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <mclib/mclib.h>
#include "apps/common/names.h"
#include "mclib/text/formula.h"
#include "mclib/text/tagstring.h"

namespace app {

// What a formula or a tag string came to.
template <class Value>
struct OutcomeOf {
    std::optional<Value> value;
    std::string why = {};  // without a value: the reason, as a message tells it
    int column = 1;        // and where it showed, from 1
};
using Outcome = OutcomeOf<double>;
using TextOutcome = OutcomeOf<std::string>;

class Values {
  public:
    // Why a name can't be given to a number, or to a text; empty when it can.
    std::string numberNameRefusal(const std::string& name) const;
    std::string textNameRefusal(const std::string& name) const;

    // For names that aren't refused. A number is known to tag strings too, as the text that it is shown with.
    void addNumber(const std::string& name, double value, const std::string& shown);
    void addText(const std::string& name, const std::string& text);
    // Another value for a name that was added; as the same kind.
    void setNumber(const std::string& name, double value, const std::string& shown);
    void setText(const std::string& name, const std::string& text);

    // A finite number.
    Outcome evaluate(const std::string& formula);
    TextOutcome expand(const std::string& tagString);

  private:
    bool hasText(std::string_view name) const;
    TextOutcome unknownName(std::string_view tagString) const;

    using FormulaName = std::array<char, MCLIB_FORMULA_NAME_SIZE>;
    std::vector<FormulaName> names_;
    std::vector<double> numbers_;
    std::vector<TagEntry> tags_;
};

constexpr size_t longestTagText = sizeof TagEntry{}.value - 1;

}  // namespace app
