#include <cstdlib>
#include <cstring>
#include <string>

#include "mchost/base/variables.h"
#include "mchost/mdl/system.h"
#include "tests/support/session_fixture.h"

namespace {

using ConfigurationVariables = SessionTest;

TEST(Variables, ExpandsWhatIsNamedAndLeavesTheRest) {
    host::Variables variables;
    variables.define("DIR", "/mc", 0);
    variables.define("SUB", "$(DIR)/sub", 4);
    variables.define("SELF", "$(SELF);more", 4);
    variables.define("A", "a${B}", 0);
    variables.define("B", "b$(A)", 0);
    struct Case {
        const char* text;
        const char* expanded;
    };
    for (const Case& c :
         {Case{"plain", "plain"}, Case{"$(SUB)/x", "/mc/sub/x"}, Case{"${SUB}$(DIR)", "/mc/sub/mc"},
          Case{"<$(NONE)>", "<>"}, Case{"cost $5", "cost $5"}, Case{"$(DIR", "$(DIR"}, Case{"$(DIR}", "$(DIR}"},
          Case{"$()", ""}, Case{"$", "$"}, Case{"$(SELF)", ";more"}, Case{"$(A)", "ab"}, Case{"", ""}}) {
        EXPECT_EQ(variables.expand(c.text), c.expanded) << c.text;
    }
    EXPECT_EQ(variables.expandedValue("SELF"), ";more");
}

TEST(Variables, ABombOfReferencesEnds) {
    host::Variables variables;
    variables.define("X0", "0123456789", 0);
    for (int i = 1; i <= 40; ++i) {
        const std::string before = "$(X" + std::to_string(i - 1) + ")";
        variables.define("X" + std::to_string(i), before + before, 0);
    }
    EXPECT_LE(variables.expand("$(X40)").size(), host::Variables::longestExpansion);
    variables.define("X0", "", 0);
    EXPECT_EQ(variables.expand("$(X40)"), "");
}

TEST(Variables, AHigherLevelHidesALowerOneAndTheEnvironment) {
    setenv("MCLIB_TEST_VALUE", "environment", 1);
    host::Variables variables;
    EXPECT_EQ(variables.value("MCLIB_TEST_VALUE"), "environment");
    EXPECT_TRUE(variables.define("MCLIB_TEST_VALUE", "user", 4));
    EXPECT_TRUE(variables.define("MCLIB_TEST_VALUE", "site", 2));
    EXPECT_EQ(variables.value("MCLIB_TEST_VALUE"), "user");
    EXPECT_TRUE(variables.remove("MCLIB_TEST_VALUE"));
    EXPECT_EQ(variables.value("MCLIB_TEST_VALUE"), std::nullopt);
    EXPECT_FALSE(variables.remove("MCLIB_TEST_VALUE"));
    EXPECT_TRUE(variables.define("MCLIB_TEST_VALUE", "", 0));
    EXPECT_EQ(variables.value("MCLIB_TEST_VALUE"), "");
    for (const int level : {-1, 5}) EXPECT_FALSE(variables.define("NAME", "x", level));
    EXPECT_FALSE(variables.define("", "x", 0));
}

TEST_F(ConfigurationVariables, ValuesAreCutToTheBuffer) {
    mdlSystem_defineCfgVar("BASE", "abc", 0);
    mdlSystem_defineCfgVar("NAME", "$(BASE)def", 0);
    char buffer[5] = "####";
    EXPECT_EQ(mdlSystem_getenv(nullptr, "NAME", 1), MDL_SUCCESS);
    EXPECT_EQ(mdlSystem_getenv(buffer, "NAME", 5), MDL_SUCCESS);
    EXPECT_STREQ(buffer, "$(BA");
    EXPECT_EQ(mdlSystem_getCfgVar(buffer, "NAME", 5), MDL_SUCCESS);
    EXPECT_STREQ(buffer, "abcd");
    EXPECT_EQ(mdlSystem_getCfgVar(buffer, "NONE", 5), MDL_ERROR);
    EXPECT_STREQ(buffer, "abcd");
    char* whole = mdlSystem_getExpandedCfgVar("NAME");
    EXPECT_STREQ(whole, "abcdef");
    dlmSystem_mdlFree(whole);
    EXPECT_EQ(mdlSystem_getExpandedCfgVar("NONE"), nullptr);
}

TEST_F(ConfigurationVariables, GoWithTheSession) {
    mdlSystem_defineCfgVar("MCLIB_TEST_GONE", "x", 4);
    endSession();
    EXPECT_EQ(mdlSystem_getenv(nullptr, "MCLIB_TEST_GONE", 1), MDL_ERROR);
    mdlSystem_defineCfgVar("MCLIB_TEST_PLAIN", "works without a session", 4);
    EXPECT_EQ(mdlSystem_getenv(nullptr, "MCLIB_TEST_PLAIN", 1), MDL_SUCCESS);
}

}  // namespace
