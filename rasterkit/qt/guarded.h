#pragma once

#include <utility>

#include <rasterkit/runtime/threads/application.h>

namespace rasterkit {

/// Wraps a handler so that its exceptions are shown to the user (`Application.HandleException`) and
/// never unwind Qt's event loop, which is not exception-safe: `connect(button,
/// &QPushButton::clicked, this, Guarded([this] { Convert(); }));`
template <typename Handler>
auto Guarded(Handler handler) {
  return [handler = std::move(handler)]() mutable { Application.Guard([&] { handler(); }); };
}

}  // namespace rasterkit
