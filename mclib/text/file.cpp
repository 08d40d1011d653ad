#include "mclib/text/file.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string_view>

#include "mchost/mdl/lists.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/win32.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/util.h"
#include "resources/ids.h"

namespace mc {

namespace {

// Messages of the error list.

constexpr int defaultBufferSize = 512;

struct OpenMode {
    std::string_view name;
    int hostMode;
};
constexpr auto openModes = std::to_array<OpenMode>({
    {"w", MDL_TEXT_WRITE},
    {"a", MDL_TEXT_APPEND},
    {"r", MDL_TEXT_READ},
});

struct IncludeKeyword {
    std::string_view text;
    bool mustExist;  // a missing file is reported
};
constexpr auto includeKeywords = std::to_array<IncludeKeyword>({
    {"%include", true},
    {"%if exist include", false},
});

template <typename T>
T* allocate(size_t bytes) {
    return static_cast<T*>(mclibMem_mallocRscErrorPrintf(bytes, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY));
}

void copyName(char (&out)[256], std::string_view name) {
    out[name.copy(out, sizeof out - 1)] = '\0';
}

McFile* cannotOpenFile(const char* what) {
    mc::showNotice(ids::errors::cantOpen, what);
    return nullptr;
}

// A stream in a new McFile without a buffer; null, silently, when the file can't be opened.
McFile* openStream(const char* name, int hostMode) {
    if (!name || std::strlen(name) >= sizeof McFile{}.name) return nullptr;
    MdlTextFile* stream = mdlTextFile_open(name, hostMode);
    if (!stream) return nullptr;
    McFile* f = allocate<McFile>(sizeof(McFile));
    if (!f) {
        mdlTextFile_close(stream);
        return nullptr;
    }
    f->stream = stream;
    f->last = f;
    copyName(f->name, name);
    return f;
}

int freeFile(McFile* f) {
    const int status = mdlTextFile_close(f->stream);
    if (status != MDL_SUCCESS) mc::showNotice(ids::errors::cantClose, f->name);
    if (!f->parent) dlmSystem_mdlFree(f->buffer);
    dlmSystem_mdlFree(f);
    return status;
}

// ---- includes ----

McFile* topOfChain(McFile* f) {
    while (f->parent) f = f->parent;
    return f;
}

McFile* endOfChain(McFile* f) {
    return topOfChain(f)->last;
}

// Closes the includes below a file of the chain of `top`.
void closeBelow(McFile* top, McFile* f) {
    while (top->last != f) {
        McFile* parent = top->last->parent;
        freeFile(top->last);
        parent->child = nullptr;
        top->last = parent;
    }
}

// Where an include's file lies: by its expanded name, as it stands, or beside the file that includes it. Empty when the
// path is too long.
void includePath(char (&path)[256], const McFile& parent, const char* name) {
    char* expanded = mdlSystem_expandCfgVar(name);
    const bool changed = expanded && std::strcmp(expanded, name) != 0;
    if (changed && std::strlen(expanded) < sizeof path) copyName(path, expanded);
    dlmSystem_mdlFree(expanded);
    if (changed || mdlFile_find(path, name, nullptr, nullptr) == MDL_SUCCESS) return;
    char device[256] = "", directory[256] = "";
    mdlFile_parseName(parent.name, device, directory, nullptr, nullptr);
    mdlFile_buildName(path, device, directory, name, nullptr);
}

// Whether the chain that ends with `last` reads this file already, by whatever name.
bool isInChain(const McFile* last, const MdlTextFile* stream) {
    while (last && !mdlTextFile_isSame(last->stream, stream)) last = last->parent;
    return last;
}

// The file of an include line; null, silently when it needn't be there, when it can't be opened or is open in the
// chain.
McFile* openIncluded(const McFile& parent, const char* name, bool mustExist) {
    char path[256] = "";
    includePath(path, parent, name);
    McFile* f = openStream(path, MDL_TEXT_READ);
    if (!f) return mustExist ? cannotOpenFile(*path ? path : name) : nullptr;
    if (!isInChain(&parent, f->stream)) return f;
    freeFile(f);
    if (mustExist) {
        mc::showNotice(ids::errors::includesItself, path, parent.name, parent.lineNumber);
    }
    return nullptr;
}

bool openInclude(McFile* top, McFile& parent, const char* name, bool mustExist) {
    McFile* f = openIncluded(parent, name, mustExist);
    if (!f) {
        if (mustExist && top->lostInclude == 0) top->lostInclude = top->lineNumber;
        return false;
    }
    f->isInclude = 1;
    f->continuationChar = parent.continuationChar;
    f->commentChar = parent.commentChar;
    f->bufferSize = parent.bufferSize;
    f->buffer = parent.buffer;
    f->parent = &parent;
    parent.child = top->last = f;
    return true;
}

// ---- physical lines ----

// A line, or the piece of one that the buffer holds: `length` characters without the line end.
struct Piece {
    char* text;
    size_t length;
    bool ended;     // it is the last piece of its line
    int endCounts;  // characters that the line end counts for: none in an include line, which loses it
};

enum class Include { none, opened, failed };

// Follows an include line. One that can't be followed becomes a comment, without blanks and line end.
Include followInclude(McFile* top, McFile& reader, Piece& piece) {
    if (piece.length == 0 || piece.text[0] != '%') return Include::none;
    for (const IncludeKeyword& keyword : includeKeywords) {
        if (!std::string_view(piece.text, piece.length).starts_with(keyword.text)) continue;
        piece.text[piece.length] = '\0';
        char* name = mclibUtil_removeSpaces(piece.text + keyword.text.size());
        if (openInclude(top, reader, name, keyword.mustExist)) return Include::opened;
        piece.text[0] = reader.commentChar;
        piece.endCounts = 0;
        piece.length = keyword.text.size() + std::strlen(name);
        return Include::failed;
    }
    return Include::none;
}

// The next line or piece. Only where a line begins an include line can stand.
bool nextPiece(McFile* f, Piece& piece) {
    McFile* const top = topOfChain(f);
    for (;;) {
        McFile* reader = top->last;
        piece.text = mdlTextFile_getString(reader->buffer, reader->bufferSize, reader->stream, 1);
        if (!piece.text) {
            if (!reader->isInclude || !mdlTextFile_eof(reader->stream)) return false;
            closeBelow(top, reader->parent);
            continue;
        }
        const bool begins = !reader->inLine;
        if (begins) ++reader->lineNumber;
        const auto length = static_cast<size_t>(mdlTextFile_lastLength(reader->stream));
        piece.ended = length > 0 && piece.text[length - 1] == '\n';
        piece.length = piece.ended ? length - 1 : length;
        piece.endCounts = piece.ended ? 1 : 0;
        reader->inLine = !piece.ended;
        if (!begins || followInclude(top, *reader, piece) != Include::opened) return true;
    }
}

// ---- logical lines ----

// The comment behind the `;` of a physical line, which may come in pieces.
class TrailingComment {
  public:
    // comment null: lines aren't cut, and keep their line end in the count of their characters.
    TrailingComment(char* comment, int32_t size) : text(comment), room(static_cast<size_t>(size)) {}

