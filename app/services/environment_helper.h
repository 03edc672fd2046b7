// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "app/services/host.h"
#include "gltf/document.h"

namespace zr {

// What the module's cleaner reaches of a document through the host beside its scene: the environment helper,
// which takes image-based lights out, and the 3D view, whose backdrop it clears. Both
// mean one document at a time.
class EnvironmentService {
public:
    explicit EnvironmentService(Host& host);
    EnvironmentService(const EnvironmentService&) = delete;
    EnvironmentService& operator=(const EnvironmentService&) = delete;
    ~EnvironmentService();

    // Runs work with helper and view on the document; what they took out, by name. On any thread; a second
    // caller waits.
    std::vector<std::string> Run(gltf::Document& document, const std::function<void()>& work);

private:
    class Helper;
    class View;

    Host& m_host;
    std::mutex m_mutex;
    gltf::Document* m_document = nullptr;  // while work runs
    std::vector<std::string> m_removed;
};

}  // namespace zr
