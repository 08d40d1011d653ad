// One pass over the text with a stack of the symbols that are still open: an operator is worked out as soon as the next
// token binds no tighter, which gives the order of an LR parser's reductions. The next token is read before the
// operators in front of it are worked out, so a console line about it comes first.
#include "mclib/text/formula.h"

#include <math.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <limits>
#include <string_view>

#include "mchost/mdl/system.h"
#include "mchost/mdl/transform.h"
#include "mclib/frame/letters.h"
#include "mclib/text/decimal.h"

namespace mc {

namespace {

// ---- characters and names ----

enum class Token : uint8_t { plus, minus, times, divide, power, open, close, number, function, end, bad };

// The token that begins with a character: number with a digit or a point, function with a letter, whatever the word is.
constexpr auto tokenStarts = [] {
    std::array<Token, 256> tokens;
    tokens.fill(Token::bad);
    for (int c = '0'; c <= '9'; ++c) tokens[c] = Token::number;
    for (int c = 'A'; c <= 'Z'; ++c) tokens[c] = tokens[c + 'a' - 'A'] = Token::function;
    tokens['.'] = Token::number;
    tokens['+'] = Token::plus;
    tokens['-'] = Token::minus;
    tokens['*'] = Token::times;
    tokens['/'] = Token::divide;
    tokens['^'] = Token::power;
    tokens['('] = Token::open;
    tokens[')'] = Token::close;
    tokens['\0'] = Token::end;
    return tokens;
}();

// What a letter or digit is in a name, upper case; 0 for all other characters.
constexpr auto nameCharacters = [] {
    std::array<char, 256> characters{};
    for (int i = 0; i < 128; ++i) {
        const auto c = static_cast<char>(i);
        if (isDigit(c) || isLetter(c)) characters[i] = upper(c);
    }
    return characters;
}();
constexpr char nameCharacter(char c) {
    return nameCharacters[static_cast<uint8_t>(c)];
}

// A name as a number, so that names compare at once: its characters in base 256. 0 is no name.
constexpr size_t longestKey = 8;
constexpr uint64_t addToKey(uint64_t key, char c) {
    return key << 8 | static_cast<uint8_t>(c);
}
constexpr uint64_t keyOf(std::string_view name) {
    uint64_t key = 0;
    for (const char c : name) key = addToKey(key, c);
    return key;
}

// ---- functions ----

enum class Domain : uint8_t { all, unit /* -1 to 1 */, notNegative };

struct Function {
    std::string_view name;
    double (*value)(double);
    Domain domain = Domain::all;
};

// Without its fraction and within 32 bits; what is no number is 0.
double wholeNumber(double x) {
    constexpr double lowest = std::numeric_limits<int32_t>::min(), highest = std::numeric_limits<int32_t>::max();
    return isnan(x) ? 0.0 : static_cast<double>(static_cast<int32_t>(std::clamp(x, lowest, highest)));
}

double halvesAwayFromZero(double x) {
    return wholeNumber(x < 0.0 ? x - 0.5 : x + 0.5);
}
double square(double x) {
    return x * x;
}
// x to the power 10, not 10 to the power x.
double tenthPower(double x) {
    return pow(x, 10.0);
}

// A correction that is the same for every x; the console tells what it was asked for.
double xCorrection(double x) {
    toolSubsystem_printf("X_Correction. inn=%f\n", x);
    return 20.0;
}

// clang-format off
constexpr auto functions = std::to_array<Function>({
    {"ABS",   fabs},
    {"ACOS",  acos, Domain::unit},
    {"ASIN",  asin, Domain::unit},
    {"ATAN",  atan},
    {"COS",   cos},
    {"COSH",  cosh},
    {"EXP",   exp},
    {"LOG",   log},
    {"LOG10", log10},
    {"POW10", tenthPower},
    {"ROUND", halvesAwayFromZero},
    {"SIN",   sin},
    {"SINH",  sinh},
    {"SQR",   square},
    {"SQRT",  sqrt, Domain::notNegative},
    {"TAN",   tan},
    {"TANH",  tanh},
    {"TRUNC", wholeNumber},
    {"XCORR", xCorrection},
});
// clang-format on

// A table in which each name has a slot of its own: a name is found with one look.
constexpr unsigned slotBits = 6;
static_assert(slotBits <= 6, "a bit of 64 for each slot");
constexpr size_t slotOf(uint64_t key, uint64_t multiplier) {
    return key * multiplier >> (64 - slotBits);
}

constexpr bool separatesAll(uint64_t multiplier) {
    uint64_t taken = 0;
    for (const Function& f : functions) {
        const uint64_t slot = uint64_t{1} << slotOf(keyOf(f.name), multiplier);
        if (taken & slot) return false;
        taken |= slot;
    }
    return true;
}

constexpr uint64_t slotMultiplier = [] {
    uint64_t multiplier = 0x9E3779B97F4A7C15;
    while (!separatesAll(multiplier)) multiplier += 0x5851F42D4C957F2E;
    return multiplier;
}();

struct Slot {
    uint64_t key = 0;
    const Function* function = nullptr;
};

constexpr auto slots = [] {
    std::array<Slot, size_t{1} << slotBits> all{};
    for (const Function& f : functions) all[slotOf(keyOf(f.name), slotMultiplier)] = {keyOf(f.name), &f};
    return all;
}();

const Function* findFunction(uint64_t key) {
    const Slot& slot = slots[slotOf(key, slotMultiplier)];
    return slot.key == key ? slot.function : nullptr;
}

bool inDomain(Domain domain, double x) {
    switch (domain) {
        case Domain::all: return true;
        case Domain::unit: return !(x < -1.0 || x > 1.0);
        case Domain::notNegative: return !(x < 0.0);
    }
    return true;
}

// ---- parameters ----

// The values are copies: the caller's may be the result of the last call, which stands on the stack.
struct Parameters {
    int count = 0;
    std::array<double, MCLIB_FORMULA_PARAMETERS> values;
    std::array<uint64_t, MCLIB_FORMULA_PARAMETERS> keys;
};

// Upper-cases the names where they stand. A slot without NUL ends with its last byte.
void recordParameters(Parameters& parameters, int count, char* names, const double* values) {
    parameters.count = count;
    for (int i = 0; i < count; ++i, names += MCLIB_FORMULA_NAME_SIZE) {
        uint64_t key = 0;
        for (int j = 0; j < MCLIB_FORMULA_NAME_SIZE && names[j]; ++j) key = addToKey(key, names[j] = upper(names[j]));
        parameters.keys[i] = key;
        parameters.values[i] = values[i];
    }
}

const double* findParameter(const Parameters& parameters, uint64_t key) {
    for (int i = 0; i < parameters.count; ++i) {
        if (parameters.keys[i] == key) return &parameters.values[i];
    }
    return nullptr;
}

// ---- scanner ----

void printUnknownName(const char* rest) {
    char text[MCLIB_FORMULA_LENGTH + 1];
    size_t length = 0;
    for (; rest[length]; ++length) text[length] = upper(rest[length]);
    text[length] = '\0';
    toolSubsystem_printf("Error '%s' in cmParse\n", text);
}

// Any number of the scanner's form, as atof reads it. `magnitude` is the power of ten of its first digit that counts.
double longNumber(const char* first, const char* last, ptrdiff_t magnitude) {
    double value = 0.0;
    if (std::from_chars(first, last, value).ec != std::errc::result_out_of_range) return value;
    return magnitude > 0 ? HUGE_VAL : 0.0;
}

struct Scanner {
    const char* at;
    const Parameters& parameters;
    const char* start = at;  // of the token
    Token token = Token::bad;
    double value = 0.0;                  // of a number
    const Function* function = nullptr;  // of a function
    int badness = MCLIB_FORMULA_SYNTAX;  // why a bad token is bad

