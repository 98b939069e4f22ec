#include "root_records.h"

#include "pgkit/standard_records.h"

namespace pgtool {

std::vector<pgkit::item> TakeRootRecords(PGX_DicomDir& directory) {
    std::vector<PGX_Node*> nodes(pgxTakeRootRecords(&directory, nullptr, 0));
    nodes.resize(pgxTakeRootRecords(&directory, nodes.data(), static_cast<uint32_t>(nodes.size())));
    return std::vector<pgkit::item>(nodes.begin(), nodes.end());
}

}  // namespace pgtool
