#include "framewright/thornmere/object.h"

#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "framewright/thornmere/progress.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/stream.h"
#include "framewright/thornmere/vector.h"
#include "thornmere/support.h"

// A small family: a base that owns a block and a counted object, and a class below it with a table.

SM_CLASS(SmOwner, SmObject, 3);
class SmOwner : public SmManaged<SmOwner> {
    friend SmManaged<SmOwner>;

  public:
    void IOwner(int value, SmObject* shared) {
        mBlock = static_cast<int*>(SrAllocatePointer(sizeof(int)));
        SrThrowIfNIL(mBlock);
        *mBlock = value;
        mShared = shared;
    }
    void Free() override {
        ++sFreed;
        sCountInFree = ReferenceCount();
        SrDeallocateIfPointer(mBlock, sizeof(int));
        mShared = {};
        if (refersToItselfInFree) StRef<SmOwner>(this).Get();
        SmObject::Free();
    }
    void DeepenClone() override {
        ++sDeepened;
        if (refusesToDeepen) SrThrow(-32768, nullptr);
    }

    int Value() const { return mBlock ? *mBlock : -1; }
    SmObject* Shared() const { return mShared.Get(); }

    bool refusesToBeCopied = false;
    bool refusesToDeepen = false;
    bool refersToItselfInFree = false;

    static inline int sFreed = 0, sDestroyed = 0, sDeepened = 0;
    static inline long sCountInFree = 0;

  protected:
    SmOwner() = default;
    ~SmOwner() override { ++sDestroyed; }
    void CloneFrom(SmOwner const& other) {
        SmObject::CloneFrom(other);
        refersToItselfInFree = other.refersToItselfInFree;
        IOwner(other.Value(), other.Shared());
        if (other.refusesToBeCopied) SrThrow(SkBadFileFormatErrC(), SkBadFileFormatMsgC());
    }

  private:
    int* mBlock = nullptr;
    StRef<SmObject> mShared;
};
SM_DEFINE_CLASS(SmOwner);

SM_CLASS(SmTableOwner, SmOwner, 0);
class SmTableOwner : public SmManaged<SmTableOwner> {
    friend SmManaged<SmTableOwner>;

  public:
    ScVector<int> table;

  protected:
    void CloneFrom(SmTableOwner const& other) {
        SmOwner::CloneFrom(other);
        table = other.table;
    }
};
SM_DEFINE_CLASS(SmTableOwner);

SM_ABSTRACT_CLASS(SmOnlyABase, SmObject, 0);
class SmOnlyABase : public SmManaged<SmOnlyABase> {
    friend SmManaged<SmOnlyABase>;
};
SM_DEFINE_CLASS(SmOnlyABase);

SM_CLASS(SmWithPureOperation, SmObject, 0);
class SmWithPureOperation : public SmManaged<SmWithPureOperation> {
    friend SmManaged<SmWithPureOperation>;

  public:
    virtual void Pure() = 0;
};
SM_DEFINE_CLASS(SmWithPureOperation);

namespace {

/// A host's class without the class machinery.
class PlainOwner : public SmOwner {
  public:
    explicit PlainOwner(bool& gone) : mGone(gone) {}
    ~PlainOwner() override { mGone = true; }