    void next();

  private:
    Token number();
    Token word();
    void skipDigits(uint64_t& digits) {
        for (; isDigit(*at); ++at) digits = digits * 10 + static_cast<uint64_t>(*at - '0');
    }
    int exponent();
};

void Scanner::next() {
    while (*at == ' ') ++at;
    start = at;
    token = tokenStarts[static_cast<uint8_t>(*at)];
    if (token == Token::number) {
        token = number();
    } else if (token == Token::function) {
        token = word();
    } else if (token != Token::end) {
        ++at;
    }
}

// Digits with at most one point and perhaps an exponent.
Token Scanner::number() {
    uint64_t mantissa = 0;
    skipDigits(mantissa);
    ptrdiff_t digits = at - start, decimals = 0;
    if (*at == '.') {
        const char* const fraction = ++at;
        skipDigits(mantissa);
        decimals = at - fraction;
        digits += decimals;
        if (digits == 0) return Token::bad;
    }
    const ptrdiff_t scale = exponent() - decimals;
    if (at - start > MCLIB_FORMULA_NUMBER_LENGTH) {
        badness = MCLIB_FORMULA_LIMIT;
        return Token::bad;
    }
    if (digits > decimal::exactDigits || std::abs(scale) >= std::ssize(decimal::powersOfTen)) {
        value = longNumber(start, at, scale + digits - 1);
    } else {
        value = static_cast<double>(mantissa);
        value = scale < 0 ? value / decimal::powersOfTen[-scale] : value * decimal::powersOfTen[scale];
    }
    return Token::number;
}

// An E, a sign or none, and up to 3 digits, which may be missing.
int Scanner::exponent() {
    if (upper(*at) != 'E') return 0;
    ++at;
    const bool negative = *at == '-';
    if (*at == '+' || *at == '-') ++at;
    int power = 0;
    for (int i = 0; i < 3 && isDigit(*at); ++i) power = power * 10 + (*at++ - '0');
    return negative ? -power : power;
}

Token Scanner::word() {
    uint64_t key = 0;
    while (const char c = nameCharacter(*at)) {
        key = addToKey(key, c);
        ++at;
    }
    if (at - start <= static_cast<ptrdiff_t>(longestKey)) {
        if ((function = findFunction(key))) return Token::function;
        if (key == keyOf("PI")) {
            value = *fc_piP;
            return Token::number;
        }
        if (const double* parameter = findParameter(parameters, key)) {
            value = *parameter;
            return Token::number;
        }
    }
    printUnknownName(start);
    badness = MCLIB_FORMULA_UNKNOWN_NAME;
    return Token::bad;
}

// ---- parser ----

// What may stand on the stack: the start, what waits for an operand, and behind one an operator or the bracket's end.
enum class Symbol : uint8_t {
    start,
    open,
    function,
    sum,
    difference,
    product,
    quotient,
    power,
    negation,
    operand,
    close
};

struct ParseEntry {
    Symbol symbol;
    const Function* function;  // of a function
    double value;              // of an operand
};

// How tightly a symbol holds the operand behind it, and up to which strength a token lets the operand in front of it be
// taken. A token that is no operator takes no operand: everything up to the last bracket is worked out in front of it.
constexpr auto symbolStrength = std::to_array<uint8_t>({/* start, open, function */ 0, 0, 0, /* sum, difference */ 1, 1,
                                                        /* product, quotient */ 2, 2, /* power */ 3, /* negation */ 5});
constexpr auto tokenStrength = std::to_array<uint8_t>({/* plus, minus */ 1, 1, /* times, divide */ 2, 2,
                                                       /* power, from right to left */ 4,
                                                       /* open, close, number, function, end, bad */ 1, 1, 1, 1, 1, 1});
constexpr bool isOperator(Token token) {
    return token <= Token::power;
}
constexpr Symbol symbolOf(Token token) {
    return static_cast<Symbol>(static_cast<int>(Symbol::sum) + static_cast<int>(token));
}
static_assert(symbolOf(Token::power) == Symbol::power);

// Of the last call: its result is the value of entry 1, above the start.
struct FormulaState {
    std::array<ParseEntry, MCLIB_FORMULA_NESTING + 1> stack;
    double failureResult;
    int error;
    int column;  // where it is, from 1
};
FormulaState state;

class Parser {
  public:
    Parser(const char* formula, const Parameters& parameters) : scanner{formula, parameters} {
        top->symbol = Symbol::start;
    }
    // The value; or null, and the reason and place in the state.
    double* run();

