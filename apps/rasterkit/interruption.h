#pragma once

namespace rasterkit::tool {

/// From now on the first Ctrl-C only asks the work to stop, so that no half-written file stays
/// behind; a second one ends the process at once. A file-size limit of the shell becomes an
/// ordinary write error.
void CatchInterruption();

/// Throws Failure(exitInterrupted) once the user has asked to stop. Called between the steps of a
/// picture and right before an output gets its name.
void StopIfInterrupted();

bool IsInterrupted();

}  // namespace rasterkit::tool
