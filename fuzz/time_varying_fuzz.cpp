// Takes its bytes for edits of two colours that vary over time, at any times and with memory refused at any
// moment. After each the keys must be in order, and all ways to look at them must agree.
#include <cstdint>
#include <vector>

#include "framewright/pixel/time_varying.h"
#include "framewright/thornmere/memory.h"
#include "fuzz/input.h"

namespace {

constexpr long kManyKeys = 300;

long gAllowed = 0;  // how many allocations pass before one is refused; below 0 all pass

bool Allow(std::size_t) {
    if (gAllowed > 0) --gAllowed;
    return gAllowed != 0;
}

class Script {
  public:
    Script(std::uint8_t const* data, std::size_t size) : mData(data), mLeft(size) {}
    bool Ended() const { return mLeft == 0; }
    std::uint8_t Byte() {
        if (mLeft == 0) return 0;
        --mLeft;
        return *mData++;
    }
    /// Any double, or one of few, among which some are nearly equal.
    double Time() {
        std::uint8_t const kind = Byte();
        if (kind < 0xF0) return (kind & 0x3F) - 8 + (kind >> 6) * 0.7e-6;
        std::uint8_t bytes[8];
        for (std::uint8_t& byte : bytes)
            byte = Byte();
        double time;
        std::memcpy(&time, bytes, sizeof time);
        return time;
    }
    StColorFloats Color() {
        auto const n = static_cast<float>(Byte());
        return {n, -n, n / 3.0f};
    }

  private:
    std::uint8_t const* mData;
    std::size_t mLeft;
};

struct Times : ScTVI<StColorFloats> {
    void KeyTime(double time, StColorFloats const* value, bool, bool) override {
        Check(value != nullptr);
        times.push_back(time);
    }
    std::vector<double> times;
};

void Look(StTimeVaryingColor const& color, double time) {
    Times each, span;
    color.EachKeyTime(each);
    color.EachKeyTimeSpan(span);
    Check(each.times == span.times && !each.times.empty());
    auto const count = static_cast<long>(each.times.size());
    Check(count == color.GetNumKeyTimes());
    Check(color.IsTimeVarying() || count == 1);
    Check(each.times.back() == color.GetLastKeyTime());
    Check(count == 1 || each.times.back() == color.GetKeyTimeAt(count));
    for (std::size_t i = 1; i < each.times.size(); ++i) {
        Check(each.times[i - 1] < each.times[i]);
        Check(!SrNearEqualTimes(each.times[i - 1], each.times[i]));
    }
    std::size_t at = 0;
    for (auto i = color.GetKeyTimeBegin(); i != color.GetKeyTimeEnd(); ++i)
        Check(*i == each.times.at(at++));
    Check(at == each.times.size());

    color.GetValue(time);
    long low = 0, high = 0;
    color.GetIndexForTime(time, low, high);
    Check(1 <= low && low <= high && high <= count + 1);
}

StRef<SxTimeVarying> ViewOf(StTimeVaryingColor& color) {
    if (color.IsTimeVarying()) return StRef<SxTimeVarying>(color.GetTimeVarying());
    return StRef<SxTimeVarying>::Adopt(color.GetTimeVarying());
}

void Edit(Script& script, StTimeVaryingColor& color, StTimeVaryingColor& other) {
    std::uint8_t const operation = script.Byte();
    double const from = script.Time(), to = script.Time();
    switch (operation % 10) {
        case 0:
        case 1:
            return color.SetExtendedValue(from, script.Color());
        case 2:
            return color.ForceKeyTime(from);
        case 3:
            return color.DeleteKeyTimes(from, to);
        case 4:
            return color.MoveKeyTimes(from, to, script.Time());
        case 5:
            if (color.GetNumKeyTimes() < kManyKeys) color.CopyKeyTimes(from, to, script.Time());
            return;
        case 6:
            return color.ForceTimeVarying();
        case 7:
            color = script.Color();
            return;
        case 8:
            color = operation < 128 ? other : StTimeVaryingColor(other);
            return;
        default:
            StRef<SxTimeVarying> const view = ViewOf(color);
            view->MoveKeyTimes(from, to, script.Time());
            view->ForceKeyTime(to);
            Check(view->GetNumKeyTimes() >= 1);
    }
}

void Run(Script& script) {
    StTimeVaryingColor colors[2];
    while (!script.Ended()) {
        std::uint8_t const choice = script.Byte();
        StTimeVaryingColor& color = colors[choice & 1];
        gAllowed = choice & 2 ? 1 + (choice >> 2) % 16 : -1;
        try {
            Edit(script, color, colors[~choice & 1]);
        } catch (std::exception const& exception) {
            ScMessageClass* message = nullptr;
            Check(SrGetExceptionValues(exception, message) == SkMemoryFull());
        }
        gAllowed = -1;
        Look(color, script.Time());
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    SrSetAllocationGate(Allow);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Script script(data, size);
    Run(script);
    return 0;
}
