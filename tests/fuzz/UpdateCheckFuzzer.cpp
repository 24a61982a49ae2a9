// What a server says of the latest version, by either road, and the file that it sends us to: whatever it is, the
// result is one of three, and a download stays inside its own folder.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "config/update/UpdateCheck.h"
#include "support/FakeEnvironment.h"
#include "support/FakeWeb.h"
#include "support/MemoryFiles.h"
#include "support/SimulatedEventLoop.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrune;
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast)
  const std::string input(reinterpret_cast<const char*>(data), size);
  test::SimulatedEventLoop loop;
  test::FakeEnvironment environment;
  environment.Variables["KESTRUNE_UPDATE_ADDRESS"] = "http://h/NewVersion.txt";
  const base::RunState run;
  for (const bool byHand : {false, true}) {
    test::FakeWeb web;
    test::MemoryFiles files;
    files.MakeFolders("/tmp");
    web.Reachable = byHand;
    if (byHand) {
      web.Reply = {input};
    } else {
      web.Text = input;
    }
    web.Bytes = "program";
    const config::UpdateCheck check(web, files, environment, loop, run);
    std::string address = "left from before";
    std::int16_t result = -1;
    check.CheckNewVersion(address, result);
    Require(result == config::kUpToDate || result == config::kNewerVersion ||
            result == config::kNotRetrieved);
    Require(result == config::kNewerVersion || address.empty());
    Require(!address.ends_with('\r') && address.find('\n') == std::string::npos);

    std::string localFile;
    check.UpdateEXE(address, localFile);
    constexpr std::string_view kFolder = "/tmp/private1/";
    Require(localFile.starts_with(kFolder) && localFile.find('/', kFolder.size()) == std::string::npos);
    for (const std::string& path : files.AllFiles()) Require(path == localFile);
  }
  return 0;
}
