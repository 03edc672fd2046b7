// SPDX-License-Identifier: MIT
#include "bench/glb_builder.h"

#include <algorithm>
#include <cstddef>

#include "base/file.h"
#include "base/text.h"
#include "gltf/glb.h"

namespace zr::bench {
namespace {

// Bounds are exact: %.9g reads back as the same float.
std::string Number(float value) {
    return Short(static_cast<double>(value), 9);
}

std::string Bounds(std::span<const float> values, std::size_t width) {
    std::string low, high;
    for (std::size_t i = 0; i < width; ++i) {
        float least = values[i], greatest = values[i];
        for (std::size_t at = i; at < values.size(); at += width) {
            least = std::min(least, values[at]);
            greatest = std::max(greatest, values[at]);
        }
        const char* separator = i == 0 ? "" : ",";
        low += Join(separator, Number(least));
        high += Join(separator, Number(greatest));
    }
    return Join(R"(,"min":[)", low, R"(],"max":[)", high, "]");
}

}  // namespace

std::size_t GlbBuilder::Add(const char* collection, const std::string& element) {
    Collection& to = m_collections[collection];
    if (to.count != 0) to.elements += ',';
    to.elements += element;
    return to.count++;
}

void GlbBuilder::AddRoot(std::size_t node) {
    m_roots += Join(m_roots.empty() ? "" : ",", node);
}

std::size_t GlbBuilder::AddView(const void* data, std::size_t size) {
    const std::size_t offset = m_bin.size();
    m_bin.append(static_cast<const char*>(data), size);
    m_bin.append((4 - size % 4) % 4, '\0');
    return Add("bufferViews", Join(R"({"buffer":0,"byteOffset":)", offset, R"(,"byteLength":)", size, "}"));
}

std::size_t GlbBuilder::AddFloats(const char* type, std::span<const float> values, bool bounds) {
    const std::size_t width = type[0] == 'S' ? 1 : static_cast<std::size_t>(type[3] - '0');
    const std::size_t view = AddView(values.data(), values.size_bytes());
    return Add("accessors",
               Join(R"({"bufferView":)", view, R"(,"componentType":5126,"count":)", values.size() / width,
                    R"(,"type":")", type, "\"", bounds || width == 1 ? Bounds(values, width) : "", "}"));
}

std::size_t GlbBuilder::AddIndices(std::span<const std::uint16_t> values) {
    const std::size_t view = AddView(values.data(), values.size_bytes());
    return Add("accessors", Join(R"({"bufferView":)", view, R"(,"componentType":5123,"count":)",
                                 values.size(), R"(,"type":"SCALAR"})"));
}

void GlbBuilder::Write(const std::filesystem::path& file) const {
    std::string json = R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[)" + m_roots + "]}]";
    for (const auto& [name, collection] : m_collections)
        json += Join(",\"", name, "\":[", collection.elements, "]");
    json += Join(R"(,"buffers":[{"byteLength":)", m_bin.size(), "}]}");
    const Bytes bin = BytesOf(m_bin);
    FileTransaction files;
    OutputFile& output = files.Create(file);
    gltf::WriteGlb(output, PathToUtf8(file), [&] { output.Write(json); }, std::span(&bin, 1), {});
    files.Commit();
}

}  // namespace zr::bench
