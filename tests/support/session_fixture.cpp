#include "tests/support/session_fixture.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "mchost/mdl/system.h"

namespace {

std::filesystem::path newFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "mclib-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no folder for the test in " + pattern);
    return pattern;
}

}  // namespace

std::string RecordingFrontEnd::field(int number) const {
    for (auto shown = fields.rbegin(); shown != fields.rend(); ++shown) {
        if (shown->first == number) return shown->second;
    }
    return {};
}

void RecordingFrontEnd::clear() {
    consoleText.clear();
    fields.clear();
    messages.clear();
    dialogs = 0;
    seen.clear();
}

void RecordingFrontEnd::dialogOpened(host::Dialog& dialog) {
    seen.push_back("opened " + std::to_string(dialog.id()));
}

void RecordingFrontEnd::dialogChanged(host::Dialog& dialog, size_t item) {
    const bool whole = item == host::Dialog::noItem;
    seen.push_back("changed " + std::to_string(dialog.id()) + (whole ? "" : " " + std::to_string(item)));
}

void RecordingFrontEnd::dialogClosed(host::Dialog& dialog) {
    seen.push_back("closed " + std::to_string(dialog.id()));
}

host::Event RecordingFrontEnd::wait(const host::Awaited& awaited, std::optional<std::chrono::milliseconds>) {
    return std::visit([this](const auto& asked) { return give(asked); }, awaited);
}

host::Event RecordingFrontEnd::give(const host::AnyEvent& awaited) {
    if (awaited.command != 0) prompts.push_back(awaited.prompt);
    if (events.empty()) return awaited.command == 0 ? host::Event(host::Quit{}) : host::Event(host::NobodyThere{});
    host::Event event = std::move(events.front());
    events.pop_front();
    return event;
}

host::Event RecordingFrontEnd::give(const host::ModalDialog& awaited) {
    ++dialogs;
    if (next) return next(awaited.dialog);
    const bool answered = answer && answer(*awaited.dialog) && awaited.dialog->ended();
    return answered ? host::Event(host::Nothing{}) : host::Event(host::NobodyThere{});
}

namespace {

constexpr uid_t nobody = 65534;

void setRights(const std::filesystem::path& file, unsigned fileRights, unsigned folderRights) {
    std::filesystem::permissions(file, static_cast<std::filesystem::perms>(fileRights));
    std::filesystem::permissions(file.parent_path(), static_cast<std::filesystem::perms>(folderRights));
}

}  // namespace

WriteProtection::WriteProtection(const std::string& file) : file_(file), root_(geteuid() == 0) {
    setRights(file_, 0444, 0555);
    if (root_ && seteuid(nobody) != 0) throw std::runtime_error("root can't become somebody else");
}

WriteProtection::~WriteProtection() {
    if (root_ && seteuid(0) != 0) std::abort();
    setRights(file_, 0644, 0755);
}

namespace {

// What the one who runs the tests has set for the system is no part of a test.
void dropOwnVariables() {
    std::vector<std::string> names;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        if (text.starts_with("MC_") || text.starts_with("MS_") || text.starts_with("_USTN_"))
            names.emplace_back(text.substr(0, text.find('=')));
    }
    for (const std::string& name : names) unsetenv(name.c_str());
}

}  // namespace

SessionTest::SessionTest(std::vector<std::pair<std::string, std::string>> variables) : folder_(newFolder()) {
    dropOwnVariables();
    std::filesystem::create_directory(folder_ / "drive_c");
    auto front = std::make_unique<RecordingFrontEnd>();
    front_ = front.get();
    variables.emplace_back("MC_DRIVE_C", (folder_ / "drive_c").string());
    variables.emplace_back("MS_USERPREF", (folder_ / "user.rsc").string());
    session_ = std::make_unique<host::Session>(
        host::SessionOptions{.frontEnd = std::move(front), .variables = std::move(variables)});
}

SessionTest::~SessionTest() {
    session_.reset();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string SessionTest::writeFile(std::string_view name, std::string_view bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
}

std::string SessionTest::readFile(std::string_view name) const {
    std::ostringstream bytes;
    bytes << std::ifstream(path(name), std::ios::binary).rdbuf();
    return bytes.str();
}

MdlDesc* SessionTest::application(std::string_view name) {
    MdlDesc* running = mdlSystem_findMdlDesc(std::string(name).c_str());
    return running != nullptr ? running : session_->startApplication(name, [](int, char**) { return 0; });
}
