// The arguments of a call: options by name, with a value or without, and inputs.
#pragma once

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <mchost/mdl/system.h>
#include <mclib/mclib.h>

#include <mclib/app/numbers.hpp>
#include <mclib/app/tell.hpp>

namespace mcapp {

// Those behind the application's name and how it was started.
inline std::vector<std::string> argumentsOf(int argc, char** argv) {
    return {argv + std::min(argc, 2), argv + argc};
}

// --help, which every application answers with its usage and status 0. True when the usage was asked for, and has been
// printed.
inline bool helped(const std::vector<std::string>& arguments, const char* usage) {
    if (std::ranges::find(arguments, "--help") == arguments.end()) return false;
    toolSubsystem_printf("%s", usage);
    return true;
}

// What every main function does: registers, answers --help, reads the options and works. `read` takes the arguments and
// gives the options, or nothing when the call is wrong, which it has told; `work` takes them and gives the status.
template <class Read, class Work>
int runApplication(const char* name, int argc, char** argv, const char* usage, Read read, Work work) {
    constexpr int done = 0, failed = 1, wrongCall = 2;
    if (mclibMain_initMcLib(name, argc, argv) != MCLIB_SUCCESS) return failed;
    const std::vector<std::string> arguments = argumentsOf(argc, argv);
    if (helped(arguments, usage)) return done;
    const auto options = read(arguments);
    return options ? work(*options) : wrongCall;
}

// A wrong call, which ends with status 2: what is wrong, and the usage. Always false.
inline bool failCall(const std::string& what, const char* usage) {
    fail(what);
    toolSubsystem_printf("%s", usage);
    return false;
}

// An option with a value. `set` keeps the value in the application's structure; it gives what is wrong with it, as a
// message tells it, or nothing.
template <class Options>
struct ValueOption {
    std::string_view name;
    std::string (*set)(Options& options, std::string_view name, const std::string& value);
};

// An option without a value.
template <class Options>
struct Flag {
    std::string_view name;
    bool Options::*set;
};

// How an application is called.
template <class Options>
struct CallForm {
    const char* usage;
    std::span<const ValueOption<Options>> values;
    std::span<const Flag<Options>> flags;
    std::string Options::*input;      // the first argument that is no option; null: all of those are `inputs`
    const char* inputName = nullptr;  // told when it is missing; null: it may be
    std::vector<std::string> Options::*inputs = nullptr;  // those behind it; null: there may be none
};

namespace detail {

template <auto Member>
struct OwnerOf;
template <class Owner, class Value, Value Owner::*Member>
struct OwnerOf<Member> {
    using Type = Owner;
};

}  // namespace detail

// For rows of ValueOption: setText<&Options::out>, for any text but an empty one.
template <auto Text>
std::string setText(typename detail::OwnerOf<Text>::Type& options, std::string_view name, const std::string& value) {
    if (value.empty()) return std::string(name) + " needs a value that isn't empty";
    options.*Text = value;
    return {};
}
// The same for numbers above 0.
template <auto Number>
std::string setPositive(typename detail::OwnerOf<Number>::Type& options, std::string_view name,
                        const std::string& value) {
    const auto read = numberIn<double>(value);
    if (!read || !(*read > 0)) return std::string(name) + " takes a number above 0, not \"" + value + "\"";
    options.*Number = *read;
    return {};
}

// Keeps an argument that is no option; false where there may be no further one.
template <class Options>
bool takeInput(Options& options, const std::string& argument, const CallForm<Options>& form) {
    if (form.input && (options.*form.input).empty()) {
        options.*form.input = argument;
        return true;
    }
    if (form.inputs) (options.*form.inputs).push_back(argument);
    return form.inputs;
}

// What follows "--" is no option. False after a message and the usage.
template <class Options>
bool takeArguments(Options& options, const std::vector<std::string>& arguments, const CallForm<Options>& form) {
    bool optionsEnded = false;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const auto value = std::ranges::find(form.values, argument, &ValueOption<Options>::name);
        const auto flag = std::ranges::find(form.flags, argument, &Flag<Options>::name);
        const bool isOption = !optionsEnded && argument.starts_with("-") && argument != "-";
        if (isOption && argument == "--") {
            optionsEnded = true;
        } else if (isOption && value != form.values.end()) {
            if (i + 1 == arguments.size()) return failCall(argument + " needs a value", form.usage);
            const std::string wrong = value->set(options, argument, arguments[++i]);
            if (!wrong.empty()) return failCall(wrong, form.usage);
        } else if (isOption && flag != form.flags.end()) {
            options.*flag->set = true;
        } else if (isOption || !takeInput(options, argument, form)) {
            return failCall("don't know what to do with \"" + argument + "\"", form.usage);
        }
    }
    if (!form.inputName || !(form.input ? (options.*form.input).empty() : (options.*form.inputs).empty())) return true;
    return failCall(std::string(form.inputName) + " is missing", form.usage);
}

}  // namespace mcapp
