// SPDX-License-Identifier: MIT
#include <array>
#include <bit>
#include <cmath>

#include "app/operations/text/text_file.h"
#include "app/operations/text/text_format_writers.h"

namespace zr {
namespace {

using Point = TextGeometry::Point;

Point NormalOf(const Point& a, const Point& b, const Point& c) {
    const std::array<double, 3> u = {double{b.x} - a.x, double{b.y} - a.y, double{b.z} - a.z};
    const std::array<double, 3> v = {double{c.x} - a.x, double{c.y} - a.y, double{c.z} - a.z};
    const double x = u[1] * v[2] - u[2] * v[1];
    const double y = u[2] * v[0] - u[0] * v[2];
    const double z = u[0] * v[1] - u[1] * v[0];
    const double length = std::hypot(x, y, z);
    if (!(length > 0)) return {};
    return {static_cast<float>(x / length), static_cast<float>(y / length), static_cast<float>(z / length)};
}

// Little-endian on any machine.
void Append(std::string& bytes, std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift & 0xFF);
}
void Append(std::string& bytes, const Point& p) {
    for (const float value : {p.x, p.y, p.z}) Append(bytes, std::bit_cast<std::uint32_t>(value));
}

}  // namespace

void WriteObj(const TextGeometry& geometry, const std::filesystem::path& target, FileTransaction& files) {
    TextFile obj(target, files);
    for (const Point& p : geometry.points) {
        obj << "v " << p.x << " " << p.y << " " << p.z << "\n";
        obj.Pass();
    }
    for (const LetterTriangle& t : geometry.triangles) {
        obj << "f " << t.i0 + 1 << " " << t.i1 + 1 << " " << t.i2 + 1 << "\n";
        obj.Pass();
    }
    obj.Finish();
}

// The binary form: a header of 80 bytes, the number of triangles, and 50 bytes per triangle.
void WriteStl(const TextGeometry& geometry, const std::filesystem::path& target, FileTransaction& files) {
    constexpr std::size_t kHeaderSize = 80;
    TextFile stl(target, files);
    std::string bytes = "text";
    bytes.resize(kHeaderSize, ' ');
    Append(bytes, static_cast<std::uint32_t>(geometry.triangles.size()));
    stl << bytes;
    for (const LetterTriangle& t : geometry.triangles) {
        const auto corner = [&](int i) { return geometry.points[static_cast<std::size_t>(i)]; };
        const std::array corners = {corner(t.i0), corner(t.i1), corner(t.i2)};
        bytes.clear();
        Append(bytes, NormalOf(corners[0], corners[1], corners[2]));
        for (const Point& p : corners) Append(bytes, p);
        bytes.append(2, '\0');
        stl << bytes;
        stl.Pass();
    }
    stl.Finish();
}

}  // namespace zr
