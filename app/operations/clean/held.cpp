// SPDX-License-Identifier: MIT
#include "app/operations/clean/held.h"

#include <algorithm>
#include <utility>

#include "app/scene/mesh_builder.h"
#include "app/scene/surroundings.h"
#include "base/text.h"
#include "gltf/members.h"
#include "kernix/scene/change_record_model.h"

namespace zr {

using gltf::Document;
using gltf::Kind;

namespace {

std::string ElementName(const Document& document, Kind kind, std::size_t index) {
    return NameOr(std::string(gltf::NameOf(document.Elements(kind)[index])), index);
}

std::string DescribePlace(const std::string& place) {
    const auto number = [&](std::string_view from) {
        return place.substr(from.size(), place.find('/', from.size()) - from.size());
    };
    if (place.empty() || place[0] != '/') return place;
    std::string words = "reference";
    if (place.starts_with("/skins/")) words = Join("joint of skin ", number("/skins/"));
    if (place.starts_with("/animations/")) words = Join("channel of animation ", number("/animations/"));
    const std::size_t extension = place.rfind("/extensions/");
    if (place.find("/KHR_materials_variants/") != std::string::npos) {
        words = "variant";
    } else if (extension != std::string::npos) {
        const std::size_t start = extension + std::string_view("/extensions/").size();
        words = "extension " + place.substr(start, place.find('/', start) - start);
    }
    return words + " (" + place + ")";
}

class Explanation {
public:
    Explanation(LoadedScene& loaded, const std::array<bool, kCleanSteps>& ran)
        : m_loaded(loaded), m_ran(ran) {}

    std::vector<HeldElement> Take() {
        for (const KeptElement& kept : m_loaded.Kept())
            if (IsHeld(kept.kind, kept.index)) Add(kept.kind, kept.index, DescribePlace(kept.reason));
        if (Ran(CleanStep::kMaterials)) Variants();
        if (Ran(CleanStep::kEmptyNodes)) {
            Metadata();
            Targets();
        }
        return std::move(m_held);
    }

private:
    bool Ran(CleanStep step) const { return m_ran[static_cast<std::size_t>(step)]; }

    void Add(Kind kind, std::size_t index, std::string holder) {
        m_held.push_back({kind, ElementName(m_loaded.Document(), kind, index), std::move(holder)});
    }

    bool IsHeld(Kind kind, std::size_t index) const {
        if (kind == Kind::kMaterial) {
            return Ran(CleanStep::kMaterials) && m_loaded.Material(index) == nullptr;
        }
        if (kind == Kind::kAnimation) {
            return Ran(CleanStep::kAnimations) && m_loaded.Animation(index)->Tracks().empty();
        }
        return Ran(CleanStep::kEmptyNodes) && m_loaded.Node(index) != nullptr &&
               IsPlaceholder(*m_loaded.Node(index));
    }

    static bool IsPlaceholder(const kernix::NodeModel& node) {
        vl::zr::Object3D* object = node.m_pObject;
        return object != nullptr && node.m_pFirstChild == nullptr &&
               (object->IsKindOf(vl::zr::kKindDummy) || object->IsKindOf(vl::zr::kKindBone));
    }

    // Materials that no primitive shows until a variant is chosen.
    void Variants() {
        Document& document = m_loaded.Document();
        std::vector<std::string> variants(document.Elements(Kind::kMaterial).size());
        std::vector<bool> shown(variants.size(), false);
        gltf::ForEachReference(document, {Kind::kMaterial}, [&](const gltf::Reference& reference) {
            const std::string place = reference.place.Pointer();
            if (place.find("/KHR_materials_variants/") == std::string::npos) {
                shown[reference.target.index] = true;
            } else {
                variants[reference.target.index] = place;
            }
        });
        for (std::size_t i = 0; i < variants.size(); ++i) {
            kernix::MaterialModel* material = m_loaded.Material(i);
            if (shown[i] || variants[i].empty() || material == nullptr) continue;
            if (m_loaded.Scene().MergedInto(material) == material)
                Add(Kind::kMaterial, i, DescribePlace(variants[i]));
        }
    }

    // Nodes that are empty apart from their metadata; nodes held by something else are reported already.
    void Metadata() {
        std::vector<bool> known(m_loaded.Document().Elements(Kind::kNode).size(), false);
        for (const KeptElement& kept : m_loaded.Kept())
            if (kept.kind == Kind::kNode) known[kept.index] = true;
        for (const std::size_t node : m_loaded.ExtrasNodes()) {
            if (!known[node] && IsPlaceholder(*m_loaded.Node(node))) Add(Kind::kNode, node, "metadata");
        }
    }

