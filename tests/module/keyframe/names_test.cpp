// SPDX-License-Identifier: MIT
// Names of records and materials, through the tool.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "host/material_name.h"
#include "kernix/utf.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/name_text.h"
#include "tests/module/keyframe/scene_kit.h"
#include "tests/module/test_host.h"

namespace {

using kernix::NodeModel;
using kernix::SceneModel;
using vl::Ref;
using Names = std::vector<std::string>;

class NamesTest : public HostTest {
protected:
    NamesTest() : m_scene(Ref<SceneModel>::Adopt(new SceneModel)), m_tool(Ref<ZR_TK>::Adopt(new ZR_TK)) {
        m_tool->m_pScene = m_scene.Get();
        m_tool->m_dwExportFlags = vl::tk::kKeepAllNodes | vl::tk::kExportLights | vl::tk::kExportCameras |
                                  vl::tk::kExportBones | vl::tk::kAssignNames;
    }

    NodeModel* Add(const std::string& name, vl::zr::Object3D* object = nullptr) {
        NodeModel* node = m_scene->AddNode(nullptr, name);
        node->SetObject(Ref<vl::zr::Object3D>::Adopt(object));
        return node;
    }

    Names Named() {
        EXPECT_EQ(m_tool->Process(0), 1);
        Names names;
        for (const ExportNode* record : vl::ArrayOf<ExportNode*>(m_tool->m_pAllNodes)) {
            const bool wide = (m_tool->m_dwNameFlags & vl::tk::kNamesWide) != 0;
            EXPECT_EQ(record->wszName != nullptr, wide);
            EXPECT_EQ(record->szName != nullptr, !wide);
            names.push_back(wide ? kernix::ToUtf8(record->wszName) : record->szName);
        }
        return names;
    }

