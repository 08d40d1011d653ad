#include "mchost/session/applications.h"

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "mchost/base/charset.h"
#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/base/words.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/system.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/state.h"

namespace host {

namespace {

MdlDesc* addApplication(Session::State& state, std::string_view taskName, std::string_view argv0,
                        std::string_view listName, const std::vector<std::string>& arguments) {
    auto desc = std::make_unique<MdlDesc>();
    desc->number = static_cast<int32_t>(state.applications.size()) + 1;
    desc->taskName = taskName;
    desc->arguments.reserve(arguments.size() + 2);
    desc->arguments.emplace_back(argv0.empty() ? taskName : argv0);
    desc->arguments.emplace_back(listName);
    desc->arguments.insert(desc->arguments.end(), arguments.begin(), arguments.end());
    for (std::string& argument : desc->arguments) desc->argv.push_back(argument.data());
    desc->argv.push_back(nullptr);
    state.applications.push_back(std::move(desc));
    return state.applications.back().get();
}

void leaveStatus(Session::State& state, int status) {
    if (state.exitStatus == 0) state.exitStatus = status;
}

MdlDesc* runMain(Session::State& state, MdlDesc* desc, Session::MainFunction main) {
    const ApplicationScope scope(desc);
    const auto body = [&] { return main(static_cast<int>(desc->argv.size()) - 1, desc->argv.data()); };
    leaveStatus(state, guarded<int>(1, body));
    return desc;
}

MdlDesc* refuse(const std::string& brief, const std::string& details) {
    mdlOutput_messageCenter(MDL_PRIORITY_ERROR, brief.c_str(), details.c_str(), 0);
    return nullptr;
}

// The `main` of the module itself, not one of a library that it needs.
Session::MainFunction mainOf(void* module) {
    void* function = dlsym(module, "main");
    void* ownHandle = nullptr;
    Dl_info info{};
    if (!function || dladdr(function, &info) == 0) return nullptr;
    ownHandle = dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
    if (ownHandle) dlclose(ownHandle);
    return ownHandle == module ? reinterpret_cast<Session::MainFunction>(function) : nullptr;
}

}  // namespace

void finishApplication(MdlDesc& application) noexcept {
    if (application.ended) return;
    ++activeState->depth;
    ++application.depth;  // hooks that are called now don't end it a second time
    MdlDesc* const before = std::exchange(currentApplication, &application);
    if (application.atEnd) dlmSystem_callMdlFunction("", &application, application.atEnd);
    application.states.end();
    std::erase_if(activeState->timers, [&](const Timer& timer) { return timer.application == &application; });
    currentApplication = before;
    application.ended = true;
    --application.depth;
    --activeState->depth;
    if (application.module && application.unload) dlclose(application.module);
}

MdlDesc* Session::startApplication(std::string_view taskName, MainFunction main, std::string_view listName,
                                   const std::vector<std::string>& arguments, std::string_view argv0) {
    return runMain(*state_, addApplication(*state_, taskName, argv0, listName, arguments), main);
}

MdlDesc* Session::loadApplication(const std::string& path, std::string_view taskName, std::string_view listName,
                                  const std::vector<std::string>& arguments) {
    const std::string fullPath = std::filesystem::absolute(systemPath(path)).lexically_normal();
    void* module = dlopen(fullPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!module) {
        return refuse("Can't load the application " + path,
                      narrowFromUtf8(dlerror()).text +
                          ". It must be a shared object for this machine, linked with all libraries that it needs.");
    }
    const MainFunction main = mainOf(module);
    if (!main) {
        dlclose(module);
        return refuse("Can't load the application " + path,
                      "it has no function \"main\" that the host can see. Give it one, "
                      "with C linkage and default visibility.");
    }
    MdlDesc* desc = addApplication(*state_, taskName, hostName(fullPath), listName, arguments);
    desc->module = module;
    desc->modulePath = fullPath;
    return runMain(*state_, desc, main);
}

void Session::endApplication(MdlDesc* desc) {
    if (!desc || desc->ended) return;
    desc->ending = true;
    if (desc->depth == 0) finishApplication(*desc);
}

StateOwner& applicationOwner(MdlDesc* application) noexcept {
    return !application || application->ended ? sessionOwner() : application->states;
}

std::string modulePath(MdlDesc* desc) {
    return !desc ? std::string() : desc->modulePath;
}

void fireNewDesignFile(const char* name, int state) {
    if (!activeState) return;
    for (size_t i = 0; i < activeState->applications.size(); ++i) {
        MdlDesc* desc = activeState->applications[i].get();
        if (desc->ended || !desc->newDesignFile) continue;
        std::string copy = name;
        dlmSystem_callMdlFunction("PI", desc, desc->newDesignFile, copy.data(), state);
    }
}

namespace {

MdlDesc* applicationOf(int32_t processNumber) {
    if (!activeState || processNumber < 1) return nullptr;
    const auto index = static_cast<size_t>(processNumber) - 1;
    if (index >= activeState->applications.size()) return nullptr;
    MdlDesc* desc = activeState->applications[index].get();
    return desc->ended ? nullptr : desc;
}

// The program along MS_MDL: as named, else with the suffix of a module in place of its own.
bool findProgram(char (&path)[256], const std::string& program) {
    const std::string module = program.substr(0, program.rfind('.')) + ".so";
    return mdlFile_find(path, program.c_str(), "MS_MDL", "so") == MDL_SUCCESS ||
           mdlFile_find(path, module.c_str(), "MS_MDL", nullptr) == MDL_SUCCESS;
}

}  // namespace

}  // namespace host

