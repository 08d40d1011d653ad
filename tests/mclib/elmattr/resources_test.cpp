// Attributes in resource files: the plain form by id, and the set form that brings a list back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "mchost/mdl/level.h"
#include "mchost/mdl/resource.h"
#include "mclib/elmattr/records.h"
#include "mclib/elmattr/resources.h"
#include "mclib/elmattr/table.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/resource_files.h"
#include "tests/support/library_fixture.h"

using namespace mc;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int group = 1;

constexpr int32_t resourceType(const char (&name)[5]) {
    return MDL_RSC_TYPE(name[0], name[1], name[2], name[3]);
}

void anyHook(ElmAttrHookInfo*) {}

class AttributeResources : public LibraryTest {
  protected:
    AttributeResources() { mclibElmAttr_setGroupeNames(1, "Group", group, 0); }

    static GlobalData& gd() { return *mclibMain_getGlobalDataP(); }
    const char* file() const { return file_.c_str(); }

    static ElmAttrData colored(int color) {
        ElmAttrData data{};
        data.color = color;
        return data;
    }
    static void add(int id, const char* label, const ElmAttrData& data, int kind = ATTR_KIND_SYMBOLOGY) {
        if (kind == ATTR_KIND_OPTION_TEXT) {
            mclibElmAttr_addAttribute(id, label, group, kind, 0, anyHook, 0, &data, "Size", 2, "small", 1, "large", 2);
        } else if (kind == ATTR_KIND_LABELLED_SYMBOL) {
            mclibElmAttr_addAttribute(id, label, group, kind, 0, anyHook, 0, &data, 60, "Size", 1, 300, 3);
        } else if (kind == ATTR_KIND_SYMBOL) {
            mclibElmAttr_addAttribute(id, label, group, kind, 0, anyHook, 0, &data, 1, 300, 3);
        } else {
            mclibElmAttr_addAttribute(id, label, group, kind, 0, anyHook, 0, &data);
        }
    }
    static void addColored(std::initializer_list<int> ids) {
        for (const int id : ids) add(id, ("Attribute " + std::to_string(id)).c_str(), colored(id));
    }
    static std::vector<int> ids() {
        std::vector<int> found;
        for (const ElmAttrRecord* r = gd().attributeList; r != nullptr; r = r->next) found.push_back(r->id);
        EXPECT_EQ(gd().attributeCount, static_cast<int>(found.size()));
        return found;
    }
    static std::vector<int> colors() {
        std::vector<int> found;
        for (const ElmAttrRecord* r = gd().attributeList; r != nullptr; r = r->next) found.push_back(r->data.color);
        return found;
    }
    static const ElmAttrRecord& record(int id) { return *elmattr::findRecord(gd(), id); }

    // Puts a resource into the file as it is given.
    void put(const char (&type)[5], int32_t id, std::span<const uint8_t> bytes) {
        McHandle handle;
        ASSERT_EQ(mclibResource_openFile(&handle, file(), MDL_RSC_WRITE), MCLIB_SUCCESS);
        EXPECT_EQ(mclibResource_add(&handle, resourceType(type), id, bytes.data(), static_cast<int>(bytes.size()), 0),
                  MCLIB_SUCCESS);
        mclibResource_closeFile(&handle);
    }
    // A record of any layout that holds nothing but a head and a colour.
    void putRecord(const char (&type)[5], int32_t id, size_t size, int32_t color, elmattr::RecordHead head = {}) {
        std::vector<uint8_t> bytes(size);
        elmattr::headFields(StoreFields(bytes), head);
        StoreFields(bytes).number(48, color);
        put(type, id, bytes);
    }
    void putLabel(int32_t number, const char* label) {
        std::vector<uint8_t> bytes(80, 0xEE);
        std::memcpy(bytes.data(), label, std::strlen(label) + 1);
        put("ASNa", number, bytes);
    }
    void putCount(int32_t count) {
        uint8_t bytes[4];
        storeNumber(bytes, count);
        put("ASNo", 1, bytes);
    }
    std::vector<uint8_t> stored(const char (&type)[5], int32_t id, size_t size) {
        McHandle handle;
        EXPECT_EQ(mclibResource_openFile(&handle, file(), MDL_RSC_READ), MCLIB_SUCCESS);
        std::vector<uint8_t> bytes(size);
        if (mclibResource_load(&handle, resourceType(type), id, bytes.data(), static_cast<int>(size)) != 0)
            bytes.clear();
        mclibResource_closeFile(&handle);
        return bytes;
    }

  private:
    std::string file_ = path("attributes.rsc");
};

// ---- plain form ----

