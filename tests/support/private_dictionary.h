// The private dictionary for the duration of one test.
#pragma once

#include <gtest/gtest.h>
#include <pgkit/dictionary.h>

#include <string_view>

#include "support/temp_dir.h"

namespace pgkit_test {

// Loads the text as private dictionary; the dictionary is empty again at the end.
class PrivateDictionaryText {
  public:
    explicit PrivateDictionaryText(std::string_view text) {
        const std::string path = directory_.Write("private.dic", text);
        EXPECT_EQ(pgSetPrivateDictionaryFile(path.c_str()), 1u);
    }
    ~PrivateDictionaryText() { pgSetPrivateDictionaryFile(nullptr); }
    PrivateDictionaryText(const PrivateDictionaryText&) = delete;
    PrivateDictionaryText& operator=(const PrivateDictionaryText&) = delete;

  private:
    TempDir directory_;
};

}  // namespace pgkit_test
