// Answers by script: a queue of steps that dialogs take as they are run, each dialog until it has ended.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "mchost/dialog/dialog.h"
#include "mchost/session/front_end.h"

namespace host {

class DialogScript {
  public:
    // Steps; each gives the script again. Texts are Windows-1252.
    DialogScript& press(int32_t buttonId);
    DialogScript& setValue(int32_t kind, int32_t id, std::string value);
    DialogScript& selectRow(int32_t listBoxId, int32_t row);
    DialogScript& selectRows(int32_t listBoxId, std::vector<int32_t> rows);
    DialogScript& choose(int32_t comboBoxId, int32_t row);
    DialogScript& type(int32_t textId, std::string text);  // and stays in the item
    DialogScript& resize(int32_t width, int32_t height);
    DialogScript& activate(int32_t kind, int32_t id);
    DialogScript& close();
    // Looks at the dialog, or does something beside it; the step is good.
    DialogScript& check(std::function<void(Dialog&)> look);

    // Takes steps until the dialog has ended. False when no step is left, so that nobody answers, and when a step can't
    // be taken: then fault() tells which, and no further step is.
    bool operator()(Dialog& dialog);

    bool finished() const { return steps_.empty(); }
    const std::string& fault() const { return fault_; }

  private:
    struct Step {
        std::string name;
        std::function<bool(Dialog&)> take;
    };
    DialogScript& add(std::string name, std::function<bool(Dialog&)> take);

    std::deque<Step> steps_;
    std::string fault_;
};

// Answers for file dialogs, in order; what was asked is kept. Texts are UTF-8.
class FileScript {
  public:
    FileScript& answer(std::string text);
    FileScript& cancel();
    FileScript& agree(bool yes);  // to the next question of confirm

    std::optional<std::string> askFile(const FileQuestion& question);  // nothing when no answer is left
    bool confirm(std::string_view question);

    std::vector<FileQuestion> questions;
    std::vector<std::string> confirmations;

  private:
    std::deque<std::optional<std::string>> answers_;
    std::deque<bool> agreements_;
};

}  // namespace host
