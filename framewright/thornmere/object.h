// The object contract. Everything with identity is a managed object: on the heap, reference counted, with a
// run-time class object, made in two phases (New, then an initialiser named I plus the class's short name)
// and cloned by one fixed protocol.
//
// A class says its name, parent and version once, in the line before it:
//
//     SM_CLASS(SmMedia, SmObject, 0);
//     class FRAMEWRIGHT_EXPORT SmMedia : public SmManaged<SmMedia> {
//         friend SmManaged<SmMedia>;
//       public:
//         void Free() override;                 // gives resources back, ends by calling the parent's
//       protected:
//         SmMedia();                            // plain defaults only, never fails
//         ~SmMedia() override;                  // ends the object; Free has run
//         void CloneFrom(SmMedia const& other);  // copies state, the parent's CloneFrom first
//     };
//     SM_DEFINE_CLASS(SmMedia);                 // in its source file
//
// and SmManaged supplies New, Class, Clone and the other mechanical members. Objects are moved as bytes by
// ImplementBecome: members must survive that (ScVector does, a container that points into itself does not).
//
// An object, with all that it owns, is used by one thread at a time; counts are plain integers.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/export.h"

class ScLocalDependentStorage;
class ScMC_;
class ScProgressIndicator;
class ScReplaceObjectCallback;
class SmObject;
class SmStream;
struct StReferenceCountableFunctionTable;

/// Why an object has changed; the dependency mechanism hands it on.
struct StReasons {
    std::uint32_t reasons = 0;
};

/// The root of all managed objects: the table of virtual operations and the reference count.
class FRAMEWRIGHT_EXPORT SmObjectBase {
  public:
    SmObjectBase(SmObjectBase const&) = delete;
    SmObjectBase& operator=(SmObjectBase const&) = delete;

    // The virtual operations, in slot order; a class's own come behind these.
    virtual ~SmObjectBase();
    /// A copy with a count of 1. An abstract class throws SkAbstractClassErrC().
    virtual void* ImplementClone() const;
    /// Takes on the state of `other`, an object of the same class, in place: pointers to this object stay
    /// valid and its reference count survives. `other` is left as it was. On an exception the object is as
    /// before.
    virtual void ImplementBecome(void* other);
    virtual ScMC_* GetClass() const;
    virtual char const* GetClassName() const;
    virtual unsigned long GetClassSelector() const;
    virtual unsigned int GetClassSize() const;
    virtual int GetClassVersion() const;
    virtual bool IsMemberOf(ScMC_* cls) const;
    /// Called when the count reaches zero: Free, then destruction. Returns true. References that Free takes
    /// and drops again do not end the object a second time.
    virtual bool DeleteThis();
    /// Gives back what the object owns; does not throw. Copes with every field at its constructor default,
    /// and may run on an object that is used again afterwards.
    virtual void Free();
    /// Replaces shared sub-objects by private copies.
    virtual void DeepenClone();
    /// Clone and DeepenClone, with progress.
    virtual SmObject* MakeFullClone(ScProgressIndicator* progress) const;
    /// Tells dependents that the object has changed; this library keeps none.
    virtual void Modified(StReasons const& reasons, void* data);
    virtual bool ProviderChanged(SmObject* provider, StReasons const& reasons, void* data);
    virtual ScLocalDependentStorage* GetDependencyStorage();
    virtual bool GetDeepSize(unsigned int& size);
    virtual unsigned int MemoryIsLow(unsigned int amount);
    virtual bool ReplaceObject(SmObject* old, SmObject* replacement, ScReplaceObjectCallback& callback);

    void AddReference() const { ++mReferenceCount; }
    /// Drops one reference; the last calls DeleteThis.
    void ReleaseReference() const;
    long ReferenceCount() const { return mReferenceCount; }

    /// ImplementClone, then DeepenClone on the copy.
    SmObjectBase* DeepClone() const;

    static ScMC_* Class();
    /// How a type-erased reference counts any object of this kind.
    static StReferenceCountableFunctionTable const* GetReferenceCountableFunctionTable();

    /// Memory of the framework's allocator, or null when it refuses (`new` then gives null).
    static void* operator new(std::size_t size) noexcept;
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* object, std::size_t size);
    static void operator delete(void*, void*) {}

  protected:
    SmObjectBase() = default;
    void CloneFrom(SmObjectBase const&) {}

    /// What ImplementBecome needs of a class.
    struct StBecomeParts {
        std::size_t size;
        void (*construct)(void* place);
        void (*cloneFrom)(void* object, void const* other);
        void (*destroy)(void* object);  ///< the destructor, without giving the memory back
    };
    /// The body of ImplementBecome.
    void Become(void const* other, StBecomeParts const& parts);

  private:
    mutable std::int32_t mReferenceCount = 1;
};

