// The files that an application makes. They are made under temporary names and get their own when all of them are
// whole, so a failure on the way leaves what was there as it was.
#pragma once

#include <filesystem>
#include <vector>

namespace app {

class Outputs {
  public:
    // `base` is a name of the host without suffix.
    Outputs(const std::filesystem::path& base, const std::vector<const char*>& suffixes);
    ~Outputs();  // removes what hasn't got its own name
    Outputs(const Outputs&) = delete;
    Outputs& operator=(const Outputs&) = delete;

    // Whether the files can be made: none is the input or is there already unless it may be replaced, and the folder
    // takes them. False after a message.
    bool prepare(const std::filesystem::path& input, bool overwrite);
    // The temporary name of the file with that suffix.
    std::string temporary(const char* suffix) const;
    // Gives the files their own names. False after a message.
    bool finish();
    const std::vector<std::filesystem::path>& names() const { return names_; }

  private:
    void removeTemporaries();

    std::vector<std::filesystem::path> names_, temporaries_;
};

}  // namespace app
