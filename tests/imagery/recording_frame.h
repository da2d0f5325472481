// A frame that is no layer: it holds nothing and writes down what is asked of it, with the arguments.
#pragma once

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "framewright/frame/frame.h"
#include "framewright/pixel/smart_pixel.h"

namespace testing_imagery {

inline void Tell(std::ostream& out, StPoint const& p) {
    out << p.vertical << ' ' << p.horizontal;
}
inline void Tell(std::ostream& out, StRect const& r) {
    out << r.top << ' ' << r.left << ' ' << r.bottom << ' ' << r.right;
}
inline void Tell(std::ostream& out, StRGBA32Pixel const& c) {
    out << '#' << int{c.blue} << ' ' << int{c.green} << ' ' << int{c.red} << ' ' << int{c.alpha};
}
template <class Value>
void Tell(std::ostream& out, Value const& value) {
    out << value;
}

class RecordingFrame : public SmImagerFrame {
  public:
    static StRef<RecordingFrame> Make() { return StRef<RecordingFrame>::Adopt(new RecordingFrame); }

    std::vector<std::string> log;
    /// What the blits answer, one after the other, and then the last for ever.
    std::vector<bool> answers{true};
    std::byte storage[64] = {};
    /// The first row that cannot be locked.
    long lockableRows = 1000;
    long failingRow = -1;
    long bits = 32;

    /// The log since the last call.
    std::vector<std::string> Taken() { return std::exchange(log, {}); }

    unsigned long PixelID() override { return Note<unsigned long>(77, "PixelID"); }
    unsigned long FamilyID() override { return Note<unsigned long>(78, "FamilyID"); }
    long PixelSize() override { return Note<long>(bits, "PixelSize"); }
    StPoint GetSize() override { return Note(StPoint{50, 60}, "GetSize"); }
    StPoint GetTopLeft() override { return Note(StPoint{5, 6}, "GetTopLeft"); }
    StPoint GetOriginalSize() override { return Note(StPoint{7, 8}, "GetOriginalSize"); }
    long GetPurpose() override { return Note<long>(79, "GetPurpose"); }
    void SetPurpose(long purpose) override { Note("SetPurpose", purpose); }
    long BytesPerRow() override { return Note<long>(80, "BytesPerRow"); }
    bool IsUVTriLinear() override { return Note(true, "IsUVTriLinear"); }

    bool LockRows(long first, long last) override { return Note(true, "LockRows", first, last); }
    void UnlockRows(long first, long last) override { Note("UnlockRows", first, last); }
    void* LockRow(long row) override {
        Note("LockRow", row);
        if (row == failingRow) SrThrow(-39, nullptr);
        return row < lockableRows ? storage : nullptr;
    }
    void UnlockRow(long row) override { Note("UnlockRow", row); }
    void ForceContiguous() override { Note("ForceContiguous"); }
    void ReleaseContiguous() override { Note("ReleaseContiguous"); }
    bool IsContiguous() override { return Note(true, "IsContiguous"); }
    void ResetBaseAddress(void* base) override { Note("ResetBaseAddress", base); }

