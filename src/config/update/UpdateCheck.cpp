#include "config/update/UpdateCheck.h"

#include <cstddef>

#include "base/Ignored.h"
#include "base/Text.h"
#include "config/update/Endpoints.h"
#include "config/update/HttpGet.h"
#include "config/update/VersionFile.h"

namespace kestrune::config {
namespace {

/// Whether what comes from the address is encrypted on its way.
bool IsEncrypted(std::string_view address) {
  constexpr std::string_view kSecure = "https://";
  return base::EqualsNoCase(address.substr(0, kSecure.size()), kSecure);
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
  // The fall-back speaks plain HTTP alone, and an encrypted address is never asked in clear.
  if (text.empty() && !IsEncrypted(address) && !run_.ShuttingDown) text = HttpGet(web_, loop_, address);
  return text;
}

void UpdateCheck::CheckNewVersion(std::string& downloadAddress, std::int16_t& result) const {
  const VersionFile latest = ReadVersionFile(FetchVersionFile());
  downloadAddress.clear();
  if (!IsVersion(latest.Version)) {
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
  // Who hears of a version over an encrypted line does not run what came over an open one.
  if (IsEncrypted(EndpointsOf(environment_).VersionFile) && !IsEncrypted(downloadAddress)) return;
  const std::string bytes = web_.FetchBytes(downloadAddress);
  if (bytes.empty() || run_.ShuttingDown) return;
  // A name in the common temporary folder could be taken by anybody before the file is written, or after.
  const std::string folder = files_.CreatePrivateFolder(environment_.Variable("temp"));
  if (folder.empty()) return;
  localFile = folder + "/";
  localFile += FileNameOf(downloadAddress);
  if (!files_.CreateProgram(localFile, bytes)) base::Ignored(files_.RemoveFolder(folder));
}

void UpdateCheck::RemoveDownload(std::string_view localFile) const {
  base::Ignored(files_.Remove(localFile));
  base::Ignored(files_.RemoveFolder(localFile.substr(0, localFile.rfind('/'))));
}

}  // namespace kestrune::config
