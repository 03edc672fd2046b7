// SPDX-License-Identifier: MIT
#include "app/services/environment_helper.h"

#include <string_view>
#include <utility>

#include "gltf/members.h"
#include "host/hdr_helper.h"

namespace zr {

using gltf::Document;
using gltf::Json;
using gltf::Kind;

namespace {

constexpr std::string_view kImageBasedLights = "EXT_lights_image_based";

void EraseName(Json& root, std::string_view list, std::string_view name) {
    Json* names = root.Find(list);
    if (names == nullptr) return;
    names->FilterItems([&](const Json& item) { return item.String() != name; });
    if (names->Items().empty()) root.EraseMember(list);
}

void RemoveLights(Document& document, std::vector<std::string>& removed) {
    const Json* content = gltf::FindExtension(document.Root(), kImageBasedLights);
    if (content == nullptr) return;
    if (const Json* lights = content->Find("lights")) {
        for (const Json& light : lights->Items()) {
            const Json* name = light.Find("name");
            removed.emplace_back(name != nullptr ? name->String() : "environment light");
        }
    }
    gltf::EraseExtension(document.Root(), kImageBasedLights);
    for (Json& scene : document.Elements(Kind::kScene)) gltf::EraseExtension(scene, kImageBasedLights);
    EraseName(document.Root(), "extensionsUsed", kImageBasedLights);
    EraseName(document.Root(), "extensionsRequired", kImageBasedLights);
}

}  // namespace

class EnvironmentService::Helper final : public zr_HDR_HELPER {
public:
    explicit Helper(EnvironmentService& service) : m_service(service) {}

    const char* GetTypeName() override { return kTypeHdrHelper; }

    int RemoveEnvironment(vl::zr::Scene*, vl::Context*, ChangeRecord*) override {
        std::vector<std::string>& removed = m_service.m_removed;
        const std::size_t before = removed.size();
        RemoveLights(*m_service.m_document, removed);
        return static_cast<int>(removed.size() - before);
    }

private:
    EnvironmentService& m_service;
};

class EnvironmentService::View final : public ViewObject {
public:
    explicit View(EnvironmentService& service) : m_service(service) {}

    void ClearBackdrop(ChangeRecord*) override {
        Json* scene = gltf::FindExtension(m_service.m_document->Root(), "ZR_scene");
        if (scene != nullptr && scene->EraseMember("backdrop")) m_service.m_removed.emplace_back("backdrop");
    }

private:
    EnvironmentService& m_service;
};

EnvironmentService::EnvironmentService(Host& host)
    : m_host(host), m_self(std::make_shared<EnvironmentService*>(this)) {
    host.AddExtension(kTypeHdrHelper, [self = m_self]() -> vl::Extension* {
        return *self != nullptr && (*self)->m_document != nullptr ? new Helper(**self) : nullptr;
    });
}

EnvironmentService::~EnvironmentService() {
    *m_self = nullptr;
}

// Detaches document and view at the end of the scope, however it is left.
class EnvironmentService::Attachment {
public:
    Attachment(EnvironmentService& service, Document& document) : m_service(service), m_view(service) {
        m_service.m_removed.clear();
        m_service.m_document = &document;
        m_service.m_host.SetView(&m_view);
    }
    Attachment(const Attachment&) = delete;
    Attachment& operator=(const Attachment&) = delete;
    ~Attachment() {
        m_service.m_host.SetView(nullptr);
        m_service.m_document = nullptr;
    }

private:
    EnvironmentService& m_service;
    View m_view;
};

std::vector<std::string> EnvironmentService::Run(Document& document, const std::function<void()>& work) {
    const std::lock_guard lock(m_mutex);
    const Attachment attachment(*this, document);
    work();
    return std::move(m_removed);
}

}  // namespace zr
