#pragma once

namespace rasterkit::tool {

/// Makes stdin, stdout and stderr safe to have beside files. One that is closed becomes a stream
/// that gives and takes nothing, so that no file which is opened later gets its number and with it
/// the texts meant for it. A reader that has gone away makes writing fail instead of ending the
/// process in the middle of a picture.
void PrepareStandardStreams();

}  // namespace rasterkit::tool
