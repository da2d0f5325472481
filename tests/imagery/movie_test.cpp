#include "framewright/imagery/movie.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "clips.h"
#include "framewright/imagery/image.h"
#include "framewright/imagery/subframe.h"
#include "framewright/imagery/updated.h"

namespace {

using clips::ErrorOf;
using clips::NewFrame;
using clips::NumberOf;
using clips::PutNumber;

constexpr StLeftOrRight kWhole = 0, kLeft = 1, kRight = 2;

StRef<SmImagerMovie> NewMovie() {
    auto movie = StRef<SmImagerMovie>::Adopt(SmImagerMovie::New());
    movie->IImagerMovie();
    return movie;
}

StRef<SmImagerImage> NewImage(SmImagerFrame* layer = nullptr) {
    auto image = StRef<SmImagerImage>::Adopt(SmImagerImage::New());
    image->IImagerImage();
    if (layer) image->AddLayer(layer);
    return image;
}

StRef<SmImagerImage> NewImage(StPoint const& size, long number) {
    auto const frame = NewFrame(size);
    PutNumber(*frame, number);
    return NewImage(frame.Get());
}

// --- fields

TEST(ImagerMovie, StartsWithDefaults) {
    auto const movie = StRef<SmImagerMovie>::Adopt(SmImagerMovie::New());
    EXPECT_STREQ(movie->GetClassName(), "SmImagerMovie");
    EXPECT_EQ(SmImagerMovie::Class()->Parent(), SmObject::Class());
    EXPECT_EQ(movie->GetDesiredFrameSize(), (StPoint{1, 1}));
    EXPECT_EQ(movie->GetDuration(), 0.0);
    EXPECT_EQ(movie->GetNumberOfFrames(), 1);
    EXPECT_EQ(movie->GetFrameRate(), 30.0F);
    bool loop = true, pingPong = true;
    movie->GetLoop(loop, pingPong);
    EXPECT_FALSE(loop);
    EXPECT_FALSE(pingPong);
    EXPECT_EQ(movie->GetStereoArrangement(), 0);
    EXPECT_EQ(movie->GetStereoFirstEye(), 1);
    EXPECT_EQ(movie->GetStereoGap(), 0);
    EXPECT_EQ(movie->GetSizingMode(), 0x43524F50U);
    EXPECT_FALSE(movie->GetMipmapping());
    EXPECT_EQ(movie->GetPrototypeImage(), nullptr);
    EXPECT_EQ(movie->GetStoredImage(0), nullptr);
}

TEST(ImagerMovie, FieldsKeepWhatIsSet_AndTheInitialiserSetsNone) {
    auto const movie = NewMovie();
    movie->SetDesiredFrameSize({3, 4});
    movie->SetDuration(-2.5);
    movie->SetNumberOfFrames(-5);
    movie->SetFrameRate(12.5F);
    movie->SetLoop(false, true);
    movie->SetStereoArrangement(200);
    movie->SetStereoFirstEye(2);
    movie->SetStereoGap(-7);
    movie->SetSizingMode(0x5245535A);
    movie->SetMipmapping(true);
    movie->IImagerMovie();
    EXPECT_EQ(movie->GetDesiredFrameSize(), (StPoint{3, 4}));
    EXPECT_EQ(movie->GetDuration(), -2.5) << "stored, not computed";
    EXPECT_EQ(movie->GetNumberOfFrames(), -5);
    EXPECT_EQ(movie->GetFrameRate(), 12.5F);
    bool loop = true, pingPong = false;
    movie->GetLoop(loop, pingPong);
    EXPECT_FALSE(loop);
    EXPECT_TRUE(pingPong);
    EXPECT_EQ(movie->GetStereoArrangement(), 200);
    EXPECT_EQ(movie->GetStereoFirstEye(), 2);
    EXPECT_EQ(movie->GetStereoGap(), -7);
    EXPECT_EQ(movie->GetSizingMode(), 0x5245535AU);
    EXPECT_TRUE(movie->GetMipmapping());
}

TEST(ImagerMovie, PrototypeIsCounted) {
    auto const movie = NewMovie();
    auto const first = NewImage(), second = NewImage();
    movie->SetPrototypeImage(first.Get());
    EXPECT_EQ(first->ReferenceCount(), 2);
    EXPECT_EQ(movie->GetPrototypeImage(), first.Get());
    movie->SetPrototypeImage(second.Get());
    EXPECT_EQ(first->ReferenceCount(), 1);
    movie->SetPrototypeImage(nullptr);
    EXPECT_EQ(second->ReferenceCount(), 1);
}

TEST(ImagerMovie, GetAdjustedFrameSize_HoldsBothEyesAndTheGap) {
    struct {
        StStereoArrangement arrangement;
        StPoint size;
        bool adjusted;
    } const rows[] = {
        {0, {100, 200}, false}, {1, {210, 200}, true},  {2, {100, 410}, true},
        {3, {100, 200}, false}, {4, {100, 200}, false}, {9, {100, 200}, false},
    };
    auto const movie = NewMovie();
    movie->SetDesiredFrameSize({100, 200});
    movie->SetStereoGap(10);
    for (auto const& row : rows) {
        movie->SetStereoArrangement(row.arrangement);
        StPoint size{-1, -1};
        EXPECT_EQ(movie->GetAdjustedFrameSize(size), row.adjusted) << int{row.arrangement};
        EXPECT_EQ(size, row.size) << int{row.arrangement};
    }
    movie->SetStereoArrangement(1);
    movie->SetDesiredFrameSize({std::numeric_limits<std::int32_t>::max(), 1});
    StPoint size{};
    EXPECT_TRUE(movie->GetAdjustedFrameSize(size));
    EXPECT_EQ(size.vertical, 8) << "-2 and the gap: 32 bits wrap";
}

// --- entries

TEST(ImagerMovie, SetImage_GrowsWithNullsAndReplaces) {
    auto const movie = NewMovie();
    auto const first = NewImage(), second = NewImage();
    movie->SetImage(3, first.Get(), false);
    EXPECT_EQ(first->ReferenceCount(), 2);
    for (long i : {-1L, 0L, 2L, 4L, 1L << 40})
        EXPECT_EQ(movie->GetStoredImage(i), nullptr) << i;
    EXPECT_EQ(movie->GetStoredImage(3), first.Get());
    EXPECT_EQ(movie->GetImage(3, kWhole), first.Get());
    EXPECT_EQ(first->ReferenceCount(), 2) << "lent";
    movie->SetImage(3, second.Get(), false);
    EXPECT_EQ(first->ReferenceCount(), 1);
    movie->SetImage(3, second.Get(), false);
    EXPECT_EQ(second->ReferenceCount(), 2) << "the same once more";
    movie->SetImage(3, nullptr, true);
    EXPECT_EQ(second->ReferenceCount(), 1);
    EXPECT_EQ(movie->GetNumberOfFrames(), 1) << "the count is a field of its own";
}

TEST(ImagerMovie, SetImage_BelowZeroIsZero_AndPast32BitsIsRefused) {
    auto const movie = NewMovie();
    auto const image = NewImage();
    movie->SetImage(-9, image.Get(), false);
    EXPECT_EQ(movie->GetStoredImage(0), image.Get());
    EXPECT_EQ(ErrorOf([&] { movie->SetImage(1L << 31, image.Get(), false); }), -108);
    EXPECT_EQ(image->ReferenceCount(), 2);
}

TEST(ImagerMovie, SetImage_AdoptsTheSizeWhereItIsTold) {
    auto const movie = NewMovie();
    auto const image = NewImage({7, 9}, 0);
    movie->SetImage(0, image.Get(), false);
    EXPECT_EQ(movie->GetDesiredFrameSize(), (StPoint{1, 1}));
    movie->SetImage(0, image.Get(), true);
    EXPECT_EQ(movie->GetDesiredFrameSize(), (StPoint{7, 9}));
    movie->SetImage(0, nullptr, true);
    EXPECT_EQ(movie->GetDesiredFrameSize(), (StPoint{7, 9}));
}

TEST(ImagerMovie, ReleaseImage_LeavesNull_AndClearAllEmpties) {
    auto const movie = NewMovie();
    auto const image = NewImage();
    movie->SetImage(1, image.Get(), false);
    movie->SetImage(2, image.Get(), false);
    movie->SetPrototypeImage(image.Get());
    for (long i : {-1L, 0L, 1L, 1L, 9L})
        movie->ReleaseImage(i);
    EXPECT_EQ(movie->GetStoredImage(1), nullptr);
    EXPECT_EQ(image->ReferenceCount(), 3);
    movie->ClearAll();
    EXPECT_EQ(movie->GetStoredImage(2), nullptr);
    EXPECT_EQ(image->ReferenceCount(), 2) << "the prototype stays";
}

TEST(ImagerMovie, SaveImage_DoesNothing) {
    auto const movie = NewMovie();
    auto const image = NewImage();
    movie->SetImage(0, image.Get(), false);
    movie->SaveImage(0, kWhole);
    movie->SaveImage(99, kRight);
    EXPECT_EQ(movie->GetStoredImage(0), image.Get());
    EXPECT_EQ(image->ReferenceCount(), 2);
}

TEST(ImagerMovie, SetLayerOfImage_MakesTheEntry) {
    auto const movie = NewMovie();
    auto const frame = NewFrame({2, 3});
    movie->SetLayerOfImage(2, 1, frame.Get());
    SmImagerImage* const image = movie->GetStoredImage(2);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->ReferenceCount(), 1);
    EXPECT_EQ(image->GetLayerCount(), 2);
    EXPECT_EQ(image->GetLayer(0), nullptr);
    EXPECT_EQ(image->GetLayer(1), frame.Get());
    EXPECT_EQ(frame->ReferenceCount(), 2);
    EXPECT_EQ(image->GetGamut(), nullptr) << "without the initialiser";
    EXPECT_EQ(image->GetSize(), (StPoint{2, 3}));
    movie->SetLayerOfImage(2, 1, nullptr);
    EXPECT_EQ(movie->GetStoredImage(2), image);
    EXPECT_EQ(frame->ReferenceCount(), 1);
}

