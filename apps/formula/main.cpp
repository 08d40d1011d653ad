// formula: a calculator, and a checker of formulas and tag strings in a file.
#include <cctype>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <mchost/mdl/system.h>
#include <mclib/mclib.h>
#include <mclib/app/arguments.hpp>
#include <mclib/app/numbers.hpp>
#include <mclib/app/tell.hpp>
#include <mclib/app/values.hpp>
#include "job.h"
#include "table.h"

namespace formula {
namespace {

using mcapp::asNeeded;
using mcapp::fail;
using mcapp::longestTagText;
using mcapp::mostDecimals;
using mcapp::numberIn;
using mcapp::Outcome;
using mcapp::shown;
using mcapp::Values;

enum ExitStatus { done = 0, failed = 1, wrongCall = 2 };

// clang-format off
constexpr const char* usage =
    "usage: mchost formula \"FORMULA\" [NAME=NUMBER]...      the value of a formula\n"
    "       mchost formula --tag \"STRING\" [NAME=TEXT]...    the text of a tag string\n"
    "       mchost formula --file FILE.txt [NAME=NUMBER]... all of a file, with other values for its parameters\n"
    "  --decimals N   0 to 12; without it as many as a number needs, and 3 in a file that tells none\n"
    "  --help         print this\n";
// clang-format on

enum class Mode { formula, tag, file };

struct Given {
    std::string name, value;
};

struct Options {
    Mode mode = Mode::formula;
    std::optional<std::string> subject;  // the formula, the tag string or the name of the file
    std::vector<Given> given;
    std::optional<int> decimals;
};

// ---- arguments ----

bool wrong(const std::string& what) {
    return mcapp::failCall(what, usage);
}

bool setSubject(Options& options, const std::string& subject) {
    if (options.subject) return wrong("don't know what to do with \"" + subject + "\"");
    options.subject = subject;
    return true;
}

bool setOption(Options& options, const std::string& name, const std::string& value) {
    if (name == "--decimals") {
        options.decimals = numberIn<int>(value);
        const bool good = options.decimals && *options.decimals >= 0 && *options.decimals <= mostDecimals;
        return good || wrong("--decimals takes 0 to " + std::to_string(mostDecimals) + ", not \"" + value + "\"");
    }
    options.mode = name == "--tag" ? Mode::tag : Mode::file;
    return setSubject(options, value);
}

std::optional<Options> noOptions(const std::string& what) {
    wrong(what);
    return {};
}

std::optional<Options> optionsFrom(const std::vector<std::string>& arguments) {
    Options options;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const size_t equals = argument.find('=');
        if (argument == "--tag" || argument == "--file" || argument == "--decimals") {
            if (i + 1 == arguments.size()) return noOptions(argument + " needs a value");
            if (!setOption(options, argument, arguments[++i])) return {};
        } else if (argument.starts_with("--") && argument.size() > 2 &&
                   std::isalpha(static_cast<unsigned char>(argument[2]))) {
            return noOptions("there is no option " + argument);
        } else if (equals != argument.npos) {
            options.given.push_back({argument.substr(0, equals), argument.substr(equals + 1)});
        } else if (!setSubject(options, argument)) {
            return {};
        }
    }
    if (!options.subject) return noOptions("a formula, --tag or --file is missing");
    return options;
}

// The numbers that were given; nothing after a message.
std::optional<std::vector<GivenNumber>> numbersOf(const std::vector<Given>& given) {
    std::vector<GivenNumber> numbers;
    for (const Given& g : given) {
        const std::optional<double> value = numberIn<double>(g.value);
        if (!value) {
            wrong(g.name + " must be a number, not \"" + g.value + "\"" + mcapp::commaHint(g.value));
            return {};
        }
        numbers.push_back({g.name, *value});
    }
    return numbers;
}

// ---- work ----

constexpr int decimalsOfFiles = 3;

ExitStatus failAt(const std::string& subject, int column, const std::string& why) {
    const std::string caret(static_cast<size_t>(column) - 1, ' ');
    fail("column " + std::to_string(column) + ": " + why + "\n" + subject + "\n" + caret + "^");
    return failed;
}

ExitStatus refused(const std::string& what) {
    wrong(what);
    return wrongCall;
}

ExitStatus calculate(const Options& options) {
    const auto numbers = numbersOf(options.given);
    if (!numbers) return wrongCall;
    Values values;
    for (const auto& [name, value] : *numbers) {
        const std::string why = values.numberNameRefusal(name);
        if (!why.empty()) return refused(why);
        values.addNumber(name, value, "");
    }
    const Outcome outcome = values.evaluate(*options.subject);
    if (!outcome.value) return failAt(*options.subject, outcome.column, outcome.why);
    toolSubsystem_printf("%s\n", shown(*outcome.value, options.decimals.value_or(asNeeded)).c_str());
    return done;
}

ExitStatus expandTag(const Options& options) {
    Values values;
    for (const auto& [name, text] : options.given) {
        const std::string why = values.textNameRefusal(name);
        if (!why.empty()) return refused(why);
        if (text.size() > longestTagText) {
            return refused("the text of " + name + " is longer than " + std::to_string(longestTagText) + " characters");
        }
        values.addText(name, text);
    }
    const mcapp::TextOutcome text = values.expand(*options.subject);
    if (!text.value) return failAt(*options.subject, text.column, text.why);
    toolSubsystem_printf("%s\n", text.value->c_str());
    return done;
}

ExitStatus workOutFile(const Options& options) {
    const auto numbers = numbersOf(options.given);
    if (!numbers) return wrongCall;
    Table table;
    const bool good = workOut(*options.subject, *numbers, options.decimals.value_or(decimalsOfFiles), table);
    print(table);
    return good ? done : failed;
}

ExitStatus work(const Options& options) {
    switch (options.mode) {
        case Mode::formula: return calculate(options);
        case Mode::tag: return expandTag(options);
        case Mode::file: return workOutFile(options);
    }
    return wrongCall;
}

}  // namespace
}  // namespace formula

MDL_DESCRIPTION("a calculator, and a checker of formulas and tag strings");

extern "C" __attribute__((visibility("default"))) int main(int argc, char** argv) {
    using namespace formula;
    return mcapp::runApplication("FORMULA", argc, argv, usage, optionsFrom, work);
}
