// A host program of the module, in a directory of its own. The module lies beside it, as Windows
// demands; elsewhere a host may find it where it was built.
//
//   const HostDirectory host(PGKIT_TEST_LOAD_PROBE);
//   host.Write("privdict.dic", "...");
//   EXPECT_EQ(host.Run({"0019", "1010"}).out, "5 Name\n");
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "support/process.h"
#include "support/temp_dir.h"

namespace pgkit_test {

class HostDirectory {
  public:
    explicit HostDirectory(const std::string& program);

    std::string Path(std::string_view name) const { return directory_.Path(name); }
    // Puts a file beside the host.
    void Write(std::string_view name, std::string_view content) const;
    void Copy(const std::string& file, std::string_view name) const;

    // The output's line ends read as "\n" on every platform.
    Finished Run(const std::vector<std::string>& arguments) const;

  private:
    TempDir directory_;
    std::string program_;
};

// The name of a file without its directory.
std::string FileName(const std::string& path);

}  // namespace pgkit_test
