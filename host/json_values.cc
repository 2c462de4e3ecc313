// SPDX-License-Identifier: MIT
#include "host/json_values.h"

#include <fmt/format.h>

#include <string>

#include "host/printable.h"

namespace stowra {

using ovrant::json::Document;
using ovrant::json::Value;
using ovrant::utils::ovrant_ustring;

Value MakeObject(Document& document) {
  Value value = document.MakeValue();
  value.SetObject();
  return value;
}

Value MakeArray(Document& document) {
  Value value = document.MakeValue();
  value.SetArray();
  return value;
}

Value MakeText(Document& document, const ovrant_ustring& text) {
  Value value = document.MakeValue();
  value.SetString(text);
  return value;
}

Value MakeInt(Document& document, int number) {
  Value value = document.MakeValue();
  value.SetInt(number);
  return value;
}

Value MakeSize(Document& document, std::size_t number) {
  Value value = document.MakeValue();
  value.SetUint64(number);
  return value;
}

Value MakeBool(Document& document, bool value) {
  Value made = document.MakeValue();
  made.SetBool(value);
  return made;
}

Value MakeFloat(Document& document, float number) {
  Value value = document.MakeValue();
  value.SetDouble(std::stod(fmt::format("{}", number)));
  return value;
}

std::string ToLine(Document& document) {
  ovrant_ustring text;
  document.ToString(text);
  return Printable(text.utf8()) + "\n";
}

}  // namespace stowra
