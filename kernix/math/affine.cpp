// SPDX-License-Identifier: MIT
#include "kernix/math/affine.h"

#include <algorithm>
#include <cmath>

namespace kernix {
namespace {

using Rows = double[3][3];

// Off-diagonals of the stretch up to this share of its largest diagonal are noise: the eigenvectors of a
// matrix that near to the diagonal are arbitrary.
constexpr double kAlongAxes = 1e-6;

double Determinant(const Rows& a) {
    return a[0][0] * (a[1][1] * a[2][2] - a[1][2] * a[2][1]) -
           a[0][1] * (a[1][0] * a[2][2] - a[1][2] * a[2][0]) +
           a[0][2] * (a[1][0] * a[2][1] - a[1][1] * a[2][0]);
}

double Dot(const double (&a)[3], const double (&b)[3]) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

void Cross(const double (&a)[3], const double (&b)[3], double (&out)[3]) {
    for (int i = 0; i < 3; ++i) out[i] = a[(i + 1) % 3] * b[(i + 2) % 3] - a[(i + 2) % 3] * b[(i + 1) % 3];
}

// A transform whose rows are orthogonal scales along its axes: lengths and directions of the rows are the
// result, also for lengths that differ by many orders of magnitude. One flat axis is completed from the
// other two. False when the rows are not orthogonal or fewer than two have a length.
bool SplitOrthogonal(const Rows& a, double (&k)[3], Rows& frame) {
    int flat = -1;
    for (int i = 0; i < 3; ++i) {
        k[i] = std::sqrt(Dot(a[i], a[i]));
        if (k[i] == 0 && flat >= 0) return false;
        if (k[i] == 0) flat = i;
    }
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) frame[i][j] = k[i] == 0 ? 0 : a[i][j] / k[i];
    }
    const double largest = std::max({k[0], k[1], k[2]});
    for (int i = 0; i < 3; ++i) {
        // Two rows at an angle give the stretch an off-diagonal of their product over the sum of lengths.
        const int j = (i + 1) % 3;
        const double cosine = std::fabs(Dot(frame[i], frame[j]));
        if (cosine > 1e-4 || cosine * k[i] * k[j] > kAlongAxes * largest * (k[i] + k[j])) return false;
    }
    if (flat >= 0) Cross(frame[(flat + 1) % 3], frame[(flat + 2) % 3], frame[flat]);
    return true;
}

// The orthogonal matrix nearest to an invertible one, by Newton's iteration with scaling (N. J. Higham,
// "Computing the polar decomposition", 1986).
void NearestOrthogonal(Rows& x) {
    for (int step = 0; step < 60; ++step) {
        Rows inverse;  // transposed
        for (int i = 0; i < 3; ++i) Cross(x[(i + 1) % 3], x[(i + 2) % 3], inverse[i]);
        const double det = Dot(x[0], inverse[0]);
        double norm = 0;
        double inverseNorm = 0;
        for (int i = 0; i < 3; ++i) {
            for (double& value : inverse[i]) value /= det;
            norm += Dot(x[i], x[i]);
            inverseNorm += Dot(inverse[i], inverse[i]);
        }
        const double g = std::sqrt(std::sqrt(inverseNorm / norm));
        double change = 0;
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                const double next = 0.5 * (g * x[i][j] + inverse[i][j] / g);
                change = std::max(change, std::fabs(next - x[i][j]));
                x[i][j] = next;
            }
        }
        if (change < 1e-15) return;
    }
}

// Eigenvalues of a symmetric matrix, its eigenvectors the rows of v (C. G. J. Jacobi, 1846).
void Diagonalise(Rows& s, Rows& v) {
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) v[i][j] = i == j;
    }
    const double limit = 1e-15 * std::max({std::fabs(s[0][0]), std::fabs(s[1][1]), std::fabs(s[2][2])});
    for (int sweep = 0; sweep < 30; ++sweep) {
        bool turned = false;
        for (int p = 0; p < 2; ++p) {
            for (int q = p + 1; q < 3; ++q) {
                if (std::fabs(s[p][q]) <= limit) continue;
                turned = true;
                const double theta = (s[q][q] - s[p][p]) / (2 * s[p][q]);
                const double t = (theta < 0 ? -1 : 1) / (std::fabs(theta) + std::sqrt(theta * theta + 1));
                const double c = 1 / std::sqrt(t * t + 1);
                const double sn = t * c;
                for (int i = 0; i < 3; ++i) {
                    const double a = s[i][p], b = s[i][q];
                    s[i][p] = c * a - sn * b;
                    s[i][q] = sn * a + c * b;
                }
                for (int i = 0; i < 3; ++i) {
                    const double a = s[p][i], b = s[q][i];
                    s[p][i] = c * a - sn * b;
                    s[q][i] = sn * a + c * b;
                }
                for (int i = 0; i < 3; ++i) {
                    const double a = v[p][i], b = v[q][i];
                    v[p][i] = c * a - sn * b;
                    v[q][i] = sn * a + c * b;
                }
            }
        }
        if (!turned) return;
    }
}