    void GetPixelAt(long x, long y, StRGBA32Pixel& pixel) override {
        Note("GetPixelAt RGBA32", x, y);
        pixel = {10, 20, 30, 40};
    }
    void GetPixelAt(long x, long y, StColorFloats&) override { Note("GetPixelAt ColorFloats", x, y); }
    void GetPixelAt(long x, long y, StRGBAFloatPixel&) override { Note("GetPixelAt RGBAFloat", x, y); }
    void GetPixelAt(long x, long y, float&) override { Note("GetPixelAt float", x, y); }
    void GetPixelAt(long x, long y, StAlpha8Pixel&) override { Note("GetPixelAt Alpha8", x, y); }
    void GetPixelAt(long x, long y, ScSmartPixel*) override { Note("GetPixelAt smart", x, y); }
    void GetPixelAt(long x, long y, void*) override { Note("GetPixelAt record", x, y); }
    void PutPixelAt(long x, long y, StRGBA32Pixel const& p) override { Note("PutPixelAt RGBA32", x, y, p); }
    void PutPixelAt(long x, long y, StColorFloats const&) override { Note("PutPixelAt ColorFloats", x, y); }
    void PutPixelAt(long x, long y, StRGBAFloatPixel const&) override { Note("PutPixelAt RGBAFloat", x, y); }
    void PutPixelAt(long x, long y, StDepthFloatPixel const&) override {
        Note("PutPixelAt DepthFloat", x, y);
    }
    void PutPixelAt(long x, long y, StAlpha8Pixel const&) override { Note("PutPixelAt Alpha8", x, y); }
    void PutPixelAt(long x, long y, ScSmartPixel const*) override { Note("PutPixelAt smart", x, y); }
    void PutPixelAt(long x, long y, void const*) override { Note("PutPixelAt record", x, y); }
    void DrawPixelAt(long x, long y) override { Note("DrawPixelAt", x, y); }
    ScSmartPixel* NewSmartPixel() override {
        Note("NewSmartPixel");
        return new ScDerivedPixel<StRGBA32Pixel>;
    }
    void GetFractionalSmartPixel(float x, float y, ScSmartPixel*) override {
        Note("GetFractionalSmartPixel", x, y);
    }
    StRGBA32Pixel GetRGBAPixelAt(long x, long y) override {
        return Note(StRGBA32Pixel{1, 2, 3, 4}, "GetRGBAPixelAt", x, y);
    }
    unsigned long GetRGBAPixelAsLong(long x, long y) override {
        return Note<unsigned long>(81, "GetRGBAPixelAsLong", x, y);
    }
    void MergePixelAt(long x, long y, StRGBA32Pixel p) override { Note("MergePixelAt", x, y, p); }
    void* GetRow(long row) override { return Note<void*>(storage, "GetRow", row); }

    void SetForeground(StRGBA32Pixel const& color) override { Note("SetForeground", color); }
    void GetForeground(StRGBA32Pixel& color) override {
        color = Note(StRGBA32Pixel{9, 0, 0, 0}, "GetForeground");
    }
    void SetBackground(StRGBA32Pixel const& color) override { Note("SetBackground", color); }
    void GetBackground(StRGBA32Pixel& color) override {
        color = Note(StRGBA32Pixel{50, 60, 70, 80}, "GetBackground");
    }
    SmImagerFrame* MirrorLayer() override { return Note<SmImagerFrame*>(nullptr, "MirrorLayer"); }
    SmImagerFrame* CloneAtNewSize(StPoint const& size, bool spooled, bool nativeBitmap) override {
        Note("CloneAtNewSize", size, spooled, nativeBitmap);
        return Make().Release();
    }
    void CopyFromLayer(SmImagerFrame*) override { Note("CopyFromLayer"); }
    void SetUpdated(bool updated) override { Note("SetUpdated", updated); }
    bool GetUpdated() override { return Note(true, "GetUpdated"); }
    void SetDithering(unsigned long dithering) override { Note("SetDithering", dithering); }
    unsigned long GetDithering() override { return Note<unsigned long>(82, "GetDithering"); }

    bool MergeRect(SmImagerFrame*, StRect const& from, StPoint const& to) override {
        return Answer("MergeRect", from, to);
    }
    bool BlitRect(SmImagerFrame*, StRect const& from, StPoint const& to) override {
        return Answer("BlitRect", from, to);
    }
    bool StretchBlit(SmImagerFrame*, StRect const& from, StRect const& to) override {
        return Answer("StretchBlit", from, to);
    }
    bool StretchBlitFast(SmImagerFrame*, StRect const& from, StRect const& to) override {
        return Answer("StretchBlitFast", from, to);
    }
    bool StretchBlitMasked(SmImagerFrame*, SmImagerFrame*, StRect const& from, StRect const& to) override {
        return Answer("StretchBlitMasked", from, to);
    }

