#include "project.h"

#include <cstring>

#include <mchost/mdl/model.h>
#include <mclib/app/outputs.hpp>
#include <mclib/app/tell.hpp>

namespace alignment {

namespace {

void tellText(std::string& text, const char* stored) {
    if (*stored != '\0') text = stored;
}

template <size_t size>
void takeText(char (&stored)[size], const std::string& text, const char* keyword) {
    constexpr size_t room = size - 1;
    std::memset(stored, 0, size);
    text.copy(stored, room);
    if (text.size() <= room) return;
    mcapp::warn(std::string(keyword) + " has " + std::to_string(text.size()) + " characters; the project data keeps " +
                std::to_string(room) + " of them: " + stored);
}

}  // namespace

Project Project::ofOpenDrawing() {
    Project project;
    if (mdlModelRef_getActive()) mclibProject_readProjectInfoFromDesignFile(&project.data_);
    return project;
}

void Project::tell(Road& road) const {
    tellText(road.project, data_.pros[0]);
    tellText(road.title, data_.pros[1]);
    tellText(road.date, data_.UDat);
}

void Project::take(const Road& road) {
    takeText(data_.pros[0], road.project, "PROJECT");
    takeText(data_.pros[1], road.title, "TITLE");
    takeText(data_.UDat, road.date, "DATE");
}

bool Project::write(const std::string& drawing) const {
    mclibProject_writeProjectInfoToDesignFile(&data_);
    mclibProsjektData stored;
    return mclibProject_readProjectInfoFromDesignFile(&stored) == 1 ||
           mcapp::failOutput(drawing, "the project data can't be stored; is the disk full?");
}

}  // namespace alignment
