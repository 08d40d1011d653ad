// Fields that every form may show: the parts of a file name, the date and the time.
#include <cstdio>
#include <string>

#include "mchost/mdl/files.h"
#include "mchost/mdl/system.h"
#include "mclib/forms/forms.h"
#include "mclib/frame/text_buffer.h"
#include "mclib/frame/util.h"

namespace mc {

namespace {

void insertText(FormData* form, const char* name, int row, const char* text) {
    mclibMatList_insertValue(form, name, MCLIB_FORM_TEXT, row, text);
}

__attribute__((format(printf, 4, 0))) void insertNumber(FormData* form, const char* name, int row, const char* format,
                                                        int value) {
    char text[16];
    std::snprintf(text, sizeof text, format, value);
    insertText(form, name, row, text);
}

std::string withDoubledPercents(const char* text) {
    std::string doubled;
    for (; *text; ++text) doubled.append(*text == '%' ? 2 : 1, *text);
    return doubled;
}

// A moment in numbers and names.
struct Moment {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    std::string weekDay, monthName;
};

Moment present() {
    Moment now;
    char* name = nullptr;  // in a buffer that the next name overwrites
    mclibUtil_getDateAndTime(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &name);
    now.monthName = name;
    mclibUtil_getDateAndTime(&now.year, &now.month, &now.day, &now.hour, &now.minute, &now.second, nullptr, &name,
                             nullptr);
    now.weekDay = name;
    return now;
}

void insertDate(FormData* form, const Moment& now) {
    insertNumber(form, "date", 0, "%d", now.day);
    insertNumber(form, "date", 1, "%02d", now.day);
    insertText(form, "date", 2, now.weekDay.c_str());
    insertText(form, "date", 3, now.monthName.c_str());
    insertNumber(form, "date", 4, "%d", now.month);
    insertNumber(form, "date", 5, "%02d", now.month);
    insertNumber(form, "date", 6, "%d", now.year);
    insertNumber(form, "date", 7, "%02d", now.year % 100);
}

void insertTime(FormData* form, const Moment& now) {
    const int parts[] = {now.hour, now.minute, now.second};
    for (int i = 0; i < 3; ++i) {
        insertNumber(form, "time", 2 * i, "%d", parts[i]);
        insertNumber(form, "time", 2 * i + 1, "%02d", parts[i]);
    }
}

}  // namespace

}  // namespace mc

using namespace mc;

void mclibMatList_insertFileName(const char* path, const char* name, FormData* form) {
    if (!form || !path || !name) return;
    char device[256] = "", directory[256] = "", base[256] = "", extension[256] = "";
    mdlFile_parseName(path, device, directory, base, extension);
    std::string disk = device, ending = extension;
    if (!disk.empty() && !disk.ends_with(':')) disk += ':';
    if (!ending.empty()) ending.insert(0, ".");
    const std::string parts[] = {disk, withDoubledPercents(directory), base, ending, base + ending};
    for (int row = 0; row < static_cast<int>(std::size(parts)); ++row) insertText(form, name, row, parts[row].c_str());
}

void mclibMatList_insertSystemData(FormData* form) {
    if (!form) return;
    mclibMatList_insertFileName(tcbP->designFileName, "file", form);
    const Moment now = present();  // one for both, so that they agree at midnight
    insertDate(form, now);
    insertTime(form, now);
}
