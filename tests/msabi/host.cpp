// A host that is compiled as Microsoft's compilers do: it uses the classes of the public headers
// through their decorated names, virtual tables and calling sequences. The last line that it prints
// is "N passed, M failed". It runs in an empty directory.
#include <pgkit/pgkit.h>

#include "system.h"

// What a compiler's own library would bring.
extern "C" int _fltused = 0;
void* operator new(size_t size) { return malloc(size); }
void* operator new[](size_t size) { return malloc(size); }
void operator delete(void* block) noexcept { free(block); }
void operator delete(void* block, size_t) noexcept { free(block); }
void operator delete[](void* block) noexcept { free(block); }
void operator delete[](void* block, size_t) noexcept { free(block); }

namespace {

int passed = 0;
int failed = 0;

#define EXPECT(condition) Expect(condition, #condition, __LINE__)

void Expect(bool holds, const char* condition, int line) {
    ++(holds ? passed : failed);
    if (!holds) printf("host.cpp:%d: %s\n", line, condition);
}

bool Equal(const char* a, const char* b) { return strcmp(a, b) == 0; }

void CallsFlatFunctions() {
    char version[18] = {};
    EXPECT(pgGetVersionString(version, 17) == 17);
    EXPECT(Equal(version, "2.86e 24-mar-2o15"));
    EXPECT(pgGetVersionFloat() > 2.8649f && pgGetVersionFloat() < 2.8651f);
    EXPECT(pgIsImageSOPClass("1.2.840.10008.5.1.4.1.1.2"));
    EXPECT(!pgIsReportSOPClass("1.2.840.10008.5.1.4.1.1.2"));
}

void ConstructorsGiveObjectsAndTakeArgumentsFromTheStack() {
    auto* node = new PGX_Node(NT_DataElement, ET_BigEndian, 0x1234, 0x5678, VR_LO, 0xFEDCBA98);
    EXPECT(node->nodeType == NT_DataElement && node->endian == ET_BigEndian);
    EXPECT(node->group == 0x1234 && node->element == 0x5678);
    EXPECT(node->valueRep == VR_LO && node->length == 0xFEDCBA98);
    EXPECT(node->syntaxFlags == 0xFFFFFFFF && node->tagName == nullptr);
    PGX_Node other;
    EXPECT(&(other = *node) == &other);
    EXPECT(other.element == 0x5678);
    delete node;
}

PGX_Node* NewDataSet() {
    PGX_Node* root = new PGX_Node;
    root->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    root->InsertNode(pgGetTagElementId("SliceThickness"), "-2.5", 4);
    const uint16_t rows = 0xFFFE;
    root->AddOrReplaceNode(0x0028, 0x0010, &rows, 2);
    PGX_Node* sequence = root->InsertNode(0x0008, 0x1140, nullptr, 0);
    PGX_Node* item = new PGX_Node;
    item->InsertNode(0x0008, 0x1150, "1.2.3", 5);
    sequence->SeqAddTail(item);
    return root;
}

void ExpectDataSet(PGX_Node* root) {
    char text[65];
    PGX_Node* name = root->FindNode(0x0010, 0x0010);
    EXPECT(name != nullptr && name->GetStringValue(text, 64) == 1 && Equal(text, "DOE^JOHN"));
    EXPECT(root->FindNode(0x0018, 0x0050)->GetDSDoubleValue() == -2.5);
    EXPECT(root->FindNode(0x0028, 0x0010)->GetUSValue() == 0xFFFE);
    PGX_Node* item = root->FindNode(0x0008, 0x1140)->SeqGetHead();
    EXPECT(item != nullptr && item->FindNode(0x0008, 0x1150)->GetValue(text) == 1);
    EXPECT(Equal(text, "1.2.3"));
}

void BuildsEditsSavesAndReadsDataSets() {
    PGX_Node* root = NewDataSet();
    ExpectDataSet(root);
    root->InsertNode(0x0010, 0x0020, "4711", 4);
    root->RemoveNode(root->FindNode(0x0010, 0x0020));
    EXPECT(root->FindNode(0x0010, 0x0020) == nullptr);
    EXPECT(root->AddPart10Elements("1.2.840.10008.1.2.1") == 1);
    EXPECT(root->SaveDataSetAsEx("saved.dcm", PG_META | PG_EXPLICIT_VR | PG_LITTLE_ENDIAN) == 0);
    root->SaveDataSetAs(1, "bare.dcm");
    pgFreeNodeHierarchy(root);

    EXPECT(pgIsDicomFile("saved.dcm") == 1);
    PGX_Node* read = pgOpenDataSetFile("saved.dcm", 0);
    EXPECT(read != nullptr && read->syntaxFlags == 0x2C);
    ExpectDataSet(read);
    PGX_Node* copy = read->DuplicateNode(1);
    pgCloseDataSet(read);
    ExpectDataSet(copy);
    pgFreeNodeHierarchy(copy);
    PGX_Node* bare = pgOpenDataSetFileEx("bare.dcm", 64, PG_OPEN_FORCE_BIG_ENDIAN);
    ExpectDataSet(bare);
    pgCloseDataSet(bare);
}

void StreamsOfTheHostGoIntoTheModule() {
    PGX_Node* root = NewDataSet();
    FILE* stream = fopen("dump.txt", "w");
    EXPECT(root->Dump(stream, "> ") == 1);
    fclose(stream);
    stream = fopen("dump.txt", "r");
    EXPECT(fgetc(stream) == '>');
    fclose(stream);
    stream = fopen("node.bin", "wb");
    EXPECT(root->WriteNodeEx(stream, PG_LITTLE_ENDIAN | PG_UNDEFINED_LENGTHS) == 0);
    fclose(stream);
    pgFreeNodeHierarchy(root);
    // The tree takes the stream over and closes it.
    PGX_Node* read = pgOpenDataSetFileHandle(fopen("node.bin", "rb"), 0);
    EXPECT(read != nullptr);
    ExpectDataSet(read);
    pgCloseDataSet(read);
    // Printed among what the host prints.
    PGX_Node* element = new PGX_Node(NT_DataElement, ET_LittleEndian, 0x0010, 0x0010, VR_PN, 0);
    EXPECT(element->Dump(stdout, "dumped by the module: ") == 1);
    pgFreeNode(element);
}

void StreamsOfTheModuleGoIntoTheHost() {
    PGX_Node* root = NewDataSet();
    EXPECT(root->SaveDataSetAsEx("stream.dcm", PG_EXPLICIT_VR | PG_LITTLE_ENDIAN) == 0);
    pgFreeNodeHierarchy(root);
    PGX_Node* read = pgOpenDataSetFile("stream.dcm", 0);
    PGX_Node* name = read->FindNode(0x0010, 0x0010);
    EXPECT(name->file != nullptr && name->value == nullptr);
    char bytes[9] = {};
    EXPECT(fseek(name->file, static_cast<long>(name->fileOffset), 0) == 0);
    EXPECT(fread(bytes, 1, 8, name->file) == 8 && Equal(bytes, "DOE^JOHN"));
    // The host closes it, and says so.
    EXPECT(fclose(read->file) == 0);
    read->file = nullptr;
    pgCloseDataSet(read);
}

void NodesOfTheHostAreFreedByTheModule() {
    PGX_Node* root = new PGX_Node;
    PGX_Node* item = new PGX_Node;
    root->InsertNode(new PGX_Node(NT_DataElement, ET_LittleEndian, 0x0010, 0x0020, VR_LO, 0));
    root->InsertNode(0x0008, 0x1140, nullptr, 0)->SeqAddTail(item);
    root->RemoveNode(root->FindNode(0x0010, 0x0020));
    EXPECT(root->FindNode(0x0010, 0x0020) == nullptr);
    pgFreeNodeHierarchy(root);
    pgFreeNode(new PGX_Node);
    EXPECT(_heapchk() == -2);
}

void ListsHoldPointers() {
    int things[3] = {};
    PGX_List list;
    list.AddTail(&things[0]);
    list.AddTail(&things[2]);
    list.InsertAt(1, &things[1]);
    EXPECT(list.GetCount() == 3 && list.GetAt(1) == &things[1]);
    EXPECT(list.GetFirstPosition()->data == &things[0] && list.GetTail() == &things[2]);
    EXPECT(list.RemoveElement(&things[1]) == &things[1] && list.count == 2);
    PGX_ListElement cell;
    EXPECT(cell.data == nullptr && cell.next == nullptr);
    EXPECT(&(cell = *list.GetFirstPosition()) == &cell && cell.next->data == &things[2]);
    PGX_List* made = pgKitListAllocate();
    made->AddHead(&things[0]);
    delete made;
    PGX_List* own = new PGX_List;
    own->AddTail(&things[0]);
    pgKitListDelete(own);
    EXPECT(_heapchk() == -2);
}

// ---- Leaves -------------------------------------------------------------------------------------

constexpr uint32_t kFreedBlock = 0x8000;

// An image whose icon tells whether it was destroyed.
void* GiveIcon(PGX_DicomDirImageNode& image) {
    image.icon = GlobalAlloc(2, 64);
    return image.icon;
}

bool IsFreed(void* block) { return (GlobalFlags(block) & kFreedBlock) != 0; }

// Made, copied, assigned and deleted, the latter through a pointer to the base class.
template <typename Leaf>
void LeafLivesAndEnds(int32_t type) {
    Leaf* leaf = new Leaf;
    EXPECT(leaf->leafType == type);
    strcpy(leaf->instanceUid, "1.2.3");
    Leaf* copy = new Leaf(*leaf);
    EXPECT(copy->leafType == type && Equal(copy->instanceUid, "1.2.3"));
    Leaf onStack;
    EXPECT(&(onStack = *leaf) == &onStack);
    EXPECT(Equal(onStack.instanceUid, "1.2.3"));
    delete static_cast<PGX_DicomDirLeafNode*>(copy);
    delete static_cast<PGX_DicomDirLeafNode*>(leaf);
    EXPECT(_heapchk() == -2);
}

void LeavesOfEveryClass() {
    LeafLivesAndEnds<PGX_DicomDirLeafNode>(PG_LEAF_OTHER);
    LeafLivesAndEnds<PGX_DicomDirImageNode>(PG_LEAF_IMAGE);
    LeafLivesAndEnds<PGX_DicomDirReportNode>(PG_LEAF_REPORT);
    LeafLivesAndEnds<PGX_DicomDirKeyObjectNode>(PG_LEAF_KEY_OBJECT);
    LeafLivesAndEnds<PGX_DicomDirPresentationNode>(PG_LEAF_PRESENTATION);
    LeafLivesAndEnds<PGX_DicomDirEncapsulatedDocNode>(PG_LEAF_ENCAPSULATED_DOC);
    LeafLivesAndEnds<PGX_DicomDirWaveformNode>(PG_LEAF_WAVEFORM);
    LeafLivesAndEnds<PGX_DicomDirRawDataNode>(PG_LEAF_RAW_DATA);
}

void DeletingALeafFreesWhatItOwns() {
    auto* image = new PGX_DicomDirImageNode;
    void* icon = GiveIcon(*image);
    EXPECT(!IsFreed(icon));
    PGX_DicomDirLeafNode* leaf = image;
    delete leaf;
    EXPECT(IsFreed(icon));
}

// A destructor that is called by hand leaves the memory.
void DestroyingALeafInPlaceFreesWhatItOwns() {
    auto* image = new PGX_DicomDirImageNode;
    void* icon = GiveIcon(*image);
    PGX_DicomDirLeafNode* leaf = image;
    leaf->~PGX_DicomDirLeafNode();
    EXPECT(IsFreed(icon));
    operator delete(image);
    EXPECT(_heapchk() == -2);
}

// Microsoft's own compiler deletes arrays through slot 0 too.
void SlotZeroDeletesArrays() {
    auto* images = new PGX_DicomDirImageNode[3];
    void* icons[3];
    for (int i = 0; i < 3; ++i)
        icons[i] = GiveIcon(images[i]);
    using Slot = void* (*)(void* object, unsigned mode);
    Slot* table = *reinterpret_cast<Slot**>(images);
    table[0](images, 3);
    for (void* icon : icons)
        EXPECT(IsFreed(icon));
    EXPECT(_heapchk() == -2);
}

void VirtualTablesAreExported() {
    const PGX_DicomDirReportNode report;
    void* module = GetModuleHandleA("pgkit.dll");
    void* table = GetProcAddress(module, "??_7PGX_DicomDirReportNode@@6B@");
    EXPECT(table != nullptr && *reinterpret_cast<void* const*>(&report) == table);
}

// ---- Hierarchies --------------------------------------------------------------------------------

int destroyed = 0;

class HostLeaf : public PGX_DicomDirImageNode {
  public:
    ~HostLeaf() override { ++destroyed; }
    char room[4096] = {};
};

struct Hierarchy {
    PGX_List patients;
    PGX_DicomDirPatientNode* patient = new PGX_DicomDirPatientNode;
    PGX_DicomDirStudyNode* study = new PGX_DicomDirStudyNode;
    PGX_DicomDirSeriesNode* series = new PGX_DicomDirSeriesNode;

