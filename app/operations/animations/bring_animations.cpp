// SPDX-License-Identifier: MIT
#include "app/operations/animations/bring_animations.h"

#include "app/operations/animations/animation_choice.h"
#include "base/text.h"
#include "gltf/accessor.h"

namespace zr {
namespace {

using gltf::Json;
using kernix::NodeModel;

class Bringing {
public:
    Bringing(LoadedScene& from, LoadedScene& to, const NodePartners& partners)
        : m_from(from), m_to(to), m_partners(partners) {}

    BroughtAnimations Run() {
        m_sources = AnimationsOf(m_from.Scene());
        for (kernix::AnimationModel* source : m_sources)
            m_brought.animations.push_back(m_to.Scene().AddAnimation(source->m_name));
        for (vl::zr::Node* each : vl::ArrayOf<vl::zr::Node*>(m_from.Scene().m_pNodes)) {
            auto* node = static_cast<NodeModel*>(each);
            for (vl::zr::Controller* controller : vl::ArrayOf<vl::zr::Controller*>(node->m_pControllers))
                if (!vl::ArrayOf<vl::zr::Track*>(controller->m_pTracks).IsEmpty()) Bring(*node, *controller);
        }
        for (vl::zr::Material* material : vl::ArrayOf<vl::zr::Material*>(m_from.Scene().m_pMaterials))
            for (vl::zr::Controller* controller : vl::ArrayOf<vl::zr::Controller*>(material->m_pControllers))
                m_brought.withoutPartner.push_back(Target(*controller));
        return std::move(m_brought);
    }

private:
    static const std::string& Target(vl::zr::Controller& controller) {
        return static_cast<kernix::SampledControllerModel&>(controller).GetTarget();
    }

    void Bring(NodeModel& node, vl::zr::Controller& controller) {
        const auto found = m_partners.find(&node);
        if (controller.IsTypeOf(vl::zr::kTypeTransformController)) {
            if (found == m_partners.end()) return m_brought.withoutPartner.push_back(NodePath(node));
            SplitMatrix(*found->second);
            return CopyTracks(controller, *found->second->AddTransformController());
        }
        const bool isWeights = Target(controller) == WeightsTarget(m_from, node);
        const std::size_t targets = isWeights ? MorphTargets(m_from, node) : 0;
        if (found == m_partners.end() || targets == 0 || targets != MorphTargets(m_to, *found->second))
            return m_brought.withoutPartner.push_back(NodePath(node) + ": " + Target(controller));
        CopyTracks(controller, WeightsController(*found->second));
    }

    void CopyTracks(vl::zr::Controller& source, vl::zr::Controller& target) {
        for (std::size_t i = 0; i < m_sources.size(); ++i) {
            vl::zr::Track* track = source.GetTrack(m_sources[i]);
            if (track != nullptr) CopyTrack(source, track, target, m_brought.animations[i]);
        }
    }

    static std::string WeightsTarget(const LoadedScene& loaded, const NodeModel& node) {
        return Join("/nodes/", *loaded.IndexOf(&node), "/weights");
    }

    kernix::SampledControllerModel& WeightsController(NodeModel& node) const {
        const std::string target = WeightsTarget(m_to, node);
        for (vl::zr::Controller* controller : vl::ArrayOf<vl::zr::Controller*>(node.m_pControllers))
            if (!controller->IsTypeOf(vl::zr::kTypeTransformController) && Target(*controller) == target)
                return static_cast<kernix::SampledControllerModel&>(*controller);
        return *node.AddController(target);
    }

    static std::size_t MorphTargets(LoadedScene& loaded, const NodeModel& node) {
        gltf::Document& document = loaded.Document();
        const Json& json = document.Elements(gltf::Kind::kNode)[*loaded.IndexOf(&node)];
        if (json.Find("mesh") == nullptr) return 0;
        const Json& mesh = document.Elements(gltf::Kind::kMesh)[gltf::IndexMember(json, "mesh")];
        const Json* targets = mesh.Find("primitives")->Items()[0].Find("targets");
        return targets != nullptr ? targets->Items().size() : 0;
    }

    // An animated node may not have a matrix: stores its rest transform as translation, rotation and scale.
    void SplitMatrix(const NodeModel& node) {
        gltf::Document& document = m_to.Document();
        Json& json = document.Elements(gltf::Kind::kNode)[*m_to.IndexOf(&node)];
        if (!json.EraseMember("matrix")) return;
        const kernix::Pose& pose = node.GetRestPose();
        const auto put = [&](const char* name, std::initializer_list<float> values) {
            document.Tree().Member(json, name) = document.Tree().MakeNumbers(std::vector<float>(values));
        };
        put("translation", {pose.translation.x, pose.translation.y, pose.translation.z});
        put("rotation", {pose.rotation.x, pose.rotation.y, pose.rotation.z, pose.rotation.w});
        put("scale", {pose.scale.x, pose.scale.y, pose.scale.z});
    }

    LoadedScene& m_from;
    LoadedScene& m_to;
    Animations m_sources;
    const NodePartners& m_partners;
    BroughtAnimations m_brought;
};

}  // namespace

BroughtAnimations BringAnimations(LoadedScene& from, LoadedScene& to, const NodePartners& partners) {
    return Bringing(from, to, partners).Run();
}

}  // namespace zr
