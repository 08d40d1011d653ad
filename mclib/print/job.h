// Print jobs: a page, held as a descriptor in design coordinates, to the output of a device.
#pragma once

#include "mchost/mdl/owned.hpp"
#include "mclib/print/driver.h"
#include "mclib/print/walker.h"

namespace mc::print {

// One output of one device, from open() to close(). Any number of jobs can be open at a time.
class PrintJob {
  public:
    constexpr PrintJob() = default;
    ~PrintJob() { close(); }
    PrintJob(const PrintJob&) = delete;
    PrintJob& operator=(const PrintJob&) = delete;

    // Without a device, or with one that makes nothing, the job takes all that is drawn. A job that is still open is
    // closed first. False, told on the console or in a message box, when the file can't be opened or memory is out.
    bool open(const PrintDriver* driver, const char* fileName, int pageCode);
    void newPage();
    void close();

    // MCLIB_ERROR when the last job's file couldn't be opened, or not all written so far; after close() the word on the
    // whole file. MCLIB_SUCCESS otherwise, and before the first job.
    int32_t fileStatus() const;
    // The same, and MCLIB_ERROR when memory ran out from open() to close().
    int32_t status() const { return lackedMemory_ ? MCLIB_ERROR : fileStatus(); }
    // The job's state, for the device's own calls; null while it isn't open.
    void* state() const { return state_.get(); }

    void printPage(const PaperPage& page);

  private:
    const PrintDriver* driver_ = nullptr;  // null: closed, or without a device
    mdl::HostPtr<void> state_;
    int32_t fileStatus_ = MCLIB_SUCCESS;
    int failuresAtOpen_ = 0;
    bool open_ = false, lackedMemory_ = false;
};

// ---- the jobs of the exported calls ----

// There is one for each number of a device, which the device's own calls, such as mclibPs_drawLine, work on.
PrintJob& currentJob(int device);
// Opens it. 1, or 0 as PrintJob::open tells.
int openCurrentJob(int device, const char* fileName, int pageCode = 0);
// Closes all of them.
void closeJobs();

// Closes all of them, and opens that of the device for the application. False as PrintJob::open tells; a number that is
// no device has no job.
bool openApplicationJob(GlobalData& application, int device, const char* fileName);
// The job of the device that the current application has asked for last; null without one.
PrintJob* applicationJob();
// Closes the job that the current application, which ends, has left open.
void closeJobOfApplication();

}  // namespace mc::print