    void Targets() {
        for (auto* plain : vl::ArrayOf<vl::zr::Node*>(m_loaded.Scene().m_pNodes)) {
            if (plain->m_pObject != nullptr || plain->m_pFirstChild != nullptr) continue;
            m_held.push_back({Kind::kNode, m_loaded.NameOf(*plain), "target of a camera or light"});
        }
    }

    LoadedScene& m_loaded;
    const std::array<bool, kCleanSteps>& m_ran;
    std::vector<HeldElement> m_held;
};

// Finds why a mesh that duplicates another one was kept.
class TwinReasons {
public:
    explicit TwinReasons(LoadedScene& loaded)
        : m_loaded(loaded),
          m_surroundings(loaded.Document()),
          m_apart(loaded.Document().Elements(Kind::kNode).size(), Surroundings::kNone),
          m_hasMetadata(m_apart.size(), false),
          m_isBlended(loaded.Scene().AllMaterials().size(), false) {
        gltf::ForEachReference(loaded.Document(), {Kind::kNode},
                               [&](const gltf::Reference& r) { m_surroundings.Note(r); });
        for (const auto& node : loaded.Scene().AllNodes()) {
            const kernix::NodeModel* parent = node->GetParent();
            const std::size_t above = parent != nullptr ? IndexOf(*parent) : Surroundings::kNone;
            const gltf::Json& json = loaded.Document().Elements(Kind::kNode)[IndexOf(*node)];
            m_apart[IndexOf(*node)] = m_surroundings.Enter(IndexOf(*node), above, json.Find("extensions"));
        }
        for (const std::size_t node : loaded.ExtrasNodes()) m_hasMetadata[node] = true;
        const auto materials = loaded.Document().Elements(Kind::kMaterial);
        for (std::size_t i = 0; i < materials.size(); ++i)
            if (const kernix::MaterialModel* material = loaded.Material(i))
                m_isBlended[material->GetId()] = IsBlended(materials[i]);
    }

    std::string For(const kernix::NodeModel& node) const {
        const std::size_t index = IndexOf(node);
        const auto& uses = static_cast<const kernix::MeshModel&>(*node.m_pObject).GetUses()->All();
        if (m_apart[index] != Surroundings::kNone)
            return "below " + DescribePlace(m_surroundings.PlaceOf(m_apart[index]));
        if (std::any_of(uses.begin(), uses.end(),
                        [&](const auto* material) { return m_isBlended[material->GetId()]; }))
            return "blended with the mesh that it duplicates";
        return m_hasMetadata[index] ? "metadata" : "has other ancestors than the mesh that it duplicates";
    }

private:
    std::size_t IndexOf(const kernix::NodeModel& node) const { return *m_loaded.IndexOf(&node); }

    const LoadedScene& m_loaded;
    Surroundings m_surroundings;
    std::vector<std::size_t> m_apart;  // by node
    std::vector<bool> m_hasMetadata;   // by node
    std::vector<bool> m_isBlended;     // by MaterialModel::GetId
};

}  // namespace

std::string NameOr(std::string name, std::size_t index) {
    return name.empty() ? Join("#", index) : std::move(name);
}

std::vector<HeldElement> HeldElements(LoadedScene& loaded, const std::array<bool, kCleanSteps>& ran) {
    return Explanation(loaded, ran).Take();
}

std::vector<HeldElement> HeldTwins(Document& document, zr_CLEANER& cleaner, vl::Context* context,
                                   const CleanOptions& options) {
    SceneOptions sceneOptions = SceneOptionsOf(options);
    sceneOptions.repeats = Repeats::kAlike;
    LoadedScene loaded(std::move(document), sceneOptions);
    const TwinReasons reasons(loaded);
    kernix::ChangeRecordModel record;
    cleaner.RemoveMeshDupes(&loaded.Scene(), context, &record);
    std::vector<HeldElement> held;
    for (const auto& entry : record.GetEntries()) {
        const auto& node = static_cast<const kernix::NodeModel&>(*entry.object);
        held.push_back({Kind::kNode, loaded.NameOf(node), reasons.For(node)});
    }
    document = std::move(loaded.Document());
    return held;
}

}  // namespace zr
