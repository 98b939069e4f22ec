// What (0008,0005) says: which coded sets a text begins in, and which it may change to.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "text/coded_sets.h"

namespace pgkit {

// As much of the attribute as is looked at: all defined terms together are shorter.
constexpr size_t kMaxCharacterSetText = 1024;

class SpecificCharacterSet {
  public:
    // The attribute's text as it stands in a data set, empty when there is none. Terms that are not
    // known count as if they were not there, an unknown first one as the default.
    explicit SpecificCharacterSet(std::string_view attribute);

    // The set of a text that knows no escape sequences, else null.
    const CodedSet* Alone() const { return alone_; }

    // The sets at the beginning, and behind each delimiter. G1 may be null.
    const CodedSet& InitialG0() const { return *initialG0_; }
    const CodedSet* InitialG1() const { return initialG1_; }

    // The sets with characters beyond ASCII, in the order of their terms.
    std::span<const CodedSet* const> Declared() const { return {declared_, count_}; }

  private:
    void AddTerm(const CodedSet* set, bool isFirst);
    void Declare(const CodedSet& set);

    static constexpr size_t kMaxDeclared = 24;

    const CodedSet* alone_ = nullptr;
    const CodedSet* initialG0_ = &AsciiSet();
    const CodedSet* initialG1_ = nullptr;
    const CodedSet* declared_[kMaxDeclared] = {};
    size_t count_ = 0;
};

}  // namespace pgkit
