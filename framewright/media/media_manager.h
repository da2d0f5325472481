// The one place that knows which formats the library reads and writes: an ordered list of recognizers, which
// every search walks. Set-up makes one global manager; registration runs on the thread that loads the
// library, and nothing locks.
#pragma once

#include "framewright/core/startup.h"
#include "framewright/media/media_location.h"
#include "framewright/media/media_recognizer.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/object.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/vector.h"

class SmMedia;

SM_CLASS(SmMediaManager, SmObject, 0);
class FRAMEWRIGHT_EXPORT SmMediaManager : public SmManaged<SmMediaManager> {
    friend SmManaged<SmMediaManager>;

  public:
    /// A manager without recognizers, which is what New gives too.
    void IMediaManager();
    void Free() override;

    // The virtual operations, in slot order.

    /// The type of the format that a file has, "????" when no format takes it. Only formats that can read are
    /// asked, and of them only those that yield objects of `family` and `objectClass`, where 0 and null stand
    /// for any. The surest wins, the earlier one among equals.
    virtual unsigned long IdentifyMedia(ScMediaLocation* location, unsigned long family, ScMC_* objectClass);
    /// Media for a new file of that type, with one reference for the caller; null when no format writes it.
    virtual SmMedia* CreateMedia(ScMediaLocation* location, unsigned long type);

    /// Appends a recognizer and adds a reference, also to one that stands in the list already.
    void Register(SmMediaRecognizer* recognizer);
    /// Takes out the first recognizer of exactly that class.
    void UnregisterByClass(ScMC_* cls);
    long NumberOfRecognizers();
    /// In the order of the search; borrowed, null outside the list.
    SmMediaRecognizer* GetRecognizer(long index);
    /// The first recognizer of that type; 0 stands for the first of the list. Borrowed, null if there is
    /// none.
    SmMediaRecognizer* GetRecognizerByType(unsigned long type);
    /// The first recognizer that goes by a file type: the owner of "DIB ", say. Borrowed, null if there is
    /// none.
    SmMediaRecognizer* GetRecognizerByFileType(long type);
    /// The first recognizer that yields objects of a class. `family`, which may be null, receives the family
    /// of that recognizer's last class, not of the one that was found. Borrowed, null if there is none.
    SmMediaRecognizer* GetRecognizerBySample(ScMC_* objectClass, unsigned long* family);
    /// Whether the file's type text is an extension that the format goes by; false for an unknown type.
    bool IsMediaMatching(unsigned long type, StFileInfo const& info);

    /// Opens an existing file, with one reference for the caller. With `type` 0 the surest format opens it,
    /// the earlier one among equals; else the format of that type or file type does, and none throws
    /// SkUnrecognizedMedia(). Null when the format, or every format, is sure that the file is not its own. A
    /// format that is sure of the file and cannot open it throws -32768. The second argument means nothing.
    SmMedia* OpenMedia(ScMediaLocation* location, long, unsigned long type);

    /// Deletes what SrGetMissingMediaList lists.
    void PurgeMissingMediaList();

    // For readers of objects that refer to media.

    /// Notes that the file of a reference was not found; keeps a clone of the location.
    void AddMissingMedia(ScMediaLocation* location);
    /// Drops one reference of media, the one that this manager held if it stood in its list.
    void ReleaseMedia(SmMedia* media);

  protected:
    SmMediaManager();
    ~SmMediaManager() override;
    /// Shares recognizers and media; has clones of the missing locations.
    void CloneFrom(SmMediaManager const& other);

  private:
    friend ScVector<ScMediaLocation*>& SrGetMissingMediaList();

    SmMediaRecognizer* FindSurest(ScMediaLocation* location);
    SmMediaRecognizer* FindByName(ScMediaLocation* location, unsigned long type);

    ScVector<StRef<SmMedia>> mOpenMedia;  ///< held on behalf of others
    ScVector<StRef<SmMediaRecognizer>> mRecognizers;
    ScVector<ScMediaLocation*> mMissingMedia;  ///< owned
};

/// The global manager; null before set-up has made it and after shut-down.
FRAMEWRIGHT_EXPORT SmMediaManager* SrGlobalMediaManager();
/// Empties the manager's list and gives it a clone of each registered recognizer, in the order of their
/// types.
FRAMEWRIGHT_EXPORT void SrAddGlobalRecognizers(SmMediaManager* manager);
/// The global manager's list of files that were referred to and not found. Without a manager it throws
/// SkMediaManagerMissing().
FRAMEWRIGHT_EXPORT ScVector<ScMediaLocation*>& SrGetMissingMediaList();

namespace media {

/// The global manager, or SkMediaManagerMissing().
SmMediaManager& GlobalMediaManager();

}  // namespace media
