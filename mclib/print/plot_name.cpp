#include "mclib/print/plot_name.h"

#include "mchost/mdl/files.h"
#include "mclib/print/folder.h"

namespace mc::print {

namespace {

std::string plotFolder() {
    const std::string folder = valueOf("MS_PLTFILES");
    return withSeparator(folder.empty() ? valueOf("MS_TMP") : folder);
}

std::string textOf(const MdlPlotter* plotter, int32_t which) {
    char text[MDL_PLOT_TEXT_BYTES] = "";
    return plotter && mdlPlotter_getString(text, plotter, which) > 0 ? text : "";
}

bool isSet(const MdlPlotter* plotter, int32_t which) {
    int32_t value = 0;
    return plotter && mdlPlotter_getInt(&value, plotter, which) == MDL_SUCCESS && value != 0;
}

}  // namespace

bool plotsToSystem(const MdlPlotter* plotter) {
    return isSet(plotter, MDL_PLOTTER_IS_SYSTEM);
}

std::string plotterExtension(const MdlPlotter* plotter) {
    return textOf(plotter, MDL_PLOTTER_EXTENSION);
}

std::string plotterFile(const MdlPlotter* plotter) {
    if (!isSet(plotter, MDL_PLOTTER_HAS_OUTPUT_NAME)) return {};
    const std::string name = textOf(plotter, MDL_PLOTTER_OUTPUT_NAME);
    return name.empty() ? name : name + plotterExtension(plotter);
}

std::string plotFileName(std::string_view pageName, std::string_view extension) {
    char design[256] = "";
    mdlFile_parseName(tcbP->designFileName, nullptr, nullptr, design, nullptr);
    std::string path = plotFolder();
    path.append(design).append("_");
    for (const char c : pageName) path += c == '/' || c == '\\' || c == ':' ? '_' : c;
    if (extension.starts_with('.')) extension.remove_prefix(1);
    return path.append(".").append(extension.empty() ? "000" : extension);
}

}  // namespace mc::print
