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
        WriteResult result = WriteStart();
        if (result == kWritten) result = WriteFragments();
        if (result == kWritten) result = Put(ElementHeader::SequenceDelimitation(order_));
        return result;
    }

  private:
    WriteResult Put(const ElementHeader& header) {
        return out_.Write(header.Data(), header.Size());
    }

    // The header has the explicit form in every encoding, implicit VR included.
    WriteResult WriteStart() {
        ElementHeader header(order_, pixelData_.group, pixelData_.element);
        header.PutVr("OB");
        header.Put16(0);
        header.Put32(kUndefinedLength);
        const WriteResult result = Put(header);
        return result == kWritten ? Put(ElementHeader::Item(order_, 0)) : result;
    }

    WriteResult WriteFragments() {
        if (pixelData_.fragments == NotIndexedMarker()) return CopyUnindexedFragments();
        if (!HasFragmentTable(pixelData_)) return kWritten;
        for (uint32_t i = 0; i < pixelData_.fragmentCount; ++i) {
            const WriteResult result = WriteEntry(pixelData_.fragments[i]);
            if (result != kWritten) return result;
        }
        return kWritten;
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

    // Fragments without a table are found item by item as they are copied.
    WriteResult CopyUnindexedFragments() {
        if (pixelData_.fileOffset == kUnreadablePosition) return out_.Fail(kReadFailed);
        StreamReader* reader = sources_.At(pixelData_.file, pixelData_.fileOffset);
        if (reader == nullptr) return out_.Fail(kNoSource);
        TagHeader item;
        if (!ReadItem(*reader, item)) return out_.Fail(kReadFailed);
        reader->Skip(item.length);  // the Basic Offset Table
        WriteResult result = kWritten;
        while (result == kWritten && ReadItem(*reader, item)) {
            result = Put(ElementHeader::Item(order_, item.length));
            if (result == kWritten) result = CopyFragment(reader, item.length, out_);
        }
        return result;
    }

    static bool ReadItem(StreamReader& reader, TagHeader& item) {
        return ReadItemHeader(reader, item) && item.IsItem();
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
