#include <pgkit/json.h>

#include <string>
#include <string_view>

#include "base/utf8.h"
#include "input.h"
#include "scratch_files.h"
#include "support/current_edition.h"
#include "support/tree.h"
#include "targets.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

using pgkit_test::DataSet;

// A data set of every kind of value, whose JSON is changed here and there.
constexpr std::string_view kRichJson =
    R"({"00080005":{"vr":"CS","Value":["ISO_IR 192"]},"00081140":{"vr":"SQ","Value":[{},)"
    R"({"00081150":{"vr":"UI","Value":["1.2.3"]},"0040A043":{"vr":"SQ","Value":[{}]}}]},)"
    R"("00090010":{"vr":"LO","Value":["A MAKER",null,"é"]},"00091001":{"Value":[1],"vr":"SL"},)"
    R"("00100010":{"vr":"PN","Value":[{"Alphabetic":"A^B","Ideographic":"山"},null]},)"
    R"("00189087":{"vr":"FD","Value":[1.5,"NaN","-inf"]},"00280009":{"vr":"AT","Value":["00181063"]},)"
    R"("00280030":{"vr":"DS","Value":[0.25,"1e999"]},"00280106":{"Value":[-5]},)"
    R"("00281052":{"vr":"DS"},"00720082":{"vr":"SV","Value":["9007199254740993",7]},)"
    R"("00720078":{"vr":"UL","Value":[4294967295]},"00104000":{"vr":"LT","Value":["a\\b\r\n"]},)"
    R"("7FE00010":{"vr":"OW","InlineBinary":"AAECAwQ\/"}})";

size_t Append(void* context, const void* bytes, size_t size) {
    static_cast<std::string*>(context)->append(static_cast<const char*>(bytes), size);
    return size;
}

// Hands out what is left in pieces of a size.
struct Pieces {
    std::string_view rest;
    size_t size;
};

size_t Take(void* context, void* bytes, size_t size) {
    auto& pieces = *static_cast<Pieces*>(context);
    const size_t count = pieces.rest.copy(static_cast<char*>(bytes), std::min(size, pieces.size));
    pieces.rest.remove_prefix(count);
    return count;
}

int32_t Supply(void*, PGX_Node* element, const char*, const char* uri) {
    const std::string_view text = uri;
    return element->SetValue(text.data(), static_cast<uint32_t>(text.size()));
}

std::string Written(PGX_Node& root) {
    std::string json;
    const int64_t length = pgxWriteJson(&root, nullptr, Append, &json);
    if (length < 0) {
        Require(length == PGX_JSON_NO_URI || length == PGX_JSON_UNREADABLE,
                "what is read is written");
        return std::string();
    }
    Require(static_cast<size_t>(length) == json.size(), "a length is that of what was written");
    Require(pgkit::IsValidUtf8(json), "JSON is UTF-8");
    return json;
}

struct Outcome {
    DataSet root;
    PgxJsonPlace place{};
};

Outcome Parse(std::string_view json) {
    PgxJsonReadOptions options = PGX_JSON_READ_OPTIONS;
    options.bulk = Supply;
    Outcome outcome;
    outcome.place.size = sizeof outcome.place;
    outcome.root.reset(pgxParseJson(json.data(), json.size(), &options, &outcome.place));
    Require((outcome.root == nullptr) == (outcome.place.error != 0), "a failure is told");
    Require(outcome.place.error != PGX_JSON_NO_MEMORY, "little memory is needed");
    Require(outcome.place.offset <= json.size(), "a failure lies in the JSON");
    return outcome;
}

// The tree is as a file is: written and read it stays the same.
void KeepsItself(PGX_Node& root) {
    const std::string json = Written(root);
    if (json.empty()) return;
    const Outcome again = Parse(json);
    Require(again.root != nullptr, "what was written is read");
    Require(Written(*again.root) == json, "what was read and written is the same");
}

void ReadJson(std::string_view json, size_t pieceSize) {
    const Outcome outcome = Parse(json);
    Pieces pieces{json, pieceSize};
    PgxJsonReadOptions options = PGX_JSON_READ_OPTIONS;
    options.bulk = Supply;
    PgxJsonPlace place{};
    place.size = sizeof place;
    const DataSet inPieces(pgxReadJson(Take, &pieces, &options, &place));
    Require(place.error == outcome.place.error, "pieces make no difference");
    if (outcome.root == nullptr) return;
    Require(Written(*inPieces) == Written(*outcome.root), "pieces make no difference to the tree");
    KeepsItself(*outcome.root);
}

// Odd lengths and the like become what a file can hold at the first time.
void WriteFile(Bytes bytes) {
    const std::string path = WriteScratch("json", bytes);
    const DataSet root(pgOpenDataSetFile(path.c_str(), 64));
    if (root == nullptr) return;
    const std::string json = Written(*root);
    if (json.empty()) return;
    const Outcome outcome = Parse(json);
    // Bytes beyond ASCII where only ASCII can be are shown as what no such value has.
    const bool isRead = outcome.root != nullptr || outcome.place.error == PGX_JSON_BAD_TEXT;
    Require(isRead, "the JSON of a file is read");
    if (outcome.root != nullptr) KeepsItself(*outcome.root);
}

}  // namespace

void Json(Bytes bytes) {
    const pgkit_test::CurrentEdition edition;
    Input input(bytes);
    const uint8_t choice = input.Byte();
    const size_t pieceSize = choice % 16 + 1;
    if (choice < 0x60) return WriteFile(input.Rest());
    if (choice < 0xA0) {
        const auto rest = input.Rest();
        return ReadJson({reinterpret_cast<const char*>(rest.data()), rest.size()}, pieceSize);
    }
    std::string json(kRichJson);
    for (int i = 0; i < 64 && !input.IsEmpty(); ++i) {
        const size_t place = input.Below(static_cast<uint32_t>(json.size()));
        const uint8_t count = input.Byte() % 4;
        const std::string text = input.Text(input.Byte() % 5);
        json.replace(place, count, text);
        if (json.empty()) break;
    }
    ReadJson(json, pieceSize);
}

}  // namespace pgkit_fuzz
