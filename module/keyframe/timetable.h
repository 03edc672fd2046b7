// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/scene.h"
#include "module/keyframe/record.h"

namespace zrt {

// Work to be done at times of the scene, in order of time so that each time is set once: setting it takes
// time linear in the scene.
class Timetable {
public:
    void Add(float time, std::size_t which, std::size_t item = 0) {
        m_entries.push_back({time, static_cast<std::uint32_t>(which), static_cast<std::uint32_t>(item)});
    }

    // Calls work(which, item) for each entry with the scene at its time, then restores the scene's time. The
    // table is empty afterwards.
    template <typename Work>
    void Run(vl::zr::Scene* scene, Work work) {
        if (m_entries.empty()) return;
        std::stable_sort(m_entries.begin(), m_entries.end(),
                         [](const Entry& a, const Entry& b) { return IsEarlier(a.time, b.time); });
        const SceneTime sceneTime(scene);
        const Entry* before = nullptr;
        for (const Entry& entry : m_entries) {
            if (before == nullptr || before->time != entry.time) scene->SetCurrentTime(entry.time, 1);
            work(entry.which, entry.item);
            before = &entry;
        }
        m_entries.clear();
    }

private:
    struct Entry {
        float time;
        std::uint32_t which;
        std::uint32_t item;
    };

    // Restores the scene's time at the end of its scope.
    class SceneTime {
    public:
        explicit SceneTime(vl::zr::Scene* scene) : m_scene(scene), m_time(scene->GetCurrentTime()) {}
        ~SceneTime() {
            try {
                m_scene->SetCurrentTime(m_time, 1);
            } catch (...) {
                // The time is set; what the host derives from it follows with the next change.
            }
        }
        SceneTime(const SceneTime&) = delete;
        SceneTime& operator=(const SceneTime&) = delete;

    private:
        vl::zr::Scene* m_scene;
        float m_time;
    };

    std::vector<Entry> m_entries;
};

}  // namespace zrt
