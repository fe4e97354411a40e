#include <memory>
#include <mutex>
#include <utility>

#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

/// Shared, so that a translator stays alive while it is called and another one replaces it.
using Shared = std::shared_ptr<const TTranslator>;

struct Installed {
  std::mutex mutex;
  Shared translator, catalogue;
};

Installed& TheInstalled() {
  static Installed installed;
  return installed;
}

Shared CurrentTranslator() {
  const std::lock_guard lock(TheInstalled().mutex);
  return TheInstalled().translator ? TheInstalled().translator : TheInstalled().catalogue;
}

/// The previous translator is destroyed after the lock is released: its destructor may need texts.
void Install(Shared Installed::*place, TTranslator translator) {
  Shared installed;
  if (translator) installed = std::make_shared<const TTranslator>(std::move(translator));
  const std::lock_guard lock(TheInstalled().mutex);
  (TheInstalled().*place).swap(installed);
}

}  // namespace

std::string ResourceString(std::string_view key) {
  const auto translator = CurrentTranslator();
  std::string text = translator ? (*translator)(key) : std::string();
  return text.empty() ? std::string(key) : text;
}

void SetTranslator(TTranslator translator) {
  Install(&Installed::translator, std::move(translator));
}

void SetCatalogue(TTranslator catalogue) {
  Install(&Installed::catalogue, std::move(catalogue));
}

}  // namespace rasterkit
