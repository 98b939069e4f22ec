#include "dicomdir/create/directory_build.h"

#include <new>
#include <utility>

#include "base/firewall.h"
#include "base/identity.h"
#include "base/text.h"
#include "codec/part10_format.h"
#include "codec/transfer_syntax.h"
#include "codec/write_result.h"
#include "dataset/node_ptr.h"
#include "dicomdir/create/directory_file.h"
#include "dicomdir/create/generated_values.h"
#include "dicomdir/create/new_records.h"
#include "dicomdir/elements.h"
#include "dicomdir/leaf_kinds.h"
#include "dicomdir/object_list.h"
#include "pgkit/dicomdir_creation.h"

namespace pgkit {

namespace {

NodeTree NewFileSet(std::string_view fileSetId) {
    NodeTree root(pgAllocateDataSetNode());
    if (root == nullptr) throw std::bad_alloc();
    PutBytes(*root, tags::kMetaInformationVersion, kMetaInformationVersion,
             sizeof kMetaInformationVersion);
    PutText(*root, tags::kMediaStorageSopClassUid, kMediaStorageDirectory);
    PutText(*root, tags::kMediaStorageSopInstanceUid, NewDicomdirUid());
    PutText(*root, tags::kTransferSyntaxUid, kExplicitVrLittleEndianUid);
    PutText(*root, tags::kImplementationClassUid, kImplementationClassUid);
    PutText(*root, tags::kImplementationVersionName, kDirectoryFileImplementation);
    PutText(*root, tags::kFileSetId, fileSetId.empty() ? kDirectoryFileImplementation : fileSetId);
    PutNumber<uint32_t>(*root, tags::kFirstRootRecord, 0);
    PutNumber<uint32_t>(*root, tags::kLastRootRecord, 0);
    PutNumber<uint16_t>(*root, tags::kFileSetConsistency, 0);
    PutBytes(*root, tags::kRecordSequence, nullptr, 0);
    return root;
}

// The value becomes the position at which the target is written.
void PointAt(PGX_Node& link, PGX_Node& target) {
    link.offsetPending = 1;
    link.offsetTarget = &target;
}

// The records of one level under one parent: each is linked from the one before, the first from the
// parent.
class RecordChain {
  public:
    explicit RecordChain(PGX_Node* firstLink) : link_(firstLink) {}
    static RecordChain Below(PGX_Node& record) {
        return RecordChain(FindElement(record, tags::kLowerLevelLink));
    }

    void Append(PGX_Node& record) {
        PointAt(*link_, record);
        link_ = FindElement(record, tags::kNextRecordLink);
    }

  private:
    PGX_Node* link_;
};

const PGX_List& ChildrenOf(const PGX_DicomDirPatientNode& patient) { return patient.studies; }
const PGX_List& ChildrenOf(const PGX_DicomDirStudyNode& study) { return study.series; }
const PGX_List& ChildrenOf(const PGX_DicomDirSeriesNode& series) { return series.leaves; }

// The objects of one level in the order of their records: those without children come last. There a
// browse ends the level, and what came behind them would be lost.
template <typename Parent, typename Write>
void WriteEach(PGX_List& level, Write write) {
    for (const bool hasChildren : {true, false}) {
        for (Parent& parent : Objects<Parent>(level)) {
            if ((ChildrenOf(parent).head != nullptr) == hasChildren) write(parent);
        }
    }
}

class RecordWriter {
  public:
    RecordWriter(PGX_Node& root, const BuildRequest& request)
        : root_(root), request_(request), end_(&FindElement(root, tags::kRecordSequence)->first) {}

    // What belongs to no patient comes last: a browse takes it for a patient without studies, which
    // ends it.
    void Write(PGX_List& patients, PGX_List& rootLeaves) {
        RecordChain chain(FindElement(root_, tags::kFirstRootRecord));
        WriteEach<PGX_DicomDirPatientNode>(patients, [&](PGX_DicomDirPatientNode& patient) {
            WriteStudies(patient, AppendAtRoot(NewPatientRecord(patient), chain));
        });
        for (PGX_DicomDirLeafNode& leaf : Leaves(rootLeaves))
            AppendAtRoot(NewLeafRecord(leaf, request_.wantsFileSizes), chain);
    }

