#include <pgkit/pgkit.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string>

#include "input.h"
#include "support/instance_file.h"
#include "support/patient_list.h"
#include "support/temp_dir.h"
#include "support/tree.h"
#include "targets.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

using pgkit_test::DataSet;
using pgkit_test::Describe;
using pgkit_test::Instance;
using pgkit_test::kUndefined;
using pgkit_test::LibraryPath;
using pgkit_test::Order;
using pgkit_test::PaddedUid;
using pgkit_test::PatientList;
using pgkit_test::StreamBuilder;
using pgkit_test::TempDir;
using pgkit_test::TextOf;
using pgkit_test::VrMode;
using FileBytes = pgkit_test::Bytes;

constexpr const char* kDocuments[] = {
    "1.2.840.10008.5.1.4.1.1.88.11",  // report
    "1.2.840.10008.5.1.4.1.1.88.59",  // key object
    "1.2.840.10008.5.1.4.1.1.11.1",   // presentation state
    "1.2.840.10008.5.1.4.1.1.104.1",  // encapsulated document
};

std::string Trimmed(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text.erase(0, text.find_first_not_of(' '));
}

std::string FileId(const PGX_DicomDirLeafNode& leaf) {
    std::string id = leaf.referencedFileId;
    return Trimmed(id.erase(0, id.find_first_not_of('\\')));
}

template <typename Object, typename Use>
void ForEach(PGX_List& list, Use use) {
    for (PGX_ListElement* cell = list.head; cell != nullptr; cell = cell->next)
        use(*static_cast<Object*>(cell->data));
}

template <typename Use>
void ForEachLeaf(PGX_List& patients, Use use) {
    ForEach<PGX_DicomDirPatientNode>(patients, [&](PGX_DicomDirPatientNode& patient) {
        ForEach<PGX_DicomDirStudyNode>(patient.studies, [&](PGX_DicomDirStudyNode& study) {
            ForEach<PGX_DicomDirSeriesNode>(study.series, [&](PGX_DicomDirSeriesNode& series) {
                ForEach<PGX_DicomDirLeafNode>(series.leaves, [&](PGX_DicomDirLeafNode& leaf) {
                    use(patient, study, series, leaf);
                });
            });
        });
    });
}

// Where the instances of a hierarchy stand and what they are, each as often as it is there.
std::multiset<std::string> InstancesOf(PGX_List& patients) {
    std::multiset<std::string> instances;
    ForEachLeaf(patients, [&](auto& patient, auto& study, auto& series, auto& leaf) {
        std::string text;
        for (const char* key :
             {patient.patientId, patient.patientsName, study.studyInstanceUid,
              series.seriesInstanceUid, leaf.instanceUid, leaf.sopClassUid, leaf.transferSyntaxUid})
            text += Trimmed(key) + "|";
        instances.insert(text + FileId(leaf) + "|" + std::to_string(leaf.leafType) + "|" +
                         std::to_string(leaf.instanceNumber));
    });
    return instances;
}

std::multiset<std::string> FilesOf(PGX_List& patients) {
    std::multiset<std::string> files;
    ForEachLeaf(patients, [&](auto&, auto&, auto&, auto& leaf) { files.insert(FileId(leaf)); });
    return files;
}

PatientList Browsed(const TempDir& medium) {
    return PatientList(pgGetPatientListFromFile(LibraryPath(medium.Path("DICOMDIR")).c_str()));
}

// Everything of the record of a file but its links.
std::string RecordOf(const TempDir& medium, const std::string& name) {
    const DataSet root(pgOpenDataSetFile(LibraryPath(medium.Path("DICOMDIR")).c_str(), 0xFFFFFFFF));
    PGX_Node* const records = root == nullptr ? nullptr : root->FindNode(0x0004, 0x1220);
    Require(records != nullptr, "a DICOMDIR that was written has records");
    for (PGX_Node* record = records->first; record != nullptr; record = record->next) {
        PGX_Node* const id = record->FindNode(0x0004, 0x1500);
        if (id == nullptr || Trimmed(TextOf(id)) != name) continue;
        std::string text;
        for (PGX_Node* key = record->first; key != nullptr; key = key->next) {
            if (key->group == 0x0004 && key->element < 0x1430) continue;
            text += Describe(key) + (key->valueRep == VR_SQ ? "" : "=" + TextOf(key)) + ";";
        }
        return text;
    }
    return "";
}

