#include "codec/encapsulated_encoding.h"

#include "codec/element_header.h"
#include "codec/tag_header.h"
#include "codec/value_writer.h"

namespace pgkit {

namespace {

class FragmentEncoding {
  public:
    FragmentEncoding(const PGX_Node& pixelData, ByteOrder order, SourceStreams& sources,
                     OutputWriter& out)
        : pixelData_(pixelData), order_(order), sources_(sources), out_(out) {}

    WriteResult Run() {
        WriteResult result = WriteHeader();
        const bool isIndexed = pixelData_.fragments != NotIndexedMarker();
        if (result == kWritten) result = isIndexed ? WriteFragments() : CopyUnindexed();
        if (result == kWritten) result = Put(ElementHeader::SequenceDelimitation(order_));
        return result;
    }

  private:
    WriteResult Put(const ElementHeader& header) {
        return out_.Write(header.Data(), header.Size());
    }

    // The header has the explicit form in every encoding, implicit VR included.
    WriteResult WriteHeader() {
        ElementHeader header(order_, pixelData_.group, pixelData_.element);
        header.PutVr("OB");
        header.Put16(0);
        header.Put32(kUndefinedLength);
        return Put(header);
    }

    WriteResult WriteEmptyOffsetTable() { return Put(ElementHeader::Item(order_, 0)); }

    WriteResult WriteFragments() {
        WriteResult result = WriteEmptyOffsetTable();
        if (!HasFragmentTable(pixelData_)) return result;
        for (uint32_t i = 0; i < pixelData_.fragmentCount && result == kWritten; ++i)
            result = WriteEntry(pixelData_.fragments[i]);
        return result;
    }

    WriteResult WriteEntry(const FragmentEntry& entry) {
        const WriteResult result = Put(ElementHeader::Item(order_, entry.length));
        if (result != kWritten || entry.length == 0) return result;
        if (entry.bytes != nullptr) {
            return WriteValue(entry.bytes, VR_OB, entry.length, out_, false);
        }
        if (entry.offset == kUnreadablePosition) return out_.Fail(kReadFailed);
        return CopyFragment(sources_.At(pixelData_.file, entry.offset), entry.length, out_);
    }

    // Fragments without a table are found item by item as they are copied. Each keeps its size, and
    // so the offsets of the Basic Offset Table stay right: it is the first of the items. Where the
    // items end, the Pixel Data do, with a delimiter or without.
    WriteResult CopyUnindexed() {
        if (pixelData_.fileOffset == kUnreadablePosition) return out_.Fail(kReadFailed);
        StreamReader* reader = sources_.At(pixelData_.file, pixelData_.fileOffset);
        if (reader == nullptr) return out_.Fail(kNoSource);
        TagHeader item{};
        bool hasItem = ReadItemHeader(*reader, item);
        const bool isNothing = hasItem ? item.IsSequenceDelimitation() : reader->Remaining() == 0;
        const bool isCut = hasItem && item.IsItem() && !reader->Holds(item.length);
        if (reader->HasFailed()) return out_.Fail(kReadFailed);
        if (isNothing || isCut) return WriteEmptyOffsetTable();
        if (!hasItem || !item.IsItem()) return out_.Fail(kReadFailed);
        for (; hasItem && item.IsItem(); hasItem = ReadItemHeader(*reader, item)) {
            WriteResult result = Put(ElementHeader::Item(order_, item.length));
            if (result == kWritten) result = CopyFragment(reader, item.length, out_);
            if (result != kWritten) return result;
        }
        return reader->HasFailed() ? out_.Fail(kReadFailed) : kWritten;
    }

    const PGX_Node& pixelData_;
    ByteOrder order_;
    SourceStreams& sources_;
    OutputWriter& out_;
};

}  // namespace

WriteResult WriteEncapsulated(const PGX_Node& pixelData, ByteOrder order, SourceStreams& sources,
                              OutputWriter& out) {
    return FragmentEncoding(pixelData, order, sources, out).Run();
}

}  // namespace pgkit
