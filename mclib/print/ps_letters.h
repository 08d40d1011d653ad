// The letters of PostScript texts: which of Windows-1252 the head of the file shows, and the set-up that brings the
// rest.
#pragma once

#include "mclib/print/letters.h"

namespace mc {

// The codes that the head maps, and those that Adobe's standard encoding, which it leaves as it is, has in common with
// Windows-1252. The quotes ' and ` of ASCII are there as curly ones, as they have always been printed.
constexpr ShownLetters headLetters = asciiAnd(
    "\xC4\xE4\xD6\xF6\xDC\xFC\xDF\xE6\xC6\xF8\xD8\xE5\xC5\xA9"
    "\xA1\xA2\xA3\xA5\xA7\xAB\xB6\xBB\xBF");

// With the set-up: all but the codes that stand for no character.
constexpr ShownLetters windowsLetters = [] {
    ShownLetters shown;
    shown.fill(true);
    for (const unsigned char c : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) shown[c] = false;
    return shown;
}();

// Gives Helvetica-Norsk, as the head has made it, the rest of its letters. What holds on a page is set up on it, so
// that pages can be printed in any order.
// clang-format off
constexpr std::string_view psWindowsLetters =
    "/Helvetica-Norsk /Helvetica-Norsk [\n"
    "8#200/Euro 8#202/quotesinglbase 8#203/florin 8#204/quotedblbase 8#205/ellipsis\n"
    "8#206/dagger 8#207/daggerdbl 8#210/circumflex 8#211/perthousand 8#212/Scaron\n"
    "8#213/guilsinglleft 8#214/OE 8#216/Zcaron 8#221/quoteleft 8#222/quoteright\n"
    "8#223/quotedblleft 8#224/quotedblright 8#225/bullet 8#226/endash 8#227/emdash\n"
    "8#230/tilde 8#231/trademark 8#232/scaron 8#233/guilsinglright 8#234/oe\n"
    "8#236/zcaron 8#237/Ydieresis 8#240/space 8#244/currency 8#246/brokenbar\n"
    "8#250/dieresis 8#252/ordfeminine 8#254/logicalnot 8#255/hyphen 8#256/registered\n"
    "8#257/macron 8#260/degree 8#261/plusminus 8#262/twosuperior 8#263/threesuperior\n"
    "8#264/acute 8#265/mu 8#267/periodcentered 8#270/cedilla 8#271/onesuperior\n"
    "8#272/ordmasculine 8#274/onequarter 8#275/onehalf 8#276/threequarters\n"
    "8#300/Agrave 8#301/Aacute 8#302/Acircumflex 8#303/Atilde 8#307/Ccedilla\n"
    "8#310/Egrave 8#311/Eacute 8#312/Ecircumflex 8#313/Edieresis 8#314/Igrave\n"
    "8#315/Iacute 8#316/Icircumflex 8#317/Idieresis 8#320/Eth 8#321/Ntilde\n"
    "8#322/Ograve 8#323/Oacute 8#324/Ocircumflex 8#325/Otilde 8#327/multiply\n"
    "8#331/Ugrave 8#332/Uacute 8#333/Ucircumflex 8#335/Yacute 8#336/Thorn\n"
    "8#340/agrave 8#341/aacute 8#342/acircumflex 8#343/atilde 8#347/ccedilla\n"
    "8#350/egrave 8#351/eacute 8#352/ecircumflex 8#353/edieresis 8#354/igrave\n"
    "8#355/iacute 8#356/icircumflex 8#357/idieresis 8#360/eth 8#361/ntilde\n"
    "8#362/ograve 8#363/oacute 8#364/ocircumflex 8#365/otilde 8#367/divide\n"
    "8#371/ugrave 8#372/uacute 8#373/ucircumflex 8#375/yacute 8#376/thorn\n"
    "8#377/ydieresis\n"
    "] ReEncodeSmall\n";
// clang-format on

}  // namespace mc
