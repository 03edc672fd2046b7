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
    RecordWriter(const LoadedScene& loaded, const Tool& tool, const ExportOptions& options,
                 gltf::JsonStream& out)
        : m_loaded(loaded), m_tool(tool), m_options(options), m_out(out) {}

    void Run(const kernix::AnimationModel* named) {
        int index = 0;
        for (ExportNode* record : AllRecords(m_tool)) m_index[record] = index++;
        m_out.Open('{');
        if (named != nullptr) m_out.Put(m_tree.MakeString(kernix::ToUtf8(named->m_name)), "name");
        Put("start", m_tool->GetStartTime());
        Put("end", m_tool->GetEndTime());
        Put("frameRate", m_tool->GetFrameRate());
        m_out.Open('[', "nodes");
        for (ExportNode* record : AllRecords(m_tool)) Node(*record);
        m_out.Close();
        m_out.Close();
    }

private:
    void Put(std::string_view name, float value) { m_out.Put(m_tree.MakeNumber(value), name); }
    void Put(std::string_view name, std::initializer_list<float> values) {
        m_out.Put(m_tree.MakeNumbers(std::vector<float>(values)), name);
    }
    void PutInt(std::string_view name, int value) {
        m_out.Put(m_tree.MakeNumber(static_cast<double>(value)), name);
    }
    void PutMatrix(std::string_view name, const vl::Matrix4<double>& m) {
        Json numbers = JsonTree::MakeArray();
        for (const auto& row : m.m) {
            for (const double value : row) m_tree.Append(numbers, m_tree.MakeNumber(value));
        }
        m_out.Put(numbers, name);
    }

    int SourceOf(const ExportNode& record) const {
        const vl::zr::Node* node = record.pNode != nullptr ? record.pNode : record.pSourceNode;
        const auto index = m_loaded.IndexOf(node);
        return index ? static_cast<int>(*index) : -1;
    }

    void Node(ExportNode& record) {
        m_out.Open('{');
        m_out.Put(m_tree.MakeString(NameOf(record)), "name");
        PutInt("parent", record.pParent != nullptr ? m_index[record.pParent] : -1);
        m_out.Put(m_tree.MakeIndex(record.dwFlags), "flags");
        Put("position", {record.vPosition.x, record.vPosition.y, record.vPosition.z});
        Put("rotation", {record.qRotation.x, record.qRotation.y, record.qRotation.z, record.qRotation.w});
        Put("scale", {record.vScale.x, record.vScale.y, record.vScale.z});
        if (!(record.vPivot == vl::Vector3<float>()))
            Put("pivot", {record.vPivot.x, record.vPivot.y, record.vPivot.z});
        PutMatrix("local", record.mLocal);
        PutMatrix("world", record.mWorld);
        PutInt("source", SourceOf(record));
        if (record.pTarget != nullptr) PutInt("target", m_index[record.pTarget]);
        Keys<ExportPositionKey>("positionKeys", record, vl::zr::kKeyPosition, &Tools::GetPositionKey);
        Keys<ExportRotationKey>("rotationKeys", record, vl::zr::kKeyRotation, &Tools::GetRotationKey);
        Keys<ExportScaleKey>("scaleKeys", record, vl::zr::kKeyScale, &Tools::GetScaleKey);
        m_out.Close();
    }

    using Tools = vl::tk::Serializer;

    // Writes as many keys as the tools count. A missing key has the rest value; a single key adds nothing to
    // that and is not counted.
    template <typename Key>
    void Keys(std::string_view name, ExportNode& record, int track,
              int (Tools::*get)(ExportNode*, int, Key*)) {
        const int count = m_tool->GetKeyCount(&record, track);
        m_out.Open('[', name);
        for (int i = 0; i < count; ++i) {
            Key key;
            (m_tool.Get()->*get)(&record, i, &key);
            m_out.Open('{');
            Put("time", key.fTime);
            PutValue(key);
            m_out.Close();
            // Frees what has been written.
            if (m_tree.Size() > kMostInMemory) m_tree = JsonTree();
        }
        m_out.Close();
    }

    template <typename Key>
    void PutValue(const Key& key) {
        Put("value", {key.vValue.x, key.vValue.y, key.vValue.z});
    }

    void PutValue(const ExportRotationKey& key) {
        Put("value", {key.qValue.x, key.qValue.y, key.qValue.z, key.qValue.w});
        if (m_options.Has(vl::tk::kAngleAxisKeys))
            Put("axisAngle", {key.aaValue.x, key.aaValue.y, key.aaValue.z, key.aaValue.angle});
    }

    static constexpr std::size_t kMostInMemory = std::size_t{1} << 20;

    const LoadedScene& m_loaded;
    const Tool& m_tool;
    const ExportOptions& m_options;
    gltf::JsonStream& m_out;
    JsonTree m_tree;
    std::unordered_map<const ExportNode*, int> m_index;
};

}  // namespace

void WriteRecordJson(const LoadedScene& loaded, const Tool& tool, const ExportOptions& options,
                     const kernix::AnimationModel* named, gltf::JsonStream& out) {
    RecordWriter(loaded, tool, options, out).Run(named);
}

}  // namespace zr
