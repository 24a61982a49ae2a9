#pragma once

#include <string>
#include <string_view>

#include "base/Result.h"
#include "platform/posix/FileDescriptor.h"

namespace kestrune::platform {

/// A serial device that has been opened, or why it could not be.
struct OpenedLine {
  base::Result Outcome = base::Result::Done();
  FileDescriptor Line = {};  ///< does not block; open exactly if Outcome is done
};

/// Opens a serial device for this program alone, with settings as "9600,n,8,1", and drops what it has received already.
/// The system may take seconds over it. Any thread may call it.
[[nodiscard]] OpenedLine OpenSerialLine(const std::string& device, std::string_view settings);

/// Closes it. What the device has not sent yet gets a twentieth of a second, and is dropped then: without that the
/// system would wait up to half a minute for an adapter that is stuck.
void CloseSerialLine(FileDescriptor& line);

/// Whether the other end is gone.
[[nodiscard]] bool HungUp(const FileDescriptor& line);

/// What the line has received and not yet been asked for, 64 KB at most.
struct LineInput {
  std::string Bytes = {};
  bool Dead = false;  ///< the line can be read no more; Bytes are its last
};
[[nodiscard]] LineInput ReadSerialLine(const FileDescriptor& line);

/// Raises or lowers modem lines, of TIOCM_DTR and TIOCM_RTS. A pseudo-terminal has none, and ignores it.
void SetModemLines(const FileDescriptor& line, int lines, bool on);

}  // namespace kestrune::platform
