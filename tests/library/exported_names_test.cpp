// A host that links the shared library: what it uses here must be exported.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <memory>
#include <string>

#include "framewright/framewright.h"

// A managed class of the host's own.
SM_CLASS(SmHostObject, SmObject, 3);
class SmHostObject : public SmManaged<SmHostObject> {
    friend SmManaged<SmHostObject>;
};
SM_DEFINE_CLASS(SmHostObject);

namespace {

using Frame = StRef<SmImagerFrame>;

/// Built before main, when set-up must already be over.
std::size_t const gInitializersSeenByAStatic = SrGetInitializerNames().size();

Frame MakeFrame(StPoint size, std::uint32_t pixelID) {
    return Frame::Adopt(SrMakeFrame(size, pixelID, false, false));
}

TEST(ExportedNames, LibraryIsInServiceBeforeTheHostsOwnStatics) {
    EXPECT_EQ(SrGetStartupError(), 0);
    EXPECT_EQ(gInitializersSeenByAStatic, 19u);
}

TEST(ExportedNames, FramesOfEveryRegisteredTypeCanBeMadeAndDrawnOn) {
    unsigned long pixelID = 0;
    char const* name = nullptr;
    int types = 0;
    for (; ScLayerNameRegistry::GetObjectByIndex(types, pixelID, name); ++types) {
        SCOPED_TRACE(name);
        Frame const frame = MakeFrame({3, 5}, static_cast<std::uint32_t>(pixelID));
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->PixelID(), pixelID);
        frame->Erase();
        frame->PutPixelAt(4, 2, StRGBA32Pixel{0, 0, 0, 255});
        StRGBA32Pixel color{};
        frame->GetPixelAt(4, 2, color);
        Frame const copy = Frame::Adopt(static_cast<SmImagerFrame*>(frame->ImplementClone()));
        EXPECT_EQ(copy->GetClass(), frame->GetClass());
    }
    EXPECT_EQ(types, 21);
}

TEST(ExportedNames, PixelsGoThroughFrames) {
    Frame const source = MakeFrame({2, 2}, SrCode("ColB")), copy = MakeFrame({2, 2}, SrCode("RG24"));
    ASSERT_TRUE(source && copy);
    source->PutPixelAt(1, 0, StRGBA32Pixel{10, 20, 30, 255});
    copy->BlitRect(source.Get(), {0, 0, 2, 2}, {0, 0});
    StRGBA32Pixel const color = copy->GetRGBAPixelAt(1, 0);
    EXPECT_EQ(color.blue, 10);
    EXPECT_EQ(color.green, 20);
    EXPECT_EQ(color.red, 30);
}

/// A host's own filter in a mipmap.
class DarkMipmap : public SmImagerMipmap<StGray8Pixel, ScImagerSpool> {
  public:
    StGray8Pixel SampleLevel(float u, float v, long level, StTilingStyles const& tiling) override {
        StGray8Pixel pixel = SmImagerMipmap::SampleLevel(u, v, level, tiling);
        pixel.level /= 2;
        return pixel;
    }
};

TEST(ExportedNames, MipmapsAreMadeAndDerivedFrom) {
    Frame const source = MakeFrame({4, 4}, SrCode("Gry8"));
    ASSERT_TRUE(source);
    source->SetBackground({80, 80, 80, 255});
    source->Erase();
    auto const mipmap = StRef<SmImagerFrame>::Adopt(SrMakeMipmapFromFrame(source.Get()));
    ASSERT_TRUE(mipmap);
    auto const dark = StRef<DarkMipmap>::Adopt(new DarkMipmap);
    dark->IImagerMipmap({4, 4}, 1.0f, false);
    dark->CopyFromLayer(mipmap.Get());
    EXPECT_EQ(dark->Chain().levels, 3);
    StRGBA32Pixel color{};
    mipmap->GetFractionalUVPixel(0.5f, 0.5f, color, SkNoTilings(), 0.4f);
    EXPECT_EQ(color.red, 80);
    dark->GetFractionalUVPixel(0.5f, 0.5f, color, SkNoTilings(), 0.4f);
    EXPECT_EQ(color.red, 40);
}

TEST(ExportedNames, FramesGoThroughStreams) {
    Frame const frame = MakeFrame({2, 3}, SrCode("RG24"));
    ASSERT_TRUE(frame);
    frame->PutPixelAt(2, 1, StRGBA32Pixel{10, 20, 30, 255});
    auto const stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream();
    ScCatalogWriteStream catalog;
    catalog.ICatalogStream(stream.Get());
    SrImagerFrameToStream(catalog, frame.Get(), 1);
    SrWriteImagerFrameToStream(*stream, frame.Get(), 0);

    ScMediaLocationOpenMedia location;
    location.SetStream(stream.Get());
    auto const first = Frame::Adopt(SrImagerFrameFromStream(&location, 0x100, false));
    auto const second = Frame::Adopt(SrReadImagerFrameFromStream(*stream, false, false));
    for (Frame const& read : {first, second}) {
        ASSERT_TRUE(read);
        EXPECT_EQ(read->GetRGBAPixelAt(2, 1).green, 20);
    }
}

