// The functions of json.h.
#include "pgkit/json.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "base/firewall.h"
#include "base/text.h"
#include "base/utf8.h"
#include "dataset/node_ptr.h"
#include "json/data_set_reader.h"
#include "json/data_set_writer.h"
#include "pgkit/node.h"

namespace pgkit {

namespace {

constexpr int64_t kNoMemory = PGX_JSON_NO_MEMORY;
// The data set, and the 2,048 levels of sequences that files may have.
constexpr uint32_t kMaxDepth = 2049;

// Options as a program knows them that may be older or newer than the library.
template <typename Options>
Options Complete(const Options* given, const Options& defaults) {
    Options options = defaults;
    if (given != nullptr) std::memcpy(&options, given, std::min(given->size, sizeof options));
    return options;
}

// ---- Writing ------------------------------------------------------------------------------------

int64_t Write(PGX_Node* dataSet, const PgxJsonWriteOptions* given, PgxWriteFunction write,
              void* context) {
    if (dataSet == nullptr || dataSet->nodeType != NT_DataSet) return PGX_JSON_NO_DATA_SET;
    const PgxJsonWriteOptions options =
        Complete<PgxJsonWriteOptions>(given, PGX_JSON_WRITE_OPTIONS);
    JsonOutput output(write, context);
    const int32_t error = DataSetWriter(output, options).Write(*dataSet);
    if (error != 0) return error;
    if (!output.Finish()) return PGX_JSON_WRITE_FAILED;
    return static_cast<int64_t>(output.Size());
}

// A buffer that takes what fits, and more without keeping it.
struct BoundedBuffer {
    char* bytes;
    size_t room;
    size_t used = 0;
};

size_t Keep(void* context, const void* bytes, size_t size) {
    auto& buffer = *static_cast<BoundedBuffer*>(context);
    const size_t kept = std::min(size, buffer.room - buffer.used);
    if (kept > 0) std::memcpy(buffer.bytes + buffer.used, bytes, kept);
    buffer.used += kept;
    return size;
}

// The length of the text without a character that was cut at its end.
size_t WholeCharacters(std::string_view text) {
    size_t lead = text.size();
    while (lead > 0 && text.size() - lead < kMaxUtf8Size - 1) {
        --lead;
        if ((static_cast<unsigned char>(text[lead]) & 0xC0) == 0x80) continue;
        return FirstUtf8Character(text.substr(lead)).isCutShort ? lead : text.size();
    }
    return text.size();
}

int64_t Get(PGX_Node* dataSet, const PgxJsonWriteOptions* options, char* text, size_t size) {
    BoundedBuffer buffer{text, text == nullptr || size == 0 ? 0 : size - 1};
    if (text != nullptr && size > 0) text[0] = '\0';
    const int64_t length =
        Guarded([&] { return Write(dataSet, options, Keep, &buffer); }, kNoMemory);
    if (text == nullptr || size == 0) return length;
    text[length < 0 ? 0 : WholeCharacters({text, buffer.used})] = '\0';
    return length;
}

// ---- Reading ------------------------------------------------------------------------------------

void Tell(PgxJsonPlace* place, int32_t error, uint64_t offset, std::string_view path) {
    if (place == nullptr) return;
    PgxJsonPlace told{};
    told.size = std::min(place->size, sizeof told);
    told.error = error;
    told.offset = offset;
    constexpr std::string_view kCut = "...";
    if (path.size() < sizeof told.path) {
        CopyToField(told.path, path);
    } else {
        kCut.copy(told.path, kCut.size());
        const size_t room = sizeof told.path - 1 - kCut.size();
        path.substr(path.size() - room).copy(told.path + kCut.size(), room);
    }
    std::memcpy(place, &told, told.size);
}

JsonReading Read(JsonSource source, const PgxJsonReadOptions* given, PgxJsonDataSetFunction take,
                 void* context) {
    PgxJsonReadOptions options = Complete<PgxJsonReadOptions>(given, PGX_JSON_READ_OPTIONS);
    if (options.depthLimit == 0) options.depthLimit = kMaxDepth;
    options.depthLimit = std::min(options.depthLimit, kMaxDepth);
    if (options.sizeLimit != 0) source.sizeLimit = options.sizeLimit;
    return ReadDataSets(source, options, take, context);
}

int64_t ReadAll(const JsonSource& source, const PgxJsonReadOptions* options,
                PgxJsonDataSetFunction take, void* context, PgxJsonPlace* place) {
    Tell(place, PGX_JSON_NO_MEMORY, 0, {});
    const JsonReading reading = Read(source, options, take, context);
    Tell(place, reading.error, reading.offset, reading.path);
    return reading.error != 0 ? reading.error : reading.count;
}

struct OneDataSet {
    NodeTree first;
    bool hasMore = false;
};

int32_t TakeOne(void* context, PGX_Node* dataSet) {
    auto& taken = *static_cast<OneDataSet*>(context);
    NodeTree owned(dataSet);
    taken.hasMore = taken.first != nullptr;
    if (!taken.hasMore) taken.first = std::move(owned);
    return taken.hasMore ? 0 : 1;
}

PGX_Node* ReadOne(const JsonSource& source, const PgxJsonReadOptions* options,
                  PgxJsonPlace* place) {
    Tell(place, PGX_JSON_NO_MEMORY, 0, {});
    OneDataSet one;
    JsonReading reading = Read(source, options, TakeOne, &one);
    if (reading.error == 0 && reading.count == 0) reading.error = PGX_JSON_NO_DATA_SET;
    if (reading.error == 0 && one.hasMore) reading.error = PGX_JSON_SEVERAL_DATA_SETS;
    Tell(place, reading.error, reading.offset, reading.path);
    return reading.error == 0 ? one.first.release() : nullptr;
}

JsonSource FromMemory(const char* json, size_t length) {
    JsonSource source;
    if (json != nullptr) source.text = {json, length};
    return source;
}

// A null function fails at once.
size_t FailToRead(void*, void*, size_t) { return PGX_READ_FAILED; }

JsonSource FromFunction(PgxReadFunction read, void* context) {
    JsonSource source;
    source.read = read == nullptr ? FailToRead : read;
    source.context = context;
    return source;
}

// ---- Errors -------------------------------------------------------------------------------------

// The text of an error stands at its number, without the sign and less one.
constexpr std::array<std::string_view, 21> kErrorTexts = {
    "not enough memory",
    "no data set",
    "the output took less than it was given",
    "the input could not be read",
    "a value beyond 4 GiB in its file cannot be read",
    "encapsulated Pixel Data without a place to refer to",
    "no valid JSON",
    "not UTF-8",
    "data sets are nested too deep",
    "too large",
    "a value of the wrong type",
    "an unknown member",
    "the same element or member twice",
    "several of Value, InlineBinary and BulkDataURI",
    "no tag of an element",
    "an unknown value representation",
    "a number beyond the range of its value representation",
    "a character that the value representation does not allow",
    "broken base64",
    "bulk data that are not there",
    "several data sets in place of one",
};
static_assert(kErrorTexts.size() == -PGX_JSON_SEVERAL_DATA_SETS);

std::string_view ErrorText(int32_t error) {
    const bool isOne = error < 0 && error >= PGX_JSON_SEVERAL_DATA_SETS;
    return isOne ? kErrorTexts[static_cast<size_t>(-1 - error)] : std::string_view();
}

}  // namespace

}  // namespace pgkit

