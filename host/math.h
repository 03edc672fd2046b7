// SPDX-License-Identifier: MIT
#pragma once

#include "host/api.h"

// Value types of transforms. Angles are radians, rotations right-handed. A matrix acts on row vectors,
// p' = p * M, stored row by row: the translation is in the last row. That is, number for number, the
// column-major storage of matrices that act on column vectors. Operations are described by the order in which
// transforms are applied, whatever the storage.
namespace vl {

template <typename T>
struct Vector3 {
    T x{};
    T y{};
    T z{};
    friend bool operator==(const Vector3&, const Vector3&) = default;  // -0 equals 0, NaN nothing
};

template <typename T>
struct Vector4 {
    T x{};
    T y{};
    T z{};
    T w{};
    friend bool operator==(const Vector4&, const Vector4&) = default;
};

template <typename T>
class Matrix4;
struct AngleAxis;

// A rotation as a unit quaternion.
struct KERNIX_API Quaternion {
    float x = 0;
    float y = 0;
    float z = 0;
    float w = 1;

    Quaternion() = default;
    Quaternion(float qx, float qy, float qz, float qw) : x(qx), y(qy), z(qz), w(qw) {}
    explicit Quaternion(const AngleAxis& rotation);
    explicit Quaternion(const Matrix4<double>& m);        // of the matrix's rotation, w not negative
    explicit Quaternion(const Vector3<float>& rotation);  // a rotation vector: axis times angle

    // Spherical interpolation along the shorter arc: a at fraction 0, b at 1. Nearly equal rotations are
    // interpolated linearly and normalized. The last argument is 0.
    Quaternion(float fraction, const Quaternion& a, const Quaternion& b, int mode);

    // First this, then other.
    Quaternion operator*(const Quaternion& other) const;
    void Invert();

    // The rotation with Y and Z exchanged on both of its sides: (-x, -z, -y, w).
    void Flip();

    friend bool operator==(const Quaternion&, const Quaternion&) = default;
};

// A rotation by an angle about an axis of unit length; the zero rotation made from a matrix or quaternion
// has axis (0, 0, 0) and angle 0.
struct KERNIX_API AngleAxis {
    float x = 0;
    float y = 0;
    float z = 0;
    float angle = 0;

    AngleAxis() = default;
    AngleAxis(float ax, float ay, float az, float a) : x(ax), y(ay), z(az), angle(a) {}

    // Angle 0 to pi. A half angle whose sine is below 1e-9 is the zero rotation: two orientations equal to
    // the bit give an angle of exactly 0.0.
    explicit AngleAxis(const Quaternion& q);
    explicit AngleAxis(const Matrix4<double>& m);
    explicit AngleAxis(const Vector3<float>& rotation);  // a rotation vector: axis times angle

    friend bool operator==(const AngleAxis&, const AngleAxis&) = default;
};

// Parts of an affine transform: first R(u), then scale k, then R(u) inverted, then sign f (-1 mirrors all
// three axes), then R(q), then translate t. k is not negative. Single precision, so that a product with its
// own inverse has a scale of exactly (1, 1, 1).
struct AffineParts {
    Vector3<float> t;
    Quaternion q;
    Quaternion u;
    Vector3<float> k{1, 1, 1};
    float f = 1;
};

template <>
class KERNIX_API Matrix4<double> {
public:
    double m[4][4] = {};  // zero when constructed

    void IdentityMatrix();

    // A matrix without an inverse becomes the identity, so that a node scaled to zero affects no other.
    void Invert();

    // Y and Z exchanged on both sides of the transform.
    void Flip();

    // Whether every element is within the tolerance, inclusive; 0: exactly equal.
    bool IsIdentity(double tolerance) const;
    bool Equal(const Matrix4& other, double tolerance) const;

    void SetMul(const Matrix4& a, const Matrix4& b);  // first a, then b; either may be this matrix
    void Transform(const Matrix4& n);                 // first this, then n

    // First the inverse of b, then a: the transform that leads from b to a. Translation and scale are kept.
    void SetM2(const Matrix4& a, const Matrix4& b);

    // Becomes L with: first L, then parent = world.
    void SetLocalMatrix(const Matrix4& parent, const Matrix4& world);

    // Append a step: first what the matrix did before, then the step.
    void Rotate(const AngleAxis& rotation);
    void Rotate(const Quaternion& rotation);
    void RotateX(double angle);
    void RotateY(double angle);
    void RotateZ(double angle);
    template <typename T>
    void Scale(const Vector3<T>& s) {
        ScaleBy(s.x, s.y, s.z);
    }
    template <typename T>
    void Offset(const Vector3<T>& v) {
        OffsetBy(v.x, v.y, v.z);
    }

    // Replace the whole matrix.
    void SetRotate(const AngleAxis& rotation);
    void SetRotate(const Quaternion& rotation);
    void SetScale(const Vector3<double>& s);
    void SetTranslate(const Vector3<double>& v);

    // Replaces the translation only.
    template <typename T>
    void MoveTo(const Vector3<T>& v) {
        m[3][0] = v.x;
        m[3][1] = v.y;
        m[3][2] = v.z;
    }

    // The rotation of the transform, without scale and mirroring.
    void GetRotate(AngleAxis& out) const;

    template <typename T>
    Vector3<T> PointTransform(const Vector3<T>& p) const {
        const Vector3<double> r = TransformPoint(p.x, p.y, p.z);
        return {static_cast<T>(r.x), static_cast<T>(r.y), static_cast<T>(r.z)};
    }
    template <typename T>
    Vector3<T> VectorTransform(const Vector3<T>& v) const {
        const Vector3<double> r = TransformVector(v.x, v.y, v.z);
        return {static_cast<T>(r.x), static_cast<T>(r.y), static_cast<T>(r.z)};
    }

    // Polar decomposition (K. Shoemake, T. Duff, "Matrix animation and polar decomposition", 1992). u is the
    // identity where the scale is along the axes, else the one of the 24 equivalent choices nearest to it. A
    // matrix without an inverse keeps its scale, with 0 for what it flattens; its rotation is recovered where
    // at most one axis is flat and is the identity otherwise.
    void AffineDecompose(AffineParts& parts) const;

    // Translation, rotation vector, signed scale, rotation vector of u, and the perspective column
    // (0, 0, 0, 1). True when the matrix has an inverse.
    bool Decompose(Vector3<float>& translation, Vector3<float>& rotation, Vector3<float>& scale,
                   Vector3<float>& stretch, Vector4<float>& perspective) const;

private:
    void ScaleBy(double sx, double sy, double sz);
    void OffsetBy(double dx, double dy, double dz);
    Vector3<double> TransformPoint(double x, double y, double z) const;
    Vector3<double> TransformVector(double x, double y, double z) const;
};

}  // namespace vl
