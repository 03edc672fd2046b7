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

    static Rotation From(const vl::Quaternion& q);  // normalized; the identity for one without a length
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

// Whether one of two orientations with this dot product must be negated to turn the shorter way. Half a turn
// has no shorter way and is left as it is, even where rounding has made its dot product slightly negative.
inline bool IsLongWay(double dot) {
    return dot < -1e-15;
}

// The rotation at fraction s of the shorter arc from a to b.
Rotation Slerp(double s, const Rotation& a, const Rotation& b);

}  // namespace kernix
