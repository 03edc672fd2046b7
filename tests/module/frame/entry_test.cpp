// SPDX-License-Identifier: MIT
#include "module/frame/entry.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "host/anim_manager.h"
#include "host/cad_text.h"
#include "host/cleaner.h"
#include "host/params.h"
#include "host/serializer.h"
#include "kernix/host_app_base.h"
#include "module/frame/globals.h"

namespace {

using vl::Ref;

class StringHost final : public kernix::HostAppBase {
public:
    void* LoadModuleStrings(HINSTANCE module) override {
        m_module = module;
        return &m_strings;
    }
    const char16_t* GetModuleString(void* table, int id) override {
        return table == &m_strings ? m_strings[id].c_str() : u"";
    }
    void RegisterExtensionType(HINSTANCE module, const char* name, int a, int b) override {
        EXPECT_TRUE(a == 0 && b == 0);
        m_registered.push_back(name);
        HostAppBase::RegisterExtensionType(module, name, a, b);
    }

    HINSTANCE m_module = nullptr;
    std::map<int, std::u16string> m_strings{{1, u"what it is"}};
    std::vector<std::string> m_registered;
};

class Entry : public testing::Test {
protected:
    ~Entry() override {
        g_pHost = nullptr;
        g_hStrings = nullptr;
        g_hModule = nullptr;
        g_nHostVersion = ZRDLL_SDK_VERSION;
    }

    Ref<vl::Extension> Create(const char* name) {
        return Ref<vl::Extension>::Adopt(
            vl::FromWord<vl::Extension*>(ZRDLLFunc(ZRDLL_CREATE, vl::ToWord(name), 0)));
    }

    StringHost m_host;
};

TEST_F(Entry, InitialisesAndDescribesItself) {
    char16_t text[16] = {u'x', u'x'};
    EXPECT_EQ(ZRDLLFunc(ZRDLL_GETDESCRIPTION, vl::ToWord(text + 0), 0), 0u);
    EXPECT_EQ(text[0], u'x');

    int module = 0;
    const auto handle = reinterpret_cast<HINSTANCE>(&module);
    EXPECT_EQ(m_host.StartModule(handle, ZRDLLFunc), 5u);
    EXPECT_EQ(m_host.m_module, handle);
    EXPECT_EQ(m_host.m_registered,
              (std::vector<std::string>{kTypeKeyframeTool, kTypeCadText, kTypeAnimManager, kTypeCleaner}));
    EXPECT_EQ(ZRDLLFunc(ZRDLL_GETDESCRIPTION, vl::ToWord(text + 0), 0), 1u);
    EXPECT_EQ(std::u16string(text), u"what it is");

    char16_t version[12];
    version[11] = u'#';
    EXPECT_EQ(ZRDLLFunc(ZRDLL_GETVERSIONSTRING, vl::ToWord(version + 0), 0), 1u);
    EXPECT_EQ(std::u16string(version), u"6.3.1.8069");
    EXPECT_EQ(version[11], u'#');
    EXPECT_EQ(ZRDLLFunc(0x1234, 1, 2), 0u);
}

TEST_F(Entry, KeepsTheHostsVersion) {
    EXPECT_EQ(ZRDLLFunc(ZRDLL_VERSION, 0, 0), 1555u);
    EXPECT_EQ(g_nHostVersion, 1555u);
    EXPECT_EQ(ZRDLLFunc(ZRDLL_VERSION, 145, 0), 1555u);
    EXPECT_EQ(g_nHostVersion, 145u);
    EXPECT_EQ(ZRDLLFunc(ZRDLL_VERSION, 0, 0), 1555u);
    EXPECT_EQ(g_nHostVersion, 145u);
}

TEST_F(Entry, CreatesByExactName) {
    m_host.StartModule(nullptr, ZRDLLFunc);
    for (const char* unknown : {"tksave", "TKSAVE ", "TKSAV", "", "zr_extension"})
        EXPECT_FALSE(Create(unknown)) << unknown;
    EXPECT_EQ(ZRDLLFunc(ZRDLL_CREATE, 0, 0), 0u);
    for (const char* name : {kTypeKeyframeTool, kTypeCadText, kTypeAnimManager, kTypeCleaner}) {
        const auto first = Create(name);
        const auto second = Ref<vl::Extension>::Adopt(m_host.CreateExtension(name));
        ASSERT_TRUE(first && second);
        EXPECT_NE(first.Get(), second.Get());
        EXPECT_STREQ(first->GetTypeName(), name);
        EXPECT_EQ(first->GetRefCount(), 1);
        EXPECT_TRUE(first->IsTypeOf("ZR_EXTENSION"));
        EXPECT_FALSE(first->IsTypeOf("something else"));
        EXPECT_FALSE(first->IsTypeOf(nullptr));
        EXPECT_EQ(first->CopyFrom(nullptr, 0), vl::kWrongClass);
        second->GetMetadata(true)->Set(u"a", vl::Var(1));
        EXPECT_EQ(first->CopyFrom(second.Get(), 0), vl::kSuccess);
        EXPECT_EQ(first->GetMetadata(false)->GetCount(), 1);
    }
    const auto tool = Create(kTypeKeyframeTool);
    const auto text = Create(kTypeCadText);
    EXPECT_TRUE(tool->IsTypeOf("tksave"));
    EXPECT_TRUE(text->IsTypeOf("zr_CadText"));
    EXPECT_EQ(tool->CopyFrom(text.Get(), 0), vl::kWrongClass);
    EXPECT_EQ(tool->GetInterfaceVersion(), 1);
    EXPECT_NE(dynamic_cast<vl::tk::Serializer*>(tool.Get()), nullptr);
    EXPECT_EQ(dynamic_cast<zr_CLEANER&>(*Create(kTypeCleaner)).GetRevision(), 1);
    EXPECT_EQ(dynamic_cast<zr_ANIM_MANAGER&>(*Create(kTypeAnimManager)).GetRevision(), 1);
}

}  // namespace
