"""Pixel Data: as an array, by frames, and as they are stored."""

from __future__ import annotations

import ctypes
from typing import Any, Iterator, List, NamedTuple, Tuple

from ._blocks import ENCAPSULATED, Record
from ._dictionary import vr_name
from ._errors import PgkitError
from ._library import FramePiece, lib
from ._stored import length_of, read_into, value_at
from ._tree import Level

_RLE = "1.2.840.10008.1.2.5"
_BIG_ENDIAN = "1.2.840.10008.1.2.2"
_PIXEL_DATA = (0x7FE00010, 0x7FE00008, 0x7FE00009)
_WIDEST = 64


class _Attributes(NamedTuple):
    """What says how the pixels lie."""

    rows: int
    columns: int
    samples: int
    bits: int
    frames: int
    is_signed: bool
    is_planar: bool
    photometric: Any


# ---- Attributes -------------------------------------------------------------------------------------


def _number(level: Level, tag: int, name: str, default: Any = None) -> int:
    value = value_at(level, tag)
    if value is None:
        value = default
    if not isinstance(value, int):
        raise PgkitError(f"there are no pixels without {name}")
    return value


def _attributes(level: Level) -> _Attributes:
    samples = _number(level, 0x00280002, "SamplesPerPixel", 1)
    found = _Attributes(
        _number(level, 0x00280010, "Rows"), _number(level, 0x00280011, "Columns"), samples,
        _number(level, 0x00280100, "BitsAllocated"),
        _number(level, 0x00280008, "NumberOfFrames", 1) or 1,
        _number(level, 0x00280103, "PixelRepresentation", 0) == 1,
        samples > 1 and _number(level, 0x00280006, "PlanarConfiguration", 0) == 1,
        value_at(level, 0x00280004))
    if found.rows < 1 or found.columns < 1 or found.samples < 1 or found.frames < 1:
        raise PgkitError("the attributes of the pixels say that there are none")
    if found.bits != 1 and (found.bits % 8 or not 8 <= found.bits <= _WIDEST):
        raise PgkitError(f"pixels of {found.bits} bits cannot be made an array")
    return found


def _pixel_data(level: Level) -> Record:
    for tag in _PIXEL_DATA:
        found = level.find(tag)
        if found is not None:
            return found[1]
    raise PgkitError("there are no Pixel Data")


def _transfer_syntax(level: Level) -> str:
    return str(value_at(level, 0x00020010))


# ---- Arrays -----------------------------------------------------------------------------------------


def pixel_array(level: Level) -> Any:
    """The pixels of a data set as an array of numpy."""
    record = _pixel_data(level)
    attributes = _attributes(level)
    if record[4] == ENCAPSULATED:
        syntax = _transfer_syntax(level)
        if syntax != _RLE:
            raise PgkitError(f"pixels of the transfer syntax {syntax} are not decoded: frames() "
                             "has their bytes")
        return _shaped(_decoded_rle(level, attributes), attributes, is_planar=True)
    return _native(level, record, attributes, _transfer_syntax(level))


def _kind(record: Record, attributes: _Attributes) -> str:
    if record[1] & 0xFFFF != 0x0010:  # Float Pixel Data and Double Float Pixel Data
        return f"f{attributes.bits // 8}"
    return f"{'i' if attributes.is_signed else 'u'}{attributes.bits // 8}"