using namespace host;

int32_t mdlSystem_getSessionNumber(void) noexcept {
    return !activeState ? 0 : activeState->number;
}

MdlDesc* mdlSystem_getCurrMdlDesc(void) noexcept {
    return currentApplication;
}

int32_t mdlSystem_getProcessNumberFromMdlDesc(MdlDesc* desc) noexcept {
    return !desc ? 0 : desc->number;
}

MdlDesc* mdlSystem_getMdlDescFromProcessNumber(int32_t processNumber) noexcept {
    return applicationOf(processNumber);
}

MdlDesc* mdlSystem_findMdlDesc(const char* taskName) noexcept {
    if (!activeState || !taskName) return nullptr;
    for (const auto& desc : activeState->applications) {
        if (!desc->ended && sameName(desc->taskName, taskName)) return desc.get();
    }
    return nullptr;
}

int mdlSystem_loadMdlProgram(const char* program, const char* taskName, const char* argument) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        char path[256];
        if (!activeState || !program || !findProgram(path, program)) return MDL_ERROR;
        const MdlDesc* loaded =
            Session::current()->loadApplication(path, !taskName ? program : taskName, !argument ? "USER" : argument);
        return loaded ? MDL_SUCCESS : MDL_ERROR;
    });
}

void mdlSystem_exit(int errorCode, int unload) noexcept {
    if (!activeState || !currentApplication) return;
    leaveStatus(*activeState, errorCode);
    currentApplication->unload = unload != 0;
    currentApplication->ending = true;
}

void mdlSystem_noteFailure(void) noexcept {
    if (activeState && !activeState->frontEnd->attended()) activeState->failureNoted = true;
}

int mdlSystem_failureNoted(void) noexcept {
    return activeState != nullptr && activeState->failureNoted;
}

int mdlSystem_setFunction(int kind, void* function) noexcept {
    if (!currentApplication) return MDL_ERROR;
    switch (kind) {
        case MDL_FUNCTION_NEW_DESIGN_FILE: currentApplication->newDesignFile = function; return MDL_SUCCESS;
        case MDL_FUNCTION_END: currentApplication->atEnd = function; return MDL_SUCCESS;
        default: return MDL_ERROR;
    }
}
