// The design files that a session has open: the active one, work files beside it, those that are
// attached to them, and the level library.
#pragma once

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "mchost/model/design_file.h"
#include "mchost/model/journal.h"

namespace host {

class OpenFiles {
  public:
    OpenFiles();
    ~OpenFiles();  // closes them all; a line tells of each that couldn't be stored
    OpenFiles(const OpenFiles&) = delete;
    OpenFiles& operator=(const OpenFiles&) = delete;

    Journal journal;

    DesignFile* active() const { return active_; }
    // The place itself, that of the active file for null; null for one that isn't there any more.
    ModelRef* place(ModelRef* handle) const;
    // Brings the places below one in line with what is attached to its model. A model that stands on the way to the
    // place already isn't followed: it would show itself without end.
    void follow(ModelRef& place);
    // The file that is attached to another by that name, to look at: FileProblem when it can't be read.
    DesignFile* attachedFile(const DesignFile& to, const std::string& name);
    void dropUnused();  // files that are shown nowhere
    // Whether something about what is shown is to be told: once, until another design file is the active one.
    bool isToldFirst(const std::string& what);

    // The file that holds the model, which is open.
    const DesignFile& fileOf(const Model& model) const;
    // The model of that serial, and where one is shown by itself; null when it isn't open.
    Model* modelOf(uint64_t serial) const;
    ModelRef* placeOf(const Model& model) const;

    // Opens the file in place of the active one, which stays open when that fails: FileProblem. Applications hear of
    // it.
    void switchActive(const std::string& path, bool readOnly);
    // Stores and closes the active file; it is closed also when that fails: FileProblem.
    void closeActive();

    // Opens a file beside the active one, or gives it once more when this session is writing to it: FileProblem.
    ModelRef* openWork(const std::string& path, FileKind kind, DesignFile::Use use);
    // Takes back one opening; the last one stores and closes the file: FileProblem, and it is closed all the same.
    void closeWork(DesignFile& file);
    bool isWork(const DesignFile& file) { return entryOf(file).openings > 0; }

    // A command is finished: the next change belongs to another step, and what was changed is stored.
    void finishCommand();

    // The level library, read anew when the file has changed. Null without one; FileProblem when it can't be read.
    ModelRef* levelLibrary(const std::string& path);

  private:
    struct Opened {
        std::unique_ptr<DesignFile> file;
        int openings = 0;  // as a work file
    };

    void close(DesignFile& file);
    DesignFile* open(const std::string& path, DesignFile::Use use, FileKind kind);
    DesignFile* openHere(const std::string& path) const;
    Opened& entryOf(const DesignFile& file);
    void drop(DesignFile* file);
    void dropActive();
    void leaveActive(const std::string& next);
    void publishActive() const;

    bool isShown(const DesignFile& file) const;
    bool closesCircle(const ModelRef& place);
    void lookFor(ModelRef& child);
    void makePlace(ModelRef& parent, const Attachment& attachment);
    void matchPlaces(ModelRef& place);
    void dropBelow(ModelRef& place) noexcept;
    void hide(const DesignFile& file) noexcept;

    std::vector<Opened> all_;
    std::unordered_set<ModelRef*> places_;  // those that have a parent
    std::set<std::string> told_;
    DesignFile* active_ = nullptr;
    DesignFile* levelLibrary_ = nullptr;
    std::filesystem::file_time_type levelLibraryTime_;
    uint64_t lastSerial_ = 0;
    bool switching_ = false;  // one design file is being exchanged for another
};

// Those of the session.
OpenFiles& openFiles();
// The file that is shown at a place; null when none is, or it can't be read.
DesignFile* openFile(ModelRef* place) noexcept;

}  // namespace host
