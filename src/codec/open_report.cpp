// The open functions of open_report.h.
#include "pgkit/open_report.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <span>

#include "base/firewall.h"
#include "base/text.h"
#include "codec/open.h"
#include "codec/opening.h"
#include "pgkit/node.h"

namespace pgkit {

namespace {

// The caller's structure may be an older one, or a newer.
class Report {
  public:
    explicit Report(PgxOpenReport* report) : report_(report) {}

    bool DetectsBigEndian() const {
        constexpr size_t kEnd = offsetof(PgxOpenReport, options) + sizeof report_->options;
        return report_ != nullptr && report_->size >= kEnd &&
               (report_->options & PGX_OPEN_DETECT_BIG_ENDIAN) != 0;
    }

    void Fill(const OpenedTree& opened) {
        PgxOpenReport filled{};
        filled.result = opened.result;
        filled.notes = opened.notes;
        filled.certainty = opened.certainty;
        filled.syntaxFlags = opened.root != nullptr ? opened.root->syntaxFlags : 0xFFFFFFFF;
        filled.elements = opened.root != nullptr ? opened.elements : 0;
        filled.offset = opened.end.offset;
        filled.group = opened.end.group;
        filled.element = opened.end.element;
        constexpr size_t kUidLength = 64;
        CopyBounded(filled.transferSyntax, kUidLength + 1, opened.transferSyntax);
        Copy(filled);
    }

    void Fill(PgxOpenResult result) {
        OpenedTree nothing;
        nothing.result = result;
        Fill(nothing);
    }

  private:
    void Copy(const PgxOpenReport& filled) {
        constexpr size_t kStart = offsetof(PgxOpenReport, result);
        if (report_ == nullptr || report_->size <= kStart) return;
        const size_t end = std::min<size_t>(report_->size, sizeof filled);
        std::memcpy(reinterpret_cast<char*>(report_) + kStart,
                    reinterpret_cast<const char*>(&filled) + kStart, end - kStart);
    }

    PgxOpenReport* report_;
};

template <typename Open>
PGX_Node* Reported(PgxOpenReport* report, Open&& open) {
    Report filled(report);
    try {
        return open(filled);
    } catch (const std::bad_alloc&) {
        filled.Fill(PGX_OPEN_NO_MEMORY);
        return nullptr;
    }
}

PGX_Node* Fail(Report& report, PgxOpenResult result) {
    report.Fill(result);
    return nullptr;
}

PGX_Node* OpenFile(const char* path, uint32_t maxLoadLength, uint32_t flags, Report& report) {
    InputFile file = OpenInput(path);
    if (file.stream == nullptr) return Fail(report, PGX_OPEN_CANNOT_OPEN);
    StreamReader reader(file.stream.get(), file.size);
    OpenedTree opened = OpenTree(reader, {.maxLoadLength = maxLoadLength,
                                          .flags = flags,
                                          .isDiscerning = true,
                                          .detectsBigEndian = report.DetectsBigEndian()});
    report.Fill(opened);
    return HandOver(opened, file.stream);
}

OpenedTree OpenBytes(std::span<const uint8_t> bytes, uint32_t flags, const Report& report) {
    constexpr uint32_t kEverything = 0xFFFFFFFF;
    MemorySource memory(bytes);
    StreamReader reader(memory);
    return OpenTree(reader, {.maxLoadLength = kEverything,
                             .flags = flags,
                             .keepsEverything = true,
                             .isDiscerning = true,
                             .detectsBigEndian = report.DetectsBigEndian()});
}

PGX_Node* OpenMemory(std::span<const uint8_t> bytes, uint32_t flags, Report& report) {
    if (bytes.data() == nullptr && !bytes.empty()) return Fail(report, PGX_OPEN_CANNOT_OPEN);
    OpenedTree opened = OpenBytes(bytes, flags, report);
    report.Fill(opened);
    return opened.root.release();
}

// Everything that a function gives.
class ReadBytes {
  public:
    // False when the function fails. Throws std::bad_alloc.
    bool ReadAll(PgxReadFunction read, void* context) {
        while (true) {
            MakeRoom();
            const size_t got = read(context, bytes_.get() + size_, room_ - size_);
            if (got == 0) return true;
            if (got > room_ - size_) return false;
            size_ += got;
        }
    }
    std::span<const uint8_t> Bytes() const { return {bytes_.get(), size_}; }

  private:
    struct Free {
        void operator()(uint8_t* bytes) const { std::free(bytes); }
    };

    void MakeRoom() {
        constexpr size_t kFirstRoom = size_t{64} << 10;
        if (size_ < room_) return;
        const size_t wanted = std::max(kFirstRoom, room_ + room_ / 2);
        auto* const larger = static_cast<uint8_t*>(std::realloc(bytes_.get(), wanted));
        if (larger == nullptr) throw std::bad_alloc();
        static_cast<void>(bytes_.release());
        bytes_.reset(larger);
        room_ = wanted;
    }

    std::unique_ptr<uint8_t, Free> bytes_;
    size_t size_ = 0;
    size_t room_ = 0;
};

PGX_Node* OpenFrom(PgxReadFunction read, void* context, uint32_t flags, Report& report) {
    if (read == nullptr) return Fail(report, PGX_OPEN_CANNOT_OPEN);
    ReadBytes bytes;
    const bool isWhole = bytes.ReadAll(read, context);
    OpenedTree opened = OpenBytes(bytes.Bytes(), flags, report);
    if (!isWhole) {
        opened.result = PGX_OPEN_READ_FAILED;
        opened.end.offset = bytes.Bytes().size();
    }
    report.Fill(opened);
    return opened.root.release();
}

}  // namespace

}  // namespace pgkit

using pgkit::Guarded;
using pgkit::Report;
using pgkit::Reported;

PGX_Node* pgxOpenFile(const char* path, uint32_t maxLoadLength, uint32_t flags,
                      PgxOpenReport* report) {
    return Guarded([=] {
        return Reported(report, [=](Report& filled) {
            return pgkit::OpenFile(path, maxLoadLength, flags, filled);
        });
    });
}

PGX_Node* pgxOpenMemory(const void* bytes, size_t size, uint32_t flags, PgxOpenReport* report) {
    return Guarded([=] {
        return Reported(report, [=](Report& filled) {
            return pgkit::OpenMemory({static_cast<const uint8_t*>(bytes), size}, flags, filled);
        });
    });
}

PGX_Node* pgxOpenFrom(PgxReadFunction read, void* context, uint32_t flags, PgxOpenReport* report) {
    return Guarded([=] {
        return Reported(
            report, [=](Report& filled) { return pgkit::OpenFrom(read, context, flags, filled); });
    });
}
