// One number for all rows of a table that hosts rely on, so that a row is not changed by accident.
#pragma once

#include <zlib.h>

#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace pgkit_test {

// The CRC-32 of the cells of all rows, each cell with a NUL behind it.
class RowChecksum {
  public:
    void Add(std::initializer_list<std::string_view> cells) {
        for (const std::string_view cell : cells) {
            Add(cell);
            Add(std::string_view("", 1));
        }
    }
    uint32_t Value() const { return static_cast<uint32_t>(crc_); }

  private:
    void Add(std::string_view bytes) {
        crc_ = crc32(crc_, reinterpret_cast<const Bytef*>(bytes.data()),
                     static_cast<uInt>(bytes.size()));
    }

    uLong crc_ = 0;
};

}  // namespace pgkit_test
