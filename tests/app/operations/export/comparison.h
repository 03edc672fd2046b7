// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/operations/export/export_options.h"
#include "app/scene/loaded_scene.h"

namespace zr::test {

// Holds an exported scene against the scene before, both at the times that they have: the latter transformed
// by the scene's matrix, and its mirror image where axes are exchanged. Compared are the frames of nodes, and
// where meshes, cameras and lights are shown and joints move the points of a mesh.
class Comparison {
public:
    Comparison(LoadedScene& before, LoadedScene& after, const ExportOptions& options);

    void Run(const std::string& where);

    // The greatest difference of a number so far, and where it is.
    double Greatest() const { return m_greatest; }
    const std::string& Place() const { return m_place; }

private:
    using M = vl::Matrix4<double>;

    M Moved(M m) const;
    void Compare(const M& actual, const M& expected, const char* what, int index);
    template <typename Object>
    void CompareAimed(kernix::NodeModel* node, kernix::NodeModel* exported, const char* what);
    void CompareSkins();

    LoadedScene& m_before;
    LoadedScene& m_after;
    const M m_sceneMatrix;
    const bool m_flipped;
    const std::size_t m_oldCount;
    std::string m_where;
    double m_greatest = 0;
    std::string m_place;
};

}  // namespace zr::test
