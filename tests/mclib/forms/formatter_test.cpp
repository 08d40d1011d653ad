// The formatter without a session: codes, values, and what stays within its buffer.
#include "mclib/forms/formatter.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

#include "mclib/forms/value.h"

using namespace mc;

namespace {

struct DestroyForm {
    void operator()(FormData* form) const { mclibMatList_destroyFormDataArray(form); }
};
using Form = std::unique_ptr<FormData, DestroyForm>;

Form newForm(int nameLength = 4, int rows = 8) {
    return Form(mclibMatList_createFormDataArray(nameLength, rows));
}

void setText(const Form& form, const char* name, int row, const char* text) {
    ASSERT_EQ(mclibMatList_insertValue(form.get(), name, MCLIB_FORM_TEXT, row, text), 0);
}

// The array that the tables below speak of.
Form sampleForm() {
    Form form = newForm();
    setText(form, "DESC", 2, "Bolt");
    setText(form, "DESC", 3, "Nut");
    mclibMatList_insertValue(form.get(), "MASS", MCLIB_FORM_FLOAT, 0, 12.5);
    mclibMatList_insertValue(form.get(), "NUMB", MCLIB_FORM_INTEGER, 0, int32_t{-42});
    mclibMatList_insertValue(form.get(), "UNIT", MCLIB_FORM_CHAR, 0, "m2");
    return form;
}

struct Answer {
    std::string text;
    int result;
    bool operator==(const Answer&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Answer& a) {
    return out << a.result << " \"" << a.text << '"';
}

// What the formatter gives with and without an index, which must agree.
Answer format(const Form& form, const char* text, bool useRows) {
    char walked[512], indexed[512];
    const forms::FieldIndex index(form.get());
    const int result = forms::generateText(walked, {.text = text, .form = form.get(), .useRows = useRows});
    EXPECT_EQ(forms::generateText(indexed, {.text = text, .form = form.get(), .useRows = useRows, .index = &index}),
              result);
    EXPECT_STREQ(walked, indexed) << text;
    return {walked, result};
}

TEST(Formatter, ReplacesCodesByTheirValues) {
    const struct {
        const char* text;
        bool rows;
        Answer answer;
    } cases[] = {
        {"%03%DESC", true, {"Bolt", 3}},
        {"%03%-8DESC;", true, {"Bolt    ;", 3}},
        {"%01%.2MASS kg", true, {"12.50 kg", 1}},
        {"%.1MASS", false, {"12.5", 1}},
        {"100%% of %01%DESC", true, {"100% of ", 3}},
        {"100%% of %03%DESC", true, {"100% of Bolt", 3}},
        {"%%", false, {"%", 3}},
        {"", true, {"", 3}},
        {"plain text", true, {"plain text", 3}},
        {"100%", true, {"100", 3}},
        {"%03", true, {"", 3}},
        {"%03%", true, {"", 3}},
        {"%03%-.", true, {"", 3}},
        // A row number of any digits and signs; whatever stands behind it closes it.
        {"%-3%DESC", true, {"Bolt", 3}},
        {"%3-%DESC", true, {"Bolt", 3}},
        {"%--3%DESC", true, {"", 3}},
        {"%0%DESC", true, {"", 3}},
        {"%MASS", true, {"12.500000", 1}},
        {"%-8DESC", true, {"", 3}},
        {"%03xDESC", true, {"xs", 3}},
        {"%03;5DESC", true, {";5s", 3}},
        {"%03%%DESC", true, {"%s", 3}},
        // A name counts nameLength characters, whatever follows.
        {"%03%DESCRIPTION", true, {"BoltRIPTION", 3}},
        {"%03%DES", true, {"", 3}},
        {"%01%NONE.", true, {".", 3}},
        {"%05%DESC", true, {"", 3}},
        {"%04%DESC", true, {"Nut", 3}},
        {"%03%desc", true, {"", 3}},
        // The last field that matched gives the result, set or not.
        {"%01%NUMB%01%UNIT", true, {"-42m", 4}},
        {"%01%UNIT %08%NUMB", true, {"m ", 2}},
        {"%01%NUMB %01%NONE", true, {"-42 ", 2}},
        // Characters above 127 are no letters.
        {"%01%\xC5MASS", true, {"12.500000", 1}},
        // Without rows digits are the width.
        {"%5NUMB|", false, {"  -42|", 2}},
    };
    const Form form = sampleForm();
    for (const auto& c : cases) {
        EXPECT_EQ(format(form, c.text, c.rows), c.answer) << c.text;
    }
}

TEST(Formatter, NameShorterThanTheNamesMatchesOnlyAtTheEnd) {
    const Form form = newForm();
    setText(form, "NO", 0, "17");
    EXPECT_EQ(format(form, "%01%NO", true), (Answer{"17", 3}));
    EXPECT_EQ(format(form, "%01%NO of 20", true), (Answer{"f 20", 3}));
}

TEST(Formatter, AllFieldsThatMatchAreWrittenInTheOrderOfTheList) {
    // Names of a hand-made array may be alike.
    int32_t set = 1;
    FormValue head{}, one{}, two{};
    head.head = {1, 2};
    one.integer = 1;
    two.integer = 2;
    char name[] = "AB", other[] = "XY";
    FormData last{name, MCLIB_FORM_INTEGER, &set, &two, nullptr}, between{other, MCLIB_FORM_INTEGER, &set, &two, &last};
    FormData first{name, MCLIB_FORM_INTEGER, &set, &one, &between}, form{nullptr, 255, nullptr, &head, &first};
    const forms::FieldIndex index(&form);
    char text[16];
    EXPECT_EQ(forms::generateText(text, {.text = "%AB", .form = &form, .index = &index}), 2);
    EXPECT_STREQ(text, "12");
    EXPECT_EQ(mclibMatList_generateFormatedText("%AB", &form, text, nullptr, 0, 0, 1), 2);
    EXPECT_STREQ(text, "12");
}

TEST(Formatter, NullFormGivesAnEmptyText) {
    char text[16] = "old";
    ElementDescr* made = reinterpret_cast<ElementDescr*>(text);
    EXPECT_EQ(mclibMatList_generateFormatedText("%01%DESC", nullptr, text, &made, 0, 0, 1), 3);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(made, nullptr);
}

TEST(Formatter, ValuesAreWrittenAsPrintfWritesThem) {
    std::setlocale(LC_NUMERIC, "C");
    const Form form = newForm(1, 1);
    const auto value = [&](const char* prefix, const char* letter) {
        char text[600], wanted[600];
        const std::string printf = prefix + std::string(letter), code = prefix + std::string(1, letter[0] - 'a' + 'A');
        forms::generateText(text, {.text = code.c_str(), .form = form.get(), .useRows = false});
        const FormData* field = form->next;
        while (field->name[0] != code.back()) field = field->next;
        const FormValue& v = field->values[0];
        if (*letter == 'd') std::snprintf(wanted, 512, printf.c_str(), v.integer);
        if (*letter == 'f') std::snprintf(wanted, 512, printf.c_str(), v.floating);
        if (*letter == 's') std::snprintf(wanted, 512, printf.c_str(), v.text);
        if (*letter == 'c') std::snprintf(wanted, 512, printf.c_str(), v.character);
        EXPECT_STREQ(text, wanted) << printf;
    };
    constexpr const char* flags[] = {"", "-", "0", "+", " ", "#", "-0", "+0", " +", "-+#"};
    constexpr const char* measures[] = {"", "1", "7", "20", ".0", ".", ".1", ".3", "9.0", "12.4", "30.17"};
    mclibMatList_insertValue(form.get(), "S", MCLIB_FORM_TEXT, 0, "D\xE6kke");
    mclibMatList_insertValue(form.get(), "C", MCLIB_FORM_CHAR, 0, "\xE6");
    for (const int32_t i : {0, 1, -1, 4711, INT32_MAX, INT32_MIN}) {
        mclibMatList_insertValue(form.get(), "D", MCLIB_FORM_INTEGER, 0, i);
        for (const char* flag : flags)
            for (const char* measure : measures) value(("%" + std::string(flag) + measure).c_str(), "d");
    }
    for (const double d : {0.0, -0.0, 0.5, 2.5, -12.345, 0.1 + 0.2, 1e15 / 3, -1.7e308, 5e-324, HUGE_VAL, -HUGE_VAL}) {
        mclibMatList_insertValue(form.get(), "F", MCLIB_FORM_FLOAT, 0, d);
        for (const char* flag : flags)
            for (const char* measure : measures) value(("%" + std::string(flag) + measure).c_str(), "f");
    }
    for (const char* measure : measures)
        for (const char* letter : {"s", "c"})
            for (const char* flag : {"", "-"}) value(("%" + std::string(flag) + measure).c_str(), letter);
}

TEST(Formatter, PrefixesThatPrintfCouldNotTakeAreHarmless) {
    const Form form = sampleForm();
    const struct {
        const char* text;
        const char* wanted;
    } cases[] = {
        {"%01%*MASS", "12.500000"},
        {"%01%5$MASS", "12.500000"},
        {"%03%!?DESC", "Bolt"},
        {"%01%%%.1MASS", "%12.5"},  // "%%" in a prefix is a percent sign, and the format goes on behind it
        {"%01%.99999999999999999999MASS", nullptr},
        {"%01%99999999999999999999NUMB", nullptr},
        {"%01%000000000000000000005NUMB", nullptr},
    };
    for (const auto& c : cases) {
        const Answer answer = format(form, c.text, true);
        if (c.wanted) {
            EXPECT_EQ(answer.text, c.wanted) << c.text;
        }
        EXPECT_LE(answer.text.size(), forms::longestValue) << c.text;
    }
    // 18 characters of a prefix count: a width in the 19th isn't there any more.
    EXPECT_EQ(format(form, "%01%                 9NUMB", true).text, "-42");
    EXPECT_EQ(format(form, "%01%                9NUMB", true).text, "      -42");
}

TEST(Formatter, TextIsCutAtTheEndOfItsBuffer) {
    const Form form = newForm();
    setText(form, "LONG", 0, std::string(900, 'x').c_str());
    char text[16];
    for (const char* code : {"%LONG", "0123456789%LONG", "%300LONG", "%-300LONG", "0123456789abcdefghi"}) {
        std::fill(std::begin(text), std::end(text), '#');
        forms::generateText(std::span(text, 12), {.text = code, .form = form.get(), .useRows = false});
        EXPECT_EQ(std::string(text).size(), 11u) << code;
        EXPECT_EQ(std::string(text + 12, 4), "####") << code;
    }
    char out[512 + 8];
    mclibMatList_generateFormatedText("ab%LONG", form.get(), out, nullptr, 0, 0, 0);
    EXPECT_EQ(std::string(out), "ab" + std::string(509, 'x'));
}

// ---- callback fields ----

struct Call {
    int row;
    std::string name;
    int userArg;
    double width, height;
};
std::vector<Call> calls;

int recordCall(int row, char* name, ElementDescr** newDescr, int userArg, double width, double height) {
    calls.push_back({row, name, userArg, width, height});
    *newDescr = reinterpret_cast<ElementDescr*>(&calls);
    return 0;
}

TEST(Formatter, CallbackFieldIsCalledOnceAndEndsTheText) {
    const Form form = sampleForm();
    ASSERT_EQ(mclibMatList_insertValue(form.get(), "SIGN", 5, 2, recordCall, int32_t{-7}, int32_t{1}), 0);
    char text[512];
    ElementDescr* made = nullptr;
    calls.clear();
    EXPECT_EQ(mclibMatList_generateFormatedText("by %03%SIGN and %03%SIGN", form.get(), text, &made, 30, 2.5, 1), 5);
    EXPECT_STREQ(text, "by ");
    EXPECT_EQ(made, reinterpret_cast<ElementDescr*>(&calls));
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].row, 2);
    EXPECT_EQ(calls[0].name, "SIGN");
    EXPECT_EQ(calls[0].userArg, -7);
    EXPECT_EQ(calls[0].width, 30);
    EXPECT_EQ(calls[0].height, 2.5);
}

