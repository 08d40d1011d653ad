// A session for fuzzers: an application of the family runs in it, nobody looks at it and nobody answers.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "folder.h"
#include "mchost/session/front_end.h"
#include "mchost/session/session.h"
#include "mclib/frame/main.h"

class FuzzFrontEnd : public host::FrontEnd {
  public:
    std::vector<std::string> messages;  // of the message centre

    void console(std::string_view) override {}
    void messageField(int, std::string_view) override {}
    void message(const host::Message& told) override {
        messages.emplace_back(told.brief);
        toldSoFar_.emplace_back(told.brief);
    }
    host::Event wait(const host::Awaited&, std::optional<std::chrono::milliseconds>) override {
        return host::NobodyThere{};
    }

    // A file was refused with one line that names it; a reason that an application knows isn't told again.
    void requireRefusal(const std::string& path) const {
        require(messages.size() <= 1);
        require(std::ranges::any_of(messages.empty() ? toldSoFar_ : messages, [&](const std::string& line) {
            return line.find(path) != std::string::npos && line.find('\n') == std::string::npos;
        }));
    }

  private:
    std::vector<std::string> toldSoFar_;
};

struct FuzzSession {
    FuzzFrontEnd& front;
    host::Session& session;
    MdlDesc* application;
};

// Begins at the first call and lasts as long as the process.
inline FuzzSession& fuzzSession() {
    static FuzzSession* const only = [] {
        auto front = std::make_unique<FuzzFrontEnd>();
        FuzzFrontEnd& shown = *front;
        folder();  // goes when the session has no more files in it
        auto* session = new host::Session({.frontEnd = std::move(front),
                                           .variables = {{"MS_APPRSC", BUILD_DIR "/lib/mclib.rsc"},
                                                         {"MS_USERPREF", folder().pathOf("user.rsc")},
                                                         {"MC_DRIVE_C", folder().pathOf("drive_c")}}});
        const auto main = [](int argc, char** argv) { return mclibMain_initMcLib("Fuzzer", argc, argv); };
        MdlDesc* application = session->startApplication("fuzzer", main);
        return new FuzzSession{shown, *session, application};
    }();
    return *only;
}
