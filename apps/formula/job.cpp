#include "job.h"

#include <algorithm>
#include <array>

#include <mclib/app/input.hpp>
#include <mclib/app/numbers.hpp>
#include <mclib/app/tell.hpp>
#include <mclib/app/values.hpp>

namespace formula {

using mcapp::mostDecimals;
using mcapp::Outcome;
using mcapp::sameName;
using mcapp::shown;
using mcapp::Values;

namespace {

class Job {
  public:
    Job(const std::vector<GivenNumber>& given, int decimals, Table& table)
        : given_(given), decimals_(decimals), table_(table) {}
    bool read(const std::string& fileName);

  private:
    struct Keyword {
        const char* name;
        bool (Job::*read)();
    };
    static const std::array<Keyword, 6> keywords;

    bool line();
    // Keywords.
    bool title() { return in_.text(table_.title, "the title") && in_.endOfLine(); }
    bool decimals();
    bool parameter();
    bool formula();
    bool tag();
    bool string();

    bool name(std::string& name, std::string (Values::*refusal)(const std::string&) const);
    bool remark(std::string& remark);  // empty when none stands here
    void addNumber(const std::string& name, double value, const std::string& remark);

    mcapp::Input in_;
    Values values_;
    std::vector<GivenNumber> given_;  // those that no line has asked for
    int decimals_;
    Table& table_;
};

constexpr std::array<Job::Keyword, 6> Job::keywords = {{
    {"TITLE", &Job::title},
    {"DECIMALS", &Job::decimals},
    {"PARAMETER", &Job::parameter},
    {"FORMULA", &Job::formula},
    {"TAG", &Job::tag},
    {"STRING", &Job::string},
}};

// ---- parts of lines ----

bool Job::name(std::string& name, std::string (Values::*refusal)(const std::string&) const) {
    in_.atEnd();
    char* const start = in_.position();
    if (!(in_.startsWith("\"") ? in_.text(name, "the name") : in_.word(name, "the name"))) return false;
    const std::string why = (values_.*refusal)(name);
    return why.empty() || in_.failAt(start, why);
}

bool Job::remark(std::string& remark) {
    return !in_.startsWith("\"") || in_.text(remark, "the remark");
}

void Job::addNumber(const std::string& name, double value, const std::string& remark) {
    const std::string text = shown(value, decimals_);
    values_.addNumber(name, value, text);
    table_.numbers.push_back({name, text, remark});
}

// ---- keywords ----

bool Job::decimals() {
    in_.atEnd();
    char* const start = in_.position();
    int count = 0;
    if (!in_.wholeNumber(count, "the number of decimals")) return false;
    if (count < 0 || count > mostDecimals)
        return in_.failAt(start, "the number of decimals must be 0 to " + std::to_string(mostDecimals));
    decimals_ = count;
    return in_.endOfLine();
}

// PARAMETER name value ["remark"]
bool Job::parameter() {
    std::string name, remark;
    double value = 0;
    if (!this->name(name, &Values::numberNameRefusal) || !in_.number(value, "the value") || !this->remark(remark) ||
        !in_.endOfLine()) {
        return false;
    }
    const auto given = std::ranges::find_if(given_, [&](const GivenNumber& g) { return sameName(g.first, name); });
    if (given != given_.end()) {
        value = given->second;
        given_.erase(given);
    }
    addNumber(name, value, remark);
    return true;
}

// FORMULA name ["remark"] formula
bool Job::formula() {
    std::string name, remark, text;
    if (!this->name(name, &Values::numberNameRefusal) || !this->remark(remark) || !in_.rest(text, "the formula"))
        return false;
    const Outcome outcome = values_.evaluate(text);
    if (!outcome.value) return in_.failAt(in_.position() + outcome.column - 1, outcome.why);
    addNumber(name, *outcome.value, remark.empty() ? text : remark);
    return true;
}

// TAG name "text"
bool Job::tag() {
    std::string name, text;
    if (!this->name(name, &Values::textNameRefusal) || !in_.text(text, "the text") || !in_.endOfLine()) return false;
    values_.addText(name, text);
    return true;
}

// STRING name tag string
bool Job::string() {
    std::string name, tagString;
    if (!this->name(name, &Values::textNameRefusal) || !in_.rest(tagString, "the tag string")) return false;
    const mcapp::TextOutcome text = values_.expand(tagString);
    if (!text.value) return in_.failAt(in_.position() + text.column - 1, text.why);
    values_.addText(name, *text.value);
    table_.texts.push_back({name, *text.value, ""});
    return true;
}

// ---- lines ----

bool Job::line() {
    const Keyword* const keyword = in_.keywordOf(keywords);
    return keyword && (this->*keyword->read)();
}

bool Job::read(const std::string& fileName) {
    if (!in_.open(fileName)) return false;
    bool good = true;
    while (in_.nextLine()) good = line() && good;
    good = good && !in_.failed();
    for (const GivenNumber& g : given_) good = mcapp::fail(fileName + ": there is no good PARAMETER " + g.first);
    return good;
}

}  // namespace

bool workOut(const std::string& fileName, const std::vector<GivenNumber>& given, int decimals, Table& table) {
    return Job(given, decimals, table).read(fileName);
}

}  // namespace formula
