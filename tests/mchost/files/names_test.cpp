#include <filesystem>
#include <string>
#include <vector>

#include "mchost/base/paths.h"
#include "mchost/files/file_list.h"
#include "mchost/mdl/find_files.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/win32.h"
#include "tests/support/session_fixture.h"

namespace {

namespace fs = std::filesystem;

class Names : public SessionTest {
  protected:
    std::string drive() const { return path("drive_c"); }

    // What mdlFileList_get gives; nothing when it fails.
    std::vector<std::string> list(const std::string& pattern, int attributes) {
        StringList* found = nullptr;
        std::vector<std::string> names;
        if (mdlFileList_get(&found, pattern.c_str(), attributes) != MDL_SUCCESS) {
            EXPECT_EQ(found, nullptr);
            return {"failed"};
        }
        for (int i = 0; i < mdlStringList_size(found); ++i) {
            const char* name = nullptr;
            mdlStringList_getMember(&name, nullptr, found, i);
            names.emplace_back(name);
        }
        mdlStringList_destroy(found);
        return names;
    }
};

TEST_F(Names, DrivesAndSeparatorsLeadToPathsOfTheSystem) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"c:\\temp\\mc.ps", drive() + "/temp/mc.ps"},
        {"C:/temp/mc.ps", drive() + "/temp/mc.ps"},
        {"c:x", drive() + "/x"},
        {"c:", drive() + "/"},
        {"c:\\", drive() + "/"},
        {"c:\\\\x", drive() + "/x"},
        {"/tmp\\a/b", "/tmp/a/b"},
        {":/tmp/a", "/tmp/a"},
        {"a\\b.txt", "a/b.txt"},
        {"ab:c", "ab:c"},
        {"/tmp/bl\xe5", "/tmp/bl\xc3\xa5"},
        {"/tmp/bl\xc3\xa5", "/tmp/bl\xc3\xa5"},
        {"", ""},
    };
    for (const auto& [name, system] : cases) EXPECT_EQ(host::systemPath(name), system) << name;
    mdlSystem_defineCfgVar("MC_DRIVE_Q", "$(ROOT)\\q", 4);
    mdlSystem_defineCfgVar("ROOT", "/srv", 4);
    EXPECT_EQ(host::systemPath("q:\\x"), "/srv/q/x");
    mdlSystem_defineCfgVar("MC_DRIVE_R", "r:\\round", 4);  // leads nowhere but to itself
    setenv("XDG_DATA_HOME", path("data").c_str(), 1);
    EXPECT_EQ(host::systemPath("r:\\x"), path("data/mchost/drive_r/x"));
    EXPECT_TRUE(fs::is_directory(path("data/mchost/drive_r/temp")));
}

