// Views as people name them.
#pragma once

#include <cstdint>
#include <string_view>

namespace host {

// 0 to 7, for a number from 1 to 8; std::runtime_error, with a line for the user, for another word.
int32_t viewNamed(std::string_view word);

}  // namespace host
