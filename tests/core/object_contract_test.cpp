// The object contract, on every managed class there is: the class objects say which, so a class that joins
// the library joins these tests by itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "framewright/frame/layer.h"
#include "framewright/pixel/dithered_layer.h"
#include "framewright/pixel/mapped_layer.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/object.h"
#include "framewright/thornmere/reference.h"

SM_CLASS(SmStranger, SmObject, 0);
/// A class that no other one derives from.
class SmStranger : public SmManaged<SmStranger> {
    friend SmManaged<SmStranger>;
};
SM_DEFINE_CLASS(SmStranger);

namespace {

using Object = StRef<SmObjectBase>;

long ErrorOf(std::exception const& exception) {
    ScMessageClass* message = nullptr;
    return SrGetExceptionValues(exception, message);
}

/// A new object of a class; null for an abstract class.
Object Make(ScMC_ const* cls) {
    try {
        return Object::Adopt(static_cast<SmObjectBase*>(cls->New()));
    } catch (std::exception const& exception) {
        EXPECT_EQ(ErrorOf(exception), SkAbstractClassErrC()) << cls->Name();
        return nullptr;
    }
}

/// The families of templates have a class object for each member, made when it is first asked for.
void MakeFamilies() {
#define ROW(Record, ...) SmImagerLayer<Record, ScImagerNonSpool>::Class();
    FOR_EACH_LAYER_PIXEL(ROW)
#undef ROW
#define ROW(Record) SmImagerMappedLayer<Record, ScImagerNonSpool>::Class();
    FOR_EACH_MAPPED_PIXEL(ROW)
#undef ROW
#define ROW(Record) SmImagerDitheredLayer<Record, ScImagerNonSpool>::Class();
    FOR_EACH_DITHERED_PIXEL(ROW)
#undef ROW
}

std::vector<ScMC_*> AllClasses() {
    MakeFamilies();
    std::vector<ScMC_*> classes;
    for (ScMC_* cls = ScMC_::Next(nullptr); cls; cls = ScMC_::Next(cls))
        classes.push_back(cls);
    return classes;
}

class ObjectContract : public testing::TestWithParam<ScMC_*> {
  protected:
    ScMC_* const cls = GetParam();
};

TEST_P(ObjectContract, ClassObjectIsComplete) {
    EXPECT_NE(cls->Name(), nullptr);
    EXPECT_GE(cls->Size(), sizeof(SmObjectBase));
    EXPECT_NE(cls->Selector(), 0ul);
    for (ScMC_* other : AllClasses())
        EXPECT_EQ(other->Selector() == cls->Selector(), other == cls) << other->Name();
}

TEST_P(ObjectContract, ChainEndsAtTheRoot) {
    EXPECT_TRUE(cls->DerivesFrom(SmObjectBase::Class()));
    EXPECT_TRUE(cls == SmObjectBase::Class() || cls->DerivesFrom(SmObject::Class()));
    for (ScMC_* ancestor = cls; ancestor != SmObjectBase::Class(); ancestor = ancestor->Parent())
        ASSERT_NE(ancestor->Parent(), nullptr);
}

TEST_P(ObjectContract, NewGivesOneReferenceAndCountsTheInstance) {
    long const before = cls->InstanceCount();
    Object object = Make(cls);
    EXPECT_EQ(cls->InstanceCount(), before + (object ? 1 : 0));
    EXPECT_TRUE(!object || object->ReferenceCount() == 1);
}

TEST_P(ObjectContract, NewIsNullWhenMemoryIsRefused) {
    if (!Make(cls)) return;
    SrSetAllocationGate([](std::size_t) { return false; });
    void* const object = cls->New();
    SrSetAllocationGate(nullptr);
    EXPECT_EQ(object, nullptr);
}

TEST_P(ObjectContract, ObjectKnowsItsClass) {
    Object object = Make(cls);
    if (!object) return;
    EXPECT_EQ(object->GetClass(), cls);
    EXPECT_EQ(object->GetClassName(), cls->Name());
    EXPECT_EQ(object->GetClassSelector(), cls->Selector());
    EXPECT_EQ(object->GetClassSize(), cls->Size());
    EXPECT_EQ(object->GetClassVersion(), cls->Version());
}

TEST_P(ObjectContract, IsMemberOfItsChainAndOfNothingElse) {
    Object object = Make(cls);
    if (!object) return;
    for (ScMC_* other : AllClasses())
        EXPECT_EQ(object->IsMemberOf(other), cls->DerivesFrom(other)) << other->Name();
    EXPECT_TRUE(object->IsMemberOf(SmObject::Class()));
    EXPECT_FALSE(object->IsMemberOf(nullptr));
}

TEST_P(ObjectContract, SelectorAndNameMakeInstances) {
    if (!Make(cls)) return;
    auto bySelector =
        Object::Adopt(static_cast<SmObjectBase*>(SmObject::NewByClassSelector(cls->Selector())));
    EXPECT_EQ(bySelector->GetClass(), cls);
    // Template instantiations share a name, and the first one made answers to it.
    auto byName = Object::Adopt(static_cast<SmObjectBase*>(SmObject::NewByClassName(cls->Name())));
    EXPECT_STREQ(byName->GetClassName(), cls->Name());
}

TEST_P(ObjectContract, DefaultsOfTheRoot) {
    Object object = Make(cls);
    if (!object) return;
    unsigned int size = 0;
    EXPECT_TRUE(object->GetDeepSize(size));
    EXPECT_EQ(size, cls->Size());
    EXPECT_EQ(object->MemoryIsLow(1), 0u);
    EXPECT_EQ(object->GetDependencyStorage(), nullptr);
    EXPECT_FALSE(object->ProviderChanged(nullptr, {}, nullptr));
    object->Modified({}, nullptr);
}

/// A copy, made by one of the three ways to clone.
template <class Copy>
void ExpectCopies(ScMC_* cls, Copy copy) {
    Object object = Make(cls);
    if (!object) return;
    object->AddReference();
    long const before = cls->InstanceCount();
    auto clone = Object::Adopt(static_cast<SmObjectBase*>(copy(*object)));
    ASSERT_TRUE(clone);
    EXPECT_NE(clone.Get(), object.Get());
    EXPECT_EQ(clone->GetClass(), cls);
    EXPECT_EQ(clone->ReferenceCount(), 1);
    EXPECT_EQ(object->ReferenceCount(), 2);
    EXPECT_EQ(cls->InstanceCount(), before + 1);
    object->ReleaseReference();
}

TEST_P(ObjectContract, CloneIsAnObjectOfItsOwn) {
    ExpectCopies(cls, [](SmObjectBase& object) { return object.ImplementClone(); });
}
TEST_P(ObjectContract, DeepCloneIsAnObjectOfItsOwn) {
    ExpectCopies(cls, [](SmObjectBase& object) { return object.DeepClone(); });
}
TEST_P(ObjectContract, FullCloneIsAnObjectOfItsOwn) {
    ExpectCopies(cls, [](SmObjectBase& object) { return object.MakeFullClone(nullptr); });
}

TEST_P(ObjectContract, BecomeKeepsBothReferenceCounts) {
    struct Row {
        long own, others;
    };
    for (Row const row : {Row{1, 1}, {5, 1}, {5, 3}, {1, 5}}) {
        Object object = Make(cls), other = Make(cls);
        if (!object) return;
        while (object->ReferenceCount() < row.own)
            object->AddReference();
        while (other->ReferenceCount() < row.others)
            other->AddReference();
        long const before = cls->InstanceCount();

        object->ImplementBecome(other.Get());

        EXPECT_EQ(object->ReferenceCount(), row.own);
        EXPECT_EQ(other->ReferenceCount(), row.others);
        EXPECT_EQ(object->GetClass(), cls);
        EXPECT_EQ(other->GetClass(), cls);
        EXPECT_EQ(cls->InstanceCount(), before + 1);
        while (object->ReferenceCount() > 1)
            object->ReleaseReference();
        while (other->ReferenceCount() > 1)
            other->ReleaseReference();
    }
}

TEST_P(ObjectContract, BecomeWithoutMemoryChangesNothing) {
    Object object = Make(cls), other = Make(cls);
    if (!object) return;
    object->AddReference();
    SrSetAllocationGate([](std::size_t) { return false; });
    try {
        object->ImplementBecome(other.Get());
        ADD_FAILURE() << "nothing was thrown";
    } catch (std::exception const& exception) {
        EXPECT_EQ(ErrorOf(exception), SkMemoryFull());
    }
    SrSetAllocationGate(nullptr);
    EXPECT_EQ(object->ReferenceCount(), 2);
    EXPECT_EQ(object->GetClass(), cls);
    object->ReleaseReference();
}

TEST_P(ObjectContract, FreeCopesWithDefaultsAndCanRunTwice) {
    Object object = Make(cls);
    if (!object) return;
    object->Free();
    object->Free();
    EXPECT_EQ(object->ReferenceCount(), 1);
}

std::string NameOf(testing::TestParamInfo<ScMC_*> const& info) {
    std::string name = info.param->Name();
    name = name.substr(0, name.find('<'));
    return name + "_" + std::to_string(info.param->Selector());
}

INSTANTIATE_TEST_SUITE_P(All, ObjectContract, testing::ValuesIn(AllClasses()), NameOf);

// --- a class that says nothing of itself

class Plain : public SmObject {};

TEST(ObjectContractOfAPlainClass, ItsObjectsAreOfTheClassItDerivesFrom) {
    auto plain = Object::Adopt(new Plain);
    EXPECT_EQ(plain->GetClass(), SmObject::Class());
    EXPECT_TRUE(plain->IsMemberOf(SmObject::Class()));
}

TEST(ObjectContractOfAnAbstractClass, CannotBeMadeNorCopied) {
    auto plain = Object::Adopt(new Plain), other = Object::Adopt(new Plain);
    auto const expectRefusal = [](auto action) {
        try {
            action();
            ADD_FAILURE() << "nothing was thrown";
        } catch (std::exception const& exception) {
            EXPECT_EQ(ErrorOf(exception), SkAbstractClassErrC());
        }
    };
    expectRefusal([] { SmObject::New(); });
    expectRefusal([] { SmObjectBase::Class()->New(); });
    expectRefusal([&] { plain->ImplementClone(); });
    expectRefusal([&] { plain->ImplementBecome(other.Get()); });
}

TEST(ObjectContractOfTemplates, FamiliesShareANameAndNothingElse) {
    struct Row {
        char const* name;
        long members;
    };
    for (Row const row : {Row{"SmImagerLayer<class template>", 24},
                          {"SmImagerMappedLayer<class template>", 4},
                          {"SmImagerDitheredLayer<class template>", 5}}) {
        std::vector<ScMC_*> const classes = AllClasses();
        EXPECT_EQ(
            std::ranges::count_if(classes, [&](ScMC_* cls) { return cls->Name() == std::string(row.name); }),
            row.members)
            << row.name;
    }
}

TEST(ReferenceInterface, NullIsAPairOfNulls) {
    auto const null = StRef<SmStranger>::AsReferenceCountableInterface(nullptr);
    EXPECT_EQ(null.object, nullptr);
    EXPECT_EQ(null.table, nullptr);
}

}  // namespace