FileBytes Copy(std::span<const uint8_t> bytes) { return {bytes.begin(), bytes.end()}; }

FileBytes GoodFile(const std::string& id) {
    StreamBuilder code;
    code.Item().Element(0x0008, 0x0100, "SH", "121070").EndItem();
    return Instance(1)
        .SopClass(kDocuments[0])
        .Patient(id, "GOOD^" + id)
        .SetSequence(0x0040, 0xA043, code)
        .Data();
}

constexpr std::array<const char*, 2> kGood = {"A", "C"};  // one in front of the hostile file

// What the good files are to have in any DICOMDIR.
const std::map<std::string, std::string>& RecordsAlone() {
    static const std::map<std::string, std::string> records = [] {
        const TempDir medium;
        for (const char* name : kGood)
            medium.Write(name, GoodFile(name));
        PgDicomdirOptions options = {};
        options.flags = PG_DICOMDIR_NO_LIST;
        pgCreateDicomdirEx(LibraryPath(medium.Path("")).c_str(), "", &options, nullptr, nullptr);
        std::map<std::string, std::string> alone;
        for (const char* name : kGood)
            alone[name] = RecordOf(medium, name);
        return alone;
    }();
    return records;
}

// A document whose sequences hold the bytes as they stand, in an encoding of the input's choice.
FileBytes DocumentAround(Input& input) {
    const uint8_t choice = input.Byte();
    const char* const sopClass = kDocuments[choice % 4];
    const VrMode mode = (choice & 4) != 0 ? VrMode::Implicit : VrMode::Explicit;
    const bool isBig = (choice & 12) == 8;
    const bool isInItem = (choice & 16) == 0;
    const uint32_t length =
        (choice & 32) == 0 ? kUndefined : static_cast<uint32_t>(input.Below(400));
    StreamBuilder stream(mode, isBig ? Order::Big : Order::Little);
    stream.Part10(mode == VrMode::Implicit ? "1.2.840.10008.1.2"
                  : isBig                  ? "1.2.840.10008.1.2.2"
                                           : "1.2.840.10008.1.2.1");
    stream.Element(0x0008, 0x0016, "UI", PaddedUid(sopClass));
    stream.Element(0x0008, 0x0018, "UI", PaddedUid("1.2.3.4.9"));
    stream.Element(0x0010, 0x0020, "LO", "HOSTILE ");
    stream.Element(0x0020, 0x000D, "UI", PaddedUid("1.2.3"));
    stream.Element(0x0020, 0x000E, "UI", PaddedUid("1.2.3.4"));
    const bool isContent = (choice & 64) != 0;
    const bool isState = choice % 4 == 2;
    stream.Sequence(isState ? 0x0008 : 0x0040,
                    isState     ? 0x1115
                    : isContent ? 0xA730
                                : 0xA043,
                    length);
    if (isInItem) stream.Item();
    if (isInItem && isContent) stream.Element(0x0040, 0xA010, "CS", "HAS CONCEPT MOD ");
    return stream.Append(Copy(input.Rest())).Data();
}

using Codes = std::map<std::string, uint32_t>;  // by the names of files

int32_t NoteCode(const PgDicomdirScanReason* reason) {
    (*static_cast<Codes*>(reason->userData))[reason->fileName] = reason->acceptanceCode;
    return 0;
}

void RequireGoodRecords(const TempDir& medium, const Codes& codes) {
    for (const char* name : kGood) {
        Require(codes.at(name) != PG_ACCEPTED || RecordOf(medium, name) == RecordsAlone().at(name),
                "a good file has the record that it has without the hostile one");
    }
}

