#pragma once

#include <utility>

#include <rasterkit/runtime/threads/application.h>

namespace rasterkit {

/// Wraps a handler so that what it throws is shown to the user (`Application.HandleException`)
/// and does not unwind Qt's loop, which cannot bear it:
/// `connect(button, &QPushButton::clicked, this, Guarded([this] { Convert(); }));`
template <typename Handler>
auto Guarded(Handler handler) {
  return [handler = std::move(handler)]() mutable { Application.Guard([&] { handler(); }); };
}

}  // namespace rasterkit
