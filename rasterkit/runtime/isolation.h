#pragma once

namespace rasterkit {

/// Where a file is decoded.
///
///     none      in this process
///     process   in a worker process of its own, which can open no file and start no program. A
///     file
///               that makes a decoder crash, hang or take too much memory ends that process alone;
///               the caller gets an ordinary error.
///
/// The result does not depend on it.
enum class Isolation { none, process };

}  // namespace rasterkit
