// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "app/services/host.h"
#include "gltf/document.h"

namespace zr {

// Gives the module's cleaner access to the parts of a document outside its scene: the environment helper
// removes image-based lights, and the 3D view clears the backdrop. Serves one document at a time.
class EnvironmentService {
public:
    explicit EnvironmentService(Host& host);
    EnvironmentService(const EnvironmentService&) = delete;
    EnvironmentService& operator=(const EnvironmentService&) = delete;
    ~EnvironmentService();

    // Runs work with helper and view attached to the document and returns the names of what they removed;
    // passes on what work throws. May be called on any thread; a second caller waits.
    std::vector<std::string> Run(gltf::Document& document, const std::function<void()>& work);

private:
    class Attachment;
    class Helper;
    class View;

    Host& m_host;
    std::mutex m_mutex;
    gltf::Document* m_document = nullptr;  // while work runs
    std::vector<std::string> m_removed;
    // Shared with the host; points to null once this is gone.
    std::shared_ptr<EnvironmentService*> m_self;
};

}  // namespace zr
