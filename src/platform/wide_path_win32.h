// The one way between paths of bytes and the system's names.
#pragma once

#include <memory>
#include <string>

namespace pgkit::platform {

// A path as the system's functions take it. Those of usual length need no memory, so that files can
// be removed and put back when there is none; a long one that finds none, and what is not valid in
// the encoding of paths, is empty, and nothing has that name.
class WidePath {
  public:
    explicit WidePath(const char* path) noexcept;
    WidePath(const WidePath&) = delete;
    WidePath& operator=(const WidePath&) = delete;

    operator const wchar_t*() const { return text_; }

  private:
    wchar_t usual_[512];
    std::unique_ptr<wchar_t[]> long_;
    const wchar_t* text_ = L"";
};

std::string Narrow(const wchar_t* name);

}  // namespace pgkit::platform
