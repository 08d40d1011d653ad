// Print jobs as objects: several at a time, on the library's devices and on one of the test's own.
#include <numbers>
#include <vector>

#include "mclib/print/devices.h"
#include "mclib/print/job.h"
#include "tests/mclib/print/page_fixture.h"
#include "tests/mclib/print/stroke_list.h"

using namespace mc;

namespace {

constexpr PaperBox sheet = {0, 0, 200, 100};

class PrintJobs : public PageTest {
  protected:
    void somePage() {
        corners();
        line(30000, 40000, 80000, 40000, {.weight = 3, .style = 4});
        shape(true, {});
        text(L"Bl\u00e5b\u00e6r", 2, std::numbers::pi / 2);
    }
    void print(print::PrintJob& job, bool turned = false) {
        job.printPage({.descr = page,
                       .box = turned ? PaperBox{0, 0, 100, 200} : sheet,
                       .turned = turned,
                       .pageAngle = turned ? 90.0 : 0.0});
    }
    // Two pages, the second one turned.
    std::string made(const PrintDriver& driver) {
        print::PrintJob job;
        EXPECT_TRUE(job.open(&driver, path("alone.out").c_str(), 9));
        print(job);
        job.newPage();
        print(job, true);
        job.close();
        EXPECT_EQ(job.status(), MCLIB_SUCCESS);
        return readFile("alone.out");
    }
};

}  // namespace

TEST_F(PrintJobs, OutputsMadeAtTheSameTimeAreThoseMadeAlone) {
    somePage();
    std::vector<const PrintDriver*> drivers = {&strokeListDriver};
    for (const int code : {PRINT_POSTSCRIPT, PRINT_HPGL, PRINT_PCL, PRINT_ASCII})
        drivers.insert(drivers.end(), 2, print::driverOf(code));  // twice each
    std::vector<print::PrintJob> jobs(drivers.size());
    const auto file = [&](size_t i) { return "at_once" + std::to_string(i); };
    for (size_t i = 0; i < jobs.size(); ++i) ASSERT_TRUE(jobs[i].open(drivers[i], path(file(i)).c_str(), 9));
    const std::string current = job(PRINT_POSTSCRIPT);  // the exported calls' own job begins and ends meanwhile
    for (print::PrintJob& job : jobs) print(job);
    for (print::PrintJob& job : jobs) job.newPage();
    for (print::PrintJob& job : jobs) print(job, true);
    EXPECT_EQ(job(PRINT_POSTSCRIPT), current);
    for (size_t i = 0; i < jobs.size(); ++i) {
        jobs[i].close();
        EXPECT_EQ(jobs[i].status(), MCLIB_SUCCESS);
        EXPECT_EQ(readFile(file(i)), made(*drivers[i])) << drivers[i]->device.key << i;
    }
}

TEST_F(PrintJobs, ADeviceOfOnesOwnGetsPagesAndATurnLeavesThemAsTheyWere) {
    somePage();
    EXPECT_EQ(made(strokeListDriver),
              "page 1\n"
              "line 0,0 0,0\nline 200,100 200,100\nline 30,40 80,40\nfill 10,10 20,10 20,20 10,10\ntext 20,10 90 "
              "Bl\xE5"
              "b\xE6r\n"
              "page 2\n"
              "line 100,0 100,0\nline 0,200 0,200\nline 60,30 60,80\nfill 90,10 90,20 80,20 90,10\ntext 90,20 180 "
              "Bl\xE5"
              "b\xE6r\n");
    Point3d low, high;
    EXPECT_EQ(mdlElmdscr_computeRange(&low, &high, page, nullptr), MDL_SUCCESS);
    EXPECT_EQ(low.x, 0);
    EXPECT_EQ(high.x, 200000);
}

TEST_F(PrintJobs, AJobThatIsLeftIsWhole) {
    somePage();
    {
        print::PrintJob job;
        ASSERT_TRUE(job.open(print::driverOf(PRINT_HPGL), path("left.out").c_str(), 9));
        print(job);
        ASSERT_TRUE(job.open(print::driverOf(PRINT_HPGL), path("next.out").c_str(), 9));
        print(job);
    }
    EXPECT_TRUE(readFile("left.out").ends_with("PU;PA0,0;PG;\n"));
    EXPECT_EQ(readFile("next.out"), readFile("left.out"));
}
