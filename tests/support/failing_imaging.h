// Lets the imaging module fail: its code, linked into one program, takes the place of the module
// that the library loads at run time, and so its calls are among those that can be made to fail.
#pragma once

namespace pgkit_test {

// While it lives, the library gets the linked code where it loads the module. Loading and looking
// for functions succeed.
class LinkedImaging {
  public:
    LinkedImaging();
    ~LinkedImaging();
    LinkedImaging(const LinkedImaging&) = delete;
    LinkedImaging& operator=(const LinkedImaging&) = delete;
};

}  // namespace pgkit_test
