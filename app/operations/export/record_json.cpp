// SPDX-License-Identifier: MIT
#include "app/operations/export/record_json.h"

#include <unordered_map>

#include "app/operations/export/record_names.h"
#include "gltf/json.h"
#include "kernix/utf.h"

namespace zr {
namespace {

using gltf::Json;
using gltf::JsonTree;

class RecordWriter {
public:
    RecordWriter(const LoadedScene& loaded, const Tool& tool, const ExportOptions& options)
        : m_loaded(loaded), m_tool(tool), m_options(options) {}

    std::string Text() {
        int index = 0;
        for (ExportNode* record : AllRecords(m_tool)) m_index[record] = index++;
        Json root = JsonTree::MakeObject();
        Put(root, "start", m_tool->GetStartTime());
        Put(root, "end", m_tool->GetEndTime());
        Put(root, "frameRate", m_tool->GetFrameRate());
        Json nodes = JsonTree::MakeArray();
        for (ExportNode* record : AllRecords(m_tool)) m_tree.Append(nodes, Node(*record));
        m_tree.Member(root, "nodes") = nodes;
        return gltf::WriteJson(root, true) + "\n";
    }

private:
    void Put(Json& object, std::string_view name, float value) {
        m_tree.Member(object, name) = m_tree.MakeNumber(value);
    }
    void Put(Json& object, std::string_view name, std::initializer_list<float> values) {
        m_tree.Member(object, name) = m_tree.MakeNumbers(std::vector<float>(values));
    }
    void PutInt(Json& object, std::string_view name, int value) {
        m_tree.Member(object, name) = m_tree.MakeNumber(static_cast<double>(value));
    }
    void PutMatrix(Json& object, std::string_view name, const vl::Matrix4<double>& m) {
        Json numbers = JsonTree::MakeArray();
        for (const auto& row : m.m) {
            for (const double value : row) m_tree.Append(numbers, m_tree.MakeNumber(value));
        }
        m_tree.Member(object, name) = numbers;
    }

    int SourceOf(const ExportNode& record) const {
        const vl::zr::Node* node = record.pNode != nullptr ? record.pNode : record.pSourceNode;
        const auto index = m_loaded.IndexOf(node);
        return index ? static_cast<int>(*index) : -1;
    }

    Json Node(ExportNode& record) {
        Json node = JsonTree::MakeObject();
        m_tree.Member(node, "name") = m_tree.MakeString(NameOf(record));
        PutInt(node, "parent", record.pParent != nullptr ? m_index[record.pParent] : -1);
        m_tree.Member(node, "flags") = m_tree.MakeIndex(record.dwFlags);
        Put(node, "position", {record.vPosition.x, record.vPosition.y, record.vPosition.z});
        Put(node, "rotation",
            {record.qRotation.x, record.qRotation.y, record.qRotation.z, record.qRotation.w});
        Put(node, "scale", {record.vScale.x, record.vScale.y, record.vScale.z});
        if (!(record.vPivot == vl::Vector3<float>())) {
            Put(node, "pivot", {record.vPivot.x, record.vPivot.y, record.vPivot.z});
        }
        PutMatrix(node, "local", record.mLocal);
        PutMatrix(node, "world", record.mWorld);
        PutInt(node, "source", SourceOf(record));
        if (record.pTarget != nullptr) PutInt(node, "target", m_index[record.pTarget]);
        m_tree.Member(node, "positionKeys") =
            Keys<ExportPositionKey>(record, vl::zr::kKeyPosition, &Tools::GetPositionKey);
        m_tree.Member(node, "rotationKeys") =
            Keys<ExportRotationKey>(record, vl::zr::kKeyRotation, &Tools::GetRotationKey);
        m_tree.Member(node, "scaleKeys") =
            Keys<ExportScaleKey>(record, vl::zr::kKeyScale, &Tools::GetScaleKey);
        return node;
    }

    using Tools = vl::tk::Serializer;

    // As many keys as the tools count: a key that is not there has the value at rest, and a single key, which
    // says no more than that, does not count.
    template <typename Key>
    Json Keys(ExportNode& record, int track, int (Tools::*get)(ExportNode*, int, Key*)) {
        const int count = m_tool->GetKeyCount(&record, track);
        Json list = JsonTree::MakeArray();
        for (int i = 0; i < count; ++i) {
            Key key;
            (m_tool.Get()->*get)(&record, i, &key);
            m_tree.Append(list, KeyItem(key));
        }
        return list;
    }

    template <typename Key>
    Json KeyItem(const Key& key) {
        Json item = JsonTree::MakeObject();
        Put(item, "time", key.fTime);
        Put(item, "value", {key.vValue.x, key.vValue.y, key.vValue.z});
        return item;
    }

    Json KeyItem(const ExportRotationKey& key) {
        Json item = JsonTree::MakeObject();
        Put(item, "time", key.fTime);
        Put(item, "value", {key.qValue.x, key.qValue.y, key.qValue.z, key.qValue.w});
        if (m_options.Has(vl::tk::kAngleAxisKeys)) {
            Put(item, "axisAngle", {key.aaValue.x, key.aaValue.y, key.aaValue.z, key.aaValue.angle});
        }
        return item;
    }

    const LoadedScene& m_loaded;
    const Tool& m_tool;
    const ExportOptions& m_options;
    JsonTree m_tree;
    std::unordered_map<const ExportNode*, int> m_index;
};

}  // namespace

void WriteRecordJson(const LoadedScene& loaded, const Tool& tool, const ExportOptions& options,
                     OutputFile& file) {
    file.Write(RecordWriter(loaded, tool, options).Text());
}

}  // namespace zr
