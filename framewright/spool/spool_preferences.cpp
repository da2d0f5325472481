#include "framewright/spool/spool_preferences.h"

#include <memory>

#include "framewright/thornmere/settings.h"

namespace {

using Flag = ScPersistentData<bool, ScNormalPersistentBehavior<bool>>;

std::unique_ptr<Flag> gImageSpooling;
std::unique_ptr<Flag> gImageMapSpooling;
std::unique_ptr<Flag> gImageOptimization;

bool Get(std::unique_ptr<Flag> const& flag) {
    return flag && flag->GetValue();
}

void Set(std::unique_ptr<Flag> const& flag, bool value) {
    if (flag) flag->SetValue(value);
}

}  // namespace

namespace spool {

void MakePreferences() {
    gImageSpooling = std::make_unique<Flag>(nullptr, "Default rendering spooling state", false);
    gImageMapSpooling = std::make_unique<Flag>(nullptr, "Default image map spooling state", false);
    gImageOptimization = std::make_unique<Flag>(nullptr, "Optimize image-maps", true);
}

void DisposePreferences() {
    gImageSpooling.reset();
    gImageMapSpooling.reset();
    gImageOptimization.reset();
}

}  // namespace spool

bool SrGetImageSpoolingState() {
    return Get(gImageSpooling);
}
void SrSetImageSpoolingState(bool state) {
    Set(gImageSpooling, state);
}
bool SrGetImageMapSpoolingState() {
    return Get(gImageMapSpooling);
}
bool SrGetImageOptimization() {
    return Get(gImageOptimization);
}
void SrSetImageOptimization(bool state) {
    Set(gImageOptimization, state);
}
