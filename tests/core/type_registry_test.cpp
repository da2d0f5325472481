#include "framewright/core/type_registry.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/object.h"

SM_CLASS(SmRegistrySample, SmObject, 0);
class SmRegistrySample : public SmManaged<SmRegistrySample> {
    friend SmManaged<SmRegistrySample>;

  public:
    int mark = 0;

  protected:
    void CloneFrom(SmRegistrySample const& other) {
        SmObject::CloneFrom(other);
        mark = other.mark;
    }
};
SM_DEFINE_CLASS(SmRegistrySample);

namespace {

using Objects = ScTR_<unsigned long, ScObjectStore<SmRegistrySample>, SmRegistrySample*, SmRegistrySample*>;
using Names = ScTR_<unsigned long, ScNameStore, char const*, char const*>;
using SignedNames = ScTR_<long, ScNameStore, char const*, char const*>;
using PointerNames = ScTR_<ScMC_*, ScNameStore, char const*, char const*>;

StRef<SmRegistrySample> NewSample(int mark) {
    auto sample = StRef<SmRegistrySample>::Adopt(SmRegistrySample::New());
    sample->mark = mark;
    return sample;
}

/// The error code that `action` throws, 0 if it throws nothing.
template <class Action>
long ErrorOf(Action action) {
    try {
        action();
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        return SrGetExceptionValues(exception, message);
    }
    return 0;
}

TEST(TypeRegistry, FirstToRegisterWins) {
    Names names;
    EXPECT_TRUE(names.RegisterObject(7, "first"));
    EXPECT_FALSE(names.RegisterObject(7, "second"));
    EXPECT_STREQ(names.GetObjectByID(7, false), "first");
}

TEST(TypeRegistry, RefusedObjectGainsNoReference) {
    Objects objects;
    auto first = NewSample(1), second = NewSample(2);
    EXPECT_TRUE(objects.RegisterObject(7, first.Get()));
    EXPECT_FALSE(objects.RegisterObject(7, second.Get()));
    EXPECT_EQ(first->ReferenceCount(), 2);
    EXPECT_EQ(second->ReferenceCount(), 1);
    EXPECT_EQ(objects.GetObjectByID(7, false), first.Get());
}

TEST(TypeRegistry, UnRegisteringDropsTheReference) {
    Objects objects;
    auto one = NewSample(1), two = NewSample(2);
    objects.RegisterObject(1, one.Get());
    objects.RegisterObject(2, two.Get());
    objects.UnRegisterObject(1);
    EXPECT_EQ(one->ReferenceCount(), 1);
    EXPECT_EQ(two->ReferenceCount(), 2);
    objects.UnRegisterObjectAll();
    EXPECT_EQ(two->ReferenceCount(), 1);
    SmRegistrySample* found = nullptr;
    EXPECT_FALSE(objects.GetObjectByID(2, false, found));
}

TEST(TypeRegistry, DestructionDropsTheReferences) {
    auto sample = NewSample(1);
    {
        Objects objects;
        objects.RegisterObject(1, sample.Get());
        EXPECT_EQ(sample->ReferenceCount(), 2);
    }
    EXPECT_EQ(sample->ReferenceCount(), 1);
}

TEST(TypeRegistry, UnRegisteringAnAbsentKeyIsIgnored) {
    Names names;
    names.UnRegisterObject(1);
    names.RegisterObject(2, "two");
    names.UnRegisterObject(1);
    EXPECT_STREQ(names.GetObjectByID(2, false), "two");
}

TEST(TypeRegistry, KeyCanBeRegisteredAgainAfterItsRemoval) {
    Names names;
    names.RegisterObject(1, "old");
    names.UnRegisterObject(1);
    EXPECT_TRUE(names.RegisterObject(1, "new"));
    EXPECT_STREQ(names.GetObjectByID(1, false), "new");
}

TEST(TypeRegistry, MissedLookUpLeavesTheValueAlone) {
    auto sample = NewSample(1);
    Objects objects;
    SmRegistrySample* found = sample.Get();
    EXPECT_FALSE(objects.GetObjectByID(1, false, found));  // empty
    EXPECT_FALSE(objects.GetObjectByID(1, true, found));
    objects.RegisterObject(2, sample.Get());
    EXPECT_FALSE(objects.GetObjectByID(1, false, found));  // absent
    EXPECT_FALSE(objects.GetObjectByID(1, true, found));
    EXPECT_EQ(found, sample.Get());

    Names names;
    char const* name = "untouched";
    EXPECT_FALSE(names.GetObjectByID(1, false, name));
    EXPECT_STREQ(name, "untouched");
}

TEST(TypeRegistry, SharedLookUpBorrowsAndCloneIsTheCallers) {
    Objects objects;
    auto sample = NewSample(5);
    objects.RegisterObject(1, sample.Get());

    SmRegistrySample* shared = nullptr;
    ASSERT_TRUE(objects.GetObjectByID(1, false, shared));
    EXPECT_EQ(shared, sample.Get());
    EXPECT_EQ(sample->ReferenceCount(), 2);

    SmRegistrySample* clone = nullptr;
    ASSERT_TRUE(objects.GetObjectByID(1, true, clone));
    auto const owned = StRef<SmRegistrySample>::Adopt(clone);
    EXPECT_NE(clone, sample.Get());
    EXPECT_EQ(clone->ReferenceCount(), 1);
    EXPECT_EQ(clone->mark, 5);
    EXPECT_EQ(sample->ReferenceCount(), 2);
}

TEST(TypeRegistry, ValueReturningLookUpThrowsForAnAbsentKey) {
    Objects objects;
    Names names;
    EXPECT_EQ(ErrorOf([&] { objects.GetObjectByID(1, false); }), SkSymbolNotFoundErrC());
    EXPECT_EQ(ErrorOf([&] { names.GetObjectByID(1, true); }), SkSymbolNotFoundErrC());
}

TEST(TypeRegistry, ValueReturningLookUpNeverClones) {
    Objects objects;
    auto sample = NewSample(1);
    objects.RegisterObject(1, sample.Get());
    EXPECT_EQ(objects.GetObjectByID(1, true), sample.Get());
    EXPECT_EQ(objects.GetObjectByID(1, false), sample.Get());
    EXPECT_EQ(sample->ReferenceCount(), 2);
}

TEST(TypeRegistry, NameKeepsItsFirst63Bytes) {
    struct Row {
        unsigned length, kept;
    };
    for (Row const row : {Row{0, 0}, {1, 1}, {62, 62}, {63, 63}, {64, 63}, {70, 63}}) {
        Names names;
        names.RegisterObject(1, std::string(row.length, 'n').c_str());
        EXPECT_EQ(names.GetObjectByID(1, false), std::string(row.kept, 'n')) << row.length;
    }
}

TEST(TypeRegistry, NameIsAPrivateCopy) {
    char text[] = "name";
    Names names;
    names.RegisterObject(1, text);
    text[0] = 'X';
    EXPECT_STREQ(names.GetObjectByID(1, false), "name");
}

TEST(TypeRegistry, TextStaysPutWhileOtherKeysComeAndGo) {
    Names names;
    names.RegisterObject(500, "stays");
    char const* const text = names.GetObjectByID(500, false);
    for (unsigned long key = 0; key < 1000; ++key)
        names.RegisterObject(key, "other");
    for (unsigned long key = 0; key < 1000; ++key)
        if (key != 500) names.UnRegisterObject(key);
    EXPECT_EQ(names.GetObjectByID(500, false), text);
    EXPECT_STREQ(text, "stays");
}

TEST(TypeRegistry, NameLookUpIgnoresTheFlag) {
    Names names;
    names.RegisterObject(1, "one");
    char const *plain = nullptr, *cloned = nullptr;
    EXPECT_TRUE(names.GetObjectByID(1, false, plain));
    EXPECT_TRUE(names.GetObjectByID(1, true, cloned));
    EXPECT_EQ(plain, cloned);
}

/// The keys of a registry in index order.
template <class Registry, class Key>
std::vector<Key> KeysOf(Registry const& registry, Key) {
    std::vector<Key> keys;
    Key key{};
    char const* name = nullptr;
    for (int i = 0; registry.GetObjectByIndex(i, key, name); ++i)
        keys.push_back(key);
    return keys;
}

TEST(TypeRegistry, UnsignedKeysAreOrderedAsUnsigned32Bits) {
    Names names;
    for (unsigned long key : {0xFFFFFFFFul, 0x7FFFFFFFul, 0ul, 0x80000000ul, 1ul})
        names.RegisterObject(key, "");
    EXPECT_EQ(KeysOf(names, 0ul), (std::vector<unsigned long>{0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF}));
}

TEST(TypeRegistry, SignedKeysAreOrderedAsSigned32Bits) {
    SignedNames names;
    for (long key : {0x7FFFFFFFL, -1L, 0L, -0x80000000L, 1L})
        names.RegisterObject(key, "");
    EXPECT_EQ(KeysOf(names, 0L), (std::vector<long>{-0x80000000L, -1, 0, 1, 0x7FFFFFFF}));
}

TEST(TypeRegistry, KeysAreTheirLow32Bits) {
    SignedNames signedNames;
    signedNames.RegisterObject(-1, "minus one");
    EXPECT_STREQ(signedNames.GetObjectByID(0xFFFFFFFFL, false), "minus one");
    Names names;
    names.RegisterObject(static_cast<unsigned long>(-1L), "all ones");
    EXPECT_STREQ(names.GetObjectByID(0xFFFFFFFFul, false), "all ones");
}

TEST(TypeRegistry, PointersAreOrderedByAddress) {
    PointerNames names;
    auto const low = reinterpret_cast<ScMC_*>(std::uintptr_t{0x1000});
    auto const high = reinterpret_cast<ScMC_*>(~std::uintptr_t{0xFFF});  // above: addresses have no sign
    names.RegisterObject(high, "high");
    names.RegisterObject(low, "low");
    EXPECT_EQ(KeysOf(names, low), (std::vector<ScMC_*>{low, high}));
}

TEST(TypeRegistry, IndexOutsideGivesFalse) {
    Names names;
    unsigned long key = 99;
    char const* name = "untouched";
    EXPECT_FALSE(names.GetObjectByIndex(0, key, name));  // empty
    names.RegisterObject(1, "one");
    names.RegisterObject(2, "two");
    for (int const index : {-1, 2, 3, INT32_MAX, INT32_MIN})
        EXPECT_FALSE(names.GetObjectByIndex(index, key, name)) << index;
    EXPECT_EQ(key, 99ul);
    EXPECT_STREQ(name, "untouched");
    EXPECT_TRUE(names.GetObjectByIndex(1, key, name));
    EXPECT_EQ(key, 2ul);
    EXPECT_STREQ(name, "two");
}

TEST(TypeRegistry, RefusedMemoryLeavesTheRegistryAsItWas) {
    static int allowed;
    Names names;
    names.RegisterObject(1, "one");
    int tries = 0;
    for (bool done = false; !done; ++tries) {
        allowed = tries;
        SrSetAllocationGate([](std::size_t) { return allowed-- > 0; });
        long const error = ErrorOf([&] { done = names.RegisterObject(2, "two"); });
        SrSetAllocationGate(nullptr);
        EXPECT_EQ(error, done ? 0 : SkMemoryFull()) << tries;
        EXPECT_EQ(KeysOf(names, 0ul).size(), done ? 2u : 1u) << tries;
        ASSERT_LT(tries, 10);
    }
    EXPECT_GT(tries, 1) << "the gate was never asked";
}

/// Where an operation stands in the table of virtual operations, counted from 0. (A pointer to a virtual
/// member holds its offset in the table plus one.)
template <class Operation>
long SlotOf(Operation operation) {
    std::ptrdiff_t offset = 0;
    std::memcpy(&offset, &operation, sizeof offset);
    return (offset - 1) / static_cast<long>(sizeof(void*));
}

TEST(TypeRegistry, OperationsStandInTheirSlots) {
    using FindByReference = bool (Names::*)(unsigned long, bool, char const*&);
    using FindByValue = char const* (Names::*)(unsigned long, bool);
    // The destructor takes slots 0 and 1.
    EXPECT_EQ(SlotOf(&Names::RegisterObject), 2);
    EXPECT_EQ(SlotOf(&Names::UnRegisterObject), 3);
    EXPECT_EQ(SlotOf(&Names::UnRegisterObjectAll), 4);
    EXPECT_EQ(SlotOf(static_cast<FindByReference>(&Names::GetObjectByID)), 5);
    EXPECT_EQ(SlotOf(static_cast<FindByValue>(&Names::GetObjectByID)), 6);
}

// A facade over an object registry and one over a name registry, as source files make them.
class ScSampleRegistry : public ScObjectRegistryFacade<ScSampleRegistry, unsigned long, SmRegistrySample> {
    friend ScRegistryFacade;
    static Registry& Global();

