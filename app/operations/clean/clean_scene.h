// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/services/environment_helper.h"
#include "gltf/collect.h"
#include "host/cleaner.h"
#include "host/context.h"

namespace zr {

// What the cleaner can remove from a scene, in the order in which it does.
enum class CleanStep : std::size_t {
    kMetadata,
    kEqualMaterials,
    kMeshDupes,
    kEmptyNodes,
    kModelViews,
    kLayers,
    kNotes,
    kMaterials,
    kAnimations,
    kEnvironment,
};

inline constexpr std::size_t kCleanSteps = 10;

struct CleanStepInfo {
    std::string_view name;
    std::string_view what;              // for people
    bool unseen;                        // removes only what nobody sees: on by default
    std::optional<gltf::Kind> removes;  // elements that others may refer to by index
};

extern const std::array<CleanStepInfo, kCleanSteps> kCleanStepInfo;

struct CleanOptions {
    std::array<bool, kCleanSteps> steps{};
    std::vector<std::string> keep;  // shell patterns of names of nodes, materials and animations that stay
    bool keepNamed = false;         // every node, material and animation with a name stays
    bool keepExtras = false;        // the same for those with extras
    bool force = false;             // also where an unknown extension could refer to what is removed
    bool keepData = false;          // keep data that nothing refers to any more in the file
    bool blended = false;           // also repeated meshes that are blended, though more of them shows more
    bool explain = false;           // fill CleanResult::held
    // Receives the data the work needed, so that it can be destroyed later or never; null: it is destroyed at
    // once.
    std::function<void(std::shared_ptr<void>)> retire;
};

// How to load a scene for these options, which must outlive it.
struct SceneOptions;
SceneOptions SceneOptionsOf(const CleanOptions& options);

// Elements that are removed with the last node that shows them.
inline constexpr gltf::KindSet kShownKinds{gltf::Kind::kMesh, gltf::Kind::kSkin, gltf::Kind::kCamera,
                                           gltf::Kind::kLight};

struct StepResult {
    bool ran = false;
    std::size_t count = 0;
    std::vector<std::string> names;         // of what was removed; "#4" for element 4 when it has no name
    std::vector<gltf::OpaqueUse> refusals;  // what kept the step from running
};

// An element that the steps would have removed if nothing held it, or a mesh that looks like another one at
// its place but stays. Indices in the holder's place are those of the original scene, unless earlier removals
// freed more.
struct HeldElement {
    gltf::Kind kind;
    std::string name;
    std::string holder;  // "channel of animation 3 (/animations/3/channels/0/target/node)"
};

struct CleanResult {
    std::array<StepResult, kCleanSteps> steps;
    std::vector<HeldElement> held;  // with CleanOptions::explain
    gltf::Collected collected;      // elements that nothing refers to
};

// Cleans the document in place with the module's cleaner until nothing more can be removed, so that cleaning
// the result again changes nothing. progress: 0 to 1. If it throws, cleaning ends between two removals and
// the document must not be used. Throws gltf::Error, and what progress throws.
CleanResult CleanDocument(gltf::Document& document, zr_CLEANER& cleaner, EnvironmentService& environment,
                          vl::Context* context, const CleanOptions& options,
                          const std::function<void(double)>& progress);

}  // namespace zr
