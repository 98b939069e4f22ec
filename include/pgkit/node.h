// pgkit: PGX_Node, the one class of the data set tree (C++ only).
//
// A node is a data set (the top level of a file, or one item of a sequence), a data element, or,
// through its children, a sequence with its items:
//
//   data set --first--> element --next--> element --next--> ...
//                          |
//                        first (when the element is a sequence)
//                          v
//                       item (a data set) --next--> item --next--> ...
//
// Elements inserted through the library stand in ascending tag order; elements read from a file
// stand in file order, those of the File Meta Information first. Equal tags may occur.
//
// A node owns its value, contentFile, tagName, fragment table and loaded fragments. It does not own
// its children or siblings (pgFreeNodeHierarchy frees those), its file or its offsetTarget. Only
// the root of an opened file has a file to close (pgCloseDataSet).
//
// The fields are public for reading. Change values, names and tables through the members only:
// their memory is the module's own. So is that of nodes which the module made: they are freed
// through pgFreeNode and its like, never with delete. Every node ends by its destructor.
//
// InsertNode and SeqAddTail find their place in a list of more than 1,024 children without walking
// all of it. Code that changes first and next itself is noticed in the last 256 children, where the
// first child changes, where nodes are destroyed, and in all shorter lists. Who cuts a longer list
// further in front and keeps the nodes behind the cut, or links or renames an element there so that
// it sorts behind the last ones, uses pgKitSetNext, pgKitSetGroup and pgKitSetElement for it.
#ifndef PGKIT_NODE_H
#define PGKIT_NODE_H

#include <stdint.h>

#if defined(__cplusplus)

#include <cstddef>
#include <cstdio>

#include "pgkit/dataset.h"
#include "pgkit/export.h"
#include "pgkit/value_representation.h"

enum NodeType : int32_t {
    NT_DataSet = 0,     // a data set or an item; its children are elements
    NT_DataElement = 1  // an element; when its VR is SQ its children are items
};

enum EndianType : int32_t { ET_LittleEndian = 0, ET_BigEndian = 1 };

// One entry of the fragment table of encapsulated Pixel Data.
struct FragmentEntry {
    uint32_t offset;  // position in the file of the first value byte; 0 when built in memory
    uint32_t length;  // bytes
    uint8_t* bytes;   // the bytes in memory, or null while they are in the file
};

// Bits of PGX_Node::syntaxFlags and of every write mode.
enum PgSyntaxFlags : uint32_t {
    PG_UNDEFINED_LENGTHS = 0x01,  // write mode: sequences and items with delimiters
    PG_META_IMPLICIT_VR = 0x02,   // write mode: File Meta Information in implicit VR
    PG_META = 0x04,               // File Meta Information is present, in explicit VR
    PG_EXPLICIT_VR = 0x08,
    PG_IMPLICIT_VR = 0x10,
    PG_LITTLE_ENDIAN = 0x20,
    PG_BIG_ENDIAN = 0x40
};

class PGX_Node {
  public:
    NodeType nodeType;
    uint16_t group;     // 0 for a data set
    uint16_t element;   // 0 for a data set
    uint32_t valueRep;  // ValueRepresentation; 255 unknown or none
    uint32_t length;  // value length in bytes; 0xFFFFFFFF is undefined; 0 for an item until a save
    FILE* file;       // the file from which the value can be read, null when built in memory
    // Position in file of the first value byte; of a data set, of its first element's header. After
    // writing a node built in memory, the position at which it was written. 0xFFFFFFFF marks a
    // position beyond 4 GiB, from which nothing can be read later.
    uint32_t fileOffset;
    uint8_t* value;             // the value in memory, in the byte order of endian; or null
    EndianType endian;          // byte order of the value bytes
    uint32_t encapsulated;      // 1 for Pixel Data in fragments, else 0
    uint32_t fragmentCount;     // entries in use
    uint32_t fragmentCapacity;  // entries allocated
    // The table; the address 1 marks encapsulated Pixel Data whose fragments are not indexed.
    FragmentEntry* fragments;
    PGX_Node* first;         // first child
    PGX_Node* next;          // next sibling
    char* contentFile;       // path of a file whose content is the value, or null
    uint32_t bitsAllocated;  // of a data set: Bits Allocated as inserted; of Pixel Data: its own
    uint32_t syntaxFlags;    // PgSyntaxFlags on the root of an opened file, else 0xFFFFFFFF
    uint32_t offsetPending;  // non-zero: the value is to become the position of offsetTarget
    PGX_Node* offsetTarget;  // not owned
    char* tagName;           // name made by the parser for a tag without built-in name, or null

