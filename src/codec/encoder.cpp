#include "codec/encoder.h"

#include <memory>
#include <new>
#include <vector>

#include "codec/delimited_containers.h"
#include "codec/element_header.h"
#include "codec/encapsulated_encoding.h"
#include "codec/meta_run.h"
#include "codec/source_streams.h"
#include "codec/syntax_agreement.h"
#include "codec/transfer_syntax.h"
#include "codec/value_writer.h"
#include "dataset/tree_walk.h"
#include "dataset/value_source.h"
#include "dictionary/tags.h"
#include "dictionary/vr_properties.h"
#include "platform/file_handle.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

struct Form {
    ByteOrder order;
    bool explicitVr;
    bool isMeta = false;  // of the File Meta Information
};

// The characters of a header. The ambiguous VRs have names of four letters that begin with those of
// the VR they are written as; a code without a name is printed, and read, as "??".
const char* HeaderCharacters(uint32_t vr) {
    if (vr == VR_Unknown) return "UN";
    const char* name = VrName(vr);
    return name != nullptr ? name : "??";
}

// Writes what a node begins with when it is entered, and its delimiter when it is left.
class Encoder {
  public:
    Encoder(uint32_t mode, OutputWriter& out, const SaveWishes& wishes)
        : mode_(mode), out_(out), wishes_(wishes) {}

    // The first failure, or kWritten.
    WriteResult Result() const { return result_; }

    WalkStep Enter(PGX_Node& node, size_t) {
        result_ = Begin(node);
        if (result_ != kWritten) return WalkStep::Unwind;
        return IsOpen(node) ? WalkStep::Continue : WalkStep::SkipChildren;
    }

    // Delimiters follow even what has failed inside, and the result stays that of the inside.
    WalkStep Leave(PGX_Node& node, size_t) {
        if (!IsOpen(node)) return WalkStep::Continue;
        const WriteResult delimiter = End();
        if (result_ == kWritten) result_ = delimiter;
        return result_ == kWritten ? WalkStep::Continue : WalkStep::Unwind;
    }

  private:
    // A data set or a sequence whose header has been written.
    struct Container {
        const PGX_Node* node;
        Form form;  // of the sequence's own header: items and delimiters follow it
        bool isSequence;
        bool delimited;
    };

    bool IsOpen(const PGX_Node& node) const { return !open_.empty() && open_.back().node == &node; }

    // What is read as File Meta Information is little endian. It stands at the beginning of the
    // data set that is written, or is the element that is written by itself.
    Form FormOf(const PGX_Node& element) {
        const bool isOutermost = open_.size() <= 1;
        if (isOutermost && metaRun_.Takes(element)) {
            return {ByteOrder::Little, (mode_ & PG_META_IMPLICIT_VR) == 0, true};
        }
        // What a sequence of it holds is encoded like the data set, and belongs to it.
        const bool isMeta = !isOutermost && open_.back().form.isMeta;
        if (!isMeta && wishes_.deflating != nullptr && !wishes_.deflating->HasStarted()) {
            StartDeflating();
        }
        const Encoding encoding = EncodingOfMode(mode_);
        return {encoding.byteOrder, !encoding.implicitVr, isMeta};
    }

    // When the File Meta Information cannot be brought out, nothing that follows can.
    void StartDeflating() {
        static_cast<void>(out_.Flush());
        wishes_.deflating->Start();
    }

    bool IsLeftOut(const PGX_Node& element) const {
        return !IsElementTag(element.group, element.element) ||
               (element.group == kMetaGroup && (mode_ & kMetaModes) == 0);
    }

    WriteResult Begin(PGX_Node& node) {
        if (!open_.empty() && open_.back().isSequence) return BeginItem(node, open_.back().form);
        if (node.nodeType == NT_DataElement) return BeginElement(node);
        BeginDataSet(node, {}, false);
        return kWritten;
    }

    void BeginDataSet(PGX_Node& node, Form form, bool delimited) {
        NotePosition(node);
        if (wishes_.positions != nullptr) wishes_.positions->Record(node, out_.Position());
        open_.push_back({&node, form, false, delimited});
    }

    WriteResult BeginItem(PGX_Node& item, Form form) {
        const bool delimited = IsDelimited(item, form);
        const uint32_t length = delimited ? kUndefinedLength : item.length;
        const WriteResult result = Put(ElementHeader::Item(form.order, length));
        if (result == kWritten) BeginDataSet(item, form, delimited);
        return result;
    }

    WriteResult BeginElement(PGX_Node& node) {
        NotePosition(node);
        if (IsLeftOut(node)) return kWritten;
        const Form form = FormOf(node);
        if (node.valueRep == VR_SQ) return BeginSequence(node, form);
        if (node.encapsulated != 0) return WriteEncapsulated(node, form.order, sources_, out_);
        const WriteResult result = WriteHeader(node, form);
        if (result != kWritten) return result;
        if (wishes_.positions != nullptr) wishes_.positions->Record(node, out_.Position());
        return node.length == 0 ? kWritten : WriteElementValue(node, form.order);
    }