using pgkit::Guarded;

int64_t pgxWriteJson(PGX_Node* dataSet, const PgxJsonWriteOptions* options, PgxWriteFunction write,
                     void* context) {
    return Guarded([=] { return pgkit::Write(dataSet, options, write, context); },
                   pgkit::kNoMemory);
}

int64_t pgxGetJson(PGX_Node* dataSet, const PgxJsonWriteOptions* options, char* buffer,
                   size_t size) {
    return Guarded([=] { return pgkit::Get(dataSet, options, buffer, size); }, pgkit::kNoMemory);
}

PGX_Node* pgxReadJson(PgxReadFunction read, void* context, const PgxJsonReadOptions* options,
                      PgxJsonPlace* place) {
    return Guarded(
        [=] { return pgkit::ReadOne(pgkit::FromFunction(read, context), options, place); });
}

PGX_Node* pgxParseJson(const char* json, size_t length, const PgxJsonReadOptions* options,
                       PgxJsonPlace* place) {
    return Guarded([=] { return pgkit::ReadOne(pgkit::FromMemory(json, length), options, place); });
}

int64_t pgxReadJsonDataSets(PgxReadFunction read, void* context, const PgxJsonReadOptions* options,
                            PgxJsonDataSetFunction take, void* takeContext, PgxJsonPlace* place) {
    return Guarded(
        [=] {
            return pgkit::ReadAll(pgkit::FromFunction(read, context), options, take, takeContext,
                                  place);
        },
        pgkit::kNoMemory);
}

int64_t pgxParseJsonDataSets(const char* json, size_t length, const PgxJsonReadOptions* options,
                             PgxJsonDataSetFunction take, void* takeContext, PgxJsonPlace* place) {
    return Guarded(
        [=] {
            return pgkit::ReadAll(pgkit::FromMemory(json, length), options, take, takeContext,
                                  place);
        },
        pgkit::kNoMemory);
}

size_t pgxJsonErrorText(int32_t error, char* buffer, size_t size) {
    return Guarded([=] { return pgkit::CopyBounded(buffer, size, pgkit::ErrorText(error)); });
}
