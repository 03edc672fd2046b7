// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>

#include "app/operations/clean/clean_method.h"
#include "host/cleaner.h"
#include "host/ref.h"
#include "host/xml.h"

namespace {

// A cleaner that describes itself with the input.
class DescribedCleaner final : public zr_CLEANER {
public:
    explicit DescribedCleaner(vl::Stream& description) : m_description(description) {}

    vl::ResultEnum QueryInfo(vl::xml::Element* element, unsigned) override {
        return element->Load(&m_description);
    }
    vl::ResultEnum Invoke(int, vl::Params*, vl::Context*) override { return vl::kSuccess; }
    bool RunDialog(vl::zr::Scene*) override { return false; }
    int RemoveUnusedAnimations(vl::zr::Scene*, vl::Context*, ChangeRecord*) override { return 0; }
    int RemoveUnusedMaterials(vl::zr::Scene*, vl::Context*, ChangeRecord*) override { return 0; }
    int RemoveEmptyNodes(vl::zr::Scene*, vl::Context*, ChangeRecord*) override { return 0; }
    int RemoveUnusedLayers(vl::zr::Scene*, vl::Context*, ChangeRecord*) override { return 0; }
    int RemoveMetadata(vl::zr::Scene*, vl::Context*, ChangeRecord*) override { return 0; }
    int RemoveModelViews(vl::zr::Scene*, vl::Context*, ChangeRecord*) override { return 0; }
    int RemoveNotesAndEtc(vl::zr::Scene*, vl::Context*, ChangeRecord*) override { return 0; }
    int RemoveMeshDupes(vl::zr::Scene*, vl::Context*, ChangeRecord*) override { return 0; }

private:
    vl::Stream& m_description;
};

}  // namespace

// A module's description of its methods: XML from which the host builds the parameters of a call.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto description = vl::Ref<vl::Stream>::AdoptNew(vl::Stream::CreateInMemory());
    description->Write(data, size);
    description->Seek(0, 0);
    const auto cleaner = vl::Ref<zr_CLEANER>::AdoptNew(new DescribedCleaner(*description));
    try {
        const zr::CleanMethod method(*cleaner);
        method.Only(nullptr, "Remove_Empty_Nodes");
    } catch (const std::runtime_error&) {
    }
    return 0;
}
