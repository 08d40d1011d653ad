#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "mchost/mdl/lists.h"
#include "mchost/mdl/types.h"

namespace {

struct Destroy {
    void operator()(StringList* list) const { mdlStringList_destroy(list); }
    void operator()(ListModel* model) const { mdlListModel_destroy(model); }
};
using List = std::unique_ptr<StringList, Destroy>;
using Model = std::unique_ptr<ListModel, Destroy>;

// "text/info0/info1" of each member.
std::string contentsOf(const List& list) {
    std::string all;
    for (int32_t i = 0; i < mdlStringList_size(list.get()); ++i) {
        const char* text = nullptr;
        int32_t info[2] = {};
        EXPECT_EQ(mdlStringList_getMember(&text, info, list.get(), i), MDL_SUCCESS);
        all += std::string(text) + "/" + std::to_string(info[0]) + "/" + std::to_string(info[1]) + " ";
    }
    return all;
}

List listOf(std::initializer_list<const char*> texts) {
    List list(mdlStringList_create(static_cast<int32_t>(texts.size()), 2));
    int32_t i = 0;
    for (const char* text : texts) {
        const int32_t info[] = {i, i * 10};
        mdlStringList_setMember(list.get(), i++, text, info);
    }
    return list;
}

TEST(StringList, InfoFieldsStayWithTheirTextsWhenMembersComeAndGo) {
    const List list = listOf({"a", "b", "c"});
    int32_t index = 7;
    ASSERT_EQ(mdlStringList_insertMember(&index, list.get(), 1, 2), MDL_SUCCESS);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(contentsOf(list), "a/0/0 /0/0 /0/0 b/1/10 c/2/20 ");
    ASSERT_EQ(mdlStringList_deleteMember(list.get(), 0, 2), MDL_SUCCESS);
    EXPECT_EQ(contentsOf(list), "/0/0 b/1/10 c/2/20 ");
    ASSERT_EQ(mdlStringList_insertMember(&index, list.get(), -1, 1), MDL_SUCCESS);
    EXPECT_EQ(index, 3);
}

TEST(StringList, FullListRefusesAndTakesAgainAfterADeletion) {
    const List list = listOf({"oldest", "b"});
    mdlStringList_setLimit(list.get(), 2);
    int32_t index = 0;
    EXPECT_EQ(mdlStringList_insertMember(&index, list.get(), -1, 1), MDL_ERROR);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(contentsOf(list), "oldest/0/0 b/1/10 ");
    EXPECT_EQ(mdlStringList_deleteMember(list.get(), 0, 1), MDL_SUCCESS);
    EXPECT_EQ(mdlStringList_insertMember(&index, list.get(), -1, 1), MDL_SUCCESS);
    EXPECT_EQ(index, 1);
}

TEST(StringList, HoldsAtMost65535MembersUnlessMoreAreAskedFor) {
    const List list(mdlStringList_create(65534, 0));
    int32_t index = 0;
    EXPECT_EQ(mdlStringList_insertMember(&index, list.get(), -1, 2), MDL_ERROR);
    EXPECT_EQ(mdlStringList_insertMember(&index, list.get(), -1, 1), MDL_SUCCESS);
    EXPECT_EQ(mdlStringList_insertMember(&index, list.get(), -1, 1), MDL_ERROR);
    mdlStringList_setLimit(list.get(), 100000);
    EXPECT_EQ(mdlStringList_insertMember(&index, list.get(), -1, 100000 - 65535), MDL_SUCCESS);
    EXPECT_EQ(mdlStringList_insertMember(&index, list.get(), -1, 1), MDL_ERROR);
    const List many(mdlStringList_create(65536, 0));
    EXPECT_EQ(mdlStringList_insertMember(&index, many.get(), -1, 1), MDL_ERROR);
    EXPECT_EQ(mdlStringList_create((1 << 24) + 1, 0), nullptr);
}

TEST(StringList, CallsOutsideOfItFailAndChangeNothing) {
    const List list = listOf({"a", "b"});
    int32_t value = 5;
    EXPECT_EQ(mdlStringList_deleteMember(list.get(), 1, 2), MDL_ERROR);
    EXPECT_EQ(mdlStringList_deleteMember(list.get(), -1, 1), MDL_ERROR);
    EXPECT_EQ(mdlStringList_insertMember(nullptr, list.get(), 3, 1), MDL_ERROR);
    EXPECT_EQ(mdlStringList_setMember(list.get(), 2, "x", nullptr), MDL_ERROR);
    EXPECT_EQ(mdlStringList_setInfoField(list.get(), 0, 2, 1), MDL_ERROR);
    EXPECT_EQ(mdlStringList_getInfoField(&value, list.get(), 0, -1), MDL_ERROR);
    EXPECT_EQ(mdlStringList_getInfoField(&value, nullptr, 0, 0), MDL_ERROR);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(contentsOf(list), "a/0/0 b/1/10 ");
}

TEST(StringList, AMemberCanTakeItsOwnText) {
    const List list = listOf({"a text that is too long for the string itself"});
    const char* text = nullptr;
    mdlStringList_getMember(&text, nullptr, list.get(), 0);
    EXPECT_EQ(mdlStringList_setMember(list.get(), 0, text + 2, nullptr), MDL_SUCCESS);
    mdlStringList_getMember(&text, nullptr, list.get(), 0);
    EXPECT_STREQ(text, "text that is too long for the string itself");
}

TEST(ListModel, CellsKeepTextAndValueWhenARowAboveIsRemoved) {
    const Model model(mdlListModel_create(2));
    EXPECT_EQ(mdlListModel_addRow(model.get()), 0);
    EXPECT_EQ(mdlListModel_addRow(model.get()), 1);
    EXPECT_EQ(mdlListModel_setText(model.get(), 1, 1, "1:500"), MDL_SUCCESS);
    EXPECT_EQ(mdlListModel_setValue(model.get(), 1, 1, 500), MDL_SUCCESS);
    EXPECT_EQ(mdlListModel_setText(model.get(), 1, 2, "x"), MDL_ERROR);
    EXPECT_EQ(mdlListModel_setText(model.get(), 2, 0, "x"), MDL_ERROR);
    EXPECT_EQ(mdlListModel_removeRow(model.get(), 0), MDL_SUCCESS);
    int32_t value = 0;
    EXPECT_STREQ(mdlListModel_getText(model.get(), 0, 1), "1:500");
    EXPECT_EQ(mdlListModel_getValue(&value, model.get(), 0, 1), MDL_SUCCESS);
    EXPECT_EQ(value, 500);
    EXPECT_EQ(mdlListModel_getText(model.get(), 1, 0), nullptr);
}

}  // namespace
