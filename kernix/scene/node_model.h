// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/node.h"
#include "host/object.h"
#include "host/ref.h"
#include "host/var.h"
#include "kernix/scene/sampled_controller_model.h"
#include "kernix/scene/transform_controller_model.h"

namespace kernix {

class SceneModel;

// A node of a SceneModel; made by SceneModel::AddNode.
class KERNIX_API NodeModel final : public vl::zr::Node {
public:
    NodeModel(SceneModel& scene, std::string name);
    ~NodeModel() override;

    vl::VarMap* GetMetadata(bool create) override;
    void GetName(char* buffer, int size) override;
    void GetNameW(char16_t* buffer, int size) override;
    void GetDescription(char* buffer, int size) override;
    vl::zr::Controller* GetController(int kind) override;
    void GetLocalMatrix(vl::Matrix4<double>* m, int isStatic) override;
    void GetWorldMatrix(vl::Matrix4<double>* m, int isStatic) override;
    void Delete(int mode) override;
    vl::zr::Object3D* GetObjectOfKind(int kind) override;

    SceneModel& GetScene() const { return m_scene; }
    NodeModel* GetParent() const { return m_parent; }
    const std::string& GetNameText() const { return m_name; }
    std::size_t GetNumber() const { return m_number; }  // among all nodes the scene ever had
    bool IsDeleted() const { return m_deleted; }

    // The transform at rest: a pose, or any matrix.
    void SetRestPose(const Pose& pose);
    void SetRestMatrix(const vl::Matrix4<double>& m);
    const Pose& GetRestPose() const { return m_restPose; }
    vl::Matrix4<double> GetRestMatrix() const;

    // Takes over the caller's count. Null removes the object.
    void SetObject(vl::Ref<vl::zr::Object3D> object);
    void SetObjectOffset(const vl::Matrix4<double>& offset);
    TransformControllerModel* AddTransformController();  // or returns the existing one
    SampledControllerModel* AddController(std::string target);
    void AddGenerator(std::string name) { More().generators.push_back(std::move(name)); }
    bool HasGenerator(const char* name) const;

private:
    friend class SceneModel;

    // Data that few nodes have.
    struct Rare {
        std::unique_ptr<vl::Matrix4<double>> objectOffset;
        vl::Ref<vl::VarMap> metadata;
        vl::Ref<TransformControllerModel> transform;
        std::vector<vl::Ref<SampledControllerModel>> controllers;
        vl::Ref<vl::Array> controllerWords;
        std::vector<std::string> generators;
    };

    // A world transform and the state of the scene that it was made for.
    struct CachedWorld {
        vl::Matrix4<double> matrix;
        std::uint64_t state = 0;
    };

    const vl::Matrix4<double>& World(int isStatic);
    bool KnowsWorld(std::size_t which, std::uint64_t state) const {
        return m_worlds[which] != nullptr && m_worlds[which]->state == state;
    }
    TransformControllerModel* Transform() const { return m_rare ? m_rare->transform.Get() : nullptr; }
    Rare& More();
    void AddControllerWord(vl::zr::Controller* controller);

    SceneModel& m_scene;
    std::string m_name;
    NodeModel* m_parent = nullptr;
    NodeModel* m_previous = nullptr;  // sibling
    NodeModel* m_lastChild = nullptr;
    std::uint32_t m_number = 0;  // among all nodes the scene ever had
    bool m_deleted = false;
    Pose m_restPose;
    // A scene has many nodes and few of them use any of these, so they are allocated on demand.
    std::unique_ptr<vl::Matrix4<double>> m_restMatrix;  // null: the one of the pose
    std::unique_ptr<CachedWorld> m_worlds[2];           // at the current time, at rest; null: not needed yet
    std::unique_ptr<Rare> m_rare;
    vl::Ref<vl::zr::Object3D> m_object;
};

}  // namespace kernix
