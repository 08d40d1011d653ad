// Application data elements: their bytes, the values in them, and scans over them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/undo.h"
#include "mclib/frame/stored_layout.h"
#include "mclib/project/application_block.h"
#include "mclib/project/application_data.h"
#include "tests/support/library_fixture.h"

using namespace mc;

namespace {

using testing::ElementsAre;

constexpr int applicationId = 700;

std::vector<uint8_t> payloadOf(size_t length) {
    std::vector<uint8_t> payload(length);
    for (size_t i = 0; i < length; ++i) payload[i] = static_cast<uint8_t>(i * 7 + 1);
    return payload;
}

TEST(ApplicationDataElement, HasTheBytesOfItsLayout) {
    for (const int length : {0, 1, 3, 4, 8152}) {
        SCOPED_TRACE(length);
        const auto payload = payloadOf(static_cast<size_t>(length));
        std::vector<uint8_t> bytes(payload.size() + 41, 0xAA);
        auto* element = reinterpret_cast<MSElementBuffer*>(bytes.data());
        ASSERT_EQ(mclib66Elem_saveData(element, 0x12345, -2, payload.data(), length), 0);
        const auto low = static_cast<uint8_t>((length + 1) / 2 + 19), high = static_cast<uint8_t>(length / 512);
        const std::vector<uint8_t> head = {0x42, 0, 0, 0, low, high, 0, 0, low, high, 0, 0, 20, 0, 0, 0};
        EXPECT_EQ(std::vector(bytes.begin(), bytes.begin() + 16), head);
        EXPECT_THAT(std::vector(bytes.begin() + 16, bytes.begin() + 32), testing::Each(0));
        EXPECT_THAT(std::vector(bytes.begin() + 32, bytes.begin() + 38), ElementsAre(157, 0, 0x45, 0x23, 0xFE, 0xFF));
        EXPECT_TRUE(std::equal(payload.begin(), payload.end(), bytes.begin() + 38));
        EXPECT_THAT(std::vector(bytes.begin() + 38 + length, bytes.end()), ElementsAre(0, 0, 0xAA))
            << "zeros up to length + 40, and nothing behind";

        int subId = 0, size = 0;
        void* data = nullptr;
        ASSERT_EQ(mclib66Elem_getData(element, 0x2345, &subId, &data, &size), 0);
        EXPECT_EQ(subId, -2);
        EXPECT_EQ(size, (length + 1) / 2 * 2);
        EXPECT_EQ(data, bytes.data() + 38);
        EXPECT_EQ(mclib66Elem_getData(element, 0x12345, nullptr, &data, nullptr), MCLIB_ERROR)
            << "ids are cut when stored";
    }
}

TEST(ApplicationDataElement, PayloadThatDoesNotFitIsRefused) {
    std::vector<uint8_t> payload(8153), buffer(8200, 0xAA);
    auto* element = reinterpret_cast<MSElementBuffer*>(buffer.data());
    FilePos position = 77;
    for (const int length : {8153, INT32_MAX, -1, INT32_MIN}) {
        EXPECT_EQ(mclib66Elem_saveData(element, 1, 1, payload.data(), length), MCLIB_ERROR);
        EXPECT_EQ(mclib66Elem_saveDataToFile(1, 1, payload.data(), length, &position), MCLIB_ERROR);
    }
    EXPECT_EQ(mclib66Elem_saveData(element, 1, 1, nullptr, 4), MCLIB_ERROR);
    EXPECT_THAT(buffer, testing::Each(0xAA));
    EXPECT_EQ(position, 77u);
}

TEST(ApplicationDataElement, WhatIsNotOursIsRefusedAndItsSizeNotTrusted) {
    struct Case {
        const char* what;
        size_t at;
        uint8_t value;
    };
    for (const Case& c : {Case{"signature", 32, 156}, Case{"application", 35, 9}, Case{"no room for the ids", 4, 18},
                          Case{"larger than any element", 6, 1}}) {
        SCOPED_TRACE(c.what);
        alignas(8) uint8_t bytes[64] = {};
        auto* element = reinterpret_cast<MSElementBuffer*>(bytes);
        mclib66Elem_saveData(element, applicationId, 5, "abcd", 4);
        bytes[c.at] = c.value;
        int subId = 11, size = 12;
        void* data = bytes;
        EXPECT_EQ(mclib66Elem_getData(element, applicationId, &subId, &data, &size), MCLIB_ERROR);
        EXPECT_EQ(data, nullptr);
        EXPECT_EQ(subId, 11);
        EXPECT_EQ(size, 12);
    }
    const auto element = application_data::makeElement(1, 1, payloadOf(10));
    EXPECT_TRUE(application_data::readElement(std::span(element).first(48)));
    EXPECT_FALSE(application_data::readElement(std::span(element).first(47)));
    EXPECT_FALSE(application_data::readElement({}));
}

TEST(ApplicationDataValues, ComeBackAsTheyWereAppended) {
    uint8_t buffer[100];
    std::memset(buffer, 0xCC, sizeof buffer);
    int offset = 1;  // doubles at an odd address too
    const uint8_t byte = 200;
    const int16_t number = -2;
    EXPECT_EQ(mclib66Elem_convertToFileFormat(buffer, &offset, 3, "abc"), 0);
    EXPECT_EQ(offset, 5);
    EXPECT_EQ(mclib66Elem_convertToFileFormat(buffer, &offset, 4, &byte), 0);
    EXPECT_EQ(mclib66Elem_convertToFileFormat(buffer, &offset, 1, 1.5), 0);
    EXPECT_EQ(mclib66Elem_convertToFileFormat(buffer, &offset, 6, &number), 0);
    EXPECT_EQ(mclib66Elem_convertToFileFormat(buffer, &offset, 9, int32_t{0x01020304}), 0);
    EXPECT_EQ(mclib66Elem_convertToFileFormat(buffer, &offset, 8, "xyz", 2), 0);
    EXPECT_EQ(mclib66Elem_convertToFileFormat(buffer, &offset, 8, nullptr, 0), 0);
    EXPECT_THAT(
        std::vector<uint8_t>(buffer, buffer + offset + 1),
        ElementsAre(0xCC, 'a', 'b', 'c', 0, 200, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F, 0xFE, 0xFF, 4, 3, 2, 1, 'x', 'y', 0xCC));

    int from = 1;
    char text[4];
    uint8_t byteBack = 0;
    double real = 0;
    int16_t numberBack = 0;
    int32_t word = 0;
    char bytes[3] = {'1', '2', '3'};
    EXPECT_EQ(mclib66Elem_convertFromFileFormat(buffer, &from, 3, text), 0);
    EXPECT_EQ(mclib66Elem_convertFromFileFormat(buffer, &from, 4, &byteBack), 0);
    EXPECT_EQ(mclib66Elem_convertFromFileFormat(buffer, &from, 1, &real), 0);
    EXPECT_EQ(mclib66Elem_convertFromFileFormat(buffer, &from, 6, &numberBack), 0);
    EXPECT_EQ(mclib66Elem_convertFromFileFormat(buffer, &from, 9, &word), 0);
    EXPECT_EQ(mclib66Elem_convertFromFileFormat(buffer, &from, 8, bytes, 2), 0);
    EXPECT_EQ(mclib66Elem_convertFromFileFormat(buffer, &from, 8, bytes, 0), 0);
    EXPECT_EQ(from, offset);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(byteBack, 200);
    EXPECT_EQ(real, 1.5);
    EXPECT_EQ(numberBack, -2);
    EXPECT_EQ(word, 0x01020304);
    EXPECT_EQ(std::string_view(bytes, 3), "xy3");
}

TEST(ApplicationDataValues, UnknownCodesDoNothing) {
    uint8_t buffer[8] = {};
    int offset = 3;
    for (const int code : {0, 2, 5, 7, 10, -1}) {
        EXPECT_EQ(mclib66Elem_convertToFileFormat(buffer, &offset, code, "text"), 1) << code;
        EXPECT_EQ(mclib66Elem_convertFromFileFormat(buffer, &offset, code, buffer), 1) << code;
    }
    EXPECT_EQ(mclib66Elem_convertToFileFormat(buffer, &offset, 8, "text", -1), 1);
    EXPECT_EQ(offset, 3);
    EXPECT_THAT(buffer, testing::Each(0));
}

// ---- in a design file ----

struct Seen {
    int32_t subId;
    int32_t index;
    std::vector<uint8_t> payload;
};

class ApplicationData : public LibraryTest {
  protected:
    ApplicationData() { openDesignFile(); }

