// The head of every PostScript file: Helvetica with the Norwegian letters under the name Helvetica-Norsk, a procedure
// for a line (x1 y1 x2 y2 width _dl) and three for a text (x y string height angle), which stands left-aligned at the
// point (_dtfl), right-aligned (_dtfr) or centred (_dtfc).
#pragma once

#include <string_view>

namespace mc {

// clang-format off
// What the procedures for texts begin and end with; between them the text is moved to where it is justified.
#define MC_PS_TEXT_BEGIN                                     \
    "{ %def\n"                                               \
    "  /angle exch def\n"                                    \
    "  /height exch def\n"                                   \
    "  /s exch def\n"                                        \
    "  /y exch def\n"                                        \
    "  /x exch def\n"                                        \
    "  /Helvetica-Norsk findfont height scalefont setfont\n" \
    "  x y translate\n"                                      \
    "  angle rotate\n"                                       \
    "  0 0 moveto\n"
#define MC_PS_TEXT_END              \
    "  s show\n"                    \
    "  0 angle sub rotate\n"        \
    "  0 x sub 0 y sub translate\n" \
    "} bind def\n"

constexpr std::string_view psProlog =
    "%!PS-Adobe\n"
    "/reencsmalldict 12 dict def\n"
    "/ReEncodeSmall\n"
    " { reencsmalldict begin\n"
    "   /newcodesandnames exch def\n"
    "   /newfontname exch def\n"
    "   /basefontname exch def\n"
    "   /basefontdict basefontname findfont def\n"
    "   /newfont basefontdict maxlength dict def\n"
    "   basefontdict\n"
    "   { exch dup /FID ne\n"
    "     { dup /Encoding eq\n"
    "       { exch dup length array copy\n"
    "         newfont 3 1 roll put }\n"
    "       { exch newfont 3 1 roll put }\n"
    "       ifelse\n"
    "     }\n"
    "     { pop pop }\n"
    "     ifelse\n"
    "   } forall\n"
    "   newfont /FontName newfontname put\n"
    "   newcodesandnames aload pop\n"
    "   newcodesandnames length 2 idiv\n"
    "    { newfont /Encoding get 3 1 roll put}\n"
    "    repeat\n"
    "   newfontname newfont definefont pop\n"
    "   end\n"
    " } def\n"
    " /scandvec [\n"
    "   8#304 /Adieresis\n"
    "   8#344 /adieresis\n"
    "   8#326 /Odieresis\n"
    "   8#366 /odieresis\n"
    "   8#334 /Udieresis\n"
    "   8#374 /udieresis\n"
    "   8#337 /germandbls\n"
    "   8#346 /ae\n"
    "   8#306 /AE\n"
    "   8#370 /oslash\n"
    "   8#330 /Oslash\n"
    "   8#345 /aring\n"
    "   8#305 /Aring\n"
    "   8#251 /copyright\n"
    " ] def\n"
    "/Helvetica /Helvetica-Norsk scandvec\n"
    "  ReEncodeSmall\n"
    "/_dl\n"
    "{ %def\n"
    "  /lwid exch def\n"
    "  /ytwo exch def\n"
    "  /xtwo exch def\n"
    "  /yone exch def\n"
    "  /xone exch def\n"
    "  lwid setlinewidth\n"
    "  xone yone moveto\n"
    "  xtwo ytwo lineto\n"
    "  stroke\n"
    "} bind def\n"
    "/_dtfl\n"
    MC_PS_TEXT_BEGIN
    MC_PS_TEXT_END
    "/_dtfr\n"
    MC_PS_TEXT_BEGIN
    "  s stringwidth\n"
    "  exch neg exch rmoveto\n"
    MC_PS_TEXT_END
    "/_dtfc\n"
    MC_PS_TEXT_BEGIN
    "  s stringwidth\n"
    "  exch neg 2 div exch rmoveto\n"
    MC_PS_TEXT_END;
#undef MC_PS_TEXT_BEGIN
#undef MC_PS_TEXT_END
// clang-format on

}  // namespace mc