TEST(ImagerMovie, SetLayerOfImage_OfNothingMakesNothingButRoom) {
    auto const movie = NewMovie();
    movie->SetLayerOfImage(2, 0, nullptr);
    EXPECT_EQ(movie->GetStoredImage(2), nullptr);
    auto const image = NewImage();
    movie->SetImage(0, image.Get(), false);
    movie->SetLayerOfImage(-1, 0, NewFrame().Get());
    EXPECT_EQ(image->GetLayerCount(), 1) << "below 0 is 0";
}

// --- stereo

/// Images of 5 rows with a gap of 1: the left eye's rows 0 and 1, the right eye's 3 and 4. The upper half has
/// `number` in its first pixel, the lower one `number` + 100.
StRef<SmImagerFrame> AboveFrame(long number) {
    auto frame = NewFrame({5, 2});
    PutNumber(*frame, number);
    frame->PutPixelAt(0, 3, StRGBA32Pixel{0, 0, static_cast<unsigned char>(number + 100), 255});
    return frame;
}
StRef<SmImagerImage> Above(long number) {
    return NewImage(AboveFrame(number).Get());
}

class StereoMovie : public testing::Test {
  protected:
    StereoMovie() {
        movie->SetStereoArrangement(1);
        movie->SetStereoGap(1);
    }
    long Red(long frame, StLeftOrRight eye) {
        SmImagerImage* const image = movie->GetImage(frame, eye);
        return image ? NumberOf(image->GetColorLayer()) : -1;
    }
    StRef<SmImagerMovie> movie = NewMovie();
};

