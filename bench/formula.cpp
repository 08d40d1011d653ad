// One-shot evaluation: text and parameters in, number out. The same formulas through a plain recursive descent with the
// same duties, a grammar of PEGTL that computes while it matches, FParser and muParser.
#include "mclib/text/formula.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#ifdef HAVE_FPARSER
#include <fparser.hh>
#endif
#ifdef HAVE_MUPARSER
#include <muParser.h>
#endif
#ifdef HAVE_PEGTL
#include <tao/pegtl.hpp>
#endif

namespace {

// ---- formulas ----

constexpr double parameterValues[] = {2.0, 3.0};

std::string oneOf180Characters() {
    std::string text = "a";
    for (const char* piece : {"+3.25*b2", "-sqrt(16)/8", "*(a-1.5)", "+cos(0.25)^2"}) {
        for (int i = 0; i < 4; ++i) text += piece;
    }
    text.resize(std::min<size_t>(text.size(), 178));
    while (text.back() != ')') text.pop_back();
    while (text.size() < 180) text += "+1";
    return text;
}

std::string randomFormula(std::mt19937& random, int depth) {
    const auto upTo = [&](unsigned n) { return random() % n; };
    if (depth == 0 || upTo(4) == 0) {
        switch (upTo(4)) {
            case 0: return "a";
            case 1: return "b2";
            case 2: return std::to_string(upTo(1000));
            default: return std::to_string(upTo(100)) + "." + std::to_string(1 + upTo(99));
        }
    }
    constexpr const char* functions[] = {"sin", "cos", "atan", "tanh", "abs"};
    const std::string left = randomFormula(random, depth - 1);
    if (upTo(5) == 0) return std::string(functions[upTo(5)]) + "(" + left + ")";
    return "(" + left + "+-*"[upTo(3)] + randomFormula(random, depth - 1) + ")";
}

const std::vector<std::vector<std::string>>& formulaSets() {
    static const std::vector<std::vector<std::string>> sets = [] {
        std::vector<std::vector<std::string>> all = {
            {"1+2*3"}, {"(a+b2)*sin(pi/4)-sqrt(9)/2"}, {oneOf180Characters()}, {}};
        std::mt19937 random(7);
        while (all[3].size() < 256) all[3].push_back(randomFormula(random, 3));
        return all;
    }();
    return sets;
}

// Runs `evaluate` (text to value) over the formulas of a set; the time is that of one formula.
template <class Evaluate>
void overSet(benchmark::State& state, Evaluate evaluate) {
    const std::vector<std::string>& formulas = formulaSets()[static_cast<size_t>(state.range(0))];
    for (const std::string& formula : formulas) {
        int error = 0;
        char names[2][6] = {"a", "b2"};
        const double expected = *mclibParse_parseFormulaP(formula.c_str(), &error, 2, names[0], parameterValues);
        const double value = evaluate(formula);
        const bool same = value == expected || std::abs(value - expected) <= 1e-9 * std::max(1.0, std::abs(expected));
        if (error || !same) {
            state.SkipWithError(("another value for " + formula).c_str());
            return;
        }
    }
    size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(evaluate(formulas[next]));
        if (++next == formulas.size()) next = 0;
    }
}

void evaluateLibrary(benchmark::State& state) {
    overSet(state, [](const std::string& formula) {
        char names[2][6] = {"a", "b2"};
        int error;
        return *mclibParse_parseFormulaP(formula.c_str(), &error, 2, names[0], parameterValues);
    });
}

// ---- a plain recursive descent: limits, upper case, names, domains and unknown names as the library has them ----

class Descent {
  public:
    Descent(const char* formula, char* names, int count, const double* values)
        : names(names), count(count), values(values) {
        const size_t length = std::strlen(formula);
        if (length > 512) {
            failed = true;
            input[0] = '\0';
            return;
        }
        for (size_t i = 0; i <= length; ++i) input[i] = upper(formula[i]);
        for (char* c = names; c < names + 6 * count; ++c) *c = upper(*c);
        at = input;
    }
    double value() {
        const double result = failed ? 0.0 : expression();
        skipSpaces();
        return failed || *at ? 0.0 : result;
    }

