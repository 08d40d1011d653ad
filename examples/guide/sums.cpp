// sums: adds up the amounts of a list by their names.
#include <fstream>
#include <map>

#include <mclib/mclib.h>
#include <mclib/app/arguments.hpp>
#include <mclib/app/input.hpp>
#include <mclib/app/outputs.hpp>
#include <mclib/app/utf8.hpp>

namespace {

constexpr const char* usage = "usage: mchost ./sums.so LIST.txt [--out NAME] [--overwrite]\n";

struct Options {
    std::string input, out = "sums";
    bool overwrite = false;
};
constexpr mcapp::ValueOption<Options> values[] = {{"--out", mcapp::setText<&Options::out>}};
constexpr mcapp::Flag<Options> flags[] = {{"--overwrite", &Options::overwrite}};

using Sums = std::map<std::string, double>;

// Every fault of the list is told with its place; false when there was one.
bool readList(const std::string& file, Sums& sums) {
    mcapp::Input in;
    if (!in.open(file)) return false;
    while (in.nextLine()) {
        std::string name;
        double amount = 0;
        if (!in.isKeyword("AMOUNT"))
            in.failHere("a line begins with AMOUNT");
        else if (in.text(name, "the name") && in.positive(amount, "the amount") && in.endOfLine())
            sums[name] += amount;
    }
    return !in.failed();
}

// The file gets its name when all of it is written, so a failure leaves what was there.
bool writeSums(const Options& options, const Sums& sums) {
    mcapp::Outputs outputs(options.out, {".txt"});
    if (!outputs.prepare(options.input, options.overwrite)) return false;
    std::ofstream file(mcapp::systemPath(outputs.temporary(".txt")));
    for (const auto& [name, sum] : sums) file << mcapp::utf8From(name) << ": " << mcapp::shown(sum, 2) << '\n';
    file.close();
    if (!file) return mcapp::failOutput(options.out, "the sums can't be written; is the disk full?");
    return outputs.finish();
}

}  // namespace

int main(int argc, char** argv) {
    if (mclibMain_initMcLib("sums", argc, argv) != MCLIB_SUCCESS) return 1;
    const std::vector<std::string> arguments = mcapp::argumentsOf(argc, argv);
    if (mcapp::helped(arguments, usage)) return 0;
    Options options;
    const mcapp::CallForm<Options> form = {usage, values, flags, &Options::input, "the name of the list"};
    if (!mcapp::takeArguments(options, arguments, form)) return 2;
    Sums sums;
    return readList(options.input, sums) && writeSums(options, sums) ? 0 : 1;
}
