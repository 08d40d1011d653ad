// The calls on items of any kind, and on texts.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "mchost/base/number_format.h"
#include "mchost/dialog/on_item.h"
#include "mchost/mdl/dialog_items.h"

namespace host {

namespace {

constexpr size_t formatSize = 32;   // bytes, its NUL included
constexpr int32_t unitsOfARow = 6;  // of a list box

}  // namespace

}  // namespace host

using host::ItemRef;

MdlItem* mdlDialog_itemGetByIndex(MdlDialog* handle, int32_t index) noexcept {
    const auto dialog = host::dialogOf(handle);
    return dialog && index >= 0 ? dialog->itemHandle(static_cast<size_t>(index)) : nullptr;
}

int32_t mdlDialog_itemCount(const MdlDialog* handle) noexcept {
    const auto dialog = host::dialogOf(handle);
    return dialog ? static_cast<int32_t>(dialog->items().size()) : 0;
}

int32_t mdlDialog_itemIndex(const MdlItem* handle) noexcept {
    const ItemRef item = host::itemOf(handle);
    return item ? static_cast<int32_t>(item.index) : -1;
}

MdlItem* mdlDialog_itemNeighbour(const MdlItem* handle, int32_t steps) noexcept {
    const ItemRef item = host::itemOf(handle);
    if (!item) return nullptr;
    const int64_t index = static_cast<int64_t>(item.index) + steps;
    return index < 0 ? nullptr : item.dialog->itemHandle(static_cast<size_t>(index));
}

MdlItem* mdlDialog_itemGetByTypeAndId(MdlDialog* handle, int32_t type, int32_t id) noexcept {
    const auto dialog = host::dialogOf(handle);
    return dialog ? mdlDialog_itemGetByIndex(handle, dialog->indexOf(type, id)) : nullptr;
}

int32_t mdlDialog_itemType(const MdlItem* handle) noexcept {
    const ItemRef item = host::itemOf(handle);
    return item ? item->kind : 0;
}

int32_t mdlDialog_itemId(const MdlItem* handle) noexcept {
    const ItemRef item = host::itemOf(handle);
    return item ? item->id : 0;
}

void mdlDialog_itemRect(DialogRect* rect, const MdlItem* handle) noexcept {
    const ItemRef item = host::itemOf(handle);
    if (rect) *rect = item ? item->rect : DialogRect{};
}

void mdlDialog_itemMove(MdlItem* handle, int32_t left, int32_t top) noexcept {
    host::onItem(handle, 0, [&](const ItemRef& item) -> int {
        item.dialog->moveItem(item.index, std::abs(left), std::abs(top));
        return MDL_SUCCESS;
    });
}

void mdlDialog_itemSetExtent(MdlItem* handle, int32_t width, int32_t height) noexcept {
    host::onItem(handle, 0, [&](const ItemRef& item) -> int {
        item.dialog->setItemExtent(item.index, width, height);
        return MDL_SUCCESS;
    });
}

void mdlDialog_itemSetHeight(MdlItem* handle, int32_t units) noexcept {
    host::onItem(handle, 0, [&](const ItemRef& item) -> int {
        const int64_t pixels = int64_t{units} * host::rowHeight / host::unitsOfARow;
        const int32_t width = item->rect.right - item->rect.left;
        item.dialog->setItemExtent(item.index, width, static_cast<int32_t>(std::clamp<int64_t>(pixels, 0, 32767)));
        return MDL_SUCCESS;
    });
}

int mdlDialog_itemPress(MdlItem* handle) noexcept {
    return host::onItem(handle, ITEM_PUSH_BUTTON, [](const ItemRef& item) -> int {
        return item.dialog->press(item.index) ? MDL_SUCCESS : MDL_ERROR;
    });
}

void mdlDialog_itemSetLabel(MdlItem* handle, const char* label) noexcept {
    host::onItem(handle, 0, [&](const ItemRef& item) -> int {
        if (label) item.dialog->setLabel(item.index, label);
        return MDL_SUCCESS;
    });
}

