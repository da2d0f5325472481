// Scratch folders: where the host lets the library put temporary media. The list is the library's, in the
// order in which folders were added, and ends with it; nothing locks.
//
//     SrPurgeScratchFolder(folder);          // at start: clears away the spool files of a crashed run
//     SrAddImagerSpoolFileInFolder(folder);  // rows that leave memory go there: a matter of its own
//     SrAddScratchFolder(folder);            // temporary media of images go there (media/scratch_media.h)
#pragma once

#include "framewright/core/startup.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/files.h"
#include "framewright/thornmere/object.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/vector.h"

SM_CLASS(SmScratchLocation, SmObject, 0);
/// One scratch folder. It names nothing until it is set.
class FRAMEWRIGHT_EXPORT SmScratchLocation : public SmManaged<SmScratchLocation> {
    friend SmManaged<SmScratchLocation>;

  public:
    void SetFolder(StFileSpec const& folder) { mFolder = folder; }
    StFileSpec const& GetFolder() const { return mFolder; }

  protected:
    SmScratchLocation() = default;
    ~SmScratchLocation() override;
    void CloneFrom(SmScratchLocation const& other);

  private:
    StFileSpec mFolder;
};

/// Puts a folder at the end of the list, also one that does not exist or stands there already. No spool file
/// is made in it. -108 when memory is refused.
FRAMEWRIGHT_EXPORT void SrAddScratchFolder(StFileSpec const& folder);

/// Deletes the files of a folder that have the extension of spool files, "STch" in any case. Folders in it
/// are left alone. What cannot be read or deleted is thrown, as its code; the files behind it then stay.
///
/// The trap: a spool file that this process has in use is deleted like any other. Purge when the host starts,
/// before it adds spool files.
FRAMEWRIGHT_EXPORT void SrPurgeScratchFolder(StFileSpec const& folder);
