// Intrusive reference counting: `PtrInterface` is the root class of everything that is shared,
// `Ptr` holds it. A pointer starts out null; the last one frees the object.
#pragma once

#include <atomic>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <type_traits>
#include <utility>

#include "Rex/Pool.h"

namespace Rex {

// Process-wide switches of reference counting.
struct VFPtrInterface {
   // Counts are plain unless this is set before the first object is made. The agent never sets it.
   static inline bool threadSafePointers_ = false;
};

class PtrInterface {
 public:
   PtrInterface() = default;
   PtrInterface(const PtrInterface&) = delete;
   PtrInterface& operator=(const PtrInterface&) = delete;
   virtual ~PtrInterface() = default;

   void newRef() const noexcept {
      if (VFPtrInterface::threadSafePointers_) [[unlikely]] {
         std::atomic_ref(references_).fetch_add(1, std::memory_order_relaxed);
      } else {
         ++references_;
      }
   }

   void deleteRef() const noexcept {
      if (VFPtrInterface::threadSafePointers_) [[unlikely]] {
         if (std::atomic_ref(references_).fetch_sub(1, std::memory_order_acq_rel) == 1) onZero();
      } else if (--references_ == 0) {
         onZero();
      }
   }

   uint32_t references() const noexcept { return references_; }

   // Objects come and go with frames and neighbours, so their memory is recycled.
   static void* operator new(std::size_t size) { return Pool::allocate(size); }
   static void operator delete(void* memory, std::size_t size) { Pool::release(memory, size); }

 protected:
   // Called when the last reference goes. A type with a pool of its own takes the object back here.
   virtual void onZero() const { delete this; }

   // An object is born with one reference, which `make` adopts, so that a constructor may hand
   // out pointers to the object under construction.
   mutable uint32_t references_ = 1;
};

template <class T>
class Ptr {
 public:
   using element_type = T;

   Ptr() = default;
   Ptr(std::nullptr_t) {}              // NOLINT(google-explicit-constructor)
   Ptr(T* object) : object_(object) {  // NOLINT(google-explicit-constructor)
      if (object_) object_->newRef();
   }
   Ptr(const Ptr& other) : Ptr(other.object_) {}
   Ptr(Ptr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
   template <class U>
   requires std::is_convertible_v<U*, T*> Ptr(const Ptr<U>& other)
       : Ptr(other.get()) {}  // NOLINT(google-explicit-constructor)
   template <class U>
   requires std::is_convertible_v<U*, T*> Ptr(Ptr<U>&& other)
   noexcept : object_(other.release()) {}  // NOLINT
   ~Ptr() {
      if (object_) object_->deleteRef();
   }

   Ptr& operator=(const Ptr& other) {
      Ptr(other).swap(*this);
      return *this;
   }
   Ptr& operator=(Ptr&& other) noexcept {
      Ptr(std::move(other)).swap(*this);
      return *this;
   }

   // Takes over the reference that the object was born with.
   static Ptr adopt(T* object) noexcept {
      Ptr p;
      p.object_ = object;
      return p;
   }
   // Gives the reference up without counting it down.
   T* release() noexcept { return std::exchange(object_, nullptr); }
   void swap(Ptr& other) noexcept { std::swap(object_, other.object_); }

   T* get() const noexcept { return object_; }
   T* operator->() const noexcept { return object_; }
   T& operator*() const noexcept { return *object_; }
   explicit operator bool() const noexcept { return object_ != nullptr; }

   friend bool operator==(const Ptr& a, const Ptr& b) noexcept { return a.object_ == b.object_; }
   friend bool operator==(const Ptr& a, std::nullptr_t) noexcept { return !a.object_; }

 private:
   T* object_ = nullptr;
};

// A read-only view, whether or not `T` is one already.
template <class T>
using PtrToConst = Ptr<T const>;

// Makes an object and returns the first pointer to it.
template <class T, class... Args>
Ptr<T> make(Args&&... args) {
   return Ptr<T>::adopt(new T(std::forward<Args>(args)...));
}

// The object as a `T`, or null if it is none.
template <class T, class U>
Ptr<T> dynamicPtr(const Ptr<U>& p) {
   return Ptr<T>(dynamic_cast<T*>(p.get()));
}

}  // namespace Rex

template <class T>
struct std::hash<Rex::Ptr<T>> {
   std::size_t operator()(const Rex::Ptr<T>& p) const noexcept { return std::hash<T*>()(p.get()); }
};
