// SPDX-License-Identifier: MIT
#pragma once

#include "host/math.h"

namespace kernix {

// A unit quaternion in double precision, on which the rotation types of host/ are computed.
struct KERNIX_API Rotation {
    double x = 0;
    double y = 0;
    double z = 0;
    double w = 1;

    static Rotation From(const vl::Quaternion& q);  // brought to unit length; no length is no rotation
    static Rotation From(const vl::AngleAxis& a);
    static Rotation About(double ax, double ay, double az, double angle);  // the axis may have any length

    // Of a matrix whose first three rows are a right-handed orthonormal frame; w is not negative.
    static Rotation FromRows(const double (&rows)[3][3]);

    Rotation Times(const Rotation& next) const;  // first this, then next
    Rotation Inverted() const { return {-x, -y, -z, w}; }
    void ToRows(double (&m)[4][4]) const;  // writes the upper left three by three
    vl::Quaternion ToQuaternion() const;
    vl::AngleAxis ToAngleAxis() const;
    Rotation Negated() const { return {-x, -y, -z, -w}; }  // the same rotation, reached the other way
    double Dot(const Rotation& other) const { return x * other.x + y * other.y + z * other.z + w * other.w; }
};

// Whether one of two orientations with this dot product must be negated to turn the shorter way. Exactly half
// a turn has no shorter way and goes as it is given, whatever the rounding of unit lengths made of its 0.
inline bool IsLongWay(double dot) {
    return dot < -1e-15;
}

// The rotation a share s of the shorter way from a to b.
Rotation Slerp(double s, const Rotation& a, const Rotation& b);

}  // namespace kernix
