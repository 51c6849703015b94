#ifndef SOURCE_USER_PRECONDITIONS_COMOWNERSHIP_H
#define SOURCE_USER_PRECONDITIONS_COMOWNERSHIP_H

#include <windows.h>
// Both need windows.h first.
#include <objbase.h>
#include <oleauto.h>

namespace nQUENRA1400 {

// COM as the calling thread uses it while the object lives. Declared before every pointer, so that
// it ends after them. A thread that is in another model already keeps that one, untouched.
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

  // A thread that had COM before is served as well, and has to be balanced as well.
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

  // Where a function puts the reference that it hands over. Once only.
  [[nodiscard]] Interface** receive() noexcept { return &object_; }

 private:
  Interface* object_ = nullptr;
};

// A text in the form that automation interfaces take. None when memory is short.
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

// A value of any type, with what it holds.
class tAutomationValue {
 public:
  tAutomationValue() noexcept { VariantInit(&value_); }
  tAutomationValue(const tAutomationValue&) = delete;
  tAutomationValue& operator=(const tAutomationValue&) = delete;
  ~tAutomationValue() { VariantClear(&value_); }

  // Where a function puts the value.
  [[nodiscard]] VARIANT* receive() noexcept { return &value_; }

  // True when it is a 32-bit number, of either sign, and that one.
  [[nodiscard]] bool isNumber(LONG number) const noexcept {
    return (V_VT(&value_) == VT_I4 && V_I4(&value_) == number) ||
           (V_VT(&value_) == VT_UI4 && V_UI4(&value_) == static_cast<ULONG>(number));
  }

 private:
  VARIANT value_;
};

}  // namespace nQUENRA1400

#endif
