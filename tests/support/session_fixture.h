// A host session for tests: a front end that records what is shown and answers by script, a folder of its own, and code
// run as an application.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mchost/front/scripted.h"
#include "mchost/session/front_end.h"
#include "mchost/session/session.h"

// Texts are UTF-8, as a front end gets them.
class RecordingFrontEnd : public host::FrontEnd {
  public:
    struct Line {
        int priority;
        std::string brief, details;
    };

    std::string consoleText;
    std::vector<std::pair<int, std::string>> fields;  // each text that a message field was given, in order
    std::vector<Line> messages;                       // of the message centre
    std::function<bool(host::Dialog&)> answer;        // feeds events to a modal dialog until it has ended; none: false
    host::FileScript files;                           // answers file dialogs
    std::function<host::Event(const std::shared_ptr<host::Dialog>&)> next;  // or gives its events, one by one
    int dialogs = 0;                   // how often modal dialogs asked for their events
    std::deque<host::Event> events;    // given in order, then nobody is there
    std::vector<std::string> prompts;  // what commands asked for
    std::vector<std::string> seen;     // dialogs, views and elements, as they were told

    // The last text of a message field; empty when it was given none.
    std::string field(int number) const;
    // Forgets what was recorded so far.
    void clear();

    void console(std::string_view text) override { consoleText += text; }
    void messageField(int field, std::string_view text) override { fields.emplace_back(field, text); }
    void message(const host::Message& told) override {
        messages.push_back({told.priority, std::string(told.brief), std::string(told.details)});
    }
    void dialogOpened(host::Dialog& dialog) override;
    void dialogChanged(host::Dialog& dialog, size_t item) override;
    void dialogClosed(host::Dialog& dialog) override;
    void viewChanged(int32_t view) override { seen.push_back("view " + std::to_string(view)); }
    void displayed(const ElementDescr&, int32_t mode) override { seen.push_back("mode " + std::to_string(mode)); }
    void refused(const host::Event&) override { seen.emplace_back("refused"); }
    host::Event wait(const host::Awaited& awaited, std::optional<std::chrono::milliseconds>) override;

  private:
    host::Event give(const host::AnyEvent& awaited);
    host::Event give(const host::ModalDialog& awaited);
    host::Event give(const host::FileQuestion& awaited) { return host::FileAnswer{files.askFile(awaited)}; }
    host::Event give(const host::Confirmation& awaited) { return host::Agreement{files.confirm(awaited.question)}; }
    host::Event give(const host::Note&) { return host::Noted{}; }
};

// Takes away the right to write to a file and to its folder while this stands; root, who may always write, is somebody
// else for that time.
class WriteProtection {
  public:
    explicit WriteProtection(const std::string& file);
    ~WriteProtection();
    WriteProtection(const WriteProtection&) = delete;
    WriteProtection& operator=(const WriteProtection&) = delete;

  private:
    std::filesystem::path file_;
    bool root_;
};

class SessionTest : public testing::Test {
  protected:
    // Variables are defined at user level in the session that starts; a derived fixture gives its own.
    explicit SessionTest(std::vector<std::pair<std::string, std::string>> variables = {});
    ~SessionTest() override;

    // The session ends when the test wants to see what is left behind.
    void endSession() { session_.reset(); }
    host::Session& session() { return *session_; }
    RecordingFrontEnd& front() { return *front_; }  // until the session ends

    // A path in the test's own folder, which is removed behind the test. The drive c: is "drive_c" in it.
    std::string path(std::string_view name) const { return (folder_ / name).string(); }
    std::string writeFile(std::string_view name, std::string_view bytes) const;  // gives its path
    std::string readFile(std::string_view name) const;

    // The application of that name, which is started when it isn't there; its main function does nothing.
    MdlDesc* application(std::string_view name);
    // Runs code as a call of the host into the application, and gives its result.
    template <class Body>
    auto asApplication(std::string_view name, Body&& body) {
        const host::ApplicationScope scope(application(name));
        return body();
    }

  private:
    std::filesystem::path folder_;
    RecordingFrontEnd* front_;
    std::unique_ptr<host::Session> session_;
};
