// Stored forms as another program sees them: bytes at places that docs/formats.md tells, taken out with sqlite3.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/resource.h"
#include "mclib/elmattr/resources.h"
#include "mclib/frame/resource_files.h"
#include "mclib/print/setup_record.h"
#include "mclib/project/store.h"
#include "tests/support/application_test.h"
#include "tests/support/library_fixture.h"

using namespace mc;

namespace {

// Bytes from an offset on, as hexadecimal digits.
struct Place {
    int offset;
    const char* hex;
};

class StoredForms : public LibraryTest, protected ApplicationRun {
  protected:
    StoredForms() : ApplicationRun("show") {}
    void SetUp() override {
        if (!canRun("sqlite3")) GTEST_SKIP() << "sqlite3 isn't there";
    }
    std::string query(const std::string& file, const std::string& sql) const {
        std::string output = shell("sqlite3 '" + file + "' \"" + sql + "\"").output;
        while (output.ends_with('\n')) output.pop_back();
        return output;
    }
    // What stands at the places of a block of the resource file.
    void expectBlock(const std::string& file, const std::string& type, int id, int size,
                     const std::vector<Place>& places) const {
        const std::string row = " FROM block WHERE type = " + type + " AND id = " + std::to_string(id);
        EXPECT_EQ(query(file, "SELECT length(data)" + row), std::to_string(size)) << type;
        for (const auto& [offset, hex] : places) {
            const std::string part =
                "substr(data, " + std::to_string(offset + 1) + ", " + std::to_string(std::strlen(hex) / 2) + ")";
            EXPECT_EQ(query(file, "SELECT hex(" + part + ")" + row), hex) << type << " at " << offset;
        }
    }

