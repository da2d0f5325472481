// Mipmaps whose rows leave memory, beside mipmaps of the same pixels whose rows stay.
#include "framewright/thornmere/stream.h"
#include "mipmaps.h"
#include "spool/spool_test_support.h"

using namespace testing_frames;
using namespace testing_mipmaps;

namespace {

template <class A, class B>
void ExpectSameLevels(A& expected, B& actual) {
    StMipChain const& chain = expected.Chain();
    ASSERT_EQ(actual.Chain().levels, chain.levels);
    for (long i = 0; i < chain.levels; ++i) {
        StMipLevel const& level = chain.table[i];
        ASSERT_EQ(actual.Chain().table[i], level);
        for (long y = level.top; y < level.top + level.height; ++y)
            for (long x = level.left; x < std::min(level.left + level.width, chain.table->width); ++x)
                ASSERT_EQ(ToNative(actual.GetMatchedPixelAt(x, y)),
                          ToNative(expected.GetMatchedPixelAt(x, y)))
                    << "level " << i << " at " << x << ", " << y;
    }
}

template <class Record>
class SpooledMipmap : public testing_spool::Spooling {
  public:
    SpooledMipmap() {
        AddFile();
        // Among frames that were touched at one moment only the first would be asked for rows.
        SrSetTickSource([] { return ++testing_spool::gTick; });
    }
    /// Writes all rows to the spool file.
    static void EvictAll() {
        while (Manager().UseLessMemory(1u << 30) > 0) {
        }
        ASSERT_EQ(Manager().MemoryInUse(), 0u);
    }
    static MipmapRef<Record, ScImagerSpool> Spooled(SmImagerFrame& source) {
        auto mipmap = NewMipmap<Record, ScImagerSpool>(source.GetSize());
        mipmap->CopyFromLayer(&source);
        return mipmap;
    }
    static MipmapRef<Record> Resident(SmImagerFrame& source) {
        auto mipmap = NewMipmap<Record>(source.GetSize());
        mipmap->CopyFromLayer(&source);
        return mipmap;
    }
    static StRef<PlainLayer<Record>> Source(StPoint const& size) {
        auto source = MakeLayer<Record>(size);
        FillRandom(*source, KindOfID(Record::PixelID()), 5);
        return source;
    }
};
TYPED_TEST_SUITE(SpooledMipmap, MipmapRecords);

TYPED_TEST(SpooledMipmap, HasTheSameLevels) {
    for (StPoint const size : {StPoint{16, 32}, {13, 21}, {8, 2}}) {
        auto const source = TestFixture::Source(size);
        auto const resident = TestFixture::Resident(*source);
        auto const spooled = TestFixture::Spooled(*source);
        TestFixture::EvictAll();
        ExpectSameLevels(*resident, *spooled);
        TestFixture::EvictAll();
        spooled->RebuildLevels();
        TestFixture::EvictAll();
        ExpectSameLevels(*resident, *spooled);
    }
}

TYPED_TEST(SpooledMipmap, ReadsTheSame) {
    auto const source = TestFixture::Source({16, 16});
    auto const resident = TestFixture::Resident(*source);
    auto const spooled = TestFixture::Spooled(*source);
    for (float const filter : {0.0f, 0.1f, 0.3f, 1.0f})
        for (float const v : {0.0f, 0.33f, 1.0f})
            for (float const u : {0.0f, 0.6f, 0.97f}) {
                TestFixture::EvictAll();
                StTilingStyles const tiling{1, 0};
                EXPECT_EQ(ToNative(spooled->GetFilteredPixel(u, v, filter, tiling)),
                          ToNative(resident->GetFilteredPixel(u, v, filter, tiling)));
                TestFixture::EvictAll();
                StColorFloats a{}, b{};
                spooled->GetFractionalUVPixel(u, v, a, tiling, filter);
                resident->GetFractionalUVPixel(u, v, b, tiling, filter);
                EXPECT_EQ(ToNative(a), ToNative(b));
                TestFixture::EvictAll();
                float du[2] = {}, dv[2] = {};
                spooled->GetUVDerivatives(u, v, du[0], dv[0], tiling, filter);
                resident->GetUVDerivatives(u, v, du[1], dv[1], tiling, filter);
                EXPECT_EQ(du[0], du[1]);
                EXPECT_EQ(dv[0], dv[1]);
            }
}

TYPED_TEST(SpooledMipmap, ClonesAndStreams) {
    using Record = TypeParam;
    using Class = SmImagerMipmap<Record, ScImagerSpool>;
    auto const source = TestFixture::Source({8, 16});
    auto const resident = TestFixture::Resident(*source);
    auto const spooled = TestFixture::Spooled(*source);
    TestFixture::EvictAll();
    auto const copy = StRef<Class>::Adopt(spooled->Clone());
    TestFixture::EvictAll();
    ExpectSameLevels(*resident, *copy);

    auto const stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream();
    TestFixture::EvictAll();
    spooled->WriteTo(stream.Get());
    auto const read = NewMipmap<Record, ScImagerSpool>({8, 16});
    stream->SetPosition(0);
    read->ReadFrom(stream.Get());
    TestFixture::EvictAll();
    ExpectSameLevels(*resident, *read);

    auto const other = FrameRef::Adopt(spooled->CloneAtNewSize({5, 5}, true, false));
    EXPECT_EQ(other->GetClass(), Class::Class());
    EXPECT_STREQ(other->GetClassName(), "SmImagerMipmap<class template>");
    auto const inMemory = FrameRef::Adopt(other->CloneAtNewSize({5, 5}, false, false));
    EXPECT_EQ(inMemory->GetClass(), (SmImagerMipmap<Record, ScImagerNonSpool>::Class()));
}

}  // namespace