  private:
    static char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }
    static bool isDigit(char c) { return c >= '0' && c <= '9'; }
    static bool isNameChar(char c) { return isDigit(c) || (c >= 'A' && c <= 'Z'); }
    void skipSpaces() {
        while (*at == ' ') ++at;
    }
    bool take(char c) {
        skipSpaces();
        if (*at != c) return false;
        ++at;
        return true;
    }
    double fail() {
        failed = true;
        return 0.0;
    }
    double expression() {
        if (++depth > 49) return fail();
        double left = term();
        while (!failed) {
            if (take('+')) {
                left += term();
            } else if (take('-')) {
                left -= term();
            } else {
                break;
            }
        }
        --depth;
        return left;
    }
    double term() {
        double left = factor();
        while (!failed) {
            if (take('*')) {
                left *= factor();
            } else if (take('/')) {
                const double right = factor();
                if (right == 0.0) return fail();
                left /= right;
            } else {
                break;
            }
        }
        return left;
    }
    double factor() {
        const double left = take('-') ? -primary() : primary();
        return !failed && take('^') ? std::pow(left, factor()) : left;
    }
    double bracket() {
        if (!take('(')) return fail();
        const double inner = expression();
        return take(')') ? inner : fail();
    }
    double primary() {
        skipSpaces();
        if (isDigit(*at) || *at == '.') {
            char* end = nullptr;
            const double number = std::strtod(at, &end);
            at = end;
            return number;
        }
        return *at == '(' ? bracket() : name();
    }
    double name() {
        const char* const start = at;
        while (isNameChar(*at)) ++at;
        const std::string_view word(start, static_cast<size_t>(at - start));
        static constexpr std::pair<std::string_view, double (*)(double)> functions[] = {
            {"ABS", fabs}, {"ACOS", acos}, {"ASIN", asin},   {"ATAN", atan}, {"COSH", cosh},
            {"COS", cos},  {"EXP", exp},   {"LOG10", log10}, {"LOG", log},   {"SINH", sinh},
            {"SIN", sin},  {"SQRT", sqrt}, {"TANH", tanh},   {"TAN", tan}};
        for (const auto& [functionName, function] : functions) {
            if (word == functionName) {
                const double x = bracket();
                return function == sqrt && x < 0.0 ? fail() : function(x);
            }
        }
        if (word == "PI") return M_PI;
        for (int i = 0; i < count; ++i) {
            if (word == std::string_view(names + 6 * i)) return values[i];
        }
        return fail();
    }

    char input[513];
    const char* at = input;
    char* names;
    int count;
    const double* values;
    int depth = 0;
    bool failed = false;
};

void evaluateDescent(benchmark::State& state) {
    overSet(state, [](const std::string& formula) {
        char names[2][6] = {"a", "b2"};
        return Descent(formula.c_str(), names[0], 2, parameterValues).value();
    });
}

// ---- PEGTL ----

