// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>

namespace zr::compare {

struct Vec3 {
    double x = 0, y = 0, z = 0;

    friend Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
    friend Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
    friend Vec3 operator*(Vec3 a, double k) { return {a.x * k, a.y * k, a.z * k}; }
};

inline double Dot(Vec3 a, Vec3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline Vec3 Cross(Vec3 a, Vec3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline double Length(Vec3 a) {
    return std::sqrt(Dot(a, a));
}

// The vector scaled to length 1; the zero vector unchanged.
inline Vec3 Unit(Vec3 a) {
    const double length = Length(a);
    return length > 0 ? a * (1 / length) : a;
}

// An affine transform, given by the images of the axes and the origin.
struct Affine {
    Vec3 x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1}, origin;

    Vec3 Direction(Vec3 d) const { return x * d.x + y * d.y + z * d.z; }
    Vec3 Point(Vec3 p) const { return Direction(p) + origin; }
    // Transforms a surface normal; the result is not of unit length. A mirroring transform flips it.
    Vec3 Normal(Vec3 n) const { return Cross(y, z) * n.x + Cross(z, x) * n.y + Cross(x, y) * n.z; }
};

// First inner, then outer.
inline Affine operator*(const Affine& outer, const Affine& inner) {
    return {outer.Direction(inner.x), outer.Direction(inner.y), outer.Direction(inner.z),
            outer.Point(inner.origin)};
}

// From 16 numbers in column-major order; the bottom row is taken to be 0 0 0 1.
template <typename Number>
Affine AffineOf(std::span<const Number> m) {
    const auto column = [&](std::size_t i) {
        return Vec3{static_cast<double>(m[4 * i]), static_cast<double>(m[4 * i + 1]),
                    static_cast<double>(m[4 * i + 2])};
    };
    return {column(0), column(1), column(2), column(3)};
}

// Scale, then rotation (x, y, z, w; normalized on use), then translation.
struct Trs {
    std::array<double, 3> translation{0, 0, 0};
    std::array<double, 4> rotation{0, 0, 0, 1};
    std::array<double, 3> scale{1, 1, 1};

    Affine Matrix() const {
        auto [qx, qy, qz, qw] = rotation;
        const double norm = std::sqrt(qx * qx + qy * qy + qz * qz + qw * qw);
        if (norm > 0) qx /= norm, qy /= norm, qz /= norm, qw /= norm;
        const Vec3 x{1 - 2 * (qy * qy + qz * qz), 2 * (qx * qy + qz * qw), 2 * (qx * qz - qy * qw)};
        const Vec3 y{2 * (qx * qy - qz * qw), 1 - 2 * (qx * qx + qz * qz), 2 * (qy * qz + qx * qw)};
        const Vec3 z{2 * (qx * qz + qy * qw), 2 * (qy * qz - qx * qw), 1 - 2 * (qx * qx + qy * qy)};
        return {x * scale[0], y * scale[1], z * scale[2], {translation[0], translation[1], translation[2]}};
    }
};

}  // namespace zr::compare
