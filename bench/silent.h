// A front end for sessions whose words nobody looks at.
#pragma once

#include "mchost/session/front_end.h"

class SilentFrontEnd : public host::FrontEnd {
  public:
    void console(std::string_view) override {}
    void messageField(int, std::string_view) override {}
    void messageCenter(int, std::string_view, std::string_view) override {}
    bool runModal(host::Dialog&) override { return false; }
};
