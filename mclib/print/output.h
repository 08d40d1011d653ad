// The file of a print job, and how its lines are put together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "mclib/print/letters.h"
#include "mclib/print/numbers.h"

namespace mc {

inline char* put(char* p, std::string_view text) {
    return p + text.copy(p, text.size());
}

// A text file that is put together in a block, which goes to the stream whenever it is full. Zero-filled it is closed;
// what is drawn then must not come here.
class PrintOutput {
  public:
    // Room that line() gives: for six numbers, or for a text of 255 characters with its numbers.
    static constexpr size_t lineRoom = 2560;
    static_assert(lineRoom > 6 * numberRoom + 256);

    // False, with a line on the console that begins with the driver's name, when the file can't be opened. The name
    // must be a literal. Once in its life.
    bool open(const char* driver, const char* fileName);
    // Writes what waits and closes the file. A line on the console names a file that couldn't be stored; another one
    // tells which letters of the job the device, a literal, couldn't show, and what brings them (a sentence, or empty).
    void close(const char* device, const char* remedy = "");
    // Looks for letters of a text that the device doesn't show.
    void look(std::string_view text, const ShownLetters& shown) {
        for (const char c : text)
            if (!shown[static_cast<unsigned char>(c)]) notShown[static_cast<unsigned char>(c)] = someNotShown = true;
    }
    // MCLIB_SUCCESS or MCLIB_ERROR: was the file opened, and all written so far?
    int32_t status() const;
    const char* name() const { return fileName; }  // cut at 255 characters

    // Room for one line at the end of the block. What is written there counts from taken() on.
    char* line() { return roomAt(end); }
    // The same behind p, which is the end of the block: the block is written first when it is nearly full.
    char* roomAt(char* p) {
        if (p <= block + sizeof block - lineRoom) return p;
        taken(p);
        flush();
        return end;
    }
    void taken(char* p) { end = p; }
    // A text of any length.
    void write(std::string_view text) {
        for (; text.size() > lineRoom; text.remove_prefix(lineRoom)) taken(put(line(), text.substr(0, lineRoom)));
        taken(put(line(), text));
    }
    void repeat(char c, size_t count);

  private:
    void tellNotShown(const char* device, const char* remedy) const;
    void flush();
    void writeBytes(std::string_view bytes);

    FILE* stream;
    bool failed, someNotShown;
    ShownLetters notShown;
    const char* driver;
    char fileName[256];
    char* end;  // of what waits in the block
    char block[size_t{1} << 16];
};

}  // namespace mc