// Of the 24 ways to name and point the axes of a right-handed frame, takes the one nearest to the identity.
void NearestFrame(const Rows& v, const double (&values)[3], Rows& frame, double (&k)[3]) {
    constexpr int kOrders[6][3] = {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {2, 1, 0}, {1, 0, 2}};
    double best = -4;
    for (const auto& order : kOrders) {
        for (int signs = 0; signs < 8; ++signs) {
            Rows candidate;
            for (int i = 0; i < 3; ++i) {
                for (int j = 0; j < 3; ++j) {
                    candidate[i][j] = (signs >> i & 1) != 0 ? -v[order[i]][j] : v[order[i]][j];
                }
            }
            const double trace = candidate[0][0] + candidate[1][1] + candidate[2][2];
            if (trace <= best || Determinant(candidate) < 0) continue;
            best = trace;
            for (int i = 0; i < 3; ++i) {
                std::copy_n(candidate[i], 3, frame[i]);
                k[i] = values[order[i]];
            }
        }
    }
}

// An invertible matrix with turned or sheared scale: a = s * o with s symmetric and o orthogonal.
void SplitTurned(const Rows& a, AffineSplit& out) {
    Rows o;
    for (int i = 0; i < 3; ++i) std::copy_n(a[i], 3, o[i]);
    NearestOrthogonal(o);
    out.q = Rotation::FromRows(o);
    Rows s;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) s[i][j] = Dot(a[i], o[j]);
    }
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < i; ++j) s[i][j] = s[j][i] = 0.5 * (s[i][j] + s[j][i]);
    }
    const double limit = kAlongAxes * std::max({s[0][0], s[1][1], s[2][2]});
    if (std::fabs(s[0][1]) <= limit && std::fabs(s[0][2]) <= limit && std::fabs(s[1][2]) <= limit) {
        for (int i = 0; i < 3; ++i) out.k[i] = s[i][i];
        return;
    }
    // A single off-diagonal within the limit is ignored for the same reason.
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            if (i != j && std::fabs(s[i][j]) <= limit) s[i][j] = 0;
        }
    }
    Rows v;
    Diagonalise(s, v);
    const double values[3] = {s[0][0], s[1][1], s[2][2]};
    Rows frame;
    NearestFrame(v, values, frame, out.k);
    // The rows of frame are the scale axes; R(u) leads to them, so its rows are the columns of frame.
    Rows turned;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) turned[i][j] = frame[j][i];
    }
    out.u = Rotation::FromRows(turned);
}

}  // namespace

AffineSplit SplitAffine(const vl::Matrix4<double>& m) {
    AffineSplit out{{m.m[3][0], m.m[3][1], m.m[3][2]}, {}, {}, {}, 1, true};
    Rows a;
    double largest = 0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            a[i][j] = m.m[i][j];
            largest = std::max(largest, std::fabs(a[i][j]));
        }
    }
    Rows frame;
    if (SplitOrthogonal(a, out.k, frame)) {
        if (Determinant(frame) < 0) {
            out.f = -1;
            for (auto& row : frame) {
                for (double& value : row) value = -value;
            }
        }
        NearestOrthogonal(frame);
        out.q = Rotation::FromRows(frame);
        out.invertible = out.k[0] > 0 && out.k[1] > 0 && out.k[2] > 0;
        return out;
    }
    // Scaled to unit size, so that the test for an inverse means the same for small and large scenes.
    if (largest > 0 && std::isfinite(largest)) {
        for (auto& row : a) {
            for (double& value : row) value /= largest;
        }
    }
    const double det = Determinant(a);
    if (!std::isfinite(largest) || !(std::fabs(det) > 1e-30)) {
        for (int i = 0; i < 3; ++i) out.k[i] = std::sqrt(Dot(a[i], a[i])) * largest;
        out.invertible = false;
        return out;
    }
    if (det < 0) {
        out.f = -1;
        for (auto& row : a) {
            for (double& value : row) value = -value;
        }
    }
    SplitTurned(a, out);
    for (double& k : out.k) k *= largest;
    return out;
}

}  // namespace kernix

namespace vl {
namespace {

Vector3<float> ToFloat(const double (&v)[3]) {
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

Vector3<float> RotationVector(const kernix::Rotation& r) {
    const AngleAxis a = r.ToAngleAxis();
    return {a.x * a.angle, a.y * a.angle, a.z * a.angle};
}

}  // namespace

void Matrix4<double>::AffineDecompose(AffineParts& parts) const {
    const kernix::AffineSplit split = kernix::SplitAffine(*this);
    parts = {ToFloat(split.t), split.q.ToQuaternion(), split.u.ToQuaternion(), ToFloat(split.k),
             static_cast<float>(split.f)};
}

bool Matrix4<double>::Decompose(Vector3<float>& translation, Vector3<float>& rotation, Vector3<float>& scale,
                                Vector3<float>& stretch, Vector4<float>& perspective) const {
    const kernix::AffineSplit split = kernix::SplitAffine(*this);
    const double signedScale[3] = {split.k[0] * split.f, split.k[1] * split.f, split.k[2] * split.f};
    translation = ToFloat(split.t);
    rotation = RotationVector(split.q);
    scale = ToFloat(signedScale);
    stretch = RotationVector(split.u);
    perspective = {static_cast<float>(m[0][3]), static_cast<float>(m[1][3]), static_cast<float>(m[2][3]),
                   static_cast<float>(m[3][3])};
    return split.invertible;
}

void Matrix4<double>::GetRotate(AngleAxis& out) const {
    out = kernix::SplitAffine(*this).q.ToAngleAxis();
}

}  // namespace vl
