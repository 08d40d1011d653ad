// Text files, line by line.
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/files/streams.h"
#include "mchost/mdl/files.h"

// Reading goes through a window of its own on the file, so that a line is found with one search and copied once.
struct MdlTextFile {
    FILE* stream;
    dev_t device = 0;  // with the number, what tells a file of the system from all others
    ino_t number = 0;
    size_t windowSize = 0;
    std::vector<char> window;
    size_t begin = 0;  // what is left to read: [begin, end)
    size_t end = 0;
    size_t nul = 0;         // the first NUL that is left to read; `end` when there is none
    bool begun = false;     // what may stand in front of the text has been looked at
    bool drained = false;   // the stream has nothing more
    bool openLine = false;  // the last piece didn't end its line
    bool atEnd = false;
    int readError = 0;
    int writeError = 0;
    int lastLength = 0;
};

namespace host {

namespace {

constexpr size_t largestWindow = 65536, smallestWindow = 64;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string_view rest(const MdlTextFile& file) {
    return {file.window.data() + file.begin, file.end - file.begin};
}

size_t findNul(const MdlTextFile& file, size_t from) {
    const size_t at = std::string_view(file.window.data() + from, file.end - from).find('\0');
    return at == std::string_view::npos ? file.end : from + at;
}

void refill(MdlTextFile& file) {
    std::memmove(file.window.data(), file.window.data() + file.begin, file.end - file.begin);
    file.end -= std::exchange(file.begin, 0);
    errno = 0;
    const size_t count = std::fread(file.window.data() + file.end, 1, file.window.size() - file.end, file.stream);
    file.end += count;
    file.nul = findNul(file, file.begin);
    file.drained = count == 0;
    if (count == 0 && std::ferror(file.stream)) file.readError = errno == 0 ? EIO : errno;
}

// A stream that memory is lacking for can't be read on.
void enlarge(MdlTextFile& file, size_t size) {
    try {
        file.window.resize(size);
    } catch (const std::bad_alloc&) {
        file.readError = ENOMEM;
        throw;
    }
}

// Brings at least `count` bytes into the window, or all that there are.
void require(MdlTextFile& file, size_t count) {
    if (file.window.size() < count) enlarge(file, std::max(count, file.windowSize));
    while (file.end - file.begin < count && !file.drained) refill(file);
}

// A file's first bytes may be a mark that isn't text.
void skipByteOrderMark(MdlTextFile& file) {
    if (file.begun) return;
    file.begun = true;
    require(file, byteOrderMark.size());
    if (rest(file).starts_with(byteOrderMark)) file.begin += byteOrderMark.size();
}

// Moves behind the line feed that ends the line.
void skipLine(MdlTextFile& file) {
    for (;;) {
        const size_t feed = rest(file).find('\n');
        if (feed != std::string_view::npos) {
            file.begin += feed + 1;
            return;
        }
        file.begin = file.end;
        require(file, 1);
        if (file.begin == file.end) return;
    }
}

// What lies ahead: the text of the line as far as it is looked at, and whether its end is seen.
struct Ahead {
    size_t length;   // of the text without its line end
    size_t lineEnd;  // bytes of the line end: 0 at the end of the file
    bool complete;
};

Ahead lookAhead(MdlTextFile& file, size_t space) {
    require(file, space + 2);
    const std::string_view text = rest(file).substr(0, space + 2);
    const auto* feed = static_cast<const char*>(std::memchr(text.data(), '\n', text.size()));
    if (!feed) {
        const bool all = file.drained && text.size() == file.end - file.begin;
        return {text.size(), 0, all};
    }
    const auto length = static_cast<size_t>(feed - text.data());
    const bool carriageReturn = length > 0 && text[length - 1] == '\r';
    return {length - (carriageReturn ? 1 : 0), carriageReturn ? size_t{2} : size_t{1}, true};
}

char* finish(MdlTextFile& file, char* buffer, size_t length, bool newline) {
    if (newline) buffer[length++] = '\n';
    buffer[length] = '\0';
    file.lastLength = static_cast<int>(length);
    return buffer;
}

// The next piece of at most `space` bytes.
char* nextPiece(MdlTextFile& file, char* buffer, size_t space, bool keepNewline) {
    skipByteOrderMark(file);
    const Ahead ahead = lookAhead(file, space);
    if (file.begin == file.end && !(file.openLine && keepNewline)) {
        file.atEnd = file.readError == 0;
        return nullptr;
    }
    const bool fits = ahead.complete && ahead.length + (keepNewline ? 1 : 0) <= space;
    const size_t length = std::min(ahead.length, space);
    const char* text = file.window.data() + file.begin;
    if (length > 0) std::memcpy(buffer, text, length);
    if (file.nul < file.begin + length) {
        const size_t shortened = file.nul - file.begin;
        skipLine(file);
        file.nul = findNul(file, file.begin);
        file.openLine = false;
        return finish(file, buffer, shortened, keepNewline);
    }
    file.begin += length + (fits ? ahead.lineEnd : 0);
    file.openLine = !fits;
    if (fits && ahead.lineEnd == 0) file.atEnd = true;
    return finish(file, buffer, length, fits && keepNewline);
}

// Takes what the system tells of the file. A small one needs no large window: a chain of includes has many open.
void identify(MdlTextFile& file) {
    struct stat status {};
    file.windowSize = largestWindow;
    if (fstat(fileno(file.stream), &status) != 0) return;
    file.device = status.st_dev;
    file.number = status.st_ino;
    if (!S_ISREG(status.st_mode)) return;
    const auto size = static_cast<size_t>(std::max<off_t>(status.st_size, 0));
    file.windowSize = std::clamp(size + 1, smallestWindow, largestWindow);
}

int closeAndFree(MdlTextFile* file) {
    const std::unique_ptr<MdlTextFile> owner(file);
    const int error = closeStream(file->stream);
    return file->writeError != 0 ? file->writeError : error;
}

}  // namespace

}  // namespace host

