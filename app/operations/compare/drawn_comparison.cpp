// SPDX-License-Identifier: MIT
#include "app/operations/compare/drawn_comparison.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "app/operations/compare/value_difference.h"
#include "base/text.h"

namespace zr::compare {
namespace {

// At most this many nearby candidates are tried for a face.
constexpr std::size_t kMostCandidates = 256;

// The faces of one material and layout in one document.
struct Faces {
    std::vector<const Part*> parts;
    std::vector<std::vector<double>> vertices;  // of each part
    struct Face {
        std::uint32_t part;
        std::uint32_t first;  // index of its first corner in the part's faces
    };
    std::vector<Face> faces;

    const Primitive& Shape(const Face& face) const { return *parts[face.part]->shape; }
    const double* Corner(const Face& face, std::size_t corner) const {
        const Primitive& shape = Shape(face);
        return vertices[face.part].data() + shape.faces[face.first + corner] * shape.stride;
    }
};

struct Gap {
    double length = 0, angle = 0, value = 0;

    bool Within(const Tolerance& t) const {
        return length <= t.length && angle <= t.angle && value <= t.value;
    }
    void Widen(const Gap& other) {
        length = std::max(length, other.length);
        angle = std::max(angle, other.angle);
        value = std::max(value, other.value);
    }
};

Gap CornerGap(const Primitive& shape, const double* a, const double* b) {
    Gap gap;
    for (const Attribute& attribute : shape.attributes) {
        const std::size_t width = attribute.width;
        const Vec3 x{a[0], width > 1 ? a[1] : 0, width > 2 ? a[2] : 0};
        const Vec3 y{b[0], width > 1 ? b[1] : 0, width > 2 ? b[2] : 0};
        std::size_t vector = 3;
        if (attribute.role == Role::kPosition)
            gap.length = std::max(gap.length, Finite(Length(x - y)));
        else if (attribute.role != Role::kValue)
            gap.angle = std::max(gap.angle, Finite(Length(x - y)));
        else
            vector = 0;
        for (std::size_t i = vector; i < width; ++i)
            gap.value = std::max(gap.value, ValueDifference(a[i], b[i]));
        a += width;
        b += width;
    }
    return gap;
}

// The distance between two faces, with their corners rotated for the best fit; lines and triangles may start
// at any corner.
Gap FaceGap(const Faces& a, const Faces::Face& x, const Faces& b, const Faces::Face& y,
            const Tolerance& tolerance) {
    const Primitive& shape = a.Shape(x);
    Gap best;
    for (std::size_t turn = 0; turn < shape.corners; ++turn) {
        Gap gap;
        for (std::size_t corner = 0; corner < shape.corners; ++corner)
            gap.Widen(CornerGap(shape, a.Corner(x, corner), b.Corner(y, (corner + turn) % shape.corners)));
        if (gap.Within(tolerance)) return gap;
        if (turn == 0 || gap.length < best.length) best = gap;
    }
    return best;
}

// A grid of faces, each in the cell of its centre.
class Cells {
public:
    explicit Cells(double size) : m_size(size) {}

    void Add(Vec3 middle, std::uint32_t face) { m_cells[Key(Cell(middle))].push_back(face); }

    // Calls take(face) for nearby faces until it returns true, and removes that face. False if it never does.
    template <typename Take>
    bool TakeNear(Vec3 middle, Take take) {
        const std::array<double, 3> cell = Cell(middle);
        std::size_t tried = 0;
        for (int i = 0; i < 27; ++i) {
            // Starts with the cell itself.
            const int k = (i + 13) % 27;
            const int x = k % 3 - 1, y = k / 3 % 3 - 1, z = k / 9 - 1;
            const auto found = m_cells.find(Key({cell[0] + x, cell[1] + y, cell[2] + z}));
            if (found == m_cells.end()) continue;
            std::vector<std::uint32_t>& faces = found->second;
            for (std::size_t at = faces.size(); at-- > 0 && tried < kMostCandidates; ++tried) {
                if (!take(faces[at])) continue;
                faces.erase(faces.begin() + static_cast<std::ptrdiff_t>(at));
                return true;
            }
        }
        return false;
    }

private:
    std::array<double, 3> Cell(Vec3 p) const {
        return {std::floor(p.x / m_size), std::floor(p.y / m_size), std::floor(p.z / m_size)};
    }
    static std::uint64_t Key(const std::array<double, 3>& cell) {
        std::uint64_t key = 0;
        for (const double part : cell)
            key =
                (key ^ static_cast<std::uint64_t>(static_cast<std::int64_t>(std::clamp(part, -9e18, 9e18)))) *
                    0x9e3779b97f4a7c15 +
                (key >> 29);
        return key;
    }

    double m_size;
    std::unordered_map<std::uint64_t, std::vector<std::uint32_t>> m_cells;
};

class DrawnComparison {
public:
    DrawnComparison(const Tolerance& tolerance, DrawnDifference& result)
        : m_tolerance(tolerance), m_result(result) {}