TEST_F(StereoMovie, EachEyeIsItsHalf) {
    auto const source = Above(7);
    movie->SetImage(0, source.Get(), false);
    EXPECT_EQ(Red(0, kLeft), 7);
    EXPECT_EQ(Red(0, kRight), 107);
    EXPECT_EQ(movie->GetImage(0, kLeft)->GetSize(), (StPoint{2, 2}));
    EXPECT_EQ(movie->GetImage(0, kLeft)->ReferenceCount(), 1) << "lent";
    movie->SetStereoFirstEye(kRight);
    movie->SetStereoGap(1);  // cut anew
    EXPECT_EQ(Red(0, kLeft), 107);
    EXPECT_EQ(Red(0, kRight), 7);
}

TEST_F(StereoMovie, WithoutArrangementFirstEyeOrEyeItIsTheWholeImage) {
    auto const source = Above(7);
    movie->SetImage(0, source.Get(), false);
    EXPECT_EQ(movie->GetImage(0, kWhole), source.Get());
    movie->SetStereoFirstEye(0);
    EXPECT_EQ(movie->GetImage(0, kRight), source.Get());
    movie->SetStereoFirstEye(kLeft);
    movie->SetStereoArrangement(0);
    EXPECT_EQ(movie->GetImage(0, kRight), source.Get());
    EXPECT_EQ(movie->GetImage(1, kRight), nullptr) << "nothing stands in without stereo";
}

