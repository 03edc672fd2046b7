// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "module/frame/globals.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/record.h"

// Hand-made records, for passes that need no scene.
namespace record_tree {

inline vl::Matrix4<double> Identity() {
    vl::Matrix4<double> m;
    m.IdentityMatrix();
    return m;
}

inline vl::Matrix4<double> Moved(double x, double y, double z) {
    vl::Matrix4<double> m = Identity();
    m.Offset(vl::Vector3<double>{x, y, z});
    return m;
}

// A record below parent; null: a root of the tool.
inline ExportNode* Add(ZR_TK& tool, ExportNode* parent, std::uint32_t flags,
                       const vl::Matrix4<double>& local = Identity()) {
    ExportNode* record = tool.NewRecord(nullptr);
    record->dwFlags = flags;
    record->mLocal = local;
    if (parent != nullptr) {
        record->mWorld.SetMul(local, parent->mWorld);
        zrt::AppendChild(parent, record);
    } else {
        record->mWorld = local;
        if (tool.m_pRoots == nullptr) tool.m_pRoots = g_pHost->CreateArray();
        tool.m_pRoots->Add(vl::ToWord(record));
    }
    return record;
}

// The tree as text: flags of each record, nested in brackets. "4(1 8)"
inline std::string Shape(vl::Array* records) {
    std::ostringstream out;
    out << std::hex;
    bool first = true;
    for (const ExportNode* record : vl::ArrayOf<ExportNode*>(records)) {
        out << (first ? "" : " ") << record->dwFlags;
        first = false;
        const std::string below = Shape(record->pChildren);
        if (!below.empty()) out << '(' << below << ')';
    }
    return out.str();
}

// The world transform computed from the local ones.
inline vl::Matrix4<double> Placed(const ExportNode* record) {
    vl::Matrix4<double> m = Identity();
    for (; record != nullptr; record = record->pParent) m.Transform(record->mLocal);
    return m;
}

// The transform that an exporter writes: scale, rotation, translation.
inline vl::Matrix4<double> Written(const vl::Vector3<float>& scale, const vl::Quaternion& rotation,
                                   const vl::Vector3<float>& position) {
    vl::Matrix4<double> m = Identity();
    m.Scale(scale);
    m.Rotate(rotation);
    m.Offset(position);
    return m;
}

inline void ExpectNear(const vl::Matrix4<double>& actual, const vl::Matrix4<double>& expected,
                       double tolerance) {
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            ASSERT_NEAR(actual.m[i][j], expected.m[i][j], tolerance) << "row " << i << ", column " << j;
        }
    }
}

}  // namespace record_tree
