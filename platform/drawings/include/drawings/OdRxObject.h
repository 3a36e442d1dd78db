// Reference-counted objects, their run-time classes and smart pointers.
#pragma once

#include <atomic>
#include <utility>

#include "drawings/OdString.h"

class OdRxObject;

// Run-time class: name, parent and factory. Instances live for the whole program
// (function-local statics built on first use, so nothing runs at static init).
class OdRxClass {
public:
  using Factory = OdRxObject* (*)();
  OdRxClass(const wchar_t* name, const OdRxClass* parent, const wchar_t* dxfName, Factory f)
      : m_name(name), m_parent(parent), m_dxfName(dxfName), m_factory(f) {}
  const OdString& name() const { return m_name; }
  const OdString& dxfName() const { return m_dxfName; }
  const OdRxClass* myParent() const { return m_parent; }
  bool isDerivedFrom(const OdRxClass* other) const {
    for (const OdRxClass* c = this; c; c = c->m_parent)
      if (c == other) return true;
    return false;
  }
  OdRxObject* create() const { return m_factory ? m_factory() : nullptr; }

private:
  OdString m_name;
  const OdRxClass* m_parent;
  OdString m_dxfName;
  Factory m_factory;
};

class OdRxObject {
public:
  virtual ~OdRxObject() = default;
  static const OdRxClass* desc();
  virtual const OdRxClass* isA() const { return desc(); }
  bool isKindOf(const OdRxClass* c) const { return isA()->isDerivedFrom(c); }

  void addRef() const { ++m_refs; }
  void release() const {
    if (--m_refs == 0) delete this;
  }
  long numRefs() const { return m_refs; }

protected:
  OdRxObject() = default;
  OdRxObject(const OdRxObject&) : m_refs(0) {}
  OdRxObject& operator=(const OdRxObject&) { return *this; }

private:
  mutable long m_refs = 0;  // single UI thread: no atomics needed
};

// Intrusive smart pointer. Holding one keeps the object alive; an object that belongs
// to a database is also held by the database.
template <class T>
class OdSmartPtr {
public:
  OdSmartPtr() = default;
  OdSmartPtr(std::nullptr_t) {}
  OdSmartPtr(T* p) : m_p(p) {
    if (m_p) m_p->addRef();
  }
  OdSmartPtr(const OdSmartPtr& o) : OdSmartPtr(o.m_p) {}
  OdSmartPtr(OdSmartPtr&& o) noexcept : m_p(std::exchange(o.m_p, nullptr)) {}
  template <class U>
  OdSmartPtr(const OdSmartPtr<U>& o) : OdSmartPtr(static_cast<T*>(o.get())) {}
  ~OdSmartPtr() {
    if (m_p) m_p->release();
  }
  OdSmartPtr& operator=(OdSmartPtr o) {
    std::swap(m_p, o.m_p);
    return *this;
  }
  // Checked cast: null when the object is not of class T.
  template <class U>
  static OdSmartPtr cast(const OdSmartPtr<U>& o) {
    return OdSmartPtr(o.get() && o->isKindOf(T::desc()) ? static_cast<T*>(o.get()) : nullptr);
  }
  static OdSmartPtr cast(const OdRxObject* o) {
    return OdSmartPtr(o && o->isKindOf(T::desc()) ? static_cast<T*>(const_cast<OdRxObject*>(o)) : nullptr);
  }
  T* get() const { return m_p; }
  T* operator->() const { return m_p; }
  T& operator*() const { return *m_p; }
  bool isNull() const { return m_p == nullptr; }
  explicit operator bool() const { return m_p != nullptr; }
  friend bool operator==(const OdSmartPtr& a, const OdSmartPtr& b) { return a.m_p == b.m_p; }

private:
  T* m_p = nullptr;
};

// Declares desc(), isA(), cast() and createObject() for a class.
#define ODRX_DECLARE_MEMBERS(Class)                                   \
public:                                                               \
  static const OdRxClass* desc();                                     \
  const OdRxClass* isA() const override { return desc(); }            \
  static OdSmartPtr<Class> cast(const OdRxObject* p) {                \
    return OdSmartPtr<Class>::cast(p);                                \
  }                                                                   \
  static OdSmartPtr<Class> createObject();

// Defines them; DxfName is the class's DXF entity/object name (L"" when none).
#define ODRX_DEFINE_MEMBERS(Class, Parent, DxfName)                                           \
  const OdRxClass* Class::desc() {                                                            \
    static const OdRxClass cls(L## #Class, Parent::desc(), DxfName,                           \
                               []() -> OdRxObject* { return new Class(); });                  \
    return &cls;                                                                              \
  }                                                                                           \
  OdSmartPtr<Class> Class::createObject() { return OdSmartPtr<Class>(new Class()); }