TEST_F(StereoMovie, WhatIsMissingIsStoodInForByEntry0Or1ByParity) {
    EXPECT_EQ(ErrorOf([&] { movie->GetImage(0, kLeft); }), -108) << "no image anywhere";
    EXPECT_EQ(ErrorOf([&] { movie->GetImage(5, kLeft); }), -108);
    EXPECT_EQ(ErrorOf([&] { movie->GetImage(-3, kLeft); }), -108);
    auto const even = Above(10), odd = Above(11);
    movie->SetImage(0, even.Get(), false);
    EXPECT_EQ(Red(5, kLeft), 10) << "entry 1 is missing too";
    movie->SetImage(1, odd.Get(), false);
    EXPECT_EQ(Red(5, kLeft), 11);
    EXPECT_EQ(Red(6, kLeft), 10);
    EXPECT_EQ(Red(-5, kLeft), 10) << "below 0 it is entry 0 at once";
    EXPECT_EQ(Red(1, kRight), 111);
    movie->ReleaseImage(0);
    EXPECT_EQ(ErrorOf([&] { movie->GetImage(6, kLeft); }), -108);
    EXPECT_EQ(Red(7, kRight), 111);
}

TEST_F(StereoMovie, EyesAreCutOnce) {
    auto const source = Above(7);
    movie->SetImage(0, source.Get(), false);
    StRef<SmImagerImage> const left = movie->GetImage(0, kLeft), right = movie->GetImage(0, kRight);
    EXPECT_EQ(movie->GetImage(0, kLeft), left.Get());
    EXPECT_EQ(movie->GetImage(0, kRight), right.Get());
    EXPECT_EQ(movie->GetImage(0, 9), right.Get()) << "every eye but the left one lies there";
}