/// The run-time record of a class, one instance a class. It enters the list of all classes when it is built
/// and leaves it when it is destroyed; both are safe at any moment of loading and unloading.
class FRAMEWRIGHT_EXPORT ScMC_ {
  public:
    ScMC_(char const* name, ScMC_* parent, unsigned int size, unsigned char version);
    ScMC_(ScMC_ const&) = delete;
    ScMC_& operator=(ScMC_ const&) = delete;
    virtual ~ScMC_();
    /// A new object of this class with a count of 1, null when memory is refused. An abstract class throws
    /// SkAbstractClassErrC().
    virtual void* New() const;

    /// Makes an instance of the class of that name or selector, whatever class this object stands for. An
    /// unknown one throws SkSymbolNotFoundErrC(). Of template instantiations that share a name the first that
    /// was created is found.
    void* NewByClassName(char const* name) const;
    void* NewByClassSelector(unsigned long selector) const;

    char const* Name() const { return mName; }
    ScMC_* Parent() const { return mParent; }
    unsigned int Size() const { return mSize; }
    unsigned long Selector() const { return mSelector; }
    unsigned char Version() const { return mVersion; }
    /// How many instances New, ImplementClone and ImplementBecome have produced.
    long InstanceCount() const { return mInstances.load(std::memory_order_relaxed); }
    void CountInstance() { mInstances.fetch_add(1, std::memory_order_relaxed); }
    /// True when this class is `cls` or derives from it.
    bool DerivesFrom(ScMC_ const* cls) const;

    /// All class objects that exist, in the order of their creation: start with null, ends with null.
    static ScMC_* Next(ScMC_ const* previous);
    /// Takes the class off that list, as its destruction would; look-ups no longer find it.
    void LeaveList();

  private:
    char const* mName;
    unsigned int mSize;
    unsigned long mSelector;  ///< a running number, unique in this process
    unsigned char mVersion;
    std::atomic<std::int32_t> mInstances{0};  ///< objects of one class may be made on several threads
    ScMC_* mParent;
    ScMC_* mNextInList = nullptr;
};

/// What SM_CLASS says of class X: its parent, name, version, and the accessor of its class object.
template <class X>
struct StClassFacts;

/// The class object of X; `X__Class` names it.
template <class X>
class ScClassObject : public ScMC_ {
  public:
    using ScMC_::ScMC_;
    void* New() const override { return X::New(); }
};

/// The mechanical members of managed class X.
template <class X>
class FRAMEWRIGHT_EXPORT SmManaged : public StClassFacts<X>::ParentClass {
    using Facts = StClassFacts<X>;
    using ParentClass = typename Facts::ParentClass;
    static constexpr bool kAbstract = Facts::kAbstract;

  public:
    /// A new object with a count of 1 and safe defaults, valid only for its initialiser and for release.
    /// Null when memory is refused; an abstract class throws SkAbstractClassErrC().
    static X* New();
    static ScMC_* Class() { return Facts::Object(); }
    static void* NewByClassName(char const* name) { return Class()->NewByClassName(name); }
    static void* NewByClassSelector(unsigned long selector) { return Class()->NewByClassSelector(selector); }
    static char const* ClassName() { return Class()->Name(); }
    static unsigned long ClassSelector() { return Class()->Selector(); }
    static unsigned int ClassSize() { return Class()->Size(); }
    static unsigned char ClassVersion() { return Class()->Version(); }

    /// Copies; the caller owns the one reference of the result.
    X* Clone() const { return static_cast<X*>(this->ImplementClone()); }
    X* DeepClone() const { return static_cast<X*>(SmObjectBase::DeepClone()); }
    X* FullClone(ScProgressIndicator* progress) const {
        return static_cast<X*>(this->MakeFullClone(progress));
    }

    void* ImplementClone() const override;
    void ImplementBecome(void* other) override;
    ScMC_* GetClass() const override { return Class(); }
    char const* GetClassName() const override { return ClassName(); }
    unsigned long GetClassSelector() const override { return ClassSelector(); }
    unsigned int GetClassSize() const override { return ClassSize(); }
    int GetClassVersion() const override { return ClassVersion(); }
    bool IsMemberOf(ScMC_* cls) const override { return cls == Class() || ParentClass::IsMemberOf(cls); }

  protected:
    SmManaged() = default;
};

template <class X>
X* SmManaged<X>::New() {
    if constexpr (kAbstract || std::is_abstract_v<X>) {
        SrThrow(SkAbstractClassErrC(), nullptr);
    } else {
        X* object = new X;
        if (object) Class()->CountInstance();
        return object;
    }
}

