// Holds both languages of the library's messages against each other.
#include <gtest/gtest.h>
#include <toml++/toml.h>

#include <map>
#include <string>

#include "resources/ids.h"

namespace {

using Message = std::pair<int, int>;  // list and number
using MessageTexts = std::map<Message, std::string>;

// A text that has a name stands in a table with it.
std::string textOf(const toml::node& node) {
    const toml::table* named = node.as_table();
    return named ? (*named)["text"].value_or(std::string()) : node.value_or(std::string());
}

MessageTexts messagesIn(const std::string& language) {
    MessageTexts texts;
    const auto source = toml::parse_file(PROJECT_SOURCE_DIR "/resources/messages_" + language + ".toml");
    EXPECT_EQ(source["language"].value_or(std::string()), language);
    for (const toml::node& list : *source["list"].as_array())
        for (const auto& [number, text] : *(*list.as_table())["text"].as_table())
            texts[{(*list.as_table())["id"].value_or(0), std::stoi(std::string(number.str()))}] = textOf(text);
    return texts;
}

TEST(MessageLists, SayTheSameInBothLanguages) {
    const MessageTexts english = messagesIn("en"), norwegian = messagesIn("no");
    EXPECT_GT(english.size(), 90u);
    EXPECT_EQ(english.size(), norwegian.size());
    for (const auto& [message, text] : english) {
        const auto other = norwegian.find(message);
        ASSERT_NE(other, norwegian.end()) << message.first << " " << message.second;
        if (!text.empty() && message.first != ids::texts::id) {
            EXPECT_NE(text, other->second);
        }
    }
}

// They go through printf twice where they are formats.
TEST(MessageLists, LanguageTextsAreFormatsOnlyOnceTheyAreFormatted) {
    using namespace ids::texts;
    for (const char* language : {"en", "no"}) {
        const MessageTexts texts = messagesIn(language);
        for (const auto& format : {workingOn, noticeTitle, noteTitle, questionTitle, warningTitle, version})
            EXPECT_NE(texts.at({ids::texts::id, format.number}).find("%%s"), std::string::npos)
                << language << " " << format.number;
    }
}

}  // namespace
