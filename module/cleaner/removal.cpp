// SPDX-License-Identifier: MIT
#include "module/cleaner/removal.h"

#include "host/change_record.h"
#include "host/node.h"

namespace zrt {

void RemoveNodes(vl::ArrayOf<vl::zr::Node*> nodes, const vl::Context* context, ChangeRecord* record,
                 int& count) {
    RemoveEach(nodes, context, count, [record](vl::zr::Node* node) {
        if (record != nullptr) record->RecordNodeRemoval(node, 0);
        node->Delete(0);
    });
}

}  // namespace zrt
