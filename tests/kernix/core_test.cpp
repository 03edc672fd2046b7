// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "host/interface_array.h"
#include "host/params.h"
#include "host/ref.h"
#include "host/stream.h"
#include "host/text.h"
#include "host/xml.h"
#include "kernix/array.h"
#include "kernix/host_app_base.h"
#include "kernix/utf.h"
#include "tests/base/rounds.h"

namespace {

using vl::Ref;

TEST(Array, BehavesLikeAVectorAtAnySize) {
    std::mt19937 engine(3);
    const auto array = Ref<vl::Array>::Adopt(kernix::CreateArray());
    std::vector<vl::Word> expected;
    for (vl::Word step = 0; step < zr::test::Rounds(60000); ++step) {
        const bool shrink = step % 12000 > 7500;
        const std::size_t size = expected.size();
        const std::size_t index = engine() % (size + 1);
        if (shrink && index < size) {
            array->RemoveAt(static_cast<int>(index));
            expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(index));
        } else if (engine() % 2 == 0) {
            array->Add(step);
            expected.push_back(step);
        } else {
            array->InsertAt(static_cast<int>(index), step);
            expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(index), step);
        }
        if (step % 97 != 0) continue;
        ASSERT_EQ(static_cast<std::size_t>(array->m_nCount), expected.size());
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), vl::ArrayOf<vl::Word>(array.Get()).begin()));
    }
    array->InsertAt(-1, 1);
    array->RemoveAt(array->m_nCount);
    array->SetAt(array->m_nCount, 1);
    array->Swap(0, -1);
    EXPECT_EQ(static_cast<std::size_t>(array->m_nCount), expected.size());
    EXPECT_EQ(array->GetAt(-1), 0u);
    EXPECT_EQ(array->IndexOf(expected[100]), 100);
}

TEST(Array, FindsInComparatorOrder) {
    const auto compare = [](vl::Word a, vl::Word b, void*) { return a < b ? -1 : a > b ? 1 : 0; };
    const auto array = Ref<vl::Array>::Adopt(kernix::CreateSortedArray(compare, nullptr));
    for (const vl::Word word : {10u, 20u, 20u, 30u}) array->Add(word);
    int index = -1;
    EXPECT_TRUE(array->FindSorted(20, &index));
    EXPECT_EQ(index, 1);
    EXPECT_FALSE(array->FindSorted(25, &index));
    EXPECT_EQ(index, 3);
    EXPECT_FALSE(array->FindSorted(40, &index));
    EXPECT_EQ(index, 4);
}

