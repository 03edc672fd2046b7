// SPDX-License-Identifier: MIT
#include "tests/app/operations/wild_plan.h"

#include <cmath>
#include <set>
#include <utility>

#include "base/text.h"

namespace zr::test {
namespace {

constexpr std::size_t kJoints = 4;  // of the vertices of a mesh

// As in JSON text, with escapes.
constexpr const char* kNames[] = {"",     "node",        "Node",    "node 1",         "a/b",
                                  "~0~1", "line\\nfeed", "\\u0001", "\\\"quoted\\\"", "\xC3\xA4\xE4\xB8\x80",
                                  "%s%n", "..",          "CON",     "\\uD83D\\uDE00"};

class Maker {
public:
    Maker(Random& random, bool isWild) : m_random(random), m_isWild(isWild) {}

    ScenePlan Make() {
        Materials();
        Nodes();
        for (std::size_t i = m_random.Pick(4); i-- > 0;) m_plan.animations.push_back(Animation());
        if (m_random.Chance()) HostScene();
        return std::move(m_plan);
    }

private:
    std::string Name() {
        if (m_random.Pick(20) == 0) return std::string(600, 'n');
        return kNames[m_random.Pick(std::size(kNames))];
    }

    float Number() {
        constexpr float kWild[] = {0, -0.0F, 1, -1, 1e-30F, -1e30F, 1e-6F, 1e6F};
        if (m_isWild && m_random.Pick(4) == 0) return kWild[m_random.Pick(std::size(kWild))];
        return std::uniform_real_distribution<float>(-2, 2)(m_random);
    }

    float Scale() {
        constexpr float kWild[] = {0, -1, 1e-7F, 1e7F, -0.5F};
        if (m_isWild && m_random.Pick(4) == 0) return kWild[m_random.Pick(std::size(kWild))];
        return m_random.Chance() ? 1 : std::uniform_real_distribution<float>(0.5F, 2)(m_random);
    }

    std::array<float, 4> Rotation() {
        constexpr std::array<float, 4> kPlain[] = {
            {0, 0, 0, 1}, {1, 0, 0, 0}, {0, 0.70710677F, 0, 0.70710677F}};
        if (m_random.Chance()) return kPlain[m_random.Pick(std::size(kPlain))];
        std::array<float, 4> q;
        float norm = 0;
        for (float& part : q)
            part = std::uniform_real_distribution<float>(0.1F, 1)(m_random), norm += part * part;
        for (float& part : q) part /= std::sqrt(norm);
        return q;
    }

    // Meshes are chosen from few fixed ones: the structure of the scene matters, not what is drawn.
    void Materials() {
        Random shapes(static_cast<unsigned>(m_random.Pick(256)));
        for (std::size_t i = 0; i < 3; ++i) m_plan.materials.push_back({Name(), {1, 0.5F, 0.25F, 1}, 0.5F});
        for (std::size_t i = 0; i < 3; ++i) m_plan.meshes.push_back(MakeMesh(shapes, i, m_random.Pick(3)));
        m_plan.cameras = {0.7F, 0.7F};
        m_plan.lights = {3, 20};
    }

    void Nodes() {
        const std::size_t count = kJoints + m_random.Pick(8);
        for (std::size_t i = 0; i < count; ++i) {
            ScenePlan::Node node;
            node.name = Name();
            node.parent = static_cast<int>(m_random.Pick(i + 1)) - 1;
            for (float& part : node.translation) part = Number();
            node.rotation = Rotation();
            // Mostly uniform.
            node.scale.fill(Scale());
            if (m_random.Pick(3) == 0)
                for (float& part : node.scale) part = Scale();
            switch (m_random.Pick(6)) {
                case 0:
                    node.camera = static_cast<int>(m_random.Pick(2));
                    break;
                case 1:
                    node.light = static_cast<int>(m_random.Pick(2));
                    break;
                case 2:
                case 3:
                    node.mesh = static_cast<int>(m_random.Pick(m_plan.meshes.size()));
                    node.weight = m_random.Chance() ? 0 : 0.25F;
                    node.isSkinned = m_random.Pick(4) == 0;
                    break;
                default:
                    break;
            }
            node.extra = m_random.Pick(5) == 0 ? 7 : 0;
            m_plan.nodes.push_back(node);
        }
        for (std::size_t i = 0; i < kJoints; ++i) m_plan.joints.push_back(i);
        // The joints have a common root.
        for (std::size_t i = 1; i < kJoints; ++i) m_plan.nodes[i].parent = static_cast<int>(m_random.Pick(i));
    }

