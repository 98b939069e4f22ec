#include "support/directory_builder.h"

#include "support/stream_builder.h"

namespace pgkit_test {

namespace {

constexpr uint32_t kItemHeaderSize = 8;

// The links stand among the keys in the order of the tags.
StreamBuilder RecordContent(const DirectoryRecordSpec& record, uint32_t next, uint32_t lower) {
    std::map<uint32_t, DirectoryRecordSpec::Key> keys = record.keys;
    if (record.hasNext) keys[0x00041400] = {"UL", BytesOf(StreamBuilder().U32(next))};
    if (record.hasLower) keys[0x00041420] = {"UL", BytesOf(StreamBuilder().U32(lower))};
    StreamBuilder content;
    for (const auto& [tag, key] : keys) {
        content.Element(static_cast<uint16_t>(tag >> 16), static_cast<uint16_t>(tag & 0xFFFF),
                        key.vr, key.value);
    }
    return content;
}

// Everything in front of the first record.
StreamBuilder Head(const DirectoryBuilder& directory, uint32_t rootOffset, uint32_t lastOffset) {
    StreamBuilder meta;
    meta.PaddedElement(0x0002, 0x0002, "UI", directory.sopClassUid)
        .PaddedElement(0x0002, 0x0010, "UI", "1.2.840.10008.1.2.1");
    StreamBuilder stream;
    stream.Preamble().ElementUL(0x0002, 0x0000, meta.Size()).Append(meta.Data());
    if (directory.hasRootOffset) stream.ElementUL(0x0004, 0x1200, rootOffset);
    if (directory.hasAllHeadKeys) {
        stream.ElementUL(0x0004, 0x1202, lastOffset)
            .ElementUS(0x0004, 0x1212, directory.consistencyFlag);
    }
    if (directory.hasSequence) stream.Sequence(0x0004, 0x1220);
    return stream;
}

}  // namespace

DirectoryRecordSpec& DirectoryRecordSpec::Set(uint16_t group, uint16_t element, std::string_view vr,
                                              std::string_view value) {
    keys[(uint32_t{group} << 16) | element] = {std::string(vr), PaddedValue(vr, value)};
    return *this;
}

DirectoryRecordSpec& DirectoryRecordSpec::Remove(uint16_t group, uint16_t element) {
    keys.erase((uint32_t{group} << 16) | element);
    return *this;
}

size_t DirectoryBuilder::Child(std::optional<size_t> parent, std::string_view type) {
    const size_t number = records_.size();
    records_.emplace_back().Set(0x0004, 0x1430, "CS", type);
    fileOrder.push_back(number);
    const auto last = lastChildren_.find(parent);
    if (last != lastChildren_.end()) {
        records_[last->second].next = number;
    } else if (parent) {
        records_[*parent].lower = number;
    }
    lastChildren_[parent] = number;
    return number;
}

size_t DirectoryBuilder::Patient(std::string_view id, std::string_view name) {
    const size_t record = Child(std::nullopt, "PATIENT");
    records_[record].Set(0x0010, 0x0010, "PN", name).Set(0x0010, 0x0020, "LO", id);
    return record;
}

size_t DirectoryBuilder::Study(size_t patient, std::string_view uid) {
    const size_t record = Child(patient, "STUDY");
    records_[record].Set(0x0020, 0x000D, "UI", uid);
    return record;
}

size_t DirectoryBuilder::Series(size_t study, std::string_view uid, std::string_view modality) {
    const size_t record = Child(study, "SERIES");
    records_[record].Set(0x0020, 0x000E, "UI", uid).Set(0x0008, 0x0060, "CS", modality);
    return record;
}

size_t DirectoryBuilder::Image(size_t series, std::string_view uid, int instanceNumber,
                               std::string_view fileId) {
    const size_t record = Child(series, "IMAGE");
    records_[record]
        .Set(0x0004, 0x1500, "CS", fileId)
        .Set(0x0004, 0x1510, "UI", "1.2.840.10008.5.1.4.1.1.2")
        .Set(0x0004, 0x1511, "UI", uid)
        .Set(0x0020, 0x0013, "IS", std::to_string(instanceNumber));
    return record;
}

uint32_t DirectoryBuilder::OffsetOf(size_t record) const { return Offsets()[record]; }

std::vector<uint32_t> DirectoryBuilder::Offsets() const {
    std::vector<uint32_t> offsets(records_.size());
    uint32_t position = Head(*this, 0, 0).Size();
    for (const size_t record : fileOrder) {
        offsets[record] = position;
        position += kItemHeaderSize + RecordContent(records_[record], 0, 0).Size();
    }
    return offsets;
}

std::optional<size_t> DirectoryBuilder::LastOfRoot() const {
    const auto last = lastChildren_.find(std::nullopt);
    return last == lastChildren_.end() ? std::nullopt : std::optional<size_t>(last->second);
}

Bytes DirectoryBuilder::Build() const {
    const std::vector<uint32_t> offsets = Offsets();
    const auto target = [&](std::optional<uint32_t> raw, std::optional<size_t> record) {
        if (raw) return *raw;
        return record ? offsets[*record] : 0;
    };
    StreamBuilder stream =
        Head(*this, target(rootOffset, records_.empty() ? std::nullopt : std::optional<size_t>(0)),
             target(lastRootOffset, LastOfRoot()));
    if (!hasSequence) return stream.Data();
    for (const size_t number : fileOrder) {
        const DirectoryRecordSpec& record = records_[number];
        const StreamBuilder content = RecordContent(record, target(record.nextOffset, record.next),
                                                    target(record.lowerOffset, record.lower));
        stream.Item(content.Size()).Append(content.Data());
    }
    return stream.EndSequence().Data();
}

}  // namespace pgkit_test
