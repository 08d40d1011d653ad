// How the compilers of text sources are called.
#pragma once

#include <CLI/CLI.hpp>

#include <cstdio>
#include <string>
#include <vector>

// What both have on their command lines. The compiler's own options are added to `app` before it is parsed.
struct CompilerCall {
    CLI::App app;
    const char* makes;  // what the compiler makes, such as "cell library"
    std::string output;
    std::vector<std::string> sources;

    CompilerCall(const char* name, const char* task, const char* made, const char* type, const char* content)
        : app(task, name), makes(made) {
        app.add_option("-o,--output", output, std::string("The ") + makes + " to make")->type_name(type);
        app.add_option("sources", sources, content)->type_name("FILE.toml");
        app.set_version_flag("--version", std::string(name) + " " MCHOST_VERSION);
    }

    // -1, or the exit status when there is nothing to compile: 2 for a wrong call, which is told.
    int parse(int argc, char** argv) {
        try {
            app.parse(argc, argv);
        } catch (const CLI::ParseError& error) {
            return app.exit(error) == 0 ? 0 : 2;
        }
        if (!output.empty() && !sources.empty()) return -1;
        // Told by hand, so that an option that isn't known is named first.
        const std::string missing =
            output.empty() ? std::string("the ") + makes + " to make isn't named" : "there are no sources";
        std::fprintf(stderr, "%s: %s; give --output FILE and the sources. --help tells more.\n", app.get_name().c_str(),
                     missing.c_str());
        return 2;
    }
};