    WriteResult BeginSequence(PGX_Node& node, Form form) {
        if (openSequences_ == 0 && !DelimitsAll(form)) {
            CollectDelimitedContainers(node, mode_, delimitedContainers_);
        }
        const bool delimited = IsDelimited(node, form);
        // What stands behind it in the File Meta Information could not be found.
        if (delimited && form.isMeta && wishes_.hasLengths) return out_.Fail(kValueTooLong);
        ElementHeader header(form.order, node.group, node.element);
        if (form.explicitVr) {
            header.PutVr("SQ");
            header.Put16(0);
        }
        header.Put32(delimited ? kUndefinedLength : node.length);
        const WriteResult result = Put(header);
        if (result != kWritten) return result;
        ++openSequences_;
        open_.push_back({&node, form, true, delimited});
        return kWritten;
    }

    WriteResult End() {
        const Container container = open_.back();
        open_.pop_back();
        if (container.isSequence) --openSequences_;
        if (!container.delimited) return kWritten;
        const ByteOrder order = container.form.order;
        return Put(container.isSequence ? ElementHeader::SequenceDelimitation(order)
                                        : ElementHeader::ItemDelimitation(order));
    }

    // Who reads the File Meta Information goes from length to length and looks into no sequence:
    // one with a right length has it there.
    bool DelimitsAll(Form form) const {
        return (mode_ & PG_UNDEFINED_LENGTHS) != 0 && !(form.isMeta && wishes_.hasLengths);
    }

    // What has no right length, by the node itself or by what it holds. As long as nobody has
    // counted, the lengths of the file stand.
    bool IsDelimited(const PGX_Node& container, Form form) const {
        if (DelimitsAll(form)) return true;
        const bool hasNoLength =
            container.length == kUndefinedLength || delimitedContainers_.contains(&container);
        return hasNoLength && !IsUncounted(container);
    }

    WriteResult WriteHeader(const PGX_Node& node, Form form) {
        ElementHeader header(form.order, node.group, node.element);
        if (!form.explicitVr) {
            header.Put32(node.length);
            return Put(header);
        }
        header.PutVr(HeaderCharacters(node.valueRep));
        if (HasLongHeader(node.valueRep)) {
            header.Put16(0);
            header.Put32(node.length);
        } else if (node.length < kFirstTooLongForShortHeader) {
            header.Put16(static_cast<uint16_t>(node.length));
        } else {
            static_cast<void>(Put(header));
            return out_.Fail(kValueTooLong);
        }
        return Put(header);
    }

    // A value that is nowhere to be found is left out.
    WriteResult WriteElementValue(const PGX_Node& node, ByteOrder order) {
        const bool swap = (node.endian == ET_BigEndian) != (order == ByteOrder::Big);
        switch (FindValueSource(node)) {
            case ValueSource::Memory:
                return WriteValue(node.value, node.valueRep, node.length, out_, swap);
            case ValueSource::File:
                if (node.fileOffset == kUnreadablePosition) return out_.Fail(kReadFailed);
                return CopyValue(sources_.At(node.file, node.fileOffset), node.valueRep,
                                 node.length, out_, swap);
            case ValueSource::ContentFile:
                return CopyContentFile(node, swap);
            case ValueSource::None:
                break;
        }
        return kWritten;
    }

    WriteResult CopyContentFile(const PGX_Node& node, bool swap) {
        const platform::FileHandle file(platform::OpenForReading(node.contentFile));
        if (file == nullptr) return out_.Fail(kReadFailed);
        const auto reader = std::make_unique<StreamReader>(file.get());
        return CopyValue(reader.get(), node.valueRep, node.length, out_, swap);
    }

    void NotePosition(PGX_Node& node) const {
        if (node.fileOffset != 0) return;
        const std::optional<uint64_t> position = out_.Position();
        node.fileOffset = position ? ToFileOffset(*position) : kUnreadablePosition;
    }

    WriteResult Put(const ElementHeader& header) {
        return out_.Write(header.Data(), header.Size());
    }

    uint32_t mode_;
    OutputWriter& out_;
    const SaveWishes wishes_;
    SourceStreams sources_;
    std::vector<Container> open_;
    size_t openSequences_ = 0;
    NodeSet delimitedContainers_;
    MetaRun metaRun_;
    WriteResult result_ = kWritten;
};

}  // namespace

WriteResult EncodeNode(PGX_Node& node, uint32_t mode, ByteSink& sink, const SaveWishes& wishes) {
    OutputWriter out(sink);
    if (!out.HasBuffer()) return kOutOfMemory;
    Encoder encoder(mode, out, wishes);
    try {
        WalkTree(node, encoder);
    } catch (const std::bad_alloc&) {
        return out.Fail(kOutOfMemory);
    }
    const bool flushed = out.Flush();
    if (encoder.Result() != kWritten) return encoder.Result();
    return flushed ? kWritten : kWriteFailed;
}

}  // namespace pgkit

void PGX_Node::WriteNode(FILE* stream, uint32_t mode) { WriteNodeEx(stream, mode); }

uint32_t PGX_Node::WriteNodeEx(FILE* stream, uint32_t mode) {
    if (stream == nullptr) return pgkit::kWriteFailed;
    pgkit::StreamSink sink(stream);
    return pgkit::EncodeNode(*this, mode, sink);
}
