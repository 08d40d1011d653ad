// show: lists what design files, cell libraries and resource files hold, with the library's own records taken apart.
//
// It calls the host alone and registers with nobody, so that no preference file is opened, or made, on the way.
#include <string>
#include <vector>

#include <mchost/mdl/files.h>
#include <mchost/mdl/system.h>
#include <mclib/app/arguments.hpp>
#include <mclib/app/tell.hpp>
#include "show.h"

namespace show {
namespace {

using mcapp::fail;

enum ExitStatus { done = 0, failed = 1, wrongCall = 2 };

// clang-format off
constexpr const char* usage =
    "usage: mchost show [--full] FILE...   what design files (.mcd), cell libraries (.cel) and resource files hold\n"
    "  --full   every element, every field of every record, and the members of string lists\n"
    "  --help   print this\n";
// clang-format on

struct Options {
    bool full = false;
    std::vector<std::string> files;
};

bool wrong(const std::string& what) {
    return mcapp::failCall(what, usage);
}

bool takeArguments(Options& options, const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) {
        if (argument == "--full")
            options.full = true;
        else if (argument.starts_with("--"))
            return wrong("there is no option " + argument);
        else
            options.files.push_back(argument);
    }
    return !options.files.empty() || wrong("the name of a file is missing");
}

bool tellFile(const std::string& name, bool full) {
    int32_t kind = MDL_FILE_OTHER;
    if (mdlFile_getKind(&kind, name.c_str()) != MDL_SUCCESS) return false;
    switch (kind) {
        case MDL_FILE_DESIGN:
        case MDL_FILE_CELL_LIBRARY: return tellModel(name, kind == MDL_FILE_CELL_LIBRARY, full);
        case MDL_FILE_RESOURCE: return tellResources(name, full);
        default:
            return fail(name +
                        ": this is no design file, cell library or resource file, or its beginning is missing; "
                        "give another file, or a copy that is whole");
    }
}

ExitStatus tellAll(const Options& options) {
    const size_t count = options.files.size();
    size_t untold = 0;
    for (const std::string& name : options.files) {
        if (!tellFile(name, options.full))
            ++untold;
        else if (count > 1)
            line(0, "");
    }
    if (untold == 0) return done;
    fail(std::to_string(untold) + " of " + counted(count, "file") + " couldn't be shown as a whole");
    return failed;
}

}  // namespace
}  // namespace show

MDL_DESCRIPTION("what a design file, cell library or resource file holds");

extern "C" __attribute__((visibility("default"))) int main(int argc, char** argv) {
    using namespace show;
    Options options;
    const std::vector<std::string> arguments = mcapp::argumentsOf(argc, argv);
    if (mcapp::helped(arguments, usage)) return done;
    return takeArguments(options, arguments) ? tellAll(options) : wrongCall;
}