  public:
    SmRegistrySample* GetObjectByIndex(int index) {
        unsigned long key = 0;
        SmRegistrySample* sample = nullptr;
        ScRegistryFacade::GetObjectByIndex(index, key, sample);
        return sample;
    }
};
ScSampleRegistry::Registry gSamples;
ScSampleRegistry::Registry& ScSampleRegistry::Global() {
    return gSamples;
}

class ScSampleNameRegistry : public ScNameRegistryFacade<ScSampleNameRegistry, unsigned long> {
    friend ScRegistryFacade;
    static Registry& Global();

  public:
    using ScRegistryFacade::GetObjectByIndex;
};
ScSampleNameRegistry::Registry gSampleNames;
ScSampleNameRegistry::Registry& ScSampleNameRegistry::Global() {
    return gSampleNames;
}

TEST(TypeRegistryFacade, ForwardsToItsOneRegistry) {
    auto sample = NewSample(3);
    EXPECT_TRUE(ScSampleRegistry::RegisterObject(1, sample.Get()));
    EXPECT_FALSE(ScSampleRegistry::RegisterObject(1, sample.Get()));
    SmRegistrySample* found = nullptr;
    EXPECT_TRUE(ScSampleRegistry::GetObjectByID(1, false, found));
    EXPECT_EQ(found, sample.Get());
    EXPECT_EQ(ScSampleRegistry::GetObjectByID(1, false), sample.Get());
    EXPECT_EQ(gSamples.GetObjectByID(1, false), sample.Get());
    ScSampleRegistry::UnRegisterObject(1);
    EXPECT_EQ(ErrorOf([] { ScSampleRegistry::GetObjectByID(1, false); }), SkSymbolNotFoundErrC());
}

TEST(TypeRegistryFacade, ObjectPastTheEndIsNull) {
    auto sample = NewSample(3);
    ScSampleRegistry registry;
    ScSampleRegistry::RegisterObject(1, sample.Get());
    EXPECT_EQ(registry.GetObjectByIndex(0), sample.Get());
    EXPECT_EQ(sample->ReferenceCount(), 2);
    EXPECT_EQ(registry.GetObjectByIndex(1), nullptr);
    EXPECT_EQ(registry.GetObjectByIndex(-1), nullptr);
    ScSampleRegistry::UnRegisterObject(1);
    EXPECT_EQ(registry.GetObjectByIndex(0), nullptr);
}

TEST(TypeRegistryFacade, NamePastTheEndIsNull) {
    ScSampleNameRegistry::RegisterObject(30, "thirty");
    ScSampleNameRegistry::RegisterObject(20, "twenty");
    unsigned long id = 0;
    char const* name = nullptr;
    ASSERT_TRUE(ScSampleNameRegistry::GetObjectByIndex(0, id, name));
    EXPECT_EQ(id, 20ul);
    EXPECT_STREQ(name, "twenty");
    ASSERT_TRUE(ScSampleNameRegistry::GetObjectByIndex(1, id, name));
    EXPECT_EQ(id, 30ul);
    for (int const index : {-1, 2}) {
        name = "untouched";
        EXPECT_FALSE(ScSampleNameRegistry::GetObjectByIndex(index, id, name)) << index;
        EXPECT_EQ(name, nullptr) << index;
    }
    ScSampleNameRegistry::UnRegisterObject(20);
    ScSampleNameRegistry::UnRegisterObject(30);
}

}  // namespace
