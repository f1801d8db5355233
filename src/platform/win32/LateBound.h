#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/win32/Windows.h"

namespace talu {

/// An automation value that cleans up after itself.
class Variant {
 public:
  Variant() { VariantInit(&value_); }
  Variant(const std::string& text);
  Variant(const char* text) : Variant(std::string(text)) {}
  Variant(std::int32_t number);
  ~Variant() { VariantClear(&value_); }
  Variant(const Variant& other) : Variant() {
    VariantCopy(&value_, const_cast<VARIANT*>(&other.value_));
  }
  Variant& operator=(const Variant&) = delete;

  /// An object, kept alive as long as the value.
  static Variant Object(IDispatch* object);
  /// An omitted optional argument.
  static Variant Missing();

  /// The value as a number or a text. Raises 13 when it is neither that nor convertible.
  std::int32_t Number() const;
  std::string Text() const;
  /// The object; nullptr when the value is not an object. The value keeps ownership.
  IDispatch* AsObject() const;

  VARIANT* Raw() { return &value_; }
  const VARIANT* Raw() const { return &value_; }

 private:
  VARIANT value_;
};

/// An automation object whose members are known only by name. Each failure raises the object's own
/// error: its number, description and source. Errors of the automation run-time's own range
/// (0x800Axxxx) are raised with their short number, such as 3705.
class LateBound {
 public:
  /// Makes an object by its class name, such as "Scripting.Dictionary". Raises 429.
  explicit LateBound(const char* className);
  /// Takes the object from a value. Raises 91 when it has none.
  explicit LateBound(const Variant& object);

  Variant Get(const char* member, const std::vector<Variant>& arguments = {}) const;
  void Put(const char* member, const Variant& value);
  /// Sets an object property by reference.
  void PutRef(const char* member, const LateBound& object);
  Variant Call(const char* member, const std::vector<Variant>& arguments = {}) const;
  /// The texts of a collection, in its own order. Raises 438 when it cannot be enumerated.
  std::vector<std::string> Texts() const;

 private:
  struct Release {
    void operator()(IUnknown* object) const { object->Release(); }
  };

  DISPID Find(const char* member) const;
  Variant Invoke(DISPID member, WORD kind, const std::vector<const Variant*>& arguments) const;

  std::unique_ptr<IDispatch, Release> object_;
};

}  // namespace talu
