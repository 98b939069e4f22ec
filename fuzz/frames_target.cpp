#include <pgkit/pgkit.h>

#include <string>
#include <vector>

#include "input.h"
#include "scratch_files.h"
#include "support/tree.h"
#include "targets.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

void RequireSoundPieces(PGX_Node* root, uint64_t fileSize) {
    int32_t source = -1;
    const int64_t count = pgxFindFrames(root, nullptr, 0, &source);
    Require(source >= PGX_FRAMES_NONE && source <= PGX_FRAMES_SINGLE, "a known source");
    if (count <= 0) return;
    Require(source != PGX_FRAMES_NONE, "no frames from nowhere");
    std::vector<PgxFramePiece> pieces(static_cast<size_t>(count));
    Require(pgxFindFrames(root, pieces.data(), pieces.size(), nullptr) == count,
            "the same number of pieces each time");
    uint32_t frame = 0;
    uint64_t total = 0;
    uint64_t end = 0;
    for (const PgxFramePiece& piece : pieces) {
        Require(piece.frame >= frame, "frames are in order");
        frame = piece.frame;
        total += piece.length;
        const bool isInFile = piece.bytes == nullptr;
        Require(!isInFile || piece.offset >= end, "pieces do not overlap");
        end = isInFile ? piece.offset + piece.length : end;
        Require(end <= fileSize, "pieces are in the file");
    }
    Require(total <= fileSize, "frames are no more than the file");
}

}  // namespace

void Frames(Bytes bytes) {
    Input input(bytes);
    const uint32_t flags = input.U16() & (PG_OPEN_SKIP_FRAGMENTS | PG_OPEN_PAST_PIXEL_DATA);
    const std::string path = WriteScratch("frames", input.Rest());
    const pgkit_test::DataSet ofFile(pgOpenDataSetFileEx(path.c_str(), 64, flags));
    RequireSoundPieces(ofFile.get(), input.Rest().size());
    const pgkit_test::DataSet ofMemory(
        pgxOpenMemory(input.Rest().data(), input.Rest().size(), flags, nullptr));
    RequireSoundPieces(ofMemory.get(), input.Rest().size());
}

}  // namespace pgkit_fuzz