  private:
    bool& mGone;
    [[maybe_unused]] char mBallast[100] = {};
};

class CountingIndicator : public ScProgressIndicator {
  public:
    void Report(long done, long total) override {
        reports.push_back({done, total});
        if (static_cast<int>(reports.size()) == throwAt) SrThrow(-32768, nullptr);
    }
    std::vector<std::pair<long, long>> reports;
    int throwAt = 0;
};

StRef<SmOwner> NewOwner(int value, SmObject* shared = nullptr) {
    auto owner = StRef<SmOwner>::Adopt(SmOwner::New());
    owner->IOwner(value, shared);
    return owner;
}

class Object : public testing::Test {
  protected:
    Object() { SmOwner::sFreed = SmOwner::sDestroyed = SmOwner::sDeepened = 0; }
};

// --- the class object

TEST_F(Object, ClassObjectHoldsWhatTheClassSaid) {
    EXPECT_STREQ(SmOwner::ClassName(), "SmOwner");
    EXPECT_EQ(SmOwner::ClassVersion(), 3);
    EXPECT_EQ(SmOwner::ClassSize(), sizeof(SmOwner));
    EXPECT_EQ(SmOwner::ClassSelector(), SmOwner::Class()->Selector());
    EXPECT_EQ(SmOwner::Class()->Parent(), SmObject::Class());
    EXPECT_EQ(SmObject::Class()->Parent(), SmObjectBase::Class());
    EXPECT_EQ(SmObjectBase::Class()->Parent(), nullptr);
    static_assert(std::is_base_of_v<ScMC_, SmOwner__Class> && std::is_base_of_v<ScMC_, SmStream__Class>);
    EXPECT_NE(dynamic_cast<SmOwner__Class*>(SmOwner::Class()), nullptr);
}

TEST_F(Object, VirtualAccessorsAnswerForTheObjectsOwnClass) {
    auto const object = StRef<SmTableOwner>::Adopt(SmTableOwner::New());
    SmObjectBase* const base = object.Get();
    EXPECT_EQ(base->GetClass(), SmTableOwner::Class());
    EXPECT_STREQ(base->GetClassName(), "SmTableOwner");
    EXPECT_EQ(base->GetClassSelector(), SmTableOwner::ClassSelector());
    EXPECT_EQ(base->GetClassSize(), sizeof(SmTableOwner));
    EXPECT_EQ(base->GetClassVersion(), 0);
    EXPECT_EQ(NewOwner(1)->GetClassVersion(), 3);
}

TEST_F(Object, IsMemberOfItsOwnAndEveryParentClass) {
    auto const object = StRef<SmTableOwner>::Adopt(SmTableOwner::New());
    for (ScMC_* cls = SmTableOwner::Class(); cls; cls = cls->Parent()) {
        EXPECT_TRUE(object->IsMemberOf(cls)) << cls->Name();
        EXPECT_TRUE(object->GetClass()->DerivesFrom(cls)) << cls->Name();
    }
    EXPECT_TRUE(object->IsMemberOf(SmObject::Class()));
    EXPECT_FALSE(object->IsMemberOf(SmStream::Class()));
    EXPECT_FALSE(object->IsMemberOf(nullptr));
    EXPECT_FALSE(NewOwner(1)->IsMemberOf(SmTableOwner::Class()));
    EXPECT_FALSE(SmOwner::Class()->DerivesFrom(SmTableOwner::Class()));
}

TEST_F(Object, SelectorsAreUnique) {
    std::set<unsigned long> selectors;
    for (ScMC_* cls = ScMC_::Next(nullptr); cls; cls = ScMC_::Next(cls)) {
        EXPECT_TRUE(selectors.insert(cls->Selector()).second) << cls->Name();
    }
    EXPECT_GE(selectors.size(), 8u);
}

TEST_F(Object, LookUpsFindAnyClassFromAnyClass) {
    auto const byName =
        StRef<SmObjectBase>::Adopt(static_cast<SmObjectBase*>(SmStream::NewByClassName("SmTableOwner")));
    EXPECT_EQ(byName->GetClass(), SmTableOwner::Class());
    EXPECT_EQ(byName->ReferenceCount(), 1);
    auto const bySelector = StRef<SmObjectBase>::Adopt(
        static_cast<SmObjectBase*>(SmStream::Class()->NewByClassSelector(SmOwner::ClassSelector())));
    EXPECT_EQ(bySelector->GetClass(), SmOwner::Class());
}

TEST_F(Object, LookUpsOfUnknownClassesThrow) {
    for (char const* name : {"SmNobody", "", "smowner", static_cast<char const*>(nullptr)}) {
        EXPECT_EQ(CaughtCode([&] { SmOwner::NewByClassName(name); }), SkSymbolNotFoundErrC());
    }
    EXPECT_EQ(CaughtCode([] { SmOwner::NewByClassSelector(0); }), SkSymbolNotFoundErrC());
    EXPECT_EQ(CaughtCode([] { SmOwner::NewByClassSelector(~0UL); }), SkSymbolNotFoundErrC());
}

TEST_F(Object, ClassObjectsLeaveTheListWhenTheyGo) {
    unsigned long selector = 0;
    {
        ScMC_ const first("SmPassing", SmObject::Class(), 40, 0);
        ScMC_ const second("SmPassing", SmObject::Class(), 40, 0);
        selector = second.Selector();
        EXPECT_NE(first.Selector(), selector);
        EXPECT_EQ(ScMC_::Next(&first), &second);
        EXPECT_EQ(CaughtCode([] { SmOwner::NewByClassName("SmPassing"); }), SkAbstractClassErrC());
    }
    EXPECT_EQ(CaughtCode([] { SmOwner::NewByClassName("SmPassing"); }), SkSymbolNotFoundErrC());
    EXPECT_EQ(CaughtCode([&] { SmOwner::NewByClassSelector(selector); }), SkSymbolNotFoundErrC());
}

TEST_F(Object, InstanceCounterCountsNewCloneAndBecome) {
    long const before = SmOwner::Class()->InstanceCount();
    auto const object = NewOwner(1);
    EXPECT_EQ(SmOwner::Class()->InstanceCount(), before + 1);
    auto const copy = StRef<SmOwner>::Adopt(object->Clone());
    EXPECT_EQ(SmOwner::Class()->InstanceCount(), before + 2);
    copy->ImplementBecome(object.Get());
    EXPECT_EQ(SmOwner::Class()->InstanceCount(), before + 3);
}

TEST_F(Object, ObjectsOfOneClassAreMadeOnSeveralThreads) {
    long const before = SmMemoryStream::Class()->InstanceCount();
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([] {
                for (int n = 0; n < 500; ++n)
                    StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
            });
        }
    }
    EXPECT_EQ(SmMemoryStream::Class()->InstanceCount(), before + 2000);
}

