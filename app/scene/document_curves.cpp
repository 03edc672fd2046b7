// SPDX-License-Identifier: MIT
#include "app/scene/document_curves.h"

#include "app/scene/curves.h"
#include "gltf/accessor.h"

namespace zr {

DocumentCurves::Floats DocumentCurves::Locate(std::size_t accessor) const {
    const gltf::AccessorInfo info = gltf::Describe(m_document, accessor);
    return {static_cast<std::uint32_t>(accessor), static_cast<std::uint32_t>(info.count),
            gltf::StoredFloats(m_document, accessor).data()};
}

kernix::StoredCurve DocumentCurves::Add(const gltf::Json& sampler) {
    const std::size_t output = gltf::IndexMember(sampler, "output");
    m_samplers.push_back({Locate(gltf::IndexMember(sampler, "input")), Locate(output),
                          static_cast<std::uint8_t>(gltf::Describe(m_document, output).shape.Components()),
                          InterpolationOf(sampler)});
    return kernix::StoredCurve(*this, static_cast<std::uint32_t>(m_samplers.size() - 1));
}

std::size_t DocumentCurves::KeyCount(std::uint32_t id) const {
    return m_samplers[id].input.count;
}

std::vector<float> DocumentCurves::Read(const Floats& floats, std::size_t width) const {
    if (floats.stored == nullptr) return gltf::ReadFloats(m_document, floats.accessor);
    return {floats.stored, floats.stored + floats.count * width};
}

kernix::Curve DocumentCurves::Read(std::uint32_t id) const {
    const Sampler& sampler = m_samplers[id];
    return {sampler.interpolation, Read(sampler.input, 1), Read(sampler.output, sampler.width)};
}

}  // namespace zr