#ifdef HAVE_PEGTL
namespace grammar {
using namespace tao::pegtl;

struct Sum;
struct Spaces : star<one<' '>> {};
struct Exponent : seq<one<'E', 'e'>, opt<one<'+', '-'>>, rep_max<3, digit>> {};
struct Number : seq<sor<seq<plus<digit>, opt<one<'.'>, star<digit>>>, seq<one<'.'>, plus<digit>>>, opt<Exponent>> {};
struct Bracket : seq<one<'('>, Spaces, Sum, one<')'>, Spaces> {};
struct FunctionName : seq<plus<alnum>, at<Spaces, one<'('>>> {};
struct Call : seq<at<alpha>, FunctionName, Spaces, Bracket> {};
struct Variable : seq<alpha, star<alnum>> {};
struct Primary : sor<seq<Number, Spaces>, Bracket, Call, seq<Variable, Spaces>> {};
struct Negation : seq<one<'-'>, Spaces, Primary> {};
struct Power;
struct Raised : seq<one<'^'>, Spaces, Power> {};
struct Power : seq<sor<Negation, Primary>, opt<Raised>> {};
struct Times : seq<one<'*'>, Spaces, Power> {};
struct Divide : seq<one<'/'>, Spaces, Power> {};
struct Term : seq<Power, star<sor<Times, Divide>>> {};
struct Plus : seq<one<'+'>, Spaces, Term> {};
struct Minus : seq<one<'-'>, Spaces, Term> {};
struct Sum : seq<Term, star<sor<Plus, Minus>>> {};
struct Formula : seq<Spaces, Sum, eof> {};

struct Values {
    std::vector<double> stack;
    std::vector<double (*)(double)> functions;
    bool failed = false;
    double pop() {
        const double value = stack.back();
        stack.pop_back();
        return value;
    }
};

template <class Rule>
struct Action : nothing<Rule> {};
template <>
struct Action<Number> {
    template <class Input>
    static void apply(const Input& in, Values& values) {
        values.stack.push_back(std::strtod(in.begin(), nullptr));
    }
};
template <>
struct Action<FunctionName> {
    template <class Input>
    static bool apply(const Input& in, Values& values) {
        static const std::map<std::string_view, double (*)(double)> functions = {
            {"abs", fabs},    {"acos", acos}, {"asin", asin}, {"atan", atan}, {"cos", cos},
            {"cosh", cosh},   {"exp", exp},   {"log", log},   {"sin", sin},   {"sinh", sinh},
            {"log10", log10}, {"sqrt", sqrt}, {"tan", tan},   {"tanh", tanh}};
        const auto found = functions.find(std::string_view(in.begin(), in.size()));
        if (found == functions.end()) return false;
        values.functions.push_back(found->second);
        return true;
    }
};
template <>
struct Action<Call> {
    static void apply0(Values& values) {
        values.stack.back() = values.functions.back()(values.stack.back());
        values.functions.pop_back();
    }
};
template <>
struct Action<Variable> {
    template <class Input>
    static bool apply(const Input& in, Values& values) {
        const std::string_view name(in.begin(), in.size());
        const double value = name == "a" ? parameterValues[0] : name == "b2" ? parameterValues[1] : M_PI;
        values.stack.push_back(value);
        return name == "a" || name == "b2" || name == "pi";
    }
};
template <>
struct Action<Negation> {
    static void apply0(Values& values) { values.stack.back() = -values.stack.back(); }
};
template <class Operation>
struct Binary {
    static void apply0(Values& values) {
        const double right = values.pop();
        values.stack.back() = Operation()(values.stack.back(), right);
    }
};
struct RaisedTo {
    double operator()(double a, double b) const { return std::pow(a, b); }
};
template <>
struct Action<Raised> : Binary<RaisedTo> {};
template <>
struct Action<Times> : Binary<std::multiplies<>> {};
template <>
struct Action<Divide> : Binary<std::divides<>> {};
template <>
struct Action<Plus> : Binary<std::plus<>> {};
template <>
struct Action<Minus> : Binary<std::minus<>> {};
}  // namespace grammar

void evaluatePegtl(benchmark::State& state) {
    grammar::Values values;
    overSet(state, [&](const std::string& formula) {
        values.stack.clear();
        tao::pegtl::memory_input<tao::pegtl::tracking_mode::lazy> input(formula, "");
        return tao::pegtl::parse<grammar::Formula, grammar::Action>(input, values) ? values.stack.back() : NAN;
    });
}
#endif

// ---- libraries that compile a formula first ----

#ifdef HAVE_FPARSER
void evaluateFparser(benchmark::State& state) {
    overSet(state, [](const std::string& formula) {
        FunctionParser parser;
        parser.AddConstant("pi", M_PI);
        return parser.Parse(formula, "a,b2") < 0 ? parser.Eval(parameterValues) : NAN;
    });
}
#endif

#ifdef HAVE_MUPARSER
void evaluateMuparser(benchmark::State& state) {
    double a = parameterValues[0], b2 = parameterValues[1];
    overSet(state, [&](const std::string& formula) {
        mu::Parser parser;
        parser.DefineConst("pi", M_PI);
        parser.DefineVar("a", &a);
        parser.DefineVar("b2", &b2);
        parser.SetExpr(formula);
        return parser.Eval();
    });
}
#endif

// 0: 5 characters, 1: 27 with parameters and functions, 2: 180 characters, 3: a mix of 256 formulas.
BENCHMARK(evaluateLibrary)->DenseRange(0, 3);
BENCHMARK(evaluateDescent)->DenseRange(0, 3);
#ifdef HAVE_PEGTL
BENCHMARK(evaluatePegtl)->DenseRange(0, 3);
#endif
#ifdef HAVE_FPARSER
BENCHMARK(evaluateFparser)->DenseRange(0, 3);
#endif
#ifdef HAVE_MUPARSER
BENCHMARK(evaluateMuparser)->DenseRange(0, 3);
#endif

}  // namespace

BENCHMARK_MAIN();
