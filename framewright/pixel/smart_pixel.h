// Pixels whose type is known at run time only: small heap objects of one record each, with virtual operations
// around it. Code that carries pixels between layers of any types uses them.
//
// A smart pixel is made by NewSmartPixel() of a record or of a layer, belongs to the caller, and is deleted
// through its virtual destructor. One lives for one operation and is used again for each pixel.
#pragma once

#include <cstddef>

#include "framewright/pixel/pixels.h"

/// Gives classes the framework's allocator: `new` gives null when memory is refused.
class FRAMEWRIGHT_EXPORT SxFastAllocator {
  public:
    static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* object, std::size_t size);
};

/// A pixel with its type erased.
class FRAMEWRIGHT_EXPORT ScSmartPixel : public SxFastAllocator {
  public:
    // The virtual operations, in slot order.
    virtual ~ScSmartPixel();
    virtual unsigned long FamilyID() const = 0;
    virtual unsigned long PixelID() const = 0;
    /// The address of the record inside this object.
    virtual void* GetPixelData() = 0;
    /// Copies one record in, whole.
    virtual void SetPixelData(void const* record) = 0;
    virtual StRGBA32Pixel GetRGBA32() const = 0;
    virtual void SetRGBA32(StRGBA32Pixel color) = 0;
    virtual float GetFloat() const = 0;
    virtual void SetFloat(float value) = 0;
    virtual void GetColorFloats(StColorFloats& out) const = 0;
    virtual void SetColorFloats(StColorFloats const& color) = 0;
};

namespace pixel {

/// The room of a record in its smart pixel.
template <class Record>
struct StPayload {
    Record record;
};
/// A black-and-white pixel looks three bytes past the start of an opacity byte; here they are, 0.
template <>
struct StPayload<StAlpha8Pixel> {
    StAlpha8Pixel record;
    unsigned char beyond[3];
};

}  // namespace pixel

/// The smart pixel of a record. Its bytes are 0 until it is set. For a mapped record, which has no colour
/// without a map, the colour operations do nothing and give 0.
template <class Pixel>
class FRAMEWRIGHT_EXPORT ScDerivedPixel : public ScSmartPixel {
  public:
    ScDerivedPixel();
    ~ScDerivedPixel() override;
    unsigned long FamilyID() const override;
    unsigned long PixelID() const override;
    void* GetPixelData() override;
    void SetPixelData(void const* record) override;
    StRGBA32Pixel GetRGBA32() const override;
    void SetRGBA32(StRGBA32Pixel color) override;
    float GetFloat() const override;
    void SetFloat(float value) override;
    void GetColorFloats(StColorFloats& out) const override;
    void SetColorFloats(StColorFloats const& color) override;

  protected:
    pixel::StPayload<Pixel> mPayload;
};

/// The smart pixel of a mapped record, with the map that gives it colours. The map is borrowed and must
/// outlive the smart pixel's use of it; until there is one the pixel behaves as its base.
template <class Pixel>
class FRAMEWRIGHT_EXPORT ScMappedSmartPixel : public ScDerivedPixel<Pixel> {
  public:
    ScMappedSmartPixel();
    ~ScMappedSmartPixel() override;
    void SetColorMap(ScColorMap<unsigned char, StRGBA32Pixel>* map);
    /// The map's entry for the index.
    StRGBA32Pixel GetRGBA32() const override;
    /// The map's nearest index, cut to the record's width; so do the other two.
    void SetRGBA32(StRGBA32Pixel color) override;
    float GetFloat() const override;
    void SetFloat(float value) override;
    void GetColorFloats(StColorFloats& out) const override;
    void SetColorFloats(StColorFloats const& color) override;

  private:
    ScColorMap<unsigned char, StRGBA32Pixel>* mMap = nullptr;
};

#define SR_ROW(Record, ...) extern template class ScDerivedPixel<Record>;
FOR_EACH_LAYER_PIXEL(SR_ROW)
FOR_EACH_PLAIN_PIXEL(SR_ROW)
#undef SR_ROW
#define SR_ROW(Record) extern template class ScMappedSmartPixel<Record>;
FOR_EACH_MAPPED_PIXEL(SR_ROW)
#undef SR_ROW