    Ref<SceneModel> m_scene;
    Ref<ZR_TK> m_tool;
};

TEST_F(NamesTest, UnnamedNodesAreNamedByWhatTheyCarry) {
    m_scene->SetDefaultCameraNode(Add("", new kernix::CameraModel));
    Add("", new kernix::CameraModel);
    Add("", new kernix::LightModel(vl::zr::kLightPoint));
    Add("", kernix::CreateDummy());
    Add("", kernix::CreateBone());
    Add("");
    Add("", scene_kit::Mesh(1).Detach());
    EXPECT_EQ(Named(), (Names{"DefCamera", "camera", "light", "dummy", "bone", "object", "object6"}));
}

// With the geometry split a group is a frame; without it, or without a group, it is named by what it carries.
TEST_F(NamesTest, GroupsOfTheGeometrySplitAreFrames) {
    NodeModel* group = Add("", scene_kit::Mesh(1).Detach());
    group->SetRestPose({{1, 0, 0}, {}, {1, 1, 1}});
    Add("", scene_kit::Mesh(1).Detach());
    Add("", kernix::CreateDummy());
    EXPECT_EQ(Named(), (Names{"object0", "object1", "dummy"}));
    m_tool = Ref<ZR_TK>::Adopt(new ZR_TK);
    m_tool->m_pScene = m_scene.Get();
    m_tool->m_dwExportFlags = vl::tk::kKeepAllNodes | vl::tk::kAssignNames | vl::tk::kGeometrySplit;
    const Names named = Named();
    ASSERT_EQ(m_tool->m_pAllNodes->m_nCount, static_cast<int>(named.size()));
    for (int i = 0; i < static_cast<int>(named.size()); ++i) {
        const ExportNode* record = vl::ArrayOf<ExportNode*>(m_tool->m_pAllNodes)[i];
        EXPECT_EQ(named[static_cast<std::size_t>(i)].starts_with("Frm"), (record->dwFlags & NF_GROUP) != 0)
            << i;
    }
}

TEST_F(NamesTest, ShortLimitShortensTheDefault) {
    m_tool->m_nMaxNameLength = 11;
    Add("");
    Add("", scene_kit::Mesh(1).Detach());
    EXPECT_EQ(Named(), (Names{"obj", "obj1"}));
}

TEST_F(NamesTest, LimitOfTwelveHoldsTheDefault) {
    m_tool->m_nMaxNameLength = 12;
    Add("");
    Add("", scene_kit::Mesh(1).Detach());
    EXPECT_EQ(Named(), (Names{"object", "object1"}));
}

TEST_F(NamesTest, CleansByFlags) {
    Add("3D box");
    Add("a-b_c");
    Add("\xC3\xBC");
    const auto named = [this](std::uint32_t flags) {
        m_tool = Ref<ZR_TK>::Adopt(new ZR_TK);
        m_tool->m_pScene = m_scene.Get();
        m_tool->m_dwExportFlags = vl::tk::kKeepAllNodes | vl::tk::kAssignNames;
        m_tool->m_dwNameFlags = flags;
        return Named();
    };
    using namespace vl::tk;
    EXPECT_EQ(named(0), (Names{"_D_box", "a-b_c", "__"}));
    EXPECT_EQ(named(kNamesLeadingDigit), (Names{"3D_box", "a-b_c", "__"}));
    EXPECT_EQ(named(kNamesWide), (Names{"_D_box", "a-b_c", "_"}));
    EXPECT_EQ(named(kNamesWide | kNamesKeepCharacters), (Names{"3D box", "a-b_c", "\xC3\xBC"}));
}

TEST_F(NamesTest, CutsAtTheLimitAndReportsABadOne) {
    Add(std::string(250, 'n'));
    m_tool->m_nMaxNameLength = 6;
    EXPECT_EQ(Named(), (Names{"nnnnnn"}));
    EXPECT_EQ(host.messages, Names());

    m_tool->m_nMaxNameLength = 2;  // buffers made for another limit are not reused
    m_tool->AssignNames();
    EXPECT_STREQ(vl::ArrayOf<ExportNode*>(m_tool->m_pAllNodes)[0]->szName, "nnnn");
    m_tool->m_nMaxNameLength = 1000000000;
    m_tool->AssignNames();
    EXPECT_EQ(std::string(vl::ArrayOf<ExportNode*>(m_tool->m_pAllNodes)[0]->szName).size(), 250u);
    EXPECT_EQ(host.messages, (Names{"Invalid maxname", "Invalid maxname"}));
}

TEST_F(NamesTest, UniqueNamesAreSortedInTheTable) {
    for (const char* name : {"box", "Box", "ant", "box", "box3"}) Add(name);
    m_tool->m_dwNameFlags = vl::tk::kNamesUnique;
    EXPECT_EQ(Named(), (Names{"box", "Box1", "ant", "box3", "box34"}));
    ExportNode* added = m_tool->AddNode(nullptr, "BOX");
    EXPECT_STREQ(added->szName, "BOX5");

    Names table;
    for (const ExportNode* record : vl::ArrayOf<ExportNode*>(m_tool->m_pNameTable)) {
        table.push_back(record->szName);
    }
    EXPECT_EQ(table, (Names{"ant", "box", "Box1", "box3", "box34", "BOX5"}));
    int index = -1;
    EXPECT_TRUE(m_tool->m_pNameTable->FindSorted(vl::ToWord(added), &index));
    EXPECT_EQ(index, 5);
}

TEST_F(NamesTest, ExactCaseSortsByCharacterCode) {
    for (const char* name : {"b", "B", "_", "B"}) Add(name);
    m_tool->m_dwNameFlags = vl::tk::kNamesUnique | vl::tk::kNamesExactCase | vl::tk::kNamesWide;
    EXPECT_EQ(Named(), (Names{"b", "B", "_", "B3"}));
    Names table;
    for (const ExportNode* record : vl::ArrayOf<ExportNode*>(m_tool->m_pNameTable)) {
        table.push_back(kernix::ToUtf8(record->wszName));
    }
    EXPECT_EQ(table, (Names{"B", "B3", "_", "b"}));
}

// The callback gets the sanitized name of every node and may replace it by one of any length.
TEST_F(NamesTest, CallbackRenamesNodesAndMaterials) {
    Add("a b");
    Add("");
    m_scene->AddMaterial("m 1", "");
    m_tool->m_nMaxNameLength = 8;
    m_tool->m_nMaxMaterialNameLength = 5;
    m_tool->m_dwNameFlags = vl::tk::kNamesUnique;
    Names seen;
    m_tool->m_pRenameContext = &seen;
    m_tool->m_pfnRename = [](vl::Interface* object, vl::String* name, void* context) {
        const std::string text = kernix::ToUtf8(name->Text());
        static_cast<Names*>(context)->push_back(std::string(object->GetTypeName()) + " " + text);
        name->Set("renamed to something long");
    };
    EXPECT_EQ(Named(), (Names{"renamed ", "renamed1"}));
    EXPECT_EQ(seen, (Names{"zr_node a_b", "zr_node obj", "zr_material m_1"}));
    EXPECT_STREQ(vl::ArrayOf<MaterialName*>(m_tool->m_pMaterialNames)[0]->szName, "renam");
}

TEST_F(NamesTest, RecordsWithoutNodeKeepTheirDefault) {
    Add("a");
    Add("b");
    m_tool->m_dwExportFlags |= vl::tk::kGroupingRoot;
    m_tool->m_dwNameFlags = vl::tk::kNamesUnique;
    m_tool->m_pfnRename = [](vl::Interface*, vl::String* name, void*) { name->Set("object"); };
    EXPECT_EQ(Named(), (Names{"object", "object1", "object2"}));
}

TEST_F(NamesTest, MaterialsAreNamedInTheirOrder) {
    Add("node");
    using Given = std::optional<std::string>;
    for (const Given& name : {Given(), Given("Stone"), Given("stone"), Given(), Given(), Given("Old wall")}) {
        m_scene->AddMaterial(name, "");
    }
    m_tool->m_nMaxMaterialNameLength = 1000;
    m_tool->Process(0);
    EXPECT_EQ(m_tool->m_nMaxMaterialNameLength, 511);
    const vl::ArrayOf<MaterialName*> names(m_tool->m_pMaterialNames);
    Names texts;
    for (int i = 0; i < names.Count(); ++i) {
        texts.push_back(names[i]->szName);
        EXPECT_EQ(names[i]->nIndex, i);
        EXPECT_EQ(names[i]->wszName, nullptr);
        EXPECT_EQ(names[i]->pMaterial, vl::ArrayOf<vl::zr::Material*>(m_scene->m_pMaterials)[i]);
        EXPECT_EQ(names[i]->pMaterial->m_pUserData, names[i]);
    }
    EXPECT_EQ(texts, (Names{"Material", "Stone", "stone1", "Material1", "Material2", "Old_wall"}));
}

TEST_F(NamesTest, ShortMaterialNamesGrowByTheirNumber) {
    Add("node");
    for (int i = 0; i < 3; ++i) m_scene->AddMaterial({}, "");
    m_tool->m_dwNameFlags = vl::tk::kNamesWide;
    m_tool->m_nMaxMaterialNameLength = 2;
    m_tool->Process(0);
    EXPECT_EQ(m_tool->m_pMaterialNames, nullptr);

    m_tool->m_nMaxMaterialNameLength = 3;
    m_tool->MakeMaterialNames();
    const vl::ArrayOf<MaterialName*> names(m_tool->m_pMaterialNames);
    EXPECT_EQ(names[0]->szName, nullptr);
    EXPECT_EQ(std::u16string(names[0]->wszName), u"Mat");
    EXPECT_EQ(std::u16string(names[2]->wszName), u"Mat2");
}

TEST(NameText, CopyIsBoundedAndTerminated) {
    char text[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(zrt::CopyNameBounded(text, "abc", 3), text);
    EXPECT_EQ(std::string(text, 4), std::string("ab\0x", 4));
    EXPECT_EQ(zrt::CopyNameBounded(text, "abc", 0), nullptr);
    EXPECT_EQ(zrt::CopyNameBounded<char>(text, nullptr, 4), nullptr);
    EXPECT_EQ(text[0], 'a');
}

}  // namespace
