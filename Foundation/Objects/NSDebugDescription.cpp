#include "Foundation/NSDebugDescription.h"

#include <array>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include <Foundation/NSArray.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSOrderedSet.h>
#include <Foundation/NSSet.h>
#include <Foundation/NSString.h>

namespace {

constexpr std::size_t longestText = 1000;

std::string shortened(std::u16string_view text) {
  std::string result = NSUTF8FromUnits(text.substr(0, longestText));
  if (text.size() > longestText) result += "…";
  return result;
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      result += {'\\', c};
    } else if (c == '\n') {
      result += "\\n";
    } else if (c == '\t') {
      result += "\\t";
    } else if (static_cast<unsigned char>(c) < 0x20) {
      std::array<char, 8> octal;
      std::snprintf(octal.data(), octal.size(), "\\%03o", static_cast<unsigned>(c));
      result += octal.data();
    } else {
      result += c;
    }
  }
  return result + '"';
}

std::string describe(const NSObject& object) {
  if (const auto* const string = dynamic_cast<const NSString*>(&object)) {
    return quoted(shortened(string->view()));
  }
  const auto text = object.description();
  return text ? shortened(text->view()) : "nil";
}

// Gives false for what holds no elements that can be walked over.
bool listElements(const NSObject& object, std::vector<const NSObject*>& list) {
  const auto listAll = [&](const auto* collection) {
    if (collection == nullptr) return false;
    for (const auto& element : *collection) list.push_back(element.get());
    return true;
  };
  if (const auto* const dictionary = dynamic_cast<const NSDictionary*>(&object)) {
    for (const auto& [key, value] : *dictionary) list.insert(list.end(), {key.get(), value.get()});
    return true;
  }
  return listAll(dynamic_cast<const NSArray*>(&object)) ||
         listAll(dynamic_cast<const NSSet*>(&object)) ||
         listAll(dynamic_cast<const NSOrderedSet*>(&object));
}

}  // namespace

const char* NSDebugDescription(const NSObject* object) noexcept {
  if (object == nullptr) return "nil";
  thread_local std::string text;
  try {
    text = describe(*object);
  } catch (const std::exception& exception) {
    text = exception.what();
  } catch (...) {
    text = "(raised)";
  }
  return text.c_str();  // NOLINT(*-cplusplus.InnerPointer): it lives as long as the thread.
}

const NSObject* const* NSDebugElements(const NSObject* object) noexcept {
  if (object == nullptr) return nullptr;
  thread_local std::vector<const NSObject*> list;
  list.clear();
  try {
    if (!listElements(*object, list)) return nullptr;
    list.push_back(nullptr);
    return list.data();
  } catch (...) {
    return nullptr;
  }
}
