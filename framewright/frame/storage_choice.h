// The one place that chooses the storage of a new layer.
#pragma once

#include <type_traits>

#include "framewright/frame/non_spool.h"

namespace frame {

/// Calls `make` with the type of the spooler for a new layer, as in
///
///     return frame::WithSpooler(spooled, [&]<class Spool>(std::type_identity<Spool>) {
///         return NewLayer<SmImagerLayer<Pixel, Spool>>(...);
///     });
///
/// All rows live in memory, so what is asked as spooled is given in memory too.
template <class Make>
auto WithSpooler([[maybe_unused]] bool spooled, Make const& make) {
    return make(std::type_identity<ScImagerNonSpool>{});
}

}  // namespace frame
