#include "codec/opening.h"

#include <memory>
#include <optional>
#include <utility>

#include "codec/data_set_parser.h"
#include "codec/inflating.h"
#include "codec/meta_group.h"
#include "codec/plausible_start.h"
#include "codec/tag_header.h"
#include "codec/tree_builder.h"
#include "pgkit/node.h"

namespace pgkit {

namespace {

uint32_t SyntaxFlagsOf(const StreamStart& start) {
    uint32_t flags = start.hasMeta ? uint32_t{PG_META} : 0;
    flags |= start.encoding.byteOrder == ByteOrder::Big ? PG_BIG_ENDIAN : PG_LITTLE_ENDIAN;
    flags |= start.encoding.implicitVr ? PG_IMPLICIT_VR : PG_EXPLICIT_VR;
    return flags;
}

PgxOpenResult ResultOf(EndKind kind) {
    switch (kind) {
        case EndKind::CutShort:
            return PGX_OPEN_CUT_SHORT;
        case EndKind::Broken:
            return PGX_OPEN_BROKEN;
        case EndKind::LeftAfterFragments:
            return PGX_OPEN_LEFT_AFTER_FRAGMENTS;
        case EndKind::TooDeep:
            return PGX_OPEN_TOO_DEEP;
        case EndKind::Complete:
            break;
    }
    return PGX_OPEN_COMPLETE;
}

// Whether the stream ends before fragments do. The reader stands at the first of their items.
bool EndsInFragment(StreamReader& reader) {
    TagHeader item{};
    while (ReadItemHeader(reader, item)) {
        if (!item.IsItem()) return false;
        if (!reader.Holds(item.length)) return true;
        reader.Skip(item.length);
    }
    return !reader.HasFailed();
}

class Opening {
  public:
    Opening(const OpenRequest& request, OpenedTree& opened) : request_(request), opened_(opened) {}

    void Run(StreamReader& reader) {
        TreeBuilder builder(reader, request_.keepsEverything);
        StreamStart start = ReadStreamStart(reader, builder, request_.flags);
        opened_.elements = builder.ElementCount();
        opened_.certainty = PGX_CERTAINTY_STATED;
        if (start.hasMeta) opened_.notes |= PGX_OPEN_HAS_META;
        if (IsDataSet(reader, start)) ReadDataSet(reader, start);
        opened_.transferSyntax = std::move(start.transferSyntax);
        if (opened_.root == nullptr) opened_.certainty = PGX_CERTAINTY_NONE;
        if (reader.HasFailed()) opened_.result = PGX_OPEN_READ_FAILED;
    }

  private:
    using State = StreamStart::State;

    bool IsDataSet(StreamReader& reader, StreamStart& start) {
        if (!request_.isDiscerning) return start.state == State::Whole;
        if (start.hasMeta) return true;
        if (start.state == State::Nothing) return false;
        const auto guess = GuessEncoding(reader, request_.flags, request_.detectsBigEndian);
        if (!guess) return false;
        reader.Seek(0);
        start.encoding = guess->encoding;
        opened_.certainty = guess->certainty;
        if (guess->certainty != PGX_CERTAINTY_STATED) opened_.notes |= PGX_OPEN_GUESSED;
        return true;
    }

    void ReadDataSet(StreamReader& reader, StreamStart& start) {
        if (start.state == State::MetaCut) {
            opened_.root.reset(TreeBuilder(reader, request_.keepsEverything).NewNode());
            opened_.end = start.end;
            opened_.result = ResultOf(start.end.kind);
        } else if (start.transferSyntax == kDeflatedUid) {
            ReadInflated(reader, start);
        } else {
            Parse(reader, start.encoding);
        }
        if (opened_.root != nullptr) Complete(start);
    }

    void Parse(StreamReader& reader, Encoding encoding) {
        TreeBuilder builder(reader, request_.keepsEverything);
        DataSetParser parser(reader, builder, encoding, request_.maxLoadLength, request_.flags);
        opened_.root = parser.Parse();
        opened_.end = parser.End();
        if (request_.isDiscerning) LookBehindFragments(reader);
        opened_.result = ResultOf(opened_.end.kind);
        opened_.elements += builder.ElementCount();
        if (parser.HasIgnoredCreators()) opened_.notes |= PGX_OPEN_CREATORS_IGNORED;
    }

    // Where fragments that were not indexed end takes a walk over all of them, which only a report
    // is worth.
    void LookBehindFragments(StreamReader& reader) {
        ParseEnd& end = opened_.end;
        if (end.kind != EndKind::LeftAfterFragments) return;
        reader.Seek(end.offset);
        if (!EndsInFragment(reader)) return;
        end.kind = EndKind::CutShort;
        end.offset = reader.Size();
    }

    void ReadInflated(StreamReader& reader, StreamStart& start) {
        opened_.notes |= PGX_OPEN_DEFLATED;
        const uint64_t position = reader.Position();
        InflatedFile file = InflateToFile(reader, MostInflated(reader.Size()));
        if (file.result == InflateResult::TooLarge || file.result == InflateResult::CannotWrite) {
            const bool isTooLarge = file.result == InflateResult::TooLarge;
            opened_.result = isTooLarge ? PGX_OPEN_TOO_LARGE : PGX_OPEN_NO_TEMPORARY;
            return;
        }
        const auto inflated = std::make_unique<StreamReader>(file.stream.get(), file.size);
        inflated->Seek(position);
        Parse(*inflated, start.encoding);
        const bool isPartial = file.result == InflateResult::Partial;
        if (isPartial && opened_.result == PGX_OPEN_COMPLETE) opened_.result = PGX_OPEN_CUT_SHORT;
        if (inflated->HasFailed()) opened_.result = PGX_OPEN_READ_FAILED;
        opened_.temporary = std::move(file.stream);
    }

    // The root gets the meta elements in front of its own.
    void Complete(StreamStart& start) {
        PGX_Node& root = *opened_.root;
        for (PGX_Node* meta = start.metaElements.get(); meta != nullptr; meta = meta->next)
            meta->file = root.file;
        if (start.lastMeta != nullptr) {
            start.lastMeta->next = root.first;
            root.first = start.metaElements.release();
        }
        root.syntaxFlags = SyntaxFlagsOf(start);
    }

    const OpenRequest& request_;
    OpenedTree& opened_;
};

}  // namespace

OpenedTree OpenTree(StreamReader& reader, const OpenRequest& request) {
    OpenedTree opened;
    Opening(request, opened).Run(reader);
    return opened;
}

}  // namespace pgkit