const char* mdlDialog_itemGetLabel(const MdlItem* handle) noexcept {
    const ItemRef item = host::itemOf(handle);
    return item ? item->label.c_str() : nullptr;
}

void mdlDialog_itemShow(MdlItem* handle, int32_t show) noexcept {
    host::onItem(handle, 0, [&](const ItemRef& item) -> int {
        item.dialog->showItem(item.index, show != 0);
        return MDL_SUCCESS;
    });
}

int mdlDialog_itemIsShown(const MdlItem* handle) noexcept {
    const ItemRef item = host::itemOf(handle);
    return item && item.dialog->isVisible(*item);
}

int mdlDialog_itemIsEnabled(const MdlItem* handle) noexcept {
    const ItemRef item = host::itemOf(handle);
    return item && item->enabled;
}

void mdlDialog_itemEnable(MdlItem* handle, int32_t enable) noexcept {
    host::onItem(handle, 0, [&](const ItemRef& item) -> int {
        item.dialog->enableItem(item.index, enable != 0);
        return MDL_SUCCESS;
    });
}

int mdlDialog_itemSynch(MdlItem* handle) noexcept {
    return host::onItem(
        handle, 0, [](const ItemRef& item) -> int { return item.dialog->synch(item.index) ? MDL_SUCCESS : MDL_ERROR; });
}

int mdlDialog_itemsSynch(MdlDialog* handle) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        const auto dialog = host::dialogOf(handle);
        if (!dialog) return MDL_ERROR;
        int status = MDL_SUCCESS;
        for (size_t i = 0; i < dialog->items().size(); ++i)
            if (!dialog->items()[i].access.empty() && !dialog->synch(i)) status = MDL_ERROR;
        return status;
    });
}

const char* mdlDialog_itemGetValue(const MdlItem* handle) noexcept {
    const ItemRef item = host::itemOf(handle);
    return item ? item->value.c_str() : nullptr;
}

int mdlDialog_itemSetValue(MdlItem* handle, const char* value) noexcept {
    return host::onItem(handle, 0, [&](const ItemRef& item) -> int {
        return value && item.dialog->change(item.index, value) ? MDL_SUCCESS : MDL_ERROR;
    });
}

void mdlDialog_itemDraw(MdlItem* handle) noexcept {
    host::onItem(handle, 0, [](const ItemRef& item) -> int {
        item.dialog->draw(item.index);
        return MDL_SUCCESS;
    });
}

int mdlDialog_itemSignal(MdlItem* handle, int32_t signal, int32_t value) noexcept {
    return host::onItem(handle, 0, [&](const ItemRef& item) -> int {
        item.dialog->signal(item.index, signal, value);
        return MDL_SUCCESS;
    });
}

int mdlDialog_setFocus(MdlDialog* handle, MdlItem* itemHandle) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        const auto dialog = host::dialogOf(handle);
        const ItemRef item = host::itemOf(itemHandle);
        if (!dialog || (itemHandle && item.dialog != dialog)) return MDL_ERROR;
        return dialog->setFocus(itemHandle ? item.index : host::Dialog::noItem) ? MDL_SUCCESS : MDL_ERROR;
    });
}

// ---- texts ----

int mdlDialog_textGetInfo(char* format, const MdlItem* handle) noexcept {
    return host::onItem(handle, ITEM_TEXT, [&](const ItemRef& item) -> int {
        if (!format) return MDL_ERROR;
        const size_t length = std::min(item->format.size(), host::formatSize - 1);
        std::memcpy(format, item->format.data(), length);
        format[length] = '\0';
        return MDL_SUCCESS;
    });
}

int mdlDialog_textSetInfo(MdlItem* handle, const char* format) noexcept {
    return host::onItem(handle, ITEM_TEXT, [&](const ItemRef& item) -> int {
        const std::string next = format ? format : "";
        if (next.size() >= host::formatSize || (!next.empty() && !host::isValueFormat(next))) return MDL_ERROR;
        item.dialog->setFormat(item.index, next);
        return MDL_SUCCESS;
    });
}
