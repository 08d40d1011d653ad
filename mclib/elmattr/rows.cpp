// The attribute list as text: the rows of the dialog's list box, the compact form of an attribute's values, and the
// option button of an application.
#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <string_view>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/names.hpp"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mclib/elmattr/table.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"
#include "mclib/frame/util.h"

namespace mc {

namespace {

constexpr mdl::ItemId attributeList = {ITEM_LIST_BOX, 20001};  // of the attribute dialog

constexpr size_t cellLength = 83;     // characters of a cell
constexpr size_t valuesLength = 255;  // characters of the values cell

enum Cell { cellLabel, cellColor, cellStyle, cellWeight, cellLevel, cellClass, cellValues };

// A text that grows up to `limit` characters and drops what is beyond.
class CellText {
  public:
    explicit CellText(size_t limit) : limit_(limit) {}
    CellText& operator<<(std::string_view text) {
        const size_t taken = std::min(text.size(), limit_ - length_);
        std::memcpy(buffer_.data() + length_, text.data(), taken);
        length_ += taken;
        return *this;
    }
    CellText& operator<<(int32_t value) {
        std::array<char, 16> digits;
        return *this << std::string_view(digits.data(), std::to_chars(digits.begin(), digits.end(), value).ptr);
    }
    CellText& operator<<(const wchar_t* text) {
        std::array<char, valuesLength + 1> narrow{};
        mdlCnv_convertUnicodeToMultibyte(text, static_cast<int>(std::wcslen(text)), narrow.data(), narrow.size());
        return *this << std::string_view(narrow.data());
    }
    CellText& number(double value, int decimals) {
        std::array<char, 400> digits;  // the greatest double has 309 digits
        const auto end = std::to_chars(digits.begin(), digits.end(), value, std::chars_format::fixed, decimals);
        return *this << std::string_view(digits.data(), end.ptr);
    }
    void dropLast(char c) {
        if (length_ > 0 && buffer_[length_ - 1] == c) --length_;
    }
    const char* text() {
        buffer_[length_] = '\0';
        return buffer_.data();
    }

  private:
    std::array<char, valuesLength + 1> buffer_;
    size_t limit_;
    size_t length_ = 0;
};

struct JustificationCode {
    int32_t just;
    std::string_view code;
};
constexpr auto justificationCodes = std::to_array<JustificationCode>({
    {0, "LT"},
    {1, "LC"},
    {2, "LB"},
    {6, "CT"},
    {7, "CC"},
    {8, "CB"},
    {12, "RT"},
    {13, "RC"},
    {14, "RB"},
});

// A justification at a margin has no code of its own and shows its number.
void appendJustification(CellText& text, int32_t just) {
    const auto* row = std::ranges::find(justificationCodes, just, &JustificationCode::just);
    text << "JU=";
    if (row == justificationCodes.end()) {
        text << just;
    } else {
        text << row->code;
    }
    text << ",";
}

void appendTextValues(CellText& text, const ElmAttrData& data, int decimals) {
    if ((data.useFlags & ATTR_USE_TEXT_STYLE) != 0 && data.textStyleName[0] != L'\0') {
        text << "TS=" << data.textStyleName << ",";
    }
    if ((data.useFlags & ATTR_USE_FONT) != 0) text << "FO=" << data.textFont << ",";
    if ((data.useFlags & ATTR_USE_SIZE) != 0) {
        text << "SI=";
        text.number(data.textHeight, decimals) << "/";
        text.number(data.textWidth, decimals) << "/";
        text.number(data.textLineSpacing, decimals) << ",";
    }
    if ((data.useFlags & ATTR_USE_JUST) != 0) appendJustification(text, data.textJust);
}

void appendValues(CellText& text, const ElmAttrRecord& record) {
    const ElmAttrData& data = record.data;
    const int decimals = record.kind == ATTR_KIND_SYMBOL ? 0 : std::max(mclibUtil_getCoordinateReadoutAccuracy(2), 0);
    switch (record.kind) {
        case ATTR_KIND_SYMBOL: text << "SY=" << data.symbolNumber; break;
        case ATTR_KIND_SIZED_SYMBOL:
            text << "SY=" << data.symbolNumber << ",SI=";
            text.number(data.symbolSize, decimals);
            break;
        case ATTR_KIND_LABELLED_SYMBOL:
            text << "SY=" << data.symbolNumber << ",SI=";
            text.number(data.symbolSize, decimals) << ",\"" << std::string_view(data.symbolText) << "\"";
            break;
        case ATTR_KIND_TEXT:
            appendTextValues(text, data, decimals);
            if ((data.useFlags & ATTR_USE_SLANT) != 0) (text << "SL=").number(data.textSlant, decimals);
            text.dropLast(',');
            break;
        case ATTR_KIND_LABELLED_TEXT:
            appendTextValues(text, data, decimals);
            text << "\"" << std::string_view(data.optionText) << "\"";
            break;
        default: break;
    }
}

// The text of one cell behind the label; empty where the flag of its value is off.
CellText cellText(Cell cell, const ElmAttrRecord& record) {
    const ElmAttrData& data = record.data;
    const auto uses = [&data](uint32_t flag) { return (data.useFlags & flag) != 0; };
    CellText text(cell == cellValues ? valuesLength : cellLength);
    const auto numberOrByLevel = [&text](int32_t value, int32_t byLevel) {
        if (value == byLevel) {
            text << "BL";
        } else {
            text << value;
        }
    };
    switch (cell) {
        case cellColor:
            if (uses(ATTR_USE_COLOR)) numberOrByLevel(data.color, ATTR_BY_LEVEL);
            break;
        case cellStyle:
            if (!uses(ATTR_USE_STYLE)) break;
            if (data.style < 0) {
                text << "UD";
            } else {
                numberOrByLevel(data.style, ATTR_STYLE_BY_LEVEL);
            }
            break;
        case cellWeight:
            if (uses(ATTR_USE_WEIGHT)) numberOrByLevel(data.weight, ATTR_BY_LEVEL);
            break;
        case cellLevel:
            if (uses(ATTR_USE_LEVEL)) text << data.levelName;
            break;
        case cellClass:
            if (uses(ATTR_USE_CLASS)) text << (data.elementClass == 0 ? "P" : "C");
            break;
        case cellValues: appendValues(text, record); break;
        case cellLabel: break;
    }
    return text;
}

bool appendRow(StringList* list, const ElmAttrRecord& record) {
    int32_t first = -1;
    if (mdlStringList_insertMember(&first, list, -1, attributeRowCells) != MDL_SUCCESS || first < 0) return false;
    mdlStringList_setMember(list, first + cellLabel, record.label, nullptr);
    mdlStringList_setInfoField(list, first, 1, record.id);
    elmattr::setRow(list, first / attributeRowCells, record);
    return true;
}

// The row whose info field 1 is the id; -1 when there is none.
int rowOf(const StringList* list, int id) {
    for (int32_t member = 0; member < mdlStringList_size(list); member += attributeRowCells) {
        int32_t found = 0;
        mdlStringList_getInfoField(&found, list, member, 1);
        if (found == id) return member / attributeRowCells;
    }
    return -1;
}

}  // namespace

}  // namespace mc

