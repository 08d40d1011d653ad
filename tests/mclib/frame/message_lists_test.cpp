// Holds the message lists against the code: every number that is asked for exists in English and Norwegian, with the
// values that the code passes.
#include <gtest/gtest.h>
#include <toml++/toml.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using Message = std::pair<int, int>;  // list and number
using MessageTexts = std::map<Message, std::string>;

const std::map<std::string, int> listNames = {{"MCLIB_QUESTIONS", 20003},
                                              {"MCLIB_ARROW_PROMPTS", 20004},
                                              {"MCLIB_ERRORS", 20005},
                                              {"MCLIB_LANGUAGE_TEXTS", 20007}};

// Files that pass numbers on in variables, and the numbers.
const std::map<std::string, std::set<Message>> passedOn = {
    {"frame/units.cpp", {{20007, 2}, {20007, 13}, {20007, 14}, {20007, 20}}},  // firsts and lasts of months and days
    {"frame/resource_files.cpp", {{20005, 1}, {20005, 9}, {20005, 10}, {20005, 16}}},
    {"startup/startup.cpp", {{20007, 38}, {20007, 39}, {20007, 40}, {20007, 41}}},
    {"forms/print_job.cpp",
     {{20003, 0}, {20003, 2}, {20005, 1}, {20005, 2}, {20005, 41}, {20005, 42}, {20005, 43}, {20005, 44}}},
    {"project/dialog.cpp", {{20005, 1}, {20005, 7}, {20005, 8}, {20005, 9}, {20005, 10}}},
    {"project/store.cpp", {{20003, 4}, {20003, 7}}},  // what was written
    {"frame/message_dialogs.cpp",
     {{20007, 25}, {20007, 26}, {20007, 27}, {20007, 28}, {20007, 29}, {20007, 30}, {20007, 31}}},
};

std::string contentsOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

MessageTexts messagesIn(const std::string& language) {
    MessageTexts texts;
    const auto source = toml::parse_file(PROJECT_SOURCE_DIR "/resources/messages_" + language + ".toml");
    EXPECT_EQ(source["language"].value_or(std::string()), language);
    for (const toml::node& list : *source["list"].as_array())
        for (const auto& [number, text] : *(*list.as_table())["text"].as_table())
            texts[{(*list.as_table())["id"].value_or(0), std::stoi(std::string(number.str()))}] =
                text.value_or(std::string());
    return texts;
}

// The kinds of values that a format takes, in order: "sd" for "%s has %d lines".
std::string valuesOf(const std::string& format) {
    std::string kinds;
    for (size_t i = format.find('%'); i < format.size(); i = format.find('%', i + 1)) {
        i = format.find_first_not_of("-+ #0123456789.hl", i + 1);
        if (i == std::string::npos) break;
        if (format[i] != '%') kinds += format[i];
    }
    return kinds;
}

// A call in the code: its arguments from the list on.
struct Call {
    std::string file;
    std::vector<std::string> arguments;
};

// The arguments of the call whose opening parenthesis stands at `open`.
std::vector<std::string> argumentsAt(const std::string& text, size_t open) {
    std::vector<std::string> arguments(1);
    int depth = 0;
    for (size_t i = open; i < text.size(); ++i) {
        const char c = text[i];
        if (c == ')' && --depth == 0) break;
        if (c == ',' && depth == 1)
            arguments.emplace_back();
        else if (depth > 0 && !std::isspace(static_cast<unsigned char>(c)))
            arguments.back() += c;
        if (c == '(') ++depth;
    }
    return arguments;
}

struct Caller {
    std::string name;
    std::ptrdiff_t beforeList;  // arguments in front of the list; -1: it is always the language texts
};
const Caller callers[] = {
    {"mclibError_rscMsgBoxPrintf(", 1},    {"mclibError_rscListPrintf(", 1},       {"mdlOutput_rscPrintf(", 2},
    {"mclibMem_mallocRscErrorPrintf(", 1}, {"mclibMem_reallocRscErrorPrintf(", 3}, {"mclibUtil_getLanguageText(", -1}};

bool isDefinition(const std::string& firstArgument) {
    return firstArgument.starts_with("int") || firstArgument.starts_with("size_t") ||
           firstArgument.starts_with("void*");
}

std::vector<Call> callsIn(const std::string& file, const std::string& text) {
    std::vector<Call> calls;
    for (const Caller& caller : callers)
        for (size_t at = text.find(caller.name); at != std::string::npos; at = text.find(caller.name, at + 1)) {
            std::vector<std::string> arguments = argumentsAt(text, at + caller.name.size() - 1);
            if (isDefinition(arguments.front())) continue;
            if (caller.beforeList < 0)
                arguments.insert(arguments.begin(), "MCLIB_LANGUAGE_TEXTS");
            else
                arguments.erase(arguments.begin(), arguments.begin() + caller.beforeList);
            calls.push_back({file, std::move(arguments)});
        }
    return calls;
}