    static FilePos save(int application, int subId, const std::vector<uint8_t>& payload = {1, 2}) {
        FilePos position = 0;
        EXPECT_EQ(
            mclib66Elem_saveDataToFile(application, subId, payload.data(), static_cast<int>(payload.size()), &position),
            0);
        EXPECT_NE(position, 0u);
        return position;
    }
    // Scans with a function: result of f(subId, position, index), 0 to go on.
    template <class Visit>
    static int scan(Visit visit, int application = applicationId, int isNative = 1) {
        const auto call = [](void* userData, int32_t subId, MSElementBuffer*, FilePos position, int32_t index,
                             void* data, int32_t size) -> int {
            const auto* bytes = static_cast<const uint8_t*>(data);
            return (*static_cast<Visit*>(userData))(Seen{subId, index, {bytes, bytes + size}}, position);
        };
        return isNative != 0
                   ? mclib66Elem_scanDataFromFileExtended(&visit, application, mdlModelRef_getActive(), call, isNative)
                   : mclib66Elem_scanDataFromFile(&visit, application, mdlModelRef_getActive(), call);
    }
    static std::vector<int> subIds(int application = applicationId, int isNative = 1) {
        std::vector<int> found;
        const int count = scan(
            [&](const Seen& seen, FilePos) {
                found.push_back(seen.subId);
                return 0;
            },
            application, isNative);
        EXPECT_EQ(count, static_cast<int>(found.size()));
        return found;
    }
    void addLine() {
        MSElementBuffer element;
        const Point3d points[] = {{0, 0, 0}, {1, 1, 0}};
        mdlLine_create(&element, nullptr, points);
        element.head.level = 20;
        mdlElement_add(&element);
    }
};

TEST_F(ApplicationData, ScanFindsTheBlocksOfOneApplicationAlone) {
    EXPECT_THAT(subIds(), ElementsAre());
    addLine();
    save(applicationId, 1);
    save(applicationId + 1, 2);
    save(applicationId, 3);
    MSElementBuffer foreign;
    mclib66Elem_saveData(&foreign, applicationId, 4, "ab", 2);
    foreign.bytes[32] = 1;  // another signature
    mdlElement_add(&foreign);
    foreign.bytes[32] = 157;
    foreign.head.level = 21;
    mdlElement_add(&foreign);
    EXPECT_THAT(subIds(), ElementsAre(1, 3)) << "a second block of an application doesn't replace the first";
    EXPECT_THAT(subIds(applicationId, 0), ElementsAre(1, 3)) << "called through the host";
    EXPECT_THAT(subIds(5), ElementsAre());
}

TEST_F(ApplicationData, VisitEndsTheScanWithItsIndexInThePortion) {
    for (int i = 0; i < 70; ++i) save(applicationId, i);
    for (const auto& [stopAt, result] : {std::pair{0, 1}, {2, 3}, {63, 64}, {64, 1}, {69, 6}}) {
        EXPECT_EQ(scan([&](const Seen& seen, FilePos) { return seen.subId == stopAt ? 9 : 0; }), result);
    }
    EXPECT_EQ(scan([](const Seen&, FilePos) { return 1; }, applicationId, 0), 1);
}

TEST_F(ApplicationData, VisitMayDeleteWhatItIsShownAndUndoBringsItBack) {
    std::vector<int> all, even;
    for (int i = 0; i < 200; ++i) {
        if (i % 3 == 0) addLine();
        save(applicationId, i, payloadOf(static_cast<size_t>(i)));
        all.push_back(i);
        if (i % 2 == 0) even.push_back(i);
    }
    int deleted = 0;
    EXPECT_EQ(scan([&](const Seen& seen, FilePos position) {
                  EXPECT_EQ(seen.payload.size(), static_cast<size_t>((seen.subId + 1) / 2 * 2));
                  if (seen.subId % 2 != 0) deleted += mdlElement_undoableDelete(nullptr, position, 0) == MDL_SUCCESS;
                  return 0;
              }),
              200);
    EXPECT_EQ(deleted, 100);
    EXPECT_EQ(subIds(), even);
    while (mdlUndo_lastDelete() != 0) {
    }
    EXPECT_EQ(subIds(), all);
}

TEST_F(ApplicationData, RefusedElementIsTold) {
    ASSERT_EQ(mdlSystem_newDesignFile(path("test.mcd").c_str(), 1), MDL_SUCCESS);
    FilePos position = 5;
    EXPECT_EQ(mclib66Elem_saveDataToFile(applicationId, 1, "ab", 2, &position), MCLIB_ELEMENT_NOT_ADDED);
    EXPECT_EQ(position, 0u);
    mdlSystem_closeDesignFile();
    EXPECT_THAT(subIds(), ElementsAre()) << "no design file is open";
}

TEST_F(ApplicationData, WorkModeThatLosesDataWarns) {
    save(applicationId, 1);
    EXPECT_EQ(front().dialogs, 0);
    mdlSystem_defineCfgVar("MS_WORKMODE", "DWG", 0);
    save(applicationId, 2);
    EXPECT_EQ(front().dialogs, 1);
    mdlSystem_defineCfgVar("MS_DWGSAVEAPPLICATIONDATA", "1", 0);
    save(applicationId, 3);
    EXPECT_EQ(front().dialogs, 1);
    EXPECT_THAT(subIds(), ElementsAre(1, 2, 3));
}

}  // namespace
