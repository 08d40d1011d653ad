// The language of formulas by its table of states, slowly and literally: what the parser is held against.
#pragma once

#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace formula_states {

// Tokens: + - * / ^ ( ) as they are, a digit a number, F the function EXP, $ the end; anything else is bad.
enum class Kind { expression, term, factor, power, primary, atom };

struct Rule {
    Kind left;
    int size;
};

inline const std::map<int, Rule> rules = {
    {1, {Kind::expression, 3}}, {2, {Kind::expression, 3}}, {3, {Kind::expression, 1}}, {4, {Kind::term, 3}},
    {5, {Kind::term, 3}},       {6, {Kind::term, 1}},       {7, {Kind::factor, 3}},     {8, {Kind::factor, 1}},
    {9, {Kind::power, 2}},      {10, {Kind::power, 1}},     {12, {Kind::primary, 1}},   {14, {Kind::atom, 3}},
    {15, {Kind::atom, 1}},      {16, {Kind::atom, 4}}};

// The rule that a state reduces by when it can't shift; 0 is an error.
inline int reduction(int state) {
    static const std::map<int, int> byState = {{2, 3},  {3, 6},  {4, 8},  {6, 10}, {8, 12}, {10, 15}, {17, 9},
                                               {21, 1}, {22, 2}, {23, 4}, {24, 5}, {25, 7}, {27, 14}, {29, 16}};
    const auto found = byState.find(state);
    return found == byState.end() ? 0 : found->second;
}

// The state after shifting a token; 0 when the state doesn't shift it.
inline int shift(int state, char token) {
    static const std::set<int> operandStates = {0, 9, 12, 13, 14, 15, 16, 20};
    const bool beforeOperand = operandStates.contains(state);
    const bool inSum = state == 1 || state == 19 || state == 28;
    switch (token) {
        case '+': return inSum ? 12 : 0;
        case '-': return inSum ? 13 : beforeOperand ? 5 : 0;
        case '*': return state == 2 || state == 21 || state == 22 ? 14 : 0;
        case '/': return state == 2 || state == 21 || state == 22 ? 15 : 0;
        case '^': return state == 4 ? 16 : 0;
        case '(': return state == 11 ? 20 : beforeOperand || state == 5 ? 9 : 0;
        case ')': return state == 19 ? 27 : state == 28 ? 29 : 0;
        case 'F': return beforeOperand || state == 5 ? 11 : 0;
        default: return token >= '0' && token <= '9' && (beforeOperand || state == 5) ? 10 : 0;
    }
}

inline int afterReduction(Kind left, int from) {
    switch (left) {
        case Kind::expression: return from == 0 ? 1 : from == 9 ? 19 : 28;
        case Kind::term: return from == 12 ? 21 : from == 13 ? 22 : 2;
        case Kind::factor: return from == 14 ? 23 : from == 15 ? 24 : from == 16 ? 25 : 3;
        case Kind::power: return 4;
        case Kind::primary: return from == 5 ? 17 : 6;
        case Kind::atom: return 8;
    }
    return 0;
}

struct Entry {
    int state;
    double value;
};

// The value of a rule's right side, which ends with `top`; nothing for a division by 0.
inline std::optional<double> reduced(int rule, const Entry* top) {
    switch (rule) {
        case 1: return top[-2].value + top->value;
        case 2: return top[-2].value - top->value;
        case 4: return top[-2].value * top->value;
        case 5: return top->value == 0.0 ? std::nullopt : std::optional(top[-2].value / top->value);
        case 7: return std::pow(top[-2].value, top->value);
        case 9: return -top->value;
        case 14: return top[-1].value;
        case 16: return std::exp(top[-1].value);
        default: return top->value;
    }
}

}  // namespace formula_states

// The value of a row of tokens, or nothing when it isn't of the language.
inline std::optional<double> valueByStates(std::string_view row) {
    using namespace formula_states;
    std::vector<Entry> stack = {{0, 0.0}};
    for (size_t at = 0;;) {
        const char token = at < row.size() ? row[at] : '$';
        const int state = stack.back().state;
        if (state == 1 && token == '$') return stack.back().value;
        if (const int next = shift(state, token)) {
            stack.push_back({next, static_cast<double>(token - '0')});
            ++at;
            continue;
        }
        const int rule = reduction(state);
        if (rule == 0) return {};
        const std::optional<double> value = reduced(rule, &stack.back());
        if (!value) return {};
        stack.resize(stack.size() - static_cast<size_t>(rules.at(rule).size));
        stack.push_back({afterReduction(rules.at(rule).left, stack.back().state), *value});
    }
}
