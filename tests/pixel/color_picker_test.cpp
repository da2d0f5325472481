// Asking the user for a colour through the dialog that the host supplies.
#include "framewright/pixel/color_picker.h"

#include "framewright/ostlinger/color_dialog.h"
#include "framewright/thornmere/error.h"
#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

RGBColor gShown;
bool AcceptAnother(RGBColor& color) {
    gShown = color;
    color = {65535, 1, 32768};
    return true;
}
bool RefuseAnother(RGBColor& color) {
    gShown = color;
    color = {1, 2, 3};
    return false;
}
bool AcceptAsShown(RGBColor&) {
    return true;
}

struct StDialog {
    explicit StDialog(StColorPicker picker) { SrSetColorPicker(picker); }
    ~StDialog() { SrSetColorPicker(nullptr); }
};

TEST(ColorPicker, Accepted_TheChoiceComesBack) {
    StDialog dialog(AcceptAnother);
    StColorFloats color{1.0f, 0.5f, 0.25f};
    EXPECT_TRUE(SrChooseColorWithSystemPicker(color));
    EXPECT_EQ(gShown.red, 65535);
    EXPECT_EQ(gShown.green, 32767) << "truncated";
    EXPECT_EQ(gShown.blue, 16383);
    EXPECT_EQ(Of(color), (Fields<3>{Rounded(65535 * kInverseWord), Rounded(kInverseWord),
                                    Rounded(32768 * kInverseWord)}));
}

TEST(ColorPicker, Refused_TheColorStays) {
    StDialog dialog(RefuseAnother);
    StColorFloats color{0.3f, -0.25f, 1.5f};
    EXPECT_FALSE(SrChooseColorWithSystemPicker(color));
    EXPECT_EQ(Of(color), Of(StColorFloats{0.3f, -0.25f, 1.5f}));
    EXPECT_EQ(gShown.green, WordOf(-0.25)) << "what is out of range wraps on its way to the dialog";
    EXPECT_EQ(gShown.blue, WordOf(1.5));
}

TEST(ColorPicker, AcceptedUnchanged_IsTheColorInWordSteps) {
    StDialog dialog(AcceptAsShown);
    StColorFloats color{0.3f, 0.0f, 1.0f};
    EXPECT_TRUE(SrChooseColorWithSystemPicker(color));
    EXPECT_EQ(Of(color), (Fields<3>{Rounded(19660 * kInverseWord), 0, Rounded(65535 * kInverseWord)}));
}

TEST(ColorPicker, WithoutADialog_NobodyAccepts) {
    StColorFloats color{0.1f, 0.2f, 0.3f};
    EXPECT_FALSE(SrChooseColorWithSystemPicker(color));
    EXPECT_EQ(Of(color), Of(StColorFloats{0.1f, 0.2f, 0.3f}));
    RGBColor words{1, 2, 3};
    EXPECT_FALSE(SrChooseColor(words));
    EXPECT_EQ(words.red, 1);
}

TEST(ColorPicker, ItsErrorCode_IsItsOwn) {
    EXPECT_NE(SkColorPickerError(), SkNoError());
}

}  // namespace
