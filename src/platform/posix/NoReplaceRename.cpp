#include "platform/posix/NoReplaceRename.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/Ignored.h"
#include "platform/posix/FileDescriptor.h"

namespace kestrune::platform {

RenameOutcome RenameInOneStep(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
    return RenameOutcome::Done;
  }
  const bool unsupported = errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP;
  return unsupported ? RenameOutcome::Unsupported : RenameOutcome::Refused;
}

RenameOutcome RenameByLink(const std::string& from, const std::string& to) {
  if (::link(from.c_str(), to.c_str()) != 0) {
    const bool unsupported = errno == EPERM || errno == ENOSYS || errno == EOPNOTSUPP || errno == EMLINK;
    return unsupported ? RenameOutcome::Unsupported : RenameOutcome::Refused;
  }
  if (::unlink(from.c_str()) == 0) return RenameOutcome::Done;
  const int error = errno;
  base::Ignored(::unlink(to.c_str()));
  errno = error;
  return RenameOutcome::Refused;
}

RenameOutcome RenameByClaim(const std::string& from, const std::string& to) {
  struct stat source {};
  if (::stat(from.c_str(), &source) != 0) return RenameOutcome::Refused;
  if (!S_ISREG(source.st_mode)) {
    errno = EINVAL;
    return RenameOutcome::Refused;
  }
  FileDescriptor claim(::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (!claim.IsOpen()) return RenameOutcome::Refused;
  claim.Close();
  if (std::rename(from.c_str(), to.c_str()) == 0) return RenameOutcome::Done;
  const int error = errno;
  base::Ignored(::unlink(to.c_str()));
  errno = error;
  return RenameOutcome::Refused;
}

int RenameNeverReplacing(const std::string& from, const std::string& to) {
  for (const auto way : {RenameInOneStep, RenameByLink, RenameByClaim}) {
    const RenameOutcome outcome = way(from, to);
    if (outcome == RenameOutcome::Done) return 0;
    if (outcome == RenameOutcome::Refused) return errno;
  }
  return ENOTSUP;
}

}  // namespace kestrune::platform