    // An empty data set: valueRep 255, little endian, syntaxFlags 0xFFFFFFFF, everything else 0.
    PGKIT_API PGX_Node();
    PGKIT_API PGX_Node(NodeType type, EndianType byteOrder, uint16_t tagGroup, uint16_t tagElement,
                       uint8_t valueRepresentation, uint32_t valueLength);
    // Frees what the node owns. Children and siblings stay.
    PGKIT_API ~PGX_Node();
    // Copies member by member, pointers included: afterwards both nodes share their buffers and
    // only one of them may be destroyed. DuplicateNode makes a deep copy.
    PGKIT_API PGX_Node& operator=(const PGX_Node& other);
    PGX_Node(const PGX_Node&) = default;

    // ---- Tree -----------------------------------------------------------------------------------

    // The first direct child with this tag, or with the tag of this element identifier; null when
    // there is none or the identifier is above 3781.
    PGKIT_API PGX_Node* FindNode(uint16_t tagGroup, uint16_t tagElement);
    PGKIT_API PGX_Node* FindNode(uint32_t elementId);

    // Inserts a new little-endian element with the dictionary's VR into this data set, after the
    // elements with a lower or equal tag, and returns it. The value, size bytes in host byte order,
    // is copied (SetValue). Inserting Bits Allocated is remembered by the data set; Pixel Data
    // takes it over and becomes OB when it is 8. Null when this node is not a data set
    // ("pgInsertNode: can only insert in a NT_DataSet type\n" on the standard output), when the
    // identifier is above 3781 ("pgInsertNode () : Element Id unknown (%d)\n" on the standard error
    // stream), or when memory runs out ("pgInsertNode: node allocation error\n" on the standard
    // output when it is the node's own).
    PGKIT_API PGX_Node* InsertNode(uint16_t tagGroup, uint16_t tagElement, const void* data,
                                   uint32_t size);
    PGKIT_API PGX_Node* InsertNode(uint32_t elementId, const void* data, uint32_t size);
    // Links an existing node at the same place and returns it; null (and the first message) when
    // this node is not a data set, null without a message for a null node. Its next is overwritten;
    // it must not be linked in a tree already. The data set's bitsAllocated is left alone.
    PGKIT_API PGX_Node* InsertNode(PGX_Node* node);

    // Sets the value of the first direct child with this tag, or inserts a new one. The result of
    // setting is not reported. Null as InsertNode.
    PGKIT_API PGX_Node* AddOrReplaceNode(uint16_t tagGroup, uint16_t tagElement, const void* data,
                                         uint32_t size);
    PGKIT_API PGX_Node* AddOrReplaceNode(uint32_t elementId, const void* data, uint32_t size);

    // Unlinks a direct child and frees it with all its descendants. A node that is not a direct
    // child, or null, is left alone.
    PGKIT_API void RemoveNode(PGX_Node* child);

    // A deep copy of this node and its descendants and, when nodeOnly is 0, of all siblings that
    // follow it. Values are fetched as GetValue gives them (host byte order, UI texts stripped)
    // into memory while endian is copied as it stands; the copy never refers to the file. Fragment
    // tables are copied without the loaded bytes. tagName is not copied.
    PGKIT_API PGX_Node* DuplicateNode(int32_t nodeOnly);

    // The items of a sequence. SeqGetHead on a data set prints "pgSeqGetHead: can only deal with
    // NT_DataElement type\n" and gives null; adding anything but a data set prints "pgSeqAddHead:
    // can only insert in a NT_DataSet type\n" (or "pgSeqAddTail: ...") and does nothing, all on the
    // standard output; a null item is ignored. Items added belong to the tree and must not be
    // linked in it already. The VR is not tested. What follows an item (its next) is cut off, but
    // comes along when SeqAddTail adds the first item of a sequence.
    PGKIT_API PGX_Node* SeqGetHead();
    PGKIT_API void SeqAddHead(PGX_Node* item);
    PGKIT_API void SeqAddTail(PGX_Node* item);

    // ---- Values ---------------------------------------------------------------------------------
    //
    // A value is in memory, in the file the tree was read from, or in a content file, looked for in
    // that order. Getters give numbers in host byte order. A value that its file holds only in part
    // reads as zeros from there on.

    // The printable name: tagName, else the dictionary's. Returns 1, or 0 with "<Unknown Tag>".
    // buffer must hold 128 bytes.
    PGKIT_API int32_t GetTagName(char* buffer);

