// Files of older versions, and files that another process writes to while they are read.
#include "mchost/mdl/cell.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/view.h"
#include "tests/mchost/model/model_fixture.h"
#include "tests/support/child.h"

namespace {

// The golden file holds the cells KERB (with INNER in it) at 1 and POST, which was rewritten, at 2; a line at 3 is
// deleted. "Kerb" and "Vei æøå" are levels, "fence" a line style and "Large" a text style. That of version 2 has the
// file of version 1 attached to it, twice as large, with a clip; in that of version 3 "Kerb" is off in the second view.
class OlderVersion : public DesignFileTest {
  protected:
    void bring(const char* golden) {
        std::filesystem::copy_file(std::string(TEST_SOURCE_DIR "/golden/") + golden, file,
                                   std::filesystem::copy_options::overwrite_existing);
        std::filesystem::permissions(file, std::filesystem::perms(0644));
    }

    // What the first bytes of a database file tell as its version.
    int version() const { return readFile("a.mcd").at(63); }

    std::string contents(ModelRef* model) {
        std::string text;
        for (const FilePos position : allPositions(model)) {
            mdl::Descr ed;
            text += "at " + std::to_string(position) + ":";
            if (mdlElmdscr_read(ed.out(), position, model) == 0) continue;
            mdlElmdscr_operation(
                ed.get(),
                [](MSElementBuffer* element, void* all, int32_t, int32_t depth, ElementDescr*) {
                    *static_cast<std::string*>(all) += " " + std::to_string(depth) + "/" +
                                                       std::to_string(element->head.graphicGroup) + "/" +
                                                       std::to_string(element->head.level);
                    return 0;
                },
                &text, 11);
        }
        return text + " " + tables(model);
    }

