// Letters and digits of ASCII, whatever the locale is; other characters are none.
#pragma once

constexpr char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
