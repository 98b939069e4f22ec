#include "codec/value_writer.h"

#include <algorithm>
#include <cstring>

#include "base/byte_order.h"
#include "dictionary/vr_properties.h"

namespace pgkit {

namespace {

// A single write of more than this is beyond what C runtimes are trusted with.
constexpr uint32_t kLargestSingleWrite = 0x7FFFFFF;

static_assert(OutputWriter::kCapacity % 8 == 0, "pieces must end between units of every size");

enum class LastByte { MayBeMissing, Required };

WriteResult WriteAsIs(const uint8_t* value, uint32_t length, OutputWriter& out) {
    const size_t pieceSize = length > kLargestSingleWrite ? OutputWriter::kCapacity : length;
    for (size_t done = 0; done < length; done += pieceSize) {
        const size_t piece = std::min<size_t>(pieceSize, length - done);
        if (out.Write(value + done, piece) != kWritten) return kWriteFailed;
    }
    return kWritten;
}

// The source ended inside a piece. What is swapped counts unit by unit: the whole units before the
// end still belong to the output. What is copied as it is (a unit of 1) counts piece by piece, each
// read and written as one: nothing of a broken one belongs to it.
WriteResult EndShort(uint8_t* piece, size_t got, size_t unit, OutputWriter& out) {
    const size_t whole = unit > 1 ? got - got % unit : 0;
    SwapUnits(piece, whole, unit);
    out.Commit(whole);
    return out.Fail(kReadFailed);
}

WriteResult CopyBytes(StreamReader* source, uint64_t length, size_t unit, LastByte lastByte,
                      OutputWriter& out) {
    if (source == nullptr) return out.Fail(kNoSource);
    while (length > 0) {
        const size_t size =
            static_cast<size_t>(std::min<uint64_t>(length, OutputWriter::kCapacity));
        uint8_t* piece = out.Reserve(size);
        if (piece == nullptr) return kWriteFailed;
        const size_t got = source->Read(piece, size);
        if (got < size) {
            const bool onlyLastMissing = got + 1 == size && size == length;
            if (!onlyLastMissing || lastByte == LastByte::Required) {
                return EndShort(piece, got, unit, out);
            }
            piece[got] = 0;
        }
        SwapUnits(piece, size, unit);
        out.Commit(size);
        length -= size;
    }
    return kWritten;
}

}  // namespace

WriteResult WriteValue(const uint8_t* value, uint32_t vr, uint32_t length, OutputWriter& out,
                       bool swap) {
    const size_t unit = swap ? SwapUnit(vr) : 1;
    if (unit == 1) return WriteAsIs(value, length, out);
    for (size_t done = 0; done < length;) {
        const size_t size = std::min<size_t>(length - done, OutputWriter::kCapacity);
        uint8_t* piece = out.Reserve(size);
        if (piece == nullptr) return kWriteFailed;
        std::memcpy(piece, value + done, size);
        SwapUnits(piece, size, unit);
        out.Commit(size);
        done += size;
    }
    return kWritten;
}

WriteResult CopyValue(StreamReader* source, uint32_t vr, uint64_t length, OutputWriter& out,
                      bool swap) {
    return CopyBytes(source, length, swap ? SwapUnit(vr) : 1, LastByte::MayBeMissing, out);
}

WriteResult CopyFragment(StreamReader* source, uint32_t length, OutputWriter& out) {
    return CopyBytes(source, length, 1, LastByte::Required, out);
}

}  // namespace pgkit