TEST(Formatter, CallbackFieldIsNotCalledWithoutAPlaceForWhatItMakes) {
    const Form form = sampleForm();
    mclibMatList_insertValue(form.get(), "SIGN", 5, 2, recordCall, int32_t{0}, int32_t{1});
    mclibMatList_insertValue(form.get(), "VOID", 5, 2, static_cast<FormCallback>(nullptr), int32_t{0}, int32_t{1});
    char text[512];
    ElementDescr* made = nullptr;
    calls.clear();
    EXPECT_EQ(mclibMatList_generateFormatedText("%03%SIGN", form.get(), text, nullptr, 0, 0, 1), 5);
    EXPECT_EQ(mclibMatList_generateFormatedText("%03%VOID", form.get(), text, &made, 0, 0, 1), 5);
    EXPECT_EQ(mclibMatList_generateFormatedText("%01%SIGN left", form.get(), text, &made, 0, 0, 1), 5);
    EXPECT_STREQ(text, " left");  // the row isn't set, so the text goes on
    EXPECT_EQ(mclibMatList_generateFormatedText("%01%SIGN %01%NUMB", form.get(), text, &made, 0, 0, 1), 2);
    EXPECT_EQ(made, nullptr);
    EXPECT_TRUE(calls.empty());
}

}  // namespace
