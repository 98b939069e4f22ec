// Slot 0 of the leaves' virtual tables: what hosts of Microsoft's compilers call to delete a leaf,
// and what the module itself calls, since leaves of their subclasses have nothing else in their
// tables.
#include <cstddef>
#include <new>

#include "dicomdir/leaf_destruction.h"

namespace {

// Bits of the mode.
constexpr uint32_t kFreeMemory = 1;
constexpr uint32_t kArray = 2;  // the leaf is the first one of an array

// The number of leaves stands in front of the array and is where its memory begins.
template <typename Leaf>
void* DestroyArray(Leaf* leaves, uint32_t mode) {
    size_t* count = reinterpret_cast<size_t*>(leaves) - 1;
    for (size_t i = *count; i > 0; --i)
        leaves[i - 1].~Leaf();
    if ((mode & kFreeMemory) != 0) ::operator delete[](count);
    return count;
}

template <typename Leaf>
void* DestroyByMode(Leaf* leaf, uint32_t mode) {
    if ((mode & kArray) != 0) return DestroyArray(leaf, mode);
    void* const address = leaf;
    if ((mode & kFreeMemory) != 0) {
        delete leaf;
    } else {
        leaf->~Leaf();
    }
    return address;
}

}  // namespace

void pgkit::Destroy(PGX_DicomDirLeafNode* leaf) {
    if (leaf != nullptr) leaf->DeletingDestructor(kFreeMemory);
}

void* PGX_DicomDirLeafNode::DeletingDestructor(uint32_t mode) { return DestroyByMode(this, mode); }

void* PGX_DicomDirImageNode::DeletingDestructor(uint32_t mode) { return DestroyByMode(this, mode); }

void* PGX_DicomDirReportNode::DeletingDestructor(uint32_t mode) {
    return DestroyByMode(this, mode);
}

void* PGX_DicomDirKeyObjectNode::DeletingDestructor(uint32_t mode) {
    return DestroyByMode(this, mode);
}

void* PGX_DicomDirPresentationNode::DeletingDestructor(uint32_t mode) {
    return DestroyByMode(this, mode);
}

void* PGX_DicomDirEncapsulatedDocNode::DeletingDestructor(uint32_t mode) {
    return DestroyByMode(this, mode);
}

void* PGX_DicomDirWaveformNode::DeletingDestructor(uint32_t mode) {
    return DestroyByMode(this, mode);
}

void* PGX_DicomDirRawDataNode::DeletingDestructor(uint32_t mode) {
    return DestroyByMode(this, mode);
}

// The tables once more, under names for their slot 0: the compiler's own names stand two words in
// front of it. It puts the tables into this object, because the functions above are the first ones
// in them.
asm(R"(
.macro name_slots class
    .globl slots_of_\class
    .set slots_of_\class, _ZTV\class + 16
.endm
name_slots 20PGX_DicomDirLeafNode
name_slots 21PGX_DicomDirImageNode
name_slots 22PGX_DicomDirReportNode
name_slots 25PGX_DicomDirKeyObjectNode
name_slots 28PGX_DicomDirPresentationNode
name_slots 31PGX_DicomDirEncapsulatedDocNode
name_slots 24PGX_DicomDirWaveformNode
name_slots 23PGX_DicomDirRawDataNode
)");
