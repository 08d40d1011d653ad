// Numbers as they stand in a list.
#pragma once

#include <string>

#include "list.h"

namespace materials {

// As few decimals as the number needs, at most 3, or 6 for one that is nearly 0.
std::string numberText(double number, const NumberStyle& style);
// The same with one decimal at least, and not more from 1000 kg on; or with as many as the list asks for.
std::string massText(double mass, const NumberStyle& style);
// What stands behind the digits of the whole number, its point included.
std::string decimalsOf(const std::string& number);

}  // namespace materials