TEST(ExportedNames, ColorsAreConverted) {
    StColorFloats white = SkWhiteColorFloats();
    EXPECT_EQ(SrColorPower(white, 2.0f).red, 1.0f);
    EXPECT_EQ(SkWhiteColorBytes().alpha, 255);
    StCMYKPixel inks{};
    SrConvertPixel(StRGBA32Pixel{0, 0, 255, 255}, inks);
    EXPECT_EQ(inks.cyan, 0);
    EXPECT_EQ(inks.magenta, 255);
}

TEST(ExportedNames, SmartPixelsCanBeMadeAndDerivedFrom) {
    struct SpySmartPixel : ScDerivedPixel<StRGBA32Pixel> {
        unsigned long PixelID() const override { return SrCode("Spy "); }
    };
    std::unique_ptr<ScSmartPixel> const spy(new SpySmartPixel);
    spy->SetFloat(1.0f);
    EXPECT_EQ(spy->GetRGBA32().green, 255);
    EXPECT_EQ(spy->PixelID(), SrCode("Spy "));

    ScColorMap<unsigned char, StRGBA32Pixel> map(2);
    map.SetColor(1, StRGBA32Pixel{10, 20, 30, 255});
    std::unique_ptr<ScMappedSmartPixel<StMapped8Pixel>> const mapped(new ScMappedSmartPixel<StMapped8Pixel>);
    StMapped8Pixel const index{1};
    mapped->SetPixelData(&index);
    mapped->SetColorMap(&map);
    EXPECT_EQ(mapped->GetRGBA32().red, 30);
}

/// A host may derive from a layer without the class machinery.
class SpyLayer : public SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool> {
  public:
    using SmImagerLayer::GetPixelAt;
    StRGBA32Pixel GetRGBAPixelAt(long x, long y) override {
        ++calls;
        return SmImagerLayer::GetRGBAPixelAt(x, y);
    }
    int calls = 0;
};

TEST(ExportedNames, LayersCanBeDerivedFrom) {
    auto const spy = StRef<SpyLayer>::Adopt(new SpyLayer);
    spy->IImagerLayer({0, 0}, {2, 2}, false, nullptr, 0, nullptr);
    spy->PutPixelAt(1, 1, StRGBA32Pixel{1, 2, 3, 4});
    SmImagerFrame* const frame = spy.Get();
    EXPECT_EQ(frame->GetRGBAPixelAt(1, 1).red, 3);
    EXPECT_EQ(spy->calls, 1);
    EXPECT_TRUE(frame->IsMemberOf(SmImagerFrame::Class()));
}

class SpyStream : public SmMemoryStream {};
class SpyRecognizer : public SmMediaRecognizer {};
class SpyMedia : public SmMedia {};
class SpyTrack : public SmMediaTrack {};
class SpySimple : public SmMediaSimple {};

template <class Spy, class Base>
void ExpectUsable() {
    auto const spy = StRef<Spy>::Adopt(new Spy);
    ASSERT_TRUE(spy);
    EXPECT_EQ(spy->ReferenceCount(), 1);
    EXPECT_TRUE(spy->IsMemberOf(Base::Class()));
}

TEST(ExportedNames, BasesCanBeDerivedFrom) {
    ExpectUsable<SpyStream, SmMemoryStream>();
    ExpectUsable<SpyRecognizer, SmMediaRecognizer>();
    ExpectUsable<SpyMedia, SmMedia>();
    ExpectUsable<SpyTrack, SmMediaTrack>();
    ExpectUsable<SpySimple, SmMediaSimple>();
}

TEST(ExportedNames, HostsHaveManagedClassesOfTheirOwn) {
    auto const object = StRef<SmHostObject>::Adopt(SmHostObject::New());
    EXPECT_STREQ(object->GetClassName(), "SmHostObject");
    EXPECT_EQ(object->GetClassVersion(), 3);
    auto const copy = StRef<SmHostObject>::Adopt(object->Clone());
    EXPECT_TRUE(copy->IsMemberOf(SmObject::Class()));
    auto const named =
        StRef<SmObjectBase>::Adopt(static_cast<SmObjectBase*>(SmObject::NewByClassName("SmHostObject")));
    EXPECT_EQ(named->GetClass(), SmHostObject::Class());
}

TEST(ExportedNames, ErrorsReachTheHost) {
    try {
        SmImagerFrame::New();
        FAIL() << "nothing was thrown";
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        EXPECT_EQ(SrGetExceptionValues(exception, message), SkAbstractClassErrC());
        EXPECT_EQ(message, nullptr);
        EXPECT_STRNE(exception.what(), "");
    }
}

