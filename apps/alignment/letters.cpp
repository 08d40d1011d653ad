#include "letters.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace alignment {

namespace {

struct Letter {
    char character;
    std::string_view lines;  // points of two digits, x and y; a blank begins another line
};

// clang-format off
constexpr auto letters = std::to_array<Letter>({
    {'A', "002640 1232"}, {'B', "00063645443303 3342413000"}, {'C', "4536160501103041"}, {'D', "00063645413000"},
    {'E', "40000646 0333"}, {'F', "000646 0333"}, {'G', "45361605011030414323"}, {'H', "0006 4046 0343"},
    {'I', "2026 1030 1636"}, {'J', "4641301001"}, {'K', "0006 460340"}, {'L', "060040"}, {'M', "0006234640"},
    {'N', "00064046"}, {'O', "103041453616050110"}, {'P', "00063645443303"}, {'Q', "103041453616050110 2240"},
    {'R', "00063645443303 2340"}, {'S', "453616050413334241301001"}, {'T', "2026 0646"}, {'U', "060110304146"},
    {'V', "062046"}, {'W', "0610243046"}, {'X', "0046 0640"}, {'Y', "062346 2320"}, {'Z', "06460040"},
    {'0', "103041453616050110"}, {'1', "152620 1030"}, {'2', "05163645440040"},
    {'3', "0516364544334241301001 1333"}, {'4', "30360242"}, {'5', "460603334241301001"},
    {'6', "453616050110304142331302"}, {'7', "064610"}, {'8', "13040516364544331302011030414233"},
    {'9', "011030414536160504133344"}, {'.', "10201110"}, {',', "2110"}, {':', "2021 2324"}, {'-', "0343"},
    {'+', "0343 2125"}, {'=', "0242 0444"}, {'(', "36252130"}, {')', "16252110"}, {'/', "0046"},
    {'%', "0046 0515 3141"}, {'\'', "2624"}, {'"', "1614 3634"}, {'\xC6', "002646 2640 1222 2343"},
    {'\xD8', "103041453616050110 0046"}, {'\xC5', "002340 1131 2415263524"},
});
// clang-format on

char upper(char c) {
    const auto u = static_cast<unsigned char>(c);
    const bool small = ('a' <= u && u <= 'z') || (u >= 0xE0 && u <= 0xFE && u != 0xF7);
    return small ? static_cast<char>(u - 0x20) : c;
}

}  // namespace

std::vector<LetterLine> letterLines(char c) {
    const auto letter = std::ranges::find(letters, upper(c), &Letter::character);
    if (letter == letters.end()) return {};
    std::vector<LetterLine> lines(1);
    for (std::string_view left = letter->lines; !left.empty();) {
        if (left[0] == ' ') {
            lines.emplace_back();
            left.remove_prefix(1);
            continue;
        }
        lines.back().emplace_back(left[0] - '0', left[1] - '0');
        left.remove_prefix(2);
    }
    return lines;
}

}  // namespace alignment
