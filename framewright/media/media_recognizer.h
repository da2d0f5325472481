// A format's entry point. A recognizer says how sure it is that a location holds its format, and opens or
// makes the media of that format. A format joins the library by one class below this and one registration, in
// ScMediaRegistry and with the global SmMediaManager.
#pragma once

#include "framewright/frame/geometry.h"
#include "framewright/thornmere/codes.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/object.h"
#include "framewright/thornmere/reference.h"

class ScMediaLocation;
class SmMedia;
class SmTrackSpec;

/// How sure a recognizer can be; at this value a search stops.
constexpr short kCertain = 10;

/// Ties a format to a file name: one row for each type and extension that it goes by. Texts are borrowed.
struct FRAMEWRIGHT_EXPORT StMediaFileDesc {
    long mFileType;            ///< a four-character code; 0 for a row without a type
    long mReserved1;           ///< 0
    char const* mExtension;    ///< without the dot; null for none
    long mReserved2;           ///< 0
    char const* mDescription;  ///< for a file dialog

    /// A row without a type equals no type.
    bool operator==(long fileType) const;
    /// Whether `extension` is this row's; ASCII letters count alike in both cases. A row without an extension
    /// equals none.
    bool operator==(char const* extension) const;
    bool operator!=(long fileType) const { return !(*this == fileType); }
    bool operator!=(char const* extension) const { return !(*this == extension); }
};

SM_ABSTRACT_CLASS(SmMediaRecognizer, SmObject, 0);
/// The base of all recognizers. Its operations are those of a format that takes no file and yields nothing.
class FRAMEWRIGHT_EXPORT SmMediaRecognizer : public SmManaged<SmMediaRecognizer> {
    friend SmManaged<SmMediaRecognizer>;

  public:
    // The virtual operations, in slot order.

    /// How sure this format is of the file: 0, not at all, to 10. Where `media` is given and the answer is
    /// above 0 the media is opened too and stored there. Where `type` is given it receives GetType().
    /// `family` and `objectClass` tell what the caller wants to read, 0 and null if anything.
    virtual short Recognize(ScMediaLocation* location, unsigned long* type, StRef<SmMedia>* media,
                            unsigned long family, ScMC_* objectClass);
    /// Media for writing a new file, with one reference for the caller; null if the format cannot write.
    virtual SmMedia* NewMedia(ScMediaLocation* location);
    /// The format's four-character type.
    virtual unsigned long GetType();
    /// Row `index` of the names that the format goes by, counted from 0; false past the last.
    virtual bool GetFileDesc(long index, StMediaFileDesc& desc);
    virtual unsigned long GetInputFamilyType();
    /// How many kinds of object the format yields, and which. Where `family` is given it receives the family
    /// of the kind: "VIDE" at this level.
    virtual long NumberOfObjectClasses();
    virtual ScMC_* ObjectClass(long index, unsigned long* family);
    /// Both true at this level.
    virtual void CapableOfReadAndWrite(bool& read, bool& write);
    virtual long HowManyCodecs();
    /// The code of a codec, with the deepest frame type and the largest size that it takes, whether it has a
    /// quality to set, and its family. At this level "none", which takes "ColB" up to 32767 by 32767.
    /// `family` may be null.
    virtual unsigned long AvailableCodec(long index, unsigned long& depth, StPoint& maxSize, bool& hasQuality,
                                         unsigned long* family);
    /// Changes `object` to what it will be after a save with `spec`. Nothing at this level.
    virtual void Preview(SmObject*& object, SmTrackSpec* spec);

  protected:
    SmMediaRecognizer() = default;
    ~SmMediaRecognizer() override;
    void CloneFrom(SmMediaRecognizer const& other) { SmObject::CloneFrom(other); }
};

/// The user's wish to have extensions added to the names of new files, kept across runs; true at first. The
/// library reads it nowhere: a host asks before it calls SrAppendFileNameWithExtension.
FRAMEWRIGHT_EXPORT bool SgGetAppendFileExtensions();
FRAMEWRIGHT_EXPORT void SgSetAppendFileExtensions(bool append);

namespace media {

/// Whether a format goes by a file type, or by an extension without its dot.
template <class TypeOrExtension>
bool GoesBy(SmMediaRecognizer& format, TypeOrExtension wanted) {
    StMediaFileDesc row{};
    for (long i = 0; format.GetFileDesc(i, row); ++i) {
        if (row == wanted) return true;
    }
    return false;
}

}  // namespace media
