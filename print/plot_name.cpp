#include "print/plot_name.h"

#include "host/mdl/files.h"
#include "print/folder.h"

namespace print {

namespace {

std::string plotFolder() {
    const std::string folder = valueOf("MS_PLTFILES");
    return withSeparator(folder.empty() ? valueOf("MS_TMP") : folder);
}

}  // namespace

std::string plotFileName(std::string_view pageName, std::string_view extension) {
    char design[256] = "";
    mdlFile_parseName(tcbP->designFileName, nullptr, nullptr, design, nullptr);
    std::string path = plotFolder();
    path.append(design).append("_");
    for (const char c : pageName) path += c == '/' || c == '\\' || c == ':' ? '_' : c;
    if (extension.starts_with('.')) extension.remove_prefix(1);
    return path.append(".").append(extension.empty() ? "000" : extension);
}

}  // namespace print