using namespace host;

MdlTextFile* mdlTextFile_open(const char* name, int mode) noexcept {
    return guarded<MdlTextFile*>(nullptr, [&]() -> MdlTextFile* {
        if (mode < MDL_TEXT_READ || mode > MDL_TEXT_APPEND) return nullptr;
        auto file = std::make_unique<MdlTextFile>();
        file->stream = openStream(name, mode == MDL_TEXT_READ ? "rb" : mode == MDL_TEXT_WRITE ? "wb" : "ab");
        if (!file->stream) return nullptr;
        if (mode == MDL_TEXT_READ) std::setvbuf(file->stream, nullptr, _IONBF, 0);
        identify(*file);
        return file.release();
    });
}

int mdlTextFile_close(MdlTextFile* file) noexcept {
    return guarded<int>(MDL_ERROR, [&] { return !file ? int{MDL_ERROR} : closeAndFree(file); });
}

char* mdlTextFile_getString(char* buffer, int size, MdlTextFile* file, int keepNewline) noexcept {
    return guarded<char*>(nullptr, [&]() -> char* {
        if (!buffer || size < 2 || !file) return nullptr;
        return nextPiece(*file, buffer, static_cast<size_t>(size) - 1, keepNewline != 0);
    });
}

int mdlTextFile_lastLength(const MdlTextFile* file) noexcept {
    return !file ? 0 : file->lastLength;
}

int mdlTextFile_putString(const char* text, MdlTextFile* file, int addNewline) noexcept {
    if (!text || !file) return MDL_ERROR;
    errno = 0;
    const bool good = std::fputs(text, file->stream) >= 0 && (addNewline == 0 || std::fputc('\n', file->stream) != EOF);
    if (!good && file->writeError == 0) file->writeError = errno == 0 ? EIO : errno;
    return good ? MDL_SUCCESS : MDL_ERROR;
}

void mdlTextFile_rewind(MdlTextFile* file) noexcept {
    if (!file) return;
    std::rewind(file->stream);
    *file = MdlTextFile{.stream = file->stream,
                        .device = file->device,
                        .number = file->number,
                        .windowSize = file->windowSize,
                        .window = std::move(file->window),
                        .writeError = file->writeError};
}

int mdlTextFile_isSame(const MdlTextFile* file, const MdlTextFile* other) noexcept {
    if (!file || !other) return 0;
    return file->device == other->device && file->number == other->number ? 1 : 0;
}

int mdlTextFile_eof(const MdlTextFile* file) noexcept {
    return file != nullptr && file->atEnd ? 1 : 0;
}

int mdlTextFile_error(const MdlTextFile* file) noexcept {
    return !file ? 0 : file->readError;
}
