// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/operations/export/export_options.h"
#include "app/scene/loaded_scene.h"

namespace zr::test {

// Compares an exported scene with the original, each at its current time, after transforming the original by
// the scene matrix and exchanging axes if the export does. Compares node transforms, the places of meshes,
// cameras and lights, and points of meshes moved by joints.
class Comparison {
public:
    Comparison(LoadedScene& before, LoadedScene& after, const ExportOptions& options);

    void Run(const std::string& where);

    // The greatest difference of a matrix element so far. Place() describes where it is.
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