TEST(ExportedNames, SetUpRoutinesCanBeRunByTheHost) {
    SrRegisterBmp(true);
    EXPECT_EQ(SrGlobalMediaManager()->GetRecognizerByType(SrCode("BMP ")), nullptr);
    SrRegisterBmp(false);
    EXPECT_NE(SrGlobalMediaManager()->GetRecognizerByType(SrCode("BMP ")), nullptr);
}

TEST(ExportedNames, GamutsWorkOnAHostsSamples) {
    struct Samples : ScColorSampleSet {
        void ForEachSample(ScColorSampleIterator& iterator) override {
            for (long i = 0; i < 3; ++i)
                iterator.HandleSample(i, values[i]);
        }
        void SetAllSamples(StColorFloats const& color) override {
            values[0] = values[1] = values[2] = color.red;
        }
        float values[3] = {-1.0f, 0.5f, 3.0f};
    } samples;
    std::unique_ptr<ScGamut> const gamut(new ScScaledGamut);
    gamut->ConstrainSamples(samples);
    EXPECT_THAT(samples.values, testing::ElementsAre(0.0f, 0.375f, 1.0f));

    auto const stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream();
    ScDebugGamut debug(SkDefaultDebugOverflowColor(), SkDefaultDebugUnderflowColor());
    WriteGamut(*stream, &debug);
    stream->SetPosition(0);
    ScGamut* read = nullptr;
    ReadGamut(*stream, read);
    std::unique_ptr<ScGamut> const owned(read);
    ASSERT_TRUE(dynamic_cast<ScDebugGamut*>(read));
    EXPECT_NE(SkUnknownGamutError(), 0);
}

TEST(ExportedNames, ColorsHaveKeysAndAHostsInterpolator) {
    struct Steps : ScVI<StColorFloats> {
        void Interpolate(float, double, double, StColorFloats const& earlier, StColorFloats const&,
                         StColorFloats& out) override {
            out = earlier;
        }
    } steps;
    struct Count : ScTVI<StColorFloats> {
        void KeyTime(double, StColorFloats const*, bool, bool) override { ++keys; }
        int keys = 0;
    } count;
    StTimeVaryingColor color(StColorFloats{0.0f, 0.0f, 0.0f});
    color.SetExtendedValue(2.0, {1.0f, 1.0f, 1.0f});
    EXPECT_EQ(color.GetValue(1.0).green, 0.5f);
    EXPECT_EQ(color.GetValue(1.5, steps).green, 0.0f);
    StTimeVaryingColor const copy(color);
    copy.EachKeyTime(count);
    EXPECT_EQ(count.keys, 2);
    StRef<SxTimeVarying> const view(color.GetTimeVarying());
    view->ForceKeyTime(1.75, steps);
    EXPECT_EQ(color.GetNumKeyTimes(), 3);
    color = StColorFloats{1.0f, 0.0f, 0.0f};
    EXPECT_TRUE(view->IsConstant());
    auto const own = StRef<SxTimeVarying>::Adopt(color.GetTimeVarying());
    EXPECT_EQ(own->GetNumKeyTimes(), 1);
    EXPECT_TRUE(SrGetConstNonTimeVarying()->IsConstant());
}

TEST(ExportedNames, PictureIsSavedAndLoaded) {
    char folder[] = "/tmp/framewright-exported-XXXXXX";
    ASSERT_TRUE(mkdtemp(folder));
    std::string const path = std::string(folder) + "/picture.bmp";
    Frame const frame = MakeFrame({2, 3}, SrCode("RG24"));
    ASSERT_TRUE(frame);
    frame->Erase();
    frame->PutPixelAt(2, 1, StRGBA32Pixel{10, 20, 30, 255});
    {
        ScMediaFileLocation location;
        ASSERT_TRUE(location.SetFullPath(path.c_str()));
        SrSaveObjectToMedia(&location, SmImagerFrame::Class(), frame.Get(), SrCode("BMP "), nullptr);
    }
    {
        ScMediaFileLocation location;
        ASSERT_TRUE(location.SetFullPath(path.c_str()));
        ScMC_* objectClass = nullptr;
        SmObject* object = nullptr;
        SrLoadObjectFromMedia(&location, objectClass, object, 0, nullptr);
        ASSERT_TRUE(object);
        auto const loaded = Frame::Adopt(static_cast<SmImagerFrame*>(object));
        EXPECT_EQ(loaded->GetSize().vertical, 2);
        EXPECT_EQ(loaded->GetSize().horizontal, 3);
        EXPECT_EQ(loaded->GetRGBAPixelAt(2, 1).red, 30);
    }
    std::filesystem::remove_all(folder);
}

}  // namespace