// --- New, references, the end

TEST_F(Object, NewHasOneReferenceAndUsesExactlyTheClassSize) {
    static std::size_t asked;
    SrSetAllocationGate([](std::size_t size) {
        asked = size;
        return true;
    });
    auto const object = StRef<SmOwner>::Adopt(SmOwner::New());
    SrSetAllocationGate(nullptr);
    EXPECT_EQ(asked, sizeof(SmOwner));
    EXPECT_EQ(object->ReferenceCount(), 1);
}

TEST_F(Object, NewGivesNullWhenMemoryIsRefused) {
    long const before = SmOwner::Class()->InstanceCount();
    RefusedMemory const refused;
    EXPECT_EQ(SmOwner::New(), nullptr);
    EXPECT_EQ(SmOwner::Class()->New(), nullptr);
    EXPECT_EQ(SmOwner::Class()->InstanceCount(), before);
}

TEST_F(Object, AbstractClassesMakeNoObjects) {
    EXPECT_EQ(CaughtCode([] { SmObject::New(); }), SkAbstractClassErrC());
    EXPECT_EQ(CaughtCode([] { SmStorageObject::New(); }), SkAbstractClassErrC());
    EXPECT_EQ(CaughtCode([] { SmOnlyABase::New(); }), SkAbstractClassErrC());
    EXPECT_EQ(CaughtCode([] { SmWithPureOperation::New(); }), SkAbstractClassErrC());
    EXPECT_EQ(CaughtCode([] { SmObjectBase::Class()->New(); }), SkAbstractClassErrC());
    EXPECT_EQ(CaughtCode([] { SmOwner::NewByClassName("SmOnlyABase"); }), SkAbstractClassErrC());
}

TEST_F(Object, ClassesDerivedPlainlyFromAnAbstractOneNeitherCloneNorBecome) {
    class PlainBase : public SmOnlyABase {};
    auto const a = StRef<PlainBase>::Adopt(new PlainBase), b = StRef<PlainBase>::Adopt(new PlainBase);
    EXPECT_EQ(CaughtCode([&] { a->Clone(); }), SkAbstractClassErrC());
    EXPECT_EQ(CaughtCode([&] { a->ImplementBecome(b.Get()); }), SkAbstractClassErrC());
}

