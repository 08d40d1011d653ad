// How the reader is opened, the calls to make with their delimiters, then a file and one that it may include. Calls
// start over until the file has ended. Texts are given blocks of exactly the bytes that the header tells.
#include "mclib/text/fii.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "bytes.h"
#include "folder.h"

namespace {

constexpr size_t textSize = 256;
constexpr int mostCalls = 400;

struct Call {
    uint8_t kind;
    std::string text;  // delimiters, a quote or a keyword
};

struct Scene {
    int bufferSize, lineSize;
    std::string separators, continuation, comment;
    bool ownSeparators;
    std::vector<Call> calls;
    std::string top;
};

Scene sceneOf(Bytes& input) {
    Scene scene{};
    const auto flags = input.take<uint8_t>();
    scene.ownSeparators = flags & 1;
    scene.bufferSize = flags & 2 ? 512 : input.take<int8_t>();
    scene.lineSize = flags & 4 ? 1024 : input.take<int16_t>();
    scene.separators = input.text();
    scene.continuation = flags & 8 ? "\\" : input.text();
    scene.comment = flags & 16 ? "#" : input.text();
    for (int count = input.take<uint8_t>() % 16; count > 0; --count) {
        const auto kind = input.take<uint8_t>();
        scene.calls.push_back({kind, input.text()});
    }
    return scene;
}

// ---- what always holds ----

void requireSound(const McFii& f) {
    if (!f.line) return;
    require(f.position >= f.line && f.position < f.line + f.lineSize);
    require(std::strlen(f.line) < static_cast<size_t>(f.lineSize));
    require(std::strlen(f.word) < textSize);
    require(std::isfinite(f.doubleValue));
}

// ---- calls ----

void readToken(McFii& f, char* (*read)(McFii*, const char*, char*), const std::string& text) {
    std::vector<char> dest(textSize, 'x');
    read(&f, text.c_str(), dest.data());
    require(std::strlen(dest.data()) < textSize);
}

void number(McFii& f, int (*is)(McFii*, const char*), const std::string& delimiters) {
    const char* const before = f.position;
    if (is(&f, delimiters.c_str()) != MCLIB_SUCCESS) require(f.position == before && f.error != FII_NONE);
}

void arrays(McFii& f) {
    std::vector<double> a(3), b(2), c(2);
    std::vector<int> whole(3);
    mclibFii_readNumeric(&f, 0, 3, 1, a.data(), 3, 2, whole.data(), 2, 3, b.data(), c.data(), -1);
}

void keyword(McFii& f, const std::string& text) {
    if (mclibFii_seekText(&f, text.c_str()) != MCLIB_SUCCESS) return;
    const char* const before = f.position;
    require(mclibFii_isText(&f, text.c_str()) == MCLIB_SUCCESS && f.position == before + text.size());
}

void restOfLine(McFii& f) {
    std::vector<char> dest(static_cast<size_t>(f.lineSize));
    mclibFii_getLine(&f, dest.data());
    require(std::strcmp(dest.data(), f.position) == 0);
}

void reports(McFii& f, const std::string& text) {
    std::vector<char> line(static_cast<size_t>(f.lineSize) + 15), copy(textSize), two(text.size() * 8);
    mclibFii_makeErr(&f, line.data());
    mclibFii_makeErr2(&f, two.data(), static_cast<int>(two.size()));
    int code = 0, lineNumber = 0, column = 0;
    mclibFii_formatErr(&f, &code, line.data());
    if (mclibFii_reportErr(&f, &code, &lineNumber, &column, copy.data()) != MCLIB_SUCCESS) return;
    require(code != FII_NONE && column >= 1 && lineNumber >= 0 && f.error == FII_NONE);
    require(std::strlen(copy.data()) < textSize);
}

using Operation = void (*)(McFii&, const std::string&);
constexpr Operation operations[] = {
    [](McFii& f, const std::string&) { mclibFii_readNewLine(&f); },
    [](McFii& f, const std::string& text) { number(f, mclibFii_isLong, text); },
    [](McFii& f, const std::string& text) { number(f, mclibFii_isDouble, text); },
    [](McFii& f, const std::string& text) { mclibFii_readLong(&f, text.c_str()); },
    [](McFii& f, const std::string& text) { require(std::isfinite(*mclibFii_readDoubleP(&f, text.c_str()))); },
    [](McFii& f, const std::string&) { arrays(f); },
    [](McFii& f, const std::string&) { mclibFii_readChar(&f); },
    [](McFii& f, const std::string&) {
        readToken(
            f, [](McFii* r, const char*, char* dest) { return mclibFii_readText(r, dest); }, "");
    },
    [](McFii& f, const std::string& text) { readToken(f, mclibFii_readString, text); },
    [](McFii& f, const std::string& text) { readToken(f, mclibFii_readSubString, text); },
    [](McFii& f, const std::string&) { restOfLine(f); },
    [](McFii& f, const std::string& text) { keyword(f, text); },
    [](McFii& f, const std::string& text) { reports(f, text); },
    [](McFii& f, const std::string&) { require(mclibFii_eol(&f) == (*f.position == '\0')); },
    [](McFii& f, const std::string& text) { (text.empty() ? mclibFii_packOff : mclibFii_packOn)(&f); },
    [](McFii& f, const std::string& text) {
        (text.empty() ? mclibFii_caseSensitiveOff : mclibFii_caseSensitiveOn)(&f);
    },
    [](McFii& f, const std::string&) { mclibFii_rewind(&f); },
};

void make(McFii& f, const Call& call) {
    operations[call.kind % std::size(operations)](f, call.text);
    requireSound(f);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Bytes input(data, size);
    const Scene scene = sceneOf(input);
    // The top file has a name that no file would guess.
    const std::string top = folder().write("a_top_file", input.text());
    std::string included = input.text();
    std::ranges::replace(included, '%', '5');  // it includes no more files, itself least of all
    folder().write("b", included);
    McFii f;
    const char* const separators = scene.ownSeparators ? scene.separators.c_str() : nullptr;
    if (mclibFii_openExtended(&f, top.c_str(), "r", scene.continuation.c_str(), scene.comment.c_str(), scene.bufferSize,
                              scene.lineSize, separators) != MCLIB_SUCCESS)
        return 0;
    requireSound(f);
    for (int calls = 0; calls < mostCalls && !mclibFii_eof(&f); ++calls) {
        mclibFii_readNewLine(&f);
        requireSound(f);
        for (const Call& call : scene.calls) make(f, call);
    }
    mclibFii_close(&f);
    for (const Call& call : scene.calls) {
        if (f.lineSize > 0) operations[call.kind % std::size(operations)](f, call.text);
    }
    return 0;
}
