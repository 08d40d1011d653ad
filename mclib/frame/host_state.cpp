// What the host is and holds: its edition, work mode, levels, graphic groups, the user's preferences.
#include <cstring>
#include <string>

#include "mchost/mdl/files.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/util.h"
#include "resources/ids.h"

namespace mc {

namespace {

constexpr const char* workmodes[] = {"DGN", "DWG", "V7"};
constexpr int workmodeV7 = 2;
constexpr int userLevel = 4;

bool isDefined(const char* variable) {
    return mdlSystem_getenv(nullptr, variable, 1) == 0;
}

LevelId findLevel(ModelRef* model, const wchar_t* name) {
    LevelId id = 0;
    if (mdlLevel_isValidByName(model, name)) mdlLevel_getIdFromName(&id, model, 0, name);
    return id;
}

void reportNoLevelInV7(const wchar_t* name) {
    std::string details = "Cannot create level '";
    details += mclibUtil_convertToMultibyteText(name);
    details += "' because the host is in 'V7 Workmode'.";
    mdlOutput_messageCenter(MDL_PRIORITY_WARNING, "NA in 'V7 Workmode'.", details.c_str(), 0);
}

// Colour and fill colour, weight and line style of a new level.
struct LevelSymbology {
    uint32_t color, weight, style;
};

int setSymbologyOf(ModelRef* model, LevelId id, const LevelSymbology& symbology) {
    const auto style = static_cast<int32_t>(symbology.style);
    const int status =
        mdlLevel_setElementSymbology(model, id, &symbology.color, &style, nullptr, &symbology.weight, &symbology.color);
    return status != MDL_SUCCESS ? status : mdlLevel_setSymbology(model, id, 0, 0, 0);
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibUtil_runningPowerDraft(void) {
    if (!isDefined("_MSDRAFT")) return 0;
    mc::showNotice(ids::errors::noOtherPrograms);
    return 1;
}

int mclibUtil_mdlExternalNotAvailable(void) {
    return isDefined("_MSDRAFT") || isDefined("_MSPOWERSCOPE") || isDefined("_PRJREVIEW");
}

int mclibUtil_setWorkmode(const char* variableName) {
    char value[32];
    const int workmode = mdlSystem_getWorkmode();
    if (mdlSystem_getenv(value, variableName, sizeof value) != 0) return 0;
    if (workmode < 0 || workmode >= static_cast<int>(std::size(workmodes))) return 0;
    if (std::strcmp(value, workmodes[workmode]) == 0) return 0;
    mdlSystem_defineCfgVar(variableName, workmodes[workmode], userLevel);
    return 1;
}

LevelId mclibUtil_levelIdFromName(const wchar_t* name) {
    return mclibUtil_levelIdFromNameExtended(name, 1, 0, 0, 0, 0);
}

LevelId mclibUtil_levelIdFromNameExtended(const wchar_t* name, int rewriteTable, int setSymbology, uint32_t word1,
                                          uint32_t word2, uint32_t word3) {
    if (!name) return 0;
    ModelRef* model = mdlModelRef_getActive();
    LevelId id = findLevel(model, name);
    ModelRef* const library = id ? nullptr : mdlLevelLibrary_getModelRef();
    if (library) id = findLevel(library, name);
    if (id) return id;
    if (mdlSystem_getWorkmode() == workmodeV7) {
        reportNoLevelInV7(name);
        return 0;
    }
    if (mdlLevel_create(&id, model, name) != MDL_SUCCESS) return 0;
    int status = MDL_SUCCESS;
    if (setSymbology) status = setSymbologyOf(model, id, {word1, word2, word3});
    if (rewriteTable && status == MDL_SUCCESS) mdlLevelTable_rewrite(model);
    return id;
}

int32_t mclibUtil_newGraphicGroup(void) {
    int32_t group = 0;
    mdlParams_getActive(&group, MDL_PARAM_GRAPHIC_GROUP);
    mdlSystem_updateGraphicGroup();
    return group;
}

int mclibUtil_openUserPrefFile(int32_t* handleP, int mode) {
    return mdlDialog_userPrefFileOpen(handleP, mode);
}
