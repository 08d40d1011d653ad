// How wide texts are, and their division into lines.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace materials {

// The width of a text (Windows-1252), in the units in which a letter's height is 1. The library must be registered.
double widthOf(std::string_view text);

enum class Breaks {
    atBlanks,  // and behind "-" and "/"; a word that is too wide is divided
    atSigns,   // the same, and behind "." and ","; but a piece that is too wide stays whole
    none
};

// A text in lines that are at most so wide, of which there is one at least.
std::vector<std::string> wrapped(std::string_view text, double width, Breaks breaks);

}  // namespace materials
