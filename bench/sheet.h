// What is drawn on a sheet to measure a print driver, and the files of both sides.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "mchost/mdl/types.h"

// Two print files in the temporary folder.
struct PrintFiles {
    std::filesystem::path folder = std::filesystem::temp_directory_path() / ("bench_print_" + std::to_string(getpid()));
    std::string peer = folder / "peer.out", ours = folder / "ours.out";

    PrintFiles() { std::filesystem::create_directory(folder); }
    ~PrintFiles() { std::filesystem::remove_all(folder); }

    static std::string read(const std::string& path) {
        std::ostringstream bytes;
        bytes << std::ifstream(path, std::ios::binary).rdbuf();
        return bytes.str();
    }
    bool same() const { return read(peer) == read(ours); }
};

constexpr int pointsOfEach = 4;

// Places on an A0 sheet, the same in each run.
inline std::vector<Point3d> randomPoints() {
    std::mt19937 random(2);
    std::uniform_real_distribution<double> x(0, 1189), y(0, 841);
    std::vector<Point3d> points(4096 + pointsOfEach);
    for (Point3d& p : points) p = {x(random), y(random), 0};
    return points;
}
inline const std::vector<Point3d> places = randomPoints();
// The points of a polyline; the first is also the place of a text.
inline const Point3d* pointsOf(int i) {
    return &places[static_cast<size_t>(i) % 4096];
}
