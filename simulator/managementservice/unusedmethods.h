// The methods of the management interfaces that the simulated machine does not implement.
#ifndef SIMULATOR_MANAGEMENTSERVICE_UNUSEDMETHODS_H
#define SIMULATOR_MANAGEMENTSERVICE_UNUSEDMETHODS_H

#include <windows.h>
// Requires windows.h.
#include <wbemcli.h>

namespace nSimulator {

class tUnusedServices : public IWbemServices {
 public:
  HRESULT STDMETHODCALLTYPE OpenNamespace(BSTR, LONG, IWbemContext*, IWbemServices**,
                                          IWbemCallResult**) override {
    return unused("IWbemServices::OpenNamespace");
  }
  HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink*) override {
    return unused("IWbemServices::CancelAsyncCall");
  }
  HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink**) override {
    return unused("IWbemServices::QueryObjectSink");
  }
  HRESULT STDMETHODCALLTYPE GetObject(BSTR, LONG, IWbemContext*, IWbemClassObject**,
                                      IWbemCallResult**) override {
    return unused("IWbemServices::GetObject");
  }
  HRESULT STDMETHODCALLTYPE GetObjectAsync(BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
    return unused("IWbemServices::GetObjectAsync");
  }
  HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*,
                                     IWbemCallResult**) override {
    return unused("IWbemServices::PutClass");
  }
  HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*,
                                          IWbemObjectSink*) override {
    return unused("IWbemServices::PutClassAsync");
  }
  HRESULT STDMETHODCALLTYPE DeleteClass(BSTR, LONG, IWbemContext*, IWbemCallResult**) override {
    return unused("IWbemServices::DeleteClass");
  }
  HRESULT STDMETHODCALLTYPE DeleteClassAsync(BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
    return unused("IWbemServices::DeleteClassAsync");
  }
  HRESULT STDMETHODCALLTYPE CreateClassEnum(BSTR, LONG, IWbemContext*,
                                            IEnumWbemClassObject**) override {
    return unused("IWbemServices::CreateClassEnum");
  }
  HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(BSTR, LONG, IWbemContext*,
                                                 IWbemObjectSink*) override {
    return unused("IWbemServices::CreateClassEnumAsync");
  }
  HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject*, LONG, IWbemContext*,
                                        IWbemCallResult**) override {
    return unused("IWbemServices::PutInstance");
  }
  HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*,
                                             IWbemObjectSink*) override {
    return unused("IWbemServices::PutInstanceAsync");
  }
  HRESULT STDMETHODCALLTYPE DeleteInstance(BSTR, LONG, IWbemContext*, IWbemCallResult**) override {
    return unused("IWbemServices::DeleteInstance");
  }
  HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(BSTR, LONG, IWbemContext*,
                                                IWbemObjectSink*) override {
    return unused("IWbemServices::DeleteInstanceAsync");
  }
  HRESULT STDMETHODCALLTYPE CreateInstanceEnum(BSTR, LONG, IWbemContext*,
                                               IEnumWbemClassObject**) override {
    return unused("IWbemServices::CreateInstanceEnum");
  }
  HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(BSTR, LONG, IWbemContext*,
                                                    IWbemObjectSink*) override {
    return unused("IWbemServices::CreateInstanceEnumAsync");
  }
  HRESULT STDMETHODCALLTYPE ExecQueryAsync(BSTR, BSTR, LONG, IWbemContext*,
                                           IWbemObjectSink*) override {
    return unused("IWbemServices::ExecQueryAsync");
  }
  HRESULT STDMETHODCALLTYPE ExecNotificationQuery(BSTR, BSTR, LONG, IWbemContext*,
                                                  IEnumWbemClassObject**) override {
    return unused("IWbemServices::ExecNotificationQuery");
  }
  HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(BSTR, BSTR, LONG, IWbemContext*,
                                                       IWbemObjectSink*) override {
    return unused("IWbemServices::ExecNotificationQueryAsync");
  }
  HRESULT STDMETHODCALLTYPE ExecMethod(BSTR, BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                       IWbemClassObject**, IWbemCallResult**) override {
    return unused("IWbemServices::ExecMethod");
  }
  HRESULT STDMETHODCALLTYPE ExecMethodAsync(BSTR, BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                            IWbemObjectSink*) override {
    return unused("IWbemServices::ExecMethodAsync");
  }

 protected:
  tUnusedServices() = default;
  ~tUnusedServices() = default;
  // The result of a method that is not implemented.
  [[nodiscard]] virtual HRESULT unused(const char* method) noexcept = 0;
};

