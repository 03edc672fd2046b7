// SPDX-License-Identifier: MIT
#include "app/operations/clean/clean_scene.h"

#include <algorithm>
#include <utility>

#include "app/operations/clean/clean_method.h"
#include "app/operations/clean/held.h"
#include "app/operations/clean/metadata_guard.h"
#include "app/scene/loaded_scene.h"
#include "app/scene/name_patterns.h"
#include "base/text.h"
#include "gltf/members.h"
#include "kernix/scene/change_record_model.h"
#include "kernix/utf.h"

namespace zr {

using gltf::Document;
using gltf::Kind;
using gltf::KindSet;
using kernix::SceneModel;

const std::array<CleanStepInfo, kCleanSteps> kCleanStepInfo = {{
    {"metadata", "metadata of nodes", false, std::nullopt},
    {"duplicate-materials", "materials that duplicate another", true, Kind::kMaterial},
    {"duplicate-meshes", "meshes that duplicate another in the same place", true, Kind::kNode},
    {"empty-nodes", "nodes without content or children", true, Kind::kNode},
    {"model-views", "model views and portfolios", false, std::nullopt},
    {"layers", "layers that are empty or hidden", true, std::nullopt},
    {"notes", "notes outside all layers", false, Kind::kNode},
    {"materials", "unused materials", true, Kind::kMaterial},
    {"animations", "animations that no viewport plays", true, Kind::kAnimation},
    {"environment", "environment lights and backdrops", false, std::nullopt},
}};

namespace {

using Operation = int (zr_CLEANER::*)(vl::zr::Scene*, vl::Context*, ChangeRecord*);

// Null for the steps that are not operations of the cleaner itself.
constexpr std::array<Operation, kCleanSteps> kOperations = {
    &zr_CLEANER::RemoveMetadata,         nullptr,
    &zr_CLEANER::RemoveMeshDupes,        &zr_CLEANER::RemoveEmptyNodes,
    &zr_CLEANER::RemoveModelViews,       &zr_CLEANER::RemoveUnusedLayers,
    &zr_CLEANER::RemoveNotesAndEtc,      &zr_CLEANER::RemoveUnusedMaterials,
    &zr_CLEANER::RemoveUnusedAnimations, nullptr,
};

}  // namespace

SceneOptions SceneOptionsOf(const CleanOptions& options) {
    SceneOptions sceneOptions;
    sceneOptions.repeats = options.blended ? Repeats::kBlended : Repeats::kUnseen;
    sceneOptions.force = true;  // each step handles unknown references itself
    if (!options.keep.empty() || options.keepNamed || options.keepExtras) {
        sceneOptions.keep = [&options](const gltf::Json& element) -> std::string {
            const std::string_view name = gltf::NameOf(element);
            if (MatchesAny(options.keep, name)) return "kept by name";
            if (options.keepNamed && !name.empty()) return "kept for having a name";
            return options.keepExtras && element.Find("extras") != nullptr ? "kept for its extras" : "";
        };
    }
    return sceneOptions;
}

namespace {

// One pass of the steps over the scene of a document.
class Round {
public:
    Round(Document document, zr_CLEANER& cleaner, EnvironmentService& environment, vl::Context* context,
          const SceneOptions& options, CleanResult& result)
        : m_cleaner(cleaner),
          m_environment(environment),
          m_context(context),
          m_result(result),
          m_loaded(std::move(document), options),
          m_scene(m_loaded.Scene()),
          m_metadata(m_loaded) {}

    void Run(std::size_t step) {
        StepResult& result = m_result.steps[step];
        result.ran = true;
        if (const Operation operation = kOperations[step]) {
            if (static_cast<CleanStep>(step) == CleanStep::kMetadata) NameMetadata(result.names);
            const auto record = vl::Ref<ChangeRecord>::AdoptNew(m_scene.CreateChangeRecord(1));
            record->Begin();
            const int count = (m_cleaner.*operation)(&m_scene, m_context, record.Get());
            record->End(u"");
            result.count += static_cast<std::size_t>(count) - m_metadata.TakeSpared();
            const auto& changes = static_cast<kernix::ChangeRecordModel&>(*record);
            NameRemovals(changes, result.names);
            m_freed = m_freed || FreesParent(changes);
        } else if (static_cast<CleanStep>(step) == CleanStep::kEqualMaterials) {
            result.count += static_cast<std::size_t>(m_scene.MergeEqualMaterials());
            NameMerged(result.names);
        } else {
            RemoveEnvironment(result);
        }
    }

