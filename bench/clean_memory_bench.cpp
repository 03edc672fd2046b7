// SPDX-License-Identifier: MIT
// Cleaning a file: the time, and the peak of memory against the file's size, with reading and writing the
// file alone as the floor. Every run is a process of its own, so that its peak is its own.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/text.h"
#include "gltf/document.h"

using zr::Join;

namespace {

namespace fs = std::filesystem;

// The data of a mesh: positions and normals of side x side vertices, and the triangles between them.
struct Grid {
    explicit Grid(std::size_t side) : vertices(side * side), indices(6 * (side - 1) * (side - 1)) {
        for (std::size_t y = 0; y + 1 < side; ++y) {
            for (std::size_t x = 0; x + 1 < side; ++x) {
                const std::size_t at = y * side + x;
                for (std::size_t corner : {at, at + 1, at + side, at + 1, at + side + 1, at + side})
                    order.push_back(static_cast<std::uint16_t>(corner));
            }
        }
        if (order.size() % 2 != 0) order.push_back(0);
    }
    std::size_t VectorBytes() const { return vertices * 12; }
    std::size_t Bytes() const { return 2 * VectorBytes() + order.size() * 2; }

    std::size_t vertices;
    std::size_t indices;
    std::vector<std::uint16_t> order;
};

void PutWords(std::ostream& out, std::initializer_list<std::size_t> words) {
    for (const std::size_t word : words) {
        for (unsigned shift = 0; shift < 32; shift += 8) out.put(static_cast<char>(word >> shift & 0xFF));
    }
}

std::string Json(std::size_t nodes, const Grid& grid, bool share) {
    const std::size_t meshes = nodes / 2, materials = nodes / 10;
    std::string roots, nodeList, meshList, materialList, accessors, views;
    const auto add = [](std::string& list, const std::string& element) {
        list += list.empty() ? "" : ",";
        list += element;
    };
    for (std::size_t i = 0; i < nodes; ++i) add(roots, std::to_string(i));
    for (std::size_t i = 0; i < nodes - meshes; ++i) add(nodeList, Join(R"({"name":"empty )", i, "\"}"));
    for (std::size_t i = 0; i < materials; ++i)
        add(materialList,
            Join(R"({"name":"material )", i, R"(","pbrMetallicRoughness":{"baseColorFactor":[0.)", i % 97,
                 ",0.", i / 97, ",0.5,1.0]}}"));
    for (std::size_t i = 0; i < meshes; ++i) {
        const std::size_t shape = i / 2, first = share ? 0 : 3 * i, offset = i * grid.Bytes();
        add(nodeList, Join(R"({"name":"mesh )", i, R"(","mesh":)", i, R"(,"translation":[)", shape % 1000,
                           ".0,0.25,", shape / 1000, ".0]}"));
        add(meshList, Join(R"({"primitives":[{"attributes":{"POSITION":)", first, R"(,"NORMAL":)", first + 1,
                           R"(},"indices":)", first + 2, R"(,"material":)", shape % materials, "}]}"));
        if (share && i != 0) continue;
        const auto view = [&](std::size_t at, std::size_t size, std::size_t count, const char* rest) {
            add(accessors, Join(R"({"bufferView":)", first + at, R"(,"count":)", count, ",", rest, "}"));
            add(views, Join(R"({"buffer":0,"byteOffset":)", offset + at * grid.VectorBytes(),
                            R"(,"byteLength":)", size, "}"));
        };
        view(0, grid.VectorBytes(), grid.vertices,
             R"("componentType":5126,"type":"VEC3","min":[0,0,0],"max":[1,1,100000])");
        view(1, grid.VectorBytes(), grid.vertices, R"("componentType":5126,"type":"VEC3")");
        view(2, grid.order.size() * 2, grid.indices, R"("componentType":5123,"type":"SCALAR")");
    }
    return Join(R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[)", roots, R"(]}],"nodes":[)",
                nodeList, R"(],"meshes":[)", meshList, R"(],"materials":[)", materialList,
                R"(],"accessors":[)", accessors, R"(],"bufferViews":[)", views,
                R"(],"buffers":[{"byteLength":)", (share ? 1 : meshes) * grid.Bytes(), "}]}");
}

