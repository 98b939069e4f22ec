#include "support/instance_file.h"

namespace pgkit_test {

namespace {

uint32_t Key(uint16_t group, uint16_t element) { return (uint32_t{group} << 16) | element; }

}  // namespace

InstanceFile::InstanceFile() {
    SopClass("1.2.840.10008.5.1.4.1.1.2");
    Instance("1.2.3.4.1");
    Series("1.2.3.4");
    Study("1.2.3");
    Patient("ID1", "DOE^JOHN");
    TransferSyntax("1.2.840.10008.1.2.1");
    Set(0x0008, 0x0060, "CS", "CT");
    Set(0x0020, 0x0011, "IS", "1");
    InstanceNumber(1);
    Set(0x0028, 0x0004, "CS", "MONOCHROME2");
    SetUS(0x0028, 0x0010, 2).SetUS(0x0028, 0x0011, 3);
}

InstanceFile& InstanceFile::Set(uint16_t group, uint16_t element, std::string_view vr,
                                std::string_view value) {
    elements_[Key(group, element)] = {std::string(vr), PaddedValue(vr, value)};
    return *this;
}

InstanceFile& InstanceFile::SetUS(uint16_t group, uint16_t element, uint16_t value) {
    const char bytes[2] = {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8)};
    return Set(group, element, "US", {bytes, 2});
}

InstanceFile& InstanceFile::SetSequence(uint16_t group, uint16_t element,
                                        const StreamBuilder& content) {
    const Bytes& bytes = content.Data();
    return Set(group, element, "SQ", {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

InstanceFile& InstanceFile::Remove(uint16_t group, uint16_t element) {
    elements_.erase(Key(group, element));
    return *this;
}

InstanceFile& InstanceFile::SopClass(std::string_view uid) {
    return Set(0x0002, 0x0002, "UI", uid).Set(0x0008, 0x0016, "UI", uid);
}

InstanceFile& InstanceFile::Instance(std::string_view uid) {
    return Set(0x0002, 0x0003, "UI", uid).Set(0x0008, 0x0018, "UI", uid);
}

InstanceFile& InstanceFile::InstanceNumber(int number) {
    return Set(0x0020, 0x0013, "IS", std::to_string(number));
}

InstanceFile& InstanceFile::Series(std::string_view uid) { return Set(0x0020, 0x000E, "UI", uid); }

InstanceFile& InstanceFile::Study(std::string_view uid) { return Set(0x0020, 0x000D, "UI", uid); }

InstanceFile& InstanceFile::Patient(std::string_view id, std::string_view name) {
    return Set(0x0010, 0x0020, "LO", id).Set(0x0010, 0x0010, "PN", name);
}

InstanceFile& InstanceFile::TransferSyntax(std::string_view uid) {
    return Set(0x0002, 0x0010, "UI", uid);
}

Bytes InstanceFile::Data() const {
    StreamBuilder stream;
    return stream.Preamble().Append(DataWithoutPreamble()).Data();
}

Bytes InstanceFile::DataWithoutPreamble() const {
    StreamBuilder stream;
    for (const auto& [key, element] : elements_) {
        stream.Element(static_cast<uint16_t>(key >> 16), static_cast<uint16_t>(key & 0xFFFF),
                       element.vr, element.value);
    }
    return stream.Data();
}

InstanceFile Instance(int number) {
    return InstanceFile().Instance("1.2.3.4." + std::to_string(number)).InstanceNumber(number);
}

}  // namespace pgkit_test