    // The whole value and a NUL after it; buffer must hold length + 1 bytes. Leading and trailing
    // blanks of UI values are stripped, and zeros follow them. Returns 0 for a data set, a
    // sequence, encapsulated Pixel Data, an element of undefined length, and a value at an
    // unrepresentable position that is not in memory; 0 for a null buffer.
    PGKIT_API int32_t GetValue(void* buffer);

    // The first min(length, size) bytes of the value and a NUL after them: buffer must hold
    // size + 1 bytes. Returns 0, with an empty text, when size is not positive or there is no value
    // (GetValue); 0 for a null buffer.
    PGKIT_API int32_t GetStringValue(char* buffer, int32_t size);

    // The first number of the value; 0 when there is none. A value shorter than the number is
    // extended with zero bytes.
    PGKIT_API uint16_t GetUSValue();
    PGKIT_API uint32_t GetULValue();
    PGKIT_API int16_t GetSSValue();
    // The number that the text of the value begins with, leading blanks skipped; 0 when there is
    // none. The decimal separator is a point whatever the locale. GetDSIntValue truncates toward
    // zero and clamps to the range of its result.
    PGKIT_API int32_t GetDSIntValue();
    PGKIT_API double GetDSDoubleValue();

    // count bytes at an absolute position of the file, raw. Only for a data set that was read from
    // a file. Returns 1 exactly when all bytes were read.
    PGKIT_API int32_t GetFileData(void* buffer, uint32_t offset, uint32_t count);

    // Replaces the value with a copy of size bytes, which are in host byte order. An odd size is
    // made even with one pad byte: NUL for UI and OB, else a blank. The node no longer refers to
    // the file. data may be the node's own value; null stores pad bytes. Returns 0 when size is
    // 0xFFFFFFFF (nothing changes) or memory runs out: then the node has the new length and no
    // value in memory, and one that refers to a file reads that many bytes from there.
    PGKIT_API int32_t SetValue(const void* data, uint32_t size);

    // Takes the value from a file, as long as that is (evened), whenever it is needed. Returns 0,
    // and changes nothing, for a path that is null, missing, a directory or a file of 4 GiB or
    // more. A node that still refers to the file it was read from keeps reading from that.
    PGKIT_API int32_t SetFileContentValue(const char* path);
    // Writes the value, in host byte order, to a new file; a content file is copied whole and as it
    // is. A node with a value in memory, or that was read from a file, creates the file whatever
    // its kind: a sequence gives as many bytes as its length says from its position on, or fewer
    // when its file ends; an empty element, or a data set as it was read, gives an empty file. Only
    // a node with neither, and without a content file that exists, creates nothing. Returns 0 when
    // a file cannot be created or opened, path is the file that this node reads from, or memory
    // runs out; 1 otherwise, also when nothing is created or writing fails later.
    PGKIT_API int32_t GetFileContentValue(const char* path);

    // ---- Group lengths --------------------------------------------------------------------------
    //
    // The mode is a set of PgSyntaxFlags; PG_EXPLICIT_VR and, for group 0002, PG_META count the
    // elements with explicit headers. Lengths of sequences are taken as they stand. Where elements
    // are not in tag order, every run of elements of one group counts as a group of its own, with
    // its length element in front of it. On a node that is not a data set both print
    // "AddGroupLengths: can only work with NT_DataSet type\n" on the standard output and return 0.
    //
    // What is counted is what nodes say: group lengths are wrong, and not to be relied on, where
    // PG_UNDEFINED_LENGTHS makes delimiters, which are not counted, and in the group of
    // encapsulated Pixel Data, whose fragments are not (an undefined length is added as it stands,
    // in 32 bits). Group lengths in items are not updated.

    // Gives every group of this data set a group length element and sets them all.
    PGKIT_API int32_t AddGroupLengths(uint32_t mode);
    // Sets the existing ones, and adds (0002,0000) when the data set has other elements of its
    // group.
    PGKIT_API int32_t UpdateGroupLengths(uint32_t mode);

    // ---- Text dump ------------------------------------------------------------------------------

    // Prints this node and everything below it, a line each, every line behind prefix. Returns 0
    // when this element's value could not be allocated or stream is null. The line of an element
    // whose value could not be allocated reads, without the prefix, ">>>>> OUT-OF-MEMORY !!! (can't
    // allocated %u bytes to dump object)". A null prefix is empty.
    PGKIT_API int32_t Dump(FILE* stream, const char* prefix);
    // The same into a new text file; 0 when it cannot be created.
    PGKIT_API int32_t Dump(const char* path);

    // ---- Pixel data -----------------------------------------------------------------------------