    // A duplicate mesh or an empty node can be removed only once all its children are gone.
    void RunFreed(const std::array<bool, kCleanSteps>& allowed) {
        while (std::exchange(m_freed, false) && !m_context->IsBreak()) {
            for (const CleanStep step : {CleanStep::kMeshDupes, CleanStep::kEmptyNodes})
                if (allowed[static_cast<std::size_t>(step)]) Run(static_cast<std::size_t>(step));
        }
    }

    // Records what the steps kept only because something refers to it.
    void Explain() { m_result.held = HeldElements(m_loaded, RanSteps()); }

    Document Finish() { return std::move(m_loaded).WriteBack(); }

private:
    std::array<bool, kCleanSteps> RanSteps() const {
        std::array<bool, kCleanSteps> ran{};
        for (std::size_t step = 0; step < kCleanSteps; ++step) ran[step] = m_result.steps[step].ran;
        return ran;
    }

    void NameMetadata(std::vector<std::string>& names) const {
        for (auto* node : vl::ArrayOf<vl::zr::Node*>(m_scene.m_pNodes)) {
            if (node->GetMetadata(false) != nullptr) names.push_back(m_loaded.NameOf(*node));
        }
    }

    void NameMerged(std::vector<std::string>& names) const {
        for (const auto& material : m_scene.AllMaterials()) {
            if (m_scene.MergedInto(material.Get()) != material.Get()) {
                names.push_back(NameOr(material->GetNameText().value_or(""), material->GetId()));
            }
        }
    }

    static bool FreesParent(const kernix::ChangeRecordModel& record) {
        const auto& entries = record.GetEntries();
        return std::any_of(entries.begin(), entries.end(), [](const auto& entry) {
            const auto* node = dynamic_cast<const kernix::NodeModel*>(entry.object.Get());
            if (node == nullptr || !node->IsDeleted()) return false;
            const kernix::NodeModel* parent = node->GetParent();
            return parent != nullptr && !parent->IsDeleted() && parent->m_pFirstChild == nullptr;
        });
    }

    void NameRemovals(const kernix::ChangeRecordModel& record, std::vector<std::string>& names) const {
        for (const auto& entry : record.GetEntries()) {
            if (entry.change == kernix::ChangeRecordModel::Change::kAnimationItemRemoval) continue;
            const auto* node = dynamic_cast<const kernix::NodeModel*>(entry.object.Get());
            if (node != nullptr && !node->IsDeleted()) continue;  // spared
            names.push_back(node != nullptr      ? m_loaded.NameOf(*node)
                            : entry.name.empty() ? "unnamed"
                                                 : entry.name);
        }
    }

    // Only the scripted interface offers this operation; the cleaner's own interface does not.
    void RemoveEnvironment(StepResult& result) {
        const CleanMethod method(m_cleaner);
        const auto params = method.Only(&m_scene, "Remove_EnvMaps_And_Backplates");
        const auto names = m_environment.Run(
            m_loaded.Document(), [&] { m_cleaner.Invoke(method.Number(), params.Get(), m_context); });
        result.count += names.size();
        result.names.insert(result.names.end(), names.begin(), names.end());
    }