  private:
    PGX_Node& AppendAtRoot(NodeTree item, RecordChain& chain) {
        PGX_Node& record = Append(std::move(item), chain);
        PointAt(*FindElement(root_, tags::kLastRootRecord), record);
        return record;
    }

    void WriteStudies(PGX_DicomDirPatientNode& patient, PGX_Node& parent) {
        RecordChain chain = RecordChain::Below(parent);
        WriteEach<PGX_DicomDirStudyNode>(patient.studies, [&](PGX_DicomDirStudyNode& study) {
            WriteSeries(study, Append(NewStudyRecord(study), chain));
        });
    }

    void WriteSeries(PGX_DicomDirStudyNode& study, PGX_Node& parent) {
        RecordChain chain = RecordChain::Below(parent);
        WriteEach<PGX_DicomDirSeriesNode>(study.series, [&](PGX_DicomDirSeriesNode& series) {
            WriteLeaves(series, Append(NewSeriesRecord(series), chain));
        });
    }

    void WriteLeaves(PGX_DicomDirSeriesNode& series, PGX_Node& parent) {
        RecordChain chain = RecordChain::Below(parent);
        for (PGX_DicomDirLeafNode& leaf : Leaves(series.leaves))
            Append(NewLeafRecord(leaf, request_.wantsFileSizes), chain);
    }

    // Puts an item at the end of the sequence, which owns it from then on.
    PGX_Node& Append(NodeTree item, RecordChain& chain) {
        PGX_Node& record = *item.release();
        *end_ = &record;
        end_ = &record.next;
        chain.Append(record);
        return record;
    }

    PGX_Node& root_;
    const BuildRequest& request_;
    PGX_Node** end_;
};

uint32_t WriteDicomdir(PGX_List& patients, PGX_List& rootLeaves, const BuildRequest& request) {
    const NodeTree root = NewFileSet(request.fileSetId);
    DirectoryFile file(request.folder);
    file.RemoveStrays();
    if (!file.Create()) return kCannotCreate;
    const bool isEmpty = patients.count == 0 && rootLeaves.count == 0;
    if (isEmpty && !request.mayBeEmpty) return PG_CREATION_NOTHING_ACCEPTED;
    RecordWriter(*root, request).Write(patients, rootLeaves);
    const uint32_t result = file.Save(*root);
    if (result == kWritten) file.RemoveStrays();
    return result;
}

}  // namespace

uint32_t BuildDirectoryFile(PGX_List& patients, const BuildRequest& request) {
    PGX_List none;
    PGX_List& rootLeaves = request.rootLeaves != nullptr ? *request.rootLeaves : none;
    const uint32_t result = WriteDicomdir(patients, rootLeaves, request);
    if (request.list == nullptr) return result;
    if (result == kWritten) request.list->AppendAccepted(patients, rootLeaves);
    if (result == kWritten || result == PG_CREATION_NOTHING_ACCEPTED) request.list->Keep();
    return result;
}

namespace {

uint32_t Build(PGX_List* patients, const char* folder, const char* fileSetId) {
    if (patients == nullptr || folder == nullptr) return kCannotCreate;
    const std::string medium = WithoutTrailingSeparator(folder);
    AcceptanceList list(medium);
    return BuildDirectoryFile(*patients, {.folder = medium,
                                          .fileSetId = OrEmpty(fileSetId),
                                          .rootLeaves = nullptr,
                                          .wantsFileSizes = false,
                                          .mayBeEmpty = true,
                                          .list = &list});
}

}  // namespace

}  // namespace pgkit

uint32_t pgBuildDicomdir(PGX_List* patients, const char* directory) {
    return pgBuildDicomdirEx(patients, directory, nullptr);
}

uint32_t pgBuildDicomdirEx(PGX_List* patients, const char* directory, const char* fileSetId) {
    return pgkit::Guarded([=] { return pgkit::Build(patients, directory, fileSetId); },
                          pgkit::kOutOfMemory);
}