TEST_F(Names, ComeApartAndTogether) {
    struct Case {
        const char *path, *device, *directory, *name, *extension;
    };
    const Case cases[] = {
        {"c:\\a\\b\\road.fii", "c:", "\\a\\b\\", "road", "fii"},
        {"/home/x/road.fii", "", "/home/x/", "road", "fii"},
        {":/home/x/road.fii", "", "/home/x/", "road", "fii"},
        {"a/b.c\\d", "", "a/b.c\\", "d", ""},
        {"road.tar.gz", "", "", "road.tar", "gz"},
        {".profile", "", "", ".profile", ""},
        {"..", "", "", "..", ""},
        {"road.", "", "", "road", ""},
        {"c:", "c:", "", "", ""},
        {"", "", "", "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        char device[256], directory[256], name[256], extension[256], path[256];
        EXPECT_EQ(mdlFile_parseName(c.path, device, directory, name, extension), MDL_SUCCESS);
        EXPECT_EQ((std::vector<std::string>{device, directory, name, extension}),
                  (std::vector<std::string>{c.device, c.directory, c.name, c.extension}));
        EXPECT_EQ(mdlFile_buildName(path, device, directory, name, extension), MDL_SUCCESS);
        EXPECT_EQ(host::systemPath(path), host::systemPath(std::string(c.path) == "road." ? "road" : c.path));
    }
    char whole[256] = "x";
    EXPECT_EQ(mdlFile_parseName(nullptr, nullptr, nullptr, whole, nullptr), MDL_ERROR);
    EXPECT_STREQ(whole, "");
    mdlFile_buildName(whole, "c", "\\temp", "a", ".txt");
    EXPECT_STREQ(whole, "c:\\temp\\a.txt");
}

TEST_F(Names, OfTooManyCharactersAreRefused) {
    const std::string longest(255, 'n'), tooLong(256, 'n');
    char path[256], name[256] = "before";
    EXPECT_EQ(mdlFile_buildName(path, nullptr, nullptr, longest.c_str(), nullptr), MDL_SUCCESS);
    EXPECT_EQ(path, longest);
    EXPECT_EQ(mdlFile_buildName(path, nullptr, nullptr, longest.c_str(), "x"), MDL_ERROR);
    EXPECT_STREQ(path, "");
    EXPECT_EQ(mdlFile_parseName(tooLong.c_str(), nullptr, nullptr, name, nullptr), MDL_ERROR);
    EXPECT_STREQ(name, "");
}

TEST_F(Names, FilesAreFoundAsTheyStandAndAlongAPath) {
    fs::create_directories(path("drive_c/lib"));
    fs::create_directories(path("data/folder.mc"));
    writeFile("drive_c/lib/scales.mc", "");
    writeFile("data/scales.mc", "");
    writeFile("data/plain", "");
    mdlSystem_defineCfgVar("MC_DATA", (";c:\\none;c:\\lib;" + path("data") + "/").c_str(), 4);
    struct Case {
        std::string name;
        const char *variable, *extension;
        std::string found;
    };
    const Case cases[] = {
        {"scales.mc", "MC_DATA", nullptr, "c:\\lib/scales.mc"},
        {"scales", "MC_DATA", ".mc", "c:\\lib/scales.mc"},
        {"scales", "MC_DATA", "mc", "c:\\lib/scales.mc"},
        {"plain", "MC_DATA", "mc", path("data/plain")},
        {"Scales.MC", "MC_DATA", nullptr, path("drive_c/lib/scales.mc")},
        {"PLAIN", "MC_DATA", "mc", path("data/plain")},
        {path("data/plain"), nullptr, nullptr, path("data/plain")},
        {"c:\\lib\\scales.mc", nullptr, nullptr, "c:\\lib\\scales.mc"},
        {"folder", "MC_DATA", "mc", ""},
        {"scales.mc", nullptr, nullptr, ""},
        {"scales.mc", "MC_NOT_THERE", nullptr, ""},
        {"scales.txt", "MC_DATA", "mc", ""},
        {"/plain", "MC_DATA", nullptr, ""},
        {"", "MC_DATA", nullptr, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        char found[256] = "";
        EXPECT_EQ(mdlFile_find(found, c.name.c_str(), c.variable, c.extension) == MDL_SUCCESS, !c.found.empty());
        EXPECT_EQ(found, c.found);
        EXPECT_EQ(mdlFile_find(nullptr, c.name.c_str(), c.variable, c.extension) == MDL_SUCCESS, !c.found.empty());
    }
    fs::current_path(path("data"));
    char found[256] = "plain";
    EXPECT_EQ(mdlFile_find(found, found, nullptr, nullptr), MDL_SUCCESS);
    EXPECT_EQ(fs::path(found), fs::current_path() / "plain");
    // The current folder comes last, unless the name says so.
    for (const auto& [name, place] : {std::pair("scales.mc", "drive_c/lib/"), std::pair("./scales.mc", "data/")}) {
        EXPECT_EQ(mdlFile_find(found, name, "MC_DATA", nullptr), MDL_SUCCESS);
        EXPECT_TRUE(fs::equivalent(host::systemPath(found), path(place) + "scales.mc")) << found;
    }
}

TEST_F(Names, FoldersListWhatMatches) {
    for (const char* folder : {"drive_c/sub", "drive_c/Sub2"}) fs::create_directory(path(folder));
    for (const char* file :
         {"drive_c/b.mcd", "drive_c/A.MCD", "drive_c/readme", "drive_c/.hidden", "drive_c/bl\xc3\xa5.mcd"}) {
        writeFile(file, "");
    }
    using List = std::vector<std::string>;
    EXPECT_EQ(list("c:\\*.mcd", 0), (List{"A.MCD", "b.mcd", "bl\xe5.mcd"}));
    EXPECT_EQ(list("c:\\*.*", 0), (List{"A.MCD", "b.mcd", "bl\xe5.mcd", "readme"}));
    EXPECT_EQ(list("c:\\?.mcd", 0), (List{"A.MCD", "b.mcd"}));
    EXPECT_EQ(list("c:\\a*.mcd;read*;?.mcd", MDL_ATTRIBUTE_FILES), (List{"A.MCD", "b.mcd", "readme"}));
    EXPECT_EQ(list("c:\\*", MDL_ATTRIBUTE_DIRECTORY), (List{"Sub2", "sub"}));
    mdlSystem_defineCfgVar("MC_DRIVE_X", path("").c_str(), 4);
    EXPECT_EQ(list("", MDL_ATTRIBUTE_DRIVE), (List{"[-c:-]", "[-x:-]"}));
    EXPECT_EQ(list("c:\\sub", MDL_ATTRIBUTE_DIRECTORY), List{"sub"});
    EXPECT_EQ(list("c:\\sub\\", MDL_ATTRIBUTE_DIRECTORY), List{"sub"});
    EXPECT_EQ(list("c:\\", MDL_ATTRIBUTE_DIRECTORY).size(), 1u);
    EXPECT_EQ(list("/", MDL_ATTRIBUTE_DIRECTORY).size(), 1u);
    EXPECT_EQ(list("c:\\readme", MDL_ATTRIBUTE_DIRECTORY), List{});
    EXPECT_EQ(list("c:\\none", 0), List{});
    EXPECT_EQ(list("c:\\none\\*", 0), List{"failed"});
    EXPECT_EQ(list("", 0), List{"failed"});
}

TEST(Patterns, StarsAndQuestionMarks) {
    struct Case {
        const char *pattern, *name;
        bool matches;
    };
    for (const Case& c :
         {Case{"*", "a", true}, Case{"", "a", false}, Case{"a*b*c", "aXbXbYc", true}, Case{"a*b*c", "aXbXbY", false},
          Case{"**a", "bca", true}, Case{"?", "", false}, Case{"??", "a", false}, Case{"*.MCD", "x.mcd", true},
          Case{"*", ".x", false}, Case{".*", ".x", true}, Case{"a*", "a", true}, Case{"*.*", "plain", true}}) {
        EXPECT_EQ(host::matchesPattern(c.pattern, c.name), c.matches) << c.pattern << " on " << c.name;
    }
}

TEST_F(Names, SystemCallsByTheirOldNames) {
    writeFile("drive_c/gone.txt", "");
    char name[256];
    EXPECT_EQ(GetShortPathNameA("c:\\gone.txt", name, sizeof name), path("drive_c/gone.txt").size());
    EXPECT_EQ(name, path("drive_c/gone.txt"));
    EXPECT_EQ(GetShortPathNameA("c:\\gone.txt", name, 5), path("drive_c/gone.txt").size() + 1);
    EXPECT_EQ(DeleteFileA("c:\\gone.txt"), 1);
    EXPECT_EQ(DeleteFileA("c:\\gone.txt"), 0);
    EXPECT_EQ(DeleteFileA(path("drive_c").c_str()), 0);
    EXPECT_EQ(GetShortPathNameA("c:\\gone.txt", name, sizeof name), 0u);

    void* library = GetModuleHandleA("SQLite3.dll");
    ASSERT_NE(library, nullptr);
    const uint32_t length = GetModuleFileNameA(library, name, sizeof name);
    EXPECT_EQ(length, std::string(name).size());
    EXPECT_NE(std::string(name).find("libsqlite3.so"), std::string::npos);
    EXPECT_EQ(GetModuleFileNameA(library, name, 5), 4u);
    EXPECT_EQ(GetModuleHandleA("nowhere.dll"), nullptr);
    GetModuleFileNameA(nullptr, name, sizeof name);
    EXPECT_NE(std::string(name).find("test_mchost_files"), std::string::npos);
}

}  // namespace
