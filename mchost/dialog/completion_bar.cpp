#include "mchost/mdl/completion_bar.h"

#include <algorithm>
#include <string>

#include "mchost/base/guard.h"
#include "mchost/mdl/system.h"

struct MdlCompletionBar {
    std::string text;
};

MdlCompletionBar* mdlDialog_openCompletionBar(const char* text) noexcept {
    return host::guarded<MdlCompletionBar*>(nullptr, [&] {
        auto* const bar = new MdlCompletionBar{text ? text : ""};
        if (text) mdlDialog_completionBarUpdate(bar, nullptr, 0);
        return bar;
    });
}

void mdlDialog_completionBarUpdate(MdlCompletionBar* bar, const char* text, int32_t percent) noexcept {
    host::guarded([&] {
        if (!bar) return;
        if (text) bar->text = std::string(text);
        mdlOutput_printf(MDL_FIELD_MESSAGE, "%3d %%  %s", std::clamp(percent, 0, 100), bar->text.c_str());
    });
}

void mdlDialog_closeCompletionBar(MdlCompletionBar* bar) noexcept {
    if (bar) mdlOutput_printf(MDL_FIELD_MESSAGE, "%s", "");
    delete bar;
}

void mdlSystem_enterGraphicsExtended(int32_t) noexcept {}
