// SPDX-License-Identifier: MIT
#include "app/operations/export/view_camera.h"

#include <cmath>

#include "app/scene/bounds.h"

namespace zr {
namespace {

constexpr double kDegree = 0.017453292519943295;
constexpr double kFieldOfView = 45 * kDegree;  // vertical
constexpr double kToTheRight = 30 * kDegree;
constexpr double kFromAbove = 20 * kDegree;

// Relative to the distance from the centre. The scene at rest lies between 0.6 and 1.4; moving parts may come
// nearer or go farther.
constexpr double kNear = 0.01;
constexpr double kFar = 10;

struct Ball {
    vl::Vector3<double> middle;
    double radius = 1;
};

Ball BallAround(const Bounds& bounds) {
    const vl::Vector3<double> size{bounds.high.x - bounds.low.x, bounds.high.y - bounds.low.y,
                                   bounds.high.z - bounds.low.z};
    const double diagonal = std::hypot(size.x, size.y, size.z);
    if (!std::isfinite(diagonal)) return {};  // nothing is there or visible
    return {{bounds.low.x + size.x / 2, bounds.low.y + size.y / 2, bounds.low.z + size.z / 2},
            diagonal > 0 ? diagonal / 2 : 1};
}

}  // namespace

ViewCamera::ViewCamera(LoadedScene& loaded) {
    const Ball ball = BallAround(BoundsAtRest(loaded));
    m_distance = ball.radius / std::sin(kFieldOfView / 2);
    m_node = loaded.Scene().AddNode(nullptr, "view camera");
    m_node->m_dwFlags |= vl::zr::kNodeSystem;
    m_node->SetObject(vl::Ref<vl::zr::Object3D>::AdoptNew(new kernix::CameraModel));
    loaded.Scene().SetDefaultCameraNode(m_node);

    vl::Matrix4<double> place;
    place.SetTranslate({0, 0, m_distance});
    place.RotateX(-kFromAbove);
    place.RotateY(kToTheRight);
    place.Offset(ball.middle);
    m_node->SetRestMatrix(place);
}

std::vector<NewCamera> ViewCamera::CamerasOf(const Tool& tool, const std::vector<std::size_t>& nodes,
                                             const ExportOptions& options) const {
    std::vector<NewCamera> cameras;
    // The near and far planes do not scale with the node.
    const double distance = m_distance * options.Scale();
    std::size_t at = 0;
    for (const ExportNode* record : AllRecords(tool)) {
        const std::size_t index = nodes[at++];
        if (record->pNode != m_node || (record->dwFlags & NF_GEOMETRY) == 0) continue;
        cameras.push_back({index, m_node->GetNameText(), kFieldOfView, kNear * distance, kFar * distance});
    }
    return cameras;
}

}  // namespace zr