TEST_F(AttributeResources, PlainFormBringsBackTheValuesById) {
    addColored({7, 3, -9});
    ASSERT_EQ(mclibElmAttr_writeResource(file()), MCLIB_SUCCESS);
    mclibElmAttr_freeAllAttribute();
    for (const int id : {3, 4, 7}) add(id, "now", colored(100));
    EXPECT_EQ(mclibElmAttr_readResource(file()), MCLIB_SUCCESS);
    EXPECT_THAT(colors(), ElementsAre(3, 100, 7)) << "what the file lacks stays, and order and labels do";
    EXPECT_STREQ(record(7).label, "now");
}

TEST_F(AttributeResources, PlainFormOfNothingMakesTheFile) {
    EXPECT_EQ(mclibElmAttr_writeResource(file()), MCLIB_SUCCESS);
    EXPECT_EQ(mclibElmAttr_readResource(file()), MCLIB_SUCCESS);
}

TEST_F(AttributeResources, PlainFormTakesTheNewestLayoutOfEachAttribute) {
    for (const int id : {1, 2, 3, 4}) add(id, "x", colored(100));
    const elmattr::RecordHead foreign = {8, 4, 77, 1, 5, 6};
    putRecord("McA3", 1, 1480, 31, foreign);
    putRecord("McA2", 1, 1320, 21);
    putRecord("McA2", 2, 1320, 22);
    putRecord("McAs", 2, 320, 12);
    putRecord("McAs", 3, 320, 13);
    EXPECT_EQ(mclibElmAttr_readResource(file()), MCLIB_SUCCESS);
    EXPECT_THAT(colors(), ElementsAre(31, 22, 13, 100));
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3, 4)) << "the head in the file doesn't count";
    EXPECT_EQ(record(1).kind, ATTR_KIND_SYMBOLOGY);
    EXPECT_STREQ(record(3).data.levelName, L"Level 0");
}

TEST_F(AttributeResources, RecordOfTheWrongSizeIsNotTaken) {
    for (const int id : {1, 2}) add(id, "x", colored(100));
    putRecord("McA3", 1, 1479, 31);
    putRecord("McA2", 1, 1320, 21);
    putRecord("McA3", 2, 10, 32);
    EXPECT_EQ(mclibElmAttr_readResource(file()), MCLIB_SUCCESS);
    EXPECT_THAT(colors(), ElementsAre(21, 100));
}

TEST_F(AttributeResources, StylesOfTheFileComeInStepWithTheModel) {
    openDesignFile();
    const double dashes[] = {2.0, 1.0};
    int32_t other = 0, kerb = 0;
    mdlLineStyle_define(&other, mdlModelRef_getActive(), "Other", dashes, 2);
    mdlLineStyle_define(&kerb, mdlModelRef_getActive(), "Kerb", dashes, 2);
    ElmAttrData data{};
    data.style = other;
    std::strcpy(data.styleName, "Kerb");
    add(1, "newest", data);
    ASSERT_EQ(mclibElmAttr_writeResource(file()), MCLIB_SUCCESS);
    add(2, "oldest", {});
    std::vector<uint8_t> bytes(320);
    StoreFields(bytes).number(52, int32_t{8});
    std::memcpy(&bytes[96], "Kerb", 5);
    put("McAs", 2, bytes);
    EXPECT_EQ(mclibElmAttr_readResource(file()), MCLIB_SUCCESS);
    EXPECT_EQ(record(1).data.style, kerb);
    EXPECT_EQ(record(2).data.style, kerb);
}

TEST_F(AttributeResources, FilesThatCanNotBeOpenedAreFailures) {
    addColored({1});
    EXPECT_EQ(mclibElmAttr_readResource(file()), MCLIB_ERROR);
    EXPECT_EQ(mclibElmAttr_readResourceExtended(file()), MCLIB_ERROR);
    const std::string nowhere = path("no/such/folder/x.rsc");
    EXPECT_EQ(mclibElmAttr_writeResource(nowhere.c_str()), MCLIB_ERROR);
    EXPECT_EQ(mclibElmAttr_writeResourceExtended(nowhere.c_str()), MCLIB_ERROR);
    EXPECT_THAT(ids(), ElementsAre(1));
}

TEST_F(AttributeResources, OpenFileThatCanNotBeWrittenStopsThePlainForm) {
    addColored({1, 2});
    ASSERT_EQ(mclibElmAttr_writeResource(file()), MCLIB_SUCCESS);
    McHandle handle;
    ASSERT_EQ(mclibResource_openFile(&handle, file(), MDL_RSC_READ), MCLIB_SUCCESS);
    EXPECT_EQ(mclibElmAttr_writeResourceByHandle(&handle), MCLIB_ERROR);
    EXPECT_EQ(mclibElmAttr_readResourceByHandle(&handle), MCLIB_SUCCESS);
    mclibResource_closeFile(&handle);
}

