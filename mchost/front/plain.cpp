// The front end of a session that is begun without one.
#include <cstdio>
#include <memory>
#include <string>
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
    void message(const Message& message) override {
        const std::string line = std::string(message.brief) + (message.details.empty() ? "" : ": ");
        std::fprintf(stderr, "%s%s\n", line.c_str(), std::string(message.details).c_str());
    }
    Event wait(const Awaited& awaited, std::optional<std::chrono::milliseconds>) override {
        const auto* modal = std::get_if<ModalDialog>(&awaited);
        if (modal) {
            modal->dialog->refresh();
            std::fputs(textOf(*modal->dialog, rowsUnattended).c_str(), stderr);
        }
        const auto* any = std::get_if<AnyEvent>(&awaited);
        return any && any->command == 0 ? Event(Quit{}) : Event(NobodyThere{});
    }
};

const bool isDefault =
    (setDefaultFrontEnd([]() -> std::unique_ptr<FrontEnd> { return std::make_unique<PlainFrontEnd>(); }), true);

}  // namespace

}  // namespace host