TEST_F(StereoMovie, EyesAreCutAnewWhenAnythingHasChanged) {
    auto const source = Above(7), other = Above(8);
    movie->SetImage(0, source.Get(), false);
    movie->SetImage(1, other.Get(), false);
    auto const cutAnew = [&](auto change) {
        StRef<SmImagerImage> const left = movie->GetImage(0, kLeft), right = movie->GetImage(0, kRight);
        change();
        EXPECT_EQ(left->ReferenceCount(), 1) << "dropped";
        EXPECT_EQ(right->ReferenceCount(), 1);
        EXPECT_NE(movie->GetImage(0, kLeft), left.Get());
        EXPECT_NE(movie->GetImage(0, kRight), right.Get());
    };
    cutAnew([&] { movie->SetImage(0, source.Get(), false); });
    cutAnew([&] { movie->SetStereoGap(1); });
    cutAnew([&] { movie->SetLayerOfImage(0, 1, nullptr); });
    cutAnew([&] { movie->GetImage(1, kLeft); });
    cutAnew([&] {
        movie->ReleaseImage(0);
        movie->SetImage(0, source.Get(), false);
    });
    cutAnew([&] {
        movie->ClearAll();
        movie->SetImage(0, other.Get(), false);
    });
    // Another entry leaves them alone.
    StRef<SmImagerImage> const left = movie->GetImage(0, kLeft);
    movie->SetImage(1, source.Get(), false);
    movie->ReleaseImage(1);
    movie->SetLayerOfImage(3, 0, NewFrame().Get());
    EXPECT_EQ(movie->GetImage(0, kLeft), left.Get());
}

TEST_F(StereoMovie, AnotherSourceUnderTheSameNumberIsSeen) {
    // Entry 0 stands in for 4. The new image there is made when the old one is gone, and mostly lies where
    // that lay.
    for (long number = 0; number < 20; ++number) {
        auto const frame = AboveFrame(number);
        movie->ReleaseImage(0);
        movie->SetImage(0, NewImage(frame.Get()).Get(), false);
        EXPECT_EQ(Red(4, kLeft), number);
    }
}

TEST_F(StereoMovie, TheSecondEyeOfANewSourceDropsTheFirstOfTheOld) {
    auto const first = Above(1), second = Above(2);
    movie->SetImage(0, first.Get(), false);
    movie->SetImage(1, second.Get(), false);
    StRef<SmImagerImage> const left = movie->GetImage(0, kLeft);
    movie->GetImage(1, kRight);
    EXPECT_EQ(left->ReferenceCount(), 1);
}

TEST_F(StereoMovie, AnUpdatedImageHasUpdatedEyes) {
    auto const source = StRef<SmImagerUpdated>::Adopt(SmImagerUpdated::New());
    source->IImagerUpdated();
    source->AddLayer(NewFrame({5, 2}).Get());
    movie->SetImage(0, source.Get(), false);
    EXPECT_TRUE(movie->GetImage(0, kLeft)->IsMemberOf(SmImagerUpdated::Class()));
}

TEST(ImagerMovie, AlternatingEyesHaveEntriesOfTheirOwn) {
    struct {
        StLeftOrRight firstEye, eye;
        long frame, entry;
    } const rows[] = {
        {1, 2, 3, 7}, {1, 1, 3, 6}, {2, 1, 3, 7}, {2, 2, 3, 6}, {1, 0, 3, 6}, {2, 0, 3, 6},
        {0, 1, 3, 6}, {0, 2, 3, 6}, {1, 2, 0, 1}, {2, 1, 0, 1}, {1, 1, 0, 0},
    };
    auto const movie = NewMovie();
    movie->SetStereoArrangement(4);
    for (long i = 0; i < 8; ++i)
        movie->SetImage(i, NewImage({2, 2}, i).Get(), false);
    for (auto const& row : rows) {
        movie->SetStereoFirstEye(row.firstEye);
        SmImagerImage* const image = movie->GetImage(row.frame, row.eye);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(NumberOf(image->GetColorLayer()), row.entry)
            << int{row.firstEye} << " " << int{row.eye} << " " << row.frame;
        EXPECT_EQ(image->GetSize(), (StPoint{2, 2})) << "an entry is one eye whole";
    }
    for (long frame : {1L << 30, 1L << 31, 1L << 62, std::numeric_limits<long>::min()})
        movie->GetImage(frame, kRight);  // numbers wrap, nothing else happens
}

// --- mipmaps

