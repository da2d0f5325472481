#include "framewright/thornmere/reference.h"

#include <vector>

#include "framewright/thornmere/stream.h"
#include "thornmere/support.h"

namespace {

/// An object that is no managed one and counts in its own way.
struct Foreign {
    int count = 1;

    static StReferenceCountableFunctionTable const* GetReferenceCountableFunctionTable() {
        static StReferenceCountableFunctionTable const table = {
            [](void* object) { ++static_cast<Foreign*>(object)->count; },
            [](void* object) { --static_cast<Foreign*>(object)->count; },
            [](void const* object) -> long { return static_cast<Foreign const*>(object)->count; }};
        return &table;
    }
    void AddReference() { ++count; }
    void ReleaseReference() { --count; }
};

StRef<SmMemoryStream> NewStream() {
    return StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
}

TEST(Reference, DefaultIsNull) {
    StRef<SmStream> const reference;
    EXPECT_EQ(reference.Get(), nullptr);
    EXPECT_FALSE(reference);
    StRef<SmStream> const copy(reference);
    EXPECT_FALSE(copy);
    EXPECT_FALSE(StRef<SmStream>::Adopt(nullptr));
    EXPECT_FALSE(StRef<SmStream>(nullptr));
    EXPECT_FALSE(StRef<SmStream>(static_cast<SmStream*>(nullptr)));
}

TEST(Reference, CopiesCount) {
    auto stream = NewStream();
    EXPECT_EQ(stream->ReferenceCount(), 1);
    {
        StRef<SmMemoryStream> const copy(stream);
        EXPECT_EQ(copy.Get(), stream.Get());
        EXPECT_EQ(stream->ReferenceCount(), 2);
        StRef<SmMemoryStream> other;
        other = copy;
        EXPECT_EQ(stream->ReferenceCount(), 3);
        other = StRef<SmMemoryStream>();
        EXPECT_EQ(stream->ReferenceCount(), 2);
        StRef<SmMemoryStream> const moved(std::move(other));
        EXPECT_EQ(stream->ReferenceCount(), 2);
    }
    EXPECT_EQ(stream->ReferenceCount(), 1);
    StRef<SmMemoryStream>& same = stream;
    stream = same;
    EXPECT_EQ(stream->ReferenceCount(), 1);
    StRef<SmMemoryStream> const moved(std::move(stream));
    EXPECT_FALSE(stream);
    EXPECT_EQ(moved->ReferenceCount(), 1);
    EXPECT_EQ(&*moved, moved.Get());
}

TEST(Reference, ConstructionAddsAndAdoptTakesOver) {
    SmMemoryStream* const stream = SmMemoryStream::New();
    auto adopted = StRef<SmMemoryStream>::Adopt(stream);
    EXPECT_EQ(stream->ReferenceCount(), 1);
    StRef<SmMemoryStream> const added(stream);
    EXPECT_EQ(stream->ReferenceCount(), 2);
    EXPECT_EQ(adopted.Release(), stream);
    EXPECT_FALSE(adopted);
    EXPECT_EQ(stream->ReferenceCount(), 2) << "the caller now holds it";
    stream->ReleaseReference();
}

TEST(Reference, InterfaceOfNullIsTwoNulls) {
    auto const pair = StRef<SmMemoryStream>::AsReferenceCountableInterface(nullptr);
    EXPECT_EQ(pair.object, nullptr);
    EXPECT_EQ(pair.table, nullptr);
}

TEST(Reference, InterfaceCountsWithoutAddingOne) {
    auto const stream = NewStream();
    auto const pair = StRef<SmMemoryStream>::AsReferenceCountableInterface(stream.Get());
    EXPECT_EQ(pair.table, SmObjectBase::GetReferenceCountableFunctionTable());
    EXPECT_EQ(pair.object, static_cast<SmObjectBase*>(stream.Get()));
    EXPECT_EQ(pair.table->referenceCount(pair.object), 1);
    pair.table->addReference(pair.object);
    EXPECT_EQ(stream->ReferenceCount(), 2);
    pair.table->releaseReference(pair.object);
    EXPECT_EQ(stream->ReferenceCount(), 1);
}

TEST(Reference, InterfaceOfAnotherKindUsesItsOwnTable) {
    Foreign object;
    auto const pair = StRef<Foreign>::AsReferenceCountableInterface(&object);
    pair.table->addReference(pair.object);
    EXPECT_EQ(object.count, 2);
}

TEST(Reference, InterfaceIsAnAggregateOfObjectThenTable) {
    Foreign object;
    StReferenceCountableInterface const pair{&object, Foreign::GetReferenceCountableFunctionTable()};
    EXPECT_EQ(pair.object, &object);
}

TEST(Reference, AllocateNewObject) {
    auto const pair = StRef<SmMemoryStream>::AllocateNewObject();
    ASSERT_NE(pair.object, nullptr);
    EXPECT_EQ(pair.table->referenceCount(pair.object), 1);
    pair.table->releaseReference(pair.object);
    RefusedMemory const refused;
    auto const none = StRef<SmMemoryStream>::AllocateNewObject();
    EXPECT_EQ(none.object, nullptr);
    EXPECT_EQ(none.table, nullptr);
}

TEST(AutoDispose, HoldsUntilDisposed) {
    Foreign a, b;
    SrAutoDisposeObject(StRef<Foreign>::AsReferenceCountableInterface(&a));
    SrAutoDisposeObject(StRef<Foreign>::AsReferenceCountableInterface(&b));
    EXPECT_EQ(a.count, 1);
    SrDisposeAutoObjects();
    EXPECT_EQ(a.count, 0);
    EXPECT_EQ(b.count, 0);
    SrDisposeAutoObjects();
    EXPECT_EQ(a.count, 0) << "once is enough";
}

TEST(AutoDispose, NewestGoesFirst) {
    static std::vector<void*> gone;
    gone.clear();
    static StReferenceCountableFunctionTable const table = {
        [](void*) {}, [](void* object) { gone.push_back(object); }, [](void const*) -> long { return 1; }};
    int objects[3];
    for (int& object : objects)
        SrAutoDisposeObject({&object, &table});
    SrDisposeAutoObjects();
    EXPECT_EQ(gone, (std::vector<void*>{&objects[2], &objects[1], &objects[0]}));
}

TEST(AutoDispose, NullPairIsIgnored) {
    SrAutoDisposeObject({nullptr, nullptr});
    SrDisposeAutoObjects();
}

TEST(AutoDispose, ReleaseMayGiveAnotherObject) {
    static Foreign second;
    second.count = 1;
    static StReferenceCountableFunctionTable const table = {
        [](void*) {},
        [](void*) { SrAutoDisposeObject(StRef<Foreign>::AsReferenceCountableInterface(&second)); },
        [](void const*) -> long { return 1; }};
    int first = 0;
    SrAutoDisposeObject({&first, &table});
    SrDisposeAutoObjects();
    EXPECT_EQ(second.count, 0);
}

TEST(AutoDispose, RefusedMemoryReleasesAtOnce) {
    std::vector<Foreign> objects(1000);
    long error = SkNothingCaught();
    std::size_t given = 0;
    {
        RefusedMemory const refused;
        while (error == SkNothingCaught() && given < objects.size()) {
            Foreign* const object = &objects[given++];
            error = CaughtCode(
                [&] { SrAutoDisposeObject(StRef<Foreign>::AsReferenceCountableInterface(object)); });
        }
    }
    EXPECT_EQ(error, -108);
    EXPECT_EQ(objects[given - 1].count, 0) << "the one that could not be kept";
    SrDisposeAutoObjects();
}

}  // namespace
