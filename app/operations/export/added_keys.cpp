// SPDX-License-Identifier: MIT
#include "app/operations/export/added_keys.h"

#include <unordered_map>
#include <utility>

#include "app/operations/export/record_keys.h"

namespace zr {
namespace {

constexpr int kKeyTypes[] = {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale};

}  // namespace

void CollectAddedKeys(const Tool& tool, kernix::AnimationModel& animation, std::vector<AddedKeys>& added) {
    std::size_t index = 0;
    for (const ExportNode* record : AllRecords(tool)) {
        AddedKeys keys{index++, &animation, {}};
        if (record->pController != nullptr) continue;
        bool hasKeys = false;
        for (std::size_t i = 0; i < 3; ++i) {
            keys.curves[i] = RecordCurve(*record, kKeyTypes[i]);
            hasKeys = hasKeys || !keys.curves[i].times.empty();
        }
        if (hasKeys) added.push_back(std::move(keys));
    }
}

void WriteAddedKeys(LoadedScene& loaded, const std::vector<std::size_t>& nodes,
                    const std::vector<AddedKeys>& added) {
    std::unordered_map<std::size_t, kernix::NodeModel*> models;  // by node of the document
    for (const auto& model : loaded.Scene().AllNodes()) {
        if (model->m_source >= 0 && !model->IsDeleted())
            models[static_cast<std::size_t>(model->m_source)] = model.Get();
    }
    for (const AddedKeys& keys : added) {
        kernix::NodeModel*& model = models[nodes[keys.record]];
        if (model == nullptr) {
            model = loaded.Scene().AddNode(nullptr, {});
            model->m_source = static_cast<int>(nodes[keys.record]);
        }
        kernix::TransformTrack* track = model->AddTransformController()->AddTransformTrack(keys.animation);
        for (std::size_t i = 0; i < 3; ++i) ReplaceKeys(*track, kKeyTypes[i], keys.curves[i]);
    }
}

}  // namespace zr
