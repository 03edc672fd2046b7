// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <unordered_map>
#include <unordered_set>

namespace vl::zr {
class Node;
class Scene;
}  // namespace vl::zr

namespace zrt {

// Decides which nodes of a scene get a record. Each node is judged once, whatever the order of the calls; the
// scene must not change while the filter is in use.
class NodeFilter {
public:
    NodeFilter(vl::zr::Scene* scene, std::uint32_t exportFlags);

    // The flags of the node's record; 0: no record for it, nor for anything below it.
    std::uint32_t Flags(vl::zr::Node* node);

private:
    struct OwnFlags {
        bool rejected;  // including everything below it
        std::uint32_t flags;
    };

    bool Has(std::uint32_t option) const { return (m_options & option) != 0; }
    OwnFlags Judge(vl::zr::Node* node) const;
    OwnFlags JudgeObject(vl::zr::Node* node, bool isSystem) const;
    std::uint32_t RenderableFlags(vl::zr::Node* node) const;
    std::uint32_t FallbackFlags(vl::zr::Node* node);
    void CollectTargets();

    vl::zr::Scene* m_scene;
    std::uint32_t m_options;
    std::unordered_map<vl::zr::Node*, std::uint32_t> m_known;
    std::unordered_set<vl::zr::Node*> m_cameraTargets;
    std::unordered_set<vl::zr::Node*> m_lightTargets;
    bool m_hasTargets = false;
};

}  // namespace zrt
