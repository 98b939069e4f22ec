#include "bench_files.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <utility>

#include "support/stream_builder.h"

namespace pgkit_bench {

namespace {

namespace fs = std::filesystem;

using pgkit_test::BytesOf;
using pgkit_test::OneItem;
using pgkit_test::StreamBuilder;
using pgkit_test::VrMode;

constexpr const char* kCtImage = "1.2.840.10008.5.1.4.1.1.2";
constexpr int kSmallFileCount = 1000;
constexpr int kBigItemCount = 10000;
constexpr int kBigItemElements = 100;

class Directory {
  public:
    Directory() {
        std::random_device random;
        path_ = fs::temp_directory_path() / ("pgkit-bench-" + std::to_string(random()));
        fs::create_directories(path_);
    }
    ~Directory() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    std::string Path(const std::string& name) const { return (path_ / name).string(); }
    std::string Write(const std::string& name, const std::string& content) const {
        std::ofstream(Path(name), std::ios::binary) << content;
        return Path(name);
    }

  private:
    fs::path path_;
};

const Directory& WorkDirectory() {
    static const Directory directory;
    return directory;
}

// A file: preamble, meta information and a data set.
std::string Part10(const std::string& sopClass, const std::string& transferSyntax,
                   const std::string& dataSet) {
    StreamBuilder meta;
    meta.PaddedElement(0x0002, 0x0001, "OB", std::string("\0\1", 2))
        .PaddedElement(0x0002, 0x0002, "UI", sopClass)
        .PaddedElement(0x0002, 0x0003, "UI", "1.2.826.0.1.3680043.2.1143.1")
        .PaddedElement(0x0002, 0x0010, "UI", transferSyntax)
        .PaddedElement(0x0002, 0x0012, "UI", "1.2.826.0.1.3680043.2.1143");
    StreamBuilder file;
    file.Preamble().ElementUL(0x0002, 0x0000, meta.Size()).Append(meta.Data()).Text(dataSet);
    return BytesOf(file);
}

std::string CodeSequence() {
    StreamBuilder code;
    code.PaddedElement(0x0008, 0x0100, "SH", "T-D1100")
        .PaddedElement(0x0008, 0x0102, "SH", "SRT")
        .PaddedElement(0x0008, 0x0104, "LO", "Head");
    return OneItem(code);
}

struct CtKeys {
    int number;
    int series = 106;
    size_t pixelBytes = 32768;
};

std::string CtImage(const CtKeys& keys) {
    const int number = keys.number;
    const std::string uid = "1.2.826.0.1.3680043.2.1143.107." + std::to_string(number);
    StreamBuilder image;
    image.PaddedElement(0x0008, 0x0005, "CS", "ISO_IR 100")
        .PaddedElement(0x0008, 0x0008, "CS", "ORIGINAL\\PRIMARY\\AXIAL")
        .PaddedElement(0x0008, 0x0016, "UI", "1.2.840.10008.5.1.4.1.1.2")
        .PaddedElement(0x0008, 0x0018, "UI", uid)
        .PaddedElement(0x0008, 0x0020, "DA", "20200101")
        .PaddedElement(0x0008, 0x0030, "TM", "101112")
        .PaddedElement(0x0008, 0x0060, "CS", "CT")
        .PaddedElement(0x0008, 0x1032, "SQ", CodeSequence())
        .PaddedElement(0x0008, 0x1140, "SQ", CodeSequence())
        .PaddedElement(0x0008, 0x2218, "SQ", CodeSequence())
        .PaddedElement(0x0009, 0x0010, "LO", "BENCH CREATOR");
    for (uint16_t i = 0; i < 15; ++i) {
        image.PaddedElement(0x0009, static_cast<uint16_t>(0x1001 + i), "LO", "private value");
    }
    image.PaddedElement(0x0010, 0x0010, "PN", "Bench^Patient")
        .PaddedElement(0x0010, 0x0020, "LO", "4711");
    for (uint16_t i = 0; i < 20; ++i) {
        image.PaddedElement(0x0018, static_cast<uint16_t>(0x1100 + 16 * i), "DS", "123.456");
    }
    image.PaddedElement(0x0020, 0x000D, "UI", "1.2.826.0.1.3680043.2.1143.105")
        .PaddedElement(0x0020, 0x000E, "UI",
                       "1.2.826.0.1.3680043.2.1143." + std::to_string(keys.series))
        .PaddedElement(0x0020, 0x0010, "SH", "STUDY1")
        .PaddedElement(0x0020, 0x0011, "IS", std::to_string(keys.series))
        .PaddedElement(0x0020, 0x0013, "IS", std::to_string(number))
        .PaddedElement(0x0020, 0x0037, "DS", "1\\0\\0\\0\\1\\0");
    for (uint16_t i = 0; i < 12; ++i) {
        image.ElementUS(0x0028, static_cast<uint16_t>(0x0100 + i), 512);
    }
    for (uint16_t i = 0; i < 15; ++i) {
        image.PaddedElement(0x0040, static_cast<uint16_t>(0x0240 + i), "LO", "Procedure step text");
    }
    image.PaddedElement(0x7FE0, 0x0010, "OW", std::string(keys.pixelBytes, '\x55'));
    return BytesOf(image);
}

std::string BigDataSet(VrMode mode) {
    StreamBuilder item(mode);
    for (uint16_t i = 0; i < kBigItemElements; ++i) {
        item.PaddedElement(0x0018, static_cast<uint16_t>(0x1100 + i), "DS", "123.456");
    }
    const std::string oneItem = OneItem(item);
    StreamBuilder items;
    for (int i = 0; i < kBigItemCount; ++i)
        items.Text(oneItem);
    StreamBuilder image(mode);
    image.PaddedElement(0x0008, 0x0016, "UI", "1.2.840.10008.5.1.4.1.1.2.1")
        .PaddedElement(0x5200, 0x9230, "SQ", BytesOf(items));
    return BytesOf(image);
}

StreamBuilder NestedIn(const std::string& items) {
    return StreamBuilder().Element(0x0040, 0xA730, "SQ", items);
}

std::string DeepDataSet() {
    constexpr int kChains = 100;
    constexpr int kDepth = 500;
    StreamBuilder content;
    content.PaddedElement(0x0040, 0xA160, "UT", "leaf");
    for (int depth = 0; depth < kDepth; ++depth)
        content = NestedIn(OneItem(content));
    const std::string chain = OneItem(content);
    StreamBuilder chains;
    for (int i = 0; i < kChains; ++i)
        chains.Text(chain);
    return BytesOf(NestedIn(BytesOf(chains)));
}

// The pixels are written piece by piece behind a header that announces them.
std::string WriteImage(uint32_t mebibytes) {
    constexpr uint32_t kPiece = 1 << 20;
    StreamBuilder image;
    image.PaddedElement(0x0008, 0x0016, "UI", "1.2.840.10008.5.1.4.1.1.7")
        .ElementUS(0x0028, 0x0100, 16)
        .Header(0x7FE0, 0x0010, "OW", kPiece * mebibytes);
    const std::string path =
        WorkDirectory().Write("IMAGE" + std::to_string(mebibytes),
                              Part10(kCtImage, "1.2.840.10008.1.2.1", BytesOf(image)));
    std::ofstream stream(path, std::ios::binary | std::ios::app);
    const std::string piece(kPiece, '\x55');
    for (uint32_t i = 0; i < mebibytes; ++i)
        stream << piece;
    return path;
}

std::vector<std::string> WriteSmallFiles() {
    std::vector<std::string> paths;
    for (int i = 0; i < kSmallFileCount; ++i) {
        paths.push_back(WorkDirectory().Write(
            "IM" + std::to_string(i), Part10(kCtImage, "1.2.840.10008.1.2.1", CtImage({i}))));
    }
    return paths;
}

constexpr int kFilesPerDirectory = 1000;
constexpr int kFilesPerSeries = 10;

// As media demand: eight characters at most, in capitals.
std::string FileId(char letter, int number) {
    std::string digits = std::to_string(number);
    return letter + std::string(7 - digits.size(), '0') + digits;
}

std::string MediumFile(int number, MediumShape shape) {
    constexpr size_t kPixelBytes = 2048;
    if (shape == MediumShape::kNoDicom) return std::string(kPixelBytes, 'x');
    const int series = shape == MediumShape::kManySeries ? 1000 + number / kFilesPerSeries : 106;
    return Part10(kCtImage, "1.2.840.10008.1.2.1", CtImage({number, series, kPixelBytes}));
}

Medium WriteMedium(int fileCount, MediumShape shape) {
    const std::string name =
        "MEDIUM" + std::to_string(static_cast<int>(shape)) + "_" + std::to_string(fileCount);
    Medium medium{WorkDirectory().Path(name), {}};
    for (int i = 0; i < fileCount; ++i) {
        const std::string directory = FileId('D', i / kFilesPerDirectory);
        const fs::path path = fs::path(medium.directory) / directory;
        if (i % kFilesPerDirectory == 0) fs::create_directories(path);
        medium.files.push_back(directory + "/" + FileId('I', i));
        std::ofstream(path / FileId('I', i), std::ios::binary) << MediumFile(i, shape);
    }
    return medium;
}

}  // namespace

const std::vector<std::string>& SmallFiles() {
    static const std::vector<std::string> paths = WriteSmallFiles();
    return paths;
}

const std::string& BigExplicitFile() {
    static const std::string path = WorkDirectory().Write(
        "EXPLICIT", Part10(kCtImage, "1.2.840.10008.1.2.1", BigDataSet(VrMode::Explicit)));
    return path;
}

const std::string& BigImplicitFile() {
    static const std::string path = WorkDirectory().Write(
        "IMPLICIT", Part10(kCtImage, "1.2.840.10008.1.2", BigDataSet(VrMode::Implicit)));
    return path;
}

const std::string& DeepFile() {
    static const std::string path =
        WorkDirectory().Write("DEEP", Part10(kCtImage, "1.2.840.10008.1.2.1", DeepDataSet()));
    return path;
}

const std::string& ImageFile(uint32_t mebibytes) {
    static std::map<uint32_t, std::string> paths;
    const auto [path, isNew] = paths.try_emplace(mebibytes);
    if (isNew) path->second = WriteImage(mebibytes);
    return path->second;
}

const Medium& MediumOf(int fileCount, MediumShape shape) {
    static std::map<std::pair<int, MediumShape>, Medium> media;
    const auto [medium, isNew] = media.try_emplace({fileCount, shape});
    if (isNew) medium->second = WriteMedium(fileCount, shape);
    return medium->second;
}

std::string WriteFile(const std::string& name, const std::string& content) {
    return WorkDirectory().Write(name, content);
}

std::string OutputPath() { return WorkDirectory().Path("output"); }

}  // namespace pgkit_bench
