// Holds the message lists against the code: every number that is asked for exists in English and Norwegian, with the
// values that the code passes.
#include <gtest/gtest.h>
#include <toml++/toml.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
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
    {"frame/startup.cpp", {{20007, 38}, {20007, 39}, {20007, 40}, {20007, 41}}},
    {"text/file.cpp", {{20005, 3}, {20005, 4}}},
    {"batch/message_dialogs.cpp", {{20007, 25}, {20007, 26}, {20007, 27}, {20007, 28}, {20007, 29}, {20007, 30}}},
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
    static const std::regex conversion("%[-+ #0-9.]*(?:ll|l|h)?([a-zA-Z%])");
    std::string kinds;
    for (std::sregex_iterator at(format.begin(), format.end(), conversion), end; at != end; ++at)
        if (at->str(1) != "%") kinds += at->str(1);
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

std::vector<Call> callsIn(const std::string& file, const std::string& text) {
    static const std::regex name(
        "mclib(?:Error_rscMsgBoxPrintf|Error_rscListPrintf|Mem_mallocRscErrorPrintf|Mem_reallocRscErrorPrintf|"
        "Util_getLanguageText)(?=\\()");
    std::vector<Call> calls;
    for (std::sregex_iterator at(text.begin(), text.end(), name), end; at != end; ++at) {
        Call call{file, argumentsAt(text, static_cast<size_t>(at->position() + at->length()))};
        auto& arguments = call.arguments;
        if (arguments.front().starts_with("int") || arguments.front().starts_with("size_t") ||
            arguments.front().starts_with("void*"))
            continue;  // the definition
        if (at->str() == "mclibUtil_getLanguageText")
            arguments.insert(arguments.begin(), "MCLIB_LANGUAGE_TEXTS");
        else
            arguments.erase(arguments.begin(),
                            arguments.begin() + (at->str().find("realloc") != std::string::npos ? 3 : 1));
        calls.push_back(std::move(call));
    }
    return calls;
}

// Whole numbers that the file's text gives a name: constants and enumerators.
std::map<std::string, int> constantsIn(const std::string& text) {
    static const std::regex definition("\\b([A-Za-z_][A-Za-z0-9_]*)\\s*=\\s*(\\d+)\\s*[,;}]");
    std::map<std::string, int> constants;
    for (std::sregex_iterator at(text.begin(), text.end(), definition), end; at != end; ++at)
        constants[at->str(1)] = std::stoi(at->str(2));
    return constants;
}

int numberOf(const std::string& argument, const std::map<std::string, int>& constants) {
    if (!argument.empty() && argument.find_first_not_of("0123456789") == std::string::npos) return std::stoi(argument);
    const auto constant = constants.find(argument);
    return constant == constants.end() ? -1 : constant->second;
}

const char* const rooms[] = {"frame", "text",  "elmattr", "geometry", "arrows",
                             "print", "forms", "project", "design",   "batch"};

struct Use {
    Message message;
    std::string where;
    int values;  // passed with it; -1: not known
};

// Every message that the library asks for.
std::vector<Use> usesInCode() {
    const auto common = constantsIn(contentsOf(PROJECT_SOURCE_DIR "/frame/export.h"));
    std::vector<Use> uses;
    for (const char* room : rooms) {
        const fs::path folder = fs::path(PROJECT_SOURCE_DIR) / room;
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
        if (message.first == 20003 || message.first == 20005) {
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
