// What a session holds. For the files of this room alone.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "mchost/base/state_owner.h"
#include "mchost/session/keyin.h"
#include "mchost/session/session.h"

// A descriptor lasts as long as the session, also when its application has ended: a stale one can be told.
struct MdlDesc {
    int32_t number = 0;
    std::string taskName;
    std::string modulePath;
    void* module = nullptr;              // from dlopen; null for an application that lies in this process
    std::vector<std::string> arguments;  // what argv points to
    std::vector<char*> argv;
    int depth = 0;  // calls into it that haven't come back
    bool ending = false;
    bool ended = false;
    bool unload = true;
    void* newDesignFile = nullptr;
    void* atEnd = nullptr;
    host::StateOwner states{host::StateOwner::Kind::application};
};

namespace host {

struct Timer {
    int32_t due;
    int32_t id;
    MdlDesc* application;
    void (*function)(int32_t id);
};

struct Session::State {
    int32_t number = 0;
    std::unique_ptr<FrontEnd> frontEnd;
    std::vector<std::unique_ptr<MdlDesc>> applications;  // by process number, from 1
    std::vector<Timer> timers;
    int32_t lastTimerId = 0;
    std::function<bool(const KeyIn&)> carryOut;
    int depth = 0;  // calls into applications that haven't come back
    int exitStatus = 0;
    bool failureNoted = false;
    int memoryFailures = 0;
};

// Null when there is no session.
extern Session::State* activeState;
extern MdlDesc* currentApplication;

void startClock();
void startParameters();

}  // namespace host
