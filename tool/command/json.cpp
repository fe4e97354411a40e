#include "tool/command/json.h"

#include <cstdio>

#include <nlohmann/json.hpp>

namespace rasterkit::tool {
namespace {

std::string Dump(const nlohmann::json& value) {
  return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void Append(std::string& items, const std::string& item) {
  if (item.empty()) return;
  if (!items.empty()) items += ',';
  items += item;
}

}  // namespace

Json::Json(const char* text) : text_(Dump(text)) {}

Json::Json(const std::string& text) : text_(Dump(text)) {}

Json::Json(double number) : text_(Dump(number)) {}

void JsonList::Add(const Json& value) {
  Append(items_, value.Text());
}

JsonObject& JsonObject::Add(const std::string& name, const Json& value) {
  Append(members_, Dump(name) + ':' + value.Text());
  return *this;
}

JsonObject& JsonObject::Add(const JsonObject& other) {
  Append(members_, other.members_);
  return *this;
}

void PrintLine(const Json& value) {
  const std::string line = value.Text() + '\n';
  std::fwrite(line.data(), 1, line.size(), stdout);
}

Json TextOrNull(const std::string& text) {
  return text.empty() ? Json() : Json(text);
}

}  // namespace rasterkit::tool