    // Builds the fragment table of node, encapsulated Pixel Data whose fileOffset is at the first
    // item, from stream. With a non-empty Basic Offset Table the entries are its frames; without
    // one, and with scan not 0, they are the fragments. consumed receives the bytes up to the end
    // of the sequence delimitation item. Returns 1, 0 when the offset table is empty and scan is 0
    // (nothing is built), or -1.
    PGKIT_API int32_t LoadEncodedPixelTable(FILE* stream, PGX_Node* node, int32_t scan,
                                            uint32_t* consumed);
    // encapsulated.
    PGKIT_API int32_t IsEncodedPixelData();
    // Length and file position of one entry of the table; entryLength may be null. Returns 0 when
    // there is no such entry.
    PGKIT_API int32_t GetEncodedPixelInfo(uint32_t index, uint32_t* entryLength,
                                          uint32_t* entryOffset);
    // One frame of native Pixel Data: frameSize bytes from frameIndex * frameSize on, in host byte
    // order. Bytes beyond the end of the value read as zeros. Returns 0, and leaves the buffer
    // alone, where GetValue does and for an empty element.
    PGKIT_API int32_t GetPixelData(uint32_t frameIndex, uint32_t frameSize, void* buffer);
    // Inserts encapsulated Pixel Data with count empty fragments into this data set. Null when this
    // node is not a data set ("pgInsertNode: can only insert a PixelData node in a NT_DataSet
    // type\n" on the standard output) or memory runs out.
    PGKIT_API PGX_Node* InsertEncodedPixelDataNode(uint32_t count);
    // Sets one fragment to a copy of size bytes, evened with a zero byte. Returns 1; 0 when there
    // is no such entry or memory runs out.
    PGKIT_API int32_t SetEncodedPixelData(uint32_t index, uint32_t size, const void* data);

    // ---- Writing --------------------------------------------------------------------------------
    //
    // Results: 0 success, 1 the file cannot be created, 2 a value has no source stream, 3 writing
    // failed, 4 reading a value failed, 5 out of memory, 6 a value is too long for a 16-bit length
    // field, or a sequence of the File Meta Information holds what has no length, 7 the file cannot
    // be reopened.

    // Writes this node and everything below it to a binary stream, in the encoding that mode (a set
    // of PgSyntaxFlags) says: implicit VR without PG_EXPLICIT_VR, big endian without
    // PG_LITTLE_ENDIAN, no group 0002 without PG_META or PG_META_IMPLICIT_VR. The stream is
    // flushed; a null stream gives 3. A failure leaves what was written before it, and the
    // delimiters of the sequences and items around it.
    //
    // Without PG_UNDEFINED_LENGTHS, sequences and items carry the lengths of their nodes, which
    // only saving computes. Those whose computed length is wrong in this mode (4 GiB and more,
    // around encapsulated Pixel Data, or around elements of group 0002 that the mode leaves out)
    // are written with delimiters all the same. A tree that was read and has not been saved since
    // has the lengths of its file: undefined ones without delimiters, and 0 for items.
    //
    // The elements of group 0002 that a data set begins with, as long as their numbers do not fall,
    // are its File Meta Information, which is little endian; elsewhere they are in the encoding of
    // the data set, as they are read. Elements of group FFFE, which would read as items or
    // delimiters, and of the tag (FFFF,FFFF) are not written.
    //
    // Encapsulated Pixel Data without a table of fragments (the marker 1) are copied from their
    // file item by item, with the Basic Offset Table; what is written from a table has an empty
    // one. Where the file ends before the first item, the Pixel Data are written empty; without
    // file the result is 2.
    //
    // An element without value anywhere is written as its header. A value whose source ends one
    // byte early is completed with a zero byte. Every fileOffset that is 0 becomes the position in
    // the stream: of a data set's first element, of an element's tag.
    PGKIT_API void WriteNode(FILE* stream, uint32_t mode);
    PGKIT_API uint32_t WriteNodeEx(FILE* stream, uint32_t mode);

    // Writes the pending offsets (offsetPending) of a tree into its file, open for update: each as
    // 4 bytes in host byte order, 8 bytes behind the element's fileOffset, and into the element.
    // The offset is the fileOffset of offsetTarget less the 8 bytes of its item header. Elements
    // without target keep their value. Only the record offsets of a DICOMDIR (0004,1200),
    // (0004,1202), (0004,1400) and (0004,1420) are considered. A position beyond 4 GiB, or a null
    // stream, gives 3.
    PGKIT_API void WriteNodeOffset(FILE* stream);
    PGKIT_API uint32_t WriteNodeOffsetEx(FILE* stream);

