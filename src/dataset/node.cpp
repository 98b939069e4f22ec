// Construction, destruction and the member-by-member copy of PGX_Node.
#include "pgkit/node.h"

#include "dataset/long_lists.h"
#include "dataset/node_memory.h"

using pgkit::FreeFragmentTable;
using pgkit::FreeTagName;
using pgkit::FreeValueBuffer;

PGX_Node::PGX_Node() : PGX_Node(NT_DataSet, ET_LittleEndian, 0, 0, VR_Unknown, 0) {}

PGX_Node::PGX_Node(NodeType type, EndianType byteOrder, uint16_t tagGroup, uint16_t tagElement,
                   uint8_t valueRepresentation, uint32_t valueLength)
    : nodeType(type),
      group(tagGroup),
      element(tagElement),
      valueRep(valueRepresentation),
      length(valueLength),
      file(nullptr),
      fileOffset(0),
      value(nullptr),
      endian(byteOrder),
      encapsulated(0),
      fragmentCount(0),
      fragmentCapacity(0),
      fragments(nullptr),
      first(nullptr),
      next(nullptr),
      contentFile(nullptr),
      bitsAllocated(0),
      syntaxFlags(pgkit::kNoSyntaxFlags),
      offsetPending(0),
      offsetTarget(nullptr),
      tagName(nullptr) {}

PGX_Node::~PGX_Node() {
    if (pgkit::MayBeMarked(this)) pgkit::ForgetMarksOf(this);
    FreeValueBuffer(value);
    if (fragments != nullptr) FreeFragmentTable(*this);
    delete[] contentFile;
    FreeTagName(tagName);
}

PGX_Node& PGX_Node::operator=(const PGX_Node& other) = default;
