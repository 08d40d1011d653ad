// The names that resource sources give to their numbers, and the C++ header of constants that is made of them.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

// What `mdl::Message` of a format is given behind its list: ", const char*, int" for "%s has %d lines". "?" stands
// for a value that has no type here.
std::string valueTypesOf(std::string_view format);

struct NamedNumber {
    std::string name, type, value;
};

class ResourceNames {
  public:
    // What is wrong with the name; empty when it was taken. A scope is a namespace of the header: a dialog, a list,
    // "hooks" or "icons".
    std::string add(const std::string& scope, const NamedNumber& number);
    // Writes the header, which leaves a file alone that says the same; what is compiled with it isn't then compiled
    // anew. What failed; empty when it is written.
    std::string write(const std::string& path) const;

  private:
    std::map<std::string, std::vector<NamedNumber>> scopes_;
};