    std::string tables(ModelRef* model) {
        std::string text;
        LevelId id = 0;
        while (mdlLevel_getNextId(&id, model) == MDL_SUCCESS) {
            wchar_t name[32];
            uint32_t color = 0, weight = 0;
            int32_t style = 0;
            EXPECT_EQ(mdlLevel_getName(name, 32, model, id), MDL_SUCCESS);
            EXPECT_EQ(mdlLevel_getElementSymbology(&color, &style, &weight, model, id), MDL_SUCCESS);
            text += std::to_string(std::wcslen(name)) + "/" + std::to_string(color) + "/" + std::to_string(style) +
                    "/" + std::to_string(weight) + " ";
        }
        double dashes[32] = {};
        TextSize size = {};
        MdlTextStyle* large = mdlTextStyle_getByName(L"Large", model);
        mdlTextStyle_getTextParamWideFromStyle(nullptr, &size, large);
        mdlTextStyle_free(large);
        mdlLineStyle_getPattern(dashes, nullptr, -1, model);
        return text + std::to_string(int(dashes[0])) + "/" + std::to_string(int(size.height));
    }
    const std::string golden =
        "at 1: 0/100/1 1/101/2 1/102/2 1/103/2 1/150/1 2/151/1 2/152/1at 2: 0/300/1 1/301/3 1/302/3 "
        "7/0/0/0 4/3/4/2 7/0/0/0 2/3000";
};

TEST_F(OlderVersion, StaysWhatItIsUntilItIsChangedAndLosesNothingThen) {
    std::filesystem::copy_file(TEST_SOURCE_DIR "/golden/v1.mcd", path("v1.mcd"));
    for (const char* name : {"v1.mcd", "v2.mcd", "v3.mcd"}) {
        SCOPED_TRACE(name);
        close();
        bring(name);
        const std::string before = readFile("a.mcd");
        for (const bool readOnly : {true, false}) {
            open(readOnly);
            EXPECT_EQ(contents(nullptr), golden);
            EXPECT_GT(mdlView_getPixelSize(0), 0) << "a look alone";
            close();
            EXPECT_TRUE(readFile("a.mcd") == before);
        }
        open();
        EXPECT_EQ(mdlElement_add(numbered(7)), 4u) << "positions go on behind the deleted one";
        close();
        EXPECT_EQ(version(), 4);
        open();
        mdlElement_undoableDelete(nullptr, 4, 0);
        EXPECT_EQ(contents(nullptr), golden);
    }
    LevelId kerb = 0;
    ASSERT_EQ(mdlLevel_getIdFromName(&kerb, nullptr, 0, L"Kerb"), MDL_SUCCESS);
    EXPECT_EQ(mdlView_isLevelOn(0, nullptr, kerb), 1);
    EXPECT_EQ(mdlView_isLevelOn(1, nullptr, kerb), 0);
    ModelRefIterator* places = nullptr;
    ASSERT_EQ(mdlModelRefIterator_create(&places, nullptr, MDL_ITERATE_REFERENCES, 1), MDL_SUCCESS);
    Point3d clip[4] = {};
    ModelRef* const attached = mdlModelRefIterator_getNext(places);
    EXPECT_EQ(mdlRefFile_getClip(clip, nullptr, attached), MDL_SUCCESS);
    EXPECT_EQ(clip[2].y, 8000);
    EXPECT_EQ(allPositions(attached).size(), 2u);
    mdlModelRefIterator_free(&places);
}

TEST_F(OlderVersion, IsNewerWithTheLogOfAKilledSession) {
    bring("v1.mcd");
    EXPECT_EQ(inChild([&] {
                  mdlSystem_newDesignFile(file.c_str(), 0);
                  mdlElement_add(numbered(7));
                  return mdlSystem_saveDesignFile();
              }),
              0);
    EXPECT_EQ(version(), 1);
    ModelRef* model = nullptr;
    ASSERT_EQ(mdlWorkDgn_openFile(&model, file.c_str()), MDL_SUCCESS);
    EXPECT_EQ(numberOf(4, model), 7u);
    EXPECT_EQ(mdlWorkDgn_closeFile(model), MDL_SUCCESS);
    open();
    close();
    EXPECT_EQ(version(), 4);
}

TEST_F(OlderVersion, CellLibraryIsRead) {
    bring("v1.mcd");
    std::string bytes = readFile("a.mcd");
    bytes.replace(68, 4, "MCC1");
    const std::string name = writeFile("v1.cel", bytes);
    ASSERT_EQ(mdlCell_attachLibraryEx(nullptr, name.c_str(), 0, 0, 0), MDL_SUCCESS);
    mdl::Descr cell;
    EXPECT_EQ(mdlCell_getElmDscr(cell.out(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0,
                                 L"Post", nullptr),
              MDL_SUCCESS);
    EXPECT_EQ(mdlCell_detachLibrary(), MDL_SUCCESS);
}

// A process rewrites all elements with each of its commands, and closes the file and opens it again now and then.
TEST_F(DesignFileTest, WhoReadsWhileAnotherProcessWritesSeesAWholeState) {
    constexpr uint32_t elements = 60, commands = 300;
    create();
    open();
    for (uint32_t i = 0; i < elements; ++i) mdlElement_add(numbered(0));
    close();
    const pid_t writer = startChild([&]() -> int {
        for (uint32_t command = 1; command <= commands; ++command) {
            if (command % 30 == 1 && mdlSystem_newDesignFile(file.c_str(), 0) != MDL_SUCCESS) return 1;
            for (FilePos position = 1; position <= elements; ++position)
                mdlElement_rewrite(numbered(command), position);
            if (mdlSystem_saveDesignFile() != MDL_SUCCESS) return 2;
        }
        return mdlSystem_closeDesignFile();
    });
    uint32_t last = 0, states = 0;
    for (int ended = 0; ended == 0;) {
        int status = 0;
        ended = waitpid(writer, &status, WNOHANG);
        EXPECT_EQ(status, 0);
        ModelRef* model = nullptr;
        ASSERT_EQ(mdlWorkDgn_openFile(&model, file.c_str()), MDL_SUCCESS) << front().messages.back().brief;
        const uint32_t state = numberOf(1, model);
        EXPECT_GE(state, last);
        states += state != last;
        last = state;
        for (FilePos position = 2; position <= elements; ++position) ASSERT_EQ(numberOf(position, model), state);
        EXPECT_EQ(mdlWorkDgn_closeFile(model), MDL_SUCCESS);
    }
    EXPECT_EQ(last, commands);
    EXPECT_GT(states, 5u) << "they met";
}

}  // namespace
