#pragma once

#include <string>
#include <string_view>
#include <system_error>

namespace agent {

/// Replaces the file at `path` as a whole: a reader sees the old content or the new, never a part
/// of either and never a missing file. The new content goes to a temporary file in the same folder,
/// is flushed to the disk, and is then renamed over the target.
///
/// An existing file keeps its permissions; a new one gets 0644. A symbolic link at `path` is itself
/// replaced, never followed: somebody who places a link there must not choose what is overwritten.
/// The folder must exist. Returns the system's error if there is one; then the old file is
/// unchanged and the temporary file is removed.
[[nodiscard]] std::error_code writeFileAtomically(const std::string &path,
                                                  std::string_view content);

}  // namespace agent
