// Form data arrays: what is stored in them, and the fields that the library fills.
#include "mclib/forms/forms.h"

#include <cstring>
#include <regex>
#include <string>

#include "mchost/mdl/system.h"
#include "mclib/frame/util.h"
#include "tests/support/library_fixture.h"

namespace {

bool isLike(const std::string& text, const char* pattern) {
    return std::regex_match(text, std::regex(pattern));
}

class FormArray : public LibraryTest {
  protected:
    ~FormArray() override { mclibMatList_destroyFormDataArray(form_); }

    FormData* make(int nameLength, int rows) {
        mclibMatList_destroyFormDataArray(form_);
        return form_ = mclibMatList_createFormDataArray(nameLength, rows);
    }
    const FormData* field(const char* name) const {
        const FormData* node = form_->next;
        while (node && std::strcmp(node->name, name) != 0) node = node->next;
        return node;
    }
    // The text of a row; "-" when it isn't set.
    std::string text(const char* name, int row) const {
        const FormData* node = field(name);
        return node && node->isSet[row] ? node->values[row].text : "-";
    }

    FormData* form_ = nullptr;
};

TEST_F(FormArray, HeadTellsRowsAndNameLength) {
    const FormData* head = make(6, 25);
    ASSERT_NE(head, nullptr);
    EXPECT_EQ(head->type, 255);
    EXPECT_EQ(head->values[0].head.rowCount, 25);
    EXPECT_EQ(head->values[0].head.nameLength, 6);
    EXPECT_EQ(head->next, nullptr);
    EXPECT_EQ(make(0, 25), nullptr);
    EXPECT_EQ(make(4, -1), nullptr);
    EXPECT_NE(front().consoleText.find("-1 rows"), std::string::npos);
    EXPECT_NE(make(4, 0), nullptr);  // a list of no rows
    EXPECT_EQ(mclibMatList_insertValue(form_, "DESC", 3, 0, "x"), 2);
}

TEST_F(FormArray, ResultsOfInsertion) {
    make(4, 3);
    const FormCallback function = nullptr;
    EXPECT_EQ(mclibMatList_insertValue(nullptr, "DESC", 3, 0, "x"), 1);
    EXPECT_EQ(mclibMatList_insertValue(form_, nullptr, 3, 0, "x"), 1);
    EXPECT_EQ(mclibMatList_insertValue(form_, "DESC", 3, -1, "x"), 2);
    EXPECT_EQ(mclibMatList_insertValue(form_, "DESC", 3, 3, "x"), 2);
    EXPECT_EQ(form_->next, nullptr);
    EXPECT_EQ(mclibMatList_insertValue(form_, "DESC", 3, 2, "x"), 0);
    EXPECT_EQ(mclibMatList_insertValue(form_, "SIGN", 5, 0, function, 1, 0), 0);
    EXPECT_EQ(mclibMatList_insertValue(form_, "ODDS", 6, 1, 0), 3);
    EXPECT_EQ(field("ODDS")->isSet[1], 1);  // the flag is set all the same
    EXPECT_EQ(mclibMatList_insertValue(form_, "ODDS", 2, 0, 5), 3);
    EXPECT_EQ(form_->next, field("DESC"));  // in order of the first insertion
    EXPECT_EQ(form_->next->next, field("SIGN"));
}

TEST_F(FormArray, FieldKeepsItsFirstType) {
    make(4, 2);
    const char* text = "12";
    mclibMatList_insertValue(form_, "NUMB", MCLIB_FORM_INTEGER, 0, int32_t{3});
    EXPECT_EQ(mclibMatList_insertValue(form_, "NUMB", MCLIB_FORM_TEXT, 1, text), 0);
    EXPECT_EQ(field("NUMB")->type, MCLIB_FORM_INTEGER);
    EXPECT_EQ(field("NUMB")->values[1].integer, static_cast<int32_t>(reinterpret_cast<intptr_t>(text)));
    EXPECT_EQ(mclibMatList_insertValue(form_, "NUMB", MCLIB_FORM_FLOAT, 0, 7.9), 0);
    EXPECT_EQ(field("NUMB")->values[0].integer, 7);
    mclibMatList_insertValue(form_, "MASS", MCLIB_FORM_FLOAT, 0, 2.5);
    EXPECT_EQ(mclibMatList_insertValue(form_, "MASS", MCLIB_FORM_INTEGER, 1, int32_t{4}), 0);
    EXPECT_EQ(field("MASS")->values[1].floating, 4.0);
    EXPECT_EQ(mclibMatList_insertValue(form_, "MASS", 0, 1, 6.5), 0);  // a type that there isn't: the field's
    EXPECT_EQ(field("MASS")->values[1].floating, 6.5);
    mclibMatList_insertValue(form_, "DESC", MCLIB_FORM_TEXT, 0, "Bolt");
    EXPECT_EQ(mclibMatList_insertValue(form_, "DESC", MCLIB_FORM_INTEGER, 1, "Nut"), 0);
    EXPECT_EQ(this->text("DESC", 1), "Nut");
    EXPECT_EQ(mclibMatList_insertValue(form_, "DESC", MCLIB_FORM_FLOAT, 0, 4.0), 3);
    EXPECT_EQ(this->text("DESC", 0), "Bolt");
    EXPECT_NE(front().consoleText.find("DESC"), std::string::npos);
}

TEST_F(FormArray, TextsAreCopiesAndReplaced) {
    make(4, 2);
    char value[] = "first";
    mclibMatList_insertValue(form_, "DESC", MCLIB_FORM_TEXT, 0, value);
    std::strcpy(value, "other");
    EXPECT_EQ(text("DESC", 0), "first");
    mclibMatList_insertValue(form_, "DESC", MCLIB_FORM_TEXT, 0, value);
    EXPECT_EQ(text("DESC", 0), "other");
    mclibMatList_insertValue(form_, "DESC", MCLIB_FORM_TEXT, 1, std::string(5000, 'x').c_str());
    EXPECT_EQ(text("DESC", 1), std::string(1023, 'x'));
    mclibMatList_insertValue(form_, "DESC", MCLIB_FORM_TEXT, 1, static_cast<const char*>(nullptr));
    EXPECT_EQ(text("DESC", 1), "");
}

TEST_F(FormArray, LongNameIsToldByItsFirstCharacters) {
    make(4, 2);
    mclibMatList_insertValue(form_, "DESCRIPTION", MCLIB_FORM_TEXT, 0, "a");
    mclibMatList_insertValue(form_, "DESCENT", MCLIB_FORM_TEXT, 1, "b");
    EXPECT_EQ(text("DESC", 0), "a");
    EXPECT_EQ(text("DESC", 1), "b");
    EXPECT_EQ(form_->next->next, nullptr);
    mclibMatList_insertValue(form_, "DES", MCLIB_FORM_TEXT, 0, "c");
    EXPECT_EQ(text("DES", 0), "c");
    EXPECT_EQ(text("DESC", 0), "a");
}

TEST_F(FormArray, FileNamesAreTakenApart) {
    const struct {
        const char* path;
        const char* rows[5];
    } cases[] = {
        {"c:\\100%\\jobs\\pipe.v2.mcd", {"c:", "\\100%%\\jobs\\", "pipe.v2", ".mcd", "pipe.v2.mcd"}},
        {"pipe", {"", "", "pipe", "", "pipe"}},
    };
    for (const auto& c : cases) {
        make(4, 8);
        mclibMatList_insertFileName(c.path, "file", form_);
        for (int row = 0; row < 5; ++row) EXPECT_EQ(text("file", row), c.rows[row]) << c.path << " row " << row;
        EXPECT_EQ(text("file", 5), "-");
    }
}

TEST_F(FormArray, SystemDataOfTheMoment) {
    openDesignFile();
    make(4, 8);
    mclibMatList_insertSystemData(form_);
    const char* const date[] = {"[1-3]?[0-9]", "[0-3][0-9]", "[A-Z][a-z]+day", "[A-Z][a-z]+",
                                "1?[0-9]",     "[01][0-9]",  "20[0-9]{2}",     "[0-9]{2}"};
    const char* const time[] = {"[12]?[0-9]", "[0-2][0-9]", "[1-5]?[0-9]", "[0-5][0-9]", "[1-6]?[0-9]", "[0-6][0-9]"};
    for (int row = 0; row < 8; ++row) EXPECT_TRUE(isLike(text("date", row), date[row])) << row;
    for (int row = 0; row < 6; ++row) EXPECT_TRUE(isLike(text("time", row), time[row])) << row;
    for (const int row : {0, 4}) EXPECT_EQ(std::stoi(text("date", row)), std::stoi(text("date", row + 1)));
    EXPECT_EQ(text("date", 6).substr(2), text("date", 7));
    for (const int row : {0, 2, 4}) EXPECT_EQ(std::stoi(text("time", row)), std::stoi(text("time", row + 1)));
    EXPECT_EQ(text("file", 4), "test.mcd");
}

TEST_F(FormArray, SystemDataLeavesOutRowsThatTheArrayHasNot) {
    make(4, 5);
    mclibMatList_insertSystemData(form_);
    for (const char* name : {"file", "date", "time"})
        for (int row = 0; row < 5; ++row) EXPECT_NE(text(name, row), "-") << name << row;
}

}  // namespace
