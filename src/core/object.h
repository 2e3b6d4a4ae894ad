// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <type_traits>

/// What every shared object offers: a count of its owners.
///
/// Copying an `Irefcountable` copies nothing. It has no virtual destructor; objects are destroyed
/// through `object`.
class Irefcountable {
  public:
    Irefcountable() = default;
    Irefcountable(const Irefcountable&) {}
    Irefcountable& operator=(const Irefcountable&) { return *this; }

    virtual int addref() = 0;
    virtual int release() = 0;
    virtual void* queryInterface(unsigned long long id, void* out) = 0;

  protected:
    ~Irefcountable() = default;
};

/// Base of everything that has several owners: textures, programs, settings, widgets.
///
/// The count is a plain integer. At any moment one thread alone takes and drops references to a
/// given object; the object's owner says which.
class object : public Irefcountable {
  public:
    /// Starts unowned, with a count of 0.
    object() = default;

    /// A copy starts with the count of its source, and assignment copies it too.
    object(const object& other) : Irefcountable(other), references_(other.references_) {}
    object& operator=(const object& other);

    /// Adds an owner; returns the new count.
    int addref() override { return ++references_; }

    /// Drops an owner; returns the new count. At 0 or below the object destroys itself and the
    /// result is 0.
    int release() override;

    /// There are no interfaces to ask for: always null.
    void* queryInterface(unsigned long long id, void* out) override;

    virtual ~object() = default;

    /// The number of owners at this moment.
    int references() const { return references_; }

    /// Memory comes zero-filled and is returned with `free`. A failed allocation throws
    /// `std::bad_alloc`.
    static void* operator new(std::size_t size);
    static void operator delete(void* memory);

  private:
    int references_ = 0;
};

/// How many references a converting construction from `object_ref<From>` to `object_ref<To>` takes.
/// 0 means that there is no such conversion. Specialised beside the classes concerned.
template <class To, class From>
inline constexpr int conversion_references = 0;

/// One owner's hold on an `object`; may be null.
template <class T>
class object_ref {
  public:
    object_ref() = default;

    /// Takes one reference to `p`.
    object_ref(T* p) : object_(p) { take(1); }
    object_ref(const object_ref& other) : object_(other.object_) { take(1); }

    template <class U>
    requires(!std::is_same_v<T, U> && conversion_references<T, U> > 0)
        object_ref(const object_ref<U>& other)
        : object_(static_cast<U*>(other)) {
        take(conversion_references<T, U>);
    }

    ~object_ref() {
        if (object_) object_->release();
        object_ = nullptr;
    }

    /// Releases the held object first and takes `p` afterwards, so `p` must not be an object that
    /// this reference alone keeps alive. Returns the new count of `p`, 0 for null.
    int operator=(T* p) {  // NOLINT: the count is what callers want, as with addref
        if (object_) object_->release();
        object_ = p;
        return p ? p->addref() : 0;
    }
    int operator=(object_ref& other) {  // NOLINT
        return *this = other.object_;
    }

    T* operator->() const { return object_; }
    operator T*() const { return object_; }
    bool IsNull() const { return object_ == nullptr; }

  private:
    void take(int references) {
        for (int i = 0; object_ && i < references; ++i)
            object_->addref();
    }

    T* object_ = nullptr;
};