    void beginLine() {
        cut = false;
        length = 0;
        if (text) text[0] = '\0';
    }

    // The piece up to the comment; the rest is added to the comment.
    std::string_view split(const Piece& piece, bool firstPiece) {
        const std::string_view all(piece.text, piece.length);
        if (!text) return all;
        if (cut) {
            add(all);
            return {};
        }
        const size_t at = all.find(';');
        if (at == all.npos) return all;
        cut = true;
        ignored = firstPiece && at == 0;
        add(all.substr(at + 1));
        return all.substr(0, at);
    }

    bool splits() const { return text; }

  private:
    void add(std::string_view more) {
        if (ignored) return;
        length += more.copy(text + length, room - 1 - length);
        text[length] = '\0';
    }

    char* text;
    size_t room, length = 0;
    bool cut = false, ignored = false;
};

bool isCommentOrBlank(std::string_view line, char commentChar) {
    return line.empty() || line[0] == commentChar || line.find_first_not_of(' ') == line.npos;
}

// Length without the blanks at the end.
size_t visibleLength(std::string_view line) {
    size_t length = line.size();
    while (length > 0 && (line[length - 1] == ' ' || line[length - 1] == '\t')) --length;
    return length;
}

enum class Got { line, nothing, tooLong };

// Puts the next physical line, without comment and line end, into dest from `begin` on; `end` is where it ends.
Got physicalLine(std::span<char> dest, size_t begin, size_t& end, McFile* f, TrailingComment& comment) {
    Piece piece{};
    end = begin;
    for (bool first = true; first || !piece.ended; first = false) {
        if (!nextPiece(f, piece)) return Got::nothing;
        if (first) comment.beginLine();
        const std::string_view text = comment.split(piece, first);
        const size_t counted = text.size() + (comment.splits() ? 0 : piece.endCounts);
        if (counted + end >= dest.size()) {
            while (!piece.ended && nextPiece(f, piece)) comment.split(piece, false);
            return Got::tooLong;
        }
        end += text.copy(dest.data() + end, text.size());
    }
    return Got::line;
}

int failTooLong(McFile* f, size_t maxLength) {
    const McFile* reader = endOfChain(f);
    mc::showNotice(ids::errors::lineTooLong, static_cast<int>(maxLength), reader->name, reader->lineNumber);
    return -1;
}

int failUnreadable(McFile* f) {
    const McFile* reader = endOfChain(f);
    mc::showNotice(ids::errors::cantReadOn, reader->name, reader->lineNumber);
    return -1;
}

size_t roomOf(int maxLength) {
    return maxLength > 0 ? static_cast<size_t>(maxLength) : 0;
}

bool atEnd(McFile* f) {
    return !f->child && mdlTextFile_eof(f->stream);
}

// Each physical line is read behind the text that continued lines left in dest, and trimmed there.
int readLogicalLine(std::span<char> dest, McFile* f, TrailingComment&& comment) {
    if (dest.empty()) return failTooLong(f, 0);
    size_t total = 0;
    for (int lines = 1;; ++lines) {
        size_t end = 0;
        const Got got = physicalLine(dest, total, end, f, comment);
        if (got != Got::line) {
            dest[total] = '\0';
            if (got == Got::tooLong) return failTooLong(f, dest.size());
            return atEnd(f) ? 0 : failUnreadable(f);
        }
        const std::string_view line(dest.data() + total, end - total);
        if (isCommentOrBlank(line, f->commentChar)) continue;
        const size_t visible = visibleLength(line);
        const bool continues = visible > 0 && line[visible - 1] == f->continuationChar;
        total += visible;
        if (continues) {
            dest[total - 1] = ' ';
            continue;
        }
        dest[total] = '\0';
        return lines;
    }
}

}  // namespace

}  // namespace mc

