// Finding 100 blocks of application data among 100,000 elements, against a bare loop that looks at the head of each
// element where it lies in memory. Prints the ratio of one run: the least CPU time of all repetitions.
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/race.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mclib/project/application_data.h"

namespace {

constexpr int elementCount = 100'000;
constexpr int blockCount = 100;
constexpr int applicationId = 101;

// All elements one behind the other, as they lie in the file.
struct Elements {
    std::vector<std::byte> bytes;
    std::vector<size_t> offsets;

    void append(const MSElementBuffer* element) {
        offsets.push_back(bytes.size());
        const auto* first = reinterpret_cast<const std::byte*>(element);
        bytes.insert(bytes.end(), first, first + (mdlElement_bytes(element) + 7) / 8 * 8);
    }
};

class OpenFile {
  public:
    OpenFile() : path_(std::filesystem::temp_directory_path() / ("bench" + std::to_string(getpid()) + ".mcd")) {
        if (mdlSystem_createDesignFile(path_.c_str(), 0) != 0 || mdlSystem_newDesignFile(path_.c_str(), 0) != 0)
            std::abort();
    }
    ~OpenFile() {
        mdlSystem_closeDesignFile();
        std::filesystem::remove(path_);
    }

  private:
    std::filesystem::path path_;
};

void fill(Elements& elements) {
    static MSElementBuffer element;
    char payload[200] = {};
    for (int i = 0; i < elementCount; ++i) {
        const Point3d points[] = {{i * 1.0, 0, 0}, {i * 1.0, 100, 0}};
        mdlLine_create(&element, nullptr, points);
        if (i % (elementCount / blockCount) == 0)
            mclib66Elem_saveData(&element, applicationId, 3, payload, sizeof payload);
        if (mdlElement_add(&element) == 0) std::abort();
        elements.append(&element);
    }
}

int countBare(const Elements& elements) {
    int found = 0;
    for (const size_t offset : elements.offsets) {
        const auto* element = reinterpret_cast<const MSElementBuffer*>(&elements.bytes[offset]);
        if (element->head.type != MDL_APPLICATION_DATA || element->head.level != 20) continue;
        int16_t ids[2];
        std::memcpy(ids, element->bytes + 32, sizeof ids);
        found += ids[0] == 157 && ids[1] == applicationId;
    }
    return found;
}

int countScanned() {
    const auto visit = [](void*, int32_t, MSElementBuffer*, FilePos, int32_t, void*, int32_t) { return 0; };
    return mclib66Elem_scanDataFromFileExtended(nullptr, applicationId, nullptr, visit, 1);
}

void applicationData(benchmark::State& state) {
    const OpenFile file;
    Elements elements;
    fill(elements);
    constexpr int rounds = 20;
    int found = 0;
    race(
        state,
        [&] {
            for (int i = 0; i < rounds; ++i) found += countBare(elements);
        },
        [&] {
            for (int i = 0; i < rounds; ++i) found -= countScanned();
        });
    if (found != 0) state.SkipWithError("the two found different blocks");
}
BENCHMARK(applicationData)->Iterations(50)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
