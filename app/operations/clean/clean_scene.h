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

// The steps of cleaning a scene, in the order in which they run.
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
    bool unseen;                        // removes only what is not visible: on by default
    std::optional<gltf::Kind> removes;  // the kind of element removed, if others may refer to it by index
};

extern const std::array<CleanStepInfo, kCleanSteps> kCleanStepInfo;

struct CleanOptions {
    std::array<bool, kCleanSteps> steps{};
    std::vector<std::string> keep;  // shell patterns of names of nodes, materials and animations that stay
    bool keepNamed = false;         // every node, material and animation with a name stays
    bool keepExtras = false;        // the same for those with extras
    bool force = false;             // remove even what an unknown extension could refer to
    bool keepData = false;          // keep data that is no longer referenced
    bool blended = false;           // also remove blended duplicates, although fewer layers look different
    bool explain = false;           // fill CleanResult::held
    // Receives the working data, so that its destruction can be postponed or skipped; null: it is destroyed
    // at once.
    std::function<void(std::shared_ptr<void>)> retire;
};

// How to load a scene for these options, which must outlive it.
struct SceneOptions;
SceneOptions SceneOptionsOf(const CleanOptions& options);

// Kinds of elements that are removed along with the last node that shows them.
inline constexpr gltf::KindSet kShownKinds{gltf::Kind::kMesh, gltf::Kind::kSkin, gltf::Kind::kCamera,
                                           gltf::Kind::kLight};

struct StepResult {
    bool ran = false;
    std::size_t count = 0;
    std::vector<std::string> names;         // of removed elements; "#4" for element 4 if it has no name
    std::vector<gltf::OpaqueUse> refusals;  // why the step did not run
};

// An element that the steps would have removed if nothing referred to it, or a mesh that is kept although it
// looks like another one in the same place. Indices in `holder` are those of the original scene, unless
// earlier removals freed more.
struct HeldElement {
    gltf::Kind kind;
    std::string name;
    std::string holder;  // "channel of animation 3 (/animations/3/channels/0/target/node)"
};

struct CleanResult {
    std::array<StepResult, kCleanSteps> steps;
    std::vector<HeldElement> held;  // filled with CleanOptions::explain
    gltf::Collected collected;      // unreferenced elements that were removed
};

// Cleans the document in place with the module's cleaner until nothing more can be removed, so that cleaning
// the result again changes nothing. progress: called with values from 0 to 1; if it throws, cleaning stops
// between two removals. After an exception, or when the context says to break, the document must not be used.
// Throws gltf::Error, and whatever progress throws.
CleanResult CleanDocument(gltf::Document& document, zr_CLEANER& cleaner, EnvironmentService& environment,
                          vl::Context* context, const CleanOptions& options,
                          const std::function<void(double)>& progress);

}  // namespace zr
