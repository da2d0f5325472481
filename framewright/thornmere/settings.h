// Persistent settings: values under key texts, kept in one file. The file is $FRAMEWRIGHT_SETTINGS, else
// $XDG_CONFIG_HOME/framewright/settings, else ~/.config/framewright/settings. A value is read when its object
// is built; the file is written whole and by rename when a value changes. A missing or unwritable file is no
// error.
#pragma once

#include <string>

#include "framewright/thornmere/export.h"
#include "framewright/thornmere/text.h"

class SmStream;

/// The base of a persistent value: finds its bytes in the store under its name, and puts them back.
class FRAMEWRIGHT_EXPORT SxPersistent {
  public:
    /// With a parent the value is stored under the parent's key, a `/` and its own; the library passes null.
    /// The parent is borrowed and outlives this object.
    explicit SxPersistent(SxPersistent* parent);
    virtual ~SxPersistent();
    SxPersistent(SxPersistent const&) = delete;
    SxPersistent& operator=(SxPersistent const&) = delete;

    /// The key under which the value is stored. Borrowed.
    virtual char const* GetPersistentDataName() const = 0;
    /// Reads the value from the store, through ReadValue, if there is one; a damaged one is ignored.
    virtual void ReadPersistentData();
    /// Puts the value, as WriteValue gives it, into the store. A key with a line break in it is not stored.
    virtual void WritePersistentData();

  protected:
    virtual void ReadValue(SmStream* stream) = 0;
    virtual void WriteValue(SmStream* stream) const = 0;

  private:
    std::string FullKey() const;

    SxPersistent* mParent;
};

template <class T>
class ScPersistentNormalData;

/// A persistent flag, one bit on its stream.
template <>
class FRAMEWRIGHT_EXPORT ScPersistentNormalData<bool> : public SxPersistent {
  public:
    bool GetValue() const { return mValue; }
    /// Takes the value on and, when it differs from the one before, writes the file.
    void SetValue(bool value);
    char const* GetPersistentDataName() const override { return mKey.AsCString(); }

  protected:
    ScPersistentNormalData(SxPersistent* parent, char const* key, bool defaultValue);
    void ReadValue(SmStream* stream) override;
    void WriteValue(SmStream* stream) const override;

  private:
    ScHeapString mKey;
    bool mValue;
};

/// Read when built, written when changed.
template <class T>
struct ScNormalPersistentBehavior {
    static void Built(ScPersistentNormalData<T>& data) { data.ReadPersistentData(); }
};

template <class T, class Behavior>
class ScPersistentData : public ScPersistentNormalData<T> {
  public:
    ScPersistentData(SxPersistent* parent, char const* key, T defaultValue)
        : ScPersistentNormalData<T>(parent, key, defaultValue) {
        Behavior::Built(*this);
    }
};
