// The front end of a session that is begun without one.
#include <cstdio>
#include <memory>
#include <string_view>

#include "mchost/front/dialog_text.h"
#include "mchost/session/front_end.h"
#include "mchost/session/session.h"

namespace host {

namespace {

// Lines and dialogs to the standard streams; nobody answers.
class PlainFrontEnd : public FrontEnd {
  public:
    void console(std::string_view text) override { std::fwrite(text.data(), 1, text.size(), stdout); }
    void messageField(int, std::string_view) override {}
    void messageCenter(int, std::string_view brief, std::string_view details) override {
        std::fprintf(stderr, "%.*s%s%.*s\n", static_cast<int>(brief.size()), brief.data(), details.empty() ? "" : ": ",
                     static_cast<int>(details.size()), details.data());
    }
    bool runModal(Dialog& dialog) override {
        dialog.refresh();
        std::fputs(textOf(dialog).c_str(), stderr);
        return false;
    }
};

const bool isDefault =
    (setDefaultFrontEnd([]() -> std::unique_ptr<FrontEnd> { return std::make_unique<PlainFrontEnd>(); }), true);

}  // namespace

}  // namespace host