class tUnusedVolumes : public IEnumWbemClassObject {
 public:
  HRESULT STDMETHODCALLTYPE Reset() override { return unused("IEnumWbemClassObject::Reset"); }
  HRESULT STDMETHODCALLTYPE NextAsync(ULONG, IWbemObjectSink*) override {
    return unused("IEnumWbemClassObject::NextAsync");
  }
  HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject**) override {
    return unused("IEnumWbemClassObject::Clone");
  }
  HRESULT STDMETHODCALLTYPE Skip(LONG, ULONG) override {
    return unused("IEnumWbemClassObject::Skip");
  }

 protected:
  tUnusedVolumes() = default;
  ~tUnusedVolumes() = default;
  // The result of a method that is not implemented.
  [[nodiscard]] virtual HRESULT unused(const char* method) noexcept = 0;
};

class tUnusedVolume : public IWbemClassObject {
 public:
  HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet**) override {
    return unused("IWbemClassObject::GetQualifierSet");
  }
  HRESULT STDMETHODCALLTYPE Put(LPCWSTR, LONG, VARIANT*, CIMTYPE) override {
    return unused("IWbemClassObject::Put");
  }
  HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return unused("IWbemClassObject::Delete"); }
  HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR, LONG, VARIANT*, SAFEARRAY**) override {
    return unused("IWbemClassObject::GetNames");
  }
  HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG) override {
    return unused("IWbemClassObject::BeginEnumeration");
  }
  HRESULT STDMETHODCALLTYPE Next(LONG, BSTR*, VARIANT*, CIMTYPE*, LONG*) override {
    return unused("IWbemClassObject::Next");
  }
  HRESULT STDMETHODCALLTYPE EndEnumeration() override {
    return unused("IWbemClassObject::EndEnumeration");
  }
  HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
    return unused("IWbemClassObject::GetPropertyQualifierSet");
  }
  HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject**) override {
    return unused("IWbemClassObject::Clone");
  }
  HRESULT STDMETHODCALLTYPE GetObjectText(LONG, BSTR*) override {
    return unused("IWbemClassObject::GetObjectText");
  }
  HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG, IWbemClassObject**) override {
    return unused("IWbemClassObject::SpawnDerivedClass");
  }
  HRESULT STDMETHODCALLTYPE SpawnInstance(LONG, IWbemClassObject**) override {
    return unused("IWbemClassObject::SpawnInstance");
  }
  HRESULT STDMETHODCALLTYPE CompareTo(LONG, IWbemClassObject*) override {
    return unused("IWbemClassObject::CompareTo");
  }
  HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR, BSTR*) override {
    return unused("IWbemClassObject::GetPropertyOrigin");
  }
  HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR) override {
    return unused("IWbemClassObject::InheritsFrom");
  }
  HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR, LONG, IWbemClassObject**,
                                      IWbemClassObject**) override {
    return unused("IWbemClassObject::GetMethod");
  }
  HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR, LONG, IWbemClassObject*,
                                      IWbemClassObject*) override {
    return unused("IWbemClassObject::PutMethod");
  }
  HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR) override {
    return unused("IWbemClassObject::DeleteMethod");
  }
  HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG) override {
    return unused("IWbemClassObject::BeginMethodEnumeration");
  }
  HRESULT STDMETHODCALLTYPE NextMethod(LONG, BSTR*, IWbemClassObject**,
                                       IWbemClassObject**) override {
    return unused("IWbemClassObject::NextMethod");
  }
  HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override {
    return unused("IWbemClassObject::EndMethodEnumeration");
  }
  HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
    return unused("IWbemClassObject::GetMethodQualifierSet");
  }
  HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR, BSTR*) override {
    return unused("IWbemClassObject::GetMethodOrigin");
  }

 protected:
  tUnusedVolume() = default;
  ~tUnusedVolume() = default;
  // The result of a method that is not implemented.
  [[nodiscard]] virtual HRESULT unused(const char* method) noexcept = 0;
};

}  // namespace nSimulator

#endif