TEST_F(Object, LastReleaseFreesThenDestroys) {
    SmOwner* const object = SmOwner::New();
    object->IOwner(1, nullptr);
    object->AddReference();
    object->ReleaseReference();
    EXPECT_EQ(SmOwner::sFreed, 0);
    object->ReleaseReference();
    EXPECT_EQ(SmOwner::sFreed, 1);
    EXPECT_EQ(SmOwner::sDestroyed, 1);
}

TEST_F(Object, ReferencesTakenAndDroppedInFreeDoNotEndItTwice) {
    auto object = NewOwner(1);
    object->refersToItselfInFree = true;
    object = {};
    EXPECT_EQ(SmOwner::sFreed, 1);
    EXPECT_EQ(SmOwner::sDestroyed, 1);
}

TEST_F(Object, HostsDerivePlainlyAndTheRealSizeIsGivenBack) {
    bool gone = false;
    auto* const object = new PlainOwner(gone);
    EXPECT_EQ(object->ReferenceCount(), 1);
    EXPECT_EQ(object->GetClass(), SmOwner::Class());
    static_cast<SmObjectBase*>(object)->ReleaseReference();
    EXPECT_TRUE(gone);
    gone = false;
    delete new PlainOwner(gone);
    EXPECT_TRUE(gone);
}

TEST_F(Object, PlainNewGivesNullWhenMemoryIsRefused) {
    bool gone = false;
    RefusedMemory const refused;
    EXPECT_EQ(new PlainOwner(gone), nullptr);
}

TEST_F(Object, HalfMadeObjectsCanBeReleased) {
    StRef<SmOwner>::Adopt(SmOwner::New());
    EXPECT_EQ(SmOwner::sFreed, 1);
}

// --- defaults of the virtual operations

TEST_F(Object, DefaultsOfTheRemainingOperations) {
    auto const object = NewOwner(1);
    unsigned int size = 0;
    EXPECT_TRUE(object->GetDeepSize(size));
    EXPECT_EQ(size, sizeof(SmOwner));
    EXPECT_EQ(object->MemoryIsLow(1000000), 0u);
    EXPECT_EQ(object->GetDependencyStorage(), nullptr);
    EXPECT_FALSE(object->ProviderChanged(object.Get(), StReasons(), nullptr));
    object->Modified(StReasons{7}, nullptr);
    EXPECT_EQ(object->ReferenceCount(), 1);
}

// --- clones

TEST_F(Object, CloneIsACopyOfItsOwn) {
    auto const shared = NewOwner(9);
    auto const object = NewOwner(5, shared.Get());
    object->AddReference();
    auto const copy = StRef<SmOwner>::Adopt(object->Clone());
    EXPECT_NE(copy.Get(), object.Get());
    EXPECT_EQ(copy->ReferenceCount(), 1);
    EXPECT_EQ(copy->Value(), 5);
    EXPECT_EQ(copy->Shared(), shared.Get()) << "a plain clone shares";
    EXPECT_EQ(object->ReferenceCount(), 2);
    object->ReleaseReference();
}

TEST_F(Object, CloneThroughABaseMakesTheRealClass) {
    auto const object = StRef<SmTableOwner>::Adopt(SmTableOwner::New());
    object->IOwner(1, nullptr);
    object->table.push_back(77);
    SmOwner const* const base = object.Get();
    auto const copy = StRef<SmOwner>::Adopt(base->Clone());
    ASSERT_EQ(copy->GetClass(), SmTableOwner::Class());
    EXPECT_EQ(static_cast<SmTableOwner*>(copy.Get())->table[0], 77);
}

TEST_F(Object, FailingCloneDropsTheCopyAndThrowsTheSameError) {
    auto const object = NewOwner(5);
    object->refusesToBeCopied = true;
    try {
        object->Clone();
        FAIL();
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        EXPECT_EQ(SrGetExceptionValues(exception, message), SkBadFileFormatErrC());
        ASSERT_NE(message, nullptr);
        EXPECT_STREQ(message->GetText(), SkBadFileFormatMsgC()->GetText());
    }
    EXPECT_EQ(SmOwner::sFreed, 1);
    EXPECT_EQ(SmOwner::sDestroyed, 1);
    EXPECT_EQ(object->Value(), 5);
}