namespace mc::elmattr {

void setRow(StringList* list, int row, const ElmAttrRecord& record) {
    for (const Cell cell : {cellLevel, cellWeight, cellStyle, cellClass, cellColor, cellValues}) {
        mdlStringList_setMember(list, row * attributeRowCells + cell, cellText(cell, record).text(), nullptr);
    }
}

StringList* createRows(GlobalData& gd, int group) {
    StringList* list = mdlStringList_create(0, 2);
    for (const ElmAttrRecord* r = gd.attributeList; r; r = r->next) {
        if (list && r->group == group) appendRow(list, *r);
        if (r->id >= gd.nextAttributeId && r->id < INT32_MAX) gd.nextAttributeId = r->id + 1;
    }
    return list;
}

void refreshDialog(GlobalData& gd, int id) {
    MdlDialog* dialog = mdlDialog_find(elmattr::dialogId, mdlSystem_getCurrMdlDesc());
    MdlItem* listBox = dialog ? mdl::itemOf(dialog, attributeList) : nullptr;
    if (!listBox || !gd.activeRecord) return;
    StringList* before = mdlDialog_listBoxGetStrListP(listBox);
    StringList* rows = createRows(gd, gd.activeRecord->group);
    mdlDialog_listBoxSetStrListP(listBox, rows, attributeRowCells);
    mdlStringList_destroy(before);
    if (id >= 0) {
        mdlDialog_listBoxSelectRow(listBox, rowOf(rows, id));
        gd.selectedAttributeId = id;
    }
    mdlDialog_itemDraw(listBox);
}

}  // namespace mc::elmattr

using namespace mc;

void mclibElmAttr_insertOptionButton(MdlDialog* dialog, MdlItem* item, int group, int* selectedId) {
    const GlobalData* gd = mclibMain_getGlobalDataP();
    if (!gd || !dialog || !item) return;
    const ElmAttrRecord* first = nullptr;
    bool selectedIsThere = false;
    mdlDialog_optionButtonDeleteAll(item);
    for (const ElmAttrRecord* r = gd->attributeList; r; r = r->next) {
        if (r->group != group) continue;
        mdlDialog_optionButtonInsert(item, r->label, r->id);
        if (!first) first = r;
        selectedIsThere = selectedIsThere || (selectedId && r->id == *selectedId);
    }
    if (selectedId && first && !selectedIsThere) *selectedId = first->id;
    mdlDialog_itemSynch(item);
}