    void Group(const Faces& a, const Faces& b) {
        const std::size_t common = std::min(a.faces.size(), b.faces.size());
        std::vector<std::uint32_t> leftA, leftB;
        for (std::size_t i = 0; i < common; ++i) {
            const Gap gap = FaceGap(a, a.faces[i], b, b.faces[i], m_tolerance);
            if (gap.Within(m_tolerance)) {
                Note(gap, a.parts[a.faces[i].part]->node);
            } else {
                leftA.push_back(static_cast<std::uint32_t>(i));
                leftB.push_back(static_cast<std::uint32_t>(i));
            }
        }
        for (std::size_t i = common; i < a.faces.size(); ++i) leftA.push_back(static_cast<std::uint32_t>(i));
        for (std::size_t i = common; i < b.faces.size(); ++i) leftB.push_back(static_cast<std::uint32_t>(i));
        m_result.faces += common;
        if (!leftA.empty() && !leftB.empty()) MatchElsewhere(a, b, leftA, leftB);
        ReportUnmatched(a, b, leftA, leftB);
    }

private:
    static Vec3 Middle(const Faces& faces, const Faces::Face& face) {
        const std::size_t corners = faces.Shape(face).corners;
        Vec3 sum;
        for (std::size_t i = 0; i < corners; ++i) {
            const double* at = faces.Corner(face, i);
            sum = sum + Vec3{at[0], at[1], at[2]};
        }
        return sum * (1 / static_cast<double>(corners));
    }

    void MatchElsewhere(const Faces& a, const Faces& b, std::vector<std::uint32_t>& leftA,
                        std::vector<std::uint32_t>& leftB) {
        Cells cells(std::max(m_tolerance.length * 2, 1e-12));
        for (const std::uint32_t face : leftB) cells.Add(Middle(b, b.faces[face]), face);
        std::vector<bool> taken(b.faces.size(), false);
        std::erase_if(leftA, [&](std::uint32_t face) {
            return cells.TakeNear(Middle(a, a.faces[face]), [&](std::uint32_t other) {
                const Gap gap = FaceGap(a, a.faces[face], b, b.faces[other], m_tolerance);
                if (!gap.Within(m_tolerance)) return false;
                Note(gap, a.parts[a.faces[face].part]->node);
                taken[other] = true;
                return true;
            });
        });
        std::erase_if(leftB, [&](std::uint32_t face) { return taken[face]; });
    }

    void ReportUnmatched(const Faces& a, const Faces& b, const std::vector<std::uint32_t>& leftA,
                         const std::vector<std::uint32_t>& leftB) {
        if (leftA.size() == leftB.size()) {
            for (std::size_t i = 0; i < leftA.size(); ++i) {
                const Faces::Face& face = a.faces[leftA[i]];
                const std::size_t node = a.parts[face.part]->node;
                if (m_result.changed++ == 0) m_result.changedNode = node;
                Note(FaceGap(a, face, b, b.faces[leftB[i]], m_tolerance), node);
            }
            return;
        }
        if (!leftA.empty() && m_result.onlyA == 0) m_result.onlyANode = a.parts[a.faces[leftA[0]].part]->node;
        if (!leftB.empty() && m_result.onlyB == 0) m_result.onlyBNode = b.parts[b.faces[leftB[0]].part]->node;
        m_result.onlyA += leftA.size();
        m_result.onlyB += leftB.size();
    }

    void Note(const Gap& gap, std::size_t node) {
        if (gap.length > m_result.length || m_result.node == kNone) m_result.node = node;
        m_result.length = std::max(m_result.length, gap.length);
        m_result.angle = std::max(m_result.angle, gap.angle);
        m_result.value = std::max(m_result.value, gap.value);
    }

    const Tolerance& m_tolerance;
    DrawnDifference& m_result;
};

using Groups = std::map<std::pair<std::size_t, std::string>, Faces>;

Groups GroupsOf(const Drawn& drawn, const std::vector<std::size_t>& classes) {
    Groups groups;
    std::map<const Primitive*, std::string> layouts;
    std::uint64_t bytes = 0;
    for (const Part& part : drawn.Parts()) {
        const Primitive& shape = *part.shape;
        if (shape.faces.empty()) continue;
        bytes += shape.vertices * shape.stride * sizeof(double) +
                 shape.faces.size() / shape.corners * sizeof(Faces::Face);
        if (bytes > drawn.Budget()) drawn.FailTooMuch(part.node);
        std::string& layout = layouts[&shape];
        if (layout.empty()) layout = shape.Layout();
        Faces& group = groups[{part.material == kNone ? kNone : classes[part.material], layout}];
        for (std::size_t i = 0; i < shape.faces.size(); i += shape.corners)
            group.faces.push_back(
                {static_cast<std::uint32_t>(group.parts.size()), static_cast<std::uint32_t>(i)});
        group.parts.push_back(&part);
        group.vertices.push_back(drawn.Vertices(part));
    }
    return groups;
}

}  // namespace

DrawnDifference CompareDrawn(const Drawn& a, const Drawn& b, const MaterialClasses& materials,
                             const Tolerance& tolerance) {
    DrawnDifference result;
    DrawnComparison comparison(tolerance, result);
    const Groups groupsA = GroupsOf(a, materials.ofA), groupsB = GroupsOf(b, materials.ofB);
    const Faces none;
    for (const auto& [key, faces] : groupsA) {
        const auto other = groupsB.find(key);
        comparison.Group(faces, other != groupsB.end() ? other->second : none);
    }
    for (const auto& [key, faces] : groupsB)
        if (!groupsA.contains(key)) comparison.Group(none, faces);
    return result;
}

}  // namespace zr::compare