def _native(level: Level, record: Record, attributes: _Attributes, syntax: str) -> Any:
    import numpy

    pixels = attributes.frames * attributes.rows * attributes.columns
    count = pixels * attributes.samples
    wanted = (count * attributes.bits + 7) // 8
    length = length_of(level, record)
    is_subsampled = (attributes.photometric == "YBR_FULL_422" and attributes.samples == 3
                     and attributes.bits == 8 and attributes.columns % 2 == 0)
    if is_subsampled and length < wanted:
        wanted = 2 * pixels
    if length < wanted:
        raise PgkitError(f"the Pixel Data have {length} bytes, and their attributes ask for {wanted}")
    # The library puts a zero behind the value.
    data = numpy.empty(length + 1, numpy.uint8)
    read_into(record, data.ctypes.data)
    if attributes.bits == 1:
        bits = numpy.unpackbits(data[:wanted], bitorder="little")[:count]
        return _shaped(bits, attributes, attributes.is_planar)
    data = data[:wanted]
    if wanted < count:
        return _shaped(_with_all_chroma(data), attributes, is_planar=False)
    if attributes.bits > 16 and vr_name(record[2]) == "OW" and syntax == _BIG_ENDIAN:
        # Words came in host order, and the most significant one first.
        data = data.view("=u2").reshape(-1, attributes.bits // 16)[:, ::-1].ravel().view("u1")
    samples = data.view("=" + _kind(record, attributes))
    return _shaped(samples, attributes, attributes.is_planar)


def _with_all_chroma(data: Any) -> Any:
    """Two pixels of Y Y Cb Cr become Y Cb Cr Y Cb Cr."""
    import numpy

    return data.reshape(-1, 4)[:, numpy.array((0, 2, 3, 1, 2, 3))].ravel()


def _shaped(samples: Any, attributes: _Attributes, is_planar: bool) -> Any:
    shape: Tuple[int, ...] = (attributes.rows, attributes.columns)
    frames = (attributes.frames,) if attributes.frames > 1 else ()
    if attributes.samples == 1:
        return samples.reshape(frames + shape)
    if not is_planar:
        return samples.reshape((*frames, *shape, attributes.samples))
    planes = samples.reshape((*frames, attributes.samples, *shape))
    first = len(frames)
    return planes.transpose((*range(first), first + 1, first + 2, first))


def _decoded_rle(level: Level, attributes: _Attributes) -> Any:
    import numpy

    if attributes.bits < 8:
        raise PgkitError("pixels of one bit are not in RLE")
    unit = attributes.bits // 8
    size = attributes.rows * attributes.columns * attributes.samples * unit
    frames = 0
    samples = None
    for frame in frames_of(level):
        if frames == attributes.frames:
            break
        if samples is None:
            # A run of two bytes makes at most 128: larger claims are lies.
            if size > 64 * (len(frame) + 1):
                raise PgkitError("the frames are too short for the size of their image")
            samples = numpy.empty((attributes.frames, size), numpy.uint8)
        room = samples[frames]
        if not lib.pgxDecodeRle(frame, len(frame), attributes.samples * unit, unit,
                                room.ctypes.data, size):
            raise PgkitError(f"frame {frames + 1} is damaged")
        frames += 1
    if frames < attributes.frames:
        raise PgkitError(f"there are {frames} frames of {attributes.frames}")
    assert samples is not None
    return samples.view(f"={'i' if attributes.is_signed else 'u'}{unit}")


# ---- Frames -----------------------------------------------------------------------------------------


def _pieces(level: Level) -> List[FramePiece]:
    """The pieces of all frames, none when they cannot be told."""
    count = lib.pgxFindFrames(level.live, None, 0, None)
    if count == -3:
        raise MemoryError
    if count < 0:
        raise PgkitError("there are no encapsulated Pixel Data" if count == -1
                         else "the Pixel Data cannot be read")
    pieces = (FramePiece * count)()
    lib.pgxFindFrames(level.live, pieces, count, None)
    return list(pieces)


def _bytes_of(level: Level, piece: FramePiece) -> bytes:
    if piece.bytes:
        return ctypes.string_at(piece.bytes, piece.length)
    if piece.offset > 0xFFFFFFFF:
        raise PgkitError("frames beyond 4 GiB cannot be read")
    return _file_bytes(level, piece.offset, piece.length)


def _file_bytes(level: Level, offset: int, length: int) -> bytes:
    if length > level.tree.longest_value:
        raise PgkitError("a fragment is longer than its file")
    buffer = ctypes.create_string_buffer(length + 1)
    if not lib.pgKitGetFileData(level.tree.root, buffer, offset, length):
        raise PgkitError("a fragment cannot be read")
    return buffer.raw[:length]


def frames_of(level: Level) -> Iterator[bytes]:
    """The frames of encapsulated Pixel Data, one after the other."""
    pieces = _pieces(level)
    if not pieces:
        raise PgkitError("which fragments make a frame cannot be told")
    return _frames(level, pieces)


def _frames(level: Level, pieces: List[FramePiece]) -> Iterator[bytes]:
    frame: List[bytes] = []
    number = 0
    for piece in pieces:
        while piece.frame != number:
            yield b"".join(frame)
            frame = []
            number += 1
        level.live  # noqa: B018  the data set may have been closed in between
        frame.append(_bytes_of(level, piece))
    yield b"".join(frame)


def fragments_of(level: Level, node: int) -> List[bytes]:
    """The entries of the library's table of fragments."""
    found: List[bytes] = []
    length, offset = ctypes.c_uint32(), ctypes.c_uint32()
    while lib.pgKitGetEncodedPixelInfo(node, len(found), length, offset):
        if offset.value == 0 and length.value:  # in memory
            return [_bytes_of(level, piece) for piece in _pieces(level)]
        found.append(_file_bytes(level, offset.value, length.value))
    return found


def parts_of(level: Level, node: int) -> List[bytes]:
    """The frames, or the fragments where frames cannot be told."""
    pieces = _pieces(level)
    return list(_frames(level, pieces)) if pieces else fragments_of(level, node)