bool isNameCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

// Whole numbers that the file's text gives a name: constants and enumerators, as in "name = 12".
std::map<std::string, int> constantsIn(const std::string& text) {
    std::map<std::string, int> constants;
    for (size_t at = text.find(" = "); at != std::string::npos; at = text.find(" = ", at + 1)) {
        const size_t value = at + 3, end = text.find_first_not_of("0123456789", value);
        size_t name = at;
        while (name > 0 && isNameCharacter(text[name - 1])) --name;
        if (end == value || end == std::string::npos || end - value > 6 || name == at) continue;
        if (std::string_view(",;} ").find(text[end]) != std::string_view::npos)
            constants[text.substr(name, at - name)] = std::stoi(text.substr(value, end - value));
    }
    return constants;
}

int numberOf(const std::string& argument, const std::map<std::string, int>& constants) {
    if (!argument.empty() && argument.find_first_not_of("0123456789") == std::string::npos) return std::stoi(argument);
    const auto constant = constants.find(argument);
    return constant == constants.end() ? -1 : constant->second;
}

const char* const rooms[] = {"frame", "text", "elmattr", "geometry", "print", "project", "forms", "startup"};

struct Use {
    Message message;
    std::string where;
    int values;  // passed with it; -1: not known
};

// Every message that the library asks for.
std::vector<Use> usesInCode() {
    const auto common = constantsIn(contentsOf(PROJECT_SOURCE_DIR "/mclib/frame/export.h"));
    std::vector<Use> uses;
    for (const char* room : rooms) {
        const fs::path folder = fs::path(PROJECT_SOURCE_DIR) / "mclib" / room;
        if (!fs::exists(folder)) continue;
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (entry.path().extension() != ".cpp") continue;
            const std::string file = std::string(room) + "/" + entry.path().filename().string();
            const std::string text = contentsOf(entry.path());
            auto constants = constantsIn(text);
            constants.insert(common.begin(), common.end());
            const auto variables = passedOn.find(file);
            if (variables != passedOn.end())
                for (const Message& message : variables->second) uses.push_back({message, file, -1});
            for (const Call& call : callsIn(file, text)) {
                if (call.arguments.size() < 2) continue;
                const auto list = listNames.find(call.arguments[0]);
                const int number = numberOf(call.arguments[1], constants);
                if (list == listNames.end() || number < 0) {
                    EXPECT_TRUE(variables != passedOn.end() || file == "frame/messages.cpp")
                        << file << ": can't tell which message " << call.arguments[0] << " " << call.arguments[1]
                        << " is";
                    continue;
                }
                const bool noValues = list->second == 20007;
                uses.push_back(
                    {{list->second, number}, file, noValues ? -1 : static_cast<int>(call.arguments.size()) - 2});
            }
        }
    }
    return uses;
}

TEST(MessageLists, HoldEveryNumberThatTheCodeAsksForInBothLanguages) {
    const std::vector<Use> uses = usesInCode();
    EXPECT_GT(uses.size(), 20u);
    for (const char* language : {"en", "no"}) {
        const MessageTexts texts = messagesIn(language);
        for (const Use& use : uses) {
            const auto text = texts.find(use.message);
            if (text == texts.end()) {
                ADD_FAILURE() << use.where << " asks for list " << use.message.first << ", number "
                              << use.message.second << ", which has no text in " << language;
                continue;
            }
            if (use.values >= 0) {
                EXPECT_GE(use.values, static_cast<int>(valuesOf(text->second).size()))
                    << use.where << ": too few values for \"" << text->second << "\"";
            }
        }
    }
}

TEST(MessageLists, SayTheSameInBothLanguages) {
    const MessageTexts english = messagesIn("en"), norwegian = messagesIn("no");
    EXPECT_EQ(english.size(), norwegian.size());
    for (const auto& [message, text] : english) {
        const auto other = norwegian.find(message);
        ASSERT_NE(other, norwegian.end()) << message.first << " " << message.second;
        EXPECT_EQ(valuesOf(text), valuesOf(other->second)) << message.first << " " << message.second;
        if (!text.empty() && (message.first == 20003 || message.first == 20005)) {
            EXPECT_NE(text, other->second);
        }
    }
}

TEST(MessageLists, LanguageTextsAreFormatsOnlyOnceTheyAreFormatted) {
    for (const char* language : {"en", "no"}) {
        const MessageTexts texts = messagesIn(language);
        for (const auto& [message, text] : texts)
            if (message.first == 20007) {
                EXPECT_EQ(valuesOf(text), "") << message.second;
            }
        for (const int format : {23, 38, 39, 40, 41, 57})
            EXPECT_NE(texts.at({20007, format}).find("%%s"), std::string::npos) << language << " " << format;
        for (int n = 2; n <= 61; ++n)
            if (n <= 41 || n >= 51) {
                EXPECT_TRUE(texts.contains({20007, n})) << language << " " << n;
            }
    }
}

}  // namespace