TEST(ImagerMovie, Mipmapping_TurnsAllLayersIntoMipmapsOnce) {
    auto const movie = NewMovie();
    auto const image = NewImage({4, 8}, 50);
    image->AddLayer(NewFrame({4, 8}, SrCode("Gry8")).Get());
    image->SetLayer(3, NewFrame({4, 8}, SrCode("Alp8")).Get());
    SmImagerFrame* const alpha = image->GetLayer(3);
    movie->SetImage(1, image.Get(), false);
    EXPECT_FALSE(movie->GetImage(1, kWhole)->GetColorLayer()->IsUVTriLinear());
    movie->SetMipmapping(true);
    EXPECT_EQ(movie->GetImage(1, kWhole), image.Get());
    SmImagerFrame* const mipmap = image->GetLayer(0);
    EXPECT_TRUE(mipmap->IsUVTriLinear());
    EXPECT_EQ(mipmap->ReferenceCount(), 1);
    EXPECT_EQ(image->GetColorLayer(), mipmap);
    EXPECT_TRUE(image->GetLayer(1)->IsUVTriLinear());
    EXPECT_EQ(image->GetLayer(2), nullptr);
    EXPECT_EQ(image->GetLayer(3), alpha) << "a pixel type without mipmaps";
    movie->GetImage(1, kWhole);
    EXPECT_EQ(image->GetLayer(0), mipmap) << "the second time there is nothing to do";
}

TEST(ImagerMovie, Mipmapping_NeedsAColourLayer) {
    auto const movie = NewMovie();
    movie->SetMipmapping(true);
    auto const image = NewImage(NewFrame({4, 4}, SrCode("Alp8")).Get());
    movie->SetImage(0, image.Get(), false);
    EXPECT_EQ(movie->GetImage(0, kWhole), image.Get());
    EXPECT_FALSE(image->GetLayer(0)->IsUVTriLinear());
    EXPECT_EQ(movie->GetImage(7, kWhole), nullptr);
}

TEST_F(StereoMovie, Mipmapping_OfAnEye_GoesIntoTheEntry_AndTheEyeStaysGood) {
    // The eye that is given back is dropped by the mipmap that its entry receives.
    movie->SetMipmapping(true);
    auto const source = Above(7);
    StRef<SmImagerFrame> const whole = source->GetLayer(0);
    movie->SetImage(0, source.Get(), false);
    SmImagerImage* const left = movie->GetImage(0, kLeft);
    EXPECT_EQ(NumberOf(left->GetColorLayer()), 7);
    EXPECT_EQ(left->GetSize(), (StPoint{2, 2}));
    EXPECT_TRUE(source->GetLayer(0)->IsUVTriLinear());
    EXPECT_EQ(source->GetLayer(0)->GetSize(), (StPoint{2, 2})) << "the half";
    EXPECT_EQ(whole->ReferenceCount(), 2) << "here and the eye's window";
    movie->GetImage(0, kRight);
    EXPECT_EQ(whole->ReferenceCount(), 1);
}

// --- time: the rule itself is tested with tracks

TEST(ImagerMovie, FrameNumberForTime_GoesByTheStoredDuration) {
    auto const movie = NewMovie();
    movie->SetFrameRate(10.0F);
    EXPECT_EQ(movie->FrameNumberForTime(3.5), 35);
    movie->SetLoop(true, false);
    EXPECT_EQ(movie->FrameNumberForTime(3.5), 0) << "no duration";
    movie->SetDuration(2.0);
    EXPECT_EQ(movie->FrameNumberForTime(3.5), 15);
    movie->SetLoop(true, true);
    EXPECT_EQ(movie->FrameNumberForTime(3.5), 5);
    EXPECT_EQ(movie->FrameNumberForTime(3.0), 10);
    EXPECT_EQ(movie->FrameNumberForTime(-0.5), 5) << "cycle -1 is odd";
    movie->SetLoop(false, true);
    EXPECT_EQ(movie->FrameNumberForTime(3.5), 35);
    movie->SetFrameRate(30.0F);
    EXPECT_EQ(movie->FrameNumberForTime(1.0), 30);
}

