#include "root_records.h"

#include "pgkit/standard_records.h"

namespace pgtool {

std::vector<pgkit::item> TakeRootRecords(PGX_DicomDir& directory) {
    std::vector<PGX_Node*> nodes(pgxTakeRootRecords(&directory, nullptr, 0));
    nodes.resize(pgxTakeRootRecords(&directory, nodes.data(), static_cast<uint32_t>(nodes.size())));
    std::vector<pgkit::item> records;
    for (PGX_Node* const node : nodes)
        records.emplace_back(node);
    return records;
}

}  // namespace pgtool
