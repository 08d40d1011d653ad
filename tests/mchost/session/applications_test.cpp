#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include "mchost/mdl/system.h"
#include "mchost/session/owned_state.h"
#include "tests/support/session_fixture.h"

namespace {

using Applications = SessionTest;

int32_t currentNumber() {
    return mdlSystem_getProcessNumberFromMdlDesc(mdlSystem_getCurrMdlDesc());
}

struct Visits {
    std::vector<MdlDesc*> ring;
    std::vector<int32_t> seen;   // the current application on the way in
    std::vector<int32_t> after;  // and after the call that went on from there
} visits;

// Calls on into the next application of the ring until all have been there.
int32_t goRound(int32_t index) {
    visits.seen.push_back(currentNumber());
    const auto next = static_cast<size_t>(index) + 1;
    const int32_t depth =
        next == visits.ring.size()
            ? 1
            : 1 + dlmSystem_callAnyFunction("I", visits.ring[next], reinterpret_cast<void*>(goRound), index + 1);
    visits.after.push_back(currentNumber());
    return depth;
}

TEST_F(Applications, FiftySideBySideKeepTheirTurnThroughNestedCalls) {
    visits = {};
    for (int i = 0; i < 50; ++i) visits.ring.push_back(application("app" + std::to_string(i)));
    std::vector<int32_t> numbers;
    for (MdlDesc* desc : visits.ring) numbers.push_back(mdlSystem_getProcessNumberFromMdlDesc(desc));
    for (size_t i = 1; i < numbers.size(); ++i) ASSERT_GT(numbers[i], numbers[i - 1]);
    ASSERT_GT(numbers.front(), 0);

    EXPECT_EQ(dlmSystem_callAnyFunction("I", visits.ring[0], reinterpret_cast<void*>(goRound), 0), 50);
    EXPECT_EQ(visits.seen, numbers);
    EXPECT_EQ(visits.after, std::vector<int32_t>(numbers.rbegin(), numbers.rend()));
    EXPECT_EQ(mdlSystem_getCurrMdlDesc(), nullptr);
}

TEST_F(Applications, MainGetsItsNamesAndArgumentsAndRunsAsItself) {
    static std::vector<std::string> arguments;
    static MdlDesc* during;
    MdlDesc* desc = session().startApplication(
        "ROADS",
        [](int argc, char** argv) {
            arguments.assign(argv, argv + argc);
            during = mdlSystem_getCurrMdlDesc();
            return argv[argc] == nullptr ? 0 : 9;
        },
        "MS_INITAPPS", {"in.txt", "--list"}, "c:\\mc\\roads.ma");
    EXPECT_EQ(arguments, (std::vector<std::string>{"c:\\mc\\roads.ma", "MS_INITAPPS", "in.txt", "--list"}));
    EXPECT_EQ(during, desc);
    EXPECT_EQ(mdlSystem_findMdlDesc("roads"), desc);
    EXPECT_EQ(session().exitStatus(), 0);
}

TEST_F(Applications, AnEndedOneIsGoneForGood) {
    MdlDesc* desc = application("first");
    const int32_t number = mdlSystem_getProcessNumberFromMdlDesc(desc);
    EXPECT_EQ(mdlSystem_getMdlDescFromProcessNumber(number), desc);
    session().endApplication(desc);
    EXPECT_EQ(mdlSystem_getMdlDescFromProcessNumber(number), nullptr);
    EXPECT_EQ(mdlSystem_findMdlDesc("first"), nullptr);
    EXPECT_EQ(dlmSystem_callAnyFunction("", desc, reinterpret_cast<void*>(currentNumber)), MDL_ERROR);
    EXPECT_NE(mdlSystem_getProcessNumberFromMdlDesc(application("first")), number);
    for (const int32_t nobody : {0, -1, 1000}) EXPECT_EQ(mdlSystem_getMdlDescFromProcessNumber(nobody), nullptr);
}

std::vector<std::string> endings;

void noteEnding(MdlDesc* desc) {
    endings.push_back(mdlSystem_getCurrMdlDesc() == desc ? "own turn" : "another's turn");
}

struct First {
    ~First() { endings.push_back("first"); }
};
struct Second {
    int32_t count = 0;
    ~Second() {
        host::sessionState<First>();
        endings.push_back("second, at " + std::to_string(count));
    }
};

TEST_F(Applications, StateGoesWithItsOwnerTheLastMadeFirst) {
    endings.clear();
    MdlDesc* desc = application("owner");
    host::sessionState<First>();
    host::sessionState<Second>().count = 5;
    host::applicationState<Second>(desc).count = 1;
    ++host::applicationState<Second>(desc).count;
    session().endApplication(desc);
    EXPECT_EQ(endings, (std::vector<std::string>{"second, at 2"}));
    EXPECT_EQ(++host::applicationState<Second>(desc).count, 6);  // an ended one has none of its own any more
    endSession();
    EXPECT_EQ(endings, (std::vector<std::string>{"second, at 2", "second, at 6", "first"}));
    EXPECT_EQ(host::sessionState<Second>().count, 0);
    host::Session next;
    EXPECT_EQ(endings.size(), 5u);
    EXPECT_EQ(host::sessionState<Second>().count, 0);
}

TEST_F(Applications, EndOnlyWhenNoCallIsInsideOfThemAnyMore) {
    endings.clear();
    MdlDesc* outer = application("outer");
    asApplication("outer", [&] {
        host::letGoAtEnd<noteEnding>(outer);
        asApplication("inner", [&] {
            host::letGoAtEnd<noteEnding>(application("inner"));
            mdlSystem_exit(7, 1);
        });
        EXPECT_EQ(mdlSystem_findMdlDesc("inner"), nullptr);
        EXPECT_EQ(endings.size(), 1u);
        mdlSystem_exit(8, 0);
        asApplication("other", [&] { session().endApplication(outer); });
        EXPECT_EQ(mdlSystem_findMdlDesc("outer"), outer);
    });
    EXPECT_EQ(mdlSystem_findMdlDesc("outer"), nullptr);
    EXPECT_EQ(endings, (std::vector<std::string>{"own turn", "own turn"}));
    EXPECT_EQ(session().exitStatus(), 7);
}

TEST_F(Applications, AnExitInMainEndsItAndAStatusDoesNot) {
    session().startApplication("gone", [](int, char**) { return mdlSystem_exit(0, 1), 0; });
    session().startApplication("bad", [](int, char**) { return 3; });
    EXPECT_EQ(mdlSystem_findMdlDesc("gone"), nullptr);
    EXPECT_NE(mdlSystem_findMdlDesc("bad"), nullptr);
    EXPECT_EQ(session().exitStatus(), 3);
}

TEST_F(Applications, ANotedFailureIsTheStatusOfASessionThatEndedWellOtherwise) {
    mdlSystem_noteFailure();
    EXPECT_EQ(session().exitStatus(), 1);
    session().startApplication("bad", [](int, char**) { return 3; });
    EXPECT_EQ(session().exitStatus(), 3);
}

TEST_F(Applications, TheTurnComesBackWhenACallThrows) {
    asApplication("outer", [&] {
        void (*const fails)() = [] { throw std::runtime_error("the disk is wet"); };
        EXPECT_EQ(dlmSystem_callAnyFunction("", application("inner"), reinterpret_cast<void*>(fails)), MDL_ERROR);
        EXPECT_EQ(mdlSystem_getCurrMdlDesc(), application("outer"));
        void (*const throwsNumber)() = [] { throw 7; };
        dlmSystem_callAnyFunction("", nullptr, reinterpret_cast<void*>(throwsNumber));
    });
    EXPECT_EQ(mdlSystem_getCurrMdlDesc(), nullptr);
    ASSERT_EQ(front().messages.size(), 2u);
    EXPECT_EQ(front().messages[1].brief, "A value of the type int was thrown, and nobody in the application caught it");
    EXPECT_EQ(front().messages[0].brief, "the disk is wet");
}

TEST_F(Applications, SignaturesPassEachArgumentInItsPlace) {
    int32_t (*const mixed)(double, void*, int32_t, double, const char*) = [](double a, void* p, int32_t i, double b,
                                                                             const char* s) {
        *static_cast<double*>(p) = a * b;
        return i + (s[0] - '0');
    };
    double product = 0.0;
    EXPECT_EQ(dlmSystem_callMdlFunction("DPIDP", nullptr, reinterpret_cast<void*>(mixed), 2.5, &product, -40, 4.0, "7"),
              -33);
    EXPECT_EQ(product, 10.0);

    using Ten = double[16];
    static Ten got;
    void (*const many)(double, double, double, double, double, double, double, double, double, double, double, double,
                       double, double, double, double) = [](double a, double b, double c, double d, double e, double f,
                                                            double g, double h, double i, double j, double k, double l,
                                                            double m, double n, double o, double p) {
        const Ten all = {a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p};
        std::copy(std::begin(all), std::end(all), got);
    };
    dlmSystem_callAnyFunction("DDDDDDDDDDDDDDDD", nullptr, reinterpret_cast<void*>(many), 1., 2., 3., 4., 5., 6., 7.,
                              8., 9., 10., 11., 12., 13., 14., 15., 16.);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(got[i], i + 1.0);
}

TEST_F(Applications, BadCallsAreRefusedBeforeTheyHappen) {
    void* function = reinterpret_cast<void*>(currentNumber);
    for (const char* signature : {"X", "p", "II ", "IIIIIIIIIIIIIIIII"}) {
        EXPECT_EQ(dlmSystem_callAnyFunction(signature, nullptr, function, 1, 2, 3), MDL_ERROR) << signature;
    }
    EXPECT_EQ(dlmSystem_callAnyFunction("", nullptr, nullptr), MDL_ERROR);
    EXPECT_EQ(dlmSystem_callAnyFunction(nullptr, nullptr, function), MDL_ERROR);
}

std::vector<std::string> events;

void firstHeard(char* name, int state) {
    events.push_back(std::to_string(currentNumber()) + name + std::to_string(state));
}

TEST_F(Applications, EachHearsOfANewDesignFileInItsOwnTurn) {
    events.clear();
    void* heard = reinterpret_cast<void*>(firstHeard);
    for (const char* name : {"a", "b", "c"}) {
        asApplication(name,
                      [&] { EXPECT_EQ(mdlSystem_setFunction(MDL_FUNCTION_NEW_DESIGN_FILE, heard), MDL_SUCCESS); });
    }
    asApplication("b", [] { mdlSystem_setFunction(MDL_FUNCTION_NEW_DESIGN_FILE, nullptr); });
    host::fireNewDesignFile("x.mcd", 1);
    EXPECT_EQ(events, (std::vector<std::string>{"1x.mcd1", "3x.mcd1"}));
    EXPECT_EQ(mdlSystem_setFunction(MDL_FUNCTION_NEW_DESIGN_FILE, heard), MDL_ERROR) << "nobody's turn";
}

}  // namespace
