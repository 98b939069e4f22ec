// Small Part 10 files for directories, composed by their keys.
//
//   InstanceFile image;  // a CT image that every directory takes
//   image.Set(0x0010, 0x0020, "LO", "ID1").Remove(0x0020, 0x0013);
//   directory.Write("IMAGE1", image.Data());
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "support/stream_builder.h"

namespace pgkit_test {

class InstanceFile {
  public:
    InstanceFile();

    // Sets an element; the value is made even as its VR demands.
    InstanceFile& Set(uint16_t group, uint16_t element, std::string_view vr,
                      std::string_view value);
    // Sets a number of VR US.
    InstanceFile& SetUS(uint16_t group, uint16_t element, uint16_t value);
    // Sets a sequence; content holds its items.
    InstanceFile& SetSequence(uint16_t group, uint16_t element, const StreamBuilder& content);
    InstanceFile& Remove(uint16_t group, uint16_t element);

    InstanceFile& SopClass(std::string_view uid);
    InstanceFile& Instance(std::string_view uid);
    InstanceFile& InstanceNumber(int number);
    InstanceFile& Series(std::string_view uid);
    InstanceFile& Study(std::string_view uid);
    InstanceFile& Patient(std::string_view id, std::string_view name);
    InstanceFile& TransferSyntax(std::string_view uid);

    // With preamble, explicit VR little endian.
    Bytes Data() const;
    // The same without the preamble and its "DICM".
    Bytes DataWithoutPreamble() const;

  private:
    struct Element {
        std::string vr;
        std::string value;
    };
    std::map<uint32_t, Element> elements_;
};

// One of several files of a series.
InstanceFile Instance(int number);

}  // namespace pgkit_test
