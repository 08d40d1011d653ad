#include "tests/faults/cases.h"

namespace {

constexpr const char* list =
    "TITLE \"Water main\"\nPROJECT client \"Granlia\"\nNUMBER LP 6\nTEXT PIPE \"Pipe\"\nSUM ALL\n"
    "GROUP \"Pipes\"\n"
    "ITEM 1.01; =PIPE+\", V1\"; DN 250; =TRUNC(312.4/LP)+1; pc; =LP*48.0\n"
    "ITEM 1.02; =PIPE+\", V2\"; DN 200; 12; pc; 36.9\n";
constexpr const char* road =
    "%include attributes.txt\nPROJECT \"Granlia\"\nTITLE \"Stage 1\"\nDATE \"2026-04-14\"\nSCALE 5000\nSTART 0\n"
    "TOLERANCE 0.001 0.01\n"
    "ELEMENT 571240.0000 6642315.0000 571385.6864 6642392.4628 0 0 0\n"
    "ELEMENT 571385.6864 6642392.4628 571463.8666 6642439.6566 0 280 160\n"
    "ELEMENT 571463.8666 6642439.6566 571569.1128 6642610.2562 280 280 0\n";
constexpr const char* cells =
    "[[cell]]\nname = \"MARK\"\ndraw = [\n  { line = [[0, 0], [10, 0]] },\n  { circle = [5, 5, 2.5] },\n]\n";
constexpr const char* messages = "language = \"en\"\n[[list]]\nid = 1\n[list.text]\n1 = \"one %d\"\n2 = \"two\"\n";
constexpr const char* roadLabels =
    "SCALE 5000\nATTRIBUTE 1 \"Text\" 0 0 0 \"Labels\" 2.5 2.5\nUSE TEXT 1\n"
    "LABEL \"Bridge\" \"L = 80.0 m\" 571871 6643058 571842 6643170\nLEADER 571946 6643085\n"
    "FRAME circle\nHEAD dot 2\nLABEL \"1\" 571240 6642315 571126 6642366\n";
constexpr const char* symbols =
    "SYMBOL \"north\"\nBASE text \"N\" *\nBOX -9 -9 50 50\nTEXT \"N\"\nITEM ; North arrow; ; <count>\n"
    "SYMBOL \"scale\"\nBASE text \"1:*\" *\nBOX -9 -9 50 50\nTEXT \"1:5000\" near 9\nITEM ; Scale; ; <count>\n";
constexpr const char* old = "an old file that is good\n";

const std::string attributes = "apps/alignment/examples/attributes.txt";

Case materials(const std::string& name, const std::string& device, const std::string& output) {
    return {"materials-" + name,
            {},
            {{"list.txt", list}, {output, old}},
            {},
            "mchost materials list.txt --device " + device + " --out " + output + " --overwrite"};
}

}  // namespace

const std::vector<Case>& cases() {
    static const std::vector<Case> all = {
        materials("ps", "postscript", "m.ps"),
        materials("hpgl", "hpgl", "m.hpgl"),
        materials("pcl", "pcl", "m.pcl"),
        materials("ascii", "ascii", "m.txt"),
        {"first-start", {}, {{"list.txt", list}}, {}, "mchost materials list.txt --out m.ps", true},
        {"preview",
         {},
         {{"list.txt", list}, {"answers", "Printer set-up\nDevice=PostScript\nOK\nClose\n"}},
         {},
         "mchost --answers answers materials list.txt"},
        {"place",
         {},
         {{"list.txt", list}, {"answers", "Place in drawing\nOK\n0,0\nClose\n"}},
         {},
         "mchost --new plan.mcd --answers answers materials list.txt"},
        {"alignment",
         {attributes},
         {{"road.txt", road}, {"g.mcd", old}, {"g.ps", old}, {"g.png", old}},
         {},
         "mchost alignment road.txt --out g --overwrite"},
        {"looks",
         {attributes},
         {{"road.txt", road}},
         {},
         "mchost alignment road.txt --list --save-attributes looks.rsc"},
        {"labels",
         {},
         {{"labels.txt", roadLabels}, {"l.mcd", old}, {"l.png", old}},
         {},
         "mchost labels labels.txt --out l --overwrite"},
        {"labels-open",
         {},
         {{"labels.txt", roadLabels}},
         {"mchost labels labels.txt --out plan"},
         "mchost --open plan.mcd labels labels.txt --scale 2500"},
        {"labels-commands",
         {},
         {{"labels.txt", roadLabels},
          {"answers",
           "text=New\nplace\n571871,6643000\n571900,6643030\nreset\nend\ncollect\n571842,6643170\n571126,6642366\n"
           "reset\nclose\n"}},
         {"mchost labels labels.txt --out plan"},
         "mchost --open plan.mcd --answers answers labels --commands --scale 5000"},
        {"symbols",
         {attributes},
         {{"road.txt", road}, {"symbols.txt", symbols}, {"l.txt", old}},
         {"mchost alignment road.txt --out g"},
         "mchost symbols symbols.txt g.mcd --out l --mark marked --overwrite"},
        {"show", {attributes}, {{"road.txt", road}}, {"mchost alignment road.txt --out g"}, "mchost show g.mcd"},
        {"find",
         {},
         {{"labels.txt", roadLabels}, {"found.json", old}},
         {"mchost labels labels.txt --out a"},
         "mchost find *1* . --format json --out found.json --overwrite",
         false,
         2},
        {"find-replace",
         {},
         {{"labels.txt", roadLabels}},
         {"mchost labels labels.txt --out a", "mchost labels labels.txt --out b"},
         "mchost find L_=* a.mcd b.mcd --replace Length:* --backup",
         false,
         2},
        {"merge",
         {},
         {{"labels.txt", roadLabels}, {"keys", "reference attach a.mcd\nclose\n"}},
         {"mchost labels labels.txt --out a", "mchost labels labels.txt --out b",
          "mchost --open b.mcd --answers keys find x"},
         "mchost merge b.mcd --out whole"},
        {"formula",
         {"apps/formula/examples/prices.txt", "apps/formula/examples/trench.txt"},
         {},
         {},
         "mchost formula --file trench.txt"},
        {"mccel", {}, {{"cells.toml", cells}, {"c.cel", old}}, {}, "mccel -o c.cel cells.toml"},
        {"mcrsc", {}, {{"messages.toml", messages}, {"m.rsc", old}}, {}, "mcrsc -o m.rsc messages.toml"},
        {"mcshell",
         {},
         {{"a.txt", "a\n"}, {"b.txt", "b\n"}, {"c.txt", old}},
         {},
         "mcshell /C COPY a.txt+b.txt c.txt /Y"},
    };
    return all;
}
