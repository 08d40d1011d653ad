#include "job_log.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

namespace batch {

namespace {

constexpr std::string_view title = "# mchost --batch ";
constexpr std::string_view columns = "# status\tseconds\tdrawing\twhat it said\n";
constexpr std::string_view good = "good";

// In one field of a line.
std::string escaped(std::string_view text) {
    std::string out;
    for (const char c : text) {
        switch (c) {
            case '\\': out += "\\\\"; break;
            case '\t': out += "\\t"; break;
            case '\n': out += "\\n"; break;
            case '\r': out += "\\r"; break;
            default: out += c;
        }
    }
    return out;
}

std::string unescaped(std::string_view text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        const char next = text[i] == '\\' && i + 1 < text.size() ? text[++i] : '\0';
        switch (next) {
            case '\0': out += text[i]; break;
            case 't': out += '\t'; break;
            case 'n': out += '\n'; break;
            case 'r': out += '\r'; break;
            default: out += next;
        }
    }
    return out;
}

std::string_view taken(std::string_view& line) {
    const std::string_view field = line.substr(0, line.find('\t'));
    line.remove_prefix(std::min(field.size() + 1, line.size()));
    return field;
}

std::string titleOf(const std::string& command) {
    return std::string(title) + escaped(command) + "\n";
}

}  // namespace

bool JobLog::read(const std::string& command, std::string& why) {
    std::error_code error;
    exists_ = std::filesystem::exists(file_, error);
    if (!exists_) return true;
    std::ifstream in(file_, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(in), {}};
    if (!in.is_open() || in.bad()) {
        why = std::string("it can't be read: ") + std::strerror(errno);
        return false;
    }
    wholeSize_ = text.rfind('\n') + 1;
    text.resize(wholeSize_);
    if (!text.starts_with(titleOf(command))) {
        why = text.starts_with(title) ? "it is the log of another command" : "it is no log of a batch";
        return false;
    }
    std::string_view rest = text;
    while (!rest.empty()) {
        std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(line.size() + 1);
        if (line.starts_with('#')) continue;
        const bool isGood = taken(line) == good;
        taken(line);
        done_[unescaped(taken(line))] = isGood;
    }
    return true;
}

bool JobLog::open(const std::string& command) {
    if (exists_ && truncate(file_.c_str(), static_cast<off_t>(wholeSize_)) != 0) return false;
    out_.reset(std::fopen(file_.c_str(), "ab"));
    if (!out_) return false;
    if (exists_) return true;
    return std::fputs((titleOf(command) + std::string(columns)).c_str(), out_.get()) >= 0 &&
           std::fflush(out_.get()) == 0;
}

bool JobLog::add(const std::string& drawing, const Outcome& outcome) {
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%.2f", outcome.seconds);
    const std::string line = (outcome.good ? std::string(good) : outcome.status) + "\t" + seconds + "\t" +
                             escaped(drawing) + "\t" + escaped(outcome.said) + "\n";
    return std::fputs(line.c_str(), out_.get()) >= 0 && std::fflush(out_.get()) == 0;
}

}  // namespace batch
