// SPDX-License-Identifier: MIT
#include "app/scene/loaded_scene.h"

#include "app/scene/scene_builder.h"
#include "app/scene/scene_writer.h"
#include "base/text.h"

namespace zr {

std::string SkippedChannel::Place() const {
    return Join("/animations/", animation, "/channels/", channel);
}

LoadedScene::LoadedScene(gltf::Document document, const SceneOptions& options)
    : m_document(std::move(document)),
      m_scene(vl::Ref<kernix::SceneModel>::Adopt(new kernix::SceneModel)),
      m_force(options.force) {
    SceneBuilder(*this, options).Build();
}

LoadedScene::~LoadedScene() = default;

void LoadedScene::WriteBack() {
    SceneWriter(*this).Run();
}

}  // namespace zr
