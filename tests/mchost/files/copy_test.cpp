// Copies of files, printers, attributes, shortened names.
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "mchost/mdl/files.h"
#include "mchost/mdl/win32.h"
#include "mchost/printing/printers.h"
#include "tests/support/recorder.h"

namespace {

namespace fs = std::filesystem;

class Copies : public SessionTest {
  protected:
    int copy(const std::string& destination, const std::string& source) {
        return mdlFile_copy(destination.c_str(), source.c_str());
    }
    size_t entries() const {
        return static_cast<size_t>(std::distance(fs::directory_iterator(path("")), fs::directory_iterator()));
    }
    std::string source = writeFile("source", std::string(700000, 'x') + "end");
};

TEST_F(Copies, ReplaceAFileAndKeepItsPermissionsAndLinks) {
    EXPECT_EQ(copy("c:\\new", source), 0);
    EXPECT_EQ(readFile("drive_c/new"), readFile("source"));
    const std::string old = writeFile("old", "old");
    fs::permissions(old, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("old", path("link"));
    EXPECT_EQ(copy(path("link"), source), 0);
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(readFile("old"), readFile("source"));
    EXPECT_EQ(fs::status(old).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Copies, ThatFailLeaveEverythingAsItWas) {
    writeFile("old", "old");
    fs::create_symlink("source", path("same"));
    const size_t before = entries();
    struct Case {
        std::string destination, source;
        int error;
    };
    for (const Case& c : {
             Case{"old", "none", ENOENT},
             {"none/new", "source", ENOENT},
             {"drive_c", "source", EISDIR},
             {"new", "drive_c", EISDIR},
             {"same", "source", EEXIST},
             {"source", "source", EEXIST},
         })
        EXPECT_EQ(copy(path(c.destination), path(c.source)), c.error) << c.destination;
    EXPECT_EQ(copy("", source), EINVAL);
    EXPECT_EQ(mdlFile_copy(nullptr, nullptr), EINVAL);
    EXPECT_EQ(copy("/dev/full", source), ENOSPC);
    EXPECT_EQ(copy("/dev/null", source), 0);
    EXPECT_EQ(readFile("old"), "old");
    EXPECT_EQ(entries(), before);
}

TEST_F(Copies, ThatRunOutOfRoomLeaveTheOldFile) {
    writeFile("old", "old");
    const size_t before = entries();
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small = {.rlim_cur = 100000, .rlim_max = limit.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const int error = copy(path("old"), source);
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_EQ(error, EFBIG);
    EXPECT_EQ(readFile("old"), "old");
    EXPECT_EQ(entries(), before);
}

TEST(PrintDestination, IsAPortOrAPrinterOnAServer) {
    struct Case {
        const char* text;
        int port;  // -1: a file
        const char *server, *printer;
    };
    for (const Case& c : {
             Case{"LPT1", 1, "", ""},
             {"lpt9:", 9, "", ""},
             {"LPT0", -1, "", ""},
             {"LPT10", -1, "", ""},
             {"\\\\server\\printer", 0, "server", "printer"},
             {"\\\\s\\bl\xe5", 0, "s", "bl\xc3\xa5"},
             {"\\\\server", -1, "", ""},
             {"\\\\server\\", -1, "", ""},
             {"\\\\server\\share\\file", -1, "", ""},
             {"\\\\..\\x", -1, "", ""},
             {"\\\\x\\..", -1, "", ""},
             {"\\temp\\x", -1, "", ""},
             {"//server/printer", -1, "", ""},
         }) {
        SCOPED_TRACE(c.text);
        const auto target = host::printTargetOf(c.text);
        ASSERT_EQ(target ? target->port : -1, c.port);
        if (!target) continue;
        EXPECT_EQ(target->server, c.server);
        EXPECT_EQ(target->printer, c.printer);
    }
}

TEST(Queues, TheirDevicesTellTheServer) {
    const std::vector<host::Printer> queues = host::queuesIn(
        "device for usb-one: usb://Maker/Model?serial=1\n"
        "device for a3: ipp://user@plotters:631/printers/a3\n"
        "device for share: smb://files/Big%20One\n"
        "no such line\n"
        "device for v6: socket://[fe80::1]:9100\n"
        "device for local: /dev/lp0\n");
    std::vector<std::string> told;
    for (const auto& q : queues) told.push_back(q.server + "|" + q.name + "|" + q.share);
    EXPECT_THAT(told, testing::ElementsAre("plotters|a3|a3", "|local|local", "files|share|Big One", "|usb-one|usb-one",
                                           "fe80::1|v6|v6"));
    EXPECT_TRUE(host::queuesIn("").empty());
}

TEST_F(Copies, GoToQueuesOfThePrintSystem) {
    const Recorder recorder(path(""));
    recorder.add("lpstat", 0, "echo 'device for A3: ipp://Plotters/x'; echo 'device for lpt3: /dev/usb/lp0'");
    recorder.add("lp");
    mdlSystem_defineCfgVar("MC_LPT2", "a3", 4);
    const auto sent = [&](const std::string& queue) { return "[lp][-s][-d][" + queue + "][--][" + source + "]\n"; };
    struct Case {
        const char* destination;
        int status;
        std::string queue;
    };
    for (const Case& c : {Case{"\\\\plotters\\a3", 0, "A3"},
                          {"LPT2", 0, "A3"},
                          {"LPT3", 0, "lpt3"},
                          {"LPT1", ENXIO, ""},
                          {"\\\\other\\a3", ENXIO, ""},
                          {"\\\\plotters\\a4", ENXIO, ""}}) {
        SCOPED_TRACE(c.destination);
        recorder.take();
        EXPECT_EQ(copy(c.destination, source), c.status);
        EXPECT_THAT(recorder.take(),
                    c.queue.empty() ? testing::HasSubstr("lpstat") : testing::HasSubstr(sent(c.queue)));
    }
    recorder.add("lp", 1);
    EXPECT_EQ(copy("LPT2", source), EIO);
    EXPECT_EQ(copy("LPT2", path("none")), ENOENT);
}

TEST_F(Copies, ASpoolFolderTakesJobsBesideEachOther) {
    mdlSystem_defineCfgVar("MC_SPOOL", path("spool").c_str(), 4);
    fs::create_directories(path("spool/lpt4"));
    fs::create_directories(path("spool/.hidden/x"));
    writeFile("spool/file", "");
    for (int i = 0; i < 3; ++i) EXPECT_EQ(copy("LPT4", source), 0);
    EXPECT_EQ(readFile("spool/lpt4/source-3"), readFile("source"));
    uint32_t needed = 0, count = 9;
    EXPECT_EQ(EnumPrintersA(6, "", 2, nullptr, 0, &needed, &count), 0);
    EXPECT_EQ(count, 0u);
    std::vector<char> buffer(needed);
    EXPECT_EQ(EnumPrintersA(6, "", 2, buffer.data(), needed - 1, &needed, &count), 0);
    ASSERT_EQ(EnumPrintersA(6, "", 2, buffer.data(), needed, &needed, &count), 1);
    ASSERT_EQ(count, 1u);
    Win32PrinterInfo printer;
    std::memcpy(&printer, buffer.data(), sizeof printer);
    EXPECT_STREQ(printer.portName, "lpt4");
    EXPECT_EQ(printer.serverName, nullptr);
    EXPECT_EQ(EnumPrintersA(6, "", 1, buffer.data(), needed, &needed, &count), 0);
}

TEST_F(Copies, AttributesTellAFolderFromAFile) {
    int32_t attributes = -1;
    EXPECT_EQ(mdlFile_getFileAttributes(&attributes, source.c_str()), MDL_SUCCESS);
    EXPECT_EQ(attributes, 0);
    EXPECT_EQ(mdlFile_getFileAttributes(&attributes, "c:\\"), MDL_SUCCESS);
    EXPECT_EQ(attributes, MDL_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(mdlFile_getFileAttributes(&attributes, "/proc/version"), MDL_SUCCESS);
    EXPECT_EQ(mdlFile_getFileAttributes(nullptr, "c:\\none"), MDL_ERROR);
    EXPECT_EQ(mdlFile_getFileAttributes(nullptr, ""), MDL_ERROR);
}

TEST(ShortenedNames, KeepDeviceAndEnd) {
    struct Case {
        const char* name;
        int size;
        const char* shortened;
    };
    for (const Case& c : {
             Case{"c:\\a\\plots\\sheet.ps", 20, "c:\\a\\plots\\sheet.ps"},
             {"c:\\a\\plots\\sheet.ps", 19, "c:\\...\\sheet.ps"},
             {"c:\\abcdef\\plots\\sheet.ps", 22, "c:\\...\\plots\\sheet.ps"},
             {"/home/user/plots/sheet.ps", 19, "/.../sheet.ps"},
             {"home/user/plots/sheet.ps", 20, ".../plots/sheet.ps"},
             {"c:\\a\\averylongname.ps", 12, "...gname.ps"},
             {"averylongname", 8, "...name"},
             {"averylongname", 3, "me"},
             {"averylongname", 1, ""},
         }) {
        SCOPED_TRACE(c.name);
        char name[64];
        std::strcpy(name, c.name);
        EXPECT_EQ(mdlFile_abbreviateName(name, c.size), MDL_SUCCESS);
        EXPECT_STREQ(name, c.shortened);
    }
    EXPECT_EQ(mdlFile_abbreviateName(nullptr, 10), MDL_ERROR);
}

}  // namespace