    const std::string file_ = path("some.rsc");
};

TEST_F(StoredForms, Attributes) {
    mclibElmAttr_setGroupeNames(1, "Group", 3, 0);
    ElmAttrData data = {};
    data.color = 5;
    data.style = -2;
    data.weight = ATTR_BY_LEVEL;
    std::wcscpy(data.levelName, L"R\u00f8r");
    data.elementClass = 1;
    data.useFlags = ATTR_USE_COLOR | ATTR_USE_TEXT_STYLE;
    data.styleScale = 2;
    data.styleWidth = 0.5;
    std::strcpy(data.styleName, "dash \xF8");
    ElmAttrData text = data, symbol = data;
    std::wcscpy(text.textStyleName, L"Tall");
    text.textFont = 7;
    text.textWidth = 2;
    text.textHeight = 0.5;
    text.textJust = 8;
    std::strcpy(text.optionText, "DN 250");
    text.optionValue = 9;
    symbol.symbolNumber = 300;
    symbol.symbolSize = 2;
    std::strcpy(symbol.symbolText, "valve");
    mclibElmAttr_addAttribute(12, "Pipe", 3, ATTR_KIND_OPTION_TEXT, ATTR_USE_COLOR, nullptr, 0, &text, "Size", 1, "a",
                              9);
    mclibElmAttr_addAttribute(13, "Valve", 3, ATTR_KIND_LABELLED_SYMBOL, 0, nullptr, 0, &symbol, 20, "No.", 1, 1, 300);
    ASSERT_EQ(mclibElmAttr_writeResource(file_.c_str()), MCLIB_SUCCESS);

    const std::vector<Place> both = {{0, "03000000"},
                                     {48, "05000000FEFFFFFFFFFFFFFF"},
                                     {60, "5200F80072000000"},
                                     {1084, "0100000001400000"},
                                     {1096, "0000000000000040000000000000E03F"},
                                     {1112, "6461736820F800"}};
    expectBlock(file_, "0x4D634133", 12, 1480, both);
    expectBlock(file_, "0x4D634133", 12, 1480,
                {{4, "070000000C000000"},
                 {20, "01000000"},
                 {1176, "540061006C006C000000"},
                 {1340, "07000000"},
                 {1344, "0000000000000040000000000000E03F08000000"},
                 {1384, "444E2032353000"},
                 {1468, "09000000"}});
    expectBlock(file_, "0x4D634133", 13, 1480, both);
    expectBlock(file_, "0x4D634133", 13, 1480,
                {{4, "050000000D000000"}, {1176, "2C010000"}, {1184, "0000000000000040"}, {1220, "76616C766500"}});
    ASSERT_EQ(mclibElmAttr_writeResourceExtended(file_.c_str()), MCLIB_SUCCESS);
    expectBlock(file_, "0x41534E6F", 1, 4, {{0, "02000000"}});
    expectBlock(file_, "0x41534433", 1, 1480, {{8, "0D000000"}});
    expectBlock(file_, "0x41534E61", 0, 80, {{0, "5069706500"}});
}

TEST_F(StoredForms, PrinterSetup) {
    mclibPrinterSetupData setup = {};
    setup.pageSize = 9;
    setup.pageWidth = 2;
    setup.marginBottom = 0.5;
    setup.orientation = 2;
    setup.copies = 3;
    std::strcpy(setup.printerName, "LPT1");
    std::strcpy(setup.fileName, "a.ps");
    setup.fileOnly = 1;
    std::strcpy(setup.plotterFile, "b.plt");
    std::vector<uint8_t> bytes(print::setupSize);
    print::setupLayout(StoreFields(bytes), setup);
    RscHandle handle = 0;
    ASSERT_EQ(mdlResource_createFile(file_.c_str(), "", MDL_RSC_WRITE), MDL_SUCCESS);
    ASSERT_EQ(mdlResource_openFile(&handle, file_.c_str(), MDL_RSC_WRITE), MDL_SUCCESS);
    mdlResource_add(handle, print::SETUP_TYPE, print::SETUP_ID, bytes.data(), print::setupSize, 0, "");
    mdlResource_closeFile(handle);
    expectBlock(file_, "0x50745365", 20002, 840,
                {{0, "09000000"},
                 {8, "0000000000000040"},
                 {48, "000000000000E03F"},
                 {56, "02000000"},
                 {60, "0000000003000000"},
                 {68, "4C50543100"},
                 {323, "612E707300"},
                 {580, "01000000622E706C7400"}});
}

TEST_F(StoredForms, RememberedFiles) {
    RscHandle handle = 0;
    ASSERT_EQ(mdlResource_createFile(file_.c_str(), "", MDL_RSC_WRITE), MDL_SUCCESS);
    ASSERT_EQ(mdlResource_openFile(&handle, file_.c_str(), MDL_RSC_WRITE), MDL_SUCCESS);
    ASSERT_EQ(mclibUpf_saveFileName("c:\\x\\a.txt", handle, 5), MCLIB_SUCCESS);
    ASSERT_EQ(mclibUpf_saveFileName("c:\\x\\b.txt", handle, 5), MCLIB_SUCCESS);
    mdlResource_closeFile(handle);
    expectBlock(file_, "0x55734669", 5, 11032,
                {{0, "FF00000005000000"}, {8, "633A5C785C622E74787400"}, {264, "2A2E74787400"}, {520, "633A5C785C00"}});
}

TEST_F(StoredForms, ProjectsInDesignFiles) {
    openDesignFile();
    mclibProsjektData project = {};
    std::strcpy(project.pron, "4711");
    std::strcpy(project.SNav, "\xC5se");
    mclibProject_writeProjectInfoToDesignFile(&project);
    mdlSystem_closeDesignFile();
    // The first chunk begins with position 1; behind two heads of 8 bytes lies its element: 30 texts in 37 bytes.
    const std::string restOfHead(32, '0'), emptyTexts(56, '0');
    EXPECT_EQ(query(path("test.mcd"), "SELECT hex(substr(bytes, 1, 4)) FROM chunk"), "01000000");
    EXPECT_EQ(query(path("test.mcd"), "SELECT hex(substr(bytes, 17, 76)) FROM chunk"),
              "42000000260000002600000014000000" + restOfHead + "9D0065000300" + "3437313100" + emptyTexts +
                  "C5736500" + "00");
}

}  // namespace