TEST_F(Object, CloneThrowsWhenMemoryIsRefused) {
    auto const object = NewOwner(5);
    RefusedMemory const refused;
    EXPECT_EQ(CaughtCode([&] { object->Clone(); }), -108);
}

TEST_F(Object, DeepCloneDeepensTheCopy) {
    auto const object = NewOwner(5);
    auto const copy = StRef<SmOwner>::Adopt(object->DeepClone());
    EXPECT_EQ(copy->Value(), 5);
    EXPECT_EQ(SmOwner::sDeepened, 1);
}

TEST_F(Object, FailingDeepCloneDropsTheCopy) {
    class Stubborn : public SmOwner {
      public:
        void* ImplementClone() const override {
            auto* const copy = new Stubborn;
            copy->refusesToDeepen = true;
            return copy;
        }
    };
    auto const stubborn = StRef<Stubborn>::Adopt(new Stubborn);
    EXPECT_EQ(CaughtCode([&] { stubborn->DeepClone(); }), -32768);
    EXPECT_EQ(SmOwner::sDestroyed, 1);
}

TEST_F(Object, FullCloneWithoutProgressIsDeepClone) {
    auto const object = NewOwner(5);
    auto const copy = StRef<SmOwner>::Adopt(object->FullClone(nullptr));
    EXPECT_EQ(copy->Value(), 5);
    EXPECT_EQ(copy->ReferenceCount(), 1);
    EXPECT_EQ(SmOwner::sDeepened, 1);
}

TEST_F(Object, FullCloneReportsAndMayBeCancelled) {
    auto const object = NewOwner(5);
    CountingIndicator indicator;
    StRef<SmOwner>::Adopt(object->FullClone(&indicator));
    EXPECT_EQ(indicator.reports, (std::vector<std::pair<long, long>>{{0, 1}, {1, 1}}));
    indicator.throwAt = 4;
    int const destroyed = SmOwner::sDestroyed;
    EXPECT_EQ(CaughtCode([&] { object->FullClone(&indicator); }), -32768);
    EXPECT_EQ(SmOwner::sDestroyed, destroyed + 1) << "the copy goes with the cancelled work";
}

// --- ImplementBecome

TEST_F(Object, BecomeTakesTheStateAndKeepsCountAndAddress) {
    auto const sharedA = NewOwner(100), sharedB = NewOwner(200);
    auto const a = NewOwner(1, sharedA.Get()), b = NewOwner(2, sharedB.Get());
    for (int i = 0; i < 4; ++i)
        a->AddReference();
    b->AddReference();
    ASSERT_EQ(a->ReferenceCount(), 5);
    SmOwner::sFreed = SmOwner::sDestroyed = 0;

    a->ImplementBecome(b.Get());

    EXPECT_EQ(a->ReferenceCount(), 5);
    EXPECT_EQ(a->Value(), 2);
    EXPECT_EQ(a->Shared(), sharedB.Get());
    EXPECT_EQ(SmOwner::sFreed, 1) << "the old state";
    EXPECT_EQ(sharedA->ReferenceCount(), 1) << "what the old state held is released";
    EXPECT_EQ(b->ReferenceCount(), 2);
    EXPECT_EQ(b->Value(), 2);
    EXPECT_EQ(sharedB->ReferenceCount(), 3);
    for (int i = 0; i < 4; ++i)
        a->ReleaseReference();
    b->ReleaseReference();
}

TEST_F(Object, BecomeKeepsACountBelowTheOthers) {
    auto const a = NewOwner(1), b = NewOwner(2);
    for (int i = 0; i < 7; ++i)
        b->AddReference();
    a->ImplementBecome(b.Get());
    EXPECT_EQ(a->ReferenceCount(), 1);
    EXPECT_EQ(b->ReferenceCount(), 8);
    for (int i = 0; i < 7; ++i)
        b->ReleaseReference();
}

