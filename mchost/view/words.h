// What key-ins are made of: words, numbers and points that are taken from a line one by one. What isn't as it should be
// is refused: std::runtime_error, with a line for the user.
#pragma once

#include <string>
#include <string_view>

#include "mchost/mdl/types.h"

namespace host {

[[noreturn]] void refuse(const std::string& why);
std::string quoted(std::string_view text);

std::string_view takeLastWord(std::string_view& text);
void takeNothingMore(std::string_view rest);
double takeNumber(std::string_view& text, const char* what);  // "a factor"
Point3d takePoint(std::string_view& text);                    // "x,y" or "x,y,z" in master units; given in UOR
bool onOrOff(std::string_view word);

// The names of all, with commas between them.
template <class Names, class NameOf>
std::string listed(const Names& all, NameOf nameOf) {
    std::string list;
    for (const auto& one : all) list += (list.empty() ? "" : ", ") + std::string(nameOf(one));
    return list;
}

// Names of levels, as key-ins write them.
std::wstring wideName(std::string_view narrow);
std::string narrowName(std::wstring_view wide);

// Lengths and points for people, in master units.
std::string inMaster(double uor);
std::string pointText(const Point3d& uor);

}  // namespace host
