// SPDX-License-Identifier: MIT
#include "kernix/math/rotation.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kernix {

Rotation Rotation::From(const vl::Quaternion& q) {
    const double x = q.x, y = q.y, z = q.z, w = q.w;
    const double length = std::sqrt(x * x + y * y + z * z + w * w);
    if (!(length > 0) || !std::isfinite(length)) return {};
    return {x / length, y / length, z / length, w / length};
}

// The float nearest to pi means half a turn: w is exactly 0, as its sign would give the turn a direction.
Rotation Rotation::From(const vl::AngleAxis& a) {
    Rotation rotation = About(a.x, a.y, a.z, a.angle);
    if (std::fabs(a.angle) == std::numbers::pi_v<float>) rotation.w = 0;
    return rotation;
}

Rotation Rotation::About(double ax, double ay, double az, double angle) {
    const double length = std::sqrt(ax * ax + ay * ay + az * az);
    if (!(length > 0) || !std::isfinite(length) || !std::isfinite(angle)) return {};
    const double s = std::sin(angle / 2) / length;
    return {ax * s, ay * s, az * s, std::cos(angle / 2)};
}

// The largest of the four parts is computed first, so that none is divided by something small (S. W.
// Shepperd, "Quaternion from rotation matrix", 1978).
Rotation Rotation::FromRows(const double (&r)[3][3]) {
    const double trace = r[0][0] + r[1][1] + r[2][2];
    Rotation q;
    if (trace >= std::max({r[0][0], r[1][1], r[2][2]})) {
        const double s = 2 * std::sqrt(std::max(0.0, 1 + trace));
        q = {(r[1][2] - r[2][1]) / s, (r[2][0] - r[0][2]) / s, (r[0][1] - r[1][0]) / s, s / 4};
    } else if (r[0][0] >= r[1][1] && r[0][0] >= r[2][2]) {
        const double s = 2 * std::sqrt(std::max(0.0, 1 + r[0][0] - r[1][1] - r[2][2]));
        q = {s / 4, (r[0][1] + r[1][0]) / s, (r[2][0] + r[0][2]) / s, (r[1][2] - r[2][1]) / s};
    } else if (r[1][1] >= r[2][2]) {
        const double s = 2 * std::sqrt(std::max(0.0, 1 - r[0][0] + r[1][1] - r[2][2]));
        q = {(r[0][1] + r[1][0]) / s, s / 4, (r[1][2] + r[2][1]) / s, (r[2][0] - r[0][2]) / s};
    } else {
        const double s = 2 * std::sqrt(std::max(0.0, 1 - r[0][0] - r[1][1] + r[2][2]));
        q = {(r[2][0] + r[0][2]) / s, (r[1][2] + r[2][1]) / s, s / 4, (r[0][1] - r[1][0]) / s};
    }
    const double length = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
    if (!(length > 0)) return {};
    const double scale = (q.w < 0 ? -1 : 1) / length;
    return {q.x * scale, q.y * scale, q.z * scale, q.w * scale};
}

// On row vectors the product of matrices reads from left to right, that of quaternions from right to left.
Rotation Rotation::Times(const Rotation& n) const {
    return {n.w * x + n.x * w + n.y * z - n.z * y, n.w * y - n.x * z + n.y * w + n.z * x,
            n.w * z + n.x * y - n.y * x + n.z * w, n.w * w - n.x * x - n.y * y - n.z * z};
}

void Rotation::ToRows(double (&m)[4][4]) const {
    m[0][0] = 1 - 2 * (y * y + z * z);
    m[0][1] = 2 * (x * y + z * w);
    m[0][2] = 2 * (x * z - y * w);
    m[1][0] = 2 * (x * y - z * w);
    m[1][1] = 1 - 2 * (x * x + z * z);
    m[1][2] = 2 * (y * z + x * w);
    m[2][0] = 2 * (x * z + y * w);
    m[2][1] = 2 * (y * z - x * w);
    m[2][2] = 1 - 2 * (x * x + y * y);
}

vl::Quaternion Rotation::ToQuaternion() const {
    return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z), static_cast<float>(w)};
}

// The arc tangent is exact near 0 and near pi, where the arc cosine of w loses half of the digits.
vl::AngleAxis Rotation::ToAngleAxis() const {
    const double s = std::sqrt(x * x + y * y + z * z);
    if (!(s >= 1e-9)) return {};
    const double sign = w < 0 ? -1 : 1;
    return {static_cast<float>(sign * x / s), static_cast<float>(sign * y / s),
            static_cast<float>(sign * z / s), static_cast<float>(2 * std::atan2(s, std::fabs(w)))};
}

// K. Shoemake, "Animating rotation with quaternion curves", 1985.
Rotation Slerp(double s, const Rotation& a, const Rotation& b) {
    const double dot = a.Dot(b);
    const double cosine = std::min(std::fabs(dot), 1.0);
    double wa = 1 - s;
    double wb = s;
    if (cosine < 1 - 1e-9) {
        const double angle = std::acos(cosine);
        const double sine = std::sin(angle);
        wa = std::sin(wa * angle) / sine;
        wb = std::sin(wb * angle) / sine;
    }
    if (IsLongWay(dot)) wb = -wb;
    const Rotation sum{a.x * wa + b.x * wb, a.y * wa + b.y * wb, a.z * wa + b.z * wb, a.w * wa + b.w * wb};
    const double length = std::sqrt(sum.Dot(sum));
    return length > 0 ? Rotation{sum.x / length, sum.y / length, sum.z / length, sum.w / length} : a;
}

}  // namespace kernix

namespace vl {

using kernix::IsLongWay;
using kernix::Rotation;

Quaternion::Quaternion(const AngleAxis& rotation) {
    *this = Rotation::From(rotation).ToQuaternion();
}

Quaternion::Quaternion(const Matrix4<double>& m) {
    AffineParts parts;
    m.AffineDecompose(parts);
    *this = parts.q;
}

Quaternion::Quaternion(const Vector3<float>& r) {
    const double angle = std::sqrt(double{r.x} * r.x + double{r.y} * r.y + double{r.z} * r.z);
    *this = Rotation::About(r.x, r.y, r.z, angle).ToQuaternion();
}

Quaternion::Quaternion(float fraction, const Quaternion& a, const Quaternion& b, int) {
    *this = kernix::Slerp(double{fraction}, Rotation::From(a), Rotation::From(b)).ToQuaternion();
}

Quaternion Quaternion::operator*(const Quaternion& other) const {
    return Rotation::From(*this).Times(Rotation::From(other)).ToQuaternion();
}

void Quaternion::Invert() {
    x = -x;
    y = -y;
    z = -z;
}

void Quaternion::Flip() {
    const float oldY = y;
    x = -x;
    y = -z;
    z = -oldY;
}

AngleAxis::AngleAxis(const Quaternion& q) {
    *this = Rotation::From(q).ToAngleAxis();
}

AngleAxis::AngleAxis(const Matrix4<double>& m) {
    m.GetRotate(*this);
}

AngleAxis::AngleAxis(const Vector3<float>& r) {
    const double length = std::sqrt(double{r.x} * r.x + double{r.y} * r.y + double{r.z} * r.z);
    if (!(length > 0)) return;
    *this = {static_cast<float>(r.x / length), static_cast<float>(r.y / length),
             static_cast<float>(r.z / length), static_cast<float>(length)};
}

}  // namespace vl
