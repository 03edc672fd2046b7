// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "gltf/document.h"
#include "kernix/scene/curve.h"

namespace zr {

// The curves of a document's samplers, read on demand. The document must outlive them and keep its present
// accessors and buffers unchanged.
class DocumentCurves final : public kernix::CurveSource {
public:
    explicit DocumentCurves(const gltf::Document& document) : m_document(document) {}

    // The curve of a sampler whose data can be read.
    kernix::StoredCurve Add(const gltf::Json& sampler);

    std::size_t KeyCount(std::uint32_t id) const override;
    kernix::Curve Read(std::uint32_t id) const override;

private:
    struct Floats {
        std::uint32_t accessor;
        std::uint32_t count;  // elements
        const float* stored;  // in the document; null if stored in another format
    };
    struct Sampler {
        Floats input;
        Floats output;
        std::uint8_t width;  // components of an output element
        vl::zr::KeyInterpolation interpolation;
    };

    Floats Locate(std::size_t accessor) const;
    std::vector<float> Read(const Floats& floats, std::size_t width) const;

    const gltf::Document& m_document;
    std::vector<Sampler> m_samplers;
};

}  // namespace zr
