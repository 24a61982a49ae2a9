#include "config/update/UpdateCheck.h"

#include <cstddef>

#include "base/Ignored.h"
#include "config/update/Endpoints.h"
#include "config/update/HttpGet.h"
#include "config/update/VersionFile.h"

namespace kestrune::config {
namespace {

/// The fall-back speaks plain HTTP alone.
std::string WithoutEncryption(const std::string& address) {
  constexpr std::string_view kSecure = "https://";
  return address.starts_with(kSecure) ? "http://" + address.substr(kSecure.size()) : address;
}

/// All that follows the last "/"; the whole address if it has none.
std::string_view FileNameOf(std::string_view address) {
  const std::size_t slash = address.rfind('/');
  return slash == std::string_view::npos ? address : address.substr(slash + 1);
}

}  // namespace

UpdateCheck::UpdateCheck(platform::Web& web, platform::Files& files, const platform::Environment& environment,
                         base::EventLoop& loop, const base::RunState& run)
    : web_(web), files_(files), environment_(environment), loop_(loop), run_(run) {}

bool UpdateCheck::HasServer() const {
  return !EndpointsOf(environment_).VersionFile.empty();
}

std::string UpdateCheck::FetchVersionFile() const {
  const std::string address = EndpointsOf(environment_).VersionFile;
  if (address.empty()) return {};
  std::string text = web_.FetchText(address);
  if (text.empty() && !run_.ShuttingDown) text = HttpGet(web_, loop_, WithoutEncryption(address));
  return text;
}

void UpdateCheck::CheckNewVersion(std::string& downloadAddress, std::int16_t& result) const {
  const VersionFile latest = ReadVersionFile(FetchVersionFile());
  downloadAddress.clear();
  if (latest.Version.empty()) {
    result = kNotRetrieved;
  } else if (!IsNewer(latest.Version, RunningVersionText())) {
    result = kUpToDate;
  } else {
    result = kNewerVersion;
    downloadAddress = latest.DownloadAddress;
  }
}

void UpdateCheck::UpdateEXE(std::string_view downloadAddress, std::string& localFile) const {
  localFile.clear();
  const std::string bytes = web_.FetchBytes(downloadAddress);
  if (run_.ShuttingDown) return;
  // A name in the common temporary folder could be taken by anybody before the file is written, or after.
  const std::string folder = files_.CreatePrivateFolder(environment_.Variable("temp"));
  if (folder.empty()) return;
  localFile = folder + "/";
  localFile += FileNameOf(downloadAddress);
  if (!files_.CreateProgram(localFile, bytes)) base::Ignored(files_.RemoveFolder(folder));
}

}  // namespace kestrune::config
