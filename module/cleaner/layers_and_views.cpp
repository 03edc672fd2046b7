// SPDX-License-Identifier: MIT
#include <unordered_set>

#include "host/change_record.h"
#include "host/viewport.h"
#include "module/cleaner/cleaner.h"
#include "module/cleaner/removal.h"

using vl::zr::Layer;
using vl::zr::Viewport;

int CCleanerImpl::RemoveUnusedLayers(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) {
    if (scene == nullptr || scene->m_pLayers == nullptr) return 0;
    return zrt::CountedWithNotify(scene, [&](int& count) {
        const auto viewportArray = vl::Ref<vl::InterfaceArray>::Adopt(scene->GetAllViewports());
        const zrt::InterfacesOf<Viewport> viewports(viewportArray.Get());
        std::unordered_set<const Layer*> shown;
        for (unsigned i = 0; i < viewports.Count(); ++i) shown.insert(viewports[i]->m_pLayer);

        const vl::Ref<vl::Array> list = zrt::NewList();
        vl::ArrayOf<Layer*> candidates(list.Get());
        const zrt::InterfacesOf<Layer> layers(scene->m_pLayers);
        for (unsigned i = 0; i < layers.Count(); ++i) {
            if (zrt::IsBreak(context)) break;
            Layer* layer = layers[i];
            const bool hasMembers = layer->m_pMembers != nullptr && layer->m_pMembers->m_nCount > 0;
            if (!hasMembers || !shown.contains(layer)) candidates.Add(layer);
        }
        zrt::RemoveEach(candidates, context, count, [&](Layer* layer) {
            if (record != nullptr) record->RecordLayerRemoval(layer, 0);
            scene->RemoveLayer(layer);
        });
    });
}

int CCleanerImpl::RemoveModelViews(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) {
    if (scene == nullptr) return 0;
    return zrt::CountedWithNotify(scene, [&](int& count) {
        const vl::Ref<vl::Array> portfolioList = zrt::NewList();
        const vl::Ref<vl::Array> modelViewList = zrt::NewList();
        vl::ArrayOf<Viewport*> portfolios(portfolioList.Get());
        vl::ArrayOf<Viewport*> modelViews(modelViewList.Get());
        const auto viewportArray = vl::Ref<vl::InterfaceArray>::Adopt(scene->GetAllViewports());
        const zrt::InterfacesOf<Viewport> viewports(viewportArray.Get());
        for (unsigned i = viewports.Count(); i-- > 0;) {
            if (zrt::IsBreak(context)) break;
            Viewport* viewport = viewports[i];
            if (viewport->m_nKind == vl::zr::kViewportPortfolio) portfolios.Add(viewport);
            if (viewport->m_nKind == vl::zr::kViewportModelView) modelViews.Add(viewport);
        }

        const auto remove = [&](Viewport* viewport) {
            if (record != nullptr) record->RecordViewportRemoval(scene, viewport, 0);
            scene->RemoveViewport(viewport, 1);
        };
        zrt::RemoveEach(portfolios, context, count, remove);
        zrt::RemoveEach(modelViews, context, count, remove);
    });
}
