#include "apps/common/outputs.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>

#include "apps/common/system_path.h"
#include "apps/common/tell.h"

namespace app {

namespace fs = std::filesystem;

Outputs::Outputs(const fs::path& base, const std::vector<const char*>& suffixes) {
    const std::string beside = base.string() + ".part" + std::to_string(getpid());
    for (const char* suffix : suffixes) {
        names_.push_back(base.string() + suffix);
        temporaries_.push_back(beside + suffix);
    }
}

Outputs::~Outputs() {
    removeTemporaries();
}

void Outputs::removeTemporaries() {
    std::error_code ignored;
    for (const fs::path& file : temporaries_) fs::remove(systemPath(file), ignored);
}

bool Outputs::prepare(const fs::path& input, bool overwrite) {
    std::error_code error;
    for (const fs::path& name : names_) {
        const fs::file_status status = fs::symlink_status(systemPath(name), error);
        if (!fs::exists(status)) continue;
        if (fs::is_directory(status))
            return fail(name.string() + ": a folder has that name; give another one with --out");
        if (fs::equivalent(systemPath(name), systemPath(input), error))
            return fail(name.string() + ": that is the input; give another name with --out");
        if (!overwrite) {
            return fail(name.string() + ": the file is there already; give --overwrite or another name with --out");
        }
    }
    for (const fs::path& file : temporaries_) {
        if (std::ofstream(systemPath(file))) continue;
        return fail(file.parent_path().empty()
                        ? "the current folder can't be written: " + std::string(std::strerror(errno))
                        : file.parent_path().string() + ": the folder can't be written (" + std::strerror(errno) +
                              "); give another one with --out");
    }
    removeTemporaries();
    return true;
}

std::string Outputs::temporary(const char* suffix) const {
    for (const fs::path& file : temporaries_) {
        if (file.extension() == suffix) return file.string();
    }
    return {};
}

bool Outputs::finish() {
    for (size_t i = 0; i < names_.size(); ++i) {
        std::error_code error;
        fs::rename(systemPath(temporaries_[i]), systemPath(names_[i]), error);
        if (error) return fail(names_[i].string() + ": the file can't be put in place: " + error.message());
    }
    return true;
}

}  // namespace app