using namespace mc;

McFile* mclibFile_open(const char* name, const char* mode) {
    return mclibFile_openExtended(name, mode, "\\", "#", defaultBufferSize);
}

McFile* mclibFile_openHWSpesific(const char* name, const char* mode) {
    return mclibFile_open(name, mode);
}

McFile* mclibFile_openExtended(const char* name, const char* mode, const char* continuation, const char* comment,
                               int bufferSize) {
    const auto known = std::ranges::find(openModes, std::string_view(mode ? mode : ""), &OpenMode::name);
    if (known == openModes.end()) return cannotOpenFile("Unknown file open mode");
    if (bufferSize < 2) return cannotOpenFile("File buffer under 2 bytes");
    McFile* f = openStream(name, known->hostMode);
    if (!f) return cannotOpenFile(name ? name : "");
    f->continuationChar = continuation ? continuation[0] : '\0';
    f->commentChar = comment ? comment[0] : '\0';
    f->bufferSize = bufferSize;
    f->buffer = allocate<char>(static_cast<size_t>(bufferSize));
    if (f->buffer) return f;
    mdlTextFile_close(f->stream);
    dlmSystem_mdlFree(f);
    return nullptr;
}

int mclibFile_close(McFile* f) {
    if (!f) return MCLIB_ERROR;
    McFile* const top = topOfChain(f);
    closeBelow(top, f);
    if (f->parent) {
        f->parent->child = nullptr;
        top->last = f->parent;
    }
    return freeFile(f);
}

void mclibFile_rewind(McFile* f) {
    closeBelow(topOfChain(f), f);
    mdlTextFile_rewind(f->stream);
    f->inLine = f->lineNumber = f->lostInclude = 0;
}

char* mclibFile_fgets(char*, int, McFile* f) {
    Piece piece;
    return nextPiece(f, piece) ? piece.text : nullptr;
}

int mclibFile_read(char* dest, McFile* f, int maxLength) {
    return readLogicalLine({dest, roomOf(maxLength)}, f, TrailingComment(nullptr, f->bufferSize));
}

int mclibFile_read2(char* dest, char* comment, McFile* f, int maxLength) {
    return readLogicalLine({dest, roomOf(maxLength)}, f, TrailingComment(comment, f->bufferSize));
}

int mclibFile_directoryExists(const char* path) {
    StringList* list = nullptr;
    if (mdlFileList_get(&list, path, MDL_ATTRIBUTE_DIRECTORY) != MDL_SUCCESS) return 0;
    const int found = mdlStringList_size(list) > 0;
    mdlStringList_destroy(list);
    return found;
}

int mclibFile_isReadOnly(const char* name) {
    ModelRef* model = nullptr;
    if (mdlWorkDgn_openFile(&model, name) != MDL_SUCCESS) return 0;
    const int readOnly = mdlModelRef_isReadOnly(model);
    mdlWorkDgn_closeFile(model);
    return readOnly;
}

int mclibFile_delete(const char* name) {
    return DeleteFileA(name);
}

char* mclibFile_GetShortPathName(const char* name) {
    static char shortName[256];
    shortName[0] = '\0';
    if (GetShortPathNameA(name, shortName, sizeof shortName) >= sizeof shortName) shortName[0] = '\0';
    return shortName;
}