// What was built from the list is all there, once; and again after a browse and another build.
void RequireAllReachable(PGX_List& patients, const TempDir& medium) {
    const std::multiset<std::string> accepted = InstancesOf(patients);
    PatientList browsed = Browsed(medium);
    Require(browsed != nullptr && InstancesOf(*browsed) == accepted,
            "a browse finds every instance of a DICOMDIR that was built, as what it was");
    Require(pgBuildDicomdir(browsed.get(), LibraryPath(medium.Path("")).c_str()) == 0,
            "what was browsed can be built again");
    browsed = Browsed(medium);
    Require(browsed != nullptr && InstancesOf(*browsed) == accepted,
            "a browse finds every instance of a DICOMDIR that was built again, as what it was");
}

void WriteMedium(const TempDir& medium, const FileBytes& hostile) {
    for (const char* name : kGood)
        medium.Write(name, GoodFile(name));
    medium.Write("B", hostile);
}

void Scan(const FileBytes& hostile) {
    const TempDir medium;
    WriteMedium(medium, hostile);
    const std::string directory = LibraryPath(medium.Path(""));
    Codes codes;
    const PatientList patients(new PGX_List);
    PgDicomdirOptions options = {};
    options.flags = PG_DICOMDIR_NO_LIST;
    pgBrowseDisk(directory.c_str(), "", &options, patients.get(), NoteCode, &codes);
    const auto accepted =
        std::ranges::count_if(codes, [](const auto& code) { return code.second == PG_ACCEPTED; });
    Require(InstancesOf(*patients).size() == static_cast<size_t>(accepted),
            "every accepted file is one instance");
    Require(pgBuildDicomdir(patients.get(), directory.c_str()) == 0,
            "a DICOMDIR is written whatever the files are");
    RequireGoodRecords(medium, codes);
    RequireAllReachable(*patients, medium);
    RequireGoodRecords(medium, codes);
}

void Offshore(const FileBytes& hostile) {
    const TempDir files;
    const TempDir medium;
    WriteMedium(files, hostile);
    PgDicomdirOptions options = {};
    options.flags = PG_DICOMDIR_NO_LIST;
    void* const creation =
        pgStartCreateOffshoreDicomdir(LibraryPath(medium.Path("")).c_str(), nullptr, &options);
    Codes codes;
    for (const char* name : {"A", "B", "C"}) {
        codes[name] =
            pgAddFileToOffshoreDicomdir(creation, name, LibraryPath(files.Path(name)).c_str());
    }
    Require(pgEndCreateOffshoreDicomdir(creation) == 0,
            "a DICOMDIR is written whatever the files are");
    RequireGoodRecords(medium, codes);
    const PatientList browsed = Browsed(medium);
    std::multiset<std::string> expected;
    for (const auto& [name, code] : codes)
        if (code == PG_ACCEPTED) expected.insert(name);
    Require(browsed != nullptr && FilesOf(*browsed) == expected,
            "a browse finds every file that was accepted, once");
}

// A file joins what another DICOMDIR tells.
void Extend(const FileBytes& dicomdir) {
    const TempDir medium;
    medium.Write("DICOMDIR", dicomdir);
    medium.Write("C", GoodFile("C"));
    const PatientList patients = Browsed(medium);
    if (patients == nullptr) return;
    PgDicomdirOptions options = {};
    options.flags = PG_DICOMDIR_NO_LIST;
    const std::string directory = LibraryPath(medium.Path(""));
    pgAddFile(patients.get(), directory.c_str(), LibraryPath(medium.Path("C")).c_str(), "",
              &options);
    Require(pgBuildDicomdir(patients.get(), directory.c_str()) == 0,
            "what was browsed can be built again");
    RequireAllReachable(*patients, medium);
}

}  // namespace

void Medium(Bytes bytes) {
    Input input(bytes);
    const uint8_t choice = input.Byte() % 8;
    if (choice == 7) return Extend(Copy(input.Rest()));
    const bool isDocument = choice % 2 == 1;
    const FileBytes hostile = isDocument ? DocumentAround(input) : Copy(input.Rest());
    choice < 4 ? Scan(hostile) : Offshore(hostile);
}

}  // namespace pgkit_fuzz