TEST_F(Object, BecomeEndsTheMembersOfTheOldState) {
    auto const a = StRef<SmTableOwner>::Adopt(SmTableOwner::New());
    auto const b = StRef<SmTableOwner>::Adopt(SmTableOwner::New());
    a->IOwner(1, nullptr);
    b->IOwner(2, nullptr);
    a->table.resize(1000);  // leaks, unless the old state's members are destroyed
    b->table.push_back(42);
    a->ImplementBecome(b.Get());
    ASSERT_EQ(a->table.size(), 1u);
    EXPECT_EQ(a->table[0], 42);
    EXPECT_EQ(b->table[0], 42);
}

TEST_F(Object, FailingBecomeRestoresEverything) {
    auto const sharedA = NewOwner(100), sharedB = NewOwner(200);
    auto const a = NewOwner(1, sharedA.Get()), b = NewOwner(2, sharedB.Get());
    for (int i = 0; i < 4; ++i)
        a->AddReference();
    b->refusesToBeCopied = true;
    SmOwner::sFreed = 0;
    unsigned char before[sizeof(SmOwner)];
    std::memcpy(before, static_cast<void*>(a.Get()), sizeof before);

    try {
        a->ImplementBecome(b.Get());
        FAIL();
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        EXPECT_EQ(SrGetExceptionValues(exception, message), SkBadFileFormatErrC());
        ASSERT_NE(message, nullptr);
        EXPECT_STREQ(message->GetText(), SkBadFileFormatMsgC()->GetText());
    }

    EXPECT_EQ(std::memcmp(before, static_cast<void*>(a.Get()), sizeof before), 0);
    EXPECT_EQ(a->ReferenceCount(), 5);
    EXPECT_EQ(a->Value(), 1);
    EXPECT_EQ(sharedA->ReferenceCount(), 2);
    EXPECT_EQ(SmOwner::sFreed, 1) << "what was half built";
    EXPECT_EQ(SmOwner::sCountInFree, 2) << "the constructor's one and one to guard it";
    EXPECT_EQ(sharedB->ReferenceCount(), 2) << "and the other keeps its own";
    EXPECT_EQ(b->Value(), 2);
    for (int i = 0; i < 4; ++i)
        a->ReleaseReference();
}

TEST_F(Object, BecomeCopesWithAFreeThatRefersToTheObject) {
    auto const a = NewOwner(1), b = NewOwner(2);
    a->refersToItselfInFree = b->refersToItselfInFree = true;
    a->ImplementBecome(b.Get());
    EXPECT_EQ(a->ReferenceCount(), 1);
    EXPECT_EQ(a->Value(), 2);
    b->refusesToBeCopied = true;
    EXPECT_EQ(CaughtCode([&] { a->ImplementBecome(b.Get()); }), SkBadFileFormatErrC());
    EXPECT_EQ(a->ReferenceCount(), 1);
    EXPECT_EQ(SmOwner::sDestroyed, 2) << "the old state and what was half built, and no object";
}

TEST_F(Object, BecomeThrowsWhenTheSaveBufferIsRefused) {
    auto const a = NewOwner(1), b = NewOwner(2);
    {
        RefusedMemory const refused;
        EXPECT_EQ(CaughtCode([&] { a->ImplementBecome(b.Get()); }), -108);
    }
    EXPECT_EQ(a->Value(), 1);
    {
        RefusedMemory const refused(1);  // the save buffer alone
        EXPECT_EQ(CaughtCode([&] { a->ImplementBecome(b.Get()); }), -108);
    }
    EXPECT_EQ(a->Value(), 1);
    EXPECT_EQ(b->Value(), 2);
}

TEST_F(Object, BecomingItselfChangesNothing) {
    auto const a = NewOwner(1);
    a->ImplementBecome(a.Get());
    EXPECT_EQ(a->Value(), 1);
    EXPECT_EQ(a->ReferenceCount(), 1);
}

// --- the storage branch

TEST_F(Object, StorageObjectsWriteNothingAtTheirBase) {
    class Stored : public SmStorageObject {};
    auto const stored = StRef<Stored>::Adopt(new Stored);
    auto const stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream();
    stored->WriteTo(stream.Get());
    stored->ReadFrom(stream.Get());
    EXPECT_EQ(stream->GetLength(), 0u);
    EXPECT_TRUE(stored->IsMemberOf(SmObject::Class()));
}

}  // namespace
