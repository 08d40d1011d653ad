// The columns of an item, and the fields in which a form shows them.
#pragma once

#include "amounts.h"
#include "lettering.h"
#include "list.h"

namespace materials {

struct TextColumn {
    const char* field;
    const char* name;
    std::string Item::*text;
    Breaks breaks;
};
struct NumberColumn {
    const char* field;
    const char* name;
    double Item::*value;
    bool Item::*has;
    std::string (*shown)(double value, const NumberStyle& style);
};

// clang-format off
inline constexpr TextColumn textColumns[] = {
    {"MARK", "mark",        &Item::mark,        Breaks::atSigns},
    {"DESC", "description", &Item::description, Breaks::atBlanks},
    {"DIME", "dimension",   &Item::dimension,   Breaks::atBlanks},
    {"MATL", "material",    &Item::material,    Breaks::atBlanks},
    {"UNIT", "unit",        &Item::unit,        Breaks::none},
    {"NOTE", "note",        &Item::note,        Breaks::atBlanks},
};
inline constexpr NumberColumn numberColumns[] = {
    {"NUMB", "number",      &Item::number,      &Item::hasNumber, numberText},
    {"MASS", "mass",        &Item::mass,        &Item::hasMass,   massText},
    {"TOTM", "total",       &Item::total,       &Item::hasMass,   massText},
};
// clang-format on
inline constexpr const char *headingField = "HEAD", *descriptionField = "DESC", *totalField = "TOTM";

}  // namespace materials
