// A session with an empty design file, and elements to put into it.
#pragma once

#include <string>
#include <vector>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/scan.h"
#include "mchost/mdl/system.h"
#include "tests/support/session_fixture.h"

inline MSElementBuffer* line(double x1, double y1, double x2, double y2) {
    static MSElementBuffer element;
    const Point3d points[] = {{x1, y1, 0}, {x2, y2, 0}};
    EXPECT_EQ(mdlLine_create(&element, nullptr, points), MDL_SUCCESS);
    return &element;
}

// A square with a side of 10.
inline MSElementBuffer* shape() {
    static MSElementBuffer element;
    const Point3d corners[] = {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}};
    EXPECT_EQ(mdlShape_create(&element, nullptr, corners, 4, 0), MDL_SUCCESS);
    return &element;
}

// A line that tells its number again by numberOf.
inline MSElementBuffer* numbered(uint32_t number, LevelId level = 1) {
    MSElementBuffer* element = line(number, 0, number + 1.0, 1);
    element->head.graphicGroup = number;
    element->head.level = level;
    return element;
}

inline uint32_t numberOf(FilePos position, ModelRef* model = nullptr) {
    static MSElementBuffer element;
    return mdlElement_read(&element, model, position) != 0 ? element.head.graphicGroup : UINT32_MAX;
}

class ScanHandle {
  public:
    ScanHandle() : criteria_(mdlScanCriteria_create()) {}
    ~ScanHandle() { mdlScanCriteria_free(&criteria_); }
    ScanHandle(const ScanHandle&) = delete;
    ScanHandle& operator=(const ScanHandle&) = delete;
    operator ScanCriteria*() const { return criteria_; }

    // The next portion of at most `room` positions; its status in `status`.
    std::vector<FilePos> portion(int32_t room, int& status) {
        std::vector<FilePos> found(static_cast<size_t>(room));
        int32_t words = 2 * room;
        status = mdlScanCriteria_scan(criteria_, found.data(), &words, nullptr);
        found.resize(static_cast<size_t>(words / 2));
        return found;
    }
    std::vector<FilePos> all() {
        std::vector<FilePos> found;
        for (int status = MDL_SCAN_MORE; status == MDL_SCAN_MORE;) {
            const auto part = portion(64, status);
            found.insert(found.end(), part.begin(), part.end());
        }
        return found;
    }

  private:
    ScanCriteria* criteria_;
};

inline std::vector<FilePos> allPositions(ModelRef* model = nullptr) {
    ScanHandle scan;
    if (model != nullptr && mdlScanCriteria_setModel(scan, model) != MDL_SUCCESS) return {};
    return scan.all();
}

class DesignFileTest : public SessionTest {
  protected:
    using SessionTest::SessionTest;

    const std::string file = path("a.mcd");

    void create() { ASSERT_EQ(mdlSystem_createDesignFile(file.c_str(), 0), MDL_SUCCESS); }
    void open(bool readOnly = false) { ASSERT_EQ(mdlSystem_newDesignFile(file.c_str(), readOnly), MDL_SUCCESS); }
    void reopen() { open(); }
    // Closes the design file: another one, empty, is open instead.
    void close() {
        const std::string other = path("other.mcd");
        if (!std::filesystem::exists(other)) mdlSystem_createDesignFile(other.c_str(), 0);
        ASSERT_EQ(mdlSystem_newDesignFile(other.c_str(), 0), MDL_SUCCESS);
    }

    // The one message that the last step gave, which must name the file.
    std::string onlyMessage(const std::string& about) {
        EXPECT_EQ(front().messages.size(), 1u);
        const std::string brief = front().messages.empty() ? "" : front().messages.front().brief;
        EXPECT_NE(brief.find(about), std::string::npos) << brief;
        EXPECT_EQ(brief.find('\n'), std::string::npos) << brief;
        front().clear();
        return brief;
    }
};

class OpenModelTest : public DesignFileTest {
  protected:
    OpenModelTest() {
        create();
        open();
    }
};
