// The deflate algorithm (RFC 1951), piece by piece: what is known of zlib here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

struct z_stream_s;

namespace pgkit {

enum class DeflateState { Open, Ended, Damaged };

// How much of the input was used and of the output filled. As long as the state is Open and either
// of them is not used up, it is the other one that was.
struct DeflateStep {
    size_t taken;
    size_t given;
    DeflateState state;
};

class Inflater {
  public:
    // What is inflated may have a header and a checksum around it (RFC 1950). Throws
    // std::bad_alloc.
    explicit Inflater(bool hasHeader);
    // Throws std::bad_alloc.
    [[nodiscard]] DeflateStep Run(std::span<const uint8_t> input, std::span<uint8_t> output);

  private:
    struct End {
        void operator()(z_stream_s* stream) const;
    };
    std::unique_ptr<z_stream_s, End> stream_;
};

class Deflater {
  public:
    // Throws std::bad_alloc.
    Deflater();
    // isLast: no input follows; to be called again, without input, until the state is Ended.
    [[nodiscard]] DeflateStep Run(std::span<const uint8_t> input, std::span<uint8_t> output,
                                  bool isLast);

  private:
    struct End {
        void operator()(z_stream_s* stream) const;
    };
    std::unique_ptr<z_stream_s, End> stream_;
};

}  // namespace pgkit
