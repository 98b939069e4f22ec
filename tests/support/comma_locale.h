// A locale whose decimal separator is a comma, for the time of its life, if the system has one.
#pragma once

#include <clocale>
#include <string>

namespace pgkit_test {

class CommaLocale {
  public:
    CommaLocale() {
        for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "German", "French"}) {
            if (std::setlocale(LC_NUMERIC, name) != nullptr) break;
        }
    }
    ~CommaLocale() { std::setlocale(LC_NUMERIC, before_.c_str()); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    bool Found() const { return std::localeconv()->decimal_point[0] == ','; }

  private:
    std::string before_ = std::setlocale(LC_NUMERIC, nullptr);
};

}  // namespace pgkit_test
