// A front end for sessions whose words nobody looks at.
#pragma once

#include "mchost/session/front_end.h"

class SilentFrontEnd : public host::FrontEnd {
  public:
    void console(std::string_view) override {}
    void messageField(int, std::string_view) override {}
    void message(const host::Message&) override {}
    host::Event wait(const host::Awaited&, std::optional<std::chrono::milliseconds>) override {
        return host::NobodyThere{};
    }
};
