#pragma once

namespace rasterkit::tool {

/// Makes stdin, stdout and stderr safe to use. Replaces each closed one by a dummy stream, so that
/// no file opened later gets its descriptor and receives its output. If the reader of a pipe is
/// gone, writing fails instead of ending the process in the middle of a picture.
void PrepareStandardStreams();

}  // namespace rasterkit::tool