    zr_CLEANER& m_cleaner;
    EnvironmentService& m_environment;
    vl::Context* m_context;
    CleanResult& m_result;
    LoadedScene m_loaded;
    SceneModel& m_scene;
    MetadataGuard m_metadata;
    bool m_freed = false;  // a node lost its last child
};

void Add(gltf::Collected& total, gltf::Collected more) {
    for (std::size_t kind = 0; kind < gltf::kKinds; ++kind) total.removed[kind] += more.removed[kind];
    total.bytes += more.bytes;
    for (gltf::OpaqueUse& refusal : more.refusals) {
        const bool known =
            std::any_of(total.refusals.begin(), total.refusals.end(),
                        [&](const gltf::OpaqueUse& use) { return use.place == refusal.place; });
        if (!known) total.refusals.push_back(std::move(refusal));
    }
}

// The steps that may run: not those that could remove elements to which an unknown extension may refer.
// Records why the others may not.
std::array<bool, kCleanSteps> AllowedSteps(const gltf::Opaque& opaque, const CleanOptions& options,
                                           CleanResult& result) {
    std::array<bool, kCleanSteps> allowed = options.steps;
    for (std::size_t step = 0; step < kCleanSteps; ++step) {
        const auto& removes = kCleanStepInfo[step].removes;
        if (!allowed[step] || !removes || !opaque.kinds.Has(*removes)) continue;
        allowed[step] = false;
        for (const gltf::OpaqueUse& use : opaque.uses) {
            if (use.kinds.Has(*removes)) result.steps[step].refusals.push_back(use);
        }
    }
    return allowed;
}

}  // namespace

// Removing an animation frees the nodes it moved, and removing a skin frees its joints, so rounds repeat
// until nothing more is freed. Places in the explanation refer to the document before the last round.
CleanResult CleanDocument(Document& document, zr_CLEANER& cleaner, EnvironmentService& environment,
                          vl::Context* context, const CleanOptions& options,
                          const std::function<void(double)>& progress) {
    CleanResult result;
    const gltf::Opaque opaque = options.force ? gltf::Opaque() : gltf::OpaqueReferences(document);
    const std::array<bool, kCleanSteps> allowed = AllowedSteps(opaque, options, result);
    // Removals add no unknown references.
    const bool followsAll = options.force || opaque.uses.empty();
    const auto collectShown = [&] {
        if (options.keepData) return false;
        gltf::Collected collected = gltf::CollectGarbage(document, kShownKinds, followsAll);
        const bool freesJoints = collected.removed[gltf::Ordinal(Kind::kSkin)] != 0;
        Add(result.collected, std::move(collected));
        return freesJoints;
    };
    // Approximate progress after building the scene and after the steps; the rest is collecting.
    constexpr double kSceneMade = 0.5, kStepsDone = 0.75;
    SceneOptions sceneOptions = SceneOptionsOf(options);
    sceneOptions.progress = [&](double done) { progress(kSceneMade * done); };
    collectShown();
    for (bool again = true; again;) {
        const std::size_t animations = result.steps[static_cast<std::size_t>(CleanStep::kAnimations)].count;
        const auto round =
            std::make_shared<Round>(std::move(document), cleaner, environment, context, sceneOptions, result);
        for (std::size_t step = 0; step < kCleanSteps && !context->IsBreak(); ++step) {
            if (static_cast<CleanStep>(step) == CleanStep::kMaterials) round->RunFreed(allowed);
            if (allowed[step]) round->Run(step);
            progress(kSceneMade + (kStepsDone - kSceneMade) * static_cast<double>(step + 1) / kCleanSteps);
        }
        if (context->IsBreak()) return result;
        if (options.explain) round->Explain();
        document = round->Finish();
        again = collectShown() ||
                result.steps[static_cast<std::size_t>(CleanStep::kAnimations)].count != animations;
        if (!again && options.retire) options.retire(round);
    }
    if (options.explain && result.steps[static_cast<std::size_t>(CleanStep::kMeshDupes)].ran) {
        const auto twins = HeldTwins(document, cleaner, context, options);
        result.held.insert(result.held.end(), twins.begin(), twins.end());
    }
    if (!options.keepData)
        Add(result.collected, gltf::CollectGarbage(document, gltf::kDataKinds, followsAll));
    progress(1);
    return result;
}

}  // namespace zr