    // Saves this root data set as a file: computes the lengths, sets the root's group lengths
    // (UpdateGroupLengths, which see for those that are wrong), writes, and patches pending offsets
    // with the positions at which the nodes were really written, in the byte order of the file. So
    // it does with all links of a DICOMDIR that was browsed or saved before. In the tree, links go
    // on saying where their records were read from or first written to: it can be browsed and saved
    // again.
    //
    // Mode 0 keeps the encoding the tree was read with. With PG_META the file is a Part 10 file.
    // The transfer syntax element (0002,0010), if there is one, is set to match the mode, and says
    // what the mode leaves open; any syntax but the three native ones forces explicit VR little
    // endian, and the two private ones that are read as native become it. The UID counts without
    // blanks and NULs around it, whatever its VR. Without the element the data set is explicit VR
    // unless the mode has PG_IMPLICIT_VR. Files that cannot be created are reported on the standard
    // error stream ("pgSaveDataSetAsEx : unable to open %s\n"). A failure leaves a partial file.
    //
    // Where that element is Deflated Explicit VR Little Endian, a Part 10 file is deflated behind
    // its File Meta Information, and padded to an even size; bare data sets, and what WriteNode
    // writes, never are. To save it inflated, set the element to another syntax first.
    //
    // File Meta Information moves in front of elements of lower groups. With it the encoding is
    // explicit VR little endian, whatever the mode says, where readers would lose another one:
    // there are encapsulated Pixel Data, or the data set begins with group 0200 and would be big
    // endian. So it is where a bare data set in implicit VR that has encapsulated Pixel Data is
    // saved in the encoding it was read with. Asked for by another mode, bare implicit VR is
    // written all the same, with the explicit header that encapsulated Pixel Data have in every
    // encoding: readers of implicit VR take it for a length.
    //
    // A file that the tree still has to read from (a value, a fragment, a content file) may be the
    // target: it is replaced when the new one is complete beside it, stays as it was when that
    // fails, and the tree goes on reading the old content. On Windows this needs a file opened by
    // path; over a stream that the host opened itself saving gives 1. Group 0002 does not count:
    // what is unread of it is read first. Any other target is truncated and written in place.
    PGKIT_API void SaveDataSetAs(const char* path, int32_t mode);
    PGKIT_API uint32_t SaveDataSetAsEx(const char* path, int32_t mode);
    // The older form: a bare data set in implicit VR big endian, with delimiters when
    // undefinedLengths is not 0. Reports "pgSaveDataSetAs : unable to open %s\n", or "... unable to
    // reopen %s\n" when offsets cannot be patched.
    PGKIT_API void SaveDataSetAs(int32_t undefinedLengths, const char* path);

    // Completes group 0002 of this data set from its SOP class and instance, the library's own
    // identification and transferSyntaxUid (null: as the tree was read, else explicit VR little
    // endian). Existing elements stay, apart from the two Media Storage ones; a second (0002,0001)
    // is inserted. Returns 1.
    PGKIT_API int32_t AddPart10Elements(const char* transferSyntaxUid);
};

// The layout is part of the interface: hosts read the fields.
static_assert(sizeof(void*) == 8, "pgkit is a 64-bit library");
static_assert(sizeof(NodeType) == 4 && sizeof(EndianType) == 4);
static_assert(sizeof(FragmentEntry) == 16 && offsetof(FragmentEntry, bytes) == 8);
static_assert(offsetof(PGX_Node, nodeType) == 0 && offsetof(PGX_Node, group) == 4 &&
              offsetof(PGX_Node, element) == 6 && offsetof(PGX_Node, valueRep) == 8 &&
              offsetof(PGX_Node, length) == 12 && offsetof(PGX_Node, file) == 16 &&
              offsetof(PGX_Node, fileOffset) == 24 && offsetof(PGX_Node, value) == 32 &&
              offsetof(PGX_Node, endian) == 40 && offsetof(PGX_Node, encapsulated) == 44 &&
              offsetof(PGX_Node, fragmentCount) == 48 &&
              offsetof(PGX_Node, fragmentCapacity) == 52 && offsetof(PGX_Node, fragments) == 56 &&
              offsetof(PGX_Node, first) == 64 && offsetof(PGX_Node, next) == 72 &&
              offsetof(PGX_Node, contentFile) == 80 && offsetof(PGX_Node, bitsAllocated) == 88 &&
              offsetof(PGX_Node, syntaxFlags) == 92 && offsetof(PGX_Node, offsetPending) == 96 &&
              offsetof(PGX_Node, offsetTarget) == 104 && offsetof(PGX_Node, tagName) == 112);
static_assert(sizeof(PGX_Node) == 120);

#endif  // __cplusplus

#endif