// --- life

TEST(ImagerMovie, Clone_HasImagesOfItsOwn_AndSharesTheEyes) {
    auto const movie = NewMovie();
    auto const prototype = NewImage();
    auto const source = Above(3);
    movie->SetImage(1, source.Get(), true);
    movie->SetPrototypeImage(prototype.Get());
    movie->SetDuration(4.5);
    movie->SetNumberOfFrames(9);
    movie->SetFrameRate(12.0F);
    movie->SetLoop(true, true);
    movie->SetStereoArrangement(1);
    movie->SetStereoFirstEye(2);
    movie->SetStereoGap(1);
    movie->SetSizingMode(0x5245535A);
    SmImagerImage* const left = movie->GetImage(1, kLeft);
    movie->SetMipmapping(true);

    auto const copy = StRef<SmImagerMovie>::Adopt(movie->Clone());
    EXPECT_EQ(left->ReferenceCount(), 2);
    EXPECT_EQ(copy->GetStoredImage(0), nullptr);
    ASSERT_NE(copy->GetStoredImage(1), nullptr);
    EXPECT_NE(copy->GetStoredImage(1), source.Get());
    EXPECT_NE(copy->GetStoredImage(1)->GetLayer(0), source->GetLayer(0));
    EXPECT_EQ(NumberOf(copy->GetStoredImage(1)->GetLayer(0)), 3);
    EXPECT_EQ(copy->GetPrototypeImage(), prototype.Get());
    EXPECT_EQ(prototype->ReferenceCount(), 3);
    EXPECT_EQ(copy->GetDesiredFrameSize(), (StPoint{5, 2}));
    EXPECT_EQ(copy->GetDuration(), 4.5);
    EXPECT_EQ(copy->GetNumberOfFrames(), 9);
    EXPECT_EQ(copy->GetFrameRate(), 12.0F);
    bool loop = false, pingPong = false;
    copy->GetLoop(loop, pingPong);
    EXPECT_TRUE(loop && pingPong);
    EXPECT_EQ(copy->GetStereoArrangement(), 1);
    EXPECT_EQ(copy->GetStereoFirstEye(), 2);
    EXPECT_EQ(copy->GetStereoGap(), 1);
    EXPECT_EQ(copy->GetSizingMode(), 0x5245535AU);
    EXPECT_TRUE(copy->GetMipmapping());
    copy->SetMipmapping(false);
    EXPECT_NE(copy->GetImage(1, kLeft), left) << "its own source is another image";
    EXPECT_EQ(NumberOf(copy->GetImage(1, kLeft)->GetColorLayer()), 103);
}

TEST(ImagerMovie, Clone_ThatMemoryRefusesLeavesNothing) {
    auto const movie = NewMovie();
    auto const image = NewImage({1, 1}, 0);
    movie->SetImage(0, image.Get(), false);
    movie->SetImage(1, image.Get(), false);
    EXPECT_GT(media_test::RefusedRuns([&] { StRef<SmImagerMovie>::Adopt(movie->Clone()); }), 3);
    EXPECT_EQ(image->ReferenceCount(), 3);
}

TEST(ImagerMovie, Free_DropsImagesPrototypeAndEyes) {
    auto const movie = NewMovie();
    auto const image = Above(0);
    movie->SetStereoArrangement(1);
    movie->SetImage(0, image.Get(), false);
    movie->SetPrototypeImage(image.Get());
    StRef<SmImagerImage> const left = movie->GetImage(0, kLeft), right = movie->GetImage(0, kRight);
    movie->Free();
    EXPECT_EQ(image->ReferenceCount(), 1);
    EXPECT_EQ(left->ReferenceCount(), 1);
    EXPECT_EQ(right->ReferenceCount(), 1);
    EXPECT_EQ(movie->GetStoredImage(0), nullptr);
    EXPECT_EQ(movie->GetPrototypeImage(), nullptr);
    movie->Free();
}

}  // namespace