// Half of the nodes show a mesh of their own, each twice at its place, in a tenth as many materials; the
// others are empty. share: all meshes stand on the same little data, so that the file is hardly more than its
// JSON text.
void WriteScene(const fs::path& file, std::size_t nodes, bool share) {
    const std::size_t side = share ? 2 : 16;
    const Grid grid(side);
    std::string json = Json(nodes, grid, share);
    json.append((4 - json.size() % 4) % 4, ' ');
    const std::size_t meshes = share ? 1 : nodes / 2;
    const std::size_t bin = meshes * grid.Bytes();
    std::ofstream out(file, std::ios::binary);
    PutWords(out, {0x46546C67, 2, 28 + json.size() + bin, json.size(), 0x4E4F534A});
    out << json;
    PutWords(out, {bin, 0x004E4942});
    std::vector<float> vectors(grid.vertices * 6);
    for (std::size_t mesh = 0; mesh < meshes; ++mesh) {
        for (std::size_t i = 0; i < grid.vertices; ++i) {
            vectors[3 * i] = static_cast<float>(i % side) / static_cast<float>(side);
            vectors[3 * i + 1] = static_cast<float>(i / side) / static_cast<float>(side);
            vectors[3 * i + 2] = static_cast<float>(mesh / 2);
            vectors[3 * (grid.vertices + i) + 2] = 1;
        }
        out.write(reinterpret_cast<const char*>(vectors.data()),
                  static_cast<std::streamsize>(vectors.size() * sizeof vectors[0]));
        out.write(reinterpret_cast<const char*>(grid.order.data()),
                  static_cast<std::streamsize>(grid.order.size() * sizeof grid.order[0]));
    }
}

// The peak of the memory of a process that does the work, in bytes; 0 when it failed.
template <typename Work>
double PeakOf(Work work) {
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(0);
    }
    int status = 0;
    rusage used{};
    wait4(child, &status, 0, &used);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? static_cast<double>(used.ru_maxrss) * 1024 : 0;
}

void Clean(const fs::path& in, const fs::path& out) {
    if (std::freopen("/dev/null", "w", stdout) != nullptr)
        execl(ZR_PROGRAM, "zr", "clean", in.c_str(), out.c_str(), nullptr);
    _exit(1);
}

void ReadAndWrite(const fs::path& in, const fs::path& out) {
    zr::gltf::Document::Load(in).Save(out);
}

void Run(benchmark::State& state, void (*work)(const fs::path&, const fs::path&), bool share) {
    const auto nodes = static_cast<std::size_t>(state.range(0));
    const fs::path in = fs::temp_directory_path() / Join("clean-bench-", getpid(), ".glb");
    const fs::path out = fs::path(in).replace_extension("out.glb");
    PeakOf([&] { WriteScene(in, nodes, share); });
    const auto size = static_cast<double>(fs::file_size(in));
    double peak = 0;
    for (auto _ : state) {
        peak = PeakOf([&] { work(in, out); });
        if (peak == 0) state.SkipWithError("the run failed");
    }
    state.counters["file MB"] = size / 1e6;
    state.counters["peak MB"] = peak / 1e6;
    state.counters["peak/file"] = peak / size;
    fs::remove(in);
    fs::remove(out);
}

void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(1000)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK_CAPTURE(Run, Clean, Clean, false)->Apply(Sizes);
BENCHMARK_CAPTURE(Run, CleanText, Clean, true)->Apply(Sizes);
BENCHMARK_CAPTURE(Run, Floor, ReadAndWrite, false)->Apply(Sizes);
BENCHMARK_CAPTURE(Run, FloorText, ReadAndWrite, true)->Apply(Sizes);

}  // namespace
