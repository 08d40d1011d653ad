// Labels as a text file tells them.
#pragma once

#include <string>
#include <vector>

#include <mchost/mdl/transform.h>
#include "looks.h"

namespace labels {

// A label, in master units. The first leader goes from its tip to the text, the others from their tips to the end of
// the first one.
struct Label {
    Style style;
    std::string text;  // Windows-1252; lines divided by line feeds
    std::vector<std::vector<Point3d>> leaders;
    std::string origin;  // the line that tells it, such as "labels.txt, line 5"
};

struct LabelFile {
    Paper paper;
    Style style;  // that holds behind the last line
    std::vector<Label> labels;
};

}  // namespace labels