    Hierarchy() {
        strcpy(patient->patientId, "4711");
        strcpy(study->studyInstanceUid, "1.2");
        strcpy(series->seriesInstanceUid, "1.2.3");
        strcpy(series->modality, "CT");
        patients.AddTail(patient);
        patient->studies.AddTail(study);
        study->series.AddTail(series);
    }

    template <typename Leaf>
    Leaf* Add(const char* recordType, const char* uid) {
        Leaf* leaf = new Leaf;
        strcpy(leaf->recordType, recordType);
        strcpy(leaf->instanceUid, uid);
        strcpy(leaf->referencedFileId, "FILE");
        series->leaves.AddTail(leaf);
        return leaf;
    }
};

void TheModuleDestroysTheHostsOwnLeaves() {
    Hierarchy made;
    HostLeaf* leaf = made.Add<HostLeaf>("IMAGE", "1.2.3.1");
    void* icon = GiveIcon(*leaf);
    made.Add<HostLeaf>("IMAGE", "1.2.3.2");
    pgRemoveLeaf(&made.patients, leaf);
    EXPECT(destroyed == 1 && IsFreed(icon));
    pgEmptyPatientList(&made.patients);
    EXPECT(destroyed == 2);
    EXPECT(_heapchk() == -2);
}

int32_t CountLeaf(PGX_DicomDirCallbackReason* reason, const char* message, void* userData) {
    EXPECT(reason->reason == 0 && reason->path != nullptr && message != nullptr);
    ++*static_cast<int*>(userData);
    return 1;
}

void WriteDicomdir() {
    Hierarchy made;
    made.Add<PGX_DicomDirImageNode>("IMAGE", "1.2.3.1");
    made.Add<PGX_DicomDirReportNode>("SR DOCUMENT", "1.2.3.2");
    made.Add<PGX_DicomDirKeyObjectNode>("KEY OBJECT DOC", "1.2.3.3");
    made.Add<PGX_DicomDirPresentationNode>("PRESENTATION", "1.2.3.4");
    made.Add<PGX_DicomDirWaveformNode>("WAVEFORM", "1.2.3.5");
    made.Add<PGX_DicomDirEncapsulatedDocNode>("ENCAP DOC", "1.2.3.6");
    made.Add<PGX_DicomDirRawDataNode>("RAW DATA", "1.2.3.7");
    EXPECT(pgBuildDicomdir(&made.patients, ".") == 0);
    pgEmptyPatientList(&made.patients);
}

PGX_DicomDirSeriesNode* OnlySeries(PGX_List* patients) {
    auto* patient = static_cast<PGX_DicomDirPatientNode*>(patients->GetHead());
    auto* study = static_cast<PGX_DicomDirStudyNode*>(patient->studies.GetHead());
    return static_cast<PGX_DicomDirSeriesNode*>(study->series.GetHead());
}

void BrowsesADicomdirAndDeletesItsLeaves() {
    WriteDicomdir();
    PGX_DicomDir* directory = new PGX_DicomDir;
    EXPECT(directory->OpenDicomDir(".\\DICOMDIR", 0x20000) == 1);
    EXPECT(directory->IsDicomDir() == 1);
    int leaves = 0;
    EXPECT(directory->Browse(CountLeaf, &leaves) == directory->GetPatientList());
    EXPECT(leaves == 7 && directory->leafCount == 7);
    PGX_List* patients = directory->GiveAndForgetPatientList();
    delete directory;
    PGX_List& list = OnlySeries(patients)->leaves;
    for (int32_t type = PG_LEAF_IMAGE; type <= PG_LEAF_RAW_DATA; ++type) {
        auto* leaf = static_cast<PGX_DicomDirLeafNode*>(list.RemoveHead());
        EXPECT(leaf->leafType == type);
        delete leaf;
    }
    pgEmptyPatientList(patients);
    delete patients;
    EXPECT(_heapchk() == -2);
}

void UsesAccessors() {
    PGX_DicomDir* directory = pgKitOpenDicomDir(".\\DICOMDIR", 0x20000);
    PGX_List* patients = pgKitDirBrowse(directory, nullptr, nullptr);
    auto* patient = static_cast<PGX_DicomDirPatientNode*>(pgKitListGetHead(patients));
    EXPECT(Equal(pgKitDirGetPatientID(patient), "4711"));
    pgKitCloseDicomDir(directory);
    EXPECT(pgKitWriteNodeEx(nullptr, nullptr, 0) == 0xFFFFFFFF);
}

}  // namespace

extern "C" void Start() {
    CallsFlatFunctions();
    ConstructorsGiveObjectsAndTakeArgumentsFromTheStack();
    BuildsEditsSavesAndReadsDataSets();
    StreamsOfTheHostGoIntoTheModule();
    StreamsOfTheModuleGoIntoTheHost();
    NodesOfTheHostAreFreedByTheModule();
    ListsHoldPointers();
    LeavesOfEveryClass();
    DeletingALeafFreesWhatItOwns();
    DestroyingALeafInPlaceFreesWhatItOwns();
    SlotZeroDeletesArrays();
    VirtualTablesAreExported();
    TheModuleDestroysTheHostsOwnLeaves();
    BrowsesADicomdirAndDeletesItsLeaves();
    UsesAccessors();
    printf("%d passed, %d failed\n", passed, failed);
    exit(failed == 0 ? 0 : 1);
}