  private:
    // Each takes the token; false when it is the end or something is wrong.
    bool takeBeforeOperand();
    bool takeBehindOperand();

    bool push(Symbol symbol);
    bool reduceBracket();
    bool reduceOperators();
    bool applyOperator(Symbol symbol);

    bool fail(int error) {
        outcome = error;
        return false;
    }
    bool failAtToken() { return fail(scanner.token == Token::bad ? scanner.badness : MCLIB_FORMULA_SYNTAX); }

    Scanner scanner;
    ParseEntry* top = state.stack.data();
    int outcome = MCLIB_FORMULA_GOOD;
};

double* Parser::run() {
    const char* const formula = scanner.at;
    bool goesOn;
    do {
        scanner.next();
        goesOn = top->symbol < Symbol::operand ? takeBeforeOperand() : takeBehindOperand();
    } while (goesOn);
    state.error = outcome;
    if (outcome == MCLIB_FORMULA_GOOD) return &top->value;
    state.column = static_cast<int>(scanner.start - formula) + 1;
    return nullptr;
}

bool Parser::push(Symbol symbol) {
    if (top == &state.stack.back()) return fail(MCLIB_FORMULA_LIMIT);
    (++top)->symbol = symbol;
    return true;
}

// A function's name takes its bracket alone, and a minus no other minus.
bool Parser::takeBeforeOperand() {
    const bool behindFunction = top->symbol == Symbol::function;
    if (scanner.token == Token::open) return push(Symbol::open);
    if (behindFunction) return failAtToken();
    switch (scanner.token) {
        case Token::number:
            if (!push(Symbol::operand)) return false;
            top->value = scanner.value;
            return true;
        case Token::function:
            if (!push(Symbol::function)) return false;
            top->function = scanner.function;
            return true;
        case Token::minus:
            if (top->symbol == Symbol::negation) return failAtToken();
            return push(Symbol::negation);
        default: return failAtToken();
    }
}

bool Parser::takeBehindOperand() {
    if (top->symbol == Symbol::close && !reduceBracket()) return false;
    if (!reduceOperators()) return false;
    if (isOperator(scanner.token)) return push(symbolOf(scanner.token));
    if (scanner.token == Token::close && top[-1].symbol == Symbol::open) return push(Symbol::close);
    if (scanner.token == Token::end && top[-1].symbol == Symbol::start) return false;
    return failAtToken();
}

// The operand in the bracket on top takes the place of the bracket, and of the function in front of it.
bool Parser::reduceBracket() {
    double value = top[-1].value;
    top -= 2;
    if (top[-1].symbol == Symbol::function) {
        const Function& function = *(--top)->function;
        if (!inDomain(function.domain, value)) return fail(MCLIB_FORMULA_RANGE);
        value = function.value(value);
    }
    top->symbol = Symbol::operand;
    top->value = value;
    return true;
}

// Works out all in front of the operand on top that holds it tighter than the token does.
bool Parser::reduceOperators() {
    const uint8_t strength = tokenStrength[static_cast<int>(scanner.token)];
    for (Symbol symbol = top[-1].symbol; symbolStrength[static_cast<int>(symbol)] >= strength;
         symbol = top[-1].symbol) {
        if (!applyOperator(symbol)) return false;
    }
    return true;
}

bool Parser::applyOperator(Symbol symbol) {
    const double right = top->value;
    if (symbol == Symbol::negation) {
        --top;
        top->symbol = Symbol::operand;
        top->value = -right;
        return true;
    }
    top -= 2;
    double& left = top->value;
    switch (symbol) {
        case Symbol::sum: left += right; break;
        case Symbol::difference: left -= right; break;
        case Symbol::product: left *= right; break;
        case Symbol::quotient:
            if (right == 0.0) return fail(MCLIB_FORMULA_DIVISION);
            left /= right;
            break;
        default: left = pow(left, right);
    }
    return true;
}

// ---- one call ----

// Tells of everything that is over a limit.
bool withinLimits(const char* formula, int parameterCount) {
    const bool tooMany = parameterCount > MCLIB_FORMULA_PARAMETERS;
    const bool tooLong = strnlen(formula, MCLIB_FORMULA_LENGTH + 1) > MCLIB_FORMULA_LENGTH;
    if (tooMany) {
        toolSubsystem_printf("Feil i mclibParse_parseFormula: For mange parametre %d (max %d)\n", parameterCount,
                             MCLIB_FORMULA_PARAMETERS);
    }
    if (tooLong) toolSubsystem_printf("Feil i mclibParse_parseFormula: For lang ligning\n");
    return !tooMany && !tooLong;
}

double* evaluate(const char* formula, int count, char* names, const double* values) {
    state.column = 1;
    state.error = formula ? MCLIB_FORMULA_LIMIT : MCLIB_FORMULA_SYNTAX;
    if (!formula || !withinLimits(formula, count)) return nullptr;
    Parameters parameters;
    if (names && values) recordParameters(parameters, count, names, values);
    return Parser(formula, parameters).run();
}

}  // namespace

}  // namespace mc

using namespace mc;

double* mclibParse_parseFormulaP(const char* formula, int* errorP, int parameterCount, char* parameterNames,
                                 const double* parameterValues) {
    double* const value = evaluate(formula, parameterCount, parameterNames, parameterValues);
    if (errorP) *errorP = value ? 0 : 1;
    if (value) return value;
    state.failureResult = 0.0;
    return &state.failureResult;
}

int mclibParse_getFormulaError(int* columnP) {
    if (columnP) *columnP = state.column;
    return state.error;
}
