#include "mclib/print/job.h"

#include <array>

#include "mchost/mdl/system.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"
#include "mclib/print/devices.h"

namespace mc::print {

bool PrintJob::open(const PrintDriver* driver, const char* fileName, int pageCode) {
    close();
    lackedMemory_ = false;
    failuresAtOpen_ = mdlSystem_memoryFailures();
    fileStatus_ = MCLIB_SUCCESS;
    open_ = !driver || !driver->job.open;
    if (open_) return true;
    fileStatus_ = MCLIB_ERROR;
    state_.reset(mclibMem_mallocRscErrorPrintf(driver->job.size, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY));
    open_ = state_ && driver->job.open(state_.get(), fileName, pageCode);
    if (open_)
        driver_ = driver;
    else
        state_.reset();
    return open_;
}

void PrintJob::newPage() {
    if (driver_ && driver_->job.newPage) driver_->job.newPage(state_.get());
}

void PrintJob::close() {
    if (!open_) return;
    if (driver_) {
        driver_->job.close(state_.get());
        fileStatus_ = driver_->job.status(state_.get());
    }
    lackedMemory_ = mdlSystem_memoryFailures() != failuresAtOpen_;
    state_.reset();
    driver_ = nullptr;
    open_ = false;
}

int32_t PrintJob::fileStatus() const {
    return driver_ ? driver_->job.status(state_.get()) : fileStatus_;
}

void PrintJob::printPage(const PaperPage& page) {
    if (driver_) walkPage(*driver_, state_.get(), page);
}

// ---- the jobs of the exported calls ----

namespace {

// All that lasts from call to call of the exported interface. What is open when the process ends is closed too.
struct CurrentJobs {
    std::array<PrintJob, mostDevices> byDevice;
    const GlobalData* owner = nullptr;  // whose job was begun last; only told apart from others, never followed
};
constinit CurrentJobs current;

}  // namespace

PrintJob& currentJob(int device) {
    return current.byDevice[static_cast<size_t>(device)];
}

int openCurrentJob(int device, const char* fileName, int pageCode) {
    return currentJob(device).open(driverOf(device), fileName, pageCode) ? 1 : 0;
}

void closeJobs() {
    for (PrintJob& job : current.byDevice) job.close();
    current.owner = nullptr;
}

bool openApplicationJob(GlobalData& application, int device, const char* fileName) {
    closeJobs();
    application.printDevice = device;
    current.owner = &application;
    return !isDevice(device) || openCurrentJob(device, fileName, application.printPageCode) == 1;
}

PrintJob* applicationJob() {
    const GlobalData* application = mclibMain_getGlobalDataP();
    return application && isDevice(application->printDevice) ? &currentJob(application->printDevice) : nullptr;
}

void closeJobOfApplication() {
    if (current.owner && current.owner == mclibMain_getGlobalDataP()) closeJobs();
}

}  // namespace mc::print