// ---- set form ----

TEST_F(AttributeResources, SetComesBackWithOrderHeadsAndLabels) {
    const std::string longest(79, 'L');
    add(30, longest.c_str(), colored(1));
    add(10, "second", colored(2), ATTR_KIND_TEXT);
    add(20, "", colored(3));
    gd().attributeList->lockMask = ATTR_USE_COLOR;
    gd().attributeList->textMaxLength = 44;
    ASSERT_EQ(mclibElmAttr_writeResourceExtended(file()), MCLIB_SUCCESS);
    for (int32_t n = 0; n < 3; ++n)
        EXPECT_EQ(elmattr::headOf(stored("ASD3", n, 1480)).id, std::vector({30, 10, 20})[n]);
    EXPECT_THAT(stored("ASNo", 1, 4), ElementsAre(3, 0, 0, 0));

    mclibElmAttr_freeAllAttribute();
    addColored({99});
    ASSERT_EQ(mclibElmAttr_readResourceExtended(file()), MCLIB_SUCCESS);
    EXPECT_THAT(ids(), ElementsAre(30, 10, 20));
    EXPECT_THAT(colors(), ElementsAre(1, 2, 3));
    EXPECT_EQ(record(30).label, longest);
    EXPECT_STREQ(record(20).label, "");
    EXPECT_EQ(record(10).kind, ATTR_KIND_TEXT);
    EXPECT_EQ(record(10).group, group);
    EXPECT_EQ(record(30).lockMask, uint32_t{ATTR_USE_COLOR});
    EXPECT_EQ(record(30).textMaxLength, 44);
    EXPECT_EQ(record(30).hook, nullptr);
}

TEST_F(AttributeResources, SetTakesHooksAndOptionsFromTheListBefore) {
    add(1, "a", {}, ATTR_KIND_OPTION_TEXT);
    add(2, "b", {}, ATTR_KIND_SYMBOL);
    add(3, "c", {}, ATTR_KIND_OPTION_TEXT);
    ASSERT_EQ(mclibElmAttr_writeResourceExtended(file()), MCLIB_SUCCESS);
    mclibElmAttr_freeAllAttribute();
    add(1, "a", {}, ATTR_KIND_OPTION_TEXT);
    add(3, "c", {}, ATTR_KIND_SYMBOL);  // of another kind than stored
    add(2, "b", {}, ATTR_KIND_SYMBOL);  // behind its place in the set
    ASSERT_EQ(mclibElmAttr_readResourceExtended(file()), MCLIB_SUCCESS);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3));
    EXPECT_EQ(record(1).hook, anyHook);
    ASSERT_EQ(record(1).optionCount, 2);
    EXPECT_STREQ(record(1).optionLabels[1], "large");
    EXPECT_STREQ(record(1).textLabel, "Size");
    EXPECT_EQ(record(2).hook, nullptr) << "the old list waits at 3, which comes later";
    EXPECT_EQ(record(2).optionCount, 0);
    EXPECT_EQ(record(3).hook, anyHook);
    EXPECT_EQ(record(3).optionCount, 0) << "options of another kind";
    EXPECT_EQ(record(3).optionValues, nullptr);
}

TEST_F(AttributeResources, SetTakesOptionsThatItsKindsCanShow) {
    constexpr int symbol = ATTR_KIND_SYMBOL, labelled = ATTR_KIND_LABELLED_SYMBOL, text = ATTR_KIND_OPTION_TEXT;
    struct Case {
        int stored, registered, options;
        const char* caption;
    };
    for (const Case& c : {Case{labelled, symbol, 1, nullptr}, Case{symbol, labelled, 1, "Size"},
                          Case{symbol, text, 0, "Size"}, Case{ATTR_KIND_TEXT, symbol, 0, nullptr}}) {
        SCOPED_TRACE(std::to_string(c.registered) + " to " + std::to_string(c.stored));
        mclibElmAttr_freeAllAttribute();
        add(1, "a", {}, c.stored);
        ASSERT_EQ(mclibElmAttr_writeResourceExtended(file()), MCLIB_SUCCESS);
        mclibElmAttr_freeAllAttribute();
        add(1, "a", {}, c.registered);
        ASSERT_EQ(mclibElmAttr_readResourceExtended(file()), MCLIB_SUCCESS);
        EXPECT_EQ(record(1).kind, c.stored);
        EXPECT_EQ(record(1).optionCount, c.options);
        EXPECT_EQ(record(1).optionIcons != nullptr, c.options != 0);
        EXPECT_STREQ(record(1).textLabel, c.caption);
    }
}