    void MoveFrame(StRect const& rect) override { Note("MoveFrame", rect); }
    void MoveFrame(void* base, StPoint const& topLeft, StPoint const& size) override {
        Note("MoveFrame", base, topLeft, size);
    }
    void Resize(StPoint const& size, StImageInterpolationMethod method) override {
        Note("Resize", size, static_cast<int>(method));
    }
    void GetFractionalUVPixel(float u, float v, StColorFloats&, StTilingStyles const&, float w) override {
        Note("UV ColorFloats", u, v, w);
    }
    void GetFractionalUVPixel(float u, float v, float&, StTilingStyles const&, float w) override {
        Note("UV float", u, v, w);
    }
    void GetFractionalUVPixel(float u, float v, StRGBA32Pixel&, StTilingStyles const&, float w) override {
        Note("UV RGBA32", u, v, w);
    }
    void GetUVDerivatives(float u, float v, float&, float&, StTilingStyles const&, float w) override {
        Note("GetUVDerivatives", u, v, w);
    }

    void* GetNativeImageContext() override { return Note<void*>(storage, "GetNativeImageContext"); }
    void ReleaseNativeImageContext() override { Note("ReleaseNativeImageContext"); }
    void SetNativeImageContext(void* context) override { Note("SetNativeImageContext", context); }
    TView* GetNativeViewContext() override { return Note<TView*>(nullptr, "GetNativeViewContext"); }
    void ReleaseNativeViewContext() override { Note("ReleaseNativeViewContext"); }
    void SetNativeViewContext(TView* view) override { Note("SetNativeViewContext", view); }
    TView* ReportNativeViewContext() override { return Note<TView*>(nullptr, "ReportNativeViewContext"); }
    CGrafPort* GetNativeWindowContext() override {
        return Note<CGrafPort*>(nullptr, "GetNativeWindowContext");
    }
    void ReleaseNativeWindowContext() override { Note("ReleaseNativeWindowContext"); }
    void SetNativeGrafPtr(CGrafPort* port) override { Note("SetNativeGrafPtr", port); }
    CGrafPort* GetNativeGrafPtr() override { return Note<CGrafPort*>(nullptr, "GetNativeGrafPtr"); }
    void EnsureScreenSafe(StRect const& rect) override { Note("EnsureScreenSafe", rect); }
    void ReleaseScreenSafe() override { Note("ReleaseScreenSafe"); }

    void SetStreamingCompression(unsigned short) override { Note("SetStreamingCompression"); }
    void WriteTo(SmStream*) override { Note("WriteTo"); }
    void ReadFrom(SmStream*) override { Note("ReadFrom"); }
    void WritePixels(SmStream*, long, long) override { Note("WritePixels"); }
    void ReadPixels(SmStream*, long, long) override { Note("ReadPixels"); }
    void Erase() override { Note("Erase"); }
    void Flip(bool, bool) override { Note("Flip"); }
    void Invert() override { Note("Invert"); }
    void RectFill(StRect const& rect, ScSmartPixel* pixel) override {
        Note("RectFill", rect, pixel->GetRGBA32());
    }

  protected:
    bool DissimilarBlit(SmImagerFrame*, StRect const&, StPoint const&) override { return false; }

  private:
    template <class... Arguments>
    void Note(char const* name, Arguments const&... arguments) {
        std::ostringstream text;
        text << name;
        ((text << ", ", Tell(text, arguments)), ...);
        log.push_back(text.str());
    }
    template <class Result, class... Arguments>
    Result Note(Result result, char const* name, Arguments const&... arguments) {
        Note(name, arguments...);
        return result;
    }
    template <class... Arguments>
    bool Answer(char const* name, Arguments const&... arguments) {
        Note(name, arguments...);
        bool const answer = answers.front();
        if (answers.size() > 1) answers.erase(answers.begin());
        return answer;
    }
};

}  // namespace testing_imagery
