// JSON on its way to a function that takes bytes. Nothing of the JSON library is seen here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "pgkit/streams.h"

namespace pgkit {

// Collects what is written in a buffer of its own, so that the function is called for large pieces.
// After a failure everything is ignored. Throws std::bad_alloc.
class JsonOutput {
  public:
    JsonOutput(PgxWriteFunction write, void* context);
    ~JsonOutput();
    JsonOutput(const JsonOutput&) = delete;
    JsonOutput& operator=(const JsonOutput&) = delete;

    void StartObject();
    void EndObject();
    void EndArray();

    // What nearly all JSON of data sets consists of, each written at once.
    //
    // The name of an element and its object with the first member: "00100010":{"vr":"PN"
    void StartElement(std::string_view tag, std::string_view valueRep);
    // Its member with the values: ,"Value":[
    void StartValues();

    // The name of a member, which needs no escapes.
    void Key(std::string_view name);
    void Null();
    // A number, as JSON spells it.
    void Number(std::string_view digits);
    // A string of valid UTF-8.
    void String(std::string_view text);

    // A string in pieces, each of whole characters.
    void BeginString();
    void StringPiece(std::string_view text);
    void EndString();

    // Room for a part of a string that needs no escapes, at most kMaxReserved bytes: filled, and
    // then committed.
    static constexpr size_t kMaxReserved = 0x8000;
    char* Reserve(size_t size);
    void Commit(size_t size);

    // Passes on what is still in the buffer. False when the function failed, now or before.
    [[nodiscard]] bool Finish();
    bool HasFailed() const;
    // How many bytes were written.
    uint64_t Size() const;

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace pgkit
