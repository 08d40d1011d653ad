#include "mchost/model/file_problem.h"

#include "mchost/mdl/system.h"

namespace host {

int fileProblem(std::string_view line) {
    mdlOutput_messageCenter(MDL_PRIORITY_ERROR, std::string(line).c_str(), "", 0);
    return MDL_ERROR;
}

int fileProblem(const char* what, std::string_view name, const FileProblem& why) {
    return fileProblem(std::string("Can't ") + what + " \"" + std::string(name) + "\": " + why.what());
}

}  // namespace host