TEST_F(AttributeResources, SetOfOlderRecordsTakesTheirHeads) {
    putRecord("ASD2", 0, 1320, 21, {group, ATTR_KIND_SYMBOL, 5, 3, 9, 50});
    putRecord("ASDa", 1, 320, 11, {group, ATTR_KIND_TEXT, 6, 4, 9, 51});
    putLabel(0, "older");
    putLabel(1, "oldest");
    putCount(2);
    ASSERT_EQ(mclibElmAttr_readResourceExtended(file()), MCLIB_SUCCESS);
    EXPECT_THAT(ids(), ElementsAre(5, 6));
    EXPECT_THAT(colors(), ElementsAre(21, 11));
    EXPECT_EQ(record(5).kind, ATTR_KIND_SYMBOL);
    EXPECT_EQ(record(5).lockMask, 3u);
    EXPECT_EQ(record(6).textMaxLength, 51);
    EXPECT_EQ(record(6).optionCount, 0);
    EXPECT_STREQ(record(6).label, "oldest");
    EXPECT_STREQ(record(6).data.levelName, L"Level 0");
}

TEST_F(AttributeResources, EmptySetEmptiesTheList) {
    ASSERT_EQ(mclibElmAttr_writeResourceExtended(file()), MCLIB_SUCCESS);
    addColored({1, 2});
    EXPECT_EQ(mclibElmAttr_readResourceExtended(file()), MCLIB_SUCCESS);
    EXPECT_THAT(ids(), IsEmpty());
}

TEST_F(AttributeResources, SetWithoutACountLeavesTheList) {
    addColored({1, 2});
    ASSERT_EQ(mclibElmAttr_writeResource(file()), MCLIB_SUCCESS);  // the plain form, in the same file
    EXPECT_EQ(mclibElmAttr_readResourceExtended(file()), MCLIB_ERROR);
    putCount(-1);
    EXPECT_EQ(mclibElmAttr_readResourceExtended(file()), MCLIB_ERROR);
    EXPECT_THAT(ids(), ElementsAre(1, 2));
}

TEST_F(AttributeResources, SetThatHoldsLessThanItSaysIsReadAsFarAsItGoes) {
    addColored({1, 2, 3});
    ASSERT_EQ(mclibElmAttr_writeResourceExtended(file()), MCLIB_SUCCESS);
    putCount(INT32_MAX);
    EXPECT_EQ(mclibElmAttr_readResourceExtended(file()), MCLIB_ERROR);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3));
    EXPECT_EQ(record(2).hook, nullptr) << "only a whole set takes hooks from the list before";
    putRecord("ASD3", 3, 1480, 4, {group, 1, 4, 0, 0, 0});  // without a label
    EXPECT_EQ(mclibElmAttr_readResourceExtended(file()), MCLIB_ERROR);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3));
}

TEST_F(AttributeResources, LabelWithoutItsEndIsCut) {
    putRecord("ASD3", 0, 1480, 4, {group, 1, 4, 0, 0, 0});
    put("ASNa", 0, std::vector<uint8_t>(80, 'x'));
    putCount(1);
    EXPECT_EQ(mclibElmAttr_readResourceExtended(file()), MCLIB_SUCCESS);
    EXPECT_EQ(record(4).label, std::string(79, 'x'));
}

TEST_F(AttributeResources, SmallerSetLeavesNothingOfALargerOneBefore) {
    addColored({1, 2, 3});
    ASSERT_EQ(mclibElmAttr_writeResourceExtended(file()), MCLIB_SUCCESS);
    mclibElmAttr_deleteAttribute(1, 0);
    ASSERT_EQ(mclibElmAttr_writeResourceExtended(file()), MCLIB_SUCCESS);
    ASSERT_EQ(mclibElmAttr_readResourceExtended(file()), MCLIB_SUCCESS);
    EXPECT_THAT(ids(), ElementsAre(2, 3));
}

TEST_F(AttributeResources, NothingHappensWithoutAnApplication) {
    asApplication("unregistered", [&] {
        EXPECT_EQ(mclibElmAttr_writeResource(file()), MCLIB_ERROR);
        EXPECT_EQ(mclibElmAttr_writeResourceExtended(file()), MCLIB_ERROR);
        EXPECT_EQ(mclibElmAttr_readResource(file()), MCLIB_ERROR);
        EXPECT_EQ(mclibElmAttr_readResourceExtended(file()), MCLIB_ERROR);
    });
    EXPECT_FALSE(std::filesystem::exists(file()));
}

}  // namespace