TEST(Text, ConvertsAndCutsBetweenCharacters) {
    const std::string narrow = "a\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80";
    EXPECT_EQ(kernix::ToUtf16(narrow), u"aé日😀");
    EXPECT_EQ(kernix::ToUtf8(u"aé日😀"), narrow);
    EXPECT_EQ(kernix::ToUtf16("\xC0\x80\xED\xA0\x80\xFFz"), u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDz");
    EXPECT_EQ(kernix::ToUtf8(u"\xD800x\xDC00"), "\xEF\xBF\xBDx\xEF\xBF\xBD");

    vl::String text;
    text.Set(narrow.c_str());
    char buffer[8];
    text.Get(buffer, 6);
    EXPECT_STREQ(buffer, "a\xC3\xA9");
    char16_t wide[4] = {1, 1, 1, 1};
    AtoWex("hello", wide, 3);
    EXPECT_EQ(std::u16string(wide), u"hel");
    EXPECT_LT(vl::CompareNoCase("a_b", "aAb"), 0);
    EXPECT_EQ(vl::CompareNoCase("BoX", "bOx"), 0);
}

TEST(Interface, CountsQueriesAndWeakPointers) {
    auto* map = vl::VarMap::Create();
    vl::WeakPtr<vl::VarMap> weak(map);
    vl::Unknown* found = nullptr;
    EXPECT_EQ(map->QueryInterface("ZR_VARMAP", found), vl::kSuccess);
    EXPECT_EQ(found, map);
    EXPECT_EQ(map->GetRefCount(), 2);
    EXPECT_EQ(map->QueryInterface("zr_params", found), vl::kWrongClass);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(map->QueryInterface(vl::Interface::kInterfaceId, found), vl::kSuccess);
    EXPECT_EQ(found, map);
    EXPECT_EQ(found->Release(), 2u);
    EXPECT_EQ(map->QueryInterface(vl::Guid{}, found), vl::kWrongClass);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(map->Release(), 1u);
    EXPECT_EQ(weak.Get(), map);
    EXPECT_EQ(map->Release(), 0u);
    EXPECT_EQ(weak.Get(), nullptr);
}

TEST(InterfaceArray, HoldsItsElements) {
    const auto list = Ref<vl::InterfaceArray>::Adopt(vl::InterfaceArray::CreateStrong());
    const auto map = Ref<vl::VarMap>::Adopt(vl::VarMap::Create());
    EXPECT_STREQ(list->GetTypeName(), "zr_interface_array");
    list->Add(nullptr);
    EXPECT_EQ(list->GetCount(), 0U);
    list->Add(map.Get());
    list->Add(map.Get());
    EXPECT_EQ(map->GetRefCount(), 3);
    EXPECT_EQ(list->GetAt(1), map.Get());
    EXPECT_EQ(list->GetAt(2), nullptr);
    list->Remove(map.Get());
    EXPECT_EQ(list->GetCount(), 1U);
    EXPECT_EQ(list->GetAt(1), nullptr);
    list->Remove(list.Get());
    EXPECT_EQ(map->GetRefCount(), 2);
}

class TestExtension : public vl::Extension {};

TEST(Extension, ParametersCountByTypeAndAreCopied) {
    const auto list = Ref<vl::Params>::Adopt(vl::Params::Create());
    EXPECT_STREQ(list->GetTypeName(), "zr_params");
    int scene = 0;
    list->Add(vl::ToWord(&scene), ZR_VALUE_SCENE);
    list->Add(0, ZR_VALUE_BOOL);
    list->Add(1, ZR_VALUE_BOOL);
    EXPECT_EQ(list->GetParam(0, 0, ZR_VALUE_SCENE), vl::ToWord(&scene));
    EXPECT_EQ(list->GetParam(0, 1, ZR_VALUE_BOOL), 0u);
    EXPECT_EQ(list->GetParam(1, 0, ZR_VALUE_BOOL), 1u);
    EXPECT_EQ(list->GetParam(2, 7, ZR_VALUE_BOOL), 7u);

    const auto a = Ref<TestExtension>::Adopt(new TestExtension);
    const auto b = Ref<TestExtension>::Adopt(new TestExtension);
    EXPECT_EQ(a->SetParamVar(0, vl::Var(1.5f)), vl::kSuccess);
    a->GetMetadata(true)->Set(u"key", vl::Var(3));
    EXPECT_EQ(b->CopyFrom(a.Get(), 0), vl::kSuccess);
    EXPECT_EQ(b->GetParamVar(0), vl::Var(1.5f));
    EXPECT_EQ(*b->GetMetadata(false)->Find(u"key"), vl::Var(3));
    b->GetMetadata(false)->Clear();
    EXPECT_EQ(a->GetMetadata(false)->GetCount(), 1);
    EXPECT_EQ(b->CopyFrom(list.Get(), 0), vl::kWrongClass);
    EXPECT_TRUE(a->DeleteParam(0));
    EXPECT_TRUE(a->GetParamVar(0).IsNone());
    EXPECT_EQ(*a->InvokeCommand(vl::Var(1), vl::Var(), nullptr).AsInt(), vl::kWrongClass);
}

TEST(Element, LoadsWellFormedDocumentsOnly) {
    const auto stream = Ref<vl::Stream>::Adopt(vl::Stream::CreateInMemory());
    const std::string document = "<?xml version=\"1.0\"?><!-- c --><A><B x=\"1\"/><B x=\"&lt;\"/></A>";
    stream->Write(document.data(), document.size());
    stream->Seek(0, 0);
    vl::xml::Element element;
    EXPECT_EQ(element.Load(stream.Get()), vl::kSuccess);
    ASSERT_EQ(element.GetChildren().size(), 2u);
    EXPECT_EQ(*element.GetChildren()[1].FindAttribute("x"), "<");

    for (const std::string& broken :
         {std::string("<A><B></A>"), std::string(), std::string("text"), std::string(100000, '<'), [] {
              std::string deep;
              for (int i = 0; i < 50000; ++i) deep += "<a>";
              return deep;
          }()}) {
        const auto bad = Ref<vl::Stream>::Adopt(vl::Stream::CreateInMemory());
        bad->Write(broken.data(), broken.size());
        bad->Seek(0, 0);
        EXPECT_EQ(element.Load(bad.Get()), vl::kCannotOpen);
        EXPECT_EQ(element.GetName(), "A");
    }
}

TEST(Stream, KeepsAPositionInsideItsContent) {
    const auto stream = Ref<vl::Stream>::Adopt(vl::Stream::CreateInMemory());
    EXPECT_TRUE(stream->Write("abcdef", 6));
    stream->Seek(-2, 2);
    EXPECT_TRUE(stream->Write("XYZ", 3));
    stream->Seek(-100, 1);
    char out[16] = {};
    EXPECT_EQ(stream->Read(out, 16), 7u);
    EXPECT_STREQ(out, "abcdXYZ");
}

}  // namespace
