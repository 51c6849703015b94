#ifndef SOURCE_USER_PRECONDITIONS_COMOWNERSHIP_H
#define SOURCE_USER_PRECONDITIONS_COMOWNERSHIP_H

#include <windows.h>
// Both need windows.h first.
#include <objbase.h>
#include <oleauto.h>

namespace nQUENRA1400 {

// Initialises COM for the calling thread for the lifetime of the object. Declare it before every pointer,
// so that it ends after them. Does not change a thread that is initialised for another model.
class tComUse {
 public:
  explicit tComUse(COINIT model) noexcept : result_(CoInitializeEx(nullptr, model)) {}
  tComUse(const tComUse&) = delete;
  tComUse& operator=(const tComUse&) = delete;
  ~tComUse() {
    if (isThere()) {
      CoUninitialize();
    }
  }

  // A thread that used COM before succeeds as well, and needs CoUninitialize as well.
  [[nodiscard]] bool isThere() const noexcept { return SUCCEEDED(result_); }

 private:
  HRESULT result_;
};

// Owns one reference to an object.
template <class Interface>
class tComPointer {
 public:
  tComPointer() noexcept = default;
  tComPointer(tComPointer&& other) noexcept : object_(other.object_) { other.object_ = nullptr; }
  tComPointer& operator=(tComPointer&&) = delete;
  ~tComPointer() {
    if (object_ != nullptr) {
      object_->Release();
    }
  }

  [[nodiscard]] Interface* operator->() const noexcept { return object_; }
  [[nodiscard]] Interface* get() const noexcept { return object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

  // For a function that stores a reference. Call it once.
  [[nodiscard]] Interface** receive() noexcept { return &object_; }

 private:
  Interface* object_ = nullptr;
};

// A text for automation interfaces. Empty if memory is short.
class tAutomationText {
 public:
  explicit tAutomationText(const OLECHAR* text) noexcept : text_(SysAllocString(text)) {}
  tAutomationText(const tAutomationText&) = delete;
  tAutomationText& operator=(const tAutomationText&) = delete;
  ~tAutomationText() { SysFreeString(text_); }

  [[nodiscard]] BSTR get() const noexcept { return text_; }
  explicit operator bool() const noexcept { return text_ != nullptr; }

 private:
  BSTR text_;
};

// Owns a value of any type, with its content.
class tAutomationValue {
 public:
  tAutomationValue() noexcept { VariantInit(&value_); }
  tAutomationValue(const tAutomationValue&) = delete;
  tAutomationValue& operator=(const tAutomationValue&) = delete;
  ~tAutomationValue() { VariantClear(&value_); }

  // For a function that stores a value.
  [[nodiscard]] VARIANT* receive() noexcept { return &value_; }

  // True if the value is that number, as a signed or unsigned 32-bit number.
  [[nodiscard]] bool isNumber(LONG number) const noexcept {
    return (V_VT(&value_) == VT_I4 && V_I4(&value_) == number) ||
           (V_VT(&value_) == VT_UI4 && V_UI4(&value_) == static_cast<ULONG>(number));
  }

 private:
  VARIANT value_;
};

}  // namespace nQUENRA1400

#endif