    ScenePlan::Track Track(std::size_t node, const std::string& path) {
        constexpr const char* kWays[] = {"LINEAR", "STEP", "CUBICSPLINE"};
        const std::size_t way = m_random.Pick(std::size(kWays));
        ScenePlan::Track track{node, path, kWays[way], {}, {}, m_random.Pick(m_plan.materials.size())};
        const std::size_t keys = 1 + m_random.Pick(5) + (way == 2 ? 1 : 0);
        float time = m_random.Chance() ? 0 : 1.5F;
        for (std::size_t key = 0; key < keys; ++key) {
            constexpr float kSteps[] = {0.5F, 1, 0.041666668F, 1e-4F};
            track.times.push_back(time);
            time += kSteps[m_random.Pick(m_isWild ? 4 : 3)];
            if (key > 0 && m_random.Pick(3) == 0) {
                const std::vector<float> values = track.values;
                const std::size_t width = values.size() / key;
                track.values.insert(track.values.end(), values.end() - static_cast<std::ptrdiff_t>(width),
                                    values.end());
            } else {
                Key(path, way == 2, track.values);
            }
        }
        return track;
    }

    void Key(const std::string& path, bool isCubic, std::vector<float>& values) {
        for (int part = 0; part < (isCubic ? 3 : 1); ++part) {
            const bool isSlope = isCubic && part != 1;
            if (path == "rotation") {
                for (const float number : Rotation()) values.push_back(isSlope ? 0 : number);
            } else if (path == "weights" || path == "roughness") {
                values.push_back(isSlope ? 0 : std::uniform_real_distribution<float>(0, 1)(m_random));
            } else {
                for (int i = 0; i < 3; ++i)
                    values.push_back(isSlope ? 0 : path == "scale" ? Scale() : Number());
            }
        }
    }

    ScenePlan::Animation Animation() {
        constexpr const char* kPaths[] = {"translation", "rotation", "scale", "weights", "roughness"};
        ScenePlan::Animation animation{Name(), {}};
        std::set<std::pair<std::size_t, std::string>> moved;
        for (std::size_t i = 1 + m_random.Pick(6); i-- > 0;) {
            const std::size_t node = m_random.Pick(m_plan.nodes.size());
            const std::string path = kPaths[m_random.Pick(std::size(kPaths))];
            if (path == "weights" && m_plan.nodes[node].mesh < 0) continue;
            ScenePlan::Track track = Track(node, path);
            if (moved.emplace(path == "roughness" ? track.material : node, path).second)
                animation.tracks.push_back(std::move(track));
        }
        // An animation needs a channel.
        if (animation.tracks.empty()) animation.tracks.push_back(Track(0, "translation"));
        return animation;
    }

    void HostScene() {
        for (std::size_t i = m_random.Pick(3); i-- > 0;) {
            ScenePlan::Layer layer{Name(), {}};
            for (std::size_t node = 0; node < m_plan.nodes.size(); ++node)
                if (m_random.Pick(3) == 0) layer.nodes.push_back(node);
            m_plan.layers.push_back(std::move(layer));
        }
        for (std::size_t i = m_random.Pick(3); i-- > 0;) {
            constexpr unsigned kKinds[] = {1, 2, 2, 6};
            ScenePlan::Viewport viewport{Name(), kKinds[m_random.Pick(std::size(kKinds))], {}};
            for (std::size_t k = 0; k < m_plan.animations.size(); ++k)
                if (m_random.Chance()) viewport.animations.push_back(k);
            m_plan.viewports.push_back(std::move(viewport));
        }
    }

    Random& m_random;
    bool m_isWild;
    ScenePlan m_plan;
};

}  // namespace

ScenePlan MakeWildPlan(Random& random) {
    return Maker(random, true).Make();
}

ScenePlan MakeLivelyPlan(Random& random) {
    return Maker(random, false).Make();
}

}  // namespace zr::test
