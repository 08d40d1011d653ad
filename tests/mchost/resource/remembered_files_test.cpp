// Records of remembered files, as they are read from resource files.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/resource.h"
#include "tests/support/session_fixture.h"

namespace {

class RememberedFiles : public SessionTest {};

TEST_F(RememberedFiles, StoredRecordsThatLieAreReadWithinTheirBounds) {
    RscHandle handle = 0;
    ASSERT_EQ(mdlResource_createFile(path("p.upf").c_str(), "", MDL_RSC_WRITE), MDL_SUCCESS);
    ASSERT_EQ(mdlResource_openFile(&handle, path("p.upf").c_str(), MDL_RSC_WRITE), MDL_SUCCESS);
    std::vector<unsigned char> bytes(11032, 'z');
    const auto number = [&](size_t at, int32_t value) { std::memcpy(&bytes[at], &value, 4); };
    bytes[0] = 0xFF;
    number(4, 5);
    number(776, 1'000'000);
    number(3340, -5);
    number(8468, 3);
    mdlResource_add(handle, MDL_RSC_TYPE('U', 's', 'F', 'i'), -20001, bytes.data(), 11032, 0, "");
    UserFileRecord r = {};
    EXPECT_EQ(mdlUserPrefs_getFileName(&r, handle, -20001), MDL_SUCCESS);
    EXPECT_EQ(r.fileCount, 10);
    EXPECT_EQ(r.filterCount, 0);
    EXPECT_EQ(r.directoryCount, 3);
    EXPECT_EQ(std::strlen(r.fileName), 255u);
    EXPECT_EQ(std::strlen(r.fileHistory[9]), 255u);

    mdlResource_add(handle, MDL_RSC_TYPE('U', 's', 'F', 'i'), -20002, bytes.data(), 300, 0, "");
    EXPECT_EQ(mdlUserPrefs_getFileName(&r, handle, -20002), MDL_SUCCESS);
    EXPECT_EQ(std::strlen(r.fileName), 255u);
    EXPECT_STREQ(r.filter, std::string(36, 'z').c_str());
    EXPECT_STREQ(r.directory, "");
}

}  // namespace
