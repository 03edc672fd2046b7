// SPDX-License-Identifier: MIT
#include "module/frame/registry.h"

#include "module/animmanager/anim_manager_impl.h"
#include "module/cadtext/cad_text.h"
#include "module/cleaner/cleaner.h"
#include "module/keyframe/keyframe_tool.h"

namespace zrt {
namespace {

template <typename T>
vl::Extension* New() {
    return new T;
}

}  // namespace

const ExtensionType kExtensionTypes[4] = {
    {kTypeKeyframeTool, New<ZR_TK>},
    {kTypeCadText, New<ZR_CADTEXT>},
    {kTypeAnimManager, New<CAnimManagerImpl>},
    {kTypeCleaner, [] { return static_cast<vl::Extension*>(CreateCleaner()); }},
};

}  // namespace zrt
