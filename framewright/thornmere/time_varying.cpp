#include "framewright/thornmere/time_varying.h"

#include "framewright/thornmere/reference.h"

namespace {

SxTimeVarying& Of(void* object) {
    return *static_cast<SxTimeVarying*>(object);
}

constexpr StReferenceCountableFunctionTable kTable = {
    [](void* object) { Of(object).AddReference(); },
    [](void* object) { Of(object).ReleaseReference(); },
    [](void const* object) { return static_cast<SxTimeVarying const*>(object)->ReferenceCount(); },
};

/// It is only handed out as a constant, so nobody asks it to change anything.
class ScConstNonTimeVarying : public SxTimeVarying {
  public:
    bool IsConstant() const override { return true; }
    void CopyKeyTimes(double, double, double) override {}
    void DeleteKeyTimes(double, double) override {}
    void EachKeyTime(ScKeyTimeIterator& callback) const override {
        callback.HandleKeyTime(0.0, nullptr, true, true);
    }
    void EachKeyTimeSpan(ScKeyTimeIterator& callback, ScInterpolator*) const override {
        EachKeyTime(callback);
    }
    void ForceKeyTime(double) override {}
    void ForceKeyTime(double, ScInterpolator&) override {}
    void GetIndexForTime(double time, long& low, long& high) const override {
        low = 1;
        high = time <= 0.0 ? 1 : 2;
    }
    double GetKeyTimeAt(long) const override { return 0.0; }
    long GetNumKeyTimes() const override { return 1; }
    void MoveKeyTimes(double, double, double) override {}
    double GetLastKeyTime() const override { return 0.0; }
    long ReferenceCount() const override { return 1; }
    void AddReference() override {}
    void DeleteThis() override {}
    void ReleaseReference() override {}
};

constinit ScConstNonTimeVarying const gConstNonTimeVarying;

}  // namespace

char const* ScInterpolator::GetInterpolatorName() {
    return "";
}

SxTimeVarying::~SxTimeVarying() = default;
void SxTimeVarying::EachSubObject(ScSubObjectIterator&) {}
void SxTimeVarying::ModifiedKeyTimes() {}

StReferenceCountableFunctionTable const* SxTimeVarying::GetReferenceCountableFunctionTable() {
    return &kTable;
}

SxTimeVarying const* SrGetConstNonTimeVarying() {
    return &gConstNonTimeVarying;
}