template <class X>
void* SmManaged<X>::ImplementClone() const {
    if constexpr (kAbstract || std::is_abstract_v<X>) {
        SrThrow(SkAbstractClassErrC(), nullptr);
    } else {
        X* copy = New();
        SrThrowIfNIL(copy);
        try {
            copy->CloneFrom(static_cast<X const&>(*this));
        } catch (...) {
            copy->ReleaseReference();
            throw;
        }
        // Through the plain class, so that the caller may cast the result to any base in the chain.
        return copy;
    }
}

template <class X>
void SmManaged<X>::ImplementBecome([[maybe_unused]] void* other) {
    if constexpr (kAbstract || std::is_abstract_v<X>) {
        SrThrow(SkAbstractClassErrC(), nullptr);
    } else {
        this->Become(other, {sizeof(X), [](void* place) { new (place) X; },
                             [](void* object, void const* from) {
                                 static_cast<X*>(object)->CloneFrom(*static_cast<X const*>(from));
                             },
                             [](void* object) { static_cast<X*>(object)->X::~X(); }});
        Class()->CountInstance();
    }
}

/// The class object of a template instantiation, made when it is first asked for: a family of classes has no
/// one source file to make it in. It leaves the list of classes with the module that made it, but is not
/// destroyed: it owns nothing, and shut-down may ask for it after the statics that came into being during
/// service have gone.
template <class X>
ScMC_* SrClassObjectOnFirstUse() {
    using Facts = StClassFacts<X>;
    struct StEntry {
        ScMC_* cls;
        ~StEntry() { cls->LeaveList(); }
    };
    alignas(ScClassObject<X>) static unsigned char storage[sizeof(ScClassObject<X>)];
    static ScMC_* const object =
        new (storage) ScClassObject<X>(Facts::kName, Facts::ParentClass::Class(), sizeof(X), Facts::kVersion);
    static StEntry const entry{object};
    return entry.cls;
}

// `Abstract` says that New, ImplementClone and ImplementBecome throw; a class with pure operations is
// abstract without being told.
#define SM_CLASS_FACTS(X, Parent, ClassVersion, Abstract)       \
    class X;                                                    \
    using X##__Class = ScClassObject<X>;                        \
    template <>                                                 \
    struct FRAMEWRIGHT_EXPORT StClassFacts<X> {                 \
        using ParentClass = Parent;                             \
        static constexpr char const* kName = #X;                \
        static constexpr unsigned char kVersion = ClassVersion; \
        static constexpr bool kAbstract = Abstract;             \
        static ScMC_* Object();                                 \
    }

/// Declares managed class X below Parent; stands before the class, at global scope.
#define SM_CLASS(X, Parent, ClassVersion) SM_CLASS_FACTS(X, Parent, ClassVersion, false)
/// The same for a class that is only a base.
#define SM_ABSTRACT_CLASS(X, Parent, ClassVersion) SM_CLASS_FACTS(X, Parent, ClassVersion, true)

/// Defines the class object of X, once, in its source file.
#define SM_DEFINE_CLASS(X)                                                                             \
    static X##__Class g##X##ClassObject(StClassFacts<X>::kName, StClassFacts<X>::ParentClass::Class(), \
                                        sizeof(X), StClassFacts<X>::kVersion);                         \
    ScMC_* StClassFacts<X>::Object() {                                                                 \
        return &g##X##ClassObject;                                                                     \
    }                                                                                                  \
    static_assert(sizeof(X) > 0)

SM_ABSTRACT_CLASS(SmObject, SmObjectBase, 0);
/// The one direct derivation of the root that managed classes build on.
class FRAMEWRIGHT_EXPORT SmObject : public SmManaged<SmObject> {
    friend SmManaged<SmObject>;

  protected:
    SmObject() = default;
    ~SmObject() override;
    void CloneFrom(SmObject const& other) { SmObjectBase::CloneFrom(other); }
};

SM_ABSTRACT_CLASS(SmStorageObject, SmObject, 0);
/// The branch of objects that write themselves to a stream.
class FRAMEWRIGHT_EXPORT SmStorageObject : public SmManaged<SmStorageObject> {
    friend SmManaged<SmStorageObject>;

  public:
    /// Clones through the same protocol as all objects: the stream form holds no more than the state.
    SmObject* MakeFullClone(ScProgressIndicator* progress) const override;
    /// Writes the state, the parent's part first. Nothing at this level.
    virtual void WriteTo(SmStream* stream);
    virtual void ReadFrom(SmStream* stream);

  protected:
    SmStorageObject() = default;
    ~SmStorageObject() override;
    void CloneFrom(SmStorageObject const& other) { SmObject::CloneFrom(other); }
};
