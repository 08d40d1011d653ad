// The files that an application makes. They are made in a folder of their own and get their names when all of them are
// whole, so a failure on the way leaves what was there as it was.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <mchost/mdl/files.h>

namespace app {

// A message about a file that isn't whole yet: the folder it lies in tells the user nothing. Always false.
bool failOutput(const std::string& name, const std::string& what);

class Outputs {
  public:
    // `base` is a name of the host without suffix.
    Outputs(const std::filesystem::path& base, const std::vector<const char*>& suffixes);
    Outputs(const Outputs&) = delete;
    Outputs& operator=(const Outputs&) = delete;

    // Whether the files can be made: none is the input or is there already unless it may be replaced, and the folder
    // takes them. False after a message.
    bool prepare(const std::filesystem::path& input, bool overwrite);
    // The name of the host under which the file with that suffix is made.
    std::string temporary(const char* suffix) const;
    // Gives the files their own names: all of them, or none. False after a message.
    bool finish();
    const std::vector<std::filesystem::path>& names() const { return names_; }

  private:
    std::filesystem::path inFolder(const std::string& suffix) const;
    bool put(size_t i);
    void takeBack(size_t i);

    std::string base_;
    std::vector<std::string> suffixes_;
    std::vector<std::filesystem::path> names_;
    std::vector<bool> isNew_;  // those that are in place: whether nothing had the name
    std::unique_ptr<MdlWorkFolder, decltype(&mdlWorkFolder_remove)> folder_;
};

}  // namespace app
