// Near points must give the pixels of the plain steps; points from anywhere must only stay within the bitmap.
#include "mclib/print/raster.h"

#include <vector>

#include "bytes.h"
#include "tests/mclib/print/raster_steps.h"

namespace {

struct Scene {
    bool filled, near;
    int mode, size[2], origin[2];
    std::vector<int> points;
    std::vector<uint8_t> bytes;
};

Scene sceneOf(Bytes input) {
    Scene scene{};
    const auto flags = input.take<uint8_t>();
    scene.filled = flags & 1;
    scene.near = flags & 0xF2;  // most are: far ones take their time
    scene.mode = flags >> 2 & 1;
    for (int& n : scene.size) n = input.take<int16_t>();
    scene.bytes.assign(std::min<size_t>(input.take<uint16_t>(), 9000), flags & 8 ? 0xFF : 0);
    const auto coordinate = [&] { return scene.near ? input.take<int16_t>() / 32 : input.take<int32_t>(); };
    for (int& n : scene.origin) n = coordinate();
    const size_t most = scene.near ? 40 : 400;  // the plain steps are slow
    while (!input.empty() && scene.points.size() < most) scene.points.push_back(coordinate());
    if (scene.points.size() % 2) scene.points.pop_back();
    return scene;
}

void requirePlainSteps(const Scene& scene, const std::vector<uint8_t>& before, int lines) {
    raster_steps::Target target{before, scene.size[0], scene.size[1], scene.mode == 1};
    if (scene.filled) {
        raster_steps::fill(target, scene.points, scene.origin);
    } else {
        require(lines == raster_steps::lines(target, scene.points, scene.origin));
    }
    require(target.bytes == scene.bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Scene scene = sceneOf({data, size});
    const std::vector<uint8_t> before = scene.bytes;
    const int count = static_cast<int>(scene.points.size() / 2), byteCount = static_cast<int>(scene.bytes.size());
    int lines = 0;
    if (scene.filled) {
        mclibRaster_fillShape(scene.points.data(), count, scene.origin, byteCount, scene.size, scene.bytes.data(),
                              scene.mode);
    } else {
        lines = mclibRaster_drawPoints(scene.points.data(), scene.origin, count, byteCount, scene.size,
                                       scene.bytes.data(), scene.mode);
    }
    if (scene.near) requirePlainSteps(scene, before, lines);
    return 0;
}
