// SPDX-License-Identifier: MIT
#include <cmath>

#include "host/math.h"
#include "kernix/math/rotation.h"

namespace vl {
namespace {

using kernix::Rotation;
using M = Matrix4<double>;

M Product(const M& a, const M& b) {
    M r;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            r.m[i][j] =
                a.m[i][0] * b.m[0][j] + a.m[i][1] * b.m[1][j] + a.m[i][2] * b.m[2][j] + a.m[i][3] * b.m[3][j];
        }
    }
    return r;
}

M FromRotation(const Rotation& q) {
    M r;
    r.IdentityMatrix();
    q.ToRows(r.m);
    return r;
}

bool IsAffine(const M& a) {
    return a.m[0][3] == 0 && a.m[1][3] == 0 && a.m[2][3] == 0 && a.m[3][3] == 1;
}

// The inverse of an affine matrix by cofactors; false when there is none.
bool InvertAffine(M& a) {
    const auto& m = a.m;
    double c[3][3];
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            const int i1 = (i + 1) % 3, i2 = (i + 2) % 3, j1 = (j + 1) % 3, j2 = (j + 2) % 3;
            c[j][i] = m[i1][j1] * m[i2][j2] - m[i1][j2] * m[i2][j1];
        }
    }
    const double det = m[0][0] * c[0][0] + m[0][1] * c[1][0] + m[0][2] * c[2][0];
    if (det == 0 || !std::isfinite(1 / det)) return false;
    M r;
    r.IdentityMatrix();
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) r.m[i][j] = c[i][j] / det;
    }
    for (int j = 0; j < 3; ++j) {
        r.m[3][j] = -(m[3][0] * r.m[0][j] + m[3][1] * r.m[1][j] + m[3][2] * r.m[2][j]);
    }
    a = r;
    return true;
}

// The inverse of any matrix by elimination with row exchange; false when there is none.
bool InvertGeneral(M& a) {
    M left = a;
    M right;
    right.IdentityMatrix();
    for (int col = 0; col < 4; ++col) {
        int pivot = col;
        for (int row = col + 1; row < 4; ++row) {
            if (std::fabs(left.m[row][col]) > std::fabs(left.m[pivot][col])) pivot = row;
        }
        const double value = left.m[pivot][col];
        if (value == 0 || !std::isfinite(1 / value)) return false;
        for (int j = 0; j < 4; ++j) {
            std::swap(left.m[col][j], left.m[pivot][j]);
            std::swap(right.m[col][j], right.m[pivot][j]);
            left.m[col][j] /= value;
            right.m[col][j] /= value;
        }
        for (int row = 0; row < 4; ++row) {
            const double factor = left.m[row][col];
            if (row == col || factor == 0) continue;
            for (int j = 0; j < 4; ++j) {
                left.m[row][j] -= factor * left.m[col][j];
                right.m[row][j] -= factor * right.m[col][j];
            }
        }
    }
    a = right;
    return true;
}

}  // namespace

void M::IdentityMatrix() {
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) m[i][j] = i == j ? 1 : 0;
    }
}

void M::Invert() {
    if (!(IsAffine(*this) ? InvertAffine(*this) : InvertGeneral(*this))) IdentityMatrix();
}

void M::Flip() {
    for (auto& row : m) std::swap(row[1], row[2]);
    std::swap(m[1], m[2]);
}

bool M::IsIdentity(double tolerance) const {
    M identity;
    identity.IdentityMatrix();
    return Equal(identity, tolerance);
}

bool M::Equal(const M& other, double tolerance) const {
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            if (!(std::fabs(m[i][j] - other.m[i][j]) <= tolerance)) return false;
        }
    }
    return true;
}

void M::SetMul(const M& a, const M& b) {
    *this = Product(a, b);
}

void M::Transform(const M& n) {
    *this = Product(*this, n);
}

void M::SetM2(const M& a, const M& b) {
    M inverse = b;
    inverse.Invert();
    *this = Product(inverse, a);
}

void M::SetLocalMatrix(const M& parent, const M& world) {
    M inverse = parent;
    inverse.Invert();
    *this = Product(world, inverse);
}

void M::Rotate(const AngleAxis& rotation) {
    Transform(FromRotation(Rotation::From(rotation)));
}
void M::Rotate(const Quaternion& rotation) {
    Transform(FromRotation(Rotation::From(rotation)));
}
void M::RotateX(double angle) {
    Transform(FromRotation(Rotation::About(1, 0, 0, angle)));
}
void M::RotateY(double angle) {
    Transform(FromRotation(Rotation::About(0, 1, 0, angle)));
}
void M::RotateZ(double angle) {
    Transform(FromRotation(Rotation::About(0, 0, 1, angle)));
}
void M::SetRotate(const AngleAxis& rotation) {
    *this = FromRotation(Rotation::From(rotation));
}
void M::SetRotate(const Quaternion& rotation) {
    *this = FromRotation(Rotation::From(rotation));
}

void M::SetScale(const Vector3<double>& s) {
    IdentityMatrix();
    ScaleBy(s.x, s.y, s.z);
}

void M::SetTranslate(const Vector3<double>& v) {
    IdentityMatrix();
    MoveTo(v);
}

void M::ScaleBy(double sx, double sy, double sz) {
    for (auto& row : m) {
        row[0] *= sx;
        row[1] *= sy;
        row[2] *= sz;
    }
}

void M::OffsetBy(double dx, double dy, double dz) {
    for (auto& row : m) {
        row[0] += row[3] * dx;
        row[1] += row[3] * dy;
        row[2] += row[3] * dz;
    }
}

Vector3<double> M::TransformPoint(double x, double y, double z) const {
    const Vector3<double> v = TransformVector(x, y, z);
    return {v.x + m[3][0], v.y + m[3][1], v.z + m[3][2]};
}

Vector3<double> M::TransformVector(double x, double y, double z) const {
    return {x * m[0][0] + y * m[1][0] + z * m[2][0], x * m[0][1] + y * m[1][1] + z * m[2][1],
            x * m[0][2] + y * m[1][2] + z * m[2][2]};
}

}  // namespace vl
