#include <rasterkit/dialogs/values/choose_values.h>
#include <rasterkit/dialogs/values/choose_values_form.h>
#include <rasterkit/dialogs/values/value_session.h>
#include <rasterkit/qt/host/modal_call.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

bool Confirm(ValueSession& session, QWidget* parent) {
  TFormChooseValues form(session, parent);
  if (form.ShowModal() != mrOk) return false;
  session.Remember();
  return true;
}

void RequirePixels(const TBitmap& pixels) {
  if (pixels.Empty()) throw FormatError("an empty picture has no colors to change");
}

}  // namespace

std::optional<AdjustColors> ChooseValues(const TBitmap& pixels, const AdjustColors& start,
                                         QWidget* parent) {
  RequirePixels(pixels);
  const TModalCall call;
  ValueSession session(pixels, start);
  if (!Confirm(session, parent)) return std::nullopt;
  return session.Adjustment();
}

std::optional<MakeMono> ChooseThreshold(const TBitmap& pixels, const MakeMono& start,
                                        QWidget* parent) {
  RequirePixels(pixels);
  const TModalCall call;
  ValueSession session(pixels, start);
  if (!Confirm(session, parent)) return std::nullopt;
  return session.Mono();
}

}  // namespace rasterkit
